// The sample formats and BCD fields on bytes worked out by hand from the
// SEG-D layouts.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
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

// Bits of a float, so that a wrong sign of zero counts as a difference.
std::vector<uint32_t> bitsOf(std::vector<float> const& values) {
  std::vector<uint32_t> bits(values.size());
  std::memcpy(bits.data(), values.data(), values.size() * sizeof(float));
  return bits;
}

TEST(SegdKernels, EveryPathGivesTheSameBitsForEveryFractionAndExponent) {
  // 2^20 groups; the sample in place p of group g takes the combination
  // (g + p * 2^18) mod 2^20 of a 16-bit fraction and a 4-bit exponent, so
  // each place of a group sees every fraction with every exponent.
  std::size_t const groups = std::size_t(1) << 20;
  std::vector<unsigned char> bytes(groups * 10);
  std::vector<float> expected(groups * 4);
  for (std::size_t g = 0; g < groups; ++g) {
    unsigned char* group = bytes.data() + g * 10;
    for (unsigned p = 0; p < 4; ++p) {
      unsigned const combination = (static_cast<unsigned>(g) + (p << 18)) & 0xFFFFF;
      unsigned const fraction = combination & 0xFFFF, exponent = combination >> 16;
      group[p / 2] = static_cast<unsigned char>(group[p / 2] | exponent << (p % 2 == 0 ? 4 : 0));
      group[2 + 2 * p] = static_cast<unsigned char>(fraction >> 8);
      group[3 + 2 * p] = static_cast<unsigned char>(fraction);
      expected[g * 4 + p] = std::ldexp(static_cast<float>(static_cast<int16_t>(fraction)), static_cast<int>(exponent) - 15);
    }
  }
  using SegdKernels::Path8015;
#if defined(__x86_64__) || defined(__i386__)
  EXPECT_TRUE(SegdKernels::has8015Path(Path8015::SSE2));
#endif
  for (Path8015 path : {Path8015::PORTABLE, Path8015::SSE2, Path8015::AVX2}) {
    if (!SegdKernels::has8015Path(path)) continue;
    SCOPED_TRACE("path " + std::to_string(static_cast<int>(path)));
    std::vector<float> out(expected.size());
    SegdKernels::fc_8015toieee(path, bytes.data(), out.data(), out.size());
    EXPECT_TRUE(bitsOf(out) == bitsOf(expected));
    // Short runs: the wide steps and what they leave to the scalar loop,
    // never a float written past the end.
    for (std::size_t count = 0; count <= 9; ++count) {
      std::vector<float> run(count * 4 + 4, -7.0f);
      SegdKernels::fc_8015toieee(path, bytes.data() + 10, run.data(), count * 4);
      std::vector<float> want(expected.begin() + 4, expected.begin() + (1 + count) * 4);
      want.insert(want.end(), 4, -7.0f);
      EXPECT_TRUE(bitsOf(run) == bitsOf(want)) << count << " groups";
    }
  }
}

}  // namespace
