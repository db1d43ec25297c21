#include "project/AttributeSetDetails.h"

#include "foundation/Message.h"
#include "foundation/Packer.h"

AttributeSetDetails::~AttributeSetDetails() {}

void AttributeSetDetails::pack(Packer& packer) const {
  packer.packFrame(Magic, Version);
  packer.pack(m_name);
  packer.pack(m_nInstances);
  packer.endFrame();
}

void AttributeSetDetails::unpack(Packer& packer) {
  static char const* const kLabel = "AttributeSetDetails::unpack";
  short magic = 0;
  short version = 0;
  packer.unpackFrame(magic, version);
  if (magic != Magic)
    Message::fatal(kLabel, 0, "Wrong magic number %d, expected %d.", magic, static_cast<int>(Magic));
  vString name;
  packer.unpack(name);
  m_name = name;
  if (version <= 1) {
    packer.unpack(m_nInstances);
    packer.endFrame();
    return;
  }
  // Later writers widened the count.
  long long count = 0;
  packer.unpack(count);
  if (count < 0 || count > 0xFFFFFFFFLL)
    Message::fatal(kLabel, 0, "Instance count %lld of attribute set '%s' is out of range.", count, m_name.c_str());
  m_nInstances = static_cast<unsigned int>(count);
  packer.skipFrame();
}
