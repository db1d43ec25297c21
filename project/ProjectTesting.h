#ifndef PROJECT_PROJECTTESTING_H
#define PROJECT_PROJECTTESTING_H

// Test helpers of the project layer's names and defaults (tests only): the
// process-wide default project and the site's databases, set for as long as
// a helper lives and put back when it goes.

#include "foundation/vDatabases.h"
#include "project/ProjectFactory.h"
#include "project/UTProject.h"
#include "project/UTProjectCatalog.h"

namespace project_testing {

// No default project while it lives, or with `withDefault` a unit-test one
// on host "defhost" named "defproj".
class DefaultProject {
 public:
  explicit DefaultProject(bool withDefault = false) : m_saved(ProjectFactory::setDefaultProject(vHandle<Project>())) {
    if (!withDefault) return;
    vHandle<ProjectCatalog> catalog(new UTProjectCatalog("defhost", ProjectType::UNITTEST));
    vHandle<Project> project(new UTProject(catalog));
    project->open("defproj");
    ProjectFactory::setDefaultProject(project);
  }
  ~DefaultProject() { ProjectFactory::setDefaultProject(m_saved); }

 private:
  vHandle<Project> m_saved;
};

// The site's databases for Dorn servers: "houston", with "hprod" and "hdev".
class SiteDatabases {
 public:
  SiteDatabases() {
    vDatabases dbs;
    dbs.loadFromMemory("[houston]\nProductionDatabase = hprod\nDevelopmentDatabase = hdev\n", "site.ini");
    vDatabases::setCache(dbs);
  }
  ~SiteDatabases() { vDatabases::clearCache(); }
};

}  // namespace project_testing

#endif
