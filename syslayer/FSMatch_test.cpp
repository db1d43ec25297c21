#include <sys/stat.h>
#include <unistd.h>

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

TEST(FSMatch, ExistsSeesFilesAndDirectoriesButNotDanglingLinks) {
  TempDir dir;
  fs_testing::writeFile(dir / "a.sgy", "x");
  ASSERT_EQ(::mkdir((dir / "sub").c_str(), 0755), 0);
  ASSERT_EQ(::symlink((dir / "gone").c_str(), (dir / "dangling").c_str()), 0);
  EXPECT_TRUE(FS::exists(vFilename((dir / "a.sgy").c_str())));
  EXPECT_FALSE(FS::exists(vFilename((dir / "dangling").c_str())));
  EXPECT_FALSE(FS::exists(vFilename((dir / "a.sgy/x").c_str())));
}

TEST(FSMatch, PatternsListSortedMatches) {
  TempDir dir;
  for (char const* n : {"line10.sgy", "line2.sgy", "Line3.sgy", "line1.segd", ".hidden.sgy", "line[1].sgy"})
    fs_testing::writeFile(dir / n, "");
  std::vector<vFilename> found;
  FS::getMatchingFiles((dir / "*.sgy").c_str(), found);
  EXPECT_EQ(names(found), (std::vector<std::string>{dir / "Line3.sgy", dir / "line10.sgy", dir / "line2.sgy",
                                                     dir / "line[1].sgy"}));
  FS::getMatchingFiles((dir / "line?.*").c_str(), found);
  EXPECT_EQ(names(found), (std::vector<std::string>{dir / "line1.segd", dir / "line2.sgy"}));
  // A name without wildcards lists itself when it exists.
  FS::getMatchingFiles((dir / "line2.sgy").c_str(), found);
  EXPECT_EQ(names(found), (std::vector<std::string>{dir / "line2.sgy"}));
  // No match clears the old result.
  FS::getMatchingFiles((dir / "nodir/*").c_str(), found);
  EXPECT_TRUE(found.empty());
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
