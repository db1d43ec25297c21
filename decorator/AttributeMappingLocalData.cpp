#include "decorator/AttributeMappingLocalData.h"

#include <algorithm>

#include "decorator/StoreDecorator.h"
#include "foundation/Message.h"
#include "project/Store.h"
#include "project/StoreFactory.h"

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
    Message::fatal("AttributeMappingDecorator::LocalData::read", 0,
                   "This attribute does not exist in the parser list!");
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

// --- write mode --------------------------------------------------------------------------------

void AttributeMappingDecorator::LocalData::setCreation(StoreDescription const& description,
                                                       vLCString const& attributeSetName, KeyList const& keys,
                                                       StoreCreationOptions const* options) {
  m_description = description;
  m_attributeSetName = attributeSetName;
  m_creationKeys = keys;
  m_options = options;
}

// The class is "trace" and the keys those of the set written from, unless
// the map says otherwise.
void AttributeMappingDecorator::LocalData::createDeferredStore(AttributeSet const& source) {
  StoreDescription description(m_description);
  description.setStoreClass(m_class.isBlank() ? vLCString("trace") : m_class);
  KeyList keys = m_keyNames.empty() ? (m_creationKeys.getNKeys() ? m_creationKeys : source.getKeyList()) : getKeyList();
  vLCString const subClass = m_subClass.isBlank() ? m_attributeSetName : m_subClass;
  vHandle<Store> made = StoreFactory::createStore(description, subClass, keys, m_options);
  for (Attribute const& attribute : m_attributes) {
    if (!made->hasAttribute(attribute.getName())) {
      made->addAttribute(attribute);
    } else if (made->getAttribute(attribute.getName()).getDataType() != attribute.getDataType()) {
      Message::fatal("AttributeMappingDecorator::LocalData::createDeferredStore", 0,
                     "The map datatype for the attribute %s differers from the deifnition in the store!",
                     attribute.getName().c_str());
    }
  }
  m_store = made;
  dynamic_cast<StoreDecorator&>(m_view).setDecoratedStore(made);
  m_created = true;
}

void AttributeMappingDecorator::LocalData::write(AttributeSet const& source,
                                                 std::vector<unsigned int> const& instances) {
  if (!m_created) createDeferredStore(source);
  unsigned int const at = m_store->getNInstances() + 1;
  m_store->addInstances(static_cast<unsigned int>(instances.size()));
  for (vUCString const& name : m_order) m_parsers.at(name)->write(source, instances, *m_store, at);
}
