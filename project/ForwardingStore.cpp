#include "project/ForwardingStore.h"

#include "project/Project.h"

ForwardingStore::ForwardingStore(vHandle<Project> const& project) : Store(project) {}

ForwardingStore::~ForwardingStore() {}

// --- PropertyI ------------------------------------------------------------------------

void ForwardingStore::addProperty(Property const& property) { forwardTarget().addProperty(property); }

void ForwardingStore::addProperties(PropertyI const& other) { forwardTarget().addProperties(other); }

void ForwardingStore::removeProperty(vUCString const& name) { forwardTarget().removeProperty(name); }

void ForwardingStore::removeProperty(iterator position) { forwardTarget().removeProperty(position); }

PropertyI::iterator ForwardingStore::beginProperty() { return forwardTarget().beginProperty(); }

PropertyI::const_iterator ForwardingStore::beginProperty() const {
  return static_cast<Store const&>(forwardTarget()).beginProperty();
}

PropertyI::iterator ForwardingStore::endProperty() { return forwardTarget().endProperty(); }

PropertyI::const_iterator ForwardingStore::endProperty() const {
  return static_cast<Store const&>(forwardTarget()).endProperty();
}

PropertyI::iterator ForwardingStore::findProperty(Property const& property) {
  return forwardTarget().findProperty(property);
}

PropertyI::const_iterator ForwardingStore::findProperty(Property const& property) const {
  return static_cast<Store const&>(forwardTarget()).findProperty(property);
}

PropertyI::iterator ForwardingStore::findProperty(vUCString const& name) { return forwardTarget().findProperty(name); }

PropertyI::const_iterator ForwardingStore::findProperty(vUCString const& name) const {
  return static_cast<Store const&>(forwardTarget()).findProperty(name);
}

void ForwardingStore::clearProperties() { forwardTarget().clearProperties(); }

unsigned int ForwardingStore::getNProperties() const { return forwardTarget().getNProperties(); }

bool ForwardingStore::hasProperty(Property const& property) const {
  return static_cast<Store const&>(forwardTarget()).hasProperty(property);
}

bool ForwardingStore::hasProperty(vUCString const& name) const {
  return static_cast<Store const&>(forwardTarget()).hasProperty(name);
}

void ForwardingStore::setPropertyList(PropertyI const& other) { forwardTarget().setPropertyList(other); }

// --- AttributeSet -----------------------------------------------------------------------

bool ForwardingStore::isOpen() const { return forwardTarget().isOpen(); }

void ForwardingStore::create(vLCString const& name, vLCString const& className, vLCString const& subClass,
                             KeyList const& keys, StoreCreationOptions const* options) {
  forwardTarget().create(name, className, subClass, keys, options);
}

void ForwardingStore::create(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
                             KeyList const& keys, StoreCreationOptions const* options) {
  forwardTarget().create(name, className, subClass, keys, options);
}

void ForwardingStore::open(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
                           StoreOpenOptions const* options) {
  forwardTarget().open(name, version, className, subClass, options);
}

void ForwardingStore::open(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
                           StoreOpenOptions const* options) {
  forwardTarget().open(name, className, subClass, options);
}

void ForwardingStore::update(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
                             StoreOpenOptions const* options) {
  forwardTarget().update(name, version, className, subClass, options);
}

void ForwardingStore::update(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
                             StoreOpenOptions const* options) {
  forwardTarget().update(name, className, subClass, options);
}

unsigned int ForwardingStore::getNInstances() const { return forwardTarget().getNInstances(); }

vLCString ForwardingStore::getClass() const { return forwardTarget().getClass(); }

vLCString ForwardingStore::getSubClass() const { return forwardTarget().getSubClass(); }

vLCString ForwardingStore::getName() const { return forwardTarget().getName(); }

int ForwardingStore::getVersion() const { return forwardTarget().getVersion(); }

void ForwardingStore::close() { forwardTarget().close(); }

KeyList ForwardingStore::getKeyList() const { return forwardTarget().getKeyList(); }

void ForwardingStore::getKeyList(KeyList& keys) const { forwardTarget().getKeyList(keys); }

void ForwardingStore::addInstances(unsigned int count) { forwardTarget().addInstances(count); }

void ForwardingStore::write(Attribute const& attribute, unsigned int first, unsigned int last) {
  forwardTarget().write(attribute, first, last);
}

void ForwardingStore::write(Attribute const& attribute, std::vector<unsigned int> const& instances) {
  forwardTarget().write(attribute, instances);
}

void ForwardingStore::write(Attribute const& attribute, Attribute const& key, unsigned int firstGroup,
                            unsigned int lastGroup) {
  forwardTarget().write(attribute, key, firstGroup, lastGroup);
}

void ForwardingStore::write(Attribute const& attribute, KeyList const& keys) { forwardTarget().write(attribute, keys); }

void ForwardingStore::addAttribute(Attribute const& attribute) { forwardTarget().addAttribute(attribute); }

void ForwardingStore::getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const {
  forwardTarget().getUnique(attribute, order);
}

std::list<Attribute> ForwardingStore::getAttributeList() const { return forwardTarget().getAttributeList(); }

void ForwardingStore::getAttributeList(std::list<Attribute>& attributes) const {
  forwardTarget().getAttributeList(attributes);
}

std::list<Attribute> ForwardingStore::getAttributeList(vUCString const& text,
                                                       AttributeMatch::AttributeMatchType match) const {
  return forwardTarget().getAttributeList(text, match);
}

void ForwardingStore::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  forwardTarget().read(attribute, first, last);
}

void ForwardingStore::read(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  forwardTarget().read(attribute, instances);
}

void ForwardingStore::read(Attribute& attribute, Attribute const& key, unsigned int firstGroup,
                           unsigned int lastGroup) const {
  forwardTarget().read(attribute, key, firstGroup, lastGroup);
}

void ForwardingStore::read(Attribute& attribute, KeyList const& keys) const { forwardTarget().read(attribute, keys); }

Attribute ForwardingStore::getAttribute(vUCString const& name) const { return forwardTarget().getAttribute(name); }

bool ForwardingStore::hasAttribute(vUCString const& name) const { return forwardTarget().hasAttribute(name); }

void ForwardingStore::setAttributeClass(vUCString const& name, vUCString const& className) {
  forwardTarget().setAttributeClass(name, className);
}

unsigned int ForwardingStore::getNAttributes() const { return forwardTarget().getNAttributes(); }

void ForwardingStore::getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                                        vUtlSort::SortOrder::SortOrderType order) const {
  forwardTarget().getGroupsAndSizes(attribute, sizes, order);
}

vHandle<Project> ForwardingStore::getProject() const { return forwardTarget().getProject(); }

// --- Store -------------------------------------------------------------------------------

void ForwardingStore::createAttributeSet(vLCString const& name, KeyList const& keys) {
  forwardTarget().createAttributeSet(name, keys);
}

void ForwardingStore::openAttributeSet(vLCString const& name) { forwardTarget().openAttributeSet(name); }

void ForwardingStore::updateAttributeSet(vLCString const& name) { forwardTarget().updateAttributeSet(name); }

vHandle<Store::AttributeSetList> ForwardingStore::getAttributeSetList() const {
  return forwardTarget().getAttributeSetList();
}

void ForwardingStore::getAttributeSetList(AttributeSetList& names) const { forwardTarget().getAttributeSetList(names); }

vLCString ForwardingStore::getAttributeSetName() const { return forwardTarget().getAttributeSetName(); }

vLCString ForwardingStore::getPrimaryAttributeSetName() const { return forwardTarget().getPrimaryAttributeSetName(); }

bool ForwardingStore::operator==(Store const& other) const { return forwardTarget() == other; }

bool ForwardingStore::operator!=(Store const& other) const { return forwardTarget() != other; }

Store& ForwardingStore::operator=(PropertyI const& properties) {
  forwardTarget() = properties;
  return *this;
}

bool ForwardingStore::hasProperty(vUCString const& name) { return forwardTarget().hasProperty(name); }

bool ForwardingStore::hasProperty(Property const& property) { return forwardTarget().hasProperty(property); }
