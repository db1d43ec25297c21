// `rondo plot` writes PNG pictures that GDAL reads back.

#include <gtest/gtest.h>

#include "tools/ToolTesting.h"

namespace {

using namespace tool_testing;

// Size, bands and the spread of each band, as GDAL's Python binding reads them.
std::string describePng(fs_testing::TempDir const& dir, std::string const& png) {
  Outcome const r = shell(dir, std::string(kPython) +
                                   " -c \"from osgeo import gdal\n"
                                   "d = gdal.Open('" + png +
                                   "')\n"
                                   "print(d.GetDriver().ShortName, d.RasterXSize, d.RasterYSize, d.RasterCount, "
                                   "[int(d.GetRasterBand(b + 1).ReadAsArray().std() > 10) for b in range(d.RasterCount)])\"");
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
  Outcome const usage = tool(dir, "plot line.sgy");
  EXPECT_EQ(2, usage.status);
  EXPECT_EQ(0u, usage.err.find("rondo: plot: --out FILE.png is needed\n")) << usage.err;
}

}  // namespace

namespace {

// Shapefiles that GDAL's ogr2ogr writes, looked at by info and dump and
// drawn as maps: points by X and Y, PointZ map data by the axes and value
// they name themselves.
TEST(RondoShapefile, InfoDumpAndMapsOfFilesFromOgr) {
  fs_testing::TempDir dir;
  tool_testing::Outcome const made = tool_testing::shell(
      dir,
      "printf '%s' '{\"type\":\"FeatureCollection\",\"features\":["
      "{\"type\":\"Feature\",\"properties\":{\"depth\":1250.5,\"name\":\"W1\"},"
      "\"geometry\":{\"type\":\"Point\",\"coordinates\":[431000,6520000,-5]}},"
      "{\"type\":\"Feature\",\"properties\":{\"depth\":980.25,\"name\":\"W2\"},"
      "\"geometry\":{\"type\":\"Point\",\"coordinates\":[432500,6521500,7.5]}},"
      "{\"type\":\"Feature\",\"properties\":{\"depth\":700,\"name\":\"W3\"},"
      "\"geometry\":{\"type\":\"Point\",\"coordinates\":[431700,6523000,2]}}]}' > wells.geojson && "
      "ogr2ogr -f 'ESRI Shapefile' -a_srs EPSG:32631 wellsz.shp wells.geojson && "
      "ogr2ogr -f 'ESRI Shapefile' -dim XY wells.shp wells.geojson");
  ASSERT_EQ(0, made.status) << "GDAL's ogr2ogr is needed (scripts/install-deps): " << made.err;

  tool_testing::Outcome const info = tool_testing::tool(dir, "info wells.dbf");
  ASSERT_EQ(0, info.status) << info.err;
  for (char const* line : {"subclass    points\n", "  NAME                     vSTRING",
                           "property    COORDINATE_DOMAIN = geographic\n"})
    EXPECT_NE(std::string::npos, info.out.find(line)) << line << "\n" << info.out;
  tool_testing::Outcome const dump = tool_testing::tool(dir, "dump wells.shp X,Y,DEPTH,NAME --first 2");
  EXPECT_EQ("2\t432500\t6521500\t980.25\tW2\n3\t431700\t6523000\t700\tW3\n", dump.out) << dump.err;
  tool_testing::Outcome const dumpz = tool_testing::tool(dir, "dump wellsz.shp XVAL,ATVAL,LOCATOR");
  EXPECT_EQ("1\t431000\t-5\t1\n2\t432500\t7.5\t2\n3\t431700\t2\t3\n", dumpz.out) << dumpz.err;

  // 64 high with the 4-pixel margins; the points spread 1500 by 3000, so
  // 28 and the margins wide.
  struct Case {
    char const* arguments;
    char const* png;
  } const cases[] = {{"plot wells.shp --out wells.png --attribute DEPTH --size 64", "wells.png"},
                     {"plot wellsz.shp --out wellsz.png --size 64", "wellsz.png"}};
  for (Case const& c : cases) {
    tool_testing::Outcome const r = tool_testing::tool(dir, c.arguments);
    ASSERT_EQ(0, r.status) << c.arguments << ": " << r.err;
    EXPECT_EQ("PNG 36 64 3 [1, 1, 1]\n", describePng(dir, c.png)) << c.arguments;
  }
}

}  // namespace

namespace {

// A text table in a built-in format, found by its first line; and a CSV
// table of ogr2ogr's, opened by its extension and named by its header.
TEST(RondoTextTable, InfoDumpAndMap) {
  fs_testing::TempDir dir;
  fs_testing::writeFile(dir / "picks.xyz",
                        "# VoxelGeo XYZ export\n431000 6520000 1.5\n432500 6521500 -2.25\n431700 6523000 8\n");
  tool_testing::Outcome const info = tool_testing::tool(dir, "info picks.xyz");
  ASSERT_EQ(0, info.status) << info.err;
  for (char const* line : {"class       generic\n", "VoxelGeo_XYZ.txf\n"})
    EXPECT_NE(std::string::npos, info.out.find(line)) << line << "\n" << info.out;
  EXPECT_EQ("2\t432500\t-2.25\n3\t431700\t8\n", tool_testing::tool(dir, "dump picks.xyz X,Z --first 2").out);
  tool_testing::Outcome const plot = tool_testing::tool(dir, "plot picks.xyz --out picks.png --attribute Z --size 64");
  ASSERT_EQ(0, plot.status) << plot.err;
  EXPECT_EQ("PNG 36 64 3 [1, 1, 1]\n", describePng(dir, "picks.png"));

  tool_testing::Outcome const csv = tool_testing::shell(
      dir,
      "printf '%s' '{\"type\":\"FeatureCollection\",\"features\":["
      "{\"type\":\"Feature\",\"properties\":{\"depth\":12.5,\"count\":3,\"name\":\"W-1 north\"},\"geometry\":{\"type\":\"Point\",\"coordinates\":[1,2]}},"
      "{\"type\":\"Feature\",\"properties\":{\"depth\":-4,\"count\":9,\"name\":\"W-2\"},\"geometry\":{\"type\":\"Point\",\"coordinates\":[3,4]}}]}'"
      " > w.geojson && ogr2ogr -f CSV -lco GEOMETRY=AS_XY w.csv w.geojson && mv w.csv w.txt");
  ASSERT_EQ(0, csv.status) << "GDAL's ogr2ogr is needed (scripts/install-deps): " << csv.err;
  EXPECT_EQ("1\t1\t2\t12.5\t3\tW-1 north\n2\t3\t4\t-4\t9\tW-2\n",
            tool_testing::tool(dir, "dump w.txt X,Y,DEPTH,COUNT,NAME").out);
}

}  // namespace
