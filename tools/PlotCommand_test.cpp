// `rondo plot` writes PNG pictures that GDAL reads back.

#include <gtest/gtest.h>

#include "tools/ToolTesting.h"

namespace {

using namespace tool_testing;

// Size, bands and the spread of each band, as GDAL's Python binding reads
// them; then, of the (column, row) pixels listed, which are dark in band 1.
std::string describePng(fs_testing::TempDir const& dir, std::string const& png, std::string const& pixels = "") {
  std::string const dark =
      pixels.empty() ? "" : ", ''.join('1' if a[y][x] < 128 else '0' for x, y in [" + pixels + "])";
  Outcome const r = shell(dir, std::string(kPython) + " -c \"from osgeo import gdal\nd = gdal.Open('" + png +
                                   "')\na = d.GetRasterBand(1).ReadAsArray()\n"
                                   "print(d.GetDriver().ShortName, d.RasterXSize, d.RasterYSize, d.RasterCount, "
                                   "[int(d.GetRasterBand(b + 1).ReadAsArray().std() > 10) "
                                   "for b in range(d.RasterCount)]" + dark + ")\"");
  EXPECT_EQ(0, r.status) << "python3-gdal is needed (scripts/install-deps): " << r.err;
  return r.out;
}

TEST(RondoPlot, SectionsAndMapsAreReadByGdal) {
  fs_testing::TempDir dir;
  writeSegy(dir, "line.sgy", 1, "big", 40, 75);
  struct Case {
    char const* arguments;
    char const* png;
    char const* described;
  } const cases[] = {
      {"plot line.sgy --out grey.png", "grey.png", "PNG 40 75 3 [1, 1, 1]\n"},
      {"plot line.sgy --out rwb.png --colour rwb --first 11 --last 30 --clip 90 --zoom 3", "rwb.png",
       "PNG 60 225 3 [1, 1, 1]\n"},
      // The shots spread far along x and little along y: the picture keeps
      // the aspect, 64 wide and the 4-pixel margins and one row high.
      {"plot line.sgy --out map.png --x SHOT.RW.X --y CMP --attribute FFID --size 64", "map.png",
       "PNG 64 9 3 [1, 1, 1]\n"},
  };
  for (Case const& c : cases) {
    Outcome const r = tool(dir, c.arguments);
    ASSERT_EQ(0, r.status) << c.arguments << ": " << r.err;
    EXPECT_EQ("", r.out + r.err) << c.arguments;
    EXPECT_EQ(c.described, describePng(dir, c.png)) << c.arguments;
  }

  Outcome const bad = tool(dir, "plot line.sgy --out /no/such/dir/x.png");
  EXPECT_EQ(1, bad.status);
  EXPECT_EQ(0u, bad.err.find("rondo: line.sgy: Cannot write the picture '/no/such/dir/x.png': ")) << bad.err;
  // A disk that fills up is a picture not written, not a success.
  Outcome const full = tool(dir, "plot line.sgy --out /dev/full --last 2");
  EXPECT_EQ(1, full.status);
  EXPECT_EQ("rondo: line.sgy: Cannot write the picture '/dev/full': No space left on device\n", full.err);
  struct Usage {
    char const* arguments;
    char const* first;
  } const usages[] = {
      {"plot line.sgy", "rondo: plot: --out FILE.png is needed\n"},
      {"plot line.sgy --out x.png --colour pink", "rondo: plot: --colour wants grey or rwb, not 'pink'\n"},
      {"plot line.sgy --out x.png --clip 150", "rondo: plot: --clip wants a percentile above 0 and at most 100\n"},
      {"plot line.sgy --out x.png --x CMP", "rondo: plot: --x and --y go together\n"},
      {"plot line.sgy --out x.png --size 64",
       "rondo: plot: --size is for a map, and a seismic store is drawn as a section (see --zoom)\n"},
      {"plot line.sgy --out x.png --x CMP --y CMP --zoom 2",
       "rondo: plot: --zoom and --clip are for a section, and this store is drawn as a map (see --size)\n"},
  };
  for (Usage const& u : usages) {
    Outcome const usage = tool(dir, u.arguments);
    EXPECT_EQ(2, usage.status) << u.arguments;
    EXPECT_EQ(0u, usage.err.find(u.first)) << usage.err;
  }

  // A velocity volume of the FDM fixture is drawn as a map, and has no X and Y.
  ASSERT_EQ(0, shell(dir, "/usr/bin/python3 " RONDO_TEST_SOURCE_DIR "/filestore/fdm/testdata/fdm_fixture.py v.fdm '>'")
                   .status);
  Outcome const none = tool(dir, "plot line.sgy --out none.png --view select:CMP,-2,-1");
  EXPECT_EQ(1, none.status);
  EXPECT_EQ("rondo: line.sgy: There is nothing to draw: the store has no instances.\n", none.err);
  Outcome const axes = tool(dir, "plot v.fdm --out v.png");
  EXPECT_EQ(1, axes.status);
  EXPECT_EQ("rondo: v.fdm: A velocity store is drawn as a map, and this one has no attribute X: name the axes with "
            "--x and --y.\n",
            axes.err);
}

// Shapefiles that GDAL's ogr2ogr writes. Points are drawn as maps: by X and
// Y, and PointZ map data by the axes and value they name themselves.
TEST(RondoShapefile, MapsAndOutlinesOfFilesFromOgr) {
  fs_testing::TempDir dir;
  Outcome const made = shell(
      dir,
      "printf '%s' '{\"type\":\"FeatureCollection\",\"features\":["
      "{\"type\":\"Feature\",\"properties\":{\"depth\":1250.5,\"name\":\"W1\"},"
      "\"geometry\":{\"type\":\"Point\",\"coordinates\":[431000,6520000,-5]}},"
      "{\"type\":\"Feature\",\"properties\":{\"depth\":980.25,\"name\":\"W2\"},"
      "\"geometry\":{\"type\":\"Point\",\"coordinates\":[432500,6521500,7.5]}},"
      "{\"type\":\"Feature\",\"properties\":{\"depth\":700,\"name\":\"W3\"},"
      "\"geometry\":{\"type\":\"Point\",\"coordinates\":[431700,6523000,2]}}]}' > wells.geojson && "
      "ogr2ogr -f 'ESRI Shapefile' -a_srs EPSG:32631 wellsz.shp wells.geojson && "
      "ogr2ogr -f 'ESRI Shapefile' -dim XY wells.shp wells.geojson && "
      "printf '%s' '{\"type\":\"Polygon\",\"coordinates\":[[[0,0],[100,0],[100,100],[0,100],[0,0]],"
      "[[40,40],[40,60],[60,60],[60,40],[40,40]]]}' > square.geojson && printf '%s' '{\"type\":"
      "\"MultiLineString\",\"coordinates\":[[[0,100],[50,0],[100,100]],[[0,50],[20,50]]]}' > v.geojson && "
      "ogr2ogr -f 'ESRI Shapefile' square.shp square.geojson && ogr2ogr -f 'ESRI Shapefile' v.shp v.geojson && "
      "printf '%s' '{\"type\":\"FeatureCollection\",\"features\":[{\"type\":\"Feature\",\"properties\":{\"v\":-5},"
      "\"geometry\":'\"$(cat square.geojson)\"'},{\"type\":\"Feature\",\"properties\":{\"v\":0},\"geometry\":null}]}' "
      "> valued.geojson && ogr2ogr -f 'ESRI Shapefile' -nlt POLYGON valued.shp valued.geojson");
  ASSERT_EQ(0, made.status) << "GDAL's ogr2ogr is needed (scripts/install-deps): " << made.err;

  // 64 high with the 4-pixel margins; the points spread 1500 by 3000, so
  // 28 and the margins wide.
  for (auto const& c : std::vector<std::pair<char const*, char const*>>{
           {"plot wells.shp --out wells.png --attribute DEPTH --size 64", "wells.png"},
           {"plot wellsz.shp --out wellsz.png --size 64", "wellsz.png"}}) {
    Outcome const r = tool(dir, c.first);
    ASSERT_EQ(0, r.status) << c.first << ": " << r.err;
    EXPECT_EQ("PNG 36 64 3 [1, 1, 1]\n", describePng(dir, c.second)) << c.first;
  }
  // The lowest depth is white in grey, as the picture is: the point keeps a
  // black ring around its white middle (W3 at column 17, row 3).
  ASSERT_EQ(0, tool(dir, "plot wells.shp --out grey.png --attribute DEPTH --size 64 --colour grey").status);
  EXPECT_EQ("PNG 36 64 3 [1, 1, 1] 01111\n", describePng(dir, "grey.png", "(17,3),(19,3),(15,3),(17,1),(17,5)"));

  // Polygons and polylines drawn as outlines on a frame of 100 by 100 at 64
  // pixels: x goes to column 4 + x * 0.56, y to row 59 - y * 0.56. A square
  // with a square hole; a V and a short stroke, open.
  struct Case {
    char const* shp;
    char const* pixels;  // (column, row) pairs
    char const* dark;
  } const cases[] = {
      // Corners, the middle of each outer side, three sides of the hole,
      // then between the rings and within the hole.
      {"square", "(4,59),(60,3),(4,31),(32,59),(60,31),(32,3),(26,31),(38,31),(32,25),(15,31),(32,31)",
       "11111111100"},
      // The V's three vertices and the middle of its left leg, the stroke,
      // then where a closing side and the gap beside the stroke would be.
      {"v", "(4,3),(32,59),(60,3),(18,31),(10,31),(32,3),(25,31)", "1111100"},
      // The square again, coloured by V: the shape without vertices has no
      // value on the scale, so the one value left draws black, not red.
      {"valued", "(4,59),(60,3),(32,59)", "111"},
  };
  for (Case const& c : cases) {
    std::string const shp = std::string(c.shp) + ".shp", png = std::string(c.shp) + ".png";
    std::string const value = shp == "valued.shp" ? " --attribute V" : "";
    Outcome const r = tool(dir, "plot " + shp + " --out " + png + " --size 64" + value);
    ASSERT_EQ(0, r.status) << shp << ": " << r.err;
    // Drawn in colour like every picture, dark on light.
    EXPECT_EQ(std::string("PNG 64 64 3 [1, 1, 1] ") + c.dark + "\n", describePng(dir, png, c.pixels)) << shp;
  }
}

}  // namespace
