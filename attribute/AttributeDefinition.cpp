#include "attribute/AttributeDefinition.h"

#include "attribute/AttributeDefinitionTable.h"
#include "attribute/AttributeTranslationTable.h"

Attribute AttributeDefinition::getDefinition(vUCString const& name, int length, double sampleRate, double firstTime) {
  Attribute definition = AttributeDefinitionTable::instance().getDefinition(name);
  if (length != 0) definition.setLength(length);
  definition.setSampleRate(sampleRate);
  definition.setFirstTime(firstTime);
  return definition;
}

bool AttributeDefinition::hasDefinition(vUCString const& name) {
  return AttributeDefinitionTable::instance().hasDefinition(name);
}

void AttributeDefinition::getAttributeNamesTranslations(vString const& tableName,
                                                        std::vector<std::pair<vUCString, vUCString> >& pairs) {
  AttributeTranslationTable::instance(tableName).getAttributeNamesTranslations(pairs);
}

namespace {

void buildEquivalence(AttributeNamesEquivalence& equivalence) {
  AttributeTranslationTable::NamePairs rondo;
  AttributeTranslationTable::NamePairs kelp;
  AttributeTranslationTable::instance(vString("Rondo")).getAttributeNamesTranslations(rondo);
  AttributeTranslationTable::instance(vString("Kelp")).getAttributeNamesTranslations(kelp);
  AttributeNamesEquivalence built;
  for (auto const& pair : rondo) built[pair.first].first = pair.second;
  for (auto const& pair : kelp) built[pair.first].second = pair.second;
  equivalence.swap(built);
}

}  // namespace

AttributeNamesEquivalence const& AttributeDefinition::getAttributeNamesEquivalence(bool reloadFirst) {
  static AttributeNamesEquivalence equivalence;
  static bool built = false;
  if (reloadFirst) {
    AttributeTranslationTable::instance(vString("Rondo")).reload();
    AttributeTranslationTable::instance(vString("Kelp")).reload();
    built = false;
  }
  if (!built) {
    buildEquivalence(equivalence);
    built = true;
  }
  return equivalence;
}
