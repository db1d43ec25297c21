#include "foundation/Packer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "foundation/ExceptionErrorHandler.h"
#include "foundation/Packable.h"
#include "foundation/RaiseError.h"
#include "foundation/TestFailure.h"
#include "foundation/UtlExcept.h"
#include "foundation/vDate.h"
#include "foundation/vString.h"
#include "foundation/vUCString.h"

// The expected bytes are for the little-endian hosts this system runs on (x86 and x86-64).
static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "expected bytes are little-endian");

namespace {

using Bytes = std::vector<unsigned char>;

std::string str(vString const& s) { return std::string(s.c_str(), s.length()); }

// Raises like the default handlers, without printed reports, and keeps the info messages for the tests.
class RecordingHandler : public ExceptionErrorHandler {
 public:
  std::vector<std::string> infos;

 protected:
  void doInfo(char const* label, int, char const* text) override { infos.push_back(std::string(label) + ": " + text); }
};

class PackerTest : public ::testing::Test {
 protected:
  void SetUp() override { RaiseError::getInstance()->install(&m_handler); }
  void TearDown() override { RaiseError::getInstance()->uninstall(&m_handler); }
  std::vector<std::string>& infos() { return m_handler.infos; }

 private:
  RecordingHandler m_handler;
};

std::string reasonOf(std::function<void()> const& f) {
  try {
    f();
  } catch (UtlExcept const& e) {
    return str(e.getReason());
  }
  return "(nothing raised)";
}

Bytes finish(Packer& p, int tag = 0) {
  unsigned char const* b = nullptr;
  int n = 0;
  p.getBuffer(&b, n, tag);
  return Bytes(b, b + n);
}

void put32(Bytes& b, uint32_t v) {
  for (int i = 0; i < 4; ++i) b.push_back(static_cast<unsigned char>(v >> (8 * i)));
}

// A whole little-endian message around the body.
Bytes message(Bytes const& body, int tag = 0) {
  Bytes m;
  put32(m, 40506070);
  put32(m, 1);
  put32(m, static_cast<uint32_t>(body.size()));
  put32(m, static_cast<uint32_t>(tag));
  m.insert(m.end(), body.begin(), body.end());
  return m;
}

Bytes operator+(Bytes a, Bytes const& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

Packer fromBytes(Bytes const& m) { return Packer(static_cast<int>(m.size()), m.data()); }

template <class T>
T take(Packer& p) {
  T v{};
  p.unpack(v);
  return v;
}

// The next array entry, its count checked against what unpack reports.
template <class T>
std::vector<T> takeArray(Packer& p) {
  std::vector<T> v(p.getNElements());
  EXPECT_EQ(p.unpack(v.data()), v.size());
  return v;
}

std::vector<std::string> strs(std::vector<vString> const& v) {
  std::vector<std::string> out;
  for (vString const& s : v) out.push_back(str(s));
  return out;
}

using Frame = std::pair<short, short>;

Frame frameOf(Packer& p) {
  Frame f{0, 0};
  p.unpackFrame(f.first, f.second);
  return f;
}

TEST_F(PackerTest, LayoutOfEachKindOfEntry) {
  Packer p(0);
  p.pack(static_cast<signed char>(-2));
  p.pack(-2LL);
  p.pack(1.0);
  // The fixed-width names map to the same codes on 32- and 64-bit hosts.
  p.pack(static_cast<int64_t>(-2));
  p.pack(static_cast<uint64_t>(1));
  p.packBool(true);
  short const s[] = {1, -2};
  p.pack(s, 2);
  double const d[] = {2.0};
  p.pack(d, 1);  // a count of 1 is still an array
  p.pack(static_cast<int const*>(nullptr), 0);
  unsigned char raw[3] = {0, 1, 0x40};  // any non-zero byte in a bool goes out as 1
  bool flags[3];
  std::memcpy(flags, raw, 3);
  p.packBool(flags, 3);
  p.pack(vString(""));
  p.pack("ab");
  vString const texts[] = {vString("ab"), vString(""), vString("c")};
  p.pack(texts, 3);
  vDate const dates[] = {vDate(0x01020304L), vDate(vDate::Invalid)};
  p.pack(dates[0]);
  p.pack(dates, 2);
  p.packFrame(-2, 5);
  p.endFrame();
  Bytes const body = {
      0x01, 0xFE,                                                  // int8
      0x07, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,        // int64
      0x0C, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xF0, 0x3F,        // double
      0x07, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,        // int64_t
      0x08, 0x01, 0, 0, 0, 0, 0, 0, 0,                             // uint64_t
      0x10, 0x01,                                                  // bool
      0x83, 0x02, 0x00, 0x00, 0x00, 0x01, 0x00, 0xFE, 0xFF,        // int16[2]
      0x8C, 0x01, 0x00, 0x00, 0x00, 0, 0, 0, 0, 0, 0, 0x00, 0x40,  // double[1]
      0x85, 0x00, 0x00, 0x00, 0x00,                                // int32[0]
      0x90, 0x03, 0x00, 0x00, 0x00, 0x00, 0x01, 0x01,              // bool8[3]
      0x8E, 0x00, 0x00, 0x00, 0x00,                                // ""
      0x8E, 0x03, 0x00, 0x00, 0x00, 0x61, 0x62, 0x00,              // "ab"
      0x91, 0x03, 0x00, 0x00, 0x00, 0x61, 0x62, 0x00, 0x00, 0x63, 0x00,
      0x12, 0x00, 0x04, 0x03, 0x02, 0x01,  // date; not valid below: flag 1, seconds -1
      0x92, 0x02, 0x00, 0x00, 0x00, 0x00, 0x04, 0x03, 0x02, 0x01, 0x01, 0xFF, 0xFF, 0xFF, 0xFF,
      0x7F, 0xFE, 0xFF, 0x05, 0x00, 0x7E};
  EXPECT_EQ(finish(p, 9), message(body, 9));
}

TEST_F(PackerTest, ReadingRulesOfBoolsStringsDatesAndFrames) {
  // Only the byte 1 reads as true.
  Packer q = fromBytes(message({0x10, 0x02, 0x90, 0x02, 0, 0, 0, 0x01, 0xFF}));
  bool b = true;
  q.unpackBool(b);
  EXPECT_FALSE(b);
  bool two[2] = {false, true};
  EXPECT_EQ(q.unpackBool(two), 2u);
  EXPECT_TRUE(two[0] && !two[1]);
  // Folding strings fold on unpack.
  Packer r(0);
  r.pack(vString("MixedCase"));
  r.pack(vUCString("abc"));
  finish(r);
  EXPECT_EQ(str(take<vUCString>(r)), "MIXEDCASE");
  EXPECT_EQ(str(take<vString>(r)), "ABC");
  // A date's flag is applied after the seconds, and only its bit 0 counts.
  Packer d = fromBytes(message({0x12, 0x01, 0x10, 0x00, 0x00, 0x00, 0x12, 0x02, 0x10, 0x00, 0x00, 0x00}));
  EXPECT_FALSE(take<vDate>(d).isValid());
  EXPECT_EQ(take<vDate>(d).getSeconds(), 16L);
  // The depth follows the frames; an end after the last is refused.
  Packer f = fromBytes(message({0x7F, 0xD9, 0x04, 0x05, 0x00, 0x7E}));
  EXPECT_EQ(frameOf(f), (Frame{1241, 5}));
  EXPECT_EQ(f.getFrameDepth(), 1);
  f.endFrame();
  EXPECT_EQ(f.getFrameDepth(), 0);
  EXPECT_EQ(fatalText([&] { f.endFrame(); }), "Packer::endFrame: No more data to unpack.");
}

TEST_F(PackerTest, AddressOfGoesOutAsAnOrdinaryArray) {
  std::vector<float> data = {1.0f, 2.0f};
  std::vector<short> empty;
  Packer p(0);
  p.pack(7);
  p.packAddressOf(data.data(), 2);
  p.packAddressOf(empty.data(), 0);
  p.pack(8);
  EXPECT_EQ(p.getNAddressOf(), 2);
  // Not copied: a change before the message is finished goes out.
  data[1] = 2.5f;
  Bytes const body = {0x05, 0x07, 0, 0, 0,                                   //
                      0x8B, 0x02, 0, 0, 0, 0x00, 0x00, 0x80, 0x3F, 0x00, 0x00, 0x20, 0x40,  //
                      0x83, 0x00, 0, 0, 0,                                   //
                      0x05, 0x08, 0, 0, 0};
  EXPECT_EQ(finish(p, 4), message(body, 4));
  // The gather list gives the same bytes, the caller's memory one of its pieces.
  std::vector<Packer::Segment> segments;
  p.getSegments(segments, 99);
  Bytes joined;
  bool sawCallerMemory = false;
  for (Packer::Segment const& s : segments) {
    joined.insert(joined.end(), s.data, s.data + s.size);
    if (s.data == reinterpret_cast<unsigned char const*>(data.data())) sawCallerMemory = true;
  }
  EXPECT_EQ(joined, message(body, 4));
  EXPECT_TRUE(sawCallerMemory);
  // Reading in the same process goes through the address.
  EXPECT_EQ(take<int>(p), 7);
  EXPECT_EQ(p.getNextDataType(), vADDRESSOF | vARRAYOF | vFLOAT32);
  EXPECT_EQ(takeArray<float>(p), (std::vector<float>{1.0f, 2.5f}));
  EXPECT_EQ(p.unpack(static_cast<short*>(nullptr)), 0u);
  EXPECT_EQ(take<int>(p), 8);
}

TEST_F(PackerTest, DumpBytes) {
  Packer p(0);
  p.pack(1);
  std::ostringstream out;
  p.dumpBytes(out);
  EXPECT_EQ(out.str(),
            "\n 0xd6, 0x12, 0x6a, 0x2, 0x1, 0x0, 0x0, 0x0, 0x5, 0x0,"
            "\n 0x0, 0x0, 0x0, 0x0, 0x0, 0x0, 0x5, 0x1, 0x0, 0x0,"
            "\n 0x0,");
}

// A message with texts, dates and a large array in nested frames; readAll checks it back.
void packAll(Packer& p, std::vector<double> const& big) {
  p.packFrame(500, 3);
  p.pack(-123456789);
  vString const texts[] = {vString("one"), vString(""), vString("three")};
  p.pack(texts, 3);
  vDate const dates[] = {vDate(1000L), vDate(vDate::Invalid)};
  p.pack(dates, 2);
  p.packFrame(501, 1);
  p.pack(big.data(), static_cast<unsigned>(big.size()));
  p.endFrame();
  p.endFrame();
}

void readAll(Packer& p, std::vector<double> const& big) {
  EXPECT_EQ(frameOf(p), (Frame{500, 3}));
  EXPECT_EQ(take<int>(p), -123456789);
  EXPECT_EQ(strs(takeArray<vString>(p)), (std::vector<std::string>{"one", "", "three"}));
  std::vector<vDate> const dates = takeArray<vDate>(p);
  ASSERT_EQ(dates.size(), 2u);
  EXPECT_EQ(dates[0].getSeconds(), 1000L);
  EXPECT_FALSE(dates[1].isValid());
  EXPECT_EQ(frameOf(p).first, 501);
  EXPECT_EQ(takeArray<double>(p), big);
  p.endFrame();
  p.endFrame();
  EXPECT_EQ(p.getState(), Packer::PACKUNPACKED);
}

std::vector<double> bigArray() {
  std::vector<double> big(5000);
  for (std::size_t k = 0; k < big.size(); ++k) big[k] = static_cast<double>(k) * 1.5 - 7;
  return big;
}

TEST_F(PackerTest, RoundTripThroughEveryWayIn) {
  std::vector<double> const big = bigArray();
  Packer p(10);
  packAll(p, big);
  Bytes const m = finish(p, 77);
  unsigned char* raw = new unsigned char[m.size()];
  std::memcpy(raw, m.data(), m.size());
  Packer adopted(static_cast<int>(m.size()), raw);
  EXPECT_EQ(adopted.getMessageTag(), 77);
  EXPECT_FALSE(adopted.isSwapped());
  Packer copy(adopted);
  Packer assigned(5);
  assigned.pack(1);
  assigned = adopted;
  readAll(adopted, big);
  readAll(copy, big);
  readAll(assigned, big);
}

// Receives a message the way a channel does: the header, then the body in pieces of at most `piece` bytes.
void receiveInPieces(Packer& p, Bytes const& m, int piece) {
  int const length = p.beginReceive(m.data());
  ASSERT_EQ(length, static_cast<int>(m.size()) - 16);
  for (int got = 0; got < length;) {
    int const n = std::min(length - got, piece);
    std::memcpy(p.getReceiveBuffer(got, n), m.data() + 16 + got, static_cast<std::size_t>(n));
    got += n;
    // Room grows with what came: a first step, then eightfold at most.
    EXPECT_LE(p.getCapacity(), std::max(65536, 8 * (16 + got))) << got;
  }
  p.endReceive();
}

TEST_F(PackerTest, ReceivedBodyGrowsWithWhatArrives) {
  std::vector<double> const big = bigArray();
  Packer p(0);
  packAll(p, big);
  Bytes const m = finish(p, 21);
  for (int piece : {7, 1 << 20}) {
    SCOPED_TRACE(piece);
    Packer in(0);
    receiveInPieces(in, m, piece);
    EXPECT_EQ(in.getState(), Packer::PACKUNPACKING);
    EXPECT_EQ(in.getMessageTag(), 21);
    EXPECT_EQ(in.getSize(), static_cast<int>(m.size()));
    // Grown with the pieces, capped at the message.
    EXPECT_EQ(in.getCapacity(), static_cast<int>(m.size()) - 16);
    readAll(in, big);
  }
  // A message in the other byte order is turned around when it is complete.
  Bytes twin = m;
  Packer::reverseByteOrder(twin.data(), static_cast<int>(twin.size()));
  Packer in(0);
  receiveInPieces(in, twin, 333);
  EXPECT_TRUE(in.isSwapped());
  EXPECT_EQ(in.getMessageTag(), 21);
  readAll(in, big);
  Packer none(0);
  receiveInPieces(none, message({}, 4), 10);
  EXPECT_EQ(none.getState(), Packer::PACKUNPACKING);
  EXPECT_FALSE(none.next());
  EXPECT_EQ(none.getState(), Packer::PACKUNPACKED);
}

TEST_F(PackerTest, ForgedBodyLengthCostsNoMemory) {
  Bytes header = message({});
  uint32_t const claimed = 2000000000u;
  std::memcpy(header.data() + 8, &claimed, 4);
  Packer p(0);
  EXPECT_EQ(p.beginReceive(header.data()), 2000000000);
  EXPECT_LE(p.getCapacity(), 65536);
  EXPECT_EQ(p.getState(), Packer::PACKUNPACKING);
  // Nothing reads until the body is complete.
  int v = 0;
  EXPECT_EQ(fatalText([&] { p.unpack(v); }), "Packer::unpack: The message is still being received.");
  // Ten bytes come, then the peer goes.
  std::memcpy(p.getReceiveBuffer(0, 10), "0123456789", 10);
  EXPECT_EQ(reasonOf([&] { p.getReceiveBuffer(1999999999, 2); }),
            "Bytes 1999999999 to 2000000000 lie outside the body of 2000000000 bytes being received.");
  EXPECT_EQ(fatalText([&] { p.endReceive(); }),
            "Packer::endReceive: Bad message received. Only 10 of its 2000000000 body bytes were received.");
  EXPECT_EQ(p.getState(), Packer::PACKUNPACKED);
  EXPECT_EQ(fatalText([&] { p.endReceive(); }), "Packer::endReceive: No message is being received.");

  // After a transfer that failed the Packer is reused as ever.
  p.pack(5);
  EXPECT_EQ(finish(p, 1), message({0x05, 0x05, 0, 0, 0}, 1));
}

// A big-endian message by hand: counts, 16-, 32- and 64-bit numbers, dates and frames turn around; bytes,
// 128-bit values, complex pairs, half and IBM floats and lobs stay as they came, as the message sent on shows.
TEST_F(PackerTest, BigEndianMessageReads) {
  Bytes const m = {
      0x02, 0x6A, 0x12, 0xD6, 0x00, 0x00, 0x00, 0x01,        // magic, version
      0x00, 0x00, 0x00, 0x7B, 0x00, 0x00, 0x01, 0x02,        // body length 123, tag 258
      0x7F, 0x04, 0xD9, 0x00, 0x05,                          // frame 1241, 5
      0x05, 0xFF, 0xFF, 0xFF, 0xFE,                          // int32 -2
      0x83, 0x00, 0x00, 0x00, 0x02, 0x00, 0x01, 0xFF, 0xFE,  // int16[2] {1, -2}
      0x0C, 0x40, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,  // double 2
      0x08, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08,  // uint64
      0x91, 0x00, 0x00, 0x00, 0x02, 0x78, 0x00, 0x79, 0x7A, 0x00,  // {"x", "yz"}
      0x92, 0x00, 0x00, 0x00, 0x02, 0x00, 0x00, 0x00, 0x00, 0x10, 0x01, 0xFF, 0xFF, 0xFF, 0xFF,  // dates
      0x8F, 0x00, 0x00, 0x00, 0x02, 0xA1, 0xA2,                     // uchar8[2]
      0x95, 0x00, 0x00, 0x00, 0x01, 1, 2, 3, 4, 5, 6, 7, 8,         // complex32[1]
      0x09, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16,  // int128
      0x97, 0x00, 0x00, 0x00, 0x02, 0xB1, 0xB2, 0xB3, 0xB4,         // float16[2]
      0x18, 0xC1, 0xC2, 0xC3, 0xC4,                                 // ibmfloat32
      0x93, 0x00, 0x00, 0x00, 0x04, 0xD1, 0xD2, 0xD3, 0xD4,         // lob[4]
      0x7E};
  ASSERT_EQ(m.size(), 16u + 123u);
  Packer p = fromBytes(m);
  EXPECT_TRUE(p.isSwapped());
  EXPECT_EQ(p.getMessageTag(), 258);
  EXPECT_EQ(frameOf(p), (Frame{1241, 5}));
  EXPECT_EQ(take<int>(p), -2);
  EXPECT_EQ(takeArray<short>(p), (std::vector<short>{1, -2}));
  EXPECT_EQ(take<double>(p), 2.0);
  EXPECT_EQ(take<unsigned long long>(p), 0x0102030405060708ULL);
  EXPECT_EQ(strs(takeArray<vString>(p)), (std::vector<std::string>{"x", "yz"}));
  std::vector<vDate> const dates = takeArray<vDate>(p);
  ASSERT_EQ(dates.size(), 2u);
  EXPECT_EQ(dates[0].getSeconds(), 16L);
  EXPECT_FALSE(dates[1].isValid());
  int steps = 1;
  while (p.next()) ++steps;
  EXPECT_EQ(steps, 7);
  Bytes const again = finish(p, 0);
  Bytes const unswapped = {
      0x8F, 0x02, 0x00, 0x00, 0x00, 0xA1, 0xA2,                     //
      0x95, 0x01, 0x00, 0x00, 0x00, 1, 2, 3, 4, 5, 6, 7, 8,         //
      0x09, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16,  //
      0x97, 0x02, 0x00, 0x00, 0x00, 0xB1, 0xB2, 0xB3, 0xB4,         //
      0x18, 0xC1, 0xC2, 0xC3, 0xC4,                                 //
      0x93, 0x04, 0x00, 0x00, 0x00, 0xD1, 0xD2, 0xD3, 0xD4, 0x7E};
  EXPECT_EQ(Bytes(again.end() - static_cast<std::ptrdiff_t>(unswapped.size()), again.end()), unswapped);
}

// Out-of-state operations are refused and change nothing; so are reads past the end; deleting mid-message says so.
TEST_F(PackerTest, StateRules) {
  Packer p(10);
  EXPECT_EQ(fatalText([&] { finish(p); }), "Packer::getBuffer: Illegal operation 101 for state PACKINIT.");
  EXPECT_EQ(p.getState(), Packer::PACKINIT);
  // A second finish resends the same bytes, the first tag included.
  p.pack(5u);
  Bytes const first = finish(p, 1);
  EXPECT_EQ(first, message({0x06, 0x05, 0, 0, 0}, 1));
  EXPECT_EQ(finish(p, 2), first);
  EXPECT_EQ(p.getMessageTag(), 1);
  EXPECT_EQ(take<unsigned>(p), 5u);
  EXPECT_EQ(fatalText([&] { take<unsigned>(p); }), "Packer::unpack: No more data to unpack.");
  p.first();
  EXPECT_EQ(p.getState(), Packer::PACKUNPACKING);
  p.discard();
  EXPECT_EQ(p.getState(), Packer::PACKUNPACKED);
  // Frames must be balanced before the message goes.
  for (bool sent : {false, true}) {
    Packer q(0);
    q.packFrame(1, 1);
    if (!sent) continue;
    EXPECT_EQ(fatalText([&] { finish(q); }), "Packer::getBuffer: Number of packframes does not match endframes");
    q.endFrame();
    finish(q);
  }
  ASSERT_EQ(infos().size(), 1u);
  EXPECT_EQ(infos()[0], "Packer::~Packer: Packer object deleted while in PACKPACKING state.");
}

TEST_F(PackerTest, MismatchedTypes) {
  Packer p(0);
  int const ints[] = {1, 2};
  p.pack(ints, 2);
  p.pack(7);
  p.pack(vString("s"));
  finish(p);
  int i = 0;
  float f[2];
  vString s, texts[2];
  vDate dates[2];
  short fm, fv;
  std::pair<std::function<void()>, std::string> const reads[] = {
      {[&] { p.unpack(i); }, "unpack: Mismatched data type. Data is ArrayOfvINT32, asked for vINT32."},
      {[&] { p.unpack(f); }, "unpack: Mismatched data type. Data is ArrayOfvINT32, asked for ArrayOfvFLOAT32."},
      {[&] { p.unpack(s); }, "unpack: Mismatched data type. Data is 133, should be vARRAYOF|vCHAR8."},
      {[&] { p.unpack(texts); }, "unpack: Mismatched data type. Data is ArrayOfvINT32, asked for vSTRING|ARRAYOF."},
      {[&] { p.unpack(dates); }, "unpack: Mismatched data type. Data is ArrayOfvINT32, asked for vDATE|ARRAYOF."},
      {[&] { p.unpackFrame(fm, fv); }, "unpackFrame: Mismatched data type. Data is 133, asked for 127."},
  };
  for (auto const& r : reads) EXPECT_EQ(fatalText(r.first), "Packer::" + r.second);
  // A failed read consumes nothing.
  int back[2];
  EXPECT_EQ(p.unpack(back), 2u);
  EXPECT_EQ(fatalText([&] { p.endFrame(); }), "Packer::endFrame: Mismatched data type. Data is 5, asked for 126.");
  EXPECT_EQ(take<int>(p), 7);
}

TEST_F(PackerTest, CapacityGrowthAndImpossibleRequests) {
  Packer q(5);
  EXPECT_EQ(fatalText([&] { q.setCapacity(-1); }), "Packer::setCapacity: Capacity cannot be negative, -1 was supplied.");
  int const ints[] = {1, 2, 3, 4, 5, 6, 7, 8};
  q.pack(ints, 8);  // 16 + 5 + 32 = 53 bytes in use
  EXPECT_EQ(reasonOf([&] { q.setCapacity(36); }),
            "Cannot set capacity to less than already used.Used=53 Supplied=36.");
  q.setCapacity(37);  // rounded up to whole words, the data kept
  EXPECT_EQ(q.getCapacity(), 40);
  finish(q);
  EXPECT_EQ(takeArray<int>(q), std::vector<int>(ints, ints + 8));
  Packer p(0);
  char const c = 0;
  // Refused before anything is read from the pointer.
  EXPECT_EQ(fatalText([&] { p.pack(reinterpret_cast<double const*>(&c), 0x80000000u); }),
            "Packer::pack: Requested number of bytes (17179869184) was invalid.");
  EXPECT_EQ(reasonOf([&] { p.packAddressOf(static_cast<float const*>(nullptr), 3); }),
            "Null data given for 3 elements of vFLOAT32.");
  // Growth past the limit is refused before any memory is taken or any byte read.
  EXPECT_EQ(fatalText([&] { p.pack(&c, 2100000000u); }),
            "Packer::pack: Packer cannot handle >2gig. Has 16, wanted another 2100000000.");
  EXPECT_EQ(p.getState(), Packer::PACKINIT);
  EXPECT_EQ(p.getCapacity(), 0);
  // Many address-of entries may not add up beyond what a message can say.
  for (int k = 0; k < 3; ++k) p.packAddressOf(reinterpret_cast<double const*>(&c), 75000000u);
  EXPECT_EQ(reasonOf([&] { p.packAddressOf(reinterpret_cast<double const*>(&c), 75000000u); }),
            "Packer cannot handle >2gig. Has 1800000031, wanted another 600000000.");
}

// Written at version 2 (a field and a nested frame more) and read as version 1 does, skipping what it does not know.
struct Sample : Packable {
  void pack(Packer& p) const override {
    p.packFrame(4321, 2);
    p.pack(a);
    p.pack(2.5);
    p.packFrame(77, 1);
    p.pack(2.5);
    p.endFrame();
    p.endFrame();
  }
  void unpack(Packer& p) override {
    EXPECT_EQ(frameOf(p), (Frame{4321, 2}));
    p.unpack(a);
    p.skipFrame();
  }
  int a = 0;
};

TEST_F(PackerTest, SkippingFrames) {
  Sample written;
  written.a = 5;
  Packer p(0);
  p.pack(written);
  p.pack(11);
  finish(p);
  Sample read;
  p.unpack(read);
  EXPECT_EQ(read.a, 5);
  EXPECT_EQ(take<int>(p), 11);
  EXPECT_EQ(p.getFrameDepth(), 0);
  // A skip before any read skips the first frame.
  Bytes const frame = {0x7F, 1, 0, 1, 0}, int1 = {0x05, 1, 0, 0, 0}, int2 = {0x05, 2, 0, 0, 0};
  Packer first = fromBytes(message(frame + int1 + frame + int1 + Bytes{0x7E, 0x7E} + int2 + int1));
  first.skipFrame();
  EXPECT_EQ(take<int>(first), 2);
  // After a frame end the skip takes the next single entry.
  Packer q = fromBytes(message(frame + Bytes{0x7E} + int1 + int2));
  frameOf(q);
  q.endFrame();
  q.skipFrame();
  EXPECT_EQ(take<int>(q), 2);
  // Skipping, or skipping the rest, off the end of a truncated frame is quiet.
  for (bool rest : {false, true}) {
    Packer r = fromBytes(message({0x7F, 1, 0, 1, 0, 0x05, 1, 0, 0, 0}));
    frameOf(r);
    if (rest)
      r.skipRestOfFrame();
    else
      r.skipFrame();
    EXPECT_EQ(r.getState(), Packer::PACKUNPACKED) << rest;
  }
  // Skipping the rest of a frame passes over the frames nested in it.
  Packer n = fromBytes(message({0x7F, 1, 0, 1, 0, 0x7F, 2, 0, 1, 0, 0x7E, 0x7E, 0x05, 4, 0, 0, 0}));
  frameOf(n);
  n.skipRestOfFrame();
  EXPECT_EQ(take<int>(n), 4);
}

TEST_F(PackerTest, StlRangesAndTheirChecks) {
  std::vector<int> const ints = {7, -8};
  std::vector<bool> const flags = {true, false};
  Packer p(0);
  pack(p, ints.begin(), ints.end());
  pack(p, flags.cbegin(), flags.cend());
  Bytes const m = finish(p);
  Bytes const firstRange = {0x7F, 0x43, 0x00, 0x01, 0x00, 0x05, 0x02, 0, 0, 0, 0x05, 0x07, 0, 0, 0,
                            0x05, 0xF8, 0xFF, 0xFF, 0xFF, 0x7E};
  EXPECT_EQ(Bytes(m.begin() + 16, m.begin() + 16 + firstRange.size()), firstRange);
  std::vector<int> intsBack;
  std::vector<bool> flagsBack;
  unpack(p, std::back_inserter(intsBack), 0);
  unpack(p, std::back_inserter(flagsBack), false);
  EXPECT_EQ(intsBack, ints);
  EXPECT_EQ(flagsBack, flags);
  EXPECT_EQ(p.getState(), Packer::PACKUNPACKED);
  EXPECT_EQ(fatalText([&] { pack(p, ints.end(), ints.begin()); }),
            "Packer::pack(STL): InputIterators appear to be in the wrong order.");
  std::vector<int> out;
  Packer badMagic = fromBytes(message({0x7F, 0x44, 0, 1, 0, 0x05, 0, 0, 0, 0, 0x7E}));
  EXPECT_EQ(fatalText([&] { unpack(badMagic, std::back_inserter(out), 0); }),
            "Packer::unpack(STL): Bad magic number 68, expected 67.");
  Packer badVersion = fromBytes(message({0x7F, 0x43, 0, 2, 0, 0x05, 0, 0, 0, 0, 0x7E}));
  EXPECT_EQ(fatalText([&] { unpack(badVersion, std::back_inserter(out), 0); }),
            "Packer::unpack(STL): Bad version number 2, expected 1.");
  // A count beyond what the message can hold is not believed.
  Packer forged = fromBytes(message({0x7F, 0x43, 0, 1, 0, 0x05, 0xFF, 0xFF, 0xFF, 0x7F, 0x05, 1, 0, 0, 0, 0x7E}));
  EXPECT_EQ(fatalText([&] { unpack(forged, std::back_inserter(out), 0); }),
            "Packer::unpack(STL): Bad element count 2147483647 with 6 bytes left.");
  EXPECT_TRUE(out.empty());
}

TEST_F(PackerTest, ForgedHeadersAndEntries) {
  auto twoInts = [] { return message({0x05, 0x01, 0, 0, 0, 0x05, 0x02, 0, 0, 0}, 6); };
  Bytes m = twoInts();
  m[4] = 2;
  EXPECT_EQ(fatalText([&] { fromBytes(m); }), "Packer::Packer(size,const buf): Bad version received.");
  m = twoInts();
  m[8] = 11;
  EXPECT_EQ(reasonOf([&] { fromBytes(m); }),
            "Bad message received. Body length 11 does not fit a message of 26 bytes.");
  EXPECT_EQ(reasonOf([&] { Packer(10, static_cast<unsigned char const*>(m.data())); }),
            "Bad message received. Message of 10 bytes is shorter than its header.");
  m = twoInts();
  m[0] = 0;
  unsigned char* raw = new unsigned char[m.size()];
  std::memcpy(raw, m.data(), m.size());
  // The adopted buffer is freed when the constructor raises.
  EXPECT_EQ(fatalText([&] { Packer(static_cast<int>(m.size()), raw); }),
            "Packer::Packer(size,buf): Bad message received. Magic was 40505856 expected 40506070.");
  struct Case {
    Bytes body;
    char const* text;
  };
  std::vector<Case> const cases = {
      {{0x05, 1, 0}, "Corrupt message: the entry at offset 16 runs past the end of the message (19 bytes)."},
      {{0x91, 0x00, 0x00, 0x00, 0x40, 0x61, 0x00},
       "Corrupt message: the entry at offset 16 runs past the end of the message (23 bytes)."},
      {{0x32}, "Unknown DataType 50."},
      {{0x11, 0, 0, 0, 0}, "Corrupt message: the vSTRING entry at offset 16 is not an array."},
      {{0x80, 0xFF, 0xFF, 0xFF, 0xFF}, "Corrupt message: the entry at offset 16 is an array of ArrayOfvNOTYPE."},
      {{0xFE, 0x05, 0x00, 0x00, 0x00}, "Corrupt message: the entry at offset 16 is an array of ArrayOfvENDFRAME."},
      {{0xCB, 0x01, 0, 0, 0, 0, 0, 0, 0, 0x04, 0, 0, 0},
       "Corrupt message: the address-of entry at offset 16 does not belong to this message."},
      // An array count of four thousand million elements in a 30-byte message.
      {{0x8C, 0x00, 0x00, 0x00, 0xF0, 1, 2, 3, 4, 5, 6, 7, 8},
       "Corrupt message: the entry at offset 16 runs past the end of the message (29 bytes)."},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.text);
    Packer p = fromBytes(message(c.body));
    EXPECT_EQ(reasonOf([&] { p.getNElements(); }), c.text);
    // And the byte order walk, with the header in the other order.
    Bytes swapped = message(c.body);
    for (int w = 0; w < 4; ++w) std::reverse(swapped.begin() + 4 * w, swapped.begin() + 4 * w + 4);
    EXPECT_EQ(reasonOf([&] { fromBytes(swapped); }), c.text);
  }
  // The forged count is refused before anything is allocated for it.
  Packer forged = fromBytes(message(cases.back().body));
  double d[1];
  EXPECT_EQ(reasonOf([&] { forged.unpack(d); }), cases.back().text);
}

}  // namespace

TEST_F(PackerTest, SwapExchangesTheWholeState) {
  float const samples[] = {1.5f, 2.5f, 3.5f};
  Packer a(0);
  a.pack(7);
  a.packAddressOf(samples, 3);
  a.pack(8);
  Packer received = fromBytes(finish(a, 42));
  EXPECT_EQ(take<int>(received), 7);
  Packer b(0);
  b.pack(99);
  b.swap(received);
  EXPECT_EQ(takeArray<float>(b), (std::vector<float>{1.5f, 2.5f, 3.5f}));
  EXPECT_EQ(take<int>(b), 8);
  EXPECT_EQ(b.getMessageTag(), 42);
  EXPECT_EQ(b.getState(), Packer::PACKUNPACKED);
  // The other side holds what b was packing, and finishes it as usual.
  Packer again = fromBytes(finish(received, 5));
  EXPECT_EQ(take<int>(again), 99);
}
