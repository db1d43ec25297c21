#include "filestore/disk/SingleSetDiskStore.h"

#include <algorithm>
#include <string>

#include "foundation/Message.h"
#include "project/AttributeMatch.h"
#include "project/Project.h"

SingleSetDiskStore::SingleSetDiskStore(vHandle<Project> const& project, char const* storeName, char const* notOpen)
    : DiskStore(project), m_isOpen(false), m_storeName(storeName), m_notOpen(notOpen) {}

SingleSetDiskStore::~SingleSetDiskStore() {}

std::string SingleSetDiskStore::myLabel(char const* operation) const {
  return std::string(m_storeName) + "::" + operation;
}

void SingleSetDiskStore::myNotOpen(char const* label) const { Message::fatal(label, 0, "%s", m_notOpen); }

vLCString SingleSetDiskStore::getName() const {
  if (!m_isOpen) myNotOpen(myLabel("getName").c_str());
  return vLCString(m_fileName.getRoot());
}

// --- the attributes ------------------------------------------------------------------------

Attribute SingleSetDiskStore::getAttribute(vUCString const& name) const {
  if (!m_isOpen) myNotOpen(myLabel("getAttribute").c_str());
  Attribute const* const definition = myFindDefinition(name);
  if (definition == nullptr) myDefinition(myLabel("getAttribute").c_str(), name);
  return *definition;
}

bool SingleSetDiskStore::hasAttribute(vUCString const& name) const { return m_attributeMap.count(name) > 0; }

std::list<Attribute> SingleSetDiskStore::getAttributeList() const { return m_attributes; }

void SingleSetDiskStore::getAttributeList(std::list<Attribute>& attributes) const { attributes = m_attributes; }

std::list<Attribute> SingleSetDiskStore::getAttributeList(vUCString const& text,
                                                          AttributeMatch::AttributeMatchType match) const {
  std::list<Attribute> list;
  for (Attribute const& attribute : m_attributes)
    if (AttributeMatch::matches(attribute, text, match)) list.push_back(attribute);
  return list;
}

unsigned int SingleSetDiskStore::getNAttributes() const { return static_cast<unsigned int>(m_attributes.size()); }

KeyList SingleSetDiskStore::getKeyList() const { return m_keyList; }

void SingleSetDiskStore::addAttribute(Attribute const&) {
  Message::fatal(myLabel("addAttribute").c_str(), 0, "Function not implemented in derived class -- needs code.");
}

void SingleSetDiskStore::mySetAttributes(std::list<Attribute> const& attributes) {
  myClearAttributes();
  for (Attribute const& attribute : attributes) myAddDefinition(attribute);
}

void SingleSetDiskStore::myAddDefinition(Attribute const& definition) {
  m_attributes.push_back(definition);
  // A name defined twice reads as its last definition.
  m_attributeMap[definition.getName()] = definition;
}

void SingleSetDiskStore::myClearAttributes() {
  m_attributes.clear();
  m_attributeMap.clear();
}

Attribute const* SingleSetDiskStore::myFindDefinition(vUCString const& name) const {
  auto const found = m_attributeMap.find(name);
  return found == m_attributeMap.end() ? nullptr : &found->second;
}

Attribute const& SingleSetDiskStore::myDefinition(char const* label, vUCString const& name) const {
  Attribute const* const definition = myFindDefinition(name);
  if (definition == nullptr)
    Message::fatal(label, 0, "Attribute %s does not exist in file %s.", name.c_str(), getName().c_str());
  return *definition;
}

// --- the one set --------------------------------------------------------------------------

vHandle<Store::AttributeSetList> SingleSetDiskStore::getAttributeSetList() const {
  vHandle<AttributeSetList> names(new AttributeSetList);
  getAttributeSetList(*names);
  return names;
}

void SingleSetDiskStore::getAttributeSetList(AttributeSetList& names) const {
  names.clear();
  names.push_back(getName());
}

vLCString SingleSetDiskStore::getAttributeSetName() const { return getName(); }

void SingleSetDiskStore::openAttributeSet(vLCString const& name) {
  if (name.isBlank() || name == getName()) return;
  myRefuseAttributeSet(name);
}

void SingleSetDiskStore::myRefuseAttributeSet(vLCString const& name) const {
  Message::fatal(myLabel("openAttributeSet").c_str(), 0, "File '%s' does not have AttributeSet named '%s'.",
                 m_fileName.c_str(), name.c_str());
}

int SingleSetDiskStore::getVersion() const { return 1; }

// --- checks of the reads ------------------------------------------------------------------

unsigned int SingleSetDiskStore::myCheckRange(char const* label, unsigned int first, unsigned int last) const {
  long long const n = getNInstances();
  if (last == 0) last = static_cast<unsigned int>(n);
  if (first < 1) Message::fatal(label, 0, "first instance must be >0, yours was %lld", static_cast<long long>(first));
  if (first > last)
    Message::fatal(label, 0, "first instance %lld must be <= last instance %lld.", static_cast<long long>(first),
                   static_cast<long long>(last));
  if (last > n)
    Message::fatal(label, 0, "last instance %lld must be <= number of instances %lld.", static_cast<long long>(last),
                   n);
  return last;
}

void SingleSetDiskStore::myCheckList(char const* label, vUCString const& name,
                                     std::vector<unsigned int> const& instances) const {
  long long const n = getNInstances();
  unsigned int largest = 0;
  for (unsigned int i : instances) {
    if (i == 0)
      Message::fatal(label, 0, "Attribute '%s': the vInstanceList has a zero in it, coont read from instance 0.",
                     name.c_str());
    largest = std::max(largest, i);
  }
  if (largest > n)
    Message::fatal(label, 0, "Instance numbers must be <%lld, list for '%s' contained %lld.", n + 1, name.c_str(),
                   static_cast<long long>(largest));
}

bool SingleSetDiskStore::isRun(std::vector<unsigned int> const& instances) {
  for (std::size_t k = 1; k < instances.size(); ++k)
    if (instances[k] != instances[k - 1] + 1) return false;
  return true;
}
