#include "attribute/AttributeTranslationTable.h"

#include <gtest/gtest.h>

#include <string>

#include "attribute/AttributeDefinition.h"
#include "attribute/LoadAttributeTranslations.h"
#include "attribute/VocabularyTesting.h"

using attribute_testing::expectFailure;
using attribute_testing::filled;
using vocabulary_testing::translations;
using vocabulary_testing::VocabularyTest;

namespace {

class TranslationTableTest : public VocabularyTest {
 protected:
  // The table of that name as its file now reads.
  AttributeTranslationTable& load(char const* name, std::string const& text) {
    tree.writeSystemFile(std::string(name) + "AttributeTranslations3.txt", text);
    AttributeTranslationTable& table = AttributeTranslationTable::instance(vString(name));
    table.reload();
    return table;
  }
};

}  // namespace

TEST_F(TranslationTableTest, OneTablePerNameLoadedOnFirstMention) {
  tree.writeSystemFile("AlphaAttributeTranslations3.txt", translations());
  AttributeTranslationTable& alpha = AttributeTranslationTable::instance(vString("Alpha"));
  EXPECT_EQ(&alpha, &AttributeTranslationTable::instance(vString("Alpha")));
  // Names are told apart by case.
  tree.writeSystemFile("ALPHAAttributeTranslations3.txt", "CDP capi() dorn:() C vInt32 1\n");
  EXPECT_EQ(1u, AttributeTranslationTable::instance(vString("ALPHA")).getNTranslators());

  AttributeTranslationTable::NamePairs pairs;
  AttributeDefinition::getAttributeNamesTranslations(vString("Alpha"), pairs);
  ASSERT_EQ(7u, pairs.size());
  EXPECT_STREQ("CDP_NO", pairs[0].first.c_str());  // sorted by Dorn name
  EXPECT_STREQ("CDP", pairs[0].second.c_str());

  // A missing file is fatal at first use, and tried again at the next.
  expectFatal([] { AttributeTranslationTable::instance(vString("Nowhere")); }, "SystemFileLoader::myOpen()",
              "File NowhereAttributeTranslations3.txt was not found in ./ or " + tree.systemFilesDir() + ".");
  tree.writeSystemFile("NowhereAttributeTranslations3.txt", "CDP capi() dorn:() C vInt32 1\n");
  EXPECT_EQ(1u, AttributeTranslationTable::instance(vString("Nowhere")).getNTranslators());
}

TEST_F(TranslationTableTest, BadTranslationsAreFatal) {
  tree.writeSystemFile("BadAttributeTranslations3.txt", "CDP capi() dorn:() C vInt32 1\n");
  AttributeTranslationTable& bad = AttributeTranslationTable::instance(vString("Bad"));
  struct Case {
    char const* text;
    char const* method;
    char const* reason;
  } const cases[] = {
      {"CDP capi() dorn:() C vInt32 1 OFFSET capi() dorn:() O vFloat32 -1\n", "LoadAttributeTranslations::load()",
       "Bad length -1 for Attribute class OFFSET."},
      {"CDP capi() dorn:() C vInteger 1\n", "LoadAttributeTranslations::load()",
       "Bad data type vInteger for Attribute class CDP."},
      {"CDP capi() dorn:() C vInt32\n", "LoadAttributeTranslations::load()",
       "Incomplete translation for Attribute class CDP."},
      {"CDP capi(int32() dorn:() C vInt32 1\n", "BuildConverter::createConverter()",
       "Missing ')' on conversion string 'int32('."},
      {"CDP capi(bogus()) dorn:() C vInt32 1\n", "BuildConverter::createConverter()",
       "BuildConverter::createConverter(): unknown converter bogus"},
  };
  for (Case const& c : cases) {
    tree.writeSystemFile("BadAttributeTranslations3.txt", c.text);
    expectFailure([&] { bad.reload(); }, c.method, c.reason);
  }
}

TEST_F(TranslationTableTest, FileWordsAndTheFirstTranslatorOfAKey) {
  // Length words in any case; converter words lose their frame unseen; the first translator of a class keeps it.
  AttributeTranslationTable& t = load("Words",
                                      "PICKS capi() dorn:() P1 vFloat32 VaRiAbLe\n"
                                      "SAMPLES capi() dorn:() S1 vFloat32 Vector\n"
                                      "OFFSET 12345) 123456) O1 vFloat32 0012\n"
                                      "SOURCE_X #####float64()? ######float32()? SX vFloat32 1\n"
                                      "CDP capi(int32()) dorn:(int32()) FIRST vInt32 1\n"
                                      "CDP capi() dorn:() SECOND vInt32 1\n");
  EXPECT_EQ(6u, t.getNTranslators());
  vHandle<DataTranslator> found;
  ASSERT_TRUE(t.getToCapiTranslator(Attribute("x", "PICKS", vFLOAT32, 1), found));
  EXPECT_TRUE(found->getDornAttribute().isVariableLength());
  ASSERT_TRUE(t.getToCapiTranslator(Attribute("x", "SAMPLES", vFLOAT32, 1), found));
  EXPECT_EQ(Attribute::VECTOR_LENGTH, found->getDornAttribute().getLength());
  ASSERT_TRUE(t.getToCapiTranslator(Attribute("x", "OFFSET", vFLOAT32, 1), found));
  EXPECT_EQ(12, found->getDornAttribute().getLength());
  EXPECT_TRUE(found->getToCapiConverter().isEmpty());
  ASSERT_TRUE(t.getToCapiTranslator(Attribute("SX", "SOURCE_X", vFLOAT32, 1), found));
  ASSERT_FALSE(found->getToCapiConverter().isEmpty());
  EXPECT_EQ(vFLOAT64, found->getToCapiConverter()->getOutputDT());
  ASSERT_TRUE(t.getToCapiTranslator(Attribute("ANY", "CDP", vINT32, 1), found));
  EXPECT_STREQ("FIRST", found->getDornName().c_str());
  EXPECT_FALSE(found->getToCapiConverter().isEmpty());
  EXPECT_TRUE(found->getToCapiConverter() == found->getToDornConverter());  // one chain for the same text
}

TEST_F(TranslationTableTest, FindsTranslatorsTellsWhatChangesAndReloadsUnderHeldOnes) {
  AttributeTranslationTable& t = load("Changes", translations());
  vHandle<DataTranslator> held, found;
  // A class is looked up on the Dorn side, a blank one by the name.
  EXPECT_TRUE(t.getToCapiTranslator(Attribute("WHATEVER", "source_x", vFLOAT32, 1), held));
  EXPECT_STREQ("SHOT_X", held->getDornName().c_str());
  EXPECT_TRUE(t.getToCapiTranslator(Attribute("SOURCE_X", "", vFLOAT32, 1), found));
  EXPECT_FALSE(t.getToCapiTranslator(Attribute("SHOT_X", "", vFLOAT32, 1), found));
  // Towards the Dorn side a blank class looks for the Capi name.
  EXPECT_TRUE(t.getToDornTranslator(Attribute("Count", "", vINT32, 1), found));
  EXPECT_STREQ("COUNT_F", found->getDornName().c_str());
  EXPECT_FALSE(t.getToDornTranslator(Attribute("COUNT_F", "", vFLOAT32, 1), found));

  // Without a translator nothing changes in the data, and a name differs unless it carries the table's name.
  struct Row {
    Attribute a;
    bool dornData, capiData, dornName, capiName;
  } const rows[] = {{Attribute("SOURCE_X", "SOURCE_X", vFLOAT64, 1), true, false, true, false},
                    {Attribute("SHOT_X", "SOURCE_X", vFLOAT32, 1), false, true, false, true},
                    {Attribute("OFFSET", "OFFSET", vFLOAT32, 1), false, false, true, true},
                    {Attribute("CHANGES.OFFSET", "", vFLOAT32, 1), false, false, false, false}};
  for (Row const& r : rows) {
    SCOPED_TRACE(r.a.getName().c_str());
    EXPECT_EQ(r.dornData, t.isDornDataChanged(r.a));
    EXPECT_EQ(r.capiData, t.isCapiDataChanged(r.a));
    EXPECT_EQ(r.dornName, t.isDornNameDifferent(r.a));
    EXPECT_EQ(r.capiName, t.isCapiNameDifferent(r.a));
  }
  EXPECT_FALSE(t.isDornNameDifferent(Attribute("XCHANGESX", "", vFLOAT32, 1)));

  tree.writeSystemFile("ChangesAttributeTranslations3.txt", "SOURCE_X capi() dorn:() NEW_X vFloat64 1\n");
  t.reload();
  EXPECT_STREQ("SHOT_X", held->getDornName().c_str());
  EXPECT_EQ(1, held.getMasterCount());
}

TEST_F(TranslationTableTest, UntranslatedDefinedNamesCrossUnderTheTableNameInEveryForm) {
  AttributeTranslationTable& t = load("Rondo", translations());
  Attribute offset = filled("NAME", "", vFLOAT32, {1.5, 2.5});
  AttributeDefinitionTable::instance().addDefinition(Attribute("NAME", "NAME", vFLOAT32, 1));
  float const* block = offset.getFloat32Pointer(1);
  Attribute dorn = t.convertToDorn(offset);
  EXPECT_STREQ("RONDO.NAME", dorn.getName().c_str());
  EXPECT_EQ(block, dorn.getFloat32Pointer(1));
  EXPECT_EQ(0u, offset.getNInstances());

  EXPECT_STREQ("NAME", t.convertToCapi(dorn).getName().c_str());
  Attribute own = filled("MY_OWN", "MINE", vINT32, {4});  // not defined: crosses as it is
  EXPECT_STREQ("MY_OWN", t.convertToDorn(own).getName().c_str());

  // The prefix comes off a const argument too, keeping the definition.
  Attribute prefixed("Rondo.Samples2", "TRACES", vFLOAT32, 3, 0.004, 0.5);
  prefixed.resize(1);
  prefixed.getFloat32Pointer(1)[2] = 9.f;
  Attribute const& constPrefixed = prefixed;
  Attribute stripped = t.convertToCapi(constPrefixed);
  EXPECT_STREQ("SAMPLES2", stripped.getName().c_str());
  EXPECT_EQ(9.f, stripped.getFloat32Pointer(1)[2]);
  EXPECT_EQ(1u, prefixed.getNInstances());

  // The handle forms give what the value forms give.
  Attribute stored = filled("SOURCE_X", "SOURCE_X", vFLOAT64, {2.0, 4.0});
  vHandle<Attribute> shot;
  t.convertToDorn(stored, shot);
  ASSERT_FALSE(shot.isEmpty());
  EXPECT_EQ(4.0f, shot->getFloat32(2));
  vHandle<Attribute> capi;
  t.convertToCapi(static_cast<Attribute const&>(*shot), capi);
  EXPECT_EQ(2.0, capi->getFloat64(1));
  vHandle<Attribute> taken;
  t.convertToCapi(*shot, taken);
  EXPECT_EQ(4.0, taken->getFloat64(2));
}

TEST_F(TranslationTableTest, TheEquivalenceSetsTheTwoSchemesSideBySide) {
  tree.writeSystemFile("RondoAttributeTranslations3.txt",
                       "SOURCE_X capi() dorn:() SHOT_X vFloat64 1\nCDP capi() dorn:() CDP_NO vInt32 1\n");
  tree.writeSystemFile("KelpAttributeTranslations3.txt",
                       "OFFSET capi() dorn:() SHOT_X vFloat32 1\nCOUNT capi() dorn:() N vInt32 1\n");
  AttributeNamesEquivalence const& e = AttributeDefinition::getAttributeNamesEquivalence(true);
  ASSERT_EQ(3u, e.size());
  EXPECT_STREQ("OFFSET", e.at("SHOT_X").second.c_str());
  EXPECT_STREQ("", e.at("CDP_NO").second.c_str());

  // Kept until asked to reload.
  tree.writeSystemFile("KelpAttributeTranslations3.txt", "LINE_NAME capi() dorn:() N vString 1\n");
  EXPECT_EQ(&e, &AttributeDefinition::getAttributeNamesEquivalence(false));
  EXPECT_STREQ("COUNT", AttributeDefinition::getAttributeNamesEquivalence().at("N").second.c_str());
  EXPECT_STREQ("LINE_NAME", AttributeDefinition::getAttributeNamesEquivalence(true).at("N").second.c_str());
}
