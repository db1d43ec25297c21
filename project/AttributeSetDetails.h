#ifndef PROJECT_ATTRIBUTESETDETAILS_H
#define PROJECT_ATTRIBUTESETDETAILS_H

// AttributeSetDetails: one attribute set of a store in a project listing,
// its name and the number of its instances.
//
// Packed form: frame 8765, version 1, the name and the count as a uint32.
// A frame of a later version carries the count as an int64; unpack reads
// both.

#include "foundation/Packable.h"
#include "foundation/vLCString.h"

class AttributeSetDetails : public Packable {
 public:
  static const short Magic = 8765;
  static const short Version = 1;

  AttributeSetDetails() : m_nInstances(0) {}
  AttributeSetDetails(vLCString const& name, unsigned int nInstances) : m_name(name), m_nInstances(nInstances) {}
  AttributeSetDetails(AttributeSetDetails const& other) = default;
  AttributeSetDetails& operator=(AttributeSetDetails const& other) = default;
  ~AttributeSetDetails() override;

  vLCString const& getName() const { return m_name; }
  unsigned int getNInstances() const { return m_nInstances; }
  void setName(vLCString const& name) { m_name = name; }
  void setNInstances(unsigned int n) { m_nInstances = n; }

  bool operator==(AttributeSetDetails const& other) const {
    return m_name == other.m_name && m_nInstances == other.m_nInstances;
  }
  bool operator!=(AttributeSetDetails const& other) const { return !(*this == other); }

  void pack(Packer& packer) const override;
  void unpack(Packer& packer) override;

 protected:
  vLCString m_name;
  unsigned int m_nInstances;
};

#endif
