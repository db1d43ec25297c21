#include "attribute/RondoAttributeTranslator.h"

#include <gtest/gtest.h>

#include "attribute/AttributeTranslationTable.h"
#include "attribute/VocabularyTesting.h"

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

// The conversions themselves are the table's; here each entry point must
// reach the Rondo table.
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
