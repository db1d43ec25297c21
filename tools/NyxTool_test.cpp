// `rondo info` and `dump` over Nyx files of the Python fixture, plain and
// through the mapping file that a format spec names.

#include <gtest/gtest.h>

#include "tools/ToolTesting.h"

namespace {

using namespace tool_testing;

TEST(RondoNyx, InfoAndDumpOfCstAndDatFiles) {
  fs_testing::TempDir dir;
  std::string const fixture = std::string(kPython) + " " RONDO_TEST_SOURCE_DIR "/filestore/nyx/testdata/nyx_fixture.py ";
  ASSERT_EQ(0, shell(dir, fixture + "dat line2d.dat '>' 2 4 3 && " + fixture + "cst line2d.cst '<' 5 4 3").status);
  Outcome const info = tool(dir, "info line2d.dat");
  ASSERT_EQ(0, info.status) << info.err;
  for (char const* line : {"class       seismic\n", "subclass    nyxdisk\n", "instances   4\n",
                           "  TRACE                    vFLOAT32         3            4"})
    EXPECT_NE(std::string::npos, info.out.find(line)) << line << info.out;
  // Format 2 holds half of the stored numbers.
  Outcome const dump = tool(dir, "dump line2d.dat CMP,OFFSET,WDEPTH,TRACE --first 3");
  ASSERT_EQ(0, dump.status) << dump.err;
  EXPECT_EQ("3\t11\t300\t53.5\t15.5 16 16.5\n4\t11\t100\t54.5\t20.5 21 21.5\n", dump.out);
  Outcome const mapped = tool(dir, "dump file:line2d.cst#nyxcst:2dShotGathers# SHOT,CHANNEL,TRACE --last 2");
  ASSERT_EQ(0, mapped.status) << mapped.err;
  EXPECT_EQ("1\t1000\t1\t11 12 13\n2\t1000\t2\t21 22 23\n", mapped.out);
  // A file cut short is refused with the store's reason.
  ASSERT_EQ(0, shell(dir, "head -c 1000 line2d.cst > cut.cst").status);
  Outcome const cut = tool(dir, "info cut.cst");
  EXPECT_NE(0, cut.status);
  EXPECT_EQ("rondo: cut.cst: Calculation error, physical file size 1000 != calculated size 804!\n", cut.err);
}

}  // namespace
