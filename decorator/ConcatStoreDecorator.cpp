#include "decorator/ConcatStoreDecorator.h"

#include <algorithm>

#include "attribute/AttributeDefinition.h"
#include "decorator/InstanceCopy.h"
#include "foundation/Message.h"

char const* const ConcatStoreDecorator::myOffsetBinName = "offset.bin";

namespace {

char const* const kNotWritten = "Has not been written yet!";
char const* const kSequenceName = "attributeset.sequence";

bool isNamed(Attribute const& attribute, char const* name) { return attribute.getName() == vUCString(name).c_str(); }

}  // namespace

ConcatStoreDecorator::ConcatStoreDecorator(vHandle<Store> const& store)
    : ConcatStoreDecorator(store, "ConcatStoreDecorator") {}

ConcatStoreDecorator::ConcatStoreDecorator(vHandle<Store> const& store, char const* className)
    : StoreDecorator(store),
      m_validated(false),
      m_nInstances(0),
      m_useSequence(false),
      m_className(className) {}

ConcatStoreDecorator::~ConcatStoreDecorator() {
  for (ConcatStoreDecoratorData* set : m_sets) delete set;
}

void ConcatStoreDecorator::myRefuse(char const* form) const {
  vString label(m_className);
  label += "::";
  label += form;
  Message::fatal(label.c_str(), 0, "%s", kNotWritten);
}

// --- validation --------------------------------------------------------------------------

void ConcatStoreDecorator::myValidateStore() const {
  if (m_validated) return;
  char const* label = "ConcatStoreDecorator::myValidateStore";
  if (!m_decoratedStore->isOpen()) Message::fatal(label, 0, "The store is not open!");
  m_sequence = AttributeDefinition::getDefinition(kSequenceName);
  vHandle<AttributeSetList> names = m_decoratedStore->getAttributeSetList();
  unsigned int next = 1;
  int sequence = 1;
  for (vLCString const& name : *names) {
    m_decoratedStore->openAttributeSet(name);
    unsigned int const count = m_decoratedStore->getNInstances();
    // Kept under the name the store lists, which is the one it opens by.
    m_sets.push_back(new ConcatStoreDecoratorData{name, next, next + count - 1, count, sequence++});
    ConcatStoreDecoratorData const& set = *m_sets.back();
    next += count;
    if (m_sets.size() == 1) {
      m_keys = m_decoratedStore->getKeyList();
      m_attributes = m_decoratedStore->getAttributeList();
      for (Attribute const& attribute : m_attributes) {
        if (attribute.isVariableLength())
          Message::fatal(label, 0, "The attribute '%s' is variable length ... not supported!",
                         attribute.getName().c_str());
        m_attributeMap[attribute.getNameID()] = attribute;
      }
      m_setNames.assign(1, m_decoratedStore->getAttributeSetName());
      continue;
    }
    if (m_decoratedStore->getKeyList() != m_keys)
      Message::fatal(label, 0, "The keys within attribute set %s are different than the primary set's ones!",
                     set.setName.c_str());
    std::list<Attribute> const attributes = m_decoratedStore->getAttributeList();
    bool same = attributes.size() == m_attributes.size() &&
                std::equal(attributes.begin(), attributes.end(), m_attributes.begin(),
                           [](Attribute const& a, Attribute const& b) { return a.compare(b); });
    if (!same)
      Message::fatal(label, 0, "The attributes within attribute set %s are different than the primary set's ones!",
                     set.setName.c_str());
  }
  // Back on the primary set, whose class and subclass are the store's.
  if (m_sets.size() > 1) m_decoratedStore->openAttributeSet(m_sets.front()->setName);
  myAddKeys(m_attributes, m_keys);
  m_validated = true;
  m_nInstances = next - 1;
}

void ConcatStoreDecorator::myAddKeys(std::list<Attribute>& attributes, KeyList& keys) const {
  for (Attribute const& key : keys)
    if (isNamed(key, myOffsetBinName)) return;
  KeyList leading;
  for (Attribute const& attribute : attributes)
    if (isNamed(attribute, myOffsetBinName)) {
      leading.addKey(attribute);
      for (Attribute const& key : keys) leading.addKey(key);
      keys = leading;
      return;
    }
  attributes.push_back(m_sequence);
  m_useSequence = true;
  vLCString const subClass = m_decoratedStore->getSubClass();
  if (subClass == "offloadheader" || subClass == "moffldheader") return;
  leading.addKey(m_sequence);
  for (Attribute const& key : keys) leading.addKey(key);
  keys = leading;
}

// A name the view does not know passes; the store below has the last word.
void ConcatStoreDecorator::myValidateAttribute(Attribute const& attribute) const {
  auto found = m_attributeMap.find(attribute.getNameID());
  if (found != m_attributeMap.end() && !attribute.compare(found->second) && !myIsSequence(attribute))
    Message::fatal("ConcatStoreDecorator::myValidateAttribute", 0, "The attribute '%s' was not found!",
                   attribute.getName().c_str());
}

void ConcatStoreDecorator::myValidateRange(unsigned int first, unsigned int last) const {
  char const* label = "ConcatStoreDecorator::myValidateRange";
  if (first == 0 || first > m_nInstances)
    Message::fatal(label, 0, "The first instance (%d) is out of range!   Valid values are 1 thru %d.",
                   static_cast<int>(first), static_cast<int>(m_nInstances));
  if (last == 0 || last > m_nInstances)
    Message::fatal(label, 0, "The last instance (%d) is out of range!   Valid values are 1 thru %d.",
                   static_cast<int>(last), static_cast<int>(m_nInstances));
  if (last < first)
    Message::fatal(label, 0, "The last instance (%d) must be greater than or equal to the first (%d)!",
                   static_cast<int>(last), static_cast<int>(first));
}

bool ConcatStoreDecorator::myIsSequence(Attribute const& attribute) const { return attribute.compare(m_sequence); }

// --- reads -------------------------------------------------------------------------------

void ConcatStoreDecorator::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  myValidateStore();
  myValidateAttribute(attribute);
  if (m_nInstances == 0)
    Message::fatal("ConcatStoreDecorator::read(range)", 0, "There are no instances within this store!");
  myValidateRange(first, last);
  std::vector<ConcatStoreDecoratorLocation> locations;
  myConvertRangeToLocations(first, last, locations);
  myAppend(attribute, locations);
}

void ConcatStoreDecorator::read(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  myValidateStore();
  myValidateAttribute(attribute);
  if (m_nInstances == 0)
    Message::fatal("ConcatStoreDecorator::read(list)", 0, "There are no instances within this store!");
  std::vector<std::pair<unsigned int, unsigned int>> ranges;
  myConvertListToRanges(instances, ranges);
  std::vector<ConcatStoreDecoratorLocation> locations;
  for (auto const& range : ranges) myConvertRangeToLocations(range.first, range.second, locations);
  myAppend(attribute, locations);
}

void ConcatStoreDecorator::myConvertListToRanges(std::vector<unsigned int> const& instances,
                                                 std::vector<std::pair<unsigned int, unsigned int>>& ranges) {
  for (unsigned int k : instances) {
    if (!ranges.empty() && ranges.back().second + 1 == k && k != 0)
      ranges.back().second = k;
    else
      ranges.emplace_back(k, k);
  }
}

void ConcatStoreDecorator::myConvertRangeToLocations(unsigned int first, unsigned int last,
                                                     std::vector<ConcatStoreDecoratorLocation>& locations) const {
  myValidateRange(first, last);
  for (ConcatStoreDecoratorData const* set : m_sets) {
    if (set->nInstances == 0 || set->last < first) continue;
    if (set->first > last) break;
    unsigned int const from = std::max(first, set->first);
    unsigned int const to = std::min(last, set->last);
    locations.push_back(ConcatStoreDecoratorLocation{set, from - set->first + 1, to - set->first + 1, to - from + 1});
    if (set->last >= last) break;
  }
}

void ConcatStoreDecorator::myAppend(Attribute& attribute, std::vector<ConcatStoreDecoratorLocation>& locations) const {
  unsigned int total = 0;
  for (ConcatStoreDecoratorLocation const& location : locations) total += location.count;
  attribute.resize(total);
  unsigned int position = 1;
  if (myIsSequence(attribute)) {
    for (ConcatStoreDecoratorLocation const& location : locations)
      for (unsigned int i = 0; i < location.count; ++i) attribute.setValue(position++, location.set->sequence);
    return;
  }
  for (ConcatStoreDecoratorLocation const& location : locations) {
    m_decoratedStore->openAttributeSet(location.set->setName);
    Attribute part(attribute);
    m_decoratedStore->read(part, location.first, location.last);
    InstanceCopy::copy(part, 1, attribute, position, location.count);
    position += location.count;
  }
}

// --- questions ---------------------------------------------------------------------------

std::vector<ConcatStoreDecoratorData*> const& ConcatStoreDecorator::getSets() const {
  myValidateStore();
  return m_sets;
}

unsigned int ConcatStoreDecorator::getNInstances() const {
  myValidateStore();
  return m_nInstances;
}

KeyList ConcatStoreDecorator::getKeyList() const {
  myValidateStore();
  return m_keys;
}

void ConcatStoreDecorator::getKeyList(KeyList& keys) const {
  myValidateStore();
  keys = m_keys;
}

std::list<Attribute> ConcatStoreDecorator::getAttributeList() const {
  myValidateStore();
  return m_attributes;
}

void ConcatStoreDecorator::getAttributeList(std::list<Attribute>& attributes) const {
  myValidateStore();
  attributes = m_attributes;
}

Attribute ConcatStoreDecorator::getAttribute(vUCString const& name) const {
  myValidateStore();
  if (m_useSequence && name == m_sequence.getName()) return m_sequence;
  return StoreDecorator::getAttribute(name);
}

bool ConcatStoreDecorator::hasAttribute(vUCString const& name) const {
  myValidateStore();
  if (m_useSequence && name == m_sequence.getName()) return true;
  return StoreDecorator::hasAttribute(name);
}

void ConcatStoreDecorator::openAttributeSet(vLCString const& name) {
  myValidateStore();
  if (name.length() == 0 || (!m_setNames.empty() && name == m_setNames.front())) return;
  Message::fatal("ConcatStoreDecorator::openAttributeSet", 0, "Invalid attribute set name!");
}

vHandle<Store::AttributeSetList> ConcatStoreDecorator::getAttributeSetList() const {
  myValidateStore();
  return vHandle<AttributeSetList>(new AttributeSetList(m_setNames));
}

void ConcatStoreDecorator::getAttributeSetList(AttributeSetList& names) const {
  myValidateStore();
  names = m_setNames;
}

vLCString ConcatStoreDecorator::getAttributeSetName() const {
  myValidateStore();
  return m_setNames.empty() ? vLCString() : m_setNames.front();
}

// --- refusals ----------------------------------------------------------------------------

void ConcatStoreDecorator::read(Attribute&, Attribute const&, unsigned int, unsigned int) const {
  myRefuse("read(groups)");
}

void ConcatStoreDecorator::read(Attribute&, KeyList const&) const { myRefuse("read(keys)"); }

void ConcatStoreDecorator::addInstances(unsigned int) { myRefuse("addInstances"); }

void ConcatStoreDecorator::write(Attribute const&, unsigned int, unsigned int) { myRefuse("write(range)"); }

void ConcatStoreDecorator::write(Attribute const&, std::vector<unsigned int> const&) { myRefuse("write(list)"); }

void ConcatStoreDecorator::write(Attribute const&, Attribute const&, unsigned int, unsigned int) {
  myRefuse("write(groups)");
}

void ConcatStoreDecorator::write(Attribute const&, KeyList const&) { myRefuse("write(keys)"); }

void ConcatStoreDecorator::addAttribute(Attribute const&) { myRefuse("addAttribute"); }
