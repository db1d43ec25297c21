// StoreImp over the in-memory test sets: lazy sets, the guards and their
// texts, secondary attribute sets and their bookkeeping properties, the
// shared property list, and the operations a StoreImp refuses.

#include <gtest/gtest.h>

#include "attribute/AttributeSetBuffer.h"
#include "attribute/RecordBuffer.h"
#include "project/FullStoreName.h"
#include "project/Project.h"
#include "project/StoreFactoryTesting.h"
#include "project/StoreTesting.h"
#include "testing/TestMemoryStore.h"

using store_testing::expectFailure;

namespace {

using factory_testing::ints;
using factory_testing::readInts;
using factory_testing::str;

// A shelf with store "a": three instances of CDP 1 2 3, key CDP.
std::shared_ptr<TestMemoryShelf> shelfWithStoreA() {
  auto shelf = std::make_shared<TestMemoryShelf>();
  TestMemoryStore store(vHandle<Project>(), shelf);
  store.create("a", "seismic", "3d", factory_testing::cdpKeys(), nullptr);
  store.addInstances(3);
  store.write(ints("CDP", {1, 2, 3}), 1, 3);
  store.close();
  return shelf;
}

std::vector<std::string> setList(Store const& store) {
  std::vector<std::string> names;
  vHandle<Store::AttributeSetList> list = store.getAttributeSetList();
  for (vLCString const& n : *list) names.push_back(str(n));
  return names;
}

// Exposes what derived classes of StoreImp see.
class OpenStore : public TestMemoryStore {
 public:
  using TestMemoryStore::TestMemoryStore;
  using StoreImp::doCreateAttributeSetClone;
};

}  // namespace

TEST(StoreImp, MakesItsSetsOnlyWhenFirstNeededAndClosesAtItsEnd) {
  TestMemoryStore store(vHandle<Project>(), shelfWithStoreA());
  EXPECT_EQ(0, store.getNSetsMade());
  store.open("a", 0, "", "", nullptr);
  EXPECT_EQ(1, store.getNSetsMade());
  store.close();
  store.open("a", 0, "", "", nullptr);
  EXPECT_EQ(1, store.getNSetsMade()) << "the primary set is kept across a close";
  // The concrete destructor closes an open store.
  vHandle<AttributeSet> primary;
  {
    TestMemoryStore open(vHandle<Project>(), shelfWithStoreA());
    open.open("a", 0, "", "", nullptr);
    primary = open.getPrimarySet();
    EXPECT_TRUE(primary->isOpen());
  }
  EXPECT_FALSE(primary->isOpen());
}

// The guards that name no attribute; the others are the store suite's.
TEST(StoreImp, GuardsOfOpeningAndCreating) {
  auto shelf = shelfWithStoreA();
  TestMemoryStore store(vHandle<Project>(), shelf);
  expectFailure([&] { store.getAttributeList(); }, "StoreImp::getAttributeList", "The store has not been opened yet!");
  EXPECT_EQ(1, store.getNSetsMade()) << "the guard made the set it looks at";
  // A failed open leaves the store closed.
  expectFailure([&] { store.open("nosuch", 0, "", "", nullptr); }, "TestMemoryAttributeSet::open",
                "AttributeSet 'nosuch' does not exist.");
  EXPECT_FALSE(store.isOpen());
  store.open("a", 0, "", "", nullptr);
  expectFailure([&] { store.update("a", 0, "", "", nullptr); }, "StoreImp::update",
                "The store 'a' has already been opened!");
  expectFailure([&] { store.create("other", "seismic", "3d", KeyList(), nullptr); }, "StoreImp::create",
                "Store is already open as a");
  // Under its own name the store starts again, as version 2.
  store.create("a", "seismic", "2d", KeyList(), nullptr);
  EXPECT_EQ(2, store.getVersion());
  EXPECT_EQ(0u, store.getNInstances());
  EXPECT_EQ("2d", str(store.getSubClass()));
  store.close();
  TestMemoryStore other(vHandle<Project>(), shelf);
  other.create(FullStoreName(vString("proj:b.4")), "seismic", "3d", KeyList(), nullptr);
  EXPECT_EQ("b", str(other.getName()));
}

// Switching between sets is the in-memory store's test; here the names and
// the bookkeeping on the primary set, and names that carry their set.
TEST(StoreImp, CreatesAndKeepsSecondarySets) {
  auto shelf = shelfWithStoreA();
  {
    TestMemoryStore store(vHandle<Project>(), shelf);
    store.update("a", 0, "", "", nullptr);
    EXPECT_EQ(std::vector<std::string>{"a"}, setList(store));
    EXPECT_EQ("a_b", str(store.myConstructSetName("b")));
    EXPECT_EQ("x", str(StoreImp::myDeconstructSetName("x_")));
    EXPECT_EQ("foo", str(StoreImp::myDeconstructSetName("aset_foo")));
    store.createAttributeSet("b", KeyList());
    EXPECT_EQ("a_b", str(store.getAttributeSetName()));
    store.addAttribute(Attribute("AMP", "", vINT32));
    store.addInstances(2);
    store.write(ints("AMP", {7, 8}), 1, 2);
    AttributeSet& primary = *store.getPrimarySet();
    ASSERT_TRUE(primary.hasProperty("ATTRIBUTESET_VERSIONS"));
    EXPECT_EQ("b", str(primary.findProperty(Store::ATTRIBUTESET_NAMES)->getString(1)));
    EXPECT_EQ(1, primary.findProperty(Store::ATTRIBUTESET_VERSIONS)->getInt32(1));
    store.createAttributeSet("c", KeyList());
    store.updateAttributeSet("b");
    EXPECT_EQ((std::vector<int>{7, 8}), readInts(store, "AMP"));
    store.close();
  }
  TestMemoryStore store(vHandle<Project>(), shelf);
  store.open(FullStoreName(vString("proj:a/b")), "", "", nullptr);
  EXPECT_EQ((std::vector<int>{7, 8}), readInts(store, "AMP"));
  store.openAttributeSet("c");
  store.openAttributeSet("c");  // again: opened afresh
  EXPECT_EQ("attributeset", str(shelf->find("a_c")->className));
  store.close();
  store.update(FullStoreName(vString("proj:a/c")), "", "", nullptr);
  store.addInstances(1);
  EXPECT_EQ(1u, store.getNInstances());
}

TEST(StoreImp, RefusesSetsThatCannotBeOrAreNot) {
  TestMemoryStore store(vHandle<Project>(), shelfWithStoreA());
  store.update("a", 0, "", "", nullptr);
  expectFailure([&] { store.createAttributeSet("a", KeyList()); }, "StoreImp::createAttributeSet",
                "Cannot create an AttributeSet that has that same name as the Store 'a'.");
  store.createAttributeSet("b", KeyList());
  expectFailure([&] { store.createAttributeSet("b", KeyList()); }, "StoreImp::createAttributeSet",
                "Cannot create an AttributeSet called 'b' in Store 'a' because one already exists.");
  expectFailure([&] { store.openAttributeSet("c"); }, "StoreImp::openAttributeSet",
                "The AttributeSet 'c' is not a member of the Store 'a'.");

  // A failed switch leaves the former set active.
  AttributeSet& primary = *store.getPrimarySet();
  Property versions(*primary.findProperty(Store::ATTRIBUTESET_VERSIONS));
  versions.setInt32(99, 1);
  primary.removeProperty(Store::ATTRIBUTESET_VERSIONS);
  primary.addProperty(versions);
  store.openAttributeSet("a");
  expectFailure([&] { store.openAttributeSet("b"); }, "TestMemoryAttributeSet::open",
                "AttributeSet 'a_b' has no version 99.");
  EXPECT_EQ("a", str(store.getAttributeSetName()));

  primary.removeProperty(Store::ATTRIBUTESET_VERSIONS);
  expectFailure([&] { store.updateAttributeSet("b"); }, "StoreImp::updateAttributeSet",
                "The required Property 'ATTRIBUTESET_VERSIONS' does not exist in Store 'a'.");
  int const one = 1;
  primary.addProperty(Property(Store::ATTRIBUTESET_VERSIONS, 1u, &one));
  Property names(*primary.findProperty(Store::ATTRIBUTESET_NAMES));
  names.resize(2);
  names.setString("d", 2);
  primary.removeProperty(Store::ATTRIBUTESET_NAMES);
  primary.addProperty(names);
  expectFailure([&] { store.openAttributeSet("d"); }, "StoreImp::openAttributeSet",
                "The Store 'a' does not have an AttributeSet named 'd'.");
}

TEST(StoreImp, PropertiesAreThoseOfTheActiveSet) {
  auto shelf = shelfWithStoreA();
  {
    TestMemoryStore store(vHandle<Project>(), shelf);
    store.update("a", 0, "", "", nullptr);
    store.addProperty(Property("UNITS", vString("ms")));
    EXPECT_TRUE(store.getPrimarySet()->hasProperty("UNITS"));

    store.createAttributeSet("b", KeyList());
    EXPECT_FALSE(store.hasProperty("UNITS")) << "a new set has its own list";
    store.addProperty(Property("GAIN", 2.5));
    EXPECT_FALSE(store.getPrimarySet()->hasProperty("GAIN"));

    store.openAttributeSet("a");
    EXPECT_TRUE(store.hasProperty("UNITS"));
    // The bookkeeping of the sets survives a clear.
    store.clearProperties();
    EXPECT_FALSE(store.hasProperty("UNITS"));
    EXPECT_EQ(2u, store.getNProperties());
    EXPECT_EQ((std::vector<std::string>{"a", "b"}), setList(store));
    store.addProperty(Property("UNITS", vString("m")));
    store.removeProperty(vUCString("UNITS"));
    store.addProperty(Property("UNITS", vString("ft")));
    store.close();
  }
  TestMemoryStore store(vHandle<Project>(), shelf);
  store.open("a", 0, "", "", nullptr);
  ASSERT_TRUE(store.hasProperty("UNITS"));
  EXPECT_EQ("ft", str(store.findProperty(vUCString("UNITS"))->getString()));
  store.openAttributeSet("b");
  EXPECT_TRUE(store.hasProperty("GAIN"));
}

TEST(StoreImp, RefusesComparisonAndPropertyAssignment) {
  OpenStore a{vHandle<Project>()};
  TestMemoryStore b{vHandle<Project>()};
  expectFailure([&] { (void)(a == b); }, "StoreImp::operator==()", "This operation is not implemented for StoreImp.");
  TestMemoryAttributeSet set(vHandle<Project>(), std::make_shared<TestMemoryShelf>());
  expectFailure([&] { a.doCreateAttributeSetClone(set); }, "StoreImp::doCreateAttributeSetClone",
                "Need code, what does this mean?");
}

TEST(AttributeSet, ReadsARangeIntoABufferAttributeByAttribute) {
  TestMemoryStore store(vHandle<Project>(), shelfWithStoreA());
  store.update("a", 0, "", "", nullptr);
  store.addAttribute(Attribute("AMP", "", vINT32));
  store.addAttribute(Attribute("TRACE", "", vFLOAT32, 2));
  store.write(ints("AMP", {10, 20, 30}), 1, 3);
  Attribute trace("TRACE", "", vFLOAT32, 2);
  float const samples[] = {1.5f, 2.5f, 3.5f, 4.5f, 5.5f, 6.5f};
  trace.copyData(3, samples);
  store.write(trace, 1, 3);

  AttributeSetBuffer buffer;
  buffer.addAttribute(Attribute("TRACE", "", vFLOAT32, 2));
  AttributeSetBuffer::Layout layout{{Attribute("CDP", "", vINT32), 0}, {Attribute("AMP", "", vINT32), 4}};
  buffer.addRecordBuffer("headers", RecordBuffer(8), layout);
  buffer.setNInstances(2);
  EXPECT_FALSE(store.prepareBuffer(buffer)) << "the test sets keep no buffer of their own";

  store.readBufferRange(buffer, 2, 3);
  EXPECT_EQ(6.5f, buffer.readAttributeAndData("TRACE").getFloat32Pointer(2)[1]);
  int32_t records[4] = {};
  buffer.exportRange(reinterpret_cast<char*>(records), 1, 2, "headers");
  EXPECT_EQ((std::vector<int32_t>{2, 20, 3, 30}), std::vector<int32_t>(records, records + 4));
}
