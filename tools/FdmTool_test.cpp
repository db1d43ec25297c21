// `rondo info` and `dump` over an FDM volume of the Python fixture: the
// volume's grid, its keys and its velocity traces.

#include <gtest/gtest.h>

#include "tools/ToolTesting.h"

namespace {

using namespace tool_testing;

TEST(RondoFdm, InfoShowsTheGridAndDumpTheTraces) {
  fs_testing::TempDir dir;
  Outcome const made = shell(dir, std::string(kPython) + " " RONDO_TEST_SOURCE_DIR
                                  "/filestore/fdm/testdata/fdm_fixture.py vel.fdm '<' 3 2 2");
  ASSERT_EQ(0, made.status) << made.err;
  Outcome const info = tool(dir, "info vel.fdm");
  ASSERT_EQ(0, info.status) << info.err;
  for (char const* line : {"class       velocity\n", "subclass    gridded_default\n", "instances   6\n",
                           "keys        CROSSLINE INLINE\n",
                           "grid        inlines 20 to 21 by 1 (2), crosslines 100 to 104 by 2 (3)\n",
                           "grid        intervals 12.5 along inlines, 25 along crosslines, metres\n",
                           "property    X_SURVEY_ORIGIN = 500\n", "property    Y_SURVEY_ORIGIN = 1000\n"})
    EXPECT_NE(std::string::npos, info.out.find(line)) << line << info.out;
  Outcome const dump = tool(dir, "dump vel.fdm INLINE,CROSSLINE,VELTRACE.DEFAULT --first 2 --last 4");
  ASSERT_EQ(0, dump.status) << dump.err;
  EXPECT_EQ("2\t20\t102\t1010 1011\n3\t20\t104\t1020 1021\n4\t21\t100\t1100 1101\n", dump.out);
  // A file cut short is refused with the store's reason.
  ASSERT_EQ(0, shell(dir, std::string(kPython) + " " RONDO_TEST_SOURCE_DIR
                              "/filestore/fdm/testdata/fdm_fixture.py cut.fdm '>' 3 2 2 --cut 530").status);
  Outcome const cut = tool(dir, "info cut.fdm");
  EXPECT_NE(0, cut.status);
  EXPECT_EQ("rondo: cut.fdm: The FDM file 'cut.fdm' holds 530 bytes, fewer than the 560 its header needs.\n", cut.err);
}

}  // namespace
