#include "attribute/DataTranslator.h"

#include <gtest/gtest.h>

#include <vector>

#include "attribute/AttributeDataHandler.h"
#include "attribute/AttributeTesting.h"
#include "attribute/BuildConverter.h"
#include "attribute/OriginalDataConverter.h"

using attribute_testing::expectFailure;
using attribute_testing::filled;

namespace {

vHandle<DataConverterI> chain(char const* text) { return BuildConverter::createConverter(vString(text)); }

// A block that a store lends out.
struct Block {
  explicit Block(unsigned int n) : values(new int[n]) {}
  ~Block() { delete[] values; }
  int* values;
};

}  // namespace

TEST(DataTranslator, AnOwnBlockIsConvertedInPlace) {
  DataTranslator t(Attribute("OFFSET_F", "OFFSET", vFLOAT32, 1), chain("int32()"), chain("float32()"),
                   Attribute("OFFSET", "OFFSET", vINT32, 1));
  Attribute client = filled("OFFSET_F", "OFFSET", vFLOAT32, {2.5f, -2.5f, 7.25f});
  void const* block = client.getPointer(1);
  Attribute capi = t.convertToCapi(client);
  EXPECT_EQ(block, capi.getPointer(1));
  EXPECT_EQ((std::vector<int>{3, -3, 7}), attribute_testing::intsOf(capi));
  EXPECT_EQ(0u, client.getNInstances());
  // Another element size needs a new block: the argument keeps its own, as it does when refused.
  DataTranslator narrow(Attribute("N", "N", vINT16, 1), chain("float32()"), chain("null()"),
                        Attribute("N32", "N", vFLOAT32, 1));
  Attribute wide = filled("N32", "N", vFLOAT64, {1.5, 4.0});
  block = wide.getPointer(1);
  EXPECT_EQ(vFLOAT32, t.convertToDorn(wide).getDataType());
  EXPECT_EQ(block, wide.getPointer(1));
  Attribute shorts = filled("N", "N", vINT16, {5, 6});
  block = shorts.getPointer(1);
  expectFailure([&] { narrow.convertToCapi(shorts); }, "Float32DataConverter::doConvertData()",
                "Unsupported input data type vINT16.");
  EXPECT_EQ(block, shorts.getPointer(1));
}

TEST(DataTranslator, ALentBlockGoesOverWithItsKeeper) {
  DataTranslator t(Attribute("CDP_NO", "CDP", vINT32, 1), chain("null()"), chain("null()"),
                   Attribute("CDP", "CDP", vINT32, 1));
  vHandle<Block> owner(new Block(2));
  {
    Attribute lent("CDP", "CDP", vINT32, 1);
    lent.resize(2, owner->values, nullptr, makeAttributeDataHandler(owner));
    Attribute dorn = t.convertToDorn(lent);
    EXPECT_EQ(owner->values, dorn.getInt32Pointer(1));
    EXPECT_EQ(2, owner.getMasterCount());
  }
  EXPECT_EQ(1, owner.getMasterCount());
}

TEST(DataTranslator, LengthSampleRateAndFirstTimeComeFromTheArgument) {
  DataTranslator t(Attribute("TRACE", "SAMPLES", vFLOAT32, 0), chain("null()"), chain("null()"),
                   Attribute("SAMPLES", "SAMPLES", vFLOAT32, 0));
  Attribute trace("SAMPLES", "SAMPLES", vFLOAT32, 4, 0.004, 0.1);
  trace.resize(2);
  trace.getFloat32Pointer(2)[3] = 8.f;
  float const* block = trace.getFloat32Pointer(1);
  Attribute dorn = t.convertToDorn(trace);
  EXPECT_EQ(0.1, dorn.getFirstTime());
  // An owned block left unchanged is taken over, not copied.
  EXPECT_EQ(block, dorn.getFloat32Pointer(1));
  EXPECT_EQ(0u, trace.getNInstances());

  // A definition without instances converts alone.
  Attribute definition("STACK", "SAMPLES", vFLOAT32, 1500, 0.002, 0.0);
  EXPECT_EQ(1500, t.convertToDorn(definition).getLength());
  // Asked by the class name, the answer keeps that name.
  Attribute byClass("SAMPLES", "SAMPLES", vFLOAT32, 1500, 0.002, 0.0);
  EXPECT_STREQ("SAMPLES", t.convertToDorn(byClass).getName().c_str());
  // So does the Dorn definition asked for by a reference named by the class.
  EXPECT_STREQ("SAMPLES", t.getDornAttribute(&byClass).getName().c_str());
  Attribute byName("TRACE", "SAMPLES", vFLOAT32, 0);
  EXPECT_STREQ("TRACE", t.getDornAttribute(&byName).getName().c_str());
}

TEST(DataTranslator, TextPassesUnchanged) {
  DataTranslator t(Attribute("LINE", "LINE_NAME", vSTRING, 1), chain(""), chain(""),
                   Attribute("LINE_NAME", "LINE_NAME", vSTRING, 1));
  Attribute names("LINE_NAME", "LINE_NAME", vSTRING, 1);
  names.resize(2);
  names.setString(2, "south 2");
  Attribute const copy = t.convertToDorn(names);
  EXPECT_STREQ("south 2", t.convertToCapi(copy).getString(2).c_str());
}

TEST(DataTranslator, OriginalTypesComeBack) {
  DataTranslator t(Attribute("COUNT_F", "COUNT", vFLOAT32, 1), chain("original()"), chain("float32()"),
                   Attribute("COUNT", "COUNT", vINT32, 1));
  Attribute client = filled("COUNT_F", "COUNT", vFLOAT32, {2.9});
  EXPECT_EQ(2, t.convertToCapi(client).getInt32(1));  // truncated, where the integer converters round
  // An original type the data had before goes before the Capi type.
  Attribute wide = filled("COUNT_F", "COUNT", vFLOAT32, {7.75});
  wide.setOriginalDataType(vINT64);
  EXPECT_EQ(7, t.convertToCapi(wide).getInt64(1));
}

TEST(DataTranslator, DataOfTheWrongTypeAreRefusedAndKept) {
  DataTranslator t(Attribute("BAD", "CDP", vINT32, 1), chain("null()"), chain("null()"),
                   Attribute("CDP", "CDP", vFLOAT32, 1));
  Attribute cdp = filled("CDP", "CDP", vFLOAT32, {1, 3});
  expectFailure([&] { t.convertToDorn(cdp); }, "DataTranslator::myConvertData",
                "Attribute CDP gives vFLOAT32 data where CDP needs vINT32 data.");
  EXPECT_EQ(3.f, cdp.getFloat32(2));
}

TEST(DataTranslator, CompatibilityMovesAndCopies) {
  DataTranslator t(Attribute("TRACE", "SAMPLES", vFLOAT32, 0), chain("null()"), chain("null()"),
                   Attribute("SAMPLES", "SAMPLES", vFLOAT32, Attribute::VARIABLE_LENGTH));
  EXPECT_TRUE(t.isDornCompatible(Attribute("A", "A", vINT32, 5)));
  EXPECT_FALSE(t.isDornCompatible(Attribute("B", "B", vINT32, 1)));
  EXPECT_TRUE(t.isCapiCompatible(Attribute("D", "D", vFLOAT64, Attribute::VARIABLE_LENGTH)));

  Attribute from = filled("FROM", "FROM", vFLOAT64, {4.0, 5.0});
  Attribute to("TO", "OTHER", vFLOAT64, 1);
  DataTranslator::copyData(from, to);
  EXPECT_EQ(5.0, to.getFloat64(2));
  double const* block = from.getFloat64Pointer(1);
  Attribute moved("MOVED", "OTHER", vFLOAT64, 1);
  DataTranslator::moveData(from, moved);
  EXPECT_EQ(block, moved.getFloat64Pointer(1));
  EXPECT_EQ(0u, from.getNInstances());
}
