#ifndef FILESTORE_FDM_FDMTESTING_H
#define FILESTORE_FDM_FDMTESTING_H

// Test helper (tests only): FDM files written by the Python fixture, whose
// sample at crossline index ix, inline index iy, Z index iz is
// 1000 + 100 iy + 10 ix + iz.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace fdm_testing {

inline float value(int ix, int iy, int iz) { return 1000.0f + 100.0f * iy + 10.0f * ix + iz; }

// Writes path with the fixture's arguments after the byte order.
inline void writeFixture(std::string const& path, char const* order, std::string const& arguments = "") {
  std::string const cmd = "/usr/bin/python3 " RONDO_TEST_SOURCE_DIR "/filestore/fdm/testdata/fdm_fixture.py " + path +
                          " '" + order + "' " + arguments;
  ASSERT_EQ(0, std::system(cmd.c_str())) << cmd;
}

}  // namespace fdm_testing

#endif
