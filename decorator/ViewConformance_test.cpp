// The shared store suite through the translating, mapping, bin, restore-mute,
// bind and infill views, over memory and SEG-Y stores.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "attribute/AttributeDefinitionTable.h"
#include "attribute/AttributeTranslationTable.h"
#include "decorator/AttributeMappingDecorator.h"
#include "decorator/BindStoreDecorator.h"
#include "decorator/DecoratorTesting.h"
#include "decorator/StoreDecoratorFactory.h"
#include "decorator/TranslatingAttributeSetDecorator.h"
#include "filestore/segy/SegyDiskStore.h"
#include "filestore/segy/SegyTesting.h"
#include "foundation/TestReleaseTree.h"
#include "syslayer/FSTesting.h"
#include "testing/StoreConformance.h"

using namespace decorator_testing;

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

vHandle<AttributeSet> asSet(vHandle<Store> const& store) { return vHandle_cast<AttributeSet>(store); }

vHandle<Store> memoryReference() {
  installVocabulary();
  return referenceStore();
}

// CDP and OFFSET in the trace headers, TRACE as the samples.
vHandle<Store> segyReference() {
  installVocabulary();
  static int serial = 0;
  std::string const base =
      ::testing::TempDir() + "view_conformance_" + std::to_string(::getpid()) + "_" + std::to_string(++serial);
  segy_testing::SegyWriter w;
  w.nSamples = 5;
  w.sampleInterval = 4000;
  w.sample = [](unsigned int t, unsigned int s) { return static_cast<float>(10 * t + s); };
  w.header = [](unsigned int t, segy_testing::SegyWriter const& writer, unsigned char* p) {
    writer.put32(p + 180, StoreConformance::referenceAttribute("CDP").getInt32(t));
    writer.put32(p + 36, StoreConformance::referenceAttribute("OFFSET").getInt32(t));
  };
  fs_testing::writeFile(base + ".sgy", w.file(StoreConformance::kNInstances));
  fs_testing::writeFile(base + ".syf",
                        "STORECLASS seismic\n"
                        "KEYNAMES CDP OFFSET\n"
                        "CDP     cdp     trace  181  int4  ensemble number\n"
                        "OFFSET  offset  trace  37   int4  source to receiver distance\n");
  SegyDiskStore* store = new SegyDiskStore;
  vHandle<Store> handle(store);
  store->open(StoreDescription(vFilename((base + ".sgy").c_str())));
  std::remove((base + ".sgy").c_str());
  std::remove((base + ".syf").c_str());
  return handle;
}

void segyTexts(StoreConformanceCase& c) {
  c.attributes = {"CDP", "OFFSET", "TRACE"};
  c.texts.unknownAttribute = "Attribute %s does not exist in file %s.";
  c.texts.keysMissing = "Attribute 'CDP': the vInstanceList has a zero in it, coont read from instance 0.";
  c.texts.notWritable = "Function not implemented in derived class -- needs code.";
}

StoreConformanceCase translating(char const* name, vHandle<Store> (*below)()) {
  StoreConformanceCase c(name);
  c.openForReading = [below] { return vHandle<AttributeSet>(new TranslatingAttributeSetDecorator(asSet(below()))); };
  c.texts.unknownDefinition = "Attrbute '%s' does not exist.";
  if (below == &segyReference)
    segyTexts(c);
  else
    c.openForUpdate = [] {
      installVocabulary();
      return vHandle<AttributeSet>(new TranslatingAttributeSetDecorator(asSet(referenceStore(true))));
    };
  return c;
}

// Keys computed by expressions, the rest taken over as it is.
StoreConformanceCase mapping(char const* name, vHandle<Store> (*below)()) {
  StoreConformanceCase c(name);
  bool const segy = below == &segyReference;
  c.openForReading = [below, segy] {
    vHandle<AttributeMappingDecorator> view(new AttributeMappingDecorator(below()));
    view->processExpression("CDP:i = CDP");
    view->processExpression("OFFSET:int32 = offset * 1");
    view->processExpression(segy ? "!ADD TRACE" : "!PRESERVE ELEV, TRACE");
    return asSet(vHandle_cast<Store>(view));
  };
  if (segy) segyTexts(c);
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
StoreConformanceCase infill(char const* name, vHandle<Store> (*below)()) {
  StoreConformanceCase c(name);
  c.openForReading = [below] { return asSet(StoreDecoratorFactory::addInfill(below())); };
  if (below == &segyReference) {
    segyTexts(c);
    // The view's indexing table finds key tuples itself.
    c.texts.keysMissing = StoreConformanceTexts().keysMissing;
  }
  c.texts.notWritable = "Not implemented";
  c.texts.firstAfterLast = "First instance value <%lld>is greater than last instance value <%lld>";
  // Group numbers are checked by the indexing table in the words of the
  // in-process sets, ranges in the view's own; the suite words both alike.
  c.notApplicable = {"RefusesBadGroupNumbersWithTheirTexts"};
  return c;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(InfillViews, StoreConformance,
                         ::testing::Values(infill("InfillOverMemory", &memoryReference),
                                           infill("InfillOverSegy", &segyReference)),
                         StoreConformance::caseName);

INSTANTIATE_TEST_SUITE_P(BindViews, StoreConformance, ::testing::Values(bind()), StoreConformance::caseName);

INSTANTIATE_TEST_SUITE_P(BinViews, StoreConformance, ::testing::Values(bin(), restoreMute()), StoreConformance::caseName);

INSTANTIATE_TEST_SUITE_P(MappingViews, StoreConformance,
                         ::testing::Values(mapping("MappingOverMemory", &memoryReference),
                                           mapping("MappingOverSegy", &segyReference)),
                         StoreConformance::caseName);

INSTANTIATE_TEST_SUITE_P(TranslatingViews, StoreConformance,
                         ::testing::Values(translating("TranslatingOverMemory", &memoryReference),
                                           translating("TranslatingOverSegy", &segyReference)),
                         StoreConformance::caseName);
