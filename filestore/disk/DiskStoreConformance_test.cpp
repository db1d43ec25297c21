// The shared store suite over the smallest disk store: reads by range and
// list are the record file store's own, everything by keys and groups comes
// from DiskStore and its indexing table.

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <unistd.h>

#include "filestore/disk/DiskStoreTesting.h"
#include "testing/StoreConformance.h"

namespace {

// A read-only format: it refuses every write with its own text.
class ReadOnlyRecordFileStore : public disk_testing::RecordFileStore {
 public:
  using RecordFileStore::RecordFileStore;
  void write(Attribute const&, unsigned int, unsigned int) override { myRefuse(); }
  void write(Attribute const&, std::vector<unsigned int> const&) override { myRefuse(); }
  void write(Attribute const&, Attribute const&, unsigned int, unsigned int) override { myRefuse(); }
  void write(Attribute const&, KeyList const&) override { myRefuse(); }
  void addInstances(unsigned int) override { myRefuse(); }
  void addAttribute(Attribute const&) override { myRefuse(); }

 private:
  [[noreturn]] void myRefuse() const {
    Message::fatal("ReadOnlyRecordFileStore::write", 0, "The file store '%s' is read-only.", getName().c_str());
  }
};

vHandle<AttributeSet> openReferenceFile() {
  static int serial = 0;
  std::string path = ::testing::TempDir() + "diskstore_conformance_" + std::to_string(::getpid()) + "_" +
                     std::to_string(++serial) + ".rec";
  std::vector<Attribute> columns;
  columns.reserve(4);
  for (char const* name : {"CDP", "OFFSET", "ELEV", "TRACE"}) {
    columns.push_back(StoreConformance::referenceDefinition(name));
    columns.back().copyData(StoreConformance::referenceAttribute(name));
  }
  disk_testing::writeRecordFile(path, columns);
  std::vector<Attribute> definitions;
  for (Attribute const& c : columns) definitions.push_back(Attribute(c));
  ReadOnlyRecordFileStore* store = new ReadOnlyRecordFileStore(definitions, StoreConformance::referenceKeys());
  vHandle<AttributeSet> handle(store);
  store->open(path, "reference");
  // The open file stays readable; nothing is left behind.
  std::remove(path.c_str());
  return handle;
}

StoreConformanceCase recordFileCase() {
  StoreConformanceCase c("RecordFileDiskStore");
  c.openForReading = openReferenceFile;
  // Tuples not found reach the list read as instance 0, which the store
  // refuses in its own words.
  c.texts.keysMissing = "Attribute 'CDP': the vInstanceList has a zero in it, coont read from instance 0.";
  c.texts.notWritable = "The file store '%s' is read-only.";
  return c;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(RecordFileDiskStore, StoreConformance, ::testing::Values(recordFileCase()),
                         StoreConformance::caseName);
