// The shared store suite over a Nyx "cst" file (CDP in the CMP word) as the
// store factory serves it through a mapping file that names the words.

#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

#include "filestore/nyx/NyxDiskStore.h"
#include "project/StoreFactory.h"
#include "registry/RondoRegistry.h"
#include "testing/StoreConformance.h"

namespace {

std::string const& referenceFile() {
  static std::string const file = [] {
    std::string const path = ::testing::TempDir() + "nyx_conformance_" + std::to_string(::getpid()) + ".cst";
    NyxDiskStore store;
    store.create(vFilename(path.c_str()));
    Attribute trace = StoreConformance::referenceAttribute("TRACE");
    Attribute cmp = StoreConformance::referenceAttribute("CDP");
    Attribute offset = StoreConformance::referenceAttribute("OFFSET");
    cmp.setName("CMP");
    for (Attribute const* a : {&trace, &cmp, &offset}) store.addAttribute(*a);
    for (Attribute const* a : {&trace, &cmp, &offset}) store.write(*a, 1, StoreConformance::kNInstances);
    store.close();
    return path;
  }();
  static struct Remover {
    ~Remover() { std::remove(file.c_str()); }
  } remover;
  return file;
}

vHandle<AttributeSet> openMapped() {
  registerRondoClasses();
  StoreDescription description{vFilename(referenceFile().c_str())};
  description.setFormatSpec(RONDO_TEST_SOURCE_DIR "/filestore/nyx/testdata/conformance.cstf");
  return vHandle_cast<AttributeSet>(StoreFactory::openStore(description, "", nullptr));
}

StoreConformanceCase nyxCase() {
  StoreConformanceCase c("NyxDiskStore");
  c.openForReading = &openMapped;
  c.attributes = {"CDP", "OFFSET", "TRACE"};
  c.hasClasses = false;
  c.makeUnopened = [] { return vHandle<AttributeSet>(new NyxDiskStore); };
  c.texts.notOpen = "A Nyx fisk file has not been opened yet!";
  // The mapping view refuses key reads and writes and names the store's own
  // word (CMP) in list faults.
  c.notApplicable = {"ReadsByKeyValues", "RefusesBadListsAndNamesWithTheirTexts"};
  c.texts.notWritable = "Not supported by this decorator!";
  return c;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(NyxDiskStore, StoreConformance, ::testing::Values(nyxCase()), StoreConformance::caseName);
