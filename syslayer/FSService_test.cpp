#include <dirent.h>
#include <fcntl.h>
#include <sched.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/Message.h"
#include "syslayer/FS.h"
#include "syslayer/FSService.h"
#include "syslayer/FSTesting.h"

namespace {

using fs_testing::expectFailure;
using fs_testing::Fault;
using fs_testing::lastFailure;
using fs_testing::TempDir;
using fs_testing::writeFile;

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
  writeFile(dir / "ro", "xyz");
  ASSERT_EQ(FS_open((dir / "ro").c_str(), FS_C | FS_READONLY, 0, 0, 0, &id), FS_GOOD);
  EXPECT_EQ(FS_write(id, "q", 1, &put), FS_NOTWRITABLE);
  EXPECT_EQ(FS_close(id), FS_GOOD);
  // Failure mode 1 is fatal at once.
  struct ModeScope {
    ~ModeScope() { FS_sfailmode(0); }
  } restore;
  FS_sfailmode(1);
  std::string const name = dir / "missing";
  expectFailure([&] { FS_open(name.c_str(), FS_C | FS_READONLY, 0, 0, 0, &id); }, "FS_terminate",
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
  writeFile(text, "C 1 first card\nC 2 a card longer than ten\nlast");
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
  writeFile(name, "data");
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
  writeFile(dir / "a/b/c/f", "file");
  int kind, mode, kb, status;
  fs_lsinfo_((dir / "a/b/c/f").c_str(), kind, mode, kb, status);
  EXPECT_EQ(kind * 10 + kb, 11);
  // cp and mv keep an existing target unless told to replace it.
  writeFile(dir / "g", "other");
  EXPECT_EQ(FS_cp(0, (dir / "a/b/c/f").c_str(), (dir / "g").c_str()), FS_ERRNO + EEXIST);
  ASSERT_EQ(FS_cp(FS_RMFILE, (dir / "a/b/c/f").c_str(), (dir / "g").c_str()), FS_GOOD);
  ASSERT_EQ(FS_mv(0, (dir / "g").c_str(), (dir / "h").c_str()), FS_GOOD);
  EXPECT_FALSE(FS_exist((dir / "g").c_str()));
  EXPECT_EQ(FS_mv(FS_RMFILE, (dir / "h").c_str(), (dir / "a").c_str()), FS_ERRNO + EEXIST);
  ASSERT_EQ(FS_mv(FS_RMTREE, (dir / "h").c_str(), (dir / "a").c_str()), FS_GOOD);
  EXPECT_EQ(fs_testing::readFile(dir / "a"), "file");
  // rm: empty directories, trees; missing names only when allowed.
  ASSERT_EQ(FS_mkdir((dir / "t/u").c_str(), 1), FS_GOOD);
  writeFile(dir / "t/u/f", "");
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

  writeFile(dir / "t.txt", "one\ntwo\n");
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
  writeFile(dir / "f", "");
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

int openDescriptors() {
  int n = 0;
  if (DIR* d = ::opendir("/proc/self/fd")) {
    while (::readdir(d)) ++n;
    ::closedir(d);
  }
  return n;
}

TEST(FSVolumes, HeaderVolumesAndMovingOn) {
  TempDir dir;
  std::string const set = dir / "set";
  std::string const v2 = dir / "v2";
  char const* names[] = {"v1", v2.c_str()};
  int status, exists, n, id, got;
  fs_writemvh_(set.c_str(), names, 2, status);
  ASSERT_EQ(status, FS_GOOD);
  EXPECT_EQ(fs_testing::readFile(set), "RONDO MULTIVOLUME 2\nv1\n" + v2 + "\n");
  writeFile(dir / "v1", "0123456789");
  fs_mvexist_(set.c_str(), exists, n, status);
  EXPECT_EQ(exists * 10 + n, 2);  // v2 missing
  writeFile(v2, "abcde");
  fs_mvexist_(set.c_str(), exists, n, status);
  EXPECT_EQ(exists * 10 + n, 12);

  ASSERT_EQ(FS_dvopen(set.c_str(), 1, FS_C | FS_READONLY, 0, &id), FS_GOOD);
  char buf[16];
  EXPECT_EQ(FS_read(id, buf, 16, &got), FS_EOV);
  EXPECT_EQ(std::string(buf, got), "0123456789");
  ASSERT_EQ(FS_chgvol(id, 2), FS_GOOD);
  EXPECT_EQ(FS_read(id, buf, 16, &got), FS_EOF);
  EXPECT_EQ(std::string(buf, got), "abcde");
  EXPECT_EQ(FS_whichv(id), 2);
  EXPECT_EQ(FS_chgvol(id, 3), FS_BADARG);
  FS_close(id);

  fs_mvex_(set.c_str(), "v3", status);
  fs_mvexist_(set.c_str(), exists, n, status);
  EXPECT_EQ(exists * 10 + n, 3);

  // Headers that are broken, cut, unreadable or slow to read.
  writeFile(dir / "bad", "RONDO MULTIVOLUME 2\nv1\n");
  struct {
    std::string name;
    int kind;
    int64_t limit;
    int status;
  } const cases[] = {{set, FS_FAULT_SHORTREAD, 3, FS_GOOD},
                     {set, FS_FAULT_FAILREAD, 5, FS_ERRNO + EIO},
                     {dir / "bad", FS_FAULT_NONE, 0, FS_BADHEADER},
                     {dir / "v1", FS_FAULT_NONE, 0, FS_BADHEADER}};
  for (auto const& c : cases) {
    Fault fault(c.name, c.kind, c.limit);
    fs_mvexist_(c.name.c_str(), exists, n, status);
    EXPECT_EQ(status, c.status) << c.name << " " << c.kind;
  }
}

TEST(FSVolumes, KeepOpenGivesBackTheDescriptor) {
  TempDir dir;
  std::string const name = dir / "k";
  writeFile(name, "abcdefgh");
  int id, again, got;
  char buf[4];
  ASSERT_EQ(FS_copen(name.c_str(), FS_C | FS_READONLY, 0, &id), FS_GOOD);
  ASSERT_EQ(FS_read(id, buf, 3, &got), FS_GOOD);
  int const before = openDescriptors();
  ASSERT_EQ(FS_cclose(id), FS_GOOD);
  EXPECT_EQ(openDescriptors(), before - 1);
  ASSERT_EQ(FS_read(id, buf, 3, &got), FS_GOOD);  // opened again, where it was
  EXPECT_EQ(std::string(buf, 3), "def");
  ASSERT_EQ(FS_cclose(id), FS_GOOD);
  ASSERT_EQ(FS_copen(name.c_str(), FS_C | FS_READONLY, 0, &again), FS_GOOD);
  ASSERT_EQ(FS_read(again, buf, 3, &got), FS_GOOD);
  EXPECT_EQ(std::string(buf, 3) + std::to_string(again - id), "abc0");
  // Gone while put aside: the next use says so.
  ASSERT_EQ(FS_cclose(id), FS_GOOD);
  ::unlink(name.c_str());
  EXPECT_EQ(FS_read(id, buf, 3, &got), FS_ERRNO + ENOENT);
  EXPECT_EQ(lastFailure(), "FS_read: No such file or directory (" + name + ")");
  EXPECT_EQ(FS_close(id), FS_GOOD);
  // A lock of its own keeps it open; a file not in keep-open mode closes.
  writeFile(name, "x");
  ASSERT_EQ(FS_copen(name.c_str(), FS_C, 0, &id), FS_GOOD);
  ASSERT_EQ(FS_lockit(id), FS_GOOD);
  EXPECT_EQ(FS_cclose(id), FS_LOCKED);
  ASSERT_EQ(FS_setinfo(id, FS_INFO_KEEPOPEN, 0), FS_GOOD);
  ASSERT_EQ(FS_cclose(id), FS_GOOD);
  EXPECT_EQ(FS_chkid(id, "FS_test"), FS_BADID);
}

TEST(FSVolumes, LockThatWaitsAndBlockLengths) {
  TempDir dir;
  std::string const name = dir / "l";
  writeFile(name, "x");
  int a, b;
  // Thread-safe, so that the holder needs the service while b waits.
  fs_threadsafe_(1);
  ASSERT_EQ(FS_open(name.c_str(), FS_C, 0, 0, 0, &a), FS_GOOD);
  ASSERT_EQ(FS_open(name.c_str(), FS_C, 0, 0, 0, &b), FS_GOOD);
  ASSERT_EQ(FS_alock(a, FS_WRITELOCK, 0), FS_GOOD);
  EXPECT_EQ(FS_alock(b, FS_READLOCK, 0), FS_LOCKED);
  std::thread holder([a] {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    FS_unlockit(a);
  });
  EXPECT_EQ(FS_alock(b, FS_WRITELOCK, 60), FS_GOOD);
  holder.join();
  FS_close(a);
  FS_close(b);
  fs_threadsafe_(0);

  std::string const image = dir / "t";
  int t, got, length;
  ASSERT_EQ(FS_opent(image.c_str(), FS_TAPE | FS_CREATE, &t), FS_GOOD);
  ASSERT_EQ(FS_writet(t, std::string(100, 'q').data(), 100), FS_GOOD);
  ASSERT_EQ(FS_writet(t, "", 0), FS_GOOD);
  FS_closet(t);
  ASSERT_EQ(FS_opent(image.c_str(), FS_TAPE | FS_READONLY, &t), FS_GOOD);
  char buf[10];
  EXPECT_EQ(FS_readti(t, buf, 10, &got, &length), FS_BLOCKTOOLONG);
  EXPECT_EQ(got * 1000 + length, 10100);
  EXPECT_EQ(FS_readti(t, buf, 10, &got, &length), FS_EOF);
  EXPECT_EQ(length, 0);
  FS_closet(t);
}

TEST(FSVolumes, NearlineAndRemoteNames) {
  fs_testing::Env nearline("FS_NEARLINE", "/hsm/a/, /near:/x");
  struct {
    char const* name;
    int flag;
  } const near[] = {{"/hsm/a/f", 1}, {"/hsm/ab/f", 0}, {"/near/d/f", 1}, {"/y/x/f", 0}};
  for (auto const& c : near) EXPECT_EQ(FS_isnearline(c.name), c.flag) << c.name;

  // Every entry that takes a name refuses one on another host by name.
  std::string const remote = "node7:/data/x.sgy";
  int id;
  EXPECT_EQ(FS_mv(FS_RMFILE, "/tmp/x", remote.c_str()), FS_REMOTE);
  EXPECT_EQ(FS_dvopen(remote.c_str(), 1, FS_C, 0, &id), FS_REMOTE);
  EXPECT_EQ(lastFailure(), "FS_dvopen: Remote files are not supported (host node7: node7:/data/x.sgy)");
  expectFailure([&] { FS::open(vFilename(remote.c_str()), FS::ByteFile); }, "FS::open",
                "FS_open: Remote files are not supported (host node7: node7:/data/x.sgy)");
}

// Leaves the service as it found it: no mutex, no faults.
struct ServiceScope {
  ~ServiceScope() {
    FS_testfault("", FS_FAULT_NONE, 0);
    while (fs_tdepth_() > 0) fs_tunlock_();
    FS::threadSafe(false);
  }
};

TEST(FSThreadSafe, NestedLocksKeepOtherThreadsOut) {
  ServiceScope scope;
  FS::threadSafe(true);
  FS::threadSafe(true);  // a second switch-on keeps the one mutex
  int counter = 0;       // deliberately not atomic: the service lock guards it
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&counter] {
      for (int i = 0; i < 500; ++i) {
        fs_tlock_();
        fs_tlock_();
        int const seen = counter;
        fs_tunlock_();  // 2 -> 1: still held
        sched_yield();
        counter = seen + 1;
        fs_tunlock_();
      }
    });
  }
  for (std::thread& t : threads) t.join();
  // An inner unlock that let another thread in would lose increments.
  EXPECT_EQ(counter, 2000);
  EXPECT_EQ(fs_tdepth_(), 0);
}

TEST(FSThreadSafe, MutexFailuresAndTheirMessages) {
  ServiceScope scope;
  FS_testfault("", FS_FAULT_MUTEXINIT, 0);
  expectFailure([] { FS::threadSafe(true); }, "FS_threadsafe", "Could not init the mutex.");
  FS_testfault("", FS_FAULT_NONE, 0);

  FS::threadSafe(true);
  FS_testfault("", FS_FAULT_MUTEXLOCK, 0);
  expectFailure([] { fs_tlock_(); }, "FS_tlock", "Could not lock the mutex.");
  EXPECT_EQ(fs_tdepth_(), 0);
  FS_testfault("", FS_FAULT_NONE, 0);

  // A held mutex cannot be destroyed: an error, and the mutex stays.
  fs_tlock_();
  Message::clearNErrors();
  ::testing::internal::CaptureStderr();
  FS::threadSafe(false);
  std::string const err = ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(Message::getNErrors(), 1);
  EXPECT_NE(err.find("FS_threadsafe"), std::string::npos) << err;
  EXPECT_NE(err.find("Could not destroy the mutex."), std::string::npos) << err;
  fs_tunlock_();
  Message::clearNErrors();
}

}  // namespace
