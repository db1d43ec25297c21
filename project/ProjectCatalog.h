#ifndef PROJECT_PROJECTCATALOG_H
#define PROJECT_PROJECTCATALOG_H

// ProjectCatalog: what projects a server offers, and on which data host.
// Catalogs are made by ProjectCatalogFactory and live, cached, until the
// process ends.

#include "foundation/vHandle.h"
#include "foundation/vString.h"
#include "project/ProjectList.h"
#include "project/ProjectType.h"

class ProjectCatalog {
 public:
  virtual ~ProjectCatalog();
  // The data host.
  virtual vString getHost() const = 0;
  virtual ProjectType::PROJECT_TYPE getProjectType() const = 0;
  virtual vHandle<ProjectList> getProjectList() const = 0;
  // The server; empty unless the kind of catalog has one.
  virtual vString getServer() const;
};

#endif
