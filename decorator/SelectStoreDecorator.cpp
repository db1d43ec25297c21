#include "decorator/SelectStoreDecorator.h"

#include "foundation/Message.h"

namespace {
char const* const kNotWritten = "Has not been written yet.";
}

SelectStoreDecorator::SelectStoreDecorator(vHandle<Store> const& store,
                                           vHandle<SelectOperatorCollection> const& collection)
    : StoreDecoratorImp(store), m_collection(collection), m_isSetup(false), m_debug(false) {}

SelectStoreDecorator::~SelectStoreDecorator() {}

void SelectStoreDecorator::addOperator(vHandle<SelectOperatorBase> const& op) {
  m_collection->addOperator(op);
  m_isSetup = false;
  myInstancesChanged();
}

void SelectStoreDecorator::setSelection(vHandle<SelectOperatorCollection> const& collection) {
  m_collection = collection;
  m_isSetup = false;
  myInstancesChanged();
}

void SelectStoreDecorator::setDebugMode(bool debug) {
  m_debug = debug;
  m_collection->setDebugMode(debug);
}

void SelectStoreDecorator::mySetup() const {
  if (m_isSetup) return;
  m_selected = m_collection->doSelection(m_decoratedStore);
  m_isSetup = true;
}

std::vector<unsigned int> SelectStoreDecorator::getCurrentSelection() const {
  mySetup();
  return m_selected;
}

unsigned int SelectStoreDecorator::getNInstances() const {
  mySetup();
  return static_cast<unsigned int>(m_selected.size());
}

void SelectStoreDecorator::addInstances(unsigned int) {
  Message::fatal("SelectStoreDecorator::addInstances", 0, "%s", kNotWritten);
}

void SelectStoreDecorator::write(Attribute const&, unsigned int, unsigned int) {
  Message::fatal("SelectStoreDecorator::write(range)", 0, "%s", kNotWritten);
}

void SelectStoreDecorator::write(Attribute const&, std::vector<unsigned int> const&) {
  Message::fatal("SelectStoreDecorator::write(list)", 0, "%s", kNotWritten);
}

void SelectStoreDecorator::write(Attribute const&, Attribute const&, unsigned int, unsigned int) {
  Message::fatal("SelectStoreDecorator::write(groups)", 0, "%s", kNotWritten);
}

void SelectStoreDecorator::write(Attribute const&, KeyList const&) {
  Message::fatal("SelectStoreDecorator::write(keys)", 0, "%s", kNotWritten);
}

void SelectStoreDecorator::addAttribute(Attribute const&) {
  Message::fatal("SelectStoreDecorator::addAttribute", 0, "%s", kNotWritten);
}

Store& SelectStoreDecorator::operator=(PropertyI const& properties) {
  StoreDecoratorImp::operator=(properties);
  return *this;
}

void SelectStoreDecorator::doReadList(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  mySetup();
  // Numbers outside the view would index past the selection.
  myCheckList("SelectStoreDecorator::read", attribute, instances, static_cast<unsigned int>(m_selected.size()));
  attribute.resize(static_cast<unsigned int>(instances.size()));
  std::vector<unsigned int> mapped;
  mapped.reserve(instances.size());
  for (unsigned int k : instances) mapped.push_back(m_selected[k - 1]);
  m_decoratedStore->read(attribute, mapped);
}

void SelectStoreDecorator::doReadRange(Attribute& attribute, unsigned int first, unsigned int last) const {
  char const* label = "SelectStoreDecorator::read";
  mySetup();
  unsigned int const s = static_cast<unsigned int>(m_selected.size());
  last = myCheckFirstLast(label, first, last, s);
  if (s < first || s < last)
    Message::fatal(label, 0, "Instance out of range first %d last %d (size %d)", static_cast<int>(first),
                   static_cast<int>(last), static_cast<int>(s));
  if (last - first + 1 == s) {
    m_decoratedStore->read(attribute, m_selected);
    return;
  }
  std::vector<unsigned int> part(m_selected.begin() + (first - 1), m_selected.begin() + last);
  m_decoratedStore->read(attribute, part);
}
