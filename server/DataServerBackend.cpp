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
#include "project/ProjectCatalogFactory.h"
#include "project/ProjectFactory.h"
#include "project/StoreDetails.h"
#include "project/UTProject.h"
#include "remote/ClientProjectCatalog.h"

namespace {

char const* const kScripted = "RONDO_UNITTEST_STORES";

// One scripted store: "name.version[:class[:subclass]]".
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
    Message::fatal(label, 0, "%s entry '%s' is not name.version[:class[:subclass]].", kScripted, entry.c_str());
  vString const version = nameAndVersion.substr(static_cast<unsigned int>(dot) + 1);
  if (!version.isInteger())
    Message::fatal(label, 0, "%s entry '%s' is not name.version[:class[:subclass]].", kScripted, entry.c_str());
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

void addScriptedStores(UTProject& project, ProjectType::PROJECT_TYPE type, std::map<vLCString, vString>& files) {
  char const* stores = std::getenv(kScripted);
  if (stores == nullptr) return;
  vTokenizer entries(vString(stores), " \t\n");
  vString entry;
  while (entries.next(entry)) {
    vString const file = takeStoreFile(entry);
    StoreDetails const details = parseScriptedStore(entry, type);
    project.addStore(details);
    if (!file.isBlank()) files[details.getName()] = file;
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
  if (!SystemPropertyManager::hasSystemProperty("DataServer", "BACKEND")) return ProjectType::UNITTEST;
  SystemProperty const property = SystemPropertyManager::getSystemProperty("DataServer", "BACKEND");
  if (property.getValues().empty()) return ProjectType::UNITTEST;
  vString const text = property.getValues().front();
  ProjectType::PROJECT_TYPE type = ProjectType::NOTYPE;
  if (text.isInteger() && ProjectType::isValidProjectType(text.readi()))
    type = static_cast<ProjectType::PROJECT_TYPE>(text.readi());
  else if (!ProjectType::isValidProjectType(text, type))
    Message::fatal(label, 0, "The DataServer BACKEND '%s' is not a project type.", text.c_str());
  if (type == ProjectType::NOTYPE || type == ProjectType::RONDO || type == ProjectType::KELP ||
      type == ProjectType::DORN)
    Message::fatal(label, 0, "The DataServer BACKEND cannot be %s: its projects are served by a data server.",
                   ProjectType::getProjectTypeName(type).c_str());
  return type;
}

vHandle<ProjectCatalog> DataServerBackend::catalog(vString const& host) {
  vHandle<ProjectCatalog> made = ProjectCatalogFactory::create(host, m_type, vString());
  if (dynamic_cast<ClientProjectCatalog*>(made.pointer()) != nullptr)
    Message::fatal("DataServerBackend::catalog", 0,
                   "The DataServer BACKEND %s is served by a data server itself on host %s.",
                   ProjectType::getProjectTypeName(m_type).c_str(), host.c_str());
  return made;
}

vHandle<Project> DataServerBackend::project(vHandle<ProjectCatalog> const& catalog, vLCString const& name) {
  auto const found = m_projects.find(name);
  if (found != m_projects.end()) {
    if (!found->second->isOpen()) found->second->open(name);
    return found->second;
  }
  vHandle<Project> made = ProjectFactory::create(catalog);
  made->open(name);
  if (UTProject* scripted = dynamic_cast<UTProject*>(made.pointer()))
    addScriptedStores(*scripted, catalog->getProjectType(), m_storeFiles[name]);
  m_projects[name] = made;
  return made;
}

bool DataServerBackend::myKeepsSets(vHandle<Project> const& project) const {
  return project->getProjectType() == ProjectType::UNITTEST;
}

vHandle<AttributeSet> DataServerBackend::newSet(vHandle<Project> const& project) {
  return AttributeSetFactory::create(project);
}

vHandle<AttributeSet> DataServerBackend::setFor(vHandle<Project> const& project, vLCString const& store,
                                                int version) {
  if (!myKeepsSets(project)) return newSet(project);
  auto const key = std::make_pair(project->getName(), store);
  auto const found = m_sets.find(key);
  if (found != m_sets.end()) return found->second;
  if (!project->hasStore(store, version))
    Message::fatal("DataServerBackend::setFor", 0, "Store %s version %d is not in project %s.", store.c_str(),
                   version, project->getName().c_str());
  auto const files = m_storeFiles.find(project->getName());
  if (files != m_storeFiles.end()) {
    auto const file = files->second.find(store);
    if (file != files->second.end()) return m_sets[key] = loadStoreFile(project, store, file->second);
  }
  StoreDetails const details = project->getStoreDetails(store, version);
  vHandle<AttributeSet> made = newSet(project);
  made->create(store, orNone(details.getClass()), orNone(details.getSubClass()), KeyList(), nullptr);
  made->close();
  m_sets[key] = made;
  return made;
}

void DataServerBackend::created(vHandle<Project> const& project, vHandle<AttributeSet> const& set,
                                vLCString const& store, vLCString const& className, vLCString const& subClass) {
  if (!myKeepsSets(project)) return;
  m_sets[std::make_pair(project->getName(), store)] = set;
  UTProject* scripted = dynamic_cast<UTProject*>(project.pointer());
  if (scripted == nullptr || scripted->hasStore(store, 0)) return;
  StoreDetails details(project->getProjectType(), vString(), store, 1);
  details.setClass(className);
  details.setSubClass(subClass);
  scripted->addStore(details);
}
