#include <cerrno>
#include <cstdlib>

#include "foundation/vString.h"
#include "foundation/vUtl.h"

namespace {

int64_t numberOf(char const* name) {
  char const* text = std::getenv(name);
  if (text == nullptr || *text == '\0') return 0;
  char* end = nullptr;
  errno = 0;
  long long const value = std::strtoll(text, &end, 10);
  if (errno != 0 || end == text || *end != '\0') return 0;
  return static_cast<int64_t>(value);
}

}  // namespace

namespace vUtl {

int64_t getDornJobDeckID() { return numberOf("DORNJOBDECKID"); }

vString getDornJobDeckName() {
  char const* text = std::getenv("DORNJOBDECKNAME");
  return vString(text == nullptr ? "" : text);
}

int64_t getDornJobID() { return numberOf("DORNJOBID"); }

int64_t getDornJobNumber() { return numberOf("DORNJOBNUMBER"); }

bool isDornBatchJob() { return getDornJobID() != 0; }

int getBuildNumber() {
#ifdef RONDO_BUILD_NUMBER
  return RONDO_BUILD_NUMBER;
#else
  return 0;
#endif
}

}  // namespace vUtl
