// The shared store suite over an offload file that holds the reference
// content, written by the Python writer (big-endian, polygonal); the write
// tests update copies of it.

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <string>
#include <vector>

#include "filestore/offload/OffloadDiskStore.h"
#include "filestore/offload/OffloadTesting.h"
#include "testing/StoreConformance.h"

namespace {

// Written once per run and opened for each case; removed at exit.
std::string const& referenceFile() {
  static std::string const file = [] {
    std::string const base = ::testing::TempDir() + "offload_conformance_" + std::to_string(::getpid());
    offload_testing::writeFixture(base + ".offload", base + ".txt", ">", 2, 995, 0, "reference");
    std::remove((base + ".txt").c_str());
    return base + ".offload";
  }();
  static struct Remover {
    ~Remover() { std::remove(file.c_str()); }
  } remover;
  return file;
}

// Copies for the write tests, removed at exit.
std::vector<std::string>& copies() {
  static std::vector<std::string> files;
  static struct Remover {
    ~Remover() {
      for (std::string const& f : files) std::remove(f.c_str());
    }
  } remover;
  return files;
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
    std::string const copy = referenceFile() + "." + std::to_string(copies().size() + 1) + ".offload";
    {
      std::ifstream in(referenceFile(), std::ios::binary);
      std::ofstream out(copy, std::ios::binary);
      out << in.rdbuf();
    }
    copies().push_back(copy);
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
