#ifndef FILESTORE_ASCII_ASCIITESTING_H
#define FILESTORE_ASCII_ASCIITESTING_H

// Test helpers (tests only): the built-in formats of the checkout's release
// tree, and scratch files.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "syslayer/FSTesting.h"

namespace ascii_testing {

// Before the first look at the built-in formats, which is kept.
inline void useSourceRelease() { ::setenv("VREL", RONDO_TEST_SOURCE_DIR "/release/", 1); }

inline std::string scratch(std::string const& name, std::string const& text) {
  std::string const dir = ::testing::TempDir() + "ascii_" + std::to_string(::getpid());
  std::system(("mkdir -p " + dir).c_str());
  std::string const path = dir + "/" + name;
  if (!text.empty()) fs_testing::writeFile(path, text);
  return path;
}

}  // namespace ascii_testing

#endif
