#include <gtest/gtest.h>

#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <thread>
#include <vector>

#include "database/kvs/Kvs.h"
#include "database/kvs/KvsMsg.h"
#include "database/kvs/KvsRef.h"
#include "database/kvs/KvsSocket.h"
#include "database/kvs/KvsTestPeer.h"

using namespace kvs;
namespace fs = std::filesystem;

namespace {

bool partFileIn(const std::string& dir) {
  std::error_code ec;
  for (auto it = fs::recursive_directory_iterator(dir, ec); it != fs::recursive_directory_iterator(); it.increment(ec))
    if (it->path().filename().string().rfind(".part", 0) == 0) return true;
  return false;
}

KvsObject floatTable(KvsObject session, const char* ident, std::vector<float>& x) {
  KvsObject ds = KvsOpen(session, KvsNmode, 2L, KvsNtype, "SEIS", KvsNident, ident, 0L);
  KvsObject t = KvsCreate(ds, KvsNname, "RCVS", 0L);
  KvsCreate(t, KvsNname, "X", KvsNdata, x.data(), 0L);
  EXPECT_EQ(KvsWrite(t, static_cast<long>(x.size())), static_cast<long>(x.size()));
  return ds;
}

// A peer that answers the library as `script` says, over one connection;
// KVSPORT names it.
struct FakeServer {
  int port = 0, listenFd;
  std::thread thread;
  explicit FakeServer(std::function<void(int)> script) {
    listenFd = KvsSkListen(0, &port);
    setenv("KVSPORT", std::to_string(port).c_str(), 1);
    thread = std::thread([this, script] {
      int fd = accept(listenFd, nullptr, nullptr);
      script(fd);
      close(fd);
    });
  }
  ~FakeServer() {
    thread.join();
    close(listenFd);
  }
};

void answerConnect(int fd) {
  KvsMsg m;
  ASSERT_EQ(KvsSkRead(fd, m.b, KvsMsgSize), 512);
  m.b[KvsMsgStatus] = 0;
  KvsSkWrite(fd, m.b, KvsMsgSize);
}

}  // namespace

// Killed in mid-transfer, the daemon keeps what it had; started again, it
// refuses bad frames and serves the others.
TEST_F(KvsServed, DaemonKilledInMidTransferThenBadFrames) {
  init();
  std::string const data = scratch.root + "/kvsd";
  std::vector<float> small(3000, 1.5f), big(16 << 20, 2.5f);
  ASSERT_EQ(KvsReplace(floatTable(session, "kept", small)), 0);
  KvsObject ds = floatTable(session, "lost", big);
  int rc = -1;
  std::thread sender([&] { rc = KvsReplace(ds); });
  while (!partFileIn(data)) std::this_thread::sleep_for(std::chrono::microseconds(100));
  kvsd.stop(SIGKILL);
  sender.join();
  ASSERT_TRUE(rc == 4 || rc == 5) << rc;
  EXPECT_EQ(KvsTestLog()[KvsTestLog().size() - 2],
            rc == 4 ? "%E Could not receive data from server on 127.0.0.1"
                    : "%E Could not send data to server on 127.0.0.1");
  ASSERT_NO_FATAL_FAILURE(restart());
  EXPECT_FALSE(partFileIn(data));
  KvsObject kept = KvsOpen(session, KvsNmode, 1L, KvsNtype, "SEIS", KvsNident, "kept", 0L);
  long rows = 0;
  KvsGet(KvsFind(kept, "RCVS"), KvsNsize, &rows, 0L);
  EXPECT_EQ(rows, 3000);
  KvsOpen(session, KvsNmode, 1L, KvsNtype, "SEIS", KvsNident, "lost", 0L);
  EXPECT_EQ(KvsError(), 15);

  // The daemon refuses bad frames and serves the others.
  int const port = std::atoi(getenv("KVSPORT"));
  ds = KvsOpen(session, KvsNmode, 2L, KvsNtype, "SEIS", KvsNident, "d", 0L);
  // A short record is answered with an error; the connection stays usable.
  int raw = KvsSkConnect("127.0.0.1", port, 0);
  unsigned char junk[10] = {1, 2, 3};
  ASSERT_EQ(KvsSkWrite(raw, junk, sizeof junk), 10);
  KvsMsg reply;
  ASSERT_EQ(KvsSkRead(raw, reply.b, KvsMsgSize), 512);
  EXPECT_EQ(reply.status(), 1);
  EXPECT_EQ(reply.text(KvsMsgText, 128), "Bad command record");
  // A frame beyond the largest allowed closes that connection only.
  unsigned char head[16];
  KvsSkEncodeHead(head, 100000, 1);
  ASSERT_EQ(write(raw, head, 16), 16);
  EXPECT_EQ(KvsSkRead(raw, reply.b, KvsMsgSize), -1);
  close(raw);
  raw = KvsSkConnect("127.0.0.1", port, 0);
  ASSERT_EQ(write(raw, head, 7), 7);  // and a truncated one
  close(raw);
  EXPECT_EQ(KvsTest(ds), 15);
  EXPECT_EQ(KvsProtect(ds), 0);
}

TEST(KvsFault, LibraryRefusesBadRepliesAndSendsRecordsAsLaidOut) {
  KvsScratch scratch;
  KvsTestCapture();
  // A port beyond 65535, or not a number, is refused rather than cut to
  // another listener's.
  {
    FakeServer peer([](int fd) {
      KvsMsg m;
      if (KvsSkRead(fd, m.b, KvsMsgSize) != long(KvsMsgSize)) return;
      m.b[KvsMsgStatus] = 0;
      KvsSkWrite(fd, m.b, KvsMsgSize);
    });
    std::string const wrapped = std::to_string(peer.port + 65536);
    setenv("KVSPORT", wrapped.c_str(), 1);
    EXPECT_EQ(KvsInit(), 9);
    EXPECT_EQ(KvsTestLog().back(), "%S Could not find kvsd server (PORT " + wrapped + ") on 127.0.0.1");
    setenv("KVSPORT", (std::to_string(peer.port) + "x").c_str(), 1);
    EXPECT_EQ(KvsInit(), 9);
    EXPECT_EQ(KvsTestLog().back(), "%S Could not find kvsd server (PORT 0) on 127.0.0.1");
    close(KvsSkConnect("127.0.0.1", peer.port, 0));  // lets the peer go
  }
  // A frame longer than the largest allowed.
  {
    FakeServer peer([](int fd) {
      unsigned char head[16];
      KvsSkEncodeHead(head, 70000, 1);
      write(fd, head, 16);
    });
    EXPECT_EQ(KvsInit(), 4);
    EXPECT_EQ(KvsTestLog().back(), "%E Could not receive data from server on 127.0.0.1");
  }
  // A table whose array header has a negative row count.
  FakeServer peer([](int fd) {
    answerConnect(fd);
    KvsMsg m;
    ASSERT_EQ(KvsSkRead(fd, m.b, KvsMsgSize), 512);
    m.b[KvsMsgObject] = 'T';
    m.setNum(272, 1);
    KvsSkWrite(fd, m.b, KvsMsgSize);
    unsigned char params[80] = {};
    KvsSkWrite(fd, params, sizeof params);
    m.b[KvsMsgObject] = 'A';
    m.setNum(288, -5);
    m.setText(304, 8, "FLT");
    KvsSkWrite(fd, m.b, KvsMsgSize);
  });
  ASSERT_EQ(KvsInit(), 0);
  EXPECT_EQ(KvsOpen(KvsFirst(KvsRoot()), KvsNmode, 1L, KvsNtype, "SEIS", KvsNident, "d", 0L), nullptr);
  EXPECT_EQ(KvsTestLog().back(), "%E Invalid Array Header");
  KvsExit();
  // The table and array records as sent, the peer refusing them.
  KvsMsg table, array;
  FakeServer sink([&](int fd) {
    answerConnect(fd);
    std::vector<unsigned char> params(64000);
    KvsSkRead(fd, table.b, KvsMsgSize);
    EXPECT_EQ(KvsSkRead(fd, params.data(), params.size()), 80);
    KvsSkRead(fd, array.b, KvsMsgSize);
    KvsMsg no = table;
    no.b[KvsMsgStatus] = 1;
    no.setText(KvsMsgText, 128, "no room");
    KvsSkWrite(fd, no.b, KvsMsgSize);
  });
  ASSERT_EQ(KvsInit(), 0);
  // The extremes sit past the first eight rows, beside a null that would
  // be the smallest value if it were counted.
  std::vector<float> x(19, 2.5f);
  x[13] = -7.5f, x[17] = 9.5f;
  std::memcpy(&x[10], kvsNull, 4);
  EXPECT_EQ(KvsReplace(floatTable(KvsFirst(KvsRoot()), "L9", x)), 1);
  EXPECT_EQ(KvsTestLog().back(), "%W SEIS L9  for RCVS could not be replaced");
  auto field = [](const KvsMsg& m, std::size_t off, std::size_t n) {
    return std::string(reinterpret_cast<const char*>(m.b + off), n);
  };
  EXPECT_EQ(field(table, 120, 8), std::string("\1R\0T\1\0\0\1", 8));
  EXPECT_EQ(field(table, 128, 16), std::string("SEIS\0\0\0\0RCVS\0\0\0\0", 16));
  EXPECT_EQ(table.text(144, 16) + "|" + table.text(176, 8) + "|" + table.text(224, 32), "L9|RCV|RCVS");
  EXPECT_EQ(field(table, 272, 10) + field(table, 288, 10), "         1        19");
  EXPECT_EQ(array.object(), 'A');
  EXPECT_EQ(array.text(192, 8) + "|" + array.text(200, 8) + "|" + array.text(224, 32), "X|0|X");
  EXPECT_EQ(field(array, 256, 10) + field(array, 288, 10), "        76        19");
  EXPECT_EQ(array.text(304, 8) + "|" + array.text(312, 8), "FLT|%g");
  EXPECT_EQ(array.text(352, 16) + "|" + array.text(368, 16), "-7.5|9.5");
}

// What a connection's reply tells the client, and the server's time
// figures that any reply may carry; a connection that fails has still
// noted the site it went to first.
TEST(KvsFault, ConnectKeepsWhatTheReplyTellsAndRepliesCarryTimes) {
  KvsScratch scratch;
  KvsTestCapture();
  setenv("KVSPROJ", "proj@siteA:srv9", 1);
  std::string host = "x";
  long port = -1;
  KvsGetOracleHost(host, &port);
  EXPECT_EQ(host + "|" + std::to_string(port), "|0");
  KvsMsg connect;
  double const before = KvsDeltaT;
  std::vector<std::string> idents;
  {
    FakeServer peer([&](int fd) {
      ASSERT_EQ(KvsSkRead(fd, connect.b, KvsMsgSize), 512);
      KvsMsg m = connect;
      m.setText(KvsMsgPid, 8, "4242");
      m.setNum(KvsMsgHdr2, 1), m.setHdr1(4, "siteB"), m.setNum(KvsMsgHdr2 + 32, 1521), m.setHdr2(4, "orahost");
      KvsSkWrite(fd, m.b, KvsMsgSize);
      for (unsigned char flags : {0x81, 0x7F}) {  // two lists of idents, the first reply timed
        ASSERT_EQ(KvsSkRead(fd, m.b, KvsMsgSize), 512);
        m.b[KvsMsgObject] = 'E', m.b[KvsMsgFlags] = flags;
        m.setNum(KvsMsgHdr1, 3), m.setHdr1(1, "0.25");
        KvsSkWrite(fd, m.b, KvsMsgSize);
      }
    });
    ASSERT_EQ(KvsInit(), 0);
    kvsExchangeTime = -1;
    ASSERT_EQ(KvsGetTree(KvsFirst(KvsRoot()), idents), 0);
    EXPECT_EQ(KvsDeltaT - before, 3.25);
    EXPECT_GE(kvsExchangeTime, 0);
    kvsExchangeTime = -1;
    ASSERT_EQ(KvsGetTree(KvsFirst(KvsRoot()), idents), 0);
    EXPECT_EQ(KvsDeltaT - before, 3.25);
    EXPECT_EQ(kvsExchangeTime, -1);
  }
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(connect.b + 120), 2), "\1C");
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(connect.b + 192), 64),
            std::string("siteA:srv9") + std::string(54, '\0'));
  KvsObject session = KvsFirst(KvsRoot());
  long pid = 0, remote = 0;
  const char* first = nullptr;
  KvsGet(session, KvsNspid, &pid, KvsNremote, &remote, KvsNdatasite, &first, 0L);
  EXPECT_EQ(std::to_string(pid) + "|" + std::to_string(remote) + "|" + first, "4242|1|siteB");
  char padded[10];
  kvsStrLen[0] = sizeof padded;
  EXPECT_EQ(kvsgetoraclehost_(padded, &port), 0);
  EXPECT_EQ(std::string(padded, sizeof padded) + "|" + std::to_string(port), "orahost   |1521");
  // The peer is gone.
  KvsSet(session, KvsNsite, "siteC:srv2", 0L);
  EXPECT_EQ(KvsConnect(session), 9);
  KvsGet(session, KvsNdatasite, &first, 0L);
  EXPECT_STREQ(first, "siteC");
}
