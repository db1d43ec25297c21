#ifndef FOUNDATION_VDATABASE_H
#define FOUNDATION_VDATABASE_H

// vDatabase: one entry of the database configuration: a database named after
// the domain it serves (its section in "DatabaseConfig.ini"), with that
// section's key and value pairs. Keys ignore case; values are stripped of
// surrounding blanks. The keys a site gives are "ProductionDatabase",
// "DevelopmentDatabase", "micoNameServiceAddress", "taoNameServiceAddress"
// and "description".

#include <utility>
#include <vector>

#include "foundation/vLCString.h"
#include "foundation/vString.h"

class vDatabase {
 public:
  typedef std::pair<vLCString, vString> KeyValue;

  vDatabase();
  vDatabase(vLCString const& name, vLCString const& domain, std::vector<KeyValue> const& keyValues);
  virtual ~vDatabase();

  vLCString const& getName() const { return m_name; }
  vLCString const& getDomain() const { return m_domain; }
  std::vector<KeyValue> const& getKeyValues() const { return m_keyValues; }

  bool hasKey(vLCString const& key) const;
  // A key that is absent is fatal: test with hasKey.
  vString const& getKeyValue(vLCString const& key) const;
  // The value, or an empty text when the key is absent.
  vString getKeyValueOrEmpty(vLCString const& key) const;

  vString getProductionDatabase() const { return getKeyValueOrEmpty("ProductionDatabase"); }
  vString getDevelopmentDatabase() const { return getKeyValueOrEmpty("DevelopmentDatabase"); }
  vString getMicoNameServiceAddress() const { return getKeyValueOrEmpty("micoNameServiceAddress"); }
  vString getTaoNameServiceAddress() const { return getKeyValueOrEmpty("taoNameServiceAddress"); }
  vString getDescription() const { return getKeyValueOrEmpty("description"); }

 private:
  vLCString m_name;
  vLCString m_domain;
  std::vector<KeyValue> m_keyValues;
};

#endif
