#ifndef SERVER_DATASERVERSESSION_H
#define SERVER_DATASERVERSESSION_H

// DataServerSession: one client's session in the data server. It reads the
// portal's messages from the channel until the end of the session or of
// the connection: portal messages make and drop twins, object messages are
// answered by the twin they address, each by running the local catalog,
// project or attribute set that serves it.
//
// A request that fails (a bad message, an unknown code or twin, a failure
// of the local store) is answered by the portal's failure report, severity
// 1 with the failure's text, and no reply; the session goes on.
// With the system property "TRACE" of section "DataServer" set (as by
// SP_DATASERVER_TRACE), every request is logged as "request <PortalID>
// code <code>": what reached the server, for those who have to know.
//
// Errors and notes reported while a request is served go to the client as
// the portal's reports of severity 2 and 3, before the reply.
//
// A session whose start failed (a server that cannot serve) answers every
// request with that failure.

#include <cstdio>
#include <map>

#include "foundation/vHandle.h"
#include "foundation/vLCString.h"
#include "foundation/vString.h"
#include "project/AttributeSet.h"
#include "project/Project.h"
#include "project/ProjectCatalog.h"
#include "remote/CommChan.h"
#include "server/DataServerBackend.h"

class Packer;
class StoreOpenOptions;

class DataServerSession {
 public:
  // The log takes a line for each twin made and dropped and for each
  // failure; it may be null.
  DataServerSession(vHandle<CommChan> const& channel, std::FILE* log);
  ~DataServerSession();

  // Makes every request fail with the text.
  void setFailure(vString const& text) { m_failure = text; }
  // Serves until the client ends the session (0), or the connection goes or
  // brings a message that cannot be read (1).
  int run();

  void note(char const* format, ...) __attribute__((format(printf, 2, 3)));

 private:
  struct Twin {
    vString type;
    int parent = 0;
    vHandle<ProjectCatalog> catalog;
    vHandle<Project> project;
    vHandle<AttributeSet> set;
  };

  DataServerSession(DataServerSession const&) = delete;
  DataServerSession& operator=(DataServerSession const&) = delete;

  // False at the end of the session.
  bool myPortalMessage(Packer& in);
  void myObjectMessage(Packer& in, int tag);
  void myCatalogMessage(Twin& twin, int code, Packer& in, Packer& out);
  void myProjectMessage(Twin& twin, int id, int code, Packer& in, Packer& out);
  void mySetMessage(Twin& twin, int id, int code, Packer& in, Packer& out);
  void mySetReadMessage(Twin& twin, int code, Packer& in, Packer& out);
  void mySetWriteMessage(Twin& twin, int code, Packer& in, Packer& out);
  // The twin's parent of that type.
  Twin& myParent(Twin const& twin, char const* type, int id);
  vHandle<Project> const& myOpenProject(Twin const& twin, int id);
  AttributeSet& myOpenSet(Twin const& twin, int id);
  // The portal's report: 99 with the text, or 100 with a severity.
  void myReport(int code, int severity, vString const& text);
  void mySend(Packer& out, int tag);

  // Twins of one store share the set that serves it: it is opened by the
  // first, made writeable by the first that updates, and closed by the
  // last to let go.
  struct Use {
    int twins = 0;
    bool writeable = false;
  };
  void myOpen(Twin& twin, vHandle<AttributeSet> const& set, bool update, vLCString const& name, int version,
              vLCString const& className, vLCString const& subClass, StoreOpenOptions const* options);
  void myLetGo(Twin& twin);

  vHandle<CommChan> m_channel;
  std::FILE* m_log;
  vString m_failure;
  DataServerBackend* m_backend;
  std::map<int, Twin> m_twins;
  std::map<AttributeSet*, Use> m_uses;
  bool m_lost;
  bool m_trace;
};

#endif
