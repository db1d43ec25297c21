// The client proxies against the real data server process on the UnitTest
// back end.

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "attribute/KeyList.h"
#include "attribute/Property.h"
#include "foundation/vUtl.h"
#include "remote/COBPortal.h"
#include "remote/ClientCodes.h"
#include "remote/ClientTesting.h"

using namespace remote_testing;

namespace {

std::string str(vString const& s) { return std::string(s.c_str(), s.length()); }

std::string attributeNames(std::list<Attribute> const& list) {
  std::string all;
  for (Attribute const& a : list) all += str(a.getName()) + " ";
  return all;
}

// The text is head, a channel status ("CommChan::" and a word in
// capitals), and tail.
void expectStatusIn(std::string const& text, std::string const& head, std::string const& tail) {
  size_t const n = text.size() > head.size() + tail.size() + 10 ? text.size() - head.size() - tail.size() - 10 : 1;
  std::string const status = text.substr(std::min(head.size(), text.size()), n + 10);
  EXPECT_EQ(head + status + tail, text);
  EXPECT_TRUE(fitsShape(status, "CommChan::" + std::string(n, 'A'))) << text;
}

using ClientProxies = ClientTest;

TEST_F(ClientProxies, CatalogStartsItsServerAndAProjectListsItsStores) {
  vHandle<ProjectCatalog> catalog = newCatalog();
  EXPECT_EQ(0u, catalog->getProjectList()->size());

  vHandle<Project> project(new ClientProject(catalog));
  EXPECT_EQ("ClientProject::getName: Project is not open yet.", fatalText([&] { project->getName(); }));
  project->open("Survey");
  EXPECT_EQ("survey", str(project->getName()));

  EXPECT_EQ((std::vector<std::string>{"line12.3", "wells.1", "cube.2"}), names(*project->getStoreList("", "")));
  EXPECT_EQ((std::vector<std::string>{"cube.2"}), names(*project->getStoreList("seismic", "3d")));
  EXPECT_EQ("wells", str(project->getStoreDetailsList("well", "")->front().getName()));
  EXPECT_TRUE(project->hasStore("line12", 0));
  EXPECT_FALSE(project->hasStore("line13", 0));
  EXPECT_EQ("3d", str(project->getStoreDetails("cube", 2).getSubClass()));
  EXPECT_FALSE(project->purgeStore(1, "line12", "", ""));
  EXPECT_TRUE(project->deleteStore("wells", 1, "", ""));
  EXPECT_EQ((std::vector<std::string>{"line12.3", "cube.2"}), names(*project->getStoreList("", "")));
  // The UnitTest back end keeps no set details.
  EXPECT_TRUE(project->getAttributeSetDetails("line12", 3).empty());

  project->close();
  EXPECT_EQ((std::vector<int>{ClientCode::SessionStart, ClientCode::GetProjectList}), requestsTo(1));
  EXPECT_EQ((std::vector<int>{98, 103, 103, 104, 107, 107, 108, 106, 105, 103, 109, 99}), requestsTo(2));
}

TEST_F(ClientProxies, ServerCommandComesFromThePropertyThenVServer) {
  {
    ScopedEnv release("VREL", "5");
    ScopedEnv server("VSERVER", "/opt/bin/MyServer");
    EXPECT_EQ("/opt/bin/MyServer Rondo <$COBADDRESS$> -build " + std::to_string(vUtl::getBuildNumber()) + " -v 5",
              str(ClientProjectCatalog::makeServerCommand(ProjectType::RONDO)));
    ScopedEnv property("SP_CAPI_DATASERVER", "/site/DS");
    EXPECT_EQ(0u, str(ClientProjectCatalog::makeServerCommand(ProjectType::KELP)).find("/site/DS Kelp <$COBADDRESS$>"));
  }
  ScopedEnv release("VREL", nullptr);
  ScopedEnv server("VSERVER", nullptr);
  EXPECT_EQ("DataServer UnitTest <$COBADDRESS$> -build " + std::to_string(vUtl::getBuildNumber()),
            str(ClientProjectCatalog::makeServerCommand(ProjectType::UNITTEST)));
  EXPECT_EQ(
      "ClientProjectCatalog::ClientProjectCatalog: Should not get here for Dorn projects. Check that the links "
      "/dorn/xp/rel/TAO & Oracle exist and recompile Dorn.",
      fatalText([] { ClientProjectCatalog catalog("", ProjectType::DORN, ""); }));
  // A server program that is not there is not waited for.
  ScopedEnv missing("VSERVER", "/nonexistent/DataServer");
  EXPECT_EQ("ClientProjectCatalog::ClientProjectCatalog: The data server cannot be started: \"/nonexistent/DataServer "
            "Rondo <$COBADDRESS$> -build " + std::to_string(vUtl::getBuildNumber()) + "\" names no program on this host.",
            fatalText([&] { newCatalog(); }));
}

TEST_F(ClientProxies, KelpCatalogNamesItsServerFirst) {
  vHandle<ProjectCatalog> kelp(new ClientProjectCatalog(vUtl::gethostname(), ProjectType::KELP, "datahost"));
  vHandle<Project> project = openProject(kelp, "p");
  EXPECT_EQ("datahost", str(project->getProjectHost()));
  // The server's back end got the data host from the session start.
  std::vector<std::string> const lines = serverLines("Kelp");
  EXPECT_NE(lines.end(), std::find_if(lines.begin(), lines.end(), [](std::string const& line) {
              return line.find("session for host datahost") == 0;
            }));
}

// An open set answers from its caches until a class changes; properties
// change locally and travel at the close; open sets compare.
TEST_F(ClientProxies, OpenSetsCachePropertiesAndCompare) {
  vHandle<ProjectCatalog> catalog = newCatalog();
  vHandle<Project> project = openProject(catalog, "survey");
  ClientAttributeSet set(project);
  set.create("shots", "seismic", "2d", KeyList(), nullptr);
  set.addAttribute(Attribute("CDP", "", vINT32));
  set.close();
  EXPECT_EQ(0u, set.getCacheBits());

  set.update("shots", 0, "", "", nullptr);
  uint32_t const opened = ClientAttributeSet::NameBit | ClientAttributeSet::ClassBit |
                          ClientAttributeSet::SubClassBit | ClientAttributeSet::VersionBit;
  EXPECT_EQ(opened, set.getCacheBits());
  // The requests the set has sent, after those of the codes given.
  std::vector<int> expected = {202, 228, 211, 229, 209};
  auto sent = [&](std::initializer_list<int> codes) {
    expected.insert(expected.end(), codes);
    EXPECT_EQ(expected, requestsTo(3));
  };
  sent({ClientCode::Update, ClientCode::GetProperties, ClientCode::GetNInstances, ClientCode::GetVersion,
        ClientCode::GetClass, ClientCode::GetSubClass});

  // Known: no message.
  set.getClass();
  EXPECT_EQ(0, set.getVersion());
  sent({});
  // Not known: asked for once.
  EXPECT_TRUE(set.hasAttribute("CDP"));
  set.getKeyList();
  set.getKeyList();
  EXPECT_EQ("CDP ", attributeNames(set.getAttributeList()));
  sent({ClientCode::HasAttribute, ClientCode::GetKeyList, ClientCode::GetAttributeList});
  EXPECT_FALSE(set.hasAttribute("OFFSET"));
  sent({});

  // A new attribute joins the list kept.
  set.addAttribute(Attribute("AMP", "", vFLOAT32));
  EXPECT_TRUE(set.hasAttribute("AMP"));
  sent({ClientCode::AddAttribute});

  // A changed class drops the list: the next question goes to the server.
  set.setAttributeClass("CDP", "CMP");
  EXPECT_TRUE(set.hasAttribute("CDP"));
  EXPECT_EQ("CMP", str(set.getAttribute("CDP").getClass()));
  sent({ClientCode::SetAttributeClass, ClientCode::HasAttribute, ClientCode::GetAttribute});

  // A name missing from a cached list is asked for, and the list goes.
  set.getAttributeList();
  fatalText([&] { set.getAttribute("NOPE"); });
  EXPECT_EQ(0u, set.getCacheBits() & ClientAttributeSet::AttributeListBit);
  sent({ClientCode::GetAttributeList, ClientCode::GetAttribute});
  set.close();

  // Properties change locally and travel at the close.
  ClientAttributeSet props(project);
  props.create("props", "seismic", "2d", KeyList(), nullptr);
  props.addProperty(Property("SURVEY", vString("north")));
  props.addProperty(Property("SURVEY", vString("south")));
  props.addProperty(Property("LINE", 12.0));
  props.close();
  EXPECT_EQ((std::vector<int>{202, 228, 229, 209}), requestsTo(4));

  props.open("props", 0, "", "", nullptr);
  EXPECT_EQ(2u, props.getNProperties());
  EXPECT_EQ("south", str(props.findProperty(vUCString("SURVEY"))->getString()));
  char const* const text = "AttributeSet props is not open for writing.";
  EXPECT_EQ(std::string("ClientAttributeSet::addProperty(): ") + text,
            fatalText([&] { props.addProperty(Property("X", 1.0)); }));
  EXPECT_EQ("setproplist: Needcode", fatalText([&] { props.setPropertyList(props); }));
  props.close();
  // Read-only: nothing sent at close.
  std::vector<int> const all = requestsTo(4);
  EXPECT_EQ(ClientCode::Close, all.back());
  EXPECT_NE(ClientCode::SendProperties, all[all.size() - 2]);

  props.update("props", 0, "", "", nullptr);
  props.removeProperty(vUCString("SURVEY"));
  props.close();
  props.open("props", 0, "", "", nullptr);
  EXPECT_TRUE(props.hasProperty(vUCString("LINE")) && props.getNProperties() == 1u);
  props.close();

  // Open sets compare by state, instances, version and attributes.
  ClientAttributeSet a(project);
  ClientAttributeSet b(project);
  EXPECT_TRUE(a == b);
  a.create("one", "seismic", "2d", KeyList(), nullptr);
  a.addAttribute(Attribute("CDP", "", vINT32));
  a.addInstances(2);
  b.open("one", 0, "", "", nullptr);
  EXPECT_TRUE(a == b);
  a.addAttribute(Attribute("AMP", "", vFLOAT32));
  a.getAttributeList();
  EXPECT_FALSE(a == b);
  EXPECT_EQ(1u, errors().size());
  b.close();
  a.close();
}

TEST_F(ClientProxies, LostServerIsStartedAgainAndTheSetKeepsItsInstancesUntilNoneAnswers) {
  ScopedEnv stores("RONDO_UNITTEST_STORES", "shots.1:seismic");
  vHandle<ProjectCatalog> catalog = newCatalog();
  vHandle<Project> project = openProject(catalog, "survey");
  ClientAttributeSet set(project);
  set.update("shots", 0, "", "", nullptr);
  EXPECT_EQ(0u, set.getNInstances());
  set.addAttribute(Attribute("CDP", "", vINT32));
  set.addInstances(5);
  killServer();

  // A new server gets every object again, the set made up to its instances.
  set.addInstances(2);
  EXPECT_EQ(7u, set.getNInstances());
  EXPECT_EQ(2u, serverProcesses().size());
  std::vector<int> const again = requestsTo(3);
  // Update, properties, count, version, class, subclass, five, the request.
  std::vector<int> const tail(again.end() - 8, again.end());
  EXPECT_EQ((std::vector<int>{213, 228, 201, 205, 206, 207, 214, 214}), tail);
  set.close();
  // The new server holds them too.
  ClientAttributeSet reopened(project);
  reopened.open("shots", 0, "", "", nullptr);
  EXPECT_EQ(7u, reopened.getNInstances());
  reopened.close();

  // Every server from now on leaves at its first message: the two wordings.
  set.update("shots", 0, "", "", nullptr);
  static_cast<ClientProjectCatalog*>(catalog.get())->getPortal()->setDataserverCommandLine(
      vString((std::string(RONDO_TEST_BINARY_DIR) + "/bin/closingPeer Rondo ").c_str()) + COBPortal::addressToken);
  killServer();
  expectStatusIn(fatalText([&] { set.addInstances(1); }),
                 "ClientAttributeSet::addInstances: Could not communicate with the data server. Status was ",
                 ".Please include contents of ~/DataServer.Rondo on  in a error report.");
  expectStatusIn(fatalText([&] { project->hasStore("line12", 0); }),
                 "ClientProject::hasStore: Could not communicate with the data server. Status was ",
                 ". Please include contents of ~/DataServer.Rondo on  in an error report.");
}

}  // namespace
