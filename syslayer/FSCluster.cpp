#include <vector>

#include "syslayer/FS.h"
#include "syslayer/FSService.h"

vString FS::getCluster(vString const& host) {
  if (host.isBlank()) return host;
  std::vector<char> cluster(4096);
  int status;
  fs_getcluster_(host.c_str(), cluster.data(), static_cast<int>(cluster.size()), status);
  return vString(cluster.data());
}
