#ifndef SERVER_DATASERVERBACKEND_H
#define SERVER_DATASERVERBACKEND_H

// DataServerBackend: the local projects and attribute sets behind the
// twins of one server process. Which back end serves a client's projects is
// a setting of the server: the system property "BACKEND" of section
// "DataServer" (SP_DATASERVER_BACKEND in the environment). Not set, or set
// to "directory", FlatFile or its number, it is the directory of projects
// of DirectoryProjectCatalog; otherwise a project type name or number whose
// catalog the project factories make, such as UnitTest, or Zonmesh for the
// database back end (the projects of the Kvs database that this process's
// support files name, each store read in-process). A type whose
// catalog would be a client of a data server is refused when the server
// starts, before any catalog is made: a server never starts a server.
//
// Projects are kept by name for the life of the process, so that every
// twin of one project sees the same stores. A UnitTest project also lists
// the stores scripted in RONDO_UNITTEST_STORES (blank-separated
// "name.version[:class[:subclass[:file]]]") and every store created in it.
// A file, when given, is an InMemoryStore in its packed form: the store's
// data are its primary attribute set, loaded on the store's first open,
// class, subclass, keys, properties and all (the listed class is what the
// project's list shows). So a UnitTest server can serve real data without
// a file format of its own.
//
// Attribute sets of a UnitTest project live in memory: the set made for a
// store is kept by project, store name and version (version 0 is the
// newest), and every later open or update of that store in this process is
// served by the same object, with its data.
// A store the project lists that has no set yet is made empty on its first
// open, of the store's class and subclass ("none" for one not given).

#include <map>
#include <utility>

#include "foundation/vHandle.h"
#include "foundation/vLCString.h"
#include "foundation/vString.h"
#include "project/AttributeSet.h"
#include "project/Project.h"
#include "project/ProjectCatalog.h"
#include "project/ProjectType.h"

class DataServerBackend {
 public:
  DataServerBackend();

  // The configured type, FlatFile for the directory; fatal for one that
  // cannot serve.
  static ProjectType::PROJECT_TYPE configuredType();

  // The catalog of the configured type for the client's host.
  vHandle<ProjectCatalog> catalog(vString const& host);
  // The open project of that name.
  vHandle<Project> project(vHandle<ProjectCatalog> const& catalog, vLCString const& name);

  // A new, closed attribute set of the project.
  vHandle<AttributeSet> newSet(vHandle<Project> const& project);
  // The set that serves the store, for open or update: the one kept for
  // it, or, for a store the project lists, a new empty one. Fatal for a
  // store that the project does not have.
  vHandle<AttributeSet> setFor(vHandle<Project> const& project, vLCString const& store, int version);
  // Notes a set just created, and lists its store in the project.
  void created(vHandle<Project> const& project, vHandle<AttributeSet> const& set, vLCString const& store,
               vLCString const& className, vLCString const& subClass);

 private:
  typedef std::pair<vLCString, int> StoreKey;
  bool myKeepsSets(vHandle<Project> const& project) const;
  // The store's name and version, version 0 made the newest the project has.
  static StoreKey myStoreKey(vHandle<Project> const& project, vLCString const& store, int version);

  ProjectType::PROJECT_TYPE m_type;
  std::map<vLCString, vHandle<Project> > m_projects;
  std::map<std::pair<vLCString, StoreKey>, vHandle<AttributeSet> > m_sets;
  // The packed store files of the scripted stores, by project and store.
  std::map<vLCString, std::map<StoreKey, vString> > m_storeFiles;
};

#endif
