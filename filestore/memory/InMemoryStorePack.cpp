// The packed form of InMemoryStore: the store's names and all its sets.

#include "filestore/memory/InMemoryStore.h"
#include "foundation/Packer.h"
#include "foundation/UtlExcept.h"

void InMemoryStore::pack(Packer& packer) const {
  packer.packFrame(Magic, Version);
  packer.pack(static_cast<vString const&>(getName()));
  // The store's own class, whichever set is active.
  myMustBeOpen("InMemoryStore::pack");
  packer.pack(static_cast<vString const&>(m_primary->getClass()));
  packer.pack(static_cast<vString const&>(m_primary->getSubClass()));
  packer.pack(static_cast<int>(m_sets.size()));
  for (vHandle<AttributeSet> const& set : m_sets) packer.pack(*vHandle_cast<InMemoryAttributeSet>(set));
  packer.endFrame();
}

void InMemoryStore::unpack(Packer& packer) {
  short magic = 0;
  short version = 0;
  packer.unpackFrame(magic, version);
  if (magic != Magic)
    throw UtlExcept("Bad magic value, not an InMemoryStore.", "InMemoryStore::unpack()", __LINE__, "InMemoryStore");
  vString name;
  vString className;
  vString subClass;
  packer.unpack(name);
  packer.unpack(className);
  packer.unpack(subClass);
  create(vLCString(name.c_str()), vLCString(className.c_str()), vLCString(subClass.c_str()), KeyList(), nullptr);
  int nSets = 0;
  packer.unpack(nSets);
  if (nSets > 0) packer.unpack(*vHandle_cast<InMemoryAttributeSet>(m_sets.front()));
  for (int k = 1; k < nSets; ++k) {
    vHandle<InMemoryAttributeSet> set = vHandle_cast<InMemoryAttributeSet>(doCreateAttributeSet(m_project));
    packer.unpack(*set);
    set->close();
  }
  myCopyPrimeSetProperties();
  if (version == Version)
    packer.endFrame();
  else
    packer.skipRestOfFrame();
}
