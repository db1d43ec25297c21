// Names the record file service does not serve from the local disk: files
// on other hosts, which it refuses by name, and files on nearline storage.

#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "syslayer/FSService.h"
#include "syslayer/FSServiceInternal.h"

void fs_rfinit_(char const* name, char const* routine, int& status) {
  std::string const n = name ? name : "";
  std::string const host = n.substr(0, n.find(':'));
  // Opening "host:/path" as a local name would fail with a confusing "no
  // such file", or worse find a local file of that odd name.
  status = fs_internal::fail(routine ? routine : "FS_rfinit", FS_REMOTE, "host " + host + ": " + n);
}

namespace fs_internal {

bool remoteRefused(char const* routine, char const* name, int& status) {
  int remote = 0;
  fs_isremote_(name, remote);
  if (remote) fs_rfinit_(name, routine, status);
  return remote != 0;
}

}  // namespace fs_internal

void fs_isnearline_(char const* name, int& flag) {
  flag = 0;
  char const* list = std::getenv("FS_NEARLINE");
  if (name == nullptr || *name == '\0' || list == nullptr) return;
  std::string path = name;
  if (path[0] != '/') {
    char cwd[4096];
    if (::getcwd(cwd, sizeof cwd) == nullptr) return;
    path = std::string(cwd) + "/" + path;
  }
  std::string const dirs = list;
  for (size_t at = 0; at < dirs.size();) {
    size_t end = dirs.find_first_of(" ,:", at);
    if (end == std::string::npos) end = dirs.size();
    std::string dir = dirs.substr(at, end - at);
    at = end + 1;
    while (dir.size() > 1 && dir.back() == '/') dir.pop_back();
    if (dir.empty()) continue;
    // Below the directory means its name and then a '/', not a longer name
    // that starts the same.
    bool const below = dir == "/" || (path.size() > dir.size() && path[dir.size()] == '/');
    if (below && path.compare(0, dir.size(), dir) == 0) {
      flag = 1;
      return;
    }
  }
}
