#include "database/zon/CapiZonFactory.h"

#include <vector>

#include "database/zon/ZonProject.h"
#include "database/zon/ZonStore.h"
#include "project/ProjectFactory.h"
#include "project/StoreDescription.h"
#include "database/zon/ZonProjectCatalog.h"
#include "foundation/vDatabases.h"
#include "foundation/vFilename.h"
#include "foundation/vUtl.h"
#include "syslayer/FS.h"

namespace {

vString local_zonHome() {
  vString home = vUtl::supportFilesDirectory();
  home += "CapiZon/";
  return home;
}

}  // namespace

void CapiZonFactory::mySetKVSROOT() {
  static bool done = false;
  if (done) return;
  done = true;
  vString value;
  if (!vUtl::getenv("KVSROOT", value) || value.isEmpty()) {
    value = local_zonHome();
    value += vString(vDatabases::getDefaultDatabaseEntry().getName().c_str());
    vUtl::putenv("KVSROOT", value);
  }
  if (!vUtl::getenv("KVSPROJ", value) || value.isEmpty()) vUtl::putenv("KVSPROJ", vString("1006400"));
}

bool CapiZonFactory::KVSROOTexists() {
  mySetKVSROOT();
  vString root;
  if (!vUtl::getenv("KVSROOT", root) || root.isEmpty()) return false;
  int kind = 0, mode = 0, sizeKB = 0;
  return FS::lsInfo(vFilename(root), kind, mode, sizeKB) == 1 && kind == 2;
}

vString CapiZonFactory::getDefaultServer() {
  mySetKVSROOT();
  vString name(vDatabases::getDefaultDatabaseEntry().getName().c_str());
  vString home = local_zonHome();
  home += name;
  if (FS::exists(vFilename(home))) return name;
  return vString();
}

void CapiZonFactory::getAvailableServers(std::list<vString>& servers) {
  mySetKVSROOT();
  vString pattern = local_zonHome();
  pattern += "*";
  std::vector<vFilename> found;
  FS::getMatchingFiles(pattern, found);
  for (vFilename const& entry : found) servers.push_back(entry.getName());
}

ProjectCatalog* CapiZonFactory::makeProjectCatalog(vString const& host, vString const& server) {
  mySetKVSROOT();
  return new ZonProjectCatalog(host, server);
}

Project* CapiZonFactory::makeProject(vHandle<ProjectCatalog> const& catalog) {
  mySetKVSROOT();
  return new ZonProject(catalog);
}

vHandle<ProjectCatalog> CapiZonFactory::createProjectCatalog(vString const& host, vString const& server) {
  return vHandle<ProjectCatalog>(makeProjectCatalog(host, server));
}

vHandle<Project> CapiZonFactory::createProject(vHandle<ProjectCatalog> catalog) {
  return vHandle<Project>(makeProject(catalog));
}

vHandle<Store> CapiZonFactory::createStore(vHandle<Project> project) {
  mySetKVSROOT();
  return vHandle<Store>(new ZonStore(project));
}

vHandle<Store> CapiZonFactory::createStore(StoreDescription const& description, vLCString const& attributeSetName,
                                           KeyList const& keys) {
  vHandle<Store> store = createStore(ProjectFactory::openProject(description.getFullProjectName()));
  store->create(description.getFullStoreName(), description.getStoreClass(), attributeSetName, keys, nullptr);
  return store;
}
