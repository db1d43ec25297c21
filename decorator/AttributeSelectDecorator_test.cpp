// The attribute select view: what it lists, what stays reachable, and what
// it refuses.

#include <gtest/gtest.h>

#include "decorator/AttributeSelectDecorator.h"
#include "decorator/DecoratorTesting.h"
#include "decorator/StoreDecoratorFactory.h"

using namespace decorator_testing;

namespace {

// The reference suite reads the chosen attributes; the rest stay reachable
// and writable, and a refused choice leaves the selection as it was.
TEST(AttributeSelect, FiltersWhatIsListedNotWhatIsReachable) {
  vHandle<Store> below = referenceStore(true);
  vHandle<AttributeSelectDecorator> view;
  vHandle<Store> top = StoreDecoratorFactory::addAttributeSelect(below, view);
  view->selectAttributes({"CDP", "ELEV"});
  std::list<Attribute> filled(1, Attribute("STALE", "", vINT32));
  top->getAttributeList(filled);
  EXPECT_EQ((std::vector<std::string>{"CDP", "ELEV"}), names(filled));
  EXPECT_FALSE(top->hasAttribute("OFFSET"));
  Attribute offset = top->getAttribute("OFFSET");
  int const v[] = {7};
  offset.copyData(1, v);
  top->write(offset, 12, 12);
  EXPECT_EQ(7.0, values(*below, "OFFSET")[11]);
  expectFailure([&] { view->selectAttribute("NOPE"); }, "AttributeSelectDecorator::selectAttribute",
                "Attribute NOPE does not exist in parent store.");
  EXPECT_EQ((std::vector<std::string>{"CDP", "ELEV"}), names(top->getAttributeList()));
  EXPECT_EQ((std::vector<std::string>{"ELEV"}),
            names(top->getAttributeList("OFFSET", AttributeMatch::MATCH_OR_BLANK_CLASS)));
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
