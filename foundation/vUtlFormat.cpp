#include <cstring>

#include "foundation/vString.h"
#include "foundation/vUtl.h"

namespace vUtl {

// Every 64-bit conversion of the system is written "%lld"/"%llu"/"%llx",
// which is right for long long on Linux whatever the word size. Formats that
// came from elsewhere may carry the Windows "I64" or the BSD "q" modifier;
// those are rewritten to "ll" so that the argument (always a long long) is
// read at its real width on both 32- and 64-bit builds.
void reformatInt64(vString& format) {
  char const* p = format.c_str();
  unsigned int const n = format.length();
  if (std::memchr(p, '%', n) == nullptr) return;
  vString out;
  bool changed = false;
  unsigned int i = 0;
  while (i < n) {
    if (p[i] != '%') {
      out += p[i++];
      continue;
    }
    out += p[i++];
    if (i < n && p[i] == '%') {
      out += p[i++];
      continue;
    }
    // flags, width, precision
    while (i < n && std::strchr("-+ #0123456789.*'", p[i]) != nullptr) out += p[i++];
    if (i + 2 < n && p[i] == 'I' && p[i + 1] == '6' && p[i + 2] == '4') {
      out += "ll";
      i += 3;
      changed = true;
    } else if (i < n && p[i] == 'q') {
      out += "ll";
      ++i;
      changed = true;
    }
  }
  if (changed) format = out;
}

bool isListARange(std::vector<unsigned int> const& list) {
  if (list.empty()) return false;
  for (size_t i = 1; i < list.size(); ++i)
    if (list[i] != list[i - 1] + 1 || list[i] == 0) return false;
  return true;
}

}  // namespace vUtl
