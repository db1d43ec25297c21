#include "filestore/disk/AttributeSetIndexingTable.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "filestore/disk/AttributeFileTesting.h"
#include "foundation/vUtl.h"
#include "project/StoreTesting.h"

using disk_testing::MemoryAttributeFile;
using disk_testing::MemoryVolume;
using store_testing::expectFailure;

namespace {

// A file of the volume, opened for update, its attributes filled by fill.
class IndexedFile {
 public:
  IndexedFile(std::vector<Attribute> const& definitions, unsigned int n) {
    auto volume = std::make_shared<MemoryVolume>();
    volume->makeFile("table.mem", definitions, n);
    AttributeFile::OpenOptions update;
    update.setUpdate(true);
    m_file.reset(MemoryAttributeFile(volume, "mem").makeNew("table.mem", Attribute(), update));
  }
  AttributeFile& file() { return *m_file; }
  void fill(char const* name, std::vector<double> const& values) {
    Attribute a = m_file->getAttribute(name);
    a.resize(static_cast<unsigned int>(values.size()));
    for (unsigned int i = 1; i <= values.size(); ++i) a.setValue(i, values[i - 1]);
    m_file->writeRange(a, 1, static_cast<unsigned int>(values.size()));
  }

 private:
  std::unique_ptr<AttributeFile> m_file;
};

std::vector<double> valuesOf(Attribute const& a) {
  std::vector<double> v;
  for (unsigned int i = 1; i <= a.getNInstances(); ++i) v.push_back(a.getValue(i));
  return v;
}

template <class T>
KeyList& addKey(KeyList& keys, char const* name, DataType type, std::vector<T> const& values) {
  keys.addKey(Attribute(name, "", type));
  (keys.begin() + (keys.getNKeys() - 1))->copyData(static_cast<unsigned int>(values.size()), values.data());
  return keys;
}
template <class T>
KeyList oneKey(char const* name, DataType type, std::vector<T> const& values) {
  KeyList keys;
  addKey(keys, name, type, values);
  return keys;
}

}  // namespace

TEST(AttributeSetIndexingTable, KeysAndGroupsSpanManyBatches) {
  // 50,000 attributes give batches of five instances; 23 instances take
  // five batches, the last one short.
  std::vector<Attribute> definitions{Attribute("LINE", "", vINT64), Attribute("SHOT", "", vFLOAT32)};
  for (int k = 0; k < 49998; ++k) definitions.push_back(Attribute(("F" + std::to_string(k)).c_str(), "", vINT32));
  IndexedFile f(definitions, 23);
  std::vector<double> line, shot;
  for (int i = 1; i <= 23; ++i) {
    line.push_back(static_cast<double>((i * 7) % 4));  // 3 2 1 0 3 2 1 0 ...
    shot.push_back(i * 0.5);
  }
  f.fill("LINE", line);
  f.fill("SHOT", shot);
  AttributeSetIndexingTable table(&f.file());
  ASSERT_EQ(5u, table.getBatchSize());

  std::vector<unsigned int> result;
  table.locateByGroups(Attribute("LINE", "", vINT64), 2, 3, result);
  // LINE 1: instances 3, 7, 11, 15, 19, 23; LINE 2: 2, 6, 10, 14, 18, 22.
  EXPECT_EQ((std::vector<unsigned int>{3, 7, 11, 15, 19, 23, 2, 6, 10, 14, 18, 22}), result);

  KeyList keys = oneKey<long long>("LINE", vINT64, {0, 3, 2});
  table.locateByKeys(addKey<float>(keys, "SHOT", vFLOAT32, {10.0f, 0.5f, 9.0f}), result, false);
  EXPECT_EQ((std::vector<unsigned int>{20, 1, 18}), result);

  Attribute unique("LINE", "", vINT64);
  std::vector<unsigned int> sizes;
  table.getGroupsAndSizes(unique, sizes, vUtlSort::SortOrder::ASCENDING);
  EXPECT_EQ((std::vector<double>{0, 1, 2, 3}), valuesOf(unique));
  EXPECT_EQ((std::vector<unsigned int>{5, 6, 6, 6}), sizes);
}

TEST(AttributeSetIndexingTable, DuplicatesAreAppendedOnlyWhenAllowed) {
  IndexedFile f({Attribute("CDP", "", vINT32)}, 6);
  f.fill("CDP", {5, 7, 5, 9, 5, 7});
  AttributeSetIndexingTable table(&f.file());
  std::vector<unsigned int> result;
  table.locateByKeys(oneKey<int>("CDP", vINT32, {7, 5, 8}), result, false);
  EXPECT_EQ((std::vector<unsigned int>{2, 1, 0}), result);
  table.locateByKeys(oneKey<int>("CDP", vINT32, {7, 5, 8}), result, true);
  // The slots first, then the later matches in instance order.
  EXPECT_EQ((std::vector<unsigned int>{2, 1, 0, 3, 5, 6}), result);
  table.locateByKeys(KeyList(), result, false);
  EXPECT_TRUE(result.empty());
}

TEST(AttributeSetIndexingTable, KeyValuesAreComparedInTheStoredType) {
  IndexedFile f({Attribute("X", "", vFLOAT64), Attribute("NAME", "", vSTRING), Attribute("S", "", vINT16)}, 3);
  f.fill("X", {1.5, 2.0, 3.0});
  Attribute names = f.file().getAttribute("NAME");
  vString const words[] = {"alpha", "beta", "gamma"};
  names.copyData(3, words);
  f.file().writeRange(names, 1, 3);
  AttributeSetIndexingTable table(&f.file());
  std::vector<unsigned int> result;
  // Int32 values wanted of a Float64 attribute.
  table.locateByKeys(oneKey<int>("X", vINT32, {3, 2, 1}), result);
  EXPECT_EQ((std::vector<unsigned int>{3, 2, 0}), result);
  table.locateByKeys(oneKey<vString>("NAME", vSTRING, {"gamma", "delta"}), result);
  EXPECT_EQ((std::vector<unsigned int>{3, 0}), result);
  expectFailure([&] { table.locateByKeys(oneKey<int>("NAME", vINT32, {1}), result); },
                "AttributeSetIndexingTable::myBuildListByKeys",
                "The key NAME is of type " + std::string(vUtl::dataTypeName(vINT32).c_str()) +
                    ", but the Attribute of the data is of type " + std::string(vUtl::dataTypeName(vSTRING).c_str()) +
                    ".");
}

TEST(AttributeSetIndexingTable, NaNsFormOneGroupAfterTheNumbers) {
  double const nan = std::numeric_limits<double>::quiet_NaN();
  IndexedFile f({Attribute("V", "", vFLOAT64)}, 5);
  f.fill("V", {nan, 2.0, nan, -1.0, 2.0});
  AttributeSetIndexingTable table(&f.file());
  Attribute v("V", "", vFLOAT64);
  std::vector<unsigned int> sizes;
  table.getGroupsAndSizes(v, sizes, vUtlSort::SortOrder::ASCENDING);
  ASSERT_EQ(3u, v.getNInstances());
  EXPECT_TRUE(std::isnan(v.getValue(3)));
  EXPECT_EQ((std::vector<unsigned int>{1, 2, 2}), sizes);
  std::vector<unsigned int> result;
  table.locateByGroups(v, 3, 0, result);
  EXPECT_EQ((std::vector<unsigned int>{1, 3}), result);
  table.locateByKeys(oneKey<double>("V", vFLOAT64, {nan}), result);
  EXPECT_EQ((std::vector<unsigned int>{1}), result);
}
