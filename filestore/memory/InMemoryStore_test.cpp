// The in-memory store: its sets, its direct operations, loads and writes
// between stores, and the shared store suite over it.

#include "filestore/memory/InMemoryStore.h"

#include <gtest/gtest.h>

#include <string>

#include "attribute/Property.h"
#include "project/Project.h"
#include "project/StoreTesting.h"
#include "registry/RondoRegistry.h"
#include "testing/StoreConformance.h"

using store_testing::expectFailure;

namespace {

// A store created, filled with the reference content and closed: what a
// reader finds.
vHandle<InMemoryStore> referenceStore() {
  vHandle<InMemoryStore> store(new InMemoryStore(vHandle<Project>()));
  store->create("reference", "seismic", "3d", StoreConformance::referenceKeys(), nullptr);
  StoreConformance::populate(*store);
  store->close();
  return store;
}

StoreConformanceCase inMemoryCase() {
  StoreConformanceCase c("InMemoryStore");
  c.openForReading = [] {
    vHandle<InMemoryStore> store = referenceStore();
    store->open("reference", 0, "", "", nullptr);
    return vHandle_cast<AttributeSet>(store);
  };
  c.openForUpdate = [] {
    vHandle<InMemoryStore> store = referenceStore();
    store->update("reference", 0, "", "", nullptr);
    return vHandle_cast<AttributeSet>(store);
  };
  c.makeUnopened = [] { return vHandle<AttributeSet>(new InMemoryStore(vHandle<Project>())); };
  return c;
}

// The reference content in the primary set, and a secondary set "picks"
// with TIME (Float32) over three instances, left active.
class InMemoryStoreTest : public ::testing::Test {
 protected:
  InMemoryStoreTest() : m_store(vHandle<Project>()) {
    m_store.create("survey", "seismic", "3d", StoreConformance::referenceKeys(), nullptr);
    StoreConformance::populate(m_store);
    KeyList pickKeys;
    pickKeys.addKey(Attribute("TIME", "", vFLOAT32));
    m_store.createAttributeSet("picks", pickKeys);
    m_store.addInstances(3);
    Attribute time("TIME", "", vFLOAT32);
    float const times[] = {1.5f, 2.5f, 3.5f};
    time.copyData(3, times);
    m_store.write(time, 1, 3);
  }

  std::vector<double> read(Store const& store, char const* name) {
    Attribute a = store.getAttribute(name);
    store.read(a, 1, store.getNInstances());
    std::vector<double> v;
    for (unsigned int i = 1; i <= a.getNInstances(); ++i) v.push_back(a.getValue(i));
    return v;
  }

  InMemoryStore m_store;
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(InMemoryStore, StoreConformance, ::testing::Values(inMemoryCase()), StoreConformance::caseName);

TEST_F(InMemoryStoreTest, ASetNamedButNotHeldIsNotFound) {
  m_store.openAttributeSet("survey");
  vString both[] = {"picks", "ghost"};
  int versions[] = {0, 0};
  m_store.removeProperty(Store::ATTRIBUTESET_NAMES);
  m_store.removeProperty(Store::ATTRIBUTESET_VERSIONS);
  m_store.addProperty(Property(Store::ATTRIBUTESET_NAMES, 2u, both));
  m_store.addProperty(Property(Store::ATTRIBUTESET_VERSIONS, 2u, versions));
  expectFailure([&] { m_store.openAttributeSet("ghost"); }, "InMemoryStore::doFindAttributeSet",
                "AttributeSet ghost not found in Store survey");
  m_store.openAttributeSet("picks");
  EXPECT_EQ(3u, m_store.getNInstances());
}

TEST_F(InMemoryStoreTest, DirectOperationsWorkOnTheActiveSet) {
  EXPECT_FALSE(m_store.hasAttribute(vUCString("CDP")));
  Attribute time("TIME", "", vFLOAT32);
  float const times[] = {9, 8, 7};
  time.copyData(3, times);
  m_store.setAttributeAndData(time);
  EXPECT_EQ(8.0f, m_store.readAttributeAndData("TIME").getFloat32(2));
  m_store.updateAttributeAndData(Attribute::getNameID("TIME")).setFloat32(1, 4.0f);
  EXPECT_EQ(4.0f, m_store.getAttributeAndData("TIME").getFloat32(1));
  m_store.keepInstances({3, 1});
  m_store.setClass("events");
  // The primary set was not touched.
  m_store.openAttributeSet("survey");
  EXPECT_EQ("seismic", std::string(m_store.getClass().c_str()));
  EXPECT_EQ(12u, m_store.getAttributeSetBuffer()->getNInstances());
}

TEST_F(InMemoryStoreTest, LoadsARangeOfAnotherStoreAndWritesIntoOneOnceTheRegistryInstalledItsView) {
  m_store.openAttributeSet("survey");
  InMemoryStore target{vHandle<Project>()};
  target.create("copy", "seismic", "3d", KeyList(), nullptr);
  EXPECT_TRUE(target.loadRangeFromStore(true, vHandle<Store>(new InMemoryStore(m_store)), 4, 6));
  EXPECT_EQ((std::vector<double>{100, 200, 300}), read(target, "OFFSET"));

  InMemoryStore source{vHandle<Project>()};
  source.create("two", "seismic", "3d", KeyList(), nullptr);
  StoreConformance::populate(source, {"CDP", "OFFSET"});
  source.keepInstances({7, 8});

  Store::InMemoryStoreView saved = Store::setInMemoryStoreView(nullptr);
  expectFailure([&] { m_store.writeIMSRange(source, 1, 2); }, "Store::writeIMSRange",
                "The InMemoryStore class has not been installed in this program.");
  registerRondoClasses();
  m_store.writeIMSRange(source, 1, 2);
  m_store.writeIMSList(source, {12, 11});
  EXPECT_EQ((std::vector<double>{3, 3, 1, 2, 2, 2, 3, 3, 3, 4, 3, 3}), read(m_store, "CDP"));
  EXPECT_EQ((std::vector<double>{100, 200, 300, 100, 200, 300, 100, 200, 300, 100, 200, 100}), read(m_store, "OFFSET"));
  Store::setInMemoryStoreView(saved == nullptr ? &InMemoryStore::asAttributeSet : saved);
}
