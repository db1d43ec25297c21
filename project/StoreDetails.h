#ifndef PROJECT_STOREDETAILS_H
#define PROJECT_STOREDETAILS_H

// StoreDetails: the catalogue record of one store, as projects list them.
// The two description strings are whatever the project that fills them
// means by them; they are passed through unchanged. The date is invalid
// when the store's date is not known.
//
// Packed form: frame 6654, version 7: name, version (int32), class,
// subclass, instance count (int64, high word 0), the two descriptions, the
// date's seconds (int32), owner, size (int64), attribute set count and
// project type (int32), and a bool that is true when the date is invalid.
// unpack reads every older version: the instance count of old writers is a
// 32-bit entry; fields that a version lacks take fixed values (date invalid
// before 2, owner "D" before 3, size and set count -1 before 5, project type
// NoType before 6).

#include <iosfwd>

#include "foundation/Packable.h"
#include "foundation/vDate.h"
#include "foundation/vLCString.h"
#include "foundation/vString.h"
#include "project/ProjectType.h"

class StoreDetails : public Packable {
 public:
  static const short Magic = 6654;
  static const short Version = 7;

  StoreDetails();
  StoreDetails(vLCString const& name, int version, vLCString const& storeClass, vLCString const& subClass,
               unsigned int nInstances, vString const& description1, vString const& description2,
               vDate const& date, vString const& owner, long long size, int nAttributeSets,
               ProjectType::PROJECT_TYPE projectType);
  // The rest takes its defaults. The server is not kept: a record belongs to
  // the project that made it.
  StoreDetails(ProjectType::PROJECT_TYPE projectType, vString const& server, vLCString const& name, int version);
  StoreDetails(StoreDetails const& other) = default;
  StoreDetails& operator=(StoreDetails const& other) = default;
  ~StoreDetails() override;

  void pack(Packer& packer) const override;
  void unpack(Packer& packer) override;

  vLCString const& getName() const { return m_name; }
  int getVersion() const { return m_version; }
  vLCString const& getClass() const { return m_class; }
  vLCString const& getSubClass() const { return m_subClass; }
  unsigned int getNInstances() const { return m_nInstances; }
  vString const& getDescription1() const { return m_description1; }
  vString const& getDescription2() const { return m_description2; }
  vDate const& getDate() const { return m_date; }
  vString const& getOwner() const { return m_owner; }
  long long getSize() const { return m_size; }
  int getNAttributeSets() const { return m_nAttributeSets; }
  ProjectType::PROJECT_TYPE getProjectType() const { return m_projectType; }

  void setName(vLCString const& name) { m_name = name; }
  void setVersion(int version) { m_version = version; }
  void setClass(vLCString const& storeClass) { m_class = storeClass; }
  void setSubClass(vLCString const& subClass) { m_subClass = subClass; }
  void setNInstances(unsigned int n) { m_nInstances = n; }
  void setDescription1(vString const& d) { m_description1 = d; }
  void setDescription2(vString const& d) { m_description2 = d; }
  void setDate(vDate const& date) { m_date = date; }
  void setOwner(vString const& owner) { m_owner = owner; }
  void setSize(long long size) { m_size = size; }
  void setNAttributeSets(int n) { m_nAttributeSets = n; }
  void setProjectType(ProjectType::PROJECT_TYPE type) { m_projectType = type; }

  // All fields but the project type.
  bool operator==(StoreDetails const& other) const;
  bool operator!=(StoreDetails const& other) const { return !(*this == other); }
  // By name, then by version.
  bool operator<(StoreDetails const& other) const;

 protected:
  vLCString m_name;
  int m_version;
  vLCString m_class;
  vLCString m_subClass;
  unsigned int m_nInstances;
  vString m_description1;
  vString m_description2;
  vDate m_date;
  vString m_owner;
  long long m_size;
  int m_nAttributeSets;
  ProjectType::PROJECT_TYPE m_projectType;
};

// The fields in order, separated by ':'.
std::ostream& operator<<(std::ostream& out, StoreDetails const& details);

#endif
