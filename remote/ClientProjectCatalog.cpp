#include "remote/ClientProjectCatalog.h"

#include <unistd.h>

#include <cstdlib>
#include <string>

#include "foundation/Message.h"
#include "foundation/Packer.h"
#include "foundation/SystemPropertyManager.h"
#include "foundation/vUtl.h"
#include "remote/COBPortal.h"
#include "remote/ClientCodes.h"
#include "remote/LargeBlocks.h"
#include "syslayer/FS.h"

namespace {

// How long a starting server may take to connect back.
float const kStartTimeout = 120.0f;

// Whether the program that a command line starts is there to run: a path
// that can be executed, or a name found on the PATH. Only known for this
// host; a server that never comes would be waited for without end.
bool isProgramHere(vString const& command) {
  std::string const text = command.c_str();
  size_t const start = text.find_first_not_of(" \t");
  if (start == std::string::npos) return false;
  std::string const program = text.substr(start, text.find_first_of(" \t", start) - start);
  if (program.find('/') != std::string::npos) return ::access(program.c_str(), X_OK) == 0;
  char const* path = std::getenv("PATH");
  std::string const dirs = path != nullptr ? path : "";
  size_t from = 0;
  for (;;) {
    size_t const colon = dirs.find(':', from);
    std::string dir = dirs.substr(from, colon == std::string::npos ? std::string::npos : colon - from);
    if (dir.empty()) dir = ".";
    if (::access((dir + "/" + program).c_str(), X_OK) == 0) return true;
    if (colon == std::string::npos) return false;
    from = colon + 1;
  }
}

}  // namespace

vString ClientProjectCatalog::makeServerCommand(ProjectType::PROJECT_TYPE type) {
  vString command;
  if (SystemPropertyManager::hasSystemProperty("capi", "dataserver")) {
    SystemProperty const property = SystemPropertyManager::getSystemProperty("capi", "dataserver");
    if (!property.getValues().empty()) command = property.getValues().front() + " ";
  }
  if (command.isBlank()) {
    char const* server = std::getenv("VSERVER");
    command = server != nullptr ? vString(server) + " " : vString("DataServer ");
  }
  command += ProjectType::getProjectTypeName(type);
  command += " ";
  command += COBPortal::addressToken;
  command += " -build ";
  command += vString::number(vUtl::getBuildNumber());
  char const* release = std::getenv("VREL");
  if (release != nullptr) {
    command += " -v ";
    command += release;
  }
  return command;
}

ClientProjectCatalog::ClientProjectCatalog(vString const& first, ProjectType::PROJECT_TYPE type,
                                           vString const& second)
    : COB("ProjectCatalog", nullptr), m_type(type), m_first(new vString(first)), m_portal(nullptr),
      m_second(second) {
  keepLargeBlocksInHeap();
  if (type == ProjectType::DORN)
    Message::fatal("ClientProjectCatalog::ClientProjectCatalog", 0,
                   "Should not get here for Dorn projects. Check that the links /dorn/xp/rel/TAO & Oracle exist "
                   "and recompile Dorn.");
  vString const command = makeServerCommand(type);
  if ((first.isBlank() || first == vUtl::gethostname()) && !isProgramHere(command))
    Message::fatal("ClientProjectCatalog::ClientProjectCatalog", 0,
                   "The data server cannot be started: \"%s\" names no program on this host.", command.c_str());
  // The portal gives the server a bounded time to connect back, at the
  // start and at every reconnection.
  m_portal = vHandle<COBPortal>(new COBPortal(m_first.get(), &command));
  m_portal->setAcceptTimeout(kStartTimeout);
  setPortal(m_portal);
  doCommsReinitialize();
}

ClientProjectCatalog::~ClientProjectCatalog() {}

vString ClientProjectCatalog::getHost() const { return m_type == ProjectType::KELP ? m_second : *m_first; }

ProjectType::PROJECT_TYPE ClientProjectCatalog::getProjectType() const { return m_type; }

vString ClientProjectCatalog::getServer() const { return m_type == ProjectType::KELP ? *m_first : m_second; }

void ClientProjectCatalog::myExchange(Packer& packer, int code, char const* label) const {
  CommChan::StatusType const status = sendAndReceive(packer);
  if (status != CommChan::OK)
    Message::fatal(label, 0,
                   "Could not communicate with the data server. Status was %s. Please include contents of "
                   "~/DataServer.%s on %s in an error report.",
                   CommChan::status(status), ProjectType::getProjectTypeName(m_type).c_str(), getServer().c_str());
  int reply = 0;
  packer.unpack(reply);
  if (reply != code) Message::fatal(label, 0, "Unexpected code %d, expected %d.", reply, code);
}

vHandle<ProjectList> ClientProjectCatalog::getProjectList() const {
  Packer packer(200);
  packer.pack(static_cast<int32_t>(ClientCode::GetProjectList));
  myExchange(packer, ClientCode::GetProjectList, "ClientProjectCatalog::getProjectList");
  vHandle<ProjectList> list(new ProjectList);
  list->unpack(packer);
  return list;
}

void ClientProjectCatalog::doCommsReinitialize() {
  Packer packer(200);
  packer.pack(static_cast<int32_t>(ClientCode::SessionStart));
  packer.pack(getHost());
  packer.pack(static_cast<long long>(vUtl::getDornJobDeckID()));
  packer.pack(vUtl::getDornJobDeckName());
  packer.pack(static_cast<long long>(vUtl::getDornJobID()));
  packer.pack(static_cast<long long>(vUtl::getDornJobNumber()));
  packer.packBool(FS::areReadLocksDisabled());
  packer.packBool(vUtl::isDornBatchJob());
  myExchange(packer, ClientCode::SessionStart, "ClientProjectCatalog::doCommsReinitialize");
  if (packer.getState() == Packer::PACKUNPACKING) packer.discard();
}
