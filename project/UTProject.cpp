#include "project/UTProject.h"

UTProject::UTProject(vHandle<ProjectCatalog> const& catalog)
    : Project(catalog), m_name("unittest"), m_lastCall("UTPoject") {}

UTProject::~UTProject() {}

void UTProject::open(vLCString const& name) {
  m_lastCall = "open";
  m_name = name;
}

void UTProject::close() {
  m_lastCall = "close";
  m_name.erase();
}

vLCString UTProject::getName() const {
  m_lastCall = "getName";
  return m_name;
}

ProjectType::PROJECT_TYPE UTProject::getProjectType() const {
  m_lastCall = "getProjectType";
  return m_catalog->getProjectType();
}

bool UTProject::isOpen() const {
  m_lastCall = "isOpen";
  return !m_name.isBlank();
}

vHandle<ProjectCatalog> UTProject::getProjectCatalog() {
  m_lastCall = "getProjectCatalog";
  return m_catalog;
}

bool UTProject::myMatches(StoreDetails const& d, vLCString const& storeClass, vLCString const& subClass) const {
  if (!storeClass.isBlank() && d.getClass() != storeClass) return false;
  if (!subClass.isBlank() && d.getSubClass() != subClass) return false;
  return true;
}

vHandle<Project::StoreList> UTProject::getStoreList(vLCString const& storeClass, vLCString const& subClass) {
  m_lastCall = "getStoreList";
  vHandle<StoreList> list(new StoreList);
  for (StoreDetails const& d : m_stores) {
    if (!myMatches(d, storeClass, subClass)) continue;
    vLCString name(d.getName());
    name += '.';
    name += vString::number(d.getVersion());
    list->push_back(name);
  }
  return list;
}

vHandle<Project::StoreDetailsList> UTProject::getStoreDetailsList(vLCString const& storeClass,
                                                                   vLCString const& subClass) {
  m_lastCall = "getStoreDetailsList";
  vHandle<StoreDetailsList> list(new StoreDetailsList);
  for (StoreDetails const& d : m_stores)
    if (myMatches(d, storeClass, subClass)) list->push_back(d);
  return list;
}

vString UTProject::getProjectHost() const {
  m_lastCall = "getProjectHost";
  return m_catalog->getHost();
}

vString UTProject::getServerHost() const {
  m_lastCall = "getServerHost";
  return vString();
}

bool UTProject::deleteStore(vLCString const& name, int version, vLCString const& storeClass,
                            vLCString const& subClass) {
  m_lastCall = "deleteStore";
  bool deleted = false;
  for (auto it = m_stores.begin(); it != m_stores.end();) {
    if (it->getName() == name && it->getVersion() == version && myMatches(*it, storeClass, subClass)) {
      it = m_stores.erase(it);
      deleted = true;
    } else {
      ++it;
    }
  }
  return deleted;
}

bool UTProject::purgeStore(int, vLCString const&, vLCString const&, vLCString const&) {
  m_lastCall = "purgeStore";
  return false;
}

bool UTProject::hasStore(vLCString const& name, int version) {
  m_lastCall = "hasStore";
  for (StoreDetails const& d : m_stores)
    if (d.getName() == name && (version == 0 || d.getVersion() == version)) return true;
  return false;
}

StoreDetails UTProject::getStoreDetails(vLCString const& name, int version) const {
  m_lastCall = "getStoreDetails";
  for (StoreDetails const& d : m_stores)
    if (d.getName() == name && (version == 0 || d.getVersion() == version)) return d;
  return StoreDetails();
}

Project::AttributeSetDetailsList UTProject::getAttributeSetDetails(vLCString const&, int) {
  m_lastCall = "getStoreAttributeSets";
  return AttributeSetDetailsList();
}

void UTProject::addStore(StoreDetails const& details) { m_stores.push_back(details); }
