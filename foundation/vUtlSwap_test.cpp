#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "foundation/TestFailure.h"
#include "foundation/UtlExcept.h"
#include "foundation/vUtl.h"

namespace {

using Bytes = std::vector<unsigned char>;

Bytes pattern(std::size_t n, unsigned seed) {
  Bytes b(n);
  uint32_t x = seed * 2654435761u + 1;
  for (auto& c : b) {
    x = x * 1664525u + 1013904223u;
    c = static_cast<unsigned char>(x >> 24);
  }
  return b;
}

// The obvious byte-by-byte reversal the kernels must agree with.
Bytes reference(Bytes const& in, std::size_t offset, int size, std::size_t n) {
  Bytes out(in);
  for (std::size_t i = 0; i < n; ++i)
    for (int k = 0; k < size; ++k) out[offset + i * size + k] = in[offset + i * size + (size - 1 - k)];
  return out;
}

TEST(vUtlSwap, InPlaceMatchesReferenceAtEveryLengthAndAlignmentOtherSizesRaise) {
  // Lengths around the vector widths, odd offsets for unaligned loads; the bytes around the run stay.
  for (int size : {2, 4, 8}) {
    for (std::size_t n : {0u, 1u, 7u, 8u, 17u, 257u}) {
      for (std::size_t offset : {0u, 1u, 3u}) {
        SCOPED_TRACE(std::to_string(size) + " x " + std::to_string(n) + " at " + std::to_string(offset));
        Bytes data = pattern(offset + n * size + 5, static_cast<unsigned>(n + size));
        Bytes const expected = reference(data, offset, size, n);
        vUtl::swapBytes(data.data() + offset, size, static_cast<int>(n));
        EXPECT_EQ(data, expected);
      }
    }
  }
  char x[16] = {};
  char y[8] = {};
  EXPECT_EQ(fatalText([&] { vUtl::swapBytes(x, 3, 2); }), "ByteSwap::swapBytes(): Invalid datatype, datasize =3.");
  EXPECT_EQ(fatalText([&] { vUtl::swapBytes(x, 1, 1, 8, 1, y, 1); }),
            "ByteSwap::swapBytes(): Invalid datatype, datasize =1.");
}

TEST(vUtlSwap, CopyingKernelsAndGroupedStridedCopy) {
  // Records of 20 bytes with three 4-byte values at offset 6: gathered into one block, then scattered back.
  int const recordLength = 20;
  unsigned const nRecords = 9;
  Bytes records = pattern(recordLength * nRecords, 3);
  Bytes gathered(12 * nRecords, 0);
  vUtl::swapBytes(records.data() + 6, 4, recordLength, nRecords, 3, gathered.data(), 12);
  for (unsigned r = 0; r < nRecords; ++r)
    for (int v = 0; v < 3; ++v)
      for (int k = 0; k < 4; ++k)
        ASSERT_EQ(gathered[r * 12 + v * 4 + k], records[r * recordLength + 6 + v * 4 + (3 - k)]) << r << " " << v;
  Bytes back(records.size(), 0);
  vUtl::swapBytes(gathered.data(), 4, 12, nRecords, 3, back.data() + 6, recordLength);
  for (unsigned r = 0; r < nRecords; ++r)
    EXPECT_EQ(0, std::memcmp(back.data() + r * recordLength + 6, records.data() + r * recordLength + 6, 12));

  Bytes run = pattern(2 * 100, 5);
  Bytes const expected = reference(run, 0, 2, 100);
  vUtl::swapBytes(run.data(), 2, 20, 10, 10, run.data(), 20);
  EXPECT_EQ(run, expected);
  // Equal strides with gaps, in place: the gaps stay.
  Bytes gaps = pattern(12 * 4, 9);
  Bytes gapsExpected = gaps;
  for (int r = 0; r < 4; ++r)
    for (int k = 0; k < 4; ++k) gapsExpected[r * 12 + k] = gaps[r * 12 + 3 - k];
  vUtl::swapBytes(gaps.data(), 4, 12, 4, 1, gaps.data(), 12);
  EXPECT_EQ(gaps, gapsExpected);
  std::size_t const n = 333;
  Bytes const src = pattern(8 * n + 1, 7);
  for (std::size_t size : {2u, 8u}) {
    Bytes copied(src.size() + 8, 0xEE);
    if (size == 2)
      vUtl::swapBytes16(src.data() + 1, copied.data() + 1, n);
    else
      vUtl::swapBytes64(src.data() + 1, copied.data() + 1, n);
    Bytes const want = reference(src, 1, static_cast<int>(size), n);
    EXPECT_TRUE(std::equal(want.begin() + 1, want.begin() + 1 + size * n, copied.begin() + 1)) << size;
    EXPECT_EQ(copied[1 + size * n], 0xEE) << size;
  }
}

}  // namespace
