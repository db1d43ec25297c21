// The shared store suite over an FDM volume and a Nyx "cst" file (CDP in the CMP word) seen through mapping files.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "decorator/StoreDecoratorFactory.h"
#include "filestore/fdm/FdmDiskStore.h"
#include "filestore/nyx/NyxDiskStore.h"
#include "project/StoreFactory.h"
#include "registry/RondoRegistry.h"
#include "syslayer/FSTesting.h"
#include "testing/StoreConformance.h"

namespace {

// The reference files live until the program ends.
fs_testing::TempDir const& files() {
  static fs_testing::TempDir const dir;
  return dir;
}

vHandle<AttributeSet> openFdm() {
  static std::string const path = [] {
    std::string const file = files() / "conformance.fdm";
    std::string const cmd =
        "/usr/bin/python3 " RONDO_TEST_SOURCE_DIR "/filestore/fdm/testdata/fdm_fixture.py " + file + " '<' 12 1 2";
    if (std::system(cmd.c_str()) != 0) ADD_FAILURE() << cmd;
    return file;
  }();
  registerRondoClasses();
  FdmDiskStore* fdm = new FdmDiskStore;
  vHandle<Store> store(fdm);
  fdm->open(vFilename(path.c_str()));
  return vHandle_cast<AttributeSet>(StoreDecoratorFactory::addAttributeMapping(
      store, vFilename(RONDO_TEST_SOURCE_DIR "/filestore/fdm/testdata/conformance.cstf")));
}

vHandle<AttributeSet> openNyx() {
  static std::string const path = [] {
    std::string const file = files() / "conformance.cst";
    NyxDiskStore store;
    store.create(vFilename(file.c_str()));
    Attribute trace = StoreConformance::referenceAttribute("TRACE");
    Attribute cmp = StoreConformance::referenceAttribute("CDP");
    Attribute offset = StoreConformance::referenceAttribute("OFFSET");
    cmp.setName("CMP");
    for (Attribute const* a : {&trace, &cmp, &offset}) store.addAttribute(*a);
    for (Attribute const* a : {&trace, &cmp, &offset}) store.write(*a, 1, StoreConformance::kNInstances);
    store.close();
    return file;
  }();
  registerRondoClasses();
  StoreDescription description{vFilename(path.c_str())};
  description.setFormatSpec(RONDO_TEST_SOURCE_DIR "/filestore/nyx/testdata/conformance.cstf");
  return vHandle_cast<AttributeSet>(StoreFactory::openStore(description, "", nullptr));
}

// The mapping view refuses key reads and writes; the FDM store's list and range texts are its own.
template <class Raw>
StoreConformanceCase mappedCase(char const* name, vHandle<AttributeSet> (*open)(), char const* notOpen,
                                std::vector<std::string> attributes, std::vector<std::string> notApplicable) {
  StoreConformanceCase c(name);
  c.openForReading = open;
  c.makeUnopened = [] { return vHandle<AttributeSet>(new Raw); };
  c.attributes = std::move(attributes);
  c.hasClasses = false;
  c.texts.notOpen = notOpen;
  c.texts.notWritable = "Not supported by this decorator!";
  c.notApplicable = std::move(notApplicable);
  c.notApplicable.insert(c.notApplicable.end(), {"ReadsByKeyValues", "RefusesBadListsAndNamesWithTheirTexts"});
  return c;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(FdmDiskStore, StoreConformance,
                         ::testing::Values(mappedCase<FdmDiskStore>(
                             "FdmDiskStore", &openFdm, "Fdm Disk File has not been opened yet!", {"CDP", "OFFSET"},
                             {"ReadsListsInTheirOrder", "RefusesBadRangesWithTheirTexts"})),
                         StoreConformance::caseName);
INSTANTIATE_TEST_SUITE_P(NyxDiskStore, StoreConformance,
                         ::testing::Values(mappedCase<NyxDiskStore>("NyxDiskStore", &openNyx,
                                                                    "A Nyx fisk file has not been opened yet!",
                                                                    {"CDP", "OFFSET", "TRACE"}, {})),
                         StoreConformance::caseName);
