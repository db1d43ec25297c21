#ifndef ATTRIBUTE_PROPERTYLIST_H
#define ATTRIBUTE_PROPERTYLIST_H

// PropertyList: an ordered set of properties, one per name (names fold to
// upper case, so two names that differ only in case are the same name).
// Looking a name up builds no Property.

#include <set>

#include "attribute/Property.h"
#include "foundation/Packable.h"
#include "foundation/vUCString.h"

class Packer;

// Orders properties by name and lets a bare name be looked up.
struct PropertyNameLess {
  typedef void is_transparent;
  bool operator()(Property const& a, Property const& b) const { return a.getName() < b.getName(); }
  bool operator()(Property const& a, vUCString const& b) const { return a.getName() < b; }
  bool operator()(vUCString const& a, Property const& b) const { return a < b.getName(); }
};

class PropertyList : public Packable {
 public:
  typedef std::set<Property, PropertyNameLess> PropertySet;
  typedef PropertySet::iterator iterator;
  typedef PropertySet::const_iterator const_iterator;

  static constexpr short Magic = 5629;
  static constexpr short Version = 1;

  PropertyList();
  PropertyList(PropertyList const& other);
  ~PropertyList() override;
  PropertyList& operator=(PropertyList const& other);

  // Fails for an uninitialised property and for a name already present; the
  // list is then unchanged.
  void addProperty(Property const& property);
  void addProperties(PropertyList const& other);
  void addOrReplaceProperty(Property const& property);
  void addOrReplaceProperties(PropertyList const& other);
  void removeProperty(vUCString const& name);
  void removeProperty(iterator position);
  bool hasProperty(vUCString const& name) const;
  bool hasProperty(Property const& property) const;
  iterator findProperty(vUCString const& name);
  const_iterator findProperty(vUCString const& name) const;
  iterator findProperty(Property const& property);
  const_iterator findProperty(Property const& property) const;
  iterator beginProperty() { return m_properties.begin(); }
  const_iterator beginProperty() const { return m_properties.begin(); }
  iterator endProperty() { return m_properties.end(); }
  const_iterator endProperty() const { return m_properties.end(); }
  unsigned int getNProperties() const { return static_cast<unsigned int>(m_properties.size()); }
  void clearProperties() { m_properties.clear(); }

  void pack(Packer& packer) const override;
  void unpack(Packer& packer) override;

 private:
  PropertySet m_properties;
};

#endif
