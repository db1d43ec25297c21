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

TEST_F(RondoTranslatorTest, ForwardsToTheRondoTable) {
  EXPECT_STREQ("RondoAttributeTranslations3.txt", RondoAttributeTranslator::getFileName().c_str());
  Attribute capi("SOURCE_X", "SOURCE_X", vFLOAT64, 1);
  Attribute dorn("SHOT_X", "SOURCE_X", vFLOAT32, 1);
  EXPECT_TRUE(RondoAttributeTranslator::isDornDataChanged(capi));
  EXPECT_FALSE(RondoAttributeTranslator::isDornDataChanged(dorn));
  EXPECT_TRUE(RondoAttributeTranslator::isRondoDataChanged(dorn));
  EXPECT_FALSE(RondoAttributeTranslator::isRondoDataChanged(capi));
  EXPECT_TRUE(RondoAttributeTranslator::isDornNameDifferent(capi));
  EXPECT_TRUE(RondoAttributeTranslator::isRondoNameDifferent(dorn));
  Attribute marked("RONDO.OFFSET", "", vFLOAT32, 1);
  EXPECT_FALSE(RondoAttributeTranslator::isRondoNameDifferent(marked));
}

TEST_F(RondoTranslatorTest, ConvertsInAllForms) {
  Attribute stored("SURVEY_X", "SOURCE_X", vFLOAT64, 1);
  stored.resize(2);
  stored.setFloat64(1, 10.5);
  stored.setFloat64(2, -1.0);
  Attribute dorn = RondoAttributeTranslator::convertToDorn(stored);
  EXPECT_STREQ("SHOT_X", dorn.getName().c_str());
  EXPECT_EQ(10.5f, dorn.getFloat32(1));

  Attribute const& fixed = dorn;
  Attribute copy = RondoAttributeTranslator::convertToRondo(fixed);
  EXPECT_EQ(vFLOAT64, copy.getDataType());
  EXPECT_EQ(-1.0, copy.getFloat64(2));
  EXPECT_EQ(2u, dorn.getNInstances());

  vHandle<Attribute> dornHandle;
  RondoAttributeTranslator::convertToDorn(copy, dornHandle);
  EXPECT_EQ(10.5f, dornHandle->getFloat32(1));
  vHandle<Attribute> rondoHandle;
  RondoAttributeTranslator::convertToRondo(*dornHandle, rondoHandle);
  EXPECT_STREQ("SOURCE_X", rondoHandle->getName().c_str());
  EXPECT_EQ(10.5, rondoHandle->getFloat64(1));

  // Untranslated defined names travel under "RONDO.".
  Attribute offset("OFFSET", "", vFLOAT32, 1);
  offset.resize(1);
  offset.setFloat32(1, 25.f);
  Attribute marked = RondoAttributeTranslator::convertToDorn(offset);
  EXPECT_STREQ("RONDO.OFFSET", marked.getName().c_str());
  Attribute back = RondoAttributeTranslator::convertToRondo(marked);
  EXPECT_STREQ("OFFSET", back.getName().c_str());
  EXPECT_EQ(25.f, back.getFloat32(1));
}
