#include "project/ProjectCatalogDescription.h"

#include "foundation/Message.h"
#include "foundation/UtlExcept.h"
#include "foundation/vDatabases.h"
#include "foundation/vUtl.h"
#include "project/Project.h"
#include "project/ProjectFactory.h"

namespace {

// Hosts of the Kelp archive: they hold the data but run no data server, so a
// catalog opened on them would wait for a server that never answers. Each is
// served by the Kelp data server named beside it.
struct ReservedHost {
  char const* dataHost;
  char const* server;
};
ReservedHost const kReservedDataHosts[] = {
    {"kelpdata", "kelpserver"}, {"kelparchive", "kelpserver"}, {"kelpvault", "kelpserver"}};

// What a user who dropped a colon types as a Dorn server.
char const* const kTypeWords[] = {"r", "rondo", "d", "dorn", "k", "kelp"};

}  // namespace

ProjectCatalogDescription::ProjectCatalogDescription() : m_type(ProjectType::NOTYPE) {}

ProjectCatalogDescription::~ProjectCatalogDescription() {}

vString ProjectCatalogDescription::getReservedDataHostServer(vString const& host) {
  for (ReservedHost const& reserved : kReservedDataHosts)
    if (host.stricmp(reserved.dataHost) == 0) return vString(reserved.server);
  return vString();
}

void ProjectCatalogDescription::setCapi(ProjectType::PROJECT_TYPE type, vString const& server, vString const& host) {
  switch (type) {
    case ProjectType::NOTYPE:
    case ProjectType::RONDO:
    case ProjectType::KELP:
    case ProjectType::DORN:
    case ProjectType::UNITTEST:
    case ProjectType::INMEMORY:
    case ProjectType::ZONMESH:
      break;
    default:
      throw UtlExcept("ProjectType must be either DORN, RONDO or KELP", "ProjectCatalogDescription::setCapi()");
  }

  vString theHost(host);
  if (theHost.isBlank() && ProjectFactory::hasDefaultProject())
    theHost = ProjectFactory::getDefaultProject()->getProjectHost();
  if (theHost.isBlank()) theHost = vUtl::gethostname();

  vString theServer(server);
  if (type == ProjectType::DORN) {
    if (theServer.isBlank()) theServer = vUtl::getDefaultServer();
    if (!vDatabases::getDefault().isValidDatabase(vLCString(theServer))) {
      for (char const* word : kTypeWords) {
        if (theServer == word)
          Message::fatal("ProjectCatalogDescription::setCapi", 0,
                         "Invalid server '%s', maybe you meant %s::%s:<project>:<store> (missing colon after %s)",
                         theServer.c_str(), theServer.c_str(), theHost.c_str(), theServer.c_str());
      }
      Message::fatal("ProjectCatalogDescription::setCapi", 0, "Unrecognised server '%s'.", theServer.c_str());
    }
  } else if (type == ProjectType::KELP) {
    if (theServer.isBlank()) theServer = theHost;
    vString kelpServer = getReservedDataHostServer(theServer);
    if (!kelpServer.isEmpty()) {
      vString reason;
      reason.printf("'%s' is a reserved Kelp data host that runs no data server; use the Kelp data server '%s'.",
                    theServer.c_str(), kelpServer.c_str());
      throw UtlExcept(reason, vString("ProjectCatalogDescription::setCapi()"));
    }
  }

  m_type = type;
  m_serverHost = theServer;
  m_dataHost = theHost;
  m_flatFile = vFilename();
}

void ProjectCatalogDescription::setFlatFile(vFilename const& file) {
  m_type = ProjectType::FLATFILE;
  m_serverHost.erase();
  m_dataHost = file.getHost();
  m_flatFile = file;
}

void ProjectCatalogDescription::setDefaultProjectType() {
  if (m_type == ProjectType::NOTYPE) m_type = ProjectType::RONDO;
}

vString ProjectCatalogDescription::getPath() const { return m_flatFile.getDirectory(); }

bool ProjectCatalogDescription::isCapi() const {
  switch (m_type) {
    case ProjectType::NOTYPE:
    case ProjectType::RONDO:
    case ProjectType::KELP:
    case ProjectType::DORN:
    case ProjectType::UNITTEST:
    case ProjectType::ZONMESH:
      return true;
    default:
      return false;
  }
}

bool ProjectCatalogDescription::isFlatFile() const { return m_type == ProjectType::FLATFILE; }

bool ProjectCatalogDescription::isInMemory() const { return m_type == ProjectType::INMEMORY; }

vString ProjectCatalogDescription::toString() const {
  vString text = ProjectType::getProjectTypeName(m_type);
  if (isInMemory()) {
  } else if (isCapi()) {
    text += ':';
    text += m_serverHost;
    text += ':';
    text += m_dataHost;
  } else if (isFlatFile()) {
    text += ':';
    text += m_flatFile.getFilename();
  }
  text += ':';
  return text;
}

vString ProjectCatalogDescription::myPlace() const {
  if (isCapi()) {
    if (m_type == ProjectType::DORN || m_type == ProjectType::ZONMESH) return m_serverHost;
    return m_dataHost;
  }
  if (isFlatFile()) return m_flatFile.getFilename();
  return vString();
}

bool ProjectCatalogDescription::operator==(ProjectCatalogDescription const& other) const {
  if (m_type != other.m_type) return false;
  if (isCapi()) return myPlace() == other.myPlace();
  if (isFlatFile()) return m_flatFile == other.m_flatFile;
  return true;
}

bool ProjectCatalogDescription::operator<(ProjectCatalogDescription const& other) const {
  vString name = ProjectType::getProjectTypeName(m_type);
  vString otherName = ProjectType::getProjectTypeName(other.m_type);
  if (name != otherName) return name < otherName;
  return myPlace() < other.myPlace();
}
