// The FDM store on broken disks, through the file service's test faults.

#include <gtest/gtest.h>

#include "filestore/fdm/FdmDiskStore.h"
#include "filestore/fdm/FdmTesting.h"
#include "syslayer/FSTesting.h"

TEST(FdmFaults, ShortReadsGiveTheSameValuesAndAFailedReadIsFatal) {
  fs_testing::TempDir dir;
  std::string const path = dir / "vel.fdm";
  fdm_testing::writeFixture(path, ">");
  FdmDiskStore store;
  {
    fs_testing::Fault shortReads(path, FS_FAULT_SHORTREAD, 7);
    store.open(vFilename(path.c_str()));
    Attribute trace("VELTRACE.DEFAULT", "", vFLOAT32);
    store.read(trace, 9, 12);
    EXPECT_EQ(fdm_testing::value(3, 2, 4), trace.getFloat32Pointer(4)[4]);
  }
  // Inline index 1 (bins 5 to 8) cannot be read: its section is 80 bytes
  // from byte 592.
  fs_testing::Fault failing(path, FS_FAULT_FAILREAD, 600);
  Attribute trace("VELTRACE.DEFAULT", "", vFLOAT32);
  fs_testing::expectFailure([&] { store.read(trace, 6, 6); }, "FdmDiskReader::readSection",
                            "Request to read 80 bytes from file offset 592 failed");
  store.read(trace, 1, 4);
  EXPECT_EQ(fdm_testing::value(1, 0, 2), trace.getFloat32Pointer(2)[2]);
}
