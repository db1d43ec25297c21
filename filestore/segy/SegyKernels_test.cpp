// The byte-level kernels of the SEG-Y store, on buffers, without files.

#include "filestore/segy/SegyKernels.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "foundation/vUtl.h"

namespace {

using namespace SegyKernels;

TEST(SegyKernels, TellsTheByteOrderByTheFormatCode) {
  std::vector<unsigned char> header(BINARY_HEADER_LENGTH, 0);
  // Files in both orders are read through the store; here the edge of the
  // codes taken as this machine's.
  for (int16_t const code : {125, 126}) {
    std::memcpy(&header[FORMAT_CODE_OFFSET], &code, 2);
    EXPECT_EQ(code == 126, isOtherByteOrder(header.data())) << code;
  }
  // Fields of the other order, at an odd address.
  unsigned char const big[] = {0, 0x81, 0x02, 0x03, 0x04};
  EXPECT_EQ(int16_t(0x8102), readSwappedInt16(big + 1));
  EXPECT_EQ(int32_t(0x81020304), readSwappedInt32(big + 1));
}

// Files of every sample format are read through the store; here conversion
// in place and a format it cannot read.
TEST(SegyKernels, ConvertsSamplesInPlaceAndRefusesOtherFormats) {
  float const values[2] = {3.5f, -0.25f};
  float swapped[2], out[2] = {7.0f, 0};
  vUtl::swapBytes32(values, swapped, 2);
  ASSERT_TRUE(convertSamples(swapped, swapped, 2, 6, true));
  EXPECT_EQ(-0.25f, swapped[1]);
  EXPECT_FALSE(convertSamples(values, out, 2, 8, true));
  EXPECT_EQ(7.0f, out[0]) << "nothing written for a format it cannot read";
}

}  // namespace
