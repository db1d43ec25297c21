#include "project/CapiMaker.h"

#include "project/ProjectCatalogFactory.h"
#include "project/ProjectFactory.h"

ProjectType::PROJECT_TYPE CapiMaker::getProjectType() { return ProjectType::ZONMESH; }

vString CapiMaker::getDataBaseName() { return vString("Zonmesh"); }

vHandle<ProjectCatalog> CapiMaker::projectCatalog(vString const& host) {
  return vHandle<ProjectCatalog>(
      ProjectCatalogFactory::make("CapiMaker::projectCatalog", "ZonProjectCatalog", host, getProjectType(), vString()));
}

vHandle<Project> CapiMaker::project(vHandle<ProjectCatalog> const& catalog) {
  return vHandle<Project>(ProjectFactory::make("CapiMaker::project", "ZonProject", catalog));
}
