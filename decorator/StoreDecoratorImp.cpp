#include "decorator/StoreDecoratorImp.h"

#include <algorithm>

#include "foundation/Message.h"

StoreDecoratorImp::StoreDecoratorImp(vHandle<Store> const& store)
    : StoreDecorator(store), m_indexingTable(new AttributeSetIndexingTable(*this)) {}

StoreDecoratorImp::~StoreDecoratorImp() {}

void StoreDecoratorImp::getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const {
  m_indexingTable->getUnique(attribute, order);
}

void StoreDecoratorImp::getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                                          vUtlSort::SortOrder::SortOrderType order) const {
  m_indexingTable->getGroupsAndSizes(attribute, sizes, order);
}

void StoreDecoratorImp::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  doReadRange(attribute, first, last);
}

void StoreDecoratorImp::read(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  doReadList(attribute, instances);
}

void StoreDecoratorImp::read(Attribute& attribute, Attribute const& groups, unsigned int firstGroup,
                             unsigned int lastGroup) const {
  if (&attribute == &groups)
    Message::fatal("StoreDecoratorImp::read(byGroups)", 0,
                   "The address of the Attrbiute '%s' being read, cannot be the same as the groups Attribute.",
                   attribute.getName().c_str());
  std::vector<unsigned int> instances;
  m_indexingTable->locateByGroups(groups, firstGroup, lastGroup, instances);
  doReadList(attribute, instances);
}

void StoreDecoratorImp::read(Attribute& attribute, KeyList const& keys) const {
  char const* label = "StoreDecoratorImp::read(byKeys)";
  if (keys.getNKeys() == 0) Message::fatal(label, 0, "KeyList must have at lease one key Attribute.");
  std::vector<unsigned int> instances;
  m_indexingTable->locateByKeys(keys, instances, false);
  // A tuple not found would reach the list read as instance 0.
  long long found = std::count_if(instances.begin(), instances.end(), [](unsigned int i) { return i != 0; });
  long long wanted = static_cast<long long>(keys.begin()->getNInstances());
  if (found != wanted)
    Message::fatal(label, 0,
                   "Key list has duplicate or missing values in AttributeSet %s. Wanted %lld value(s) but found %lld.",
                   getName().c_str(), wanted, found);
  doReadList(attribute, instances);
}

// A view keeps no properties of its own: they are those of the store below,
// which decides whether it takes the assignment.
Store& StoreDecoratorImp::operator=(PropertyI const& properties) {
  StoreDecorator::operator=(properties);
  return *this;
}

void StoreDecoratorImp::myInstancesChanged() const { m_indexingTable->clearCache(); }

unsigned int StoreDecoratorImp::myCheckFirstLast(char const* label, unsigned int first, unsigned int last,
                                                 unsigned int n) {
  if (last == 0) last = n;
  if (first == 0) Message::fatal(label, 0, "first instance must be >0, yours was %d", static_cast<int>(first));
  if (first > last)
    Message::fatal(label, 0, "first instance %d must be <= last instance %d.", static_cast<int>(first),
                   static_cast<int>(last));
  return last;
}

void StoreDecoratorImp::myCheckList(char const* label, Attribute const& attribute,
                                    std::vector<unsigned int> const& instances, unsigned int n) {
  if (instances.empty()) return;
  if (std::find(instances.begin(), instances.end(), 0u) != instances.end())
    Message::fatal(label, 0, "Attribute '%s': the vInstanceList has a zero in it, coont read from instance 0.",
                   attribute.getName().c_str());
  unsigned int largest = *std::max_element(instances.begin(), instances.end());
  if (largest > n)
    Message::fatal(label, 0, "Instance numbers must be <%d, list for '%s' contained %d.", static_cast<int>(n) + 1,
                   attribute.getName().c_str(), static_cast<int>(largest));
}
