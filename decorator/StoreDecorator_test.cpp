// The decorator contract on real stacks: forwarding, the factory, scratch stores.

#include <gtest/gtest.h>

#include "attribute/AttributeSetBuffer.h"
#include "attribute/Property.h"
#include "decorator/DecoratorTesting.h"
#include "decorator/SelectStoreDecorator.h"
#include "decorator/StoreDecorator.h"
#include "decorator/StoreDecoratorFactory.h"
#include "project/StoreDetails.h"
#include "project/UTProject.h"
#include "project/UTProjectCatalog.h"

using namespace decorator_testing;

namespace {

vHandle<Project> unitTestProject() {
  vHandle<ProjectCatalog> catalog(new UTProjectCatalog("host", ProjectType::UNITTEST));
  return vHandle<Project>(new UTProject(catalog));
}

TEST(StoreDecoratorForwarding, WritesSetsAndPropertiesReachTheStoreBelow) {
  vHandle<Store> below = referenceStore(true);
  vHandle<Store> decorator(new StoreDecorator(below));
  decorator->setAttributeClass("ELEV", "HEIGHT");
  EXPECT_EQ(std::string("HEIGHT"), below->getAttribute("ELEV").getClass().c_str());
  // A secondary set made through the decorator is the store's.
  decorator->createAttributeSet("extra", StoreConformance::referenceKeys());
  EXPECT_EQ(std::string("reference_extra"), below->getAttributeSetName().c_str());
  decorator->addProperty(Property("COLOUR", vString("blue")));
  EXPECT_TRUE(below->hasProperty(vUCString("COLOUR")));
  decorator->removeProperty(vUCString("COLOUR"));
  EXPECT_FALSE(below->hasProperty(vUCString("COLOUR")));
  // Comparison and property assignment are the store's to answer.
  PropertyI properties;
  std::string const refused = "This operation is not implemented for StoreImp.";
  expectFailure([&] { *decorator = properties; }, "StoreImp::operator=()", refused);
  expectFailure([&] { (void)(*decorator == *below); }, "StoreImp::operator==()", refused);
}

// Buffered reads are not forwarded: they go through the view's own reads.
TEST(StoreDecoratorForwarding, BufferedReadsGoThroughTheViewsReads) {
  ObservedStore* observed = nullptr;
  vHandle<SelectStoreDecorator> view;
  vHandle<Store> store = StoreDecoratorFactory::addSelect(observedStore(referenceLayout(), observed), view);
  view->addOperator(vHandle<SelectOperatorBase>(new RangeOperator("cdp3", "CDP", 3, 3)));
  EXPECT_EQ(3u, store->getNInstances());  // selects before the counts start
  AttributeSetBuffer buffer;
  EXPECT_FALSE(store->prepareBuffer(buffer));
  buffer.addAttribute(store->getAttribute("ELEV"));
  buffer.setNInstances(2);
  observed->lists.clear();
  observed->rangeReads = 0;
  store->readBufferRange(buffer, 2, 3);
  EXPECT_EQ(0, observed->rangeReads);
  ASSERT_EQ(1u, observed->lists.size());
  EXPECT_EQ((std::vector<unsigned int>{8, 9}), observed->lists[0]);
  EXPECT_EQ(1004.5, buffer.readAttributeAndData("ELEV").getValue(2));
}

// Flushes stop at the decorator; a released store leaves an empty handle.
TEST(StoreDecoratorHandle, FlushStopsAndReleaseLeavesAnEmptyHandle) {
  ObservedStore* observed = nullptr;
  vHandle<Store> below = observedStore(referenceLayout(), observed);
  StoreDecorator decorator(below);
  decorator.flush();
  EXPECT_EQ(0, observed->flushes);
  vHandle<Store> released = decorator.releaseDecoratedStore();
  EXPECT_EQ(2, below.getMasterCount());
  expectFailure([&] { decorator.getNInstances(); }, "vHandle::get()", "Trying to get a NULL pointer");
  // Until a store is set again; setting the same one again counts nothing.
  decorator.setDecoratedStore(released);
  decorator.setDecoratedStore(released);
  EXPECT_EQ(12u, decorator.getNInstances());
  EXPECT_EQ(3, below.getMasterCount()) << "below, released, the decorator's";
}

// --- factory ---------------------------------------------------------------------------

TEST(StoreDecoratorFactoryStacking, AddingAndRemovingStacksAndUnstacks) {
  vHandle<Store> inner = referenceStore();
  vHandle<SelectStoreDecorator> first;
  vHandle<AttributeSelectDecorator> second;
  vHandle<SelectStoreDecorator> third;
  vHandle<Store> top = StoreDecoratorFactory::addSelect(inner, first);
  EXPECT_EQ(static_cast<Store*>(first.pointer()), top.pointer());
  EXPECT_EQ(2, top.getMasterCount()) << "one count for both handles";
  top = StoreDecoratorFactory::addAttributeSelect(top, second);
  top = StoreDecoratorFactory::addSelect(top, third);

  vHandle<Store> one = StoreDecoratorFactory::removeDecorator(top);
  EXPECT_EQ(static_cast<Store*>(second.pointer()), one.pointer());
  EXPECT_TRUE(third->getDecoratedStore().isEmpty());
  vHandle<Store> innermost = StoreDecoratorFactory::removeAllDecorators(one);
  EXPECT_EQ(inner, innermost);
  EXPECT_TRUE(first->getDecoratedStore().isEmpty());
  EXPECT_EQ(2, inner.getMasterCount()) << "inner, innermost: no view holds it";
  // Nothing was closed on the way, and an undecorated store comes back as it is.
  EXPECT_TRUE(inner->isOpen());
  EXPECT_EQ(inner, StoreDecoratorFactory::removeAllDecorators(inner));
}

TEST(StoreDecoratorFactoryStacking, OffloadViewsAreNotAvailable) {
  vHandle<Store> store = referenceStore();
  expectFailure([&] { StoreDecoratorFactory::addOffloadCrosslines(store, 3, nullptr); },
                "StoreDecoratorFactory::addOffloadDCrosslinesDecorator", "Not supported ... no Dorn available!");
  EXPECT_EQ(1, store.getMasterCount());
}

// --- scratch -----------------------------------------------------------------------------

struct ScratchFixture : ::testing::Test {
  void SetUp() override {
    project = unitTestProject();
    ut = dynamic_cast<UTProject*>(project.pointer());
    below = openStore(layoutShelf(referenceLayout()), true, project);
    ut->addStore(StoreDetails(ProjectType::UNITTEST, "", "reference", below->getVersion()));
  }
  bool listed() { return ut->hasStore("reference", 0); }

  vHandle<Project> project;
  UTProject* ut = nullptr;
  vHandle<Store> below;
};

TEST_F(ScratchFixture, TheLastHandleClosesAndDeletesTheStoreOnce) {
  vHandle<Store> scratch = StoreDecoratorFactory::addScratch(below);
  EXPECT_TRUE(listed());
  scratch->close();
  EXPECT_FALSE(below->isOpen());
  EXPECT_FALSE(listed());
  // The store is scripted again: a second delete would take it away.
  ut->addStore(StoreDetails(ProjectType::UNITTEST, "", "reference", 1));
  scratch = vHandle<Store>();
  EXPECT_TRUE(listed());
  // Let go without a close, a store that cannot be closed is left; the
  // failure goes no further.
  below = openStore(layoutShelf(referenceLayout()), true, project);
  scratch = StoreDecoratorFactory::addScratch(below);
  below->close();
  {
    MessageHandling quiet;
    scratch = vHandle<Store>();
  }
  EXPECT_TRUE(listed());
}

// --- refusals common to views ---------------------------------------------------------------

TEST(StoreDecoratorImpReads, GroupAndKeyReadsRefuseWhatTheyCannotRead) {
  vHandle<SelectStoreDecorator> view;
  vHandle<Store> store = StoreDecoratorFactory::addSelect(referenceStore(), view);
  Attribute cdp = store->getAttribute("CDP");
  expectFailure([&] { store->read(cdp, cdp, 1, 1); }, "StoreDecoratorImp::read(byGroups)",
                "The address of the Attrbiute 'CDP' being read, cannot be the same as the groups Attribute.");
  Attribute elev = store->getAttribute("ELEV");
  KeyList none;
  expectFailure([&] { store->read(elev, none); }, "StoreDecoratorImp::read(byKeys)",
                "KeyList must have at lease one key Attribute.");
}

}  // namespace
