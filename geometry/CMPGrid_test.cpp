#include "geometry/CMPGrid.h"

#include <gtest/gtest.h>

#include <string>

#include "attribute/Property.h"
#include "filestore/memory/InMemoryStore.h"
#include "foundation/TestFailure.h"
#include "project/StoreDescription.h"
#include "project/StoreFactory.h"
#include "project/UTProject.h"
#include "project/UTProjectCatalog.h"
#include "registry/RondoRegistry.h"

namespace {

CMPGrid rotatedPadded() {
  return CMPGrid(101, -3, 2000, 2, 30, 400, -1, 70, 75, vCoordinate(612345.125, 5712345.875), -25.0f, 12.5f, 0.4321,
                 CMPBasicGrid::ALONG_INLINES, vCoordinate(-50.0, 75.0));
}

TEST(CMPGrid, KeptAsPropertiesOfAnInMemoryStore) {
  InMemoryStore store{vHandle<Project>()};
  store.create("survey", "grid", "cmp", KeyList(), nullptr);
  EXPECT_FALSE(CMPGrid::containsGrid(store));
  expectFailure([&] { CMPGrid{store}; }, "CMPGrid::loadFromStore()", "Store survey does not contain a proper grid.");

  CMPGrid grid = rotatedPadded();
  grid.setUnits(0);
  grid.addToStore(store);
  EXPECT_TRUE(CMPGrid::containsGrid(store));
  EXPECT_EQ(std::string("ALONG_INLINES"), store.findProperty(vUCString("CMP_ORDERING"))->getString().c_str());
  EXPECT_EQ(std::string("FEET"), store.findProperty(vUCString("UNITS"))->getString().c_str());
  EXPECT_EQ(-225, store.findProperty(vUCString("CMPLINE_INCREMENT"))->getInt32());
  CMPGrid const back(store);
  EXPECT_EQ(grid, back);
  EXPECT_EQ(grid.getLastCMP(), back.getLastCMP());

  // Writing again replaces; the line step alone is enough to tell padding.
  CMPGrid const other(1, 1, 1, 1, 3, 1, 1, 4, vCoordinate(), 10.0f, 10.0f, 0.0, CMPBasicGrid::ALONG_CROSSLINES);
  other.addToStore(store);
  store.removeProperty(vUCString("NUM_BINS_ALONG_ORDERING_WITH_PADDING"));
  EXPECT_EQ(other, CMPGrid(store));

  store.addProperty(Property(vUCString("X_STORAGE_BIAS"), 10.0));
  expectFailure([&] { CMPGrid{store}; }, "CMPGrid::loadFromStore()",
                "The X & Y storageBias in grid stores is obsolete. Do not use!!!");
  store.removeProperty(vUCString("CMP_ORDERING"));
  EXPECT_FALSE(CMPGrid::containsGrid(store));
}

TEST(CMPGrid, GridStoresThroughTheStoreFactory) {
  registerRondoClasses();
  CMPGrid const grid = rotatedPadded();
  vHandle<InMemoryStore> live(new InMemoryStore(vHandle<Project>()));
  StoreDescription const description(live, "survey_grid");
  grid.createGridStore(description);
  EXPECT_EQ(std::string("grid"), live->getClass().c_str());
  EXPECT_EQ(std::string("cmp"), live->getSubClass().c_str());
  EXPECT_EQ(grid, CMPGrid(description));
  CMPGrid const other(1, 1, 1, 1, 3, 1, 1, 4, vCoordinate(5.0, 6.0), 10.0f, 10.0f, 1.0);
  other.updateGridStore(description);
  EXPECT_EQ(other, CMPGrid(description));

  // Through a project: the factory hands out the store pushed for it.
  vHandle<Project> project(
      new UTProject(vHandle<ProjectCatalog>(new UTProjectCatalog("127.0.0.115", ProjectType::UNITTEST))));
  vHandle<InMemoryStore> pushed(new InMemoryStore(project));
  StoreFactory::pushStore(vHandle_cast<Store>(pushed));
  grid.createGridStore(project, "project_grid", 0);
  EXPECT_EQ(std::string("project_grid"), pushed->getName().c_str());
  EXPECT_EQ(grid, CMPGrid(*pushed));

  StoreDescription const unwritable(vFilename("/nonexistent/grid.bogus"));
  MessageHandling quiet;
  std::string const text = fatalText([&] { grid.createGridStore(unwritable); });
  EXPECT_EQ(0u, text.find("CMPGrid::createGridStore: Requested Grid '" + std::string(unwritable.toString().c_str()) +
                          "' could not be created."))
      << text;
}

}  // namespace
