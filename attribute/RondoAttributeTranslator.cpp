#include "attribute/RondoAttributeTranslator.h"

#include "attribute/AttributeTranslationTable.h"

namespace {

char const* const kTableName = "Rondo";

}  // namespace

AttributeTranslationTable& RondoAttributeTranslator::myTable() {
  static AttributeTranslationTable& table = AttributeTranslationTable::instance(vString(kTableName));
  return table;
}

bool RondoAttributeTranslator::isDornDataChanged(Attribute const& attribute) {
  return myTable().isDornDataChanged(attribute);
}

bool RondoAttributeTranslator::isRondoDataChanged(Attribute const& attribute) {
  return myTable().isCapiDataChanged(attribute);
}

bool RondoAttributeTranslator::isDornNameDifferent(Attribute const& attribute) {
  return myTable().isDornNameDifferent(attribute);
}

bool RondoAttributeTranslator::isRondoNameDifferent(Attribute const& attribute) {
  return myTable().isCapiNameDifferent(attribute);
}

vString RondoAttributeTranslator::getFileName() {
  return AttributeTranslationTable::buildFileName(vString(kTableName));
}

Attribute RondoAttributeTranslator::convertToRondo(Attribute& attribute) { return myTable().convertToCapi(attribute); }

Attribute RondoAttributeTranslator::convertToRondo(Attribute const& attribute) {
  return myTable().convertToCapi(attribute);
}

void RondoAttributeTranslator::convertToRondo(Attribute& attribute, vHandle<Attribute>& result) {
  myTable().convertToCapi(attribute, result);
}

Attribute RondoAttributeTranslator::convertToDorn(Attribute& attribute) { return myTable().convertToDorn(attribute); }

void RondoAttributeTranslator::convertToDorn(Attribute& attribute, vHandle<Attribute>& result) {
  myTable().convertToDorn(attribute, result);
}
