// The packed attribute, byte for byte; expected bytes are built by hand from
// fixed-width values, so they are the same on 32- and 64-bit hosts.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "attribute/Attribute.h"
#include "attribute/AttributeTesting.h"
#include "foundation/Packer.h"
#include "foundation/vString.h"

using attribute_testing::Bytes;
using attribute_testing::bodyOf;
using attribute_testing::expectFailure;
using attribute_testing::receive;

namespace {

std::vector<unsigned char> packed(Attribute const& a) {
  Packer p(0);
  a.pack(p);
  return bodyOf(p);
}

// The head every frame shares up to the length.
Bytes& head(Bytes& b, int16_t version, char const* name, char const* cls, int32_t type, int32_t length,
            double sampleRate, double firstTime) {
  return b.frame(1241, version).text(name).text(cls).int32(type).int32(length).float64(sampleRate).float64(firstTime);
}

// The tail of a version 5 frame: statistics, original type, end.
Bytes& tail(Bytes& b, double mn = 0, double mx = 0, int64_t zeros = 0, int32_t original = 0) {
  return b.float64(mn).float64(mx).int64(zeros).int32(original).end();
}

}  // namespace

TEST(AttributePack, ScalarAndVariableLengthFramesByteExact) {
  Attribute a = attribute_testing::filled("cdp", "header", vINT32, {10, 20, -30});
  a.setStatisticValues(-30.0, 20.0, 0);
  a.setOriginalDataType(vINT16);

  Bytes b;
  head(b, 5, "CDP", "HEADER", vINT32, 1, 0.0, 0.0).boolean(false).int64(3).array<int32_t>(vINT32, {10, 20, -30});
  EXPECT_EQ(tail(b, -30.0, 20.0, 0, vINT16).body(), packed(a));

  Attribute t("trace", "seismic", vFLOAT32, Attribute::VARIABLE_LENGTH, 4.0, 100.0);
  t.resize(2, nullptr, new int[2]{2, 1});
  float const values[] = {1.5f, -2.0f, 8.25f};
  std::copy(values, values + 3, t.getFloat32Pointer(1));

  Bytes v;
  head(v, 5, "TRACE", "SEISMIC", vFLOAT32, Attribute::VARIABLE_LENGTH, 4.0, 100.0).boolean(true).int64(2);
  v.array<int32_t>(vINT32, {2, 1}).array<float>(vFLOAT32, {1.5f, -2.0f, 8.25f});
  EXPECT_EQ(tail(v).body(), packed(t));
}

TEST(AttributePack, RoundTripOfEveryShape) {
  Attribute v("rt_var", "k", vSTRING, Attribute::VARIABLE_LENGTH, 1.0, 2.0);
  v.resize(3, nullptr, new int[3]{1, 0, 2});
  v.getStringPointer(1)[0] = "x";
  v.getStringPointer(3)[1] = "zz";
  v.setStatisticValues(1.0, 2.0, 3);
  v.setOriginalDataType(vFLOAT32);

  Attribute f("rt_fix", "k", vINT16, 3);
  f.resize(2);
  for (int i = 0; i < 6; ++i) f.getInt16Pointer(1)[i] = static_cast<short>(i * 11);

  Attribute e("rt_vec0", "k", vFLOAT32, Attribute::VECTOR_LENGTH);
  e.resize(4);  // instances without values

  Attribute d;  // a default attribute travels without data
  d.setName("untyped");

  Packer p(100);
  for (Attribute const* a : {&v, &f, &e, &d}) a->pack(p);
  p.pack(static_cast<int32_t>(77));
  std::unique_ptr<Packer> r = receive(p);

  Attribute v2(*r);
  EXPECT_TRUE(v2.compare(v));
  EXPECT_EQ((std::vector<std::string>{"x", "", "zz"}), attribute_testing::stringsOf(v2));
  EXPECT_EQ((std::vector<int>{1, 0, 2}), attribute_testing::lengthsOf(v2));

  // Reading into an attribute that holds data replaces them.
  Attribute f2("old", "k", vSTRING);
  f2.resize(3);
  f2.unpack(*r);
  EXPECT_TRUE(f2.compare(f));
  EXPECT_EQ(55.0, f2.getValue(2, 3));

  Attribute e2(*r);
  EXPECT_EQ(4u, e2.getNInstances());
  EXPECT_TRUE(Attribute(*r).compare(d));
  int32_t tail = 0;
  r->unpack(tail);
  EXPECT_EQ(77, tail);
}

TEST(AttributePack, ReadsVersions1To4) {
  // No vector flag, a 32-bit count, no statistics, no original type.
  Bytes b;
  head(b, 1, "OLD1", "K", vINT16, 2, 0.0, 0.0).int32(2).array<int16_t>(vINT16, {1, 2, 3, 4}).end();
  b.int32(5);
  std::unique_ptr<Packer> r = b.reader();
  Attribute a(*r);
  EXPECT_TRUE(a.isVector());  // derived: the length is neither 1 nor variable
  EXPECT_EQ(4.0, a.getValue(2, 2));
  int32_t next = 0;
  r->unpack(next);
  EXPECT_EQ(5, next);

  Bytes two;  // adds the vector flag
  head(two, 2, "OLD2", "K", vINT32, 1, 4.0, 0.0).boolean(true).int32(1).array<int32_t>(vINT32, {42}).end();
  EXPECT_TRUE(Attribute(*two.reader()).isVector());

  // Version 3 has statistics before the data, version 4 after them.
  double mn, mx;
  long long nz;
  Bytes three;
  head(three, 3, "OLD3", "K", vFLOAT32, 2, 0.5, 1.0).boolean(true).int32(1).float64(-3.0).float64(9.0).int64(4);
  three.array<float>(vFLOAT32, {0.25f, 0.75f}).end();
  Attribute a3(*three.reader());
  EXPECT_EQ(0.75, a3.getValue(1, 2));
  a3.getStatisticValues(mn, mx, nz);
  EXPECT_EQ(4, nz);

  Bytes four;
  head(four, 4, "OLD4", "K", vSTRING, 1, 0.0, 0.0).boolean(false).int64(2).texts({"p", "q"});
  four.float64(0.5).float64(1.5).int64(1).end().text("after");
  r = four.reader();
  Attribute a4(*r);
  EXPECT_STREQ("q", a4.getString(2).c_str());
  a4.getStatisticValues(mn, mx, nz);
  EXPECT_EQ(1.5, mx);
  vString after;
  r->unpack(after);
  EXPECT_STREQ("after", after.c_str());
}

TEST(AttributePack, SkipsWhatANewerWriterAdded) {
  Bytes b;
  head(b, 6, "NEWER", "K", vINT32, 1, 0.0, 0.0).boolean(false).int64(2).array<int32_t>(vINT32, {3, 4});
  b.float64(1).float64(2).int64(0).int32(vINT16);
  // Fields of version 6 that this reader does not know:
  b.int32(99).text("future field").frame(77, 1).int64(1).end().end();
  b.int32(12345);
  std::unique_ptr<Packer> r = b.reader();
  Attribute a(*r);
  EXPECT_EQ(4, a.getInt32(2));
  EXPECT_EQ(vINT16, a.getOriginalDataType());
  int32_t next = 0;
  r->unpack(next);
  EXPECT_EQ(12345, next);
}

TEST(AttributePack, RefusesBadStreams) {
  Bytes magic, huge, type, short_, lengths;
  magic.frame(1240, 5).text("X").end();
  head(huge, 5, "HUGE", "K", vINT32, 1, 0.0, 0.0).boolean(false).int64(1LL << 32).end();
  head(type, 5, "ODD", "K", vUINT16, 1, 0.0, 0.0).boolean(false).int64(0).end();
  // A count that does not agree with the data is refused before anything is allocated for it.
  head(short_, 5, "SHORT", "K", vINT32, 2, 0.0, 0.0).boolean(true).int64(3).array<int32_t>(vINT32, {1, 2}).end();
  head(lengths, 5, "LENS", "K", vINT32, Attribute::VARIABLE_LENGTH, 0.0, 0.0).boolean(false).int64(2);
  lengths.array<int32_t>(vINT32, {1}).end();
  struct Row {
    Bytes const* bytes;
    char const* reason;
  } const rows[] = {{&magic, "Bad magic value 1240, expected 1241."},
                    {&huge, "Number of instances is too large for this attribute (4294967296)."},
                    {&type, "Unsupported data type 'vUINT16' for Attribute ODD."},
                    {&short_, "Attribute SHORT expects 6 values, the stream has 2."},
                    {&lengths, "Attribute LENS expects 2 instance lengths, the stream has 1."}};
  // A failed read leaves the attribute as it was.
  Attribute keep = attribute_testing::filled("keep", "k", vINT32, {0, 8});
  for (Row const& r : rows) {
    SCOPED_TRACE(r.reason);
    expectFailure([&] { keep.unpack(*r.bytes->reader()); }, "Attribute::unpack", r.reason);
    EXPECT_STREQ("KEEP", keep.getName().c_str());
    EXPECT_EQ(8, keep.getInt32(2));
  }
}
