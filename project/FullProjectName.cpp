#include "project/FullProjectName.h"

#include "foundation/UtlExcept.h"

FullProjectName::FullProjectName() : m_type(ProjectType::NOTYPE) {}

FullProjectName::FullProjectName(vString const& text) : m_type(ProjectType::NOTYPE) { sortProjectName(text); }

FullProjectName::FullProjectName(vString const& typeName, vString const& server, vString const& host,
                                 vLCString const& project)
    : m_server(server), m_project(project), m_type(ProjectType::getProjectType(typeName)), m_host(host) {
  if (!myIsValidServerName(server)) throw UtlExcept("Invalid serverName for Store Name", "FullProjectName::FullProjectName()");
}

FullProjectName::FullProjectName(ProjectType::PROJECT_TYPE type, vString const& server, vString const& host,
                                 vLCString const& project)
    : m_server(server), m_project(project), m_type(type), m_host(host) {
  if (!myIsValidServerName(server)) throw UtlExcept("Invalid serverName for Store Name", "FullProjectName::FullProjectName()");
}

FullProjectName::~FullProjectName() {}

void FullProjectName::setServerName(vString const& server) {
  if (!myIsValidServerName(server)) throw UtlExcept("Invalid serverName for Store Name", "FullProjectName::setServerName()");
  m_server = server;
}

bool FullProjectName::myIsValidServerName(vString const& server) { return server.search(kSeparator) < 0; }

bool FullProjectName::mySplitAtLast(vString const& text, vString& left, vString& right) {
  int pos = 0;
  if (text.searchForLast(kSeparator, pos) != 0) return false;
  unsigned int p = static_cast<unsigned int>(pos);
  left = p > 0 ? text.substr(0, p) : vString();
  right = text.substr(p + 1);
  return true;
}

void FullProjectName::sortProjectName(vString const& text) {
  m_type = ProjectType::NOTYPE;
  m_server.erase();
  m_host.erase();
  m_project.erase();

  vString rest;
  vString field;
  if (!mySplitAtLast(text, rest, field)) {
    m_project = text;
    return;
  }
  m_project = field;

  vString left;
  if (!mySplitAtLast(rest, left, field)) {
    m_host = rest;
    return;
  }
  m_host = field;

  if (!mySplitAtLast(left, rest, field)) {
    if (!myIsValidServerName(left)) throw UtlExcept("Invalid ServerName", "FullProjectName::sortProjectName");
    m_server = left;
    return;
  }
  if (!myIsValidServerName(field)) throw UtlExcept("Invalid ServerName", "FullProjectName::sortProjectName");
  m_server = field;
  m_type = ProjectType::getProjectType(rest);
}

vString FullProjectName::myProjectFullName() const {
  vString name;
  if (m_type != ProjectType::NOTYPE) {
    name += ProjectType::getProjectTypeName(m_type);
    name += kSeparator;
  }
  if (!m_server.isBlank()) name += m_server;
  if (!name.isBlank()) name += kSeparator;
  if (!m_host.isBlank()) name += m_host;
  if (!name.isBlank()) name += kSeparator;
  if (!m_project.isBlank()) name += m_project;
  return name;
}

vString FullProjectName::getFullName() const { return myProjectFullName(); }

bool FullProjectName::operator==(FullProjectName const& other) const {
  return m_type == other.m_type && m_server == other.m_server && m_host == other.m_host &&
         m_project == other.m_project;
}

bool FullProjectName::operator<(FullProjectName const& other) const {
  if (m_server != other.m_server) return m_server < other.m_server;
  if (m_project != other.m_project) return m_project < other.m_project;
  if (m_type != other.m_type) return m_type < other.m_type;
  return m_host < other.m_host;
}
