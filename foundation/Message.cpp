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

}  // namespace

void Message::fatal(char const* label, int code, char const* format, ...) {
  ++s_nFatals;
  char buffer[10240];
  va_list args;
  va_start(args, format);
  try {
    formatMessage(buffer, sizeof buffer, format, args);
  } catch (...) {
    va_end(args);
    throw;
  }
  va_end(args);
  RaiseError::getInstance()->fatal(label, code, buffer);
  std::abort();  // not reached: RaiseError::fatal either throws or aborts
}

void Message::error(char const* label, int code, char const* format, ...) {
  ++s_nErrors;
  char buffer[10240];
  va_list args;
  va_start(args, format);
  try {
    formatMessage(buffer, sizeof buffer, format, args);
  } catch (...) {
    va_end(args);
    throw;
  }
  va_end(args);
  RaiseError::getInstance()->error(label, code, buffer);
}

void Message::info(char const* label, int code, char const* format, ...) {
  ++s_nInfos;
  char buffer[10240];
  va_list args;
  va_start(args, format);
  try {
    formatMessage(buffer, sizeof buffer, format, args);
  } catch (...) {
    va_end(args);
    throw;
  }
  va_end(args);
  RaiseError::getInstance()->info(label, code, buffer);
}

int Message::getNErrors() { return s_nErrors; }
int Message::getNFatals() { return s_nFatals; }
void Message::clearNErrors() { s_nErrors = 0; }
void Message::clearNFatals() { s_nFatals = 0; }
