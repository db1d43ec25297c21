// The blocked layout ("dsegy"): the instance mapper's spans, and golden
// blocked files read through the store.

#include "filestore/segy/SegyHalcyonInstanceMapper.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "filestore/segy/SegyDiskStore.h"
#include "filestore/segy/SegyTesting.h"
#include "syslayer/FSTesting.h"

namespace {

using segy_testing::goldenHeader;
using segy_testing::goldenSample;

TEST(SegyHalcyonInstanceMapper, NeedsItsLayoutFirst) {
  SegyHalcyonInstanceMapper mapper;
  vInstanceMapperBase::RangeList ranges;
  vInstanceMapperBase::compressInstancesToRanges(2, 7, ranges);
  std::vector<SegyHalcyonInstanceMapper::Span> spans;
  expectFailure([&] { mapper.doConvert(ranges, spans); }, "SegyHalcyonInstanceMapper::doConvert",
                "Record byte length is not set, object not properly initialised!");
  // Spans of a set layout are read through the store below; offsets here:
  // blocks of three traces of 100 bytes, instance 0 has none.
  mapper.setLayout(SegyKernels::BlockLayout{3, 100, 2048 + 300});
  EXPECT_EQ((std::vector<long long>{3600 + 2048 + 200, 3600 + 2348 + 2048}), mapper.convert(3, 4));
  EXPECT_EQ((std::vector<long long>{-1, 3600 + 2048}), mapper.convert(std::vector<unsigned int>{0, 1}));
}

TEST(SegyBlocked, ReadsEveryTraceAcrossBlocksReportsAnOddSizeAndNamesAFailedSpan) {
  fs_testing::TempDir dir;
  segy_testing::SegyWriter writer;
  writer.dataTracesPerRecord = 4;  // blocks of three traces
  writer.nSamples = 6;
  std::string const path = dir / "blocked.DSEGY";
  fs_testing::writeFile(path, writer.blockedFile(4));
  segy_testing::Recording recording;
  SegyDiskStore store;
  store.open(vFilename(path.c_str()));
  EXPECT_TRUE(recording.errors().empty());
  ASSERT_EQ(12u, store.getNInstances());
  Attribute trace = store.getAttribute("TRACE");
  Attribute cmp = store.getAttribute("CMP");
  for (unsigned int first = 1; first <= 12; ++first) {
    for (unsigned int last = first; last <= 12; last += 4) {
      store.read(trace, first, last);
      store.read(cmp, first, last);
      for (unsigned int i = first; i <= last; ++i) {
        ASSERT_EQ(goldenHeader(i, 20), cmp.getInt32(i - first + 1)) << first << "-" << last;
        for (unsigned int s = 1; s <= 6; ++s)
          ASSERT_EQ(goldenSample(i, s), trace.getFloat32Pointer(i - first + 1)[s - 1]);
      }
    }
  }
  // A contiguous list is a range; any other list is refused.
  store.read(cmp, std::vector<unsigned int>{3, 4, 5});
  EXPECT_EQ(goldenHeader(4, 20), cmp.getInt32(2));
  expectFailure([&] { store.read(cmp, std::vector<unsigned int>{5, 3}); }, "SegyDiskStore::read",
                "Halcyon format not supported!");

  std::string const odd = dir / "odd.dsegy";
  fs_testing::writeFile(odd, writer.blockedFile(2) + std::string(10, 'z'));
  store.open(vFilename(odd.c_str()));
  long long const block = 2048 + 3 * 264;
  EXPECT_EQ((std::vector<std::string>{"SegyHalcyonInstanceMapper::calculateNBlocks: The file '" + odd +
                                      "' is either incomplete or corrupt.\nFilesize is " +
                                      std::to_string(3600 + 2 * block + 10) + " bytes but we expect " +
                                      std::to_string(3600 + 2 * block) + " when the tracelength is 264"}),
            recording.errors());
  EXPECT_EQ(6u, store.getNInstances());
  // The layout grew by one trace a block: the second block's first
  // instance is read from where a block of four would put it.
  fs_testing::Fault failing(odd, FS_FAULT_FAILREAD, 3600 + 2048 + 2 * 264);
  expectFailure([&] { store.read(cmp, 1, 4); }, "SegyDiskStore::myReadHalcyonData",
                "Failed to read 1056 bytes at position 5648 in the halcyon segy file");
}

}  // namespace
