#ifndef ATTRIBUTE_LOADATTRIBUTEDEFINITIONS_H
#define ATTRIBUTE_LOADATTRIBUTEDEFINITIONS_H

// LoadAttributeDefinitions reads a definition file into a table. The file
// is a stream of whitespace-separated words, three to a definition, with no
// lines or comments of its own:
//
//   name  data-type-name  length
//
// The name, upper-cased, is both name and class. The type is a name known
// to vUtl::dataTypeFromName ("vInt32", "vFloat32", ...) of a type that an
// attribute holds (vInt16, vInt32, vInt64, vFloat32, vFloat64, vString). The length is an
// integer, "variable" (each instance its own length) or "vector" (a vector
// whose length is not fixed), in any case. A definition whose type or
// length is not understood is left out without a word: whoever first asks
// for the name hears of it. A header of three words with a type that is not
// a type name is therefore harmless.

#include <iosfwd>

#include "foundation/DataType.h"
#include "foundation/SystemFileLoader.h"

class AttributeDefinitionTable;

class LoadAttributeDefinitions : public SystemFileLoader {
 public:
  explicit LoadAttributeDefinitions(AttributeDefinitionTable& table);
  ~LoadAttributeDefinitions() override;

  // A length word: "variable" and "vector" in any case, or a count of
  // decimal digits that fits an int. False for anything else.
  static bool parseLength(vString const& word, int& length);
  // The type of a type word, when an attribute can hold it: vNOTYPE for a
  // word that names no type and for a type that attributes do not hold.
  static DataType parseDataType(vString const& word);

 protected:
  void doLoad(std::istream& in, vString const& text) override;

 private:
  AttributeDefinitionTable& m_table;
};

#endif
