#include <fcntl.h>
#include <unistd.h>

#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "syslayer/FSService.h"
#include "syslayer/FSTesting.h"

namespace {

using fs_testing::TempDir;

std::string decode(int options) {
  char text[400];
  fs_decode_(options, text, sizeof text);
  return text;
}

std::string statusText(int status) {
  char text[200];
  fs_errmsg_(status, text, sizeof text);
  return text;
}

std::string lastFailure() {
  int status;
  char text[400];
  fs_rrc_(status, text, sizeof text);
  return text;
}

// Ends any test fault when a test ends, also by a failed assertion.
struct FaultScope {
  ~FaultScope() { FS_testfault("", FS_FAULT_NONE, 0); }
};

TEST(FSServiceWords, OptionWordsAndStatusTexts) {
  EXPECT_EQ(decode(0), "");
  EXPECT_EQ(decode(0x20003), "FS_DISK|FS_NOHEADER");
  EXPECT_EQ(decode(3076 + 0x4800000), "FS_TAPE|FS_READONLY|FS_NOLABEL|FS_DLT");
  // A drive field that is no drive's value.
  EXPECT_EQ(decode(FS_TAPE | 0x00800000), "FS_TAPE|unknown");
  EXPECT_EQ(statusText(FS_EOV), "End of volume");
  EXPECT_EQ(statusText(FS_ERRNO + ENOENT), "No such file or directory");
  EXPECT_EQ(statusText(0x7777777), "Unknown status 0x7777777");
  char small[6];
  fs_errmsg_(FS_EOF, small, sizeof small);
  EXPECT_STREQ(small, "End o");
}

TEST(FSServiceFiles, ByteFileRoundTripAndPositions) {
  TempDir dir;
  std::string const name = dir / "b.dat";
  int id = 0;
  ASSERT_EQ(FS_open(name.c_str(), FS_C | FS_CREATE, 0, 0, 0, &id), FS_GOOD);
  int put = 0;
  ASSERT_EQ(FS_write(id, "abcdefghij", 10, &put), FS_GOOD);
  EXPECT_EQ(put, 10);
  int64_t v = 0;
  ASSERT_EQ(FS_getinfo(id, FS_INFO_POSITION, &v), FS_GOOD);
  EXPECT_EQ(v, 11);
  ASSERT_EQ(FS_seekio(id, 3), FS_GOOD);
  char buf[16] = {};
  int got = 0;
  ASSERT_EQ(FS_read(id, buf, 4, &got), FS_GOOD);
  EXPECT_EQ(std::string(buf, 4), "cdef");
  // Past the end: what there was, and the end of file.
  EXPECT_EQ(FS_read(id, buf, 10, &got), FS_EOF);
  EXPECT_EQ(got, 4);
  EXPECT_EQ(std::string(buf, 4), "ghij");
  ASSERT_EQ(FS_getinfo(id, FS_INFO_NRECORDS, &v), FS_GOOD);
  EXPECT_EQ(v, 10);
  EXPECT_EQ(FS_seekio(id, 0), FS_BADARG);
  ASSERT_EQ(FS_close(id), FS_GOOD);
  EXPECT_EQ(fs_testing::readFile(name), "abcdefghij");
  // A closed id is refused and named in the last failure.
  EXPECT_EQ(FS_read(id, buf, 1, &got), FS_BADID);
  EXPECT_EQ(lastFailure(), "FS_read: Not an open file (id " + std::to_string(id) + ")");
}

TEST(FSServiceFiles, OpenFailures) {
  TempDir dir;
  int id = 5;
  EXPECT_EQ(FS_open((dir / "none").c_str(), FS_C | FS_READONLY, 0, 0, 0, &id), FS_ERRNO + ENOENT);
  EXPECT_EQ(id, 0);
  EXPECT_EQ(lastFailure(), "FS_open: No such file or directory (" + (dir / "none") + ")");
  EXPECT_EQ(FS_open(dir.path().c_str(), FS_C | FS_READONLY, 0, 0, 0, &id), FS_ERRNO + EISDIR);
  EXPECT_EQ(FS_open("", FS_C, 0, 0, 0, &id), FS_BADARG);
  // A record file needs its record length; the kind must be given.
  EXPECT_EQ(FS_open((dir / "r").c_str(), FS_DISK | FS_CREATE, 0, 0, 0, &id), FS_BADARG);
  EXPECT_EQ(FS_open((dir / "r").c_str(), FS_CREATE, 10, 0, 0, &id), FS_BADARG);
  // More room asked than any disk has.
  EXPECT_EQ(FS_open((dir / "big").c_str(), FS_C | FS_CREATE, 0, int64_t(1) << 62, 0, &id), FS_NOSPACE);
  EXPECT_FALSE(FS_exist((dir / "big").c_str()));
  // Read-only files refuse writes.
  fs_testing::writeFile(dir / "ro", "xyz");
  ASSERT_EQ(FS_open((dir / "ro").c_str(), FS_C | FS_READONLY, 0, 0, 0, &id), FS_GOOD);
  int put;
  EXPECT_EQ(FS_write(id, "q", 1, &put), FS_NOTWRITABLE);
  EXPECT_EQ(FS_close(id), FS_GOOD);
}

TEST(FSServiceFiles, RecordFileAndPartialReads) {
  TempDir dir;
  std::string const name = dir / "r.dat";
  int id = 0;
  ASSERT_EQ(FS_open(name.c_str(), FS_DISK | FS_CREATE, 8, 0, 0, &id), FS_GOOD);
  int put;
  ASSERT_EQ(FS_write(id, "rec1----rec2----rec3----", 24, &put), FS_GOOD);
  ASSERT_EQ(FS_seekio(id, 2), FS_GOOD);
  ASSERT_EQ(FS_write(id, "REC2====", 8, &put), FS_GOOD);
  int64_t v;
  ASSERT_EQ(FS_getinfo(id, FS_INFO_NRECORDS, &v), FS_GOOD);
  EXPECT_EQ(v, 3);
  ASSERT_EQ(FS_getinfo(id, FS_INFO_POSITION, &v), FS_GOOD);
  EXPECT_EQ(v, 3);
  char buf[32] = {};
  int got;
  ASSERT_EQ(FS_partialr(id, 1, 3, 1, 3, buf, &got), FS_GOOD);
  EXPECT_EQ(got, 9);
  EXPECT_EQ(std::string(buf, 9), "ec1EC2ec3");
  EXPECT_EQ(FS_partialr(id, 6, 2, 3, 4, buf, &got), FS_EOF);
  EXPECT_EQ(got, 2);
  EXPECT_EQ(FS_partialr(id, 7, 2, 1, 1, buf, &got), FS_BADARG);
  EXPECT_EQ(lastFailure(), "FS_partialr: Invalid argument to the file service (" + name + ")");
  ASSERT_EQ(FS_close(id), FS_GOOD);
  EXPECT_EQ(fs_testing::readFile(name), "rec1----REC2====rec3----");
}

TEST(FSServiceFiles, TextRecordsAreBlankPaddedLines) {
  TempDir dir;
  std::string const name = dir / "h.txt";
  fs_testing::writeFile(name, "C 1 first card\nC 2 a card longer than ten\nlast");
  int id = 0;
  ASSERT_EQ(FS_open(name.c_str(), 0x20003 | FS_READONLY, 10, 0, 0, &id), FS_GOOD);
  int64_t v;
  ASSERT_EQ(FS_getinfo(id, FS_INFO_NRECORDS, &v), FS_GOOD);
  EXPECT_EQ(v, 3);
  char buf[40];
  int got;
  ASSERT_EQ(FS_read(id, buf, 30, &got), FS_GOOD);
  EXPECT_EQ(std::string(buf, 30), "C 1 first C 2 a cardlast      ");
  EXPECT_EQ(FS_read(id, buf, 10, &got), FS_EOF);
  EXPECT_EQ(got, 0);
  ASSERT_EQ(FS_partialr(id, 2, 3, 2, 3, buf, &got), FS_GOOD);
  EXPECT_EQ(std::string(buf, 6), "2 ast ");
  ASSERT_EQ(FS_close(id), FS_GOOD);

  // Writing: trailing blanks go, each record is a line, and a write at a
  // record drops what followed.
  ASSERT_EQ(FS_open(name.c_str(), 0x20003, 80, 0, 0, &id), FS_GOOD);
  std::string card(80, ' ');
  card.replace(0, 9, "C 2 again");
  ASSERT_EQ(FS_seekio(id, 2), FS_GOOD);
  int put;
  ASSERT_EQ(FS_write(id, card.data(), 80, &put), FS_GOOD);
  ASSERT_EQ(FS_close(id), FS_GOOD);
  EXPECT_EQ(fs_testing::readFile(name), "C 1 first card\nC 2 again\n");
}

TEST(FSServiceFiles, PositionsBeyondFourGigabytes) {
  TempDir dir;
  std::string const name = dir / "sparse";
  int id;
  ASSERT_EQ(FS_open(name.c_str(), FS_C | FS_CREATE, 0, 0, 0, &id), FS_GOOD);
  int64_t const far = (int64_t(5) << 30) + 7;  // past 2^32, and past 2^31 as a signed offset
  ASSERT_EQ(FS_seekio(id, far), FS_GOOD);
  int put;
  ASSERT_EQ(FS_write(id, "tail", 4, &put), FS_GOOD);
  int64_t v;
  ASSERT_EQ(FS_getinfo(id, FS_INFO_SIZE, &v), FS_GOOD);
  EXPECT_EQ(v, far + 3);
  ASSERT_EQ(FS_seekio(id, far + 1), FS_GOOD);
  char buf[8];
  int got;
  EXPECT_EQ(FS_read(id, buf, 8, &got), FS_EOF);
  EXPECT_EQ(std::string(buf, static_cast<size_t>(got)), "ail");
  FS_close(id);
}

TEST(FSServiceFiles, CreateFlags) {
  TempDir dir;
  int id;
  // Zero-filled to the size asked; no growth allowed.
  ASSERT_EQ(FS_open((dir / "z").c_str(), FS_C | FS_CREATE | FS_ZERO | FS_NOEXTEND, 0, 6, 0, &id), FS_GOOD);
  int put;
  ASSERT_EQ(FS_write(id, "ab", 2, &put), FS_GOOD);
  EXPECT_EQ(FS_write(id, "cdefg", 5, &put), FS_NOEXTENDED);
  ASSERT_EQ(FS_close(id), FS_GOOD);
  EXPECT_EQ(fs_testing::readFile(dir / "z"), std::string("ab\0\0\0\0", 6));
  // Deleted at close unless kept.
  ASSERT_EQ(FS_open((dir / "d").c_str(), FS_C | FS_CREATE | FS_DELETE, 0, 0, 0, &id), FS_GOOD);
  EXPECT_TRUE(FS_exist((dir / "d").c_str()));
  ASSERT_EQ(FS_close(id), FS_GOOD);
  EXPECT_FALSE(FS_exist((dir / "d").c_str()));
  ASSERT_EQ(FS_open((dir / "k").c_str(), FS_C | FS_CREATE | FS_DELETE | FS_KEEP, 0, 0, 0, &id), FS_GOOD);
  ASSERT_EQ(FS_close(id), FS_GOOD);
  EXPECT_TRUE(FS_exist((dir / "k").c_str()));
  // Create replaces what was there.
  fs_testing::writeFile(dir / "old", "old contents");
  ASSERT_EQ(FS_open((dir / "old").c_str(), FS_C | FS_CREATE, 0, 0, 0, &id), FS_GOOD);
  ASSERT_EQ(FS_close(id), FS_GOOD);
  EXPECT_EQ(fs_testing::readFile(dir / "old"), "");
}

TEST(FSServiceFiles, FailureModeOneIsFatalAtOnce) {
  TempDir dir;
  struct ModeScope {
    ~ModeScope() { FS_sfailmode(0); }
  } restore;
  FS_sfailmode(1);
  int id;
  std::string const name = dir / "missing";
  fs_testing::expectFailure([&] { FS_open(name.c_str(), FS_C | FS_READONLY, 0, 0, 0, &id); }, "FS_terminate",
                            name + ": No such file or directory");
}

TEST(FSServiceLocks, LocksConflictBetweenOpensAndReadLocksSwitch) {
  TempDir dir;
  std::string const name = dir / "l";
  fs_testing::writeFile(name, "data");
  ASSERT_EQ(FS_getrlflag(), 1);
  int reader, writer, other;
  ASSERT_EQ(FS_open(name.c_str(), FS_C | FS_READONLY, 0, 0, 0, &reader), FS_GOOD);
  int flag, status;
  fs_islocked_(name.c_str(), FS_WRITELOCK, flag, status);
  EXPECT_EQ(flag, 1);  // the reader's read lock keeps writers off
  ASSERT_EQ(FS_open(name.c_str(), FS_C, 0, 0, 0, &writer), FS_GOOD);
  EXPECT_EQ(FS_lockit(writer), FS_LOCKED);
  ASSERT_EQ(FS_close(reader), FS_GOOD);
  ASSERT_EQ(FS_lockit(writer), FS_GOOD);
  fs_islocked_(name.c_str(), FS_READLOCK, flag, status);
  EXPECT_EQ(flag, 1);
  // A reader cannot open a file being written under a lock...
  EXPECT_EQ(FS_open(name.c_str(), FS_C | FS_READONLY, 0, 0, 0, &other), FS_LOCKED);
  // ...unless read locks are off.
  FS_readlocks(0);
  EXPECT_EQ(FS_open(name.c_str(), FS_C | FS_READONLY, 0, 0, 0, &other), FS_GOOD);
  FS_readlocks(1);
  EXPECT_EQ(FS_close(other), FS_GOOD);
  ASSERT_EQ(FS_unlockit(writer), FS_GOOD);
  // FS_LOCK at open, and the lock goes with the close.
  int locked;
  ASSERT_EQ(FS_open(name.c_str(), FS_C | FS_LOCK, 0, 0, 0, &locked), FS_GOOD);
  EXPECT_EQ(FS_open(name.c_str(), FS_C | FS_LOCK, 0, 0, 0, &other), FS_LOCKED);
  // A create refused by a lock leaves the locked file as it was.
  EXPECT_EQ(FS_open(name.c_str(), FS_C | FS_CREATE | FS_LOCK, 0, 0, 0, &other), FS_LOCKED);
  EXPECT_EQ(fs_testing::readFile(name), "data");
  ASSERT_EQ(FS_close(locked), FS_GOOD);
  ASSERT_EQ(FS_close(writer), FS_GOOD);
  fs_islocked_(name.c_str(), FS_WRITELOCK, flag, status);
  EXPECT_EQ(flag, 0);
  fs_islocked_((dir / "none").c_str(), FS_READLOCK, flag, status);
  EXPECT_EQ(status, FS_NOTEXIST);
}

TEST(FSServiceTree, MkdirRmMvCp) {
  TempDir dir;
  std::string const deep = dir / "a/b/c";
  EXPECT_EQ(FS_mkdir(deep.c_str(), 0), FS_ERRNO + ENOENT);
  ASSERT_EQ(FS_mkdir(deep.c_str(), 1), FS_GOOD);
  EXPECT_EQ(FS_mkdir(deep.c_str(), 0), FS_ERRNO + EEXIST);
  fs_testing::writeFile(dir / "a/b/c/f", "file");
  int kind, mode, kb, status;
  fs_lsinfo_((dir / "a/b/c/f").c_str(), kind, mode, kb, status);
  EXPECT_EQ(status, FS_GOOD);
  EXPECT_EQ(kind, 1);
  EXPECT_EQ(kb, 1);
  fs_lsinfo_((dir / "zz").c_str(), kind, mode, kb, status);
  EXPECT_EQ(status, FS_NOTEXIST);
  EXPECT_EQ(kind, 0);

  // cp and mv keep an existing target unless told to replace it.
  fs_testing::writeFile(dir / "g", "other");
  EXPECT_EQ(FS_cp(0, (dir / "a/b/c/f").c_str(), (dir / "g").c_str()), FS_ERRNO + EEXIST);
  ASSERT_EQ(FS_cp(FS_RMFILE, (dir / "a/b/c/f").c_str(), (dir / "g").c_str()), FS_GOOD);
  EXPECT_EQ(fs_testing::readFile(dir / "g"), "file");
  EXPECT_EQ(FS_cp(FS_RMFILE, (dir / "a").c_str(), (dir / "h").c_str()), FS_ERRNO + EISDIR);
  ASSERT_EQ(FS_mv(0, (dir / "g").c_str(), (dir / "h").c_str()), FS_GOOD);
  EXPECT_FALSE(FS_exist((dir / "g").c_str()));
  EXPECT_EQ(fs_testing::readFile(dir / "h"), "file");
  EXPECT_EQ(FS_mv(FS_RMFILE, (dir / "h").c_str(), (dir / "a").c_str()), FS_ERRNO + EEXIST);
  ASSERT_EQ(FS_mv(FS_RMTREE, (dir / "h").c_str(), (dir / "a").c_str()), FS_GOOD);
  EXPECT_EQ(fs_testing::readFile(dir / "a"), "file");

  // rm: files, empty directories, trees; missing names only when allowed.
  ASSERT_EQ(FS_mkdir(deep.c_str(), 1), FS_ERRNO + ENOTDIR);
  ASSERT_EQ(FS_mkdir((dir / "t/u").c_str(), 1), FS_GOOD);
  fs_testing::writeFile(dir / "t/u/f", "");
  EXPECT_EQ(FS_rm(FS_RMFILE, (dir / "t").c_str()), FS_ERRNO + ENOTEMPTY);
  ASSERT_EQ(FS_rm(FS_RMTREE, (dir / "t").c_str()), FS_GOOD);
  EXPECT_EQ(FS_rm(FS_RMFILE, (dir / "t").c_str()), FS_NOTEXIST);
  EXPECT_EQ(FS_rm(FS_RMFILE | FS_RMMISSINGOK, (dir / "t").c_str()), FS_GOOD);
  EXPECT_EQ(FS_rm(0, (dir / "a").c_str()), FS_BADARG);
  ASSERT_EQ(FS_rm(FS_RMFILE, (dir / "a").c_str()), FS_GOOD);
}

TEST(FSServiceFaults, ShortFailedAndTruncatedReads) {
  TempDir dir;
  FaultScope scope;
  std::string const name = dir / "f";
  fs_testing::writeFile(name, "0123456789");
  int id;
  ASSERT_EQ(FS_open(name.c_str(), FS_C | FS_READONLY, 0, 0, 0, &id), FS_GOOD);
  char buf[16];
  int got;
  int64_t v;

  FS_testfault(name.c_str(), FS_FAULT_SHORTREAD, 3);
  EXPECT_EQ(FS_read(id, buf, 10, &got), FS_GOOD);
  EXPECT_EQ(std::string(buf, static_cast<size_t>(got)), "012");
  // Partial reads go on until each part is whole.
  int records;
  ASSERT_EQ(FS_open(name.c_str(), FS_DISK | FS_READONLY, 5, 0, 0, &records), FS_GOOD);
  EXPECT_EQ(FS_partialr(records, 1, 4, 1, 2, buf, &got), FS_GOOD);
  EXPECT_EQ(std::string(buf, static_cast<size_t>(got)), "12346789");
  FS_close(records);

  FS_testfault(name.c_str(), FS_FAULT_FAILREAD, 5);
  EXPECT_EQ(FS_read(id, buf, 10, &got), FS_ERRNO + EIO);
  EXPECT_EQ(std::string(buf, static_cast<size_t>(got)), "34");
  EXPECT_EQ(FS_read(id, buf, 1, &got), FS_ERRNO + EIO);
  EXPECT_EQ(got, 0);

  FS_testfault(name.c_str(), FS_FAULT_TRUNCATE, 7);
  ASSERT_EQ(FS_getinfo(id, FS_INFO_SIZE, &v), FS_GOOD);
  EXPECT_EQ(v, 7);
  ASSERT_EQ(FS_seekio(id, 6), FS_GOOD);
  EXPECT_EQ(FS_read(id, buf, 4, &got), FS_EOF);
  EXPECT_EQ(std::string(buf, static_cast<size_t>(got)), "56");

  FS_testfault("", FS_FAULT_NONE, 0);
  ASSERT_EQ(FS_seekio(id, 1), FS_GOOD);
  EXPECT_EQ(FS_read(id, buf, 10, &got), FS_GOOD);
  EXPECT_EQ(got, 10);
  FS_close(id);
}

}  // namespace
