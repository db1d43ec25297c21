// Shapefiles written by GDAL's ogr2ogr from GeoJSON read value by value, and
// shapefiles the store writes read back by ogrinfo.

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "filestore/shapefile/ShapefileDiskStore.h"
#include "filestore/shapefile/ShapefileTesting.h"
#include "syslayer/FSTesting.h"

namespace {

using shapefile_testing::ogrShapefile;
using shapefile_testing::requireGdal;
using shapefile_testing::run;
using shapefile_testing::scratch;

std::vector<double> values(ShapefileDiskStore const& store, char const* name, unsigned int instance) {
  Attribute a = store.getAttribute(name);
  store.read(a, instance, instance);
  std::vector<double> v;
  for (int k = 1; k <= a.getLength(1); ++k) v.push_back(a.getValue(1, k));
  return v;
}

// Turns the one-digit numeric field at byte offset `at` of each record into
// a dBase logical ('L', "T"/"F"), which ogr2ogr does not write.
void makeLogical(std::string const& dbf, int field, int at) {
  std::string bytes = fs_testing::readFile(dbf);
  bytes[32 + 32 * field + 11] = 'L';
  int const header = static_cast<unsigned char>(bytes[8]) | static_cast<unsigned char>(bytes[9]) << 8;
  int const record = static_cast<unsigned char>(bytes[10]) | static_cast<unsigned char>(bytes[11]) << 8;
  for (std::size_t r = header; r + record <= bytes.size(); r += record) {
    char& c = bytes[r + 1 + at];
    c = c == '1' ? 'T' : c == '0' ? 'F' : c;
  }
  fs_testing::writeFile(dbf, bytes);
}

TEST(ShapefilePeer, PointsWithEveryFieldTypeFromOgr) {
  requireGdal();
  std::string const base = scratch("points");
  ogrShapefile(base, R"({"type":"FeatureCollection","features":[
{"type":"Feature","properties":{"name":"alpha","count":7,"big":9007199254740993,"ratio":2.5,"day":"2024-03-15","flag":true},
 "geometry":{"type":"Point","coordinates":[500000.5,6100000.25]}},
{"type":"Feature","properties":{"name":"beta","count":-3,"big":-4,"ratio":-0.125,"day":"1999-12-31","flag":false},
 "geometry":{"type":"Point","coordinates":[1.5,-2.5]}},
{"type":"Feature","properties":{"name":null,"count":null,"big":5,"ratio":1e6,"day":null,"flag":true},
 "geometry":{"type":"Point","coordinates":[-0.75,0]}}]})");
  // name 80, count 9, big 18, ratio 24, day 8: flag starts at 139.
  makeLogical(base + ".dbf", 5, 139);
  ShapefileDiskStore store;
  store.open(StoreDescription(vFilename((base + ".shp").c_str())));
  EXPECT_EQ("shapes", std::string(store.getClass().c_str()));
  EXPECT_EQ("points", std::string(store.getSubClass().c_str()));
  ASSERT_EQ(3u, store.getNInstances());
  struct Field {
    char const* name;
    DataType type;
  } const fields[] = {{"X", vFLOAT64},    {"Y", vFLOAT64},     {"Z", vFLOAT64},   {"NAME", vSTRING},
                      {"COUNT", vINT32}, {"BIG", vINT64},      {"RATIO", vFLOAT64}, {"DAY", vINT32},
                      {"FLAG", vINT32}};
  for (Field const& f : fields) {
    EXPECT_EQ(f.type, store.getAttribute(f.name).getDataType()) << f.name;
    EXPECT_EQ(1, store.getAttribute(f.name).getLength()) << f.name;
  }
  EXPECT_EQ(static_cast<unsigned int>(sizeof fields / sizeof fields[0]), store.getNAttributes());
  Attribute x = store.getAttribute("X"), y = store.getAttribute("Y"), z = store.getAttribute("Z");
  Attribute name = store.getAttribute("NAME"), count = store.getAttribute("COUNT"), big = store.getAttribute("BIG");
  Attribute ratio = store.getAttribute("RATIO"), day = store.getAttribute("DAY"), flag = store.getAttribute("FLAG");
  for (Attribute* a : {&x, &y, &z, &name, &count, &big, &ratio, &day, &flag}) store.read(*a, 1, 3);
  double const xs[] = {500000.5, 1.5, -0.75}, ys[] = {6100000.25, -2.5, 0};
  char const* const names[] = {"alpha", "beta", ""};
  int const counts[] = {7, -3, 0}, days[] = {20240315, 19991231, 0}, flags[] = {1, 0, 1};
  long long const bigs[] = {9007199254740993LL, -4, 5};
  double const ratios[] = {2.5, -0.125, 1e6};
  for (unsigned int i = 1; i <= 3; ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(xs[i - 1], x.getFloat64(i));
    EXPECT_EQ(ys[i - 1], y.getFloat64(i));
    EXPECT_EQ(0.0, z.getFloat64(i));
    EXPECT_EQ(names[i - 1], std::string(name.getString(i).c_str()));
    EXPECT_EQ(counts[i - 1], count.getInt32(i));
    EXPECT_EQ(bigs[i - 1], big.getInt64(i));
    EXPECT_EQ(ratios[i - 1], ratio.getFloat64(i));
    EXPECT_EQ(days[i - 1], day.getInt32(i));
    EXPECT_EQ(flags[i - 1], flag.getInt32(i));
  }
  // The .prj that ogr2ogr wrote.
  EXPECT_EQ("geographic", std::string(store.findProperty(vUCString("COORDINATE_DOMAIN"))->getString().c_str()));
  EXPECT_EQ(0u, std::string(store.findProperty(vUCString("COORDINATE_SYSTEM"))->getString().c_str()).find("GEOGCS"));

  // The same parts with their extensions in upper case, as some writers name them.
  for (std::string const e : {"shp", "shx", "dbf", "prj"})
    run("cp " + base + "." + e + " " + base + "_up.$(echo " + e + " | tr a-z A-Z)");
  ShapefileDiskStore upper;
  upper.open(StoreDescription(vFilename((base + "_up.SHP").c_str())));
  EXPECT_EQ(store.getNAttributes(), upper.getNAttributes());
  EXPECT_NE(upper.endProperty(), upper.findProperty(vUCString("COORDINATE_SYSTEM")));
}

TEST(ShapefilePeer, PointZLinesAndPolygonsWithHolesFromOgr) {
  requireGdal();
  std::string const base = scratch("shapes");
  ogrShapefile(base + "_z", R"({"type":"FeatureCollection","features":[
{"type":"Feature","properties":{"id":1},"geometry":{"type":"Point","coordinates":[10.5,20.25,-300.5]}},
{"type":"Feature","properties":{"id":2},"geometry":{"type":"Point","coordinates":[11,21,42]}}]})");
  ShapefileDiskStore pointz;
  pointz.open(vFilename((base + "_z.shp").c_str()));
  EXPECT_EQ("mapdata", std::string(pointz.getClass().c_str()));
  EXPECT_EQ("normal", std::string(pointz.getSubClass().c_str()));
  EXPECT_EQ(vFLOAT32, pointz.getAttribute("ATVAL").getDataType());
  EXPECT_EQ((std::vector<double>{21}), values(pointz, "YVAL", 2));
  EXPECT_EQ((std::vector<double>{-300.5}), values(pointz, "ATVAL", 1));
  EXPECT_EQ((std::vector<double>{2}), values(pointz, "LOCATOR", 2));

  ogrShapefile(base + "_lines", R"({"type":"FeatureCollection","features":[
{"type":"Feature","properties":{"kind":"road"},"geometry":{"type":"LineString","coordinates":[[0,0],[1,2],[3,5]]}},
{"type":"Feature","properties":{"kind":"path"},"geometry":{"type":"MultiLineString","coordinates":[[[9,9],[8,8]],[[7,7],[6,6],[5,5]]]}}]})",
               "-a_srs EPSG:32631");
  ShapefileDiskStore lines;
  lines.open(vFilename((base + "_lines.dbf").c_str()));
  EXPECT_EQ("polylines", std::string(lines.getSubClass().c_str()));
  EXPECT_EQ("projected", std::string(lines.findProperty(vUCString("COORDINATE_DOMAIN"))->getString().c_str()));
  EXPECT_EQ(Attribute::VARIABLE_LENGTH, lines.getAttribute("X").getLength());
  EXPECT_EQ((std::vector<double>{0, 2, 5}), values(lines, "Y", 1));
  EXPECT_EQ((std::vector<double>{9, 8, 7, 6, 5}), values(lines, "X", 2));
  EXPECT_EQ((std::vector<double>{2, 3}), values(lines, "PART_LENGTHS", 2));

  // Rings in the order the format keeps: outer clockwise, the hole not.
  ogrShapefile(base + "_poly", R"({"type":"FeatureCollection","features":[
{"type":"Feature","properties":{"area":96.0},"geometry":{"type":"Polygon","coordinates":[
 [[0,0],[0,10],[10,10],[10,0],[0,0]],[[2,2],[4,2],[4,4],[2,4],[2,2]]]}}]})");
  ShapefileDiskStore polygons;
  polygons.open(vFilename((base + "_poly.shp").c_str()));
  EXPECT_EQ("polygons", std::string(polygons.getSubClass().c_str()));
  EXPECT_EQ((std::vector<double>{5, 5}), values(polygons, "PART_LENGTHS", 1));
  EXPECT_EQ((std::vector<double>{0, 0, 10, 10, 0, 2, 4, 4, 2, 2}), values(polygons, "X", 1));
  EXPECT_EQ((std::vector<double>{0, 10, 10, 0, 0, 2, 2, 4, 4, 2}), values(polygons, "Y", 1));
  EXPECT_EQ((std::vector<double>{96}), values(polygons, "AREA", 1));
}

// What ogrinfo says of a file, from the first feature on.
std::string ogrFeatures(std::string const& shp) {
  int status = 0;
  std::string const out = run("ogrinfo -al " + shp, &status);
  EXPECT_EQ(0, status) << out;
  return out;
}

// A variable length attribute of vFLOAT64 or vINT32 with one array a shape.
Attribute variableAttribute(char const* name, DataType type, std::vector<std::vector<double>> const& shapes) {
  Attribute a(name, "", type, Attribute::VARIABLE_LENGTH);
  int* lengths = new int[shapes.size()];
  for (std::size_t s = 0; s < shapes.size(); ++s) lengths[s] = static_cast<int>(shapes[s].size());
  a.resize(static_cast<unsigned int>(shapes.size()), nullptr, lengths);
  for (unsigned int s = 1; s <= shapes.size(); ++s)
    for (std::size_t k = 0; k < shapes[s - 1].size(); ++k) {
      if (type == vINT32)
        a.getInt32Pointer(s)[k] = static_cast<int>(shapes[s - 1][k]);
      else
        a.getFloat64Pointer(s)[k] = shapes[s - 1][k];
    }
  return a;
}

TEST(ShapefilePeer, FilesTheStoreWritesReadByOgrinfo) {
  requireGdal();
  std::string const base = scratch("written");
  {
    ShapefileDiskStore store;
    StoreDescription description(vFilename((base + "_poly.shp").c_str()));
    store.create(description, "polygons");
    store.addAttribute(Attribute("NAME", "", vSTRING));
    store.addAttribute(Attribute("CDP", "", vINT32));
    store.addAttribute(Attribute("BIG", "", vINT64));
    store.addAttribute(Attribute("ELEV", "", vFLOAT64));
    store.addInstances(2);
    store.addProperty(Property("COORDINATE_SYSTEM",
                               "GEOGCS[\"WGS 84\",DATUM[\"WGS_1984\",SPHEROID[\"WGS 84\",6378137,298.257223563]],"
                               "PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]]"));
    auto const variable = variableAttribute;
    // The first polygon with a hole, given counter-clockwise: the writer
    // turns it round.
    store.write(variable("X", vFLOAT64, {{0, 10, 10, 0, 0, 2, 2, 4, 4, 2}, {20, 20, 21, 20}}), 1, 2);
    store.write(variable("Y", vFLOAT64, {{0, 0, 10, 10, 0, 2, 4, 4, 2, 2}, {0, 1, 0, 0}}), 1, 2);
    store.write(variable("PART_LENGTHS", vINT32, {{5, 5}, {4}}), 1, 2);
    Attribute name("NAME", "", vSTRING), cdp("CDP", "", vINT32), big("BIG", "", vINT64), elev("ELEV", "", vFLOAT64);
    for (Attribute* a : {&name, &cdp, &big, &elev}) a->resize(2);
    name.setString(1, "first one");
    name.setString(2, "second");
    cdp.setInt32(1, -17);
    cdp.setInt32(2, 2000000000);
    big.setInt64(1, 9007199254740992LL);
    big.setInt64(2, -1);
    elev.setFloat64(1, 1000.5);
    elev.setFloat64(2, -0.001953125);
    for (Attribute* a : {&name, &cdp, &big, &elev}) store.write(*a, 1, 2);
    store.close();
  }
  std::string const out = ogrFeatures(base + "_poly.shp");
  EXPECT_NE(std::string::npos, out.find("WGS 84")) << out;
  for (char const* expected :
       {"  NAME (String) = first one\n  CDP (Integer64) = -17\n  BIG (Real) = 9007199254740992\n"
        "  ELEV (Real) = 1000.500000000000000\n  POLYGON ((0 0,0 10,10 10,10 0,0 0),(2 2,4 2,4 4,2 4,2 2))",
        "  NAME (String) = second\n  CDP (Integer64) = 2000000000\n  BIG (Real) = -1\n"
        "  ELEV (Real) = -0.001953125000000\n  POLYGON ((20 0,20 1,21 0,20 0))"})
    EXPECT_NE(std::string::npos, out.find(expected)) << expected << "\n---\n" << out;

  // Map data: PointZ with the values as Z.
  {
    ShapefileDiskStore store;
    StoreDescription description(vFilename((base + "_map.shp").c_str()));
    description.setStoreClass("mapdata");
    store.create(description, "");
    store.addInstances(2);
    Attribute x("XVAL", "", vFLOAT32), y("YVAL", "", vFLOAT32), v("ATVAL", "", vFLOAT32);
    float const xs[] = {1.5f, 2.5f}, ys[] = {-1.0f, 4.0f}, vs[] = {0.25f, 99.0f};
    x.copyData(2, xs);
    y.copyData(2, ys);
    v.copyData(2, vs);
    for (Attribute* a : {&x, &y, &v}) store.write(*a, 1, 2);
  }
  std::string const map = ogrFeatures(base + "_map.shp");
  EXPECT_NE(std::string::npos, map.find("POINT Z (1.5 -1 0.25)")) << map;
  EXPECT_NE(std::string::npos, map.find("POINT Z (2.5 4.0 99)")) << map;

  // Lines of one and two parts, and plain points.
  {
    ShapefileDiskStore lines;
    lines.create(StoreDescription(vFilename((base + "_lines.shp").c_str())), "polylines");
    lines.addInstances(2);
    lines.write(variableAttribute("X", vFLOAT64, {{0, 1.5, 3}, {9, 8, 7, 6}}), 1, 2);
    lines.write(variableAttribute("Y", vFLOAT64, {{0, 2, -5}, {9, 8, 7, 6}}), 1, 2);
    lines.write(variableAttribute("PART_LENGTHS", vINT32, {{3}, {2, 2}}), 1, 2);
    ShapefileDiskStore points;
    points.create(vFilename((base + "_points.shp").c_str()));
    points.addInstances(2);
    Attribute x("X", "", vFLOAT64), y("Y", "", vFLOAT64);
    double const xs[] = {431000.25, -1}, ys[] = {6520000.5, 2};
    x.copyData(2, xs);
    y.copyData(2, ys);
    points.write(x, 1, 2);
    points.write(y, 1, 2);
  }
  std::string const lines = ogrFeatures(base + "_lines.shp");
  EXPECT_NE(std::string::npos, lines.find("Geometry: Line String")) << lines;
  EXPECT_NE(std::string::npos, lines.find("LINESTRING (0 0,1.5 2.0,3 -5)")) << lines;
  EXPECT_NE(std::string::npos, lines.find("MULTILINESTRING ((9 9,8 8),(7 7,6 6))")) << lines;
  std::string const points = ogrFeatures(base + "_points.shp");
  EXPECT_NE(std::string::npos, points.find("POINT (431000.25 6520000.5)")) << points;
  EXPECT_NE(std::string::npos, points.find("POINT (-1 2)")) << points;
}

TEST(ShapefilePeer, MeasuredPointsBothWays) {
  requireGdal();
  // ogr2ogr makes a measured point file from the well-known text of a CSV.
  std::string const base = scratch("measured");
  fs_testing::writeFile(base + ".csv", "WKT,id\n\"POINT M (1.5 2.5 -7.25)\",1\n\"POINT M (3 4 1000.5)\",2\n");
  int status = 0;
  run("rm -f " + base + ".shp " + base + ".shx " + base + ".dbf && ogr2ogr -f 'ESRI Shapefile' " + base + ".shp " +
          base + ".csv",
      &status);
  ASSERT_EQ(0, status);
  ShapefileDiskStore read;
  read.open(vFilename((base + ".shp").c_str()));
  EXPECT_EQ((std::vector<double>{3}), values(read, "XVAL", 2));
  EXPECT_EQ((std::vector<double>{-7.25}), values(read, "ATVAL", 1));

  {
    ShapefileDiskStore store;
    StoreDescription description(vFilename((base + "_out.shp").c_str()));
    description.setStoreClass("mapdata");
    store.create(description, "measured");
    store.addInstances(1);
    Attribute x("XVAL", "", vFLOAT32), y("YVAL", "", vFLOAT32), v("ATVAL", "", vFLOAT32);
    float const xs[] = {-2.5f}, ys[] = {8.0f}, vs[] = {0.125f};
    x.copyData(1, xs);
    y.copyData(1, ys);
    v.copyData(1, vs);
    for (Attribute* a : {&x, &y, &v}) store.write(*a, 1, 1);
  }
  std::string const out = ogrFeatures(base + "_out.shp");
  EXPECT_NE(std::string::npos, out.find("Geometry: Measured Point")) << out;
  EXPECT_NE(std::string::npos, out.find("POINT M (-2.5 8.0 0.125)")) << out;
}

}  // namespace
