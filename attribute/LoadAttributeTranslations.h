#ifndef ATTRIBUTE_LOADATTRIBUTETRANSLATIONS_H
#define ATTRIBUTE_LOADATTRIBUTETRANSLATIONS_H

// LoadAttributeTranslations reads a translation file into its table. The
// file is a stream of whitespace-separated words, six to a translation:
//
//   class  capi(<chain>)  dorn:(<chain>)  dorn-name  data-type-name  length
//
// The class must be defined in the definition table, whose definition is
// the Capi side. The second and third words carry the converter chains to
// the Capi and to the Dorn side (see BuildConverter); their first five and
// six characters and their last one are a frame that is not looked at. The
// last three words define the attribute on the Dorn side; the length is an
// integer, "variable" or "vector", in any case.
//
// Unlike a definition, a translation that is not understood is fatal, as it
// would misread data: an unknown class fails in the definition table; a
// bad length gives "Bad length %s for Attribute class %s.", a type word
// that names no type an attribute holds "Bad data type %s for Attribute
// class %s.", and a translation cut short by the end of the file
// "Incomplete translation for Attribute class %s.", all from
// "LoadAttributeTranslations::load()".

#include <iosfwd>

#include "foundation/SystemFileLoader.h"

class AttributeTranslationTable;

class LoadAttributeTranslations : public SystemFileLoader {
 public:
  explicit LoadAttributeTranslations(AttributeTranslationTable& table);
  ~LoadAttributeTranslations() override;

 protected:
  void doLoad(std::istream& in, vString const& text) override;

 private:
  AttributeTranslationTable& m_table;
};

#endif
