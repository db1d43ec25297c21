// The POSIX-like adapters on the file service: a round trip through a new
// file, and -1 with the service's status on failure.

#include "filestore/nyx/NyxFS.h"

#include <fcntl.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "syslayer/FSTesting.h"

TEST(NyxFS, RoundTripAndFailures) {
  fs_testing::TempDir dir;
  std::string const path = dir / "f.bin";
  int const fd = NYXFSopen3(path.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0644);
  ASSERT_GE(fd, 0) << NYXFSerror();
  EXPECT_EQ(10, NYXFSwrite(fd, "0123456789", 10));
  EXPECT_EQ(4, NYXFSlseek(fd, 4, SEEK_SET));
  EXPECT_EQ(6, NYXFSlseek(fd, 2, SEEK_CUR));
  EXPECT_EQ(8, NYXFSlseek(fd, -2, SEEK_END));
  char buffer[8] = {};
  EXPECT_EQ(2, NYXFSread(fd, buffer, sizeof buffer));
  EXPECT_EQ("89", std::string(buffer));
  struct stat s;
  ASSERT_EQ(0, NYXFSfstat(fd, &s));
  EXPECT_EQ(10, s.st_size);
  EXPECT_EQ(-1, NYXFSlseek(fd, -20, SEEK_CUR));
  EXPECT_EQ(0, NYXFSclose(fd));
  EXPECT_EQ("0123456789", fs_testing::readFile(path));

  EXPECT_EQ(-1, NYXFSopen2((dir / "none.bin").c_str(), O_RDONLY));
  EXPECT_NE(1, NYXFSerrno());
  EXPECT_NE(std::string(), NYXFSerror());
  EXPECT_EQ(-1, NYXFSread(99999, buffer, 1));
  EXPECT_EQ(-1, NYXFSclose(99999));
}
