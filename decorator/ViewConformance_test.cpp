// The shared store suite through the translating, mapping, bin, restore-mute,
// bind and infill views. Over a file store they read the same lines as over
// memory: the file stores run the suite themselves. Then binning, the
// restored mute and the translating view on their own.

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "attribute/AttributeDefinitionTable.h"
#include "attribute/AttributeTranslationTable.h"
#include "attribute/KeyList.h"
#include "attribute/VocabularyTesting.h"
#include "decorator/AttributeMappingDecorator.h"
#include "decorator/BinDecorator.h"
#include "decorator/BindStoreDecorator.h"
#include "decorator/JoinTesting.h"
#include "decorator/RestoreMuteDecorator.h"
#include "decorator/StoreDecoratorFactory.h"
#include "decorator/TranslatingAttributeSetDecorator.h"
#include "filestore/memory/InMemoryStore.h"
#include "foundation/TestReleaseTree.h"
#include "project/UTProject.h"
#include "project/UTProjectCatalog.h"
#include "testing/StoreConformance.h"

using namespace join_testing;

namespace {

// Keys known to the vocabulary and translated as themselves, so that a view
// that translates shows the reference content unchanged. The release tree
// stays for the run; the tables are read again for each store in case
// another test read its own in between.
void installVocabulary() {
  static TestReleaseTree tree;
  static bool const written = [] {
    char const* const identity =
        "CDP capi(null()) dorn:(null()) CDP vInt32 1\n"
        "OFFSET capi(null()) dorn:(null()) OFFSET vInt32 1\n";
    tree.writeSystemFile("AttributeDefTable4.txt", "CDP vInt32 1\nOFFSET vInt32 1\n");
    tree.writeSystemFile("KelpAttributeTranslations3.txt", identity);
    tree.writeSystemFile("NoTypeAttributeTranslations3.txt", identity);
    return true;
  }();
  (void)written;
  AttributeDefinitionTable::instance().dropTable();
  AttributeTranslationTable::instance("Kelp").reload();
  AttributeTranslationTable::instance("NoType").reload();
}

vHandle<Store> memoryReference() {
  installVocabulary();
  return referenceStore();
}

StoreConformanceCase translating() {
  StoreConformanceCase c("TranslatingOverMemory");
  c.openForReading = [] { return vHandle<AttributeSet>(new TranslatingAttributeSetDecorator(asSet(memoryReference()))); };
  c.openForUpdate = [] {
    installVocabulary();
    return vHandle<AttributeSet>(new TranslatingAttributeSetDecorator(asSet(referenceStore(true))));
  };
  c.texts.unknownDefinition = "Attrbute '%s' does not exist.";
  return c;
}

// Keys computed by expressions, the rest taken over as it is.
StoreConformanceCase mapping() {
  StoreConformanceCase c("MappingOverMemory");
  c.openForReading = [] {
    vHandle<AttributeMappingDecorator> view(new AttributeMappingDecorator(memoryReference()));
    view->processExpression("CDP:i = CDP");
    view->processExpression("OFFSET:int32 = offset * 1");
    view->processExpression("!PRESERVE ELEV, TRACE");
    return asSet(vHandle_cast<Store>(view));
  };
  c.notApplicable = {"ReadsByKeyValues"};
  c.texts.keysMissing = "Not supported by this decorator!";
  c.texts.notWritable = "Not supported by this decorator!";
  c.texts.unknownAttribute = "This attribute does not exist in the parser list!";
  c.texts.unknownDefinition = "The attribute '%s' was not found in the store!";
  return c;
}

// OFFSET binned onto its own values: the binning runs, the content stays.
vHandle<Store> binned(vHandle<Store> const& below) {
  Binner binner;
  binner.addBins(100, 300, 100, 10);
  // What the write tests put outside the bins reads back as written.
  binner.setLowerOption(Binner::LeaveAlone);
  binner.setUpperOption(Binner::LeaveAlone);
  return StoreDecoratorFactory::addBin(below, binner, Attribute("OFFSET", "", vINT32));
}

StoreConformanceCase bin() {
  StoreConformanceCase c("BinOverMemory");
  c.openForReading = [] { return asSet(binned(memoryReference())); };
  c.openForUpdate = [] { return asSet(binned(referenceStore(true))); };
  return c;
}

// TRACE starts at time zero already: it goes the restoring way unchanged.
StoreConformanceCase restoreMute() {
  StoreConformanceCase c("RestoreMuteOverMemory");
  c.openForReading = [] { return asSet(StoreDecoratorFactory::addRestoreMute(memoryReference())); };
  c.texts.notWritable = "Not Supported.";
  return c;
}

// The reference in two stores, bound.
StoreConformanceCase bind() {
  StoreConformanceCase c("BindOverMemory");
  c.openForReading = [] {
    installVocabulary();
    vHandle<BindStoreDecorator> bind;
    vHandle<Store> store = StoreDecoratorFactory::addBind(openStore(layoutShelf({1, 2, 3, 4, 5})), bind);
    bind->addStore(openStore(layoutShelf({6, 7, 8, 9, 10, 11, 12})));
    return asSet(store);
  };
  // Reads by groups and keys are not offered; range and list faults have
  // one text each, with other arguments (tested with the view).
  c.notApplicable = {"ReadsBySelectorGroups", "ReadsByKeyValues", "RefusesBadGroupNumbersWithTheirTexts",
                     "RefusesBadRangesWithTheirTexts", "RefusesBadListsAndNamesWithTheirTexts"};
  c.texts.notWritable = "Has not been written yet.";
  return c;
}

// The reference keys already form a complete grid: nothing is invented,
// and every read goes the way of the grid.
StoreConformanceCase infill() {
  StoreConformanceCase c("InfillOverMemory");
  c.openForReading = [] { return asSet(StoreDecoratorFactory::addInfill(memoryReference())); };
  c.texts.notWritable = "Not implemented";
  c.texts.firstAfterLast = "First instance value <%lld>is greater than last instance value <%lld>";
  // Group numbers are checked by the indexing table in the words of the
  // in-process sets, ranges in the view's own; the suite words both alike.
  c.notApplicable = {"RefusesBadGroupNumbersWithTheirTexts"};
  return c;
}

// Two traces recorded from 200 ms to 1000 ms at 4 ms: 201 samples each.
vHandle<Store> mutedStore() {
  std::vector<double> samples;
  for (int i = 1; i <= 2; ++i)
    for (int s = 0; s < 201; ++s) samples.push_back(1000 * i + s + 1);
  Column trace{Attribute("TRACE", "TRACE", vFLOAT32, 201, 4.0, 200.0), samples};
  return simpleStore("muted", {"CDP"}, {column("CDP", vINT32, {7, 8}), trace});
}

TEST(RestoreMuteDecorator, TracesStartAtTimeZero) {
  vHandle<Store> view = StoreDecoratorFactory::addRestoreMute(mutedStore());
  Attribute shown = view->getAttribute("TRACE");
  EXPECT_EQ(251, shown.getLength());
  EXPECT_EQ(0.0, shown.getFirstTime());
  view->read(shown, std::vector<unsigned int>{2, 1});
  std::vector<float> expected(50, 0.0f);
  for (int s = 0; s < 201; ++s) expected.push_back(static_cast<float>(2000 + s + 1));
  float const* second = shown.getFloat32Pointer(1);
  EXPECT_EQ(expected, std::vector<float>(second, second + 251));
  EXPECT_EQ(1001.0f, shown.getFloat32Pointer(2)[50]);
  // Writes are refused as the suite checks; so are updates and new stores.
  expectFatal([&] { view->update("muted", 0, "", "", nullptr); }, "RestoreMuteDecorator::update(storename)",
              "Not Supported.");
  expectFatal([&] { view->create("x", "", "", KeyList(), nullptr); }, "RestoreMuteDecorator::create(storename)",
              "Not Supported.");
}

TEST(Binner, SnapsToBinsAndTreatsValuesOutside) {
  Binner binner;
  binner.addBins(10, 20, 10, 4);
  struct Case {
    Binner::UnbinnedValueOptions option;
    double in;
    double out;
  } const cases[] = {
      {Binner::SetNoValue, 11, 10},
      {Binner::SetNoValue, 22, 20},
      {Binner::UseNearestBin, 5, 10},
      {Binner::LeaveAlone, 22.5, 22.5},
      {Binner::SetNoValue, 5, std::numeric_limits<double>::max()},
  };
  for (Case const& c : cases) {
    binner.setLowerOption(c.option);
    binner.setUpperOption(c.option);
    double v = c.in;
    binner.binValues(&v, vFLOAT64, 1);
    EXPECT_EQ(c.out, v) << c.in << " option " << c.option;
  }
  int ints[] = {4, 12, 30};
  binner.setLowerOption(Binner::SetNoValue);
  binner.setUpperOption(Binner::UseNearestBin);
  binner.binValues(ints, vINT32, 3);
  EXPECT_EQ((std::vector<int>{std::numeric_limits<int>::max(), 10, 20}), std::vector<int>(ints, ints + 3));

  // Touching bins: the first listed wins; a walk downwards; a single bin
  // sits round the maximum with the minimum as its value.
  Binner touching;
  touching.addBins(0, 4, 2, 2);
  touching.addBins(30, 20, -10, 2);
  touching.addBins(7, 100, 0, 1);
  double values[] = {1, 3, 21, 30, 100.5, 99.4};
  touching.binValues(values, vFLOAT64, 6);
  EXPECT_EQ((std::vector<double>{0, 2, 20, 30, 7, 99.4}), std::vector<double>(values, values + 6));
}

// SOURCE_X changes its data on the way, CDP only its name, ELEV has no
// translator.
class Translating : public ::testing::Test {
 protected:
  void SetUp() override {
    tree.writeSystemFile("AttributeDefTable4.txt", vocabulary_testing::definitions());
    tree.writeSystemFile("RondoAttributeTranslations3.txt", vocabulary_testing::translations());
    AttributeDefinitionTable::instance().dropTable();
    AttributeTranslationTable::instance("Rondo").reload();
    vHandle<ProjectCatalog> catalog(new UTProjectCatalog("host", ProjectType::RONDO));
    below = vHandle<InMemoryStore>(new InMemoryStore(vHandle<Project>(new UTProject(catalog))));
    KeyList keys;
    keys.addKey(Attribute("CDP", "CDP", vINT32));
    below->create("t", "seismic", "3d", keys, nullptr);
    below->addInstances(3);
    for (Attribute a : {Attribute("CDP", "CDP", vINT32), Attribute("SOURCE_X", "SOURCE_X", vFLOAT64),
                        Attribute("ELEV", "", vFLOAT64)}) {
      a.resize(3);
      for (unsigned int i = 1; i <= 3; ++i) a.setValue(i, 10.25 * i);
      if (!below->hasAttribute(a.getName())) below->addAttribute(a);
      below->write(a, 1, 3);
    }
    view = vHandle<TranslatingAttributeSetDecorator>(
        new TranslatingAttributeSetDecorator(vHandle_cast<AttributeSet>(below)));
  }
  void TearDown() override { AttributeDefinitionTable::instance().dropTable(); }

  TestReleaseTree tree;
  vHandle<InMemoryStore> below;
  vHandle<TranslatingAttributeSetDecorator> view;
};

TEST_F(Translating, TheClientSeesItsOwnVocabularyBothWays) {
  // Attributes named after their class keep their names; the types are
  // the client's.
  EXPECT_EQ((std::vector<std::string>{"CDP", "ELEV", "SOURCE_X"}), names(view->getAttributeList()));
  EXPECT_EQ(vFLOAT32, view->getAttribute("SOURCE_X").getDataType());
  EXPECT_EQ(vFLOAT32, view->getAttributeList("SOURCE_X", AttributeMatch::AttributeMatchType(0)).front().getDataType());

  Attribute shot("SHOT_X", "SOURCE_X", vFLOAT32);
  view->read(shot, 2, 3);
  EXPECT_EQ("SHOT_X", std::string(shot.getName().c_str()));
  EXPECT_FLOAT_EQ(30.75f, shot.getFloat32(2));

  // Writes rename only for their time, and convert the data.
  Attribute cdp("CDP_NO", "CDP", vINT32);
  cdp.resize(1);
  cdp.setInt32(1, 77);
  view->write(cdp, 2, 2);
  EXPECT_EQ("CDP_NO", std::string(cdp.getName().c_str()));
  EXPECT_EQ((std::vector<double>{10, 77, 30}), values(*below, "CDP"));
  // A failed write puts the name back too.
  EXPECT_ANY_THROW(view->write(cdp, 7, 7));
  EXPECT_EQ("CDP_NO", std::string(cdp.getName().c_str()));

  shot.resize(1);
  shot.setFloat32(1, 1.5f);
  view->write(shot, std::vector<unsigned int>{3});
  EXPECT_EQ((std::vector<double>{10.25, 20.5, 1.5}), values(*below, "SOURCE_X"));

  // Added attributes join a list already built; after close and open it is
  // built afresh from the set below.
  view->getAttributeList();
  view->addAttribute(Attribute("SHOT_X2", "", vFLOAT32));
  EXPECT_TRUE(view->hasAttribute("SHOT_X2"));
  view->close();
  below->update("t", 0, "", "", nullptr);
  below->addAttribute(Attribute("LATE", "", vINT32));
  EXPECT_TRUE(view->hasAttribute("LATE"));
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(ViewsOverMemory, StoreConformance,
                         ::testing::Values(infill(), bind(), bin(), restoreMute(), mapping(), translating()),
                         StoreConformance::caseName);
