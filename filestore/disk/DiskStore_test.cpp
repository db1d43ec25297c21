// DiskStore over the smallest disk store: its own refusals, and the shared
// store suite, where reads by range and list are the record file store's
// own and everything by keys and groups comes from DiskStore and its
// indexing table.

#include "filestore/disk/DiskStore.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <unistd.h>

#include "filestore/disk/DiskStoreTesting.h"
#include "foundation/vUtl.h"
#include "project/StoreTesting.h"
#include "testing/StoreConformance.h"

using disk_testing::RecordFileStore;
using store_testing::expectFailure;

namespace {

// A read-only format: it refuses every write with its own text.
class ReadOnlyRecordFileStore : public RecordFileStore {
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

// The reference content of the store suite and the extra columns (zeros) in
// a record file opened by S as name, and removed: the open file stays
// readable, nothing is left behind. Copies of attributes carry no data: each
// column is filled in place.
template <class S>
S* openReferenceFile(char const* name, std::vector<Attribute> const& extras = {}) {
  static int serial = 0;
  std::string const path =
      ::testing::TempDir() + "diskstore_" + std::to_string(::getpid()) + "_" + std::to_string(++serial) + ".rec";
  std::vector<Attribute> columns;
  columns.reserve(4 + extras.size());
  for (char const* column : {"CDP", "OFFSET", "ELEV", "TRACE"}) {
    columns.push_back(StoreConformance::referenceDefinition(column));
    columns.back().copyData(StoreConformance::referenceAttribute(column));
  }
  for (Attribute const& extra : extras) {
    columns.push_back(Attribute(extra));
    columns.back().resize(StoreConformance::kNInstances);
    std::memset(columns.back().getPointer(1), 0, static_cast<std::size_t>(columns.back().getTotalNBytes()));
  }
  disk_testing::writeRecordFile(path, columns);
  std::vector<Attribute> definitions;
  for (Attribute const& c : columns) definitions.push_back(Attribute(c));
  S* store = new S(definitions, StoreConformance::referenceKeys());
  store->open(path, name);
  std::remove(path.c_str());
  return store;
}

StoreConformanceCase recordFileCase() {
  StoreConformanceCase c("RecordFileDiskStore");
  c.openForReading = [] {
    return vHandle<AttributeSet>(openReferenceFile<ReadOnlyRecordFileStore>("reference"));
  };
  // Tuples not found reach the list read as instance 0, which the store
  // refuses in its own words.
  c.texts.keysMissing = "Attribute 'CDP': the vInstanceList has a zero in it, coont read from instance 0.";
  c.texts.notWritable = "The file store '%s' is read-only.";
  return c;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(RecordFileDiskStore, StoreConformance, ::testing::Values(recordFileCase()),
                         StoreConformance::caseName);

// With a vector of length 2 and an Int16 beside the reference content.
TEST(DiskStore, RefusesWhatItCannotDoAndKeepsItsData) {
  std::unique_ptr<RecordFileStore> store(openReferenceFile<RecordFileStore>(
      "line7", {Attribute("PAIR", "", vINT32, 2), Attribute("SMALL", "", vINT16)}));
  KeyList pairKeys;
  pairKeys.addKey(Attribute("PAIR", "", vINT32, 2));
  int const values[] = {1, -1};
  pairKeys.begin()->copyData(1, values);
  Attribute cdp = store->getAttribute("CDP");
  expectFailure([&] { store->read(cdp, pairKeys); }, "AttributeSetIndexingTable::myBuildListByKeys",
                "Can only function with Attributes of length=1. Your Attribute PAIR has a length of 2.");
  Attribute small = store->getAttribute("SMALL");
  expectFailure([&] { store->read(cdp, small, 1, 1); }, "AttributeSetIndexingTable::locateByGroups",
                "Can only function with Int32, Int64, Float32 and Float64 groups at the moment. Your Attribute SMALL "
                "is of type " + std::string(vUtl::dataTypeName(vINT16).c_str()) + ".");
  DiskStore& base = *store;
  Attribute a("CDP", "", vINT32);
  expectFailure([&] { base.write(a, KeyList()); }, "DiskStore::write",
                "Function not implemented in derived class -- needs code.");
  expectFailure([&] { base.addAttribute(a); }, "DiskStore::addAttribute", "Not Implement yet!");
  expectFailure([&] { base.open("x", 0, "c", "s", nullptr); }, "DiskStore::Open", "Usage: open(filename)");
  // Nothing changed: the data read as before.
  store->read(cdp, 1, 3);
  EXPECT_EQ((std::vector<int>{1, 1, 1}), (std::vector<int>{cdp.getInt32(1), cdp.getInt32(2), cdp.getInt32(3)}));
}
