#include "server/DirectoryTree.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "foundation/Message.h"

namespace DirectoryTree {

vString resolve(vString const& path) {
  char* real = ::realpath(path.c_str(), nullptr);
  if (real == nullptr) return vString();
  vString const text(real);
  std::free(real);
  return text;
}

bool isWithin(vString const& root, vString const& resolved) {
  std::string const r = root.c_str();
  std::string const p = resolved.c_str();
  if (r.empty() || p.empty()) return false;
  if (p == r) return true;
  std::string const prefix = r == "/" ? r : r + "/";
  return p.compare(0, prefix.size(), prefix) == 0;
}

bool isDirectory(vString const& path) {
  struct stat s;
  return ::stat(path.c_str(), &s) == 0 && S_ISDIR(s.st_mode);
}

bool isRegularFile(vString const& path) {
  struct stat s;
  return ::stat(path.c_str(), &s) == 0 && S_ISREG(s.st_mode);
}

std::vector<std::string> entries(vString const& directory) {
  std::vector<std::string> names;
  DIR* dir = ::opendir(directory.c_str());
  if (dir == nullptr)
    Message::fatal("DirectoryTree::entries", 0, "The data server cannot read the directory %s: %s.",
                   directory.c_str(), std::strerror(errno));
  while (dirent* entry = ::readdir(dir)) {
    std::string const name = entry->d_name;
    if (name != "." && name != "..") names.push_back(name);
  }
  ::closedir(dir);
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace DirectoryTree
