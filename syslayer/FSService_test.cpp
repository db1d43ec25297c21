#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include <gtest/gtest.h>

#include "syslayer/FSService.h"
#include "syslayer/FSTesting.h"

namespace {

using fs_testing::lastFailure;
using fs_testing::TempDir;

int64_t info(int id, int item) {
  int64_t v = -1;
  EXPECT_EQ(FS_getinfo(id, item, &v), FS_GOOD);
  return v;
}

TEST(FSServiceWords, OptionWordsAndStatusTexts) {
  char text[400];
  fs_decode_(3076 + 0x4800000, text, sizeof text);
  EXPECT_STREQ(text, "FS_TAPE|FS_READONLY|FS_NOLABEL|FS_DLT");
  fs_errmsg_(FS_ERRNO + ENOENT, text, sizeof text);
  EXPECT_STREQ(text, "No such file or directory");
  fs_errmsg_(0x7777777, text, sizeof text);
  EXPECT_STREQ(text, "Unknown status 0x7777777");
  fs_errmsg_(FS_EOF, text, 6);
  EXPECT_STREQ(text, "End o");
}

TEST(FSServiceFiles, ByteFileRoundTripAndPositions) {
  TempDir dir;
  std::string const name = dir / "b.dat";
  int id = 0, put = 0, got = 0;
  ASSERT_EQ(FS_open(name.c_str(), FS_C | FS_CREATE, 0, 0, 0, &id), FS_GOOD);
  ASSERT_EQ(FS_write(id, "abcdefghij", 10, &put), FS_GOOD);
  EXPECT_EQ(FS_seekio(id, 0), FS_BADARG);
  char buf[16] = {};
  ASSERT_EQ(FS_close(id), FS_GOOD);
  EXPECT_EQ(fs_testing::readFile(name), "abcdefghij");
  EXPECT_EQ(FS_read(id, buf, 1, &got), FS_BADID);
  EXPECT_EQ(lastFailure(), "FS_read: Not an open file (id " + std::to_string(id) + ")");
}

TEST(FSServiceFiles, OpenFailures) {
  TempDir dir;
  int id = 5, put;
  EXPECT_EQ(FS_open((dir / "none").c_str(), FS_C | FS_READONLY, 0, 0, 0, &id), FS_ERRNO + ENOENT);
  EXPECT_EQ(id, 0);
  EXPECT_EQ(lastFailure(), "FS_open: No such file or directory (" + (dir / "none") + ")");
  // A record file needs its record length; the kind must be given.
  EXPECT_EQ(FS_open((dir / "r").c_str(), FS_DISK | FS_CREATE, 0, 0, 0, &id), FS_BADARG);
  EXPECT_EQ(FS_open((dir / "r").c_str(), FS_CREATE, 10, 0, 0, &id), FS_BADARG);
  EXPECT_EQ(FS_open((dir / "big").c_str(), FS_C | FS_CREATE, 0, int64_t(1) << 62, 0, &id), FS_NOSPACE);
  EXPECT_FALSE(FS_exist((dir / "big").c_str()));
  fs_testing::writeFile(dir / "ro", "xyz");
  ASSERT_EQ(FS_open((dir / "ro").c_str(), FS_C | FS_READONLY, 0, 0, 0, &id), FS_GOOD);
  EXPECT_EQ(FS_write(id, "q", 1, &put), FS_NOTWRITABLE);
  EXPECT_EQ(FS_close(id), FS_GOOD);
  // Failure mode 1 is fatal at once.
  struct ModeScope {
    ~ModeScope() { FS_sfailmode(0); }
  } restore;
  FS_sfailmode(1);
  std::string const name = dir / "missing";
  fs_testing::expectFailure([&] { FS_open(name.c_str(), FS_C | FS_READONLY, 0, 0, 0, &id); }, "FS_terminate",
                            name + ": No such file or directory");
}

TEST(FSServiceFiles, RecordAndTextRecordFiles) {
  TempDir dir;
  std::string const name = dir / "r.dat";
  int id = 0, put, got;
  char buf[40] = {};
  ASSERT_EQ(FS_open(name.c_str(), FS_DISK | FS_CREATE, 8, 0, 0, &id), FS_GOOD);
  ASSERT_EQ(FS_write(id, "rec1----rec2----rec3----", 24, &put), FS_GOOD);
  ASSERT_EQ(FS_seekio(id, 2), FS_GOOD);
  ASSERT_EQ(FS_write(id, "REC2====", 8, &put), FS_GOOD);
  EXPECT_EQ(info(id, FS_INFO_NRECORDS), 3);
  ASSERT_EQ(FS_partialr(id, 1, 3, 1, 3, buf, &got), FS_GOOD);
  EXPECT_EQ(std::string(buf, static_cast<size_t>(got)), "ec1EC2ec3");
  EXPECT_EQ(FS_partialr(id, 6, 2, 3, 4, buf, &got), FS_EOF);
  EXPECT_EQ(got, 2);
  EXPECT_EQ(FS_partialr(id, 7, 2, 1, 1, buf, &got), FS_BADARG);
  EXPECT_EQ(lastFailure(), "FS_partialr: Invalid argument to the file service (" + name + ")");
  ASSERT_EQ(FS_close(id), FS_GOOD);
  EXPECT_EQ(fs_testing::readFile(name), "rec1----REC2====rec3----");

  // Text records are blank-padded lines.
  std::string const text = dir / "h.txt";
  fs_testing::writeFile(text, "C 1 first card\nC 2 a card longer than ten\nlast");
  ASSERT_EQ(FS_open(text.c_str(), 0x20003 | FS_READONLY, 10, 0, 0, &id), FS_GOOD);
  EXPECT_EQ(info(id, FS_INFO_NRECORDS), 3);
  ASSERT_EQ(FS_read(id, buf, 30, &got), FS_GOOD);
  EXPECT_EQ(std::string(buf, 30), "C 1 first C 2 a cardlast      ");
  ASSERT_EQ(FS_partialr(id, 2, 3, 2, 3, buf, &got), FS_GOOD);
  EXPECT_EQ(std::string(buf, 6), "2 ast ");
  ASSERT_EQ(FS_close(id), FS_GOOD);
  // Writing: trailing blanks go, and a write at a record drops what followed.
  ASSERT_EQ(FS_open(text.c_str(), 0x20003, 80, 0, 0, &id), FS_GOOD);
  std::string card(80, ' ');
  card.replace(0, 9, "C 2 again");
  ASSERT_EQ(FS_seekio(id, 2), FS_GOOD);
  ASSERT_EQ(FS_write(id, card.data(), 80, &put), FS_GOOD);
  ASSERT_EQ(FS_close(id), FS_GOOD);
  EXPECT_EQ(fs_testing::readFile(text), "C 1 first card\nC 2 again\n");
}

TEST(FSServiceFiles, PositionsBeyondFourGigabytesAndCreateFlags) {
  TempDir dir;
  int id, put, got;
  ASSERT_EQ(FS_open((dir / "sparse").c_str(), FS_C | FS_CREATE, 0, 0, 0, &id), FS_GOOD);
  int64_t const far = (int64_t(5) << 30) + 7;  // past 2^32, and past 2^31 as a signed offset
  ASSERT_EQ(FS_seekio(id, far), FS_GOOD);
  ASSERT_EQ(FS_write(id, "tail", 4, &put), FS_GOOD);
  EXPECT_EQ(info(id, FS_INFO_SIZE), far + 3);
  ASSERT_EQ(FS_seekio(id, far + 1), FS_GOOD);
  char buf[8];
  EXPECT_EQ(FS_read(id, buf, 8, &got), FS_EOF);
  EXPECT_EQ(std::string(buf, static_cast<size_t>(got)), "ail");
  FS_close(id);

  // Zero-filled to the size asked; no growth allowed.
  ASSERT_EQ(FS_open((dir / "z").c_str(), FS_C | FS_CREATE | FS_ZERO | FS_NOEXTEND, 0, 6, 0, &id), FS_GOOD);
  ASSERT_EQ(FS_write(id, "ab", 2, &put), FS_GOOD);
  EXPECT_EQ(FS_write(id, "cdefg", 5, &put), FS_NOEXTENDED);
  ASSERT_EQ(FS_close(id), FS_GOOD);
  EXPECT_EQ(fs_testing::readFile(dir / "z"), std::string("ab\0\0\0\0", 6));
}

TEST(FSServiceLocks, LocksConflictBetweenOpensAndReadLocksSwitch) {
  TempDir dir;
  std::string const name = dir / "l";
  fs_testing::writeFile(name, "data");
  int reader, writer, other, flag, status;
  ASSERT_EQ(FS_open(name.c_str(), FS_C | FS_READONLY, 0, 0, 0, &reader), FS_GOOD);
  ASSERT_EQ(FS_open(name.c_str(), FS_C, 0, 0, 0, &writer), FS_GOOD);
  EXPECT_EQ(FS_lockit(writer), FS_LOCKED);  // the reader's read lock keeps writers off
  ASSERT_EQ(FS_close(reader), FS_GOOD);
  ASSERT_EQ(FS_lockit(writer), FS_GOOD);
  fs_islocked_(name.c_str(), FS_READLOCK, flag, status);
  EXPECT_EQ(flag, 1);
  EXPECT_EQ(FS_open(name.c_str(), FS_C | FS_READONLY, 0, 0, 0, &other), FS_LOCKED);
  FS_readlocks(0);
  EXPECT_EQ(FS_open(name.c_str(), FS_C | FS_READONLY, 0, 0, 0, &other), FS_GOOD);
  FS_readlocks(1);
  EXPECT_EQ(FS_close(other), FS_GOOD);
  // A create refused by a lock leaves the locked file as it was.
  EXPECT_EQ(FS_open(name.c_str(), FS_C | FS_CREATE | FS_LOCK, 0, 0, 0, &other), FS_LOCKED);
  EXPECT_EQ(fs_testing::readFile(name), "data");
  ASSERT_EQ(FS_close(writer), FS_GOOD);
  fs_islocked_(name.c_str(), FS_WRITELOCK, flag, status);
  EXPECT_EQ(flag, 0);
  fs_islocked_((dir / "none").c_str(), FS_READLOCK, flag, status);
  EXPECT_EQ(status, FS_NOTEXIST);
  int a, b;
  ASSERT_EQ(FS_open(name.c_str(), FS_C, 0, 0, 0, &a), FS_GOOD);
  ASSERT_EQ(FS_open(name.c_str(), FS_C, 0, 0, 0, &b), FS_GOOD);
  ASSERT_EQ(FS_testlock(b, FS_WRITELOCK, &flag), FS_GOOD);
  EXPECT_EQ(flag, 0);
  ASSERT_EQ(FS_lockit(a), FS_GOOD);
  ASSERT_EQ(FS_testlock(b, FS_READLOCK, &flag), FS_GOOD);
  EXPECT_EQ(flag, 1);
  EXPECT_EQ(FS_testlock(a, 3, &flag), FS_BADARG);
  FS_close(a);
  FS_close(b);
}

TEST(FSServiceTree, MkdirRmMvCp) {
  TempDir dir;
  std::string const deep = dir / "a/b/c";
  EXPECT_EQ(FS_mkdir(deep.c_str(), 0), FS_ERRNO + ENOENT);
  ASSERT_EQ(FS_mkdir(deep.c_str(), 1), FS_GOOD);
  fs_testing::writeFile(dir / "a/b/c/f", "file");
  int kind, mode, kb, status;
  fs_lsinfo_((dir / "a/b/c/f").c_str(), kind, mode, kb, status);
  EXPECT_EQ(kind * 10 + kb, 11);
  // cp and mv keep an existing target unless told to replace it.
  fs_testing::writeFile(dir / "g", "other");
  EXPECT_EQ(FS_cp(0, (dir / "a/b/c/f").c_str(), (dir / "g").c_str()), FS_ERRNO + EEXIST);
  ASSERT_EQ(FS_cp(FS_RMFILE, (dir / "a/b/c/f").c_str(), (dir / "g").c_str()), FS_GOOD);
  ASSERT_EQ(FS_mv(0, (dir / "g").c_str(), (dir / "h").c_str()), FS_GOOD);
  EXPECT_FALSE(FS_exist((dir / "g").c_str()));
  EXPECT_EQ(FS_mv(FS_RMFILE, (dir / "h").c_str(), (dir / "a").c_str()), FS_ERRNO + EEXIST);
  ASSERT_EQ(FS_mv(FS_RMTREE, (dir / "h").c_str(), (dir / "a").c_str()), FS_GOOD);
  EXPECT_EQ(fs_testing::readFile(dir / "a"), "file");
  // rm: empty directories, trees; missing names only when allowed.
  ASSERT_EQ(FS_mkdir((dir / "t/u").c_str(), 1), FS_GOOD);
  fs_testing::writeFile(dir / "t/u/f", "");
  EXPECT_EQ(FS_rm(FS_RMFILE, (dir / "t").c_str()), FS_ERRNO + ENOTEMPTY);
  ASSERT_EQ(FS_rm(FS_RMTREE, (dir / "t").c_str()), FS_GOOD);
  EXPECT_EQ(FS_rm(FS_RMFILE, (dir / "t").c_str()), FS_NOTEXIST);
  EXPECT_EQ(FS_rm(FS_RMFILE | FS_RMMISSINGOK, (dir / "t").c_str()), FS_GOOD);
  EXPECT_EQ(FS_rm(0, (dir / "a").c_str()), FS_BADARG);
}

TEST(FSServiceMisc, SizesAndBytePositions) {
  TempDir dir;
  std::string const name = dir / "r";
  int id;
  ASSERT_EQ(FS_open(name.c_str(), FS_DISK | FS_CREATE, 4, 0, 0, &id), FS_GOOD);
  int put;
  ASSERT_EQ(FS_write(id, "aaaabbbbcccc", 12, &put), FS_GOOD);
  int64_t b = 0;
  ASSERT_EQ(FS_bpos(id, &b), FS_GOOD);
  EXPECT_EQ(b, 13);  // record 4 starts at byte 13
  int recl = 0;
  ASSERT_EQ(FS_rsize(id, &recl), FS_GOOD);
  EXPECT_EQ(recl, 4);
  // zeroex only grows; setsize cuts too.
  ASSERT_EQ(FS_zeroex(id, 16), FS_GOOD);
  EXPECT_EQ(fs_testing::readFile(name), std::string("aaaabbbbcccc\0\0\0\0", 16));
  ASSERT_EQ(FS_setsize(id, 5), FS_GOOD);
  EXPECT_EQ(fs_testing::readFile(name), "aaaab");
  ASSERT_EQ(FS_seekio(id, 2), FS_GOOD);
  ASSERT_EQ(FS_trunc(id), FS_GOOD);
  EXPECT_EQ(fs_testing::readFile(name), "aaaa");
  ASSERT_EQ(FS_close(id), FS_GOOD);

  ASSERT_EQ(FS_open(name.c_str(), FS_DISK | FS_READONLY, 4, 0, 0, &id), FS_GOOD);
  EXPECT_EQ(FS_setsize(id, 0), FS_NOTWRITABLE);
  FsStat st;
  ASSERT_EQ(FS_fstat(id, &st), FS_GOOD);
  EXPECT_EQ(st.size, 4);
  ASSERT_EQ(FS_close(id), FS_GOOD);

  fs_testing::writeFile(dir / "t.txt", "one\ntwo\n");
  ASSERT_EQ(FS_open((dir / "t.txt").c_str(), 0x20003 | FS_READONLY, 80, 0, 0, &id), FS_GOOD);
  ASSERT_EQ(FS_seekio(id, 3), FS_GOOD);
  ASSERT_EQ(FS_bpos(id, &b), FS_GOOD);
  EXPECT_EQ(b, 9);
  ASSERT_EQ(FS_close(id), FS_GOOD);
}

TEST(FSServiceMisc, NamesOptionsAndDirectories) {
  TempDir dir;
  EXPECT_EQ(FS_checkdir(dir.path().c_str()), FS_GOOD);
  EXPECT_EQ(FS_checkdir((dir / "none").c_str()), FS_NOTEXIST);
  fs_testing::writeFile(dir / "f", "");
  EXPECT_EQ(FS_checkdir((dir / "f").c_str()), FS_ERRNO + ENOTDIR);
  int64_t total = 0, free = -1;
  ASSERT_EQ(FS_totspace(dir.path().c_str(), &total, &free), FS_GOOD);
  EXPECT_GT(total, 0);
  EXPECT_LE(free, total);

  EXPECT_EQ(FS_isremote("node7:/data/line1.sgy"), 1);
  EXPECT_EQ(FS_isremote("/data/a:b.sgy"), 0);

  EXPECT_EQ(FS_chkname("bad\nname"), FS_BADARG);
  EXPECT_EQ(FS_chkname(("/d/" + std::string(256, 'x')).c_str()), FS_BADARG);

  EXPECT_EQ(FS_chkopts(FS_CREATE), FS_BADARG);  // no kind of file
  EXPECT_EQ(FS_chkopts(FS_TAPE | 0x00080000), FS_BADARG);
  char text[200];
  EXPECT_EQ(FS_rrc(text, sizeof text), FS_BADARG);
  EXPECT_EQ(std::string(text), "FS_chkopts: Invalid argument to the file service (FS_TAPE|unknown)");
}

}  // namespace
