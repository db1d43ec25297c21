#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include "foundation/vString.h"
#include "foundation/vUtl.h"

TEST(vUtlSignals, ListedSignalsHaveTheirTextTheOthersNone) {
  struct {
    int number;
    char const* text;
  } const table[] = {
      {29, "SIGPOLL Pollable event (Sys V). Synonym of SIGIO."},
  };
  for (auto const& entry : table) EXPECT_STREQ(entry.text, vUtl::signalText(entry.number)) << entry.number;
  for (int unlisted : {0, 16, 30}) EXPECT_EQ(nullptr, vUtl::signalText(unlisted)) << unlisted;
}

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

TEST(vUtlStartDeathTest, StartSetsUpTheProcess) {
  EXPECT_EXIT(
      {
        ::unsetenv("PELLIN_FONT_PATH");
        ::umask(022);
        vUtl::startDorn(false);
        if (std::get_new_handler() != vUtl::noMoreMemory) std::exit(2);
        mode_t const mask = ::umask(0);
        if (mask != 0) std::exit(3);
        char const* fonts = std::getenv("PELLIN_FONT_PATH");
        vString expected = vUtl::releaseDirectory();
        expected += "/Pellin/fonts";
        if (!fonts || expected != fonts) std::exit(4);
        // Only the first call sets the font path; every call restores the
        // allocation handler and the mask.
        ::setenv("PELLIN_FONT_PATH", "/elsewhere", 1);
        std::set_new_handler(nullptr);
        ::umask(077);
        vUtl::startDorn(false);
        if (std::strcmp(std::getenv("PELLIN_FONT_PATH"), "/elsewhere") != 0) std::exit(5);
        if (std::get_new_handler() != vUtl::noMoreMemory) std::exit(6);
        if (::umask(0) != 0) std::exit(7);
        std::exit(0);
      },
      ::testing::ExitedWithCode(0), "");
}

TEST(vUtlStack, PrintStackWritesFramesToStandardError) {
  ::testing::internal::CaptureStderr();
  vUtl::printStack();
  std::string const err = ::testing::internal::GetCapturedStderr();
  size_t const head = err.find("----- stack -----\n");
  ASSERT_NE(std::string::npos, head) << err;
  size_t const tail = err.find("-----------------\n", head + 18);
  ASSERT_NE(std::string::npos, tail) << err;
  // At least the caller's frame lies between the two rules.
  EXPECT_GT(tail, head + 18) << err;
}
