#include "database/zon/CapiZonFactory.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <list>
#include <string>

#include "foundation/TestReleaseTree.h"
#include "foundation/vDatabases.h"

// The database client files of each server live in a folder of the support
// files; the default server is the one of this host's domain, and only when
// its folder is installed.
TEST(CapiZonFactory, ServersComeFromTheInstalledClientFolders) {
  TestReleaseTree tree;
  tree.writeSystemFile("DatabaseConfig.ini",
                       "[aliases]\ntestdomain.example = houston\n[houston]\nProductionDatabase = hprod\n"
                       "[london]\nProductionDatabase = lprod\n");
  vDatabases::clearCache();
  std::string zon = tree.releaseDir() + "SupportFiles/CapiZon/";
  for (char const* name : {"KVSROOT", "KVSPROJ"}) tree.unsetEnv(name);

  // The first factory action gives the library its defaults: the default
  // database's folder and the default project.
  std::list<vString> servers;
  CapiZonFactory::getAvailableServers(servers);
  EXPECT_TRUE(servers.empty());
  EXPECT_EQ(zon + "houston", std::string(std::getenv("KVSROOT")));
  EXPECT_EQ("1006400", std::string(std::getenv("KVSPROJ")));
  EXPECT_FALSE(CapiZonFactory::KVSROOTexists());
  EXPECT_STREQ("", CapiZonFactory::getDefaultServer().c_str());

  std::filesystem::create_directories(zon + "london");
  EXPECT_STREQ("", CapiZonFactory::getDefaultServer().c_str());
  for (char const* folder : {"houston", "paris.v2"}) std::filesystem::create_directories(zon + folder);
  TestReleaseTree::write(zon + "notes", "a plain file is listed as the folder lists it\n");
  TestReleaseTree::write(zon + ".hidden", "");
  EXPECT_STREQ("houston", CapiZonFactory::getDefaultServer().c_str());
  EXPECT_TRUE(CapiZonFactory::KVSROOTexists());

  servers.push_back("kept");
  CapiZonFactory::getAvailableServers(servers);
  EXPECT_EQ((std::list<vString>{"kept", "houston", "london", "notes", "paris.v2"}), servers);

  tree.setEnv("DORN_DOMAIN", "branch.example");
  expectFatal([] { CapiZonFactory::getDefaultServer(); }, "vDatabases::get",
              "Domain 'branch.example' not found in the database configuration file '" + tree.systemFilesDir() +
                  "DatabaseConfig.ini'!");
  tree.setEnv("DORN_DOMAIN", "london");
  EXPECT_STREQ("london", CapiZonFactory::getDefaultServer().c_str());
  vDatabases::clearCache();
}
