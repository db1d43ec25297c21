#ifndef FOUNDATION_VDATABASES_H
#define FOUNDATION_VDATABASES_H

// vDatabases: the databases a site knows, read from "DatabaseConfig.ini".
// The section "aliases" maps further domain names to a database; every other
// section is a database (vDatabase) named after the domain it serves. Domain
// and database names ignore case.
//
//   [aliases]
//   corp.example.com = houston
//   [houston]
//   ProductionDatabase = hprod
//   DevelopmentDatabase = hdev
//
// The process-wide configuration (getDefault and the static questions about
// this host's domain) is read once by load() and kept until setCache or
// clearCache replaces it. One thread at a time.

#include <utility>
#include <vector>

#include "foundation/vDatabase.h"
#include "foundation/vIni.h"
#include "foundation/vLCString.h"
#include "foundation/vString.h"

class vDatabases {
 public:
  typedef std::pair<vLCString, vLCString> Alias;

  vDatabases();
  virtual ~vDatabases();

  // The site's file: the path in VDATABASES_DATABASECONFIG, or
  // "/dorn/1/rel/SystemFiles/DatabaseConfig.ini" when that exists, or else
  // the release's system files directory + "DatabaseConfig.ini". A file that
  // is not there is fatal: "The database config file '%s' cannot be found!".
  void load();
  static vString getConfigFileName();
  // These replace what was held before.
  void loadFromFile(vString const& path);
  void loadFromMemory(vString const& text, vString const& name = vString());

  // The process-wide configuration, loaded on first use.
  static vDatabases const& getDefault();
  static void setCache(vDatabases const& databases);
  // Forgets the process-wide configuration; the next use loads it again.
  static void clearCache();

  // Questions about this host's domain (vUtl::getDomainName()), answered
  // from the process-wide configuration.
  static vDatabase const& getDefaultDatabaseEntry();
  // These three answer false for a domain the configuration does not list.
  static bool haveDefaultDevelopmentDB();
  static bool haveDefaultProductionDB();
  // True when this domain's entry names a production or development database.
  static bool isOracleAvailable();

  // Every database, in the order of the file.
  std::vector<vDatabase> const& get() const { return m_databases; }
  // The database of a domain or alias; unknown is fatal:
  // "Domain '%s' not found in the database configuration file '%s'!".
  vDatabase const& get(vLCString const& domain) const;
  // A database or an alias of that name.
  bool exists(vLCString const& domain) const;
  // The database a domain resolves to through the aliases; unknown is fatal.
  vLCString getTrueDomain(vLCString const& domain) const;
  // A name a catalog may use as its server: a database or alias, or a
  // production or development database named by an entry.
  bool isValidDatabase(vLCString const& name) const;
  bool isValidDevelopmentDatabase(vLCString const& name) const;
  bool isValidProductionDatabase(vLCString const& name) const;

  std::vector<Alias> const& getAliases() const { return m_aliases; }
  vString const& getFileName() const { return m_fileName; }

 private:
  void myBuild(vIni const& ini, vString const& name);
  vDatabase const* myFind(vLCString const& name) const;
  vLCString const* myFindAlias(vLCString const& domain) const;
  [[noreturn]] void myNotFound(char const* method, vLCString const& domain) const;

  std::vector<vDatabase> m_databases;
  std::vector<Alias> m_aliases;
  vString m_fileName;
};

#endif
