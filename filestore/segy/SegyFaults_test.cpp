// The SEG-Y store on broken disks, through the file service's test faults.

#include <gtest/gtest.h>

#include "filestore/disk/TraceFileFaultTesting.h"
#include "filestore/segy/SegyDiskStore.h"
#include "filestore/segy/SegyTesting.h"

namespace {

// 8 traces of 10 samples (280 bytes each) after the 3600 bytes of headers.
class SegyFaultTest : public ::testing::Test {
 protected:
  void SetUp() override {
    segy_testing::SegyWriter writer;
    writer.nSamples = 10;
    file.path = dir / "faulty.sgy";
    fs_testing::writeFile(file.path, writer.file(8));
  }

  fs_testing::TempDir dir;
  disk_testing::TraceFile file{"", "SegyDiskStore", 3600, 280, 10, segy_testing::goldenSample, "CMP",
                               [](unsigned int i) { return segy_testing::goldenHeader(i, 20); },
                               "Failed to read instance 2", "Failed to read instance 4", 3300, 100};
};

TEST_F(SegyFaultTest, BrokenDisksGiveTheirMessagesAndKeepWholeTraces) {
  disk_testing::expectTraceFileFaults<SegyDiskStore>(file);
}

}  // namespace
