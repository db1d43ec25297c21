#include "project/ProjectCatalog.h"

ProjectCatalog::~ProjectCatalog() {}

vString ProjectCatalog::getServer() const { return vString(); }
