#ifndef REMOTE_CLIENTPROJECTCATALOG_H
#define REMOTE_CLIENTPROJECTCATALOG_H

// ClientProjectCatalog: a catalog served by a data server process. Making
// one starts the server through a COBPortal of its own on the first name
// (the host the server runs on), and every project and attribute set made
// under the catalog shares that portal. For Kelp the first name is the
// server and the second the data host; for any other type the reverse.
//
// The server's command line: the "dataserver" property of section "capi",
// else VSERVER, else "DataServer", then the type's name, the portal's
// address, " -build " and the build number, and " -v " VREL when VREL is set.
// A server for this host whose program is not there is refused at once,
// rather than waited for.

#include "foundation/vHandle.h"
#include "foundation/vString.h"
#include "project/ProjectCatalog.h"
#include "remote/COB.h"

class COBPortal;
class Packer;

class ClientProjectCatalog : public ProjectCatalog, public COB {
 public:
  ClientProjectCatalog(vString const& first, ProjectType::PROJECT_TYPE type, vString const& second);
  ~ClientProjectCatalog() override;

  vString getHost() const override;
  ProjectType::PROJECT_TYPE getProjectType() const override;
  vHandle<ProjectList> getProjectList() const override;
  vString getServer() const override;
  // Starts the session in the server: who asks, and from which job.
  void doCommsReinitialize() override;

  // The command line that starts a server for the type, "<$COBADDRESS$>"
  // standing for the portal's address.
  static vString makeServerCommand(ProjectType::PROJECT_TYPE type);

 private:
  ClientProjectCatalog(ClientProjectCatalog const&) = delete;
  ClientProjectCatalog& operator=(ClientProjectCatalog const&) = delete;

  // One exchange; a reply code other than the one sent is fatal.
  void myExchange(Packer& packer, int code, char const* label) const;

  ProjectType::PROJECT_TYPE m_type;
  vHandle<vString> m_first;
  vHandle<COBPortal> m_portal;
  vString m_second;
};

#endif
