#include "decorator/InfillStoreDecorator.h"

#include <cstring>
#include <numeric>

#include "attribute/KeyList.h"
#include "foundation/Message.h"
#include "foundation/vUtl.h"

namespace {
[[noreturn]] void refuse(char const* label) { Message::fatal(label, 0, "Not implemented"); }
}  // namespace

InfillStoreDecorator::InfillStoreDecorator(vHandle<Store> const& store, bool padWithinGroup)
    : InfillStoreDecorator(store, padWithinGroup ? InfillAttributeSetIndexingTable::PadWithinGroup
                                                 : InfillAttributeSetIndexingTable::PadToCommonRange) {}

InfillStoreDecorator::InfillStoreDecorator(vHandle<Store> const& store,
                                           InfillAttributeSetIndexingTable::AttrPadType padType)
    : StoreDecoratorImp(store), m_infillTable(new InfillAttributeSetIndexingTable(*this, *store, padType)) {}

InfillStoreDecorator::~InfillStoreDecorator() {}

void InfillStoreDecorator::addKeyAttributes(vUCString const& primary, vUCString const& secondary) {
  m_infillTable->addKeyAttributes(primary, secondary);
  myInstancesChanged();
}

void InfillStoreDecorator::applyPaddingLimits(double minimum, double maximum, double increment) {
  m_infillTable->applyPaddingLimits(minimum, maximum, increment);
  myInstancesChanged();
}

void InfillStoreDecorator::getAttributePadLimits(double& minimum, double& maximum, double& increment) const {
  m_infillTable->getAttributePadLimits(minimum, maximum, increment);
}

InfillTemplate const& InfillStoreDecorator::myTemplate() const {
  if (!m_infillTable->hasKeyAttributes()) {
    KeyList const keys = m_decoratedStore->getKeyList();
    if (keys.getNKeys() < 2) Message::fatal("InfillStoreDecorator::myTemplate", 0, "Store must have at least two keys");
    m_infillTable->addKeyAttributes(keys.begin()->getName(), (keys.begin() + 1)->getName());
  }
  return m_infillTable->getTemplate();
}

unsigned int InfillStoreDecorator::getNInstances() const { return myTemplate().getNInstances(); }

void InfillStoreDecorator::doTranslateInstList(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  InfillTemplate const& grid = myTemplate();
  unsigned int const n = grid.getNInstances();
  myCheckList("InfillStoreDecorator::read(list)", attribute, instances, n);
  bool const primary = attribute.getName() == m_infillTable->getPrimaryKey();
  bool const secondary = attribute.getName() == m_infillTable->getSecondaryKey();
  if ((primary || secondary) && !vUtl::dataTypeIsAttributeNumber(attribute.getDataType()))
    Message::fatal("InfillStoreDecorator::doTranslateInstList", 0, "Can't handle the attribute's data type %s ",
                   vUtl::dataTypeName(attribute.getDataType()).c_str());
  attribute.resize(static_cast<unsigned int>(instances.size()));
  // Invented instances stay zero, or empty for texts, which are objects.
  bool const texts = attribute.getDataType() == vSTRING;
  int const length = attribute.getLength();
  if (texts) {
    for (std::size_t i = 1; i <= instances.size(); ++i)
      for (int k = 0; k < length; ++k) attribute.getStringPointer(static_cast<unsigned int>(i))[k] = vString();
  } else if (!instances.empty()) {
    std::memset(attribute.getPointer(1), 0, static_cast<std::size_t>(attribute.getTotalNBytes()));
  }
  unsigned int const below = m_decoratedStore->getNInstances();
  std::vector<unsigned int> real;
  std::vector<unsigned int> positions;
  for (std::size_t i = 0; i < instances.size(); ++i) {
    InfillTemplate::Entry const entry = grid.getEntry(instances[i]);
    unsigned int const at = static_cast<unsigned int>(i + 1);
    if (primary)
      attribute.setValue(at, entry.group);
    else if (secondary)
      attribute.setValue(at, entry.value);
    else if (entry.instance != 0) {
      if (entry.instance > below)
        Message::fatal("InfillStoreDecorator::doTranslateInstList", 0,
                       "Incorrect conversion from infilled instance                        number <%d> to relative "
                       "instance number <%d>",
                       static_cast<int>(instances[i]), static_cast<int>(entry.instance));
      real.push_back(entry.instance);
      positions.push_back(at);
    }
  }
  if (real.empty()) return;
  Attribute part(attribute);
  m_decoratedStore->read(part, real);
  if (part.getNInstances() != positions.size())
    Message::fatal("InfillStoreDecorator::doTranslateInstList", 0,
                   "Inconsistent sizes of translated instance <%d> list and                                     "
                   "mapped instance list <%d>",
                   static_cast<int>(part.getNInstances()), static_cast<int>(positions.size()));
  std::size_t const bytes = static_cast<std::size_t>(part.getNBytes());
  for (std::size_t i = 0; i < positions.size(); ++i) {
    unsigned int const from = static_cast<unsigned int>(i + 1);
    if (texts)
      for (int k = 0; k < length; ++k) attribute.getStringPointer(positions[i])[k] = part.getStringPointer(from)[k];
    else
      std::memcpy(attribute.getPointer(positions[i]), part.getPointer(from), bytes);
  }
}

void InfillStoreDecorator::doReadRange(Attribute& attribute, unsigned int first, unsigned int last) const {
  if (last == 0) last = getNInstances();
  if (first > last)
    Message::fatal("InfillStoreDecorator::doReadRange", 0,
                   "First instance value <%d>is greater than last instance value <%d>", static_cast<int>(first),
                   static_cast<int>(last));
  char const* const label = "InfillStoreDecorator::read(range)";
  unsigned int const n = getNInstances();
  last = myCheckFirstLast(label, first, last, n);
  if (last > n)
    Message::fatal(label, 0, "last instance %d must be <= number of instances %d.", static_cast<int>(last),
                   static_cast<int>(n));
  std::vector<unsigned int> instances(last - first + 1);
  std::iota(instances.begin(), instances.end(), first);
  doTranslateInstList(attribute, instances);
}

void InfillStoreDecorator::doReadList(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  doTranslateInstList(attribute, instances);
}

// The groups of the primary key come from the grid; other attributes are
// counted over the view's instances.
void InfillStoreDecorator::getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                                             vUtlSort::SortOrder::SortOrderType order) const {
  InfillTemplate const& grid = myTemplate();
  if (attribute.getName() != m_infillTable->getPrimaryKey()) {
    StoreDecoratorImp::getGroupsAndSizes(attribute, sizes, order);
    return;
  }
  if (attribute.getDataType() != vNOTYPE && !vUtl::dataTypeIsAttributeNumber(attribute.getDataType()))
    Message::fatal("InfillStoreDecorator::getGroupsAndSizes", 0, "Can't handle this Attribute data type %s",
                   vUtl::dataTypeName(attribute.getDataType()).c_str());
  std::vector<double> groups;
  grid.getGroupsAndSizes(groups, sizes);
  if (order == vUtlSort::SortOrder::DESCENDING) {
    std::reverse(groups.begin(), groups.end());
    std::reverse(sizes.begin(), sizes.end());
  }
  Attribute made = m_decoratedStore->getAttribute(attribute.getName());
  made.resize(static_cast<unsigned int>(groups.size()));
  for (std::size_t i = 0; i < groups.size(); ++i) made.setValue(static_cast<unsigned int>(i + 1), groups[i]);
  attribute.transferData(made);
}

void InfillStoreDecorator::getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const {
  std::vector<unsigned int> sizes;
  getGroupsAndSizes(attribute, sizes, order);
}

void InfillStoreDecorator::write(Attribute const&, unsigned int, unsigned int) {
  refuse("InfillStoreDecorator::write(const Attribute&,vInstance,vInstance)");
}
void InfillStoreDecorator::write(Attribute const&, std::vector<unsigned int> const&) {
  refuse("InfillStoreDecorator::write(const Attribute&, const vInstanceList&)");
}
void InfillStoreDecorator::write(Attribute const&, Attribute const&, unsigned int, unsigned int) {
  refuse("InfillStoreDecorator::write(const Attribute&,const Attribute&,vInstance,vInstance)");
}
void InfillStoreDecorator::write(Attribute const&, KeyList const&) {
  refuse("InfillStoreDecorator::write(const Attribute&,const KeyList&)");
}
void InfillStoreDecorator::addAttribute(Attribute const&) { refuse("InfillStoreDecorator::addAttribute"); }
void InfillStoreDecorator::addInstances(unsigned int) { refuse("InfillStoreDecorator::addInstances"); }
