#ifndef FILESTORE_OFFLOAD_OFFLOADTESTING_H
#define FILESTORE_OFFLOAD_OFFLOADTESTING_H

// Test helpers (tests only): offload files of the independent Python writer,
// what its reader makes of a file, and their numbers (testdata/).

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace offload_testing {

// The writer's file at path, and at text what a reader must find in it, one
// line a bin; order "<" or ">", version 1 or 2, shape 991 or 995.
inline void writeFixture(std::string const& path, std::string const& text, char const* order, int version, int shape,
                         int packed, char const* extra = "") {
  std::string const cmd = "/usr/bin/python3 " RONDO_TEST_SOURCE_DIR "/filestore/offload/testdata/offload_fixture.py " +
                          path + " " + text + " '" + order + "' " + std::to_string(version) + " " +
                          std::to_string(shape) + " " + std::to_string(packed) + " " + extra;
  ASSERT_EQ(0, std::system(cmd.c_str())) << "python3 with numpy is needed: " << cmd;
}

inline std::vector<double> numbers(std::string const& line) {
  std::istringstream in(line);
  std::vector<double> values;
  for (double v; in >> v;) values.push_back(v);
  return values;
}

inline std::vector<std::vector<double>> rows(std::string const& text) {
  std::vector<std::vector<double>> out;
  std::ifstream in(text);
  for (std::string line; std::getline(in, line);) out.push_back(numbers(line));
  return out;
}

// The lines that a script of testdata/ prints; none if it failed.
inline std::vector<std::string> python(std::string const& scriptAndArguments) {
  std::string const cmd = "/usr/bin/python3 " RONDO_TEST_SOURCE_DIR "/filestore/offload/testdata/" + scriptAndArguments;
  FILE* pipe = ::popen(cmd.c_str(), "r");
  std::vector<std::string> lines;
  if (!pipe) return lines;
  char line[8192];
  while (std::fgets(line, sizeof line, pipe)) lines.emplace_back(line, std::strlen(line) - 1);
  if (::pclose(pipe) != 0) lines.clear();
  return lines;
}

// The Python reader's account of a file: its header, then a line a bin.
inline std::vector<std::string> pythonRead(std::string const& file) { return python("offload_reader.py " + file); }

}  // namespace offload_testing

#endif
