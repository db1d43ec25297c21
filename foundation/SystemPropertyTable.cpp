#include "foundation/SystemPropertyTable.h"

#include <memory>

#include "foundation/Message.h"
#include "foundation/MessageHandling.h"
#include "foundation/SystemPropertyLoader.h"
#include "foundation/UtlExcept.h"
#include "foundation/vDatabase.h"
#include "foundation/vDatabases.h"
#include "foundation/vUtl.h"

namespace {

char const* const kTableName = "SystemPropertyTable2.txt";

std::unique_ptr<SystemPropertyTable>& theTable() {
  static std::unique_ptr<SystemPropertyTable> table;
  return table;
}

}  // namespace

SystemPropertyTable& SystemPropertyTable::instance() {
  std::unique_ptr<SystemPropertyTable>& table = theTable();
  if (!table) {
    std::unique_ptr<SystemPropertyTable> made(new SystemPropertyTable);
    made->reload();
    table = std::move(made);
  }
  return *table;
}

SystemPropertyTable::SystemPropertyTable() {}

SystemPropertyTable::~SystemPropertyTable() {}

vUCString SystemPropertyTable::myMakeKey(vUCString const& section, vUCString const& name) {
  vUCString key(section);
  key += "::";
  key += name;
  return key;
}

bool SystemPropertyTable::hasSystemProperty(vUCString const& section, vUCString const& name) const {
  return m_table.find(myMakeKey(section, name)) != m_table.end();
}

SystemProperty const& SystemPropertyTable::getSystemProperty(vUCString const& section, vUCString const& name) const {
  auto it = m_table.find(myMakeKey(section, name));
  if (it == m_table.end())
    Message::fatal("SystemPropertyTable::getSystemProperty", 0,
                   "The system property %s/%s was not found in the system property tables.", section.c_str(),
                   name.c_str());
  return it->second;
}

void SystemPropertyTable::addSystemProperty(SystemProperty const& property) {
  m_table[myMakeKey(property.getSection(), property.getName())] = property;
}

std::vector<SystemProperty> SystemPropertyTable::getSystemProperties() const {
  std::vector<SystemProperty> all;
  all.reserve(m_table.size());
  for (auto const& entry : m_table) all.push_back(entry.second);
  return all;
}

void SystemPropertyTable::clear() { m_table.clear(); }

void SystemPropertyTable::myMakeTableNames() {
  m_tableName = kTableName;

  vString host = vUtl::gethostname();
  m_localTableName.erase();
  if (!host.isEmpty()) {
    m_localTableName = host;
    m_localTableName += kTableName;
  }

  // The domain decides which site table applies; where neither the database
  // configuration nor the system can tell it, there is no domain table.
  vString domain;
  {
    MessageHandling quiet;
    try {
      domain = vDatabases::getDefaultDatabaseEntry().getDomain();
    } catch (UtlExcept const&) {
      try {
        domain = vUtl::getDomainName();
      } catch (UtlExcept const&) {
        domain.erase();
      }
    }
  }
  m_domainTableName.erase();
  if (!domain.isEmpty()) {
    m_domainTableName = domain;
    m_domainTableName += kTableName;
  }
}

bool SystemPropertyTable::myLoader(vString const& file) {
  vString path;
  if (file.isEmpty() || !SystemFileLoader::find(file, path)) return false;
  SystemPropertyLoader loader(*this);
  loader.load(file, "system properties");
  return true;
}

void SystemPropertyTable::reload() {
  clear();
  myMakeTableNames();
  myLoader(m_tableName);
  myLoader(m_domainTableName);
  myLoader(m_localTableName);
}
