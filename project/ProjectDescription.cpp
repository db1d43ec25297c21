#include "project/ProjectDescription.h"

#include "foundation/Message.h"
#include "project/Project.h"
#include "project/ProjectFactory.h"

namespace {

// Blank parts take the default project's.
void completeFromDefault(vString& server, vString& host, vLCString& project) {
  if (!ProjectFactory::hasDefaultProject()) return;
  vHandle<Project> def = ProjectFactory::getDefaultProject();
  if (server.isBlank()) server = def->getServerHost();
  if (host.isBlank()) host = def->getProjectHost();
  if (project.isBlank()) project = def->getName();
}

// The field before the first ':' (the whole text when there is none),
// consumed.
vString firstField(vString& rest) {
  int pos = rest.search(':');
  vString field;
  if (pos < 0) {
    field = rest;
    rest.erase();
  } else {
    unsigned int p = static_cast<unsigned int>(pos);
    field = p > 0 ? rest.substr(0, p) : vString();
    rest = rest.substr(p + 1);
  }
  return field;
}

// The field behind the last ':' (the whole text when there is none),
// consumed. Fields are read from the right, as in a FullProjectName, so
// that "r::survey" names a project and not a host.
vString lastField(vString& rest) {
  int pos = 0;
  vString field;
  if (rest.searchForLast(':', pos) != 0) {
    field = rest;
    rest.erase();
  } else {
    unsigned int p = static_cast<unsigned int>(pos);
    field = rest.substr(p + 1);
    rest = p > 0 ? rest.substr(0, p) : vString();
  }
  return field;
}

}  // namespace

ProjectDescription::ProjectDescription() {}

ProjectDescription::ProjectDescription(vString const& text) {
  vString rest(text);
  vString typeText = firstField(rest);
  ProjectType::PROJECT_TYPE type;
  // A first field that is no type is the server or host of a name without
  // one, unless three more fields follow it: then it stands where only a type
  // can stand.
  if (!ProjectType::isValidProjectType(typeText, type) && rest.count(':') >= 2)
    Message::fatal("ProjectDescription(vString)", 0, "Unknown project type '%s'.", typeText.c_str());

  switch (type) {
    case ProjectType::RONDO:
    case ProjectType::KELP:
    case ProjectType::DORN:
    case ProjectType::UNITTEST:
    case ProjectType::ZONMESH: {
      vLCString project(lastField(rest));
      vString host = lastField(rest);
      vString server = rest;
      completeFromDefault(server, host, project);
      setCapi(type, server, host);
      m_projectName = project;
      break;
    }
    case ProjectType::FLATFILE: {
      if (rest.length() > 0 && rest[rest.length() - 1] == ':') rest = rest.substr(0, rest.length() - 1);
      setFlatFile(vFilename(rest));
      break;
    }
    case ProjectType::INMEMORY:
      setCapi(ProjectType::INMEMORY, vString(), vString());
      break;
    case ProjectType::NOTYPE: {
      FullProjectName name(text);
      vString server = name.getServerName();
      vString host = name.getHostName();
      vLCString project = name.getProject();
      completeFromDefault(server, host, project);
      setCapi(name.getProjectType(), server, host);
      m_projectName = project;
      break;
    }
    default:
      Message::fatal("ProjectDescription(vString)", 0, "Unknown project type '%s'.", typeText.c_str());
  }
}

ProjectDescription::~ProjectDescription() {}

void ProjectDescription::setFlatFile(vFilename const& file) {
  ProjectCatalogDescription::setFlatFile(file);
  m_projectName = file.getDirectory();
}

FullProjectName ProjectDescription::getFullProjectName() const {
  return FullProjectName(m_type, m_serverHost, m_dataHost, m_projectName);
}

vString ProjectDescription::toString() const {
  vString text = ProjectCatalogDescription::toString();
  text += m_projectName;
  return text;
}

bool ProjectDescription::operator==(ProjectDescription const& other) const {
  return ProjectCatalogDescription::operator==(other) && m_projectName == other.m_projectName;
}

bool ProjectDescription::operator<(ProjectDescription const& other) const {
  if (ProjectCatalogDescription::operator<(other)) return true;
  if (other.ProjectCatalogDescription::operator<(*this)) return false;
  return m_projectName < other.m_projectName;
}
