#include "decorator/AttributeMappingLocalData.h"

#include <algorithm>

#include "foundation/Message.h"
#include "project/Store.h"

AttributeMappingDecorator::LocalData::LocalData(vHandle<Store> store, Store& view, bool writeMode)
    : m_store(store), m_view(view), m_writeMode(writeMode) {}

void AttributeMappingDecorator::LocalData::addVariable(vHandle<ParserInfo> const& parser) {
  vUCString const& name = parser->getTarget().getName();
  if (m_parsers.count(name) || m_existing.count(Attribute::getNameID(name)))
    Message::fatal("AttributeMappingDecorator::LocalData::addVariable", 0, "The attribute '%s' is already defined!",
                   name.c_str());
  m_parsers[name] = parser;
  m_order.push_back(name);
}

void AttributeMappingDecorator::LocalData::addExistingAttributes(std::vector<vUCString> const& names, bool preserve) {
  for (vUCString const& name : names) {
    if (m_parsers.count(name)) {
      if (preserve)
        Message::fatal("AttributeMappingDecorator::LocalData::addExistingAttributes", 0,
                       "Trying to repserve the attribute '%s' however it has already been declared as an expression!",
                       name.c_str());
      Message::fatal("AttributeMappingDecorator::LocalData::addVariable", 0, "The attribute '%s' is already defined!",
                     name.c_str());
    }
    if (m_existing.count(Attribute::getNameID(name))) continue;
    m_existing[Attribute::getNameID(name)] = m_store->getAttribute(name);
    m_order.push_back(name);
  }
}

void AttributeMappingDecorator::LocalData::buildNewAttributeLists() {
  m_attributes.clear();
  for (vUCString const& name : m_order) {
    auto parser = m_parsers.find(name);
    m_attributes.push_back(parser != m_parsers.end() ? parser->second->getTarget()
                                                     : m_existing.at(Attribute::getNameID(name)));
  }
}

Attribute AttributeMappingDecorator::LocalData::getAttribute(vUCString const& name) const {
  for (Attribute const& attribute : m_attributes)
    if (attribute.getName() == name) return attribute;
  Message::fatal("AttributeMappingDecorator::LocalData::getAttribute(name)", 0,
                 "The attribute '%s' was not found in the store!", name.c_str());
}

bool AttributeMappingDecorator::LocalData::hasAttribute(vUCString const& name) const {
  return std::any_of(m_attributes.begin(), m_attributes.end(),
                     [&](Attribute const& attribute) { return attribute.getName() == name; });
}

// The keys named by "!KEYLIST"; without it, those keys of the store below
// that the view shows.
KeyList AttributeMappingDecorator::LocalData::getKeyList() const {
  KeyList keys;
  if (m_keyNames.empty()) {
    for (Attribute const& key : m_store->getKeyList())
      if (hasAttribute(key.getName())) keys.addKey(getAttribute(key.getName()));
    return keys;
  }
  for (vUCString const& name : m_keyNames) {
    if (!hasAttribute(name))
      Message::fatal("AttributeMappingDecorator::LocalData::getKeyList", 0,
                     "The definition for the key attribute %s has not been declared!", name.c_str());
    keys.addKey(getAttribute(name));
  }
  return keys;
}

AttributeMappingDecorator::ParserInfo const& AttributeMappingDecorator::LocalData::myParser(
    Attribute const& attribute) const {
  auto it = m_parsers.find(attribute.getName());
  if (it == m_parsers.end())
    Message::fatal("AttributeMappingDecorator::LocalData::read", 0, "This attribute does not exist in the parser list!");
  return *it->second;
}

void AttributeMappingDecorator::LocalData::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  if (attribute.isVector() || m_existing.count(attribute.getNameID())) {
    m_store->read(attribute, first, last);
    return;
  }
  myParser(attribute).read(attribute, first, last);
}

void AttributeMappingDecorator::LocalData::read(Attribute& attribute,
                                                std::vector<unsigned int> const& instances) const {
  if (attribute.isVector() || m_existing.count(attribute.getNameID())) {
    m_store->read(attribute, instances);
    return;
  }
  myParser(attribute).read(attribute, instances);
}
