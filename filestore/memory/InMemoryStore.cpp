#include "filestore/memory/InMemoryStore.h"

#include "foundation/Message.h"
#include "project/Project.h"

InMemoryStore::InMemoryStore(vHandle<Project> const& project) : StoreImp(project) {}

InMemoryStore::InMemoryStore(InMemoryStore const& other) : StoreImp(other), Packable(other) {
  // The StoreImp copy shares other's sets: each is cloned here, and the
  // primary and active handles follow their clones.
  vHandle<AttributeSet> primary;
  vHandle<AttributeSet> active;
  for (vHandle<AttributeSet> const& set : other.m_sets) {
    vHandle<AttributeSet> clone = doCreateAttributeSetClone(*set);
    if (set == other.m_primary) primary = clone;
    if (set == other.m_active) active = clone;
  }
  m_primary = primary;
  m_active = active;
  // The store's properties are the active set's own list.
  PropertyI::operator=(PropertyI());
  if (!m_active.isEmpty()) mySetActiveProperties();
}

InMemoryStore::~InMemoryStore() {}

AttributeSet const& InMemoryStore::asAttributeSet(InMemoryStore const& store) { return store; }

// --- sets ---------------------------------------------------------------------------------

void InMemoryStore::doCreate() { m_sets.clear(); }

vHandle<AttributeSet> InMemoryStore::doCreateAttributeSet(vHandle<Project> const& project) const {
  vHandle<AttributeSet> set(new InMemoryAttributeSet(project));
  m_sets.push_back(set);
  return set;
}

vHandle<AttributeSet> InMemoryStore::doCreateAttributeSetClone(AttributeSet const& set) {
  InMemoryAttributeSet const& original = dynamic_cast<InMemoryAttributeSet const&>(set);
  vHandle<AttributeSet> clone(new InMemoryAttributeSet(original));
  m_sets.push_back(clone);
  return clone;
}

vHandle<AttributeSet> InMemoryStore::doFindAttributeSet(vLCString const& name) {
  vLCString const wanted = myConstructSetName(name);
  for (vHandle<AttributeSet> const& set : m_sets) {
    bool const wasOpen = set->isOpen();
    // The name given is dropped: opening an in-memory set changes nothing.
    if (!wasOpen) set->open("thisWillBeIgnored", 0, "", "", nullptr);
    vLCString const found = set->getName();
    if (!wasOpen) set->close();
    if (found == wanted) return set;
  }
  Message::fatal("InMemoryStore::doFindAttributeSet", 0, "AttributeSet %s not found in Store %s", name.c_str(),
                 m_name.c_str());
}

InMemoryAttributeSet& InMemoryStore::myActive() const {
  myInitializeActiveSet();
  return *vHandle_cast<InMemoryAttributeSet>(m_active);
}

// --- the active set's direct operations ------------------------------------------------------------

bool InMemoryStore::loadRangeFromStore(bool replace, vHandle<Store> source, unsigned int first, unsigned int last) {
  vHandle<AttributeSet> set;
  vHandle_cast(set, source);
  return myActive().loadRangeFromStore(replace, set, first, last);
}

void InMemoryStore::deleteInstances(unsigned int n) { myActive().deleteInstances(n); }

bool InMemoryStore::hasAttribute(vUCStringTableData const* const& name) const { return myActive().hasAttribute(name); }

bool InMemoryStore::hasAttribute(vUCString const& name) const { return myActive().hasAttribute(name); }

void InMemoryStore::setClass(vLCString const& className) { myActive().setClass(className); }

void InMemoryStore::setSubClass(vLCString const& subClass) { myActive().setSubClass(subClass); }

void InMemoryStore::setKeyList(KeyList& keys) { myActive().setKeyList(keys); }

void InMemoryStore::keepInstances(std::vector<unsigned int> const& instances) { myActive().keepInstances(instances); }

void InMemoryStore::renameAttribute(vUCString const& oldName, vUCString const& newName) {
  myActive().renameAttribute(oldName, newName);
}

void InMemoryStore::deleteAttribute(vUCString const& name) { myActive().deleteAttribute(name); }

void InMemoryStore::setAttributeAndData(Attribute& attribute) { myActive().setAttributeAndData(attribute); }

Attribute& InMemoryStore::getAttributeAndData(vUCString const& name) { return myActive().getAttributeAndData(name); }

Attribute const& InMemoryStore::getAttributeAndData(vUCString const& name) const {
  return static_cast<InMemoryAttributeSet const&>(myActive()).getAttributeAndData(name);
}

Attribute const& InMemoryStore::readAttributeAndData(vUCString const& name) const {
  return myActive().readAttributeAndData(name);
}

Attribute const& InMemoryStore::readAttributeAndData(vUCStringTableData const* name) const {
  return myActive().readAttributeAndData(name);
}

Attribute& InMemoryStore::updateAttributeAndData(vUCString const& name) {
  return myActive().updateAttributeAndData(name);
}

Attribute& InMemoryStore::updateAttributeAndData(vUCStringTableData const* name) {
  return myActive().updateAttributeAndData(name);
}

vHandle<AttributeSetBuffer> InMemoryStore::getAttributeSetBuffer() { return myActive().getAttributeSetBuffer(); }

vHandle<AttributeSetBuffer> const InMemoryStore::getAttributeSetBuffer() const {
  return static_cast<InMemoryAttributeSet const&>(myActive()).getAttributeSetBuffer();
}
