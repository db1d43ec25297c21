// The sort view, and the shared suite over shuffled stores that the sort puts
// back in order; the infill view, which completes a grid of two keys.

#include <gtest/gtest.h>

#include "decorator/Binner.h"
#include "decorator/InfillStoreDecorator.h"
#include "decorator/JoinTesting.h"
#include "decorator/SortStoreDecorator.h"
#include "decorator/StoreDecoratorFactory.h"
#include "foundation/TestFailure.h"

using namespace join_testing;

namespace {

typedef vUtlSort::SortOrder S;

vHandle<Store> sorted(vHandle<Store> const& store, std::vector<std::pair<char const*, S::SortOrderType>> keys,
                      vHandle<SortStoreDecorator>* out = nullptr) {
  vHandle<SortStoreDecorator> view;
  vHandle<Store> result = StoreDecoratorFactory::addSort(store, view);
  for (auto const& key : keys) view->addSortKey(key.first, key.second);
  if (out) *out = view;
  return result;
}

// KEY 3 1 2 with ID 1 2 3.
vHandle<Store> threeOneTwo() {
  return simpleStore("three", {"KEY"}, {column("KEY", vINT32, {3, 1, 2}), column("ID", vINT32, {1, 2, 3})});
}

// One key descending; two keys, the second descending. A descending key is
// the ascending order mirrored, ties included: two equal keys come out
// swapped ascending and in store order descending.
TEST(SortStoreDecorator, KeysInBothDirections) {
  EXPECT_EQ((std::vector<double>{1, 3, 2}), values(*sorted(threeOneTwo(), {{"KEY", S::DESCENDING}}), "ID"));
  vHandle<Store> store = simpleStore("pairs", {"A"},
                                     {column("A", vINT16, {1, 1, 0}), column("B", vFLOAT64, {1, 2, 5}),
                                      column("ID", vINT32, {1, 2, 3})});
  EXPECT_EQ((std::vector<double>{3, 2, 1}), values(*sorted(store, {{"A", S::ASCENDING}, {"B", S::DESCENDING}}), "ID"));
  auto ties = [] { return simpleStore("ties", {"K"}, {column("K", vINT64, {5, 5}), column("ID", vINT32, {1, 2})}); };
  EXPECT_EQ((std::vector<double>{2, 1}), values(*sorted(ties(), {{"K", S::ASCENDING}}), "ID"));
  EXPECT_EQ((std::vector<double>{1, 2}), values(*sorted(ties(), {{"K", S::DESCENDING}}), "ID"));
}

// Texts, traces and a third key are refused as the view is built, not at its
// first read; a read without keys is refused.
TEST(SortStoreDecorator, RefusesKeysAndBinsThatCannotBeDone) {
  auto store = [] {
    return simpleStore("texts", {"K"},
                       {column("K", vINT32, {2, 1}), column("NAME", vSTRING, {1, 2}),
                        column("PAIR", vFLOAT32, {1, 2, 3, 4}, 2), column("L", vINT32, {1, 2})});
  };
  auto sortFailure = [&](std::vector<char const*> const& keys) {
    vHandle<SortStoreDecorator> sort;
    StoreDecoratorFactory::addSort(store(), sort);
    return fatalText([&] {
      for (char const* key : keys) sort->addSortKey(key, S::ASCENDING);
    });
  };
  EXPECT_EQ("SortStoreDecorator::addSortKey: Unable to sort Attribute NAME of type vSTRING.", sortFailure({"NAME"}));
  EXPECT_EQ("SortStoreDecorator::addSortKey: Unable to sort secondary Attribute NAME of type vSTRING. Primary type "
            "is vINT32",
            sortFailure({"K", "NAME"}));
  EXPECT_EQ("SortStoreDecorator::addSortKey: Unable to sort Attribute PAIR: a key takes one value an instance.",
            sortFailure({"PAIR"}));

  Binner binner;
  binner.addBins(0, 10, 1, 1);
  vHandle<Store> const below = store();
  auto binFailure = [&](char const* name) {
    return fatalText([&] { StoreDecoratorFactory::addBin(below, binner, Attribute(name, "", vFLOAT64)); });
  };
  EXPECT_EQ("BinDecorator::open: Unable to bin Attribute NAME of type vSTRING.", binFailure("NAME"));
  EXPECT_EQ("BinDecorator::open: Unable to bin Attribute PAIR: bins take one value an instance.", binFailure("PAIR"));

  EXPECT_EQ("SortStoreDecorator::addSortKey: Only two keys are allowed now.", sortFailure({"K", "L", "K"}));
  vHandle<SortStoreDecorator> bare;
  StoreDecoratorFactory::addSort(referenceStore(), bare);
  Attribute cdp = bare->getAttribute("CDP");
  expectFailure([&] { bare->read(cdp, 1, 3); }, "SortStoreDecorator::mySetupRead", "Need code to sort on 0 keys.");
}

// Keys are gathered once, in blocks of 1024, each block one range read
// per key; every read of the view is then one list read below, and a key
// added later changes the key list but not the order.
TEST(SortStoreDecorator, GathersKeysOnceInBlocksAndReadsOneListPerRead) {
  unsigned int const n = 2500;
  std::vector<double> key(n), id(n);
  for (unsigned int i = 0; i < n; ++i) {
    key[i] = static_cast<double>((i * 7919) % n);
    id[i] = i + 1;
  }
  ObservedStore* observed = nullptr;
  vHandle<Store> below = observedStore(
      joinShelf("many", {"KEY"}, {SetContent{"", {column("KEY", vINT32, key), column("ID", vINT32, id)}}}), observed,
      "many");
  vHandle<SortStoreDecorator> view;
  vHandle<Store> store = sorted(below, {{"KEY", S::DESCENDING}, {"ID", S::ASCENDING}}, &view);
  EXPECT_EQ(0, observed->rangeReads) << "nothing is read before the first read";

  Attribute a = store->getAttribute("KEY");
  store->read(a, 1, n);
  EXPECT_EQ(6, observed->rangeReads) << "three blocks of each of two keys";
  ASSERT_EQ(1u, observed->lists.size());
  for (unsigned int i = 1; i <= n; ++i) ASSERT_EQ(static_cast<double>(n - i), a.getValue(i)) << i;

  store->read(a, 5, 9);
  store->read(a, std::vector<unsigned int>{9, 1, 2500});
  EXPECT_EQ(6, observed->rangeReads) << "keys are not read again";
  ASSERT_EQ(3u, observed->lists.size());
  EXPECT_EQ((std::vector<unsigned int>(view->getIndex().begin() + 4, view->getIndex().begin() + 9)),
            observed->lists[1]);
  EXPECT_EQ((std::vector<double>{2491, 2499, 0}), valuesOf(a));
  // The primary key's groups as the store below has them.
  EXPECT_EQ(n, view->getNGroups());
  EXPECT_EQ(0.0, view->getGroupAttribute()->getValue(1));
}

// --- infill ---------------------------------------------------------------------------------

// Keys GROUP and X with the given values, and VALUE = 100 * instance.
vHandle<Store> gridStore(std::vector<double> const& groups, std::vector<double> const& xs, DataType xType = vINT32) {
  std::vector<double> v;
  for (std::size_t i = 1; i <= groups.size(); ++i) v.push_back(100.0 * i);
  return simpleStore("grid", {"GROUP", "X"},
                     {column("GROUP", vINT32, groups), column("X", xType, xs), column("VALUE", vFLOAT64, v)});
}

TEST(InfillStoreDecorator, IncrementsPadLimitsAndBounds) {
  EXPECT_FALSE(InfillAttributeSetIndexingTable::boundsCheckOk(10.02, 0, 10));
  EXPECT_TRUE(InfillAttributeSetIndexingTable::boundsCheckOk(0.30000000000000004, 0.1, 0.1));

  // Floating keys on a 0.25 grid; each group over its own range.
  vHandle<Store> own(new InfillStoreDecorator(gridStore({1, 1, 2, 2}, {0.5, 1.25, 2, 2.25}, vFLOAT32), true));
  EXPECT_EQ((std::vector<double>{0.5, 0.75, 1, 1.25, 2, 2.25}), values(*own, "X"));

  // Pad limits widen the range; they must hold the values and lie on the grid.
  char const* const build = "InfillAttributeSetIndexingTable::myBuildInfillGroup";
  struct Case {
    double low, high;
    char const* fatal;
  } const cases[] = {
      {-10, 50, nullptr},
      {20, 50, "User set limit 20.000000 is less than attribute's lower value 10.000000"},
      {10, 30, "User set limit 30.000000 is less than attribute's upper value 40.000000"},
      {5, 50, "User set limit 5.000000 is not on a 10.000000 boundary"},
      {10, 55, "User set limit 55.000000 is not on a 10.000000 boundary. Determined end value <40.000000>"},
  };
  for (Case const& c : cases) {
    InfillStoreDecorator* infill = new InfillStoreDecorator(gridStore({1, 1, 1, 2, 2}, {10, 20, 40, 20, 30}), false);
    vHandle<Store> view(infill);
    infill->applyPaddingLimits(c.low, c.high, 10);
    if (c.fatal)
      expectFailure([&] { view->getNInstances(); }, build, c.fatal);
    else
      EXPECT_EQ(14u, view->getNInstances());
  }

  expectFailure([] { StoreDecoratorFactory::addInfill(gridStore({1, 1}, {10, 10}))->getNInstances(); }, build,
                "Duplicate sub-set value found in group <1.000000>\n");
  expectFailure([] { StoreDecoratorFactory::addInfill(gridStore({1, 1, 2}, {0, 4, 7}))->getNInstances(); }, build,
                "The minumum <0.000000> and maximum <7.000000> of the attribute's values are incompatable with the "
                "determined increment <4.000000>\n");
  InfillStoreDecorator infill(gridStore({1}, {1}), false);
  infill.addKeyAttributes("GROUP", "X");
  expectFailure([&] { infill.addKeyAttributes("GROUP", "VALUE"); },
                "InfillAttributeSetIndexingTable::addKeyAttributes",
                "Can't reset infilled attribute name. Currently using attribute X");
}

// Groups {1: 10 20 40}, {2: 20 30}, {3: 40 0 20} (X on a step of 10,
// group 3 on its own step of 20), by pad type: the X of each group, and
// VALUE (100 * stored instance) zero where invented.
TEST(InfillStoreDecorator, EveryPadType) {
  using Table = InfillAttributeSetIndexingTable;
  struct Case {
    Table::AttrPadType type;
    std::vector<double> x, value;
  } const cases[] = {
      {Table::PadToCommonRange,
       {0, 10, 20, 30, 40, 0, 10, 20, 30, 40, 0, 10, 20, 30, 40},
       {0, 100, 200, 0, 300, 0, 0, 400, 500, 0, 700, 0, 800, 0, 600}},
      {Table::PadWithinGroup, {10, 20, 30, 40, 20, 30, 0, 10, 20, 30, 40}, {100, 200, 0, 300, 400, 500, 700, 0, 800, 0, 600}},
      {Table::PadNone, {10, 20, 40, 20, 30, 0, 20, 40}, {100, 200, 300, 400, 500, 700, 800, 600}},
      {Table::PadToCommonStart,
       {0, 10, 20, 30, 40, 0, 10, 20, 30, 0, 10, 20, 30, 40},
       {0, 100, 200, 0, 300, 0, 0, 400, 500, 700, 0, 800, 0, 600}},
      {Table::PadToCommonEnd,
       {10, 20, 30, 40, 20, 30, 40, 0, 10, 20, 30, 40},
       {100, 200, 0, 300, 400, 500, 0, 700, 0, 800, 0, 600}},
      {Table::PadWithinGroupOwnStep, {10, 20, 30, 40, 20, 30, 0, 20, 40}, {100, 200, 0, 300, 400, 500, 700, 800, 600}},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.type);
    vHandle<Store> view(new InfillStoreDecorator(gridStore({1, 1, 1, 2, 2, 3, 3, 3}, {10, 20, 40, 20, 30, 40, 0, 20}), c.type));
    EXPECT_EQ(c.x, values(*view, "X"));
    EXPECT_EQ(c.value, values(*view, "VALUE"));
  }
  // Pad limits on a group's own step; every type but PadNone takes them.
  InfillStoreDecorator* own = new InfillStoreDecorator(gridStore({1, 1, 2, 2}, {0, 10, 0, 20}), Table::PadWithinGroupOwnStep);
  vHandle<Store> view(own);
  own->applyPaddingLimits(-20, 40, 0);
  EXPECT_EQ((std::vector<double>{-20, -10, 0, 10, 20, 30, 40, -20, 0, 20, 40}), values(*view, "X"));
  InfillStoreDecorator* none = new InfillStoreDecorator(gridStore({1, 1}, {0, 20}), Table::PadNone);
  vHandle<Store> asIs(none);
  none->applyPaddingLimits(-20, 30, 0);
  EXPECT_EQ((std::vector<double>{0, 20}), values(*asIs, "X"));
  // A floating key within a thousandth of a step of a grid value stands
  // for it; one further off does not, and the grid value is invented beside.
  for (double off : {0.50018, 0.5006}) {
    vHandle<Store> floats(new InfillStoreDecorator(gridStore({1, 1, 1, 2, 2}, {0.5, 1.0, 1.25, 0.25, off}, vFLOAT64),
                                                   Table::PadToCommonEnd));
    std::vector<double> expected{0.5, 0.75, 1.0, 1.25, 0.25, off, 0.75, 1.0, 1.25};
    if (off > 0.5005) expected.insert(expected.begin() + 5, 0.5);
    EXPECT_EQ(expected, values(*floats, "X"));
  }
}

// --- the conformance suite -----------------------------------------------------------------

Layout shuffled() { return {7, 3, 12, 1, 9, 5, 11, 2, 8, 4, 10, 6}; }

StoreConformanceCase sortCase(char const* name, std::vector<std::pair<char const*, S::SortOrderType>> const& keys) {
  StoreConformanceCase c(name);
  c.openForReading = [=] { return vHandle_cast<AttributeSet>(sorted(openStore(layoutShelf(shuffled())), keys)); };
  // The view's keys are its sort keys: CDP, OFFSET only where sorted by them.
  c.hasKeyList = keys.size() == 2;
  c.texts.notWritable = "Has not been written yet.";
  return c;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(SortViews, StoreConformance,
                         ::testing::Values(sortCase("SortByCdpOffset",
                                                    {{"CDP", S::ASCENDING}, {"OFFSET", S::ASCENDING}}),
                                           sortCase("SortByElev", {{"ELEV", S::ASCENDING}})),
                         StoreConformance::caseName);
