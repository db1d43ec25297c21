// `rondo projects`, `rondo ls` and served store names through a real data server.

#include <unistd.h>

#include <gtest/gtest.h>

#include "tools/ToolTesting.h"

namespace {

using namespace tool_testing;

TEST(RondoProjects, ListsAndServedStoresComeThroughTheDataServer) {
  fs_testing::TempDir dir;
  Outcome const made = shell(dir, "'" + std::string(RONDO_TEST_BINARY_DIR) + "/bin/DemoStores' .");
  ASSERT_EQ(0, made.status) << made.err;
  std::string const stores = "line12.1:seismic:2d:" + (dir / "line12.store") + " tops.2:horizon:map:" +
                             (dir / "tops.store");
  ScopedEnv const env[] = {{"HOME", dir.path().c_str()},
                           {"VSERVER", (std::string(RONDO_TEST_BINARY_DIR) + "/bin/DataServer").c_str()},
                           {"SP_DATASERVER_BACKEND", "UnitTest"},
                           {"RONDO_UNITTEST_STORES", stores.c_str()},
                           {"SP_CAPI_DATASERVER", nullptr},
                           {"FS_CLUSTERS", nullptr},
                           {"CAPI_DISABLERONDODATASERVER", nullptr}};

  struct Case {
    char const* arguments;
    char const* out;
  } const cases[] = {
      {"projects", ""},
      {"ls survey horizon", "tops.2\thorizon\tmap\t0\n"},
      {"ls localhost:survey horizon", "tops.2\thorizon\tmap\t0\n"},
      {"dump rondo:::survey:line12.1 TRACE,CDP,AMP.RMS --first 2 --last 3",
       "2\t20 20.5 21 21.5 22 22.5 23 23.5\t102\t0.5\n3\t30 30.5 31 31.5 32 32.5 33 33.5\t103\t0.75\n"},
      {"plot rondo:::survey:tops.2 --out tops.png --size 32", ""},
  };
  for (Case const& c : cases) {
    Outcome const r = tool(dir, c.arguments);
    EXPECT_EQ(0, r.status) << c.arguments << ": " << r.err;
    EXPECT_EQ(c.out, r.out) << c.arguments;
  }
  // The map was drawn from the attributes its property names.
  Outcome const png = shell(dir, "gdalinfo tops.png | grep '^Size'");
  EXPECT_EQ("Size is 32, 20\n", png.out) << "gdalinfo from gdal-bin is needed: " << png.err;
}

// Directories the data server may not read are its answer, not projects
// without stores. Root reads every directory: run as root, the client and
// the server it starts run as nobody.
TEST(RondoProjects, UnreadableDirectoriesAreTheServersAnswer) {
  fs_testing::TempDir dir;
  ASSERT_EQ(0, shell(dir, "mkdir -p home root/locked shut/p && chmod 777 home && chmod 755 . root && "
                          "chmod 000 root/locked shut").status);
  ScopedEnv const env[] = {{"HOME", (dir / "home").c_str()},
                           {"VSERVER", (std::string(RONDO_TEST_BINARY_DIR) + "/bin/DataServer").c_str()},
                           {"SP_DATASERVER_BACKEND", "directory"},
                           {"SP_DATASERVER_ROOT", (dir / "root").c_str()},
                           {"SP_CAPI_DATASERVER", nullptr},
                           {"FS_CLUSTERS", nullptr},
                           {"CAPI_DISABLERONDODATASERVER", nullptr}};
  std::string const as = ::geteuid() == 0 ? "setpriv --reuid=65534 --regid=65534 --clear-groups " : "";
  Outcome const project = shell(dir, as + "'" + rondo() + "' ls locked");
  EXPECT_EQ(1, project.status);
  EXPECT_NE(std::string::npos, project.err.find("rondo: locked: Server said:-o The data server cannot read the directory "))
      << project.err;
  EXPECT_NE(std::string::npos, project.err.find("/locked: Permission denied.\n")) << project.err;
  Outcome const root = shell(dir, "SP_DATASERVER_ROOT='" + (dir / "shut") + "' " + as + "'" + rondo() + "' projects");
  EXPECT_EQ(1, root.status);
  EXPECT_NE(std::string::npos, root.err.find("/shut: Permission denied.\n")) << root.err;
}

}  // namespace
