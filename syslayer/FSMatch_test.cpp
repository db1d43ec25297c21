#include <sys/stat.h>

#include <gtest/gtest.h>

#include "syslayer/FS.h"
#include "syslayer/FSTesting.h"

namespace {

using fs_testing::TempDir;

std::vector<std::string> names(std::vector<vFilename> const& files) {
  std::vector<std::string> out;
  for (vFilename const& f : files) out.push_back(f.c_str());
  return out;
}

TEST(FSMatch, WildcardsInDirectoryParts) {
  TempDir dir;
  ASSERT_EQ(::mkdir((dir / "b").c_str(), 0755), 0);
  ASSERT_EQ(::mkdir((dir / "a").c_str(), 0755), 0);
  fs_testing::writeFile(dir / "b/x.dat", "");
  fs_testing::writeFile(dir / "a/x.dat", "");
  fs_testing::writeFile(dir / "a/y.txt", "");
  std::vector<vFilename> found;
  FS::getMatchingFiles((dir / "*/*.dat").c_str(), found);
  EXPECT_EQ(names(found), (std::vector<std::string>{dir / "a/x.dat", dir / "b/x.dat"}));
}

}  // namespace
