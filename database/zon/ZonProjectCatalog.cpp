#include "database/zon/ZonProjectCatalog.h"

#include <strings.h>

#include "database/kvs/Kvs.h"
#include "database/kvs/KvsHelper.h"
#include "database/zon/vKvsActivate.h"
#include "foundation/Message.h"

ZonProjectCatalog::ZonProjectCatalog(vString const& host, vString const& server)
    : m_host(host), m_server(server), m_dummy("dummy", server) {}

ZonProjectCatalog::~ZonProjectCatalog() {}

vString ZonProjectCatalog::getHost() const { return m_host; }

vString ZonProjectCatalog::getServer() const { return m_dummy.getServer(); }

ProjectType::PROJECT_TYPE ZonProjectCatalog::getProjectType() const { return ProjectType::ZONMESH; }

vHandle<ProjectList> ZonProjectCatalog::getProjectList() const {
  if (m_projects.empty()) myLoadProjects();
  vHandle<ProjectList> list(new ProjectList);
  for (vString const& name : m_projects) list->add(ProjectListEntry(vLCString(name.c_str())));
  return list;
}

bool ZonProjectCatalog::findTrueName(vString& name) {
  if (m_projects.empty()) myLoadProjects();
  for (vString const& known : m_projects) {
    if (strcasecmp(known.c_str(), name.c_str()) == 0) {
      name = known;
      return true;
    }
  }
  return false;
}

void ZonProjectCatalog::myLoadProjects() const {
  vKvsActivate::project(m_dummy);
  int n = 0;
  char** names = nullptr;
  int rc = kvs::KvsListProjectSite(nullptr, "*", &n, &names);
  if (rc != 0)
    Message::fatal("ZonProjectCatalog::getProjectList", 0, "Unable to get list of projects: error=%d msg='%s'", rc,
                   kvs::kvsErrorString.c_str());
  m_projects.clear();
  for (int i = 0; i < n; ++i) m_projects.push_back(vString(names[i]));
  kvs::KvsHelper::free(names);
}
