// The general header's fields on blocks written byte by byte.

#include <gtest/gtest.h>

#include <cstring>

#include "filestore/segd/SegdGeneralHeader.h"

namespace {

struct Block {
  unsigned char bytes[32] = {};
  Block& set(int at, unsigned char value) {
    bytes[at] = value;
    return *this;
  }
};

TEST(SegdGeneralHeader, WorksOutItsFieldsFromBcd) {
  struct Case {
    Block block;
    int format, headerSize, traceLength;
    double rate;
  };
  Case const cases[] = {
      // One scan type of one channel set: 2 blocks.
      {Block().set(2, 0x80).set(3, 0x15).set(22, 0x10).set(25, 0x80).set(26, 0x05).set(27, 0x01).set(28, 0x01), 8015,
       64, 256, 1.0},
      // 3 scan types of 12 channel sets, 2 skew blocks each, 1 additional,
      // 10 extended and 21 external blocks: (12 + 2) * 3 + 1 + 10 + 21 + 1.
      {Block()
           .set(2, 0x80).set(3, 0x58).set(11, 0x15).set(22, 0x40).set(25, 0x01).set(26, 0x23)
           .set(27, 0x03).set(28, 0x12).set(29, 0x02).set(30, 0x10).set(31, 0x21),
       8058, 75 * 32, 6297, 4.0},  // 12.3 * 512 ms = 6297.6
      // Bad BCD counts by nibble value: 0x1A is 20. No interval bit: rate 0.
      {Block().set(2, 0x80).set(3, 0x1A).set(26, 0x01).set(27, 0x01).set(28, 0x1A), 8020, 21 * 32, 51, 0.0},
      // The lowest set bit decides.
      {Block().set(22, 0x06).set(26, 0x10), 0, 32, 512, 0.125},
  };
  for (Case const& c : cases) {
    SegdGeneralHeader header(static_cast<unsigned char const*>(c.block.bytes));
    EXPECT_EQ(c.format, header.getFormatCode());
    EXPECT_EQ(c.headerSize, header.getHeaderSize());
    EXPECT_EQ(c.traceLength, header.getTraceLength());
    EXPECT_EQ(c.rate, header.getSampleRate());
  }
}

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
