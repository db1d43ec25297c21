#include "foundation/vDatabases.h"

#include <gtest/gtest.h>

#include <string>

#include "foundation/TestReleaseTree.h"
#include "foundation/vDatabase.h"

namespace {

std::string str(vString const& s) { return std::string(s.c_str(), s.length()); }

char const* const kConfig =
    "; the site's databases\n"
    "[aliases]\n"
    "testdomain.example = Houston\n"
    "branch.example = london\n"
    "dangling.example = nowhere\n"
    "[Houston]\n"
    "ProductionDatabase = HPROD \n"
    "DevelopmentDatabase = hdev\n"
    "micoNameServiceAddress = corbaloc::hns:2809\n"
    "taoNameServiceAddress = corbaloc::hns:2810\n"
    "description = Houston centre\n"
    "[london]\n"
    "ProductionDatabase = lprod\n"
    "[lab]\n"
    "description = no databases at all\n";

}  // namespace

TEST(vDatabases, EntriesAliasesKeysUnknownDomainsAndTheDefault) {
  vDatabases dbs;
  dbs.loadFromMemory(kConfig, "memory.ini");
  ASSERT_EQ(3u, dbs.get().size());
  EXPECT_EQ(3u, dbs.getAliases().size());

  vDatabase const& h = dbs.get("TestDomain.Example");
  EXPECT_EQ("houston", str(h.getName()));
  EXPECT_EQ("HPROD", str(h.getProductionDatabase()));
  EXPECT_EQ("corbaloc::hns:2809", str(h.getMicoNameServiceAddress()));
  EXPECT_TRUE(h.hasKey("productiondatabase"));
  EXPECT_EQ("hdev", str(h.getKeyValue("DEVELOPMENTDATABASE")));
  expectFatal([&] { h.getKeyValue("colour"); }, "vDatabase::getKeyValue",
              "The key 'colour' is not defined for the database 'houston'!");

  EXPECT_EQ(&h, &dbs.get("houston"));
  EXPECT_EQ("london", str(dbs.get("branch.example").getName()));
  EXPECT_EQ("", str(dbs.get("london").getDevelopmentDatabase()));

  EXPECT_EQ("houston", str(dbs.getTrueDomain("testdomain.example")));
  EXPECT_EQ("lab", str(dbs.getTrueDomain("LAB")));
  for (char const* d : {"branch.example", "lab"}) EXPECT_TRUE(dbs.exists(d)) << d;
  for (char const* d : {"dangling.example", "aliases"}) EXPECT_FALSE(dbs.exists(d)) << d;

  EXPECT_TRUE(dbs.isValidProductionDatabase("hprod") && dbs.isValidDevelopmentDatabase("HDEV"));
  EXPECT_FALSE(dbs.isValidProductionDatabase("hdev") || dbs.isValidDevelopmentDatabase(""));
  for (char const* d : {"branch.example", "lprod"}) EXPECT_TRUE(dbs.isValidDatabase(d)) << d;
  EXPECT_FALSE(dbs.isValidDatabase("rondo"));

  dbs.loadFromMemory(kConfig, "/site/DatabaseConfig.ini");
  expectFatal([&] { dbs.get("mars.example"); }, "vDatabases::get",
              "Domain 'mars.example' not found in the database configuration file '/site/DatabaseConfig.ini'!");
  TestReleaseTree tree;
  tree.writeSystemFile("DatabaseConfig.ini", kConfig);
  vDatabases::clearCache();
  EXPECT_EQ("houston", str(vDatabases::getDefaultDatabaseEntry().getName()));
  EXPECT_EQ(tree.systemFilesDir() + "DatabaseConfig.ini", str(vDatabases::getDefault().getFileName()));
  EXPECT_TRUE(vDatabases::haveDefaultProductionDB() && vDatabases::haveDefaultDevelopmentDB());
  EXPECT_TRUE(vDatabases::isOracleAvailable());

  tree.setEnv("DORN_DOMAIN", "branch.example");
  EXPECT_EQ("london", str(vDatabases::getDefaultDatabaseEntry().getName()));
  EXPECT_TRUE(vDatabases::haveDefaultProductionDB() && !vDatabases::haveDefaultDevelopmentDB());

  tree.setEnv("DORN_DOMAIN", "lab");
  EXPECT_FALSE(vDatabases::isOracleAvailable());

  tree.setEnv("DORN_DOMAIN", "mars.example");
  EXPECT_FALSE(vDatabases::haveDefaultProductionDB());

  // The configuration is read once and kept, until replaced or forgotten.
  tree.writeSystemFile("DatabaseConfig.ini", "[mars.example]\nProductionDatabase = m\n");
  EXPECT_FALSE(vDatabases::getDefault().exists("mars.example"));
  vDatabases other;
  other.loadFromMemory("[mars.example]\nDevelopmentDatabase = d\n");
  vDatabases::setCache(other);
  EXPECT_TRUE(vDatabases::haveDefaultDevelopmentDB() && !vDatabases::haveDefaultProductionDB());
  vDatabases::clearCache();
  EXPECT_EQ("m", str(vDatabases::getDefaultDatabaseEntry().getProductionDatabase()));
  vDatabases::clearCache();
}
