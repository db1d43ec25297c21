// The portal against a real test server process (testserver/) over real sockets.

#include "remote/COBPortal.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/vUtl.h"
#include "remote/CommChanAddress.h"
#include "remote/PortalTesting.h"
#include "remote/Socket.h"

using namespace remote_testing;

namespace {

class COBPortalTest : public RemoteTest {
 protected:
  // A portal on this host that starts the test server.
  vHandle<COBPortal> startPortal() {
    vString const command(serverCommand(m_dir).c_str());
    return vHandle<COBPortal>(new COBPortal(nullptr, &command));
  }
  bool logHas(std::string const& line) { return waitForLine(m_dir, line); }

  TempDir m_dir;
};

// Pipes a started server holds above the standard three that this process
// does not: none, since the portal's watch on it is no descriptor of its own.
std::set<std::string> pipesOnlyIn(int pid) {
  auto pipesOf = [](std::string const& process) {
    std::set<std::string> pipes;
    for (int fd = 3; fd < 1024; ++fd) {
      char target[64];
      ssize_t const n = ::readlink(("/proc/" + process + "/fd/" + std::to_string(fd)).c_str(), target, sizeof target);
      if (n > 5 && std::string(target, 5) == "pipe:") pipes.insert(std::string(target, static_cast<size_t>(n)));
    }
    return pipes;
  };
  std::set<std::string> only = pipesOf(std::to_string(pid));
  for (std::string const& p : pipesOf("self")) only.erase(p);
  return only;
}

TEST_F(COBPortalTest, StartsTheServerAndCarriesMessagesToEachObject) {
  testing::internal::CaptureStdout();
  vHandle<COBPortal> portal = startPortal();
  std::string const printed = testing::internal::GetCapturedStdout();
  CommChanAddress const address = portal->getAddress();
  ASSERT_FALSE(address.isRemote());
  EXPECT_EQ("Executing \"" + testServerPath() + " Address:" + address.getFilename().c_str() + " --log " +
                m_dir.file("server.log") + " --crash-file " + m_dir.file("crashed") + "\" on \n",
            printed);

  {
    TestCOB catalog("ProjectCatalog", nullptr);
    portal->getChannel()->setMiscTimeout(60.0f);
    catalog.setPortal(portal);
    portal->getChannel()->setMiscTimeout(0.0f);
    EXPECT_EQ(1, catalog.getID());
    EXPECT_EQ("COB::setPortal: COB Instance 'ProjectCatalog' was assigned a COBPortal during construction.",
              fatalText([&] { catalog.setPortal(portal); }));
    TestCOB project("Project", &catalog);
    {
      TestCOB set("AttributeSet", &project);
      EXPECT_EQ(CommChan::OK, project.setState(5));
      EXPECT_EQ(3, set.describe().twins);
      EXPECT_EQ(5, project.describe().state);
      EXPECT_EQ(3, portal->getNObjects());
    }
    EXPECT_EQ(2, portal->getNObjects());
    EXPECT_EQ("Project", project.describe().type);
  }
  EXPECT_EQ(0, portal->getNObjects());
  portal = vHandle<COBPortal>(nullptr);
  ASSERT_TRUE(logHas("end"));
  EXPECT_EQ((std::vector<std::string>{"start", "create 1 ProjectCatalog 0", "create 2 Project 1",
                                      "create 3 AttributeSet 2", "message 2 code 10", "state 2 5",
                                      "message 3 code 11", "message 2 code 11", "destroy 3", "message 2 code 11",
                                      "destroy 2", "destroy 1", "end"}),
            serverLines(m_dir));
  EXPECT_TRUE(errors().empty());
}

// With no command nothing is started: an outside process connects to the
// address. A host other than this one is reached over TCP.
TEST_F(COBPortalTest, PortalForAnotherHostListensOnTcpForAnOutsideServer) {
  ::setenv("COBPORTAL", "abc", 1);
  vString const host("127.0.0.2");
  vHandle<COBPortal> portal(new COBPortal(&host, nullptr));
  ::unsetenv("COBPORTAL");
  EXPECT_EQ(
      (std::vector<std::string>{"COBPortal::COBortal: COBPortal environment variable should be an integer not abc."}),
      errors());
  CommChanAddress const address = portal->getAddress();
  std::string const text = address.getAddress().c_str();
  std::string const head = "Address:" + std::to_string(address.getPort()) + ":" + address.getIPAddress().c_str() + ":";
  EXPECT_EQ(head + vUtl::gethostname().c_str(), text);

  std::string const command = testServerPath() + " " + text + " --log " + m_dir.file("server.log");
  vUtl::system(command.c_str(), nullptr, vUtl::SystemBackground);
  TestCOB catalog("ProjectCatalog", nullptr);
  portal->getChannel()->setMiscTimeout(60.0f);
  catalog.setPortal(portal);
  TestCOB project("Project", &catalog);
  EXPECT_EQ(2, catalog.describe().twins);

  // A large caller array goes out and a large array comes back.
  std::vector<float> values(2 * 1000 * 1000);
  double sum = 0.0;
  for (size_t i = 0; i < values.size(); ++i) {
    values[i] = static_cast<float>(i % 1000) * 0.125f;
    sum += values[i];
  }
  Packer p(100);
  p.pack(static_cast<int>(TestServer::SumFloats));
  p.packAddressOf(values.data(), static_cast<unsigned>(values.size()));
  ASSERT_EQ(CommChan::OK, project.sendAndReceive(p));
  int code = 0;
  double got = 0.0;
  unsigned int n = 0;
  p.unpack(code);
  p.unpack(got);
  p.unpack(n);
  EXPECT_EQ(sum, got);
  EXPECT_EQ(values.size(), n);

  p.pack(static_cast<int>(TestServer::MakeFloats));
  p.pack(1000000u);
  ASSERT_EQ(CommChan::OK, project.sendAndReceive(p));
  p.unpack(code);
  ASSERT_EQ(1000000u, p.getNElements());
  std::vector<float> made(1000000), want(1000000);
  p.unpack(made.data());
  for (unsigned i = 0; i < want.size(); ++i) want[i] = 0.5f * static_cast<float>(i);
  EXPECT_TRUE(want == made);
}

// Each of these leaves the session out of step, so each has its own.
TEST_F(COBPortalTest, ServerMessagesThatEndTheCall) {
  std::pair<int, std::string> const cases[] = {
      {TestServer::FailFirst, "COBPortal::myMessage: Server said:- cannot do that"},
      {TestServer::SevereFirst, "COBPortal::myMessage: Server said:-o giving up"},
      {TestServer::OddSeverity, "COBPortal::myMessage: Unexpected exception code 7 from the server."},
      {TestServer::OddPortalCode, "COBPortal::myMessage: Unexpected message code 42 from the server."},
      {TestServer::WrongTag, "COBPortal::sendAndReceive: Received message for PortalID 1001, expected one for 1."},
      {TestServer::BadMagic, "Packer::beginReceive: Bad message received. Magic was 1515870810 expected 40506070."},
  };
  for (auto const& c : cases) {
    vHandle<COBPortal> portal = startPortal();
    TestCOB catalog("ProjectCatalog", portal);
    EXPECT_EQ(c.second, fatalText([&] { catalog.call(c.first); })) << c.first;
  }
}

// The first server dies on a request: a new one is started, every object
// is made again in it, parents first with their old IDs, brought back to
// its state, and the request goes again. Then reports of the server, and a
// server gone between two calls.
TEST_F(COBPortalTest, LostServerIsStartedAgainAndTheObjectsRebuilt) {
  vHandle<COBPortal> portal = startPortal();
  TestCOB catalog("ProjectCatalog", portal);
  TestCOB project("Project", &catalog);
  TestCOB set("AttributeSet", &project);
  ASSERT_EQ(CommChan::OK, project.setState(7));
  ASSERT_EQ(CommChan::OK, set.setState(9));
  int const firstPid = catalog.describe().pid;
  EXPECT_EQ(std::set<std::string>(), pipesOnlyIn(firstPid));

  EXPECT_EQ(CommChan::OK, set.call(TestServer::CrashOnce));
  TestCOB::Description const d = set.describe();
  EXPECT_NE(firstPid, d.pid);
  EXPECT_EQ(std::set<std::string>(), pipesOnlyIn(d.pid));
  EXPECT_EQ(3, d.twins);
  EXPECT_EQ(9, d.state);
  EXPECT_EQ(7, project.describe().state);
  EXPECT_EQ(1, set.reinitialized);

  TestCOB later("AttributeSet", &project);  // the ID counter goes on
  later.describe();

  std::vector<std::string> second;
  for (auto const& entry : serverLog(m_dir))
    if (entry.first == d.pid) second.push_back(entry.second);
  EXPECT_EQ((std::vector<std::string>{"start", "create 1 ProjectCatalog 0", "message 1 code 10", "state 1 0",
                                      "create 2 Project 1", "message 2 code 10", "state 2 7",
                                      "create 3 AttributeSet 2", "message 3 code 10", "state 3 9",
                                      "message 3 code 30", "message 3 code 11", "message 2 code 11",
                                      "create 4 AttributeSet 2", "message 4 code 11"}),
            second);

  // Reports of the server come before its reply.
  EXPECT_EQ(CommChan::OK, catalog.call(TestServer::InfoFirst));
  EXPECT_EQ(CommChan::OK, catalog.call(TestServer::ErrorFirst));
  portal->dropID(99);  // unknown: reported and ignored
  EXPECT_EQ((std::vector<std::string>{"COBPortal::myMessage: Server said:-o something is odd",
                                      "COBPortal::dropID: PortalID 99 was not found, ignored."}),
            errors());
  // A server that goes between two calls is noticed at the next send.
  Packer die(20);
  die.pack(static_cast<int>(TestServer::CrashAlways));
  ASSERT_EQ(CommChan::OK, catalog.send(die));
  // The channel turns readable (at its end) once the server is gone.
  ASSERT_TRUE(portal->getChannel()->waitOn(20.0f, CommChan::READ));
  TestCOB third("Project", &catalog);
  EXPECT_NE(d.pid, third.describe().pid);
  EXPECT_EQ((std::vector<std::string>{
                "COBPortal::sendAndReceive:  myReceive returned error CommChan::CLOSED",
                "COBPortal::sendAndReceive: The connection to the dataserver on  was lost.\n"
                "Will attempt to re-connect.",
                "COBPortal::myMessage: Server said:-o just so you know",
                "COBPortal::send: The connection to the dataserver on  was lost.\nWill attempt to re-connect."}),
            infos());
}

// Three failed attempts return the status rather than raise.
TEST_F(COBPortalTest, ServerThatKeepsDyingEndsInTheStatus) {
  vHandle<COBPortal> portal = startPortal();
  TestCOB catalog("ProjectCatalog", portal);
  EXPECT_EQ(CommChan::CLOSED, catalog.call(TestServer::CrashAlways));
  std::set<int> pids;
  for (auto const& entry : serverLog(m_dir)) pids.insert(entry.first);
  EXPECT_EQ(3u, pids.size());
  EXPECT_EQ(3, static_cast<int>(std::count(infos().begin(), infos().end(),
                                           "COBPortal::sendAndReceive:  myReceive returned error CommChan::CLOSED")));

  // A forged length from the server is a lost connection too.
  EXPECT_EQ(CommChan::CLOSED, catalog.call(TestServer::ForgedLength));
  EXPECT_TRUE(logHas("forged"));
}

// A server that never connects back is waited for no longer than the
// portal's time, at the start as after a reconnection: the call ends in
// the TIMEOUT status instead of hanging. One that ends without connecting,
// at any point of the wait, is told at once.
TEST_F(COBPortalTest, ServerThatNeverConnectsBackIsATimeoutNotAHang) {
  auto startedBy = [](char const* command) {
    vString const line = vString(command) + COBPortal::addressToken;
    testing::internal::CaptureStdout();
    std::string const text = fatalText([&] { COBPortal portal(nullptr, &line); });
    testing::internal::GetCapturedStdout();
    return text.substr(0, 87);
  };
  EXPECT_EQ("COBPortal::connect: The data server ended before it connected back: \"/bin/true Address:",
            startedBy("/bin/true "));

  vString const leaves = vString("sleep 5 # ") + COBPortal::addressToken;
  vHandle<COBPortal> portal = startPortal();
  TestCOB catalog("ProjectCatalog", portal);
  portal->setAcceptTimeout(0.2f);
  portal->setDataserverCommandLine(leaves);
  testing::internal::CaptureStdout();
  EXPECT_EQ(CommChan::TIMEOUT, catalog.call(TestServer::CrashAlways));
  std::string const said = testing::internal::GetCapturedStdout();
  std::istringstream lines(said);
  int started = 0;
  for (std::string line; std::getline(lines, line);) started += line.rfind("Executing \"sleep 5 # Address:", 0) == 0;
  EXPECT_EQ(2, started) << said;

  // One that ends well into the wait is told when it ends.
  EXPECT_EQ("COBPortal::connect: The data server ended before it connected back: \"sleep 3 # Address:",
            startedBy("sleep 3 # "));
}

// The portal never sends a server to an address that it does not hold:
// with every name it could take already there, it starts none.
TEST_F(COBPortalTest, NoServerIsStartedOnANameThePortalDidNotMake) {
  ScopedEnv tmp("TMPDIR", m_dir.path().c_str());
  std::string const dir = m_dir.file("rondo-" + std::to_string(::geteuid()));
  ASSERT_EQ(0, ::mkdir(dir.c_str(), 0700));
  std::string const stem = dir + "/Socket_" + std::to_string(::getpid()) + ".";
  for (int i = 0; i < 100; ++i) std::ofstream(stem + std::to_string(Socket::sequence + i)) << "stranger";
  std::string const last = stem + std::to_string(Socket::sequence + 99);
  testing::internal::CaptureStdout();
  std::string const text = fatalText([&] { startPortal(); });
  std::string const printed = testing::internal::GetCapturedStdout();
  EXPECT_EQ("COBPortal::connect: Could not listen on Address:" + last +
                " (CommChan::INUSE): no data server is started.",
            text);
  EXPECT_EQ(std::string::npos, printed.find("Executing")) << printed;
}

// The server's connection can be taken before the first message; a portal
// that was never used says no goodbye.
TEST_F(COBPortalTest, ExplicitAcceptAndTheEndOfAnUnusedSession) {
  {
    vHandle<COBPortal> portal(new COBPortal(nullptr, nullptr));
    std::string const command = testServerPath() + " " + portal->getAddress().getAddress().c_str() + " --log " +
                                m_dir.file("server.log");
    vUtl::system(command.c_str(), nullptr, vUtl::SystemBackground);
    portal->getChannel()->setMiscTimeout(60.0f);
    ASSERT_EQ(CommChan::OK, portal->accept());
    EXPECT_TRUE(portal->isInUse());
    {
      TestCOB catalog("ProjectCatalog", portal);
      catalog.describe();
    }
    // Listening afresh starts a session that has not been used yet.
    portal->connect();
    EXPECT_FALSE(portal->isInUse());
    ASSERT_TRUE(logHas("lost CommChan::CLOSED"));
  }
  EXPECT_EQ((std::vector<std::string>{"start", "create 1 ProjectCatalog 0", "message 1 code 11", "destroy 1",
                                      "lost CommChan::CLOSED"}),
            serverLines(m_dir));
}

// The remote shell is asked before a server on another host is started.
TEST_F(COBPortalTest, AnotherHostWhoseRemoteShellDoesNotAnswer) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        ::setenv("SP_CAPI_RSHTIMEOUT", "3", 1);
        vString const host("127.0.0.2");
        vString const command("DataServer Rondo <$COBADDRESS$>");
        std::string const text = fatalText([&] { COBPortal portal(&host, &command); });
        std::exit(text == "COBPortal::connect: The remote shell port on 127.0.0.2 did not respond after 3 seconds.   "
                          "It may be that the machine is down or no longer exists.   Please investigate."
                      ? 0
                      : 1);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
