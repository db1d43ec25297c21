#include "project/StoreOpenOptions.h"

#include "foundation/Message.h"
#include "foundation/Packer.h"

StoreOpenOptions::StoreOpenOptions()
    : m_kelpCrossDomainAttributes(false),
      m_dornOnlyDealWithOneAttributeSet(false),
      m_sparseReadOfAttributes(false),
      m_autoDecompress(true),
      m_restoreMute(false),
      m_autoSpecifyCSTFiles(false) {}

StoreOpenOptions::~StoreOpenOptions() {}

bool StoreOpenOptions::operator==(StoreOpenOptions const& other) const {
  return m_kelpCrossDomainAttributes == other.m_kelpCrossDomainAttributes &&
         m_dornOnlyDealWithOneAttributeSet == other.m_dornOnlyDealWithOneAttributeSet &&
         m_sparseReadOfAttributes == other.m_sparseReadOfAttributes && m_autoDecompress == other.m_autoDecompress &&
         m_restoreMute == other.m_restoreMute && m_autoSpecifyCSTFiles == other.m_autoSpecifyCSTFiles;
}

void StoreOpenOptions::pack(Packer& packer) const {
  packer.packFrame(Magic, Version);
  packer.packBool(m_kelpCrossDomainAttributes);
  packer.packBool(m_dornOnlyDealWithOneAttributeSet);
  packer.packBool(m_sparseReadOfAttributes);
  packer.packBool(m_autoDecompress);
  packer.packBool(m_restoreMute);
  packer.packBool(m_autoSpecifyCSTFiles);
  packer.endFrame();
}

void StoreOpenOptions::unpack(Packer& packer) {
  short magic = 0;
  short version = 0;
  packer.unpackFrame(magic, version);
  if (magic != Magic)
    Message::fatal("StoreOpenOptions::unpack", 0, "Bad magic number %d,expected %d", magic, static_cast<int>(Magic));
  // Each flag joined the record in a later version; an older writer's frame
  // simply stops earlier.
  m_kelpCrossDomainAttributes = false;
  if (version > 0) packer.unpackBool(m_kelpCrossDomainAttributes);
  if (version > 1) {
    packer.unpackBool(m_dornOnlyDealWithOneAttributeSet);
    packer.unpackBool(m_sparseReadOfAttributes);
  }
  if (version > 2) packer.unpackBool(m_autoDecompress);
  if (version > 3) packer.unpackBool(m_restoreMute);
  if (version > 4) packer.unpackBool(m_autoSpecifyCSTFiles);
  if (version > Version)
    packer.skipFrame();
  else
    packer.endFrame();
}
