// The shared store suite over an offload file that holds the reference
// content, written by the Python writer (big-endian, polygonal); the write
// tests update copies of it.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "filestore/offload/OffloadDiskStore.h"
#include "filestore/offload/OffloadTesting.h"
#include "syslayer/FSTesting.h"
#include "testing/StoreConformance.h"

namespace {

// The reference file, written once per run and opened for each case, and
// the copies of the write tests, in a directory removed at exit; its name in
// lower case, as the store's update with options takes it.
std::string const& dir() {
  static struct Dir {
    Dir() { ::mkdir(path.c_str(), 0755); }
    ~Dir() { fs_testing::TempDir::removeTree(path); }
    std::string const path = ::testing::TempDir() + "offload_conformance_" + std::to_string(::getpid());
  } const d;
  return d.path;
}

std::string const& referenceFile() {
  static std::string const file = [] {
    offload_testing::writeFixture(dir() + "/reference.offload", dir() + "/reference.txt", ">", 2, 995, 0, "reference");
    return dir() + "/reference.offload";
  }();
  return file;
}

StoreConformanceCase offloadCase() {
  StoreConformanceCase c("OffloadDiskStore");
  c.openForReading = [] {
    OffloadDiskStore* store = new OffloadDiskStore;
    vHandle<AttributeSet> handle(store);
    store->open(vFilename(referenceFile().c_str()));
    return handle;
  };
  c.openForUpdate = [] {
    static int serial = 0;
    std::string const copy = dir() + "/copy" + std::to_string(++serial) + ".offload";
    fs_testing::writeFile(copy, fs_testing::readFile(referenceFile()));
    OffloadDiskStore* store = new OffloadDiskStore;
    vHandle<AttributeSet> handle(store);
    store->update(copy.c_str(), 0, "", "", nullptr);
    return handle;
  };
  c.makeUnopened = [] { return vHandle<AttributeSet>(new OffloadDiskStore); };
  // The table holds 32-bit words only; the keys are the grid's.
  c.attributes = {"CDP", "OFFSET", "TRACE"};
  c.hasKeyList = false;
  c.hasClasses = false;
  c.texts.unknownAttribute = "Attribute %s is not in the OffloadDiskStore %s.";
  c.texts.keysMissing =
      "Key list has duplicate or missing values in OffloadDiskStore %s. Wanted %lld value(s) but found %lld.";
  c.texts.notWritable = "OffloadDiskStore is not created or opened for update.";
  c.texts.notOpen = "OffloadDiskStore is not open.";
  return c;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(OffloadDiskStore, StoreConformance, ::testing::Values(offloadCase()),
                         StoreConformance::caseName);
