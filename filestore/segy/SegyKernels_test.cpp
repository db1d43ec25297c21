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
  // Known codes of code page 37, and what is not text.
  std::vector<unsigned char> const in = bytes({0xC3, 0xF1, 0x40, 0x25, 0x15, 0x0D, 0x05, 0x00, 0xFF, 0x81});
  std::string text(in.size(), '?');
  ebcdicToAscii(in.data(), &text[0], in.size());
  EXPECT_EQ(std::string("C1 \n\n\r\t  a"), text);
}

// Files of every sample format are read through the store; here what the
// store never asks for: conversion in place and a format it cannot read.
TEST(SegyKernels, ConvertsSamplesInPlaceAndRefusesOtherFormats) {
  float const values[2] = {3.5f, -0.25f};
  float swapped[2], out[2] = {7.0f, 0};
  vUtl::swapBytes32(values, swapped, 2);
  ASSERT_TRUE(convertSamples(swapped, swapped, 2, 6, true));
  EXPECT_EQ(-0.25f, swapped[1]);
  EXPECT_FALSE(convertSamples(values, out, 2, 8, true));
  EXPECT_EQ(7.0f, out[0]) << "nothing written for a format it cannot read";
}

TEST(SegyKernels, CountsWholeTracesOfAPlainFile) {
  long long expected = -1;
  EXPECT_EQ(3u, countPlainTraces(3600 + 3 * 260 + 100, 260, expected));
  EXPECT_EQ(3600 + 3 * 260, expected);
  EXPECT_EQ(0u, countPlainTraces(1000, 260, expected));
  EXPECT_EQ(3600, expected);
}

// Blocked files of each shape are read through the store; here records of
// one trace or none, which make no blocks.
TEST(SegyKernels, CountsNoBlocksOfRecordsOfOneTraceOrNone) {
  int const L = 260;
  EXPECT_EQ(0u, countBlockedTraces(3600 + 5000, L, 1).instances);
  EXPECT_EQ(0u, countBlockedTraces(3600 + 5000, L, 0).instances);
}

}  // namespace
