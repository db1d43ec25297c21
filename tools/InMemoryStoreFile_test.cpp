// `rondo info` and `rondo dump` of packed in-memory store files from DemoStores.

#include <cstdio>

#include <gtest/gtest.h>

#include "tools/ToolTesting.h"

namespace {

using namespace tool_testing;

TEST(RondoInMemoryFile, InfoAndDumpGiveTheValuesAsWritten) {
  fs_testing::TempDir dir;
  Outcome const made = shell(dir, "'" + std::string(RONDO_TEST_BINARY_DIR) + "/bin/DemoStores' .");
  ASSERT_EQ(0, made.status) << made.err;

  // DemoStores' line12: sample j of trace i is i * 10 + j / 2.
  std::string expected;
  for (int i = 1; i <= 6; ++i) {
    char line[256];
    int n = std::snprintf(line, sizeof line, "%d\t%d\t%d\t%.9g\t%.9g\t", i, 100 + i, 25 * i, 1.5 * i - 4.0, 0.25 * i);
    for (int j = 0; j < 8; ++j) n += std::snprintf(line + n, sizeof line - n, j ? " %.9g" : "%.9g", i * 10 + j / 2.0);
    expected += std::string(line) + "\n";
  }
  // The name has nothing to do with it: a copy called like a SEG-Y file is
  // still the packed store.
  ASSERT_EQ(0, shell(dir, "cp line12.store copy.sgy").status);
  for (char const* file : {"line12.store", "copy.sgy"}) {
    Outcome const dump = tool(dir, std::string("dump ") + file + " CDP,OFFSET,STATIC,AMP.RMS,TRACE");
    EXPECT_EQ(0, dump.status) << dump.err;
    EXPECT_EQ(expected, dump.out) << file;
  }
  Outcome const info = tool(dir, "info line12.store");
  EXPECT_EQ(0, info.status) << info.err;
  for (char const* line : {"subclass    2d\n", "keys        CDP OFFSET\n"})
    EXPECT_NE(std::string::npos, info.out.find(line)) << line << info.out;
  EXPECT_NE(std::string::npos, info.out.find("  TRACE                    vFLOAT32         8            4")) << info.out;

  Outcome const tops = tool(dir, "info tops.store --json");
  EXPECT_EQ(0, tops.status) << tops.err;
  for (char const* part : {"\"XYZ_PLOT_ATTRIBUTES\":[\"XVAL\",\"YVAL\",\"DEPTH\"]", "\"grid\":null}"})
    EXPECT_NE(std::string::npos, tops.out.find(part)) << part << tops.out;
  EXPECT_EQ("1\t1050\t1975\t1207.5\n4\t1200\t1900\t1230\n",
            tool(dir, "dump tops.store XVAL,YVAL,DEPTH | sed -n '1p;4p'").out);
}

}  // namespace
