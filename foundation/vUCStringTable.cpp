#include "foundation/vUCStringTable.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "foundation/Message.h"
#include "foundation/vMutex.h"

namespace {

struct LessByName {
  bool operator()(vUCStringTableData const* a, vUCStringTableData const* b) const {
    return a->getString() < b->getString();
  }
};

}  // namespace

struct vUCStringTable::Record {
  typedef std::vector<vUCStringTableData*> Entries;

  Record() : mutex(true, vMutex::Recursive), key() {}

  // Finds name by an equal-range search with the scratch entry as key, so
  // that a look-up allocates nothing beyond the key's own copy of the name.
  bool find(vUCString const& name) {
    key.m_string = name;
    std::pair<Entries::iterator, Entries::iterator> r =
        std::equal_range(entries.begin(), entries.end(), &key, LessByName());
    first = r.first;
    last = r.second;
    return first != last;
  }

  vMutex mutex;
  Entries entries;
  vUCStringTableData key;
  Entries::iterator first;
  Entries::iterator last;
};

vUCStringTable::vUCStringTable() : m_record(new Record) {}

vUCStringTable::~vUCStringTable() {
  clear();
  delete m_record;
}

vUCStringTableData const* vUCStringTable::add(vUCString const& s) {
  vMutexLocker lock(m_record->mutex);
  if (m_record->find(s)) return *m_record->first;
  // The entry, its copy of the name and its slot in the vector: when any of
  // them cannot be had, the table stays as it was.
  Record::Entries& v = m_record->entries;
  vUCStringTableData* entry = nullptr;
  Record::Entries::iterator at;
  try {
    entry = new vUCStringTableData(s);
    at = v.insert(m_record->first, entry);
  } catch (...) {
    delete entry;
    entry = nullptr;
  }
  if (!entry) {
    m_record->first = m_record->last = v.end();
    m_record->key.m_string.erase();
    Message::fatal("vUCStringTableIDTable::add", 0, "Failed to allocate memory for the string '%s'!", s.c_str());
  }
  // Ranks from the new entry on move up by one.
  int id = at == v.begin() ? 0 : (*(at - 1))->m_id + 1;
  for (Record::Entries::iterator i = at; i != v.end(); ++i) (*i)->m_id = id++;
  m_record->first = m_record->last = v.end();
  return entry;
}

vUCStringTableData const* vUCStringTable::add(char const* s) { return add(vUCString(s)); }

bool vUCStringTable::exists(vUCString const& s, vUCStringTableData const** entry) const {
  vMutexLocker lock(m_record->mutex);
  bool const found = m_record->find(s);
  if (entry) *entry = found ? *m_record->first : nullptr;
  return found;
}

int vUCStringTable::getID(vUCString const& s) const {
  vMutexLocker lock(m_record->mutex);
  if (!m_record->find(s))
    Message::fatal("vUCStringTableIDTable::getID", 0, "The string '%s' is not within the table!", s.c_str());
  return (*m_record->first)->m_id;
}

vUCStringTableData const* vUCStringTable::at(int id) const {
  vMutexLocker lock(m_record->mutex);
  if (id < 0 || static_cast<size_t>(id) >= m_record->entries.size()) return nullptr;
  return m_record->entries[static_cast<size_t>(id)];
}

int vUCStringTable::size() const {
  vMutexLocker lock(m_record->mutex);
  return static_cast<int>(m_record->entries.size());
}

void vUCStringTable::clear() {
  vMutexLocker lock(m_record->mutex);
  for (size_t i = 0; i < m_record->entries.size(); ++i) delete m_record->entries[i];
  m_record->entries.clear();
  m_record->first = m_record->last = m_record->entries.end();
}

void vUCStringTable::dumpTable() const {
  vMutexLocker lock(m_record->mutex);
  std::printf("vUCStringTable: %u entries\n", static_cast<unsigned>(m_record->entries.size()));
  for (size_t i = 0; i < m_record->entries.size(); ++i)
    std::printf("%6d  %s\n", m_record->entries[i]->getID(), m_record->entries[i]->getString().c_str());
  std::fflush(stdout);
}
