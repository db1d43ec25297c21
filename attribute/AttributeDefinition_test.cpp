// The vocabulary the release ships: every definition understood, every
// translation loadable, and every translator carrying data there and back.

#include "attribute/AttributeDefinition.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "attribute/AttributeDefinitionTable.h"
#include "attribute/AttributeTranslationTable.h"
#include "foundation/TestReleaseTree.h"

namespace {

std::string shippedRelease() {
  return std::string(RONDO_TEST_SOURCE_DIR) + "/release/";
}

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
    tree.setEnv("VREL", shippedRelease());
    AttributeDefinitionTable::instance().dropTable();
  }
  void TearDown() override { AttributeDefinitionTable::instance().dropTable(); }

  AttributeTranslationTable& table(char const* name) {
    AttributeTranslationTable& t = AttributeTranslationTable::instance(vString(name));
    t.reload();
    return t;
  }

  TestReleaseTree tree;
};

// An attribute of the translator's Capi side with three instances of
// distinct values that every type on either side holds exactly.
Attribute sample(DataTranslator const& translator) {
  Attribute a = translator.getCapiAttribute();
  if (a.isVariableLength()) {
    a.resize(3, nullptr, new int[3]{1, 0, 2});
  } else {
    if (a.getLength() == Attribute::VECTOR_LENGTH) {
      Attribute sized(a.getName(), a.getClass(), a.getDataType(), 4, 0.004, 0.0);
      a = sized;
    }
    a.resize(3);
  }
  long long const n = a.getTotalLength();
  for (long long i = 0; i < n; ++i) {
    int const v = static_cast<int>(i * 7 - 5);
    switch (a.getDataType()) {
      case vINT16:
        a.getInt16Pointer(1)[i] = static_cast<short>(v);
        break;
      case vINT32:
        a.getInt32Pointer(1)[i] = v;
        break;
      case vINT64:
        a.getInt64Pointer(1)[i] = v;
        break;
      case vFLOAT32:
        a.getFloat32Pointer(1)[i] = static_cast<float>(v) + 0.5f;
        break;
      case vFLOAT64:
        a.getFloat64Pointer(1)[i] = v + 0.25;
        break;
      case vSTRING:
        a.getStringPointer(1)[i] = vString("name ") + vString(std::to_string(v).c_str());
        break;
      default:
        ADD_FAILURE() << "type " << a.getDataType();
        break;
    }
  }
  return a;
}

void expectSameValues(Attribute const& expected, Attribute const& actual) {
  ASSERT_EQ(expected.getNInstances(), actual.getNInstances());
  ASSERT_EQ(expected.getTotalLength(), actual.getTotalLength());
  if (expected.getDataType() == vSTRING) {
    for (long long i = 0; i < expected.getTotalLength(); ++i)
      EXPECT_STREQ(expected.getStringPointer(1)[i].c_str(), actual.getStringPointer(1)[i].c_str());
    return;
  }
  std::vector<double> a, b;
  expected.getValues(a);
  actual.getValues(b);
  EXPECT_EQ(a, b);
}

void roundTripEveryTranslator(AttributeTranslationTable& t) {
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

}  // namespace

TEST_F(ShippedVocabularyTest, EveryDefinitionIsUnderstood) {
  std::size_t const words = countWords(shippedRelease() + "SystemFiles/AttributeDefTable4.txt");
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
    AttributeTranslationTable& t = table(name);
    std::size_t const words = countWords(shippedRelease() + "SystemFiles/" + name + "AttributeTranslations3.txt");
    EXPECT_EQ(words / 6, t.getNTranslators());
    roundTripEveryTranslator(t);
  }
}
