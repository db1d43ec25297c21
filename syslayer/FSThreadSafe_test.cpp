#include <sched.h>
#include <unistd.h>

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
