#include "filestore/memory/InMemoryAttributeSet.h"

#include <gtest/gtest.h>

#include <string>

#include "project/Project.h"
#include "project/StoreTesting.h"

using store_testing::expectFailure;

namespace {

// Four instances of CDP (key), AMP (Float32, length 2), ID (Int64).
class InMemoryAttributeSetTest : public ::testing::Test {
 protected:
  InMemoryAttributeSetTest() : m_set(vHandle<Project>()) {
    KeyList keys;
    keys.addKey(Attribute("CDP", "CDP", vINT32));
    m_set.create("shots", "seismic", "2d", keys, nullptr);
    m_set.addAttribute(Attribute("AMP", "", vFLOAT32, 2));
    m_set.addAttribute(Attribute("ID", "", vINT64));
    m_set.addInstances(4);
    for (unsigned int i = 1; i <= 4; ++i) {
      *m_set.getInt32Pointer("CDP", i) = static_cast<int>(10 * i);
      m_set.getFloat32Pointer("AMP", i)[0] = static_cast<float>(i);
      m_set.getFloat32Pointer("AMP", i)[1] = -static_cast<float>(i);
      *m_set.getInt64Pointer("ID", i) = 1000000000000LL + i;
    }
  }
  std::vector<double> values(char const* name, int position = 1) const {
    Attribute const& a = m_set.readAttributeAndData(name);
    std::vector<double> v;
    for (unsigned int i = 1; i <= a.getNInstances(); ++i) v.push_back(a.getValue(i, position));
    return v;
  }

  InMemoryAttributeSet m_set;
};

}  // namespace

TEST_F(InMemoryAttributeSetTest, DeletingAKeyAttributeTakesItOutOfTheKeyList) {
  m_set.deleteAttribute("CDP");
  EXPECT_FALSE(m_set.hasAttribute(vUCString("CDP")));
  EXPECT_EQ(0u, m_set.getKeyList().getNKeys());
  m_set.renameAttribute("ID", "SERIAL");
  EXPECT_EQ((std::vector<double>{1000000000001.0, 1000000000002.0, 1000000000003.0, 1000000000004.0}),
            values("SERIAL"));
  KeyList keys;
  keys.addKey(Attribute("CDP", "", vINT32));
  expectFailure([&] { m_set.setKeyList(keys); }, "InMemoryAttributeSet::setKeyList",
                "Key CDP does not exist in the Store shots ");
  KeyList serial;
  serial.addKey(Attribute("SERIAL", "", vINT64));
  m_set.setKeyList(serial);
  EXPECT_EQ("SERIAL", std::string(m_set.getKeyList().findName(1).c_str()));
}

TEST_F(InMemoryAttributeSetTest, InstancesAreDeletedAndKept) {
  m_set.keepInstances({4, 2});
  EXPECT_EQ((std::vector<double>{40, 20}), values("CDP"));
  EXPECT_EQ((std::vector<double>{-4, -2}), values("AMP", 2));
  m_set.deleteInstances(2);
  m_set.deleteInstances(3);
  EXPECT_EQ(0u, m_set.getNInstances()) << "a set without instances stays without";
}

TEST_F(InMemoryAttributeSetTest, PointersReachTheStoredValuesAndSetAttributeAndDataNeedsTheSetsAttributeAndCount) {
  EXPECT_EQ(-2.0f, static_cast<InMemoryAttributeSet const&>(m_set).getFloat32Pointer("AMP", 2)[1]);
  m_set.addAttribute(Attribute("DEPTH", "", vFLOAT64));
  *m_set.getFloat64Pointer("DEPTH", 2) = 7.25;
  Attribute depth = m_set.getAttribute("DEPTH");
  m_set.read(depth, 1, 4);
  EXPECT_EQ(7.25, depth.getValue(2));

  int const v4[] = {5, 6, 7, 8};
  Attribute three("CDP", "", vINT32);
  three.copyData(3, v4);
  expectFailure([&] { m_set.setAttributeAndData(three); }, "InMemoryAttributeSet::setAttributeAndData",
                "Attribute CDP doesn't have the same number of instances as the Store shots ");
  Attribute other("OTHER", "", vINT32);
  other.copyData(4, v4);
  expectFailure([&] { m_set.setAttributeAndData(other); }, "InMemoryAttributeSet::setAttributeAndData",
                "Attribute OTHER not found in shots ");
  Attribute cdp("CDP", "", vINT32);
  cdp.copyData(4, v4);
  m_set.setAttributeAndData(cdp);
  EXPECT_EQ((std::vector<double>{5, 6, 7, 8}), values("CDP"));
  // Group questions see the new values.
  Attribute unique = m_set.getAttribute("CDP");
  m_set.getUnique(unique, vUtlSort::SortOrder::DESCENDING);
  EXPECT_EQ(8, unique.getInt32(1));
}
