// Projections checked against PROJ's own cs2cs on the same points; cs2cs
// must be there (Debian proj-bin).

#include "geometry/OGRProjector.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "foundation/DornDebug.h"
#include "foundation/ErrorHandler.h"
#include "foundation/RaiseError.h"
#include "geometry/NoProjector.h"

namespace {

// Keeps the errors reported while it lives, and lets nothing through.
class ErrorRecorder : public ErrorHandler {
 public:
  ErrorRecorder() { RaiseError::getInstance()->install(this); }
  ~ErrorRecorder() override { RaiseError::getInstance()->uninstall(this); }
  std::vector<std::string> errors;

 protected:
  void doFatal(char const*, int, char const*) override {}
  void doError(char const* label, int, char const* text) override {
    errors.push_back(std::string(label) + ": " + text);
  }
  void doInfo(char const*, int, char const*) override {}
};

struct Point {
  double lon, lat;
};

// cs2cs from one system to another; input lines in the order the source
// system's definition asks for; output the first two numbers of each line.
std::vector<Point> cs2cs(std::string const& from, std::string const& to, std::string const& input) {
  std::string const in = ::testing::TempDir() + "cs2cs_in_" + std::to_string(getpid());
  std::string const out = ::testing::TempDir() + "cs2cs_out_" + std::to_string(getpid());
  std::ofstream(in) << input;
  std::string const command = "cs2cs -f %.6f " + from + " " + to + " < " + in + " > " + out;
  EXPECT_EQ(0, std::system(command.c_str())) << "cs2cs failed: " << command;
  std::vector<Point> result;
  std::ifstream lines(out);
  for (std::string line; std::getline(lines, line);) {
    Point p{0, 0};
    std::istringstream(line) >> p.lon >> p.lat;
    result.push_back(p);
  }
  std::remove(in.c_str());
  std::remove(out.c_str());
  return result;
}

struct Case {
  char const* datum;
  int pcs, zone;
  bool north, feet;
  std::vector<Point> points;
  char const* from;
  char const* to;
};

TEST(OGRProjector, AgreesWithCs2csToAMillimetre) {
  Case const cases[] = {
      {"WGS84", 0, 31, true, false, {{3.0, 52.0}, {5.5, 51.2}, {0.5, 49.0}}, "EPSG:4326", "EPSG:32631"},
      {"NAD27", 0, 15, true, true, {{-93.0, 30.0}, {-95.2, 29.7}}, "+proj=longlat +ellps=clrk66 +no_defs",
       "+to +proj=utm +zone=15 +ellps=clrk66 +units=ft +no_defs"},
      // A code wins over a zone.
      {"EPSG:4326", 32632, 31, true, false, {{9.0, 45.0}}, "EPSG:4326", "EPSG:32632"},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.to);
    CoordinateProjection projection;
    projection.setFeet(c.feet);
    projection.setNorthernHemisphere(c.north);
    projection.setGeodeticDatum(c.datum);
    projection.setPCSCode(c.pcs);
    projection.setUTMZone(c.zone);
    OGRProjector projector;
    projector.setProjection(&projection);
    ASSERT_TRUE(projector.isValid());
    // EPSG's geographic system orders its cs2cs input latitude first.
    bool const latFirst = std::string(c.from).compare(0, 5, "EPSG:") == 0;
    std::vector<double> x, y;
    std::ostringstream input;
    input.precision(17);
    for (Point const& p : c.points) {
      x.push_back(p.lon);
      y.push_back(p.lat);
      if (latFirst)
        input << p.lat << " " << p.lon << "\n";
      else
        input << p.lon << " " << p.lat << "\n";
    }
    int const n = static_cast<int>(x.size());
    ASSERT_TRUE(projector.convertLatLongToRW(n, x.data(), y.data(), 0));
    std::vector<Point> const expected = cs2cs(c.from, c.to, input.str());
    ASSERT_EQ(c.points.size(), expected.size());
    double const millimetre = c.feet ? 0.001 / 0.3048 : 0.001;
    for (int i = 0; i < n; ++i) {
      EXPECT_NEAR(expected[i].lon, x[i], millimetre) << "point " << i;
      EXPECT_NEAR(expected[i].lat, y[i], millimetre) << "point " << i;
    }
    ASSERT_TRUE(projector.convertRWToLatLong(n, x.data(), y.data()));
    for (int i = 0; i < n; ++i) {
      EXPECT_NEAR(c.points[i].lon, x[i], 1e-9);
      EXPECT_NEAR(c.points[i].lat, y[i], 1e-9);
    }
  }
}

// Longitude is x whatever the authority's order; points far from the
// central meridian are left alone unless asked.
TEST(OGRProjector, LongitudeIsXAndPointsFarFromTheMeridian) {
  ErrorRecorder recorder;  // the datum alone is not a system yet
  OGRProjector projector;
  projector.getProjection().setGeodeticDatum("EPSG:4326");
  projector.getProjection().setUTMZone(31);
  double x = 3.0, y = 52.0;  // on the central meridian of zone 31
  ASSERT_TRUE(projector.convertLatLongToRW(1, &x, &y, 0));
  EXPECT_NEAR(500000.0, x, 1e-6);
  EXPECT_GT(y, 5.7e6);
  EXPECT_NE(std::string::npos, std::string(projector.getDescription(CoordinateProjector::ProjectedSystem).c_str())
                                   .find("    Central Meridian = 3\n"));

  // Made under tracing, the projector says how its transformations went.
  std::string const trace = std::string(::testing::TempDir()) + "ogrprojector_" + std::to_string(::getpid()) + ".log";
  DornDebug::initializeDirect(true, trace.c_str(), 1);
  OGRProjector coded;
  coded.getProjection().setPCSCode(32631);
  DornDebug::terminate();
  std::stringstream said;
  said << std::ifstream(trace).rdbuf();
  std::remove(trace.c_str());
  EXPECT_NE(std::string::npos, said.str().find("Lat/Lon to RW X/Y transformation created successfully")) << said.str();
  EXPECT_NE(std::string::npos, said.str().find("RW X/Y to Lat/Lon transformation created successfully"));
  double far[] = {25.0, -20.0}, farY[] = {50.0, 51.0};
  EXPECT_FALSE(coded.convertLatLongToRW(2, far, farY, 0));
  EXPECT_EQ(25.0, far[0]);
  EXPECT_EQ(51.0, farY[1]);
  EXPECT_TRUE(coded.convertLatLongToRW(2, far, farY, CoordinateProjector::IgnoreCentralMeridian));
  EXPECT_GT(far[0], 1e6);
  double lon[] = {3.0, 4.0}, lat[] = {50.0, 95.0};
  EXPECT_FALSE(coded.convertLatLongToRW(2, lon, lat, 0)) << "a latitude beyond the pole";
}

TEST(OGRProjector, UndefinedSystemsAreReportedNotRaised) {
  ErrorRecorder recorder;
  OGRProjector projector;
  double x = 3.0, y = 52.0;
  EXPECT_FALSE(projector.convertLatLongToRW(1, &x, &y, 0));
  EXPECT_FALSE(projector.isValid());
  projector.getProjection().setGeodeticDatum("WGS84");
  EXPECT_FALSE(projector.isValid());
  EXPECT_EQ("The projected coordinate system has not been defined.",
            std::string(projector.getDescription(CoordinateProjector::ProjectedSystem).c_str()));
  std::vector<std::string> const expected = {
      "OGRProjector::myCreateCoordinateTransformations: The geographic coordinate system has not been defined.",
      "OGRProjector::myCreateCoordinateTransformations: The projected coordinate system has not been defined.",
      "OGRProjector::getDescription: The projected coordinate system has not been defined."};
  EXPECT_EQ(expected, recorder.errors);
  EXPECT_EQ(3.0, x);
  projector.getProjection().setPCSCode(999999);
  EXPECT_FALSE(projector.isValid());
  EXPECT_EQ(expected[1], recorder.errors.back());

  NoProjector none;
  EXPECT_FALSE(none.isValid());
  EXPECT_FALSE(none.convertRWToLatLong(1, &x, &y));
  EXPECT_EQ("Projection technology not available on this platform.", std::string(none.getDescription(0).c_str()));
  EXPECT_EQ(
      "NoProjector::convertRWToLatLong: Operation unavailable--the lat/long map projection toolkit is not "
      "available.",
      recorder.errors.back());
}

class Counter : public CoordinateProjectionSubscriber {
 public:
  void update() override { ++count; }
  int count = 0;
};

TEST(CoordinateDatum, NamesCodesAndNotification) {
  CoordinateProjection projection;
  Counter counter;
  projection.attach(&counter);
  struct {
    char const* name;
    int code;
  } const names[] = {{"WGS84", 4326}, {"EPSG:2000", 2000}, {"EPSG:", 0}, {"Bessel", 0}};
  for (auto const& n : names) {
    projection.setGeodeticDatum(n.name);
    EXPECT_EQ(n.code, projection.getGCSCode()) << n.name;
  }
  projection.setGeodeticDatum("Bessel");
  EXPECT_EQ(4, counter.count);
  projection.setUTMZone(31);
  projection.detach(&counter);
  projection.setFeet(true);
  EXPECT_EQ(5, counter.count);

  std::vector<vString> descriptions;
  CoordinateDatum::getGeodeticDatumDescriptions(descriptions);
  EXPECT_NE(descriptions.end(), std::find(descriptions.begin(), descriptions.end(), vString("EPSG:4326 WGS 84")));
}

TEST(CoordinateProjector, AnotherProjectionInForce) {
  CoordinateProjection shared;
  std::unique_ptr<CoordinateProjector> projector(CoordinateProjector::newInstance());
  shared.setPCSCode(32631);
  projector->setProjection(&shared);
  EXPECT_TRUE(projector->isValid());
  EXPECT_EQ("EPSG:32631", std::string(projector->getDescription(CoordinateProjector::ShortName).c_str()));
  shared.setPCSCode(32632);
  double x = 9.0, y = 0.0;
  ASSERT_TRUE(projector->convertLatLongToRW(1, &x, &y, 0));
  EXPECT_NEAR(500000.0, x, 1e-6);
  ErrorRecorder recorder;
  projector->setProjection(nullptr);
  EXPECT_EQ(1u, recorder.errors.size());
  EXPECT_EQ(0, projector->getProjection().getPCSCode());
}

}  // namespace
