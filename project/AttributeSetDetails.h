#ifndef PROJECT_ATTRIBUTESETDETAILS_H
#define PROJECT_ATTRIBUTESETDETAILS_H

// AttributeSetDetails: one attribute set of a store in a project listing,
// its name and the number of its instances.

#include "foundation/vLCString.h"

class AttributeSetDetails {
 public:
  AttributeSetDetails() : m_nInstances(0) {}
  AttributeSetDetails(vLCString const& name, unsigned int nInstances) : m_name(name), m_nInstances(nInstances) {}
  virtual ~AttributeSetDetails() {}

  vLCString const& getName() const { return m_name; }
  unsigned int getNInstances() const { return m_nInstances; }
  void setName(vLCString const& name) { m_name = name; }
  void setNInstances(unsigned int n) { m_nInstances = n; }

  bool operator==(AttributeSetDetails const& other) const {
    return m_name == other.m_name && m_nInstances == other.m_nInstances;
  }
  bool operator!=(AttributeSetDetails const& other) const { return !(*this == other); }

 protected:
  vLCString m_name;
  unsigned int m_nInstances;
};

#endif
