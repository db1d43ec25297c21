#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "foundation/TestReleaseTree.h"

// The release ships the dictionary zonload writes (scripts/make-kvsdict);
// this keeps the two from drifting apart.
TEST(ZonShippedDictionary, EqualsWhatZonloadWritesNow) {
  TestReleaseTree tree;
  std::string const command = "'" + std::string(RONDO_TEST_BINARY_DIR) + "/bin/zonload' dictionary '" +
                              tree.root() + "' 127.0.0.1";
  int const status = std::system(command.c_str());
  ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << command;
  std::ostringstream made, shipped;
  made << std::ifstream(tree.root() + "/KvsDict.bin", std::ios::binary).rdbuf();
  shipped << std::ifstream(std::string(RONDO_TEST_SOURCE_DIR) + "/release/SupportFiles/CapiZon/KvsDict.bin",
                           std::ios::binary).rdbuf();
  ASSERT_FALSE(made.str().empty());
  EXPECT_TRUE(made.str() == shipped.str()) << "the shipped KvsDict.bin is not zonload's; run scripts/make-kvsdict";
}

// A row count that is not a whole positive number, or an ident that no
// store name would reach, is the usage (status 2), before any server is asked.
TEST(ZonShippedDictionary, ZonloadTakesOnlyWholeRowCountsAndPlainIdents) {
  for (char const* arguments : {"L1 10abc", "L1 4294967297", "L1 0", "L1 -3", "'' 3", "a,b 3"}) {
    std::string const command = "'" + std::string(RONDO_TEST_BINARY_DIR) + "/bin/zonload' table nosuchserver P " +
                                arguments + " 2>/dev/null";
    int const status = std::system(command.c_str());
    ASSERT_TRUE(WIFEXITED(status)) << arguments;
    EXPECT_EQ(2, WEXITSTATUS(status)) << arguments;
  }
}

// A client folder that cannot be written whole (its small configuration on
// a full disk, which shows only at the close) is said so, not left short
// with status 0.
TEST(ZonShippedDictionary, ZonloadSaysADictionaryItCouldNotWrite) {
  TestReleaseTree tree;
  ASSERT_EQ(0, ::symlink("/dev/full", (tree.root() + "/config.kvs").c_str()));
  std::string const command = "'" + std::string(RONDO_TEST_BINARY_DIR) + "/bin/zonload' dictionary '" +
                              tree.root() + "' 127.0.0.1 2>/dev/null";
  int const status = std::system(command.c_str());
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(1, WEXITSTATUS(status));
}
