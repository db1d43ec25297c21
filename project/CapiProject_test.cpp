#include "project/CapiProject.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <list>
#include <string>

#include "foundation/TestReleaseTree.h"
#include "foundation/vDatabases.h"

namespace {

std::string str(vString const& s) { return std::string(s.c_str(), s.length()); }

std::string joined(std::list<vString> const& list) {
  std::string text;
  for (vString const& s : list) text += str(s) + ";";
  return text;
}

}  // namespace

// The database client files of each server live in a folder of the support
// files; the default server is the one of this host's domain, and only when
// its folder is installed.
TEST(CapiProject, ZonServersComeFromTheInstalledClientFolders) {
  TestReleaseTree tree;
  tree.writeSystemFile("DatabaseConfig.ini",
                       "[aliases]\ntestdomain.example = houston\n[houston]\nProductionDatabase = hprod\n"
                       "[london]\nProductionDatabase = lprod\n");
  vDatabases::clearCache();
  std::string zon = tree.releaseDir() + "SupportFiles/CapiZon/";

  std::list<vString> servers;
  Capi::getCapiZonAvailableServers(servers);
  EXPECT_TRUE(servers.empty());
  EXPECT_EQ("", str(Capi::getDefaultCapiZonServer()));

  std::filesystem::create_directories(zon + "london");
  EXPECT_EQ("", str(Capi::getDefaultCapiZonServer()));
  std::filesystem::create_directories(zon + "houston");
  std::filesystem::create_directories(zon + "paris.v2");
  TestReleaseTree::write(zon + "notes", "a plain file is listed as the folder lists it\n");
  TestReleaseTree::write(zon + ".hidden", "");
  EXPECT_EQ("houston", str(Capi::getDefaultCapiZonServer()));

  servers.push_back("kept");
  Capi::getCapiZonAvailableServers(servers);
  EXPECT_EQ("kept;houston;london;notes;paris.v2;", joined(servers));

  tree.setEnv("DORN_DOMAIN", "branch.example");
  expectFatal([] { Capi::getDefaultCapiZonServer(); }, "vDatabases::get",
              "Domain 'branch.example' not found in the database configuration file '" + tree.systemFilesDir() +
                  "DatabaseConfig.ini'!");
  tree.setEnv("DORN_DOMAIN", "london");
  EXPECT_EQ("london", str(Capi::getDefaultCapiZonServer()));
  vDatabases::clearCache();
}
