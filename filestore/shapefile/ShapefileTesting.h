#ifndef FILESTORE_SHAPEFILE_SHAPEFILETESTING_H
#define FILESTORE_SHAPEFILE_SHAPEFILETESTING_H

// Test helpers (tests only): a scratch directory of the process, and GDAL's
// command line tools run as peers.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

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

}  // namespace shapefile_testing

#endif
