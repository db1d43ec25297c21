// The selection protocol on real stores: which path reads data, batches,
// how masks are joined, negation, instance filters, and its refusals.

#include <gtest/gtest.h>

#include "decorator/DecoratorTesting.h"
#include "decorator/SelectOperatorCollection.h"
#include "foundation/TestAddressSpaceCap.h"

using namespace decorator_testing;

namespace {

// OFFSET 200 and 300 are every instance but 1, 4, 7 and 10.
vHandle<RangeOperator> offset23() {
  return vHandle<RangeOperator>(new RangeOperator("offset23", "OFFSET", 200, 300));
}

struct Selection : ::testing::Test {
  Selection() : store(observedStore(referenceLayout(), observed)) {}
  List select(std::vector<vHandle<SelectOperatorBase>> const& ops) {
    for (auto const& op : ops) collection.addOperator(op);
    return collection.doSelection(store);
  }
  // The same through a collection of its own, with the defaults.
  List fresh(std::vector<vHandle<SelectOperatorBase>> const& ops) {
    SelectOperatorCollection c;
    for (auto const& op : ops) c.addOperator(op);
    return c.doSelection(store);
  }
  ObservedStore* observed;
  vHandle<Store> store;
  SelectOperatorCollection collection;
};

TEST_F(Selection, WithoutDataTheFilterCountsFromTheStart) {
  collection.setInstanceFilter({1, 0, 1, 0, 0, 1, 1, 1, 1, 1, 1, 0, 1, 1});
  EXPECT_EQ((List{1, 3, 6, 7, 8, 9, 10, 11}), collection.doSelection(store));
}

TEST_F(Selection, OnTheBatchPathTheFilterCountsFromEachBatch) {
  collection.setBatchSize(5);
  collection.setInstanceFilter({1, 0, 1, 0, 0, 1, 1, 1, 1, 1, 1, 1});
  auto all = vHandle<RangeOperator>(new RangeOperator("all", "ELEV", 0, 5000));
  EXPECT_EQ((List{1, 3, 6, 8, 11}), select({asBase(all)}));
  ASSERT_EQ(3u, all->calls.size());
  EXPECT_EQ(2u, all->calls[2].count) << "the last batch is cut short";
  EXPECT_TRUE(all->calls[2].hadMask);
}

TEST_F(Selection, AndOrAndOrNotJoinLeftToRight) {
  EXPECT_EQ((List{5, 6, 8, 9}), fresh({asBase(cdp23()), logic("and", SelectOperatorBase::LogicAnd), asBase(offset23())}));
  // Or, also where no logic operator stands between masks; logic at the
  // end has no effect.
  EXPECT_EQ((List{2, 3, 4, 5, 6, 7, 8, 9, 11, 12}),
            fresh({asBase(cdp23()), asBase(offset23()), logic("and", SelectOperatorBase::LogicAnd)}));
  // A bare not between two masks is or-not.
  EXPECT_EQ((List{1, 4, 5, 6, 7, 8, 9, 10}),
            fresh({asBase(cdp23()), logic("not", SelectOperatorBase::LogicNot), asBase(offset23())}));
}

TEST_F(Selection, ANotBeforeTheFirstMaskComplementsIt) {
  auto notOp = vHandle<LogicOperator>(new LogicOperator("not", SelectOperatorBase::LogicNot));
  EXPECT_EQ((List{1, 2, 3, 10, 11, 12}), select({asBase(notOp), asBase(cdp23())}));
  // Logic operators are called too, without a mask.
  ASSERT_EQ(1u, notOp->calls.size());
  EXPECT_FALSE(notOp->calls[0].hadMask);
}

// Another logic operator first drops the first mask; an unknown logic type
// leaves the aggregate; each with an info.
TEST_F(Selection, MisplacedOrUnknownLogicIsToldAsAnInfo) {
  RecordingHandler recorder;
  EXPECT_TRUE(select({logic("and", SelectOperatorBase::LogicAnd), asBase(cdp23())}).empty());
  EXPECT_EQ((List{4, 5, 6, 7, 8, 9}), fresh({asBase(cdp23()), logic("xor", 3), asBase(offset23())}));
  EXPECT_EQ((std::vector<std::string>{
                "SelectStoreDecorator::doEvaluate|Logic operator: and as first item in selection list has no effect",
                "SelectStoreDecorator::doEvaluate|Unknown logic operator enum"}),
            recorder.infos);
}

// --- refusals ---------------------------------------------------------------------------------

TEST_F(Selection, TwoLogicOperatorsInARowAreRefusedAtTheFirstBatch) {
  collection.setBatchSize(5);
  auto op = cdp23();
  for (auto const& o : {asBase(op), logic("or", SelectOperatorBase::LogicOr), logic("and", SelectOperatorBase::LogicAnd),
                        asBase(offset23())})
    collection.addOperator(o);
  expectFailure([&] { collection.doSelection(store); }, "SelectStoreDecorator::doEvaluate",
                "Cannot specify logic operators one after another: or followed by and is illegal");
  EXPECT_EQ(1u, op->calls.size());
}

TEST_F(Selection, AMultiValuedAttributeIsRefusedBeforeAnyRead) {
  auto trace = vHandle<RangeOperator>(new RangeOperator("trace", "TRACE", 0, 1));
  expectFailure([&] { select({asBase(cdp23()), asBase(trace)}); }, "SelectStoreDecorator::mySetupRead",
                "Attribute 'TRACE' in Store 'reference' has more than one element (5).");
  EXPECT_EQ(0, observed->rangeReads);
  EXPECT_TRUE(trace->calls.empty());
}

TEST_F(Selection, ASmallFilterAnEmptyOperatorAndNoBatchAreRefused) {
  collection.setInstanceFilter(List(11, 1));
  expectFailure([&] { collection.doSelection(store); }, "SelectStoreDecorator::doSelection",
                "Supplied instance filter is too small -- 11 instances in filter -- 12 instances in store");
  expectFailure([&] { fresh({asBase(cdp23()), vHandle<SelectOperatorBase>()}); }, "SelectStoreDecorator::doEvaluate",
                "Null Selection Operator Iterator");
  expectFailure([&] { collection.setBatchSize(0); }, "SelectOperatorCollection::setBatchSize",
                "The batch size must be positive, not 0.");
}

#ifdef RONDO_TEST_ADDRESS_SPACE_CAP
// Selects with masks of 512 MB under a cap of 64 MB more than the process
// maps, and reports the failure's method and reason on standard error. In a
// child process, which the cap does not outlive.
void selectCapped(vHandle<SelectOperatorBase> const& op) {
  vHandle<Store> store = referenceStore();
  SelectOperatorCollection collection;
  collection.setBatchSize(512 * 1024 * 1024);
  collection.addOperator(op);
  testMapLargeBlocksExactly();
  TestAddressSpaceCap cap(64 * 1024 * 1024);
  try {
    MessageHandling quiet;
    collection.doSelection(store);
  } catch (UtlExcept const& e) {
    std::fprintf(stderr, "%s|%s\n", e.getMethod().c_str(), e.getReason().c_str());
    std::exit(cap.isCapped() ? 0 : 1);
  }
  std::exit(2);
}

TEST(SelectionSettings, AMaskThatCannotBeAllocatedIsReported) {
  // A logic operator that asks for the batch loop gets no mask of its own:
  // only the aggregate is wanted.
  EXPECT_EXIT(selectCapped(logic("loop", SelectOperatorBase::NoAttributeOperator)), ::testing::ExitedWithCode(0),
              "SelectStoreDecorator::doEvaluate\\|Cannot allocate 536870922 bytes for aggregate selection");
}
#endif

class ToleranceOperator : public SelectOperatorBase {
 public:
  ToleranceOperator() : SelectOperatorBase("tol") {}
  void doEvaluate(std::list<Attribute> const&, unsigned int, unsigned char*, unsigned int, unsigned int) override {}
  void doNewTolerance(double oldTolerance, double newTolerance) override {
    told.push_back(oldTolerance);
    told.push_back(newTolerance);
    seenBefore = getTolerance();
  }
  std::vector<double> told;
  double seenBefore = -1;
};

// A new tolerance is told before it is kept; attribute numbers are checked.
TEST(SelectOperator, ToleranceAndAttributeNumbers) {
  ToleranceOperator op;
  op.setTolerance(0.5);
  op.setTolerance(2.0);
  EXPECT_EQ((std::vector<double>{0.0, 0.5, 0.5, 2.0}), op.told);
  EXPECT_EQ(0.5, op.seenBefore);
  RangeOperator reads("r", "CDP", 1, 2);
  reads.addAttribute("OFFSET");
  expectFailure([&] { reads.getAttributeName(2); }, "SelectOperatorBase::getAttributeName",
                "Operator r has no attribute 2 (it reads 2).");
}

}  // namespace
