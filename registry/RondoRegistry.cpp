#include "registry/RondoRegistry.h"

#include <cstdlib>
#include <cstring>

#include "decorator/ProfilingAttributeSetDecorator.h"
#include "filestore/memory/InMemoryAttributeSet.h"
#include "filestore/memory/InMemoryStore.h"
#include "foundation/Message.h"
#include "foundation/vTokenizer.h"
#include "project/AttributeSetFactory.h"
#include "project/ProjectCatalogFactory.h"
#include "project/ProjectFactory.h"
#include "project/StoreDetails.h"
#include "project/StoreFactory.h"
#include "project/UTProject.h"
#include "project/UTProjectCatalog.h"

namespace {

// Names its two hosts as the client catalog does: for Kelp the first is the
// server and the second the data host, for any other type the reverse. So a
// Kelp catalog is found again in the factory's cache by its server.
class UnitTestClientCatalog : public UTProjectCatalog {
 public:
  UnitTestClientCatalog(vString const& first, ProjectType::PROJECT_TYPE type, vString const& second)
      : UTProjectCatalog(type == ProjectType::KELP ? second : first, type),
        m_server(type == ProjectType::KELP ? first : second) {}
  vString getServer() const override { return m_server; }

 private:
  vString m_server;
};

ProjectCatalog* makeUnitTestClientCatalog(vString const& first, ProjectType::PROJECT_TYPE type,
                                          vString const& second) {
  return new UnitTestClientCatalog(first, type, second);
}

// One scripted store: "name.version[:class[:subclass]]".
StoreDetails parseScriptedStore(vString const& entry, ProjectType::PROJECT_TYPE type) {
  vTokenizer fields(entry, ":");
  vString nameAndVersion;
  vString storeClass;
  vString subClass;
  fields.next(nameAndVersion);
  fields.next(storeClass);
  fields.next(subClass);

  int dot = 0;
  if (nameAndVersion.searchForLast('.', dot) != 0 || dot == 0)
    Message::fatal("RondoRegistry::makeUnitTestClientProject", 0, "RONDO_UNITTEST_STORES entry '%s' is not name.version[:class[:subclass]].",
                   entry.c_str());
  vString version = nameAndVersion.substr(static_cast<unsigned int>(dot) + 1);
  if (!version.isInteger())
    Message::fatal("RondoRegistry::makeUnitTestClientProject", 0, "RONDO_UNITTEST_STORES entry '%s' is not name.version[:class[:subclass]].",
                   entry.c_str());
  StoreDetails details(type, vString(), vLCString(nameAndVersion.substr(0, static_cast<unsigned int>(dot))),
                       version.readi());
  details.setClass(vLCString(storeClass));
  details.setSubClass(vLCString(subClass));
  return details;
}

Project* makeUnitTestClientProject(vHandle<ProjectCatalog> const& catalog) {
  UTProject* project = new UTProject(catalog);
  char const* stores = std::getenv("RONDO_UNITTEST_STORES");
  if (stores == nullptr) return project;
  try {
    vTokenizer entries(vString(stores), " \t\n");
    vString entry;
    while (entries.next(entry)) project->addStore(parseScriptedStore(entry, catalog->getProjectType()));
  } catch (...) {
    delete project;
    throw;
  }
  return project;
}

// --- the stores, sets and views of the layers above the project layer ------

vHandle<Store> makeInMemoryStore(vHandle<Project> const& project) {
  return vHandle<Store>(new InMemoryStore(project));
}

vHandle<AttributeSet> makeInMemoryAttributeSet(vHandle<Project> const& project) {
  return vHandle<AttributeSet>(new InMemoryAttributeSet(project));
}

vHandle<AttributeSet> makeProfilingDecorator(vHandle<AttributeSet> const& set) {
  return vHandle<AttributeSet>(new ProfilingAttributeSetDecorator(set));
}

}  // namespace

bool rondoClientIsUnitTest() {
  char const* seam = std::getenv("RONDO_CLIENT_CATALOG_IS_UNITTEST");
  return seam != nullptr && std::strcmp(seam, "1") == 0;
}

void registerRondoClasses() {
  // How the store layer sees an in-memory store (Store::writeIMSRange).
  Store::setInMemoryStoreView(&InMemoryStore::asAttributeSet);
  // The stores and attribute sets of UnitTest projects, and the attribute
  // set views that the site's configuration may ask for. The file stores,
  // the database store and the translating view join here as they are
  // linked in; until then a file of their format is one that this build
  // cannot handle, and the others are reported as not available.
  StoreFactory::registerMakers("InMemoryStore", {&makeInMemoryStore, nullptr, nullptr, nullptr});
  AttributeSetFactory::registerSetMaker("InMemoryAttributeSet", &makeInMemoryAttributeSet);
  AttributeSetFactory::registerDecoratorMaker("ProfilingAttributeSetDecorator", &makeProfilingDecorator);
  // The remote client proxies and the database projects register here as
  // their layers are linked in.
  if (rondoClientIsUnitTest()) {
    ProjectCatalogFactory::registerMaker("ClientProjectCatalog", &makeUnitTestClientCatalog);
    ProjectFactory::registerMaker("ClientProject", &makeUnitTestClientProject);
  }
}
