#include "database/zon/vKvsProject.h"

#include "foundation/vDatabases.h"

vKvsProject::vKvsProject(vString const& project, vString const& server)
    : m_project(project), m_server(server), m_activation(0) {
  if (m_server.isBlank()) m_server = vString(vDatabases::getDefaultDatabaseEntry().getName().c_str());
}
