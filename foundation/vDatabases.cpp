#include "foundation/vDatabases.h"

#include <sys/stat.h>

#include <memory>

#include "foundation/Message.h"
#include "foundation/vUtl.h"

namespace {

char const* const kConfigName = "DatabaseConfig.ini";
char const* const kSiteConfig = "/dorn/1/rel/SystemFiles/DatabaseConfig.ini";

bool isFile(char const* path) {
  struct stat st;
  return path && *path && ::stat(path, &st) == 0 && !S_ISDIR(st.st_mode);
}

std::unique_ptr<vDatabases>& theCache() {
  static std::unique_ptr<vDatabases> cache;
  return cache;
}

vString stripped(vString text) {
  text.trimRight();
  text.trimLeft();
  return text;
}

}  // namespace

vDatabases::vDatabases() {}

vDatabases::~vDatabases() {}

vString vDatabases::getConfigFileName() {
  vString path;
  if (vUtl::getenv("VDATABASES_DATABASECONFIG", path) && !path.isBlank()) return path;
  if (isFile(kSiteConfig)) return vString(kSiteConfig);
  path = vUtl::systemFilesDirectory();
  path += kConfigName;
  return path;
}

void vDatabases::load() { loadFromFile(getConfigFileName()); }

void vDatabases::loadFromFile(vString const& path) {
  if (!isFile(path.c_str()))
    Message::fatal("vDatabases::load", 0, "The database config file '%s' cannot be found!", path.c_str());
  vIni ini;
  ini.loadFromFile(path);
  myBuild(ini, path);
}

void vDatabases::loadFromMemory(vString const& text, vString const& name) {
  vIni ini;
  ini.loadFromMemory(text);
  myBuild(ini, name);
}

void vDatabases::myBuild(vIni const& ini, vString const& name) {
  m_databases.clear();
  m_aliases.clear();
  m_fileName = name;
  for (vLCString const& section : ini.getSections()) {
    if (section == "aliases") {
      for (vIni::KeyValue const& kv : ini.getKeysAndValues(section))
        m_aliases.push_back(Alias(kv.first, vLCString(stripped(kv.second))));
      continue;
    }
    std::vector<vDatabase::KeyValue> keys;
    for (vIni::KeyValue const& kv : ini.getKeysAndValues(section))
      keys.push_back(vDatabase::KeyValue(kv.first, stripped(kv.second)));
    m_databases.push_back(vDatabase(section, section, keys));
  }
}

vDatabase const* vDatabases::myFind(vLCString const& name) const {
  for (vDatabase const& db : m_databases)
    if (db.getName() == name) return &db;
  return nullptr;
}

vLCString const* vDatabases::myFindAlias(vLCString const& domain) const {
  for (Alias const& a : m_aliases)
    if (a.first == domain) return &a.second;
  return nullptr;
}

void vDatabases::myNotFound(char const* method, vLCString const& domain) const {
  Message::fatal(method, 0, "Domain '%s' not found in the database configuration file '%s'!", domain.c_str(),
                 m_fileName.c_str());
}

vLCString vDatabases::getTrueDomain(vLCString const& domain) const {
  if (myFind(domain)) return domain;
  vLCString const* target = myFindAlias(domain);
  if (!target || !myFind(*target)) myNotFound("vDatabases::getTrueDomain", domain);
  return *target;
}

vDatabase const& vDatabases::get(vLCString const& domain) const {
  if (vDatabase const* db = myFind(domain)) return *db;
  vLCString const* target = myFindAlias(domain);
  vDatabase const* db = target ? myFind(*target) : nullptr;
  if (!db) myNotFound("vDatabases::get", domain);
  return *db;
}

bool vDatabases::exists(vLCString const& domain) const {
  if (myFind(domain)) return true;
  vLCString const* target = myFindAlias(domain);
  return target && myFind(*target);
}

bool vDatabases::isValidDevelopmentDatabase(vLCString const& name) const {
  if (name.isBlank()) return false;
  for (vDatabase const& db : m_databases)
    if (vLCString(db.getDevelopmentDatabase()) == name) return true;
  return false;
}

bool vDatabases::isValidProductionDatabase(vLCString const& name) const {
  if (name.isBlank()) return false;
  for (vDatabase const& db : m_databases)
    if (vLCString(db.getProductionDatabase()) == name) return true;
  return false;
}

bool vDatabases::isValidDatabase(vLCString const& name) const {
  return exists(name) || isValidProductionDatabase(name) || isValidDevelopmentDatabase(name);
}

vDatabases const& vDatabases::getDefault() {
  std::unique_ptr<vDatabases>& cache = theCache();
  if (!cache) {
    std::unique_ptr<vDatabases> loaded(new vDatabases);
    loaded->load();
    cache = std::move(loaded);
  }
  return *cache;
}

void vDatabases::setCache(vDatabases const& databases) { theCache().reset(new vDatabases(databases)); }

void vDatabases::clearCache() { theCache().reset(); }

vDatabase const& vDatabases::getDefaultDatabaseEntry() {
  vDatabases const& all = getDefault();
  return all.get(vLCString(vUtl::getDomainName()));
}

namespace {

// This domain's entry when the configuration has one; the questions below
// answer false for a domain the site does not list.
vDatabase const* myDefaultEntry() {
  vDatabases const& all = vDatabases::getDefault();
  vLCString domain(vUtl::getDomainName());
  return all.exists(domain) ? &all.get(domain) : nullptr;
}

}  // namespace

bool vDatabases::haveDefaultDevelopmentDB() {
  vDatabase const* db = myDefaultEntry();
  return db && !db->getDevelopmentDatabase().isBlank();
}

bool vDatabases::haveDefaultProductionDB() {
  vDatabase const* db = myDefaultEntry();
  return db && !db->getProductionDatabase().isBlank();
}

bool vDatabases::isOracleAvailable() { return haveDefaultProductionDB() || haveDefaultDevelopmentDB(); }
