// A SEG-Y file of more than 4 GiB (sparse, so it costs no disk): a read of
// all its traces is more than a 32-bit process can hold, and must be
// refused as such rather than wrap into a small buffer the read overruns.

#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "filestore/segy/SegyDiskStore.h"
#include "filestore/segy/SegyTesting.h"
#include "foundation/TestAddressSpaceCap.h"
#include "foundation/TestFailure.h"
#include "syslayer/FSTesting.h"

TEST(SegySizes, AReadBeyondTheMachineIsTheStoresOwnError) {
  fs_testing::TempDir dir;
  segy_testing::SegyWriter writer;
  writer.formatCode = 5;
  writer.nSamples = 16000;  // traces of 64240 bytes
  unsigned int const nTraces = 70000;
  long long const traceBytes = writer.traceLength();
  std::string const path = dir / "huge.sgy";
  fs_testing::writeFile(path, writer.file(1));
  // The 64-bit form: a 32-bit build of this test has a 32-bit off_t.
  ASSERT_EQ(0, ::truncate64(path.c_str(), 3600 + nTraces * traceBytes));

  SegyDiskStore store;
  store.open(vFilename(path.c_str()));
  ASSERT_EQ(nTraces, store.getNInstances());
  Attribute trace = store.getAttribute("TRACE");
  if (sizeof(void*) == 4) {
    expectFailure([&] { store.read(trace, 1, 0); }, "RecordBuffer::allocate",
                  "Cannot hold 70000 items of 64240 bytes: more than the 2147483647 bytes this machine can address "
                  "in one block.");
  } else {
#ifdef RONDO_TEST_ADDRESS_SPACE_CAP
    TestAddressSpaceCap cap(64 << 20);
    ASSERT_TRUE(cap.isCapped());
    expectFailure([&] { store.read(trace, 1, 0); }, "RecordBuffer::allocate",
                  "Cannot allocate 4496800000 bytes of records.");
#endif
  }
  // The store is still good for what fits: the first trace and the last,
  // past 4 GiB in the file.
  store.read(trace, std::vector<unsigned int>{nTraces, 1});
  EXPECT_EQ(segy_testing::goldenSample(1, 16000), trace.getFloat32Pointer(2)[15999]);
  EXPECT_EQ(0.0f, trace.getFloat32Pointer(1)[15999]);
}
