#ifndef PROJECT_PROJECTFACTORY_H
#define PROJECT_PROJECTFACTORY_H

// ProjectFactory: the one way to get a project. It keeps a process-wide
// cache of the projects it made, so that opening the same project twice
// gives the same object, and a default project: the first project ever made,
// unless set otherwise.
//
// As for catalogs, the project classes of higher layers (ClientProject,
// ZonProject) are made through registered makers.

#include <list>

#include "foundation/vHandle.h"
#include "foundation/vLCString.h"
#include "foundation/vString.h"
#include "project/FullProjectName.h"
#include "project/Project.h"
#include "project/ProjectCatalog.h"
#include "project/ProjectType.h"

class ProjectFactory {
 public:
  typedef Project* (*Maker)(vHandle<ProjectCatalog> const& catalog);

  // Always a new project on the catalog, not opened, added to the cache.
  static vHandle<Project> create(vHandle<ProjectCatalog> const& catalog);
  // The cached open project of that name on that server and cluster, or a
  // new one, opened. A project that fails to open is not cached.
  static vHandle<Project> openProject(FullProjectName const& name);
  static vHandle<Project> openProject(ProjectType::PROJECT_TYPE type, vString const& server, vString const& host,
                                      vLCString const& project);
  // The same, but a new project is wrapped in a JITProjectDecorator and so
  // connects only when its contents are first asked for.
  static vHandle<Project> openProjectDeferred(FullProjectName const& name);
  static vHandle<Project> openProjectDeferred(ProjectType::PROJECT_TYPE type, vString const& server,
                                              vString const& host, vLCString const& project);

  static bool hasDefaultProject();
  // Fatal without one.
  static vHandle<Project> getDefaultProject();
  // The catalog of the default project; empty without one.
  static vHandle<ProjectCatalog> getDefaultCatalog();
  // Returns the former default.
  static vHandle<Project> setDefaultProject(vHandle<Project> const& project);
  static void clearDefaultProject();
  // Forgets the cached projects; the default project stays.
  static void emptyCache();
  static unsigned int getCacheSize();

  // Sets the maker of a class and returns the one it replaces; a null maker
  // removes the class again.
  static Maker registerMaker(vString const& className, Maker maker);
  static Maker getMaker(vString const& className);
  // Builds through the registered maker; a class without one is fatal under
  // the caller's label.
  static Project* make(char const* label, vString const& className, vHandle<ProjectCatalog> const& catalog);

 private:
  static vHandle<Project> myCreate(vHandle<ProjectCatalog> const& catalog);
  static void myAddToCache(vHandle<Project> const& project);
  static vHandle<Project> myOpen(ProjectType::PROJECT_TYPE type, vString const& server, vString const& host,
                                 vLCString const& project, bool deferred);
  static std::list<vHandle<Project> >& myGetCache();
};

#endif
