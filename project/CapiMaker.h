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

class Project;
class ProjectCatalog;

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
};

#endif
