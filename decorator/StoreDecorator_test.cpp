// The decorator contract on real stacks: forwarding, the factory, scratch
// stores; wrappers of bare attribute sets with their properties, and the
// profiling wrapper's timers and report.

#include <gtest/gtest.h>

#include <sstream>

#include "attribute/Property.h"
#include "decorator/AttributeSetDecorator.h"
#include "decorator/DecoratorTesting.h"
#include "decorator/ProfilingAttributeSetDecorator.h"
#include "decorator/SelectStoreDecorator.h"
#include "decorator/StoreDecorator.h"
#include "decorator/StoreDecoratorFactory.h"
#include "decorator/Timer.h"
#include "project/FullStoreName.h"
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

// A bare set, not opened, over the shelf (by default one of the reference content).
vHandle<AttributeSet> closedSet(std::shared_ptr<TestMemoryShelf> const& shelf = layoutShelf(referenceLayout())) {
  return vHandle<AttributeSet>(new TestMemoryAttributeSet(vHandle<Project>(), shelf));
}

TEST(AttributeSetDecoratorProperties, LocalUntilOpenedThenThoseOfTheSetBelow) {
  auto shelf = layoutShelf(referenceLayout());
  shelf->find(kStore)->properties.addProperty(Property("STORED", 1.5));
  AttributeSetDecorator decorator(closedSet(shelf));
  // A property of its own before opening.
  decorator.PropertyI::addProperty(Property("LOCAL", "x"));
  decorator.open(kStore, 0, "", "", nullptr);
  EXPECT_TRUE(decorator.hasProperty(vUCString("STORED")));
  EXPECT_FALSE(decorator.hasProperty(vUCString("LOCAL")));
  // addProperty goes to the set below, which the decorator now shares.
  decorator.addProperty(Property("ADDED", "y"));
  EXPECT_TRUE(decorator.hasProperty(vUCString("ADDED")));
}

TEST(AttributeSetDecoratorNames, FullNamesGoThroughTheNameForms) {
  ProfilingAttributeSetDecorator decorator(closedSet());
  // The full name's version reaches the set below.
  expectFailure([&] { decorator.open(FullStoreName(FullProjectName(), kStore, 5), "", "", nullptr); },
                "TestMemoryAttributeSet::open", "AttributeSet 'reference' has no version 5.");
  decorator.update(FullStoreName(FullProjectName(), kStore, 0), "", "", nullptr);
  EXPECT_EQ(1, decorator.getVersion());
  ::testing::internal::CaptureStderr();
  decorator.close();
  ::testing::internal::GetCapturedStderr();
  decorator.create(FullStoreName(FullProjectName(), "fresh", 0), "seismic", "2d", StoreConformance::referenceKeys(),
                   nullptr);
  EXPECT_EQ(std::string("fresh"), decorator.getName().c_str());
}

// --- profiling ---------------------------------------------------------------------------------

TEST(ProfilingAttributeSet, CloseReportsEachLabelUsedInLabelOrderAndForgets) {
  vHandle<AttributeSet> set(new ProfilingAttributeSetDecorator(closedSet()));
  auto* profiling = dynamic_cast<ProfilingAttributeSetDecorator*>(set.pointer());
  set->update(kStore, 0, "", "", nullptr);
  Attribute cdp = set->getAttribute("CDP");
  set->read(cdp, 1, 3);
  set->read(cdp, 4, 6);
  set->read(cdp, std::vector<unsigned int>{2});
  Attribute offset = set->getAttribute("OFFSET");
  set->read(offset, cdp, 1, 1);
  int const v[] = {5};
  offset.copyData(1, v);
  set->write(offset, std::vector<unsigned int>{3});
  // A failing call is timed too, and its timer stopped.
  expectFailure([&] { set->read(cdp, 0, 1); }, "TestMemoryAttributeSet::myCheckFirstLast()",
                "first instance must be >0, yours was 0");
  EXPECT_FALSE(profiling->getTimers().at("read(range)").isRunning());

  ::testing::internal::CaptureStderr();
  set->close();
  std::istringstream report(::testing::internal::GetCapturedStderr());
  char const* const labels[] = {"close", "read(groups)", "read(list)", "read(range)", "update", "write(list)"};
  unsigned long long const calls[] = {1, 1, 1, 3, 1, 1};
  std::string line;
  for (std::size_t i = 0; i < 6; ++i) {
    ASSERT_TRUE(std::getline(report, line)) << i;
    // The times in the layout the timer test pins.
    EXPECT_EQ(0u, line.find(std::string("reference ") + labels[i] + ": " + std::to_string(calls[i]) +
                            " call(s), elapsed "))
        << line;
  }
  EXPECT_FALSE(std::getline(report, line)) << line;
  EXPECT_TRUE(profiling->getTimers().empty());
}

// --- timer --------------------------------------------------------------------------------------

TEST(TimerTotals, CountsStartStopPairsOnly) {
  Timer timer;
  timer.stop();
  timer.start();
  timer.stop();
  EXPECT_EQ(0u, std::string(timer.getTotalTimes().c_str()).find("1 call(s), elapsed "));
  timer.reset();
  EXPECT_EQ(std::string("0 call(s), elapsed 0.000000 s, cpu 0.000000 s"), timer.getTotalTimes().c_str());
}

}  // namespace
