// DataPtr: blocks in transit, who owns them, and how they move.

#include "attribute/DataPtr.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <utility>

#include "attribute/AttributeTesting.h"

using attribute_testing::expectFailure;

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
