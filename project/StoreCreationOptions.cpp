#include "project/StoreCreationOptions.h"

#include <iterator>

#include "foundation/Message.h"
#include "foundation/Packer.h"

StoreCreationOptions::StoreCreationOptions() { myReset(); }

StoreCreationOptions::StoreCreationOptions(StoreCreationOptions const& other) : Packable(other) {
  myReset();
  *this = other;
}

StoreCreationOptions& StoreCreationOptions::operator=(StoreCreationOptions const& other) {
  if (this == &other) return *this;
  m_primaryAttributeSetName = other.m_primaryAttributeSetName;
  m_compressed = other.m_compressed;
  m_hasOffsets = other.m_hasOffsets;
  m_minOffset = other.m_minOffset;
  m_maxOffset = other.m_maxOffset;
  m_nOffsets = other.m_nOffsets;
  m_hasGrid = other.m_hasGrid;
  for (int i = 0; i < 6; ++i) m_grid[i] = other.m_grid[i];
  m_gridF[0] = other.m_gridF[0];
  m_gridF[1] = other.m_gridF[1];
  m_attributes = other.m_attributes;
  m_filename.reset(other.m_filename ? new vFilename(*other.m_filename) : nullptr);
  m_kelpDataType = other.m_kelpDataType;
  return *this;
}

StoreCreationOptions::~StoreCreationOptions() {}

void StoreCreationOptions::myReset() {
  m_primaryAttributeSetName.erase();
  m_compressed = false;
  m_hasOffsets = false;
  m_minOffset = 0.0;
  m_maxOffset = 0.0;
  m_nOffsets = 0;
  m_hasGrid = false;
  for (int i = 0; i < 6; ++i) m_grid[i] = 0;
  m_gridF[0] = 0.0f;
  m_gridF[1] = 0.0f;
  m_attributes.clear();
  m_filename.reset();
  m_kelpDataType = KELP_NONE;
}

void StoreCreationOptions::setOffsets(double minimum, double maximum, int count) {
  m_hasOffsets = true;
  m_minOffset = minimum;
  m_maxOffset = maximum;
  m_nOffsets = count;
}

void StoreCreationOptions::getOffsets(double& minimum, double& maximum, int& count) const {
  minimum = m_minOffset;
  maximum = m_maxOffset;
  count = m_nOffsets;
}

void StoreCreationOptions::setGrid(int i1, int i2, int i3, int i4, int i5, int i6, float f1, float f2) {
  m_hasGrid = true;
  m_grid[0] = i1;
  m_grid[1] = i2;
  m_grid[2] = i3;
  m_grid[3] = i4;
  m_grid[4] = i5;
  m_grid[5] = i6;
  m_gridF[0] = f1;
  m_gridF[1] = f2;
}

void StoreCreationOptions::getGrid(int& i1, int& i2, int& i3, int& i4, int& i5, int& i6, float& f1,
                                   float& f2) const {
  i1 = m_grid[0];
  i2 = m_grid[1];
  i3 = m_grid[2];
  i4 = m_grid[3];
  i5 = m_grid[4];
  i6 = m_grid[5];
  f1 = m_gridF[0];
  f2 = m_gridF[1];
}

void StoreCreationOptions::setFilename(vFilename const& file) { m_filename.reset(new vFilename(file)); }

vFilename StoreCreationOptions::getFilename() const { return m_filename ? *m_filename : vFilename(); }

void StoreCreationOptions::setKelpDataType(int type) {
  switch (type) {
    case KELP_SEISMIC:
    case KELP_HORIZON:
    case KELP_WELL:
      m_kelpDataType = static_cast<KelpDataType>(type);
      break;
    default:
      m_kelpDataType = KELP_NONE;
  }
}

bool StoreCreationOptions::operator==(StoreCreationOptions const& other) const {
  if (m_primaryAttributeSetName != other.m_primaryAttributeSetName || m_compressed != other.m_compressed ||
      m_hasOffsets != other.m_hasOffsets || m_minOffset != other.m_minOffset || m_maxOffset != other.m_maxOffset ||
      m_nOffsets != other.m_nOffsets || m_hasGrid != other.m_hasGrid || m_gridF[0] != other.m_gridF[0] ||
      m_gridF[1] != other.m_gridF[1] || m_kelpDataType != other.m_kelpDataType)
    return false;
  for (int i = 0; i < 6; ++i)
    if (m_grid[i] != other.m_grid[i]) return false;
  if (hasFilename() != other.hasFilename()) return false;
  if (hasFilename() && m_filename->getFilename() != other.m_filename->getFilename()) return false;
  if (m_attributes.size() != other.m_attributes.size()) return false;
  auto b = other.m_attributes.begin();
  for (auto a = m_attributes.begin(); a != m_attributes.end(); ++a, ++b)
    if (!a->compare(*b)) return false;
  return true;
}

void StoreCreationOptions::pack(Packer& packer) const {
  packer.packFrame(Magic, Version);
  packer.pack(m_primaryAttributeSetName);
  packer.packBool(m_hasGrid);
  for (int i = 0; i < 6; ++i) packer.pack(static_cast<int>(m_grid[i]));
  packer.pack(m_gridF[0]);
  packer.pack(m_gridF[1]);
  packer.packBool(m_hasOffsets);
  packer.pack(m_minOffset);
  packer.pack(m_maxOffset);
  packer.pack(static_cast<int>(m_nOffsets));
  packer.packBool(m_compressed);
  packer.packBool(!m_attributes.empty());
  if (!m_attributes.empty()) ::pack(packer, m_attributes.begin(), m_attributes.end());
  packer.packBool(hasFilename());
  if (hasFilename()) packer.pack(m_filename->getFilename());
  packer.pack(static_cast<int>(m_kelpDataType));
  packer.endFrame();
}

void StoreCreationOptions::unpack(Packer& packer) {
  short magic = 0;
  short version = 0;
  packer.unpackFrame(magic, version);
  if (magic != Magic)
    Message::fatal("StoreCreationOptions::unpack", 0, "Bad magic number %d,expected %d", magic,
                   static_cast<int>(Magic));
  myReset();
  if (version > 0) {
    vString name;
    packer.unpack(name);
    m_primaryAttributeSetName = name;
  }
  if (version > 1) {
    packer.unpackBool(m_hasGrid);
    for (int i = 0; i < 6; ++i) {
      int value = 0;
      packer.unpack(value);
      m_grid[i] = value;
    }
    packer.unpack(m_gridF[0]);
    packer.unpack(m_gridF[1]);
    packer.unpackBool(m_hasOffsets);
    packer.unpack(m_minOffset);
    packer.unpack(m_maxOffset);
    int count = 0;
    packer.unpack(count);
    m_nOffsets = count;
    packer.unpackBool(m_compressed);
  }
  if (version > 2) {
    bool hasList = false;
    packer.unpackBool(hasList);
    if (hasList) ::unpack(packer, std::back_inserter(m_attributes), Attribute());
  }
  if (version > 3) {
    bool hasFile = false;
    packer.unpackBool(hasFile);
    if (hasFile) {
      vString name;
      packer.unpack(name);
      m_filename.reset(new vFilename(name));
    }
  }
  if (version > 4) {
    int type = 0;
    packer.unpack(type);
    setKelpDataType(type);
  }
  if (version > Version)
    packer.skipFrame();
  else
    packer.endFrame();
}
