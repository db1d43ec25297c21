#include "foundation/vMutex.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <thread>

#include "foundation/TestFailure.h"
#include "foundation/UtlExcept.h"

TEST(vMutex, CreatedOnDemandInitialisedOnceAndEachPolicy) {
  vMutex m;
  EXPECT_FALSE(m.hasInitialized());
  EXPECT_EQ(vMutex::Recursive, m.getLockPolicy());
  EXPECT_TRUE(m.lock());
  EXPECT_TRUE(m.isLocked());
  EXPECT_TRUE(m.tryLock());
  EXPECT_TRUE(m.unlock());
  EXPECT_TRUE(m.unlock());
  // A third unlock is refused: the mutex is not owned any more.
  EXPECT_FALSE(m.unlock());
  EXPECT_EQ(EPERM, m.getLastError());
  // Only the first initialisation counts.
  vMutex once;
  once.initialize(vMutex::ErrorCheck);
  once.initialize(vMutex::Recursive);
  EXPECT_EQ(vMutex::ErrorCheck, once.getLockPolicy());
  vMutex never;
  expectFailure([&] { never.unlock(); }, "vMutex::unlock", "Calling unlock on a non-allocated mutex!");
  // The error-checking policy refuses relocking.
  vMutex checked(true, vMutex::ErrorCheck);
  EXPECT_TRUE(checked.lock());
  EXPECT_FALSE(checked.lock());
  EXPECT_EQ(EDEADLK, checked.getLastError());
  EXPECT_FALSE(checked.spinLock(3));
  EXPECT_TRUE(checked.unlock());
  EXPECT_TRUE(checked.spinLock(0));
  EXPECT_TRUE(checked.unlock());
}

TEST(vMutex, TryLockFailsWhileAnotherThreadHoldsIt) {
  vMutex m(true, vMutex::Normal);
  ASSERT_TRUE(m.lock());
  bool got = true;
  int error = 0;
  std::thread other([&] {
    got = m.tryLock();
    error = m.getLastError();
  });
  other.join();
  EXPECT_FALSE(got);
  EXPECT_EQ(EBUSY, error);
  EXPECT_TRUE(m.unlock());
}
