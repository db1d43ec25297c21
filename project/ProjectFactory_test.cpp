// Catalog and project factories: caching, defaults, the deferred project and
// the classes that higher layers register. The caches are process-wide:
// each test works on hosts of its own and sets the default project itself.

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "foundation/Message.h"
#include "foundation/TestReleaseTree.h"
#include "foundation/vUtl.h"
#include "project/CapiMaker.h"
#include "project/CapiProject.h"
#include "project/JITProjectDecorator.h"
#include "project/ProjectCatalogFactory.h"
#include "project/ProjectFactory.h"
#include "project/ProjectTesting.h"
#include "project/UTProject.h"
#include "project/UTProjectCatalog.h"

namespace {

using project_testing::DefaultProject;

std::string str(vString const& s) { return std::string(s.c_str(), s.length()); }

// What the makers of higher layers were asked for: "class(first, type, second)".
std::vector<std::string> madeLog;

std::string lastMade() { return madeLog.empty() ? std::string("nothing") : madeLog.back(); }

void note(char const* cls, vString const& first, int type, vString const& second) {
  madeLog.push_back(std::string(cls) + "(" + str(first) + ", " + std::to_string(type) + ", " + str(second) + ")");
}

// Names its hosts as the client catalog does: for Kelp the first is the
// server and the second the data host, otherwise the reverse.
class RecordedCatalog : public UTProjectCatalog {
 public:
  RecordedCatalog(vString const& first, ProjectType::PROJECT_TYPE type, vString const& second, bool serverFirst)
      : UTProjectCatalog(serverFirst ? second : first, type), m_server(serverFirst ? first : second) {}
  vString getServer() const override { return m_server; }

 private:
  vString m_server;
};

template <bool kZon>
ProjectCatalog* recordCatalog(vString const& first, ProjectType::PROJECT_TYPE type, vString const& second) {
  note(kZon ? "ZonProjectCatalog" : "ClientProjectCatalog", first, type, second);
  return new RecordedCatalog(first, type, second, !kZon && type == ProjectType::KELP);
}

template <bool kZon>
Project* recordProject(vHandle<ProjectCatalog> const& catalog) {
  note(kZon ? "ZonProject" : "ClientProject", catalog->getHost(), catalog->getProjectType(), catalog->getServer());
  return new UTProject(catalog);
}

// A project that no server has: open fails.
class AbsentProject : public UTProject {
 public:
  explicit AbsentProject(vHandle<ProjectCatalog> const& catalog) : UTProject(catalog) { UTProject::close(); }
  void open(vLCString const& name) override {
    Message::fatal("AbsentProject::open", 0, "No project %s here.", name.c_str());
  }
};

Project* makeAbsentProject(vHandle<ProjectCatalog> const& catalog) { return new AbsentProject(catalog); }

// Records every class of the higher layers while it lives.
class Recorder {
 public:
  Recorder()
      : m_client(ProjectCatalogFactory::registerMaker("ClientProjectCatalog", &recordCatalog<false>)),
        m_zon(ProjectCatalogFactory::registerMaker("ZonProjectCatalog", &recordCatalog<true>)),
        m_clientProject(ProjectFactory::registerMaker("ClientProject", &recordProject<false>)),
        m_zonProject(ProjectFactory::registerMaker("ZonProject", &recordProject<true>)) {
    madeLog.clear();
  }
  ~Recorder() {
    ProjectCatalogFactory::registerMaker("ClientProjectCatalog", m_client);
    ProjectCatalogFactory::registerMaker("ZonProjectCatalog", m_zon);
    ProjectFactory::registerMaker("ClientProject", m_clientProject);
    ProjectFactory::registerMaker("ZonProject", m_zonProject);
  }

 private:
  ProjectCatalogFactory::Maker m_client;
  ProjectCatalogFactory::Maker m_zon;
  ProjectFactory::Maker m_clientProject;
  ProjectFactory::Maker m_zonProject;
};

TEST(ProjectCatalogFactory, CatalogsAreSharedPerHostWhateverTheServerAndPerCluster) {
  Recorder recorder;
  vHandle<ProjectCatalog> a = ProjectCatalogFactory::create("127.0.0.11", ProjectType::RONDO, "serverA");
  EXPECT_EQ(a.get(), ProjectCatalogFactory::create("127.0.0.11", ProjectType::RONDO, "serverB").get());
  EXPECT_EQ(a.get(), ProjectCatalogFactory::open(ProjectType::RONDO, "", "127.0.0.11").get());
  EXPECT_EQ(1u, madeLog.size());
  EXPECT_NE(a.get(), ProjectCatalogFactory::create("127.0.0.12", ProjectType::RONDO, "serverA").get());

  // Hosts of one cluster share a catalog.
  DefaultProject guard;
  TestReleaseTree tree;
  tree.setEnv("FS_CLUSTERS", "uthostC1=utcluster uthostC2=utcluster");
  a = ProjectCatalogFactory::create("uthostC1", ProjectType::UNITTEST, "");
  EXPECT_EQ(a.get(), ProjectCatalogFactory::create("uthostC2", ProjectType::UNITTEST, "").get());
  EXPECT_EQ("utcluster", str(a->getHost()));
  vHandle<Project> p = ProjectFactory::openProject(ProjectType::UNITTEST, "", "uthostC1", "survey");
  EXPECT_EQ(p.get(), ProjectFactory::openProject(ProjectType::UNITTEST, "", "uthostC2", "survey").get());
  EXPECT_EQ("utcluster", str(p->getProjectHost()));
}

TEST(ProjectFactory, DefaultProjectAndTheCacheOfOpenProjects) {
  DefaultProject guard;
  EXPECT_FALSE(ProjectFactory::hasDefaultProject());
  expectFatal([] { ProjectFactory::getDefaultProject(); }, "ProjectFactory::getDefaultProject",
              "There is no default Project.");
  vHandle<ProjectCatalog> catalog = ProjectCatalogFactory::create("uthostD1", ProjectType::UNITTEST, "");
  vHandle<Project> first = ProjectFactory::create(catalog);
  vHandle<Project> second = ProjectFactory::create(catalog);
  // Create always makes a new project; the first made with no default becomes it.
  EXPECT_EQ(first.get(), ProjectFactory::getDefaultProject().get());
  ProjectFactory::setDefaultProject(second);
  EXPECT_EQ(second.get(), ProjectFactory::getDefaultProject().get());
  ProjectFactory::clearDefaultProject();
  EXPECT_FALSE(ProjectFactory::hasDefaultProject());
  EXPECT_TRUE(ProjectFactory::getDefaultCatalog().isEmpty());

  vHandle<Project> a = ProjectFactory::openProject(ProjectType::UNITTEST, "", "uthostO1", "survey");
  EXPECT_EQ(a.get(), ProjectFactory::openProject(FullProjectName(vString("unittest::uthostO1:Survey"))).get());

  // The type does not take part in the search: the project is where it is.
  EXPECT_EQ(a.get(), ProjectFactory::openProject(ProjectType::RONDO, "", "uthostO1", "survey").get());
  EXPECT_NE(a.get(), ProjectFactory::openProject(ProjectType::UNITTEST, "", "uthostO1", "other").get());

  // A closed one is not found again.
  a->close();
  vHandle<Project> e = ProjectFactory::openProject(ProjectType::UNITTEST, "", "uthostO1", "survey");
  EXPECT_NE(a.get(), e.get());
  // An emptied cache finds nothing; the default survives it.
  ProjectFactory::emptyCache();
  EXPECT_NE(e.get(), ProjectFactory::openProject(ProjectType::UNITTEST, "", "uthostO1", "survey").get());
  EXPECT_EQ(a.get(), ProjectFactory::getDefaultProject().get());

  // The server is matched too: a unit-test project has none, so one asked for with a server is never found.
  vHandle<Project> s1 = ProjectFactory::openProject(ProjectType::UNITTEST, "srv", "uthostS1", "survey");
  EXPECT_NE(s1.get(), ProjectFactory::openProject(ProjectType::UNITTEST, "srv", "uthostS1", "survey").get());
  EXPECT_EQ(s1.get(), ProjectFactory::openProject(ProjectType::UNITTEST, "", "uthostS1", "survey").get());
}

TEST(UTProject, ScriptedStoresAreListedByClass) {
  UTProject p(vHandle<ProjectCatalog>(new UTProjectCatalog("uthostU2", ProjectType::UNITTEST)));
  p.addStore(
      StoreDetails("line12", 3, "seismic", "2d", 0, "", "", vDate(vDate::Invalid), "", 0, 0, ProjectType::UNITTEST));
  p.addStore(StoreDetails(ProjectType::UNITTEST, "", "wells", 1));
  auto names = [&](char const* cls, char const* sub) {
    std::string all;
    vHandle<Project::StoreList> list = p.getStoreList(cls, sub);
    for (vLCString const& n : *list) all += str(n) + " ";
    return all;
  };
  EXPECT_EQ("line12.3 ", names("Seismic", "2d"));
  EXPECT_FALSE(p.hasStore("wells", 2));
  EXPECT_FALSE(p.deleteStore("line12", 2, "", ""));
  EXPECT_TRUE(p.deleteStore("line12", 3, "seismic", ""));
  EXPECT_EQ("wells.1 ", names("", ""));
}

TEST(ProjectList, OrderSearchAndComparison) {
  ProjectList list;
  list.add(ProjectListEntry("north"));
  list.add(ProjectListEntry("Alpha"));
  list.add(ProjectListEntry("mid"));
  ASSERT_NE(list.end(), list.find("ALPHA"));
  EXPECT_EQ(list.end(), list.find("south"));

  ProjectList other(list);
  list.sort();
  EXPECT_NE(list, other);
  std::string order;
  for (ProjectListEntry const& e : list) order += str(e.getName()) + " ";
  EXPECT_EQ("alpha mid north ", order);
}

// Asks for a catalog on a terminal session fed to std::cin, giving what was
// written to std::cout; both streams are put back however it ends.
std::string enterSession(std::string const& input, vHandle<ProjectCatalog>& catalog, ProjectType::PROJECT_TYPE type,
                         char const* host) {
  std::istringstream in(input);
  std::ostringstream out;
  std::streambuf* oldIn = std::cin.rdbuf(in.rdbuf());
  std::streambuf* oldOut = std::cout.rdbuf(out.rdbuf());
  std::shared_ptr<void> restore(nullptr, [&](void*) {
    std::cin.rdbuf(oldIn);
    std::cout.rdbuf(oldOut);
    std::cin.clear();
  });
  catalog = ProjectCatalogFactory::enter(type, "", host);
  return out.str();
}

TEST(ProjectCatalogFactory, EnterAsksForTypeServerAndHost) {
  DefaultProject guard;
  Recorder recorder;
  // The list offered is the database back end's servers, as registered with
  // Capi; with nothing registered there is no default server and no list.
  Capi::CapiZonServers previous = Capi::registerCapiZonServers({nullptr, nullptr});
  std::list<vString> none;
  Capi::getCapiZonAvailableServers(none);
  EXPECT_TRUE(none.empty());
  EXPECT_EQ("", str(Capi::getDefaultCapiZonServer()));
  Capi::registerCapiZonServers({[] { return vString("c3"); }, [](std::list<vString>& servers) {
                                  for (char const* centre : {"c1", "c2", "c3", "c4", "c5", "c6", "c7"})
                                    servers.push_back(centre);
                                }});
  EXPECT_EQ("c3", str(Capi::getDefaultCapiZonServer()));
  vHandle<ProjectCatalog> catalog;
  std::string output = enterSession("zon\n-l\ncentre2\nuthostZ\n", catalog, ProjectType::RONDO, "uthostY");
  EXPECT_EQ(ProjectType::ZONMESH, catalog->getProjectType());
  EXPECT_EQ("uthostZ", str(catalog->getHost()));
  EXPECT_EQ(
      "type of project Rondo, Kelp, Zon [Rondo]: "
      "KVS centre name [-l for list] []: "
      "             c1             c2             c3             c4             c5\n"
      "             c6             c7\n"
      "KVS centre name [-l for list] []: "
      "data host name [uthostY]: ",
      output);
  Capi::registerCapiZonServers(previous);

  // Without a type or host given, the default project's are offered.
  ProjectFactory::setDefaultProject(ProjectFactory::openProject(ProjectType::UNITTEST, "", "uthostX", "survey"));
  output = enterSession("kelp\n127.0.0.71\n127.0.0.72\n", catalog, ProjectType::NOTYPE, "");
  EXPECT_EQ(
      "type of project Rondo, Kelp, Zon [UnitTest]: "
      "server name []: "
      "data host name [uthostX]: ",
      output);
  // A Kelp client is made on its server, with the data host beside it.
  EXPECT_EQ("ClientProjectCatalog(127.0.0.71, 2, 127.0.0.72)", lastMade());
}

TEST(ProjectCatalogFactory, TheTypeChoosesTheClassAndItsArguments) {
  Recorder recorder;
  std::string here = str(vUtl::gethostname());

  // Types without a class of their own: a client on the host, without the server.
  ProjectCatalogFactory::create("127.0.0.61", ProjectType::NOTYPE, "srv");
  EXPECT_EQ("ClientProjectCatalog(127.0.0.61, 0, )", lastMade());

  // Kelp: a client on the server, with the data host beside it; without a server, this host serves.
  vHandle<ProjectCatalog> kelp = ProjectCatalogFactory::create("127.0.0.62", ProjectType::KELP, "127.0.0.63");
  EXPECT_EQ("ClientProjectCatalog(127.0.0.63, 2, 127.0.0.62)", lastMade());
  ProjectCatalogFactory::create("127.0.0.62", ProjectType::KELP, "");
  EXPECT_EQ("ClientProjectCatalog(" + here + ", 2, 127.0.0.62)", lastMade());

  // Zonmesh: the database catalog, found again by server and host.
  vHandle<ProjectCatalog> zon = ProjectCatalogFactory::create("127.0.0.64", ProjectType::ZONMESH, "centre");
  EXPECT_EQ("ZonProjectCatalog(127.0.0.64, 8, centre)", lastMade());
  EXPECT_NE(zon.get(), ProjectCatalogFactory::create("127.0.0.64", ProjectType::ZONMESH, "centre2").get());
  // The in-process catalog: the default server.
  CapiMaker::projectCatalog("127.0.0.65");
  EXPECT_EQ("ZonProjectCatalog(127.0.0.65, 8, )", lastMade());

  // Unit-test catalogs need no maker.
  vHandle<ProjectCatalog> ut = ProjectCatalogFactory::create("127.0.0.66", ProjectType::UNITTEST, "");
  EXPECT_NE(nullptr, dynamic_cast<UTProjectCatalog*>(ut.get()));

  // Projects too take their class from the catalog's type.
  ProjectFactory::create(kelp);
  EXPECT_EQ("ClientProject(127.0.0.62, 2, 127.0.0.63)", lastMade());
  CapiMaker::project(zon);
  EXPECT_EQ("ZonProject(127.0.0.64, 8, centre)", lastMade());
  madeLog.clear();
  EXPECT_NE(nullptr, dynamic_cast<UTProject*>(ProjectFactory::create(ut).get()));
  EXPECT_EQ("nothing", lastMade());
}

TEST(ProjectFactory, FailedHostsAndOpensAreNotCachedButTheirCatalogIs) {
  Recorder recorder;
  unsigned int cached = ProjectCatalogFactory::getCacheSize();
  expectFatal([] { ProjectCatalogFactory::create("no-such-host.invalid", ProjectType::KELP, "127.0.0.67"); },
              "vUtl::getIPAddress",
              "Unable to get host no-such-host.invalid's IP Address. Check host spelling, watch out for l instead "
              "of 1 in host name.");
  EXPECT_EQ(cached, ProjectCatalogFactory::getCacheSize());
  EXPECT_EQ("nothing", lastMade());

  // The database and unit-test catalogs do not resolve their host.
  ProjectCatalogFactory::create("no-such-host.invalid", ProjectType::ZONMESH, "centre");
  EXPECT_EQ("ZonProjectCatalog(no-such-host.invalid, 8, centre)", lastMade());
  EXPECT_EQ("no-such-host.invalid",
            str(ProjectCatalogFactory::create("no-such-host.invalid", ProjectType::UNITTEST, "")->getHost()));

  // Nor does a blank host.
  ProjectCatalogFactory::create("", ProjectType::RONDO, "srv");
  EXPECT_EQ("ClientProjectCatalog(, 1, )", lastMade());

  // A failed open is not cached, but its catalog is.
  madeLog.clear();
  DefaultProject guard;
  ProjectFactory::Maker saved = ProjectFactory::registerMaker("ClientProject", &makeAbsentProject);
  unsigned int projects = ProjectFactory::getCacheSize();
  unsigned int catalogs = ProjectCatalogFactory::getCacheSize();
  for (int attempt = 0; attempt < 2; ++attempt)
    expectFatal([] { ProjectFactory::openProject(ProjectType::RONDO, "srv", "127.0.0.70", "Survey"); },
                "AbsentProject::open", "No project survey here.");
  EXPECT_EQ(projects, ProjectFactory::getCacheSize());
  // The catalog made at the first attempt serves the second; the failed project is not the default.
  EXPECT_EQ(catalogs + 1, ProjectCatalogFactory::getCacheSize());
  EXPECT_EQ(1u, madeLog.size());
  EXPECT_FALSE(ProjectFactory::hasDefaultProject());

  // Deferred, it opens at no cost, is cached and the default; its first content call meets the failure.
  vHandle<Project> p = ProjectFactory::openProjectDeferred(ProjectType::RONDO, "srv", "127.0.0.70", "survey");
  EXPECT_TRUE(p->isOpen());
  EXPECT_EQ(projects + 1, ProjectFactory::getCacheSize());
  EXPECT_EQ(p.get(), ProjectFactory::getDefaultProject().get());
  EXPECT_EQ(p.get(), ProjectFactory::openProjectDeferred(FullProjectName(vString("rondo::127.0.0.70:survey"))).get());
  expectFatal([&] { p->getStoreList("", ""); }, "AbsentProject::open", "No project survey here.");
  EXPECT_FALSE(dynamic_cast<JITProjectDecorator*>(p.get())->isReallyOpen());
  ProjectFactory::registerMaker("ClientProject", saved);
}

TEST(JITProjectDecorator, ContentCallsOpenFirstAndPlaceCallsDoNot) {
  vHandle<Project> inner(
      new UTProject(vHandle<ProjectCatalog>(new UTProjectCatalog("uthostJ3", ProjectType::UNITTEST))));
  UTProject* ut = static_cast<UTProject*>(inner.get());
  JITProjectDecorator jit(inner);
  expectFatal([&] { jit.getAttributeSetDetails("x", 1); }, "JITProjectDecorator::makeSureIsOpen",
              "Cannot open the project since the open method has not been called so we don't know what to open!");
  // Where it is: passed on, never opening; closing what was never opened leaves the wrapped project alone.
  EXPECT_EQ("uthostJ3", str(jit.getProjectHost()));
  EXPECT_EQ("getProjectHost", str(ut->getLastCall()));
  jit.close();
  EXPECT_EQ("getProjectHost", str(ut->getLastCall()));

  // gift and rift are not passed on.
  jit.open("A");
  expectFatal([&] { jit.gift(1, "x", 1); }, "Project::gift", "Function not supported by this project!");
  EXPECT_FALSE(jit.isReallyOpen());

  // A new open forgets the connection, and the next content call opens the new name.
  jit.getStoreList("", "");
  EXPECT_EQ("getStoreList", str(ut->getLastCall()));
  EXPECT_EQ("a", str(inner->getName()));
  jit.open("b");
  EXPECT_FALSE(jit.isReallyOpen());
  jit.hasStore("x", 0);
  EXPECT_EQ("b", str(inner->getName()));
  jit.makeSureIsOpen();
  EXPECT_EQ("getName", str(ut->getLastCall()));
}

}  // namespace
