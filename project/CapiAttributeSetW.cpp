#include "project/CapiAttributeSetW.h"

#include "foundation/Message.h"
#include "project/CapiMaker.h"
#include "project/FullStoreName.h"
#include "project/JITProjectDecorator.h"
#include "project/Project.h"

// --- CapiMaker::attributeSet -------------------------------------------------

namespace {

CapiMaker::AttributeSetMaker& attributeSetMaker() {
  static CapiMaker::AttributeSetMaker maker = nullptr;
  return maker;
}

}  // namespace

CapiMaker::AttributeSetMaker CapiMaker::registerAttributeSetMaker(AttributeSetMaker maker) {
  AttributeSetMaker previous = attributeSetMaker();
  attributeSetMaker() = maker;
  return previous;
}

vHandle<AttributeSet> CapiMaker::attributeSet(vHandle<Project> const& project, vLCString const& storeClass,
                                              vLCString const& subClass) {
  AttributeSetMaker maker = attributeSetMaker();
  if (maker == nullptr)
    Message::fatal("CapiMaker::attributeSet", 0,
                   "Class ZonStore is not available: no maker is registered for it (see registerRondoClasses).");
  vHandle<Project> real = project;
  if (JITProjectDecorator* deferred = dynamic_cast<JITProjectDecorator*>(project.pointer())) {
    deferred->makeSureIsOpen();
    real = deferred->getDecoratedProject();
  }
  return maker(real, storeClass, subClass);
}

// --- CapiAttributeSetW ----------------------------------------------------------

CapiAttributeSetW::CapiAttributeSetW(vHandle<Project> const& project) : AttributeSet(project) {}

CapiAttributeSetW::~CapiAttributeSetW() {}

void CapiAttributeSetW::myMustHaveAttributeSet(char const* method) const {
  if (m_set.isEmpty()) Message::fatal(method, 0, "The AttributeSet has not been opened yet.");
}

void CapiAttributeSetW::myDetermineRealClass(vLCString const& name, int version, vLCString& className,
                                             vLCString& subClass) const {
  if (!className.isBlank() && !subClass.isBlank()) return;
  StoreDetails details = m_project->getStoreDetails(name, version);
  if (className.isBlank()) className = details.getClass();
  if (subClass.isBlank()) subClass = details.getSubClass();
}

void CapiAttributeSetW::myMakeAttributeSet(vLCString const& className, vLCString const& subClass) {
  // An open set stays, so that it raises its own complaint about a second
  // open.
  if (!m_set.isEmpty() && m_set->isOpen()) return;
  m_set = CapiMaker::attributeSet(m_project, className, subClass);
}

bool CapiAttributeSetW::isOpen() const { return !m_set.isEmpty() && m_set->isOpen(); }

void CapiAttributeSetW::create(vLCString const& name, vLCString const& className, vLCString const& subClass,
                               KeyList const& keys, StoreCreationOptions const* options) {
  myMakeAttributeSet(className, subClass);
  m_set->create(name, className, subClass, keys, options);
}

void CapiAttributeSetW::create(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
                               KeyList const& keys, StoreCreationOptions const* options) {
  create(name.getStoreName(), className, subClass, keys, options);
}

void CapiAttributeSetW::open(vLCString const& name, int version, vLCString const& className,
                             vLCString const& subClass, StoreOpenOptions const* options) {
  vLCString realClass(className);
  vLCString realSubClass(subClass);
  myDetermineRealClass(name, version, realClass, realSubClass);
  myMakeAttributeSet(realClass, realSubClass);
  m_set->open(name, version, realClass, realSubClass, options);
}

void CapiAttributeSetW::open(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
                             StoreOpenOptions const* options) {
  open(name.getStoreName(), name.getVersion(), className, subClass, options);
}

void CapiAttributeSetW::update(vLCString const& name, int version, vLCString const& className,
                               vLCString const& subClass, StoreOpenOptions const* options) {
  vLCString realClass(className);
  vLCString realSubClass(subClass);
  myDetermineRealClass(name, version, realClass, realSubClass);
  myMakeAttributeSet(realClass, realSubClass);
  m_set->update(name, version, realClass, realSubClass, options);
}

void CapiAttributeSetW::update(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
                               StoreOpenOptions const* options) {
  update(name.getStoreName(), name.getVersion(), className, subClass, options);
}

void CapiAttributeSetW::close() {
  myMustHaveAttributeSet("CapiAttributeSetW::close");
  vHandle<AttributeSet> set = m_set;
  m_set = vHandle<AttributeSet>();
  set->close();
}

unsigned int CapiAttributeSetW::getNInstances() const {
  myMustHaveAttributeSet("CapiAttributeSetW::getNInstances");
  return m_set->getNInstances();
}

vLCString CapiAttributeSetW::getClass() const {
  myMustHaveAttributeSet("CapiAttributeSetW::getClass");
  return m_set->getClass();
}

vLCString CapiAttributeSetW::getSubClass() const {
  myMustHaveAttributeSet("CapiAttributeSetW::getSubClass");
  return m_set->getSubClass();
}

vLCString CapiAttributeSetW::getName() const {
  myMustHaveAttributeSet("CapiAttributeSetW::getName");
  return m_set->getName();
}

int CapiAttributeSetW::getVersion() const {
  myMustHaveAttributeSet("CapiAttributeSetW::getVersion");
  return m_set->getVersion();
}

KeyList CapiAttributeSetW::getKeyList() const {
  myMustHaveAttributeSet("CapiAttributeSetW::getKeyList");
  return m_set->getKeyList();
}

void CapiAttributeSetW::getKeyList(KeyList& keys) const {
  myMustHaveAttributeSet("CapiAttributeSetW::getKeyList");
  m_set->getKeyList(keys);
}

void CapiAttributeSetW::addInstances(unsigned int count) {
  myMustHaveAttributeSet("CapiAttributeSetW::addInstances");
  m_set->addInstances(count);
}

void CapiAttributeSetW::write(Attribute const& attribute, unsigned int first, unsigned int last) {
  myMustHaveAttributeSet("CapiAttributeSetW::write(range)");
  m_set->write(attribute, first, last);
}

void CapiAttributeSetW::write(Attribute const& attribute, std::vector<unsigned int> const& instances) {
  myMustHaveAttributeSet("CapiAttributeSetW::write(list)");
  m_set->write(attribute, instances);
}

void CapiAttributeSetW::write(Attribute const& attribute, Attribute const& key, unsigned int firstGroup,
                              unsigned int lastGroup) {
  myMustHaveAttributeSet("CapiAttributeSetW::write(groups)");
  m_set->write(attribute, key, firstGroup, lastGroup);
}

void CapiAttributeSetW::write(Attribute const& attribute, KeyList const& keys) {
  myMustHaveAttributeSet("CapiAttributeSetW::write(keys)");
  m_set->write(attribute, keys);
}

void CapiAttributeSetW::addAttribute(Attribute const& attribute) {
  myMustHaveAttributeSet("CapiAttributeSetW::addAttribute");
  m_set->addAttribute(attribute);
}

void CapiAttributeSetW::getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const {
  myMustHaveAttributeSet("CapiAttributeSetW::getUnique");
  m_set->getUnique(attribute, order);
}

std::list<Attribute> CapiAttributeSetW::getAttributeList() const {
  myMustHaveAttributeSet("CapiAttributeSetW::getAttributeList");
  return m_set->getAttributeList();
}

void CapiAttributeSetW::getAttributeList(std::list<Attribute>& attributes) const {
  myMustHaveAttributeSet("CapiAttributeSetW::getAttributeList");
  m_set->getAttributeList(attributes);
}

std::list<Attribute> CapiAttributeSetW::getAttributeList(vUCString const& text,
                                                         AttributeMatch::AttributeMatchType match) const {
  myMustHaveAttributeSet("CapiAttributeSetW::getAttributeList");
  return m_set->getAttributeList(text, match);
}

void CapiAttributeSetW::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  myMustHaveAttributeSet("CapiAttributeSetW::read(range)");
  m_set->read(attribute, first, last);
}

void CapiAttributeSetW::read(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  myMustHaveAttributeSet("CapiAttributeSetW::read(list)");
  m_set->read(attribute, instances);
}

void CapiAttributeSetW::read(Attribute& attribute, Attribute const& key, unsigned int firstGroup,
                             unsigned int lastGroup) const {
  myMustHaveAttributeSet("CapiAttributeSetW::read(groups)");
  m_set->read(attribute, key, firstGroup, lastGroup);
}

void CapiAttributeSetW::read(Attribute& attribute, KeyList const& keys) const {
  myMustHaveAttributeSet("CapiAttributeSetW::read(keys)");
  m_set->read(attribute, keys);
}

Attribute CapiAttributeSetW::getAttribute(vUCString const& name) const {
  myMustHaveAttributeSet("CapiAttributeSetW::getAttribute");
  return m_set->getAttribute(name);
}

bool CapiAttributeSetW::hasAttribute(vUCString const& name) const {
  myMustHaveAttributeSet("CapiAttributeSetW::hasAttribute");
  return m_set->hasAttribute(name);
}

void CapiAttributeSetW::setAttributeClass(vUCString const& name, vUCString const& className) {
  myMustHaveAttributeSet("CapiAttributeSetW::setAttributeClass");
  m_set->setAttributeClass(name, className);
}

unsigned int CapiAttributeSetW::getNAttributes() const {
  myMustHaveAttributeSet("CapiAttributeSetW::getNAttributes");
  return m_set->getNAttributes();
}

void CapiAttributeSetW::getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                                          vUtlSort::SortOrder::SortOrderType order) const {
  myMustHaveAttributeSet("CapiAttributeSetW::getGroupsAndSizes");
  m_set->getGroupsAndSizes(attribute, sizes, order);
}

vHandle<Project> CapiAttributeSetW::getProject() const { return m_project; }

bool CapiAttributeSetW::prepareBuffer(AttributeSetBuffer& buffer) const {
  myMustHaveAttributeSet("CapiAttributeSetW::prepareBuffer");
  return m_set->prepareBuffer(buffer);
}

void CapiAttributeSetW::readBufferRange(AttributeSetBuffer& buffer, unsigned int first, unsigned int last) const {
  myMustHaveAttributeSet("CapiAttributeSetW::readBufferRange");
  m_set->readBufferRange(buffer, first, last);
}
