// Property: typed values with conversions between all types, and the packed
// form byte for byte.

#include "attribute/Property.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <utility>
#include <string>
#include <vector>

#include "attribute/AttributeTesting.h"
#include "foundation/Packer.h"

using attribute_testing::Bytes;
using attribute_testing::bodyOf;
using attribute_testing::expectFailure;
using attribute_testing::expectFailureFrom;
using attribute_testing::receive;

// Each scalar constructor's type is checked byte for byte by the packed form.
TEST(Property, ScalarConstructors) {
  Property b(vUCString("b"), static_cast<unsigned char>(5));
  EXPECT_EQ(1, *static_cast<uint8_t const*>(b.getData()));  // stored as 0 or 1
  Property c(vUCString("c"), "chars");
  EXPECT_STREQ("chars", c.getString(1).c_str());
}

TEST(Property, ArrayForms) {
  double const dv[3] = {1.0, 2.0, 3.0};
  Property d(vUCString("dv"), 3, dv);
  EXPECT_EQ(3.0, d.getFloat64(3));
  vString const sv[2] = {vString("a"), vString("b")};
  Property s(vUCString("sv"), 2, sv);
  EXPECT_STREQ("b", s.getString(2).c_str());
  unsigned char const bv[3] = {0, 2, 1};
  Property b(vUCString("bv"), 3, bv);
  EXPECT_TRUE(b.getBool8(2));

  int8_t const raw[2] = {-1, 7};
  Property g(vUCString("g"), vINT8, 2, raw);
  EXPECT_EQ(-1, g.getInt32(1));
  EXPECT_STREQ("7", g.getString(2).c_str());
  Property z(vUCString("z"), vUINT16, 4, nullptr);
  EXPECT_EQ(0, z.getUInt16(4));
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

  expectFailure([&] { p.redefine(vUCString("  "), vINT32, 1, nullptr); }, "Property::redefine(generic)",
                "Can't redefine with a blank name.");
  expectFailureFrom([&] { Property bad(vUCString(" "), 1.0); }, "Property::redefine(generic)",
                    "Can't redefine with a blank name.", "Property");
  // A type a property cannot hold: refused, the property unchanged.
  expectFailure([&] { p.redefine(vUCString("w"), vINT64, 1, nullptr); }, "Property::resize()", "Invalid datatype");
  EXPECT_STREQ("R", p.getName().c_str());

  // An uninitialised property has no type.
  Property none;
  expectFailure([&] { none.resize(2); }, "Property::resize()", "Trying to resize an uninitialized Property.");
  expectFailure([&] { none.getString(); }, "Property::getString()", "Invalid data type.");
  // setBool8 reports as setInt16.
  expectFailure([&] { none.setBool8(true); }, "Property::setInt16()", "Invalid data type.");
}

TEST(Property, ElementRange) {
  Property p(vUCString("range"), 1.0);
  std::pair<int, std::function<void()>> const rows[] = {
      {2, [&] { p.getFloat64(2); }}, {0, [&] { p.setInt32(1, 0); }}};
  for (auto const& r : rows)
    expectFailure(r.second, "Property::myGetOffset()",
                  "Requesting element " + std::to_string(r.first) + " in property RANGE ... valid range is 1..1");
}

TEST(Property, NumericConversionsFollowC) {
  Property d(vUCString("d"), 3.99);
  EXPECT_EQ(3, d.getInt16());
  Property n(vUCString("n"), -2.7f);
  EXPECT_EQ(-2, n.getInt32());
  Property big(vUCString("big"), 1e12);
  EXPECT_EQ(2147483647, big.getInt32());  // pinned, not undefined
  Property i(vUCString("i"), 70000);
  EXPECT_EQ(static_cast<short>(70000), i.getInt16());  // integers wrap as in C

  // Setters store into the property's own type.
  Property s(vUCString("s"), static_cast<short>(0));
  s.setFloat64(12.9);
  EXPECT_EQ(12, s.getInt16());
  s.setUInt16(65535);
  EXPECT_EQ(-1, s.getInt16());
  Property f(vUCString("f"), 0.0f);
  f.setInt32(-4);
  EXPECT_EQ(-4.0f, f.getFloat32());
  Property bb(vUCString("bb"), static_cast<unsigned char>(0));
  bb.setFloat64(0.1);
  EXPECT_TRUE(bb.getBool8());
}

TEST(Property, TextConversions) {
  EXPECT_STREQ("4000000000", Property(vUCString("a"), 4000000000u).getString().c_str());
  EXPECT_STREQ("1.500000", Property(vUCString("a"), 1.5f).getString().c_str());
  EXPECT_STREQ("true", Property(vUCString("a"), static_cast<unsigned char>(1)).getString().c_str());
  EXPECT_STREQ("false", Property(vUCString("a"), static_cast<unsigned char>(0)).getString().c_str());

  Property t(vUCString("t"), " 42 ");
  EXPECT_EQ(42, t.getInt32());
  EXPECT_TRUE(t.getBool8());
  EXPECT_TRUE(Property(vUCString("t"), "TRUE").getBool8());
  EXPECT_FALSE(Property(vUCString("t"), "False").getBool8());

  Property word(vUCString("name"), "abc");
  std::pair<char const*, std::function<void()>> const getters[] = {
      {"Int16", [&] { word.getInt16(); }}, {"Bool8", [&] { word.getBool8(); }}};
  for (auto const& g : getters)
    expectFailure(g.second, ("Property::get" + std::string(g.first) + "()").c_str(),
                  "Unable to convert string value (abc) to " + std::string(g.first) + " in property NAME");
  expectFailureFrom([&] { Property(vUCString("x"), "12abc").getFloat64(); }, "Property::getFloat64()",
                    "Unable to convert string value (12abc) to Float64 in property X", "Property");

  // Setters into text format as the getters do.
  Property s(vUCString("s"), "");
  std::pair<std::function<void()>, char const*> const setters[] = {
      {[&] { s.setInt32(-12); }, "-12"}, {[&] { s.setBool8(false); }, "false"}};
  for (auto const& r : setters) {
    r.first();
    EXPECT_STREQ(r.second, s.getString().c_str());
  }

  // setString parses into the property's type.
  Property n(vUCString("num"), 0);
  n.setString("3.9");
  EXPECT_EQ(3, n.getInt32());
  Property bo(vUCString("bo"), static_cast<unsigned char>(0));
  std::pair<Property*, char const*> const refusing[] = {
      {&n, "Int32 in property NUM"}, {&bo, "Bool8 in property BO"}};
  for (auto const& r : refusing)
    expectFailure([&] { r.first->setString("x"); }, "Property::setString()",
                  std::string("Unable to convert string value (x) to ") + r.second);
  EXPECT_EQ(3, n.getInt32());
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
  EXPECT_TRUE(c.compare(a));
  c.setInt32(9);
  EXPECT_EQ(1, a.getInt32());  // copies are deep
  c = b;
  EXPECT_TRUE(c.compare(b));
}

TEST(Property, PackedFormByteExact) {
  Packer p(0);
  unsigned short const us[2] = {1, 65535};
  unsigned int const ui[1] = {4000000000u};
  unsigned char const flags[3] = {1, 0, 1};
  Property(vUCString("i16"), static_cast<short>(-2)).pack(p);
  Property(vUCString("u16"), 2, us).pack(p);
  Property(vUCString("i32"), 7).pack(p);
  Property(vUCString("u32"), 1, ui).pack(p);
  Property(vUCString("f32"), 0.5f).pack(p);
  Property(vUCString("f64"), -0.25).pack(p);
  Property(vUCString("b8"), 3, flags).pack(p);
  vString const texts[2] = {vString("ab"), vString("")};
  Property(vUCString("str"), 2, texts).pack(p);
  Property(vUCString("none"), vINT32, 0, nullptr).pack(p);

  Bytes b;
  b.frame(1301, 1).text("I16").int32(vINT16).int32(1).array<int16_t>(vINT16, {-2}).end();
  b.frame(1301, 1).text("U16").int32(vUINT16).int32(2).array<uint16_t>(vUINT16, {1, 65535}).end();
  b.frame(1301, 1).text("I32").int32(vINT32).int32(1).array<int32_t>(vINT32, {7}).end();
  b.frame(1301, 1).text("U32").int32(vUINT32).int32(1).array<uint32_t>(vUINT32, {4000000000u}).end();
  b.frame(1301, 1).text("F32").int32(vFLOAT32).int32(1).array<float>(vFLOAT32, {0.5f}).end();
  b.frame(1301, 1).text("F64").int32(vFLOAT64).int32(1).array<double>(vFLOAT64, {-0.25}).end();
  b.frame(1301, 1).text("B8").int32(vBOOL8).int32(3).boolArray({true, false, true}).end();
  b.frame(1301, 1).text("STR").int32(vSTRING).int32(2).text("ab").text("").end();
  b.frame(1301, 1).text("NONE").int32(vINT32).int32(0).end();
  EXPECT_EQ(b.body(), bodyOf(p));

  // And back.
  std::unique_ptr<Packer> r = receive(p);
  char const* names[] = {"I16", "U16", "I32", "U32", "F32", "F64", "B8", "STR", "NONE"};
  std::vector<Property> read;
  for (char const* n : names) {
    Property q;
    q.unpack(*r);
    EXPECT_STREQ(n, q.getName().c_str());
    read.push_back(q);
  }
  EXPECT_FALSE(read[6].getBool8(2));
  EXPECT_STREQ("", read[7].getString(2).c_str());
  EXPECT_TRUE(read[5].compare(Property(vUCString("f64"), -0.25)));
}

TEST(Property, PackRefusals) {
  int8_t const raw[1] = {1};
  Property small(vUCString("small"), vINT8, 1, raw);
  Packer p(0);
  expectFailure([&] { small.pack(p); }, "Property::pack()", "Unsupported data type.");

  Bytes magic;
  magic.frame(1300, 1).text("X").end();
  Property q(vUCString("keep"), 1);
  expectFailure([&] { q.unpack(*magic.reader()); }, "Property::unpack()", "Bad magic value, not a Property.");
  Bytes version;
  version.frame(1301, 2).text("X").end();
  expectFailure([&] { q.unpack(*version.reader()); }, "Property::unpack()", "Bad Property Version, not supported.");
  Bytes type;
  type.frame(1301, 1).text("X").int32(vINT64).int32(1).array<int64_t>(vINT64, {1}).end();
  expectFailure([&] { q.unpack(*type.reader()); }, "Property::unpack()", "Unsupported data type.");
  Bytes count;
  count.frame(1301, 1).text("X").int32(vINT32).int32(1000000).array<int32_t>(vINT32, {1}).end();
  expectFailure([&] { q.unpack(*count.reader()); }, "Property::unpack()", "Bad element count 1000000 for Property X.");
  Bytes blank;
  blank.frame(1301, 1).text("").int32(vINT32).int32(0).end();
  expectFailure([&] { q.unpack(*blank.reader()); }, "Property::redefine(generic)", "Can't redefine with a blank name.");
  // Every failed read left the property alone.
  EXPECT_STREQ("KEEP", q.getName().c_str());
  EXPECT_EQ(1, q.getInt32());
}
