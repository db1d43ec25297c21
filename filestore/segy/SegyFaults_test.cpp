// The SEG-Y store on broken disks, through the file service's test faults:
// files that look truncated, reads that fail part way, reads that come in
// small pieces.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "filestore/segy/SegyDiskStore.h"
#include "filestore/segy/SegyTesting.h"
#include "syslayer/FSTesting.h"

namespace {

using segy_testing::goldenHeader;
using segy_testing::goldenSample;

class SegyFaultTest : public ::testing::Test {
 protected:
  void SetUp() override {
    writer.nSamples = 10;  // traces of 280 bytes
    path = dir / "faulty.sgy";
    fs_testing::writeFile(path, writer.file(8));
  }

  fs_testing::TempDir dir;
  segy_testing::SegyWriter writer;
  std::string path;
};

TEST_F(SegyFaultTest, ATruncatedFileKeepsItsWholeTraces) {
  fs_testing::Fault truncated(path, FS_FAULT_TRUNCATE, 3600 + 5 * 280 + 17);
  segy_testing::Recording recording;
  SegyDiskStore store;
  store.open(vFilename(path.c_str()));
  EXPECT_EQ(5u, store.getNInstances());
  EXPECT_EQ((std::vector<std::string>{"SegyDiskStore::myGetNInstances: The file '" + path +
                                      "' is either incomplete or corrupt.\nFilesize is 5017 bytes but we expect 5000 "
                                      "when the tracelength is 280"}),
            recording.errors());
  Attribute trace = store.getAttribute("TRACE");
  store.read(trace, 1, 5);
  EXPECT_EQ(goldenSample(5, 10), trace.getFloat32Pointer(5)[9]);
}

TEST_F(SegyFaultTest, AFailedTraceReadNamesTheFirstInstanceAndClears) {
  SegyDiskStore store;
  store.open(vFilename(path.c_str()));
  Attribute cmp = store.getAttribute("CMP");
  {
    // Trace 4 cannot be read.
    fs_testing::Fault failing(path, FS_FAULT_FAILREAD, 3600 + 3 * 280 + 100);
    expectFailure([&] { store.read(cmp, 2, 6); }, "SegyDiskStore::myAllocateBufferRange", "Failed to read instance 2");
    // A list read goes by runs of neighbours: the run from 4 fails.
    expectFailure([&] { store.read(cmp, std::vector<unsigned int>{8, 1, 4, 5}); },
                  "SegyDiskStore::myAllocateBufferList",
                  "Failed to read instance 4");
    // What lies before the fault still reads.
    store.read(cmp, std::vector<unsigned int>{3, 1});
    EXPECT_EQ(goldenHeader(3, 20), cmp.getInt32(1));
    EXPECT_EQ(goldenHeader(1, 20), cmp.getInt32(2));
  }
  // Nothing half-read is kept: the range reads whole now.
  store.read(cmp, 2, 6);
  for (unsigned int i = 2; i <= 6; ++i) EXPECT_EQ(goldenHeader(i, 20), cmp.getInt32(i - 1));
}

TEST_F(SegyFaultTest, AFailedHeaderReadSaysHowMuchCame) {
  fs_testing::Fault failing(path, FS_FAULT_FAILREAD, 3300);
  SegyDiskStore store;
  expectFailure([&] { store.open(vFilename(path.c_str())); }, "SegyDiskStore::open",
                "Only read 100 bytes from header of file " + path + ".");
  EXPECT_FALSE(store.isOpen());
}

TEST_F(SegyFaultTest, ReadsThatComeInPiecesStillFillEveryTrace) {
  fs_testing::Fault shortReads(path, FS_FAULT_SHORTREAD, 7);
  SegyDiskStore store;
  store.open(vFilename(path.c_str()));
  ASSERT_EQ(8u, store.getNInstances());
  Attribute trace = store.getAttribute("TRACE");
  store.read(trace, 1, 8);
  for (unsigned int i = 1; i <= 8; ++i)
    for (unsigned int s = 1; s <= 10; ++s) ASSERT_EQ(goldenSample(i, s), trace.getFloat32Pointer(i)[s - 1]);
}

}  // namespace
