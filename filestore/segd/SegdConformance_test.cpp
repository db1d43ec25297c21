// The shared store suite over a SEG-D file of the Python writer that holds
// the reference keys: file numbers 1 1 1 2 2 2 ... and trace numbers 100
// 200 300, computed as CDP and OFFSET by the mapping view. The
// store is read-only: the cases that write are skipped, the refusals
// checked. TRACE is left out: a record length gives 51.2 samples a tenth,
// never the suite's 5.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "decorator/AttributeMappingDecorator.h"
#include "filestore/segd/SegdDiskStore.h"
#include "filestore/segd/SegdTesting.h"
#include "testing/StoreConformance.h"

namespace {

// Written once per run; removed at exit.
std::string const& referenceFile() {
  static std::string const file = [] {
    std::string const path = ::testing::TempDir() + "segd_conformance_" + std::to_string(::getpid()) + ".segd";
    segd_testing::writeSegd(path, "--reference --traces 12 --record 1");
    return path;
  }();
  static struct Remover {
    ~Remover() { std::remove(file.c_str()); }
  } remover;
  return file;
}

StoreConformanceCase segdCase() {
  StoreConformanceCase c("SegdDiskStore");
  c.openForReading = [] {
    segd_testing::installVocabulary();
    SegdDiskStore* store = new SegdDiskStore;
    vHandle<AttributeSet> handle(store);
    store->open(vFilename(referenceFile().c_str()));
    vHandle<AttributeMappingDecorator> view(new AttributeMappingDecorator(vHandle_cast<Store>(handle)));
    view->processExpression("CDP:i = FFID");
    view->processExpression("OFFSET:int32 = CHANNEL * 1");
    return vHandle_cast<AttributeSet>(vHandle_cast<Store>(view));
  };
  c.makeUnopened = [] { return vHandle<AttributeSet>(new SegdDiskStore); };
  c.texts.notOpen = "Segd Disk File has not been opened yet!";
  c.attributes = {"CDP", "OFFSET"};
  // The view reads no key tuples and keeps no key list; list faults come
  // up from the store in its names (SegdDiskStore_test checks them there).
  c.hasKeyList = false;
  c.notApplicable = {"ReadsByKeyValues", "RefusesBadListsAndNamesWithTheirTexts"};
  c.texts.keysMissing = "Not supported by this decorator!";
  c.texts.notWritable = "Not supported by this decorator!";
  c.texts.unknownAttribute = "This attribute does not exist in the parser list!";
  c.texts.unknownDefinition = "The attribute '%s' was not found in the store!";
  return c;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(SegdDiskStore, StoreConformance, ::testing::Values(segdCase()), StoreConformance::caseName);
