#include "project/StoreDetails.h"

#include <ostream>

#include "foundation/Message.h"
#include "foundation/Packer.h"

StoreDetails::StoreDetails()
    : m_version(0),
      m_nInstances(0),
      m_date(vDate::Invalid),
      m_size(0),
      m_nAttributeSets(0),
      m_projectType(ProjectType::NOTYPE) {}

StoreDetails::StoreDetails(vLCString const& name, int version, vLCString const& storeClass, vLCString const& subClass,
                           unsigned int nInstances, vString const& description1, vString const& description2,
                           vDate const& date, vString const& owner, long long size, int nAttributeSets,
                           ProjectType::PROJECT_TYPE projectType)
    : m_name(name),
      m_version(version),
      m_class(storeClass),
      m_subClass(subClass),
      m_nInstances(nInstances),
      m_description1(description1),
      m_description2(description2),
      m_date(date),
      m_owner(owner),
      m_size(size),
      m_nAttributeSets(nAttributeSets),
      m_projectType(projectType) {}

StoreDetails::StoreDetails(ProjectType::PROJECT_TYPE projectType, vString const& /*server*/, vLCString const& name,
                           int version)
    : m_name(name),
      m_version(version),
      m_nInstances(0),
      m_date(vDate::Invalid),
      m_size(0),
      m_nAttributeSets(0),
      m_projectType(projectType) {}

StoreDetails::~StoreDetails() {}

void StoreDetails::pack(Packer& packer) const {
  packer.packFrame(Magic, Version);
  packer.pack(m_name);
  packer.pack(static_cast<int>(m_version));
  packer.pack(m_class);
  packer.pack(m_subClass);
  packer.pack(static_cast<long long>(m_nInstances));
  packer.pack(m_description1);
  packer.pack(m_description2);
  packer.pack(static_cast<int>(m_date.isValid() ? m_date.getSeconds() : -1));
  packer.pack(m_owner);
  packer.pack(m_size);
  packer.pack(static_cast<int>(m_nAttributeSets));
  packer.pack(static_cast<int>(m_projectType));
  packer.packBool(!m_date.isValid());
  packer.endFrame();
}

void StoreDetails::unpack(Packer& packer) {
  static char const* const kLabel = "StoreDetails::unpack";
  short magic = 0;
  short version = 0;
  packer.unpackFrame(magic, version);
  if (magic != Magic)
    Message::fatal(kLabel, 0, "Expected %d as a magic number, but found %d. Not a StoreDetails object here.",
                   static_cast<int>(Magic), magic);
  if (version < 0) Message::fatal(kLabel, 0, "Expected a version number >= 0 ... not %d!", version);

  *this = StoreDetails();
  vString text;
  if (version >= 1) {
    packer.unpack(text);
    m_name = text;
    int storeVersion = 0;
    packer.unpack(storeVersion);
    m_version = storeVersion;
    packer.unpack(text);
    m_class = text;
    packer.unpack(text);
    m_subClass = text;
    // The count was 32 bits wide in old frames.
    DataType next = packer.getNextDataType();
    if (next == vUINT32) {
      unsigned int count = 0;
      packer.unpack(count);
      m_nInstances = count;
    } else if (next == vINT32) {
      int count = 0;
      packer.unpack(count);
      m_nInstances = static_cast<unsigned int>(count);
    } else {
      long long count = 0;
      packer.unpack(count);
      if (count < 0 || count > 0xFFFFFFFFLL)
        Message::fatal(kLabel, 0, "Instance count %lld of store '%s' is out of range.", count, m_name.c_str());
      m_nInstances = static_cast<unsigned int>(count);
    }
    packer.unpack(m_description1);
    packer.unpack(m_description2);
  }
  if (version > 1) {
    int seconds = 0;
    packer.unpack(seconds);
    m_date = vDate(static_cast<long>(seconds));
  }
  if (version > 2)
    packer.unpack(m_owner);
  else
    m_owner = "D";
  if (version >= 5) {
    packer.unpack(m_size);
    int nSets = 0;
    packer.unpack(nSets);
    m_nAttributeSets = nSets;
  } else {
    m_size = -1;
    m_nAttributeSets = -1;
  }
  if (version >= 6) {
    int type = 0;
    packer.unpack(type);
    ProjectType::getProjectTypeName(type);  // refuses a value outside the table
    m_projectType = static_cast<ProjectType::PROJECT_TYPE>(type);
  } else {
    m_projectType = ProjectType::NOTYPE;
  }
  if (version >= 7) {
    bool invalid = false;
    packer.unpackBool(invalid);
    if (invalid) m_date.setInvalid();
  }
  packer.skipFrame();
}

bool StoreDetails::operator==(StoreDetails const& other) const {
  // Two invalid dates are the same unknown date, whatever their fields hold.
  bool sameDate = m_date.isValid() == other.m_date.isValid() &&
                  (!m_date.isValid() || m_date.getSeconds() == other.m_date.getSeconds());
  return m_name == other.m_name && m_version == other.m_version && m_class == other.m_class &&
         m_subClass == other.m_subClass && m_nInstances == other.m_nInstances &&
         m_description1 == other.m_description1 && m_description2 == other.m_description2 && sameDate &&
         m_owner == other.m_owner && m_size == other.m_size && m_nAttributeSets == other.m_nAttributeSets;
}

bool StoreDetails::operator<(StoreDetails const& other) const {
  if (m_name != other.m_name) return m_name < other.m_name;
  return m_version < other.m_version;
}

std::ostream& operator<<(std::ostream& out, StoreDetails const& d) {
  out << d.getName() << ':' << d.getVersion() << ':' << d.getClass() << ':' << d.getSubClass() << ':'
      << d.getNInstances() << ':' << d.getDescription1() << ':' << d.getDescription2() << ':'
      << (d.getDate().isValid() ? d.getDate().getDateTime() : vString()) << ':' << d.getOwner() << ':'
      << d.getSize() << ':' << d.getNAttributeSets() << ':' << ProjectType::getProjectTypeName(d.getProjectType());
  return out;
}
