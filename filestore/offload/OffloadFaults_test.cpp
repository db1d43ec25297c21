// The offload store on broken disks, through the file service's test
// faults: reads in small pieces, reads that fail part way, files cut short.

#include <gtest/gtest.h>

#include <string>

#include "filestore/offload/OffloadDiskStore.h"
#include "filestore/offload/OffloadTesting.h"
#include "foundation/UtlExcept.h"
#include "syslayer/FSTesting.h"

namespace {

// A rectangular little-endian file of 40-byte records from the Python
// writer, written once for the suite (no test leaves it changed): the trace
// of bin b is record 46 + b, 1800 + 40 b bytes in.
class OffloadFaultTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    dir = new fs_testing::TempDir;
    path = *dir / "faulty.offload";
    offload_testing::writeFixture(path, *dir / "faulty.txt", "<", 1, 991, 0);
  }
  static void TearDownTestSuite() { delete dir; }

  static int cdpOf(OffloadDiskStore const& store, unsigned int bin) {
    Attribute cdp("CDP", "", vINT32);
    store.read(cdp, bin, bin);
    return cdp.getInt32(1);
  }

  static inline fs_testing::TempDir* dir;
  static inline std::string path;
};

}  // namespace

// A failed read leaves the store usable; a cached range needs no file.
TEST_F(OffloadFaultTest, AFailedReadNamesItsRecordsAndACachedRangeNeedsNoFile) {
  OffloadDiskStore store;
  store.open(vFilename(path.c_str()));
  {
    // Bin 4 cannot be read; a read of bin 2 reads on through the window to
    // the last live bin, 11.
    fs_testing::Fault failing(path, FS_FAULT_FAILREAD, 1800 + 40 * 4 + 8);
    std::string const text = fatalText([&] { cdpOf(store, 2); });
    EXPECT_EQ(0u, text.find("OffloadAttributeFile::myReadRecords: Failed to do a partial read against the datafile "
                            "(fileOffset=1880, nbytes=400, frecord=48, lrecord=57, status="))
        << text;
  }
  EXPECT_EQ(14, cdpOf(store, 2));
  EXPECT_EQ(28, cdpOf(store, 4));
  store.getFile().cacheRange(2, 5);
  fs_testing::Fault everything(path, FS_FAULT_FAILREAD, 0);
  Attribute cdp("CDP", "", vINT32);
  store.getFile().extractRange(cdp, 3, 5);
  EXPECT_EQ(35, cdp.getInt32(3));
  Attribute trace("TRACE", "", vFLOAT32);  // of length 1: made the file's length
  store.getFile().extractRange(trace, 2, 2);
  EXPECT_EQ(7, trace.getLength());
  EXPECT_THROW(store.getFile().extractRange(cdp, 5, 6), UtlExcept);
}

TEST_F(OffloadFaultTest, ACutHeaderOrMapFails) {
  for (int64_t const size : {int64_t(2), int64_t(200), int64_t(1790)}) {
    fs_testing::Fault truncated(path, FS_FAULT_TRUNCATE, size);
    OffloadDiskStore store;
    EXPECT_THROW(store.open(vFilename(path.c_str())), UtlExcept) << size;
  }
}

TEST_F(OffloadFaultTest, AFailedRelayoutLeavesTheFileAsItWas) {
  std::string const before = fs_testing::readFile(path);
  OffloadDiskStore store;
  store.update(vFilename(path.c_str()));
  {
    // The copy of the traces fails at bin 5.
    fs_testing::Fault failing(path, FS_FAULT_FAILREAD, 1800 + 40 * 5 + 8);
    EXPECT_THROW(store.addAttribute(Attribute("EXTRA", "", vINT32)), UtlExcept);
  }
  EXPECT_FALSE(store.hasAttribute("EXTRA"));
  EXPECT_EQ(77, cdpOf(store, 11));
  store.close();
  EXPECT_EQ(before, fs_testing::readFile(path));
  EXPECT_FALSE(FS::exists(vFilename((path + ".relayout").c_str())));
}
