#include "decorator/MergeMethodNoSecondarySort.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <new>

#include "decorator/InstanceCopy.h"
#include "foundation/Message.h"
#include "foundation/MessageHandling.h"
#include "foundation/UtlExcept.h"
#include "foundation/vUtl.h"
#include "foundation/vUtlSize.h"

namespace Merge {

namespace {

// Key values are read in blocks of this many instances.
unsigned int const kScanBlock = 10240;
// 10 megabytes of bins.
unsigned int const kInitialBins = 655360;

// A strict order even with NaN among floating keys (a NaN goes last), so
// that the sort of the bins stays well defined.
template <class T>
bool keyLess(T a, T b) {
  if (a != a) return false;
  if (b != b) return true;
  return a < b;
}

// A bin per group: on every platform as small as the per-run promise says.
static_assert(sizeof(MergeMethodNoSecondarySort::Group) == 16, "a group bin is 16 bytes");

}  // namespace

// --- StoreData --------------------------------------------------------------------------

MergeMethodNoSecondarySort::StoreData::StoreData(vHandle<Store> const& s, KeyList const& k)
    : store(s),
      keys(k),
      keyValues(nullptr),
      nKeyValues(0),
      keyCapacity(0),
      keyType(vNOTYPE),
      nInstances(s->getNInstances()),
      cacheSize(0) {
  title.printf("%s.%d", s->getName().c_str(), s->getVersion());
  if (keys.getNKeys() > 0) keyType = keys.begin()->getDataType();
}

MergeMethodNoSecondarySort::StoreData::~StoreData() { releaseKeys(); }

void MergeMethodNoSecondarySort::StoreData::releaseKeys() {
  std::free(keyValues);
  keyValues = nullptr;
  nKeyValues = 0;
  keyCapacity = 0;
}

template <class T>
unsigned int MergeMethodNoSecondarySort::StoreData::saveKey(T value) {
  if (nKeyValues == keyCapacity) {
    // Doubling keeps a store of many short runs from reallocating per run.
    long long const wanted = keyCapacity == 0 ? 64 : std::min(2LL * keyCapacity, 0xFFFFFFFFLL);
    std::size_t const bytes =
        vUtl::checkedBytes("Merge::MergeMethodNoSecondarySort::mySaveGroupAndKeyValue", wanted, sizeof(T));
    void* grown = std::realloc(keyValues, bytes);
    if (grown == nullptr)
      Message::fatal("Merge::MergeMethodNoSecondarySort::mySaveGroupAndKeyValue", 0,
                     "Memory allocation failure, failed to allocate space for %d keys (%d)!", static_cast<int>(wanted),
                     static_cast<int>(bytes));
    keyValues = grown;
    keyCapacity = static_cast<unsigned int>(wanted);
  }
  static_cast<T*>(keyValues)[nKeyValues] = value;
  return nKeyValues++;
}

bool MergeMethodNoSecondarySort::StoreData::hasAttribute(Attribute const& attribute) const {
  auto found = m_attributeMap.find(attribute.getNameID());
  if (found != m_attributeMap.end()) return found->second;
  bool const has = store->hasAttribute(attribute.getName());
  m_attributeMap[attribute.getNameID()] = has;
  return has;
}

void MergeMethodNoSecondarySort::StoreData::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  if (cacheSize == 0) {
    store->read(attribute, first, last);
    return;
  }
  auto found = m_cache.find(attribute.getNameID());
  if (found == m_cache.end()) {
    found = m_cache.emplace(attribute.getNameID(), CacheEntry()).first;
    found->second.data = attribute;
  }
  CacheEntry& entry = found->second;
  unsigned int const count = last - first + 1;
  attribute.resize(count);
  if (first < entry.first || first > entry.last) {
    if (count > cacheSize) {
      store->read(attribute, first, last);
      return;
    }
    unsigned int const fillLast = std::min(nInstances, first + (cacheSize - 1));
    store->read(entry.data, first, fillLast);
    entry.first = first;
    entry.last = fillLast;
  }
  if (last <= entry.last) {
    InstanceCopy::copy(entry.data, first - entry.first + 1, attribute, 1, count);
    return;
  }
  unsigned int const cached = entry.last - first + 1;
  InstanceCopy::copy(entry.data, first - entry.first + 1, attribute, 1, cached);
  Attribute rest(attribute);
  store->read(rest, entry.last + 1, last);
  InstanceCopy::copy(rest, 1, attribute, cached + 1, count - cached);
  entry.first = 0;
  entry.last = 0;
  entry.data.resize(0);
}

// --- configuring and validating ----------------------------------------------------------

MergeMethodNoSecondarySort::MergeMethodNoSecondarySort(unsigned int cacheMegabytes)
    : MergeMethodBase(cacheMegabytes),
      m_collate(true),
      m_keyType(vNOTYPE),
      m_nInstances(0),
      m_bytesPerInstance(0),
      m_nextExpected(0),
      m_positionGroup(0),
      m_positionOffset(0),
      m_nSearches(0) {}

MergeMethodNoSecondarySort::~MergeMethodNoSecondarySort() {}

void MergeMethodNoSecondarySort::myDoReset() {
  m_stores.clear();
  m_groups.clear();
  m_setNames.clear();
  m_keys.clear();
  m_attributes.clear();
  m_keyType = vNOTYPE;
  m_nInstances = 0;
  m_bytesPerInstance = 0;
  m_nextExpected = 0;
  m_positionGroup = 0;
  m_positionOffset = 0;
  m_firstStore = vHandle<Store>();
  m_firstTitle = vString();
}

void MergeMethodNoSecondarySort::myDoAddStore(vHandle<Store> const& store) {
  char const* label = "MergeMethodNoSecondarySort::myDoAddStore";
  if (m_validated) Message::fatal(label, 0, "Cannot add a store after we have started reading data!");
  if (!store->isOpen()) {
    // A store that was never opened may not even tell its name.
    vLCString name;
    int version = 0;
    try {
      MessageHandling quiet;
      name = store->getName();
      version = store->getVersion();
    } catch (UtlExcept const&) {
    }
    Message::fatal(label, 0, "Trying to add the store '%s.%d' but it's not been opened!", name.c_str(), version);
  }
  if (m_stores.empty()) {
    KeyList keys = store->getKeyList();
    vHandle<StoreData> data(new StoreData(store, keys));
    if (keys.getNKeys() == 0)
      Message::fatal(label, 0, "The store '%s' has no key to merge on!", data->title.c_str());
    Attribute const& key = *keys.begin();
    if (!vUtl::dataTypeIsAttributeNumber(key.getDataType()))
      Message::fatal(label, 0, "The store '%s' contains a key of datatype %s but we do not support this!",
                     data->title.c_str(), vUtl::dataTypeName(key.getDataType()).c_str());
    if (key.getLength() != 1)
      Message::fatal(label, 0, "The store '%s' contains the primary key length of %d ... we only support length = 1!!",
                     data->title.c_str(), key.getLength());
    m_keys = keys;
    m_keyType = key.getDataType();
    m_firstStore = store;
    m_firstTitle = data->title;
    m_stores.push_back(data);
    return;
  }
  m_stores.push_back(vHandle<StoreData>(new StoreData(store, m_keys)));
}

void MergeMethodNoSecondarySort::myDoValidateStores() const {
  char const* label = "MergeMethodNoSecondarySort::myDoValidateStores";
  if (m_stores.empty()) {
    m_validated = true;
    return;
  }
  std::vector<vHandle<StoreData>> added;
  added.swap(m_stores);
  bool differences = false;
  for (vHandle<StoreData> const& data : added) {
    if (data->nInstances == 0) {
      Message::info(label, 0, "The store %s will be ignored as it does not contain any data", data->title.c_str());
      continue;
    }
    Store const& store = *data->store;
    if (m_stores.empty()) m_setNames.assign(1, store.getAttributeSetName());
    if (store.getKeyList() != m_keys) {
      Message::error(label, 0, "The keys for '%s' do not match '%s'!", data->title.c_str(), m_firstTitle.c_str());
      differences = true;
    }
    for (Attribute const& attribute : store.getAttributeList()) {
      auto same = std::find(m_attributes.begin(), m_attributes.end(), attribute);
      if (same != m_attributes.end()) {
        if (!same->compare(attribute)) {
          Message::error(label, 0, "The attribute '%s' is not the same in all the stores!",
                         attribute.getName().c_str());
          differences = true;
        }
        continue;
      }
      m_attributes.push_back(attribute);
      if (!attribute.isVariableLength())
        m_bytesPerInstance += static_cast<unsigned int>(attribute.getDataTypeSize() * attribute.getLength());
    }
    m_nInstances += data->nInstances;
    m_stores.push_back(data);
  }
  if (differences) Message::fatal(label, 0, "Differences found, cannot continue!");
  if (m_bytesPerInstance > 0) {
    unsigned long long const perStore = (static_cast<unsigned long long>(m_cacheSize) << 20) / m_bytesPerInstance /
                                        static_cast<unsigned long long>(m_stores.size());
    for (vHandle<StoreData> const& data : m_stores)
      data->cacheSize = static_cast<unsigned int>(std::min<unsigned long long>(perStore, 0xFFFFFFFFu));
  }
  myCollateMergeData();
  m_validated = true;
}

// --- collation ---------------------------------------------------------------------------

template <class T>
void MergeMethodNoSecondarySort::mySaveGroupAndKeyValue(StoreData& store, unsigned int storeIndex, T value,
                                                        unsigned int first, unsigned int count) const {
  unsigned int const keyIndex = store.saveKey<T>(value);
  m_groups.push_back(Group{keyIndex, storeIndex, first, count});
}

// Groups are maximal runs of equal key value; runs may span blocks, and a
// value that comes back later in the store makes a new group.
template <class T>
void MergeMethodNoSecondarySort::myScanForGroups(unsigned int storeIndex) const {
  StoreData& data = *m_stores[storeIndex];
  Attribute key = data.store->getAttribute(m_keys.begin()->getName());
  unsigned int const n = data.nInstances;
  bool inGroup = false;
  T current = T();
  unsigned int groupFirst = 1;
  for (unsigned int first = 1; first <= n; first += kScanBlock) {
    unsigned int const last = std::min(n, first + (kScanBlock - 1));
    data.read(key, first, last);
    T const* values = static_cast<T const*>(key.getPointer(1));
    for (unsigned int i = 0; i <= last - first; ++i) {
      if (inGroup && values[i] == current) continue;
      if (inGroup) mySaveGroupAndKeyValue<T>(data, storeIndex, current, groupFirst, first + i - groupFirst);
      current = values[i];
      groupFirst = first + i;
      inGroup = true;
    }
    if (last == n) break;
  }
  if (inGroup) mySaveGroupAndKeyValue<T>(data, storeIndex, current, groupFirst, n + 1 - groupFirst);
}

template <class T>
void MergeMethodNoSecondarySort::mySortGroups() const {
  std::vector<vHandle<StoreData>> const& stores = m_stores;
  auto key = [&stores](Group const& g) { return stores[g.store]->keyAt<T>(g.mergedFirst); };
  if (m_reverse)
    std::sort(m_groups.begin(), m_groups.end(),
              [&key](Group const& a, Group const& b) { return keyLess<T>(key(b), key(a)); });
  else
    std::sort(m_groups.begin(), m_groups.end(),
              [&key](Group const& a, Group const& b) { return keyLess<T>(key(a), key(b)); });
}

void MergeMethodNoSecondarySort::myCollateMergeData() const {
  char const* label = "MergeMethodNoSecondarySort::myCollateMergeData";
  m_groups.clear();
  try {
    m_groups.reserve(kInitialBins);
  } catch (std::bad_alloc const&) {
    Message::fatal(label, 0, "Internal error ... could not reserve %d group bins!", static_cast<int>(kInitialBins));
  }
  for (unsigned int s = 0; s < m_stores.size(); ++s) {
    switch (m_keyType) {
      case vINT16:
        myScanForGroups<short>(s);
        break;
      case vINT32:
        myScanForGroups<int>(s);
        break;
      case vINT64:
        myScanForGroups<long long>(s);
        break;
      case vFLOAT32:
        myScanForGroups<float>(s);
        break;
      default:
        myScanForGroups<double>(s);
    }
    if (s == 0) {
      double const estimate = static_cast<double>(m_groups.size()) * static_cast<double>(m_stores.size()) * 1.1;
      if (estimate > static_cast<double>(m_groups.capacity())) {
        try {
          m_groups.reserve(static_cast<std::size_t>(estimate));
        } catch (std::bad_alloc const&) {
          Message::fatal(label, 0, "Internal error ... could not reserve %d group bins!", static_cast<int>(estimate));
        }
      }
    }
  }
  if ((m_groups.capacity() - m_groups.size()) * sizeof(Group) >= (1u << 20))
    std::vector<Group>(m_groups).swap(m_groups);
  switch (m_keyType) {
    case vINT16:
      mySortGroups<short>();
      break;
    case vINT32:
      mySortGroups<int>();
      break;
    case vINT64:
      mySortGroups<long long>();
      break;
    case vFLOAT32:
      mySortGroups<float>();
      break;
    default:
      mySortGroups<double>();
  }
  for (vHandle<StoreData> const& data : m_stores) data->releaseKeys();
  unsigned int next = 1;
  for (Group& group : m_groups) {
    group.mergedFirst = next;
    next += group.count;
  }
}

}  // namespace Merge
