#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include <gtest/gtest.h>

#include "syslayer/FSService.h"
#include "syslayer/FSTesting.h"

namespace {

using fs_testing::TempDir;

TEST(FSServiceMisc, SizesAndBytePositions) {
  TempDir dir;
  std::string const name = dir / "r";
  int id;
  ASSERT_EQ(FS_open(name.c_str(), FS_DISK | FS_CREATE, 4, 0, 0, &id), FS_GOOD);
  int recl = 0;
  ASSERT_EQ(FS_rsize(id, &recl), FS_GOOD);
  EXPECT_EQ(recl, 4);
  int put;
  ASSERT_EQ(FS_write(id, "aaaabbbbcccc", 12, &put), FS_GOOD);
  int64_t b = 0;
  ASSERT_EQ(FS_bpos(id, &b), FS_GOOD);
  EXPECT_EQ(b, 13);  // record 4 starts at byte 13
  // zeroex only grows; setsize cuts too.
  ASSERT_EQ(FS_zeroex(id, 16), FS_GOOD);
  EXPECT_EQ(fs_testing::readFile(name), std::string("aaaabbbbcccc\0\0\0\0", 16));
  ASSERT_EQ(FS_setsize(id, 5), FS_GOOD);
  EXPECT_EQ(fs_testing::readFile(name), "aaaab");
  EXPECT_EQ(FS_setsize(id, -1), FS_BADARG);
  ASSERT_EQ(FS_seekio(id, 2), FS_GOOD);
  ASSERT_EQ(FS_trunc(id), FS_GOOD);
  EXPECT_EQ(fs_testing::readFile(name), "aaaa");
  ASSERT_EQ(FS_close(id), FS_GOOD);

  ASSERT_EQ(FS_open(name.c_str(), FS_DISK | FS_READONLY, 4, 0, 0, &id), FS_GOOD);
  EXPECT_EQ(FS_setsize(id, 0), FS_NOTWRITABLE);
  FsStat st;
  ASSERT_EQ(FS_fstat(id, &st), FS_GOOD);
  EXPECT_EQ(st.size, 4);
  EXPECT_EQ(st.uid, static_cast<int32_t>(geteuid()));
  ASSERT_EQ(FS_close(id), FS_GOOD);

  fs_testing::writeFile(dir / "t.txt", "one\ntwo\n");
  ASSERT_EQ(FS_open((dir / "t.txt").c_str(), 0x20003 | FS_READONLY, 80, 0, 0, &id), FS_GOOD);
  ASSERT_EQ(FS_seekio(id, 3), FS_GOOD);
  ASSERT_EQ(FS_bpos(id, &b), FS_GOOD);
  EXPECT_EQ(b, 9);
  ASSERT_EQ(FS_close(id), FS_GOOD);
}

TEST(FSServiceMisc, LockTestsOnOpenFiles) {
  TempDir dir;
  std::string const name = dir / "l";
  fs_testing::writeFile(name, "x");
  int a, b, flag = -1;
  ASSERT_EQ(FS_open(name.c_str(), FS_C, 0, 0, 0, &a), FS_GOOD);
  ASSERT_EQ(FS_open(name.c_str(), FS_C, 0, 0, 0, &b), FS_GOOD);
  ASSERT_EQ(FS_testlock(b, FS_WRITELOCK, &flag), FS_GOOD);
  EXPECT_EQ(flag, 0);
  ASSERT_EQ(FS_lockit(a), FS_GOOD);
  ASSERT_EQ(FS_testlock(b, FS_READLOCK, &flag), FS_GOOD);
  EXPECT_EQ(flag, 1);
  // Its own lock keeps nothing off.
  ASSERT_EQ(FS_testlock(a, FS_WRITELOCK, &flag), FS_GOOD);
  EXPECT_EQ(flag, 0);
  EXPECT_EQ(FS_testlock(a, 3, &flag), FS_BADARG);
  FS_close(a);
  FS_close(b);
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
  EXPECT_EQ(FS_totspace((dir / "none").c_str(), &total, &free), FS_ERRNO + ENOENT);

  EXPECT_EQ(FS_isremote("node7:/data/line1.sgy"), 1);
  EXPECT_EQ(FS_isremote("/data/a:b.sgy"), 0);

  EXPECT_EQ(FS_chkname("bad\nname"), FS_BADARG);
  EXPECT_EQ(FS_chkname(("/d/" + std::string(256, 'x')).c_str()), FS_BADARG);
  EXPECT_EQ(FS_chkname(("/d/" + std::string(255, 'x')).c_str()), FS_GOOD);

  EXPECT_EQ(FS_chkopts(3076 + FS_DLT), FS_GOOD);
  EXPECT_EQ(FS_chkopts(FS_CREATE), FS_BADARG);  // no kind of file
  EXPECT_EQ(FS_chkopts(FS_TAPE | 0x00080000), FS_BADARG);
  char text[200];
  EXPECT_EQ(FS_rrc(text, sizeof text), FS_BADARG);
  EXPECT_EQ(std::string(text), "FS_chkopts: Invalid argument to the file service (FS_TAPE|unknown)");
}

}  // namespace

#include "syslayer/SSHeap.h"

namespace {

TEST(FSServiceMisc, OpenFilesStandInTheSsTree) {
  fs_testing::TempDir dir;
  int32_t table;
  fs_table_(table);
  int32_t root;
  ss_root_(root);
  int32_t held;
  ss_getnth_(root, 2, held);
  EXPECT_EQ(held, table);
  int32_t before;
  ss_getnth_(table, 1, before);
  std::string const name = dir / "tabled";
  int id;
  ASSERT_EQ(FS_open(name.c_str(), FS_DISK | FS_CREATE, 12, 0, FS_SCR, &id), FS_GOOD);
  int32_t open;
  ss_getnth_(table, 1, open);
  EXPECT_EQ(open, before + 1);
  // The file's structure is a child of the table: find it by its parent.
  int32_t record = 0;
  for (int32_t s = table + 1; s < ss_heapsize_() && record == 0; ++s) {
    int32_t ok = 0;
    ss_verify_(s, ok);
    int32_t n = 0;
    if (ok && ss_[s + 1] == table) ss_n_(s, n);
    int32_t v = 0;
    if (n == 5) ss_getnth_(s, 2, v);
    if (v == id) record = s;
  }
  ASSERT_NE(record, 0);
  std::string text(name.size(), '?');
  ss_gettext_(record, 1, &text[0], static_cast<int32_t>(text.size()));
  EXPECT_EQ(text, name);
  int32_t v;
  ss_getnth_(record, 5, v);
  EXPECT_EQ(v, FS_SCR);
  ASSERT_EQ(FS_close(id), FS_GOOD);
  ss_getnth_(table, 1, open);
  EXPECT_EQ(open, before);
  int32_t ok = 1;
  ss_verify_(record, ok);
  EXPECT_EQ(ok, 0);
}

}  // namespace
