// The vocabulary the release ships: every definition understood, every translator carrying data there and back.

#include "attribute/AttributeDefinition.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <type_traits>

#include "attribute/AttributeDefinitionTable.h"
#include "attribute/AttributeTesting.h"
#include "attribute/AttributeTranslationTable.h"
#include "foundation/TestReleaseTree.h"

namespace {

std::string const kRelease = RONDO_TEST_SOURCE_DIR "/release/";

std::size_t countWords(std::string const& path) {
  std::ifstream in(path);
  std::string word;
  std::size_t n = 0;
  while (in >> word) ++n;
  return n;
}

class ShippedVocabularyTest : public ::testing::Test {
 protected:
  void SetUp() override {
    tree.setEnv("VREL", kRelease);
    AttributeDefinitionTable::instance().dropTable();
  }
  void TearDown() override { AttributeDefinitionTable::instance().dropTable(); }
  TestReleaseTree tree;
};

// The translator's Capi attribute, three instances of values that every type on either side holds exactly.
Attribute sample(DataTranslator const& translator) {
  Attribute a = translator.getCapiAttribute();
  if (a.isVariableLength()) {
    a.resize(3, nullptr, new int[3]{1, 0, 2});
  } else {
    if (a.getLength() == Attribute::VECTOR_LENGTH) a = Attribute(a.getName(), a.getClass(), a.getDataType(), 4, 0.004);
    a.resize(3);
  }
  long long const n = a.getTotalLength();
  auto fill = [n](auto* p) {
    for (long long i = 0; i < n; ++i) p[i] = static_cast<std::remove_reference_t<decltype(*p)>>(i * 7 - 5 + 0.5);
  };
  DataType const t = a.getDataType();
  if (t == vINT16) fill(a.getInt16Pointer(1));
  if (t == vINT32) fill(a.getInt32Pointer(1));
  if (t == vINT64) fill(a.getInt64Pointer(1));
  if (t == vFLOAT32) fill(a.getFloat32Pointer(1));
  if (t == vFLOAT64) fill(a.getFloat64Pointer(1));
  if (t == vSTRING)
    for (long long i = 0; i < n; ++i) a.getStringPointer(1)[i] = vString(std::to_string(i * 7 - 5).c_str());
  return a;
}

void expectSameValues(Attribute const& expected, Attribute const& actual) {
  ASSERT_EQ(expected.getNInstances(), actual.getNInstances());
  if (expected.getDataType() == vSTRING) {
    EXPECT_EQ(attribute_testing::stringsOf(expected), attribute_testing::stringsOf(actual));
    return;
  }
  std::vector<double> a, b;
  expected.getValues(a);
  actual.getValues(b);
  EXPECT_EQ(a, b);
}

}  // namespace

TEST_F(ShippedVocabularyTest, EveryDefinitionIsUnderstood) {
  std::size_t const words = countWords(kRelease + "SystemFiles/AttributeDefTable4.txt");
  ASSERT_EQ(0u, words % 3);
  ASSERT_TRUE(AttributeDefinition::hasDefinition("TRACE_NUMBER"));
  // All records but the heading.
  EXPECT_EQ(static_cast<int>(words / 3 - 1), AttributeDefinitionTable::instance().getNEntries());
  EXPECT_FALSE(AttributeDefinition::hasDefinition("NAME"));
  EXPECT_TRUE(AttributeDefinition::getDefinition("TRACE_SAMPLES", 1500, 0.004, 0.0).isVector());
  EXPECT_TRUE(AttributeDefinition::getDefinition("PICK_TIMES").isVariableLength());
  EXPECT_EQ(vSTRING, AttributeDefinition::getDefinition("line_name").getDataType());
}

TEST_F(ShippedVocabularyTest, RondoAndKelpTranslationsCarryDataThereAndBack) {
  for (char const* name : {"Rondo", "Kelp"}) {
    SCOPED_TRACE(name);
    AttributeTranslationTable& t = AttributeTranslationTable::instance(vString(name));
    t.reload();
    std::size_t const words = countWords(kRelease + "SystemFiles/" + name + "AttributeTranslations3.txt");
    EXPECT_EQ(words / 6, t.getNTranslators());
    AttributeTranslationTable::NamePairs pairs;
    t.getAttributeNamesTranslations(pairs);
    ASSERT_EQ(t.getNTranslators(), pairs.size());
    for (auto const& pair : pairs) {
      SCOPED_TRACE(pair.first.c_str());
      vHandle<DataTranslator> translator;
      ASSERT_TRUE(t.getToDornTranslator(Attribute(pair.second, "", vINT32, 1), translator));
      Attribute original = sample(*translator);
      Attribute stored(original);
      stored.copyData(original);
      Attribute dorn = t.convertToDorn(stored);
      EXPECT_EQ(translator->getDornType(), dorn.getDataType());
      EXPECT_EQ(original.getDataType(), dorn.getOriginalDataType());
      Attribute capi = t.convertToCapi(dorn);
      EXPECT_EQ(original.getDataType(), capi.getDataType());
      EXPECT_STREQ(pair.second.c_str(), capi.getName().c_str());
      expectSameValues(original, capi);
    }
  }
}
