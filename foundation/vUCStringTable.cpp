#include "foundation/vUCStringTable.h"

#include <algorithm>
#include <cstdio>
#include <mutex>
#include <thread>
#include <vector>

#include "foundation/Message.h"
#include "foundation/vMutex.h"

namespace {

// Renumberings of every table run one at a time under this mutex, with the
// counter odd while ids move. A reader that finds it odd, or changed after
// its reads, reads again; renumbering is short, so it seldom has to.
std::atomic<unsigned int> g_renumbering(0);

std::mutex& renumberingMutex() {
  static std::mutex m;
  return m;
}

template <class F>
void readIDs(F read) {
  for (;;) {
    unsigned int const before = g_renumbering.load(std::memory_order_acquire);
    if ((before & 1u) == 0) {
      read();
      std::atomic_thread_fence(std::memory_order_acquire);
      if (g_renumbering.load(std::memory_order_relaxed) == before) return;
    }
    std::this_thread::yield();
  }
}

struct LessByName {
  bool operator()(vUCStringTableData const* a, vUCStringTableData const* b) const {
    return a->getString() < b->getString();
  }
};

}  // namespace

int vUCStringTableData::getID() const {
  int id = 0;
  readIDs([&] { id = m_id.load(std::memory_order_relaxed); });
  return id;
}

void vUCStringTableData::getIDs(vUCStringTableData const* a, vUCStringTableData const* b, int& idA, int& idB) {
  readIDs([&] {
    idA = a->m_id.load(std::memory_order_relaxed);
    idB = b->m_id.load(std::memory_order_relaxed);
  });
}

bool vUCStringTableData::isLess(vUCStringTableData const* a, vUCStringTableData const* b) {
  int idA = 0;
  int idB = 0;
  getIDs(a, b, idA, idB);
  return idA < idB;
}

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
  {
    std::lock_guard<std::mutex> renumbering(renumberingMutex());
    unsigned int const count = g_renumbering.load(std::memory_order_relaxed);
    g_renumbering.store(count + 1, std::memory_order_relaxed);
    std::atomic_thread_fence(std::memory_order_release);
    int id = at == v.begin() ? 0 : (*(at - 1))->m_id.load(std::memory_order_relaxed) + 1;
    for (Record::Entries::iterator i = at; i != v.end(); ++i) (*i)->m_id.store(id++, std::memory_order_relaxed);
    g_renumbering.store(count + 2, std::memory_order_release);
  }
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
