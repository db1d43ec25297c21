#ifndef ATTRIBUTE_RONDOATTRIBUTETRANSLATOR_H
#define ATTRIBUTE_RONDOATTRIBUTETRANSLATOR_H

// RondoAttributeTranslator: the translation table "Rondo", which the native
// loader's clients speak, behind static operations. The Rondo side is the
// Capi side of AttributeTranslationTable.

#include "attribute/Attribute.h"
#include "foundation/vHandle.h"
#include "foundation/vString.h"

class AttributeTranslationTable;

class RondoAttributeTranslator {
 public:
  static bool isDornDataChanged(Attribute const& attribute);
  static bool isRondoDataChanged(Attribute const& attribute);
  static bool isDornNameDifferent(Attribute const& attribute);
  static bool isRondoNameDifferent(Attribute const& attribute);
  // "RondoAttributeTranslations3.txt".
  static vString getFileName();
  static Attribute convertToRondo(Attribute& attribute);
  static Attribute convertToRondo(Attribute const& attribute);
  static void convertToRondo(Attribute& attribute, vHandle<Attribute>& result);
  static Attribute convertToDorn(Attribute& attribute);
  static void convertToDorn(Attribute& attribute, vHandle<Attribute>& result);

 private:
  static AttributeTranslationTable& myTable();
};

#endif
