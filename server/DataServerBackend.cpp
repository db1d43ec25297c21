#include "server/DataServerBackend.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "filestore/memory/InMemoryStore.h"
#include "foundation/Message.h"
#include "foundation/Packer.h"
#include "foundation/SystemPropertyManager.h"
#include "foundation/vTokenizer.h"
#include "project/AttributeSetFactory.h"
#include "project/CapiAttributeSetW.h"
#include "project/ProjectCatalogFactory.h"
#include "project/ProjectFactory.h"
#include "project/StoreDetails.h"
#include "project/UTProject.h"
#include "server/DirectoryAttributeSet.h"
#include "server/DirectoryProject.h"
#include "server/DirectoryProjectCatalog.h"

namespace {

char const* const kScripted = "RONDO_UNITTEST_STORES";

// One scripted store: "name.version[:class[:subclass]]", its file taken off.
StoreDetails parseScriptedStore(vString const& entry, ProjectType::PROJECT_TYPE type) {
  char const* const label = "DataServerBackend::project";
  vTokenizer fields(entry, ":");
  vString nameAndVersion;
  vString storeClass;
  vString subClass;
  fields.next(nameAndVersion);
  fields.next(storeClass);
  fields.next(subClass);
  int dot = 0;
  if (nameAndVersion.searchForLast('.', dot) != 0 || dot == 0)
    Message::fatal(label, 0, "%s entry '%s' is not name.version[:class[:subclass[:file]]].", kScripted, entry.c_str());
  vString const version = nameAndVersion.substr(static_cast<unsigned int>(dot) + 1);
  if (!version.isInteger())
    Message::fatal(label, 0, "%s entry '%s' is not name.version[:class[:subclass[:file]]].", kScripted, entry.c_str());
  StoreDetails details(type, vString(), vLCString(nameAndVersion.substr(0, static_cast<unsigned int>(dot))),
                       version.readi());
  details.setClass(vLCString(storeClass));
  details.setSubClass(vLCString(subClass));
  return details;
}

// An entry's fourth field, a packed store file, is everything after the
// third ':', so that a file name may hold one; the entry keeps the rest.
vString takeStoreFile(vString& entry) {
  std::string const text = entry.c_str();
  size_t at = std::string::npos;
  for (int n = 0; n < 3; ++n) {
    at = text.find(':', at == std::string::npos ? 0 : at + 1);
    if (at == std::string::npos) return vString();
  }
  entry = vString(text.substr(0, at).c_str());
  return vString(text.substr(at + 1).c_str());
}

void addScriptedStores(UTProject& project, ProjectType::PROJECT_TYPE type,
                       std::map<std::pair<vLCString, int>, vString>& files) {
  char const* stores = std::getenv(kScripted);
  if (stores == nullptr) return;
  vTokenizer entries(vString(stores), " \t\n");
  vString entry;
  while (entries.next(entry)) {
    vString const file = takeStoreFile(entry);
    StoreDetails const details = parseScriptedStore(entry, type);
    project.addStore(details);
    if (!file.isBlank()) files[std::make_pair(details.getName(), details.getVersion())] = file;
  }
}

// The primary set of the in-memory store packed in the file, closed.
vHandle<AttributeSet> loadStoreFile(vHandle<Project> const& project, vLCString const& store, vString const& file) {
  char const* const label = "DataServerBackend::setFor";
  std::ifstream in(file.c_str(), std::ios::binary);
  if (!in) Message::fatal(label, 0, "Store file '%s' of store %s cannot be read.", file.c_str(), store.c_str());
  std::vector<unsigned char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  if (bytes.empty()) Message::fatal(label, 0, "Store file '%s' of store %s is empty.", file.c_str(), store.c_str());
  Packer packer(static_cast<int>(bytes.size()), static_cast<unsigned char const*>(bytes.data()));
  InMemoryStore loaded(project);
  packer.unpack(loaded);
  vHandle<AttributeSet> set = loaded.getAttributeSets().front();
  set->close();
  return set;
}

// A set is made with a class and a subclass; a store listed without one
// gets this word.
vLCString orNone(vLCString const& text) { return text.isBlank() ? vLCString("none") : text; }

}  // namespace

DataServerBackend::DataServerBackend() : m_type(configuredType()) {}

ProjectType::PROJECT_TYPE DataServerBackend::configuredType() {
  char const* const label = "DataServerBackend::configuredType";
  if (!SystemPropertyManager::hasSystemProperty("DataServer", "BACKEND")) return ProjectType::FLATFILE;
  SystemProperty const property = SystemPropertyManager::getSystemProperty("DataServer", "BACKEND");
  if (property.getValues().empty()) return ProjectType::FLATFILE;
  vString const text = property.getValues().front();
  if (text.stricmp("directory") == 0) return ProjectType::FLATFILE;
  ProjectType::PROJECT_TYPE type = ProjectType::NOTYPE;
  if (text.isInteger() && ProjectType::isValidProjectType(text.readi()))
    type = static_cast<ProjectType::PROJECT_TYPE>(text.readi());
  else if (!ProjectType::isValidProjectType(text, type))
    Message::fatal(label, 0, "The DataServer BACKEND '%s' is not a project type.", text.c_str());
  if (type == ProjectType::FLATFILE) return type;
  // The factory is asked for the catalog now, so that a type it would serve
  // through a data server is refused before any request (the data server's
  // registry refuses to make a client catalog at all).
  ProjectCatalogFactory::create(vString(), type, vString());
  return type;
}

vHandle<ProjectCatalog> DataServerBackend::catalog(vString const& host) {
  if (m_type == ProjectType::FLATFILE) return vHandle<ProjectCatalog>(new DirectoryProjectCatalog(host));
  return ProjectCatalogFactory::create(host, m_type, vString());
}

vHandle<Project> DataServerBackend::project(vHandle<ProjectCatalog> const& catalog, vLCString const& name) {
  auto const found = m_projects.find(name);
  if (found != m_projects.end()) {
    if (!found->second->isOpen()) found->second->open(name);
    return found->second;
  }
  vHandle<Project> made = catalog->getProjectType() == ProjectType::FLATFILE
                              ? vHandle<Project>(new DirectoryProject(catalog))
                              : ProjectFactory::create(catalog);
  made->open(name);
  if (UTProject* scripted = dynamic_cast<UTProject*>(made.pointer()))
    addScriptedStores(*scripted, catalog->getProjectType(), m_storeFiles[name]);
  m_projects[name] = made;
  return made;
}

bool DataServerBackend::myKeepsSets(vHandle<Project> const& project) const {
  return project->getProjectType() == ProjectType::UNITTEST;
}

DataServerBackend::StoreKey DataServerBackend::myStoreKey(vHandle<Project> const& project, vLCString const& store,
                                                          int version) {
  if (version != 0) return StoreKey(store, version);
  int newest = 0;
  vHandle<Project::StoreDetailsList> const all = project->getStoreDetailsList(vLCString(), vLCString());
  for (StoreDetails const& details : *all)
    if (details.getName() == store && details.getVersion() > newest) newest = details.getVersion();
  return StoreKey(store, newest);
}

vHandle<AttributeSet> DataServerBackend::newSet(vHandle<Project> const& project) {
  if (project->getProjectType() == ProjectType::FLATFILE)
    return vHandle<AttributeSet>(new DirectoryAttributeSet(project));
  // A database project is read by this process itself, whatever host the
  // client named.
  if (project->getProjectType() == ProjectType::ZONMESH) return vHandle<AttributeSet>(new CapiAttributeSetW(project));
  return AttributeSetFactory::create(project);
}

vHandle<AttributeSet> DataServerBackend::setFor(vHandle<Project> const& project, vLCString const& store,
                                                int version) {
  if (!myKeepsSets(project)) return newSet(project);
  if (!project->hasStore(store, version))
    Message::fatal("DataServerBackend::setFor", 0, "Store %s version %d is not in project %s.", store.c_str(),
                   version, project->getName().c_str());
  StoreKey const storeKey = myStoreKey(project, store, version);
  auto const key = std::make_pair(project->getName(), storeKey);
  auto const found = m_sets.find(key);
  if (found != m_sets.end()) return found->second;
  auto const files = m_storeFiles.find(project->getName());
  if (files != m_storeFiles.end()) {
    auto const file = files->second.find(storeKey);
    if (file != files->second.end()) return m_sets[key] = loadStoreFile(project, store, file->second);
  }
  StoreDetails const details = project->getStoreDetails(store, storeKey.second);
  vHandle<AttributeSet> made = newSet(project);
  made->create(store, orNone(details.getClass()), orNone(details.getSubClass()), KeyList(), nullptr);
  made->close();
  m_sets[key] = made;
  return made;
}

void DataServerBackend::created(vHandle<Project> const& project, vHandle<AttributeSet> const& set,
                                vLCString const& store, vLCString const& className, vLCString const& subClass) {
  if (!myKeepsSets(project)) return;
  UTProject* scripted = dynamic_cast<UTProject*>(project.pointer());
  int const version = scripted != nullptr && scripted->hasStore(store, 0) ? myStoreKey(project, store, 0).second : 1;
  m_sets[std::make_pair(project->getName(), StoreKey(store, version))] = set;
  if (scripted == nullptr || scripted->hasStore(store, 0)) return;
  StoreDetails details(project->getProjectType(), vString(), store, 1);
  details.setClass(className);
  details.setSubClass(subClass);
  scripted->addStore(details);
}
