// Bad shapefiles and refused writes end in the store's own errors.

#include <gtest/gtest.h>

#include <string>

#include "filestore/shapefile/ShapefileDiskStore.h"
#include "filestore/shapefile/ShapefileReader.h"
#include "filestore/shapefile/ShapefileTesting.h"
#include "foundation/TestFailure.h"
#include "syslayer/FSTesting.h"

namespace {

using shapefile_testing::ogrShapefile;
using shapefile_testing::scratch;

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
  shapefile_testing::requireGdal();
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
  ogrShapefile(base, R"({"type":"FeatureCollection","features":[
{"type":"Feature","properties":{},"geometry":{"type":"MultiPoint","coordinates":[[1,2],[3,4]]}}]})");
  expectFailure(open, "Shapefile", "Shape Type 8 is not yet supported");
}

TEST(ShapefileFaults, WritesRefusedAndReadsOutOfTheStore) {
  std::string const file = scratch("refused.shp");
  ShapefileDiskStore store;
  store.create(StoreDescription(vFilename(file.c_str())), "polygons");
  store.addInstances(2);
  Attribute const x = shapefile_testing::variableAttribute("X", vFLOAT64, {{0, 0, 0}, {0, 0, 0, 0}});
  expectFailure([&] { store.write(Attribute("NOPE", "", vINT32), 1, 2); }, "ShapefileDiskStore::write",
                "Attribute NOPE is not in the store.");
  // Part of an attribute: a message, nothing kept.
  EXPECT_EQ(1, fs_testing::quietErrors([&] { store.write(x, 1, 1); }));
  store.write(x, 1, 2);
  store.write(shapefile_testing::variableAttribute("PART_LENGTHS", vINT32, {{3}, {1, 2}}), 1, 2);
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
