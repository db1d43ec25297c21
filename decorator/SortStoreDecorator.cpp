#include "decorator/SortStoreDecorator.h"

#include <algorithm>
#include <cstring>

#include "foundation/Message.h"
#include "foundation/vString.h"
#include "foundation/vUtl.h"

namespace {

char const* const kNotWritten = "Has not been written yet.";

vString typeName(Attribute const& a) { return vUtl::dataTypeName(a.getDataType()); }

template <class T>
T* keyData(Attribute& a) {
  return static_cast<T*>(a.getPointer(1));
}

template <class T>
void sortOne(Attribute& key, std::vector<unsigned int>& index, bool descending) {
  int const n = static_cast<int>(index.size());
  T* data = keyData<T>(key);
  vUtl::heapSort<T, unsigned int>(n, data, index.data());
  if (descending) {
    std::reverse(data, data + n);
    std::reverse(index.begin(), index.end());
  }
}

template <class K1, class K2>
void sortTwo(Attribute& key1, Attribute& key2, std::vector<unsigned int>& index,
             vUtlSort::SortOrder::SortOrderType order1, vUtlSort::SortOrder::SortOrderType order2) {
  vUtl::heapSort2Key<K1, K2, unsigned int>(static_cast<int>(index.size()), keyData<K1>(key1), keyData<K2>(key2),
                                           index.data(), order1, order2);
}

// The secondary type chosen for a primary type K1; false for a type that
// cannot be a key.
template <class K1>
bool sortTwoBySecond(Attribute& key1, Attribute& key2, std::vector<unsigned int>& index,
                     vUtlSort::SortOrder::SortOrderType order1, vUtlSort::SortOrder::SortOrderType order2) {
  switch (key2.getDataType()) {
    case vINT16:
      sortTwo<K1, short>(key1, key2, index, order1, order2);
      return true;
    case vINT32:
      sortTwo<K1, int>(key1, key2, index, order1, order2);
      return true;
    case vINT64:
      sortTwo<K1, long long>(key1, key2, index, order1, order2);
      return true;
    case vFLOAT32:
      sortTwo<K1, float>(key1, key2, index, order1, order2);
      return true;
    case vFLOAT64:
      sortTwo<K1, double>(key1, key2, index, order1, order2);
      return true;
    default:
      return false;
  }
}

// Copies count instances of source (from its first) to target at position.
void copyKeyBlock(Attribute const& source, Attribute& target, unsigned int position) {
  if (source.getNInstances() == 0) return;
  if (source.getDataType() == vSTRING) {
    long long const n = source.getTotalLength();
    vString const* from = source.getStringPointer(1);
    vString* to = target.getStringPointer(position);
    for (long long i = 0; i < n; ++i) to[i] = from[i];
    return;
  }
  std::memcpy(target.getPointer(position), source.getPointer(1), static_cast<std::size_t>(source.getTotalNBytes()));
}

}  // namespace

SortStoreDecorator::SortStoreDecorator(vHandle<Store> const& store)
    : StoreDecoratorImp(store), m_nGroups(0), m_isSetup(false) {}

SortStoreDecorator::~SortStoreDecorator() {}

void SortStoreDecorator::addSortKey(vUCString const& name, vUtlSort::SortOrder::SortOrderType order) {
  if (m_sortKeyNames.size() >= 2)
    Message::fatal("SortStoreDecorator::addSortKey", 0, "Only two keys are allowed now.");
  Attribute const key = m_decoratedStore->getAttribute(name);
  // A key the sort cannot take is refused now, with the words of the first
  // read, rather than after the view is built and handed on.
  char const* const label = "SortStoreDecorator::addSortKey";
  if (!vUtl::dataTypeIsAttributeNumber(key.getDataType())) {
    if (m_sortKeyNames.empty())
      Message::fatal(label, 0, "Unable to sort Attribute %s of type %s.", key.getName().c_str(), typeName(key).c_str());
    Message::fatal(label, 0, "Unable to sort secondary Attribute %s of type %s. Primary type is %s",
                   key.getName().c_str(), typeName(key).c_str(), typeName(*m_sortKeys.begin()).c_str());
  }
  // A trace's samples would be sorted as if they were the instances' keys.
  if (key.getLength() != 1)
    Message::fatal(label, 0, "Unable to sort Attribute %s: a key takes one value an instance.", key.getName().c_str());
  m_sortKeyNames.push_back(name);
  m_sortOrders.push_back(order);
  m_sortKeys.addKey(key);
}

KeyList SortStoreDecorator::getKeyList() const { return m_sortKeys; }

void SortStoreDecorator::getKeyList(KeyList& keys) const { keys = m_sortKeys; }

void SortStoreDecorator::addInstances(unsigned int) {
  Message::fatal("SortStoreDecorator::addInstances", 0, "%s", kNotWritten);
}

void SortStoreDecorator::write(Attribute const&, unsigned int, unsigned int) {
  Message::fatal("SortStoreDecorator::write(range)", 0, "%s", kNotWritten);
}

void SortStoreDecorator::write(Attribute const&, std::vector<unsigned int> const&) {
  Message::fatal("SortStoreDecorator::write(list)", 0, "%s", kNotWritten);
}

void SortStoreDecorator::write(Attribute const&, Attribute const&, unsigned int, unsigned int) {
  Message::fatal("SortStoreDecorator::write(groups)", 0, "%s", kNotWritten);
}

void SortStoreDecorator::write(Attribute const&, KeyList const&) {
  Message::fatal("SortStoreDecorator::write(keys)", 0, "%s", kNotWritten);
}

void SortStoreDecorator::addAttribute(Attribute const&) {
  Message::fatal("SortStoreDecorator::addAttribute", 0, "%s", kNotWritten);
}

Store& SortStoreDecorator::operator=(PropertyI const& properties) {
  StoreDecoratorImp::operator=(properties);
  return *this;
}

// Keys are read in blocks, each block of each key from a fresh attribute,
// so that no read below is larger than a block.
void SortStoreDecorator::myGatherKeys(unsigned int n) const {
  m_keyAttributes.clear();
  for (vUCString const& name : m_sortKeyNames) {
    m_keyAttributes.push_back(m_decoratedStore->getAttribute(name));
    m_keyAttributes.back().resize(n);
  }
  for (unsigned int first = 1; first <= n && n > 0; first += kBlockSize) {
    unsigned int const last = std::min(n, first + (kBlockSize - 1));
    std::list<Attribute>::iterator key = m_keyAttributes.begin();
    for (vUCString const& name : m_sortKeyNames) {
      Attribute block = m_decoratedStore->getAttribute(name);
      m_decoratedStore->read(block, first, last);
      copyKeyBlock(block, *key, first);
      ++key;
    }
    if (last == n) break;
  }
}

void SortStoreDecorator::mySetupRead() const {
  if (m_isSetup) return;
  unsigned int const n = m_decoratedStore->getNInstances();
  myGatherKeys(n);
  m_index.clear();
  m_index.reserve(n);
  for (unsigned int i = 1; i <= n; ++i) m_index.push_back(i);
  switch (m_sortKeyNames.size()) {
    case 1:
      mySort1Key();
      break;
    case 2:
      mySort2Key();
      break;
    default:
      Message::fatal("SortStoreDecorator::mySetupRead", 0, "Need code to sort on %d keys.",
                     static_cast<int>(m_sortKeyNames.size()));
  }
  m_groupAttribute = vHandle<Attribute>(new Attribute(m_keyAttributes.front()));
  m_decoratedStore->getGroupsAndSizes(*m_groupAttribute, m_groupSizes, vUtlSort::SortOrder::ASCENDING);
  m_nGroups = m_groupAttribute->getNInstances();
  // The keys were needed for the sort only.
  for (Attribute& key : m_keyAttributes) key.resize(0);
  m_isSetup = true;
}

void SortStoreDecorator::mySort1Key() const {
  Attribute& key = m_keyAttributes.front();
  if (!vUtl::dataTypeIsAttributeNumber(key.getDataType()))
    Message::fatal("SortStoreDecorator::local_1keysort", 0, "Unable to sort Attribute %s of type %s.",
                   key.getName().c_str(), typeName(key).c_str());
  // An empty store has nothing to sort, and the sort must not see n = 0.
  if (m_index.empty()) return;
  bool const descending = m_sortOrders.front() == vUtlSort::SortOrder::DESCENDING;
  switch (key.getDataType()) {
    case vINT16:
      sortOne<short>(key, m_index, descending);
      break;
    case vINT32:
      sortOne<int>(key, m_index, descending);
      break;
    case vINT64:
      sortOne<long long>(key, m_index, descending);
      break;
    case vFLOAT32:
      sortOne<float>(key, m_index, descending);
      break;
    default:
      sortOne<double>(key, m_index, descending);
  }
}

void SortStoreDecorator::mySort2Key() const {
  char const* label = "SortStoreDecorator::local_2keysort";
  Attribute& key1 = m_keyAttributes.front();
  Attribute& key2 = m_keyAttributes.back();
  if (!vUtl::dataTypeIsAttributeNumber(key1.getDataType()))
    Message::fatal(label, 0, "Unable to sort Attribute %s of type %s. Primary type is %s", key1.getName().c_str(),
                   typeName(key1).c_str(), typeName(key1).c_str());
  if (!vUtl::dataTypeIsAttributeNumber(key2.getDataType()))
    Message::fatal(label, 0, "Unable to sort secondary Attribute %s of type %s. Primary type is %s",
                   key2.getName().c_str(), typeName(key2).c_str(), typeName(key1).c_str());
  if (m_index.empty()) return;
  vUtlSort::SortOrder::SortOrderType const order1 = m_sortOrders.front();
  vUtlSort::SortOrder::SortOrderType const order2 = m_sortOrders.back();
  switch (key1.getDataType()) {
    case vINT16:
      sortTwoBySecond<short>(key1, key2, m_index, order1, order2);
      break;
    case vINT32:
      sortTwoBySecond<int>(key1, key2, m_index, order1, order2);
      break;
    case vINT64:
      sortTwoBySecond<long long>(key1, key2, m_index, order1, order2);
      break;
    case vFLOAT32:
      sortTwoBySecond<float>(key1, key2, m_index, order1, order2);
      break;
    default:
      sortTwoBySecond<double>(key1, key2, m_index, order1, order2);
  }
}

// Numbers outside the view would index past the map, so they are refused
// here with the texts of the in-process sets rather than left to the store
// below.
void SortStoreDecorator::doReadList(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  mySetupRead();
  myCheckList("SortStoreDecorator::read(list)", attribute, instances, static_cast<unsigned int>(m_index.size()));
  attribute.resize(static_cast<unsigned int>(instances.size()));
  std::vector<unsigned int> mapped;
  mapped.reserve(instances.size());
  for (unsigned int k : instances) mapped.push_back(m_index[k - 1]);
  m_decoratedStore->read(attribute, mapped);
}

void SortStoreDecorator::doReadRange(Attribute& attribute, unsigned int first, unsigned int last) const {
  char const* label = "SortStoreDecorator::read(range)";
  mySetupRead();
  unsigned int const n = static_cast<unsigned int>(m_index.size());
  last = myCheckFirstLast(label, first, last, n);
  if (last > n)
    Message::fatal(label, 0, "last instance %d must be <= number of instances %d.", static_cast<int>(last),
                   static_cast<int>(n));
  attribute.resize(last - first + 1);
  std::vector<unsigned int> mapped(m_index.begin() + (first - 1), m_index.begin() + last);
  m_decoratedStore->read(attribute, mapped);
}

vHandle<Attribute> SortStoreDecorator::getGroupAttribute() const {
  mySetupRead();
  return m_groupAttribute;
}

std::vector<unsigned int> const& SortStoreDecorator::getGroupSizes() const {
  mySetupRead();
  return m_groupSizes;
}

unsigned int SortStoreDecorator::getNGroups() const {
  mySetupRead();
  return m_nGroups;
}

std::vector<unsigned int> const& SortStoreDecorator::getIndex() const {
  mySetupRead();
  return m_index;
}
