#include "filestore/disk/AttributeSetIndexingTable.h"

#include <algorithm>

#include "foundation/Message.h"
#include "foundation/vUtl.h"

AttributeSetIndexingTable::AttributeSetIndexingTable(AttributeFile* file) : m_batchSize(0), m_adaptor(file) {}

AttributeSetIndexingTable::AttributeSetIndexingTable(AttributeSet const& set) : m_batchSize(0), m_adaptor(&set) {}

AttributeSetIndexingTable::~AttributeSetIndexingTable() {}

unsigned int AttributeSetIndexingTable::getBatchSize() {
  if (m_batchSize == 0) {
    unsigned int nAttributes = m_adaptor.getNAttributes();
    m_batchSize = nAttributes == 0 ? 5000u : 1000000u / (4u * nAttributes);
    // More than 250,000 attributes still read one instance at a time.
    if (m_batchSize == 0) m_batchSize = 1;
  }
  return m_batchSize;
}

void AttributeSetIndexingTable::clearCache() {
  m_int32Groups.clear();
  m_int64Groups.clear();
  m_float32Groups.clear();
  m_float64Groups.clear();
}

void AttributeSetIndexingTable::myCheckFirstLast(unsigned int first, unsigned int last, unsigned int n) const {
  char const* const label = "AttributeSetIndexingTable::myCheckFirstLast()";
  if (first == 0) Message::fatal(label, 0, "first instance must be >0, yours was %d", static_cast<int>(first));
  if (first > last)
    Message::fatal(label, 0, "first instance %d must be <= last instance %d.", static_cast<int>(first),
                   static_cast<int>(last));
  if (last > n)
    Message::fatal(label, 0, "last instance %d must be <= number of instances %d.", static_cast<int>(last),
                   static_cast<int>(n));
}

Attribute AttributeSetIndexingTable::myGroupDefinition(char const* label, Attribute const& attribute) {
  Attribute definition = m_adaptor.getAttribute(attribute.getName());
  DataType type = definition.getDataType();
  if (type != vINT32 && type != vINT64 && type != vFLOAT32 && type != vFLOAT64)
    Message::fatal(label, 0,
                   "Can only function with Int32, Int64, Float32 and Float64 groups at the moment. Your Attribute %s "
                   "is of type %s.",
                   definition.getName().c_str(), vUtl::dataTypeName(type).c_str());
  if (definition.getLength() != 1)
    Message::fatal(label, 0, "Can only function with Attributes of length=1. Your Attribute %s has a length of %d.",
                   definition.getName().c_str(), definition.getLength());
  return definition;
}

// --- group tables -------------------------------------------------------------------------

template <>
std::map<vUCStringTableData const*, AttributeSetIndexingTable::GroupTable<int> >&
AttributeSetIndexingTable::myTables<int>() {
  return m_int32Groups;
}
template <>
std::map<vUCStringTableData const*, AttributeSetIndexingTable::GroupTable<long long> >&
AttributeSetIndexingTable::myTables<long long>() {
  return m_int64Groups;
}
template <>
std::map<vUCStringTableData const*, AttributeSetIndexingTable::GroupTable<float> >&
AttributeSetIndexingTable::myTables<float>() {
  return m_float32Groups;
}
template <>
std::map<vUCStringTableData const*, AttributeSetIndexingTable::GroupTable<double> >&
AttributeSetIndexingTable::myTables<double>() {
  return m_float64Groups;
}

template <class T>
AttributeSetIndexingTable::GroupTable<T>& AttributeSetIndexingTable::myBuildAndGetGroupSize(
    Attribute const& definition) {
  auto& tables = myTables<T>();
  auto found = tables.find(definition.getNameID());
  if (found != tables.end()) return found->second;

  GroupTable<T> table;
  unsigned int const n = m_adaptor.getNInstances();
  unsigned int const batch = getBatchSize();
  Attribute values(definition);
  for (unsigned int first = 1; first <= n; first += std::min(batch, n - first + 1)) {
    unsigned int last = first + std::min(batch, n - first + 1) - 1;
    m_adaptor.read(values, first, last);
    T const* v = static_cast<T const*>(values.getPointer(1));
    for (unsigned int i = 0; i < last - first + 1; ++i) ++table[v[i]];
    if (last == n) break;
  }
  return tables.emplace(definition.getNameID(), std::move(table)).first->second;
}

template <class T>
void AttributeSetIndexingTable::myLocateByGroups(Attribute const& definition, unsigned int first, unsigned int last,
                                                 std::vector<unsigned int>& result) {
  GroupTable<T> const& table = myBuildAndGetGroupSize<T>(definition);
  unsigned int const nGroups = static_cast<unsigned int>(table.size());
  if (last == 0) last = nGroups;
  myCheckFirstLast(first, last, nGroups);

  // Where each selected group's instances start in the result.
  GroupTable<T> start;
  std::size_t total = 0;
  unsigned int number = 0;
  for (auto const& group : table) {
    ++number;
    if (number < first) continue;
    if (number > last) break;
    start[group.first] = static_cast<unsigned int>(total);
    total += group.second;
  }
  result.assign(total, 0);

  unsigned int const n = m_adaptor.getNInstances();
  unsigned int const batch = getBatchSize();
  Attribute values(definition);
  for (unsigned int from = 1; from <= n; from += std::min(batch, n - from + 1)) {
    unsigned int to = from + std::min(batch, n - from + 1) - 1;
    m_adaptor.read(values, from, to);
    T const* v = static_cast<T const*>(values.getPointer(1));
    for (unsigned int i = 0; i < to - from + 1; ++i) {
      auto slot = start.find(v[i]);
      // The data changed under a cached table: never write past the end.
      if (slot != start.end() && slot->second < total) result[slot->second++] = from + i;
    }
    if (to == n) break;
  }
}

template <class T>
void AttributeSetIndexingTable::myGroupsAndSizes(Attribute const& definition, Attribute& attribute,
                                                 std::vector<unsigned int>* sizes,
                                                 vUtlSort::SortOrder::SortOrderType order) {
  GroupTable<T> const& table = myBuildAndGetGroupSize<T>(definition);
  unsigned int const nGroups = static_cast<unsigned int>(table.size());
  attribute = definition;
  attribute.resize(nGroups);
  if (sizes != nullptr) sizes->assign(nGroups, 0);
  if (nGroups == 0) return;
  T* values = static_cast<T*>(attribute.getPointer(1));
  unsigned int i = order == vUtlSort::SortOrder::DESCENDING ? nGroups - 1 : 0;
  for (auto const& group : table) {
    values[i] = group.first;
    if (sizes != nullptr) (*sizes)[i] = group.second;
    if (order == vUtlSort::SortOrder::DESCENDING)
      --i;
    else
      ++i;
  }
}

void AttributeSetIndexingTable::locateByGroups(Attribute const& groupAttribute, unsigned int firstGroup,
                                               unsigned int lastGroup, std::vector<unsigned int>& result) {
  Attribute definition = myGroupDefinition("AttributeSetIndexingTable::locateByGroups", groupAttribute);
  switch (definition.getDataType()) {
    case vINT32:
      return myLocateByGroups<int>(definition, firstGroup, lastGroup, result);
    case vINT64:
      return myLocateByGroups<long long>(definition, firstGroup, lastGroup, result);
    case vFLOAT32:
      return myLocateByGroups<float>(definition, firstGroup, lastGroup, result);
    default:
      return myLocateByGroups<double>(definition, firstGroup, lastGroup, result);
  }
}

void AttributeSetIndexingTable::getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                                                  vUtlSort::SortOrder::SortOrderType order) {
  Attribute definition = myGroupDefinition("AttributeSetIndexingTable::getGroupsAndSizes", attribute);
  switch (definition.getDataType()) {
    case vINT32:
      return myGroupsAndSizes<int>(definition, attribute, &sizes, order);
    case vINT64:
      return myGroupsAndSizes<long long>(definition, attribute, &sizes, order);
    case vFLOAT32:
      return myGroupsAndSizes<float>(definition, attribute, &sizes, order);
    default:
      return myGroupsAndSizes<double>(definition, attribute, &sizes, order);
  }
}

void AttributeSetIndexingTable::getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) {
  Attribute definition = myGroupDefinition("AttributeSetIndexingTable::getUnique", attribute);
  switch (definition.getDataType()) {
    case vINT32:
      return myGroupsAndSizes<int>(definition, attribute, nullptr, order);
    case vINT64:
      return myGroupsAndSizes<long long>(definition, attribute, nullptr, order);
    case vFLOAT32:
      return myGroupsAndSizes<float>(definition, attribute, nullptr, order);
    default:
      return myGroupsAndSizes<double>(definition, attribute, nullptr, order);
  }
}
