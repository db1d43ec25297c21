// The attribute as a definition and as a block of values: construction,
// names, comparison, sizes, time arithmetic and element access.

#include "attribute/Attribute.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "attribute/AttributeTesting.h"
#include "foundation/UtlExcept.h"
#include "foundation/vString.h"

using attribute_testing::expectFailure;
using attribute_testing::expectFailures;
using attribute_testing::reasonOf;

TEST(AttributeDefinition, DefaultIsAnEmptyVectorDefinition) {
  Attribute a;
  EXPECT_EQ(vNOTYPE, a.getDataType());
  EXPECT_TRUE(a.isVector());
  // A new vector attribute has its sizes from its length, and no data.
  Attribute t("trace", "seismic", vFLOAT32, 500, 4.0, 100.0);
  EXPECT_EQ(2000, t.getNBytes());
  EXPECT_FALSE(t.isSortable());
  // Data a store hands over before any definition has no data to point at.
  expectFailure([&] { t.getPointer(1); }, "Attribute::getPointer", "Attribute TRACE has no data");
  // The vector flag follows the length and the sample rate.
  EXPECT_FALSE(Attribute("a", "c", vINT32, 1, 0.0, 0.0).isVector());
  EXPECT_TRUE(Attribute("a", "c", vINT32, 1, 4.0, 0.0).isVector());
  EXPECT_TRUE(Attribute("a", "c", vINT32, 2, 0.0, 0.0).isVector());
  EXPECT_TRUE(Attribute("a", "c", vINT32, Attribute::VECTOR_LENGTH).isVector());
  EXPECT_FALSE(Attribute("a", "c", vINT32, Attribute::VARIABLE_LENGTH, 0.0).isVector());
  EXPECT_TRUE(Attribute("a", "c", vINT32, Attribute::VARIABLE_LENGTH, 2.0).isVector());
}

TEST(AttributeDefinition, AllConstructorFormsStripAndFoldNames) {
  vUCString const name("  cdp ");
  vUCString const cls("\tHeader");
  Attribute a(name, cls, vINT32);
  Attribute b("cdp", cls, vINT32);
  Attribute c(name, "header", vINT32);
  Attribute d(" CDP\t", " HEADER ", vINT32);
  for (Attribute const* x : {&a, &b, &c, &d}) {
    EXPECT_STREQ("CDP", x->getName().c_str());
    EXPECT_STREQ("HEADER", x->getClass().c_str());
    EXPECT_EQ(a.getNameID(), x->getNameID());
    EXPECT_EQ(a.getClassID(), x->getClassID());
  }
}

TEST(AttributeDefinition, OnlySixDataTypesAreAccepted) {
  expectFailures({
      {[] { Attribute("x", "c", vUINT16); }, "Attribute::mySetDataType",
       "Data Type vUINT16 is unsupported at this time for Attribute:X."},
      // A negative length other than the variable one is refused.
      {[] { Attribute("offset", "c", vINT32, -2); }, "Attribute::myContructorInitialize",
       "Attribute (OFFSET) length was -2, it must be >=0 or Attribute::VARIABLE_LENGTH."},
  });
}

TEST(AttributeNames, InterningMakesEqualNamesOnePointer) {
  Attribute a("sx", "a", vINT32);
  Attribute b("SX", "b", vFLOAT64);
  EXPECT_TRUE(a == b);
  EXPECT_EQ(a.getClassID(), Attribute::getClassID(vUCString(" a ")));
  // The reference returned is the table's own text.
  EXPECT_EQ(&a.getName(), &b.getName());
  // setName and setClass intern too.
  a.setName("  new_name ");
  EXPECT_STREQ("NEW_NAME", a.getName().c_str());
  a.setClass("k2");
  EXPECT_STREQ("K2", a.getOriginalClass().c_str());
}

TEST(AttributeNames, OrderFollowsNamesAsTheTableGrows) {
  Attribute m("zz_order_m", "c", vINT32);
  Attribute z("zz_order_z", "c", vINT32);
  EXPECT_TRUE(m < z);
  EXPECT_FALSE(m < m);
  // Names interned later between and before the two move their ranks; the
  // order between the two stays right.
  Attribute a("zz_order_a", "c", vINT32);
  Attribute n("zz_order_n", "c", vINT32);
  EXPECT_TRUE(a < m);
  EXPECT_TRUE(m < n);
  EXPECT_EQ(m.getNameID()->getID() + 1, n.getNameID()->getID());
}

TEST(AttributeCopy, CopyTakesDefinitionAndStatisticsNotData) {
  Attribute a("amp", "c", vFLOAT64, 3, 2.0, 10.0);
  a.setOriginalDataType(vINT16);
  a.setStatisticValues(-1.5, 7.25, 12);
  a.resize(4);

  Attribute b(a);
  EXPECT_EQ(0u, b.getNInstances());
  EXPECT_TRUE(b.compare(a));
  double mn, mx;
  long long nz;
  b.getStatisticValues(mn, mx, nz);
  EXPECT_EQ(12, nz);

  // Assignment onto an attribute with data empties it.
  Attribute c("s", "c", vSTRING, 1);
  c.resize(3);
  c.setString(2, "text");
  c = a;
  EXPECT_EQ(0u, c.getNInstances());
  EXPECT_EQ(4u, a.getNInstances());  // the source keeps its data
  Attribute const& self = c;
  c = self;
  EXPECT_TRUE(c.compare(a));
}

namespace {

// Two named results, so the compiler cannot build the returned one in place:
// the return moves.
Attribute oneOfTwo(bool first) {
  Attribute a("amp", "c", vFLOAT64, 2, 4.0);
  a.resize(2);
  double const values[] = {1.5, 2.5, 3.5, 4.5};
  std::memcpy(a.getFloat64Pointer(1), values, sizeof values);
  Attribute b("name", "c", vSTRING, 1);
  b.resize(1);
  b.setString(1, "kept");
  if (first) return a;
  return b;
}

}  // namespace

TEST(AttributeCopy, MovesTakeTheDataAlong) {
  Attribute a = oneOfTwo(true);
  EXPECT_EQ((std::vector<double>{1.5, 2.5, 3.5, 4.5}), attribute_testing::doublesOf(a));
  // Assignment from a temporary frees what was held and keeps the values.
  Attribute s = oneOfTwo(false);
  s = oneOfTwo(true);
  EXPECT_EQ(attribute_testing::doublesOf(a), attribute_testing::doublesOf(s));

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
  for (Attribute const& o : {Attribute("cmp", "k", vINT32, 1, 0.0), Attribute("cmp", "k", vINT32, 1, 0.0, 5.0)})
    EXPECT_TRUE(a.compare(o));
  for (Attribute const& o : {Attribute("cmp2", "k", vINT32, 1, 0.0), Attribute("cmp", "k2", vINT32, 1, 0.0),
                             Attribute("cmp", "k", vINT64, 1, 0.0), Attribute("cmp", "k", vINT32, 2, 0.0),
                             Attribute("cmp", "k", vINT32, 1, 1.0)})
    EXPECT_FALSE(a.compare(o)) << o.getName().c_str() << " " << o.getClass().c_str();
  Attribute b("cmp", "k", vINT32, 1, 0.0);
  b.setOriginalDataType(vINT16);
  EXPECT_TRUE(a.compare(b));
  a.setOriginalDataType(vFLOAT32);
  EXPECT_FALSE(a.compare(b));
  a.setOriginalDataType(vINT16);
  EXPECT_TRUE(a.compare(b));
}

TEST(AttributeLength, SetLengthRules) {
  Attribute v("vec", "c", vFLOAT32, Attribute::VECTOR_LENGTH, 4.0);
  v.setLength(Attribute::VARIABLE_LENGTH);
  EXPECT_TRUE(v.isVariableLength());
  v.setLength(10);
  expectFailure([&] { v.setLength(0); }, "Attribute::setLength",
                "Length must be a positive, non-zero number or Attribute::VARIABLE_LENGTH - not 0, for Attribute VEC.");
  v.resize(2);
  expectFailure([&] { v.setLength(11); }, "Attribute::setLength",
                "Not allowed to change the length os an Attribute 'VEC' with existing instances.");
  v.setLength(10);  // its own length is no change

  Attribute s("scalar", "c", vINT32, 1);
  s.setLength(1);
  expectFailure([&] { s.setLength(2); }, "Attribute::setLength",
                "Cannot setLength of non vector Attributes, SCALAR is not a vector type.");
}

TEST(AttributeSizes, FixedAndVariable) {
  Attribute f("f", "c", vINT16, 3);
  f.resize(5);
  EXPECT_EQ(6, f.getNBytes(4));
  EXPECT_EQ(30, f.getTotalNBytes());
  EXPECT_TRUE(Attribute("s", "c", vINT16, 1).isSortable());

  Attribute v("v", "c", vFLOAT64, Attribute::VARIABLE_LENGTH);
  EXPECT_EQ(Attribute::VARIABLE_LENGTH, v.getNBytes());
  v.resize(3, nullptr, new int[3]{2, 0, 5});
  EXPECT_EQ(56, v.getTotalNBytes());
  EXPECT_EQ(0, v.getLength(2));
  EXPECT_EQ(40, v.getNBytes(3));
  EXPECT_FALSE(v.isSortable());
}

TEST(AttributeTime, SampleAndTimeArithmetic) {
  Attribute t("trace", "s", vFLOAT32, 101, 4.0, 100.0);
  EXPECT_EQ(500.0, t.getLastTime());
  EXPECT_EQ(1, t.getSampleAtTime(100.0));
  EXPECT_EQ(2, t.getSampleAtTime(102.0));  // rounds to the nearest sample
  EXPECT_EQ(104.0, t.getTimeAtSample(2));
  EXPECT_EQ(3, t.getSamplesInGate(10.0));
  EXPECT_EQ(40.0, t.getTimeLengthOfGate(10));

  // Truncation goes toward zero, so up to a sample and a half before the
  // first time still counts as sample 1.
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
  EXPECT_EQ(6, v.getSampleAtTime(20.0));
}

TEST(AttributeAccess, EveryTypeGetsAndSets) {
  Attribute i16("a16", "c", vINT16);
  Attribute i32("a32", "c", vINT32);
  Attribute i64("a64", "c", vINT64);
  Attribute f32("f32", "c", vFLOAT32);
  Attribute f64("f64", "c", vFLOAT64);
  Attribute str("str", "c", vSTRING);
  for (Attribute* a : {&i16, &i32, &i64, &f32, &f64, &str}) a->resize(2);
  // The typed accessors of the other types are used throughout.
  i16.setInt16(2, -7);
  EXPECT_EQ(-7, i16.getInt16(2));
  f64.setFloat64(2, -0.125);
  EXPECT_EQ(-0.125, f64.getValue(2));

  // setValue converts by C rules: integers truncate; beyond the integer
  // range it gives the nearest end, never undefined behaviour.
  struct Row {
    Attribute* a;
    double in, out;
  } const rows[] = {{&i32, -3.9, -3}, {&i64, 5e12, 5e12}, {&f32, 0.5, 0.5}, {&i16, 1e9, 32767}, {&i32, -1e20, -2147483648.0}};
  for (Row const& r : rows) {
    SCOPED_TRACE(r.a->getName().c_str() + (" " + std::to_string(r.in)));
    r.a->setValue(1, r.in);
    EXPECT_EQ(r.out, r.a->getValue(1));
  }
  str.setValue(1, vString("via value"));
  EXPECT_STREQ("via value", str.getString(1).c_str());
}

TEST(AttributeAccess, VectorValuesByPosition) {
  Attribute t("trc", "s", vFLOAT32, 4, 2.0);
  t.resize(3);
  float* p = t.getFloat32Pointer(1);
  for (int i = 0; i < 12; ++i) p[i] = static_cast<float>(i);
  EXPECT_EQ(p + 8, t.getFloat32Pointer(3));
  EXPECT_EQ(11.0, t.getValue(3, 4));
  std::string const vec = "Can't use this method on vector type attribute: TRC.";
  expectFailures({
      {[&] { t.getValue(2, 5); }, "Attribute::getValue", "Position 5 is out of range 1 - 4 for Attribute TRC."},
      {[&] { t.getValue(2); }, "Attribute::getValue", vec},
      {[&] { t.setValue(2, 1.0); }, "Attribute::setValue", vec},
      {[&] { t.getFloat32(1); }, "Attribute::getFloat32", vec},
  });

  // A length-1 attribute with a sample rate is a vector of one value; it is
  // still a scalar to the scalar accessors.
  Attribute one("one", "s", vINT16, 1, 4.0);
  one.resize(1);
  one.setInt16(1, 9);
  EXPECT_TRUE(one.isVector());
  EXPECT_EQ(9, one.getInt16(1));
}

TEST(AttributeAccess, VariableLengthAccess) {
  Attribute v("v", "s", vINT64, Attribute::VARIABLE_LENGTH);
  v.resize(3, nullptr, new int[3]{1, 3, 2});
  long long* p = v.getInt64Pointer(1);
  for (int i = 0; i < 6; ++i) p[i] = 10 * i;
  EXPECT_EQ(p + 4, v.getInt64Pointer(3));
  EXPECT_EQ(30.0, v.getValue(2, 3));
  expectFailures({
      {[&] { v.getValue(2, 4); }, "Attribute::getValue", "Position 4 is out of range 1 - 3 for Attribute V."},
      {[&] { v.getValue(2); }, "Attribute::getValue", "Can't call this method on variable length attribute: V."},
      {[&] { v.setInt64(1, 3); }, "Attribute::setInt64", "Can't call this method on variable length attribute: V."},
  });
  std::vector<double> values;
  v.getValues(values);
  EXPECT_EQ((std::vector<double>{0, 10, 20, 30, 40, 50}), values);

  // Without lengths the offsets are gone too: instance 1 still needs none.
  v.releaseLengths();
  EXPECT_EQ(p, v.getPointer(1));
  expectFailure([&] { v.getPointer(2); }, "Attribute::getPointer",
                "Offsets array not initialized in variable length Attribute V... supplied a lengths array?");
}

TEST(AttributeAccess, InstanceOutOfRangeNamesTheLine) {
  Attribute a("range", "c", vINT32);
  a.resize(3);
  std::string method;
  std::string const reason = reasonOf([&] { a.getValue(4, 1); }, &method);
  EXPECT_EQ("Attribute::getValue", method);
  std::string const head = "Instance 4 is out of range 1:3 for RANGE (Attribute - line ";
  ASSERT_EQ(0u, reason.find(head)) << reason;
  EXPECT_GT(std::stoi(reason.substr(head.size())), 0);
  EXPECT_EQ(')', reason.back());
}

TEST(AttributeAccess, WrongTypeAccessorsAreRefused) {
  Attribute a("typed", "c", vFLOAT32);
  a.resize(1);
  auto notType = [](char const* t) {
    return std::string("Data type of Attribute TYPED is not ") + t + ", it's vFLOAT32. Not allowed to call this method";
  };
  Attribute s("words", "c", vSTRING);
  s.resize(1);
  std::vector<double> values;
  expectFailures({
      {[&] { a.getInt32Pointer(1); }, "Attribute::getInt32Pointer", notType("vINT32")},
      {[&] { a.setValue(1, vString("x")); }, "Attribute::setValue",
       "Unsupported data type vFLOAT32 - This is the overloaded String version! Attribute:TYPED."},
      {[&] { s.getValue(1); }, "Attribute::getValue", "Unsupported data type vSTRING for WORDS."},
      {[&] { s.setValue(1, 2.0); }, "Attribute::setValue", "Unsupported data type vSTRING for WORDS."},
      {[&] { s.getValues(values); }, "Attribute::getValues", "Unexpected DataType vSTRING for Attribute WORDS."},
  });

  // The values of a definition are none.
  Attribute d("def", "c", vINT16, 5);
  values.assign(3, 1.0);
  d.getValues(values);
  EXPECT_TRUE(values.empty());
}

