// Reads and questions of the merge method, after validation.

#include <algorithm>

#include "decorator/InstanceCopy.h"
#include "decorator/MergeMethodNoSecondarySort.h"
#include "foundation/Message.h"
#include "foundation/vUtl.h"

namespace Merge {

// Consecutive instances of one store that go to consecutive positions of
// the output: one read below.
struct MergeMethodNoSecondarySort::Run {
  unsigned int store = 0;
  unsigned int firstInStore = 0;
  unsigned int count = 0;
  unsigned int outputPosition = 0;
};

namespace {

void refuseVariableLength(char const* label, Attribute const& attribute) {
  if (attribute.isVariableLength())
    Message::fatal(label, 0, "The attribute '%s' is variable length ... not supported!", attribute.getName().c_str());
}

}  // namespace

unsigned int MergeMethodNoSecondarySort::getNInstances() const {
  validateStores();
  return m_nInstances;
}

std::vector<MergeMethodNoSecondarySort::Group> const& MergeMethodNoSecondarySort::getGroups() const {
  validateStores();
  return m_groups;
}

unsigned int MergeMethodNoSecondarySort::myFindGroup(char const* label, unsigned int k) const {
  ++m_nSearches;
  auto after = std::upper_bound(m_groups.begin(), m_groups.end(), k,
                                [](unsigned int value, Group const& g) { return value < g.mergedFirst; });
  if (after == m_groups.begin())
    Message::fatal(label, 0, "Internal error, could not find instance %lld in the group bins!",
                   static_cast<long long>(k));
  Group const& found = *(after - 1);
  if (k < found.mergedFirst || k >= found.mergedFirst + found.count)
    Message::fatal(label, 0, "Internal error, found invalid group (%lld:%lld) when searching for instance %lld!",
                   static_cast<long long>(found.mergedFirst),
                   static_cast<long long>(found.mergedFirst) + found.count - 1, static_cast<long long>(k));
  return static_cast<unsigned int>((after - 1) - m_groups.begin());
}

void MergeMethodNoSecondarySort::myGroupRead(Group const& group, unsigned int offset, Attribute& attribute,
                                             unsigned int outputPosition, unsigned int count, Run& run) const {
  char const* label = "MergeMethodNoSecondarySort::Group::read";
  if (offset == 0)
    Message::fatal(label, 0, "Internal error ... group offset must be greater than zero, not %d!",
                   static_cast<int>(offset));
  if (count > group.count - (offset - 1))
    Message::fatal(label, 0, "Not enough data in the group, asked for %lld instances but we've only got %lld!",
                   static_cast<long long>(count), static_cast<long long>(group.count - (offset - 1)));
  unsigned int const firstInStore = group.firstInStore + (offset - 1);
  if (run.count > 0 && run.store == group.store && run.firstInStore + run.count == firstInStore &&
      run.outputPosition + run.count == outputPosition) {
    run.count += count;
    return;
  }
  myFlush(run, attribute);
  run.store = group.store;
  run.firstInStore = firstInStore;
  run.count = count;
  run.outputPosition = outputPosition;
}

// A store that lacks the attribute gives zeros, not the no-value marker.
void MergeMethodNoSecondarySort::myFlush(Run& run, Attribute& attribute) const {
  if (run.count == 0) return;
  StoreData const& data = *m_stores[run.store];
  if (!data.hasAttribute(attribute)) {
    InstanceCopy::zero(attribute, run.outputPosition, run.count);
  } else {
    Attribute scratch(attribute);
    data.store->read(scratch, run.firstInStore, run.firstInStore + run.count - 1);
    InstanceCopy::copy(scratch, 1, attribute, run.outputPosition, run.count);
  }
  run.count = 0;
}

void MergeMethodNoSecondarySort::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  char const* label = "MergeMethodNoSecondarySort::read(range)";
  validateStores();
  if (first == 0 || first > m_nInstances || last > m_nInstances || first > last)
    Message::fatal(label, 0, "INvalid range specification %lld:%lld ... valid values are 1:%lld",
                   static_cast<long long>(first), static_cast<long long>(last), static_cast<long long>(m_nInstances));
  refuseVariableLength(label, attribute);
  unsigned int group;
  unsigned int offset;
  if (first == m_nextExpected) {
    group = m_positionGroup;
    offset = m_positionOffset;
  } else if (first == 1) {
    group = 0;
    offset = 1;
  } else {
    group = myFindGroup(label, first);
    offset = first - m_groups[group].mergedFirst + 1;
  }
  m_nextExpected = first;
  m_positionGroup = group;
  m_positionOffset = offset;

  unsigned int wanted = last - first + 1;
  attribute.resize(wanted);
  Run run;
  unsigned int output = 1;
  while (wanted > 0) {
    Group const& g = m_groups[group];
    unsigned int const take = std::min(wanted, g.count - (offset - 1));
    myGroupRead(g, offset, attribute, output, take, run);
    output += take;
    wanted -= take;
    ++group;
    offset = 1;
  }
  myFlush(run, attribute);
}

// One list read per store: the numbers of each store are gathered in list
// order and the values put back where the list wants them.
void MergeMethodNoSecondarySort::read(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  char const* label = "MergeMethodNoSecondarySort::read(list)";
  validateStores();
  if (instances.empty()) Message::fatal(label, 0, "No list specified!");
  if (vUtl::isListARange(instances)) {
    read(attribute, instances.front(), instances.back());
    return;
  }
  refuseVariableLength(label, attribute);
  unsigned int const n = static_cast<unsigned int>(instances.size());
  attribute.resize(n);
  std::vector<std::vector<unsigned int>> wanted(m_stores.size());
  std::vector<std::vector<unsigned int>> positions(m_stores.size());
  bool haveGroup = false;
  unsigned int group = 0;
  for (unsigned int p = 0; p < n; ++p) {
    unsigned int const k = instances[p];
    if (m_groups.empty())
      Message::fatal(label, 0, "Internal error, could not find instance %lld in the group bins!",
                     static_cast<long long>(k));
    Group const* g = &m_groups[group];
    if (!haveGroup || k < g->mergedFirst || k >= g->mergedFirst + g->count) {
      group = myFindGroup(label, k);
      g = &m_groups[group];
      haveGroup = true;
    }
    wanted[g->store].push_back(g->firstInStore + (k - g->mergedFirst));
    positions[g->store].push_back(p + 1);
  }
  for (unsigned int s = 0; s < m_stores.size(); ++s) {
    if (wanted[s].empty()) continue;
    StoreData const& data = *m_stores[s];
    if (!data.hasAttribute(attribute)) {
      for (unsigned int position : positions[s]) InstanceCopy::zero(attribute, position, 1);
      continue;
    }
    Attribute scratch(attribute);
    data.store->read(scratch, wanted[s]);
    for (unsigned int i = 0; i < positions[s].size(); ++i)
      InstanceCopy::copy(scratch, i + 1, attribute, positions[s][i], 1);
  }
}

Store const& MergeMethodNoSecondarySort::myQuestionStore() const {
  validateStores();
  if (!m_stores.empty()) return *m_stores.front()->store;
  return *m_firstStore;
}

std::list<Attribute> MergeMethodNoSecondarySort::getAttributeList() const {
  validateStores();
  return m_attributes;
}

void MergeMethodNoSecondarySort::getAttributeList(std::list<Attribute>& attributes) const {
  validateStores();
  attributes = m_attributes;
}

std::list<Attribute> MergeMethodNoSecondarySort::getAttributeList(vUCString const& text,
                                                                  AttributeMatch::AttributeMatchType match) const {
  return myQuestionStore().getAttributeList(text, match);
}

bool MergeMethodNoSecondarySort::hasAttribute(vUCString const& name) const {
  return myQuestionStore().hasAttribute(name);
}

Attribute MergeMethodNoSecondarySort::getAttribute(vUCString const& name) const {
  return myQuestionStore().getAttribute(name);
}

vLCString MergeMethodNoSecondarySort::getAttributeSetName() const {
  validateStores();
  return m_setNames.empty() ? vLCString() : m_setNames.front();
}

vHandle<Store::AttributeSetList> MergeMethodNoSecondarySort::getAttributeSetList() const {
  validateStores();
  return vHandle<Store::AttributeSetList>(new Store::AttributeSetList(m_setNames));
}

void MergeMethodNoSecondarySort::getAttributeSetList(Store::AttributeSetList& names) const {
  validateStores();
  names = m_setNames;
}

KeyList MergeMethodNoSecondarySort::getKeyList() const {
  validateStores();
  return m_keys;
}

void MergeMethodNoSecondarySort::getKeyList(KeyList& keys) const {
  validateStores();
  keys = m_keys;
}

void MergeMethodNoSecondarySort::openAttributeSet(vLCString const& name) {
  validateStores();
  vLCString const kept = getAttributeSetName();
  if (name.length() == 0 || name == kept) return;
  Message::fatal("MergeMethodNoSecondarySort::openAttributeSet", 0,
                 "Invalid attribute set name '%s' ... we expect blank or '%s'!", name.c_str(), kept.c_str());
}

}  // namespace Merge
