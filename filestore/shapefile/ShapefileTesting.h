#ifndef FILESTORE_SHAPEFILE_SHAPEFILETESTING_H
#define FILESTORE_SHAPEFILE_SHAPEFILETESTING_H

// Test helpers (tests only): a scratch directory of the process, GDAL's
// command line tools run as peers, and variable length attributes.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "attribute/Attribute.h"

namespace shapefile_testing {

inline std::string scratch(std::string const& name) {
  std::string const dir = ::testing::TempDir() + "shapefile_" + std::to_string(::getpid());
  std::system(("mkdir -p " + dir).c_str());
  return dir + "/" + name;
}

// The output of a command; the command's status in *status.
inline std::string run(std::string const& command, int* status = nullptr) {
  std::string out;
  std::FILE* pipe = ::popen((command + " 2>&1").c_str(), "r");
  if (pipe == nullptr) return out;
  char buffer[4096];
  std::size_t got;
  while ((got = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) out.append(buffer, got);
  int const rc = ::pclose(pipe);
  if (status != nullptr) *status = rc;
  return out;
}

// Fails (never skips) without GDAL's tools.
inline void requireGdal() {
  int status = 0;
  run("ogr2ogr --version && ogrinfo --version", &status);
  ASSERT_EQ(0, status) << "GDAL's ogr2ogr and ogrinfo are missing: run scripts/install-deps";
}

// A shapefile at <base>.shp written by ogr2ogr from the GeoJSON text given;
// extra options go to ogr2ogr.
inline void ogrShapefile(std::string const& base, std::string const& geojson, std::string const& options = "") {
  std::FILE* f = std::fopen((base + ".geojson").c_str(), "w");
  ASSERT_NE(nullptr, f);
  std::fputs(geojson.c_str(), f);
  std::fclose(f);
  int status = 0;
  std::string const out = run("rm -f " + base + ".shp " + base + ".shx " + base + ".dbf " + base + ".prj && ogr2ogr -f 'ESRI Shapefile' " +
                                  options + " " + base + ".shp " + base + ".geojson",
                              &status);
  ASSERT_EQ(0, status) << out;
}

// A variable length attribute of vFLOAT64 or vINT32 with one array a shape.
inline Attribute variableAttribute(char const* name, DataType type, std::vector<std::vector<double>> const& shapes) {
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

}  // namespace shapefile_testing

#endif
