#include "attribute/LoadAttributeTranslations.h"

#include <istream>
#include <string>

#include "attribute/Attribute.h"
#include "attribute/AttributeDefinition.h"
#include "attribute/AttributeTranslationTable.h"
#include "attribute/BuildConverter.h"
#include "attribute/DataTranslator.h"
#include "attribute/LoadAttributeDefinitions.h"
#include "foundation/Message.h"
#include "foundation/vUCString.h"

namespace {

char const* const kLabel = "LoadAttributeTranslations::load()";

// The converter text inside a framed word: `open` characters in front and
// one behind are dropped unseen.
vString unframe(std::string const& word, std::size_t open) {
  if (word.size() <= open + 1) return vString();
  return vString(word.substr(open, word.size() - open - 1).c_str());
}

}  // namespace

LoadAttributeTranslations::LoadAttributeTranslations(AttributeTranslationTable& table) : m_table(table) {}

LoadAttributeTranslations::~LoadAttributeTranslations() {}

void LoadAttributeTranslations::doLoad(std::istream& in, vString const&) {
  std::string words[6];
  while (in >> words[0]) {
    for (int i = 1; i < 6; ++i)
      if (!(in >> words[i]))
        Message::fatal(kLabel, 0, "Incomplete translation for Attribute class %s.", words[0].c_str());

    vString const className(words[0].c_str());
    DataType const type = LoadAttributeDefinitions::parseDataType(vString(words[4].c_str()));
    if (type == vNOTYPE)
      Message::fatal(kLabel, 0, "Bad data type %s for Attribute class %s.", words[4].c_str(), className.c_str());
    int length = 0;
    if (!LoadAttributeDefinitions::parseLength(vString(words[5].c_str()), length))
      Message::fatal(kLabel, 0, "Bad length %s for Attribute class %s.", words[5].c_str(), className.c_str());

    // The Capi side first: an unknown class ends the load here.
    Attribute const capi = AttributeDefinition::getDefinition(vUCString(className), 0, 0.0, 0.0);

    vString const toCapiText = unframe(words[1], 5);
    vString const toDornText = unframe(words[2], 6);
    vHandle<DataConverterI> const toCapi = BuildConverter::createConverter(toCapiText);
    // One chain serves both ways when the texts agree.
    vHandle<DataConverterI> const toDorn =
        toDornText == toCapiText ? toCapi : BuildConverter::createConverter(toDornText);

    Attribute const dorn(vUCString(words[3].c_str()), vUCString(className), type, length, 0.0, 0.0);
    m_table.addTranslation(vHandle<DataTranslator>(new DataTranslator(dorn, toCapi, toDorn, capi)));
  }
}
