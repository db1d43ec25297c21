#include "geometry/CMPBasicGrid.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "foundation/TestFailure.h"

namespace {

// 5 inlines 100, 102, ... and 10 crosslines 20, 21, ..., along inlines, 12
// CMP numbers reserved per inline.
CMPBasicGrid padded() {
  return CMPBasicGrid(1, 1, 100, 2, 5, 20, 1, 10, 12, vCoordinate(1000.0, 2000.0), 25.0f, 12.5f, 0.0);
}

TEST(CMPBasicGrid, PaddedLinesLeaveGapsInTheCMPNumbers) {
  CMPBasicGrid const g = padded();
  EXPECT_EQ(std::make_tuple(58, 12, 50), std::make_tuple(g.getLastCMP(), g.getCMPLineInc(), g.getNumBins()));
  EXPECT_EQ((std::vector<bool>{true, false, true, false}),
            (std::vector<bool>{g.isValidCMP(10), g.isValidCMP(11), g.isValidCMP(13), g.isValidCMP(59)}));
  EXPECT_EQ(BinPos(102, 20), g.convertCMPToBin(13));
  EXPECT_EQ(58, g.convertBinToCMP(BinPos(108, 29)));
  for (int index = 1; index <= g.getNumBins(); ++index) {
    int const cmp = g.convertCMPIndexToCMP(index);
    ASSERT_TRUE(g.isValidCMP(cmp)) << cmp;
    EXPECT_EQ(index, g.convertCMPToCMPIndex(cmp));
    EXPECT_EQ(cmp, g.convertBinToCMP(g.convertCMPIndexToBin(index)));
  }
  expectFailure([&] { g.convertCMPToBin(11); }, "CMPBasicGrid::convertCMPToCMPIndex",
                "The given CMP (11) is not on the CMP grid (1+n*1).");
  expectFailure([&] { g.convertCMPIndexToCMP(51); }, "CMPBasicGrid::convertCMPIndexToCMP",
                "CMP index must be between 1 and 50 inclusive, supplied value was 51");
  expectFailure([&] { g.convertBinToCMP(BinPos(101, 20)); }, "CMPBasicGrid::convertBinToCMPIndex",
                "?The given BinPos (101,20) is not on the grid (100+n*2,20+n*1).");
  expectFailure([&] { g.convertInlineToInlineIndex(103); }, "CMPBasicGrid::convertInlineToInlineIndex",
                "The given Inline (103) is not on the Inline grid (100+n*2).");
}

TEST(CMPBasicGrid, OrderingAndNegativeIncrements) {
  // Along crosslines, CMPs counting down by 2 from 1000, inlines counting down.
  CMPBasicGrid const g(1000, -2, 50, -1, 4, 1, 1, 3, vCoordinate(), 10.0f, 10.0f, 0.0, CMPBasicGrid::ALONG_CROSSLINES);
  EXPECT_EQ(std::make_tuple(3, 1000 - 2 * 11, 47),
            std::make_tuple(g.getNumCMPLines(), g.getLastCMP(), g.getLastInline()));
  EXPECT_EQ(BinPos(50, 1), g.convertCMPToBin(1000));
  EXPECT_EQ(BinPos(50, 2), g.convertCMPToBin(992));
  EXPECT_FALSE(g.isValidCMP(1002) || g.isValidCMP(999));
  EXPECT_EQ(6, g.convertInlineCrosslineIndexesToCMPIndex(2, 2));
}

TEST(CMPBasicGrid, SurveyOriginAndIntervals) {
  CMPBasicGrid const g = padded();
  EXPECT_EQ(g.getSurveyOrigin(), g.convertBinToSurvey(BinPos(100, 20)));
  EXPECT_EQ(BinPos(100, 20), g.convertSurveyToBin(g.getSurveyOrigin()));
  // Without rotation the real world is the survey frame shifted.
  EXPECT_EQ(vCoordinate(1000.0 + 2 * 12.5, 2000.0 + 3 * 25.0),
            g.convertSurveyToRW(g.convertBinToSurvey(BinPos(106, 22))));
  ExactBinPos const e = g.convertSurveyToExactBin(vCoordinate(6.25, 37.5));
  EXPECT_DOUBLE_EQ(103.0, e.getInline());
  EXPECT_DOUBLE_EQ(20.5, e.getCrossline());

  CMPBasicGrid const flipped(1, 1, 100, 2, 5, 20, 1, 10, vCoordinate(), -25.0f, 12.5f, 0.0);
  EXPECT_EQ(25.0f, flipped.getBinHeight());
  EXPECT_DOUBLE_EQ(-50.0, flipped.convertInlineToSurveyY(104));
  EXPECT_EQ(BinPos(104, 20), flipped.convertSurveyToBin(vCoordinate(0.0, -50.0)));
  EXPECT_TRUE(flipped.isSurveyCoordInGrid(vCoordinate(-6.0, -110.0)));
  EXPECT_FALSE(flipped.isSurveyCoordInGrid(vCoordinate(0.0, 15.0)));
}

TEST(CMPBasicGrid, RotatedRoundTripThroughBinsAndCMPs) {
  double const angle = vCoordinate::convertDegreesToRadians(-33.7);
  CMPBasicGrid const g(1, 1, 1000, 4, 40, 300, -2, 60, 64, vCoordinate(512345.25, 6712345.75), -12.5f, 25.0f, angle,
                       CMPBasicGrid::ALONG_INLINES, vCoordinate(100.0, -40.0));
  double const tolerance = 1e-9 * g.getBinHeight();
  int checked = 0, cmp = 0;
  BinPos bin;
  for (int index = 1; index <= g.getNumBins(); index += 7) {
    // A point off the bin centre by less than half a bin still finds its bin.
    vCoordinate const centre = g.convertSurveyToRW(g.convertBinToSurvey(g.convertCMPIndexToBin(index)));
    vCoordinate const off = centre + vCoordinate(2.0, -3.0);
    ASSERT_TRUE(g.convertRWToCMPandBin(off, cmp, bin));
    EXPECT_EQ(g.convertCMPIndexToCMP(index), cmp);
    EXPECT_TRUE(centre.within(g.convertSurveyToRW(g.convertCMPToSurvey(cmp)), tolerance));
    vCoordinate const back =
        g.convertSurveyToRW(g.convertBinToSurvey(g.convertSurveyToExactBin(g.convertRWToSurvey(off))));
    EXPECT_TRUE(off.within(back, tolerance));
    ++checked;
  }
  EXPECT_GT(checked, 300);
  EXPECT_FALSE(g.convertRWToCMPandBin(g.getRealWorldOrigin() + vCoordinate(-1e4, 0.0), cmp, bin));
}

TEST(CMPBasicGrid, ChecksOfConstructionAndSetting) {
  vCoordinate const o;
  struct Case {
    int nIl, nXl, padded, cmpInc, ordering;
    float ilInt, xlInt;
    char const* text;
  } const cases[] = {
      {5, 0, 0, 1, 0, 1, 1, "Number of Crossline must be >0"},
      {0, 5, 5, 1, 0, 1, 1, "Number of Inline must be >0"},
      {5, 5, 5, 1, 0, 0, 1, "InlineInterval must not be zero."},
      {5, 5, 5, 1, 0, 1, 0, "CrosslineInterval must not be zero."},
      {5, 5, 5, 0, 0, 1, 1, "CMP Increment must be not be 0."},
      {5, 6, 5, 1, 0, 1, 1, "Number of CMPs in a CMPLine ALONG_INLINES must not be less than number of crosslines."},
      {6, 5, 5, 1, 1, 1, 1, "Number of CMPs in a CMPLine ALONG_CROSSLINES must not be less than number of inlines."},
      {5, 5, 5, 1, 2, 1, 1, "Unexpected Ordering option (2)."},
      {50000, 50000, 50000, 1, 0, 1, 1, "The grid has more CMP numbers than an int holds (2500000000)."},
  };
  for (Case const& c : cases)
    expectFailure(
        [&] { CMPBasicGrid(1, c.cmpInc, 1, 1, c.nIl, 1, 1, c.nXl, c.padded, o, c.ilInt, c.xlInt, 0.0, c.ordering); },
        c.ordering == 2 ? "CMPBasicGrid::CMPBasicGrid" : "CMPBasicGrid::myCheckup", c.text);

  expectFailure([&] { CMPBasicGrid(1, 1, 1, 0, 5, 1, 1, 5, o, 1.0f, 1.0f, 0.0); }, "CMPBasicGrid::myCheckup",
                "Inline Increment must not be 0.");

  CMPBasicGrid g(1, 2, 1, 1, 3, 1, 1, 4, o, 1.0f, 1.0f, 0.0);
  expectFailure([&] { g.setCMPLineInc(0); }, "CMPBasicGrid::setCMPLineInc", "CMPLineInc (0) must NOT be 0.");
  expectFailure([&] { g.setCMPLineInc(9); }, "CMPBasicGrid::setCMPLineInc",
                "CMPLineInc (9) must be a multiple of the CMP increment (2).");
  g.setCMPLineInc(10);
  EXPECT_EQ(1 + 2 * (5 * 3 - 1 - 1), g.getLastCMP());
  EXPECT_EQ(11, g.convertBinToCMP(BinPos(2, 1)));
  std::ostringstream printed;
  printed << g;
  EXPECT_NE(std::string::npos, printed.str().find("CMP                : 12\n"));
}

TEST(CMPBasicGrid, SGDValuesComeBack) {
  double const az = vCoordinate::convertDegreesToRadians(-150.0);
  double x0, y0, ax, ay;
  float dx, dy;
  int fi, li, fx, lx;
  for (double const turn : {M_PI / 2, -M_PI / 2}) {
    CMPBasicGrid const g(431000.5, 6170000.25, az, az + turn, 12.5f, 25.0f, 11, 90, 101, 400);
    EXPECT_EQ(BinPos(11, 101), g.convertCMPToBin(1));
    EXPECT_EQ(80 * 300, g.getNumBins());
    g.getSGDGridValues(x0, y0, ax, ay, dx, dy, fi, li, fx, lx);
    EXPECT_NEAR(431000.5, x0, 1e-6);
    EXPECT_NEAR(6170000.25, y0, 1e-6);
    EXPECT_DOUBLE_EQ(az, ax);
    EXPECT_DOUBLE_EQ(az + turn, ay);
    EXPECT_EQ(std::make_tuple(12.5f, 25.0f, 11, 90, 101, 400), std::make_tuple(dx, dy, fi, li, fx, lx));
    EXPECT_EQ(g, CMPBasicGrid(x0, y0, ax, ay, dx, dy, fi, li, fx, lx));
  }
  expectFailure([] { CMPBasicGrid(0, 0, 0.0, 1.0, -1.0f, 2.0f, 0, 5, 3, 2); }, "CMPBasicGrid::myValidateSGDParameters",
                "AZY (1 rad.) must be +/- 90 degrees (PI/2) from AZX (0 rad.)\n"
                "DX/DY (Crossline/Inline intervals) must be > 0. (DX=-1, DY=2)\n"
                "FINL/FCRL (First Inline/First Crossline) must be > 0, and, LINL/LCRL (Last Inline/Last Crossline) "
                "must not be less than FINL/FCRL. (FINL=0, LINL=5, FCRL=3, LCRL=2)\n");
  CMPBasicGrid const stepped(1, 1, 1, 2, 3, 1, 1, 3, vCoordinate(), 1.0f, 1.0f, 0.0);
  expectFailure([&] { stepped.getSGDGridValues(x0, y0, ax, ay, dx, dy, fi, li, fx, lx); },
                "CMPBasicGrid::getSGDGridValues", "Inline/Crossline Increments must be 1 only");
}

TEST(CMPBasicGrid, CMPRelationFromThreeBinsAndExtension) {
  CMPBasicGrid const g = padded();
  int const il[3] = {100, 104, 108}, xl[3] = {20, 25, 23};
  int cmps[3];
  for (int i = 0; i < 3; ++i) cmps[i] = g.convertBinToCMP(BinPos(il[i], xl[i]));
  int c = 0, a = 0, b = 0;
  ASSERT_TRUE(CMPBasicGrid::calculateCMP(10, il, xl, cmps, c, a, b));
  EXPECT_EQ(std::make_tuple(6, 1, 1 - 600 - 20), std::make_tuple(a, b, c));  // 12 per inline, inlines step by 2
  int const sameInline[3] = {100, 100, 108};
  EXPECT_FALSE(CMPBasicGrid::calculateCMP(10, sameInline, xl, cmps, c, a, b));
  EXPECT_FALSE(CMPBasicGrid::calculateCMP(1, il, xl, cmps, c, a, b));

  std::vector<vCoordinate> const corners = g.getExtensionLocations(std::vector<BinPos>{{104, 22}, {102, 27}});
  ASSERT_EQ(4u, corners.size());
  EXPECT_EQ(vCoordinate(1000.0 + 2 * 12.5, 2000.0 + 25.0), corners[0]);
  EXPECT_EQ(vCoordinate(1000.0 + 7 * 12.5, 2000.0 + 50.0), corners[2]);
  EXPECT_EQ(corners, g.getExtensionLocations(corners));
}

// The output lines of an independent numpy computation of a grid's rotation
// (testdata/grid_peer.py, run by /usr/bin/python3) on the input lines.
std::vector<std::string> runPeer(std::string const& args, std::string const& input) {
  std::string const dir = ::testing::TempDir();
  std::string const in = dir + "grid_peer_in_" + std::to_string(getpid());
  std::string const out = dir + "grid_peer_out_" + std::to_string(getpid());
  std::ofstream(in) << input;
  std::string const command =
      "/usr/bin/python3 " RONDO_TEST_SOURCE_DIR "/geometry/testdata/grid_peer.py " + args + " < " + in + " > " + out;
  int const rc = std::system(command.c_str());
  EXPECT_EQ(0, rc) << "the numpy peer failed: " << command;
  std::vector<std::string> lines;
  std::ifstream result(out);
  for (std::string line; std::getline(result, line);) lines.push_back(line);
  std::remove(in.c_str());
  std::remove(out.c_str());
  return lines;
}

TEST(CMPBasicGridPeer, RotationAgreesWithNumpy) {
  vCoordinate const origin(512345.25, 6712345.75);
  std::vector<ExactBinPos> const bins = {{1000, 300}, {1156, 182}, {1077.5, 251.25}};
  std::vector<vCoordinate> const points = {{512000.0, 6712000.0}, {513111.5, 6711999.25}};
  for (double degrees : {0.0, -123.4, 271.0}) {
    double const angle = vCoordinate::convertDegreesToRadians(degrees);
    CMPBasicGrid const g(1, 1, 1000, 4, 40, 300, -2, 60, origin, -12.5f, 25.0f, angle);
    char args[200];
    std::snprintf(args, sizeof args, "%.17g %.17g %.17g 1000 4 -12.5 300 -2 25", origin.getX(), origin.getY(), angle);
    std::ostringstream input;
    input.precision(17);
    for (ExactBinPos const& b : bins) input << "B " << b.getInline() << " " << b.getCrossline() << "\n";
    for (vCoordinate const& p : points) input << "W " << p.getX() << " " << p.getY() << "\n";
    std::vector<std::string> const lines = runPeer(args, input.str());
    ASSERT_EQ(bins.size() + points.size(), lines.size());
    for (size_t i = 0; i < bins.size(); ++i) {
      double x, y;
      std::istringstream(lines[i]) >> x >> y;
      vCoordinate const rw = g.convertSurveyToRW(g.convertBinToSurvey(bins[i]));
      EXPECT_NEAR(x, rw.getX(), 1e-6) << degrees << " degrees, bin " << i;
      EXPECT_NEAR(y, rw.getY(), 1e-6) << degrees << " degrees, bin " << i;
    }
    for (size_t i = 0; i < points.size(); ++i) {
      double il, xl;
      std::istringstream(lines[bins.size() + i]) >> il >> xl;
      ExactBinPos const e = g.convertSurveyToExactBin(g.convertRWToSurvey(points[i]));
      EXPECT_NEAR(il, e.getInline(), 1e-8) << degrees << " degrees, point " << i;
      EXPECT_NEAR(xl, e.getCrossline(), 1e-8) << degrees << " degrees, point " << i;
    }
  }
}

}  // namespace
