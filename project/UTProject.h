#ifndef PROJECT_UTPROJECT_H
#define PROJECT_UTPROJECT_H

// UTProject: a stand-alone project that needs no server, so that the whole
// store layer can be driven end to end in tests. It is open from
// construction under the name "unittest", records the name of the last
// operation called on it (getLastCall()), and holds no stores unless a test
// scripts some with addStore(): those are then listed, found and deleted
// like the stores of a real project.

#include "project/Project.h"

class UTProject : public Project {
 public:
  explicit UTProject(vHandle<ProjectCatalog> const& catalog);
  ~UTProject() override;

  void open(vLCString const& name) override;
  void close() override;
  vLCString getName() const override;
  ProjectType::PROJECT_TYPE getProjectType() const override;
  bool isOpen() const override;
  vHandle<ProjectCatalog> getProjectCatalog() override;
  // Scripted stores as "name.version", in the order they were added.
  vHandle<StoreList> getStoreList(vLCString const& storeClass, vLCString const& subClass) override;
  vHandle<StoreDetailsList> getStoreDetailsList(vLCString const& storeClass, vLCString const& subClass) override;
  vString getProjectHost() const override;
  // Always empty: there is no server.
  vString getServerHost() const override;
  bool deleteStore(vLCString const& name, int version, vLCString const& storeClass,
                   vLCString const& subClass) override;
  // Always false.
  bool purgeStore(int keep, vLCString const& name, vLCString const& storeClass, vLCString const& subClass) override;
  // Version 0 matches any version.
  bool hasStore(vLCString const& name, int version) override;
  // A default record when the store is not scripted.
  StoreDetails getStoreDetails(vLCString const& name, int version) const override;
  AttributeSetDetailsList getAttributeSetDetails(vLCString const& name, int version) override;

  vString const& getLastCall() const { return m_lastCall; }

  // Test scripting: a store this project then reports.
  void addStore(StoreDetails const& details);

 private:
  bool myMatches(StoreDetails const& d, vLCString const& storeClass, vLCString const& subClass) const;

  vLCString m_name;
  mutable vString m_lastCall;
  std::list<StoreDetails> m_stores;
};

#endif
