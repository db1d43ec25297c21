// The sample formats and BCD fields on bytes worked out by hand from the
// SEG-D layouts.

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "filestore/segd/SegdKernels.h"
#include "foundation/TestFailure.h"

namespace {

TEST(SegdKernels, Converts20BitGroupsWorkedByHand) {
  // Two groups of four. Exponents 1, 15, 8, 0 then 7, 3, 0, 15.
  unsigned char const bytes[] = {
      0x1F, 0x80, 0x40, 0x00, 0x80, 0x00, 0x7F, 0xFF, 0xC0, 0x00,  //
      0x73, 0x0F, 0x00, 0x01, 0xFF, 0xFF, 0x7F, 0xFF, 0x00, 0x00};
  float const expected[] = {
      1.0f,           // 0x4000 = 16384 * 2^(1-15)
      -32768.0f,      // 0x8000 = -32768 * 2^0
      255.9921875f,   // 0x7FFF = 32767 * 2^(8-15)
      -0.5f,          // 0xC000 = -16384 * 2^-15
      1.0f / 256,     // 1 * 2^(7-15)
      -1.0f / 4096,   // -1 * 2^(3-15)
      32767.0f / 32768,
      0.0f};
  float out[8] = {};
  SegdKernels::fc_8015toieee(bytes, out, 8);
  for (int k = 0; k < 8; ++k) EXPECT_EQ(expected[k], out[k]) << "sample " << k + 1;
  // Only whole groups of four.
  expectFailure([&] { SegdKernels::fc_8015toieee(bytes, out, 6); }, "fc_8015toieee",
                "8015 samples must be in groups of four.");
}

TEST(SegdKernels, LongRunsConvertAsTheirGroupsDo) {
  // Every exponent once, each with the fraction 0x4000 (one half): 2^(e-1);
  // then the two hand-worked groups above, four times over. Long enough for
  // the wide path, and ending in the scalar one.
  std::vector<unsigned char> bytes;
  std::vector<float> expected;
  for (int e = 0; e < 16; e += 4) {
    unsigned char const group[] = {static_cast<unsigned char>(e << 4 | (e + 1)),
                                   static_cast<unsigned char>((e + 2) << 4 | (e + 3)),
                                   0x40, 0, 0x40, 0, 0x40, 0, 0x40, 0};
    bytes.insert(bytes.end(), group, group + 10);
    for (int k = 0; k < 4; ++k) expected.push_back(std::ldexp(1.0f, e + k - 1));
  }
  unsigned char const hand[] = {0x1F, 0x80, 0x40, 0x00, 0x80, 0x00, 0x7F, 0xFF, 0xC0, 0x00,
                                0x73, 0x0F, 0x00, 0x01, 0xFF, 0xFF, 0x7F, 0xFF, 0x00, 0x00};
  float const handValues[] = {1.0f, -32768.0f, 255.9921875f, -0.5f, 1.0f / 256, -1.0f / 4096, 32767.0f / 32768, 0.0f};
  for (int copy = 0; copy < 4; ++copy) {
    bytes.insert(bytes.end(), hand, hand + 20);
    expected.insert(expected.end(), handValues, handValues + 8);
  }
  std::vector<float> out(expected.size());
  SegdKernels::fc_8015toieee(bytes.data(), out.data(), out.size());
  for (std::size_t k = 0; k < out.size(); ++k) EXPECT_EQ(expected[k], out[k]) << "sample " << k + 1;
}

TEST(SegdKernels, ConvertsBigEndianIeeeInPlaceToo) {
  unsigned char bytes[] = {0x3F, 0x80, 0x00, 0x00, 0xC0, 0x49, 0x0F, 0xDB, 0x00, 0x00, 0x00, 0x01};
  float out[3];
  SegdKernels::fc_8058toieee(bytes, out, 3);
  EXPECT_EQ(1.0f, out[0]);
  EXPECT_EQ(-3.14159274f, out[1]);
  EXPECT_EQ(1.40129846e-45f, out[2]);  // the smallest subnormal stays
  float* same = reinterpret_cast<float*>(bytes);
  SegdKernels::fc_8058toieee(bytes, same, 3);
  EXPECT_EQ(-3.14159274f, same[1]);
}

TEST(SegdKernels, ReadsBcdAndSizesTraces) {
  unsigned char const digits[] = {0x12, 0x34, 0x99, 0x1A, 0xFF};
  EXPECT_EQ(12, SegdKernels::bcd(digits[0]));
  EXPECT_EQ(123499, SegdKernels::bcd(digits, 3));
  // Nibbles above 9 count as what they hold.
  EXPECT_EQ(20, SegdKernels::bcd(digits[3]));
  EXPECT_EQ(165, SegdKernels::bcd(digits[4]));
  EXPECT_EQ(10 * 64 + 20, SegdKernels::traceLength(8015, 256));
  EXPECT_EQ(10 * 12 + 20, SegdKernels::traceLength(8015, 51));
  EXPECT_EQ(4 * 51 + 20, SegdKernels::traceLength(8058, 51));
  EXPECT_EQ(0, SegdKernels::traceLength(8036, 51));
}

}  // namespace
