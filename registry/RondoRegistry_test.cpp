// The registration point and its unit-test seam.

#include <gtest/gtest.h>

#include <string>

#include "foundation/TestReleaseTree.h"
#include "project/ProjectCatalogFactory.h"
#include "project/ProjectFactory.h"
#include "project/UTProject.h"
#include "project/UTProjectCatalog.h"
#include "registry/RondoRegistry.h"

namespace {

std::string str(vString const& s) { return std::string(s.c_str(), s.length()); }

// Puts the client makers back as they were.
class SavedClientMakers {
 public:
  SavedClientMakers()
      : m_catalog(ProjectCatalogFactory::getMaker("ClientProjectCatalog")),
        m_project(ProjectFactory::getMaker("ClientProject")) {}
  ~SavedClientMakers() {
    ProjectCatalogFactory::registerMaker("ClientProjectCatalog", m_catalog);
    ProjectFactory::registerMaker("ClientProject", m_project);
  }

 private:
  ProjectCatalogFactory::Maker m_catalog;
  ProjectFactory::Maker m_project;
};

std::string storeNames(vHandle<Project> const& project, char const* storeClass) {
  vHandle<Project::StoreList> list = project->getStoreList(storeClass, "");
  std::string all;
  for (vLCString const& n : *list) all += str(n) + " ";
  return all;
}

TEST(RondoRegistry, SeamStandsUnitTestClassesInForTheClients) {
  SavedClientMakers saved;
  TestReleaseTree tree;
  tree.setEnv("RONDO_CLIENT_CATALOG_IS_UNITTEST", "1");
  tree.setEnv("RONDO_UNITTEST_STORES", " line12.3:seismic:2d\twells.1:well  Grid.2:seismic ");
  ASSERT_TRUE(rondoClientIsUnitTest());
  registerRondoClasses();
  registerRondoClasses();  // again: no harm

  vHandle<ProjectCatalog> catalog = ProjectCatalogFactory::create("127.0.0.81", ProjectType::RONDO, "srv");
  ASSERT_NE(nullptr, dynamic_cast<UTProjectCatalog*>(catalog.get()));
  EXPECT_EQ(ProjectType::RONDO, catalog->getProjectType());
  EXPECT_EQ("127.0.0.81", str(catalog->getHost()));

  vHandle<Project> project = ProjectFactory::create(catalog);
  ASSERT_NE(nullptr, dynamic_cast<UTProject*>(project.get()));
  EXPECT_EQ("line12.3 wells.1 grid.2 ", storeNames(project, ""));
  EXPECT_EQ("line12.3 grid.2 ", storeNames(project, "seismic"));
  EXPECT_EQ("2d", str(project->getStoreDetails("line12", 3).getSubClass()));
  EXPECT_EQ(ProjectType::RONDO, project->getStoreDetails("wells", 1).getProjectType());
}

TEST(RondoRegistry, SeamKelpCatalogIsNamedAsTheClientNamesIt) {
  SavedClientMakers saved;
  TestReleaseTree tree;
  tree.setEnv("RONDO_CLIENT_CATALOG_IS_UNITTEST", "1");
  registerRondoClasses();
  unsigned int cached = ProjectCatalogFactory::getCacheSize();
  // Data host, then server: the Kelp catalog stands on its server.
  vHandle<ProjectCatalog> kelp = ProjectCatalogFactory::create("127.0.0.84", ProjectType::KELP, "127.0.0.85");
  EXPECT_EQ("127.0.0.84", str(kelp->getHost()));
  EXPECT_EQ("127.0.0.85", str(kelp->getServer()));
  EXPECT_EQ(kelp.get(), ProjectCatalogFactory::create("127.0.0.84", ProjectType::KELP, "127.0.0.85").get());
  EXPECT_EQ(cached + 1, ProjectCatalogFactory::getCacheSize());
  // Other types stand on their host; a Rondo catalog is asked for without
  // its server.
  vHandle<ProjectCatalog> rondo = ProjectCatalogFactory::create("127.0.0.84", ProjectType::RONDO, "127.0.0.85");
  EXPECT_EQ("127.0.0.84", str(rondo->getHost()));
  EXPECT_EQ("", str(rondo->getServer()));
}

TEST(RondoRegistry, SeamOnlyWithTheSwitchSetToOne) {
  TestReleaseTree tree;
  tree.unsetEnv("RONDO_CLIENT_CATALOG_IS_UNITTEST");
  EXPECT_FALSE(rondoClientIsUnitTest());
  tree.setEnv("RONDO_CLIENT_CATALOG_IS_UNITTEST", "yes");
  EXPECT_FALSE(rondoClientIsUnitTest());
  tree.setEnv("RONDO_CLIENT_CATALOG_IS_UNITTEST", "0");
  EXPECT_FALSE(rondoClientIsUnitTest());
  // Without the seam, registering changes nothing about the client
  // classes this build does not have.
  SavedClientMakers saved;
  ProjectCatalogFactory::registerMaker("ClientProjectCatalog", nullptr);
  registerRondoClasses();
  EXPECT_EQ(nullptr, ProjectCatalogFactory::getMaker("ClientProjectCatalog"));
}

TEST(RondoRegistry, MalformedScriptedStores) {
  SavedClientMakers saved;
  TestReleaseTree tree;
  tree.setEnv("RONDO_CLIENT_CATALOG_IS_UNITTEST", "1");
  registerRondoClasses();
  vHandle<ProjectCatalog> catalog = ProjectCatalogFactory::create("127.0.0.82", ProjectType::RONDO, "");
  for (char const* entry : {"noversion", "name.x", ".3"}) {
    tree.setEnv("RONDO_UNITTEST_STORES", std::string("ok.1 ") + entry);
    expectFatal([&] { ProjectFactory::create(catalog); }, "RondoRegistry::makeUnitTestClientProject",
                std::string("RONDO_UNITTEST_STORES entry '") + entry +
                    "' is not name.version[:class[:subclass]].");
  }
}

}  // namespace
