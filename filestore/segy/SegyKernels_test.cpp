// The byte-level kernels of the SEG-Y store, on buffers, without files.

#include "filestore/segy/SegyKernels.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "filestore/segy/SegyTesting.h"

namespace {

using namespace SegyKernels;

std::vector<unsigned char> bytes(std::initializer_list<int> values) {
  std::vector<unsigned char> out;
  for (int v : values) out.push_back(static_cast<unsigned char>(v));
  return out;
}

TEST(SegyKernels, ReadsFieldsInEitherOrderAtAnyAlignment) {
  std::vector<unsigned char> const b = bytes({0x00, 0x12, 0x34, 0x56, 0x78, 0xFF, 0xFE});
  EXPECT_EQ(0x12345678, readSwappedInt32(&b[1]));
  EXPECT_EQ(0x3456, readSwappedInt16(&b[2]));
  EXPECT_EQ(-2, readSwappedInt16(&b[5]));
  int32_t native;
  std::memcpy(&native, &b[1], 4);
  EXPECT_EQ(native, readInt32(&b[1]));
  int16_t native16;
  std::memcpy(&native16, &b[5], 2);
  EXPECT_EQ(static_cast<uint16_t>(native16), readUInt16(&b[5]));
}

TEST(SegyKernels, TellsTheByteOrderByTheFormatCode) {
  std::vector<unsigned char> header(BINARY_HEADER_LENGTH, 0);
  for (int16_t code : {1, 125}) {
    std::memcpy(&header[FORMAT_CODE_OFFSET], &code, 2);
    EXPECT_FALSE(isOtherByteOrder(header.data())) << code;
  }
  int16_t swapped = 5;
  vUtl::swapBytes16(&swapped, 1);
  std::memcpy(&header[FORMAT_CODE_OFFSET], &swapped, 2);
  EXPECT_TRUE(isOtherByteOrder(header.data()));
  int16_t const above = 126;
  std::memcpy(&header[FORMAT_CODE_OFFSET], &above, 2);
  EXPECT_TRUE(isOtherByteOrder(header.data()));
}

TEST(SegyKernels, SwapsExactlyTheNumbersOfTheBinaryHeader) {
  std::vector<unsigned char> header(BINARY_HEADER_LENGTH);
  for (int k = 0; k < BINARY_HEADER_LENGTH; ++k) header[static_cast<std::size_t>(k)] = static_cast<unsigned char>(k);
  std::vector<unsigned char> const before = header;
  swapBinaryHeader(header.data());
  std::vector<unsigned char> expected = before;
  auto reverse = [&](int at, int size) {
    for (int k = 0; k < size; ++k) expected[static_cast<std::size_t>(at + k)] = before[static_cast<std::size_t>(at + size - 1 - k)];
  };
  for (int o = 0; o < 12; o += 4) reverse(o, 4);
  for (int o = 12; o < 60; o += 2) reverse(o, 2);
  for (int o = 300; o < 308; o += 2) reverse(o, 2);
  reverse(308, 2);
  EXPECT_EQ(expected, header);
  // Twice is the identity.
  swapBinaryHeader(header.data());
  EXPECT_EQ(before, header);
}

TEST(SegyKernels, ConvertsEbcdicTextToAscii) {
  std::string const printable =
      " !\"#$%&'()*+,-./0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^_`abcdefghijklmnopqrstuvwxyz{|}~";
  std::string ebcdic;
  for (char c : printable) ebcdic += static_cast<char>(segy_testing::asciiToEbcdic(c));
  std::string out(ebcdic.size(), '?');
  ebcdicToAscii(ebcdic.data(), &out[0], ebcdic.size());
  EXPECT_EQ(printable, out);
  // Known codes of code page 37, and what is not text.
  std::vector<unsigned char> const in = bytes({0xC3, 0xF1, 0x40, 0x25, 0x15, 0x0D, 0x05, 0x00, 0xFF, 0x81});
  std::string text(in.size(), '?');
  ebcdicToAscii(in.data(), &text[0], in.size());
  EXPECT_EQ(std::string("C1 \n\n\r\t  a"), text);
}

TEST(SegyKernels, ConvertsSamplesOfEachFormat) {
  // IBM: 0x42640000 is 100.0, 0xC276A000 is -118.625 (big-endian words).
  std::vector<unsigned char> const ibm = bytes({0x42, 0x64, 0x00, 0x00, 0xC2, 0x76, 0xA0, 0x00});
  float out[2] = {0, 0};
  ASSERT_TRUE(convertSamples(ibm.data(), out, 2, 1, true));
  EXPECT_EQ(100.0f, out[0]);
  EXPECT_EQ(-118.625f, out[1]);
  // The same words in this machine's order.
  std::vector<unsigned char> ibmNative = ibm;
  vUtl::swapBytes32(ibmNative.data(), 2);
  ASSERT_TRUE(convertSamples(ibmNative.data(), out, 2, 1, false));
  EXPECT_EQ(100.0f, out[0]);
  EXPECT_EQ(-118.625f, out[1]);
  // IEEE, formats 5 and 6 alike, either order, in place too.
  float const values[2] = {3.5f, -0.25f};
  for (int code : {5, 6}) {
    float swapped[2];
    vUtl::swapBytes32(values, swapped, 2);
    ASSERT_TRUE(convertSamples(swapped, out, 2, code, true));
    EXPECT_EQ(3.5f, out[0]);
    EXPECT_EQ(-0.25f, out[1]);
    ASSERT_TRUE(convertSamples(swapped, swapped, 2, code, true));
    EXPECT_EQ(-0.25f, swapped[1]);
  }
  out[0] = 7.0f;
  EXPECT_FALSE(convertSamples(values, out, 2, 8, true));
  EXPECT_EQ(7.0f, out[0]) << "nothing written for a format it cannot read";
}

TEST(SegyKernels, CountsWholeTracesOfAPlainFile) {
  long long expected = -1;
  EXPECT_EQ(240 + 4 * 5, traceLength(5));
  EXPECT_EQ(240 + 4 * 65535, traceLength(65535));
  EXPECT_EQ(3u, countPlainTraces(3600 + 3 * 260 + 100, 260, expected));
  EXPECT_EQ(3600 + 3 * 260, expected);
  EXPECT_EQ(0u, countPlainTraces(1000, 260, expected));
  EXPECT_EQ(3600, expected);
}

TEST(SegyKernels, CountsBlocksOfABlockedFile) {
  int const L = 260;
  // Four traces a record: blocks of three.
  BlockCount exact = countBlockedTraces(3600 + 2 * (2048 + 3 * L), L, 4);
  EXPECT_FALSE(exact.mismatch);
  EXPECT_EQ(2, exact.blocks);
  EXPECT_EQ(6u, exact.instances);
  EXPECT_EQ(3u, exact.layout.tracesPerBlock);
  EXPECT_EQ(2048 + 3 * L, exact.layout.blockLength);
  // Blocks of four after all: the instances stay as first counted, the
  // layout grows.
  long long const grownSize = 3600 + 2 * (2048 + 4 * L);
  BlockCount grown = countBlockedTraces(grownSize, L, 4);
  EXPECT_FALSE(grown.mismatch);
  EXPECT_EQ((grownSize - 3600) / (2048 + 3 * L), grown.blocks);
  EXPECT_EQ(static_cast<uint32_t>(grown.blocks * 3), grown.instances);
  EXPECT_EQ(4u, grown.layout.tracesPerBlock);
  EXPECT_EQ(2048 + 4 * L, grown.layout.blockLength);
  // Neither.
  BlockCount odd = countBlockedTraces(3600 + 2048 + 3 * L + 7, L, 4);
  EXPECT_TRUE(odd.mismatch);
  EXPECT_EQ(1, odd.blocks);
  EXPECT_EQ(3u, odd.instances);
  EXPECT_EQ(3600 + 2048 + 3 * L, odd.expectedSize);
  EXPECT_EQ(4u, odd.layout.tracesPerBlock);
  // A record of one trace or none makes no instances, and no division.
  EXPECT_EQ(0u, countBlockedTraces(3600 + 5000, L, 1).instances);
  EXPECT_EQ(0u, countBlockedTraces(3600 + 5000, L, 0).instances);
  // Where the traces of a layout lie.
  BlockLayout layout = {3, 260, 2048 + 3 * 260};
  EXPECT_EQ(3600 + 2048, blockedTraceOffset(layout, 1));
  EXPECT_EQ(3600 + layout.blockLength + 2048, blockedTraceOffset(layout, 4));
  EXPECT_EQ(3600 + 2 * layout.blockLength + 2048 + 260, blockedTraceOffset(layout, 8));
}

}  // namespace
