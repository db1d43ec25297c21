// Views stacked with --view over a SEG-Y file written by segyio: values
// checked against ones worked out from what segyio reads back.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <sstream>
#include <vector>

#include "tools/ToolTesting.h"

namespace {

using namespace tool_testing;

std::string g9(double v) {
  char text[64];
  std::snprintf(text, sizeof text, "%.9g", v);
  return text;
}

TEST(RondoViews, MappingBinSelectAndSortOverSegyio) {
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
  EXPECT_EQ(0, info.status) << info.err;
  EXPECT_NE(std::string::npos, info.out.find("MID")) << info.out;
  EXPECT_EQ(std::string::npos, info.out.find("TRACE")) << info.out;
}

TEST(RondoViews, ABadSpecIsOneLineAndStatusTwo) {
  fs_testing::TempDir dir;
  writeSegy(dir, "line.sgy", 5, "big", 4, 4);
  struct Case {
    char const* spec;
    char const* why;
  } const cases[] = {
      {"nope", "no view 'nope' (map, select, sort, bin, infill, restore-mute, bind)"},
      {"bin:CMP,1,2", "'bin' wants 5 arguments, not 3"},
      {"bin:CMP,1,x,1,1", "'x' is not a number"},
      {"infill:3", "'infill' takes no arguments"},
      {"sort:CMP,", "an empty argument"},
      {"select:NOPE,1,2", "Attribute NOPE does not exist in file line."},
      {"map:/nowhere/x.cstf", "Failed to open the file '/nowhere/x.cstf'!"},
  };
  for (Case const& c : cases) {
    Outcome const r = tool(dir, std::string("dump line.sgy CMP --view ") + c.spec);
    EXPECT_EQ(2, r.status) << c.spec;
    EXPECT_EQ(std::string("rondo: dump: --view '") + c.spec + "': " + c.why + "\n", r.err);
    EXPECT_EQ("", r.out);
  }
}

}  // namespace
