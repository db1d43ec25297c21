#include <dirent.h>
#include <sched.h>
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
  ::setenv("FS_NEARLINE", "/hsm/a/, /near:/x", 1);
  struct {
    char const* name;
    int flag;
  } const near[] = {{"/hsm/a/f", 1}, {"/hsm/ab/f", 0}, {"/near/d/f", 1}, {"/y/x/f", 0}};
  for (auto const& c : near) EXPECT_EQ(FS_isnearline(c.name), c.flag) << c.name;
  ::unsetenv("FS_NEARLINE");

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
