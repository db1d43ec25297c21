#include "project/UTProjectCatalog.h"

UTProjectCatalog::UTProjectCatalog(vString const& host, ProjectType::PROJECT_TYPE type) : m_host(host), m_type(type) {}

UTProjectCatalog::~UTProjectCatalog() {}

vString UTProjectCatalog::getHost() const { return m_host; }

ProjectType::PROJECT_TYPE UTProjectCatalog::getProjectType() const { return m_type; }

vHandle<ProjectList> UTProjectCatalog::getProjectList() const { return vHandle<ProjectList>(new ProjectList); }
