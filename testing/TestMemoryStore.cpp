#include "testing/TestMemoryStore.h"

#include <algorithm>
#include <cstring>

#include "foundation/Message.h"
#include "foundation/vUtl.h"
#include "project/FullStoreName.h"
#include "project/Project.h"

namespace {

char const* typeName(DataType type) {
  static thread_local vString name;
  name = vUtl::dataTypeName(type);
  return name.c_str();
}

bool sameLayout(Attribute const& a, Attribute const& b) {
  return a.getDataType() == b.getDataType() && a.getLength() == b.getLength();
}

// Zeros (or empty strings) in every value of an attribute of n instances.
void resizeZeroed(Attribute& attribute, unsigned int n) {
  attribute.resize(n);
  if (n == 0 || attribute.getDataType() == vSTRING) return;
  std::memset(attribute.getPointer(1), 0, static_cast<std::size_t>(attribute.getTotalNBytes()));
}

void copyInstance(Attribute const& from, unsigned int fromInstance, Attribute& to, unsigned int toInstance) {
  if (from.getDataType() == vSTRING) {
    vString const* source = from.getStringPointer(fromInstance);
    vString* target = to.getStringPointer(toInstance);
    for (int k = 0; k < from.getLength(); ++k) target[k] = source[k];
  } else {
    std::memcpy(to.getPointer(toInstance), from.getPointer(fromInstance), static_cast<std::size_t>(from.getNBytes()));
  }
}

}  // namespace

// --- shelf ----------------------------------------------------------------------

std::shared_ptr<TestMemorySetData> TestMemoryShelf::find(vLCString const& name) const {
  auto it = m_sets.find(name.c_str());
  return it == m_sets.end() ? nullptr : it->second;
}

std::shared_ptr<TestMemorySetData> TestMemoryShelf::make(vLCString const& name) {
  auto data = std::make_shared<TestMemorySetData>();
  std::shared_ptr<TestMemorySetData> old = find(name);
  data->name = name;
  data->version = old ? old->version + 1 : 1;
  m_sets[name.c_str()] = data;
  return data;
}

std::vector<vLCString> TestMemoryShelf::getNames() const {
  std::vector<vLCString> names;
  for (auto const& entry : m_sets) names.push_back(vLCString(entry.first.c_str()));
  return names;
}

// --- set: guards ------------------------------------------------------------------

TestMemoryAttributeSet::TestMemoryAttributeSet(vHandle<Project> const& project,
                                               std::shared_ptr<TestMemoryShelf> const& shelf)
    : AttributeSet(project), m_shelf(shelf), m_open(false), m_writeable(false) {}

TestMemoryAttributeSet::~TestMemoryAttributeSet() {}

void TestMemoryAttributeSet::myMustBeOpen(char const* label) const {
  if (!m_open) Message::fatal(label, 0, "AttributeSet is not open.");
}

void TestMemoryAttributeSet::myMustNotBeOpen(char const* label) const {
  if (m_open) Message::fatal(label, 0, "AttributeSet is already open as '%s'.", m_data->name.c_str());
}

void TestMemoryAttributeSet::myMustBeModifiable(char const* label) const {
  myMustBeOpen(label);
  if (!m_writeable) Message::fatal(label, 0, "AttributeSet '%s' is not open for modification.", m_data->name.c_str());
}

Attribute* TestMemoryAttributeSet::myFind(vUCString const& name) const {
  if (!m_data) return nullptr;
  for (auto const& attribute : m_data->attributes)
    if (attribute->getName() == name) return attribute.get();
  return nullptr;
}

void TestMemoryAttributeSet::myMustHaveAttribute(char const* label, vUCString const& name) const {
  myMustBeOpen(label);
  if (myFind(name) == nullptr)
    Message::fatal(label, 0, "Attribute %s is not in the AttributeSet %s.", name.c_str(), m_data->name.c_str());
}

void TestMemoryAttributeSet::myCheckFirstLast(unsigned int first, unsigned int last, unsigned int n) const {
  char const* label = "TestMemoryAttributeSet::myCheckFirstLast()";
  if (first == 0) Message::fatal(label, 0, "first instance must be >0, yours was %lld", static_cast<long long>(first));
  if (first > last)
    Message::fatal(label, 0, "first instance %lld must be <= last instance %lld.", static_cast<long long>(first),
                   static_cast<long long>(last));
  if (last > n)
    Message::fatal(label, 0, "last instance %lld must be <= number of instances %lld.", static_cast<long long>(last),
                   static_cast<long long>(n));
}

unsigned int TestMemoryAttributeSet::myCheckRange(char const* label, Attribute const& attribute, unsigned int first,
                                                  unsigned int last) const {
  myMustHaveAttribute(label, attribute.getName());
  unsigned int effective = last == 0 ? m_data->nInstances : last;
  myCheckFirstLast(first, effective, m_data->nInstances);
  return effective;
}

void TestMemoryAttributeSet::myCheckList(char const* label, Attribute const& attribute,
                                         std::vector<unsigned int> const& list) const {
  if (list.empty()) return;
  unsigned int largest = *std::max_element(list.begin(), list.end());
  if (largest > m_data->nInstances)
    Message::fatal(label, 0, "Instance numbers must be <%lld, list for '%s' contained %lld.",
                   static_cast<long long>(m_data->nInstances) + 1, attribute.getName().c_str(),
                   static_cast<long long>(largest));
}

void TestMemoryAttributeSet::myKeysCheck(KeyList const& keys) const {
  char const* label = "TestMemoryAttributeSet::myKeysCheck()";
  if (keys.getNKeys() == 0) Message::fatal(label, 0, "KeyList must have at lease one key Attribute.");
  unsigned int n = keys.begin()->getNInstances();
  for (Attribute const& key : keys) {
    if (myFind(key.getName()) == nullptr)
      Message::fatal(label, 0, "Attribute %s of the KeyList is not a memeber of the AttributeSet %s.",
                     key.getName().c_str(), m_data->name.c_str());
    if (key.getNInstances() == 0)
      Message::fatal(label, 0, "Attribute %s of the KeyList does not have any values with it.", key.getName().c_str());
    if (key.getNInstances() != n)
      Message::fatal(label, 0, "Attribute %s of the KeyList does not have %lld values.", key.getName().c_str(),
                     static_cast<long long>(n));
  }
}

// --- set: opening ---------------------------------------------------------------------

bool TestMemoryAttributeSet::isOpen() const { return m_open; }

void TestMemoryAttributeSet::create(vLCString const& name, vLCString const& className, vLCString const& subClass,
                                    KeyList const& keys, StoreCreationOptions const*) {
  char const* label = "TestMemoryAttributeSet::create";
  myMustNotBeOpen(label);
  if (name.isBlank()) Message::fatal(label, 0, "A blank AttributeSet name is not allowed.");
  if (className.isBlank())
    Message::fatal(label, 0, "When creating AttributeSet '%s', the class cannot be blank.", name.c_str());
  if (subClass.isBlank())
    Message::fatal(label, 0, "When creating AttributeSet '%s', the subclass cannot be blank.", name.c_str());
  std::shared_ptr<TestMemorySetData> data = m_shelf->make(name);
  data->className = className;
  data->subClass = subClass;
  data->keys = keys;
  for (Attribute const& key : keys) data->attributes.emplace_back(new Attribute(key));
  data->properties.beginProperty();  // a list of its own, which the set shares
  m_data = data;
  PropertyI::setPropertyList(data->properties);
  m_open = true;
  m_writeable = true;
}

void TestMemoryAttributeSet::create(FullStoreName const& name, vLCString const& className,
                                    vLCString const& subClass, KeyList const& keys,
                                    StoreCreationOptions const* options) {
  create(name.getStoreName(), className, subClass, keys, options);
}

void TestMemoryAttributeSet::myOpen(char const* label, vLCString const& name, int version, bool writeable) {
  myMustNotBeOpen(label);
  if (name.isBlank()) Message::fatal(label, 0, "A blank AttributeSet name is not allowed.");
  std::shared_ptr<TestMemorySetData> data = m_shelf->find(name);
  if (!data) Message::fatal(label, 0, "AttributeSet '%s' does not exist.", name.c_str());
  if (version != 0 && version != data->version)
    Message::fatal(label, 0, "AttributeSet '%s' has no version %d.", name.c_str(), version);
  data->properties.beginProperty();
  m_data = data;
  PropertyI::setPropertyList(data->properties);
  m_open = true;
  m_writeable = writeable;
}

void TestMemoryAttributeSet::open(vLCString const& name, int version, vLCString const&, vLCString const&,
                                  StoreOpenOptions const*) {
  myOpen("TestMemoryAttributeSet::open", name, version, false);
}

void TestMemoryAttributeSet::open(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
                                  StoreOpenOptions const* options) {
  open(name.getStoreName(), name.getVersion(), className, subClass, options);
}

void TestMemoryAttributeSet::update(vLCString const& name, int version, vLCString const&, vLCString const&,
                                    StoreOpenOptions const*) {
  myOpen("TestMemoryAttributeSet::update", name, version, true);
}

void TestMemoryAttributeSet::update(FullStoreName const& name, vLCString const& className,
                                    vLCString const& subClass, StoreOpenOptions const* options) {
  update(name.getStoreName(), name.getVersion(), className, subClass, options);
}

void TestMemoryAttributeSet::close() {
  myMustBeOpen("TestMemoryAttributeSet::close");
  m_open = false;
  m_writeable = false;
}

// --- set: questions ------------------------------------------------------------------

unsigned int TestMemoryAttributeSet::getNInstances() const {
  myMustBeOpen("TestMemoryAttributeSet::getNInstances");
  return m_data->nInstances;
}

vLCString TestMemoryAttributeSet::getClass() const {
  myMustBeOpen("TestMemoryAttributeSet::getClass");
  return m_data->className;
}

vLCString TestMemoryAttributeSet::getSubClass() const {
  myMustBeOpen("TestMemoryAttributeSet::getSubClass");
  return m_data->subClass;
}

vLCString TestMemoryAttributeSet::getName() const {
  myMustBeOpen("TestMemoryAttributeSet::getName");
  return m_data->name;
}

int TestMemoryAttributeSet::getVersion() const {
  myMustBeOpen("TestMemoryAttributeSet::getVersion");
  return m_data->version;
}

KeyList TestMemoryAttributeSet::getKeyList() const {
  myMustBeOpen("TestMemoryAttributeSet::getKeyList");
  return m_data->keys;
}

std::list<Attribute> TestMemoryAttributeSet::getAttributeList() const {
  myMustBeOpen("TestMemoryAttributeSet::getAttributeList");
  std::list<Attribute> list;
  for (auto const& attribute : m_data->attributes) list.push_back(*attribute);
  return list;
}

std::list<Attribute> TestMemoryAttributeSet::getAttributeList(vUCString const& text,
                                                              AttributeMatch::AttributeMatchType match) const {
  myMustBeOpen("TestMemoryAttributeSet::getAttributeList");
  std::list<Attribute> list;
  for (auto const& attribute : m_data->attributes)
    if (AttributeMatch::matches(*attribute, text, match)) list.push_back(*attribute);
  return list;
}

Attribute TestMemoryAttributeSet::getAttribute(vUCString const& name) const {
  myMustHaveAttribute("TestMemoryAttributeSet::getAttribute", name);
  return *myFind(name);
}

bool TestMemoryAttributeSet::hasAttribute(vUCString const& name) const {
  myMustBeOpen("TestMemoryAttributeSet::hasAttribute");
  return myFind(name) != nullptr;
}

unsigned int TestMemoryAttributeSet::getNAttributes() const {
  myMustBeOpen("TestMemoryAttributeSet::getNAttributes");
  return static_cast<unsigned int>(m_data->attributes.size());
}

vHandle<Project> TestMemoryAttributeSet::getProject() const { return m_project; }

std::map<double, std::vector<unsigned int>> TestMemoryAttributeSet::myGroups(char const* label,
                                                                             vUCString const& name) const {
  myMustHaveAttribute(label, name);
  Attribute const& stored = *myFind(name);
  if (stored.getLength() != 1 || stored.getDataType() == vSTRING)
    Message::fatal(label, 0, "Groups of '%s' need a numeric attribute of length 1.", name.c_str());
  std::map<double, std::vector<unsigned int>> groups;
  for (unsigned int i = 1; i <= m_data->nInstances; ++i) groups[stored.getValue(i)].push_back(i);
  return groups;
}

void TestMemoryAttributeSet::getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const {
  std::map<double, std::vector<unsigned int>> groups = myGroups("TestMemoryAttributeSet::getUnique",
                                                                attribute.getName());
  std::vector<double> values;
  for (auto const& group : groups) values.push_back(group.first);
  if (order == vUtlSort::SortOrder::DESCENDING) std::reverse(values.begin(), values.end());
  attribute = *myFind(attribute.getName());
  attribute.resize(static_cast<unsigned int>(values.size()));
  for (std::size_t i = 0; i < values.size(); ++i) attribute.setValue(static_cast<unsigned int>(i + 1), values[i]);
}

void TestMemoryAttributeSet::getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                                               vUtlSort::SortOrder::SortOrderType order) const {
  std::map<double, std::vector<unsigned int>> groups = myGroups("TestMemoryAttributeSet::getGroupsAndSizes",
                                                                attribute.getName());
  std::vector<std::pair<double, unsigned int>> entries;
  for (auto const& group : groups) entries.emplace_back(group.first, static_cast<unsigned int>(group.second.size()));
  if (order == vUtlSort::SortOrder::DESCENDING) std::reverse(entries.begin(), entries.end());
  attribute = *myFind(attribute.getName());
  attribute.resize(static_cast<unsigned int>(entries.size()));
  sizes.clear();
  for (std::size_t i = 0; i < entries.size(); ++i) {
    attribute.setValue(static_cast<unsigned int>(i + 1), entries[i].first);
    sizes.push_back(entries[i].second);
  }
}

// --- set: locating ---------------------------------------------------------------------

std::vector<unsigned int> TestMemoryAttributeSet::myLocateByGroups(char const* label, Attribute const& key,
                                                                   unsigned int first, unsigned int last) const {
  if (key.getDataType() != vINT32)
    Message::fatal(label, 0, "Can only function with Int32 groups at the moment. Your Attribute %s is of type %s.",
                   key.getName().c_str(), typeName(key.getDataType()));
  if (key.getLength() != 1)
    Message::fatal(label, 0, "Can only function with Attributes of length=1. Your Attribute %s has a length of %d.",
                   key.getName().c_str(), key.getLength());
  std::map<double, std::vector<unsigned int>> groups = myGroups(label, key.getName());
  unsigned int nGroups = static_cast<unsigned int>(groups.size());
  myCheckFirstLast(first, last == 0 ? nGroups : last, nGroups);
  if (last == 0) last = nGroups;
  std::vector<unsigned int> list;
  unsigned int number = 0;
  for (auto const& group : groups) {
    ++number;
    if (number >= first && number <= last) list.insert(list.end(), group.second.begin(), group.second.end());
  }
  return list;
}

std::vector<unsigned int> TestMemoryAttributeSet::myLocateByKeys(KeyList const& keys) const {
  unsigned int nTuples = keys.begin()->getNInstances();
  std::vector<unsigned int> found(nTuples, 0);
  for (unsigned int t = 1; t <= nTuples; ++t) {
    for (unsigned int i = 1; i <= m_data->nInstances && found[t - 1] == 0; ++i) {
      bool match = true;
      for (Attribute const& key : keys)
        if (myFind(key.getName())->getValue(i) != key.getValue(t)) match = false;
      if (match) found[t - 1] = i;
    }
  }
  return found;
}

void TestMemoryAttributeSet::myKeysFound(std::vector<unsigned int> const& found, unsigned int wanted) const {
  long long nFound = std::count_if(found.begin(), found.end(), [](unsigned int i) { return i != 0; });
  if (nFound != static_cast<long long>(wanted))
    Message::fatal("TestMemoryAttributeSet::locateByKeys", 0,
                   "Key list has duplicate or missing values in AttributeSet %s. Wanted %lld value(s) but found %lld.",
                   m_data->name.c_str(), static_cast<long long>(wanted), nFound);
}

// --- set: reads -------------------------------------------------------------------------

void TestMemoryAttributeSet::myReadList(char const* label, Attribute& attribute,
                                        std::vector<unsigned int> const& list) const {
  Attribute const& stored = *myFind(attribute.getName());
  if (!sameLayout(attribute, stored)) attribute = stored;
  if (list.empty()) {
    attribute.resize(0);
    return;
  }
  myCheckList(label, attribute, list);
  attribute.resize(static_cast<unsigned int>(list.size()));
  for (std::size_t i = 0; i < list.size(); ++i) copyInstance(stored, list[i], attribute, static_cast<unsigned int>(i + 1));
}

void TestMemoryAttributeSet::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  char const* label = "TestMemoryAttributeSet::read(range)";
  last = myCheckRange(label, attribute, first, last);
  std::vector<unsigned int> list;
  for (unsigned int i = first; i <= last; ++i) list.push_back(i);
  myReadList(label, attribute, list);
}

void TestMemoryAttributeSet::read(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  char const* label = "TestMemoryAttributeSet::read(byList)";
  myMustHaveAttribute(label, attribute.getName());
  if (std::find(instances.begin(), instances.end(), 0u) != instances.end())
    Message::fatal(label, 0, "Attribute '%s': the vInstanceList has a zero in it, coont read from instance 0.",
                   attribute.getName().c_str());
  myReadList(label, attribute, instances);
}

void TestMemoryAttributeSet::read(Attribute& attribute, Attribute const& key, unsigned int firstGroup,
                                  unsigned int lastGroup) const {
  char const* label = "TestMemoryAttributeSet::read(byGroups)";
  myMustHaveAttribute(label, attribute.getName());
  myMustHaveAttribute(label, key.getName());
  if (&attribute == &key)
    Message::fatal(label, 0,
                   "The address of the Attrbiute '%s' being read, cannot be the same as the groups Attribute.",
                   attribute.getName().c_str());
  myReadList(label, attribute, myLocateByGroups(label, key, firstGroup, lastGroup));
}

void TestMemoryAttributeSet::read(Attribute& attribute, KeyList const& keys) const {
  char const* label = "TestMemoryAttributeSet::read(byKeys)";
  myMustHaveAttribute(label, attribute.getName());
  myKeysCheck(keys);
  std::vector<unsigned int> found = myLocateByKeys(keys);
  myKeysFound(found, keys.begin()->getNInstances());
  myReadList(label, attribute, found);
}

// --- set: writes ------------------------------------------------------------------------

void TestMemoryAttributeSet::myWriteList(char const* label, Attribute const& attribute,
                                         std::vector<unsigned int> const& list) {
  Attribute& stored = *myFind(attribute.getName());
  if (!sameLayout(attribute, stored))
    Message::fatal(label, 0, "Attribute %s is %s of length %d, but is stored as %s of length %d.",
                   attribute.getName().c_str(), typeName(attribute.getDataType()), attribute.getLength(),
                   typeName(stored.getDataType()), stored.getLength());
  if (list.empty()) return;
  myCheckList(label, attribute, list);
  for (std::size_t i = 0; i < list.size(); ++i) copyInstance(attribute, static_cast<unsigned int>(i + 1), stored, list[i]);
}

void TestMemoryAttributeSet::write(Attribute const& attribute, unsigned int first, unsigned int last) {
  char const* label = "TestMemoryAttributeSet::write(range)";
  last = myCheckRange(label, attribute, first, last);
  myMustBeModifiable(label);
  if (attribute.getNInstances() != last - first + 1)
    Message::fatal(label, 0, "The Attribute '%s' to be written has %lld instances, but last-first+1 is %lld.",
                   attribute.getName().c_str(), static_cast<long long>(attribute.getNInstances()),
                   static_cast<long long>(last - first + 1));
  std::vector<unsigned int> list;
  for (unsigned int i = first; i <= last; ++i) list.push_back(i);
  myWriteList(label, attribute, list);
}

void TestMemoryAttributeSet::write(Attribute const& attribute, std::vector<unsigned int> const& instances) {
  char const* label = "TestMemoryAttributeSet::write(list)";
  myMustHaveAttribute(label, attribute.getName());
  myMustBeModifiable(label);
  if (attribute.getNInstances() != instances.size())
    Message::fatal(label, 0, "The Attribute '%s' to be written has %lld instances, but the list has %lld.",
                   attribute.getName().c_str(), static_cast<long long>(attribute.getNInstances()),
                   static_cast<long long>(instances.size()));
  if (std::find(instances.begin(), instances.end(), 0u) != instances.end())
    Message::fatal(label, 0, "Attribute '%s': the vInstanceList has a zero in it, coont write to instance 0.",
                   attribute.getName().c_str());
  myWriteList(label, attribute, instances);
}

void TestMemoryAttributeSet::write(Attribute const& attribute, Attribute const& key, unsigned int firstGroup,
                                   unsigned int lastGroup) {
  char const* label = "TestMemoryAttributeSet::write(byGroups)";
  myMustHaveAttribute(label, attribute.getName());
  myMustHaveAttribute(label, key.getName());
  myMustBeModifiable(label);
  if (&attribute == &key)
    Message::fatal(label, 0,
                   "The address of the Attrbiute '%s' being read, cannot be the same as the groups Attribute.",
                   attribute.getName().c_str());
  std::vector<unsigned int> list = myLocateByGroups(label, key, firstGroup, lastGroup);
  if (list.size() != attribute.getNInstances())
    Message::fatal(label, 0,
                   "The number of instances (%d) with groups %s does not match the number of instances (%lld) for "
                   "Attribute %s being written.",
                   static_cast<int>(list.size()), key.getName().c_str(),
                   static_cast<long long>(attribute.getNInstances()), attribute.getName().c_str());
  myWriteList(label, attribute, list);
}

void TestMemoryAttributeSet::write(Attribute const& attribute, KeyList const& keys) {
  char const* label = "TestMemoryAttributeSet::write(byKeys)";
  myMustHaveAttribute(label, attribute.getName());
  myMustBeModifiable(label);
  myKeysCheck(keys);
  std::vector<unsigned int> found = myLocateByKeys(keys);
  if (found.size() != attribute.getNInstances())
    Message::fatal(label, 0,
                   "The number of instances (%lld) with keys does not match the number of instances (%lld) for "
                   "Attribute %s being written.",
                   static_cast<long long>(found.size()), static_cast<long long>(attribute.getNInstances()),
                   attribute.getName().c_str());
  myKeysFound(found, keys.begin()->getNInstances());
  myWriteList(label, attribute, found);
}

void TestMemoryAttributeSet::addInstances(unsigned int count) {
  myMustBeModifiable("TestMemoryAttributeSet::addInstances");
  unsigned int n = m_data->nInstances;
  for (auto& stored : m_data->attributes) {
    Attribute grown(*stored);
    resizeZeroed(grown, n + count);
    for (unsigned int i = 1; i <= n; ++i) copyInstance(*stored, i, grown, i);
    stored->transferData(grown);
  }
  m_data->nInstances = n + count;
}

void TestMemoryAttributeSet::addAttribute(Attribute const& attribute) {
  char const* label = "TestMemoryAttributeSet::addAttribute";
  myMustBeModifiable(label);
  if (myFind(attribute.getName()) != nullptr)
    Message::fatal(label, 0, "The AttributeSet %s already has an Attribute called %s.", m_data->name.c_str(),
                   attribute.getName().c_str());
  if (attribute.isVariableLength())
    Message::fatal(label, 0, "Attribute %s: variable lengths are not kept here.", attribute.getName().c_str());
  std::unique_ptr<Attribute> stored(new Attribute(attribute));
  resizeZeroed(*stored, m_data->nInstances);
  m_data->attributes.push_back(std::move(stored));
}

void TestMemoryAttributeSet::setAttributeClass(vUCString const& name, vUCString const& className) {
  myMustHaveAttribute("TestMemoryAttributeSet::setAttributeClass", name);
  myFind(name)->setClass(className);
}

// --- store --------------------------------------------------------------------------------

TestMemoryStore::TestMemoryStore(vHandle<Project> const& project, std::shared_ptr<TestMemoryShelf> const& shelf)
    : StoreImp(project), m_shelf(shelf), m_nSetsMade(0) {}

TestMemoryStore::~TestMemoryStore() {
  if (!isOpen()) return;
  try {
    close();
  } catch (...) {
    // A destructor must not throw; the failure was reported already.
  }
}

vHandle<AttributeSet> TestMemoryStore::doCreateAttributeSet(vHandle<Project> const& project) const {
  ++m_nSetsMade;
  return vHandle<AttributeSet>(new TestMemoryAttributeSet(project, m_shelf));
}
