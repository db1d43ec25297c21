#ifndef PROJECT_JITPROJECTDECORATOR_H
#define PROJECT_JITPROJECTDECORATOR_H

// JITProjectDecorator: opens the project it wraps only when something first
// needs its contents. open() just remembers the name, so that a program can
// name its project at start-up without paying for a connection it may never
// use; the wrapper answers as an open project meanwhile.

#include "project/Project.h"

class JITProjectDecorator : public Project {
 public:
  explicit JITProjectDecorator(vHandle<Project> const& project);
  ~JITProjectDecorator() override;

  void open(vLCString const& name) override;
  void close() override;
  vLCString getName() const override;
  ProjectType::PROJECT_TYPE getProjectType() const override;
  // True once open() was called, connected or not.
  bool isOpen() const override;
  vHandle<ProjectCatalog> getProjectCatalog() override;
  vHandle<StoreList> getStoreList(vLCString const& storeClass, vLCString const& subClass) override;
  vHandle<StoreDetailsList> getStoreDetailsList(vLCString const& storeClass, vLCString const& subClass) override;
  vHandle<StoreDetailsList> getLightStoreDetailsList(vLCString const& storeClass, vLCString const& subClass) override;
  vString getProjectHost() const override;
  vString getServerHost() const override;
  bool deleteStore(vLCString const& name, int version, vLCString const& storeClass,
                   vLCString const& subClass) override;
  bool purgeStore(int keep, vLCString const& name, vLCString const& storeClass, vLCString const& subClass) override;
  bool hasStore(vLCString const& name, int version) override;
  StoreDetails getStoreDetails(vLCString const& name, int version) const override;
  AttributeSetDetailsList getAttributeSetDetails(vLCString const& name, int version) override;
  // gift and rift are not passed on: the wrapper answers for them as any
  // project does, whatever the project beneath could do.

  // True once the wrapped project has been opened.
  virtual bool isReallyOpen() const;
  // Opens the wrapped project under the remembered name, once.
  virtual void makeSureIsOpen();

  vHandle<Project> getDecoratedProject() const { return m_project; }

 private:
  // getStoreDetails is const in the contract but may have to connect.
  void myMakeSureIsOpen() const;

  vHandle<Project> m_project;
  vLCString m_name;
  bool m_openRequested;
  mutable bool m_reallyOpen;
};

#endif
