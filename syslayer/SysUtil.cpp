#include "syslayer/SysUtil.h"

#include <pwd.h>
#include <unistd.h>

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

#include "foundation/Message.h"

namespace {

void blankFill(std::string const& text, char* out, int length) {
  if (out == nullptr || length <= 0) return;
  size_t const n = text.size() < static_cast<size_t>(length) ? text.size() : static_cast<size_t>(length);
  std::memcpy(out, text.data(), n);
  std::memset(out + n, ' ', static_cast<size_t>(length) - n);
}

}  // namespace

int32_t* ut_wcalloc_(int64_t const& n) {
  if (n <= 0 || static_cast<uint64_t>(n) > SIZE_MAX / sizeof(int32_t)) return nullptr;
  return static_cast<int32_t*>(std::calloc(static_cast<size_t>(n), sizeof(int32_t)));
}

int32_t* ut_wrealloc_(int32_t* block, int64_t const& oldN, int64_t const& n) {
  if (n <= 0 || static_cast<uint64_t>(n) > SIZE_MAX / sizeof(int32_t)) return nullptr;
  int32_t* grown = static_cast<int32_t*>(std::realloc(block, static_cast<size_t>(n) * sizeof(int32_t)));
  if (grown != nullptr && n > oldN)
    std::memset(grown + oldN, 0, static_cast<size_t>(n - oldN) * sizeof(int32_t));
  return grown;
}

void ut_wfree_(int32_t* block) { std::free(block); }

void ut_getuser_(char* name, int const& length) {
  std::string user;
  struct passwd pw;
  struct passwd* found = nullptr;
  char buf[1024];
  if (getpwuid_r(geteuid(), &pw, buf, sizeof buf, &found) == 0 && found != nullptr) user = found->pw_name;
  if (user.empty()) {
    char const* env = std::getenv("USER");
    user = env ? env : "unknown";
  }
  blankFill(user, name, length);
}

void ut_date_(char const* form, char* text, int const& length) {
  std::time_t const now = std::time(nullptr);
  std::tm tm;
  localtime_r(&now, &tm);
  char buf[32];
  std::string out;
  if (form && std::strcmp(form, "world") == 0) {
    std::snprintf(buf, sizeof buf, "%c%02d%03d", tm.tm_year >= 100 ? '0' : ' ', tm.tm_year % 100, tm.tm_yday + 1);
    out = buf;
  } else if (form && std::strcmp(form, "iso") == 0) {
    std::snprintf(buf, sizeof buf, "%04d-%02d-%02d", tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday);
    out = buf;
  }
  blankFill(out, text, length);
}

void er_fatal_(char const* routine, char const* text) { Message::fatal(routine, 0, "%s", text); }

void er_warn_(char const* routine, char const* text) { Message::error(routine, 0, "%s", text); }
