#include "decorator/BindStoreDecorator.h"

#include <gtest/gtest.h>

#include "attribute/AttributeDefinition.h"
#include "attribute/AttributeDefinitionTable.h"
#include "decorator/DecoratorTesting.h"
#include "decorator/StoreDecoratorFactory.h"
#include "foundation/TestReleaseTree.h"
#include "syslayer/FSTesting.h"

using namespace decorator_testing;

namespace {

// The shipped vocabulary, which defines "STORE.ID" and the sequence of the
// join views.
class BindStoreDecoratorTest : public ::testing::Test {
 protected:
  void SetUp() override {
    tree.writeSystemFile("AttributeDefTable4.txt",
                         fs_testing::readFile(RONDO_TEST_SOURCE_DIR "/release/SystemFiles/AttributeDefTable4.txt"));
    AttributeDefinitionTable::instance().dropTable();
  }
  void TearDown() override { AttributeDefinitionTable::instance().dropTable(); }
  TestReleaseTree tree;
};

// Reference instances 1-3 and 4-5 (the second without ELEV).
vHandle<Store> part(Layout const& layout, bool withElev = true) {
  vHandle<Store> store = openStore(layoutShelf(layout));
  if (!withElev) {
    vHandle<AttributeSelectDecorator> select;
    store = StoreDecoratorFactory::addAttributeSelect(store, select);
    select->selectAttributes({"CDP", "OFFSET", "TRACE"});
  }
  return store;
}

TEST_F(BindStoreDecoratorTest, StoresEndToEndWithTheirOrdinals) {
  vHandle<BindStoreDecorator> bind;
  vHandle<Store> view = StoreDecoratorFactory::addBind(part({1, 2, 3}), bind);
  bind->addStore(part({4, 5}, false));
  EXPECT_EQ((std::vector<std::string>{"CDP", "OFFSET", "ELEV", "TRACE", "STORE.ID"}), names(view->getAttributeList()));
  EXPECT_EQ((std::vector<double>{1, 1, 1, 2, 2}), values(*view, "STORE.ID"));
  EXPECT_EQ((std::vector<double>{1000.5, 1001, 1001.5, 0, 0}), values(*view, "ELEV"));
  Attribute id = view->getAttribute("STORE.ID");
  view->read(id, std::vector<unsigned int>{5, 1});
  EXPECT_EQ((std::vector<int>{2, 1}), (std::vector<int>{id.getInt32(1), id.getInt32(2)}));
  // The ordinal's definition is the shipped vocabulary's, as is the join views' sequence.
  EXPECT_EQ(vINT32, AttributeDefinition::getDefinition("attributeset.sequence").getDataType());
  EXPECT_STREQ("ATTRIBUTESET.SEQUENCE", AttributeDefinition::getDefinition("attributeset.sequence").getName().c_str());

  Attribute offset = view->getAttribute("OFFSET");
  expectFatal([&] { view->read(offset, 4, 6); }, "BindStoreDecorator::read(range)",
              "Could not find instances 4-6, bound Store has 5 instances.");
  expectFatal([&] { view->read(offset, std::vector<unsigned int>{2, 9}); }, "BindStoreDecorator::read(list)",
              "Range of list was 2-9, bound Store has 5 instances, found 9 instance in list of 2.");
  expectFatal([&] { view->read(offset, offset, 1, 1); }, "BindStoreDecorator::read", "Not implemented yet.");
  expectFatal([&] { view->getAttribute("NOPE"); }, "BindStoreDecorator::getAttribute()",
              "Attribute 'NOPE' is not in store.");
  expectFatal([&] { view->openAttributeSet("other"); }, "BindStoreDecorator::openAttributeSet",
              "Attribute set 'other' does not exist!");

  // Only stores of one shape bind.
  vHandle<Store> oneKey(new TestMemoryStore(vHandle<Project>(), std::make_shared<TestMemoryShelf>()));
  KeyList keys;
  keys.addKey(StoreConformance::referenceDefinition("CDP"));
  oneKey->create("onekey", "seismic", "3d", keys, nullptr);
  expectFatal([&] { bind->addStore(oneKey); }, "BindStoreDecorator::addStore",
              "Store onekey has 1 keys while existing Store(s) in binding have 2 keys.");
  EXPECT_EQ(2u, bind->getStores().size());
}

}  // namespace
