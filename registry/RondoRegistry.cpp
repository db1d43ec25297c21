#include "registry/RondoRegistry.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include "database/zon/CapiZonFactory.h"
#include "decorator/AttributeMappingDecorator.h"
#include "decorator/ProfilingAttributeSetDecorator.h"
#include "decorator/StoreDecoratorFactory.h"
#include "decorator/TranslatingAttributeSetDecorator.h"
#include "filestore/memory/InMemoryAttributeSet.h"
#include "filestore/memory/InMemoryStore.h"
#include "filestore/ascii/AsciiDiskStore.h"
#include "filestore/disk/ExistingAttributeFile.h"
#include "filestore/fdm/FdmDiskStore.h"
#include "filestore/nyx/NyxDiskStore.h"
#include "filestore/nyx/NyxFormat.h"
#include "filestore/offload/OffloadAttributeFile.h"
#include "filestore/offload/OffloadDiskStore.h"
#include "filestore/segd/SegdDiskStore.h"
#include "filestore/segy/SegyDiskStore.h"
#include "filestore/shapefile/ShapefileDiskStore.h"
#include "foundation/Message.h"
#include "project/AttributeSetFactory.h"
#include "project/CapiMaker.h"
#include "project/CapiProject.h"
#include "project/ProjectCatalogFactory.h"
#include "project/ProjectFactory.h"
#include "project/StoreFactory.h"
#include "remote/ClientAttributeSet.h"
#include "remote/ClientProject.h"
#include "remote/ClientProjectCatalog.h"

namespace {

// --- the client proxies of a data server -------------------------------------

ProjectCatalog* refuseClientCatalog(vString const&, ProjectType::PROJECT_TYPE type, vString const&) {
  Message::fatal("registerDataServerClasses", 0,
                 "A data server does not start a data server: a catalog of type %s would be a client of one.",
                 ProjectType::getProjectTypeName(type).c_str());
}

ProjectCatalog* makeClientCatalog(vString const& first, ProjectType::PROJECT_TYPE type, vString const& second) {
  return new ClientProjectCatalog(first, type, second);
}

Project* makeClientProject(vHandle<ProjectCatalog> const& catalog) { return new ClientProject(catalog); }

vHandle<AttributeSet> makeClientAttributeSet(vHandle<Project> const& project) {
  return vHandle<AttributeSet>(new ClientAttributeSet(project));
}

// --- the database back end, linked into the process --------------------------

ProjectCatalog* makeZonCatalog(vString const& host, ProjectType::PROJECT_TYPE, vString const& server) {
  return CapiZonFactory::makeProjectCatalog(host, server);
}

Project* makeZonProject(vHandle<ProjectCatalog> const& catalog) {
  return CapiZonFactory::makeProject(catalog);
}

vHandle<Store> makeZonStore(vHandle<Project> const& project) { return CapiZonFactory::createStore(project); }

vHandle<Store> createServedZonStore(StoreDescription const& description, vLCString const& attributeSetName,
                                    KeyList const& keys, StoreCreationOptions const*) {
  return CapiZonFactory::createStore(description, attributeSetName, keys);
}

// The in-process sets of a database project (CapiAttributeSetW) are its
// stores.
vHandle<AttributeSet> makeZonSet(vHandle<Project> const& project, vLCString const&, vLCString const&) {
  return vHandle_cast<AttributeSet>(CapiZonFactory::createStore(project));
}

// --- the stores, sets and views of the layers above the project layer ------

vHandle<Store> makeInMemoryStore(vHandle<Project> const& project) {
  return vHandle<Store>(new InMemoryStore(project));
}

// A file store is built on no project and then opened on the description.
vHandle<Store> openSegyFile(StoreDescription const& description) {
  SegyDiskStore* store = new SegyDiskStore;
  vHandle<Store> handle(store);
  store->open(description);
  return handle;
}

vHandle<Store> openSegdFile(StoreDescription const& description) {
  SegdDiskStore* store = new SegdDiskStore;
  vHandle<Store> handle(store);
  store->open(description);
  return handle;
}

vHandle<Store> openOffloadFile(StoreDescription const& description) {
  OffloadDiskStore* store = new OffloadDiskStore;
  vHandle<Store> handle(store);
  store->open(description);
  return handle;
}

vHandle<Store> openShapefile(StoreDescription const& description) {
  ShapefileDiskStore* store = new ShapefileDiskStore;
  vHandle<Store> handle(store);
  store->open(description);
  return handle;
}

// Why a file cannot be read, as the system says it; blank when it can.
std::string whyUnreadable(char const* name) {
  struct stat s;
  if (::stat(name, &s) != 0) return std::strerror(errno);
  if (S_ISDIR(s.st_mode)) return std::strerror(EISDIR);
  int const fd = ::open(name, O_RDONLY);
  if (fd < 0) return std::strerror(errno);
  ::close(fd);
  return std::string();
}

vHandle<Store> openTextTable(StoreDescription const& description) {
  AsciiDiskStore* store = new AsciiDiskStore;
  vHandle<Store> handle(store);
  if (!store->open(description)) {
    // The store only says that it failed; the reason is the file's.
    std::string const why = whyUnreadable(description.getFlatFileName().c_str());
    Message::fatal("StoreFactory::openStore", 0, "The text table '%s' could not be opened%s.",
                   description.getFlatFileName().c_str(), why.empty() ? "" : (": " + why).c_str());
  }
  return handle;
}

vHandle<Store> createTextTable(StoreDescription const& description, vLCString const&) {
  AsciiDiskStore* store = new AsciiDiskStore;
  vHandle<Store> handle(store);
  store->create(description);
  return handle;
}

// A text table is known by the built-in format its first bytes name.
vFilename findTextTableFormat(vFilename const& file, vLCString& storeClass) {
  vFilename const spec = AsciiFormat::getSpecification(file);
  if (spec.getFilename().isBlank()) return spec;
  storeClass = AsciiFormat(spec).getStoreClass();
  return spec;
}

// The attribute set name of a new shapefile is its subclass: "points",
// "polylines" or "polygons" (or blank, for points).
vHandle<Store> createShapefile(StoreDescription const& description, vLCString const& subClass) {
  ShapefileDiskStore* store = new ShapefileDiskStore;
  vHandle<Store> handle(store);
  store->create(description, subClass);
  return handle;
}

vHandle<Store> openFdmFile(StoreDescription const& description) {
  FdmDiskStore* store = new FdmDiskStore;
  vHandle<Store> handle(store);
  store->open(description);
  return handle;
}

vHandle<Store> openNyxFile(StoreDescription const& description) {
  NyxDiskStore* store = new NyxDiskStore;
  vHandle<Store> handle(store);
  store->open(description);
  return handle;
}

vHandle<Store> createNyxFile(StoreDescription const& description, vLCString const&) {
  NyxDiskStore* store = new NyxDiskStore;
  vHandle<Store> handle(store);
  store->create(description);
  return handle;
}

// The mapping file that fits a Nyx file, by the name of its specification.
vFilename findNyxSpecification(StoreDescription const& description) {
  return vFilename(NyxFormat::getSpecification(description));
}

vHandle<AttributeSet> makeInMemoryAttributeSet(vHandle<Project> const& project) {
  return vHandle<AttributeSet>(new InMemoryAttributeSet(project));
}

vHandle<AttributeSet> makeProfilingDecorator(vHandle<AttributeSet> const& set) {
  return vHandle<AttributeSet>(new ProfilingAttributeSetDecorator(set));
}

vHandle<AttributeSet> makeTranslatingDecorator(vHandle<AttributeSet> const& set) {
  return vHandle<AttributeSet>(new TranslatingAttributeSetDecorator(set));
}

}  // namespace

void registerRondoClasses() {
  // How the store layer sees an in-memory store (Store::writeIMSRange).
  Store::setInMemoryStoreView(&InMemoryStore::asAttributeSet);
  // The stores and attribute sets of UnitTest projects, and the attribute
  // set views that the site's configuration may ask for. The file stores,
  // the database store join here as they are
  // linked in; until then a file of their format is one that this build
  // cannot handle, and the others are reported as not available.
  StoreFactory::registerMakers("InMemoryStore", {&makeInMemoryStore, nullptr, nullptr, nullptr});
  StoreFactory::registerMakers("SegyDiskStore", {nullptr, &openSegyFile, nullptr, nullptr});
  StoreFactory::registerMakers("SegdDiskStore", {nullptr, &openSegdFile, nullptr, nullptr});
  StoreFactory::registerMakers("OffloadDiskStore", {nullptr, &openOffloadFile, nullptr, nullptr});
  StoreFactory::registerMakers("FdmDiskStore", {nullptr, &openFdmFile, nullptr, nullptr});
  StoreFactory::registerMakers("NyxDiskStore", {nullptr, &openNyxFile, &createNyxFile, nullptr});
  StoreFactory::registerNyxSpecificationFinder(&findNyxSpecification);
  StoreFactory::registerMakers("AsciiDiskStore", {nullptr, &openTextTable, &createTextTable, nullptr});
  StoreFactory::registerAsciiSpecificationFinder(&findTextTableFormat);
  StoreFactory::registerMakers("ShapefileDiskStore", {nullptr, &openShapefile, &createShapefile, nullptr});
  // Offload data files by their extension, for the stores that open
  // attribute files by kind.
  OffloadAttributeFile::registerFile(ExistingAttributeFile::getInstance());
  AttributeSetFactory::registerSetMaker("InMemoryAttributeSet", &makeInMemoryAttributeSet);
  AttributeSetFactory::registerDecoratorMaker("ProfilingAttributeSetDecorator", &makeProfilingDecorator);
  AttributeSetFactory::registerDecoratorMaker("TranslatingAttributeSetDecorator", &makeTranslatingDecorator);
  // The mapping file of a store that the factory maps (a Nyx store), and the
  // view that applies it.
  StoreFactory::registerAttributeMapping(
      {&AttributeMappingDecorator::resolveMapFilename, &StoreDecoratorFactory::addAttributeMapping});
  // The client proxies, through which the catalogs, projects and sets of a
  // data server are reached; and the database back end.
  ProjectCatalogFactory::registerMaker("ClientProjectCatalog", &makeClientCatalog);
  ProjectFactory::registerMaker("ClientProject", &makeClientProject);
  // Projects of type Zonmesh live in a database that this process reaches
  // itself, through the Kvs library; Capi answers with its servers.
  ProjectCatalogFactory::registerMaker("ZonProjectCatalog", &makeZonCatalog);
  ProjectFactory::registerMaker("ZonProject", &makeZonProject);
  Capi::registerCapiZonServers({&CapiZonFactory::getDefaultServer, &CapiZonFactory::getAvailableServers});
  StoreFactory::registerMakers("ZonStore", {&makeZonStore, nullptr, nullptr, &createServedZonStore});
  CapiMaker::registerAttributeSetMaker(&makeZonSet);
  AttributeSetFactory::registerSetMaker("ClientAttributeSet", &makeClientAttributeSet);
}

void registerDataServerClasses() {
  registerRondoClasses();
  ProjectCatalogFactory::registerMaker("ClientProjectCatalog", &refuseClientCatalog);
}
