// Wrappers of bare attribute sets: forwarding with properties of their own
// until a set is opened, and the profiling wrapper's timers and report.

#include <gtest/gtest.h>

#include <sstream>

#include "attribute/Property.h"
#include "decorator/AttributeSetDecorator.h"
#include "decorator/DecoratorTesting.h"
#include "decorator/ProfilingAttributeSetDecorator.h"
#include "decorator/Timer.h"
#include "project/FullStoreName.h"

using namespace decorator_testing;

namespace {

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
