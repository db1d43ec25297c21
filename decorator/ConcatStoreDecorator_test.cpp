// The concat and gather views, and the shared suite over stores whose sets
// together hold the reference content.

#include <gtest/gtest.h>

#include <cstdlib>

#include "attribute/AttributeDefinition.h"
#include "decorator/ConcatStoreDecorator.h"
#include "decorator/GatherStoreDecorator.h"
#include "decorator/JoinTesting.h"
#include "decorator/StoreDecoratorFactory.h"

using namespace join_testing;

namespace {

char const* const kSequence = "ATTRIBUTESET.SEQUENCE";

// Sets with ID and VAL, keys ID.
SetContent idSet(char const* name, std::vector<double> ids) {
  std::vector<double> vals;
  for (double id : ids) vals.push_back(id / 2);
  return SetContent{name, {column("ID", vINT32, ids), column("VAL", vFLOAT64, vals)}};
}

// Primary set of 3 instances, set b of 2.
vHandle<Store> shots() {
  return openJoin(joinShelf("shots", {"ID"}, {idSet("", {1, 2, 3}), idSet("b", {4, 5})}), "shots");
}

class ConcatStoreDecoratorTest : public ::testing::Test {
 protected:
  SequenceDefinition sequence;
};

// A store that lists a variable-length attribute among its own.
class VariableListingStore : public TestMemoryStore {
 public:
  explicit VariableListingStore(std::shared_ptr<TestMemoryShelf> const& shelf)
      : TestMemoryStore(vHandle<Project>(), shelf) {}
  std::list<Attribute> getAttributeList() const override {
    std::list<Attribute> list = TestMemoryStore::getAttributeList();
    list.push_back(Attribute("PICKS", "PICKS", vFLOAT32, Attribute::VARIABLE_LENGTH));
    return list;
  }
  using TestMemoryStore::getAttributeList;
};

TEST_F(ConcatStoreDecoratorTest, LaysTheSetsEndToEndAndChecksThem) {
  vHandle<ConcatStoreDecorator> concat;
  vHandle<Store> view = StoreDecoratorFactory::addConcat(shots(), concat);
  // The sequence attribute tells the sets apart and leads the keys.
  EXPECT_EQ((std::vector<std::string>{kSequence, "ID"}), names(view->getKeyList()));
  // The one set name is the primary set's.
  EXPECT_EQ((Store::AttributeSetList{"shots"}), *view->getAttributeSetList());
  expectFailure([&] { view->openAttributeSet("b"); }, "ConcatStoreDecorator::openAttributeSet",
                "Invalid attribute set name!");
  // Reads by groups and keys, which the suite does not ask of these views.
  Attribute id("ID", "ID", vINT32);
  expectFailure([&] { view->read(id, id, 1, 1); }, "ConcatStoreDecorator::read(groups)", "Has not been written yet!");
  expectFailure([&] { view->read(id, KeyList()); }, "ConcatStoreDecorator::read(keys)", "Has not been written yet!");

  char const* label = "ConcatStoreDecorator::myValidateRange";
  expectFailure([&] { view->read(id, 0, 2); }, label,
                "The first instance (0) is out of range!   Valid values are 1 thru 5.");
  expectFailure([&] { view->read(id, 2, 6); }, label,
                "The last instance (6) is out of range!   Valid values are 1 thru 5.");
  expectFailure([&] { view->read(id, 4, 3); }, label,
                "The last instance (3) must be greater than or equal to the first (4)!");
  vHandle<Store> empty = StoreDecoratorFactory::addConcat(
      openJoin(joinShelf("none", {"ID"}, {idSet("", {}), idSet("b", {})}), "none"));
  expectFailure([&] { empty->read(id, 1, 1); }, "ConcatStoreDecorator::read(range)",
                "There are no instances within this store!");
  expectFailure([&] { empty->read(id, std::vector<unsigned int>{1}); }, "ConcatStoreDecorator::read(list)",
                "There are no instances within this store!");

  Attribute wrong("ID", "ID", vFLOAT32);
  expectFailure([&] { view->read(wrong, 1, 1); }, "ConcatStoreDecorator::myValidateAttribute",
                "The attribute 'ID' was not found!");

  char const* validate = "ConcatStoreDecorator::myValidateStore";
  SetContent otherKeys{"b", {column("ID", vINT32, {4}), column("VAL", vFLOAT64, {2})}, {"VAL"}};
  auto shelf = joinShelf("k", {"ID"}, {idSet("", {1}), otherKeys});
  vHandle<Store> keysDiffer = StoreDecoratorFactory::addConcat(openJoin(shelf, "k"));
  expectFailure([&] { keysDiffer->getNInstances(); }, validate,
                "The keys within attribute set b are different than the primary set's ones!");
  SetContent otherAttributes{"c", {column("ID", vINT32, {4}), column("VAL", vFLOAT32, {2})}};
  vHandle<Store> attributesDiffer = StoreDecoratorFactory::addConcat(
      openJoin(joinShelf("a", {"ID"}, {idSet("", {1}), otherAttributes}), "a"));
  expectFailure([&] { attributesDiffer->getKeyList(); }, validate,
                "The attributes within attribute set c are different than the primary set's ones!");
  vHandle<Store> closed(new TestMemoryStore(vHandle<Project>(), shelf));
  vHandle<Store> notOpen = StoreDecoratorFactory::addConcat(closed);
  expectFailure([&] { notOpen->getNInstances(); }, validate, "The store is not open!");
  vHandle<Store> variable(new VariableListingStore(joinShelf("v", {"ID"}, {idSet("", {1}), idSet("b", {2})})));
  variable->open("v", 0, "seismic", "3d", nullptr);
  vHandle<Store> gather = StoreDecoratorFactory::addGather(variable);
  expectFailure([&] { gather->getNInstances(); }, validate,
                "The attribute 'PICKS' is variable length ... not supported!");
}

TEST_F(ConcatStoreDecoratorTest, WhatLeadsTheKeys) {
  auto withOffsetBin = [](std::vector<std::string> keys, char const* subClass) {
    SetContent a{"", {column("ID", vINT32, {1, 2}), column("OFFSET.BIN", vINT32, {7, 8})}};
    SetContent b{"b", {column("ID", vINT32, {3}), column("OFFSET.BIN", vINT32, {9})}};
    return openJoin(joinShelf("bins", keys, {a, b}, subClass), "bins", subClass);
  };
  // An attribute of the sets: it leads the keys; no sequence attribute.
  vHandle<Store> view = StoreDecoratorFactory::addConcat(withOffsetBin({"ID"}, "3d"));
  EXPECT_EQ((std::vector<std::string>{"OFFSET.BIN", "ID"}), names(view->getKeyList()));
  EXPECT_FALSE(view->hasAttribute(kSequence));
  // Already a key: the keys stay.
  view = StoreDecoratorFactory::addConcat(withOffsetBin({"ID", "OFFSET.BIN"}, "3d"));
  EXPECT_EQ((std::vector<std::string>{"ID", "OFFSET.BIN"}), names(view->getKeyList()));
  // Offload headers get the sequence, but not as a key.
  view = StoreDecoratorFactory::addConcat(
      openJoin(joinShelf("off", {"ID"}, {idSet("", {1}), idSet("b", {2})}, "moffldheader"), "off", "moffldheader"));
  EXPECT_EQ((std::vector<std::string>{"ID"}), names(view->getKeyList()));
  EXPECT_EQ((std::vector<double>{1, 2}), values(*view, kSequence));
}

// --- gather --------------------------------------------------------------------------------

// Three sets of equal size: set s holds IDs 10 s + i.
vHandle<Store> threeSets() {
  return openJoin(
      joinShelf("g", {"ID"}, {idSet("", {11, 12, 13}), idSet("two", {21, 22, 23}), idSet("three", {31, 32, 33})}),
      "g");
}

// Every attribute of a set refills together, a window of one more than
// the instances per fill, and the sets take turns on the store below.
TEST_F(ConcatStoreDecoratorTest, GatherRefillsASetAtATime) {
  std::vector<double> wide(12 * 26214, 1.0);
  std::vector<double> ids = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  SetContent one{"", {column("ID", vINT32, ids), column("W", vFLOAT32, wide, 26214)}};
  SetContent two{"two", {column("ID", vINT32, ids), column("W", vFLOAT32, wide, 26214)}};
  ObservedStore* observed = nullptr;
  vHandle<GatherStoreDecorator> gather(
      new GatherStoreDecorator(observedStore(joinShelf("w", {"ID"}, {one, two}), observed, "w")));
  gather->setCacheSize(1);
  EXPECT_EQ(0, gather->getInstancesPerFill());
  Attribute id = gather->getAttribute("ID");
  gather->read(id, 1, 24);
  // 2 x (4 + 4 x 26214) bytes an instance: 4 instances per fill, windows
  // 1-5, 6-10, 11-12 of each set, each a read of both attributes.
  EXPECT_EQ(4, gather->getInstancesPerFill());
  EXPECT_EQ(2 * 3 * 2, observed->rangeReads);
  for (unsigned int k = 1; k <= 24; ++k) EXPECT_EQ(static_cast<double>((k + 1) / 2), id.getValue(k)) << k;
  Attribute w = gather->getAttribute("W");
  gather->read(w, 23, 24);
  EXPECT_EQ(2 * 3 * 2, observed->rangeReads) << "in the windows already";
}

TEST_F(ConcatStoreDecoratorTest, GatherCacheAndItsLimits) {
  ::setenv("GATHERSTOREDECORATOR_CACHESIZE", "64", 1);
  {
    RecordingHandler recorder;
    EXPECT_EQ(64, GatherStoreDecorator(threeSets()).getCacheSize());
    EXPECT_EQ((std::vector<std::string>{"GatherStoreDecorator::CacheData::CacheData|Cache set to 64 megabytes"}),
              recorder.infos);
  }
  ::unsetenv("GATHERSTOREDECORATOR_CACHESIZE");
  vHandle<GatherStoreDecorator> gather(new GatherStoreDecorator(threeSets()));
  EXPECT_EQ((std::vector<double>{1, 2, 3, 1, 2, 3, 1, 2, 3}), values(*gather, kSequence));
  Attribute id = gather->getAttribute("ID");
  // The list read is not checked against the view: the cache refuses what
  // no set holds.
  expectFailure([&] { gather->read(id, std::vector<unsigned int>{10}); }, "GatherStoreDecorator::CacheData::read",
                "Instance 4 is not in attribute set 1 of the gather!");
  gather->setCacheSize(0);
  // The size held, not the one given, is checked.
  expectFailure([&] { gather->setCacheSize(5); }, "GatherStoreDecorator::CacheData::setCacheSize",
                "The size of the cache must be greater than zero, not 0!");

  // 3 sets of 200000 bytes an instance in one megabyte.
  std::vector<double> wide(50000, 2.0);
  std::vector<SetContent> sets;
  for (char const* name : {"", "b", "c"}) sets.push_back(SetContent{name, {column("W", vFLOAT32, wide, 50000)}});
  vHandle<GatherStoreDecorator> big(new GatherStoreDecorator(openJoin(joinShelf("big", {}, sets), "big")));
  big->setCacheSize(1);
  Attribute w = big->getAttribute("W");
  expectFailure([&] { big->read(w, 1, 1); }, "GatherStoreDecorator::CacheData::read",
                "Cache error, memory size too small for an efficient cache (mb 1/total instance size 600000/#ToCache "
                "1).");
}

// --- the conformance suite -----------------------------------------------------------------

// A set holding the reference instances listed, with the reference keys.
SetContent referenceSet(char const* name, std::vector<unsigned int> const& instances) {
  SetContent set{name, {}};
  for (char const* attribute : kReferenceAttributes) {
    Column c{StoreConformance::referenceDefinition(attribute), {}};
    for (unsigned int i : instances)
      for (int k = 1; k <= c.definition.getLength(); ++k)
        c.values.push_back(StoreConformance::referenceValue(attribute, i, k));
    set.columns.push_back(c);
  }
  return set;
}

// The reference in three sets of the instances listed, joined by a concat
// or a gather view.
StoreConformanceCase joinCase(char const* name, std::vector<std::vector<unsigned int>> const& parts, bool gather) {
  StoreConformanceCase c(name);
  c.openForReading = [=] {
    AttributeDefinitionTable::instance().addDefinition(Attribute(kSequence, kSequence, vINT32));
    vHandle<Store> below = openJoin(joinShelf(kStore, {"CDP", "OFFSET"},
                                              {referenceSet("", parts[0]), referenceSet("b", parts[1]),
                                               referenceSet("c", parts[2])}),
                                    kStore);
    return vHandle_cast<AttributeSet>(gather ? StoreDecoratorFactory::addGather(below)
                                             : StoreDecoratorFactory::addConcat(below));
  };
  c.texts.notWritable = "Has not been written yet!";
  // The sequence attribute leads the keys.
  c.hasKeyList = false;
  // Reads by groups and keys are refused, and ranges are checked in words
  // of these views (told above).
  c.notApplicable = {"ReadsBySelectorGroups", "ReadsByKeyValues", "AnswersGroupQuestions",
                     "RefusesBadGroupNumbersWithTheirTexts", "RefusesBadRangesWithTheirTexts",
                     "RefusesBadListsAndNamesWithTheirTexts"};
  return c;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(JoinViews, StoreConformance,
                         ::testing::Values(joinCase("ConcatOfThreeSets", {{1, 2, 3, 4, 5}, {6}, {7, 8, 9, 10, 11, 12}},
                                                    false),
                                           joinCase("GatherOfThreeSets", {{1, 4, 7, 10}, {2, 5, 8, 11}, {3, 6, 9, 12}},
                                                    true)),
                         StoreConformance::caseName);
