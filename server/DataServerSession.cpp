#include "server/DataServerSession.h"

#include <unistd.h>

#include <cstdarg>
#include <exception>
#include <functional>
#include <iterator>

#include "foundation/ExceptionErrorHandler.h"
#include "foundation/Message.h"
#include "foundation/RaiseError.h"
#include "foundation/Packer.h"
#include "foundation/SystemPropertyManager.h"
#include "foundation/UtlExcept.h"
#include "foundation/vLCString.h"
#include "remote/ClientCodes.h"
#include "server/DataServerRequest.h"

namespace {

using DataServerRequest::readInt;
using DataServerRequest::readString;

// While a request is served, the errors and notes of the code that serves
// it go to the client as reports of severity 2 and 3, and the reply is
// still awaited there; failures raise as everywhere.
class ReportingHandler : public ExceptionErrorHandler {
 public:
  typedef std::function<void(int severity, char const* label, char const* text)> Report;
  explicit ReportingHandler(Report report) : m_report(std::move(report)) {
    RaiseError::getInstance()->install(this);
  }
  ~ReportingHandler() override { RaiseError::getInstance()->uninstall(this); }

 protected:
  void doError(char const* label, int, char const* text) override { myPass(2, label, text); }
  void doInfo(char const* label, int, char const* text) override { myPass(3, label, text); }

 private:
  // A report that the sending of a report makes is not sent in turn.
  void myPass(int severity, char const* label, char const* text) {
    if (m_busy) return;
    m_busy = true;
    m_report(severity, label, text);
    m_busy = false;
  }

  Report m_report;
  bool m_busy = false;
};

}  // namespace

DataServerSession::DataServerSession(vHandle<CommChan> const& channel, std::FILE* log)
    : m_channel(channel), m_log(log), m_backend(nullptr), m_lost(false),
      m_trace(SystemPropertyManager::hasSystemProperty("DataServer", "TRACE")) {}

DataServerSession::~DataServerSession() {
  // Sets first, then projects, then catalogs: each holds the one above.
  for (auto& entry : m_twins) entry.second.set = vHandle<AttributeSet>();
  for (auto& entry : m_twins) entry.second.project = vHandle<Project>();
  m_twins.clear();
  delete m_backend;
}

void DataServerSession::note(char const* format, ...) {
  if (m_log == nullptr) return;
  va_list args;
  va_start(args, format);
  std::fprintf(m_log, "%d ", static_cast<int>(::getpid()));
  std::vfprintf(m_log, format, args);
  std::fputc('\n', m_log);
  std::fflush(m_log);
  va_end(args);
}

int DataServerSession::run() {
  if (m_failure.isBlank()) {
    try {
      m_backend = new DataServerBackend;
    } catch (UtlExcept const& e) {
      m_failure = e.getReason();
    }
  }
  if (!m_failure.isBlank()) note("cannot serve: %s", m_failure.c_str());
  Packer in(1000);
  for (;;) {
    int status = CommChan::OK;
    try {
      status = in.receive(*m_channel);
    } catch (UtlExcept const& e) {
      // A frame that does not read (a foreign header, a forged length, a
      // body that does not parse) leaves no telling where the next one
      // starts: the session ends, as on a broken connection.
      note("bad message from the client: %s", e.getReason().c_str());
      return 1;
    }
    if (status != CommChan::OK) {
      note("connection ended: %s", CommChan::status(status));
      return 1;
    }
    int const tag = in.getMessageTag();
    if (tag == -1) {
      if (!myPortalMessage(in)) return 0;
    } else {
      myObjectMessage(in, tag);
    }
    if (m_lost) {
      note("connection lost while answering");
      return 1;
    }
    if (in.getState() == Packer::PACKUNPACKING) in.discard();
  }
}

bool DataServerSession::myPortalMessage(Packer& in) {
  try {
    int32_t const code = readInt(in);
    if (code == 1) {
      int32_t const id = readInt(in);
      vString const type = readString(in);
      int32_t const parent = readInt(in);
      Twin twin;
      twin.type = type;
      twin.parent = parent;
      m_twins[id] = twin;
      note("create %d %s %d", static_cast<int>(id), type.c_str(), static_cast<int>(parent));
    } else if (code == 2) {
      int32_t const id = readInt(in);
      auto const found = m_twins.find(id);
      if (found != m_twins.end()) {
        try {
          myLetGo(found->second);
        } catch (UtlExcept const& e) {
          note("closing %d: %s", static_cast<int>(id), e.getReason().c_str());
        }
        m_twins.erase(found);
      }
      note("destroy %d", static_cast<int>(id));
    } else if (code == 3) {
      note("end of session");
      return false;
    } else {
      note("unknown portal message %d", static_cast<int>(code));
    }
  } catch (UtlExcept const& e) {
    // No reply is read for a portal message: the log is all there is.
    note("bad portal message: %s", e.getReason().c_str());
  }
  return true;
}

void DataServerSession::mySend(Packer& out, int tag) {
  if (out.send(m_channel.get(), tag) != CommChan::OK) m_lost = true;
}

void DataServerSession::myReport(int code, int severity, vString const& text) {
  Packer out(200);
  out.pack(static_cast<int32_t>(code));
  if (code == 100) out.pack(static_cast<int32_t>(severity));
  out.pack(text);
  mySend(out, -1);
}

void DataServerSession::myObjectMessage(Packer& in, int tag) {
  vString failure;
  // Made before the reports go to the client: a reply left half packed by
  // a failure is the server's own business, noted in its log only.
  Packer out(1000);
  ReportingHandler reports([this](int severity, char const* label, char const* text) {
    note("%s from %s: %s", severity == 2 ? "error" : "note", label, text);
    myReport(100, severity, vString(text));
  });
  try {
    if (!m_failure.isBlank()) Message::fatal("DataServer", 0, "%s", m_failure.c_str());
    auto const found = m_twins.find(tag);
    if (found == m_twins.end()) Message::fatal("DataServer", 0, "There is no object with PortalID %d.", tag);
    Twin& twin = found->second;
    int32_t const code = readInt(in);
    if (m_trace) note("request %d code %d", tag, static_cast<int>(code));
    // Opening and closing a project is acknowledged by a code of its own.
    bool const acknowledged =
        twin.type == "Project" && (code == ClientCode::ProjectOpen || code == ClientCode::ProjectClose);
    out.pack(static_cast<int32_t>(acknowledged ? ClientCode::ProjectAck : code));
    if (twin.type == "ProjectCatalog")
      myCatalogMessage(twin, code, in, out);
    else if (twin.type == "Project")
      myProjectMessage(twin, tag, code, in, out);
    else if (twin.type == "AttributeSet")
      mySetMessage(twin, tag, code, in, out);
    else
      Message::fatal("DataServer", 0, "PortalID %d is a %s, which this server does not serve.", tag,
                     twin.type.c_str());
    mySend(out, tag);
    return;
  } catch (UtlExcept const& e) {
    failure = e.getReason();
  } catch (std::exception const& e) {
    failure = vString("Unexpected failure: ") + e.what();
  } catch (...) {
    failure = "Unexpected failure of an unknown kind.";
  }
  note("request to %d failed: %s", tag, failure.c_str());
  myReport(100, 1, failure);
}

DataServerSession::Twin& DataServerSession::myParent(Twin const& twin, char const* type, int id) {
  auto const found = m_twins.find(twin.parent);
  if (found == m_twins.end() || found->second.type != type)
    Message::fatal("DataServer", 0, "The %s with PortalID %d has no %s above it.", twin.type.c_str(), id, type);
  return found->second;
}

void DataServerSession::myCatalogMessage(Twin& twin, int code, Packer& in, Packer& out) {
  if (code == ClientCode::SessionStart) {
    vString const host = readString(in);
    long long deckId = 0;
    long long jobId = 0;
    long long jobNumber = 0;
    bool readLocksDisabled = false;
    bool batch = false;
    in.unpack(deckId);
    vString const deckName = readString(in);
    in.unpack(jobId);
    in.unpack(jobNumber);
    in.unpackBool(readLocksDisabled);
    in.unpackBool(batch);
    twin.catalog = m_backend->catalog(host);
    note("session for host %s, job deck %lld '%s', job %lld number %lld%s%s", host.c_str(), deckId,
         deckName.c_str(), jobId, jobNumber, readLocksDisabled ? ", read locks disabled" : "",
         batch ? ", batch" : "");
    return;
  }
  if (twin.catalog.isEmpty()) Message::fatal("DataServer", 0, "The session has not been started.");
  if (code == ClientCode::GetProjectList) {
    out.pack(*twin.catalog->getProjectList());
    return;
  }
  Message::fatal("DataServer", 0, "Unknown message code %d for a ProjectCatalog.", code);
}

vHandle<Project> const& DataServerSession::myOpenProject(Twin const& twin, int id) {
  if (twin.project.isEmpty() || !twin.project->isOpen())
    Message::fatal("DataServer", 0, "The Project with PortalID %d is not open.", id);
  return twin.project;
}

void DataServerSession::myProjectMessage(Twin& twin, int id, int code, Packer& in, Packer& out) {
  if (code == ClientCode::ProjectOpen) {
    vLCString const name = readString(in);
    Twin& catalog = myParent(twin, "ProjectCatalog", id);
    if (catalog.catalog.isEmpty()) Message::fatal("DataServer", 0, "The session has not been started.");
    twin.project = m_backend->project(catalog.catalog, name);
    return;
  }
  if (code == ClientCode::ProjectClose) {
    // Other twins may hold the same project: this one only lets go of it.
    twin.project = vHandle<Project>();
    return;
  }
  vHandle<Project> const& project = myOpenProject(twin, id);
  switch (code) {
    case ClientCode::GetStoreList: {
      vLCString const storeClass = readString(in);
      vLCString const subClass = readString(in);
      vHandle<Project::StoreList> const list = project->getStoreList(storeClass, subClass);
      pack(out, list->begin(), list->end());
      return;
    }
    case ClientCode::GetStoreDetailsList: {
      vLCString const storeClass = readString(in);
      vLCString const subClass = readString(in);
      vHandle<Project::StoreDetailsList> const list = project->getStoreDetailsList(storeClass, subClass);
      pack(out, list->begin(), list->end());
      return;
    }
    case ClientCode::DeleteStore: {
      vLCString const name = readString(in);
      int32_t const version = readInt(in);
      vLCString const storeClass = readString(in);
      vLCString const subClass = readString(in);
      out.packBool(project->deleteStore(name, version, storeClass, subClass));
      return;
    }
    case ClientCode::PurgeStore: {
      int32_t const keep = readInt(in);
      vLCString const name = readString(in);
      vLCString const storeClass = readString(in);
      vLCString const subClass = readString(in);
      out.pack(static_cast<int32_t>(project->purgeStore(keep, name, storeClass, subClass) ? 1 : 0));
      return;
    }
    case ClientCode::HasStore: {
      vLCString const name = readString(in);
      int32_t const version = readInt(in);
      out.packBool(project->hasStore(name, version));
      return;
    }
    case ClientCode::GetStoreDetails: {
      vLCString const name = readString(in);
      int32_t const version = readInt(in);
      out.pack(project->getStoreDetails(name, version));
      return;
    }
    case ClientCode::GetAttributeSetDetails: {
      vLCString const name = readString(in);
      int32_t const version = readInt(in);
      Project::AttributeSetDetailsList const list = project->getAttributeSetDetails(name, version);
      pack(out, list.begin(), list.end());
      return;
    }
    default:
      Message::fatal("DataServer", 0, "Unknown message code %d for a Project.", code);
  }
}
