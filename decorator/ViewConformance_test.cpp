// The shared store suite through the translating, mapping, bin, restore-mute,
// bind and infill views. Over a file store they read the same lines as over
// memory: the file stores run the suite themselves.

#include <gtest/gtest.h>

#include <string>

#include "attribute/AttributeDefinitionTable.h"
#include "attribute/AttributeTranslationTable.h"
#include "decorator/AttributeMappingDecorator.h"
#include "decorator/BinDecorator.h"
#include "decorator/BindStoreDecorator.h"
#include "decorator/JoinTesting.h"
#include "decorator/StoreDecoratorFactory.h"
#include "decorator/TranslatingAttributeSetDecorator.h"
#include "foundation/TestReleaseTree.h"
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

}  // namespace

INSTANTIATE_TEST_SUITE_P(ViewsOverMemory, StoreConformance,
                         ::testing::Values(infill(), bind(), bin(), restoreMute(), mapping(), translating()),
                         StoreConformance::caseName);
