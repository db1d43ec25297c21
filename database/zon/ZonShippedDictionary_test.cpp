#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "foundation/TestReleaseTree.h"

namespace {

std::string bytesOf(std::string const& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

}  // namespace

// The release ships the dictionary that zonload writes; scripts/make-kvsdict
// makes it again whenever zonload's tables change, and this keeps the two
// from drifting apart.
TEST(ZonShippedDictionary, EqualsWhatZonloadWritesNow) {
  TestReleaseTree tree;
  std::string const out = tree.root() + "/dict";
  std::string const command = "mkdir -p '" + out + "' && '" + std::string(RONDO_TEST_BINARY_DIR) +
                              "/bin/zonload' dictionary '" + out + "' 127.0.0.1";
  int const status = std::system(command.c_str());
  ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << command;
  std::string const made = bytesOf(out + "/KvsDict.bin");
  std::string const shipped = bytesOf(std::string(RONDO_TEST_SOURCE_DIR) + "/release/SupportFiles/CapiZon/KvsDict.bin");
  ASSERT_FALSE(made.empty());
  EXPECT_TRUE(made == shipped) << "release/SupportFiles/CapiZon/KvsDict.bin differs from zonload's; run scripts/make-kvsdict";
}
