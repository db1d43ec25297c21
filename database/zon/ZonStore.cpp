#include "database/zon/ZonStore.h"

#include "database/zon/ZonStoreKVS.h"

Capi::eDataConversion ZonStore::m_dataConversion = Capi::eDataTypeConversion;

ZonStore::ZonStore(vHandle<Project> const& project) : Store(project), m_imp(new ZonStoreKVS(project)) {}

ZonStore::~ZonStore() {}

Capi::eDataConversion ZonStore::getDataConversion() { return m_dataConversion; }

void ZonStore::setDataConversion(Capi::eDataConversion conversion) {
  m_dataConversion = conversion;
  ZonStoreKVS::setDataConversion(conversion);
}

void ZonStore::addProperty(Property const& property) {
  m_imp->addProperty(property);
}

void ZonStore::addProperties(PropertyI const& other) {
  m_imp->addProperties(other);
}

void ZonStore::removeProperty(vUCString const& name) {
  m_imp->removeProperty(name);
}

void ZonStore::removeProperty(iterator position) {
  m_imp->removeProperty(position);
}

ZonStore::iterator ZonStore::beginProperty() {
  return m_imp->beginProperty();
}

ZonStore::const_iterator ZonStore::beginProperty() const {
  return m_imp->beginProperty();
}

ZonStore::iterator ZonStore::endProperty() {
  return m_imp->endProperty();
}

ZonStore::const_iterator ZonStore::endProperty() const {
  return m_imp->endProperty();
}

ZonStore::iterator ZonStore::findProperty(Property const& property) {
  return m_imp->findProperty(property);
}

ZonStore::const_iterator ZonStore::findProperty(Property const& property) const {
  return m_imp->findProperty(property);
}

ZonStore::iterator ZonStore::findProperty(vUCString const& name) {
  return m_imp->findProperty(name);
}

ZonStore::const_iterator ZonStore::findProperty(vUCString const& name) const {
  return m_imp->findProperty(name);
}

void ZonStore::clearProperties() {
  m_imp->clearProperties();
}

unsigned int ZonStore::getNProperties() const {
  return m_imp->getNProperties();
}

bool ZonStore::hasProperty(Property const& property) const {
  return m_imp->hasProperty(property);
}

bool ZonStore::hasProperty(vUCString const& name) const {
  return m_imp->hasProperty(name);
}

bool ZonStore::hasProperty(vUCString const& name) {
  return m_imp->hasProperty(name);
}

bool ZonStore::hasProperty(Property const& property) {
  return m_imp->hasProperty(property);
}

void ZonStore::setPropertyList(PropertyI const& other) {
  m_imp->setPropertyList(other);
}

bool ZonStore::isSet() const {
  return m_imp->isSet();
}

void ZonStore::packProperties(Packer& packer) const {
  m_imp->packProperties(packer);
}

void ZonStore::unpackProperties(Packer& packer) {
  m_imp->unpackProperties(packer);
}

bool ZonStore::isOpen() const {
  return m_imp->isOpen();
}

void ZonStore::create(vLCString const& name, vLCString const& className, vLCString const& subClass, KeyList const& keys, StoreCreationOptions const* options) {
  m_imp->create(name, className, subClass, keys, options);
}

void ZonStore::create(FullStoreName const& name, vLCString const& className, vLCString const& subClass, KeyList const& keys, StoreCreationOptions const* options) {
  m_imp->create(name, className, subClass, keys, options);
}

void ZonStore::open(vLCString const& name, int version, vLCString const& className, vLCString const& subClass, StoreOpenOptions const* options) {
  m_imp->open(name, version, className, subClass, options);
}

void ZonStore::open(FullStoreName const& name, vLCString const& className, vLCString const& subClass, StoreOpenOptions const* options) {
  m_imp->open(name, className, subClass, options);
}

void ZonStore::update(vLCString const& name, int version, vLCString const& className, vLCString const& subClass, StoreOpenOptions const* options) {
  m_imp->update(name, version, className, subClass, options);
}

void ZonStore::update(FullStoreName const& name, vLCString const& className, vLCString const& subClass, StoreOpenOptions const* options) {
  m_imp->update(name, className, subClass, options);
}

unsigned int ZonStore::getNInstances() const {
  return m_imp->getNInstances();
}

vLCString ZonStore::getClass() const {
  return m_imp->getClass();
}

vLCString ZonStore::getSubClass() const {
  return m_imp->getSubClass();
}

vLCString ZonStore::getName() const {
  return m_imp->getName();
}

int ZonStore::getVersion() const {
  return m_imp->getVersion();
}

void ZonStore::close() {
  m_imp->close();
}

KeyList ZonStore::getKeyList() const {
  return m_imp->getKeyList();
}

void ZonStore::getKeyList(KeyList& keys) const {
  m_imp->getKeyList(keys);
}

void ZonStore::addInstances(unsigned int count) {
  m_imp->addInstances(count);
}

void ZonStore::write(Attribute const& attribute, unsigned int first, unsigned int last) {
  m_imp->write(attribute, first, last);
}

void ZonStore::write(Attribute const& attribute, std::vector<unsigned int> const& instances) {
  m_imp->write(attribute, instances);
}

void ZonStore::write(Attribute const& attribute, Attribute const& key, unsigned int firstGroup, unsigned int lastGroup) {
  m_imp->write(attribute, key, firstGroup, lastGroup);
}

void ZonStore::write(Attribute const& attribute, KeyList const& keys) {
  m_imp->write(attribute, keys);
}

void ZonStore::addAttribute(Attribute const& attribute) {
  m_imp->addAttribute(attribute);
}

void ZonStore::getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const {
  m_imp->getUnique(attribute, order);
}

std::list<Attribute> ZonStore::getAttributeList() const {
  return m_imp->getAttributeList();
}

void ZonStore::getAttributeList(std::list<Attribute>& attributes) const {
  m_imp->getAttributeList(attributes);
}

std::list<Attribute> ZonStore::getAttributeList(vUCString const& text, AttributeMatch::AttributeMatchType match) const {
  return m_imp->getAttributeList(text, match);
}

void ZonStore::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  m_imp->read(attribute, first, last);
}

void ZonStore::read(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  m_imp->read(attribute, instances);
}

void ZonStore::read(Attribute& attribute, Attribute const& key, unsigned int firstGroup, unsigned int lastGroup) const {
  m_imp->read(attribute, key, firstGroup, lastGroup);
}

void ZonStore::read(Attribute& attribute, KeyList const& keys) const {
  m_imp->read(attribute, keys);
}

Attribute ZonStore::getAttribute(vUCString const& name) const {
  return m_imp->getAttribute(name);
}

bool ZonStore::hasAttribute(vUCString const& name) const {
  return m_imp->hasAttribute(name);
}

void ZonStore::setAttributeClass(vUCString const& name, vUCString const& className) {
  m_imp->setAttributeClass(name, className);
}

unsigned int ZonStore::getNAttributes() const {
  return m_imp->getNAttributes();
}

void ZonStore::getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes, vUtlSort::SortOrder::SortOrderType order) const {
  m_imp->getGroupsAndSizes(attribute, sizes, order);
}

vHandle<Project> ZonStore::getProject() const {
  return m_imp->getProject();
}

void ZonStore::readBufferRange(AttributeSetBuffer& buffer, unsigned int first, unsigned int last) const {
  m_imp->readBufferRange(buffer, first, last);
}

void ZonStore::createAttributeSet(vLCString const& name, KeyList const& keys) {
  m_imp->createAttributeSet(name, keys);
}

void ZonStore::openAttributeSet(vLCString const& name) {
  m_imp->openAttributeSet(name);
}

void ZonStore::updateAttributeSet(vLCString const& name) {
  m_imp->updateAttributeSet(name);
}

void ZonStore::flush() {
  m_imp->flush();
}

vHandle<Store::AttributeSetList> ZonStore::getAttributeSetList() const {
  return m_imp->getAttributeSetList();
}

void ZonStore::getAttributeSetList(AttributeSetList& names) const {
  m_imp->getAttributeSetList(names);
}

vLCString ZonStore::getAttributeSetName() const {
  return m_imp->getAttributeSetName();
}

vLCString ZonStore::getPrimaryAttributeSetName() const {
  return m_imp->getPrimaryAttributeSetName();
}

bool ZonStore::operator==(Store const& other) const {
  return *m_imp == other;
}

bool ZonStore::operator!=(Store const& other) const {
  return *m_imp != other;
}

Store& ZonStore::operator=(PropertyI const& properties) {
  *m_imp = properties;
  return *this;
}
