#ifndef ATTRIBUTE_ATTRIBUTEDEFINITION_H
#define ATTRIBUTE_ATTRIBUTEDEFINITION_H

// AttributeDefinition: the questions most code asks of the vocabulary,
// answered from AttributeDefinitionTable and the translation tables.

#include <map>
#include <utility>
#include <vector>

#include "attribute/Attribute.h"
#include "foundation/vString.h"
#include "foundation/vUCString.h"

// For a Dorn name, the Capi names that the tables "Rondo" and "Kelp" give
// it; a name one table does not translate has an empty name there.
typedef std::map<vUCString, std::pair<vUCString, vUCString> > AttributeNamesEquivalence;

class AttributeDefinition {
 public:
  // A copy of the definition of a class, with the given length unless it is
  // 0 (which keeps the defined one), and always the sample rate and first
  // time given. An unknown class throws, as the table's getDefinition does.
  static Attribute getDefinition(vUCString const& name, int length = 0, double sampleRate = 0.0,
                                 double firstTime = 0.0);
  static bool hasDefinition(vUCString const& name);
  // The sorted (Dorn name, Capi name) pairs of a translation table.
  static void getAttributeNamesTranslations(vString const& tableName,
                                            std::vector<std::pair<vUCString, vUCString> >& pairs);
  // The names of "Rondo" and "Kelp" side by side, built on first use; with
  // reloadFirst both tables are read again and the structure rebuilt.
  static AttributeNamesEquivalence const& getAttributeNamesEquivalence(bool reloadFirst = false);
};

#endif
