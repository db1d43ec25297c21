#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <functional>
#include <list>
#include <sstream>
#include <string>
#include <vector>

#include "attribute/Attribute.h"
#include "attribute/AttributeHelper.h"
#include "attribute/AttributeTesting.h"
#include "foundation/MessageHandling.h"
#include "foundation/UtlExcept.h"
#include "foundation/vUtl.h"

using attribute_testing::expectFailure;
using attribute_testing::intsOf;
using attribute_testing::namesOf;
using attribute_testing::stringsOf;

namespace {

// Attributes are filled in place: copying an Attribute copies its
// definition only.
void fill(Attribute& a, std::vector<int> const& values) {
  unsigned int const n = static_cast<unsigned int>(values.size() / static_cast<std::size_t>(a.getLength()));
  a.resize(n);
  if (n > 0) std::copy(values.begin(), values.end(), a.getInt32Pointer(1));
}

void fillStrings(Attribute& a, std::vector<char const*> const& values) {
  a.resize(static_cast<unsigned int>(values.size()));
  for (std::size_t k = 0; k < values.size(); ++k) a.setString(static_cast<unsigned int>(k + 1), values[k]);
}

// Gives a variable-length vINT32 attribute the given instances.
void fillVariable(Attribute& a, std::vector<std::vector<int>> const& instances) {
  unsigned int const n = static_cast<unsigned int>(instances.size());
  std::vector<int> lengths(n);
  std::vector<int> flat;
  for (unsigned int i = 0; i < n; ++i) {
    lengths[i] = static_cast<int>(instances[i].size());
    flat.insert(flat.end(), instances[i].begin(), instances[i].end());
  }
  a.copyData(n, flat.data(), lengths.data());
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

TEST(AttributeHelperCopy, BlockOfInstances) {
  Attribute src("SRC", "CLASS", vINT32, 1);
  fill(src, {1, 2, 3, 4, 5});
  Attribute dst("DST", "CLASS", vINT32, 1);
  fill(dst, {0, 0, 0, 0, 0, 0, 0});
  AttributeHelper::copy(src, 2, dst, 4, 3);
  EXPECT_EQ((std::vector<int>{0, 0, 0, 2, 3, 4, 0}), intsOf(dst));
  // Within one attribute, overlapping.
  AttributeHelper::copy(src, 1, src, 2, 4);
  EXPECT_EQ((std::vector<int>{1, 1, 2, 3, 4}), intsOf(src));
  // A shorter source is one block of its own bytes per instance: two
  // instances of 2 values fill the first instance of length 4.
  Attribute pairs("PAIRS", "CLASS", vINT32, 2);
  fill(pairs, {1, 2, 3, 4});
  Attribute quads("QUADS", "CLASS", vINT32, 4);
  fill(quads, {0, 0, 0, 0, 0, 0, 0, 0});
  AttributeHelper::copy(pairs, 1, quads, 1, 2);
  EXPECT_EQ((std::vector<int>{1, 2, 3, 4, 0, 0, 0, 0}), intsOf(quads));
  // Strings go one by one, overlapping too.
  Attribute s("S", "CLASS", vSTRING);
  fillStrings(s, {"a", "b", "c", "d"});
  AttributeHelper::copy(s, 1, s, 2, 3);
  EXPECT_EQ((std::vector<std::string>{"a", "a", "b", "c"}), stringsOf(s));
}

TEST(AttributeHelperCopy, RefusalsLeaveTheDestinationAlone) {
  Attribute src("SRC", "CLASS", vINT32, 1);
  fill(src, {1, 2, 3});
  Attribute dst("DST", "CLASS", vINT32, 1);
  fill(dst, {9, 9});
  Attribute floats("F", "CLASS", vFLOAT32);
  floats.resize(3);
  expectFailure([&] { AttributeHelper::copy(src, 1, floats, 1, 1); }, "AttributeHelper::copy()",
                "Method cannot be used with attributes SRC and F of different data types");
  Attribute longer("LONG", "CLASS", vINT32, 2);
  fill(longer, {1, 2, 3, 4});
  expectFailure([&] { AttributeHelper::copy(longer, 1, dst, 1, 1); }, "AttributeHelper::copy()",
                "Method cannot be used with attribute LONG longer than attribute DST");
  expectFailure([&] { AttributeHelper::copy(src, 0, dst, 1, 1); }, "AttributeHelper::copy()",
                "Bad Source start instance number.");
  expectFailure([&] { AttributeHelper::copy(src, 1, dst, 2, 2); }, "AttributeHelper::copy()",
                "Destination Attribute too small for copy.");
  expectFailure([&] { AttributeHelper::copy(src, 3, dst, 1, 2); }, "AttributeHelper::copy()",
                "Source Attribute too small for copy.");
  Attribute var("VAR", "CLASS", vINT32, Attribute::VARIABLE_LENGTH);
  fillVariable(var, {{1}, {2, 3}});
  expectFailure([&] { AttributeHelper::copy(var, 1, var, 1, 1); }, "AttributeHelper::copy()",
                "Source Attribute can't be variable length for now.");
  EXPECT_EQ((std::vector<int>{9, 9}), intsOf(dst));
}

TEST(AttributeHelperCopy, ScatterAndGatherByListAndTheirRefusals) {
  Attribute src("SRC", "CLASS", vINT32, 1);
  fill(src, {10, 20, 30, 40, 50});
  Attribute dst("DST", "CLASS", vINT32, 1);
  fill(dst, {0, 0, 0, 0});
  AttributeHelper::copy(src, std::vector<int>{5, 1, 3}, dst, 2);
  EXPECT_EQ((std::vector<int>{0, 50, 10, 30}), intsOf(dst));
  AttributeHelper::copy(src, 2u, dst, std::vector<unsigned int>{4, 1});
  EXPECT_EQ((std::vector<int>{30, 50, 10, 20}), intsOf(dst));
  // Vectors of doubles (8-byte values) and strings.
  Attribute d("D", "CLASS", vFLOAT64, 2);
  d.resize(3);
  double* p = d.getFloat64Pointer(1);
  for (int k = 0; k < 6; ++k) p[k] = k + 0.5;
  Attribute e(d);
  e.resize(2);
  AttributeHelper::copy(d, std::vector<int>{3, 1}, e, 1);
  EXPECT_EQ(5.5, e.getFloat64Pointer(1)[1]);
  Attribute s("S", "CLASS", vSTRING);
  fillStrings(s, {"x", "y", "z"});
  Attribute t("T", "CLASS", vSTRING);
  fillStrings(t, {"", ""});
  AttributeHelper::copy(s, std::vector<int>{3, 2}, t, 1);
  EXPECT_EQ((std::vector<std::string>{"z", "y"}), stringsOf(t));

  // Refusals leave the destination alone.
  fill(src, {1, 2, 3});
  fill(dst, {0, 0});
  std::string const outside =
      "Instance number 0(smallest) and/or 3(largest) are outside \t\t\t\t\t\t\t\t\t\tthe allowed range of 1 to 2";
  expectFailure([&] { AttributeHelper::copy(src, 1, dst, std::vector<int>{3, 0}); }, "AttributeHelper::copy(list)",
                outside);
  expectFailure([&] { AttributeHelper::copy(src, std::vector<int>{1, 2}, dst, 2); }, "AttributeHelper::copy(list)",
                "Destination Attribute too small for copy.");
  expectFailure([&] { AttributeHelper::copy(src, 3, dst, std::vector<int>{1, 2}); }, "AttributeHelper::copy(list)",
                "Source Attribute too small for copy.");
  Attribute var("VAR", "CLASS", vINT32, Attribute::VARIABLE_LENGTH);
  fillVariable(var, {{1}, {2, 3}});
  expectFailure([&] { AttributeHelper::copy(var, std::vector<int>{1}, dst, 1); }, "AttributeHelper::copy(list)",
                "Source Attribute can't be variable length for now.");
  EXPECT_EQ((std::vector<int>{0, 0}), intsOf(dst));
}

TEST(AttributeHelperCopyRange, NumbersStringsAndRefusals) {
  Attribute src("SRC", "CLASS", vINT32, 2);
  fill(src, {1, 2, 3, 4, 5, 6});
  Attribute dst("DST", "CLASS", vINT32, 2);
  fill(dst, {0, 0, 0, 0});
  AttributeHelper::copyRange(src, 2, 3, dst, 1);
  EXPECT_EQ((std::vector<int>{3, 4, 5, 6}), intsOf(dst));
  Attribute scalar("SCALAR", "CLASS", vINT32, 1);
  fill(scalar, {0, 0, 0});
  expectFailure([&] { AttributeHelper::copyRange(src, 1, 1, scalar, 1); }, "AttributeHelper::copyRange()",
                "Method cannot be used with attributes SRC and SCALAR of different lengths");
  expectFailure([&] { AttributeHelper::copyRange(src, 1, 3, dst, 1); }, "AttributeHelper::copyRange()",
                "Destination attribute DST does not have enough space");
  expectFailure([&] { AttributeHelper::copyRange(src, 2, 1, dst, 1); }, "AttributeHelper::copyRange()",
                "Instances 2 to 1 are outside the range 1 to 3 of attribute SRC.");
  EXPECT_EQ((std::vector<int>{3, 4, 5, 6}), intsOf(dst));
  // Strings keep their order and text.
  Attribute names("NAMES", "CLASS", vSTRING);
  fillStrings(names, {"one", "two", "three", "four", "five"});
  Attribute other("OTHER", "CLASS", vSTRING);
  fillStrings(other, {"", "", "", "", "", ""});
  AttributeHelper::copyRange(names, 1, 5, other, 2);
  EXPECT_EQ((std::vector<std::string>{"", "one", "two", "three", "four", "five"}), stringsOf(other));
}

TEST(AttributeHelperCopyRange, VariableLengthTakesTheSourceLengths) {
  Attribute src("SRC", "CLASS", vINT32, Attribute::VARIABLE_LENGTH);
  fillVariable(src, {{1}, {2, 3, 4}, {}, {5, 6}});
  Attribute dst("DST", "CLASS", vINT32, Attribute::VARIABLE_LENGTH);
  fillVariable(dst, {{7}, {8}, {9}, {10}, {11}});
  AttributeHelper::copyRange(src, 2, 4, dst, 2);
  EXPECT_EQ((std::vector<std::vector<int>>{{7}, {2, 3, 4}, {}, {5, 6}, {11}}), instancesOf(dst));
  // Within one attribute.
  AttributeHelper::copyRange(dst, 1, 2, dst, 4);
  EXPECT_EQ((std::vector<std::vector<int>>{{7}, {2, 3, 4}, {}, {7}, {2, 3, 4}}), instancesOf(dst));
}

TEST(AttributeHelperSizes, ReallocateKeepsWhatFits) {
  Attribute a("A", "CLASS", vINT32, 1);
  fill(a, {1, 2, 3, 4, 5, 6, 7, 8});
  AttributeHelper::reallocate(a, 5);
  EXPECT_EQ((std::vector<int>{1, 2, 3, 4, 5}), intsOf(a));
  AttributeHelper::reallocate(a, 7);
  EXPECT_EQ((std::vector<int>{1, 2, 3, 4, 5, 0, 0}), intsOf(a));

  Attribute v("V", "CLASS", vINT32, Attribute::VARIABLE_LENGTH);
  fillVariable(v, {{1, 2}, {3}, {4, 5, 6}});
  AttributeHelper::reallocate(v, 2);
  EXPECT_EQ((std::vector<std::vector<int>>{{1, 2}, {3}}), instancesOf(v));

  std::list<Attribute> list;
  list.emplace_back("L1", "CLASS", vINT32);
  fill(list.back(), {1, 2, 3});
  list.emplace_back("L2", "CLASS", vSTRING);
  fillStrings(list.back(), {"a", "b", "c"});
  list.emplace_back("L3", "CLASS", vINT32);
  fill(list.back(), {4, 5, 6});
  auto last = list.end();
  --last;
  AttributeHelper::reallocate(list.begin(), last, 2);
  EXPECT_EQ((std::vector<int>{1, 2}), intsOf(list.front()));
  EXPECT_EQ((std::vector<std::string>{"a", "b"}), stringsOf(*std::next(list.begin())));
  EXPECT_EQ(3u, list.back().getNInstances());
}

TEST(AttributeHelperValues, SetZeroAndNoise) {
  Attribute a("A", "CLASS", vINT32, 1);
  fill(a, {1, 2, 3, 4, 5});
  AttributeHelper::set(a, 2, 4, 7.9);
  EXPECT_EQ((std::vector<int>{1, 7, 7, 7, 5}), intsOf(a));
  AttributeHelper::set(a, std::vector<unsigned int>{5, 1}, -1.0);
  EXPECT_EQ((std::vector<int>{-1, 7, 7, 7, -1}), intsOf(a));
  AttributeHelper::zero(a);
  EXPECT_EQ((std::vector<int>{0, 0, 0, 0, 0}), intsOf(a));
  Attribute s("S", "CLASS", vSTRING);
  fillStrings(s, {"a", "b"});
  AttributeHelper::zero(s);
  EXPECT_EQ((std::vector<std::string>{"", ""}), stringsOf(s));

  Attribute f("F", "CLASS", vFLOAT32, 50);
  f.resize(4);
  AttributeHelper::createNoise(f, 1.0f);
  float const* p = f.getFloat32Pointer(1);
  int nonZero = 0;
  for (int k = 0; k < 200; ++k) {
    EXPECT_LE(std::fabs(p[k]), 0.5f);
    if (p[k] != 0.0f) ++nonZero;
  }
  EXPECT_GT(nonZero, 190);
  // Int32 adds the noise truncated: within the amplitude's half.
  Attribute big("BIG", "CLASS", vINT32, 1);
  fill(big, std::vector<int>(100, 1000));
  AttributeHelper::addNoise(big, 100.0f);
  int changed = 0;
  for (int v : intsOf(big)) {
    EXPECT_LE(std::abs(v - 1000), 50);
    if (v != 1000) ++changed;
  }
  EXPECT_GT(changed, 80);
  Attribute shorts("SHORTS", "CLASS", vINT16);
  shorts.resize(2);
  expectFailure([&] { AttributeHelper::addNoise(shorts, 1.0f); }, "AttributeHelper::addNoise()",
                "Cannot add noise to attribute SHORTS of data type vINT16.");
}

TEST(AttributeHelperCRC, StableAndSensitive) {
  Attribute empty("E", "CLASS", vFLOAT32);
  EXPECT_EQ(0u, AttributeHelper::calculateCRC(empty));

  Attribute f("F", "CLASS", vFLOAT32, 8);
  f.resize(3);
  AttributeHelper::createNoise(f, 1.0f);
  uint32_t const before = AttributeHelper::calculateCRC(f);
  EXPECT_EQ(vUtl::calculateCRC(f.getPointer(1), 96), before);
  f.getFloat32Pointer(2)[5] += 1.0f;
  EXPECT_NE(before, AttributeHelper::calculateCRC(f));

  // Strings chain over their characters.
  Attribute s("S", "CLASS", vSTRING);
  fillStrings(s, {"AB", "C"});
  EXPECT_EQ(vUtl::calculateCRC("ABC", 3), AttributeHelper::calculateCRC(s));

  Attribute shorts("SHORTS", "CLASS", vINT16);
  shorts.resize(1);
  expectFailure([&] { AttributeHelper::calculateCRC(shorts); }, "AttributeHelper::calculateCRC",
                "The datatype 3 (vINT16) is not supported!");
}

TEST(AttributeHelperTime, NearestTimeRoundsHalvesAwayFromTheFirstTime) {
  // Sample rate, first time, time asked, nearest sample time. Halves go
  // away from the first time on both sides of it.
  double const rows[][4] = {{1, 0, -101.6, -102}, {4, 0, 103.3, 104}, {4, 10, 12, 14}, {4, 10, 8, 6}};
  for (auto const& r : rows) {
    SCOPED_TRACE(std::to_string(r[0]) + " " + std::to_string(r[1]) + " " + std::to_string(r[2]));
    EXPECT_DOUBLE_EQ(r[3], AttributeHelper::findNearestTime(Attribute("T", "CLASS", vFLOAT32, 10, r[0], r[1]), r[2]));
  }
}

TEST(AttributeHelperTime, TimegateCopiesTheOverlapAndZeroesTheRest) {
  // 0-1000 ms at 4 ms: 251 samples, each holding its own time.
  Attribute wide("TRACE", "SEISMIC", vFLOAT32, 251, 4.0, 0.0);
  wide.resize(2);
  for (unsigned int i = 1; i <= 2; ++i)
    for (int k = 0; k < 251; ++k) wide.getFloat32Pointer(i)[k] = static_cast<float>(k * 4 + 1000 * (i - 1));
  Attribute narrow("TRACE", "SEISMIC", vFLOAT32, 51, 4.0, 200.0);
  AttributeHelper::timegate(wide, narrow);
  ASSERT_EQ(2u, narrow.getNInstances());
  for (unsigned int i = 1; i <= 2; ++i)
    for (int k = 0; k < 51; ++k)
      ASSERT_EQ(static_cast<float>(200 + 4 * k + 1000 * (i - 1)), narrow.getFloat32Pointer(i)[k]) << k;

  Attribute back("TRACE", "SEISMIC", vFLOAT32, 251, 4.0, 0.0);
  AttributeHelper::timegate(narrow, back);
  ASSERT_EQ(2u, back.getNInstances());
  float const* p = back.getFloat32Pointer(2);
  for (int k = 0; k < 251; ++k) {
    float const want = (k >= 50 && k <= 100) ? static_cast<float>(k * 4 + 1000) : 0.0f;
    ASSERT_EQ(want, p[k]) << k;
  }
  // Windows that do not meet give zeros.
  Attribute late("TRACE", "SEISMIC", vFLOAT32, 10, 4.0, 5000.0);
  late.resize(1);
  late.getFloat32Pointer(1)[0] = 99.0f;
  AttributeHelper::timegate(wide, late);
  ASSERT_EQ(2u, late.getNInstances());
  for (int k = 0; k < 10; ++k) EXPECT_EQ(0.0f, late.getFloat32Pointer(1)[k]);
  // Types and sample rates must agree.
  Attribute a("A", "C", vFLOAT32, 10, 4.0, 0.0);
  Attribute b("B", "C", vFLOAT64, 10, 4.0, 0.0);
  Attribute c("C", "C", vFLOAT32, 10, 2.0, 0.0);
  expectFailure([&] { AttributeHelper::timegate(a, b); }, "AttributeHelper::timegate()",
                "Method cannot be used with attributes A and B of different data types");
  expectFailure([&] { AttributeHelper::timegate(a, c); }, "AttributeHelper::timegate()",
                "Method cannot be used with attributes A and C of different sample rates");
}

TEST(AttributeHelperSearch, FindAndKeepInstances) {
  Attribute v("V", "CLASS", vINT32, 2);
  fill(v, {1, 9, 3, 4, 5, 6, 7, 20, 2, 3});
  EXPECT_EQ((std::vector<unsigned int>{2, 5}), AttributeHelper::findInstances(v, 2.0, 4.0));
  EXPECT_EQ((std::vector<unsigned int>{}), AttributeHelper::findInstances(v, 100.0, 200.0));
  Attribute f("F", "C", vFLOAT64);
  f.resize(3);
  f.setFloat64(1, 0.5);
  f.setFloat64(2, -0.5);
  f.setFloat64(3, 0.25);
  EXPECT_EQ((std::vector<unsigned int>{1, 3}), AttributeHelper::findInstances(f, 0.0, 1.0));
  Attribute s("S", "CLASS", vSTRING);
  fillStrings(s, {"a"});
  expectFailure([&] { AttributeHelper::findInstances(s, 0, 1); }, "AttributeHelper::findInstances()",
                "Unsupported data type vSTRING for attribute S.");

  AttributeHelper::keepInstances(v, {4, 1, 4});
  EXPECT_EQ((std::vector<int>{7, 20, 1, 9, 7, 20}), intsOf(v));
  Attribute var("VAR", "CLASS", vINT32, Attribute::VARIABLE_LENGTH);
  fillVariable(var, {{1}, {2, 3}, {}});
  AttributeHelper::keepInstances(var, {3, 2});
  EXPECT_EQ((std::vector<std::vector<int>>{{}, {2, 3}}), instancesOf(var));
  Attribute names("N", "CLASS", vSTRING);
  fillStrings(names, {"a", "b", "c"});
  AttributeHelper::keepInstances(names, {2});
  EXPECT_EQ((std::vector<std::string>{"b"}), stringsOf(names));
  expectFailure([&] { AttributeHelper::keepInstances(names, {1, 2}); }, "AttributeHelper::keepInstances()",
                "Instance number 1(smallest) and/or 2(largest) are outside \t\t\t\t\t\t\t\t\t\tthe allowed range of 1 to 1");
}

TEST(AttributeHelperPresentation, DumpPrintsDefinitionAndValues) {
  Attribute v("OFFSET", "CLASS", vINT32, 2);
  fill(v, {100, -200, 300, 400});
  std::ostringstream out;
  AttributeHelper::dump(out, v);
  for (char const* part :
       {"OFFSET", "DataType=vINT32", "#Instances=2", "1: 100 -200", "2: 300 400"})
    EXPECT_NE(std::string::npos, out.str().find(part)) << part;
  std::ostringstream one;
  AttributeHelper::dump(one, v, 2, 2);
  EXPECT_EQ(std::string::npos, one.str().find("1: 100"));
  EXPECT_NE(std::string::npos, one.str().find("2: 300 400"));
}

TEST(AttributeHelperPresentation, SelectAttributesFromAScript) {
  std::list<Attribute> all;
  all.push_back(Attribute("CDP", "HEADER", vINT32));
  all.push_back(Attribute("CDP_X", "HEADER", vFLOAT64));
  all.push_back(Attribute("OFFSET", "HEADER", vINT32));
  all.push_back(Attribute("TRACE", "SEISMIC", vFLOAT32, 10, 4.0));
  std::list<Attribute> selection;
  std::istringstream in("-h\ncdp*\n  trace \ncdp\n-l\n-CDP_X\n-a\nnope\n-nope\n\nOFFSET\n");
  std::ostringstream out;
  AttributeHelper::selectAttributes(all, selection, in, out);
  // The empty line ended it before OFFSET.
  EXPECT_EQ((std::vector<std::string>{"CDP", "TRACE"}), namesOf(selection));
  for (char const* part :
       {"attribute name or -h for help",
        "Enter an attribute name to add to the selection list.   Wildcards are supported, e.g. use * "
        "to add all attributes.",
        "No attribute matches NOPE", "Not in the selection: NOPE", "  OFFSET (HEADER)", "* TRACE (SEISMIC)"})
    EXPECT_NE(std::string::npos, out.str().find(part)) << part;
  // The end of the input ends it too.
  std::istringstream more("OFFSET");
  AttributeHelper::selectAttributes(all, selection, more, out);
  EXPECT_EQ(3u, selection.size());
}

}  // namespace
