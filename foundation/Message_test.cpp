#include "foundation/Message.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "foundation/ExceptionErrorHandler.h"
#include "foundation/LogErrorHandler.h"
#include "foundation/PrintErrorHandler.h"
#include "foundation/RaiseError.h"
#include "foundation/TestAddressSpaceCap.h"
#include "foundation/TestFailure.h"
#include "foundation/TracebackErrorHandler.h"
#include "foundation/UtlExcept.h"
#include "foundation/vUtl.h"

namespace {

// Counts what reaches it, then passes on (or not, when it is last).
class RecordingHandler : public ErrorHandler {
 public:
  explicit RecordingHandler(ErrorHandler* next = nullptr) : ErrorHandler(next) {}
  int seen = 0;

 protected:
  void doFatal(char const*, int, char const*) override { ++seen; }
  void doError(char const*, int, char const*) override { ++seen; }
  void doInfo(char const*, int, char const*) override { ++seen; }
};

class ReentrantHandler : public ErrorHandler {
 protected:
  void doFatal(char const*, int, char const*) override { Message::fatal("Inner::op", 4, "second %s", "failure"); }
  void doError(char const*, int, char const*) override {}
  void doInfo(char const*, int, char const*) override {}
};

std::string readFile(std::string const& path) {
  std::ifstream in(path);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

std::string tempPath(char const* stem) {
  return std::string(::testing::TempDir()) + stem + "_" + std::to_string(::getpid());
}

// "14-NOV-2023 22:13:20"
bool isRondoTime(std::string const& t) {
  return fitsShape(t, "99-AAA-9999 99:99:99");
}

}  // namespace

TEST(MessageHandlers, PrintReportLayout) {
  PrintErrorHandler print;
  ::testing::internal::CaptureStderr();
  print.error("Store::open", 12, "cannot read x.sgy");
  print.info("Store::open", 0, "two\nlines\n");
  std::string err = ::testing::internal::GetCapturedStderr();
  // Program up to the last '/', host, and the present time, day first.
  std::string const from = std::string(" from ") + program_invocation_short_name + " running on " +
                           vUtl::gethostname().c_str() + " at ";
  for (std::size_t at = err.find(from); at != std::string::npos; at = err.find(from, at + 1)) {
    EXPECT_TRUE(isRondoTime(err.substr(at + from.size(), 20))) << err;
    err.replace(at + from.size(), 20, "(time)");
  }
  std::string const plus(60, '+'), dots(60, '.');
  // A zero code is left out, and a text that ends its own line gets no second end.
  EXPECT_EQ(plus + "\n(Next ERROR" + from + "(time))\nStore::open (code 12):\ncannot read x.sgy\n" + plus + "\n" +
                dots + "\n(Next INFO" + from + "(time))\nStore::open:\ntwo\nlines\n" + dots + "\n",
            err);
}

#ifdef RONDO_TEST_ADDRESS_SPACE_CAP
// Out of memory while copying the format: reported to stderr directly and -1 thrown, as the handlers may fail.
TEST(MessageDeathTest, ExceptionWhileFormattingThrowsMinusOne) {
  EXPECT_EXIT(
      {
        testMapLargeBlocksExactly();
        std::string const path = tempPath("rondo_format");
        size_t const n = 1u << 20;
        std::string const format = "%%" + std::string(n, 'y');
        int const fd = ::open(path.c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0600);
        if (fd < 0 || ::dup2(fd, 2) < 0) std::exit(2);
        int threw = 0;
        TestAddressSpaceCap cap(n / 4);
        if (!cap.isCapped()) std::exit(3);
        try {
          Message::fatal("Fmt::op", 0, format.c_str(), 0);
        } catch (int v) {
          threw = v;
        }
        cap.lift();
        std::string const printed = readFile(path);
        std::remove(path.c_str());
        bool const reported = printed == "\nMessage::fatal() Exception while printing format '" + format +
                                             "'.\n Check for using %d when printing vInstances, use %lld instead.";
        std::exit(threw == -1 && reported ? 0 : 4);
      },
      ::testing::ExitedWithCode(0), "");
}
#endif

TEST(MessageHandlers, LogHandlerWritesOneLinePerMessage) {
  std::string const path = tempPath("rondo_log");
  std::remove(path.c_str());
  {
    LogErrorHandler log(path.c_str(), new ExceptionErrorHandler);
    ASSERT_TRUE(log.isOpen());
    RaiseError::getInstance()->install(&log);
    Message::clearNErrors();
    Message::clearNFatals();
    Message::info("Loader::run", 0, "started");
    Message::error("Loader::run", 3, "line with its own end\n");
    EXPECT_THROW(Message::fatal("Loader::run", 9, "gave up"), UtlExcept);
    RaiseError::getInstance()->uninstall(&log);
  }
  EXPECT_EQ(1, Message::getNErrors());
  EXPECT_EQ(1, Message::getNFatals());
  EXPECT_EQ(
      "INFO :Loader::run:0:started\n"
      "ERROR:Loader::run:3:line with its own end\n"
      "FATAL:Loader::run:9:gave up\n",
      readFile(path));
  std::remove(path.c_str());
}

TEST(MessageHandlers, TracebackHandlerPrintsTheStackBeforePassingOn) {
  RecordingHandler tail(new ExceptionErrorHandler);
  TracebackErrorHandler trace(&tail);
  RaiseError::getInstance()->install(&trace);
  ::testing::internal::CaptureStderr();
  EXPECT_THROW(Message::fatal("T::t", 0, "traced"), UtlExcept);
  Message::error("T::t", 0, "not traced");
  std::string const err = ::testing::internal::GetCapturedStderr();
  RaiseError::getInstance()->uninstall(&trace);
  trace.setNext(nullptr);
  EXPECT_NE(std::string::npos, err.find("----- stack -----")) << err;
  EXPECT_EQ(err.find("----- stack -----"), err.rfind("----- stack -----")) << err;
  EXPECT_EQ(2, tail.seen);
}

TEST(MessageHandlers, TracebackVariableWrapsInstalledHandlersOnce) {
  EXPECT_EXIT(
      {
        ::setenv("SP_UTL_TRACEBACK", "1", 1);
        RaiseError* r = RaiseError::getInstance();
        if (!r->isTracebackEnabled()) std::exit(2);
        RecordingHandler* h = new RecordingHandler(new ExceptionErrorHandler);
        r->install(h);
        TracebackErrorHandler* wrapper = dynamic_cast<TracebackErrorHandler*>(r->getCurrentHandler());
        if (!wrapper || wrapper->getNext() != h) std::exit(3);
        TracebackErrorHandler* own = new TracebackErrorHandler;
        r->install(own);
        if (r->getCurrentHandler() != own) std::exit(4);
        r->uninstall(own);
        if (r->getCurrentHandler() != wrapper) std::exit(5);
        try {
          Message::fatal("W::w", 0, "wrapped");
        } catch (UtlExcept const&) {
        }
        if (h->seen != 1) std::exit(6);
        r->uninstall(h);
        if (r->getCurrentHandler() != nullptr) std::exit(7);
        if (h->seen != 1 || h->getNext() == nullptr) std::exit(8);
        std::fprintf(stderr, "checked\n");
        std::exit(0);
      },
      ::testing::ExitedWithCode(0), "----- stack -----(.|\n)*checked");
}

// A handler that returns, or a fatal message inside one, aborts.
TEST(MessageDeathTest, HandlerThatReturnsOrRecursesLeadsToAbort) {
  EXPECT_EXIT(
      {
        RaiseError::getInstance()->install(new RecordingHandler);
        Message::fatal("Quiet::op", 0, "nobody throws");
      },
      ::testing::KilledBySignal(SIGABRT), "----- stack -----");
  EXPECT_EXIT(
      {
        RaiseError::getInstance()->install(new ReentrantHandler);
        Message::fatal("Outer::op", 3, "first");
      },
      ::testing::KilledBySignal(SIGABRT), "RECURSIVE [^\n]*Inner::op[^\n]*4\nMessage=second failure\n(.|\n)*----- stack -----");
}
