// The general header on a block of its own; its fields are read through
// the store from the Python writer's files.

#include <gtest/gtest.h>

#include "filestore/segd/SegdGeneralHeader.h"

namespace {

TEST(SegdGeneralHeader, OwnsTheBlockItIsGivenAndKeepsItsFirstAnswers) {
  unsigned char* block = new unsigned char[SegdGeneralHeader::LENGTH]();
  block[2] = 0x80;
  block[3] = 0x58;
  SegdGeneralHeader header(block);
  EXPECT_EQ(block, header.getBlock());
  EXPECT_EQ(8058, header.getFormatCode());
  block[3] = 0x15;  // computed once
  EXPECT_EQ(8058, header.getFormatCode());
  SegdGeneralHeader blank(static_cast<unsigned char*>(nullptr));
  EXPECT_EQ(0, blank.getFormatCode());
  EXPECT_EQ(32, blank.getHeaderSize());
}

}  // namespace
