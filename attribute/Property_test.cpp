// Property: typed values with conversions between all types, and the packed form byte for byte.

#include "attribute/Property.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "attribute/AttributeTesting.h"
#include "foundation/Packer.h"

using attribute_testing::Bytes;
using attribute_testing::bodyOf;
using attribute_testing::expectFailure;
using attribute_testing::expectFailureFrom;
using attribute_testing::receive;

TEST(Property, ConstructorForms) {
  Property b(vUCString("b"), static_cast<unsigned char>(5));
  EXPECT_EQ(1, *static_cast<uint8_t const*>(b.getData()));  // stored as 0 or 1
  vString const sv[2] = {vString("a"), vString("b")};
  EXPECT_STREQ("b", Property(vUCString("sv"), 2, sv).getString(2).c_str());
  int8_t const raw[2] = {-1, 7};
  Property g(vUCString("g"), vINT8, 2, raw);
  EXPECT_EQ(-1, g.getInt32(1));
  EXPECT_STREQ("7", g.getString(2).c_str());
  EXPECT_EQ(0, Property(vUCString("z"), vUINT16, 4, nullptr).getUInt16(4));
}

TEST(Property, RedefineAndResize) {
  Property p(vUCString("p"), 5);
  p.redefine(vUCString("q"), vFLOAT32, 2, nullptr);
  p.setFloat32(3.5f, 1);
  p.resize(4);
  EXPECT_EQ(3.5f, p.getFloat32(1));
  EXPECT_EQ(0.0f, p.getFloat32(4));

  vString const sv[2] = {vString("x"), vString("y")};
  p.redefine(vUCString("r"), 2, sv);
  p.resize(3);
  EXPECT_STREQ("", p.getString(3).c_str());

  expectFailureFrom([&] { Property bad(vUCString(" "), 1.0); }, "Property::redefine(generic)",
                    "Can't redefine with a blank name.", "Property");
  // A type a property cannot hold: refused, the property unchanged.
  expectFailure([&] { p.redefine(vUCString("w"), vINT64, 1, nullptr); }, "Property::resize()", "Invalid datatype");
  EXPECT_STREQ("R", p.getName().c_str());

  Property none;  // no type
  expectFailure([&] { none.resize(2); }, "Property::resize()", "Trying to resize an uninitialized Property.");
  expectFailure([&] { none.getString(); }, "Property::getString()", "Invalid data type.");
  expectFailure([] { Property(vUCString("range"), 1.0).getFloat64(2); }, "Property::myGetOffset()",
                "Requesting element 2 in property RANGE ... valid range is 1..1");
}

TEST(Property, NumericConversionsFollowC) {
  EXPECT_EQ(3, Property(vUCString("d"), 3.99).getInt16());
  EXPECT_EQ(2147483647, Property(vUCString("big"), 1e12).getInt32());  // pinned, not undefined
  EXPECT_EQ(static_cast<short>(70000), Property(vUCString("i"), 70000).getInt16());  // integers wrap as in C
  // Setters store into the property's own type.
  Property s(vUCString("s"), static_cast<short>(0));
  s.setFloat64(12.9);
  EXPECT_EQ(12, s.getInt16());
  s.setUInt16(65535);
  EXPECT_EQ(-1, s.getInt16());
  Property bb(vUCString("bb"), static_cast<unsigned char>(0));
  bb.setFloat64(0.1);
  EXPECT_TRUE(bb.getBool8());
}

TEST(Property, TextConversions) {
  EXPECT_STREQ("4000000000", Property(vUCString("a"), 4000000000u).getString().c_str());
  EXPECT_STREQ("1.500000", Property(vUCString("a"), 1.5f).getString().c_str());
  EXPECT_STREQ("true", Property(vUCString("a"), static_cast<unsigned char>(1)).getString().c_str());
  EXPECT_STREQ("false", Property(vUCString("a"), static_cast<unsigned char>(0)).getString().c_str());

  EXPECT_EQ(42, Property(vUCString("t"), " 42 ").getInt32());
  EXPECT_TRUE(Property(vUCString("t"), " 42 ").getBool8());
  EXPECT_TRUE(Property(vUCString("t"), "TRUE").getBool8());
  EXPECT_FALSE(Property(vUCString("t"), "False").getBool8());

  expectFailureFrom([&] { Property(vUCString("x"), "12abc").getFloat64(); }, "Property::getFloat64()",
                    "Unable to convert string value (12abc) to Float64 in property X", "Property");

  // Setters into text format as the getters do; setString parses into the property's type.
  Property s(vUCString("s"), "");
  s.setInt32(-12);
  EXPECT_STREQ("-12", s.getString().c_str());
  s.setBool8(false);
  EXPECT_STREQ("false", s.getString().c_str());
  Property n(vUCString("num"), 0);
  n.setString("3.9");
  EXPECT_EQ(3, n.getInt32());
  Property bo(vUCString("bo"), static_cast<unsigned char>(0));
  bo.setString("TRUE");
  EXPECT_TRUE(bo.getBool8());
  bo.setString("2");
  EXPECT_TRUE(bo.getBool8());
}

TEST(Property, ComparisonByNameAndDeep) {
  Property a(vUCString("same"), 1);
  Property b(vUCString("SAME"), 2.0);
  EXPECT_TRUE(a == b);
  EXPECT_FALSE(a.compare(b));
  EXPECT_TRUE(Property(vUCString("a"), 1) < Property(vUCString("b"), 1));
  EXPECT_FALSE(a.compare(Property(vUCString("same"), 2)));
  int const two[2] = {1, 2};
  EXPECT_FALSE(a.compare(Property(vUCString("same"), 2, two)));
  EXPECT_FALSE(Property(vUCString("s"), "x").compare(Property(vUCString("s"), "y")));
  Property c(a);
  c.setInt32(9);
  EXPECT_EQ(1, a.getInt32());  // copies are deep
  c = b;
  EXPECT_TRUE(c.compare(b));
}

TEST(Property, PackedFormByteExact) {
  Packer p(0);
  unsigned char const flags[3] = {1, 0, 1};
  Property(vUCString("f64"), -0.25).pack(p);
  Property(vUCString("b8"), 3, flags).pack(p);
  vString const texts[2] = {vString("ab"), vString("")};
  Property(vUCString("str"), 2, texts).pack(p);
  Property(vUCString("none"), vINT32, 0, nullptr).pack(p);

  Bytes b;
  b.frame(1301, 1).text("F64").int32(vFLOAT64).int32(1).array<double>(vFLOAT64, {-0.25}).end();
  b.frame(1301, 1).text("B8").int32(vBOOL8).int32(3).boolArray({true, false, true}).end();
  b.frame(1301, 1).text("STR").int32(vSTRING).int32(2).text("ab").text("").end();
  b.frame(1301, 1).text("NONE").int32(vINT32).int32(0).end();
  EXPECT_EQ(b.body(), bodyOf(p));

  std::unique_ptr<Packer> r = receive(p);
  std::vector<Property> read(4);
  for (Property& q : read) q.unpack(*r);
  EXPECT_TRUE(read[0].compare(Property(vUCString("f64"), -0.25)));
  EXPECT_FALSE(read[1].getBool8(2));
  EXPECT_STREQ("", read[2].getString(2).c_str());
  EXPECT_STREQ("NONE", read[3].getName().c_str());
}

TEST(Property, UnpackRefusals) {
  Property q(vUCString("keep"), 1);
  struct Row {
    Bytes bytes;
    char const* reason;
  } const rows[] = {
      {Bytes().frame(1300, 1).text("X").end(), "Bad magic value, not a Property."},
      {Bytes().frame(1301, 2).text("X").end(), "Bad Property Version, not supported."},
      {Bytes().frame(1301, 1).text("X").int32(vINT64).int32(1).array<int64_t>(vINT64, {1}).end(),
       "Unsupported data type."},
      {Bytes().frame(1301, 1).text("X").int32(vINT32).int32(1000000).array<int32_t>(vINT32, {1}).end(),
       "Bad element count 1000000 for Property X."}};
  for (Row const& r : rows) expectFailure([&] { q.unpack(*r.bytes.reader()); }, "Property::unpack()", r.reason);
  EXPECT_STREQ("KEEP", q.getName().c_str());
  EXPECT_EQ(1, q.getInt32());
}
