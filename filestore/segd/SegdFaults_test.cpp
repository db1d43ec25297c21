// The SEG-D store on broken disks, through the file service's test faults.

#include <gtest/gtest.h>

#include "filestore/disk/TraceFileFaultTesting.h"
#include "filestore/segd/SegdDiskStore.h"
#include "filestore/segd/SegdTesting.h"

namespace {

// 8 traces of 256 samples in format 8015 (660 bytes each) after 64 bytes
// of headers.
class SegdFaultTest : public ::testing::Test {
 protected:
  void SetUp() override {
    segd_testing::installVocabulary();
    file.path = dir / "faulty.segd";
    ASSERT_TRUE(segd_testing::writeSegd(file.path, "--format 8015 --traces 8 --record 5"));
  }

  fs_testing::TempDir dir;
  disk_testing::TraceFile file{"", "SegdDiskStore", 64, 660, 256, segd_testing::writtenSample, "CHANNEL",
                               [](unsigned int i) { return static_cast<int>(i); },
                               "Failed to read instances 2:6", "Failed to read instances 4:5", 20, 20};
};

TEST_F(SegdFaultTest, BrokenDisksGiveTheirMessagesAndKeepWholeTraces) {
  disk_testing::expectTraceFileFaults<SegdDiskStore>(file);
}

}  // namespace
