#ifndef DATABASE_ZON_ZONSTOREATTRIBUTESETINFO_H
#define DATABASE_ZON_ZONSTOREATTRIBUTESETINFO_H

// ZonStoreAttributeSetInfo: what an adapter knows of the attribute set it
// serves: the number of instances and the name details of its dataset.

#include "foundation/vHandle.h"
#include "project/NameDetails.h"

class ZonStoreAttributeSetInfo {
 public:
  ZonStoreAttributeSetInfo() : m_nInstances(0) {}

  unsigned int getNInstances() const { return m_nInstances; }
  void setNInstances(unsigned int n) { m_nInstances = n; }
  vHandle<NameDetails> getNameDetails() const { return m_nameDetails; }
  void setNameDetails(vHandle<NameDetails> details) { m_nameDetails = details; }

 private:
  unsigned int m_nInstances;
  vHandle<NameDetails> m_nameDetails;
};

#endif
