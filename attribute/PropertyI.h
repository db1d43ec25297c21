#ifndef ATTRIBUTE_PROPERTYI_H
#define ATTRIBUTE_PROPERTYI_H

// PropertyI: the property interface of every attribute set. The list is
// made on the first addition only, since most sets never carry a property:
// until then the interface holds an empty handle and nothing else. Copies
// and assignments share the list rather than copy it.

#include "attribute/PropertyList.h"
#include "foundation/vHandle.h"

class Packer;

class PropertyI {
 public:
  typedef PropertyList::iterator iterator;
  typedef PropertyList::const_iterator const_iterator;

  PropertyI();
  // Shares other's list.
  PropertyI(PropertyI const& other);
  PropertyI& operator=(PropertyI const& other);
  virtual ~PropertyI();

  virtual void addProperty(Property const& property);
  // Copies of other's properties join this list.
  virtual void addProperties(PropertyI const& other);
  virtual void removeProperty(vUCString const& name);
  virtual void removeProperty(iterator position);
  virtual iterator beginProperty();
  virtual const_iterator beginProperty() const;
  virtual iterator endProperty();
  virtual const_iterator endProperty() const;
  virtual iterator findProperty(Property const& property);
  virtual const_iterator findProperty(Property const& property) const;
  virtual iterator findProperty(vUCString const& name);
  virtual const_iterator findProperty(vUCString const& name) const;
  virtual void clearProperties();
  virtual unsigned int getNProperties() const;
  virtual bool hasProperty(Property const& property) const;
  virtual bool hasProperty(vUCString const& name) const;
  // True once a list exists.
  virtual bool isSet() const;
  // Shares other's list.
  virtual void setPropertyList(PropertyI const& other);
  virtual void packProperties(Packer& packer) const;
  virtual void unpackProperties(Packer& packer);

 protected:
  PropertyList& myBeSet() const;

 private:
  mutable vHandle<PropertyList> m_propertyList;
};

#endif
