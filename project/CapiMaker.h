#ifndef PROJECT_CAPIMAKER_H
#define PROJECT_CAPIMAKER_H

// CapiMaker: the back end that this build serves in-process, without a data
// server. The factories compare a requested project type with
// getProjectType() to decide between an in-process object and a client of a
// data server. The objects themselves belong to the database layer and are
// made through the makers registered with the factories.

#include "foundation/vHandle.h"
#include "foundation/vString.h"
#include "project/ProjectType.h"

class AttributeSet;
class Project;
class ProjectCatalog;
class vLCString;

class CapiMaker {
 public:
  // The project type served in-process: Zonmesh.
  static ProjectType::PROJECT_TYPE getProjectType();
  static vString getDataBaseName();
  // A ZonProjectCatalog for the host on the default server (the maker gets a
  // blank server and takes the default).
  static vHandle<ProjectCatalog> projectCatalog(vString const& host);
  // A ZonProject on that catalog.
  static vHandle<Project> project(vHandle<ProjectCatalog> const& catalog);

  // The attribute set of a store of the in-process back end, of the class
  // and subclass given, made by the maker that the back end registers; the
  // maker gets the project itself, out of any deferred-open wrapper. Without
  // a maker this is fatal. (Defined in CapiAttributeSetW.cpp.)
  typedef vHandle<AttributeSet> (*AttributeSetMaker)(vHandle<Project> const& project, vLCString const& storeClass,
                                                     vLCString const& subClass);
  static AttributeSetMaker registerAttributeSetMaker(AttributeSetMaker maker);
  static vHandle<AttributeSet> attributeSet(vHandle<Project> const& project, vLCString const& storeClass,
                                            vLCString const& subClass);
};

#endif
