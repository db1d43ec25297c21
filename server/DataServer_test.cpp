// The data server as a process, driven through a portal by a bare remote
// object: requests, arguments and settings it cannot take.

#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "attribute/Attribute.h"
#include "attribute/KeyList.h"
#include "foundation/Packer.h"
#include "remote/COB.h"
#include "remote/COBPortal.h"
#include "remote/ClientCodes.h"
#include "remote/ClientTesting.h"

using namespace remote_testing;

namespace {

// The session start of a catalog, for a host; the reply's code.
int startSession(BareCOB& catalog, char const* host) {
  return catalog.call(ClientCode::SessionStart, [host](Packer& p) {
    p.pack(vString(host));
    p.pack(0LL);
    p.pack(vString(""));
    p.pack(0LL);
    p.pack(0LL);
    p.packBool(false);
    p.packBool(false);
  });
}

class DataServerTest : public ClientTest {
 protected:
  // A portal that starts the server with the arguments after the program.
  vHandle<COBPortal> start(std::string const& arguments) {
    vString const command((dataServerPath() + " " + arguments).c_str());
    vHandle<COBPortal> portal(new COBPortal(nullptr, &command));
    portal->getChannel()->setMiscTimeout(60.0f);
    return portal;
  }
  std::string rondo() const { return std::string("Rondo ") + COBPortal::addressToken + " -build 0"; }
  // How many lines of a log in the server's home hold a text.
  int logLines(char const* log, std::string const& part) const {
    std::ifstream in(m_dir.file(log));
    int n = 0;
    for (std::string line; std::getline(in, line);) n += line.find(part) != std::string::npos;
    return n;
  }
};

TEST_F(DataServerTest, RequestsAndValuesItCannotServeAreReportedAndTheSessionGoesOn) {
  vHandle<COBPortal> portal = start(rondo() + " -v " + m_dir.file("rel"));
  BareCOB catalog("ProjectCatalog", portal);
  EXPECT_EQ(said("The session has not been started."), fatalText([&] { catalog.call(ClientCode::GetProjectList); }));
  EXPECT_EQ(ClientCode::SessionStart, startSession(catalog, "somehost"));
  EXPECT_EQ(said("Unknown message code 77 for a ProjectCatalog."), fatalText([&] { catalog.call(77); }));
  EXPECT_EQ(ClientCode::GetProjectList, catalog.call(ClientCode::GetProjectList));

  BareCOB project("Project", &catalog);
  EXPECT_EQ(said("The Project with PortalID 2 is not open."),
            fatalText([&] { project.call(ClientCode::GetStoreList, "seismic"); }));
  EXPECT_EQ(ClientCode::ProjectAck, project.call(ClientCode::ProjectOpen, "survey"));
  // A request short of its arguments fails in the reading of them.
  std::string const shortOne = fatalText([&] { project.call(ClientCode::GetStoreList, "seismic"); });
  EXPECT_EQ(0u, shortOne.find("COBPortal::myMessage: Server said:-o ")) << shortOne;
  EXPECT_EQ(said("Unknown message code 150 for a Project."), fatalText([&] { project.call(150); }));

  BareCOB set("AttributeSet", &project);
  EXPECT_EQ(said("The AttributeSet with PortalID 3 is not open."),
            fatalText([&] { set.call(ClientCode::GetNInstances); }));
  BareCOB widget("Widget", &catalog);
  EXPECT_EQ(said("PortalID 4 is a Widget, which this server does not serve."), fatalText([&] { widget.call(1); }));
  // A set under a catalog has no project above it.
  BareCOB stray("AttributeSet", &catalog);
  EXPECT_EQ(said("The AttributeSet with PortalID 5 has no Project above it."), fatalText([&] {
              stray.call(ClientCode::Open, [](Packer& p) {
                p.pack(vString("line12"));
                p.pack(static_cast<int32_t>(3));
                p.pack(vString(""));
                p.pack(vString(""));
                p.packBool(false);
              });
            }));

  // Enumerations come only with their values.
  BareCOB made("AttributeSet", &project);
  ASSERT_EQ(ClientCode::Create, made.call(ClientCode::Create, [](Packer& p) {
    for (char const* text : {"made", "seismic", "shot"}) p.pack(vString(text));
    p.pack(KeyList());
    p.packBool(false);
  }));
  ASSERT_EQ(ClientCode::AddAttribute,
            made.call(ClientCode::AddAttribute, [](Packer& p) { p.pack(Attribute("AMP", "Data", vINT32)); }));
  // A text and an int that is no value of the enumeration the request takes.
  auto ask = [&made](int code, char const* text, int32_t value) {
    made.call(code, [&](Packer& p) {
      p.pack(vString(text));
      p.pack(value);
    });
  };
  EXPECT_EQ(said("Unknown sort order 0."), fatalText([&] { ask(ClientCode::GetUnique, "AMP", 0); }));
  EXPECT_EQ(said("Unknown attribute match type 7."),
            fatalText([&] { ask(ClientCode::GetAttributeListMatching, "Data", 7); }));
  EXPECT_EQ(ClientCode::GetNInstances, made.call(ClientCode::GetNInstances));
  EXPECT_EQ(ClientCode::ProjectAck, project.call(ClientCode::ProjectClose));
  EXPECT_EQ(ClientCode::GetProjectList, catalog.call(ClientCode::GetProjectList));
}

// A scripted store that does not parse fails the project's open, and the
// session goes on until a frame that does not read ends it.
TEST_F(DataServerTest, AMalformedStoreFailsTheOpenAndAFrameThatDoesNotReadEndsTheSession) {
  ScopedEnv stores("RONDO_UNITTEST_STORES", "ok.1 noversion");
  vHandle<COBPortal> portal = start(rondo());
  BareCOB catalog("ProjectCatalog", portal);
  ASSERT_EQ(ClientCode::SessionStart, startSession(catalog, "h"));
  BareCOB project("Project", &catalog);
  EXPECT_EQ(said("RONDO_UNITTEST_STORES entry 'noversion' is not name.version[:class[:subclass[:file]]]."),
            fatalText([&] { project.call(ClientCode::ProjectOpen, "survey"); }));
  char const garbage[] = "this is no frame header";
  ASSERT_EQ(CommChan::OK, portal->getChannel()->sendChar8(garbage, sizeof garbage));
  char byte = 0;
  EXPECT_NE(CommChan::OK, portal->getChannel()->receiveChar8(&byte, 1));
  EXPECT_EQ(1, logLines("DataServer.Rondo", " bad message from the client: Bad message received. Magic was "
                                            "1936287860 expected 40506070."));
}

// Arguments or a back end it cannot take fail every request with the
// reason, told once in the log; no back end makes it a client of itself.
TEST_F(DataServerTest, ArgumentsAndBackEndsItCannotTake) {
  struct Case {
    std::string arguments;
    char const* backend;
    std::string reason;
    char const* log;
  };
  std::string const client = "A data server does not start a data server: a catalog of type ";
  Case const cases[] = {
      {"Bogus " + std::string(COBPortal::addressToken) + " -build 0", "UnitTest",
       "DataServer cannot serve projects of type 'Bogus'.", "DataServer.Bogus"},
      {"Rondo " + std::string(COBPortal::addressToken) + " -build x", "UnitTest",
       "DataServer was given the build number 'x'.", "DataServer.Rondo"},
      {rondo() + " -x", "UnitTest", "DataServer does not take the argument '-x'.", "DataServer.Rondo"},
      {rondo(), "Nonsense", "The DataServer BACKEND 'Nonsense' is not a project type.", "DataServer.Rondo"},
      {rondo(), "2", client + "Kelp would be a client of one.", "DataServer.Rondo"},
      {rondo(), "inmemory", client + "InMemory would be a client of one.", "DataServer.Rondo"},
      {rondo(), nullptr, "", "DataServer.Rondo"},
  };
  ScopedEnv root("SP_DATASERVER_ROOT", m_dir.file("").c_str());
  for (Case const& c : cases) {
    SCOPED_TRACE(c.arguments + " with " + (c.backend != nullptr ? c.backend : "(not set)"));
    std::remove(m_dir.file(c.log).c_str());
    ScopedEnv backend("SP_DATASERVER_BACKEND", c.backend);
    vHandle<COBPortal> portal = start(c.arguments);
    BareCOB catalog("ProjectCatalog", portal);
    if (c.reason.empty()) {
      EXPECT_EQ(ClientCode::SessionStart, startSession(catalog, "h"));
      continue;
    }
    EXPECT_EQ(said(c.reason), fatalText([&] { startSession(catalog, "h"); }));
    EXPECT_EQ(1, logLines(c.log, " cannot serve: " + c.reason));
    for (char const* type : {"Kelp", "InMemory"})
      EXPECT_FALSE(std::ifstream(m_dir.file(std::string("DataServer.") + type)).good()) << type;
  }
}

// Started by hand with an address no client listens on, the server says
// so on its standard error as well as in its log.
TEST_F(DataServerTest, AnAddressNobodyListensOnIsToldOnStandardError) {
  std::string const err = m_dir.file("err");
  std::string const command = dataServerPath() + " Rondo Address:" + m_dir.file("nobody") + " 2> " + err;
  int const raw = std::system(command.c_str());
  ASSERT_TRUE(WIFEXITED(raw));
  EXPECT_EQ(3, WEXITSTATUS(raw));
  std::string line;
  std::getline(std::ifstream(err), line);
  EXPECT_EQ(dataServerPath() + ": cannot connect to Address:" + m_dir.file("nobody") +
                ": Error 2 from connect (logged in " + m_dir.file("") + "/DataServer.Rondo)",
            line);
}

}  // namespace
