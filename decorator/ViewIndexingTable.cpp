#include "decorator/ViewIndexingTable.h"

#include <algorithm>
#include <map>

#include "foundation/Message.h"
#include "foundation/vUtl.h"
#include "project/AttributeSet.h"

struct ViewIndexingTable::Groups {
  // The attribute's definition holding the distinct values, ascending.
  Attribute values;
  // The instances of each value, in the same order.
  std::vector<std::vector<unsigned int>> members;
};

namespace {

bool isGroupType(DataType type) { return type == vINT32 || type == vINT64 || type == vFLOAT32 || type == vFLOAT64; }

template <class T>
void collectGroups(AttributeSet const& set, Attribute const& definition, unsigned int n, unsigned int batch,
                   Attribute& values, std::vector<std::vector<unsigned int>>& members) {
  std::map<T, std::vector<unsigned int>> groups;
  Attribute column(definition);
  for (unsigned int first = 1; first <= n; first += batch) {
    unsigned int last = std::min(n, first + batch - 1);
    set.read(column, first, last);
    T const* data = static_cast<T const*>(column.getPointer(1));
    for (unsigned int i = first; i <= last; ++i) groups[data[i - first]].push_back(i);
  }
  values = definition;
  values.resize(static_cast<unsigned int>(groups.size()));
  members.clear();
  members.reserve(groups.size());
  unsigned int k = 0;
  for (auto& group : groups) {
    static_cast<T*>(values.getPointer(1))[k++] = group.first;
    members.push_back(std::move(group.second));
  }
}

// Instance i of a and instance j of b hold the same value.
bool sameValue(Attribute const& a, unsigned int i, Attribute const& b, unsigned int j) {
  if (a.getDataType() == b.getDataType()) {
    switch (a.getDataType()) {
      case vINT32:
        return a.getInt32(i) == b.getInt32(j);
      case vINT64:
        return a.getInt64(i) == b.getInt64(j);
      case vFLOAT32:
        return a.getFloat32(i) == b.getFloat32(j);
      case vSTRING:
        return a.getString(i) == b.getString(j);
      default:
        break;
    }
  }
  return a.getValue(i) == b.getValue(j);
}

// Values i of `values` in the order asked: reverses in place for descending.
template <class T>
void reverseValues(Attribute& values) {
  unsigned int n = values.getNInstances();
  if (n == 0) return;
  T* data = static_cast<T*>(values.getPointer(1));
  std::reverse(data, data + n);
}

void orderValues(Attribute& values, vUtlSort::SortOrder::SortOrderType order) {
  if (order != vUtlSort::SortOrder::DESCENDING) return;
  switch (values.getDataType()) {
    case vINT32:
      reverseValues<int>(values);
      break;
    case vINT64:
      reverseValues<long long>(values);
      break;
    case vFLOAT32:
      reverseValues<float>(values);
      break;
    default:
      reverseValues<double>(values);
      break;
  }
}

}  // namespace

ViewIndexingTable::ViewIndexingTable(AttributeSet const& set) : m_set(set), m_batchSize(0) {}

unsigned int ViewIndexingTable::myBatchSize() const {
  if (m_batchSize == 0) {
    unsigned int nAttributes = m_set.getNAttributes();
    m_batchSize = nAttributes == 0 ? 5000 : std::max(1u, 1000000u / (4u * nAttributes));
  }
  return m_batchSize;
}

void ViewIndexingTable::myCheckFirstLast(unsigned int first, unsigned int last, unsigned int n) const {
  char const* label = "ViewIndexingTable::myCheckFirstLast()";
  if (first == 0) Message::fatal(label, 0, "first instance must be >0, yours was %d", static_cast<int>(first));
  if (first > last)
    Message::fatal(label, 0, "first instance %d must be <= last instance %d.", static_cast<int>(first),
                   static_cast<int>(last));
  if (last > n)
    Message::fatal(label, 0, "last instance %d must be <= number of instances %d.", static_cast<int>(last),
                   static_cast<int>(n));
}

void ViewIndexingTable::myBuildGroups(char const* label, vUCString const& name, Groups& groups) const {
  Attribute definition = m_set.getAttribute(name);
  if (!isGroupType(definition.getDataType()) || definition.getLength() != 1)
    Message::fatal(label, 0,
                   "Can only function with Int32, Int64, Float32 and Float64 groups at the moment. Your Attribute %s "
                   "is of type %s.",
                   name.c_str(), vUtl::dataTypeName(definition.getDataType()).c_str());
  unsigned int n = m_set.getNInstances();
  switch (definition.getDataType()) {
    case vINT32:
      collectGroups<int>(m_set, definition, n, myBatchSize(), groups.values, groups.members);
      break;
    case vINT64:
      collectGroups<long long>(m_set, definition, n, myBatchSize(), groups.values, groups.members);
      break;
    case vFLOAT32:
      collectGroups<float>(m_set, definition, n, myBatchSize(), groups.values, groups.members);
      break;
    default:
      collectGroups<double>(m_set, definition, n, myBatchSize(), groups.values, groups.members);
      break;
  }
}

void ViewIndexingTable::locateByGroups(Attribute const& groupAttribute, unsigned int firstGroup,
                                       unsigned int lastGroup, std::vector<unsigned int>& result) const {
  Groups groups;
  myBuildGroups("ViewIndexingTable::locateByGroups", groupAttribute.getName(), groups);
  unsigned int nGroups = static_cast<unsigned int>(groups.members.size());
  if (lastGroup == 0) lastGroup = nGroups;
  myCheckFirstLast(firstGroup, lastGroup, nGroups);
  result.clear();
  for (unsigned int g = firstGroup; g <= lastGroup; ++g)
    result.insert(result.end(), groups.members[g - 1].begin(), groups.members[g - 1].end());
}

void ViewIndexingTable::getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                                          vUtlSort::SortOrder::SortOrderType order) const {
  Groups groups;
  myBuildGroups("ViewIndexingTable::getGroupsAndSizes", attribute.getName(), groups);
  sizes.clear();
  for (auto const& members : groups.members) sizes.push_back(static_cast<unsigned int>(members.size()));
  if (order == vUtlSort::SortOrder::DESCENDING) std::reverse(sizes.begin(), sizes.end());
  orderValues(groups.values, order);
  attribute = groups.values;
  attribute.transferData(groups.values);
}

void ViewIndexingTable::getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const {
  Groups groups;
  myBuildGroups("ViewIndexingTable::getUnique", attribute.getName(), groups);
  orderValues(groups.values, order);
  attribute = groups.values;
  attribute.transferData(groups.values);
}

void ViewIndexingTable::locateByKeys(KeyList const& keys, std::vector<unsigned int>& result) const {
  char const* label = "ViewIndexingTable::myBuildListByKeys";
  result.clear();
  if (keys.getNKeys() == 0) return;
  std::vector<Attribute> columns;
  for (Attribute const& key : keys) {
    if (key.getLength() != 1)
      Message::fatal(label, 0, "Can only function with Attributes of length=1. Your Attribute %s has a length of %d.",
                     key.getName().c_str(), key.getLength());
    columns.push_back(m_set.getAttribute(key.getName()));
    if (columns.back().getLength() != 1)
      Message::fatal(label, 0, "Can only function with Attributes of length=1. Your Attribute %s has a length of %d.",
                     key.getName().c_str(), columns.back().getLength());
  }
  unsigned int const nTuples = keys.begin()->getNInstances();
  result.assign(nTuples, 0);
  unsigned int left = nTuples;
  unsigned int const n = m_set.getNInstances();
  unsigned int const batch = myBatchSize();
  for (unsigned int first = 1; first <= n && left > 0; first += batch) {
    unsigned int last = std::min(n, first + batch - 1);
    for (Attribute& column : columns) m_set.read(column, first, last);
    for (unsigned int i = first; i <= last && left > 0; ++i) {
      for (unsigned int t = 1; t <= nTuples; ++t) {
        if (result[t - 1] != 0) continue;
        bool match = true;
        std::size_t k = 0;
        for (Attribute const& key : keys) {
          if (key.getNInstances() < t || !sameValue(columns[k], i - first + 1, key, t)) {
            match = false;
            break;
          }
          ++k;
        }
        if (match) {
          result[t - 1] = i;
          --left;
        }
      }
    }
  }
}
