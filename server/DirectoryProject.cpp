#include "server/DirectoryProject.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

#include "foundation/Message.h"
#include "project/StoreDescription.h"
#include "project/StoreDetails.h"
#include "project/StoreFactory.h"
#include "server/DirectoryProjectCatalog.h"
#include "server/DirectoryTree.h"

namespace {

bool matches(vLCString const& filter, vLCString const& value) { return filter.isBlank() || filter == value; }

}  // namespace

DirectoryProject::DirectoryProject(vHandle<ProjectCatalog> const& catalog) : Project(catalog) {}

DirectoryProject::~DirectoryProject() {}

void DirectoryProject::open(vLCString const& name) {
  char const* const label = "DirectoryProject::open";
  std::string const text = name.c_str();
  if (text.empty() || text.find('/') != std::string::npos || text.find("..") != std::string::npos)
    Message::fatal(label, 0, "'%s' is not a project name: a name is not empty and holds no '/' and no '..'.",
                   name.c_str());
  DirectoryProjectCatalog const* catalog = dynamic_cast<DirectoryProjectCatalog const*>(m_catalog.pointer());
  if (catalog == nullptr) Message::fatal(label, 0, "Project %s has no directory catalog.", name.c_str());
  vString const& root = catalog->getRoot();
  // Names are folded to lower case: the first directory that folds to the
  // name is the project.
  for (std::string const& entry : DirectoryTree::entries(root)) {
    if (!(vLCString(entry.c_str()) == name)) continue;
    vString const path = DirectoryTree::resolve(root + "/" + entry.c_str());
    if (DirectoryTree::isDirectory(path) && DirectoryTree::isWithin(root, path)) {
      m_directory = path;
      m_name = name;
      return;
    }
  }
  Message::fatal(label, 0, "There is no project %s: the data server's directory %s has no such subdirectory.",
                 name.c_str(), root.c_str());
}

void DirectoryProject::close() {
  m_directory = vString();
  m_name = vLCString();
}

vString DirectoryProject::getProjectHost() const { return m_catalog->getHost(); }

void DirectoryProject::myMustBeOpen(char const* label) const {
  if (!isOpen()) Message::fatal(label, 0, "The project is not open.");
}

std::vector<DirectoryProject::Entry> DirectoryProject::myScan() const {
  std::vector<Entry> found;
  vString const& root = dynamic_cast<DirectoryProjectCatalog const&>(*m_catalog).getRoot();
  for (std::string const& name : DirectoryTree::entries(m_directory)) {
    vString const path = DirectoryTree::resolve(m_directory + "/" + name.c_str());
    if (!DirectoryTree::isRegularFile(path) || !DirectoryTree::isWithin(root, path)) continue;
    StoreDescription description{vFilename(m_directory + "/" + name.c_str())};
    if (!StoreFactory::identifyFileFormat(description, nullptr)) {
      // Offload data files, SEG-D records and FDM volumes are known by their
      // extension alone: the factory takes it as the format tag when it opens
      // them.
      vLCString const extension(vFilename(name.c_str()).getExtension());
      bool const fdm = extension == vLCString("fdm");
      // A shapefile named in upper case (WELLS.SHP) too, by its data part.
      bool const shapes = extension == vLCString("shp");
      bool const byExtension = extension == vLCString("offload") || extension == vLCString("segd") ||
                               extension == vLCString("sgd") || extension == vLCString("dsegd") || fdm || shapes;
      if (!byExtension ||
          StoreFactory::getMakers(StoreFactory::getFileStoreClass(extension)).openFile == nullptr)
        continue;
      description.setFileFormat(extension);
      description.setStoreClass(fdm ? "velocity" : shapes ? "shapes" : "seismic");
    }
    // A shapefile is one store, served by its .shp; its .shx and .dbf are
    // parts of it.
    if (description.getFileFormat() == vString("shapefile") &&
        !(vFilename(name.c_str()).getExtension() == vString("shp")))
      continue;
    vLCString const store(vFilename(name.c_str()).getRoot());
    bool taken = false;
    for (Entry const& earlier : found) {
      if (!(earlier.details.getName() == store)) continue;
      taken = true;
      if (m_skipped.insert(name).second)
        std::fprintf(stderr, "%d project %s: file %s skipped, store %s is file %s\n", static_cast<int>(::getpid()),
                     m_name.c_str(), name.c_str(), store.c_str(), vFilename(earlier.file).getName().c_str());
    }
    if (taken) continue;
    Entry entry;
    entry.details = StoreDetails(ProjectType::FLATFILE, vString(), store, 1);
    entry.details.setClass(description.getStoreClass());
    struct stat s;
    if (::stat(path.c_str(), &s) == 0) entry.details.setSize(static_cast<long long>(s.st_size));
    entry.file = path;
    entry.segy = description.getFileFormat() == vString("segy");
    found.push_back(entry);
  }
  std::fflush(stderr);
  return found;
}

DirectoryProject::Entry DirectoryProject::myFind(char const* label, vLCString const& name, int version) const {
  myMustBeOpen(label);
  if (version == 0 || version == 1)
    for (Entry const& entry : myScan())
      if (entry.details.getName() == name) return entry;
  Message::fatal(label, 0, "Store %s version %d is not in project %s.", name.c_str(), version, m_name.c_str());
}

vHandle<Project::StoreList> DirectoryProject::getStoreList(vLCString const& storeClass, vLCString const& subClass) {
  myMustBeOpen("DirectoryProject::getStoreList");
  vHandle<StoreList> list(new StoreList);
  for (Entry const& entry : myScan())
    if (matches(storeClass, entry.details.getClass()) && matches(subClass, entry.details.getSubClass()))
      list->push_back(vLCString(entry.details.getName() + ".1"));
  return list;
}

vHandle<Project::StoreDetailsList> DirectoryProject::getStoreDetailsList(vLCString const& storeClass,
                                                                         vLCString const& subClass) {
  myMustBeOpen("DirectoryProject::getStoreDetailsList");
  vHandle<StoreDetailsList> list(new StoreDetailsList);
  for (Entry const& entry : myScan())
    if (matches(storeClass, entry.details.getClass()) && matches(subClass, entry.details.getSubClass()))
      list->push_back(entry.details);
  return list;
}

bool DirectoryProject::deleteStore(vLCString const&, int, vLCString const&, vLCString const&) { return false; }

bool DirectoryProject::purgeStore(int, vLCString const&, vLCString const&, vLCString const&) { return false; }

bool DirectoryProject::hasStore(vLCString const& name, int version) {
  myMustBeOpen("DirectoryProject::hasStore");
  if (version != 0 && version != 1) return false;
  for (Entry const& entry : myScan())
    if (entry.details.getName() == name) return true;
  return false;
}

StoreDetails DirectoryProject::getStoreDetails(vLCString const& name, int version) const {
  return myFind("DirectoryProject::getStoreDetails", name, version).details;
}

Project::AttributeSetDetailsList DirectoryProject::getAttributeSetDetails(vLCString const& name, int version) {
  myFind("DirectoryProject::getAttributeSetDetails", name, version);
  return AttributeSetDetailsList();
}

vFilename DirectoryProject::getStoreFile(vLCString const& name, int version) const {
  char const* const label = "DirectoryProject::getStoreFile";
  Entry const entry = myFind(label, name, version);
  vFilename file(entry.file);
  if (!entry.segy) return file;
  // The SEG-Y store reads the format file beside its line by itself; a link
  // there must not lead it out of the root.
  vFilename format(file);
  format.setExtension("syf");
  struct stat s;
  if (::lstat(format.c_str(), &s) != 0) return file;
  vString const& root = dynamic_cast<DirectoryProjectCatalog const&>(*m_catalog).getRoot();
  vString const path = DirectoryTree::resolve(format.getFilename());
  if (!DirectoryTree::isRegularFile(path) || !DirectoryTree::isWithin(root, path))
    Message::fatal(label, 0, "The format file %s of store %s is not a file within the data server's directory.",
                   format.getName().c_str(), name.c_str());
  return file;
}

vFilename DirectoryProject::getMappingFile(vLCString const& name, int version) const {
  char const* const label = "DirectoryProject::getMappingFile";
  vFilename map(myFind(label, name, version).file);
  map.setExtension("cstf");
  struct stat s;
  if (::lstat(map.c_str(), &s) != 0) return vFilename();
  vString const& root = dynamic_cast<DirectoryProjectCatalog const&>(*m_catalog).getRoot();
  vString const path = DirectoryTree::resolve(map.getFilename());
  if (!DirectoryTree::isRegularFile(path) || !DirectoryTree::isWithin(root, path))
    Message::fatal(label, 0, "The mapping file %s of store %s is not a file within the data server's directory.",
                   map.getName().c_str(), name.c_str());
  return map;
}
