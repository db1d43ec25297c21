#include "attribute/RondoAttributeTranslator.h"

#include <gtest/gtest.h>

#include "attribute/AttributeTranslationTable.h"
#include "attribute/RondoConversion.h"
#include "attribute/VocabularyTesting.h"

using attribute_testing::expectFailure;
using vocabulary_testing::translations;
using vocabulary_testing::VocabularyTest;

namespace {

class RondoTranslatorTest : public VocabularyTest {
 protected:
  void SetUp() override {
    VocabularyTest::SetUp();
    tree.writeSystemFile("RondoAttributeTranslations3.txt", translations());
    // The table outlives a test: it reads this test's file again.
    AttributeTranslationTable::instance(vString("Rondo")).reload();
  }
};

}  // namespace

// The conversions themselves are the table's; here each entry point must reach the Rondo table.
TEST_F(RondoTranslatorTest, ForwardsToTheRondoTable) {
  Attribute capi("SOURCE_X", "SOURCE_X", vFLOAT64, 1);
  Attribute dorn("SHOT_X", "SOURCE_X", vFLOAT32, 1);
  EXPECT_TRUE(RondoAttributeTranslator::isDornDataChanged(capi));
  EXPECT_TRUE(RondoAttributeTranslator::isRondoDataChanged(dorn));
  EXPECT_TRUE(RondoAttributeTranslator::isDornNameDifferent(capi));
  EXPECT_TRUE(RondoAttributeTranslator::isRondoNameDifferent(dorn));

  Attribute stored = attribute_testing::filled("SURVEY_X", "SOURCE_X", vFLOAT64, {10.5});
  Attribute shot = RondoAttributeTranslator::convertToDorn(stored);
  EXPECT_STREQ("SHOT_X", shot.getName().c_str());
  Attribute const& fixed = shot;
  Attribute copy = RondoAttributeTranslator::convertToRondo(fixed);
  EXPECT_EQ(vFLOAT64, copy.getDataType());
  vHandle<Attribute> dornHandle;
  RondoAttributeTranslator::convertToDorn(copy, dornHandle);
  EXPECT_EQ(10.5f, dornHandle->getFloat32(1));
  vHandle<Attribute> rondoHandle;
  RondoAttributeTranslator::convertToRondo(*dornHandle, rondoHandle);
  EXPECT_EQ(10.5, rondoHandle->getFloat64(1));
  EXPECT_STREQ("SOURCE_X", RondoAttributeTranslator::convertToRondo(shot).getName().c_str());
}

TEST(RondoConversion, FormatCodesBothWaysAndOtherValuesAreFatal) {
  struct Pair {
    int code;
    DataType type;
  } const pairs[] = {{1, vINT32}, {2, vFLOAT32}, {3, vFLOAT64}, {4, vSTRING}, {69, vINT64}};
  for (Pair const& p : pairs) {
    EXPECT_EQ(p.type, RondoConversion::FTToDorn(p.code)) << p.code;
    EXPECT_EQ(p.code, RondoConversion::dornToFT(p.type)) << p.code;
  }
  EXPECT_EQ(4, RondoConversion::dornToFT(vCHAR8));
  for (int code : {5, 68, 70}) {
    vString reason;
    reason.printf("Unexpected FT format:%d", code);
    expectFailure([&] { RondoConversion::FTToDorn(code); }, "RondoConversion:FTToDorn()", reason.c_str());
  }
  expectFailure([] { RondoConversion::dornToFT(vINT16); }, "RondoConversion:dornToFT()", "Unexpected DataType :vINT16");
  // A type without a name is told by its number.
  expectFailure([] { RondoConversion::dornToFT(vSTRINGARRAY); }, "RondoConversion:dornToFT()",
                "Unexpected DataType :145");
}
