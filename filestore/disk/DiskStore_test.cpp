#include "filestore/disk/DiskStore.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <unistd.h>

#include "filestore/disk/DiskStoreTesting.h"
#include "project/FullStoreName.h"
#include "foundation/vUtl.h"
#include "project/StoreTesting.h"
#include "testing/StoreConformance.h"

using disk_testing::RecordFileStore;
using store_testing::expectFailure;

namespace {

// The reference content of the store suite, with a vector of length 2 and
// an Int16, in one record file.
class DiskStoreTest : public ::testing::Test {
 protected:
  void SetUp() override {
    m_path = ::testing::TempDir() + "diskstore_" + std::to_string(::getpid()) + "_" +
             ::testing::UnitTest::GetInstance()->current_test_info()->name() + ".rec";
    // Copies of attributes carry no data: each column is filled in place.
    std::vector<Attribute> columns;
    columns.reserve(6);
    for (char const* name : {"CDP", "OFFSET", "ELEV", "TRACE"}) {
      columns.push_back(StoreConformance::referenceDefinition(name));
      columns.back().copyData(StoreConformance::referenceAttribute(name));
    }
    columns.push_back(Attribute("PAIR", "", vINT32, 2));
    columns.push_back(Attribute("SMALL", "", vINT16));
    Attribute& pair = columns[4];
    Attribute& small = columns[5];
    pair.resize(12);
    small.resize(12);
    for (unsigned int i = 1; i <= 12; ++i) {
      pair.getInt32Pointer(i)[0] = static_cast<int>(i);
      pair.getInt32Pointer(i)[1] = -static_cast<int>(i);
      small.setInt16(i, static_cast<short>(i % 2));
    }
    disk_testing::writeRecordFile(m_path, columns);
    for (Attribute const& c : columns) m_definitions.push_back(Attribute(c));
    m_store.reset(new RecordFileStore(m_definitions, StoreConformance::referenceKeys()));
    m_store->open(m_path, "line7");
  }
  void TearDown() override {
    m_store.reset();
    std::remove(m_path.c_str());
  }

  std::string m_path;
  std::vector<Attribute> m_definitions;
  std::unique_ptr<RecordFileStore> m_store;
};

std::vector<double> valuesOf(Attribute const& a, int position = 1) {
  std::vector<double> v;
  for (unsigned int i = 1; i <= a.getNInstances(); ++i) v.push_back(a.getValue(i, position));
  return v;
}

}  // namespace

TEST_F(DiskStoreTest, RefusesKeysAndGroupsThatAreNotScalarsOfTheFourTypes) {
  KeyList pairKeys;
  pairKeys.addKey(Attribute("PAIR", "", vINT32, 2));
  int const values[] = {1, -1};
  pairKeys.begin()->copyData(1, values);
  Attribute cdp = m_store->getAttribute("CDP");
  expectFailure([&] { m_store->read(cdp, pairKeys); }, "AttributeSetIndexingTable::myBuildListByKeys",
                "Can only function with Attributes of length=1. Your Attribute PAIR has a length of 2.");

  Attribute small = m_store->getAttribute("SMALL");
  std::string const typeText =
      "Can only function with Int32, Int64, Float32 and Float64 groups at the moment. Your Attribute SMALL is of "
      "type " +
      std::string(vUtl::dataTypeName(vINT16).c_str()) + ".";
  expectFailure([&] { m_store->read(cdp, small, 1, 1); }, "AttributeSetIndexingTable::locateByGroups", typeText);
}

TEST_F(DiskStoreTest, DefaultsRefuseWithTheirOwnLabels) {
  DiskStore& store = *m_store;
  Attribute a("CDP", "", vINT32);
  KeyList k;
  std::string const needsCode = "Function not implemented in derived class -- needs code.";
  expectFailure([&] { store.write(a, k); }, "DiskStore::write", needsCode);
  expectFailure([&] { store.addAttribute(a); }, "DiskStore::addAttribute", "Not Implement yet!");
  expectFailure([&] { store.open("x", 0, "c", "s", nullptr); }, "DiskStore::Open", "Usage: open(filename)");
  // Nothing changed: the data read as before.
  Attribute cdp = m_store->getAttribute("CDP");
  m_store->read(cdp, 1, 3);
  EXPECT_EQ((std::vector<double>{1, 1, 1}), valuesOf(cdp));
}
