#include <gtest/gtest.h>
#include <signal.h>

#include <new>

#include "foundation/vUtl.h"

TEST(vUtlSignalsDeathTest, EachSignalEndsTheProcessItsOwnWay) {
  // Termination prints its text and no stack.
  EXPECT_EXIT((vUtl::startDorn(true), ::raise(SIGTERM)), ::testing::ExitedWithCode(SIGTERM),
              "^\n \\*\\*\\*\\*\\* Signal caught on [^ ]+ \\*\\*\\*\\* \n"
              "Received Signal:SIGTERM Termination signal.\n$");
  // A segmentation fault aborts after the stack.
  EXPECT_EXIT((vUtl::startDorn(true), ::raise(SIGSEGV)), ::testing::KilledBySignal(SIGABRT),
              "Received Signal:SIGSEGV Invalid memory reference.\n(.|\n)*----- stack -----");
  // Others exit with their number.
  EXPECT_EXIT((vUtl::startDorn(true), ::raise(SIGHUP)), ::testing::ExitedWithCode(SIGHUP),
              "Received Signal:SIGHUP Hangup detected on controlling terminal or death of controlling process.\n(.|\n)*"
              "----- stack -----");
  EXPECT_EXIT(vUtl::signalHandler(SIGFPE), ::testing::ExitedWithCode(SIGFPE),
              "Received Signal:SIGFPE Floating point exception.");
  EXPECT_EXIT(vUtl::signalHandler(16), ::testing::ExitedWithCode(16), "Received Signal:16\n");
  // Signals are only taken when asked.
  EXPECT_EXIT((vUtl::startDorn(false), ::raise(SIGTERM)), ::testing::KilledBySignal(SIGTERM), "");
}

TEST(vUtlMemory, NoMoreMemoryReportsAndThrows) {
  std::new_handler const old = std::get_new_handler();
  std::set_new_handler(vUtl::noMoreMemory);
  ::testing::internal::CaptureStderr();
  EXPECT_THROW(vUtl::noMoreMemory(), std::bad_alloc);
  EXPECT_EQ("\nMEMORY: process could not allocate any more memory.\n", ::testing::internal::GetCapturedStderr());
  EXPECT_EQ(nullptr, std::get_new_handler());
  std::set_new_handler(old);
}
