#include <execinfo.h>
#include <malloc.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include "foundation/vString.h"
#include "foundation/vUtl.h"

namespace {

char const* const s_signalTexts[] = {
    nullptr,
    "SIGHUP Hangup detected on controlling terminal or death of controlling process.",
    "SIGINT Interrupt from keyboard.",
    "SIGQUIT Quit from keyboard.",
    "SIGILL Illegal Instruction.",
    "SIGTRAP Trace/breakpoint trap.",
    "SIGABRT Abort signal from abort(3).",
    "SIGBUS Bus error (bad memory access).",
    "SIGFPE Floating point exception.",
    "SIGKILL Kill signal.",
    "SIGUSR1 User-defined signal 1.",
    "SIGSEGV Invalid memory reference.",
    "SIGUSR2 User-defined signal 2.",
    "SIGPIPE Broken pipe:write to pipe with no readers.",
    "SIGALRM Timer signal from alarm(2).",
    "SIGTERM Termination signal.",
    nullptr,
    "SIGCHLD Child stopped or terminated.",
    "SIGCONT Continue if stopped.",
    "SIGSTOP Stop process.",
    "SIGTSTP Stop typed at tty.",
    "SIGTTIN tty input for background process.",
    "SIGTTOU tty output for background process.",
    "SIGURG Urgent condition on socket (4.2 BSD).",
    "SIGXCPU CPU time limit exceeded (4.2 BSD).",
    "SIGXFSZ File size limit exceeded (4.2 BSD).",
    "SIGVTALRM Virtual alarm clock (4.2 BSD).",
    "SIGPROF Profiling timer expired.",
    nullptr,
    "SIGPOLL Pollable event (Sys V). Synonym of SIGIO.",
    nullptr,
    "SIGSYS Bad argument to routine (SVID).",
};

bool s_dornStarted = false;

// The signals the crash handler takes over: hang-up, quit, illegal
// instruction, bus error, floating point, segmentation, termination, bad
// system call.
int const s_crashSignals[] = {1, 3, 4, 7, 8, 11, 15, 31};

void writeAll(int fd, char const* text) {
  size_t n = std::strlen(text);
  while (n > 0) {
    ssize_t const w = ::write(fd, text, n);
    if (w <= 0) return;
    text += w;
    n -= static_cast<size_t>(w);
  }
}

}  // namespace

namespace vUtl {

char const* signalText(int status) {
  if (status < 0 || status >= static_cast<int>(sizeof s_signalTexts / sizeof s_signalTexts[0])) return nullptr;
  return s_signalTexts[status];
}

void printStack() {
  // backtrace() from glibc: no external debugger and no allocation beyond
  // what the unwinder itself needs, so it also works from a crash handler.
  void* frames[128];
  int const n = ::backtrace(frames, 128);
  std::fflush(stdout);
  std::fflush(stderr);
  writeAll(2, "\n----- stack -----\n");
  // Skip this function's own frame.
  if (n > 1) ::backtrace_symbols_fd(frames + 1, n - 1, 2);
  writeAll(2, "-----------------\n");
}

void noMoreMemory() {
  std::set_new_handler(nullptr);
  std::fputs("\nMEMORY: process could not allocate any more memory.\n", stderr);
  std::fflush(stderr);
  throw std::bad_alloc();
}

void signalHandler(int status) {
  // Any further malloc corruption is not worth a second report.
  ::mallopt(M_CHECK_ACTION, 0);
  std::fflush(stdout);
  char host[256];
  if (!vUtl::gethostname(host, sizeof host)) std::strcpy(host, "?");
  writeAll(2, "\n ***** Signal caught on ");
  writeAll(2, host);
  writeAll(2, " **** \nReceived Signal:");
  char const* text = signalText(status);
  if (text) {
    writeAll(2, text);
  } else {
    char number[16];
    std::snprintf(number, sizeof number, "%d", status);
    writeAll(2, number);
  }
  writeAll(2, "\n");
  if (status != SIGTERM) printStack();
  if (status == SIGSEGV) std::abort();
  std::exit(status);
}

void startDorn(bool installSignals) {
  ::umask(0);
  // glibc's own default on the number of mmap()ed chunks.
  ::mallopt(M_MMAP_MAX, 65536);
  if (!s_dornStarted) {
    s_dornStarted = true;
    if (std::getenv("PELLIN_FONT_PATH") == nullptr) {
      vString path = vUtl::releaseDirectory();
      path += "/Pellin/fonts";
      vUtl::putenv("PELLIN_FONT_PATH", path);
    }
    if (installSignals)
      for (int sig : s_crashSignals) ::signal(sig, signalHandler);
  }
  std::set_new_handler(noMoreMemory);
}

}  // namespace vUtl
