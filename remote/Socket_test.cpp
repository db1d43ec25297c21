#include "remote/Socket.h"

#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "remote/CommChanMaker.h"
#include "remote/RemoteTesting.h"

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "expected bytes are little-endian");

using namespace remote_testing;

namespace {

class SocketTest : public RemoteTest {};

// The permission bits of a path, or -1.
int modeOf(std::string const& path) {
  struct stat s;
  return ::lstat(path.c_str(), &s) == 0 ? static_cast<int>(s.st_mode & 07777) : -1;
}

// Where this user's generated local channels go under a base directory.
std::string privateDir(std::string const& base) { return base + "/rondo-" + std::to_string(::geteuid()); }

// Both ends of a TCP connection write the magic first; typed data follow
// in the writer's order, and the accepting end has read the peer's magic.
TEST_F(SocketTest, TcpConnectionStartsWithTheMagicBothWays) {
  int port = 0;
  vHandle<CommChan> server = CommChanMaker::remote(port);
  ASSERT_GT(port, 0);
  Bytes seen;
  std::thread peer([&] {
    int const fd = rawConnectTcp(port);
    seen = readBytes(fd, 4);
    writeAll(fd, nativeMagic());
    int32_t const values[2] = {0x01020304, -7};
    writeAll(fd, values, sizeof values);
    Bytes more = readBytes(fd, 11);
    seen.insert(seen.end(), more.begin(), more.end());
    ::close(fd);
  });
  std::vector<int> values(2);
  EXPECT_EQ(CommChan::OK, server->receiveInt32(values.data(), 2));
  EXPECT_FALSE(server->getSwap());
  EXPECT_EQ((std::vector<int>{0x01020304, -7}), values);
  short const back[4] = {1, 2, -1, 0x0102};
  EXPECT_EQ(CommChan::OK, server->sendInt16(back, 4));
  // Bools go as 0 or 1, whatever byte a bool holds.
  bool flags[3] = {false, false, true};
  std::memcpy(&flags[0], "\x02", 1);
  EXPECT_EQ(CommChan::OK, server->sendBool(flags, 3));
  peer.join();
  EXPECT_EQ((Bytes{0xCE, 0xFA, 0xAD, 0xDE, 1, 0, 2, 0, 0xFF, 0xFF, 2, 1, 1, 0, 1}), seen);
}

// A wrong magic is raised by the accept. A peer of the other byte order:
// every typed receive is turned around, raw bytes are not, and bools read
// true only from the byte 1.
TEST_F(SocketTest, WrongMagicIsRaisedAndPeerOfTheOtherOrderIsSwapped) {
  int port = 0;
  vHandle<CommChan> server = CommChanMaker::remote(port);
  std::thread peer([&] {
    int const wrong = rawConnectTcp(port);
    readBytes(wrong, 4);
    writeAll(wrong, Bytes{0x78, 0x56, 0x34, 0x12});
    ::close(wrong);
    int const fd = rawConnectTcp(port);
    readBytes(fd, 4);
    writeAll(fd, foreignMagic());
    Bytes wire = {0x01, 0x02, 0x03, 0x04,                          // int32 0x01020304
                  0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x00,  // int64 256
                  0x12, 0x34,                                      // uint16 0x1234
                  0x01, 0x02, 0x03, 0x04,                          // raw bytes
                  0x01, 0x00, 0x02, 0xFF};                         // bools
    writeAll(fd, wire);
    readBytes(fd, 1);
    ::close(fd);
  });
  int i32 = 0;
  long long i64 = 0;
  unsigned short u16 = 0;
  char raw[4];
  bool flags[4];
  EXPECT_EQ("Socket::myReadMagic: Did not receive internal MAGIC number. Got 305419896 (0x12345678) instead. "
            "Read 4 bytes.\n",
            fatalText([&] { server->accept(); }));
  ASSERT_EQ(CommChan::OK, server->accept());
  ASSERT_EQ(CommChan::OK, server->receiveInt32(&i32, 1));
  EXPECT_TRUE(server->getSwap());
  ASSERT_EQ(CommChan::OK, server->receiveInt64(&i64, 1));
  ASSERT_EQ(CommChan::OK, server->receiveUInt16(&u16, 1));
  ASSERT_EQ(CommChan::OK, server->receiveChar8(raw, 4));
  ASSERT_EQ(CommChan::OK, server->receiveBool(flags, 4));
  EXPECT_EQ(0x01020304, i32);
  EXPECT_EQ(256, i64);
  EXPECT_EQ(0x1234, u16);
  EXPECT_EQ(0, std::memcmp(raw, "\x01\x02\x03\x04", 4));
  EXPECT_EQ((std::vector<bool>{true, false, false, false}),
            (std::vector<bool>{flags[0], flags[1], flags[2], flags[3]}));
  char const done = 1;
  server->sendChar8(&done, 1);
  peer.join();
}

TEST_F(SocketTest, ConnectsThatFail) {
  int const port = closedPort();
  for (float wait : {0.0f, CommChan::FOREVER}) {
    Socket client;
    EXPECT_EQ(CommChan::NOTFOUND, client.connectRemote("localhost", port, wait)) << wait;
  }

  TempDir dir;
  Socket local;
  EXPECT_EQ("Socket::connectRemote: Error 2 from connect",
            fatalText([&] { local.connectLocal(dir.file("missing").c_str()); }));
  EXPECT_EQ("Socket::connectLocal: A name must be given for the local connection",
            fatalText([&] { local.connectLocal(""); }));
  EXPECT_EQ(0u, fatalText([&] { local.connectRemote("no-such-host.invalid", 80, 0.0f); })
                    .find("Socket::connectRemote: gethostbyname error: "));

  // A full listener's queue lets an attempt hang: one with a time-out gives up.
  int full = 0;
  int const listener = rawListenTcp(full, 0);
  ASSERT_GE(listener, 0);
  sockaddr_in a{};
  a.sin_family = AF_INET;
  a.sin_port = htons(static_cast<uint16_t>(full));
  a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  std::vector<int> queued;
  for (int i = 0; i < 4; ++i) {
    int const fd = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
    ::connect(fd, reinterpret_cast<sockaddr*>(&a), sizeof a);
    queued.push_back(fd);
  }
  ::usleep(200 * 1000);
  Socket client;
  EXPECT_EQ(CommChan::TIMEOUT, local.connectRemote("127.0.0.1", full, 0.5f));
  for (int fd : queued) ::close(fd);
  ::close(listener);
}

// A local stranger is kept out by the modes of the path: the private
// directory is made with 0700 and the socket gets 0600 before it listens,
// whatever the umask. Names that someone else may have put in the way are
// never taken for the channel's own: a link in place of the private
// directory, a file at a listener's or a connector's path.
TEST_F(SocketTest, LocalChannelsAreOnlyTheirOwners) {
  TempDir dir;
  ScopedEnv tmp("TMPDIR", dir.path().c_str());
  mode_t const umask = ::umask(0);
  vHandle<CommChan> generated = CommChanMaker::local(nullptr);
  vHandle<CommChan> given = CommChanMaker::local(dir.file("given").c_str());
  ::umask(umask);
  std::string const path = localPath(generated);
  EXPECT_EQ(0u, path.find(privateDir(dir.path()) + "/Socket_" + std::to_string(::getpid()) + ".")) << path;
  EXPECT_EQ(0700, modeOf(privateDir(dir.path())));
  EXPECT_EQ(0600, modeOf(path));
  EXPECT_EQ(0600, modeOf(dir.file("given")));
  // The generated path goes with the channel.
  generated->close();
  EXPECT_EQ(-1, modeOf(path));

  std::string const priv = privateDir(dir.path());
  ASSERT_EQ(0, ::rmdir(priv.c_str()));
  std::string const notPrivate =
      "Socket::createLocal: " + priv + " is not a private directory of this user: no channel is made in it.";
  ASSERT_EQ(0, ::mkdir(dir.file("elsewhere").c_str(), 0700));
  ASSERT_EQ(0, ::symlink(dir.file("elsewhere").c_str(), priv.c_str()));
  Socket linked;
  EXPECT_EQ(notPrivate, fatalText([&] { linked.createLocal(nullptr); }));
  EXPECT_EQ(0, ::rmdir(dir.file("elsewhere").c_str())) << "something was made in the link's target";

  // A listener on a taken path listens nowhere and leaves the path alone.
  std::string const planted = dir.file("planted");
  std::ofstream(planted) << "stranger";
  Socket listener;
  EXPECT_EQ(CommChan::INUSE, listener.createLocal(planted.c_str()));
  EXPECT_EQ(CommChan::CLOSED, listener.accept());
  listener.close();
  EXPECT_NE(-1, modeOf(planted));

  Socket client;
  EXPECT_EQ("Socket::connectLocal: " + planted + " is not a channel of this user: it is not connected to.",
            fatalText([&] { client.connectLocal(planted.c_str()); }));
}

// Runs f in a child process as the user "nobody"; its exit code is f's.
pid_t asNobody(std::function<int()> const& f) {
  pid_t const child = ::fork();
  if (child == 0) ::_exit(::setuid(65534) == 0 ? f() : 99);
  return child;
}

int exitCode(pid_t child) {
  int status = -1;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// A process of another user that gets past the modes, by a listener of its
// own at a name or through a socket whose modes were opened, is still
// refused by its user id, from either end.
TEST_F(SocketTest, ProcessOfAnotherUserIsRefusedFromEitherEnd) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can act as a second user";
  TempDir dir;
  ASSERT_EQ(0, ::chmod(dir.path().c_str(), 0777));
  std::string const theirs = dir.file("theirs");
  int ready[2];
  ASSERT_EQ(0, ::pipe(ready));
  pid_t const listener = asNobody([&] {
    Socket own;
    own.createLocal(theirs.c_str());
    if (::write(ready[1], "r", 1) != 1) return 1;
    ::sleep(100);
    return 0;
  });
  char byte = 0;
  ASSERT_EQ(1, ::read(ready[0], &byte, 1));
  Socket client;
  EXPECT_EQ("Socket::connectLocal: " + theirs + " is not a channel of this user: it is not connected to.",
            fatalText([&] { client.connectLocal(theirs.c_str()); }));
  ASSERT_EQ(0, ::chown(theirs.c_str(), ::geteuid(), ::getegid()));
  EXPECT_EQ("Socket::connectLocal: " + theirs +
                " is served by user 65534, not by this user: the connection is refused.",
            fatalText([&] { client.connectLocal(theirs.c_str()); }));
  ::kill(listener, SIGKILL);
  exitCode(listener);

  std::string const ours = dir.file("ours");
  vHandle<CommChan> server = CommChanMaker::local(ours.c_str());
  ASSERT_EQ(0, ::chmod(ours.c_str(), 0777));
  // Turned away, the stranger's connection ends without a byte.
  pid_t const knocker = asNobody([&] {
    int const fd = rawConnectLocal(ours);
    return fd >= 0 && ::recv(fd, &byte, 1, 0) == 0 ? 0 : 1;
  });
  ASSERT_TRUE(server->waitOn(60.0f, CommChan::READ));
  server->setMiscTimeout(0.5f);
  EXPECT_EQ(CommChan::TIMEOUT, server->accept());
  EXPECT_EQ(0, exitCode(knocker));
  EXPECT_NE(infos().end(), std::find(infos().begin(), infos().end(),
                                     "Socket::accept: Refused a connection to " + ours + " from user 65534."));
}

// An accept waits no longer than the misc time-out. One listening channel
// serves one peer: a further accept drops the first.
TEST_F(SocketTest, SecondAcceptDropsTheEarlierPeer) {
  int port = 0;
  vHandle<CommChan> server = CommChanMaker::remote(port);
  EXPECT_GE(server->getSize(), Socket::getDefaultBufferSize());
  EXPECT_STREQ("CommChan::Unknown status", CommChan::status(8));
  server->setMiscTimeout(0.2f);
  EXPECT_EQ(CommChan::TIMEOUT, server->accept());
  vHandle<CommChan> first = CommChanMaker::connect("localhost", port);
  ASSERT_EQ(CommChan::OK, server->accept());
  vHandle<CommChan> second = CommChanMaker::connect("localhost", port);
  ASSERT_EQ(CommChan::OK, server->accept());
  char byte = 0;
  EXPECT_EQ(CommChan::CLOSED, first->receiveChar8(&byte, 1));
  char const z = 'z';
  ASSERT_EQ(CommChan::OK, server->sendChar8(&z, 1));
  ASSERT_EQ(CommChan::OK, second->receiveChar8(&byte, 1));
  EXPECT_EQ('z', byte);
}

// The port range is read once per process: each case runs in a child.
TEST_F(SocketTest, PortRangeProperty) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  int const free = closedPort();
  std::string const range = std::to_string(free) + " " + std::to_string(free);
  EXPECT_EXIT(
      {
        ::setenv("SP_COMMCHAN_USE_PORT_RANGE", range.c_str(), 1);
        int port = 0;
        vHandle<CommChan> c = CommChanMaker::remote(port);
        int taken = 0;
        std::string const text = fatalText([&] { CommChanMaker::remote(taken); });
        bool const ok = port == free &&
                        text == "Socket::myBind: No free ports available in the range " + std::to_string(free) +
                                    " to " + std::to_string(free) + "!";
        std::exit(ok ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
  EXPECT_EXIT(
      {
        ::setenv("SP_COMMCHAN_USE_PORT_RANGE", "6000 5000", 1);
        int port = 0;
        std::string const text = fatalText([&] { CommChanMaker::remote(port); });
        std::exit(text == "Socket::myBind: Invalid port range specified (6000:5000)!" ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
