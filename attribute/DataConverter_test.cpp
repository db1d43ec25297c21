// Blocks in transit (DataPtr) and the converters that turn them from one type into another.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <utility>
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

TEST(Int32DataConverter, RoundsFloatsNarrowsIntegersAndHandsOnItsOwnType) {
  Int32DataConverter const c("", none());
  // Floats round to nearest by nint, halves away from zero, and saturate.
  DataPtr floats = block<float>(vFLOAT32, {2.5f, -2.5f, 2.4f, 1e10f});
  void* const block32 = floats.getData();
  DataPtr rounded = c.convertData(floats);
  EXPECT_EQ((std::vector<int>{3, -3, 2, 2147483647}), valuesOf<int>(rounded));
  // Same size: the conversion took the input's block over and worked in place.
  EXPECT_EQ(block32, rounded.getData());
  DataPtr longs = block<long long>(vINT64, {0x123456789LL, -1});
  EXPECT_EQ((std::vector<int>{0x23456789, -1}), valuesOf<int>(c.convertData(longs)));
  // Lengths pass along.
  unsigned int const lengths[] = {2, 1};
  float const values[] = {1.4f, 1.6f, -7.5f};
  DataPtr variable(vFLOAT32, 2, values, lengths);
  DataPtr fromVariable = c.convertData(variable);
  ASSERT_TRUE(fromVariable.isVariableLength());
  EXPECT_EQ(1u, fromVariable.getLengths()[1]);
  EXPECT_EQ((std::vector<int>{1, 2, -8}), valuesOf<int>(fromVariable));

  DataPtr ints = block<int>(vINT32, {1, 2, 3});
  void* const p = ints.getData();
  EXPECT_EQ(p, c.convertData(ints).getData());
  DataPtr const fixed = block<int>(vINT32, {4, 5});
  EXPECT_NE(fixed.getData(), c.convertData(fixed).getData());
  // A refusal leaves the input as it was.
  DataPtr bytes = block<signed char>(vINT8, {1, 2});
  void* const byteBlock = bytes.getData();
  expectFailure([&] { c.convertData(bytes); }, "Int32DataConverter::doConvertData()",
                "Unsupported input data type vINT8.");
  EXPECT_EQ(byteBlock, bytes.getData());
}

TEST(DataConverters, WidenAndNarrowToTheirTypes) {
  DataPtr doubles = block<double>(vFLOAT64, {2.5, 1e30});
  DataPtr out = Int64DataConverter("", none()).convertData(doubles);
  EXPECT_EQ((std::vector<long long>{3, 0x7FFFFFFFFFFFFFFFLL}), valuesOf<long long>(out));
  EXPECT_TRUE(out.isInPlace());
  DataPtr ints = block<int>(vINT32, {16777217, -3});
  EXPECT_EQ((std::vector<float>{16777216.0f, -3.0f}),
            valuesOf<float>(Float32DataConverter("", none()).convertData(ints)));
  DataPtr shorts = block<short>(vINT16, {-32768});
  EXPECT_EQ((std::vector<double>{-32768.0}), valuesOf<double>(Float64DataConverter("", none()).convertData(shorts)));

  // The null converter hands on, and without a type of its own reports the next converter's.
  NullDataConverter const n("", none());
  EXPECT_EQ(vNOTYPE, n.getOutputDT());
  void* const p = shorts.getData();
  DataPtr same = n.convertData(shorts);
  EXPECT_EQ(p, same.getData());
  EXPECT_EQ(vINT16, same.getDataType());
  EXPECT_EQ(vINT32, NullDataConverter("", vHandle<DataConverterI>(new Int32DataConverter(""))).getOutputDT());
}

TEST(OriginalDataConverter, TruncatesWhereInt32DataConverterRounds) {
  OriginalDataConverter c("", none());
  c.setOutputDT(vINT32);
  DataPtr floats = block<float>(vFLOAT32, {2.9f, -2.9f, 7.0f});
  EXPECT_EQ((std::vector<int>{2, -2, 7}), valuesOf<int>(c.convertData(floats)));
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
  c.setOutputDT(vINT16);
  expectFailure([&] { c.convertData(same); }, "OriginalDataConverter::doConvertData",
                "Unexpected output type 'vINT16'.");
  expectFailure([&] { c.getOutputDT(); }, "OriginalDataConverter::doGetOutputDT", "Need code");
}

TEST(DataConverterDecorator, TheInnermostConverterRunsFirst) {
  // Float32 over Int32: 2.5 is rounded to 3 first, then made a float.
  Float32DataConverter const chain("", vHandle<DataConverterI>(new Int32DataConverter("")));
  DataPtr doubles = block<double>(vFLOAT64, {2.5, -1.5});
  EXPECT_EQ((std::vector<float>{3.0f, -2.0f}), valuesOf<float>(chain.convertData(doubles)));
}

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

  // One object per name: later texts get the first one back, with its
  // first arguments and next converter.
  vHandle<DataConverterI> again = BuildConverter::createConverter("float32(other)");
  check(again.pointer() == chain.pointer(), "float32() is the same object the second time");
  check(head && head->getArguments().isEmpty(), "the first arguments are kept");
  check(head && head->getNext().pointer() == first, "the first next converter is kept");
  vHandle<DataConverterI> original = BuildConverter::createConverter("ORIGINAL()");
  check(dynamic_cast<OriginalDataConverter*>(original.pointer()) != nullptr, "names are read in any case");

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

TEST(DataPtr, TransferCopyAllocateAndBorrow) {
  int32_t* data = new int32_t[5]{1, 2, 3, 4, 5};
  DataPtr d(vINT32, 2, data, new unsigned int[2]{2, 3}, DataPtr::TRANSFER);
  EXPECT_EQ(data, d.getData());
  EXPECT_EQ(20, d.getTotalNBytes());
  // Freed by d: AddressSanitizer would report a leak otherwise.

  unsigned int lengths[2] = {1, 2};
  double mine[3] = {9, 9, 9};
  DataPtr m(vFLOAT64, 2, mine, lengths, DataPtr::COPY);
  EXPECT_NE(static_cast<void*>(mine), m.getData());
  EXPECT_NE(lengths, m.getLengths());
  DataPtr a(vINT16, 2, mine, lengths, DataPtr::ALLOCATE);
  EXPECT_EQ(6, a.getTotalNBytes());
  EXPECT_EQ(0, static_cast<int16_t*>(a.getData())[2]);  // zeroed

  // Borrowed blocks are never freed.
  float block[2] = {1.0f, 2.0f};
  {
    DataPtr b(vFLOAT32, 2, block, nullptr, DataPtr::BORROW);
    EXPECT_FALSE(b.ownsData());
  }
  EXPECT_EQ(2.0f, block[1]);  // a stack block freed would have crashed

  EXPECT_NE(nullptr, DataPtr(vBOOL8, 3).getData());
  EXPECT_EQ(nullptr, DataPtr(vINT32, 0).getData());
  expectFailure([] { DataPtr s(vSTRING, 3); }, "DataPtr::DataPtr()", "Unsupported data type vSTRING.");
  int x = 0;
  expectFailure([&] { DataPtr z(vINT32, 0, &x, nullptr, DataPtr::TRANSFER); }, "DataPtr::DataPtr(...)",
                "Given nElements=0, but mData or myLength!=0");
}

TEST(DataPtr, ReleaseHandsOutOnce) {
  DataPtr d(vINT32, 3);
  void* block = d.getData();
  void* got = d.releaseData();
  EXPECT_EQ(block, got);
  expectFailure([&] { d.getData(); }, "DataPtr::getData()", "Illegal after releaseData!.");
  expectFailure([&] { d.releaseData(); }, "DataPtr::releaseData()", "Illegal to make second call!.");
  DataPtr e;
  expectFailure([&] { e = d; }, "DataPtr::operator=()", "rhs is in the middle of releasing its data");
  delete[] static_cast<int32_t*>(got);

  DataPtr v(vINT16, 2, nullptr, new unsigned int[2]{1, 1}, DataPtr::TRANSFER);
  unsigned int* lengths = v.releaseLengths();
  ASSERT_NE(nullptr, lengths);
  expectFailure([&] { v.getLengths(); }, "DataPtr::getLengths()", "Illegal after releaseLengths!.");
  delete[] lengths;
  EXPECT_NE(nullptr, v.getData());  // the data are still its own
}

TEST(DataPtr, AssignmentMovesCopyConstructionIsDeep) {
  DataPtr a(vFLOAT32, 2, nullptr, new unsigned int[2]{1, 2}, DataPtr::TRANSFER);
  a.setOriginalDataType(vINT32);
  void* block = a.getData();
  DataPtr b(vINT64, 7);
  b = a;
  EXPECT_EQ(block, b.getData());
  EXPECT_EQ(vINT32, b.getOriginalDataType());
  EXPECT_EQ(0u, a.getNElements());
  EXPECT_EQ(nullptr, a.getLengths());
  DataPtr g(std::move(b));
  EXPECT_EQ(block, g.getData());
  EXPECT_EQ(nullptr, b.getData());

  DataPtr c(g);
  EXPECT_NE(g.getLengths(), c.getLengths());
  EXPECT_NE(g.getData(), c.getData());
  DataPtr e;
  e.deepCopy(c);
  EXPECT_EQ(3, e.getTotalLength());
}

TEST(DataPtr, PrepareWorksInPlaceWhenSizesAgreeAndOwned) {
  float* block = new float[3]{1.5f, 2.5f, -3.5f};
  DataPtr in(vFLOAT32, 3, block, nullptr, DataPtr::TRANSFER);
  in.setOriginalDataType(vINT16);
  DataPtr out(vINT32, 0);
  out.prepare(in);
  EXPECT_TRUE(out.isInPlace());
  EXPECT_EQ(static_cast<void*>(block), out.getData());
  EXPECT_FALSE(in.ownsData());
  EXPECT_EQ(vINT16, out.getOriginalDataType());

  // Otherwise it allocates: borrowed, of another size, or const.
  unsigned int lengths[2] = {2, 1};
  int16_t values[3] = {1, 2, 3};
  DataPtr borrowed(vINT16, 2, values, lengths, DataPtr::BORROW);
  DataPtr out64(vFLOAT64, 0);
  out64.prepare(borrowed);
  EXPECT_FALSE(out64.isInPlace());
  EXPECT_EQ(24, out64.getTotalNBytes());
  DataPtr owned(vINT16, 3);
  DataPtr wider(vINT64, 0);
  wider.prepare(owned);
  EXPECT_TRUE(owned.ownsData());
  DataPtr const constant(vINT32, 2);
  DataPtr copy(vFLOAT32, 0);
  copy.prepare(constant);
  EXPECT_NE(constant.getData(), copy.getData());
}
