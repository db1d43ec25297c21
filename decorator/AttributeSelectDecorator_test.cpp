// The attribute select view: what it lists, what stays reachable, and what
// it refuses.

#include <gtest/gtest.h>

#include "decorator/AttributeSelectDecorator.h"
#include "decorator/DecoratorTesting.h"
#include "decorator/StoreDecoratorFactory.h"

using namespace decorator_testing;

namespace {

TEST(AttributeSelect, ListsEverythingUntilTheFirstChoice) {
  vHandle<AttributeSelectDecorator> view;
  vHandle<Store> top = StoreDecoratorFactory::addAttributeSelect(referenceStore(), view);
  EXPECT_EQ((std::vector<std::string>{"CDP", "OFFSET", "ELEV", "TRACE"}), names(top->getAttributeList()));
  view->selectAttribute("TRACE");
  view->selectAttributes({"CDP", "TRACE"});
  std::list<Attribute> filled(1, Attribute("STALE", "", vINT32));
  top->getAttributeList(filled);
  EXPECT_EQ((std::vector<std::string>{"TRACE", "CDP", "TRACE"}), names(filled));
  EXPECT_EQ(5, top->getAttributeList().front().getLength());
}

TEST(AttributeSelect, FiltersWhatIsListedNotWhatIsReachable) {
  vHandle<AttributeSelectDecorator> view;
  vHandle<Store> top = StoreDecoratorFactory::addAttributeSelect(referenceStore(), view);
  view->selectAttribute("CDP");
  EXPECT_TRUE(top->hasAttribute("CDP"));
  EXPECT_FALSE(top->hasAttribute("ELEV"));
  Attribute elev = top->getAttribute("ELEV");
  top->read(elev, 2, 3);
  EXPECT_EQ(1001.5, elev.getValue(2));
  expectFailure([&] { top->getAttribute("NOPE"); }, "AttributeSelectDecorator::getAttribute",
                "Attribute NOPE does not exist in parent store.");
  expectFailure([&] { view->selectAttribute("NOPE"); }, "AttributeSelectDecorator::selectAttribute",
                "Attribute NOPE does not exist in parent store.");
  // The refused choice left the selection as it was.
  EXPECT_EQ((std::vector<std::string>{"CDP"}), names(top->getAttributeList()));
}

TEST(AttributeSelect, MatchesClassesAmongTheSelected) {
  vHandle<AttributeSelectDecorator> view;
  vHandle<Store> top = StoreDecoratorFactory::addAttributeSelect(referenceStore(), view);
  view->selectAttributes({"OFFSET", "ELEV", "TRACE"});
  EXPECT_EQ((std::vector<std::string>{"OFFSET"}), names(top->getAttributeList("OFFSET", AttributeMatch::MATCH_CLASS)));
  EXPECT_EQ((std::vector<std::string>{"OFFSET", "ELEV"}),
            names(top->getAttributeList("OFFSET", AttributeMatch::MATCH_OR_BLANK_CLASS)));
  EXPECT_EQ((std::vector<std::string>{"ELEV"}), names(top->getAttributeList("CDP", AttributeMatch::MATCH_OR_BLANK_CLASS)));
}

TEST(AttributeSelect, WritesGoThrough) {
  vHandle<Store> below = referenceStore(true);
  vHandle<AttributeSelectDecorator> view;
  vHandle<Store> top = StoreDecoratorFactory::addAttributeSelect(below, view);
  view->selectAttribute("CDP");
  Attribute offset = top->getAttribute("OFFSET");
  int const v[] = {7};
  offset.copyData(1, v);
  top->write(offset, 12, 12);
  EXPECT_EQ(7.0, values(*below, "OFFSET")[11]);
}

TEST(AttributeSelect, AStoreWithSeveralSetsIsRefused) {
  vHandle<Store> below = referenceStore(true);
  below->createAttributeSet("second", StoreConformance::referenceKeys());
  vHandle<AttributeSelectDecorator> view;
  expectFailure([&] { StoreDecoratorFactory::addAttributeSelect(below, view); }, "AttributeSelectDecorator::init",
                "AttributeSelectDecorator does not (yet) support stores with multiple attribute sets.");
  EXPECT_EQ(1, below.getMasterCount());
}

}  // namespace
