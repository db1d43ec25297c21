#ifndef SERVER_DIRECTORYPROJECT_H
#define SERVER_DIRECTORYPROJECT_H

// DirectoryProject: a project of the directory back end, the directory
// <root>/<name> (see DirectoryProjectCatalog). Every file of it that the
// store factory can identify, and every offload data file (".offload"), is
// a store, named by the file's name without
// its extension, in lower case, version 1, of the class the factory gives
// its format (the store list shows "name.1", as every project does). Of two files that give one store name the first in name
// order is the store, and the server's log (its standard error) says which
// was skipped. Files that are not identified are left out. The directory is
// read again at every question, so files put in while the server runs are
// seen. Nothing is deleted or made here: the project is read-only.
//
// A mapping file named after a store's file beside it (line1.cstf beside
// line1.sgy) shows that store through its attribute mapping, as the store
// factory does for the mapping files of Nyx stores.
//
// A project name that holds "/" or "..", or that names no subdirectory of
// the root, is refused, and a file whose real path (links resolved) lies
// outside the root is never a store.

#include <set>
#include <string>
#include <vector>

#include "foundation/vFilename.h"
#include "foundation/vHandle.h"
#include "foundation/vLCString.h"
#include "foundation/vString.h"
#include "project/Project.h"

class DirectoryProjectCatalog;

class DirectoryProject : public Project {
 public:
  explicit DirectoryProject(vHandle<ProjectCatalog> const& catalog);
  ~DirectoryProject() override;

  void open(vLCString const& name) override;
  void close() override;
  vLCString getName() const override { return m_name; }
  ProjectType::PROJECT_TYPE getProjectType() const override { return ProjectType::FLATFILE; }
  bool isOpen() const override { return !m_directory.isBlank(); }
  vHandle<StoreList> getStoreList(vLCString const& storeClass, vLCString const& subClass) override;
  vHandle<StoreDetailsList> getStoreDetailsList(vLCString const& storeClass, vLCString const& subClass) override;
  vString getProjectHost() const override;
  vString getServerHost() const override { return vString(); }
  bool deleteStore(vLCString const& name, int version, vLCString const& storeClass,
                   vLCString const& subClass) override;
  bool purgeStore(int keep, vLCString const& name, vLCString const& storeClass, vLCString const& subClass) override;
  bool hasStore(vLCString const& name, int version) override;
  StoreDetails getStoreDetails(vLCString const& name, int version) const override;
  AttributeSetDetailsList getAttributeSetDetails(vLCString const& name, int version) override;

  // The file of the store; fatal for a store the project does not have,
  // and for a SEG-Y file whose format file beside it leads outside the root.
  vFilename getStoreFile(vLCString const& name, int version) const;
  // The mapping file named after the store's file beside it; blank when
  // there is none. Fatal when it is not a file within the root.
  vFilename getMappingFile(vLCString const& name, int version) const;

 private:
  struct Entry {
    StoreDetails details;
    vString file;
    // Read with the layout of a format file beside it, when there is one.
    bool segy = false;
  };
  std::vector<Entry> myScan() const;
  Entry myFind(char const* label, vLCString const& name, int version) const;
  void myMustBeOpen(char const* label) const;

  vLCString m_name;
  vString m_directory;
  // The skipped files already logged, so that each is told once.
  mutable std::set<std::string> m_skipped;
};

#endif
