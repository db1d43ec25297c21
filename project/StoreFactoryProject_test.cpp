// The store factory's stores of projects and of memory: the class by
// project type, the stores that a project serves, live in-memory stores,
// and the queue of pushed stores.
//
// Projects are made on loopback addresses of these tests' own, so that the
// process-wide project cache gives each test its own projects.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "project/AttributeSetFactory.h"
#include "project/ProjectFactory.h"
#include "project/StoreDetails.h"
#include "project/StoreFactoryTesting.h"
#include "project/UTProject.h"
#include "project/UTProjectCatalog.h"

namespace {

using namespace factory_testing;

// The stores of UnitTest projects, while the in-memory store is not linked
// in: stores on one shelf.
std::shared_ptr<TestMemoryShelf>& projectShelf() {
  static std::shared_ptr<TestMemoryShelf> shelf = std::make_shared<TestMemoryShelf>();
  return shelf;
}

vHandle<Store> storeOnProjectShelf(vHandle<Project> const& project) {
  return vHandle<Store>(new TestMemoryStore(project, projectShelf()));
}

StoreFactory::Makers unitTestMakers() { return {&storeOnProjectShelf, nullptr, nullptr, nullptr}; }

StoreDescription unitTestStore(char const* host, char const* store, char const* storeClass = "seismic") {
  // UnitTest projects have no server: the factory's cache finds one only when none is named.
  return StoreDescription(ProjectType::UNITTEST, "", host, "survey", store, storeClass, 0, "");
}

// UnitTest projects need their registered class (what it makes is the
// registry's test); other projects get the standard store, whose sets the
// attribute set factory makes when the store first needs one.
TEST(StoreFactoryCreate, UnitTestProjectsNeedTheirClassOthersGetAStoreOfTheProjectsSets) {
  CleanQueue queue;
  {
    StandIn none("InMemoryStore", {nullptr, nullptr, nullptr, nullptr});
    expectFatal([] { StoreFactory::create(projectOn("127.0.0.91", ProjectType::UNITTEST)); },
                "StoreFactory::create",
                "Class InMemoryStore is not available: no maker is registered for it (see registerRondoClasses).");
  }
  AttributeSetFactory::clearAttributeSets();
  auto shelf = std::make_shared<TestMemoryShelf>();
  shelve(shelf, "line7");
  vHandle<Project> project = projectOn("127.0.0.92", ProjectType::RONDO);
  vHandle<Store> store = StoreFactory::create(project);
  EXPECT_EQ(nullptr, dynamic_cast<TestMemoryStore*>(store.get()));
  EXPECT_FALSE(store->isOpen());
  vHandle<AttributeSet> set(new TestMemoryAttributeSet(project, shelf));
  AttributeSetFactory::pushAttributeSet(set);
  store->open("line7", 0, "", "", nullptr);
  EXPECT_EQ(0u, AttributeSetFactory::getNPushedAttributeSets());
  EXPECT_EQ((std::vector<int>{10, 20}), readInts(*store, "CDP"));
  EXPECT_EQ("seismic", str(store->getClass()));
  store->close();
  AttributeSetFactory::clearAttributeSets();
}

// Made and opened through the project is the registry's test; here the
// update, and the attribute set that a name carries.
TEST(StoreFactoryProjectServed, UpdateTheSetOfTheNameAndPushedStoresBeforeAnyProject) {
  CleanQueue queue;
  StandIn unitTest("InMemoryStore", unitTestMakers());
  StoreDescription d = unitTestStore("127.0.0.95", "line9");
  vHandle<Store> made = StoreFactory::createStore(d, "2d", cdpKeys(), nullptr);
  made->addInstances(2);
  made->write(ints("CDP", {10, 20}), 1, 2);
  made->close();
  vHandle<Store> updated = StoreFactory::updateStore(d, "", nullptr);
  updated->write(ints("CDP", {8}), 2, 2);
  updated->close();
  vHandle<Store> again = StoreFactory::openStore(d, "", nullptr);
  EXPECT_EQ((std::vector<int>{10, 8}), readInts(*again, "CDP"));
  again->close();

  TestMemoryStore store(vHandle<Project>(), projectShelf());
  store.create("line4", "seismic", "2d", cdpKeys(), nullptr);
  store.createAttributeSet("picks", cdpKeys());
  store.close();
  StoreDescription named(vString("unittest::127.0.0.96:survey:line4/picks"));
  vHandle<Store> opened = StoreFactory::openStore(named, "", nullptr);
  EXPECT_EQ("line4_picks", str(opened->getAttributeSetName()));
  opened->close();
  named.setAttributeSetName("");
  vHandle<Store> primary = StoreFactory::openStore(named, "", nullptr);
  EXPECT_EQ("line4", str(primary->getAttributeSetName()));
  primary->close();

  // Pushed stores come first, in first out, whatever the project.
  auto shelf = std::make_shared<TestMemoryShelf>();
  shelve(shelf, "open1");
  vHandle<Store> first(new TestMemoryStore(vHandle<Project>(), shelf));
  first->open("open1", 0, "", "", nullptr);
  vHandle<Store> second(new TestMemoryStore(vHandle<Project>(), shelf));
  StoreFactory::pushStore(first);
  StoreFactory::pushStore(second);

  // A Zonmesh project has no store class registered here: the queue is asked before the type.
  vHandle<Store> a = StoreFactory::create(projectOn("127.0.0.93", ProjectType::ZONMESH));
  vHandle<Store> b = StoreFactory::create(projectOn("127.0.0.93", ProjectType::UNITTEST));
  EXPECT_EQ(first.get(), a.get());
  EXPECT_TRUE(a->isOpen());  // handed over as it is
  EXPECT_EQ(second.get(), b.get());

  StoreFactory::pushStore(first);
  StoreFactory::clearStores();
  EXPECT_EQ(0u, StoreFactory::getNPushedStores());
}

TEST(StoreFactoryProjectServed, HasStoreAsksTheProject) {
  StoreDescription d = unitTestStore("127.0.0.97", "line12");
  d.setVersion(3);
  vHandle<Project> project = ProjectFactory::openProject(d.getFullProjectName());
  UTProject* scripted = dynamic_cast<UTProject*>(project.get());
  ASSERT_NE(nullptr, scripted);
  EXPECT_FALSE(StoreFactory::hasStore(d));
  scripted->addStore(StoreDetails(ProjectType::UNITTEST, vString(), "line12", 3));
  EXPECT_TRUE(StoreFactory::hasStore(d));
  d.setVersion(4);
  EXPECT_FALSE(StoreFactory::hasStore(d));
}

struct ServedCreate {
  StoreDescription description;
  std::string setName;
  StoreCreationOptions const* options = nullptr;
};

ServedCreate& servedCreate() {
  static ServedCreate last;
  return last;
}

vHandle<Store> createServedOnShelf(StoreDescription const& description, vLCString const& setName, KeyList const& keys,
                                   StoreCreationOptions const* options) {
  servedCreate() = {description, str(setName), options};
  vHandle<Store> store(new TestMemoryStore(vHandle<Project>(), std::make_shared<TestMemoryShelf>()));
  store->create(description.getStoreName(), "seismic", "3d", keys, options);
  return store;
}

// The back end makes them itself, without a project being opened here.
TEST(StoreFactoryProjectServed, ZonmeshStoresAreMadeByTheirBackEnd) {
  StoreDescription d(vString("zonmesh::127.0.0.98:survey:line1"));
  StandIn zon("ZonStore", {nullptr, nullptr, nullptr, &createServedOnShelf});
  StoreCreationOptions options;
  vHandle<Store> store = StoreFactory::createStore(d, "traces", cdpKeys(), &options);
  EXPECT_EQ(d, servedCreate().description);
  EXPECT_EQ("traces", servedCreate().setName);
  EXPECT_EQ(&options, servedCreate().options);
  EXPECT_TRUE(store->isOpen());
}

// Create, update and open act on the live store, handing it back as it is
// when it is open already; its printed name finds it by its address.
TEST(StoreFactoryInMemory, TheLiveStoreIsTheOneActedOn) {
  vHandle<TestMemoryStore> live(new TestMemoryStore(vHandle<Project>(), std::make_shared<TestMemoryShelf>()));
  StoreDescription d(live, "fresh");
  KeyList const keys = cdpKeys();
  // Made with the description's class and the set name as the subclass.
  d.setStoreClass("seismic");
  vHandle<Store> store = StoreFactory::createStore(d, "3d", keys, nullptr);
  EXPECT_EQ(static_cast<Store*>(live.get()), store.get());
  store->addInstances(2);
  store->write(ints("CDP", {11, 20}), 1, 2);
  store->close();
  vHandle<Store> updated = StoreFactory::updateStore(d, "", nullptr);
  EXPECT_EQ(store.get(), updated.get());
  updated->write(ints("CDP", {12}), 1, 1);
  EXPECT_EQ(store.get(), StoreFactory::createStore(d, "", keys, nullptr).get());
  EXPECT_EQ((std::vector<int>{12, 20}), readInts(*store, "CDP"));
  store->close();

  EXPECT_EQ(store.get(), StoreFactory::openStore(d, "", nullptr).get());
  EXPECT_EQ(store.get(), StoreFactory::openStore(d, "", nullptr).get());
  StoreDescription parsed(d.toString());
  EXPECT_EQ(store.get(), StoreFactory::openStore(parsed, "", nullptr).get());
  EXPECT_TRUE(StoreFactory::hasStore(parsed));
  store->close();
}

}  // namespace
