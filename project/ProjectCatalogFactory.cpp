#include "project/ProjectCatalogFactory.h"

#include <iomanip>
#include <iostream>
#include <map>

#include "foundation/Message.h"
#include "foundation/vUtl.h"
#include "project/CapiMaker.h"
#include "project/CapiProject.h"
#include "project/Project.h"
#include "project/ProjectFactory.h"
#include "project/UTProjectCatalog.h"
#include "syslayer/FS.h"

namespace {

std::map<vString, ProjectCatalogFactory::Maker>& makers() {
  static std::map<vString, ProjectCatalogFactory::Maker> table;
  return table;
}

}  // namespace

std::list<vHandle<ProjectCatalog> >& ProjectCatalogFactory::myGetCache() {
  static std::list<vHandle<ProjectCatalog> > projectCache;
  return projectCache;
}

unsigned int ProjectCatalogFactory::getCacheSize() { return static_cast<unsigned int>(myGetCache().size()); }

ProjectCatalogFactory::Maker ProjectCatalogFactory::registerMaker(vString const& className, Maker maker) {
  Maker previous = getMaker(className);
  if (maker)
    makers()[className] = maker;
  else
    makers().erase(className);
  return previous;
}

ProjectCatalogFactory::Maker ProjectCatalogFactory::getMaker(vString const& className) {
  auto it = makers().find(className);
  return it == makers().end() ? nullptr : it->second;
}

ProjectCatalog* ProjectCatalogFactory::make(char const* label, vString const& className, vString const& host,
                                            ProjectType::PROJECT_TYPE type, vString const& server) {
  Maker maker = getMaker(className);
  if (maker == nullptr)
    Message::fatal(label, 0, "Class %s is not available: no maker is registered for it (see registerRondoClasses).",
                   className.c_str());
  return maker(host, type, server);
}

vHandle<ProjectCatalog> ProjectCatalogFactory::create(vString const& host, ProjectType::PROJECT_TYPE type,
                                                      vString const& server) {
  return open(type, server, host);
}

vHandle<ProjectCatalog> ProjectCatalogFactory::open(ProjectType::PROJECT_TYPE type, vString const& server,
                                                    vString const& host) {
  vString cluster = FS::getCluster(host);
  std::list<vHandle<ProjectCatalog> >& cache = myGetCache();
  for (vHandle<ProjectCatalog> const& catalog : cache) {
    if (type == ProjectType::RONDO) {
      // One data server serves every Rondo project of a cluster.
      if (catalog->getProjectType() == ProjectType::RONDO && catalog->getHost() == cluster) return catalog;
    } else if (catalog->getProjectType() == type && catalog->getServer() == server && catalog->getHost() == cluster) {
      return catalog;
    }
  }
  vHandle<ProjectCatalog> made = createEx(cluster, type, server);
  cache.push_back(made);
  return made;
}

vHandle<ProjectCatalog> ProjectCatalogFactory::createEx(vString const& host, ProjectType::PROJECT_TYPE type,
                                                        vString const& server) {
  char const* label = "ProjectCatalogFactory::createEx";
  // Only for its failure: a misspelt host is reported before anything is
  // built or started.
  if (type != ProjectType::UNITTEST && type != ProjectType::ZONMESH && !host.isBlank()) vUtl::getIPAddress(host);

  if (type == ProjectType::UNITTEST) return vHandle<ProjectCatalog>(new UTProjectCatalog(host, type));
  // CapiZonFactory::createProjectCatalog(host, server)
  if (type == ProjectType::ZONMESH) return vHandle<ProjectCatalog>(make(label, "ZonProjectCatalog", host, type, server));

  if (type == ProjectType::KELP) {
    vString name = server.isBlank() ? vUtl::gethostname() : server;
    if (CapiMaker::getProjectType() == ProjectType::KELP && name == vUtl::gethostname())
      return CapiMaker::projectCatalog(host);
    return vHandle<ProjectCatalog>(make(label, "ClientProjectCatalog", name, ProjectType::KELP, host));
  }

  // The choice of the in-process type is a property of the build, so these
  // tests stay even where they cannot hold.
  if (type == CapiMaker::getProjectType() && (host.isBlank() || host == vUtl::gethostname()))
    return CapiMaker::projectCatalog(host);
  if (Capi::disableRondoDataServer() && type == ProjectType::RONDO && type == CapiMaker::getProjectType())
    return CapiMaker::projectCatalog(host);
  return vHandle<ProjectCatalog>(make(label, "ClientProjectCatalog", host, type, vString()));
}

vHandle<ProjectCatalog> ProjectCatalogFactory::enter(ProjectType::PROJECT_TYPE type, vString const& server,
                                                     vString const& host) {
  vString theServer(server);
  vString theHost(host);
  if (ProjectFactory::hasDefaultProject()) {
    vHandle<Project> project = ProjectFactory::getDefaultProject();
    if (type == ProjectType::NOTYPE) type = project->getProjectType();
    if (theServer.isBlank()) theServer = project->getServerHost();
    if (theHost.isBlank()) theHost = project->getProjectHost();
  }

  ProjectType::enter(type, std::cin, std::cout);
  if (type == ProjectType::KELP) {
    theServer = vUtl::enterc("server name", theServer);
  } else if (type == ProjectType::ZONMESH) {
    for (;;) {
      theServer = vUtl::enterc("KVS centre name [-l for list]", theServer);
      if (theServer != "-l") break;
      std::list<vString> servers;
      Capi::getCapiZonAvailableServers(servers);
      int column = 0;
      for (vString const& s : servers) {
        std::cout << std::setw(15) << s.c_str();
        if (++column == 5) {
          std::cout << "\n";
          column = 0;
        }
      }
      if (column) std::cout << "\n";
      theServer.erase();
    }
  }
  theHost = vUtl::enterc(type == ProjectType::DORN ? "output data host name" : "data host name", theHost);
  return create(theHost, type, theServer);
}
