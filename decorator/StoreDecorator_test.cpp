// The decorator contract on real stacks: forwarding, the factory, scratch stores.

#include <gtest/gtest.h>

#include "decorator/DecoratorTesting.h"
#include "decorator/SelectStoreDecorator.h"
#include "decorator/StoreDecorator.h"
#include "decorator/StoreDecoratorFactory.h"
#include "project/StoreDetails.h"
#include "project/UTProject.h"
#include "project/UTProjectCatalog.h"

using namespace decorator_testing;

namespace {

// Comparison and property assignment are the store's to answer: a StoreImp's
// refusal comes back through every kind of view.
TEST(StoreDecoratorForwarding, RefusalsOfTheStoreBelowAndOfViews) {
  vHandle<Store> below = referenceStore();
  vHandle<SelectStoreDecorator> select;
  vHandle<AttributeSelectDecorator> attributes;
  std::string const refused = "This operation is not implemented for StoreImp.";
  PropertyI properties;
  for (vHandle<Store> const& view : {vHandle<Store>(new StoreDecorator(below)),
                                     StoreDecoratorFactory::addSelect(below, select),
                                     StoreDecoratorFactory::addAttributeSelect(below, attributes)})
    expectFailure([&] { *view = properties; }, "StoreImp::operator=()", refused);
  expectFailure([&] { (void)(StoreDecorator(below) == *below); }, "StoreImp::operator==()", refused);

  // Group and key reads refuse what they cannot read.
  vHandle<Store> store = StoreDecoratorFactory::addSelect(below, select);
  Attribute cdp = store->getAttribute("CDP");
  expectFailure([&] { store->read(cdp, cdp, 1, 1); }, "StoreDecoratorImp::read(byGroups)",
                "The address of the Attrbiute 'CDP' being read, cannot be the same as the groups Attribute.");
  Attribute elev = store->getAttribute("ELEV");
  expectFailure([&] { store->read(elev, KeyList()); }, "StoreDecoratorImp::read(byKeys)",
                "KeyList must have at lease one key Attribute.");
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

TEST(ScratchStoreDecorator, TheLastHandleClosesAndDeletesTheStoreOnce) {
  vHandle<Project> project(
      new UTProject(vHandle<ProjectCatalog>(new UTProjectCatalog("host", ProjectType::UNITTEST))));
  UTProject* ut = dynamic_cast<UTProject*>(project.pointer());
  vHandle<Store> below = openStore(layoutShelf(referenceLayout()), true, project);
  ut->addStore(StoreDetails(ProjectType::UNITTEST, "", "reference", below->getVersion()));
  auto listed = [&] { return ut->hasStore("reference", 0); };
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

}  // namespace
