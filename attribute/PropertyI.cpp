#include "attribute/PropertyI.h"

#include "foundation/UtlExcept.h"

PropertyI::PropertyI() {}

PropertyI::PropertyI(PropertyI const& other) : m_propertyList(other.m_propertyList) {}

PropertyI& PropertyI::operator=(PropertyI const& other) {
  m_propertyList = other.m_propertyList;
  return *this;
}

PropertyI::~PropertyI() {}

PropertyList& PropertyI::myBeSet() const {
  if (m_propertyList.isEmpty())
    m_propertyList = vHandle<PropertyList>(new PropertyList, vHandleEnum::DeleteObject, vHandleEnum::SingleThreaded);
  return *m_propertyList.get();
}

void PropertyI::addProperty(Property const& property) { myBeSet().addProperty(property); }

void PropertyI::addProperties(PropertyI const& other) {
  if (!other.isSet()) return;
  myBeSet().addProperties(*other.m_propertyList.get());
}

void PropertyI::removeProperty(vUCString const& name) {
  if (!isSet()) throw UtlExcept("No Property List has been set yet.", "PropertyI::removeProperty", __LINE__, "PropertyI");
  m_propertyList->removeProperty(name);
}

void PropertyI::removeProperty(iterator position) {
  if (!isSet()) throw UtlExcept("No Property List has been set yet.", "PropertyI::removeProperty", __LINE__, "PropertyI");
  m_propertyList->removeProperty(position);
}

PropertyI::iterator PropertyI::beginProperty() { return myBeSet().beginProperty(); }

PropertyI::const_iterator PropertyI::beginProperty() const {
  return static_cast<PropertyList const&>(myBeSet()).beginProperty();
}

PropertyI::iterator PropertyI::endProperty() { return myBeSet().endProperty(); }

PropertyI::const_iterator PropertyI::endProperty() const {
  return static_cast<PropertyList const&>(myBeSet()).endProperty();
}

PropertyI::iterator PropertyI::findProperty(Property const& property) { return myBeSet().findProperty(property); }

PropertyI::const_iterator PropertyI::findProperty(Property const& property) const {
  return static_cast<PropertyList const&>(myBeSet()).findProperty(property);
}

PropertyI::iterator PropertyI::findProperty(vUCString const& name) { return myBeSet().findProperty(name); }

PropertyI::const_iterator PropertyI::findProperty(vUCString const& name) const {
  return static_cast<PropertyList const&>(myBeSet()).findProperty(name);
}

void PropertyI::clearProperties() {
  if (isSet()) m_propertyList->clearProperties();
}

unsigned int PropertyI::getNProperties() const { return isSet() ? m_propertyList->getNProperties() : 0; }

bool PropertyI::hasProperty(Property const& property) const {
  return isSet() && m_propertyList->hasProperty(property);
}

bool PropertyI::hasProperty(vUCString const& name) const { return isSet() && m_propertyList->hasProperty(name); }

bool PropertyI::isSet() const { return !m_propertyList.isEmpty(); }

void PropertyI::setPropertyList(PropertyI const& other) { m_propertyList = other.m_propertyList; }

void PropertyI::packProperties(Packer& packer) const { myBeSet().pack(packer); }

void PropertyI::unpackProperties(Packer& packer) { myBeSet().unpack(packer); }
