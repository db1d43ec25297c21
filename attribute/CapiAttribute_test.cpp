#include <gtest/gtest.h>

#include <cstdlib>
#include <list>
#include <sstream>
#include <string>
#include <vector>

#include "attribute/AttributeTesting.h"
#include "attribute/CapiAttribute.h"

using attribute_testing::expectFailure;

namespace {

std::list<Attribute> sample() {
  std::list<Attribute> list;
  list.emplace_back("CDP", "HEADER", vINT32);
  list.emplace_back("OFFSET", "HEADER", vINT32);
  list.emplace_back("TRACE", "SEISMIC", vFLOAT32, 100, 4.0);
  return list;
}

TEST(CapiSearch, ListsOfAttributesByName) {
  std::list<Attribute> list = sample();
  std::list<Attribute> const& constant = list;
  // The same name in another class and type is the same attribute here.
  Attribute const offset("offset", "OTHER", vFLOAT64);
  EXPECT_TRUE(Capi::has(list, offset));
  EXPECT_FALSE(Capi::has(list, vUCString("TRACE2")));

  std::list<Attribute>::iterator it = Capi::find(list, offset);
  ASSERT_NE(list.end(), it);
  EXPECT_EQ(vUCString("HEADER"), it->getClass());
  it->setName("OFFSET2");
  EXPECT_FALSE(Capi::has(list, offset));
  std::list<Attribute>::const_iterator cit = Capi::find(constant, vUCString("TRACE"));
  ASSERT_NE(constant.end(), cit);
  EXPECT_EQ(100, cit->getLength());
  EXPECT_EQ(constant.end(), Capi::find(constant, offset));
}

TEST(CapiSearch, ListsOfNamesAndPrintingARange) {
  std::vector<vUCString> names = {"CDP", "OFFSET"};
  std::vector<vUCString> const& constant = names;
  EXPECT_TRUE(Capi::has(names, vUCString("offset")));
  EXPECT_FALSE(Capi::has(names, Attribute("TRACE", "ANY", vINT16)));
  EXPECT_EQ(1, Capi::find(names, vUCString("OFFSET")) - names.begin());
  EXPECT_EQ(constant.begin(), Capi::find(constant, Attribute("cdp", "", vINT32)));

  // Printing each of a range.
  std::list<Attribute> const list = sample();
  std::ostringstream out;
  Capi::print(out, std::next(list.begin()), list.end());
  std::string const text = out.str();
  EXPECT_EQ(std::string::npos, text.find("CDP"));
  EXPECT_NE(std::string::npos, text.find("TRACE"));
  std::size_t count = 0;
  for (std::size_t at = text.find(" Attribute Name:"); at != std::string::npos; at = text.find(" Attribute Name:", at + 1))
    ++count;
  EXPECT_EQ(2u, count);
}

TEST(CapiSwitches, ConversionsFlagsAndBackEnds) {
  // Translation is on until switched off.
  EXPECT_EQ(Capi::eAttributeTranslation, Capi::getAttributeConversion());
  EXPECT_EQ(Capi::eDataTypeConversion, Capi::getDataConversion());
  EXPECT_FALSE(Capi::haveCapiDorn());

  char const* saved = std::getenv("RELEASE");
  std::string const keep = saved ? saved : "";
  ::unsetenv("RELEASE");
  EXPECT_FALSE(Capi::haveCapiRondo());
  ::setenv("RELEASE", "/", 1);
  EXPECT_TRUE(Capi::haveAnyCapiRondo());
  ::setenv("RELEASE", "/no/such/release/tree", 1);
  EXPECT_FALSE(Capi::haveCapiRondo());
  EXPECT_FALSE(Capi::haveAnyCapiRondo());
  if (saved)
    ::setenv("RELEASE", keep.c_str(), 1);
  else
    ::unsetenv("RELEASE");

  // Horizon times.
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
