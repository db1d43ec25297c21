// The sort view, and the shared suite over shuffled stores that the sort puts
// back in order.

#include <gtest/gtest.h>

#include "decorator/Binner.h"
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
