#include <gtest/gtest.h>

#include <list>
#include <vector>

#include "attribute/AttributeTesting.h"
#include "attribute/CapiAttribute.h"
#include "foundation/TestReleaseTree.h"

using attribute_testing::expectFailure;

namespace {

TEST(CapiSearch, ListsOfAttributesAndOfNames) {
  std::list<Attribute> list{Attribute("CDP", "HEADER", vINT32), Attribute("OFFSET", "HEADER", vINT32),
                            Attribute("TRACE", "SEISMIC", vFLOAT32, 100, 4.0)};
  std::list<Attribute> const& constant = list;
  // The same name in another class and type is the same attribute here.
  Attribute const offset("offset", "OTHER", vFLOAT64);
  EXPECT_TRUE(Capi::has(list, offset));
  EXPECT_FALSE(Capi::has(list, vUCString("TRACE2")));

  std::list<Attribute>::iterator it = Capi::find(list, offset);
  ASSERT_NE(list.end(), it);
  it->setName("OFFSET2");
  EXPECT_FALSE(Capi::has(list, offset));
  std::list<Attribute>::const_iterator cit = Capi::find(constant, vUCString("TRACE"));
  ASSERT_NE(constant.end(), cit);
  EXPECT_EQ(100, cit->getLength());
  EXPECT_EQ(constant.end(), Capi::find(constant, offset));

  std::vector<vUCString> names = {"CDP", "OFFSET"};
  EXPECT_FALSE(Capi::has(names, Attribute("TRACE", "ANY", vINT16)));
  EXPECT_EQ(1, Capi::find(names, vUCString("OFFSET")) - names.begin());
  EXPECT_EQ(names.cbegin(),
            Capi::find(static_cast<std::vector<vUCString> const&>(names), Attribute("cdp", "", vINT32)));
}

TEST(CapiSwitches, ConversionsFlagsAndBackEnds) {
  TestReleaseTree tree;  // gives RELEASE back at the end
  tree.unsetEnv("RELEASE");
  EXPECT_FALSE(Capi::haveCapiRondo());
  tree.setEnv("RELEASE", "/");
  EXPECT_TRUE(Capi::haveAnyCapiRondo());
  tree.setEnv("RELEASE", "/no/such/release/tree");
  EXPECT_FALSE(Capi::haveAnyCapiRondo());

  EXPECT_EQ(vUCString("HTIME"), Capi::getHorizonTimeName());
  EXPECT_EQ(vINT32, Capi::setHorizonTimesType(vFLOAT32));
  EXPECT_EQ(vUCString("HORIZONFLOATVALUES"), Capi::getHorizonTimeName());
  expectFailure([] { Capi::setHorizonTimesType(vFLOAT64); }, "Capi:setHorizonTimesType",
                "Illegal type vFLOAT64, must be vINT32 or vFLAOT32.");
  EXPECT_EQ(vFLOAT32, Capi::getHorizonTimesType());
  EXPECT_EQ(vFLOAT32, Capi::setHorizonTimesType(vINT32));
  EXPECT_EQ(vUCString("HTIME"), Capi::getHorizonTimeName());
}

}  // namespace
