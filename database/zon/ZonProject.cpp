#include "database/zon/ZonProject.h"

#include <cstring>

#include "database/kvs/KvsObject.h"
#include "database/kvs/KvsResources.h"
#include "database/zon/CapiZon.h"
#include "database/zon/vKvsActivate.h"
#include "foundation/Message.h"

char const ZonProject::separator = ',';

ZonProject::ZonProject(vHandle<ProjectCatalog> const& catalog)
    : Project(catalog), m_flags(0), m_kvsProject(nullptr), m_cache(new DatasetCache(*this)) {
  vHandle_cast(m_zonCatalog, catalog);
}

ZonProject::~ZonProject() {
  delete m_cache;
  delete m_kvsProject;
}

void ZonProject::open(vLCString const& name) {
  char const* const method = "ZonProject::open";
  if (isOpen()) close();
  CapiZon::timer(method, 1);
  vString trueName(name);
  m_zonCatalog->findTrueName(trueName);
  m_name = trueName;
  CapiZon::timer(method, 2);
  delete m_kvsProject;
  m_kvsProject = new vKvsProject(trueName, m_zonCatalog->getServer());
  vKvsActivate::project(*m_kvsProject);
  CapiZon::timer(method, 3);
  kvs::KvsObject session = getSession();
  int rc = kvs::_KvsSetSession(session);
  if (rc != 0)
    Message::fatal(method, 0, "Error %d setting session for project '%s'.", rc, trueName.c_str());
  m_flags |= 1;
  CapiZon::timer(method, 4);
}

void ZonProject::close() {
  m_flags &= ~1u;
  m_cache->clear();
}

vLCString ZonProject::getName() const { return m_name; }

ProjectType::PROJECT_TYPE ZonProject::getProjectType() const { return ProjectType::ZONMESH; }

vString ZonProject::getProjectHost() const { return m_zonCatalog->getHost(); }

vString ZonProject::getServerHost() const { return m_zonCatalog->getServer(); }

void ZonProject::myMustBeOpen(char const* method) const {
  if (!isOpen()) Message::fatal(method, 0, "Project is not open!");
}

ZonProject::DatasetCache& ZonProject::myCache() const {
  if (m_cache->empty()) m_cache->myPopulateCache();
  return *m_cache;
}

void ZonProject::setSession() {
  myMustBeOpen("ZonProject::setSession");
  vKvsActivate::project(*m_kvsProject);
  int rc = kvs::_KvsSetSession(getSession());
  if (rc != 0)
    Message::fatal("ZonProject::setSession", 0, "Error %d setting session for project '%s'.", rc, m_name.c_str());
}

kvs::KvsObject ZonProject::getSession() {
  kvs::KvsObject root = kvs::KvsRoot();
  std::string const project(m_kvsProject->getProject().c_str());
  if (root != nullptr)
    for (kvs::KvsObject s : root->children)
      if (s->cls == &kvs::kvsSessionClass && s->project == project) return s;
  return kvs::KvsCreate(root, kvs::KvsNproject, project.c_str(), 0L);
}

bool ZonProject::locateNameComponents(vString& name, vString& ident, vString& type, vString& version) {
  myMustBeOpen("ZonProject::locateNameComponents");
  return myCache().locateNameComponents(name, ident, type, version);
}

bool ZonProject::findBestMatch(vString const& name, vString& ident, vString& type) {
  myMustBeOpen("ZonProject::findBestMatch");
  return myCache().findBestMatch(name, ident, type);
}

bool ZonProject::findTrueSpelling(vString& ident, vString& type, vString& version) {
  myMustBeOpen("ZonProject::findTrueSpelling");
  return myCache().findTrueSpelling(ident, type, version);
}

void ZonProject::removeFromCache(vLCString const& name) { m_cache->remove(name); }

void ZonProject::emptyDatasetCache() { m_cache->clear(); }

vHandle<Project::StoreList> ZonProject::getStoreList(vLCString const& storeClass, vLCString const& subClass) {
  myMustBeOpen("ZonProject::getStoreList");
  return myCache().getStoreList(storeClass, subClass);
}

vHandle<Project::StoreDetailsList> ZonProject::getStoreDetailsList(vLCString const& storeClass,
                                                                  vLCString const& subClass) {
  myMustBeOpen("ZonProject::getStoreDetailsList");
  // The full list asks the database, so that it holds what other programs
  // wrote since the project last looked.
  m_cache->myPopulateCache();
  return m_cache->getStoreDetailsList(storeClass, subClass);
}

vHandle<Project::StoreDetailsList> ZonProject::getLightStoreDetailsList(vLCString const& storeClass,
                                                                       vLCString const& subClass) {
  myMustBeOpen("ZonProject::getLightStoreDetailsList");
  // What the project holds already: no call to the database once the
  // datasets were listed.
  return myCache().getStoreDetailsList(storeClass, subClass);
}

bool ZonProject::hasStore(vLCString const& name, int version) {
  myMustBeOpen("ZonProject::hasStore");
  return myCache().hasStore(name, version);
}

StoreDetails ZonProject::getStoreDetails(vLCString const& name, int version) const {
  myMustBeOpen("ZonProject::getStoreDetails");
  return myCache().getStoreDetails(name, version);
}

bool ZonProject::deleteStore(vLCString const& name, int version, vLCString const&, vLCString const&) {
  char const* const method = "ZonProject::deleteStore";
  myMustBeOpen(method);
  vHandle<DatasetCache::Entry> entry = myCache().find(name);
  int number = entry.isEmpty() ? -1 : entry->resolve(version);
  if (number < 0) return false;
  setSession();
  kvs::KvsObject dataset =
      kvs::KvsCreate(getSession(), kvs::KvsNtype, entry->type.c_str(), kvs::KvsNident, entry->ident.c_str(),
                     kvs::KvsNversion, entry->versionTexts[number].c_str(), kvs::KvsNmode, 1L, 0L);
  if (dataset == nullptr)
    Message::fatal(method, 0, "Error deleting store %s: %s", name.c_str(), kvs::kvsErrorString.c_str());
  int rc = kvs::KvsDelete(dataset);
  kvs::KvsRemove(dataset);
  if (rc != 0) Message::fatal(method, 0, "Error deleting store %s: %s", name.c_str(), kvs::kvsErrorString.c_str());
  m_cache->remove(name, number);
  return true;
}

bool ZonProject::purgeStore(int keep, vLCString const& name, vLCString const& storeClass, vLCString const& subClass) {
  myMustBeOpen("ZonProject::purgeStore");
  vHandle<DatasetCache::Entry> entry = myCache().find(name);
  if (entry.isEmpty()) return false;
  std::vector<int> numbers;
  for (auto const& v : entry->versionTexts) numbers.push_back(v.first);
  if (keep < 0) keep = 0;
  bool any = false;
  // Oldest first, until only `keep` remain; each delete empties the entry
  // from the cache, so the numbers are taken beforehand.
  for (std::size_t i = 0; i + static_cast<std::size_t>(keep) < numbers.size(); ++i)
    any = deleteStore(name, numbers[i], storeClass, subClass) || any;
  return any;
}

Project::AttributeSetDetailsList ZonProject::getAttributeSetDetails(vLCString const& name, int version) {
  char const* const method = "ZonProject::getAttributeSetDetails";
  myMustBeOpen(method);
  vHandle<DatasetCache::Entry> entry = myCache().find(name);
  int number = entry.isEmpty() ? -1 : entry->resolve(version);
  if (number < 0) Message::fatal(method, 0, "The store '%s' does not exist!", name.c_str());
  setSession();
  kvs::KvsObject dataset =
      kvs::KvsOpen(getSession(), kvs::KvsNmode, 1L, kvs::KvsNtype, entry->type.c_str(), kvs::KvsNident,
                   entry->ident.c_str(), kvs::KvsNversion, entry->versionTexts[number].c_str(), 0L);
  if (dataset == nullptr)
    Message::fatal(method, 0, "Error reading store %s: %s", name.c_str(), kvs::kvsErrorString.c_str());
  AttributeSetDetailsList list;
  entry->attributeSetNames.clear();
  for (kvs::KvsObject t = kvs::KvsFirst(dataset); t != nullptr; t = kvs::KvsNext(t)) {
    if (t->cls != &kvs::kvsTableClass) continue;
    long rows = 0;
    char const* type = nullptr;
    kvs::KvsGet(t, kvs::KvsNsize, &rows, kvs::KvsNtype, &type, 0L);
    vLCString setName(type ? type : "");
    entry->attributeSetNames.push_back(setName);
    list.push_back(AttributeSetDetails(setName, static_cast<unsigned int>(rows)));
  }
  kvs::KvsClose(dataset);
  return list;
}
