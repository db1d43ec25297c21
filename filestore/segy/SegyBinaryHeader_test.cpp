// The binary header: every field, in either byte order, and the three ways
// of holding the block.

#include "filestore/segy/SegyBinaryHeader.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "filestore/segy/SegyTesting.h"
#include "foundation/TestFailure.h"

namespace {

std::string binaryHeaderOf(segy_testing::SegyWriter const& writer) {
  return writer.fileHeaders().substr(SegyKernels::TEXT_HEADER_LENGTH);
}

segy_testing::SegyWriter goldenWriter(bool bigEndian) {
  segy_testing::SegyWriter w;
  w.bigEndian = bigEndian;
  w.formatCode = 5;
  w.dataTracesPerRecord = 7;
  w.sampleInterval = 50000;
  w.nSamples = static_cast<uint16_t>(-2);
  return w;
}

TEST(SegyBinaryHeader, ReadsEveryFieldInEitherByteOrderInTheCallersBlockOrACopy) {
  for (bool bigEndian : {true, false}) {
    std::string const block = binaryHeaderOf(goldenWriter(bigEndian));
    SegyBinaryHeader h(block.data());
    // Fields that files written by segyio do not check, of each width.
    EXPECT_EQ(14, h.getNumberAuxiliaryTracesPerRecord());
    EXPECT_EQ(-2, h.getNumberSamplePerTrace()) << "signed";
    EXPECT_EQ(56, h.getImpulseSignalPolarity());
    EXPECT_EQ(bigEndian, h.isByteSwapped());
  }
  std::string const file = binaryHeaderOf(goldenWriter(true));
  // On a caller's block: swapped there, once.
  std::string block = file;
  {
    SegyBinaryHeader header(&block[0]);
    EXPECT_EQ(1004, header.getLineNumber());
    EXPECT_NE(file, block);
    EXPECT_EQ(1004, SegyKernels::readInt32(&block[4]));
    EXPECT_EQ(1004, header.getLineNumber()) << "not swapped back by a second look";
  }
  EXPECT_EQ(1004, SegyKernels::readInt32(&block[4])) << "the block outlives the header";
  // From a const block: a copy, the caller's bytes untouched.
  std::string const constant = file;
  SegyBinaryHeader copy(constant.data());
  EXPECT_EQ(5, copy.getFormatCode());
  EXPECT_EQ(file, constant);
  EXPECT_NE(copy.getBlock(), constant.data());
  // A null block, or none: a zeroed block of its own.
  SegyBinaryHeader own(static_cast<char*>(nullptr));
  EXPECT_EQ(0, own.getLineNumber());
}

}  // namespace
