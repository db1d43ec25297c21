#ifndef FOUNDATION_SYSTEMPROPERTYTABLE_H
#define FOUNDATION_SYSTEMPROPERTYTABLE_H

// SystemPropertyTable: the process-wide table of system properties read from
// the release. On first use it loads, in turn, the general table
// "SystemPropertyTable2.txt", the domain's table (<domain> + that name) and
// this host's table (<host> + that name); a record read later replaces one of
// the same section and name, so a host's file beats its domain's, which beats
// the release's. Each file is looked for by SystemFileLoader (working
// directory, then the system files directory); a table that exists nowhere
// is simply absent, while a bad record in one that exists is fatal.
//
// Code should ask SystemPropertyManager, which lets the environment override
// this table. One thread at a time.

#include <map>
#include <vector>

#include "foundation/SystemProperty.h"
#include "foundation/vString.h"
#include "foundation/vUCString.h"

class SystemPropertyTable {
 public:
  // The table, loaded on first use. A fatal load leaves it unmade, so the
  // next call tries again.
  static SystemPropertyTable& instance();
  virtual ~SystemPropertyTable();

  vString const& getTableName() const { return m_tableName; }
  vString const& getLocalTableName() const { return m_localTableName; }
  vString const& getDomainTableName() const { return m_domainTableName; }

  bool hasSystemProperty(vUCString const& section, vUCString const& name) const;
  // Absent is fatal: callers test with hasSystemProperty first.
  SystemProperty const& getSystemProperty(vUCString const& section, vUCString const& name) const;
  // Adds, or replaces the record of the same section and name.
  void addSystemProperty(SystemProperty const& property);
  // All records, ordered by section and name.
  std::vector<SystemProperty> getSystemProperties() const;
  int size() const { return static_cast<int>(m_table.size()); }

  void clear();
  // Clears, makes the table names afresh (host, domain) and loads the three
  // tables again: for a process whose release or domain has changed.
  void reload();

 protected:
  SystemPropertyTable();

  // Loads one table file into this table; false when it exists nowhere.
  bool myLoader(vString const& file);
  void myMakeTableNames();
  static vUCString myMakeKey(vUCString const& section, vUCString const& name);

 private:
  SystemPropertyTable(SystemPropertyTable const&) = delete;
  SystemPropertyTable& operator=(SystemPropertyTable const&) = delete;

  std::map<vUCString, SystemProperty> m_table;
  vString m_tableName;
  vString m_localTableName;
  vString m_domainTableName;
};

#endif
