#ifndef PROJECT_UTPROJECTCATALOG_H
#define PROJECT_UTPROJECTCATALOG_H

// UTProjectCatalog: a catalog that needs no server, for the stand-alone
// UTProject. It offers no projects by name: any name opens.

#include "project/ProjectCatalog.h"

class UTProjectCatalog : public ProjectCatalog {
 public:
  UTProjectCatalog(vString const& host, ProjectType::PROJECT_TYPE type);
  ~UTProjectCatalog() override;

  vString getHost() const override;
  ProjectType::PROJECT_TYPE getProjectType() const override;
  vHandle<ProjectList> getProjectList() const override;

 private:
  vString m_host;
  ProjectType::PROJECT_TYPE m_type;
};

#endif
