#include "foundation/vDatabase.h"

#include "foundation/Message.h"

vDatabase::vDatabase() {}

vDatabase::vDatabase(vLCString const& name, vLCString const& domain, std::vector<KeyValue> const& keyValues)
    : m_name(name), m_domain(domain), m_keyValues(keyValues) {}

vDatabase::~vDatabase() {}

bool vDatabase::hasKey(vLCString const& key) const {
  for (KeyValue const& kv : m_keyValues)
    if (kv.first == key) return true;
  return false;
}

vString const& vDatabase::getKeyValue(vLCString const& key) const {
  for (KeyValue const& kv : m_keyValues)
    if (kv.first == key) return kv.second;
  Message::fatal("vDatabase::getKeyValue", 0, "The key '%s' is not defined for the database '%s'!", key.c_str(),
                 m_name.c_str());
}

vString vDatabase::getKeyValueOrEmpty(vLCString const& key) const {
  for (KeyValue const& kv : m_keyValues)
    if (kv.first == key) return kv.second;
  return vString();
}
