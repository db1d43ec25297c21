// The shared store suite over a shapefile that the store itself wrote:
// the reference content as .dbf columns of twelve points. A file opened
// for reading refuses every write; the scalar reference attributes only,
// since a .dbf column holds one value a shape.

#include <gtest/gtest.h>

#include <string>

#include "filestore/shapefile/ShapefileDiskStore.h"
#include "filestore/shapefile/ShapefileTesting.h"
#include "testing/StoreConformance.h"

namespace {

std::vector<std::string> const kHeld = {"CDP", "OFFSET", "ELEV"};

vHandle<AttributeSet> openReferenceFile() {
  static int serial = 0;
  std::string const file = shapefile_testing::scratch("conformance_" + std::to_string(++serial) + ".shp");
  {
    ShapefileDiskStore created;
    created.create(vFilename(file.c_str()));
    StoreConformance::populate(created, kHeld);
    created.close();
  }
  ShapefileDiskStore* store = new ShapefileDiskStore;
  vHandle<AttributeSet> handle(store);
  store->open(StoreDescription(vFilename(file.c_str())));
  return handle;
}

StoreConformanceCase shapefileCase() {
  StoreConformanceCase c("ShapefileDiskStore");
  c.openForReading = openReferenceFile;
  c.makeUnopened = [] { return vHandle<AttributeSet>(new ShapefileDiskStore); };
  c.attributes = kHeld;
  c.hasKeyList = false;
  c.hasClasses = false;
  c.texts.unknownAttribute = "Attribute %s does not exist in file %s.";
  c.texts.keysMissing = "Attribute 'CDP': the vInstanceList has a zero in it, coont read from instance 0.";
  c.texts.notOpen = "Shapefile Disk File has not been opened yet!";
  return c;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(ShapefileDiskStore, StoreConformance, ::testing::Values(shapefileCase()),
                         StoreConformance::caseName);
