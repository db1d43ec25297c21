#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <list>
#include <sstream>
#include <string>
#include <vector>

#include "attribute/Attribute.h"
#include "attribute/AttributeHelper.h"
#include "attribute/AttributeTesting.h"
#include "foundation/vUtl.h"

using attribute_testing::expectFailure;
using attribute_testing::intsOf;
using attribute_testing::namesOf;
using attribute_testing::stringsOf;

namespace {

// Attributes are built here and moved out: a copy would take the definition only.
Attribute ints(char const* name, int length, std::vector<int> const& values) {
  Attribute a(name, "CLASS", vINT32, length);
  a.resize(static_cast<unsigned int>(values.size() / static_cast<std::size_t>(length)));
  if (!values.empty()) std::copy(values.begin(), values.end(), a.getInt32Pointer(1));
  return a;
}

Attribute texts(char const* name, std::vector<char const*> const& values) {
  Attribute a(name, "CLASS", vSTRING);
  a.resize(static_cast<unsigned int>(values.size()));
  for (std::size_t k = 0; k < values.size(); ++k) a.setString(static_cast<unsigned int>(k + 1), values[k]);
  return a;
}

// A variable-length vINT32 attribute with these instances.
Attribute variable(char const* name, std::vector<std::vector<int>> const& instances) {
  Attribute a(name, "CLASS", vINT32, Attribute::VARIABLE_LENGTH);
  std::vector<int> lengths;
  std::vector<int> flat;
  for (auto const& i : instances) {
    lengths.push_back(static_cast<int>(i.size()));
    flat.insert(flat.end(), i.begin(), i.end());
  }
  a.copyData(static_cast<unsigned int>(instances.size()), flat.data(), lengths.data());
  return a;
}

std::vector<std::vector<int>> instancesOf(Attribute const& a) {
  std::vector<std::vector<int>> out;
  for (unsigned int i = 1; i <= a.getNInstances(); ++i) {
    int const len = a.getLength(i);
    int const* p = len > 0 ? a.getInt32Pointer(i) : nullptr;
    out.push_back(std::vector<int>(p, p + len));
  }
  return out;
}

TEST(AttributeHelperCopy, BlocksAndListsOfInstancesAndTheirRefusals) {
  Attribute src = ints("SRC", 1, {1, 2, 3, 4, 5});
  Attribute dst = ints("DST", 1, {0, 0, 0, 0, 0, 0, 0});
  AttributeHelper::copy(src, 2, dst, 4, 3);
  EXPECT_EQ((std::vector<int>{0, 0, 0, 2, 3, 4, 0}), intsOf(dst));
  AttributeHelper::copy(src, 1, src, 2, 4);  // overlapping
  EXPECT_EQ((std::vector<int>{1, 1, 2, 3, 4}), intsOf(src));
  // A shorter source is one block of its own bytes per instance.
  Attribute quads = ints("QUADS", 4, {0, 0, 0, 0, 0, 0, 0, 0});
  AttributeHelper::copy(ints("PAIRS", 2, {1, 2, 3, 4}), 1, quads, 1, 2);
  EXPECT_EQ((std::vector<int>{1, 2, 3, 4, 0, 0, 0, 0}), intsOf(quads));
  Attribute s = texts("S", {"a", "b", "c", "d"});
  AttributeHelper::copy(s, 1, s, 2, 3);
  EXPECT_EQ((std::vector<std::string>{"a", "a", "b", "c"}), stringsOf(s));

  // By lists, gathered and scattered: numbers are pinned by the in-memory store's conformance reads and writes.
  Attribute t = texts("T", {"", ""});
  AttributeHelper::copy(texts("S", {"x", "y", "z"}), std::vector<int>{3, 2}, t, 1);
  EXPECT_EQ((std::vector<std::string>{"z", "y"}), stringsOf(t));

  src = ints("SRC", 1, {1, 2, 3});
  dst = ints("DST", 1, {9, 9});
  Attribute floats("F", "CLASS", vFLOAT32);
  Attribute longer = ints("LONG", 2, {1, 2, 3, 4});
  Attribute var = variable("VAR", {{1}, {2, 3}});
  char const* const label = "AttributeHelper::copy()";
  attribute_testing::expectFailures({
      {[&] { AttributeHelper::copy(src, 1, floats, 1, 1); }, label,
       "Method cannot be used with attributes SRC and F of different data types"},
      {[&] { AttributeHelper::copy(longer, 1, dst, 1, 1); }, label,
       "Method cannot be used with attribute LONG longer than attribute DST"},
      {[&] { AttributeHelper::copy(src, 0, dst, 1, 1); }, label, "Bad Source start instance number."},
      {[&] { AttributeHelper::copy(src, 1, dst, 2, 2); }, label, "Destination Attribute too small for copy."},
      {[&] { AttributeHelper::copy(src, 3, dst, 1, 2); }, label, "Source Attribute too small for copy."},
      {[&] { AttributeHelper::copy(var, 1, var, 1, 1); }, label, "Source Attribute can't be variable length for now."},
      {[&] { AttributeHelper::copy(src, 1, dst, std::vector<int>{3, 0}); }, "AttributeHelper::copy(list)",
       "Instance number 0(smallest) and/or 3(largest) are outside \t\t\t\t\t\t\t\t\t\tthe allowed range of 1 to 2"},
  });
  EXPECT_EQ((std::vector<int>{9, 9}), intsOf(dst));
}

TEST(AttributeHelperCopyRange, FixedAndVariableLengthAndRefusals) {
  Attribute src = ints("SRC", 2, {1, 2, 3, 4, 5, 6});
  Attribute dst = ints("DST", 2, {0, 0, 0, 0});
  AttributeHelper::copyRange(src, 2, 3, dst, 1);
  EXPECT_EQ((std::vector<int>{3, 4, 5, 6}), intsOf(dst));
  Attribute scalar = ints("SCALAR", 1, {0, 0, 0});
  char const* const label = "AttributeHelper::copyRange()";
  attribute_testing::expectFailures({
      {[&] { AttributeHelper::copyRange(src, 1, 1, scalar, 1); }, label,
       "Method cannot be used with attributes SRC and SCALAR of different lengths"},
      {[&] { AttributeHelper::copyRange(src, 1, 3, dst, 1); }, label,
       "Destination attribute DST does not have enough space"},
      {[&] { AttributeHelper::copyRange(src, 2, 1, dst, 1); }, label,
       "Instances 2 to 1 are outside the range 1 to 3 of attribute SRC."},
  });
  EXPECT_EQ((std::vector<int>{3, 4, 5, 6}), intsOf(dst));

  // A variable destination takes the source's lengths, within one attribute too.
  Attribute var = variable("VDST", {{7}, {8}, {9}, {10}, {11}});
  AttributeHelper::copyRange(variable("VSRC", {{1}, {2, 3, 4}, {}, {5, 6}}), 2, 4, var, 2);
  EXPECT_EQ((std::vector<std::vector<int>>{{7}, {2, 3, 4}, {}, {5, 6}, {11}}), instancesOf(var));
  AttributeHelper::copyRange(var, 1, 2, var, 4);
  EXPECT_EQ((std::vector<std::vector<int>>{{7}, {2, 3, 4}, {}, {7}, {2, 3, 4}}), instancesOf(var));
}

TEST(AttributeHelperSizes, ReallocateKeepsWhatFits) {
  Attribute a = ints("A", 1, {1, 2, 3, 4, 5, 6, 7, 8});
  AttributeHelper::reallocate(a, 5);
  AttributeHelper::reallocate(a, 7);
  EXPECT_EQ((std::vector<int>{1, 2, 3, 4, 5, 0, 0}), intsOf(a));
  Attribute v = variable("V", {{1, 2}, {3}, {4, 5, 6}});
  AttributeHelper::reallocate(v, 2);
  EXPECT_EQ((std::vector<std::vector<int>>{{1, 2}, {3}}), instancesOf(v));

  std::list<Attribute> list;
  list.push_back(texts("L1", {"a", "b", "c"}));
  list.push_back(ints("L2", 1, {4, 5, 6}));
  AttributeHelper::reallocate(list.begin(), std::prev(list.end()), 2);
  EXPECT_EQ((std::vector<std::string>{"a", "b"}), stringsOf(list.front()));
  EXPECT_EQ(3u, list.back().getNInstances());
}

TEST(AttributeHelperValues, SetZeroAndNoise) {
  Attribute a = ints("A", 1, {1, 2, 3, 4, 5});
  AttributeHelper::set(a, 2, 4, 7.9);
  AttributeHelper::set(a, std::vector<unsigned int>{5, 1}, -1.0);
  EXPECT_EQ((std::vector<int>{-1, 7, 7, 7, -1}), intsOf(a));
  Attribute s = texts("S", {"a", "b"});
  AttributeHelper::zero(s);
  EXPECT_EQ((std::vector<std::string>{"", ""}), stringsOf(s));

  Attribute f("F", "CLASS", vFLOAT32, 50);
  f.resize(4);
  AttributeHelper::createNoise(f, 1.0f);
  std::vector<double> noise;
  f.getValues(noise);
  EXPECT_TRUE(std::all_of(noise.begin(), noise.end(), [](double v) { return std::fabs(v) <= 0.5; }));
  EXPECT_GT(std::count_if(noise.begin(), noise.end(), [](double v) { return v != 0.0; }), 190);
  // Int32 adds the noise truncated: within the amplitude's half.
  Attribute big = ints("BIG", 1, std::vector<int>(100, 1000));
  AttributeHelper::addNoise(big, 100.0f);
  std::vector<int> const added = intsOf(big);
  EXPECT_TRUE(std::all_of(added.begin(), added.end(), [](int v) { return std::abs(v - 1000) <= 50; }));
  EXPECT_GT(std::count_if(added.begin(), added.end(), [](int v) { return v != 1000; }), 80);
  Attribute shorts("SHORTS", "CLASS", vINT16);
  shorts.resize(2);
  expectFailure([&] { AttributeHelper::addNoise(shorts, 1.0f); }, "AttributeHelper::addNoise()",
                "Cannot add noise to attribute SHORTS of data type vINT16.");
}

TEST(AttributeHelperCRC, OverTheDataAlone) {
  EXPECT_EQ(0u, AttributeHelper::calculateCRC(Attribute("E", "CLASS", vFLOAT32)));
  Attribute f("F", "CLASS", vFLOAT32, 8);
  f.resize(3);
  AttributeHelper::createNoise(f, 1.0f);
  EXPECT_EQ(vUtl::calculateCRC(f.getPointer(1), 96), AttributeHelper::calculateCRC(f));
  // Strings chain over their characters.
  EXPECT_EQ(vUtl::calculateCRC("ABC", 3), AttributeHelper::calculateCRC(texts("S", {"AB", "C"})));
  Attribute shorts("SHORTS", "CLASS", vINT16);
  shorts.resize(1);
  expectFailure([&] { AttributeHelper::calculateCRC(shorts); }, "AttributeHelper::calculateCRC",
                "The datatype 3 (vINT16) is not supported!");
}

TEST(AttributeHelperTime, NearestTimeAndTimegate) {
  // Sample rate, first time, time asked, nearest sample time: halves go away from the first time.
  double const rows[][4] = {{1, 0, -101.6, -102}, {4, 0, 103.3, 104}, {4, 10, 12, 14}, {4, 10, 8, 6}};
  for (auto const& r : rows)
    EXPECT_DOUBLE_EQ(r[3], AttributeHelper::findNearestTime(Attribute("T", "CLASS", vFLOAT32, 10, r[0], r[1]), r[2]))
        << r[0] << " " << r[1] << " " << r[2];

  // 0-1000 ms at 4 ms: 251 samples, each holding its own time.
  Attribute wide("TRACE", "SEISMIC", vFLOAT32, 251, 4.0, 0.0);
  wide.resize(2);
  for (unsigned int i = 1; i <= 2; ++i)
    for (int k = 0; k < 251; ++k) wide.getFloat32Pointer(i)[k] = static_cast<float>(k * 4 + 1000 * (i - 1));
  Attribute narrow("TRACE", "SEISMIC", vFLOAT32, 51, 4.0, 200.0);
  AttributeHelper::timegate(wide, narrow);
  ASSERT_EQ(2u, narrow.getNInstances());
  for (int k = 0; k < 51; ++k) ASSERT_EQ(static_cast<float>(1200 + 4 * k), narrow.getFloat32Pointer(2)[k]) << k;
  // Windows that do not meet give zeros.
  Attribute late("TRACE", "SEISMIC", vFLOAT32, 10, 4.0, 5000.0);
  late.resize(1);
  late.getFloat32Pointer(1)[0] = 99.0f;
  AttributeHelper::timegate(wide, late);
  ASSERT_EQ(2u, late.getNInstances());
  EXPECT_EQ(0.0f, late.getFloat32Pointer(1)[0]);
  Attribute c("C", "C", vFLOAT32, 10, 2.0, 0.0);
  expectFailure([&] { AttributeHelper::timegate(late, c); }, "AttributeHelper::timegate()",
                "Method cannot be used with attributes TRACE and C of different sample rates");
}

TEST(AttributeHelperSearch, FindAndKeepInstances) {
  Attribute v = ints("V", 2, {1, 9, 3, 4, 5, 6, 7, 20, 2, 3});
  EXPECT_EQ((std::vector<unsigned int>{2, 5}), AttributeHelper::findInstances(v, 2.0, 4.0));
  EXPECT_EQ((std::vector<unsigned int>{1, 3}),
            AttributeHelper::findInstances(attribute_testing::filled("F", "C", vFLOAT64, {0.5, -0.5, 0.25}), 0, 1));
  Attribute names = texts("N", {"a", "b", "c"});
  expectFailure([&] { AttributeHelper::findInstances(names, 0, 1); }, "AttributeHelper::findInstances()",
                "Unsupported data type vSTRING for attribute N.");

  AttributeHelper::keepInstances(v, {4, 1, 4});
  EXPECT_EQ((std::vector<int>{7, 20, 1, 9, 7, 20}), intsOf(v));
  Attribute var = variable("VAR", {{1}, {2, 3}, {}});
  AttributeHelper::keepInstances(var, {3, 2});
  EXPECT_EQ((std::vector<std::vector<int>>{{}, {2, 3}}), instancesOf(var));
  AttributeHelper::keepInstances(names, {2});
  EXPECT_EQ((std::vector<std::string>{"b"}), stringsOf(names));
}

TEST(AttributeHelperPresentation, SelectFromAScript) {
  std::list<Attribute> all{Attribute("CDP", "HEADER", vINT32), Attribute("CDP_X", "HEADER", vFLOAT64),
                           Attribute("OFFSET", "HEADER", vINT32), Attribute("TRACE", "SEISMIC", vFLOAT32, 10, 4.0)};
  std::list<Attribute> selection;
  std::istringstream in("-h\ncdp*\n  trace \ncdp\n-l\n-CDP_X\n-a\nnope\n-nope\n\nOFFSET\n");
  std::ostringstream out;
  AttributeHelper::selectAttributes(all, selection, in, out);
  // The empty line ended it before OFFSET.
  EXPECT_EQ((std::vector<std::string>{"CDP", "TRACE"}), namesOf(selection));
  for (char const* part :
       {"Enter an attribute name to add to the selection list.   Wildcards are supported, e.g. use * "
        "to add all attributes.",
        "No attribute matches NOPE", "Not in the selection: NOPE", "  OFFSET (HEADER)", "* TRACE (SEISMIC)"})
    EXPECT_NE(std::string::npos, out.str().find(part)) << part;
  // The end of the input ends it too.
  std::istringstream more("OFFSET");
  AttributeHelper::selectAttributes(all, selection, more, out);
  EXPECT_EQ(3u, selection.size());
}

}  // namespace
