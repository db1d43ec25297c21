#include "decorator/BindStoreDecorator.h"

#include <algorithm>
#include <cstring>
#include <numeric>

#include "attribute/AttributeDefinition.h"
#include "attribute/KeyList.h"
#include "foundation/Message.h"
#include "foundation/MessageHandling.h"
#include "foundation/UtlExcept.h"

namespace {

[[noreturn]] void refuse(char const* label) { Message::fatal(label, 0, "Has not been written yet."); }

Attribute storeIDDefinition() {
  vUCString const name("STORE.ID");
  if (AttributeDefinition::hasDefinition(name)) return AttributeDefinition::getDefinition(name);
  return Attribute(name, name, vINT32);
}

void zero(Attribute& attribute) {
  if (attribute.getNInstances() > 0)
    std::memset(attribute.getPointer(1), 0, static_cast<std::size_t>(attribute.getTotalNBytes()));
}

}  // namespace

BindStoreDecorator::BindStoreDecorator(vHandle<Store> const& store)
    : StoreDecorator(store), m_stores{store}, m_storeID(storeIDDefinition()) {}

BindStoreDecorator::~BindStoreDecorator() {}

// --- binding ---------------------------------------------------------------------------------

void BindStoreDecorator::addStore(vHandle<Store> store) {
  // Stores made of sets know their primary set by name; file stores, which
  // cannot name it, take the blank name for their one set.
  vLCString primary;
  try {
    MessageHandling quiet;
    primary = store->getPrimaryAttributeSetName();
  } catch (UtlExcept const&) {
    primary = vLCString();
  }
  store->openAttributeSet(primary);
  myCheckClassOK(*store);
  myCheckKeysOK(*store);
  myCheckAttributesOK(*store);
  m_stores.push_back(store);
  m_indexingTable = vHandle<AttributeSetIndexingTable>();
}

void BindStoreDecorator::myCheckClassOK(Store const& store) const {
  char const* const label = "BindStoreDecorator::myCheckClassOK";
  Store const& first = *m_stores.front();
  if (store.getClass() != first.getClass())
    Message::fatal(label, 0, "Store %s(class:%s) does not match on class %s(class:%s).", store.getName().c_str(),
                   store.getClass().c_str(), first.getName().c_str(), first.getClass().c_str());
  if (store.getSubClass() != first.getSubClass())
    Message::fatal(label, 0, "Store %s(subclass:%s) does not match on subclass %s(subclass:%s).",
                   store.getName().c_str(), store.getSubClass().c_str(), first.getName().c_str(),
                   first.getSubClass().c_str());
}

void BindStoreDecorator::myCheckKeysOK(Store const& store) const {
  char const* const label = "BindStoreDecorator::addStore";
  KeyList const mine = m_stores.front()->getKeyList();
  KeyList const theirs = store.getKeyList();
  if (theirs.getNKeys() != mine.getNKeys())
    Message::fatal(label, 0, "Store %s has %d keys while existing Store(s) in binding have %d keys.",
                   store.getName().c_str(), static_cast<int>(theirs.getNKeys()), static_cast<int>(mine.getNKeys()));
  for (Attribute const& key : mine)
    if (theirs.findKey(key) == theirs.end())
      Message::fatal(label, 0, "Store %s does not have matching key %s.", store.getName().c_str(),
                     key.getName().c_str());
}

void BindStoreDecorator::myCheckAttributesOK(Store const& store) const {
  for (Attribute const& theirs : store.getAttributeList())
    for (vHandle<Store> const& bound : m_stores)
      if (bound->hasAttribute(theirs.getName())) {
        myCheckVectorsOK(store, bound->getAttribute(theirs.getName()), theirs);
        break;
      }
}

void BindStoreDecorator::myCheckVectorsOK(Store const& store, Attribute const& mine, Attribute const& theirs) const {
  char const* const label = "BindStoreDecorator::myCheckAttributesOK";
  if (!mine.isVector() && !theirs.isVector()) return;
  char const* const name = theirs.getName().c_str();
  if (mine.getSampleRate() != theirs.getSampleRate())
    Message::fatal(label, 0,
                   "The sample rate (%f) of attribute '%s' in store '%s' does not match the sample rate (%f) of the "
                   "same attribute in the first store of this bound store.",
                   theirs.getSampleRate(), name, store.getName().c_str(), mine.getSampleRate());
  if (mine.getFirstTime() != theirs.getFirstTime())
    Message::fatal(label, 0,
                   "The time of the first sample (%f) of attribute '%s' in store '%s' does not match the time of the "
                   "first sample (%f) of the same attribute in the first store of this bound store.",
                   theirs.getFirstTime(), name, store.getName().c_str(), mine.getFirstTime());
  if (mine.getLength() != theirs.getLength())
    Message::fatal(label, 0,
                   "The length (%d) of attribute '%s' in store '%s' does not match the length (%d) of the same "
                   "attribute in the first store of this bound store.",
                   theirs.getLength(), name, store.getName().c_str(), mine.getLength());
}

// --- what the binding holds ---------------------------------------------------------------------

unsigned int BindStoreDecorator::getNInstances() const {
  unsigned int n = 0;
  for (vHandle<Store> const& store : m_stores) n += store->getNInstances();
  return n;
}

std::list<Attribute> BindStoreDecorator::getAttributeList() const {
  std::list<Attribute> all;
  for (vHandle<Store> const& store : m_stores)
    for (Attribute const& attribute : store->getAttributeList())
      if (std::none_of(all.begin(), all.end(), [&](Attribute const& a) { return a == attribute; }))
        all.push_back(attribute);
  all.push_back(m_storeID);
  return all;
}

void BindStoreDecorator::getAttributeList(std::list<Attribute>& attributes) const { attributes = getAttributeList(); }

std::list<Attribute> BindStoreDecorator::getAttributeList(vUCString const& text,
                                                          AttributeMatch::AttributeMatchType match) const {
  std::list<Attribute> result;
  for (Attribute const& attribute : getAttributeList())
    if (attribute.getClass() == text || (match == 1 && attribute.getClass().isBlank())) result.push_back(attribute);
  return result;
}

Attribute BindStoreDecorator::getAttribute(vUCString const& name) const {
  for (Attribute const& attribute : getAttributeList())
    if (attribute.getName() == name) return attribute;
  Message::fatal("BindStoreDecorator::getAttribute()", 0, "Attribute '%s' is not in store.", name.c_str());
}

bool BindStoreDecorator::hasAttribute(vUCString const& name) const {
  std::list<Attribute> const all = getAttributeList();
  return std::any_of(all.begin(), all.end(), [&](Attribute const& a) { return a.getName() == name; });
}

unsigned int BindStoreDecorator::getNAttributes() const { return static_cast<unsigned int>(getAttributeList().size()); }

template <class Each>
void BindStoreDecorator::mySetAttributeSet(char const* label, vLCString const& name, Each each) {
  bool found = false;
  for (vHandle<Store> const& store : m_stores) {
    Store::AttributeSetList sets;
    store->getAttributeSetList(sets);
    if (name.isBlank() || std::find(sets.begin(), sets.end(), name) != sets.end()) {
      each(*store);
      found = true;
    }
  }
  if (!found) Message::fatal(label, 0, "Attribute set '%s' does not exist!", name.c_str());
  m_indexingTable = vHandle<AttributeSetIndexingTable>();
}

void BindStoreDecorator::openAttributeSet(vLCString const& name) {
  mySetAttributeSet("BindStoreDecorator::openAttributeSet", name, [&](Store& s) { s.openAttributeSet(name); });
}

void BindStoreDecorator::updateAttributeSet(vLCString const& name) {
  mySetAttributeSet("BindStoreDecorator::updateAttributeSet", name, [&](Store& s) { s.updateAttributeSet(name); });
}

// --- reading -------------------------------------------------------------------------------------

void BindStoreDecorator::mySetStoreID(Attribute& attribute, unsigned int at, unsigned int count, int id) {
  for (unsigned int i = 0; i < count; ++i) attribute.setValue(at + i, static_cast<double>(id));
}

void BindStoreDecorator::myGetPartialData(Store const& store, Attribute& attribute, unsigned int first,
                                          unsigned int last, unsigned int at) const {
  if (!store.hasAttribute(attribute.getName())) return;
  Attribute part(attribute);
  store.read(part, first, last);
  std::memcpy(attribute.getPointer(at), part.getPointer(1), static_cast<std::size_t>(part.getTotalNBytes()));
}

void BindStoreDecorator::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  unsigned int const n = getNInstances();
  if (last == 0) last = n;
  if (first == 0 || last < first || last > n)
    Message::fatal("BindStoreDecorator::read(range)", 0,
                   "Could not find instances %d-%d, bound Store has %d instances.", static_cast<int>(first),
                   static_cast<int>(last), static_cast<int>(n));
  attribute.resize(last - first + 1);
  zero(attribute);
  unsigned int start = 1;  // the first instance of the current store
  int id = 0;
  for (vHandle<Store> const& store : m_stores) {
    ++id;
    unsigned int const count = store->getNInstances();
    unsigned int const end = start + count - 1;
    unsigned int const from = std::max(first, start);
    unsigned int const to = std::min(last, end);
    if (count > 0 && from <= to) {
      if (myIsStoreID(attribute))
        mySetStoreID(attribute, from - first + 1, to - from + 1, id);
      else
        myGetPartialData(*store, attribute, from - start + 1, to - start + 1, from - first + 1);
    }
    start += count;
  }
}

void BindStoreDecorator::myGetPartialListData(Store const& store, Attribute& attribute,
                                              std::vector<unsigned int> const& local,
                                              std::vector<unsigned int> const& positions) const {
  if (!store.hasAttribute(attribute.getName())) return;
  Attribute part(attribute);
  store.read(part, local);
  std::size_t const bytes = static_cast<std::size_t>(part.getNBytes());
  for (std::size_t i = 0; i < positions.size(); ++i)
    std::memcpy(attribute.getPointer(positions[i]), part.getPointer(static_cast<unsigned int>(i + 1)), bytes);
}

void BindStoreDecorator::read(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  char const* const label = "BindStoreDecorator::read(list)";
  unsigned long long const n = getNInstances();
  attribute.resize(static_cast<unsigned int>(instances.size()));
  zero(attribute);
  if (instances.empty()) return;
  // The list in ascending order with the place of each in the caller's.
  std::vector<unsigned int> order(instances.size());
  std::iota(order.begin(), order.end(), 0u);
  std::stable_sort(order.begin(), order.end(),
                   [&](unsigned int a, unsigned int b) { return instances[a] < instances[b]; });
  long long const low = instances[order.front()];
  long long const high = instances[order.back()];
  if (low == 0 || static_cast<unsigned long long>(high) > n) {
    long long const outside = low == 0 ? 0 : high;
    Message::fatal(label, 0,
                   "Range of list was %lld-%lld, bound Store has %lld instances, found %lld instance in list of %d.",
                   low, high, static_cast<long long>(n), outside, static_cast<int>(instances.size()));
  }
  std::size_t next = 0;
  unsigned int start = 1;
  int id = 0;
  for (vHandle<Store> const& store : m_stores) {
    ++id;
    unsigned int const end = start + store->getNInstances() - 1;
    std::vector<unsigned int> local;
    std::vector<unsigned int> positions;
    for (; next < order.size() && instances[order[next]] <= end; ++next) {
      local.push_back(instances[order[next]] - start + 1);
      positions.push_back(order[next] + 1);
    }
    if (!local.empty()) {
      if (myIsStoreID(attribute))
        for (unsigned int p : positions) attribute.setValue(p, static_cast<double>(id));
      else
        myGetPartialListData(*store, attribute, local, positions);
    }
    start = end + 1;
  }
  if (next != order.size())
    Message::fatal(label, 0,
                   "Bug in code - should not get here. Range of list was %lld-%lld, bound Store has %lld instances, "
                   "Current Store has instances %lld-%lld",
                   low, high, static_cast<long long>(n), static_cast<long long>(start), static_cast<long long>(n));
}

void BindStoreDecorator::read(Attribute&, Attribute const&, unsigned int, unsigned int) const {
  Message::fatal("BindStoreDecorator::read", 0, "Not implemented yet.");
}

void BindStoreDecorator::read(Attribute&, KeyList const&) const {
  Message::fatal("BindStoreDecorator::read", 0, "Not implemented yet.");
}

void BindStoreDecorator::getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const {
  if (m_indexingTable.isEmpty())
    m_indexingTable = vHandle<AttributeSetIndexingTable>(new AttributeSetIndexingTable(*this));
  m_indexingTable->getUnique(attribute, order);
}

void BindStoreDecorator::getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                                           vUtlSort::SortOrder::SortOrderType order) const {
  if (m_indexingTable.isEmpty())
    m_indexingTable = vHandle<AttributeSetIndexingTable>(new AttributeSetIndexingTable(*this));
  m_indexingTable->getGroupsAndSizes(attribute, sizes, order);
}

// --- refused ---------------------------------------------------------------------------------------

void BindStoreDecorator::addInstances(unsigned int) { refuse("BindStoreDecorator::addInstances"); }
void BindStoreDecorator::write(Attribute const&, unsigned int, unsigned int) {
  refuse("BindStoreDecorator::write(range)");
}
void BindStoreDecorator::write(Attribute const&, std::vector<unsigned int> const&) {
  refuse("BindStoreDecorator::write(list)");
}
void BindStoreDecorator::write(Attribute const&, Attribute const&, unsigned int, unsigned int) {
  refuse("BindStoreDecorator::write(groups)");
}
void BindStoreDecorator::write(Attribute const&, KeyList const&) { refuse("BindStoreDecorator::write(keys)"); }
void BindStoreDecorator::addAttribute(Attribute const&) { refuse("BindStoreDecorator::addAttribute"); }
