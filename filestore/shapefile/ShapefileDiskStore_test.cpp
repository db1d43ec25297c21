// Shapefiles written by GDAL's ogr2ogr from GeoJSON read value by value,
// shapefiles the store writes read back by ogrinfo; bad shapefiles and
// refused writes end in the store's own errors.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "filestore/shapefile/ShapefileDiskStore.h"
#include "filestore/shapefile/ShapefileReader.h"
#include "filestore/shapefile/ShapefileTesting.h"
#include "syslayer/FSTesting.h"

namespace {

using shapefile_testing::ogrShapefile;
using shapefile_testing::requireGdal;
using shapefile_testing::run;
using shapefile_testing::scratch;
using shapefile_testing::variableAttribute;

// The values of shapes first to last (first alone by default), one after another.
std::vector<double> values(ShapefileDiskStore const& store, char const* name, unsigned int first,
                           unsigned int last = 0) {
  Attribute a = store.getAttribute(name);
  store.read(a, first, last ? last : first);
  std::vector<double> v;
  a.getValues(v);
  return v;
}

// Map data: points of x, y and a value each, as PointZ or, "measured", PointM.
void writeMapData(std::string const& shp, char const* subClass, std::vector<float> const& x,
                  std::vector<float> const& y, std::vector<float> const& v) {
  ShapefileDiskStore store;
  StoreDescription description(vFilename(shp.c_str()));
  description.setStoreClass("mapdata");
  store.create(description, subClass);
  unsigned int const n = static_cast<unsigned int>(x.size());
  store.addInstances(n);
  Attribute xs("XVAL", "", vFLOAT32), ys("YVAL", "", vFLOAT32), vs("ATVAL", "", vFLOAT32);
  xs.copyData(n, x.data());
  ys.copyData(n, y.data());
  vs.copyData(n, v.data());
  for (Attribute* a : {&xs, &ys, &vs}) store.write(*a, 1, n);
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
  EXPECT_EQ((std::vector<double>{500000.5, 1.5, -0.75}), values(store, "X", 1, 3));
  EXPECT_EQ((std::vector<double>{6100000.25, -2.5, 0}), values(store, "Y", 1, 3));
  EXPECT_EQ((std::vector<double>{0, 0, 0}), values(store, "Z", 1, 3));
  EXPECT_EQ((std::vector<double>{7, -3, 0}), values(store, "COUNT", 1, 3));
  EXPECT_EQ((std::vector<double>{2.5, -0.125, 1e6}), values(store, "RATIO", 1, 3));
  EXPECT_EQ((std::vector<double>{20240315, 19991231, 0}), values(store, "DAY", 1, 3));
  EXPECT_EQ((std::vector<double>{1, 0, 1}), values(store, "FLAG", 1, 3));
  // Past 2^53: a double would lose the last digit.
  Attribute name = store.getAttribute("NAME"), big = store.getAttribute("BIG");
  store.read(name, 1, 3);
  store.read(big, 1, 3);
  EXPECT_EQ((std::vector<long long>{9007199254740993LL, -4, 5}),
            (std::vector<long long>{big.getInt64(1), big.getInt64(2), big.getInt64(3)}));
  EXPECT_EQ((std::vector<std::string>{"alpha", "beta", ""}),
            (std::vector<std::string>{name.getString(1).c_str(), name.getString(2).c_str(),
                                      name.getString(3).c_str()}));
  EXPECT_EQ("geographic", std::string(store.findProperty(vUCString("COORDINATE_DOMAIN"))->getString().c_str()));
  EXPECT_EQ(0u, std::string(store.findProperty(vUCString("COORDINATE_SYSTEM"))->getString().c_str()).find("GEOGCS"));

  // The same parts with their extensions in upper case, as some writers name them.
  for (std::string const e : {"shp", "shx", "dbf", "prj"})
    run("cp " + base + "." + e + " " + base + "_up.$(echo " + e + " | tr a-z A-Z)");
  ShapefileDiskStore upper;
  upper.open(StoreDescription(vFilename((base + "_up.SHP").c_str())));
  EXPECT_EQ(store.getNAttributes(), upper.getNAttributes());
  EXPECT_NE(upper.endProperty(), upper.findProperty(vUCString("COORDINATE_SYSTEM")));
  // A .prj that names no system of either kind gives no domain.
  upper.close();
  fs_testing::writeFile(base + "_up.PRJ", "LOCAL_CS[\"site grid\"]\n");
  upper.open(StoreDescription(vFilename((base + "_up.SHP").c_str())));
  EXPECT_EQ("unknown", std::string(upper.findProperty(vUCString("COORDINATE_DOMAIN"))->getString().c_str()));
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

// What ogrinfo says of a file holds each text given.
void expectOgrinfo(std::string const& shp, std::vector<std::string> const& texts) {
  int status = 0;
  std::string const out = run("ogrinfo -al " + shp, &status);
  EXPECT_EQ(0, status) << out;
  for (std::string const& text : texts) EXPECT_NE(std::string::npos, out.find(text)) << text << "\n---\n" << out;
}

TEST(ShapefilePeer, FilesTheStoreWritesReadByOgrinfo) {
  requireGdal();
  std::string const base = scratch("written");
  {
    ShapefileDiskStore store;
    StoreDescription description(vFilename((base + "_poly.shp").c_str()));
    store.create(description, "polygons");
    Attribute name("NAME", "", vSTRING), cdp("CDP", "", vINT32), big("BIG", "", vINT64), elev("ELEV", "", vFLOAT64);
    for (Attribute* a : {&name, &cdp, &big, &elev}) store.addAttribute(*a);
    store.addInstances(2);
    store.addProperty(Property("COORDINATE_SYSTEM",
                               "GEOGCS[\"WGS 84\",DATUM[\"WGS_1984\",SPHEROID[\"WGS 84\",6378137,298.257223563]],"
                               "PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]]"));
    // The first polygon with a hole, given counter-clockwise: the writer
    // turns it round.
    store.write(variableAttribute("X", vFLOAT64, {{0, 10, 10, 0, 0, 2, 2, 4, 4, 2}, {20, 20, 21, 20}}), 1, 2);
    store.write(variableAttribute("Y", vFLOAT64, {{0, 0, 10, 10, 0, 2, 4, 4, 2, 2}, {0, 1, 0, 0}}), 1, 2);
    store.write(variableAttribute("PART_LENGTHS", vINT32, {{5, 5}, {4}}), 1, 2);
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
  expectOgrinfo(base + "_poly.shp",
                {"WGS 84",
                 "  NAME (String) = first one\n  CDP (Integer64) = -17\n  BIG (Real) = 9007199254740992\n"
                 "  ELEV (Real) = 1000.500000000000000\n  POLYGON ((0 0,0 10,10 10,10 0,0 0),(2 2,4 2,4 4,2 4,2 2))",
                 "  NAME (String) = second\n  CDP (Integer64) = 2000000000\n  BIG (Real) = -1\n"
                 "  ELEV (Real) = -0.001953125000000\n  POLYGON ((20 0,20 1,21 0,20 0))"});

  writeMapData(base + "_map.shp", "", {1.5f, 2.5f}, {-1.0f, 4.0f}, {0.25f, 99.0f});
  expectOgrinfo(base + "_map.shp", {"POINT Z (1.5 -1 0.25)", "POINT Z (2.5 4.0 99)"});

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
  expectOgrinfo(base + "_lines.shp", {"Geometry: Line String", "LINESTRING (0 0,1.5 2.0,3 -5)",
                                      "MULTILINESTRING ((9 9,8 8),(7 7,6 6))"});
  expectOgrinfo(base + "_points.shp", {"POINT (431000.25 6520000.5)", "POINT (-1 2)"});
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

  writeMapData(base + "_out.shp", "measured", {-2.5f}, {8.0f}, {0.125f});
  expectOgrinfo(base + "_out.shp", {"Geometry: Measured Point", "POINT M (-2.5 8.0 0.125)"});
}

char const* const kPoints = R"({"type":"FeatureCollection","features":[
{"type":"Feature","properties":{"v":1},"geometry":{"type":"Point","coordinates":[1,2]}},
{"type":"Feature","properties":{"v":2},"geometry":{"type":"Point","coordinates":[3,4]}},
{"type":"Feature","properties":{"v":3},"geometry":{"type":"Point","coordinates":[5,6]}}]})";

std::string const kCannotOpen =
    "Could not open shapefile %s.\nCheck the spelling, the permissions, and that both data (.shp) and index (.shx) "
    "files are present.\n";

std::string cannotOpen(std::string const& shp, std::string const& why) {
  std::string text = kCannotOpen;
  text.replace(text.find("%s"), 2, shp);
  return text + why;
}

void put32be(std::string& bytes, std::size_t at, unsigned int value) {
  for (int k = 0; k < 4; ++k) bytes[at + k] = static_cast<char>(value >> (24 - 8 * k));
}

TEST(ShapefileFaults, FilesThatDoNotHoldTogether) {
  requireGdal();
  std::string const base = scratch("bad");
  std::string const shp = base + ".shp";
  auto open = [&] {
    ShapefileDiskStore store;
    store.open(vFilename(shp.c_str()));
  };
  struct Case {
    char const* what;
    void (*spoil)(std::string const& base);
    char const* why;
  } const cases[] = {
      {"index pointing into the middle of a record",
       [](std::string const& b) {
         std::string shx = fs_testing::readFile(b + ".shx");
         // Record 2 moved 4 words on: its header is read from the data of
         // another.
         put32be(shx, 100 + 8, (100 + 28 + 4) / 2);
         fs_testing::writeFile(b + ".shx", shx);
       },
       "The index (.shx) and the data (.shp) disagree at shape 2."},
      {"no index", [](std::string const& b) { std::remove((b + ".shx").c_str()); },
       "The data (.shp) or index (.shx) file does not open."},
      {"a table of fewer records",
       [](std::string const& b) {
         std::string dbf = fs_testing::readFile(b + ".dbf");
         dbf[4] = 2;
         fs_testing::writeFile(b + ".dbf", dbf);
       },
       "The table (.dbf) has 2 records for 3 shapes."},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.what);
    ogrShapefile(base, kPoints);
    open();
    c.spoil(base);
    expectFailure(open, "ShapefileDiskStore::open", cannotOpen(shp, c.why));
  }
  // A table cut inside its second record, whose first would read as blank.
  ogrShapefile(base, kPoints);
  std::string const dbf = fs_testing::readFile(base + ".dbf");
  auto word = [&dbf](int at) {
    return static_cast<unsigned char>(dbf[at]) | static_cast<unsigned char>(dbf[at + 1]) << 8;
  };
  int const header = word(8), record = word(10);
  fs_testing::writeFile(base + ".dbf", dbf.substr(0, static_cast<std::size_t>(header + record + record / 2)));
  expectFailure(open, "ShapefileDiskStore::open",
                cannotOpen(shp, "The table (.dbf) is cut short: its header calls for 3 records of " +
                                    std::to_string(record) + " bytes, it holds 1."));
  ogrShapefile(base, R"({"type":"FeatureCollection","features":[
{"type":"Feature","properties":{},"geometry":{"type":"MultiPoint","coordinates":[[1,2],[3,4]]}}]})");
  expectFailure(open, "Shapefile", "Shape Type 8 is not yet supported");
}

TEST(ShapefileFaults, WritesRefusedAndReadsOutOfTheStore) {
  std::string const file = scratch("refused.shp");
  ShapefileDiskStore store;
  store.create(StoreDescription(vFilename(file.c_str())), "polygons");
  store.addInstances(2);
  Attribute const x = variableAttribute("X", vFLOAT64, {{0, 0, 0}, {0, 0, 0, 0}});
  expectFailure([&] { store.write(Attribute("NOPE", "", vINT32), 1, 2); }, "ShapefileDiskStore::write",
                "Attribute NOPE is not in the store.");
  // Part of an attribute: a message, nothing kept.
  EXPECT_EQ(1, fs_testing::quietErrors([&] { store.write(x, 1, 1); }));
  store.write(x, 1, 2);
  store.write(variableAttribute("PART_LENGTHS", vINT32, {{3}, {1, 2}}), 1, 2);
  expectFailure([&] { store.close(); }, "ShapefileDiskStore::myWritePolygons",
                "***ERROR*** Accumulated lengths do not match data size.");
  EXPECT_FALSE(store.isOpen());

  ShapefileReader reader(vFilename(scratch("nothing.shp").c_str()));
  EXPECT_FALSE(reader.isOpen());
  expectFailure([&] { reader.addShape(1, 2, 3); }, "ShapefileReader::addShape",
                "Cannot add shapes to a file opened for read-only.");

  ShapefileDiskStore points;
  points.create(vFilename(file.c_str()));
  points.addInstances(1);
  points.close();
  points.open(vFilename(file.c_str()));
  expectFailure([&] { points.openAttributeSet("other"); }, "ShapefileDiskStore::openAttributeSet",
                "File '" + file + "' does not have AttributeSet names 'other'.");
  Attribute name("X", "", vSTRING);
  expectFailure([&] { points.read(name, 1, 1); }, "ShapefileDiskStore::read",
                "Cannot convert from a number to String for Attribute X.");
}

}  // namespace
