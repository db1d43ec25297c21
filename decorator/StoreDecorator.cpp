#include "decorator/StoreDecorator.h"

#include "project/Project.h"

StoreDecorator::StoreDecorator(vHandle<Store> const& store)
    : Store(store->getProject()), m_decoratedStore(store) {}

StoreDecorator::~StoreDecorator() {}

// --- PropertyI ------------------------------------------------------------------------

void StoreDecorator::addProperty(Property const& property) { m_decoratedStore->addProperty(property); }

void StoreDecorator::addProperties(PropertyI const& other) { m_decoratedStore->addProperties(other); }

void StoreDecorator::removeProperty(vUCString const& name) { m_decoratedStore->removeProperty(name); }

void StoreDecorator::removeProperty(iterator position) { m_decoratedStore->removeProperty(position); }

PropertyI::iterator StoreDecorator::beginProperty() { return m_decoratedStore->beginProperty(); }

PropertyI::const_iterator StoreDecorator::beginProperty() const {
  return static_cast<Store const&>(*m_decoratedStore).beginProperty();
}

PropertyI::iterator StoreDecorator::endProperty() { return m_decoratedStore->endProperty(); }

PropertyI::const_iterator StoreDecorator::endProperty() const {
  return static_cast<Store const&>(*m_decoratedStore).endProperty();
}

PropertyI::iterator StoreDecorator::findProperty(Property const& property) {
  return m_decoratedStore->findProperty(property);
}

PropertyI::const_iterator StoreDecorator::findProperty(Property const& property) const {
  return static_cast<Store const&>(*m_decoratedStore).findProperty(property);
}

PropertyI::iterator StoreDecorator::findProperty(vUCString const& name) { return m_decoratedStore->findProperty(name); }

PropertyI::const_iterator StoreDecorator::findProperty(vUCString const& name) const {
  return static_cast<Store const&>(*m_decoratedStore).findProperty(name);
}

void StoreDecorator::clearProperties() { m_decoratedStore->clearProperties(); }

unsigned int StoreDecorator::getNProperties() const { return m_decoratedStore->getNProperties(); }

bool StoreDecorator::hasProperty(Property const& property) const {
  return static_cast<Store const&>(*m_decoratedStore).hasProperty(property);
}

bool StoreDecorator::hasProperty(vUCString const& name) const {
  return static_cast<Store const&>(*m_decoratedStore).hasProperty(name);
}

void StoreDecorator::setPropertyList(PropertyI const& other) { m_decoratedStore->setPropertyList(other); }

// --- AttributeSet -----------------------------------------------------------------------

bool StoreDecorator::isOpen() const { return m_decoratedStore->isOpen(); }

void StoreDecorator::create(vLCString const& name, vLCString const& className, vLCString const& subClass,
                            KeyList const& keys, StoreCreationOptions const* options) {
  m_decoratedStore->create(name, className, subClass, keys, options);
}

void StoreDecorator::create(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
                            KeyList const& keys, StoreCreationOptions const* options) {
  m_decoratedStore->create(name, className, subClass, keys, options);
}

void StoreDecorator::open(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
                          StoreOpenOptions const* options) {
  m_decoratedStore->open(name, version, className, subClass, options);
}

void StoreDecorator::open(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
                          StoreOpenOptions const* options) {
  m_decoratedStore->open(name, className, subClass, options);
}

void StoreDecorator::update(vLCString const& name, int version, vLCString const& className,
                            vLCString const& subClass, StoreOpenOptions const* options) {
  m_decoratedStore->update(name, version, className, subClass, options);
}

void StoreDecorator::update(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
                            StoreOpenOptions const* options) {
  m_decoratedStore->update(name, className, subClass, options);
}

unsigned int StoreDecorator::getNInstances() const { return m_decoratedStore->getNInstances(); }

vLCString StoreDecorator::getClass() const { return m_decoratedStore->getClass(); }

vLCString StoreDecorator::getSubClass() const { return m_decoratedStore->getSubClass(); }

vLCString StoreDecorator::getName() const { return m_decoratedStore->getName(); }

int StoreDecorator::getVersion() const { return m_decoratedStore->getVersion(); }

void StoreDecorator::close() { m_decoratedStore->close(); }

KeyList StoreDecorator::getKeyList() const { return m_decoratedStore->getKeyList(); }

void StoreDecorator::getKeyList(KeyList& keys) const { m_decoratedStore->getKeyList(keys); }

void StoreDecorator::addInstances(unsigned int count) { m_decoratedStore->addInstances(count); }

void StoreDecorator::write(Attribute const& attribute, unsigned int first, unsigned int last) {
  m_decoratedStore->write(attribute, first, last);
}

void StoreDecorator::write(Attribute const& attribute, std::vector<unsigned int> const& instances) {
  m_decoratedStore->write(attribute, instances);
}

void StoreDecorator::write(Attribute const& attribute, Attribute const& key, unsigned int firstGroup,
                           unsigned int lastGroup) {
  m_decoratedStore->write(attribute, key, firstGroup, lastGroup);
}

void StoreDecorator::write(Attribute const& attribute, KeyList const& keys) { m_decoratedStore->write(attribute, keys); }

void StoreDecorator::addAttribute(Attribute const& attribute) { m_decoratedStore->addAttribute(attribute); }

void StoreDecorator::getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const {
  m_decoratedStore->getUnique(attribute, order);
}

std::list<Attribute> StoreDecorator::getAttributeList() const { return m_decoratedStore->getAttributeList(); }

void StoreDecorator::getAttributeList(std::list<Attribute>& attributes) const {
  m_decoratedStore->getAttributeList(attributes);
}

std::list<Attribute> StoreDecorator::getAttributeList(vUCString const& text,
                                                      AttributeMatch::AttributeMatchType match) const {
  return m_decoratedStore->getAttributeList(text, match);
}

void StoreDecorator::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  m_decoratedStore->read(attribute, first, last);
}

void StoreDecorator::read(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  m_decoratedStore->read(attribute, instances);
}

void StoreDecorator::read(Attribute& attribute, Attribute const& key, unsigned int firstGroup,
                          unsigned int lastGroup) const {
  m_decoratedStore->read(attribute, key, firstGroup, lastGroup);
}

void StoreDecorator::read(Attribute& attribute, KeyList const& keys) const { m_decoratedStore->read(attribute, keys); }

Attribute StoreDecorator::getAttribute(vUCString const& name) const { return m_decoratedStore->getAttribute(name); }

bool StoreDecorator::hasAttribute(vUCString const& name) const { return m_decoratedStore->hasAttribute(name); }

void StoreDecorator::setAttributeClass(vUCString const& name, vUCString const& className) {
  m_decoratedStore->setAttributeClass(name, className);
}

unsigned int StoreDecorator::getNAttributes() const { return m_decoratedStore->getNAttributes(); }

void StoreDecorator::getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                                       vUtlSort::SortOrder::SortOrderType order) const {
  m_decoratedStore->getGroupsAndSizes(attribute, sizes, order);
}

vHandle<Project> StoreDecorator::getProject() const { return m_decoratedStore->getProject(); }

// --- Store -------------------------------------------------------------------------------

void StoreDecorator::createAttributeSet(vLCString const& name, KeyList const& keys) {
  m_decoratedStore->createAttributeSet(name, keys);
}

void StoreDecorator::openAttributeSet(vLCString const& name) { m_decoratedStore->openAttributeSet(name); }

void StoreDecorator::updateAttributeSet(vLCString const& name) { m_decoratedStore->updateAttributeSet(name); }

vHandle<Store::AttributeSetList> StoreDecorator::getAttributeSetList() const {
  return m_decoratedStore->getAttributeSetList();
}

void StoreDecorator::getAttributeSetList(AttributeSetList& names) const {
  m_decoratedStore->getAttributeSetList(names);
}

vLCString StoreDecorator::getAttributeSetName() const { return m_decoratedStore->getAttributeSetName(); }

vLCString StoreDecorator::getPrimaryAttributeSetName() const { return m_decoratedStore->getPrimaryAttributeSetName(); }

bool StoreDecorator::operator==(Store const& other) const { return *m_decoratedStore == other; }

bool StoreDecorator::operator!=(Store const& other) const { return *m_decoratedStore != other; }

Store& StoreDecorator::operator=(PropertyI const& properties) {
  *m_decoratedStore = properties;
  return *this;
}

bool StoreDecorator::hasProperty(vUCString const& name) { return m_decoratedStore->hasProperty(name); }

bool StoreDecorator::hasProperty(Property const& property) { return m_decoratedStore->hasProperty(property); }

// --- the store below ------------------------------------------------------------------------

vHandle<Store> StoreDecorator::releaseDecoratedStore() {
  vHandle<Store> released(m_decoratedStore);
  m_decoratedStore = vHandle<Store>();
  return released;
}

vHandle<Store> StoreDecorator::getDecoratedStore() const { return m_decoratedStore; }

void StoreDecorator::setDecoratedStore(vHandle<Store> store) {
  if (!store.isEmpty() && store == m_decoratedStore) return;
  m_decoratedStore = store;
}
