#include "decorator/AttributeSelectDecorator.h"

#include "foundation/Message.h"

AttributeSelectDecorator::AttributeSelectDecorator(vHandle<Store> const& store)
    : StoreDecorator(store), m_isDefault(true) {
  m_decoratedStore->getAttributeList(m_parent);
  m_decoratedStore->getAttributeList(m_selected);
  init();
}

AttributeSelectDecorator::~AttributeSelectDecorator() {}

void AttributeSelectDecorator::init() {
  vHandle<AttributeSetList> sets = m_decoratedStore->getAttributeSetList();
  if (!sets.isEmpty() && sets->size() > 1)
    Message::fatal("AttributeSelectDecorator::init", 0,
                   "AttributeSelectDecorator does not (yet) support stores with multiple attribute sets.");
}

Attribute const* AttributeSelectDecorator::myFindParent(vUCString const& name) const {
  for (Attribute const& attribute : m_parent)
    if (attribute.getName() == name) return &attribute;
  return nullptr;
}

void AttributeSelectDecorator::selectAttribute(vUCString const& name) {
  if (m_isDefault) {
    m_selected.clear();
    m_isDefault = false;
  }
  Attribute const* parent = myFindParent(name);
  if (parent == nullptr)
    Message::fatal("AttributeSelectDecorator::selectAttribute", 0, "Attribute %s does not exist in parent store.",
                   name.c_str());
  m_selected.push_back(*parent);
}

void AttributeSelectDecorator::selectAttributes(std::vector<vUCString> const& names) {
  for (vUCString const& name : names) selectAttribute(name);
}

std::list<Attribute> AttributeSelectDecorator::getAttributeList() const { return m_selected; }

void AttributeSelectDecorator::getAttributeList(std::list<Attribute>& attributes) const { attributes = m_selected; }

std::list<Attribute> AttributeSelectDecorator::getAttributeList(vUCString const& classPattern,
                                                                AttributeMatch::AttributeMatchType match) const {
  std::list<Attribute> list;
  for (Attribute const& attribute : m_selected)
    if (attribute.getClass() == classPattern ||
        (match == AttributeMatch::MATCH_OR_BLANK_CLASS && attribute.getClass().isBlank()))
      list.push_back(attribute);
  return list;
}

Attribute AttributeSelectDecorator::getAttribute(vUCString const& name) const {
  Attribute const* parent = myFindParent(name);
  if (parent == nullptr)
    Message::fatal("AttributeSelectDecorator::getAttribute", 0, "Attribute %s does not exist in parent store.",
                   name.c_str());
  return *parent;
}

bool AttributeSelectDecorator::hasAttribute(vUCString const& name) const {
  for (Attribute const& attribute : m_selected)
    if (attribute.getName() == name) return true;
  return false;
}

Store& AttributeSelectDecorator::operator=(PropertyI const& properties) {
  StoreDecorator::operator=(properties);
  return *this;
}
