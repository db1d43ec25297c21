// The select view over a real store: when it selects, how its numbers map
// down, what it refuses and with which words.

#include <gtest/gtest.h>

#include "decorator/DecoratorTesting.h"
#include "decorator/SelectStoreDecorator.h"
#include "decorator/StoreDecoratorFactory.h"

using namespace decorator_testing;

namespace {

// A view of the reference content keeping CDP 2 and 3 (instances 4 to 9).
struct SelectView : ::testing::Test {
  SelectView() : top(StoreDecoratorFactory::addSelect(referenceStore(), view)) { view->addOperator(asBase(cdp23())); }
  vHandle<SelectStoreDecorator> view;
  vHandle<Store> top;
};

TEST_F(SelectView, ConfigurationAfterSelectingSelectsAgain) {
  EXPECT_EQ(6u, top->getNInstances());
  view->addOperator(logic("and", SelectOperatorBase::LogicAnd));
  view->addOperator(vHandle<SelectOperatorBase>(new EveryNthOperator("even", 2)));
  EXPECT_EQ(3u, top->getNInstances());
  EXPECT_EQ((List{4, 6, 8}), view->getCurrentSelection());

  vHandle<SelectOperatorCollection> other(new SelectOperatorCollection);
  other->addOperator(vHandle<SelectOperatorBase>(new RangeOperator("cdp4", "CDP", 4, 4)));
  view->setSelection(other);
  EXPECT_EQ((List{10, 11, 12}), view->getCurrentSelection());
  // The same collection again still selects anew.
  view->setSelection(other);
  EXPECT_EQ(3u, top->getNInstances());
}

TEST_F(SelectView, GroupQuestionsFollowANewSelection) {
  Attribute cdp = top->getAttribute("CDP");
  top->getUnique(cdp, vUtlSort::SortOrder::ASCENDING);
  ASSERT_EQ(2u, cdp.getNInstances());
  vHandle<SelectOperatorCollection> other(new SelectOperatorCollection);
  other->addOperator(vHandle<SelectOperatorBase>(new RangeOperator("cdp14", "CDP", 1, 4)));
  other->addOperator(logic("and", SelectOperatorBase::LogicAnd));
  other->addOperator(vHandle<SelectOperatorBase>(new RangeOperator("offset1", "OFFSET", 100, 100)));
  view->setSelection(other);
  top->getUnique(cdp, vUtlSort::SortOrder::DESCENDING);
  EXPECT_EQ(4.0, cdp.getValue(1));
  // Group 3 of the view is CDP 3 at offset 100: instance 7 below.
  Attribute elev = top->getAttribute("ELEV");
  Attribute key = top->getAttribute("CDP");
  top->read(elev, key, 3, 3);
  EXPECT_EQ(1003.5, elev.getValue(1));
}

TEST_F(SelectView, DebugModeReachesTheCollection) {
  view->setDebugMode(true);
  RecordingHandler recorder;
  EXPECT_EQ(6u, top->getNInstances());
  EXPECT_EQ((std::vector<std::string>{"SelectStoreDecorator::doEvaluate|Instances 1 to 12: 6 selected"}),
            recorder.infos);
}

}  // namespace
