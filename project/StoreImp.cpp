#include "project/StoreImp.h"

#include <cstdarg>
#include <cstdio>
#include <vector>

#include "attribute/Property.h"
#include "attribute/PropertyList.h"
#include "foundation/Message.h"
#include "project/FullStoreName.h"
#include "project/Project.h"

namespace {

char const* const kNotForStoreImp = "This operation is not implemented for StoreImp.";

// The reserved properties of a list, taken aside.
std::vector<Property> takeReserved(PropertyI const& set) {
  std::vector<Property> reserved;
  for (vUCString const* name : {&Store::ATTRIBUTESET_NAMES, &Store::ATTRIBUTESET_VERSIONS})
    if (set.hasProperty(*name)) reserved.push_back(*set.findProperty(*name));
  return reserved;
}

bool isReserved(vUCString const& name) {
  return name == Store::ATTRIBUTESET_NAMES || name == Store::ATTRIBUTESET_VERSIONS;
}

}  // namespace

StoreImp::StoreImp(vHandle<Project> const& project) : Store(project), m_isOpen(false), m_writable(false) {}

StoreImp::~StoreImp() {}

// --- sets ------------------------------------------------------------------

void StoreImp::initialize(vHandle<Project> const& project) const {
  vHandle<AttributeSet> set = doCreateAttributeSet(project);
  m_primary = set;
  m_active = set;
}

vHandle<AttributeSet> StoreImp::doFindAttributeSet(vLCString const&) { return doCreateAttributeSet(m_project); }

void StoreImp::doCreate() {}

vHandle<AttributeSet> StoreImp::doCreateAttributeSetClone(AttributeSet const&) {
  Message::fatal("StoreImp::doCreateAttributeSetClone", 0, "Need code, what does this mean?");
}

// --- guards ----------------------------------------------------------------

// The format decides the form, not what it yields: an attribute with a
// blank name still gets the " ... " form.
void StoreImp::myMustBeOpenError(char const* method, char const* format, ...) const {
  if (format == nullptr || format[0] == '\0') Message::fatal(method, 0, "The store has not been opened yet!");
  char detail[1024] = "";
  va_list args;
  va_start(args, format);
  std::vsnprintf(detail, sizeof detail, format, args);
  va_end(args);
  Message::fatal(method, 0, "The store has not been opened yet ... %s", detail);
}

void StoreImp::myMustBeWritableError(char const* method) const {
  Message::fatal(method, 0, "The store '%s' has not been opened for modification!", m_name.c_str());
}

void StoreImp::myMustNotBeOpen(char const* method, char const* detail) const {
  if (!m_isOpen) return;
  if (detail != nullptr && detail[0] != '\0')
    Message::fatal(method, 0, "The store '%s' has already been opened ... %s", m_name.c_str(), detail);
  Message::fatal(method, 0, "The store '%s' has already been opened!", m_name.c_str());
}

// --- properties --------------------------------------------------------------

void StoreImp::mySetActiveProperties() { PropertyI::setPropertyList(*m_active); }

void StoreImp::myCopyPrimeSetProperties() { PropertyI::setPropertyList(*m_primary); }

void StoreImp::mySavePrimeSetProperties() {
  // A store open for reading cannot have changed its properties, and its
  // primary set (a remote one above all) refuses to be written to.
  if (!isSet() || !m_writable) return;
  // Taken aside first: the store may share the primary set's list.
  std::vector<Property> own;
  for (const_iterator it = PropertyI::beginProperty(); it != PropertyI::endProperty(); ++it)
    if (!isReserved(it->getName())) own.push_back(*it);
  std::vector<Property> reserved = takeReserved(*m_primary);
  m_primary->clearProperties();
  for (Property const& p : reserved) m_primary->addProperty(p);
  for (Property const& p : own) m_primary->addProperty(p);
}

void StoreImp::addProperty(Property const& property) {
  myMustBeWritable("StoreImp::addProperty");
  m_active->addProperty(property);
  mySetActiveProperties();
}

void StoreImp::addProperties(PropertyI const& other) {
  myMustBeWritable("StoreImp::addProperties");
  m_active->addProperties(other);
  mySetActiveProperties();
}

void StoreImp::removeProperty(vUCString const& name) {
  myMustBeWritable("StoreImp::removeProperty");
  m_active->removeProperty(name);
  mySetActiveProperties();
}

void StoreImp::removeProperty(iterator position) {
  myMustBeWritable("StoreImp::removeProperty");
  // The store shares the active set's list, so the position is one of it.
  m_active->removeProperty(position);
  mySetActiveProperties();
}

void StoreImp::clearProperties() {
  myMustBeWritable("StoreImp::clearProperties");
  std::vector<Property> reserved = takeReserved(*m_active);
  m_active->clearProperties();
  for (Property const& p : reserved) m_active->addProperty(p);
  mySetActiveProperties();
}

void StoreImp::setPropertyList(PropertyI const& other) {
  myMustBeWritable("StoreImp::setPropertyList");
  m_active->setPropertyList(other);
  mySetActiveProperties();
}

// --- opening and closing -------------------------------------------------------

bool StoreImp::isOpen() const { return m_isOpen; }

void StoreImp::create(vLCString const& name, vLCString const& className, vLCString const& subClass,
                      KeyList const& keys, StoreCreationOptions const* options) {
  if (m_isOpen && m_name != name)
    Message::fatal("StoreImp::create", 0, "Store is already open as %s", m_name.c_str());
  if (m_isOpen) close();
  doCreate();
  PropertyI::operator=(PropertyI());
  initialize(m_project);
  m_primary->create(name, className, subClass, keys, options);
  mySetActiveProperties();
  m_isOpen = true;
  m_writable = true;
  m_name = name;
}

void StoreImp::create(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
                      KeyList const& keys, StoreCreationOptions const* options) {
  create(name.getStoreName(), className, subClass, keys, options);
}

void StoreImp::open(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
                    StoreOpenOptions const* options) {
  myInitializeActiveSet();
  myMustNotBeOpen("StoreImp::open", "");
  m_primary->open(name, version, className, subClass, options);
  myCopyPrimeSetProperties();
  m_active = m_primary;
  mySetActiveProperties();
  m_isOpen = true;
  m_writable = false;
  m_name = name;
}

void StoreImp::open(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
                    StoreOpenOptions const* options) {
  open(name.getStoreName(), name.getVersion(), className, subClass, options);
  if (!m_writable && !name.getAttributeSetName().isBlank()) openAttributeSet(name.getAttributeSetName());
}

void StoreImp::update(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
                      StoreOpenOptions const* options) {
  myInitializeActiveSet();
  myMustNotBeOpen("StoreImp::update", "");
  m_primary->update(name, version, className, subClass, options);
  myCopyPrimeSetProperties();
  m_active = m_primary;
  mySetActiveProperties();
  m_isOpen = true;
  m_writable = true;
  m_name = name;
}

void StoreImp::update(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
                      StoreOpenOptions const* options) {
  update(name.getStoreName(), name.getVersion(), className, subClass, options);
  if (m_writable && !name.getAttributeSetName().isBlank()) updateAttributeSet(name.getAttributeSetName());
}

void StoreImp::close() {
  myMustBeOpen("StoreImp::close");
  myCloseActiveSetIfNotPrime();
  mySavePrimeSetProperties();
  m_primary->close();
  m_isOpen = false;
  m_writable = false;
}

// --- questions and reads -------------------------------------------------------

unsigned int StoreImp::getNInstances() const {
  myMustBeOpen("StoreImp::getNInstances");
  return m_active->getNInstances();
}

vLCString StoreImp::getClass() const {
  myMustBeOpen("StoreImp::getClass");
  return m_active->getClass();
}

vLCString StoreImp::getSubClass() const {
  myMustBeOpen("StoreImp::getSubClass");
  return m_active->getSubClass();
}

vLCString StoreImp::getName() const {
  myMustBeOpen("StoreImp::getName");
  return m_primary->getName();
}

int StoreImp::getVersion() const {
  myMustBeOpen("StoreImp::getVersion");
  return m_primary->getVersion();
}

KeyList StoreImp::getKeyList() const {
  myMustBeOpen("StoreImp::getKeyList");
  return m_active->getKeyList();
}

void StoreImp::getKeyList(KeyList& keys) const {
  myMustBeOpen("StoreImp::getKeyList");
  m_active->getKeyList(keys);
}

void StoreImp::getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const {
  myMustBeOpen("StoreImp::getUnique", attribute.getName());
  m_active->getUnique(attribute, order);
}

std::list<Attribute> StoreImp::getAttributeList() const {
  myMustBeOpen("StoreImp::getAttributeList");
  return m_active->getAttributeList();
}

void StoreImp::getAttributeList(std::list<Attribute>& attributes) const {
  myMustBeOpen("StoreImp::getAttributeList");
  m_active->getAttributeList(attributes);
}

std::list<Attribute> StoreImp::getAttributeList(vUCString const& text,
                                                AttributeMatch::AttributeMatchType match) const {
  myMustBeOpen("StoreImp::getAttributeList", text);
  return m_active->getAttributeList(text, match);
}

void StoreImp::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  myMustBeOpen("StoreImp::read(range)", attribute.getName());
  m_active->read(attribute, first, last);
}

void StoreImp::read(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  myMustBeOpen("StoreImp::read(list)", attribute.getName());
  m_active->read(attribute, instances);
}

void StoreImp::read(Attribute& attribute, Attribute const& key, unsigned int firstGroup,
                    unsigned int lastGroup) const {
  myMustBeOpen("StoreImp::read(groups)", attribute.getName());
  m_active->read(attribute, key, firstGroup, lastGroup);
}

void StoreImp::read(Attribute& attribute, KeyList const& keys) const {
  myMustBeOpen("StoreImp::read(keys)", attribute.getName());
  m_active->read(attribute, keys);
}

Attribute StoreImp::getAttribute(vUCString const& name) const {
  myMustBeOpen("StoreImp::getAttribute", name);
  return m_active->getAttribute(name);
}

bool StoreImp::hasAttribute(vUCString const& name) const {
  myMustBeOpen("StoreImp::hasAttribute", name);
  return m_active->hasAttribute(name);
}

unsigned int StoreImp::getNAttributes() const {
  myMustBeOpen("StoreImp::getNAttributes");
  return m_active->getNAttributes();
}

void StoreImp::getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                                 vUtlSort::SortOrder::SortOrderType order) const {
  myMustBeOpen("StoreImp::getGroupsAndSizes", attribute.getName());
  m_active->getGroupsAndSizes(attribute, sizes, order);
}

vHandle<Project> StoreImp::getProject() const { return m_project; }

bool StoreImp::prepareBuffer(AttributeSetBuffer& buffer) const {
  myMustBeOpen("StoreImp::prepareBuffer");
  return m_active->prepareBuffer(buffer);
}

void StoreImp::readBufferRange(AttributeSetBuffer& buffer, unsigned int first, unsigned int last) const {
  myMustBeOpen("StoreImp::readBufferRange");
  m_active->readBufferRange(buffer, first, last);
}

// --- writes -------------------------------------------------------------------

void StoreImp::addInstances(unsigned int count) {
  myMustBeWritable("StoreImp::addInstances");
  m_active->addInstances(count);
}

void StoreImp::write(Attribute const& attribute, unsigned int first, unsigned int last) {
  myMustBeWritable("StoreImp::write(range)");
  m_active->write(attribute, first, last);
}

void StoreImp::write(Attribute const& attribute, std::vector<unsigned int> const& instances) {
  myMustBeWritable("StoreImp::write(list)");
  m_active->write(attribute, instances);
}

void StoreImp::write(Attribute const& attribute, Attribute const& key, unsigned int firstGroup,
                     unsigned int lastGroup) {
  myMustBeWritable("StoreImp::write(groups)");
  m_active->write(attribute, key, firstGroup, lastGroup);
}

void StoreImp::write(Attribute const& attribute, KeyList const& keys) {
  myMustBeWritable("StoreImp::write(keys)");
  m_active->write(attribute, keys);
}

void StoreImp::addAttribute(Attribute const& attribute) {
  myMustBeWritable("StoreImp::addAttribute");
  m_active->addAttribute(attribute);
}

void StoreImp::setAttributeClass(vUCString const& name, vUCString const& className) {
  myMustBeWritable("StoreImp::setAttributeClass");
  m_active->setAttributeClass(name, className);
}

// --- secondary sets ---------------------------------------------------------------

vLCString StoreImp::myConstructSetName(vLCString const& name) const {
  vLCString constructed(m_name);
  constructed += '_';
  constructed += name;
  return constructed;
}

vLCString StoreImp::myDeconstructSetName(vLCString const& name) {
  vLCString result(name);
  if (result.length() > 0 && result[static_cast<int>(result.length()) - 1] == '_')
    result = result.substr(0, result.length() - 1);
  if (result.length() >= 5 && result.substr(0, 5) == "aset_") result = result.substr(5);
  return result;
}

bool StoreImp::myIsPrimaryName(vLCString const& name) const {
  return name == m_name || name == m_primary->getName();
}

unsigned int StoreImp::myFindSetName(vLCString const& name) const {
  if (!m_primary->hasProperty(ATTRIBUTESET_NAMES)) return 0;
  Property const& names = *m_primary->findProperty(ATTRIBUTESET_NAMES);
  for (unsigned int i = names.getNElements(); i >= 1; --i)
    if (vLCString(names.getString(i)) == name) return i;
  return 0;
}

void StoreImp::myMustHaveSet(char const* method, vLCString const& name) const {
  if (myIsPrimaryName(name) || myFindSetName(name) != 0) return;
  Message::fatal(method, 0, "The AttributeSet '%s' is not a member of the Store '%s'.", name.c_str(), m_name.c_str());
}

void StoreImp::myMustNotHaveSet(char const* method, vLCString const& name) const {
  if (name == m_name)
    Message::fatal(method, 0, "Cannot create an AttributeSet that has that same name as the Store '%s'.",
                   name.c_str());
  if (myFindSetName(name) != 0)
    Message::fatal(method, 0, "Cannot create an AttributeSet called '%s' in Store '%s' because one already exists.",
                   name.c_str(), m_name.c_str());
}

int StoreImp::myGetVersionOfSet(char const* method, vLCString const& name) const {
  for (vUCString const* property : {&ATTRIBUTESET_NAMES, &ATTRIBUTESET_VERSIONS})
    if (!m_primary->hasProperty(*property))
      Message::fatal(method, 0, "The required Property '%s' does not exist in Store '%s'.", property->c_str(),
                     m_name.c_str());
  unsigned int position = myFindSetName(name);
  Property const& versions = *m_primary->findProperty(ATTRIBUTESET_VERSIONS);
  if (position == 0 || position > versions.getNElements())
    Message::fatal(method, 0, "The Store '%s' does not have an AttributeSet named '%s'.", m_name.c_str(),
                   name.c_str());
  return versions.getInt32(position);
}

void StoreImp::myUpdatePropertyWithName(vLCString const& name) {
  if (!m_primary->hasProperty(ATTRIBUTESET_NAMES)) {
    vString value(name);
    m_primary->addProperty(Property(ATTRIBUTESET_NAMES, 1u, &value));
    return;
  }
  Property names(*m_primary->findProperty(ATTRIBUTESET_NAMES));
  unsigned int n = names.getNElements() + 1;
  names.resize(n);
  names.setString(name, n);
  m_primary->removeProperty(ATTRIBUTESET_NAMES);
  m_primary->addProperty(names);
}

void StoreImp::myUpdatePropertyWithVersion(int version) {
  if (!m_primary->hasProperty(ATTRIBUTESET_VERSIONS)) {
    m_primary->addProperty(Property(ATTRIBUTESET_VERSIONS, 1u, &version));
    return;
  }
  Property versions(*m_primary->findProperty(ATTRIBUTESET_VERSIONS));
  unsigned int n = versions.getNElements() + 1;
  versions.resize(n);
  versions.setInt32(version, n);
  m_primary->removeProperty(ATTRIBUTESET_VERSIONS);
  m_primary->addProperty(versions);
}

void StoreImp::myCloseActiveSetIfNotPrime() {
  if (m_active == m_primary) return;
  vHandle<AttributeSet> former = m_active;
  m_active = m_primary;
  mySetActiveProperties();
  former->close();
}

void StoreImp::createAttributeSet(vLCString const& name, KeyList const& keys) {
  char const* const method = "StoreImp::createAttributeSet";
  myMustBeWritable(method);
  myMustNotHaveSet(method, name);
  myCloseActiveSetIfNotPrime();
  vHandle<AttributeSet> set = doCreateAttributeSet(m_project);
  set->create(myConstructSetName(name), ATTRIBUTESET_CLASS, ATTRIBUTESET_SUBCLASS, keys, nullptr);
  m_active = set;
  mySetActiveProperties();
  myUpdatePropertyWithName(name);
  myUpdatePropertyWithVersion(set->getVersion());
}

void StoreImp::mySwitchActiveSet(char const* method, vLCString const& name, SetOpener member) {
  myMustBeOpen(method);
  myMustHaveSet(method, name);
  if (myIsPrimaryName(name)) {
    myCloseActiveSetIfNotPrime();
    return;
  }
  int version = myGetVersionOfSet(method, name);
  vHandle<AttributeSet> set = doFindAttributeSet(name);
  // Asked again for the set that is active: it is opened afresh.
  if (set == m_active) myCloseActiveSetIfNotPrime();
  ((*set).*member)(myConstructSetName(name), version, ATTRIBUTESET_CLASS, ATTRIBUTESET_SUBCLASS, nullptr);
  myCloseActiveSetIfNotPrime();
  m_active = set;
  mySetActiveProperties();
}

void StoreImp::openAttributeSet(vLCString const& name) {
  mySwitchActiveSet("StoreImp::openAttributeSet", name, static_cast<SetOpener>(&AttributeSet::open));
}

void StoreImp::updateAttributeSet(vLCString const& name) {
  mySwitchActiveSet("StoreImp::updateAttributeSet", name, static_cast<SetOpener>(&AttributeSet::update));
}

void StoreImp::getAttributeSetList(AttributeSetList& names) const {
  myMustBeOpen("StoreImp::getAttributeSetList");
  names.clear();
  names.push_back(getPrimaryAttributeSetName());
  if (!m_primary->hasProperty(ATTRIBUTESET_NAMES)) return;
  Property const& sets = *m_primary->findProperty(ATTRIBUTESET_NAMES);
  for (unsigned int i = 1; i <= sets.getNElements(); ++i)
    names.push_back(myDeconstructSetName(vLCString(sets.getString(i))));
}

vHandle<Store::AttributeSetList> StoreImp::getAttributeSetList() const {
  vHandle<AttributeSetList> names(new AttributeSetList);
  getAttributeSetList(*names);
  return names;
}

vLCString StoreImp::getAttributeSetName() const {
  myMustBeOpen("StoreImp::getAttributeSetName");
  return myDeconstructSetName(m_active->getName());
}

vLCString StoreImp::getPrimaryAttributeSetName() const {
  myMustBeOpen("StoreImp::getPrimaryAttributeSetName");
  return myDeconstructSetName(m_primary->getName());
}

// --- not for a StoreImp ---------------------------------------------------------------

bool StoreImp::operator==(Store const&) const { Message::fatal("StoreImp::operator==()", 0, "%s", kNotForStoreImp); }

bool StoreImp::operator!=(Store const& other) const { return !(*this == other); }

Store& StoreImp::operator=(PropertyI const&) { Message::fatal("StoreImp::operator=()", 0, "%s", kNotForStoreImp); }
