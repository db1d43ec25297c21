// The SEG-D store on broken disks, through the file service's test faults:
// files that look truncated, reads that fail part way, reads that come in
// small pieces.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "filestore/segd/SegdDiskStore.h"
#include "filestore/segd/SegdTesting.h"
#include "syslayer/FSTesting.h"

namespace {

using segd_testing::writtenSample;

// 8 traces of 256 samples in format 8015 (660 bytes each) after 64 bytes
// of headers.
class SegdFaultTest : public ::testing::Test {
 protected:
  void SetUp() override {
    segd_testing::installVocabulary();
    path = dir / "faulty.segd";
    ASSERT_TRUE(segd_testing::writeSegd(path, "--format 8015 --traces 8 --record 5"));
  }

  fs_testing::TempDir dir;
  std::string path;
};

TEST_F(SegdFaultTest, ATruncatedFileKeepsItsWholeTraces) {
  fs_testing::Fault truncated(path, FS_FAULT_TRUNCATE, 64 + 5 * 660 + 17);
  segd_testing::Recording recording;
  SegdDiskStore store;
  store.open(vFilename(path.c_str()));
  EXPECT_EQ(5u, store.getNInstances());
  EXPECT_EQ((std::vector<std::string>{"SegdDiskStore::myGetNInstances: The file '" + path +
                                      "' is either incomplete or corrupt.\nFilesize is 3381 bytes but we expect 3364 "
                                      "when the tracelength is 660"}),
            recording.errors());
  Attribute trace = store.getAttribute("TRACE");
  store.read(trace, 5, 5);
  EXPECT_EQ(writtenSample(5, 256), trace.getFloat32Pointer(1)[255]);
}

TEST_F(SegdFaultTest, AFailedReadNamesItsInstancesAndKeepsNothingHalfRead) {
  SegdDiskStore store;
  store.open(vFilename(path.c_str()));
  Attribute channel = store.getAttribute("CHANNEL");
  {
    // Trace 4 cannot be read.
    fs_testing::Fault failing(path, FS_FAULT_FAILREAD, 64 + 3 * 660 + 100);
    expectFailure([&] { store.read(channel, 2, 6); }, "SegdDiskStore::myAllocateBufferRange",
                  "Failed to read instances 2:6");
    // A list goes by runs of neighbours: the run 4:5 fails.
    expectFailure([&] { store.read(channel, std::vector<unsigned int>{8, 1, 4, 5}); },
                  "SegdDiskStore::myAllocateBufferList", "Failed to read instances 4:5");
    store.read(channel, std::vector<unsigned int>{3, 1});
    EXPECT_EQ(3, channel.getInt32(1));
    EXPECT_EQ(1, channel.getInt32(2));
  }
  store.read(channel, 2, 6);
  for (unsigned int i = 2; i <= 6; ++i) EXPECT_EQ(static_cast<int>(i), channel.getInt32(i - 1));
}

TEST_F(SegdFaultTest, AFailedHeaderReadSaysHowMuchCame) {
  fs_testing::Fault failing(path, FS_FAULT_FAILREAD, 20);
  SegdDiskStore store;
  expectFailure([&] { store.open(vFilename(path.c_str())); }, "SegdDiskStore::open",
                "Only read 20 bytes from header of file " + path + ".");
  EXPECT_FALSE(store.isOpen());
}

TEST_F(SegdFaultTest, ReadsThatComeInPiecesStillFillEveryTrace) {
  fs_testing::Fault shortReads(path, FS_FAULT_SHORTREAD, 7);
  SegdDiskStore store;
  store.open(vFilename(path.c_str()));
  ASSERT_EQ(8u, store.getNInstances());
  Attribute trace = store.getAttribute("TRACE");
  store.read(trace, 1, 8);
  for (unsigned int i = 1; i <= 8; ++i)
    for (unsigned int s = 1; s <= 256; ++s) ASSERT_EQ(writtenSample(i, s), trace.getFloat32Pointer(i)[s - 1]);
}

}  // namespace
