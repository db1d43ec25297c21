#include <cstdlib>

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

TEST(FSCluster, HostIsItsOwnClusterWithoutTable) {
  ClusterTable t(nullptr);
  EXPECT_EQ(FS::getCluster("node7"), vString("node7"));
  EXPECT_EQ(FS::getCluster(""), vString(""));
}

TEST(FSCluster, ListedHostsMapToTheirCluster) {
  ClusterTable t(" node1=big,node2=big\tsolo=alone  ");
  EXPECT_EQ(FS::getCluster("node1"), vString("big"));
  EXPECT_EQ(FS::getCluster("node2"), vString("big"));
  EXPECT_EQ(FS::getCluster("solo"), vString("alone"));
  // Not listed, or listed only as a prefix or as a cluster: unchanged.
  EXPECT_EQ(FS::getCluster("node"), vString("node"));
  EXPECT_EQ(FS::getCluster("node12"), vString("node12"));
  EXPECT_EQ(FS::getCluster("big"), vString("big"));
  EXPECT_EQ(FS::getCluster("   "), vString("   "));
}

TEST(FSCluster, MalformedPairsAreSkipped) {
  ClusterTable t("=x node1= junk node2=c2 node2=c3");
  EXPECT_EQ(FS::getCluster("node1"), vString("node1"));
  EXPECT_EQ(FS::getCluster("junk"), vString("junk"));
  // The first pair for a host wins.
  EXPECT_EQ(FS::getCluster("node2"), vString("c2"));
}

}  // namespace
