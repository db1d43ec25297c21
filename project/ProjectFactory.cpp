#include "project/ProjectFactory.h"

#include <map>

#include "foundation/Message.h"
#include "foundation/vUtl.h"
#include "project/CapiMaker.h"
#include "project/CapiProject.h"
#include "project/JITProjectDecorator.h"
#include "project/ProjectCatalogFactory.h"
#include "project/UTProject.h"
#include "syslayer/FS.h"

namespace {

struct FactoryState {
  vHandle<Project> defaultProject;
  vHandle<ProjectCatalog> defaultCatalog;
  std::list<vHandle<Project> > cache;
};

FactoryState& state() {
  static FactoryState s;
  return s;
}

std::map<vString, ProjectFactory::Maker>& makers() {
  static std::map<vString, ProjectFactory::Maker> table;
  return table;
}

}  // namespace

std::list<vHandle<Project> >& ProjectFactory::myGetCache() { return state().cache; }

unsigned int ProjectFactory::getCacheSize() { return static_cast<unsigned int>(myGetCache().size()); }

ProjectFactory::Maker ProjectFactory::registerMaker(vString const& className, Maker maker) {
  Maker previous = getMaker(className);
  if (maker)
    makers()[className] = maker;
  else
    makers().erase(className);
  return previous;
}

ProjectFactory::Maker ProjectFactory::getMaker(vString const& className) {
  auto it = makers().find(className);
  return it == makers().end() ? nullptr : it->second;
}

Project* ProjectFactory::make(char const* label, vString const& className, vHandle<ProjectCatalog> const& catalog) {
  Maker maker = getMaker(className);
  if (maker == nullptr)
    Message::fatal(label, 0, "Class %s is not available: no maker is registered for it (see registerRondoClasses).",
                   className.c_str());
  return maker(catalog);
}

vHandle<Project> ProjectFactory::myCreate(vHandle<ProjectCatalog> const& catalog) {
  char const* label = "ProjectFactory::myCreate";
  ProjectType::PROJECT_TYPE type = catalog->getProjectType();
  if (type == ProjectType::UNITTEST) return vHandle<Project>(new UTProject(catalog));
  // CapiZonFactory::createProject(catalog)
  if (type == ProjectType::ZONMESH) return vHandle<Project>(make(label, "ZonProject", catalog));
  if (type == ProjectType::KELP) {
    if (CapiMaker::getProjectType() == ProjectType::KELP && catalog->getServer() == vUtl::gethostname())
      return CapiMaker::project(catalog);
    return vHandle<Project>(make(label, "ClientProject", catalog));
  }
  if (Capi::disableRondoDataServer() && type == ProjectType::RONDO && type == CapiMaker::getProjectType())
    return CapiMaker::project(catalog);
  if (catalog->getHost() == vUtl::gethostname() && type == CapiMaker::getProjectType())
    return CapiMaker::project(catalog);
  return vHandle<Project>(make(label, "ClientProject", catalog));
}

void ProjectFactory::myAddToCache(vHandle<Project> const& project) {
  if (!hasDefaultProject()) setDefaultProject(project);
  myGetCache().push_back(project);
}

vHandle<Project> ProjectFactory::create(vHandle<ProjectCatalog> const& catalog) {
  vHandle<Project> project = myCreate(catalog);
  myAddToCache(project);
  return project;
}

vHandle<Project> ProjectFactory::myOpen(ProjectType::PROJECT_TYPE type, vString const& server, vString const& host,
                                        vLCString const& project, bool deferred) {
  vString cluster = FS::getCluster(host);
  for (vHandle<Project> const& cached : myGetCache()) {
    // The type does not take part: a project is where it is, whatever it
    // was asked for as.
    if (cached->isOpen() && cached->getServerHost() == server && cached->getName() == project &&
        cached->getProjectHost() == cluster)
      return cached;
  }
  vHandle<ProjectCatalog> catalog = ProjectCatalogFactory::open(type, server, cluster);
  vHandle<Project> result = myCreate(catalog);
  if (deferred) result = vHandle<Project>(new JITProjectDecorator(result));
  result->open(project);
  myAddToCache(result);
  return result;
}

vHandle<Project> ProjectFactory::openProject(FullProjectName const& name) {
  return myOpen(name.getProjectType(), name.getServerName(), name.getHostName(), name.getProject(), false);
}

vHandle<Project> ProjectFactory::openProject(ProjectType::PROJECT_TYPE type, vString const& server,
                                             vString const& host, vLCString const& project) {
  return myOpen(type, server, host, project, false);
}

vHandle<Project> ProjectFactory::openProjectDeferred(FullProjectName const& name) {
  return myOpen(name.getProjectType(), name.getServerName(), name.getHostName(), name.getProject(), true);
}

vHandle<Project> ProjectFactory::openProjectDeferred(ProjectType::PROJECT_TYPE type, vString const& server,
                                                     vString const& host, vLCString const& project) {
  return myOpen(type, server, host, project, true);
}

bool ProjectFactory::hasDefaultProject() { return !state().defaultProject.isEmpty(); }

vHandle<Project> ProjectFactory::getDefaultProject() {
  if (!hasDefaultProject()) Message::fatal("ProjectFactory::getDefaultProject", 0, "There is no default Project.");
  return state().defaultProject;
}

vHandle<ProjectCatalog> ProjectFactory::getDefaultCatalog() { return state().defaultCatalog; }

vHandle<Project> ProjectFactory::setDefaultProject(vHandle<Project> const& project) {
  FactoryState& s = state();
  vHandle<Project> former = s.defaultProject;
  s.defaultProject = project;
  if (project.isEmpty())
    s.defaultCatalog = vHandle<ProjectCatalog>();
  else
    s.defaultCatalog = project->getProjectCatalog();
  return former;
}

void ProjectFactory::clearDefaultProject() { setDefaultProject(vHandle<Project>()); }

void ProjectFactory::emptyCache() { myGetCache().clear(); }
