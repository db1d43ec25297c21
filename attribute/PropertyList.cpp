#include "attribute/PropertyList.h"

#include <iterator>

#include "foundation/Message.h"
#include "foundation/Packer.h"
#include "foundation/UtlExcept.h"

PropertyList::PropertyList() : Packable() {}

PropertyList::PropertyList(PropertyList const& other) : Packable(), m_properties(other.m_properties) {}

PropertyList::~PropertyList() {}

PropertyList& PropertyList::operator=(PropertyList const& other) {
  if (this != &other) m_properties = other.m_properties;
  return *this;
}

void PropertyList::addProperty(Property const& property) {
  if (!property.isInitialized())
    Message::fatal("PropertyList::addProperty()", 0, "Error trying to add an uninitialized property");
  if (m_properties.find(property.getName()) != m_properties.end()) {
    vString reason("Error trying to add property ");
    reason += property.getName();
    reason += ". Already exists.";
    throw UtlExcept(reason, vString("PropertyList::addProperty()"), __LINE__, "PropertyList");
  }
  m_properties.insert(property);
}

void PropertyList::addProperties(PropertyList const& other) {
  if (&other == this) {
    // Every name is already here: the first one fails as it would from a copy.
    PropertyList const copy(other);
    addProperties(copy);
    return;
  }
  for (const_iterator i = other.beginProperty(); i != other.endProperty(); ++i) addProperty(*i);
}

void PropertyList::addOrReplaceProperty(Property const& property) {
  if (!property.isInitialized())
    Message::fatal("PropertyList::addProperty()", 0, "Error trying to add an uninitialized property");
  Property const copy(property);  // property may live in this list
  iterator i = m_properties.find(copy.getName());
  if (i != m_properties.end()) m_properties.erase(i);
  m_properties.insert(copy);
}

void PropertyList::addOrReplaceProperties(PropertyList const& other) {
  if (&other == this) return;
  for (const_iterator i = other.beginProperty(); i != other.endProperty(); ++i) addOrReplaceProperty(*i);
}

void PropertyList::removeProperty(vUCString const& name) {
  iterator i = m_properties.find(name);
  if (i == m_properties.end())
    Message::fatal("PropertyList::removeProperty()", 0, "Error trying to remove a Property that doesn't exist");
  m_properties.erase(i);
}

void PropertyList::removeProperty(iterator position) {
  if (position == m_properties.end())
    Message::fatal("PropertyList::removeProperty()", 0, "Error trying to remove a Property that doesn't exist");
  m_properties.erase(position);
}

bool PropertyList::hasProperty(vUCString const& name) const { return m_properties.find(name) != m_properties.end(); }

bool PropertyList::hasProperty(Property const& property) const { return hasProperty(property.getName()); }

PropertyList::iterator PropertyList::findProperty(vUCString const& name) { return m_properties.find(name); }

PropertyList::const_iterator PropertyList::findProperty(vUCString const& name) const {
  return m_properties.find(name);
}

PropertyList::iterator PropertyList::findProperty(Property const& property) {
  return m_properties.find(property.getName());
}

PropertyList::const_iterator PropertyList::findProperty(Property const& property) const {
  return m_properties.find(property.getName());
}

void PropertyList::pack(Packer& packer) const {
  packer.packFrame(Magic, Version);
  ::pack(packer, m_properties.begin(), m_properties.end());
  packer.endFrame();
}

void PropertyList::unpack(Packer& packer) {
  m_properties.clear();
  short magic = 0;
  short version = 0;
  packer.unpackFrame(magic, version);
  if (magic != Magic) Message::fatal("PropertyList::unpack()", 0, "Bad magic value, not a Property.");
  if (version != Version) Message::fatal("PropertyList::unpack()", 0, "Bad Property Version, not supported.");
  ::unpack(packer, std::inserter(m_properties, m_properties.end()), Property(vUCString("temp"), 0));
  packer.endFrame();
}
