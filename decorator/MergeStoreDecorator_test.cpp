// The merge view, and the shared suite over two stores that interleave into
// the reference content.

#include <gtest/gtest.h>

#include <algorithm>

#include "decorator/JoinTesting.h"
#include "decorator/MergeStoreDecorator.h"
#include "decorator/StoreDecoratorFactory.h"

using namespace join_testing;

namespace {

std::shared_ptr<TestMemoryShelf> keyedShelf(char const* name, std::vector<double> keys, std::vector<double> ids,
                                            DataType type = vINT32) {
  return joinShelf(name, {"KEY"}, {SetContent{"", {column("KEY", type, std::move(keys)), column("ID", vINT32, ids)}}});
}

vHandle<Store> keyed(char const* name, std::vector<double> keys, std::vector<double> ids, DataType type = vINT32) {
  return openJoin(keyedShelf(name, std::move(keys), std::move(ids), type), name);
}

MergeStoreDecorator& merge(vHandle<Store> const& view) { return dynamic_cast<MergeStoreDecorator&>(*view); }

std::string title(vHandle<Store> const& store) {
  return std::string(store->getName().c_str()) + "." + std::to_string(store->getVersion());
}

// The scan assumes nothing about sorted input: a value that comes back
// makes a new group, and groups of every store are ordered together.
TEST(MergeStoreDecorator, RunsThatComeBackAreGroupsOfTheirOwn) {
  vHandle<Store> view =
      StoreDecoratorFactory::addMerge(keyed("a", {5, 5, 1, 5, 3}, {1, 2, 3, 4, 5}, vFLOAT64), 0, true);
  merge(view).addStore(keyed("b", {4, 2}, {6, 7}, vFLOAT64));
  EXPECT_EQ((std::vector<double>{1, 2, 3, 4, 5, 5, 5}), values(*view, "KEY"));
  std::vector<double> ids = values(*view, "ID");
  EXPECT_EQ((std::vector<double>{3, 7, 5, 6}), std::vector<double>(ids.begin(), ids.begin() + 4));
  // The run 5 5 stays together and in store order, beside the lone 5.
  std::vector<double> fives(ids.begin() + 4, ids.end());
  EXPECT_TRUE(fives == (std::vector<double>{1, 2, 4}) || fives == (std::vector<double>{4, 1, 2}));
  EXPECT_EQ(6u, merge(view).getMethod().getGroups().size());
}

// Empty stores are dropped before the checks: the one with other keys
// raises nothing, and the first store kept answers for the view. Other
// differences are all listed before the merge gives up.
TEST(MergeStoreDecorator, DropsEmptyStoresAndListsEveryDifference) {
  vHandle<Store> empty = keyed("empty", {}, {});
  vHandle<Store> other = simpleStore("other", {"OTHER"}, {column("OTHER", vINT32, {})});
  vHandle<Store> view = StoreDecoratorFactory::addMerge(empty, 0, true);
  merge(view).addStore(keyed("a", {2, 1}, {1, 2}));
  merge(view).addStore(other);
  RecordingHandler recorder;
  EXPECT_EQ(2u, view->getNInstances());
  std::string const label = "MergeMethodNoSecondarySort::myDoValidateStores";
  std::string const text = " will be ignored as it does not contain any data";
  EXPECT_EQ((std::vector<std::string>{label + "|The store " + title(empty) + text,
                                      label + "|The store " + title(other) + text}),
            recorder.infos);
  EXPECT_STREQ("a", view->getAttributeSetName().c_str());

  vHandle<Store> first = keyed("a", {1}, {1});
  vHandle<Store> otherKeys = simpleStore("b", {"ID"}, {column("KEY", vINT32, {2}), column("ID", vINT32, {2})});
  vHandle<Store> otherId = simpleStore("c", {"KEY"}, {column("KEY", vINT32, {3}), column("ID", vFLOAT32, {3})});
  view = StoreDecoratorFactory::addMerge(first, 0, true);
  merge(view).addStore(otherKeys);
  merge(view).addStore(otherId);
  EXPECT_EQ(label + ": Differences found, cannot continue!", fatalText([&] { view->getNInstances(); }));
  EXPECT_EQ((std::vector<std::string>{
                label + "|The keys for '" + title(otherKeys) + "' do not match '" + title(first) + "'!",
                label + "|The attribute 'ID' is not the same in all the stores!"}),
            recorder.errors);
}

TEST(MergeStoreDecorator, AnAttributeOfOneStoreReadsAsZerosForTheOthers) {
  vHandle<Store> a = simpleStore("a", {"KEY"}, {column("KEY", vINT32, {1, 3}), column("ONLY_A", vFLOAT64, {1.5, 3.5})});
  vHandle<Store> b = simpleStore("b", {"KEY"}, {column("KEY", vINT32, {2, 4}), column("ONLY_B", vINT16, {20, 40, 7})});
  vHandle<Store> view = StoreDecoratorFactory::addMerge(a, 0, true);
  merge(view).addStore(b);
  EXPECT_EQ(3u, view->getAttributeList().size()) << "the union";
  Attribute onlyA("ONLY_A", "ONLY_A", vFLOAT64);
  view->read(onlyA, 1, 4);
  EXPECT_EQ((std::vector<double>{1.5, 0, 3.5, 0}), valuesOf(onlyA));
  Attribute onlyB("ONLY_B", "ONLY_B", vINT16);
  view->read(onlyB, 2, 4);
  EXPECT_EQ((std::vector<double>{20, 0, 40}), valuesOf(onlyB));
  // Definitions and class matches are those of the first store.
  EXPECT_FALSE(view->hasAttribute("ONLY_B"));
  EXPECT_EQ(1u, view->getAttributeList("ONLY_A", AttributeMatch::MATCH_CLASS).size());
}

// The method's own guard, behind the one of addStore.
struct ProbedMethod : Merge::MergeMethodNoSecondarySort {
  using Merge::MergeMethodNoSecondarySort::myDoAddStore;
};

TEST(MergeStoreDecorator, StoresAndDirectionAreFixedAtTheFirstQuestion) {
  vHandle<Store> view = StoreDecoratorFactory::addMerge(keyed("a", {1}, {1}), 0, true);
  merge(view).addStore(keyed("b", {0}, {2}));
  EXPECT_EQ(2u, view->getNInstances());
  expectFailure([&] { merge(view).addStore(keyed("c", {1}, {3})); }, "MergeMethodBase::addStore",
                "Cannot add stores after we've validated everything!");
  ProbedMethod method;
  method.addStore(keyed("a", {1}, {1}));
  method.validateStores();
  expectFailure([&] { method.setReverse(true); }, "MergeMethodBase::setReverse",
                "Cannot set reverse mode after we've validated everything!");
  // reset goes back to configuring, without stores.
  method.reset();
  method.addStore(keyed("b", {4, 3}, {1, 2}));
  method.setReverse(true);
  EXPECT_EQ(2u, method.getNInstances());
  Attribute key("KEY", "KEY", vINT32);
  method.read(key, 1, 2);
  EXPECT_EQ((std::vector<double>{4, 3}), valuesOf(key));
  expectFailure([&] { method.myDoAddStore(keyed("c", {2}, {2})); }, "MergeMethodNoSecondarySort::myDoAddStore",
                "Cannot add a store after we have started reading data!");
}

TEST(MergeStoreDecorator, RefusesStoresItCannotMerge) {
  char const* label = "MergeMethodNoSecondarySort::myDoAddStore";
  vHandle<Store> closed(new TestMemoryStore(vHandle<Project>()));
  expectFailure([&] { StoreDecoratorFactory::addMerge(closed, 0, true); }, label,
                "Trying to add the store '.0' but it's not been opened!");
  vHandle<Store> texts = simpleStore("t", {"NAME"}, {column("NAME", vSTRING, {1})});
  expectFailure([&] { StoreDecoratorFactory::addMerge(texts, 0, true); }, label,
                "The store '" + title(texts) + "' contains a key of datatype vSTRING but we do not support this!");
  vHandle<Store> pairs = simpleStore("p", {"PAIR"}, {column("PAIR", vINT32, {1, 2}, 2)});
  expectFailure([&] { StoreDecoratorFactory::addMerge(pairs, 0, true); }, label,
                "The store '" + title(pairs) +
                    "' contains the primary key length of 2 ... we only support length = 1!!");
}

TEST(MergeStoreDecorator, RefusesBadRangesListsSetsAndReads) {
  vHandle<Store> view = StoreDecoratorFactory::addMerge(keyed("a", {1, 2, 3}, {1, 2, 3}), 0, true);
  Attribute id("ID", "ID", vINT32);
  char const* label = "MergeMethodNoSecondarySort::read(range)";
  expectFailure([&] { view->read(id, 0, 3); }, label, "INvalid range specification 0:3 ... valid values are 1:3");
  expectFailure([&] { view->read(id, std::vector<unsigned int>()); }, "MergeMethodNoSecondarySort::read(list)",
                "No list specified!");
  expectFailure([&] { view->read(id, std::vector<unsigned int>{2, 4}); }, "MergeMethodNoSecondarySort::read(list)",
                "Internal error, found invalid group (3:3) when searching for instance 4!");
  expectFailure([&] { view->read(id, std::vector<unsigned int>{0, 2}); }, "MergeMethodNoSecondarySort::read(list)",
                "Internal error, could not find instance 0 in the group bins!");
  expectFailure([&] { view->openAttributeSet("other"); }, "MergeMethodNoSecondarySort::openAttributeSet",
                "Invalid attribute set name 'other' ... we expect blank or 'a'!");
  EXPECT_EQ(1u, view->getAttributeSetList()->size());
  // Reads by groups and keys, which the suite does not ask of a merge.
  expectFailure([&] { view->read(id, id, 1, 1); }, "MergeStoreDecorator::read(groups)", "Has not been written yet!");
  expectFailure([&] { view->read(id, KeyList()); }, "MergeStoreDecorator::read(keys)", "Has not been written yet!");
}

// A list read is one list read below per store, in the order asked.
TEST(MergeStoreDecorator, ReadsListsBelowOncePerStore) {
  ObservedStore* a = nullptr;
  ObservedStore* b = nullptr;
  vHandle<Store> view = StoreDecoratorFactory::addMerge(
      observedStore(keyedShelf("a", {1, 2, 3, 7, 8, 9}, {1, 2, 3, 4, 5, 6}), a, "a"), 0, true);
  merge(view).addStore(observedStore(keyedShelf("b", {4, 5, 6, 10}, {7, 8, 9, 10}), b, "b"));
  Attribute id("ID", "ID", vINT32);
  view->read(id, std::vector<unsigned int>{10, 1, 5, 4, 9});
  EXPECT_EQ((std::vector<double>{10, 1, 8, 7, 6}), valuesOf(id));
  EXPECT_EQ((std::vector<std::vector<unsigned int>>{{1, 6}}), a->lists);
  EXPECT_EQ((std::vector<std::vector<unsigned int>>{{4, 2, 1}}), b->lists);
}

// With a cache the key scan fills a window per store and reads the rest
// past it; the groups come out the same.
TEST(MergeStoreDecorator, TheKeyScanThroughItsCache) {
  unsigned int const n = 25000;
  std::vector<double> keys(n), wide(n * 16, 1.0);
  for (unsigned int i = 0; i < n; ++i) keys[i] = static_cast<double>(i / 10);
  ObservedStore* observed = nullptr;
  vHandle<Store> store = observedStore(
      joinShelf("wide", {"KEY"}, {SetContent{"", {column("KEY", vINT32, keys), column("WIDE", vINT32, wide, 16)}}}),
      observed, "wide");
  // 68 bytes an instance: a window of 15420 instances in one megabyte.
  vHandle<Store> view = StoreDecoratorFactory::addMerge(store, 1, false);
  EXPECT_EQ(n, view->getNInstances());
  Merge::MergeMethodNoSecondarySort const& method = merge(view).getMethod();
  EXPECT_EQ(68u, method.getBytesPerInstance());
  EXPECT_EQ(15420u, method.getStoreData(0).cacheSize);
  // Fill 1-15420, the rest of the second block 15421-20480, fill 20481-25000.
  EXPECT_EQ(3, observed->rangeReads);
  ASSERT_EQ(2500u, method.getGroups().size());
  Attribute key("KEY", "KEY", vINT32);
  view->read(key, n, n);
  EXPECT_EQ(0.0, key.getValue(1));
}

// --- the conformance suite -----------------------------------------------------------------

StoreConformanceCase mergeCase() {
  StoreConformanceCase c("MergeOfTwo");
  c.openForReading = [] {
    vHandle<Store> view = StoreDecoratorFactory::addMerge(openStore(layoutShelf({1, 2, 3, 7, 8, 9})), 1, true);
    merge(view).addStore(openStore(layoutShelf({4, 5, 6, 10, 11, 12})));
    return vHandle_cast<AttributeSet>(view);
  };
  c.texts.notWritable = "Has not been written yet!";
  // Reads by groups and keys are refused; a last of 0, an empty list and
  // an unknown attribute mean other things to a merge (told above).
  c.notApplicable = {"ReadsBySelectorGroups", "ReadsByKeyValues", "AnswersGroupQuestions",
                     "RefusesBadGroupNumbersWithTheirTexts", "RefusesBadRangesWithTheirTexts",
                     "RefusesBadListsAndNamesWithTheirTexts", "ReadsListsInTheirOrder"};
  return c;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(MergeViews, StoreConformance, ::testing::Values(mergeCase()), StoreConformance::caseName);
