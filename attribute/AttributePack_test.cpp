// The packed attribute, byte for byte: the version 5 frame as written, frames
// of versions 1 to 4 as older writers built them, a frame from a newer
// writer, and streams that must be refused. The expected bytes are built by
// hand from fixed-width values, so they are the same on 32- and 64-bit hosts.

#include <gtest/gtest.h>

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
  Attribute a("cdp", "header", vINT32);
  a.resize(3);
  a.setInt32(1, 10);
  a.setInt32(2, 20);
  a.setInt32(3, -30);
  a.setStatisticValues(-30.0, 20.0, 0);
  a.setOriginalDataType(vINT16);

  Bytes b;
  head(b, 5, "CDP", "HEADER", vINT32, 1, 0.0, 0.0).boolean(false).int64(3).array<int32_t>(vINT32, {10, 20, -30});
  EXPECT_EQ(tail(b, -30.0, 20.0, 0, vINT16).body(), packed(a));

  // A variable length vector.
  Attribute t("trace", "seismic", vFLOAT32, Attribute::VARIABLE_LENGTH, 4.0, 100.0);
  t.resize(2, nullptr, new int[2]{2, 1});
  float* p = t.getFloat32Pointer(1);
  p[0] = 1.5f;
  p[1] = -2.0f;
  p[2] = 8.25f;

  Bytes v;
  head(v, 5, "TRACE", "SEISMIC", vFLOAT32, Attribute::VARIABLE_LENGTH, 4.0, 100.0).boolean(true).int64(2);
  v.array<int32_t>(vINT32, {2, 1}).array<float>(vFLOAT32, {1.5f, -2.0f, 8.25f});
  EXPECT_EQ(tail(v).body(), packed(t));
}

TEST(AttributePack, EveryTypeAndADefinitionByteExact) {
  Attribute i16("a", "c", vINT16, 2);
  i16.resize(1);
  i16.getInt16Pointer(1)[0] = -1;
  i16.getInt16Pointer(1)[1] = 300;
  Bytes b16;
  head(b16, 5, "A", "C", vINT16, 2, 0.0, 0.0).boolean(true).int64(1).array<int16_t>(vINT16, {-1, 300});
  EXPECT_EQ(tail(b16).body(), packed(i16));

  Attribute s("e", "", vSTRING, 2);
  s.resize(1);
  s.getStringPointer(1)[0] = "line";
  Bytes bs;
  head(bs, 5, "E", "", vSTRING, 2, 0.0, 0.0).boolean(true).int64(1).texts({"line", ""});
  EXPECT_EQ(tail(bs).body(), packed(s));
  // A definition writes no arrays; its statistics follow.
  Attribute d("def", "k", vFLOAT64, 50, 2.0, -4.0);
  d.setStatisticValues(-1.0, 1.0, 7);
  Bytes b;
  head(b, 5, "DEF", "K", vFLOAT64, 50, 2.0, -4.0).boolean(true).int64(0);
  EXPECT_EQ(tail(b, -1.0, 1.0, 7).body(), packed(d));
}

TEST(AttributePack, RoundTripOfEveryShape) {
  Attribute v("rt_var", "k", vSTRING, Attribute::VARIABLE_LENGTH, 1.0, 2.0);
  v.resize(3, nullptr, new int[3]{1, 0, 2});
  vString* s = v.getStringPointer(1);
  s[0] = "x";
  s[1] = "";
  s[2] = "zz";
  v.setStatisticValues(1.0, 2.0, 3);
  v.setOriginalDataType(vFLOAT32);

  Attribute f("rt_fix", "k", vINT16, 3);
  f.resize(2);
  for (int i = 0; i < 6; ++i) f.getInt16Pointer(1)[i] = static_cast<short>(i * 11);

  Attribute e("rt_vec0", "k", vFLOAT32, Attribute::VECTOR_LENGTH);
  e.resize(4);  // instances without values

  Packer p(100);
  v.pack(p);
  f.pack(p);
  e.pack(p);
  p.pack(static_cast<int32_t>(77));
  std::unique_ptr<Packer> r = receive(p);

  Attribute v2(*r);
  EXPECT_TRUE(v2.compare(v));
  EXPECT_EQ(0, v2.getLength(2));
  EXPECT_STREQ("zz", v2.getStringPointer(3)[1].c_str());

  // Reading into an attribute that holds data replaces them.
  Attribute f2("old", "k", vSTRING);
  f2.resize(3);
  f2.unpack(*r);
  EXPECT_TRUE(f2.compare(f));
  EXPECT_EQ(55.0, f2.getValue(2, 3));

  Attribute e2(*r);
  EXPECT_EQ(4u, e2.getNInstances());
  int32_t tail = 0;
  r->unpack(tail);
  EXPECT_EQ(77, tail);
}

TEST(AttributePack, DefaultAttributeTravelsWithoutData) {
  Attribute d;
  d.setName("untyped");
  Bytes b;
  head(b, 5, "UNTYPED", "", vNOTYPE, 0, 0.0, 0.0).boolean(true).int64(0);
  EXPECT_EQ(tail(b).body(), packed(d));
  Attribute back(*b.reader());
  EXPECT_TRUE(back.compare(d));

  Bytes filled;
  head(filled, 5, "UNTYPED", "", vNOTYPE, 0, 0.0, 0.0).boolean(true).int64(2).end();
  expectFailure([&] { Attribute a(*filled.reader()); }, "Attribute::unpack",
                "Unsupported data type 'vNOTYPE' for Attribute UNTYPED.");
}

TEST(AttributePack, ReadsVersions1And2) {
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

  Bytes s;
  head(s, 1, "OLD1S", "K", vFLOAT64, 1, 0.0, 0.0).int32(1).array<double>(vFLOAT64, {2.5}).end();
  Attribute scalar(*s.reader());
  EXPECT_FALSE(scalar.isVector());

  Bytes v;
  head(v, 1, "OLD1V", "K", vINT32, Attribute::VARIABLE_LENGTH, 0.0, 0.0).int32(2).array<int32_t>(vINT32, {1, 2});
  v.array<int32_t>(vINT32, {7, 8, 9}).end();
  Attribute var(*v.reader());
  EXPECT_FALSE(var.isVector());
  EXPECT_EQ(9.0, var.getValue(2, 2));

  // Version 2 adds the vector flag.
  Bytes two;
  head(two, 2, "OLD2", "K", vINT32, 1, 4.0, 0.0).boolean(true).int32(1).array<int32_t>(vINT32, {42}).end();
  Attribute a2(*two.reader());
  EXPECT_TRUE(a2.isVector());
}

TEST(AttributePack, ReadsVersion3WithStatisticsBeforeTheData) {
  Bytes b;
  head(b, 3, "OLD3", "K", vFLOAT32, 2, 0.5, 1.0).boolean(true).int32(1).float64(-3.0).float64(9.0).int64(4);
  b.array<float>(vFLOAT32, {0.25f, 0.75f}).end();
  Attribute a(*b.reader());
  EXPECT_EQ(0.75, a.getValue(1, 2));
  double mn, mx;
  long long nz;
  a.getStatisticValues(mn, mx, nz);
  EXPECT_EQ(4, nz);

  // A version 3 definition: statistics, and no data.
  Bytes d;
  head(d, 3, "OLD3D", "K", vINT32, 1, 0.0, 0.0).boolean(false).int32(0).float64(1).float64(2).int64(3).end();
  Attribute def(*d.reader());
  EXPECT_EQ(0u, def.getNInstances());
  def.getStatisticValues(mn, mx, nz);
  EXPECT_EQ(2.0, mx);
}

TEST(AttributePack, ReadsVersion4WithStatisticsAfterTheData) {
  Bytes b;
  head(b, 4, "OLD4", "K", vSTRING, 1, 0.0, 0.0).boolean(false).int64(2).texts({"p", "q"});
  b.float64(0.5).float64(1.5).int64(1).end();
  b.text("after");
  std::unique_ptr<Packer> r = b.reader();
  Attribute a(*r);
  EXPECT_STREQ("q", a.getString(2).c_str());
  double mn, mx;
  long long nz;
  a.getStatisticValues(mn, mx, nz);
  EXPECT_EQ(1.5, mx);
  vString after;
  r->unpack(after);
  EXPECT_STREQ("after", after.c_str());

  // A version 4 writer with a 32-bit count.
  Bytes c;
  head(c, 4, "OLD4C", "K", vINT64, 1, 0.0, 0.0).boolean(false).int32(1).array<int64_t>(vINT64, {-5});
  c.float64(0).float64(0).int64(0).end();
  EXPECT_EQ(-5, Attribute(*c.reader()).getInt64(1));
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
  Bytes magic, huge, type, short_, lengths, negLength, badLength, origin;
  magic.frame(1240, 5).text("X").end();
  head(huge, 5, "HUGE", "K", vINT32, 1, 0.0, 0.0).boolean(false).int64(1LL << 32).end();
  head(type, 5, "ODD", "K", vUINT16, 1, 0.0, 0.0).boolean(false).int64(0).end();
  // A count that does not agree with the data is refused before anything
  // is allocated for it.
  head(short_, 5, "SHORT", "K", vINT32, 2, 0.0, 0.0).boolean(true).int64(3).array<int32_t>(vINT32, {1, 2}).end();
  head(lengths, 5, "LENS", "K", vINT32, Attribute::VARIABLE_LENGTH, 0.0, 0.0).boolean(false).int64(2);
  lengths.array<int32_t>(vINT32, {1}).end();
  head(negLength, 5, "NEGLEN", "K", vINT32, Attribute::VARIABLE_LENGTH, 0.0, 0.0).boolean(false).int64(2);
  negLength.array<int32_t>(vINT32, {-1, 2}).array<int32_t>(vINT32, {5, 6}).end();
  head(badLength, 5, "BADLEN", "K", vINT32, -7, 0.0, 0.0).boolean(false).int64(0).end();
  head(origin, 5, "ORIGIN", "K", vINT32, 1, 0.0, 0.0).boolean(false).int64(0);
  origin.float64(0).float64(0).int64(0).int32(1 << 21).end();
  struct Row {
    Bytes const* bytes;
    char const* method;
    char const* reason;
  } const rows[] = {
      {&magic, "Attribute::unpack", "Bad magic value 1240, expected 1241."},
      {&huge, "Attribute::unpack", "Number of instances is too large for this attribute (4294967296)."},
      {&type, "Attribute::unpack", "Unsupported data type 'vUINT16' for Attribute ODD."},
      {&short_, "Attribute::unpack", "Attribute SHORT expects 6 values, the stream has 2."},
      {&lengths, "Attribute::unpack", "Attribute LENS expects 2 instance lengths, the stream has 1."},
      {&negLength, "Attribute::myBuildOffsets", "Length -1 of instance 1 is negative for Attribute NEGLEN."},
      {&badLength, "Attribute::myContructorInitialize",
       "Attribute (BADLEN) length was -7, it must be >=0 or Attribute::VARIABLE_LENGTH."},
      {&origin, "Attribute::unpack", "Unsupported data type 'DataType(2097152)' for Attribute ORIGIN."}};
  for (Row const& r : rows) {
    SCOPED_TRACE(r.reason);
    expectFailure([&] { Attribute a(*r.bytes->reader()); }, r.method, r.reason);
  }

  // A failed read leaves the attribute as it was.
  Attribute keep("keep", "k", vINT32);
  keep.resize(2);
  keep.setInt32(2, 8);
  expectFailure([&] { keep.unpack(*short_.reader()); }, "Attribute::unpack",
                "Attribute SHORT expects 6 values, the stream has 2.");
  EXPECT_STREQ("KEEP", keep.getName().c_str());
  EXPECT_EQ(8, keep.getInt32(2));
}
