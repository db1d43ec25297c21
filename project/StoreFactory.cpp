#include "project/StoreFactory.h"

#include <map>

#include "foundation/Message.h"
#include "project/AttributeSetFactory.h"
#include "project/ProjectFactory.h"
#include "project/StoreImp.h"

namespace {

struct FactoryState {
  std::list<vHandle<Store> > pushed;
  std::map<vString, StoreFactory::Makers> makers;
  StoreFactory::NyxSpecificationFinder nyxFinder = nullptr;
  StoreFactory::AsciiSpecificationFinder asciiFinder = nullptr;
  StoreFactory::AttributeMapping mapping = {nullptr, nullptr};
};

FactoryState& state() {
  static FactoryState s;
  return s;
}

struct TagEntry {
  char const* tag;
  char const* className;
  bool creatable;
};

// Which store serves which file format tag, and which of them can make a
// new file.
TagEntry const kFileTags[] = {
    {"segy", "SegyDiskStore", false},    {"sgy", "SegyDiskStore", false},  {"dsegy", "SegyDiskStore", false},
    {"segd", "SegdDiskStore", false},    {"sgd", "SegdDiskStore", false},  {"dsegd", "SegdDiskStore", false},
    {"ascii", "AsciiDiskStore", true},   {"txt", "AsciiDiskStore", true},  {"shapefile", "ShapefileDiskStore", true},
    {"shp", "ShapefileDiskStore", true}, {"fdm", "FdmDiskStore", false},   {"offload", "OffloadDiskStore", false},
    {"nyx", "NyxDiskStore", true},       {"cst", "NyxDiskStore", true},    {"dat", "NyxDiskStore", true},
    {"nyxcst", "NyxDiskStore", true},    {"nyxdat", "NyxDiskStore", true},
};

char const* const kNyxStore = "NyxDiskStore";

TagEntry const* findTag(vString const& tag) {
  vLCString lower(tag);
  for (TagEntry const& entry : kFileTags)
    if (lower == entry.tag) return &entry;
  return nullptr;
}

bool isEmpty(StoreFactory::Makers const& m) {
  return m.forProject == nullptr && m.openFile == nullptr && m.createFile == nullptr && m.createServed == nullptr;
}

// The class that a project type's stores are of, or null for the plain
// store whose sets the attribute set factory makes.
char const* projectStoreClass(ProjectType::PROJECT_TYPE type) {
  if (type == ProjectType::UNITTEST) return "InMemoryStore";
  if (type == ProjectType::ZONMESH) return "ZonStore";
  return nullptr;
}

// The store of a project whose back end has no store class of its own: the
// attribute sets, primary and secondary, are those that the attribute set
// factory makes for the project.
class ProjectStore : public StoreImp {
 public:
  explicit ProjectStore(vHandle<Project> const& project) : StoreImp(project) {}
  ~ProjectStore() override {
    if (isOpen()) {
      try {
        close();
      } catch (...) {
        // A store that cannot close in its destructor has reported why.
      }
    }
  }

 protected:
  vHandle<AttributeSet> doCreateAttributeSet(vHandle<Project> const& project) const override {
    return AttributeSetFactory::create(project);
  }
};

[[noreturn]] void notAvailable(char const* label, char const* className) {
  Message::fatal(label, 0, "Class %s is not available: no maker is registered for it (see registerRondoClasses).",
                 className);
}

}  // namespace

// --- registration -------------------------------------------------------------

StoreFactory::Makers StoreFactory::registerMakers(vString const& className, Makers const& makers) {
  Makers previous = getMakers(className);
  if (isEmpty(makers))
    state().makers.erase(className);
  else
    state().makers[className] = makers;
  return previous;
}

StoreFactory::Makers StoreFactory::getMakers(vString const& className) {
  auto it = state().makers.find(className);
  return it == state().makers.end() ? Makers{nullptr, nullptr, nullptr, nullptr} : it->second;
}

StoreFactory::NyxSpecificationFinder StoreFactory::registerNyxSpecificationFinder(NyxSpecificationFinder finder) {
  NyxSpecificationFinder previous = state().nyxFinder;
  state().nyxFinder = finder;
  return previous;
}

StoreFactory::AsciiSpecificationFinder StoreFactory::registerAsciiSpecificationFinder(AsciiSpecificationFinder finder) {
  AsciiSpecificationFinder previous = state().asciiFinder;
  state().asciiFinder = finder;
  return previous;
}

StoreFactory::AttributeMapping StoreFactory::registerAttributeMapping(AttributeMapping const& mapping) {
  AttributeMapping previous = state().mapping;
  state().mapping = mapping;
  return previous;
}

vString StoreFactory::getFileStoreClass(vString const& tag) {
  TagEntry const* entry = findTag(tag);
  return entry ? vString(entry->className) : vString();
}

// --- the queue ------------------------------------------------------------------

std::list<vHandle<Store> >& StoreFactory::myPushedStores() { return state().pushed; }

void StoreFactory::pushStore(vHandle<Store> store) { myPushedStores().push_back(store); }

void StoreFactory::clearStores() { myPushedStores().clear(); }

unsigned int StoreFactory::getNPushedStores() { return static_cast<unsigned int>(myPushedStores().size()); }

// --- identification -----------------------------------------------------------------

bool StoreFactory::identifyFileFormat(StoreDescription& description, StoreOpenOptions const* options) {
  vString const& extension = description.getFlatFileName().getExtension();
  // Shapefiles are known by their exact, lower-case extensions only.
  if (extension == "shp" || extension == "shx" || extension == "dbf") {
    description.setFileFormat("shapefile");
    description.setStoreClass("shapes");
    return true;
  }
  vLCString lower(extension);
  if (lower == "cst" || lower == "nyx" || lower == "dat") {
    description.setFileFormat(lower == "dat" ? "nyxdat" : "nyxcst");
    description.setStoreClass("seismic");
    if (description.getFormatSpec().isBlank() && options != nullptr && options->getAutoSpecifyCSTFiles() &&
        state().nyxFinder != nullptr) {
      vFilename spec = state().nyxFinder(description);
      if (!spec.getFilename().isBlank()) description.setFormatSpec(spec.getFilename());
    }
    return true;
  }
  if (lower == "sgy") {
    description.setFileFormat("segy");
    description.setStoreClass("seismic");
    return true;
  }
  if (!description.getFormatSpec().isBlank()) return true;
  if (state().asciiFinder == nullptr) return false;
  vLCString storeClass;
  vFilename spec = state().asciiFinder(description.getFlatFileName(), storeClass);
  if (spec.getFilename().isBlank()) return false;
  description.setFileFormat("ascii");
  description.setFormatSpec(spec.getFilename());
  description.setStoreClass(storeClass);
  return true;
}

// --- making stores -----------------------------------------------------------------

vHandle<Store> StoreFactory::create(vHandle<Project> project) {
  std::list<vHandle<Store> >& pushed = myPushedStores();
  if (!pushed.empty()) {
    vHandle<Store> store = pushed.front();
    pushed.pop_front();
    return store;
  }
  char const* className = projectStoreClass(project->getProjectType());
  if (className == nullptr) return vHandle<Store>(new ProjectStore(project));
  Makers makers = getMakers(className);
  if (makers.forProject == nullptr) notAvailable("StoreFactory::create", className);
  return makers.forProject(project);
}

void StoreFactory::myCannotHandle(char const* label, StoreDescription const& description, vString const& tag) {
  char const* file = description.getFlatFileName().c_str();
  if (tag.isBlank())
    Message::fatal(label, 0, "We do not know the type of file '%s', therefore we cannot handle it!", file);
  Message::fatal(label, 0, "The file '%s' is of a type '%s' which we cannot handle yet!", file, tag.c_str());
}

vString StoreFactory::myFileTag(StoreDescription& copy, StoreOpenOptions const* options) {
  if (!copy.getFileFormat().isBlank()) return copy.getFileFormat();
  if (identifyFileFormat(copy, options)) return copy.getFileFormat();
  return vLCString(copy.getFlatFileName().getExtension());
}

vHandle<Store> StoreFactory::myOpenFile(StoreDescription const& description, StoreOpenOptions const* options) {
  char const* const label = "StoreFactory::openStore";
  StoreDescription copy(description);
  vString tag = myFileTag(copy, options);
  TagEntry const* entry = findTag(tag);
  if (entry == nullptr) myCannotHandle(label, copy, tag);
  Makers makers = getMakers(entry->className);
  if (makers.openFile == nullptr) myCannotHandle(label, copy, tag);
  vHandle<Store> store = makers.openFile(copy);
  if (vLCString(entry->className) == vLCString(kNyxStore)) return myMapAttributes(store, copy);
  return store;
}

vHandle<Store> StoreFactory::myMapAttributes(vHandle<Store> store, StoreDescription const& description) {
  AttributeMapping const& mapping = state().mapping;
  vFilename mapFile;
  if (mapping.resolve != nullptr && mapping.apply != nullptr &&
      mapping.resolve(description.getFlatFileName(), description.getFormatSpec(), mapFile))
    return mapping.apply(store, mapFile);
  if (!description.getFormatSpec().isBlank())
    Message::fatal("StoreFactory::openStore", 0, "Could not find the attribute mapping file '%s'!",
                   description.getFormatSpec().c_str());
  return store;
}

vHandle<Store> StoreFactory::openStore(StoreDescription const& description, vLCString const& attributeSetName,
                                       StoreOpenOptions const* options) {
  if (description.isInMemory()) {
    vLCString name;
    vHandle<Store> store = description.getAddressAndName(name);
    if (!store->isOpen()) store->open(name, 0, "", "", nullptr);
    return store;
  }
  if (description.isFlatFile()) return myOpenFile(description, options);
  vHandle<Project> project = ProjectFactory::openProject(description.getFullProjectName());
  vHandle<Store> store = create(project);
  store->open(description.getFullStoreName(), description.getStoreClass(), attributeSetName, options);
  return store;
}

vHandle<Store> StoreFactory::myCreateFile(StoreDescription const& description, vLCString const& attributeSetName) {
  char const* const label = "StoreFactory::createStore";
  vString tag = description.getFileFormat();
  if (tag.isBlank()) tag = vLCString(description.getFlatFileName().getExtension());
  TagEntry const* entry = findTag(tag);
  if (entry == nullptr || !entry->creatable) myCannotHandle(label, description, tag);
  Makers makers = getMakers(entry->className);
  if (makers.createFile == nullptr) myCannotHandle(label, description, tag);
  return makers.createFile(description, attributeSetName);
}

vHandle<Store> StoreFactory::createStore(StoreDescription const& description, vLCString const& attributeSetName,
                                         KeyList const& keys, StoreCreationOptions const* options) {
  char const* const label = "StoreFactory::createStore";
  if (description.isInMemory()) {
    vLCString name;
    vHandle<Store> store = description.getAddressAndName(name);
    if (!store->isOpen()) store->create(name, description.getStoreClass(), attributeSetName, keys, options);
    return store;
  }
  if (description.isFlatFile()) return myCreateFile(description, attributeSetName);
  if (description.getProjectType() == ProjectType::ZONMESH) {
    Makers makers = getMakers("ZonStore");
    if (makers.createServed == nullptr) notAvailable(label, "ZonStore");
    return makers.createServed(description, attributeSetName, keys, options);
  }
  vHandle<Project> project = ProjectFactory::openProject(description.getFullProjectName());
  vHandle<Store> store = create(project);
  store->create(description.getFullStoreName(), description.getStoreClass(), attributeSetName, keys, options);
  return store;
}

vHandle<Store> StoreFactory::updateStore(StoreDescription const& description, vLCString const& attributeSetName,
                                         StoreOpenOptions const* options) {
  if (description.isFlatFile())
    Message::fatal("StoreFactory::updateStore", 0, "Cannot handle file names yet.%s",
                   description.getFlatFileName().c_str());
  if (description.isInMemory()) {
    vLCString name;
    vHandle<Store> store = description.getAddressAndName(name);
    if (!store->isOpen()) store->update(name, 0, "", "", options);
    return store;
  }
  vHandle<Project> project = ProjectFactory::openProject(description.getFullProjectName());
  vHandle<Store> store = create(project);
  store->update(description.getFullStoreName(), description.getStoreClass(), attributeSetName, options);
  return store;
}

bool StoreFactory::hasStore(StoreDescription const& description) {
  if (description.isInMemory()) return true;
  if (!description.isCapi())
    Message::fatal("StoreFactory::hasStore", 0, "Cannot handle file names yet.%s",
                   description.getFlatFileName().c_str());
  vHandle<Project> project = ProjectFactory::openProject(description.getFullProjectName());
  return project->hasStore(description.getStoreName(), description.getVersion());
}
