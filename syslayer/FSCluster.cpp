#include <cstdlib>
#include <cstring>

#include "syslayer/FS.h"

namespace {

bool isSeparator(char c) { return c == ' ' || c == '\t' || c == ',' || c == '\n'; }

}  // namespace

vString FS::getCluster(vString const& host) {
  if (host.isBlank()) return host;
  char const* table = std::getenv("FS_CLUSTERS");
  if (table == nullptr) return host;

  // Scan the pairs in place: the table is short and asked rarely.
  char const* p = table;
  while (*p) {
    while (*p && isSeparator(*p)) ++p;
    char const* start = p;
    while (*p && !isSeparator(*p)) ++p;
    char const* eq = static_cast<char const*>(std::memchr(start, '=', static_cast<size_t>(p - start)));
    if (eq == nullptr || eq == start || eq + 1 == p) continue;
    vString name(static_cast<int>(eq - start), start);
    if (name == host) return vString(static_cast<int>(p - eq - 1), eq + 1);
  }
  return host;
}
