// `rondo info`, `dump` and `plot` on a SEG-D record of the independent Python writer.

#include <gtest/gtest.h>

#include "tools/ToolTesting.h"

namespace {

using namespace tool_testing;

TEST(RondoSegd, InfoDumpAndPlotOfAFieldRecord) {
  fs_testing::TempDir dir;
  Outcome const made = shell(dir, std::string(kPython) + " " RONDO_TEST_SOURCE_DIR
                                  "/filestore/segd/testdata/segd_fixture.py shot.segd --format 8015 --traces 6 "
                                  "--record 5 --interval 0x40 --ffid 77 --chanset 3");
  ASSERT_EQ(0, made.status) << "python3 with numpy is needed: " << made.err;

  Outcome const info = tool(dir, "info shot.segd");
  EXPECT_EQ(0, info.status) << info.err;
  for (char const* line : {"subclass    segddisk\n", "keys        FFID CHANNEL\n"})
    EXPECT_NE(std::string::npos, info.out.find(line)) << line << info.out;
  EXPECT_NE(std::string::npos, info.out.find("TRACE                    vFLOAT32       256            4")) << info.out;

  // Trace 2: -(2000 + 1) / 8, (2000 + 2) / 8, -(2000 + 3) / 8, ...
  Outcome const dump = tool(dir, "dump shot.segd FFID,CHANNELSET,CHANNEL,TRACE --first 2 --last 3");
  EXPECT_EQ(0, dump.status) << dump.err;
  EXPECT_EQ(0u, dump.out.find("2\t77\t3\t2\t-250.125 250.25 -250.375 250.5 ")) << dump.out.substr(0, 80);
  EXPECT_NE(std::string::npos, dump.out.find(" -281.875 282\n3\t77\t3\t3\t-375.125 ")) << dump.out;

  Outcome const plot = tool(dir, "plot shot.segd --out shot.png");
  ASSERT_EQ(0, plot.status) << plot.err;
  Outcome const png = shell(dir, std::string(kPython) +
                                     " -c \"from osgeo import gdal\n"
                                     "d = gdal.Open('shot.png')\n"
                                     "print(d.GetDriver().ShortName, d.RasterXSize, d.RasterYSize)\"");
  EXPECT_EQ(0, png.status) << "python3-gdal is needed (scripts/install-deps): " << png.err;
  EXPECT_EQ("PNG 6 256\n", png.out);
}

}  // namespace
