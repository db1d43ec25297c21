// The option records that travel with an open and a create: defaults,
// their packed forms byte for byte, and frames of older and
// newer writers.

#include <gtest/gtest.h>

#include "project/StoreCreationOptions.h"
#include "project/StoreOpenOptions.h"
#include "project/StoreTesting.h"

using store_testing::Bytes;
using store_testing::bodyOf;
using store_testing::expectFailure;
using store_testing::receive;

namespace {

// The six flags in their packed order (Kelp, Dorn, sparse, decompress,
// mute, CST), as 0s and 1s.
std::string flags(StoreOpenOptions const& o) {
  std::string out;
  for (bool f : {o.hasKelpCrossDomainAttributes(), o.hasDornOnlyDealWithOneAttributeSet(), o.getSparseReadOfAttributes(),
                 o.getAutoDecompress(), o.getRestoreMute(), o.getAutoSpecifyCSTFiles()})
    out += f ? '1' : '0';
  return out;
}

// All six flags the other way round from their defaults.
StoreOpenOptions allTurned() {
  StoreOpenOptions o;
  o.setKelpCrossDomainAttributes();
  o.setDornOnlyDealWithOneAttributeSet();
  o.setSparseReadOfAttributes();
  o.setAutoDecompress(false);
  o.setRestoreMute(true);
  o.setAutoSpecifyCSTFiles(true);
  return o;
}

}  // namespace

TEST(StoreOpenOptions, DefaultsAndThePackedFrame) {
  EXPECT_EQ("000100", flags(StoreOpenOptions()));
  Packer p;
  allTurned().pack(p);
  Bytes expected;
  expected.frame(6673, 5).boolean(true).boolean(true).boolean(true).boolean(false).boolean(true).boolean(true).end();
  EXPECT_EQ(expected.body(), bodyOf(p));

  StoreOpenOptions back;
  back.unpack(*receive(p));
  EXPECT_TRUE(back == allTurned());
}

TEST(StoreOpenOptions, OlderAndNewerFramesFillTheFlagsTheyHoldAnotherMagicIsRefused) {
  auto read = [](Bytes& b, StoreOpenOptions o) {
    o.unpack(*b.end().reader());
    return flags(o);
  };
  // Version 0 holds no flag, yet clears the first; the others keep what they were.
  Bytes v0;
  EXPECT_EQ("011011", read(v0.frame(6673, 0), allTurned()));
  // Version 3 holds flags one to four.
  StoreOpenOptions cst;
  cst.setAutoSpecifyCSTFiles(true);
  Bytes v3;
  EXPECT_EQ("010001", read(v3.frame(6673, 3).boolean(false).boolean(true).boolean(false).boolean(false), cst));
  // A newer frame is skipped to its end.
  Bytes b;
  b.frame(6673, 6).boolean(true).boolean(false).boolean(true).boolean(true).boolean(false).boolean(true);
  b.int32(77).text("later field").end();
  b.int32(4242);
  std::unique_ptr<Packer> reader = b.reader();
  StoreOpenOptions o;
  o.unpack(*reader);
  EXPECT_EQ("101101", flags(o));
  int after = 0;
  reader->unpack(after);
  EXPECT_EQ(4242, after);

  Bytes bad;
  bad.frame(6674, 5).end();
  expectFailure([&] { o.unpack(*bad.reader()); }, "StoreOpenOptions::unpack", "Bad magic number 6674,expected 6673");
}

TEST(StoreCreationOptions, KeepsOnlyTheKnownKelpDataTypesAndCopiesOwnTheirFileName) {
  StoreCreationOptions o;
  for (int type : {1, 3}) {
    o.setKelpDataType(type);
    EXPECT_EQ(type, static_cast<int>(o.getKelpDataType()));
  }
  for (int type : {0, 4}) {
    o.setKelpDataType(3);
    o.setKelpDataType(type);
    EXPECT_EQ(StoreCreationOptions::KELP_NONE, o.getKelpDataType()) << type;
  }
  StoreCreationOptions a;
  a.setFilename(vFilename("/data/a.sgy"));
  StoreCreationOptions b(a);
  a.setFilename(vFilename("/data/other.sgy"));
  EXPECT_EQ("/data/a.sgy", std::string(b.getFilename().getFilename().c_str()));
  b = StoreCreationOptions();
  EXPECT_FALSE(b.hasFilename());
  EXPECT_TRUE(a != b);
}

TEST(StoreCreationOptions, PacksTheRecordInItsOrderAndAnAttributeListAsARange) {
  StoreCreationOptions o;
  // The name is kept in lower case.
  o.setPrimaryAttributeSetName("Prime");
  o.setGrid(1, 2, 3, 4, 5, 6, 12.5f, 25.0f);
  o.setOffsets(-50.5, 3000.25, 61);
  o.setCompressed();
  o.setFilename(vFilename("/data/line1.sgy"));
  o.setKelpDataType(2);
  Packer p;
  o.pack(p);

  Bytes expected;
  expected.frame(6653, 5).text("prime").boolean(true);
  for (int i = 1; i <= 6; ++i) expected.int32(i);
  expected.float32(12.5f).float32(25.0f).boolean(true).float64(-50.5).float64(3000.25).int32(61).boolean(true);
  expected.boolean(false).boolean(true).text("/data/line1.sgy").int32(2).end();
  EXPECT_EQ(expected.body(), bodyOf(p));

  StoreCreationOptions back;
  back.unpack(*receive(p));
  EXPECT_TRUE(back == o);

  // An attribute list travels as a range.
  o.setAttributeList({Attribute("INLINE", "INLINE", vINT32), Attribute("TRACE", "TRACE", vFLOAT32, 1500, 2.0, 0.0)});
  Packer withList;
  o.pack(withList);
  back.unpack(*receive(withList));
  EXPECT_TRUE(back == o);
}

TEST(StoreCreationOptions, OlderFramesResetWhatTheyLack) {
  StoreCreationOptions full;
  full.setCompressed();
  full.setFilename(vFilename("/x/y"));
  full.setKelpDataType(3);
  // Version 1: the primary set's name only.
  {
    Bytes b;
    b.frame(6653, 1).text("Prime").end();
    StoreCreationOptions o(full);
    o.unpack(*b.reader());
    StoreCreationOptions want;
    want.setPrimaryAttributeSetName("prime");
    EXPECT_TRUE(o == want);
  }
  // Version 4: everything up to the file name, no Kelp data type.
  {
    Bytes b;
    b.frame(6653, 4).text("p").boolean(false);
    for (int i = 0; i < 6; ++i) b.int32(0);
    b.float32(0).float32(0).boolean(true).float64(1).float64(2).int32(3).boolean(false);
    b.boolean(false).boolean(true).text("/f").end();
    StoreCreationOptions o(full);
    o.unpack(*b.reader());
    EXPECT_EQ(StoreCreationOptions::KELP_NONE, o.getKelpDataType());
    EXPECT_TRUE(o.hasOffsets());
    EXPECT_EQ("/f", std::string(o.getFilename().getFilename().c_str()));
  }
}
