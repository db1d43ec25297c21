#include "decorator/AttributeMappingDecorator.h"

#include <cstdio>
#include <cstring>
#include <string>

#include "attribute/AttributeDefinitionTable.h"
#include "decorator/AttributeMappingLocalData.h"
#include "decorator/AttributeMappingParserInfo.h"
#include "foundation/Message.h"
#include "foundation/vUtl.h"
#include "syslayer/FS.h"

namespace {

char const* const kSeparators = " \t\r\n,";

std::string trimmed(std::string const& text) {
  std::size_t const begin = text.find_first_not_of(" \t\r\n");
  if (begin == std::string::npos) return std::string();
  return text.substr(begin, text.find_last_not_of(" \t\r\n") - begin + 1);
}

std::vector<vUCString> words(std::string const& text) {
  std::vector<vUCString> out;
  std::size_t at = 0;
  while ((at = text.find_first_not_of(kSeparators, at)) != std::string::npos) {
    std::size_t const end = text.find_first_of(kSeparators, at);
    out.push_back(vUCString(text.substr(at, end - at).c_str()));
    at = end;
  }
  return out;
}

DataType typeFromWord(char const* label, std::string word, std::string const& line) {
  for (char& c : word) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  if (word == "f" || word == "float" || word == "float32") return vFLOAT32;
  if (word == "d" || word == "double" || word == "float64") return vFLOAT64;
  if (word == "i" || word == "int" || word == "int32") return vINT32;
  if (word == "int64") return vINT64;
  DataType type = vUtl::dataTypeFromName(word.c_str());
  if (type == vNOTYPE)
    Message::fatal(label, 0, "Did not understand the datatype %s in the expression '%s'!", word.c_str(), line.c_str());
  return type;
}

std::list<vString>& tried() {
  static std::list<vString> names;
  return names;
}

}  // namespace

AttributeMappingDecorator::AttributeMappingDecorator(vHandle<Store> const& store)
    : StoreDecorator(store),
      m_validated(false),
      m_opened(false),
      m_writeMode(false),
      m_localData(new LocalData(store, *this, false)) {}

AttributeMappingDecorator::~AttributeMappingDecorator() {}

// --- collecting expressions ------------------------------------------------------------

void AttributeMappingDecorator::processExpression(vString const& expression) {
  if (m_validated)
    Message::fatal("AttributeMappingDecorator::processExpression(expr)", 0,
                   "Cannot add an expression once we have validated the store!");
  if (m_writeMode)
    myAddExpressionForWrite(expression);
  else
    myAddExpressionForRead(expression);
}

void AttributeMappingDecorator::processExpression(vFilename const& file) {
  if (m_validated)
    Message::fatal("AttributeMappingDecorator::processExpression(filename)", 0,
                   "Cannot add an expression once we have validated the store!");
  FILE* in = std::fopen(file.c_str(), "r");
  if (in == nullptr)
    Message::fatal("AttributeMappingDecorator::processExpression(filename)", 0, "Failed to open the file '%s'!",
                   file.c_str());
  m_filename = file.c_str();
  char buffer[1024];
  try {
    while (std::fgets(buffer, 1023, in) != nullptr) {
      if (buffer[0] == '#' || buffer[0] == ';') continue;
      std::string line = trimmed(buffer);
      if (line.empty()) continue;
      if (m_writeMode)
        myAddExpressionForWrite(line.c_str());
      else
        myAddExpressionForRead(line.c_str());
    }
  } catch (...) {
    std::fclose(in);
    throw;
  }
  std::fclose(in);
}

void AttributeMappingDecorator::myAddExpressionForRead(vString const& text) {
  myAddExpression("AttributeMappingDecorator::myAddExpressionForRead", text);
}

// The same grammar; the names are those of the store made, the variables
// those of the sets written.
void AttributeMappingDecorator::myAddExpressionForWrite(vString const& text) {
  myAddExpression("AttributeMappingDecorator::myAddExpressionForWrite", text);
}

void AttributeMappingDecorator::myAddExpression(char const* label, vString const& text) {
  std::string const line = trimmed(text.c_str());
  if (line.empty()) return;
  if (line[0] == '!') {
    std::size_t const end = line.find_first_of(" \t");
    std::string directive = line.substr(0, end);
    for (char& c : directive) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    std::string const argument = end == std::string::npos ? std::string() : trimmed(line.substr(end));
    if (directive == "!STORECLASS")
      m_localData->setStoreClass(argument.c_str());
    else if (directive == "!STORESUBCLASS")
      m_localData->setStoreSubClass(argument.c_str());
    else if (directive == "!KEYLIST")
      m_localData->saveKeyNames(words(argument));
    else if ((directive == "!ADD" || directive == "!PRESERVE") && m_writeMode)
      Message::fatal(label, 0, "The %s keyword is not supported for write!", directive.c_str());
    else if (directive == "!ADD" || directive == "!PRESERVE")
      m_localData->addExistingAttributes(words(argument), directive == "!PRESERVE");
    else
      Message::fatal(label, 0, "The expression '%s' is not in the correct format!", line.c_str());
    return;
  }
  std::size_t const nameEnd = line.find_first_of("\n \r\t=");
  std::size_t const equals = nameEnd == std::string::npos ? nameEnd : line.find_first_not_of(" \t\r\n", nameEnd);
  if (nameEnd == 0 || equals == std::string::npos || line[equals] != '=' || trimmed(line.substr(equals + 1)).empty())
    Message::fatal(label, 0, "The expression '%s' is not in the correct format!", line.c_str());
  std::string name = line.substr(0, nameEnd);
  std::string const expression = trimmed(line.substr(equals + 1));

  Attribute target;
  std::size_t const colon = name.find(':');
  if (colon != std::string::npos) {
    DataType const type = typeFromWord(label, name.substr(colon + 1), line);
    name.erase(colon);
    target = Attribute(vUCString(name.c_str()), vUCString(name.c_str()), type);
  } else if (AttributeDefinitionTable::instance().hasDefinition(vUCString(name.c_str()))) {
    target = AttributeDefinitionTable::instance().getDefinition(vUCString(name.c_str()));
    target.setName(vUCString(name.c_str()));
  } else {
    target = Attribute(vUCString(name.c_str()), vUCString(name.c_str()), vFLOAT32);
  }
  if (!vUtl::dataTypeIsAttributeNumber(target.getDataType()))
    Message::fatal(label, 0, "An unsupported datatype for the attribute %s was detected!", target.getName().c_str());
  if (target.isVariableLength())
    Message::fatal(label, 0, "The attribute %s is variable length and we don't support these!!",
                   target.getName().c_str());

  vHandle<ParserInfo> parser(new ParserInfo(m_decoratedStore, target.getName(), m_writeMode));
  parser->setTarget(target);
  parser->setExpression(expression.c_str());
  m_localData->addVariable(parser);
}

void AttributeMappingDecorator::clearExpressions() {
  m_localData = vHandle<LocalData>(new LocalData(m_decoratedStore, *this, m_writeMode));
  m_indexingTable = vHandle<AttributeSetIndexingTable>();
  m_validated = false;
}

void AttributeMappingDecorator::myOpen() const {
  if (m_validated) return;
  m_localData->buildNewAttributeLists();
  m_validated = true;
}

// --- finding the mapping file ---------------------------------------------------------------

std::list<vString> const& AttributeMappingDecorator::getTriedFilenames() { return tried(); }

bool AttributeMappingDecorator::myResolveMapFilename(vString const& name, std::vector<vString> const& directories,
                                                     vFilename& found) {
  tried().clear();
  tried().push_back(name);
  if (!name.isBlank() && FS::exists(vFilename(name))) {
    found = vFilename(name);
    return true;
  }
  std::string base = name.c_str();
  std::size_t const slash = base.rfind('/');
  if (slash != std::string::npos) base.erase(0, slash + 1);
  if (base.empty()) return false;
  if (base.find('.') == std::string::npos) base += ".cstf";
  for (vString const& directory : directories) {
    std::string candidate = directory.c_str();
    if (!candidate.empty() && candidate.back() != '/') candidate += '/';
    candidate += base;
    tried().push_back(candidate.c_str());
    if (FS::exists(vFilename(candidate.c_str()))) {
      found = vFilename(candidate.c_str());
      return true;
    }
  }
  return false;
}

bool AttributeMappingDecorator::resolveMapFilename(vString const& name, vFilename& found) {
  return myResolveMapFilename(name, {vUtl::systemFilesDirectory()}, found);
}

bool AttributeMappingDecorator::resolveMapFilename(vFilename const& store, vString const& name, vFilename& found) {
  std::string const path = store.c_str();
  std::size_t const slash = path.rfind('/');
  vString const directory(slash == std::string::npos ? "." : path.substr(0, slash).c_str());
  // Without a name of its own, the map is named after the store.
  vString wanted = name;
  if (wanted.isBlank()) {
    std::string stem = slash == std::string::npos ? path : path.substr(slash + 1);
    std::size_t const dot = stem.rfind('.');
    if (dot != std::string::npos) stem.erase(dot);
    wanted = (stem + ".cstf").c_str();
  }
  return myResolveMapFilename(wanted, {directory, vUtl::systemFilesDirectory()}, found);
}

// --- the store contract --------------------------------------------------------------------

void AttributeMappingDecorator::myRefuse(char const* label) {
  Message::fatal(label, 0, "Not supported by this decorator!");
}

void AttributeMappingDecorator::create(vLCString const&, vLCString const&, vLCString const&, KeyList const&,
                                       StoreCreationOptions const*) {
  myRefuse("AttributeMappingDecorator::create(name)");
}

void AttributeMappingDecorator::create(FullStoreName const&, vLCString const&, vLCString const&, KeyList const&,
                                       StoreCreationOptions const*) {
  myRefuse("AttributeMappingDecorator::create(fsn)");
}

void AttributeMappingDecorator::open(vLCString const& name, int version, vLCString const& className,
                                     vLCString const& subClass, StoreOpenOptions const* options) {
  m_decoratedStore->open(name, version, className, subClass, options);
  m_opened = true;
  myOpen();
}

void AttributeMappingDecorator::open(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
                                     StoreOpenOptions const* options) {
  m_decoratedStore->open(name, className, subClass, options);
  m_opened = true;
  myOpen();
}

void AttributeMappingDecorator::update(vLCString const&, int, vLCString const&, vLCString const&,
                                       StoreOpenOptions const*) {
  myRefuse("AttributeMappingDecorator::update(name)");
}

void AttributeMappingDecorator::update(FullStoreName const&, vLCString const&, vLCString const&,
                                       StoreOpenOptions const*) {
  myRefuse("AttributeMappingDecorator::update(fsn)");
}

vLCString AttributeMappingDecorator::getClass() const {
  return m_localData->getStoreClass().isBlank() ? m_decoratedStore->getClass() : m_localData->getStoreClass();
}

vLCString AttributeMappingDecorator::getSubClass() const {
  return m_localData->getStoreSubClass().isBlank() ? m_decoratedStore->getSubClass() : m_localData->getStoreSubClass();
}

void AttributeMappingDecorator::close() {
  m_decoratedStore->close();
  m_opened = false;
  m_indexingTable = vHandle<AttributeSetIndexingTable>();
}

KeyList AttributeMappingDecorator::getKeyList() const {
  myOpen();
  return m_localData->getKeyList();
}

void AttributeMappingDecorator::getKeyList(KeyList& keys) const { keys = getKeyList(); }

void AttributeMappingDecorator::addInstances(unsigned int) { myRefuse("AttributeMappingDecorator::addInstances"); }

void AttributeMappingDecorator::write(Attribute const&, unsigned int, unsigned int) {
  myRefuse("AttributeMappingDecorator::write(range)");
}

void AttributeMappingDecorator::write(Attribute const&, std::vector<unsigned int> const&) {
  myRefuse("AttributeMappingDecorator::write(list)");
}

void AttributeMappingDecorator::write(Attribute const&, Attribute const&, unsigned int, unsigned int) {
  myRefuse("AttributeMappingDecorator::write(groups)");
}

void AttributeMappingDecorator::write(Attribute const&, KeyList const&) {
  myRefuse("AttributeMappingDecorator::write(keys)");
}

void AttributeMappingDecorator::addAttribute(Attribute const&) { myRefuse("AttributeMappingDecorator::addAttribute"); }

void AttributeMappingDecorator::create(StoreDescription const& description, vLCString const& attributeSetName,
                                       KeyList const& keys, StoreCreationOptions const* options) {
  m_writeMode = true;
  m_validated = false;
  m_localData = vHandle<LocalData>(new LocalData(m_decoratedStore, *this, true));
  m_localData->setCreation(description, attributeSetName, keys, options);
}

std::vector<unsigned int> AttributeMappingDecorator::myWriteRange(AttributeSet const& source, unsigned int first,
                                                                  unsigned int last) const {
  unsigned int const n = source.getNInstances();
  if (first == 0 || last < first || last > n)
    Message::fatal("AttributeMappingDecorator::LocalData::write(range)", 0,
                   "Invalid instance range %d:%d for a store that contains %d instances!", static_cast<int>(first),
                   static_cast<int>(last), static_cast<int>(n));
  std::vector<unsigned int> instances;
  for (unsigned int i = first; i <= last; ++i) instances.push_back(i);
  return instances;
}

void AttributeMappingDecorator::writeIMSRange(InMemoryStore const& source, unsigned int first, unsigned int last) {
  if (!m_writeMode) myRefuse("AttributeMappingDecorator::writeIMSRange");
  myOpen();
  AttributeSet const& set = myViewOf(source, "AttributeMappingDecorator::writeIMSRange");
  m_localData->write(set, myWriteRange(set, first, last));
}

void AttributeMappingDecorator::writeIMSList(InMemoryStore const& source, std::vector<unsigned int> const& instances) {
  if (!m_writeMode) myRefuse("AttributeMappingDecorator::writeIMSList");
  myOpen();
  AttributeSet const& set = myViewOf(source, "AttributeMappingDecorator::writeIMSList");
  for (unsigned int i : instances)
    if (i == 0 || i > set.getNInstances()) myWriteRange(set, i, i);
  m_localData->write(set, instances);
}

std::list<Attribute> AttributeMappingDecorator::getAttributeList() const {
  myOpen();
  return m_localData->getAttributeList();
}

void AttributeMappingDecorator::getAttributeList(std::list<Attribute>& attributes) const {
  attributes = getAttributeList();
}

std::list<Attribute> AttributeMappingDecorator::getAttributeList(vUCString const& text,
                                                                 AttributeMatch::AttributeMatchType match) const {
  std::list<Attribute> result;
  for (Attribute const& attribute : getAttributeList())
    if (attribute.getClass() == text || (match == 1 && attribute.getClass().isBlank())) result.push_back(attribute);
  return result;
}

Attribute AttributeMappingDecorator::getAttribute(vUCString const& name) const {
  myOpen();
  return m_localData->getAttribute(name);
}

bool AttributeMappingDecorator::hasAttribute(vUCString const& name) const {
  myOpen();
  return m_localData->hasAttribute(name);
}

unsigned int AttributeMappingDecorator::getNAttributes() const {
  return static_cast<unsigned int>(getAttributeList().size());
}

void AttributeMappingDecorator::openAttributeSet(vLCString const& name) {
  if (!name.isBlank() && name != m_decoratedStore->getPrimaryAttributeSetName())
    Message::fatal("AttributeMappingDecorator::openAttributeSet", 0,
                   "We only support mapping the primary attribute set!");
  m_decoratedStore->openAttributeSet(name);
}

void AttributeMappingDecorator::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  myOpen();
  m_localData->read(attribute, first, last);
}

void AttributeMappingDecorator::read(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  myOpen();
  if (!instances.empty() && vUtl::isListARange(instances)) {
    m_localData->read(attribute, instances.front(), instances.back());
    return;
  }
  if (m_writeMode) myRefuse("AttributeMappingDecorator::read(list)");
  m_localData->read(attribute, instances);
}

void AttributeMappingDecorator::read(Attribute& attribute, Attribute const& groups, unsigned int firstGroup,
                                     unsigned int lastGroup) const {
  myOpen();
  if (m_indexingTable.isEmpty())
    m_indexingTable = vHandle<AttributeSetIndexingTable>(new AttributeSetIndexingTable(*this));
  std::vector<unsigned int> instances;
  m_indexingTable->locateByGroups(groups, firstGroup, lastGroup, instances);
  read(attribute, instances);
}

void AttributeMappingDecorator::read(Attribute&, KeyList const&) const {
  myOpen();
  myRefuse("AttributeMappingDecorator::read(keys)");
}

void AttributeMappingDecorator::getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const {
  myOpen();
  if (m_indexingTable.isEmpty())
    m_indexingTable = vHandle<AttributeSetIndexingTable>(new AttributeSetIndexingTable(*this));
  m_indexingTable->getUnique(attribute, order);
}

void AttributeMappingDecorator::getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                                                  vUtlSort::SortOrder::SortOrderType order) const {
  myOpen();
  if (m_indexingTable.isEmpty())
    m_indexingTable = vHandle<AttributeSetIndexingTable>(new AttributeSetIndexingTable(*this));
  m_indexingTable->getGroupsAndSizes(attribute, sizes, order);
}
