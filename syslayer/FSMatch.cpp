#include <glob.h>

#include <algorithm>
#include <string>

#include "syslayer/FS.h"

void FS::getMatchingFiles(vString const& pattern, std::vector<vFilename>& result) {
  result.clear();
  if (pattern.isEmpty()) return;
  glob_t found;
  // No GLOB_NOCHECK: a pattern that names nothing gives an empty list, not
  // the pattern itself.
  int const rc = ::glob(pattern.c_str(), GLOB_NOSORT, nullptr, &found);
  if (rc == 0) {
    std::vector<std::string> names(found.gl_pathv, found.gl_pathv + found.gl_pathc);
    // Byte order, not the locale's collation, so that every host lists alike.
    std::sort(names.begin(), names.end());
    result.reserve(names.size());
    for (std::string const& n : names) result.emplace_back(vFilename(n.c_str()));
  }
  if (rc != GLOB_NOMATCH) ::globfree(&found);
}
