#include "attribute/AttributeTranslationTable.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <unordered_map>

#include "attribute/AttributeDefinitionTable.h"
#include "attribute/LoadAttributeTranslations.h"

namespace {

typedef std::unordered_map<std::string, std::unique_ptr<AttributeTranslationTable> > Tables;

// Whole attributes move between two objects only through transferData:
// assignment copies the definition alone.
void moveInto(Attribute& from, Attribute& to) {
  if (from.getNInstances() == 0 && !from.hasDataHandler()) {
    to = from;
    return;
  }
  to.transferData(from);
}

}  // namespace

// Derived to reach the protected constructor from the registry of tables.
class AttributeTranslationTableMaker : public AttributeTranslationTable {
 public:
  static AttributeTranslationTable* make(vString const& name) { return new AttributeTranslationTableMaker(name); }
  static void load(AttributeTranslationTable& table) { static_cast<AttributeTranslationTableMaker&>(table).init(); }

 private:
  explicit AttributeTranslationTableMaker(vString const& name) : AttributeTranslationTable(name) {}
};

AttributeTranslationTable& AttributeTranslationTable::instance(vString const& name) {
  // Never destroyed: tables live to the end of the process, and beyond the
  // statics that may still ask them.
  static Tables* tables = new Tables;
  std::string const key(name.c_str());
  Tables::iterator found = tables->find(key);
  if (found != tables->end()) return *found->second;
  found = tables->emplace(key, std::unique_ptr<AttributeTranslationTable>(AttributeTranslationTableMaker::make(name)))
              .first;
  try {
    AttributeTranslationTableMaker::load(*found->second);
  } catch (...) {
    tables->erase(found);
    throw;
  }
  return *found->second;
}

vString AttributeTranslationTable::buildFileName(vString const& name) {
  vString file(name);
  file += "AttributeTranslations3.txt";
  return file;
}

AttributeTranslationTable::AttributeTranslationTable(vString const& name) : m_name(name) {}

AttributeTranslationTable::~AttributeTranslationTable() {}

void AttributeTranslationTable::myClear() {
  m_translators.clear();
  m_capiNames.clear();
  m_dornClasses.clear();
  m_pairs.clear();
}

void AttributeTranslationTable::init() {
  myClear();
  LoadAttributeTranslations loader(*this);
  loader.load(buildFileName(m_name), m_name);
}

void AttributeTranslationTable::reload() { init(); }

void AttributeTranslationTable::addTranslation(vHandle<DataTranslator> const& translator) {
  std::size_t const position = m_translators.size();
  m_translators.push_back(translator);
  m_capiNames.emplace(Attribute::getNameID(translator->getCapiName()), position);
  m_dornClasses.emplace(Attribute::getClassID(translator->getAttributeClass()), position);
  m_pairs.push_back(std::make_pair(translator->getDornName(), translator->getCapiName()));
}

void AttributeTranslationTable::getAttributeNamesTranslations(NamePairs& pairs) {
  pairs = m_pairs;
  std::sort(pairs.begin(), pairs.end());
}

vUCString AttributeTranslationTable::myUpperName() const { return vUCString(m_name); }

vHandle<DataTranslator> AttributeTranslationTable::myAt(Positions const& positions,
                                                        vUCStringTableData const* key) const {
  Positions::const_iterator const found = positions.find(key);
  if (found == positions.end()) return vHandle<DataTranslator>();
  return m_translators[found->second];
}

vHandle<DataTranslator> AttributeTranslationTable::myFindTranslatorByClass(Attribute const& attribute) const {
  if (!attribute.getClass().isBlank()) return myAt(m_dornClasses, attribute.getClassID());
  return myAt(m_dornClasses, attribute.getNameID());
}

vHandle<DataTranslator> AttributeTranslationTable::myFindToCapiTranslator(Attribute const& attribute) const {
  return myFindTranslatorByClass(attribute);
}

vHandle<DataTranslator> AttributeTranslationTable::myFindToDornTranslator(Attribute const& attribute) const {
  if (attribute.getClass().isBlank()) return myAt(m_capiNames, attribute.getNameID());
  return myFindTranslatorByClass(attribute);
}

bool AttributeTranslationTable::getToDornTranslator(Attribute const& attribute, vHandle<DataTranslator>& translator) {
  translator = myFindToDornTranslator(attribute);
  return !translator.isEmpty();
}

bool AttributeTranslationTable::getToCapiTranslator(Attribute const& attribute, vHandle<DataTranslator>& translator) {
  translator = myFindToCapiTranslator(attribute);
  return !translator.isEmpty();
}

bool AttributeTranslationTable::isCapiDataChanged(Attribute const& attribute) {
  vHandle<DataTranslator> const translator = myFindToCapiTranslator(attribute);
  return !translator.isEmpty() && translator->getCapiType() != attribute.getDataType();
}

bool AttributeTranslationTable::isDornDataChanged(Attribute const& attribute) {
  vHandle<DataTranslator> const translator = myFindToDornTranslator(attribute);
  return !translator.isEmpty() && translator->getDornType() != attribute.getDataType();
}

bool AttributeTranslationTable::isCapiNameDifferent(Attribute const& attribute) {
  vHandle<DataTranslator> const translator = myFindToCapiTranslator(attribute);
  if (!translator.isEmpty()) return translator->getCapiName() != attribute.getName();
  return attribute.getName().search(myUpperName()) < 0;
}

bool AttributeTranslationTable::isDornNameDifferent(Attribute const& attribute) {
  vHandle<DataTranslator> const translator = myFindToDornTranslator(attribute);
  if (!translator.isEmpty()) return translator->getDornName() != attribute.getName();
  return attribute.getName().search(myUpperName()) < 0;
}

Attribute AttributeTranslationTable::convertToDorn(Attribute& attribute) {
  Attribute result;
  vHandle<DataTranslator> const translator = myFindToDornTranslator(attribute);
  if (!translator.isEmpty()) {
    DataType const type = attribute.getDataType();
    Attribute converted = translator->convertToDorn(attribute);
    moveInto(converted, result);
    result.setOriginalDataType(type);
    return result;
  }
  moveInto(attribute, result);
  // A defined name would be taken for the defined attribute on the other
  // side: it goes across under the table's name.
  if (AttributeDefinitionTable::instance().hasDefinition(result.getName())) {
    vUCString name(myUpperName());
    name += ".";
    name += result.getName();
    result.setName(name);
  }
  return result;
}

bool AttributeTranslationTable::myStripPrefix(Attribute const& attribute, Attribute& stripped) const {
  vUCString prefix(myUpperName());
  prefix += ".";
  vUCString const& name = attribute.getName();
  if (name.length() <= prefix.length() || std::strncmp(name.c_str(), prefix.c_str(), prefix.length()) != 0)
    return false;
  stripped = Attribute(vUCString(name.c_str() + prefix.length()), attribute.getClass(), attribute.getDataType(),
                       attribute.getLength(), attribute.getSampleRate(), attribute.getFirstTime());
  return true;
}

Attribute AttributeTranslationTable::convertToCapi(Attribute& attribute) {
  Attribute result;
  vHandle<DataTranslator> const translator = myFindToCapiTranslator(attribute);
  if (!translator.isEmpty()) {
    Attribute converted = translator->convertToCapi(attribute);
    moveInto(converted, result);
    return result;
  }
  Attribute rebuilt;
  if (myStripPrefix(attribute, rebuilt)) {
    DataTranslator::moveData(attribute, rebuilt);
    moveInto(rebuilt, result);
    return result;
  }
  moveInto(attribute, result);
  return result;
}

Attribute AttributeTranslationTable::convertToCapi(Attribute const& attribute) {
  Attribute result;
  vHandle<DataTranslator> const translator = myFindToCapiTranslator(attribute);
  if (!translator.isEmpty()) {
    Attribute converted = translator->convertToCapi(attribute);
    moveInto(converted, result);
    return result;
  }
  Attribute rebuilt;
  if (myStripPrefix(attribute, rebuilt)) {
    DataTranslator::copyData(attribute, rebuilt);
    moveInto(rebuilt, result);
    return result;
  }
  result = attribute;
  DataTranslator::copyData(attribute, result);
  return result;
}

void AttributeTranslationTable::convertToCapi(Attribute& attribute, vHandle<Attribute>& result) {
  Attribute converted = convertToCapi(attribute);
  vHandle<Attribute> made(new Attribute);
  moveInto(converted, *made);
  result = made;
}

void AttributeTranslationTable::convertToCapi(Attribute const& attribute, vHandle<Attribute>& result) {
  Attribute converted = convertToCapi(attribute);
  vHandle<Attribute> made(new Attribute);
  moveInto(converted, *made);
  result = made;
}

void AttributeTranslationTable::convertToDorn(Attribute& attribute, vHandle<Attribute>& result) {
  Attribute converted = convertToDorn(attribute);
  vHandle<Attribute> made(new Attribute);
  moveInto(converted, *made);
  result = made;
}
