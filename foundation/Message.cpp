#include "foundation/Message.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "foundation/RaiseError.h"
#include "foundation/vString.h"
#include "foundation/vUtl.h"

namespace {

int s_nFatals = 0;
int s_nErrors = 0;
int s_nInfos = 0;

// Formats into buffer. The one failure the C library can hand us is a thrown
// exception from our own format adaptation; it is reported here, outside the
// handlers, since those may be what is failing.
void formatMessage(char* buffer, size_t size, char const* format, va_list args) {
  try {
    vString fmt(format);
    vUtl::reformatInt64(fmt);
    int const n = std::vsnprintf(buffer, size, fmt.c_str(), args);
    if (n < 0) buffer[0] = 0;
  } catch (...) {
    std::fprintf(stderr,
                 "\nMessage::fatal() Exception while printing format '%s'.\n Check for using %%d when printing "
                 "vInstances, use %%lld instead.",
                 format ? format : "");
    throw -1;
  }
}

// Ends a va_list however the caller leaves, so a formatting failure that
// throws does not skip va_end.
class VaListEnd {
 public:
  explicit VaListEnd(va_list& args) : m_args(args) {}
  ~VaListEnd() { va_end(m_args); }
  VaListEnd(VaListEnd const&) = delete;
  VaListEnd& operator=(VaListEnd const&) = delete;

 private:
  va_list& m_args;
};

using Deliver = void (RaiseError::*)(char const*, int, char const*);

// Counts the message, formats it on the stack and hands it to the handlers.
void report(int& counter, Deliver deliver, char const* label, int code, char const* format, va_list args) {
  ++counter;
  char buffer[10240];
  formatMessage(buffer, sizeof buffer, format, args);
  (RaiseError::getInstance()->*deliver)(label, code, buffer);
}

}  // namespace

void Message::fatal(char const* label, int code, char const* format, ...) {
  va_list args;
  va_start(args, format);
  {
    VaListEnd end(args);
    report(s_nFatals, &RaiseError::fatal, label, code, format, args);
  }
  std::abort();  // not reached: RaiseError::fatal either throws or aborts
}

void Message::error(char const* label, int code, char const* format, ...) {
  va_list args;
  va_start(args, format);
  VaListEnd end(args);
  report(s_nErrors, &RaiseError::error, label, code, format, args);
}

void Message::info(char const* label, int code, char const* format, ...) {
  va_list args;
  va_start(args, format);
  VaListEnd end(args);
  report(s_nInfos, &RaiseError::info, label, code, format, args);
}

int Message::getNErrors() { return s_nErrors; }
int Message::getNFatals() { return s_nFatals; }
void Message::clearNErrors() { s_nErrors = 0; }
void Message::clearNFatals() { s_nFatals = 0; }
