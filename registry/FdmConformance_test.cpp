// The shared store suite over an FDM volume (one inline of twelve bins) seen
// through a mapping file that makes CDP and OFFSET of each bin's crossline.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "decorator/StoreDecoratorFactory.h"
#include "filestore/fdm/FdmDiskStore.h"
#include "registry/RondoRegistry.h"
#include "testing/StoreConformance.h"

namespace {

std::string const& referenceFile() {
  static std::string const file = [] {
    std::string const path = ::testing::TempDir() + "fdm_conformance_" + std::to_string(::getpid()) + ".fdm";
    std::string const cmd =
        "/usr/bin/python3 " RONDO_TEST_SOURCE_DIR "/filestore/fdm/testdata/fdm_fixture.py " + path + " '<' 12 1 2";
    if (std::system(cmd.c_str()) != 0) ADD_FAILURE() << cmd;
    return path;
  }();
  static struct Remover {
    ~Remover() { std::remove(file.c_str()); }
  } remover;
  return file;
}

vHandle<AttributeSet> openMapped() {
  registerRondoClasses();
  FdmDiskStore* fdm = new FdmDiskStore;
  vHandle<Store> store(fdm);
  fdm->open(vFilename(referenceFile().c_str()));
  return vHandle_cast<AttributeSet>(StoreDecoratorFactory::addAttributeMapping(
      store, vFilename(RONDO_TEST_SOURCE_DIR "/filestore/fdm/testdata/conformance.cstf")));
}

StoreConformanceCase fdmCase() {
  StoreConformanceCase c("FdmDiskStore");
  c.openForReading = &openMapped;
  c.attributes = {"CDP", "OFFSET"};
  c.hasClasses = false;
  c.makeUnopened = [] { return vHandle<AttributeSet>(new FdmDiskStore); };
  c.texts.notOpen = "Fdm Disk File has not been opened yet!";
  // The mapping view refuses key reads and writes and names the store's own
  // attribute in list faults; the FDM store's range texts are its own.
  c.notApplicable = {"ReadsByKeyValues", "RefusesBadListsAndNamesWithTheirTexts", "ReadsListsInTheirOrder",
                     "RefusesBadRangesWithTheirTexts"};
  c.texts.notWritable = "Not supported by this decorator!";
  return c;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(FdmDiskStore, StoreConformance, ::testing::Values(fdmCase()), StoreConformance::caseName);
