#ifndef FILESTORE_NYX_NYXTESTING_H
#define FILESTORE_NYX_NYXTESTING_H

// Test helper (tests only): Nyx files written by the Python fixture, and the
// values it puts in them.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace nyx_testing {

// The sample s (from 0) of trace i as read, by data format.
inline float sample(int format, int i, int s) {
  float const stored = static_cast<float>(10 * i + s + 1);
  return format == 1 ? 2.0f * stored : format == 2 ? 0.5f * stored : stored;
}
inline int cmp(int i) { return 10 + (i - 1) / 2; }
inline int offset(int i) { return 100 * ((i - 1) % 3 + 1); }

inline void writeFixture(std::string const& kind, std::string const& path, char const* order, int format,
                         std::string const& sizes = "") {
  std::string const cmd = "/usr/bin/python3 " RONDO_TEST_SOURCE_DIR "/filestore/nyx/testdata/nyx_fixture.py " + kind +
                          " " + path + " '" + order + "' " + std::to_string(format) + " " + sizes;
  ASSERT_EQ(0, std::system(cmd.c_str())) << cmd;
}

}  // namespace nyx_testing

#endif
