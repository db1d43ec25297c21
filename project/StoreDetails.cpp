#include "project/StoreDetails.h"

#include <ostream>

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
