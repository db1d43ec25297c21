// 16-bit packing against an independent Python packer (testdata/).

#include "filestore/offload/OffloadCompression.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "filestore/offload/OffloadTesting.h"

namespace {

std::string toHex(std::vector<uint32_t> const& record) {
  static char const digits[] = "0123456789abcdef";
  std::string hex;
  unsigned char const* bytes = reinterpret_cast<unsigned char const*>(record.data());
  for (std::size_t k = 0; k < 4 * record.size(); ++k) {
    hex += digits[bytes[k] >> 4];
    hex += digits[bytes[k] & 15];
  }
  return hex;
}

}  // namespace

TEST(OffloadCompression, PackedRecordsAndValuesMatchThePythonPacker) {
  struct Case {
    int n, window, swap;
  };
  // Odd and even lengths, one and several windows (a zero window among
  // them), pairs swapped and not, a window length that splits pairs.
  for (Case const c : {Case{7, 0, 0}, Case{8, 0, 1}, Case{1, 0, 1}, Case{11, 4, 0}, Case{13, 3, 1}, Case{9, 20, 0}}) {
    SCOPED_TRACE("n " + std::to_string(c.n) + " window " + std::to_string(c.window) + " swap " +
                 std::to_string(c.swap));
    // The Python packer's record (hex), then its unpacked samples.
    std::vector<std::string> const packed = offload_testing::python(
        "offload_pack.py " + std::to_string(c.n) + " " + std::to_string(c.window) + " " + std::to_string(c.swap));
    ASSERT_EQ(2u, packed.size()) << "python3 with numpy is needed";
    std::vector<double> const expected = offload_testing::numbers(packed[1]);
    std::vector<float> samples(static_cast<std::size_t>(c.n));
    for (int i = 0; i < c.n; ++i)
      samples[static_cast<std::size_t>(i)] = i < 5 ? 0.0f : static_cast<float>(std::sin(0.7 * i) * 100 * (i % 5 + 1));
    int const words = compression_moffld_int16Tlen(c.n, c.window);
    std::vector<uint32_t> record(static_cast<std::size_t>(words), 0xdeadbeef);
    compression_moffld_int16(c.n, samples.data(), c.swap != 0, record.data(), c.window, 1);
    EXPECT_EQ(packed[0], toHex(record));
    std::vector<float> back(static_cast<std::size_t>(c.n), -1.0f);
    compression_moffld_int16(c.n, back.data(), c.swap != 0, record.data(), c.window, 0);
    ASSERT_EQ(expected.size(), back.size());
    for (std::size_t i = 0; i < back.size(); ++i) {
      EXPECT_FLOAT_EQ(static_cast<float>(expected[i]), back[i]) << i;
      // Within one step of the window's scale of the original.
      EXPECT_NEAR(samples[i], back[i], 600.0 / 32766.0 + 1e-6) << i;
    }
  }
}

TEST(OffloadCompression, CommonScalerHelpers) {
  float const zeros[3] = {0, 0, 0};
  float const tiny[2] = {1e-31f, -2e-31f};
  float const mixed[3] = {2.0f, -4.0f, 1.0f};
  EXPECT_EQ(1.0f, ds_computescaler(zeros, 3));
  EXPECT_EQ(3.2766e34f, ds_computescaler(tiny, 2));
  EXPECT_EQ(32766.0f / 4.0f, ds_computescaler(mixed, 3));
  int16_t shorts[4] = {0, 0, 0, 0}, swapped[4] = {0, 0, 0, 0};
  ds_float32toint16(mixed, 3, ds_computescaler(mixed, 3), shorts);
  ds_float32toint16withswap(mixed, 3, ds_computescaler(mixed, 3), swapped);
  EXPECT_EQ((std::vector<int16_t>{16383, -32766, 8191, 0}), std::vector<int16_t>(shorts, shorts + 4));
  EXPECT_EQ((std::vector<int16_t>{-32766, 16383, 0, 8191}), std::vector<int16_t>(swapped, swapped + 4));
  float back[3];
  ds_int16tofloat32withswap(swapped, 3, 8191.5f, back);
  EXPECT_FLOAT_EQ(-4.0f, back[1]);
  ds_int16tofloat32(shorts, 3, 1e-21f, back);
  EXPECT_EQ(0.0f, back[0]);
  for (int const n : {1, 2, 7, 8}) EXPECT_EQ((n - 1) / 2 + 2, compression_moffld_int16Tlen(n, 0));
  EXPECT_EQ((11 - 1) / 2 + 3 + 2, compression_moffld_int16Tlen(11, 4));
  EXPECT_EQ((11 - 1) / 2 + 2, compression_moffld_int16Tlen(11, 20));
}
