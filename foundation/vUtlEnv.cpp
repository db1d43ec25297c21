#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "foundation/vString.h"
#include "foundation/vUtl.h"

namespace vUtl {

bool getenv(char const* name, vString& value) {
  char const* v = name ? std::getenv(name) : nullptr;
  if (!v) {
    value.erase();
    return false;
  }
  value = v;
  return true;
}

void putenv(char const* name, vString const& value) {
  if (!name || !*name) return;
  ::setenv(name, value.c_str(), 1);
}

bool gethostname(char* buffer, unsigned size) {
  if (!buffer || size == 0) return false;
  char host[256];
  if (::gethostname(host, sizeof host) != 0) {
    buffer[0] = 0;
    return false;
  }
  host[sizeof host - 1] = 0;
  char* dot = std::strchr(host, '.');
  if (dot) *dot = 0;
  size_t n = std::strlen(host);
  if (n > size - 1) n = size - 1;
  std::memcpy(buffer, host, n);
  buffer[n] = 0;
  return true;
}

vString gethostname() {
  char host[256];
  if (!gethostname(host, sizeof host)) return vString();
  return vString(host);
}

vString homeDirectory() {
  char const* home = std::getenv("HOME");
  if (home && *home) return vString(home);
  struct passwd* pw = ::getpwuid(::getuid());
  if (pw && pw->pw_dir) return vString(pw->pw_dir);
  return vString();
}

}  // namespace vUtl
