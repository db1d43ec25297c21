#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "attribute/AttributeTesting.h"
#include "attribute/BuildConverter.h"
#include "attribute/DataPtr.h"
#include "attribute/Float32DataConverter.h"
#include "attribute/Float64DataConverter.h"
#include "attribute/Int32DataConverter.h"
#include "attribute/Int64DataConverter.h"
#include "attribute/NullDataConverter.h"
#include "attribute/OriginalDataConverter.h"
#include "foundation/MessageHandling.h"
#include "foundation/UtlExcept.h"

using attribute_testing::expectFailure;

namespace {

template <class T>
DataPtr block(DataType type, std::vector<T> const& values) {
  return DataPtr(type, static_cast<unsigned int>(values.size()), static_cast<void const*>(values.data()));
}

template <class T>
std::vector<T> valuesOf(DataPtr const& d) {
  T const* p = static_cast<T const*>(d.getData());
  return std::vector<T>(p, p + d.getTotalLength());
}

vHandle<DataConverterI> none() { return vHandle<DataConverterI>(); }

TEST(Int32DataConverter, EachInputType) {
  Int32DataConverter const c("", none());
  DataPtr shorts = block<short>(vINT16, {-32768, 7});
  DataPtr out = c.convertData(shorts);
  EXPECT_EQ((std::vector<int>{-32768, 7}), valuesOf<int>(out));

  DataPtr longs = block<long long>(vINT64, {0x123456789LL, -1});
  EXPECT_EQ((std::vector<int>{0x23456789, -1}), valuesOf<int>(c.convertData(longs)));

  // Floats round to nearest by nint, halves away from zero.
  DataPtr floats = block<float>(vFLOAT32, {2.5f, -2.5f, 2.4f, 1e10f});
  void* const block32 = floats.getData();
  DataPtr rounded = c.convertData(floats);
  EXPECT_EQ((std::vector<int>{3, -3, 2, 2147483647}), valuesOf<int>(rounded));
  // Same size: the conversion took the input's block over and worked in place.
  EXPECT_EQ(block32, rounded.getData());

  DataPtr doubles = block<double>(vFLOAT64, {2.5, -0.5});
  DataPtr fromDoubles = c.convertData(doubles);
  EXPECT_EQ((std::vector<int>{3, -1}), valuesOf<int>(fromDoubles));
  EXPECT_EQ((std::vector<double>{2.5, -0.5}), valuesOf<double>(doubles));

  // Lengths pass along.
  unsigned int const lengths[] = {2, 1};
  float const values[] = {1.4f, 1.6f, -7.5f};
  DataPtr variable(vFLOAT32, 2, values, lengths);
  DataPtr fromVariable = c.convertData(variable);
  ASSERT_TRUE(fromVariable.isVariableLength());
  EXPECT_EQ(1u, fromVariable.getLengths()[1]);
  EXPECT_EQ((std::vector<int>{1, 2, -8}), valuesOf<int>(fromVariable));
}

TEST(Int32DataConverter, SameTypeIsHandedOnOrCopiedWhenConstRefusalsLeaveIt) {
  Int32DataConverter const c("", none());
  DataPtr ints = block<int>(vINT32, {1, 2, 3});
  void* const p = ints.getData();
  DataPtr out = c.convertData(ints);
  EXPECT_EQ(p, out.getData());

  DataPtr const fixed = block<int>(vINT32, {4, 5});
  DataPtr copy = c.convertData(fixed);
  EXPECT_NE(fixed.getData(), copy.getData());

  // Refusals leave the input as it was.
  DataPtr bytes = block<signed char>(vINT8, {1, 2});
  void* const byteBlock = bytes.getData();
  expectFailure([&] { c.convertData(bytes); }, "Int32DataConverter::doConvertData()",
                "Unsupported input data type vINT8.");
  EXPECT_EQ(byteBlock, bytes.getData());

  DataPtr released = block<float>(vFLOAT32, {1.0f});
  delete[] static_cast<float*>(released.releaseData());
  expectFailure([&] { c.convertData(released); }, "DataPtr::getData()", "Illegal after releaseData!.");
}

TEST(Int64DataConverter, WidensAndRounds) {
  Int64DataConverter const c("", none());
  DataPtr ints = block<int>(vINT32, {-2147483647 - 1});
  EXPECT_EQ((std::vector<long long>{-2147483648LL}), valuesOf<long long>(c.convertData(ints)));
  DataPtr doubles = block<double>(vFLOAT64, {2.5, -2.5, 1e12 + 0.5, 1e30});
  DataPtr out = c.convertData(doubles);
  EXPECT_EQ((std::vector<long long>{3, -3, 1000000000001LL, 0x7FFFFFFFFFFFFFFFLL}), valuesOf<long long>(out));
  // 8-byte in, 8-byte out: in place.
  EXPECT_TRUE(out.isInPlace());
  DataPtr longs = block<long long>(vINT64, {9});
  void* const p = longs.getData();
  EXPECT_EQ(p, c.convertData(longs).getData());
  DataPtr bools = block<unsigned char>(vBOOL8, {1});
  expectFailure([&] { c.convertData(bools); }, "Int64DataConverter::doConvertData()",
                "Unsupported input data type vBOOL8.");
}

TEST(FloatDataConverters, PlainConversionNoInt16ToFloat32) {
  Float32DataConverter const c("", none());
  DataPtr ints = block<int>(vINT32, {16777217, -3});
  EXPECT_EQ((std::vector<float>{16777216.0f, -3.0f}), valuesOf<float>(c.convertData(ints)));
  DataPtr doubles = block<double>(vFLOAT64, {0.1, 2.5});
  EXPECT_EQ((std::vector<float>{0.1f, 2.5f}), valuesOf<float>(c.convertData(doubles)));
  DataPtr shorts = block<short>(vINT16, {1});
  expectFailure([&] { c.convertData(shorts); }, "Float32DataConverter::doConvertData()",
                "Unsupported input data type vINT16.");
  // Float64 takes every numeric attribute type.
  Float64DataConverter const wide("", none());
  DataPtr shortsToo = block<short>(vINT16, {-32768});
  EXPECT_EQ((std::vector<double>{-32768.0}), valuesOf<double>(wide.convertData(shortsToo)));
  DataPtr longs = block<long long>(vINT64, {(1LL << 53) + 1});
  EXPECT_EQ((std::vector<double>{9007199254740992.0}), valuesOf<double>(wide.convertData(longs)));
}

TEST(NullDataConverter, HandsOnAndHasNoTypeOfItsOwn) {
  NullDataConverter const n("", none());
  EXPECT_EQ(vNOTYPE, n.getOutputDT());
  DataPtr shorts = block<short>(vINT16, {5, 6});
  void* const p = shorts.getData();
  DataPtr out = n.convertData(shorts);
  EXPECT_EQ(p, out.getData());
  EXPECT_EQ(vINT16, out.getDataType());
  // Without a type of its own it reports the next converter's.
  NullDataConverter const overInt("", vHandle<DataConverterI>(new Int32DataConverter("")));
  EXPECT_EQ(vINT32, overInt.getOutputDT());
}

TEST(OriginalDataConverter, TruncatesWhereInt32DataConverterRounds) {
  OriginalDataConverter c("", none());
  c.setOutputDT(vINT32);
  DataPtr floats = block<float>(vFLOAT32, {2.9f, -2.9f, 7.0f});
  EXPECT_EQ((std::vector<int>{2, -2, 7}), valuesOf<int>(c.convertData(floats)));

  c.setOutputDT(vINT64);
  DataPtr doubles = block<double>(vFLOAT64, {-123456789012.9});
  EXPECT_EQ((std::vector<long long>{-123456789012LL}), valuesOf<long long>(c.convertData(doubles)));
  // The const setter changes the shared object too.
  OriginalDataConverter const& shared = c;
  shared.setOutputDT(vFLOAT32);
  DataPtr same = block<float>(vFLOAT32, {1.25f});
  void* const p = same.getData();
  EXPECT_EQ(p, c.convertData(same).getData());

  // Input of the output type, or an output type it cannot make, is refused.
  c.setOutputDT(vINT32);
  DataPtr ints = block<int>(vINT32, {1});
  expectFailure([&] { c.convertData(ints); }, "OriginalDataConverter::doConvertData",
                "Unexpected attribute input data type 'vINT32'.  Output data type is 'vINT32'.");
  EXPECT_EQ((std::vector<int>{1}), valuesOf<int>(ints));
  c.setOutputDT(vINT16);
  DataPtr one = block<float>(vFLOAT32, {1.0f});
  expectFailure([&] { c.convertData(one); }, "OriginalDataConverter::doConvertData",
                "Unexpected output type 'vINT16'.");
  expectFailure([&] { c.getOutputDT(); }, "OriginalDataConverter::doGetOutputDT", "Need code");
}

TEST(DataConverterDecorator, TheInnermostConverterRunsFirst) {
  // Float32 over Int32: 2.5 is rounded to 3 first, then made a float.
  vHandle<DataConverterI> inner(new Int32DataConverter(""));
  Float32DataConverter const chain("", inner);
  DataPtr doubles = block<double>(vFLOAT64, {2.5, -1.5});
  DataPtr out = chain.convertData(doubles);
  EXPECT_EQ((std::vector<float>{3.0f, -2.0f}), valuesOf<float>(out));
  // An inner refusal stops the chain with the inner converter's message.
  DataPtr bytes = block<signed char>(vINT8, {1});
  expectFailure([&] { chain.convertData(bytes); }, "Int32DataConverter::doConvertData()",
                "Unsupported input data type vINT8.");
}

// ---------------------------------------------------------------------------
// BuildConverter keeps one converter per name per process, so its checks run
// in a process of their own where no other test has built one yet.

std::string buildConverterProblems() {
  std::ostringstream problems;
  auto check = [&](bool ok, char const* what) {
    if (!ok) problems << "failed: " << what << "\n";
  };
  MessageHandling quiet;

  check(BuildConverter::createConverter("").isEmpty(), "empty text gives an empty handle");
  check(BuildConverter::createConverter("int32").isEmpty(), "no '(' gives an empty handle");

  vHandle<DataConverterI> chain = BuildConverter::createConverter(" Int32 ( a, b )float32()");
  Float32DataConverter* head = dynamic_cast<Float32DataConverter*>(chain.pointer());
  check(head != nullptr, "the head of int32()float32() is the Float32DataConverter");
  Int32DataConverter* first = head ? dynamic_cast<Int32DataConverter*>(head->getNext().pointer()) : nullptr;
  check(first != nullptr, "its next is the Int32DataConverter");
  check(first && first->getNext().isEmpty(), "the Int32DataConverter is the end of the chain");
  check(first && first->getArguments() == "a  b", "arguments have commas as blanks, stripped");
  check(head && head->getArguments().isEmpty(), "empty arguments");
  if (head) {
    DataPtr doubles(vFLOAT64, 1, static_cast<void const*>(std::vector<double>{2.5}.data()));
    DataPtr out = chain->convertData(doubles);
    check(out.getDataType() == vFLOAT32 && *static_cast<float*>(out.getData()) == 3.0f,
          "the built chain rounds through int32 before float32");
  }

  // One object per name: later texts get the first one back, with its
  // first arguments and next converter.
  vHandle<DataConverterI> again = BuildConverter::createConverter("float32(other)");
  check(again.pointer() == chain.pointer(), "float32() is the same object the second time");
  check(head && head->getArguments().isEmpty(), "the first arguments are kept");
  check(head && head->getNext().pointer() == first, "the first next converter is kept");

  vHandle<DataConverterI> original = BuildConverter::createConverter("ORIGINAL()");
  check(dynamic_cast<OriginalDataConverter*>(original.pointer()) != nullptr, "original");
  check(dynamic_cast<NullDataConverter*>(BuildConverter::createConverter("null()").pointer()) != nullptr, "null");
  check(dynamic_cast<Int64DataConverter*>(BuildConverter::createConverter("int64()").pointer()) != nullptr, "int64");
  check(dynamic_cast<Float64DataConverter*>(BuildConverter::createConverter("float64()").pointer()) != nullptr,
        "float64");

  return problems.str();
}

TEST(BuildConverter, BuildsChainsAndKeepsOneConverterPerName) {
  EXPECT_EXIT(
      {
        std::string const problems = buildConverterProblems();
        std::fprintf(stderr, "%s", problems.c_str());
        std::exit(problems.empty() ? 0 : 1);
      },
      ::testing::ExitedWithCode(0), "");
}

}  // namespace
