#include "decorator/TranslatingAttributeSetDecorator.h"

#include "attribute/KeyList.h"
#include "foundation/Message.h"
#include "project/FullStoreName.h"
#include "project/Project.h"
#include "project/ProjectType.h"

namespace {

vString tableNameOf(vHandle<AttributeSet> const& set) {
  vHandle<Project> project = set->getProject();
  return ProjectType::getProjectTypeName(project.isEmpty() ? ProjectType::NOTYPE : project->getProjectType());
}

}  // namespace

TranslatingAttributeSetDecorator::TranslatingAttributeSetDecorator(vHandle<AttributeSet> const& set)
    : AttributeSetDecorator(set), m_tableName(tableNameOf(set)) {}

TranslatingAttributeSetDecorator::~TranslatingAttributeSetDecorator() {}

AttributeTranslationTable& TranslatingAttributeSetDecorator::myTranslationTable() const {
  return AttributeTranslationTable::instance(m_tableName);
}

// --- the client's attribute list ----------------------------------------------------------

std::list<Attribute> const& TranslatingAttributeSetDecorator::myGetAttributeList() const {
  if (m_clientAttributes.empty()) {
    AttributeTranslationTable& table = myTranslationTable();
    std::list<Attribute> capi = m_decoratedSet->getAttributeList();
    for (Attribute& attribute : capi) {
      m_clientAttributes.push_back(table.convertToDorn(attribute));
      m_lookup[m_clientAttributes.back().getName()] = &m_clientAttributes.back();
    }
  }
  return m_clientAttributes;
}

std::list<Attribute> TranslatingAttributeSetDecorator::getAttributeList() const { return myGetAttributeList(); }

void TranslatingAttributeSetDecorator::getAttributeList(std::list<Attribute>& attributes) const {
  attributes = myGetAttributeList();
}

std::list<Attribute> TranslatingAttributeSetDecorator::getAttributeList(
    vUCString const& text, AttributeMatch::AttributeMatchType match) const {
  std::list<Attribute> result;
  for (Attribute const& attribute : myGetAttributeList())
    if (attribute.getClass() == text || (match == 1 && attribute.getClass().isEmpty())) result.push_back(attribute);
  return result;
}

Attribute TranslatingAttributeSetDecorator::getAttribute(vUCString const& name) const {
  myGetAttributeList();
  auto it = m_lookup.find(name);
  if (it == m_lookup.end())
    Message::fatal("TranslatingAttributeSetDecorator::getAttribute", 0, "Attrbute '%s' does not exist.", name.c_str());
  return *it->second;
}

bool TranslatingAttributeSetDecorator::hasAttribute(vUCString const& name) const {
  myGetAttributeList();
  return m_lookup.count(name) != 0;
}

void TranslatingAttributeSetDecorator::close() {
  AttributeSetDecorator::close();
  m_lookup.clear();
  m_clientAttributes.clear();
}

// --- reading ---------------------------------------------------------------------------------

vHandle<Attribute> TranslatingAttributeSetDecorator::myCreateAttributeToBeRead(Attribute const& attribute) const {
  auto it = m_readMap.find(attribute.getNameID());
  if (it == m_readMap.end()) {
    Attribute copy(attribute);
    Attribute capi = myTranslationTable().convertToCapi(copy);
    it = m_readMap.emplace(attribute.getNameID(), m_decoratedSet->getAttribute(capi.getName())).first;
  }
  return vHandle<Attribute>(new Attribute(it->second));
}

void TranslatingAttributeSetDecorator::myConvertAndTransferReadData(Attribute& target, Attribute& read) const {
  Attribute converted = myTranslationTable().convertToDorn(read);
  vUCString const name = target.getName();
  target.transferData(converted);
  target.setName(name);
}

void TranslatingAttributeSetDecorator::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  vHandle<Attribute> capi = myCreateAttributeToBeRead(attribute);
  m_decoratedSet->read(*capi, first, last);
  myConvertAndTransferReadData(attribute, *capi);
}

void TranslatingAttributeSetDecorator::read(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  vHandle<Attribute> capi = myCreateAttributeToBeRead(attribute);
  m_decoratedSet->read(*capi, instances);
  myConvertAndTransferReadData(attribute, *capi);
}

void TranslatingAttributeSetDecorator::read(Attribute& attribute, Attribute const& groups, unsigned int firstGroup,
                                            unsigned int lastGroup) const {
  Attribute capiGroups = myConvertGroup(groups, firstGroup, lastGroup);
  vHandle<Attribute> capi = myCreateAttributeToBeRead(attribute);
  if (groups.getNInstances() == 0)
    m_decoratedSet->read(*capi, capiGroups, firstGroup, lastGroup);
  else
    m_decoratedSet->read(*capi, capiGroups, 1, capiGroups.getNInstances());
  myConvertAndTransferReadData(attribute, *capi);
}

void TranslatingAttributeSetDecorator::read(Attribute& attribute, KeyList const& keys) const {
  KeyList capiKeys;
  myConvertKeyList(capiKeys, keys);
  vHandle<Attribute> capi = myCreateAttributeToBeRead(attribute);
  m_decoratedSet->read(*capi, capiKeys);
  myConvertAndTransferReadData(attribute, *capi);
}

void TranslatingAttributeSetDecorator::getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const {
  vHandle<Attribute> capi = myCreateAttributeToBeRead(attribute);
  m_decoratedSet->getUnique(*capi, order);
  myConvertAndTransferReadData(attribute, *capi);
}

void TranslatingAttributeSetDecorator::getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                                                         vUtlSort::SortOrder::SortOrderType order) const {
  vHandle<Attribute> capi = myCreateAttributeToBeRead(attribute);
  m_decoratedSet->getGroupsAndSizes(*capi, sizes, order);
  myConvertAndTransferReadData(attribute, *capi);
}

void TranslatingAttributeSetDecorator::myConvertKeyList(KeyList& target, KeyList const& source) const {
  AttributeTranslationTable& table = myTranslationTable();
  // Copies of an attribute carry no values: they are moved by hand.
  std::list<Attribute> converted;
  for (Attribute const& key : source) {
    Attribute copy;
    copy.copyData(key);
    Attribute capi = table.convertToCapi(copy);
    converted.emplace_back();
    converted.back().transferData(capi);
  }
  // Keys are added as definitions, and a list that grows copies them as
  // such: the values go in once all are there.
  for (Attribute const& key : converted) target.addKey(key);
  for (Attribute const& key : converted) target.findKey(key)->copyData(key);
}

Attribute TranslatingAttributeSetDecorator::myConvertGroup(Attribute const& groups, unsigned int firstGroup,
                                                           unsigned int lastGroup) const {
  // A selector without values names the groups by number: only its name
  // and type cross over.
  if (groups.getNInstances() == 0) return myTranslationTable().convertToCapi(groups);
  if (lastGroup == 0) lastGroup = groups.getNInstances();
  Attribute part(groups.getName(), groups.getClass(), groups.getDataType(), groups.getLength(), groups.getSampleRate(),
                 groups.getFirstTime());
  unsigned int count = lastGroup >= firstGroup && firstGroup > 0 ? lastGroup - firstGroup + 1 : 0;
  if (count > 0) part.copyData(count, groups.getPointer(firstGroup));
  return myTranslationTable().convertToCapi(part);
}

// --- keys and creation -------------------------------------------------------------------------

void TranslatingAttributeSetDecorator::getKeyList(KeyList& keys) const {
  KeyList capi;
  m_decoratedSet->getKeyList(capi);
  AttributeTranslationTable& table = myTranslationTable();
  keys.clear();
  for (Attribute const& key : capi) {
    Attribute copy(key);
    keys.addKey(table.convertToDorn(copy));
  }
}

KeyList TranslatingAttributeSetDecorator::getKeyList() const {
  KeyList keys;
  getKeyList(keys);
  return keys;
}

void TranslatingAttributeSetDecorator::create(vLCString const& name, vLCString const& className,
                                              vLCString const& subClass, KeyList const& keys,
                                              StoreCreationOptions const* options) {
  AttributeTranslationTable& table = myTranslationTable();
  KeyList capi;
  for (Attribute const& key : keys) capi.addKey(table.convertToCapi(key));
  AttributeSetDecorator::create(name, className, subClass, capi, options);
}

void TranslatingAttributeSetDecorator::create(FullStoreName const& name, vLCString const& className,
                                              vLCString const& subClass, KeyList const& keys,
                                              StoreCreationOptions const* options) {
  create(name.getStoreName(), className, subClass, keys, options);
}

Attribute TranslatingAttributeSetDecorator::myCreateAttributeToBeAdded(Attribute const& attribute) const {
  return myTranslationTable().convertToCapi(attribute);
}

void TranslatingAttributeSetDecorator::addAttribute(Attribute const& attribute) {
  m_decoratedSet->addAttribute(myCreateAttributeToBeAdded(attribute));
  if (!m_clientAttributes.empty()) {
    m_clientAttributes.push_back(attribute);
    m_lookup[attribute.getName()] = &m_clientAttributes.back();
  }
}

void TranslatingAttributeSetDecorator::setAttributeClass(vUCString const& name, vUCString const& className) {
  vHandle<Attribute> capi = myCreateAttributeToBeRead(getAttribute(name));
  m_decoratedSet->setAttributeClass(capi->getName(), className);
  // The client's list, built before, follows.
  auto it = m_lookup.find(name);
  if (it != m_lookup.end()) it->second->setClass(className);
}

// --- writing ------------------------------------------------------------------------------------

TranslatingAttributeSetDecorator::WriteRecord const& TranslatingAttributeSetDecorator::myGetAttributeData(
    Attribute const& attribute) {
  auto it = m_writeMap.find(attribute.getNameID());
  if (it != m_writeMap.end()) return it->second;
  AttributeTranslationTable& table = myTranslationTable();
  WriteRecord record{0, vUCString(), vUCString()};
  if (table.isCapiDataChanged(attribute)) {
    record.state = 1;
  } else if (table.isCapiNameDifferent(attribute)) {
    record.state = 2;
    record.clientName = attribute.getName();
    record.capiName = table.convertToCapi(attribute).getName();
  }
  return m_writeMap.emplace(attribute.getNameID(), record).first->second;
}

template <class Write>
void TranslatingAttributeSetDecorator::myWrite(Attribute const& attribute, Write doWrite) {
  WriteRecord const& record = myGetAttributeData(attribute);
  if (record.state == 1) {
    doWrite(myTranslationTable().convertToCapi(attribute));
  } else if (record.state == 2) {
    // The caller's object, renamed for the time of the write only.
    Attribute& renamed = const_cast<Attribute&>(attribute);
    renamed.setName(record.capiName);
    try {
      doWrite(renamed);
    } catch (...) {
      renamed.setName(record.clientName);
      throw;
    }
    renamed.setName(record.clientName);
  } else {
    doWrite(attribute);
  }
}

void TranslatingAttributeSetDecorator::write(Attribute const& attribute, unsigned int first, unsigned int last) {
  myWrite(attribute, [&](Attribute const& a) { m_decoratedSet->write(a, first, last); });
}

void TranslatingAttributeSetDecorator::write(Attribute const& attribute, std::vector<unsigned int> const& instances) {
  myWrite(attribute, [&](Attribute const& a) { m_decoratedSet->write(a, instances); });
}

void TranslatingAttributeSetDecorator::write(Attribute const& attribute, Attribute const& groups,
                                             unsigned int firstGroup, unsigned int lastGroup) {
  Attribute capiGroups = myConvertGroup(groups, firstGroup, lastGroup);
  bool const byNumber = groups.getNInstances() == 0;
  myWrite(attribute, [&](Attribute const& a) {
    m_decoratedSet->write(a, capiGroups, byNumber ? firstGroup : 1, byNumber ? lastGroup : capiGroups.getNInstances());
  });
}

void TranslatingAttributeSetDecorator::write(Attribute const& attribute, KeyList const& keys) {
  KeyList capiKeys;
  myConvertKeyList(capiKeys, keys);
  myWrite(attribute, [&](Attribute const& a) { m_decoratedSet->write(a, capiKeys); });
}
