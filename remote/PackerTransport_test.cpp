// A Packer over real channels: the bytes on the wire, messages that carry
// caller arrays, the other byte order, and senders that lie or go away.

#include <unistd.h>

#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/Packer.h"
#include "foundation/TestAddressSpaceCap.h"
#include "foundation/vString.h"
#include "remote/CommChanMaker.h"
#include "remote/RemoteTesting.h"

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "expected bytes are little-endian");

using namespace remote_testing;

namespace {

class PackerTransportTest : public RemoteTest {};

// Caller arrays leave as ordinary arrays, straight from the caller's
// memory. (Requests of the protocol byte for byte: ClientFrames.)
TEST_F(PackerTransportTest, AddressOfArraysGoAsOrdinaryArrays) {
  vHandle<CommChan> server = CommChanMaker::local(nullptr);
  std::string const path = localPath(server);
  Bytes seen;
  std::thread peer([&] {
    int const fd = rawConnectLocal(path);
    seen = readBytes(fd, 2 * 47);
    ::close(fd);
  });
  float const values[2] = {1.0f, -2.0f};
  Packer p(10);
  p.pack(7);
  p.packAddressOf(values, 2);
  p.pack(vString("a"));
  p.packFrame(1, 1);
  p.endFrame();
  ASSERT_EQ(CommChan::OK, p.send(server.get(), 9));
  // Nothing new: the same bytes again, the tag given now notwithstanding.
  ASSERT_EQ(CommChan::OK, p.send(server.get(), 4));
  peer.join();
  Bytes const expected = {0xD6, 0x12, 0x6A, 0x02, 1, 0, 0, 0, 31, 0, 0, 0, 9, 0, 0, 0,        // header
                          0x05, 7, 0, 0, 0,                                                  // int 7
                          0x8B, 2, 0, 0, 0, 0x00, 0x00, 0x80, 0x3F, 0x00, 0x00, 0x00, 0xC0,  // floats
                          0x8E, 2, 0, 0, 0, 'a', 0,                                          // "a"
                          0x7F, 1, 0, 1, 0, 0x7E};                                           // frame
  Bytes twice = expected;
  twice.insert(twice.end(), expected.begin(), expected.end());
  EXPECT_EQ(twice, seen);
}

// A message from a peer of the other byte order: every value arrives in
// this host's order, except 64-bit unsigned ones, which a channel has
// always left as they were sent.
TEST_F(PackerTransportTest, OtherByteOrderIsTurnedAroundButUInt64IsLeft) {
  int port = 0;
  vHandle<CommChan> server = CommChanMaker::remote(port);
  Bytes body = {0x05, 0x00, 0x00, 0x00, 0x07,                          // int 7
                0x83, 0x00, 0x00, 0x00, 0x02, 0x00, 0x01, 0xFF, 0xFE,  // short[] {1, -2}
                0x0C, 0x3F, 0xF0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,  // double 1.0
                0x08, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08,  // uint64 scalar
                0x88, 0x00, 0x00, 0x00, 0x01, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88,  // uint64[]
                0x07, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x00,  // int64 256
                0x8E, 0x00, 0x00, 0x00, 0x03, 'h', 'i', 0x00,          // "hi"
                0x7F, 0x00, 0x05, 0x00, 0x02, 0x7E};                   // frame 5 v2
  Bytes message = {0x02, 0x6A, 0x12, 0xD6, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00,
                   static_cast<unsigned char>(body.size()), 0x00, 0x00, 0x00, 0x06};
  std::thread peer([&] {
    int const fd = rawConnectTcp(port);
    readBytes(fd, 4);
    writeAll(fd, foreignMagic());
    writeAll(fd, message);
    writeAll(fd, body);
    readBytes(fd, 1);
    ::close(fd);
  });
  Packer p(10);
  ASSERT_EQ(CommChan::OK, p.receive(*server));
  EXPECT_TRUE(server->getSwap());
  EXPECT_EQ(6, p.getMessageTag());
  int i = 0;
  short s[2] = {0, 0}, magic = 0, version = 0;
  double d = 0;
  unsigned long long u = 0, ua[1] = {0};
  long long ll = 0;
  vString text;
  p.unpack(i);
  p.unpack(s);
  p.unpack(d);
  p.unpack(u);
  p.unpack(ua);
  p.unpack(ll);
  p.unpack(text);
  p.unpackFrame(magic, version);
  p.endFrame();
  EXPECT_EQ((std::vector<double>{7, 1, -2, 1.0, 256, 5, 2}),
            (std::vector<double>{double(i), double(s[0]), double(s[1]), d, double(ll), double(magic), double(version)}));
  EXPECT_EQ(0x0807060504030201ull, u);
  EXPECT_EQ(0x8877665544332211ull, ua[0]);
  EXPECT_STREQ("hi", text.c_str());
  char const done = 0;
  server->sendChar8(&done, 1);
  peer.join();
}

// Headers that do not read are raised; a header that claims far more than
// the sender sends costs no more memory than what came, and the sender's
// going is a status.
TEST_F(PackerTransportTest, BadHeadersAndForgedLengths) {
  vHandle<CommChan> server = CommChanMaker::local(nullptr);
  std::string const path = localPath(server);
  std::thread peer([&] {
    int const fd = rawConnectLocal(path);
    writeAll(fd, Bytes(16, 0x5A));
    int32_t const badVersion[4] = {Packer::MAGIC, 2, 0, 1};
    writeAll(fd, badVersion, sizeof badVersion);
    int32_t const forged[4] = {Packer::MAGIC, 1, 2000000000, 1};
    writeAll(fd, forged, sizeof forged);
    writeAll(fd, Bytes(3 << 20, 0x05));
    ::close(fd);
  });
  Packer p(10);
  EXPECT_EQ("Packer::beginReceive: Bad message received. Magic was 1515870810 expected 40506070.",
            fatalText([&] { p.receive(*server); }));
  EXPECT_EQ("Packer::beginReceive: Bad version received.", fatalText([&] { p.receive(*server); }));
  EXPECT_EQ(CommChan::CLOSED, p.receive(*server));
  peer.join();
  EXPECT_LE(p.getCapacity(), 16 << 20);
}

// A Packer that cannot take a message refuses before reading, so that the
// message stays on the channel for the next reader.
TEST_F(PackerTransportTest, PackerInTheWrongStateLeavesTheMessage) {
  vHandle<CommChan> server = CommChanMaker::local(nullptr);
  vHandle<CommChan> client = CommChanMaker::connect(localPath(server).c_str());
  Packer out(10);
  out.pack(99);
  ASSERT_EQ(CommChan::OK, out.send(client.get(), 2));
  Packer busy(10);
  busy.pack(1);
  EXPECT_EQ("Packer::beginReceive: Illegal operation 102 for state PACKPACKING.",
            fatalText([&] { busy.receive(*server); }));
  Packer in(10);
  ASSERT_EQ(CommChan::OK, in.receive(*server));
  int v = 0;
  in.unpack(v);
  EXPECT_EQ(99, v);
}

#ifdef RONDO_TEST_ADDRESS_SPACE_CAP
// Room that cannot be made: the rest of the body is read and dropped, the
// failure is raised, and the next message is read whole.
TEST_F(PackerTransportTest, BodyThatCannotBeHeldIsDrainedAndReported) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        testMapLargeBlocksExactly();
        vHandle<CommChan> server = CommChanMaker::local(nullptr);
        std::string const path = localPath(server);
        int const body = 256 << 20;
        std::vector<unsigned char> big(static_cast<size_t>(body), 0x01);
        std::thread peer([&] {
          int const fd = rawConnectLocal(path);
          int32_t const header[4] = {Packer::MAGIC, 1, body, 1};
          writeAll(fd, header, sizeof header);
          writeAll(fd, big.data(), big.size());
          Packer after(10);
          after.pack(123);
          unsigned char const* bytes = nullptr;
          int n = 0;
          after.getBuffer(&bytes, n, 2);
          writeAll(fd, bytes, static_cast<size_t>(n));
          readBytes(fd, 1);
          ::close(fd);
        });
        Packer p(10);
        std::string text;
        {
          TestAddressSpaceCap cap(64 << 20);
          text = fatalText([&] { p.receive(*server); });
        }
        Packer next(10);
        bool ok = next.receive(*server) == CommChan::OK && next.getMessageTag() == 2;
        int v = 0;
        if (ok) next.unpack(v);
        char const done = 0;
        server->sendChar8(&done, 1);
        peer.join();
        // std::exit runs no destructors: the path goes here.
        server->close();
        ok = ok && v == 123 && text.find("Packer::getReceiveBuffer: Cannot allocate buffer of size") == 0;
        ok = ok && infos().size() == 1 &&
             infos()[0] ==
                 "Packer::receive: Ran out of memory allocating buffer of 268435456 bytes. Press OK, but it might "
                 "take a while to tidy up, be patient.";
        std::exit(ok ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}
#endif

}  // namespace
