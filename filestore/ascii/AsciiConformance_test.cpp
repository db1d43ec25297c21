// The shared store suite over a text table that the store wrote, laid out
// by a format description of the reference attributes. The store's range
// faults have one text of their own (tested with the store), so the
// suite's cases of range texts do not apply.

#include <gtest/gtest.h>

#include <string>

#include "filestore/ascii/AsciiDiskStore.h"
#include "filestore/ascii/AsciiTesting.h"
#include "testing/StoreConformance.h"

namespace {

std::vector<std::string> const kHeld = {"CDP", "OFFSET", "ELEV"};

vHandle<AttributeSet> openReferenceFile() {
  ascii_testing::useSourceRelease();
  static int serial = 0;
  std::string const spec = ascii_testing::scratch(
      "reference.txf", "<SingleLineRecords Formats=\"i32 i32 f64\">CDP OFFSET ELEV</SingleLineRecords>\n");
  std::string const file = ascii_testing::scratch("conformance_" + std::to_string(++serial) + ".txt", "");
  StoreDescription description{vFilename(file.c_str())};
  description.setFormatSpec(spec.c_str());
  {
    AsciiDiskStore created;
    created.create(description);
    StoreConformance::populate(created, kHeld);
    created.close();
  }
  AsciiDiskStore* store = new AsciiDiskStore;
  vHandle<AttributeSet> handle(store);
  store->open(description);
  return handle;
}

StoreConformanceCase asciiCase() {
  StoreConformanceCase c("AsciiDiskStore");
  c.openForReading = openReferenceFile;
  c.makeUnopened = [] { return vHandle<AttributeSet>(new AsciiDiskStore); };
  c.attributes = kHeld;
  c.hasKeyList = false;
  c.hasClasses = false;
  c.notApplicable = {"RefusesBadRangesWithTheirTexts", "RefusesBadGroupNumbersWithTheirTexts",
                     "RefusesBadListsAndNamesWithTheirTexts"};
  c.texts.unknownAttribute = "Attribute %s does not exist in file %s.";
  c.texts.keysMissing = "Instance range 0,0 is bad, NInstances is 12";
  c.texts.notOpen = "Ascii Disk File has not been opened yet!";
  return c;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(AsciiDiskStore, StoreConformance, ::testing::Values(asciiCase()), StoreConformance::caseName);
