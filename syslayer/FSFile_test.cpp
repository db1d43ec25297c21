#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "syslayer/FS.h"
#include "syslayer/FSService.h"
#include "syslayer/FSTesting.h"

namespace {

using fs_testing::expectFailure;
using fs_testing::TempDir;

int64_t info(FS::iFile const& f, int item) {
  int64_t v = -1;
  int status;
  fs_getinfo_(f.getId(), item, v, status);
  return v;
}

std::string pattern(size_t n) {
  std::string s(n, '\0');
  for (size_t i = 0; i < n; ++i) s[i] = static_cast<char>('a' + (i * 7 + i / 26) % 26);
  return s;
}

TEST(FSFile, ErrorStaysUntilClearedThenTheFileGoesOn) {
  TempDir dir;
  EXPECT_EQ(FS::open((dir / "missing.sgy").c_str(), FS::ByteFile).getStatus(), FS_ERRNO + ENOENT);
  std::string const name = dir / "short";
  fs_testing::writeFile(name, "0123456789");
  FS::iFile f = FS::open(name.c_str(), FS::ByteFile);
  char buf[32];
  EXPECT_EQ(f.read(1, buf, 32), 10);
  EXPECT_EQ(f.getStatus(), FS_EOF);
  expectFailure([&] { f.getNRecords(); }, "FS::iFile::getNRecords",
                "File-:" + name + " Last error (End of file) has not been cleared. FS::iFile::getNRecords");
  f.clear();
  EXPECT_EQ(f.read(3, buf, 2), 2);
  EXPECT_EQ(std::string(buf, 2), "23");
  // Cut short while open: the read ends there.
  fs_testing::Fault truncated(name, FS_FAULT_TRUNCATE, 5);
  EXPECT_EQ(f.read(3, buf, 10), 3);
  EXPECT_EQ(f.getStatus(), FS_EOF);
  f.clear();
  f.close();
}

TEST(FSFile, ReadsSeekOnlyWhenMovedAndSplitAtTheHighWaterMark) {
  TempDir dir;
  std::string const data = pattern(4500);
  fs_testing::writeFile(dir / "f", data);
  FS::iFile f = FS::open((dir / "f").c_str(), FS::ByteFile);
  char small[10];
  ASSERT_EQ(f.read(1, small, 10), 10);  // already at 1
  ASSERT_EQ(f.read(0, small, 10), 10);  // 0: go on
  EXPECT_EQ(info(f, FS_INFO_NSEEKS), 0);
  ASSERT_EQ(f.read(51, small, 10), 10);
  EXPECT_EQ(info(f, FS_INFO_NSEEKS), 1);
  EXPECT_EQ(std::string(small, 10), data.substr(50, 10));
  EXPECT_EQ(f.getPosition(), 61);
  f.close();

  long long const old = FS::iFile::getMaxServiceRead();
  FS::iFile::setMaxServiceRead(1000);
  FS::iFile g = FS::open((dir / "f").c_str(), FS::ByteFile);
  std::vector<char> buf(5000);
  EXPECT_EQ(g.read(1, buf.data(), 4500), 4500);
  EXPECT_EQ(info(g, FS_INFO_NREADS), 5);
  EXPECT_EQ(std::string(buf.data(), 4500), data);
  // Past the end the split stops at the first bad status.
  EXPECT_EQ(g.read(4001, buf.data(), 5000), 500);
  EXPECT_EQ(info(g, FS_INFO_NREADS), 6);
  FS::iFile::setMaxServiceRead(old);
  g.clear();
  g.close();
}

TEST(FSFile, CReadAndCWriteAcrossRecordsOwnerAndOptions) {
  TempDir dir;
  std::string const name = dir / "c.off";
  std::string expected = pattern(100);  // 10 records of 10
  FS::ioCFile w = FS::ccreate(name.c_str(), FS::RecordFile, 0, 10);
  ASSERT_EQ(w.cwrite(1, &expected[0], 100), 100);
  std::string patch = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
  ASSERT_EQ(w.cwrite(4, &patch[0], 3), 3);
  expected.replace(3, 3, patch.substr(0, 3));
  ASSERT_EQ(w.cwrite(17, &patch[0], 26), 26);
  expected.replace(16, 26, patch);
  // Past the end: the file grows by whole records, zero-filled.
  ASSERT_EQ(w.cwrite(103, &patch[0], 5), 5);
  expected += std::string(2, '\0') + patch.substr(0, 5) + std::string(3, '\0');
  w.close();
  EXPECT_EQ(fs_testing::readFile(name), expected);

  FS::iCFile r = FS::copen(name.c_str(), FS::RecordFile, 0, 10);
  std::vector<char> buf(200);
  for (auto const& [pos, n] : std::vector<std::pair<int, int>>{{4, 3}, {15, 30}}) {
    ASSERT_EQ(r.cread(pos, buf.data(), n), n) << pos;
    EXPECT_EQ(std::string(buf.data(), static_cast<size_t>(n)), expected.substr(static_cast<size_t>(pos - 1), n));
  }
  EXPECT_EQ(r.cread(105, buf.data(), 20), 6);
  EXPECT_EQ(r.getStatus(), FS_EOF);
  r.clear();
  r.close();

  // A file whose last record is cut short keeps those bytes.
  fs_testing::writeFile(dir / "cut", "0123456789abcdefghijKLMNO");
  FS::ioCFile c = FS::cupdate((dir / "cut").c_str(), FS::RecordFile, 10);
  ASSERT_EQ(c.cwrite(27, &patch[0], 1), 1);
  c.close();
  EXPECT_EQ(fs_testing::readFile(dir / "cut"), std::string("0123456789abcdefghijKLMNO\0A\0\0\0", 30));
  // Record files through the file objects are the service's (tested there);
  // their owner, and options an open adds to the type.
  FS::ioFile o = FS::create((dir / "r.off").c_str(), FS::RecordFile, 0, 16);
  EXPECT_EQ(o.write(1, pattern(64).data(), 64), 64);
  struct passwd* pw = getpwuid(geteuid());
  ASSERT_NE(pw, nullptr);
  EXPECT_EQ(o.getOwner(), vString(pw->pw_name));
  o.close();
  FS::ioFile u = FS::update((dir / "r.off").c_str(), FS::ByteFile, FS_NOEXTEND);
  EXPECT_EQ(info(u, FS_INFO_OPTIONS), FS_C | FS_NOEXTEND);
  u.close();
}

TEST(FSFunctions, SpaceScratchTemporaryNamesAndWildcards) {
  TempDir dir;
  fs_testing::Env scratch("FS_SCRATCHDIR", dir.path().c_str());
  EXPECT_EQ(FS::getSpace(FS::ScratchArea, 1), vString(dir.path().c_str()));
  expectFailure([] { FS::getSpace(FS::ScratchArea, 0x7FFFFFFF); }, "FS::getSpace",
                "No directory with 2147483647 MB free in disk area 0x100000: Not enough free space");
  vFilename const t1 = FS::getTempFilename("seg");
  EXPECT_NE(t1, FS::getTempFilename("seg"));
  EXPECT_EQ(t1.getDirectory(), vString(dir.path().c_str()));
  // Wildcards in directory parts.
  ASSERT_EQ(::mkdir((dir / "b").c_str(), 0755), 0);
  ASSERT_EQ(::mkdir((dir / "a").c_str(), 0755), 0);
  fs_testing::writeFile(dir / "b/x.dat", "");
  fs_testing::writeFile(dir / "a/x.dat", "");
  fs_testing::writeFile(dir / "a/y.txt", "");
  std::vector<vFilename> found;
  FS::getMatchingFiles((dir / "*/*.dat").c_str(), found);
  std::vector<std::string> names;
  for (vFilename const& f : found) names.push_back(f.c_str());
  EXPECT_EQ(names, (std::vector<std::string>{dir / "a/x.dat", dir / "b/x.dat"}));
}

}  // namespace
