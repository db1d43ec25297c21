// The packed form of InMemoryAttributeSet.

#include "filestore/memory/InMemoryAttributeSet.h"
#include "foundation/Message.h"
#include "foundation/Packer.h"
#include "foundation/UtlExcept.h"

void InMemoryAttributeSet::pack(Packer& packer) const {
  packer.packFrame(Magic, Version);
  packer.pack(static_cast<vString const&>(m_name));
  packer.pack(static_cast<vString const&>(m_class));
  packer.pack(static_cast<vString const&>(m_subClass));
  packProperties(packer);
  packer.pack(m_keys != nullptr ? *m_keys : KeyList());
  std::list<Attribute> const attributes = m_buffer->getAttributeList();
  packer.pack(static_cast<int>(attributes.size()));
  packer.pack(m_buffer->getNInstances());
  for (Attribute const& definition : attributes) packer.pack(m_buffer->readAttributeAndData(definition.getNameID()));
  packer.endFrame();
}

void InMemoryAttributeSet::unpack(Packer& packer) {
  clearProperties();
  delete m_keys;
  m_keys = new KeyList;
  m_buffer = vHandle<AttributeSetBuffer>(new AttributeSetBuffer);
  setIsOpen();
  myDataChanged();

  short magic = 0;
  short version = 0;
  packer.unpackFrame(magic, version);
  if (magic != Magic)
    throw UtlExcept("Bad magic value, not an InMemoryAttributeSet.", "InMemoryAttributeSet::unpack()", __LINE__,
                    "InMemoryAttributeSet");
  vString text;
  packer.unpack(text);
  m_name = text.c_str();
  packer.unpack(text);
  m_class = text.c_str();
  packer.unpack(text);
  m_subClass = text.c_str();
  unpackProperties(packer);
  packer.unpack(*m_keys);
  int nAttributes = 0;
  unsigned int nInstances = 0;
  packer.unpack(nAttributes);
  packer.unpack(nInstances);
  m_buffer->setNInstances(nInstances);
  for (int k = 0; k < nAttributes; ++k) {
    Attribute attribute;
    packer.unpack(attribute);
    // The definition first, then the values taken over without a copy.
    doAddAttribute(Attribute(attribute));
    if (attribute.getNInstances() != nInstances)
      Message::fatal("InMemoryAttributeSet::unpack()", 0,
                     "Attribute %s of AttributeSet '%s' holds %u instances, the AttributeSet %u.",
                     attribute.getName().c_str(), m_name.c_str(), attribute.getNInstances(), nInstances);
    updateAttributeAndData(attribute.getNameID()).transferData(attribute);
  }
  if (version == Version)
    packer.endFrame();
  else
    packer.skipRestOfFrame();
}
