#include "project/Project.h"

#include "foundation/Message.h"

Project::Project(vHandle<ProjectCatalog> const& catalog) : m_catalog(catalog) {}

Project::~Project() {}

vHandle<ProjectCatalog> Project::getProjectCatalog() { return m_catalog; }

vHandle<Project::StoreDetailsList> Project::getLightStoreDetailsList(vLCString const&, vLCString const&) {
  return vHandle<StoreDetailsList>(new StoreDetailsList);
}

void Project::gift(int, vLCString const&, int) {
  Message::fatal("Project::gift", 0, "Function not supported by this project!");
}

void Project::rift(int, vLCString const&, int, vLCString const&) {
  Message::fatal("Project::rift", 0, "Function not supported by this project!");
}

bool Project::getGlobalStoreDetailsList(ProjectType::PROJECT_TYPE, vLCString const&, vLCString const&,
                                        std::list<StoreDetails>& list) {
  list.clear();
  return false;
}
