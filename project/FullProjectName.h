#ifndef PROJECT_FULLPROJECTNAME_H
#define PROJECT_FULLPROJECTNAME_H

// FullProjectName: where a project lives, as a text of up to four fields
// separated by ':'
//
//     [[[type:]server:]host:]project
//
// read from the right, so that "p" is a project, "h:p" a host and project,
// "s:h:p" adds the server and "rondo:s:h:p" the type. getFullName() writes
// the same grammar back, leaving out what is blank.

#include "foundation/vLCString.h"
#include "foundation/vString.h"
#include "project/ProjectType.h"

class FullProjectName {
 public:
  static char const kSeparator = ':';

  FullProjectName();
  // Parses the text form; a colon too many in the server is an error.
  explicit FullProjectName(vString const& text);
  FullProjectName(vString const& typeName, vString const& server, vString const& host, vLCString const& project);
  FullProjectName(ProjectType::PROJECT_TYPE type, vString const& server, vString const& host,
                  vLCString const& project);
  FullProjectName(FullProjectName const& other) = default;
  FullProjectName& operator=(FullProjectName const& other) = default;
  virtual ~FullProjectName();

  vString const& getServerName() const { return m_server; }
  vLCString const& getProject() const { return m_project; }
  ProjectType::PROJECT_TYPE getProjectType() const { return m_type; }
  vString const& getHostName() const { return m_host; }

  void setServerName(vString const& server);
  void setProject(vLCString const& project) { m_project = project; }
  void setProjectType(ProjectType::PROJECT_TYPE type) { m_type = type; }
  void setHostName(vString const& host) { m_host = host; }

  virtual vString getFullName() const;

  // Type, server, host and project.
  bool operator==(FullProjectName const& other) const;
  bool operator!=(FullProjectName const& other) const { return !(*this == other); }
  // Field by field: server, project, type, host.
  bool operator<(FullProjectName const& other) const;

 protected:
  void sortProjectName(vString const& text);
  static bool myIsValidServerName(vString const& server);
  // Splits at the last ':'; false when there is none.
  static bool mySplitAtLast(vString const& text, vString& left, vString& right);
  // The project part only, for derived names that add their own fields.
  vString myProjectFullName() const;

  vString m_server;
  vLCString m_project;
  ProjectType::PROJECT_TYPE m_type;
  vString m_host;
};

#endif
