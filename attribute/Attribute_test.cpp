// The attribute as a definition and as a block of values.

#include "attribute/Attribute.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "attribute/AttributeTesting.h"

using attribute_testing::doublesOf;
using attribute_testing::expectFailure;
using attribute_testing::expectFailures;

TEST(AttributeDefinition, VectorFlagNamesAndRefusedDefinitions) {
  Attribute t("trace", "seismic", vFLOAT32, 500, 4.0, 100.0);
  expectFailure([&] { t.getPointer(1); }, "Attribute::getPointer", "Attribute TRACE has no data");
  // The vector flag follows the length and the sample rate.
  EXPECT_FALSE(Attribute("a", "c", vINT32, 1, 0.0, 0.0).isVector());
  EXPECT_TRUE(Attribute("a", "c", vINT32, 1, 4.0, 0.0).isVector());
  EXPECT_TRUE(Attribute("a", "c", vINT32, Attribute::VECTOR_LENGTH).isVector());
  EXPECT_FALSE(Attribute("a", "c", vINT32, Attribute::VARIABLE_LENGTH, 0.0).isVector());

  vUCString const name("  cdp ");
  vUCString const cls("\tHeader");
  for (Attribute const& x : {Attribute(name, cls, vINT32), Attribute("cdp", cls, vINT32),
                             Attribute(name, "header", vINT32), Attribute(" CDP\t", " HEADER ", vINT32)})
    EXPECT_EQ("CDP HEADER", std::string(x.getName().c_str()) + " " + x.getClass().c_str());
  expectFailures({
      {[] { Attribute("x", "c", vUINT16); }, "Attribute::mySetDataType",
       "Data Type vUINT16 is unsupported at this time for Attribute:X."},
      {[] { Attribute("offset", "c", vINT32, -2); }, "Attribute::myContructorInitialize",
       "Attribute (OFFSET) length was -2, it must be >=0 or Attribute::VARIABLE_LENGTH."},
  });
}

TEST(AttributeNames, InterningAndOrderAsTheTableGrows) {
  Attribute a("sx", "a", vINT32);
  Attribute b("SX", "b", vFLOAT64);
  EXPECT_TRUE(a == b);
  EXPECT_EQ(&a.getName(), &b.getName());
  a.setName("  new_name ");
  EXPECT_STREQ("NEW_NAME", a.getName().c_str());
  a.setClass("k2");
  EXPECT_STREQ("K2", a.getOriginalClass().c_str());

  Attribute m("zz_order_m", "c", vINT32);
  EXPECT_TRUE(m < Attribute("zz_order_z", "c", vINT32));
  EXPECT_FALSE(m < m);
  // Names interned later between and before the two move their ranks.
  Attribute n("zz_order_n", "c", vINT32);
  EXPECT_TRUE(Attribute("zz_order_a", "c", vINT32) < m);
  EXPECT_TRUE(m < n);
  EXPECT_EQ(m.getNameID()->getID() + 1, n.getNameID()->getID());
}

namespace {

// Two named results, so the compiler cannot build the returned one in place: the return moves.
Attribute oneOfTwo(bool first) {
  Attribute a = attribute_testing::filled("amp", "c", vFLOAT64, {1.5, 2.5, 3.5, 4.5});
  Attribute b("name", "c", vSTRING, 1);
  b.resize(1);
  if (first) return a;
  return b;
}

}  // namespace

TEST(AttributeCopy, CopiesTakeTheDefinitionMovesTakeTheData) {
  Attribute a("amp", "c", vFLOAT64, 3, 2.0, 10.0);
  a.setStatisticValues(-1.5, 7.25, 12);
  a.resize(4);
  Attribute b(a);
  EXPECT_EQ(0u, b.getNInstances());
  EXPECT_TRUE(b.compare(a));
  double mn, mx;
  long long nz;
  b.getStatisticValues(mn, mx, nz);
  EXPECT_EQ(12, nz);
  Attribute c("s", "c", vSTRING, 1);
  c.resize(3);
  c = a;
  EXPECT_EQ(0u, c.getNInstances());
  EXPECT_EQ(4u, a.getNInstances());
  Attribute const& self = c;
  c = self;
  EXPECT_TRUE(c.compare(a));

  Attribute moved = oneOfTwo(true);
  EXPECT_EQ((std::vector<double>{1.5, 2.5, 3.5, 4.5}), doublesOf(moved));
  Attribute s = oneOfTwo(false);
  s = oneOfTwo(true);
  EXPECT_EQ(doublesOf(moved), doublesOf(s));
  // Moved-from ends an empty definition; lengths go along with the data.
  Attribute v("var", "c", vINT32, Attribute::VARIABLE_LENGTH);
  v.resize(2, nullptr, new int[2]{1, 2});
  v.getInt32Pointer(2)[0] = 7;
  std::vector<Attribute> grown;
  grown.push_back(std::move(v));
  for (int i = 0; i < 8; ++i) grown.push_back(Attribute("x", "c", vINT32, 1));  // reallocates
  EXPECT_TRUE(v.compare(grown[0]));
  EXPECT_EQ((std::vector<int>{1, 2}), attribute_testing::lengthsOf(grown[0]));
  EXPECT_EQ(7, grown[0].getInt32Pointer(2)[0]);
}

TEST(AttributeCopy, CompareLooksAtTheDefinition) {
  Attribute a("cmp", "k", vINT32, 1, 0.0);
  // First time is not part of it; the original type only when both have one.
  EXPECT_TRUE(a.compare(Attribute("cmp", "k", vINT32, 1, 0.0, 5.0)));
  for (Attribute const& o : {Attribute("cmp2", "k", vINT32, 1, 0.0), Attribute("cmp", "k", vINT64, 1, 0.0),
                             Attribute("cmp", "k", vINT32, 1, 1.0)})
    EXPECT_FALSE(a.compare(o)) << o.getName().c_str();
  Attribute b("cmp", "k", vINT32, 1, 0.0);
  b.setOriginalDataType(vINT16);
  EXPECT_TRUE(a.compare(b));
  a.setOriginalDataType(vFLOAT32);
  EXPECT_FALSE(a.compare(b));
}

TEST(AttributeLength, SetLengthRulesAndSizes) {
  Attribute v("vec", "c", vFLOAT32, Attribute::VECTOR_LENGTH, 4.0);
  v.setLength(10);
  expectFailure([&] { v.setLength(0); }, "Attribute::setLength",
                "Length must be a positive, non-zero number or Attribute::VARIABLE_LENGTH - not 0, for Attribute VEC.");
  v.resize(2);
  expectFailure([&] { v.setLength(11); }, "Attribute::setLength",
                "Not allowed to change the length os an Attribute 'VEC' with existing instances.");
  v.setLength(10);  // its own length is no change
  expectFailure([] { Attribute("scalar", "c", vINT32, 1).setLength(2); }, "Attribute::setLength",
                "Cannot setLength of non vector Attributes, SCALAR is not a vector type.");

  Attribute f("f", "c", vINT16, 3);
  f.resize(5);
  EXPECT_EQ(30, f.getTotalNBytes());
  Attribute w("v", "c", vFLOAT64, Attribute::VARIABLE_LENGTH);
  w.resize(3, nullptr, new int[3]{2, 0, 5});
  EXPECT_EQ(56, w.getTotalNBytes());
  EXPECT_EQ(40, w.getNBytes(3));
  EXPECT_FALSE(w.isSortable());
}

TEST(AttributeTime, SampleAndTimeArithmetic) {
  Attribute t("trace", "s", vFLOAT32, 101, 4.0, 100.0);
  EXPECT_EQ(500.0, t.getLastTime());
  EXPECT_EQ(2, t.getSampleAtTime(102.0));  // rounds to the nearest sample
  EXPECT_EQ(104.0, t.getTimeAtSample(2));
  EXPECT_EQ(3, t.getSamplesInGate(10.0));
  EXPECT_EQ(40.0, t.getTimeLengthOfGate(10));
  // Truncation goes toward zero: up to a sample and a half before the first time is sample 1.
  EXPECT_EQ(1, t.getSampleAtTime(95.0));
  expectFailures({
      {[&] { t.getSampleAtTime(503.0); }, "Attribute::getSampleAtTime",
       "Time 503 is outside the range 100 - 500 for Attribute TRACE."},
      {[&] { t.getTimeAtSample(102); }, "Attribute::getTimeAtSample",
       "Sample 102 outside the range 1 - 101 for Attribute TRACE."},
  });
  // A variable length attribute uses its first instance.
  Attribute v("var", "s", vFLOAT32, Attribute::VARIABLE_LENGTH, 2.0, 10.0);
  v.resize(2, nullptr, new int[2]{6, 3});
  EXPECT_EQ(20.0, v.getLastTime());
}

TEST(AttributeAccess, SetValueConvertsByCRulesAndClamps) {
  Attribute i16("a16", "c", vINT16);
  Attribute i32("a32", "c", vINT32);
  Attribute str("str", "c", vSTRING);
  for (Attribute* a : {&i16, &i32, &str}) a->resize(2);
  struct Row {
    Attribute* a;
    double in, out;
  } const rows[] = {{&i32, -3.9, -3}, {&i16, 1e9, 32767}, {&i32, -1e20, -2147483648.0}};
  for (Row const& r : rows) {
    SCOPED_TRACE(r.a->getName().c_str() + (" " + std::to_string(r.in)));
    r.a->setValue(1, r.in);
    EXPECT_EQ(r.out, r.a->getValue(1));
  }
  str.setValue(1, vString("via value"));
  EXPECT_STREQ("via value", str.getString(1).c_str());
}

TEST(AttributeAccess, VectorAndVariableValuesByPosition) {
  Attribute t("trc", "s", vFLOAT32, 4, 2.0);
  t.resize(3);
  t.getFloat32Pointer(1)[11] = 11.0f;
  EXPECT_EQ(11.0, t.getValue(3, 4));
  // A length-1 attribute with a sample rate is still a scalar to the scalar accessors.
  Attribute one("one", "s", vINT16, 1, 4.0);
  one.resize(1);
  one.setInt16(1, 9);
  EXPECT_EQ(9, one.getInt16(1));

  Attribute v("v", "s", vINT64, Attribute::VARIABLE_LENGTH);
  v.resize(3, nullptr, new int[3]{1, 3, 2});
  long long* q = v.getInt64Pointer(1);
  for (int i = 0; i < 6; ++i) q[i] = 10 * i;
  EXPECT_EQ(q + 4, v.getInt64Pointer(3));
  EXPECT_EQ(30.0, v.getValue(2, 3));
  expectFailures({
      {[&] { t.getValue(2, 5); }, "Attribute::getValue", "Position 5 is out of range 1 - 4 for Attribute TRC."},
      {[&] { t.setValue(2, 1.0); }, "Attribute::setValue", "Can't use this method on vector type attribute: TRC."},
      {[&] { v.setInt64(1, 3); }, "Attribute::setInt64", "Can't call this method on variable length attribute: V."},
  });
  std::vector<double> values;
  v.getValues(values);
  EXPECT_EQ((std::vector<double>{0, 10, 20, 30, 40, 50}), values);
  // Without lengths the offsets are gone too: instance 1 still needs none.
  v.releaseLengths();
  EXPECT_EQ(q, v.getPointer(1));
  expectFailure([&] { v.getPointer(2); }, "Attribute::getPointer",
                "Offsets array not initialized in variable length Attribute V... supplied a lengths array?");
}

TEST(AttributeAccess, OutOfRangeAndWrongTypeAreRefused) {
  Attribute a("typed", "c", vFLOAT32);
  a.resize(3);
  std::string method;
  std::string const reason = attribute_testing::reasonOf([&] { a.getValue(4, 1); }, &method);
  EXPECT_EQ("Attribute::getValue", method);
  std::string const head = "Instance 4 is out of range 1:3 for TYPED (Attribute - line ";
  ASSERT_EQ(0u, reason.find(head)) << reason;
  EXPECT_GT(std::stoi(reason.substr(head.size())), 0);
  EXPECT_EQ(')', reason.back());

  Attribute s("words", "c", vSTRING);
  s.resize(1);
  std::vector<double> values;
  expectFailures({
      {[&] { a.getInt32Pointer(1); }, "Attribute::getInt32Pointer",
       "Data type of Attribute TYPED is not vINT32, it's vFLOAT32. Not allowed to call this method"},
      {[&] { a.setValue(1, vString("x")); }, "Attribute::setValue",
       "Unsupported data type vFLOAT32 - This is the overloaded String version! Attribute:TYPED."},
      {[&] { s.getValue(1); }, "Attribute::getValue", "Unsupported data type vSTRING for WORDS."},
      {[&] { s.getValues(values); }, "Attribute::getValues", "Unexpected DataType vSTRING for Attribute WORDS."},
  });
  // The values of a definition are none.
  values.assign(3, 1.0);
  Attribute("def", "c", vINT16, 5).getValues(values);
  EXPECT_TRUE(values.empty());
}
