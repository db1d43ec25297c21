#include "server/DirectoryProjectCatalog.h"


#include <string>

#include "foundation/Message.h"
#include "foundation/SystemPropertyManager.h"
#include "foundation/vLCString.h"
#include "project/ProjectList.h"
#include "server/DirectoryTree.h"

vString DirectoryProjectCatalog::configuredRoot() {
  char const* const label = "DirectoryProjectCatalog::configuredRoot";
  if (!SystemPropertyManager::hasSystemProperty("DATASERVER", "ROOT") ||
      SystemPropertyManager::getSystemProperty("DATASERVER", "ROOT").getValues().empty())
    Message::fatal(label, 0,
                   "The data server has no project directory: set the system property ROOT of section DATASERVER "
                   "(SP_DATASERVER_ROOT).");
  return SystemPropertyManager::getSystemProperty("DATASERVER", "ROOT").getValues().front();
}

DirectoryProjectCatalog::DirectoryProjectCatalog(vString const& host) : m_host(host) {
  vString const root = configuredRoot();
  m_root = DirectoryTree::resolve(root);
  if (m_root.isBlank() || !DirectoryTree::isDirectory(m_root))
    Message::fatal("DirectoryProjectCatalog::DirectoryProjectCatalog", 0,
                   "The data server's ROOT '%s' is not a directory.", root.c_str());
}

DirectoryProjectCatalog::~DirectoryProjectCatalog() {}

vHandle<ProjectList> DirectoryProjectCatalog::getProjectList() const {
  vHandle<ProjectList> list(new ProjectList);
  for (std::string const& entry : DirectoryTree::entries(m_root)) {
    vString const path = m_root + "/" + entry.c_str();
    if (DirectoryTree::isDirectory(path) && DirectoryTree::isWithin(m_root, DirectoryTree::resolve(path)))
      list->add(ProjectListEntry(vLCString(entry.c_str())));
  }
  list->sort();
  return list;
}
