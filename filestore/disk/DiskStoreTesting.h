#ifndef FILESTORE_DISK_DISKSTORETESTING_H
#define FILESTORE_DISK_DISKSTORETESTING_H

// Test helper: the smallest real disk store. RecordFileStore reads a file of
// fixed-length records, one per instance, each the attributes' values one
// after the other in the order of its definitions (numeric types, this
// host's byte order). It implements reading by instance number (range and
// list) and the questions of what it holds, and nothing else: key and group
// access come from DiskStore. It counts its range reads, so that tests can
// see how the indexing table reads.

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "filestore/disk/DiskStore.h"
#include "foundation/Message.h"
#include "project/AttributeMatch.h"
#include "project/Project.h"

namespace disk_testing {

// Writes records of the attributes, which all hold the same number of
// instances.
inline void writeRecordFile(std::string const& path, std::vector<Attribute> const& columns) {
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) Message::fatal("writeRecordFile", 0, "Cannot write %s.", path.c_str());
  unsigned int n = columns.empty() ? 0 : columns.front().getNInstances();
  for (unsigned int i = 1; i <= n; ++i)
    for (Attribute const& a : columns) std::fwrite(a.getPointer(i), 1, static_cast<std::size_t>(a.getNBytes()), file);
  std::fclose(file);
}

class RecordFileStore : public DiskStore {
 public:
  RecordFileStore(std::vector<Attribute> const& definitions, KeyList const& keys)
      : DiskStore(vHandle<Project>()), m_definitions(definitions), m_keys(keys) {}
  ~RecordFileStore() override {
    if (m_file != nullptr) std::fclose(m_file);
  }

  // Opens the file; the store is named after it.
  void open(std::string const& path, vLCString const& name) {
    m_file = std::fopen(path.c_str(), "rb");
    if (m_file == nullptr) Message::fatal("RecordFileStore::open", 0, "Cannot open %s.", path.c_str());
    std::fseek(m_file, 0, SEEK_END);
    long size = std::ftell(m_file);
    m_recordBytes = 0;
    for (Attribute const& a : m_definitions) m_recordBytes += a.getNBytes();
    m_nInstances = m_recordBytes == 0 ? 0u : static_cast<unsigned int>(size / m_recordBytes);
    m_name = name;
  }
  using DiskStore::open;

  bool isOpen() const override { return m_file != nullptr; }
  unsigned int getNInstances() const override { return m_nInstances; }
  vLCString getName() const override { return m_name; }
  void close() override {
    if (m_file != nullptr) std::fclose(m_file);
    m_file = nullptr;
  }
  KeyList getKeyList() const override { return m_keys; }
  std::list<Attribute> getAttributeList() const override {
    return std::list<Attribute>(m_definitions.begin(), m_definitions.end());
  }
  std::list<Attribute> getAttributeList(vUCString const& text, AttributeMatch::AttributeMatchType match) const override {
    std::list<Attribute> chosen;
    for (Attribute const& a : m_definitions)
      if (AttributeMatch::matches(a, text, match)) chosen.push_back(a);
    return chosen;
  }
  Attribute getAttribute(vUCString const& name) const override { return myDefinition(name); }
  bool hasAttribute(vUCString const& name) const override { return myFind(name) != nullptr; }
  unsigned int getNAttributes() const override { return static_cast<unsigned int>(m_definitions.size()); }

  void read(Attribute& attribute, unsigned int first, unsigned int last) const override {
    Attribute const& definition = myDefinition(attribute.getName());
    unsigned int n = m_nInstances;
    unsigned int checkedLast = last == 0 ? n : last;
    if (first == 0) Message::fatal("RecordFileStore::read", 0, "first instance must be >0, yours was %lld", 0LL);
    if (first > checkedLast)
      Message::fatal("RecordFileStore::read", 0, "first instance %lld must be <= last instance %lld.",
                     static_cast<long long>(first), static_cast<long long>(checkedLast));
    if (checkedLast > n)
      Message::fatal("RecordFileStore::read", 0, "last instance %lld must be <= number of instances %lld.",
                     static_cast<long long>(checkedLast), static_cast<long long>(n));
    ++m_nRangeReads;
    std::vector<unsigned int> list;
    for (unsigned int i = first; i <= checkedLast; ++i) list.push_back(i);
    myReadRecords(definition, attribute, list);
  }

  void read(Attribute& attribute, std::vector<unsigned int> const& instances) const override {
    Attribute const& definition = myDefinition(attribute.getName());
    unsigned int largest = 0;
    for (unsigned int i : instances) {
      if (i == 0)
        Message::fatal("RecordFileStore::read", 0,
                       "Attribute '%s': the vInstanceList has a zero in it, coont read from instance 0.",
                       attribute.getName().c_str());
      if (i > largest) largest = i;
    }
    if (largest > m_nInstances)
      Message::fatal("RecordFileStore::read", 0, "Instance numbers must be <%lld, list for '%s' contained %lld.",
                     static_cast<long long>(m_nInstances) + 1, attribute.getName().c_str(),
                     static_cast<long long>(largest));
    myReadRecords(definition, attribute, instances);
  }
  using DiskStore::read;

  int getNRangeReads() const { return m_nRangeReads; }

 private:
  Attribute const* myFind(vUCString const& name) const {
    for (Attribute const& a : m_definitions)
      if (a.getName() == name) return &a;
    return nullptr;
  }
  Attribute const& myDefinition(vUCString const& name) const {
    Attribute const* a = myFind(name);
    if (a == nullptr)
      Message::fatal("RecordFileStore::getAttribute", 0, "Attribute %s is not in the AttributeSet %s.", name.c_str(),
                     m_name.c_str());
    return *a;
  }
  long myFieldOffset(Attribute const& definition) const {
    long offset = 0;
    for (Attribute const& a : m_definitions) {
      if (a.getName() == definition.getName()) break;
      offset += a.getNBytes();
    }
    return offset;
  }
  void myReadRecords(Attribute const& definition, Attribute& attribute, std::vector<unsigned int> const& list) const {
    if (m_file == nullptr) Message::fatal("RecordFileStore::read", 0, "The store has not been opened yet.");
    attribute = definition;
    attribute.resize(static_cast<unsigned int>(list.size()));
    long const field = myFieldOffset(definition);
    std::size_t const bytes = static_cast<std::size_t>(definition.getNBytes());
    for (std::size_t k = 0; k < list.size(); ++k) {
      std::fseek(m_file, static_cast<long>(list[k] - 1) * m_recordBytes + field, SEEK_SET);
      if (std::fread(attribute.getPointer(static_cast<unsigned int>(k + 1)), 1, bytes, m_file) != bytes)
        Message::fatal("RecordFileStore::read", 0, "Short read of instance %u.", list[k]);
    }
  }

  std::vector<Attribute> m_definitions;
  KeyList m_keys;
  std::FILE* m_file = nullptr;
  long m_recordBytes = 0;
  unsigned int m_nInstances = 0;
  vLCString m_name;
  mutable int m_nRangeReads = 0;
};

}  // namespace disk_testing

#endif
