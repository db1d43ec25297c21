#ifndef SERVER_DIRECTORYPROJECTCATALOG_H
#define SERVER_DIRECTORYPROJECTCATALOG_H

// DirectoryProjectCatalog: the data server's default back end, a directory
// of projects. The root is the system property "ROOT" of section
// "DATASERVER" (SP_DATASERVER_ROOT); a project named P is the directory
// <root>/P, and the catalog lists the subdirectories of the root, their
// names folded to lower case and sorted. The project type shown is
// FlatFile: the stores of these projects are files.
//
// The classes live with the server rather than in the project layer: they
// are how this program serves files, and a process that reads files
// in-process names them as flat files instead. Kept out of the project
// factories, they can never be mistaken for a client of a data server.

#include "foundation/vHandle.h"
#include "foundation/vString.h"
#include "project/ProjectCatalog.h"

class DirectoryProjectCatalog : public ProjectCatalog {
 public:
  // Fatal when the root is not set or is not a directory.
  explicit DirectoryProjectCatalog(vString const& host);
  ~DirectoryProjectCatalog() override;

  // The root as set; fatal, naming the property, when it is not.
  static vString configuredRoot();

  vString getHost() const override { return m_host; }
  ProjectType::PROJECT_TYPE getProjectType() const override { return ProjectType::FLATFILE; }
  vHandle<ProjectList> getProjectList() const override;

  // The root with every link resolved: nothing outside it is opened.
  vString const& getRoot() const { return m_root; }

 private:
  vString m_host;
  vString m_root;
};

#endif
