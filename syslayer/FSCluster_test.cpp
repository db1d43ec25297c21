#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "syslayer/FS.h"
#include "syslayer/FSTesting.h"

namespace {

TEST(FSFunctions, HostsMapToTheirClusterOrStayThemselves) {
  fs_testing::Env none("FS_CLUSTERS", nullptr);
  EXPECT_EQ(FS::getCluster("node7"), vString("node7"));
  // Blanks and tabs separate pairs; malformed pairs are skipped, and the
  // first pair for a host wins. Prefixes and cluster names are no hosts.
  fs_testing::Env pairs("FS_CLUSTERS", " node1=big,node2=big\tsolo=alone =x node3= junk node2=c3 ");
  for (auto const& [host, cluster] : std::vector<std::pair<char const*, char const*>>{
           {"node2", "big"}, {"solo", "alone"}, {"node12", "node12"}, {"big", "big"}, {"node3", "node3"}})
    EXPECT_EQ(FS::getCluster(host), vString(cluster)) << host;
}

}  // namespace
