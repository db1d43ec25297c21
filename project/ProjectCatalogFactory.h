#ifndef PROJECT_PROJECTCATALOGFACTORY_H
#define PROJECT_PROJECTCATALOGFACTORY_H

// ProjectCatalogFactory: the one way to get a catalog. Catalogs are cached
// for the life of the process, per cluster of data hosts: a second request
// for the same kind of catalog on the same cluster gets the first one.
//
// The classes that reach a data server (ClientProjectCatalog) or the
// database (ZonProjectCatalog) live in higher layers. This layer knows them
// only by name, through a table of makers that registerRondoClasses() fills
// in; asking for a class whose maker is missing is fatal and names the class.

#include <list>

#include "foundation/vHandle.h"
#include "foundation/vString.h"
#include "project/ProjectCatalog.h"
#include "project/ProjectType.h"

class ProjectCatalogFactory {
 public:
  // Builds a catalog of a registered class. The arguments are those of the
  // class's constructor: for ClientProjectCatalog the host (or, for Kelp,
  // the server), the type and the server (or, for Kelp, the data host); for
  // ZonProjectCatalog the host, the type and the server, where a blank server
  // means the default one.
  typedef ProjectCatalog* (*Maker)(vString const& host, ProjectType::PROJECT_TYPE type, vString const& server);

  // open() with the arguments in another order.
  static vHandle<ProjectCatalog> create(vString const& host, ProjectType::PROJECT_TYPE type, vString const& server);
  // The cached catalog of that kind on the host's cluster, or a new one.
  static vHandle<ProjectCatalog> open(ProjectType::PROJECT_TYPE type, vString const& server, vString const& host);
  // Asks on the terminal for type, server and host, starting from the
  // default project, then create(). For a database project "-l" lists
  // Capi::getCapiZonAvailableServers.
  static vHandle<ProjectCatalog> enter(ProjectType::PROJECT_TYPE type, vString const& server, vString const& host);

  // Sets the maker of a class and returns the one it replaces; a null maker
  // removes the class again.
  static Maker registerMaker(vString const& className, Maker maker);
  static Maker getMaker(vString const& className);
  // Builds through the registered maker; a class without one is fatal under
  // the caller's label.
  static ProjectCatalog* make(char const* label, vString const& className, vString const& host,
                              ProjectType::PROJECT_TYPE type, vString const& server);

  // The number of cached catalogs.
  static unsigned int getCacheSize();

 private:
  static vHandle<ProjectCatalog> createEx(vString const& host, ProjectType::PROJECT_TYPE type, vString const& server);
  static std::list<vHandle<ProjectCatalog> >& myGetCache();
};

#endif
