// The data server as a process, driven through a portal by a bare remote
// object: requests, arguments and settings it cannot take.

#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
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

// A remote object that sends what a test gives it.
class BareCOB : public COB {
 public:
  BareCOB(char const* type, COB* parent) : COB(vString(type), parent) {}
  void doCommsReinitialize() override {}

  // A request of the code and a string; the reply's code.
  int call(int code, char const* text = nullptr) {
    Packer p(100);
    p.pack(static_cast<int32_t>(code));
    if (text != nullptr) p.pack(vString(text));
    if (sendAndReceive(p) != CommChan::OK) return -1;
    int32_t reply = 0;
    p.unpack(reply);
    p.discard();
    return reply;
  }
  // The session start of a catalog, for a host.
  int start(char const* host) {
    Packer p(200);
    p.pack(static_cast<int32_t>(ClientCode::SessionStart));
    p.pack(vString(host));
    p.pack(0LL);
    p.pack(vString(""));
    p.pack(0LL);
    p.pack(0LL);
    p.packBool(false);
    p.packBool(false);
    if (sendAndReceive(p) != CommChan::OK) return -1;
    int32_t reply = 0;
    p.unpack(reply);
    p.discard();
    return reply;
  }
};

class DataServerTest : public RemoteTest {
 protected:
  DataServerTest()
      : m_home("HOME", m_dir.file("").c_str()),
        m_backend("SP_DATASERVER_BACKEND", "UnitTest"),
        m_stores("RONDO_UNITTEST_STORES", "line12.3:seismic:2d") {}

  // A portal that starts the server with the arguments after the program.
  vHandle<COBPortal> start(std::string const& arguments) {
    vString const command((dataServerPath() + " " + arguments).c_str());
    vHandle<COBPortal> portal(new COBPortal(nullptr, &command));
    portal->getChannel()->setMiscTimeout(60.0f);
    return portal;
  }
  std::string rondo() const { return std::string("Rondo ") + COBPortal::addressToken + " -build 0"; }

  TempDir m_dir;

 private:
  ScopedEnv m_home;
  ScopedEnv m_backend;
  ScopedEnv m_stores;
};

std::string said(std::string const& text) { return "COBPortal::myMessage: Server said:-o " + text; }

TEST_F(DataServerTest, RequestsAndValuesItCannotServeAreReportedAndTheSessionGoesOn) {
  vHandle<COBPortal> portal = start(rondo() + " -v " + m_dir.file("rel"));
  BareCOB catalog("ProjectCatalog", nullptr);
  catalog.setPortal(portal);
  EXPECT_EQ(said("The session has not been started."), fatalText([&] { catalog.call(ClientCode::GetProjectList); }));
  EXPECT_EQ(ClientCode::SessionStart, catalog.start("somehost"));
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
  Packer open(100);
  open.pack(static_cast<int32_t>(ClientCode::Open));
  open.pack(vString("line12"));
  open.pack(static_cast<int32_t>(3));
  open.pack(vString(""));
  open.pack(vString(""));
  open.packBool(false);
  EXPECT_EQ(said("The AttributeSet with PortalID 5 has no Project above it."),
            fatalText([&] { stray.sendAndReceive(open); }));

  // Enumerations come only with their values.
  BareCOB made("AttributeSet", &project);
  Packer create(200);
  create.pack(static_cast<int32_t>(ClientCode::Create));
  for (char const* text : {"made", "seismic", "shot"}) create.pack(vString(text));
  create.pack(KeyList());
  create.packBool(false);
  ASSERT_EQ(CommChan::OK, made.sendAndReceive(create));
  create.discard();
  Packer add(200);
  add.pack(static_cast<int32_t>(ClientCode::AddAttribute));
  add.pack(Attribute("AMP", "Data", vINT32));
  ASSERT_EQ(CommChan::OK, made.sendAndReceive(add));
  add.discard();
  // A text and an int that is no value of the enumeration the request takes.
  auto ask = [&made](int code, char const* text, int32_t value) {
    Packer p(100);
    p.pack(static_cast<int32_t>(code));
    p.pack(vString(text));
    p.pack(value);
    made.sendAndReceive(p);
  };
  EXPECT_EQ(said("Unknown sort order 0."), fatalText([&] { ask(ClientCode::GetUnique, "AMP", 0); }));
  EXPECT_EQ(said("Unknown attribute match type 7."),
            fatalText([&] { ask(ClientCode::GetAttributeListMatching, "Data", 7); }));
  EXPECT_EQ(ClientCode::GetNInstances, made.call(ClientCode::GetNInstances));
  EXPECT_EQ(ClientCode::ProjectAck, project.call(ClientCode::ProjectClose));
  EXPECT_EQ(ClientCode::GetProjectList, catalog.call(ClientCode::GetProjectList));
}

TEST_F(DataServerTest, AFrameThatDoesNotReadEndsTheSession) {
  vHandle<COBPortal> portal = start(rondo());
  BareCOB catalog("ProjectCatalog", nullptr);
  catalog.setPortal(portal);
  ASSERT_EQ(ClientCode::SessionStart, catalog.start("h"));
  char const garbage[] = "this is no frame header";
  ASSERT_EQ(CommChan::OK, portal->getChannel()->sendChar8(garbage, sizeof garbage));
  // The server stops reading and goes: the connection closes.
  char byte = 0;
  EXPECT_NE(CommChan::OK, portal->getChannel()->receiveChar8(&byte, 1));
  std::ifstream log(m_dir.file("DataServer.Rondo"));
  std::string line;
  int lines = 0;
  while (std::getline(log, line))
    lines += line.find(" bad message from the client: Bad message received. Magic was 1936287860 expected "
                       "40506070.") != std::string::npos;
  EXPECT_EQ(1, lines);
}

TEST_F(DataServerTest, ArgumentsItCannotTakeFailEveryRequest) {
  struct Case {
    std::string arguments;
    std::string reason;
    char const* log;
  };
  std::string const address = COBPortal::addressToken;
  Case const cases[] = {
      {"Bogus " + address + " -build 0", "DataServer cannot serve projects of type 'Bogus'.", "DataServer.Bogus"},
      {"Rondo " + address + " -build x", "DataServer was given the build number 'x'.", "DataServer.Rondo"},
      {"Rondo " + address + " -build 0 -x", "DataServer does not take the argument '-x'.", "DataServer.Rondo"},
  };
  for (Case const& c : cases) {
    vHandle<COBPortal> portal = start(c.arguments);
    BareCOB catalog("ProjectCatalog", nullptr);
    catalog.setPortal(portal);
    EXPECT_EQ(said(c.reason), fatalText([&] { catalog.start("h"); })) << c.arguments;
    std::ifstream log(m_dir.file(c.log));
    EXPECT_TRUE(log.good()) << c.log;
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
  std::ifstream in(err);
  std::string line;
  std::getline(in, line);
  EXPECT_EQ(dataServerPath() + ": cannot connect to Address:" + m_dir.file("nobody") +
                ": Error 2 from connect (logged in " + m_dir.file("") + "/DataServer.Rondo)",
            line);
}

TEST_F(DataServerTest, BackEndSetting) {
  struct Case {
    char const* value;
    std::string reason;
  };
  std::string const client = "A data server does not start a data server: a catalog of type ";
  Case const cases[] = {
      {"Nonsense", "The DataServer BACKEND 'Nonsense' is not a project type."},
      {"2", client + "Kelp would be a client of one."},
      {"inmemory", client + "InMemory would be a client of one."},
      {nullptr, ""},
  };
  ScopedEnv root("SP_DATASERVER_ROOT", m_dir.file("").c_str());
  for (Case const& c : cases) {
    std::remove(m_dir.file("DataServer.Rondo").c_str());
    ScopedEnv backend("SP_DATASERVER_BACKEND", c.value);
    char const* shown = c.value != nullptr ? c.value : "(not set)";
    vHandle<COBPortal> portal = start(rondo());
    BareCOB catalog("ProjectCatalog", nullptr);
    catalog.setPortal(portal);
    if (c.reason.empty()) {
      EXPECT_EQ(ClientCode::SessionStart, catalog.start("h")) << shown;
      continue;
    }
    EXPECT_EQ(said(c.reason), fatalText([&] { catalog.start("h"); })) << shown;
    // Refused at start: one line in the log, and no server of its own.
    std::ifstream log(m_dir.file("DataServer.Rondo"));
    std::string line;
    int lines = 0;
    while (std::getline(log, line)) lines += line.find(" cannot serve: " + c.reason) != std::string::npos;
    EXPECT_EQ(1, lines) << shown;
    for (char const* type : {"Kelp", "InMemory"})
      EXPECT_FALSE(std::ifstream(m_dir.file(std::string("DataServer.") + type)).good()) << shown;
  }
}

TEST_F(DataServerTest, AMalformedScriptedStoreFailsTheProjectsOpen) {
  ScopedEnv stores("RONDO_UNITTEST_STORES", "ok.1 noversion");
  vHandle<COBPortal> portal = start(rondo());
  BareCOB catalog("ProjectCatalog", nullptr);
  catalog.setPortal(portal);
  ASSERT_EQ(ClientCode::SessionStart, catalog.start("h"));
  BareCOB project("Project", &catalog);
  EXPECT_EQ(said("RONDO_UNITTEST_STORES entry 'noversion' is not name.version[:class[:subclass]]."),
            fatalText([&] { project.call(ClientCode::ProjectOpen, "survey"); }));
}

}  // namespace
