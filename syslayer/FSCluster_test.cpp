#include <cstdlib>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "syslayer/FS.h"

namespace {

// Sets FS_CLUSTERS for one test and restores what was there before.
class ClusterTable {
 public:
  explicit ClusterTable(char const* value) {
    char const* old = std::getenv("FS_CLUSTERS");
    m_had = old != nullptr;
    if (m_had) m_old = old;
    if (value)
      setenv("FS_CLUSTERS", value, 1);
    else
      unsetenv("FS_CLUSTERS");
  }
  ~ClusterTable() {
    if (m_had)
      setenv("FS_CLUSTERS", m_old.c_str(), 1);
    else
      unsetenv("FS_CLUSTERS");
  }

 private:
  bool m_had = false;
  vString m_old;
};

TEST(FSCluster, HostsMapToTheirClusterOrStayThemselves) {
  {
    ClusterTable t(nullptr);
    EXPECT_EQ(FS::getCluster("node7"), vString("node7"));
  }
  // Blanks and tabs separate pairs; malformed pairs are skipped, and the
  // first pair for a host wins. Prefixes and cluster names are no hosts.
  ClusterTable t(" node1=big,node2=big\tsolo=alone =x node3= junk node2=c3 ");
  for (auto const& [host, cluster] : std::vector<std::pair<char const*, char const*>>{
           {"node1", "big"}, {"node2", "big"}, {"solo", "alone"}, {"node12", "node12"}, {"big", "big"},
           {"node3", "node3"}, {"junk", "junk"}})
    EXPECT_EQ(FS::getCluster(host), vString(cluster)) << host;
}

}  // namespace
