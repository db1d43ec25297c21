#ifndef DATABASE_ZON_ZONPROJECTCATALOG_H
#define DATABASE_ZON_ZONPROJECTCATALOG_H

// ZonProjectCatalog: the projects of one database server. The list is asked
// of the server once, on first use, through a session of the placeholder
// project "dummy".

#include <list>

#include "database/zon/vKvsProject.h"
#include "foundation/vString.h"
#include "project/ProjectCatalog.h"

class ZonProjectCatalog : public ProjectCatalog {
 public:
  // The host, and the server, where blank means this domain's database.
  ZonProjectCatalog(vString const& host, vString const& server);
  ~ZonProjectCatalog() override;

  vString getHost() const override;
  vString getServer() const override;
  ProjectType::PROJECT_TYPE getProjectType() const override;
  vHandle<ProjectList> getProjectList() const override;
  // True when the server has a project of that name in any case; the name
  // then takes the server's spelling.
  bool findTrueName(vString& name);
  // Forgets the list, so that the next question asks the server again.
  void forgetProjects() { m_projects.clear(); }

 protected:
  void myLoadProjects() const;

 private:
  vString m_host;
  vString m_server;
  mutable vKvsProject m_dummy;
  mutable std::list<vString> m_projects;
};

#endif
