#include "decorator/AttributeSetDecorator.h"

#include "project/FullStoreName.h"
#include "project/Project.h"

AttributeSetDecorator::AttributeSetDecorator(vHandle<AttributeSet> const& set)
    : AttributeSet(set->getProject()), m_decoratedSet(set) {}

AttributeSetDecorator::~AttributeSetDecorator() {}

// A set that never had a property has no list yet, and sharing nothing
// would leave the two apart at the first addition.
void AttributeSetDecorator::myShareProperties() {
  static_cast<AttributeSet const&>(*m_decoratedSet).beginProperty();
  setPropertyList(*m_decoratedSet);
}

void AttributeSetDecorator::addProperty(Property const& property) { m_decoratedSet->addProperty(property); }

bool AttributeSetDecorator::isOpen() const { return m_decoratedSet->isOpen(); }

void AttributeSetDecorator::create(vLCString const& name, vLCString const& className, vLCString const& subClass,
                                   KeyList const& keys, StoreCreationOptions const* options) {
  m_decoratedSet->create(name, className, subClass, keys, options);
  myShareProperties();
}

void AttributeSetDecorator::create(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
                                   KeyList const& keys, StoreCreationOptions const* options) {
  create(name.getStoreName(), className, subClass, keys, options);
}

void AttributeSetDecorator::open(vLCString const& name, int version, vLCString const& className,
                                 vLCString const& subClass, StoreOpenOptions const* options) {
  m_decoratedSet->open(name, version, className, subClass, options);
  myShareProperties();
}

void AttributeSetDecorator::open(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
                                 StoreOpenOptions const* options) {
  open(name.getStoreName(), name.getVersion(), className, subClass, options);
}

void AttributeSetDecorator::update(vLCString const& name, int version, vLCString const& className,
                                   vLCString const& subClass, StoreOpenOptions const* options) {
  m_decoratedSet->update(name, version, className, subClass, options);
  myShareProperties();
}

void AttributeSetDecorator::update(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
                                   StoreOpenOptions const* options) {
  update(name.getStoreName(), name.getVersion(), className, subClass, options);
}

unsigned int AttributeSetDecorator::getNInstances() const { return m_decoratedSet->getNInstances(); }

vLCString AttributeSetDecorator::getClass() const { return m_decoratedSet->getClass(); }

vLCString AttributeSetDecorator::getSubClass() const { return m_decoratedSet->getSubClass(); }

vLCString AttributeSetDecorator::getName() const { return m_decoratedSet->getName(); }

int AttributeSetDecorator::getVersion() const { return m_decoratedSet->getVersion(); }

void AttributeSetDecorator::close() { m_decoratedSet->close(); }

KeyList AttributeSetDecorator::getKeyList() const { return m_decoratedSet->getKeyList(); }

void AttributeSetDecorator::getKeyList(KeyList& keys) const { m_decoratedSet->getKeyList(keys); }

void AttributeSetDecorator::addInstances(unsigned int count) { m_decoratedSet->addInstances(count); }

void AttributeSetDecorator::write(Attribute const& attribute, unsigned int first, unsigned int last) {
  m_decoratedSet->write(attribute, first, last);
}

void AttributeSetDecorator::write(Attribute const& attribute, std::vector<unsigned int> const& instances) {
  m_decoratedSet->write(attribute, instances);
}

void AttributeSetDecorator::write(Attribute const& attribute, Attribute const& key, unsigned int firstGroup,
                                  unsigned int lastGroup) {
  m_decoratedSet->write(attribute, key, firstGroup, lastGroup);
}

void AttributeSetDecorator::write(Attribute const& attribute, KeyList const& keys) {
  m_decoratedSet->write(attribute, keys);
}

void AttributeSetDecorator::addAttribute(Attribute const& attribute) { m_decoratedSet->addAttribute(attribute); }

void AttributeSetDecorator::getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const {
  m_decoratedSet->getUnique(attribute, order);
}

std::list<Attribute> AttributeSetDecorator::getAttributeList() const { return m_decoratedSet->getAttributeList(); }

void AttributeSetDecorator::getAttributeList(std::list<Attribute>& attributes) const {
  m_decoratedSet->getAttributeList(attributes);
}

std::list<Attribute> AttributeSetDecorator::getAttributeList(vUCString const& text,
                                                             AttributeMatch::AttributeMatchType match) const {
  return m_decoratedSet->getAttributeList(text, match);
}

void AttributeSetDecorator::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  m_decoratedSet->read(attribute, first, last);
}

void AttributeSetDecorator::read(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  m_decoratedSet->read(attribute, instances);
}

void AttributeSetDecorator::read(Attribute& attribute, Attribute const& key, unsigned int firstGroup,
                                 unsigned int lastGroup) const {
  m_decoratedSet->read(attribute, key, firstGroup, lastGroup);
}

void AttributeSetDecorator::read(Attribute& attribute, KeyList const& keys) const {
  m_decoratedSet->read(attribute, keys);
}

Attribute AttributeSetDecorator::getAttribute(vUCString const& name) const {
  return m_decoratedSet->getAttribute(name);
}

bool AttributeSetDecorator::hasAttribute(vUCString const& name) const { return m_decoratedSet->hasAttribute(name); }

void AttributeSetDecorator::setAttributeClass(vUCString const& name, vUCString const& className) {
  m_decoratedSet->setAttributeClass(name, className);
}

unsigned int AttributeSetDecorator::getNAttributes() const { return m_decoratedSet->getNAttributes(); }

void AttributeSetDecorator::getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                                              vUtlSort::SortOrder::SortOrderType order) const {
  m_decoratedSet->getGroupsAndSizes(attribute, sizes, order);
}

vHandle<Project> AttributeSetDecorator::getProject() const { return m_decoratedSet->getProject(); }
