// Views stacked with --view over a SEG-Y file written by segyio: values
// checked against ones worked out from what segyio reads back.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <sstream>
#include <vector>

#include "tools/ToolTesting.h"

namespace {

using namespace tool_testing;

TEST(RondoViews, MappingBinSelectSortAndBadSpecsOverSegyio) {
  fs_testing::TempDir dir;
  writeSegy(dir, "line.sgy", 5, "big", 37, 8);
  fs_testing::writeFile(dir / "mid.cstf", "MID:d = CMP / 2 + SHOT.RW.X * 0.25\n!ADD CMP\n");

  // Bins of width 5 every 10: a CMP within 2.5 of a centre snaps to it, the
  // others sit in the gaps and stay.
  std::string expected;
  std::vector<long> selected;
  std::istringstream peer(fs_testing::readFile(dir / "line.sgy.dump"));
  std::string line;
  while (std::getline(peer, line)) {
    long instance = 0, cdp = 0, sx = 0;
    ASSERT_EQ(3, std::sscanf(line.c_str(), "%ld\t%ld\t%ld", &instance, &cdp, &sx));
    long const centre = (cdp + 5) / 10 * 10;
    long const binned = std::labs(cdp - centre) * 2 <= 5 ? centre : cdp;
    if (cdp >= 1010 && cdp <= 1040) selected.push_back(cdp);
    expected += std::to_string(instance) + "\t" + g9(cdp / 2.0 + sx * 0.25) + "\t" + std::to_string(binned) + "\n";
  }
  Outcome const r = tool(dir, "dump line.sgy MID,CMP --view map:mid.cstf --view bin:CMP,990,1200,10,5");
  EXPECT_EQ("", r.err);
  EXPECT_EQ(0, r.status);
  EXPECT_EQ(expected, r.out);

  std::string descending;
  for (std::size_t i = 0; i < selected.size(); ++i)
    descending += std::to_string(i + 1) + "\t" + std::to_string(selected[selected.size() - 1 - i]) + "\n";
  Outcome const sorted = tool(dir, "dump line.sgy CMP --view select:CMP,1010,1040 --view sort:-CMP");
  EXPECT_EQ(0, sorted.status) << sorted.err;
  EXPECT_EQ(descending, sorted.out);

  Outcome const info = tool(dir, "info line.sgy --view=map:mid.cstf");
  EXPECT_NE(std::string::npos, info.out.find("MID")) << info.out;
  EXPECT_EQ(std::string::npos, info.out.find("TRACE")) << info.out;

  // A view that cannot be read is one line and status 2.
  fs_testing::writeFile(dir / "esc.cstf", "A:int = \x1b[2J CMP\n");
  struct Case {
    char const* spec;
    char const* why;
  } const cases[] = {
      {"nope", "no view 'nope' (map, select, sort, bin, infill, restore-mute, bind)"},
      {"bin:CMP,1,2", "'bin' wants 5 arguments, not 3"},
      {"bin:CMP,1,x,1,1", "'x' is not a number"},
      {"infill:3", "no pad type '3' (common, group, none, common-start, common-end, group-step)"},
      {"infill", "the grid is that of two keys, and the store has 1"},
      {"bin:CMP,10,1,2,1", "no bins from 10 to 1 by 2"},
      {"select:TRACE,0,1", "'select' wants an attribute of one number an instance, and TRACE is not"},
      {"bin:TRACE,0,1,1,1", "Unable to bin Attribute TRACE: bins take one value an instance."},
      {"sort:CMP,", "an empty argument"},
      {"map:/nowhere/x.cstf", "Failed to open the file '/nowhere/x.cstf'!"},
      // A control byte quoted from the file is not passed to the terminal.
      {"map:esc.cstf", "The expression '?[2J CMP' for the attribute 'A' is in error at position 0: Invalid non printable "
                       "characters found in expression/identifer!"},
  };
  for (Case const& c : cases) {
    Outcome const r = tool(dir, std::string("dump line.sgy CMP --view ") + c.spec);
    EXPECT_EQ(2, r.status) << c.spec;
    EXPECT_EQ(std::string("rondo: dump: --view '") + c.spec + "': " + c.why + "\n", r.err);
    EXPECT_EQ("", r.out);
  }
}

TEST(RondoViews, BindAndInfillOverAPackedStore) {
  fs_testing::TempDir dir;
  ASSERT_EQ(0, shell(dir, "'" + std::string(RONDO_TEST_BINARY_DIR) + "/bin/DemoStores' .").status);
  std::string bound;
  for (int i = 1; i <= 12; ++i)
    bound += std::to_string(i) + "\t" + std::to_string(100 + (i - 1) % 6 + 1) + "\t" + (i <= 6 ? "1" : "2") + "\n";
  Outcome const bind = tool(dir, "dump line12.store CDP,STORE.ID --view bind:line12.store");
  EXPECT_EQ(0, bind.status) << bind.err;
  EXPECT_EQ(bound, bind.out);

  // Each CDP holds one offset, so the grid runs over the offsets of all
  // CDPs (25 to 150) in the default step of 1; invented instances read zeros.
  Outcome const infill = tool(dir, "dump line12.store CDP,OFFSET,STATIC --view infill");
  EXPECT_EQ(0, infill.status) << infill.err;
  std::istringstream lines(infill.out);
  std::string line;
  int n = 0, cdp = 0, offset = 0, real = 0;
  double value = 0;
  while (std::getline(lines, line)) {
    ASSERT_EQ(4, std::sscanf(line.c_str(), "%d\t%d\t%d\t%lf", &n, &cdp, &offset, &value)) << line;
    int const i = cdp - 100;
    EXPECT_EQ(offset == 25 * i ? 1.5 * i - 4 : 0.0, value) << line;
    real += offset == 25 * i;
  }
  EXPECT_EQ(6 * 126 * 10 + 6, n * 10 + real);
  // Within each group (one offset per CDP) nothing is missing.
  Outcome const own = tool(dir, "dump line12.store CDP,OFFSET --view infill:group");
  EXPECT_EQ(0, own.status) << own.err;
  EXPECT_EQ(6, std::count(own.out.begin(), own.out.end(), '\n')) << own.out;
}

}  // namespace
