#ifndef FILESTORE_SHAPEFILE_SHAPEFILEREADER_H
#define FILESTORE_SHAPEFILE_SHAPEFILEREADER_H

// ShapefileReader: reads a shapefile (.shp with its .shx index, the .dbf
// table and the .prj coordinate system when they are there) into memory.
// A file that does not open, or whose index points at records the data
// file does not hold, or whose table has another count of records than the
// shapes, leaves the reader not open, with the reason in getFailure().
//
// .dbf fields become attributes of length 1 and class blank: text ('C')
// vSTRING; numbers without decimals ('N') vINT32 up to 11 digits wide and
// vINT64 beyond; other numbers ('N' with decimals, 'F') vFLOAT64; logicals
// ('L') vINT32, 1 for true; dates ('D') vINT32 as YYYYMMDD. Empty values
// read as 0 or blank.

#include "filestore/shapefile/Shapefile.h"

class ShapefileReader : public Shapefile {
 public:
  explicit ShapefileReader(vFilename const& file);
  ~ShapefileReader() override;

  vString const& getFailure() const { return m_failure; }

  // Refused: the file is open for reading.
  void addShape(int n, double const* x, double const* y, double const* z = nullptr,
                std::vector<int> const& parts = std::vector<int>()) override;
  void addShape(double x, double y, double z) override;

 private:
  bool myReadShapes();
  bool myReadTable();
  void myReadCoordinateSystem();

  vString m_failure;
};

#endif
