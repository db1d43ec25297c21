// The rotation of a grid checked against an independent numpy computation
// (testdata/grid_peer.py, run by /usr/bin/python3). The peer must be there.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "geometry/CMPBasicGrid.h"

namespace {

// Runs the peer on the input lines; its output lines.
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
