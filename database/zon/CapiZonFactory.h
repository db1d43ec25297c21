#ifndef DATABASE_ZON_CAPIZONFACTORY_H
#define DATABASE_ZON_CAPIZONFACTORY_H

// CapiZonFactory: how the factories of the project layer get the catalogs,
// projects and stores of the database back end (through the makers that
// registerRondoClasses() installs), and which database servers this
// installation has client files for: one folder per server under the
// support files' "CapiZon/".
//
// Before any of these runs, KVSROOT and KVSPROJ get defaults when unset:
// the default database's folder, and the project "1006400".

#include <list>

#include "foundation/vHandle.h"
#include "foundation/vLCString.h"
#include "foundation/vString.h"
#include "project/Project.h"
#include "project/ProjectCatalog.h"

class KeyList;
class Store;
class StoreDescription;

class CapiZonFactory {
 public:
  // True when KVSROOT names a directory.
  static bool KVSROOTexists();
  // The database of this host's domain, when its folder is installed;
  // otherwise blank.
  static vString getDefaultServer();
  // Every server folder, by its last name component, appended to the list.
  static void getAvailableServers(std::list<vString>& servers);

  static vHandle<ProjectCatalog> createProjectCatalog(vString const& host, vString const& server);
  static vHandle<Project> createProject(vHandle<ProjectCatalog> catalog);
  // The same, for the factories' makers, which take the new object into a
  // handle of their own.
  static ProjectCatalog* makeProjectCatalog(vString const& host, vString const& server);
  static Project* makeProject(vHandle<ProjectCatalog> const& catalog);
  static vHandle<Store> createStore(vHandle<Project> project);
  // A new store of the description's project, made under the description's
  // name and class with that attribute set and keys.
  static vHandle<Store> createStore(StoreDescription const& description, vLCString const& attributeSetName,
                                    KeyList const& keys);

 private:
  static void mySetKVSROOT();
};

#endif
