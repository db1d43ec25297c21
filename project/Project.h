#ifndef PROJECT_PROJECT_H
#define PROJECT_PROJECT_H

// Project: a named collection of stores on a data host, opened through its
// catalog. Projects are made by ProjectFactory; a project holds its catalog
// alive.

#include <list>

#include "foundation/vHandle.h"
#include "foundation/vLCString.h"
#include "foundation/vString.h"
#include "project/AttributeSetDetails.h"
#include "project/ProjectCatalog.h"
#include "project/ProjectType.h"
#include "project/StoreDetails.h"

class Project {
 public:
  typedef std::list<vLCString> StoreList;
  typedef std::list<StoreDetails> StoreDetailsList;
  typedef std::list<AttributeSetDetails> AttributeSetDetailsList;

  explicit Project(vHandle<ProjectCatalog> const& catalog);
  virtual ~Project();

  // Opens the named project; isOpen() answers true afterwards.
  virtual void open(vLCString const& name) = 0;
  virtual void close() = 0;
  virtual vLCString getName() const = 0;
  virtual ProjectType::PROJECT_TYPE getProjectType() const = 0;
  virtual bool isOpen() const = 0;
  virtual vHandle<ProjectCatalog> getProjectCatalog();
  // Store names of a class and subclass; an empty class means all classes.
  virtual vHandle<StoreList> getStoreList(vLCString const& storeClass, vLCString const& subClass) = 0;
  virtual vHandle<StoreDetailsList> getStoreDetailsList(vLCString const& storeClass, vLCString const& subClass) = 0;
  // A cheap form of getStoreDetailsList where the project has one; empty here.
  virtual vHandle<StoreDetailsList> getLightStoreDetailsList(vLCString const& storeClass, vLCString const& subClass);
  // The data host.
  virtual vString getProjectHost() const = 0;
  virtual vString getServerHost() const = 0;
  virtual bool deleteStore(vLCString const& name, int version, vLCString const& storeClass,
                           vLCString const& subClass) = 0;
  // Keeps only the `keep` newest versions of the matching stores.
  virtual bool purgeStore(int keep, vLCString const& name, vLCString const& storeClass,
                          vLCString const& subClass) = 0;
  virtual bool hasStore(vLCString const& name, int version) = 0;
  virtual StoreDetails getStoreDetails(vLCString const& name, int version) const = 0;
  virtual AttributeSetDetailsList getAttributeSetDetails(vLCString const& name, int version) = 0;
  // Not supported by projects in general.
  virtual void gift(int type, vLCString const& name, int version);
  virtual void rift(int type, vLCString const& name, int version, vLCString const& text);

  // Store details across projects of a type: none here, so the list is
  // cleared and the answer is false.
  bool getGlobalStoreDetailsList(ProjectType::PROJECT_TYPE type, vLCString const& storeClass,
                                 vLCString const& subClass, std::list<StoreDetails>& list);

 protected:
  vHandle<ProjectCatalog> m_catalog;
};

#endif
