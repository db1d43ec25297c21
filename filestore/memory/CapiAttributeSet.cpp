#include "filestore/memory/CapiAttributeSet.h"

#include "foundation/Message.h"
#include "foundation/UtlExcept.h"
#include "project/FullStoreName.h"
#include "project/Project.h"

CapiAttributeSet::CapiAttributeSet(vHandle<Project> const& project)
    : AttributeSet(project), m_isOpen(false), m_isWriteable(false) {}

// The table of other reads other: this set gets one of its own.
CapiAttributeSet::CapiAttributeSet(CapiAttributeSet const& other)
    : AttributeSet(other), m_isOpen(other.m_isOpen), m_isWriteable(other.m_isWriteable) {
  if (!other.m_indexingTable.isEmpty()) myNewTable();
}

CapiAttributeSet::~CapiAttributeSet() {}

void CapiAttributeSet::myNewTable() {
  m_indexingTable = vHandle<AttributeSetIndexingTable>(new AttributeSetIndexingTable(static_cast<AttributeSet const&>(*this)));
}

void CapiAttributeSet::myDataChanged() {
  if (!m_indexingTable.isEmpty()) m_indexingTable->clearCache();
}

AttributeSetIndexingTable& CapiAttributeSet::myTable(char const* label) const {
  if (m_indexingTable.isEmpty())
    Message::fatal(label, 0, "AttributeSet '%s' has no indexing table: it was never created, opened or updated.",
                   doGetName().c_str());
  return *m_indexingTable;
}

bool CapiAttributeSet::isOpen() const { return m_isOpen; }

bool CapiAttributeSet::isWriteable() const { return m_isWriteable; }

// --- creating, opening, closing -------------------------------------------------------------

void CapiAttributeSet::create(vLCString const& name, vLCString const& className, vLCString const& subClass,
                              KeyList const& keys, StoreCreationOptions const* options) {
  char const* const label = "CapiAttributeSet::create";
  myCheckNameAndClass(label, name, className, subClass);
  if (className.isBlank())
    Message::fatal(label, 0, "When creating AttributeSet '%s', the class cannot be blank.", name.c_str());
  if (subClass.isBlank())
    Message::fatal(label, 0, "When creating AttributeSet '%s', the subclass cannot be blank.", name.c_str());
  doPreCreate(name, className, subClass, keys, options);
  setIsOpen();
  setIsWriteable();
  try {
    doPostCreate(name, className, subClass, keys, options);
  } catch (UtlExcept const& e) {
    setIsNotOpen();
    throw UtlExcept(e);
  } catch (...) {
    setIsNotOpen();
    Message::fatal(label, 0, "Unknown exception thrown during creation of AttributeSet '%s'.", name.c_str());
  }
  myNewTable();
}

void CapiAttributeSet::create(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
                              KeyList const& keys, StoreCreationOptions const* options) {
  create(name.getStoreName(), className, subClass, keys, options);
}

void CapiAttributeSet::open(vLCString const& name, int version, vLCString const& className,
                            vLCString const& subClass, StoreOpenOptions const* options) {
  myCheckNameAndClass("CapiAttributeSet::open", name, className, subClass);
  doPreOpen(name, version, className, subClass, options);
  setIsOpen();
  setIsNotWriteable();
  doPostOpen(name, version, className, subClass, options);
  myNewTable();
}

void CapiAttributeSet::open(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
                            StoreOpenOptions const* options) {
  open(name.getStoreName(), name.getVersion(), className, subClass, options);
}

void CapiAttributeSet::update(vLCString const& name, int version, vLCString const& className,
                              vLCString const& subClass, StoreOpenOptions const* options) {
  myCheckNameAndClass("CapiAttributeSet::update", name, className, subClass);
  doPreUpdate(name, version, className, subClass, options);
  setIsOpen();
  setIsWriteable();
  doPostUpdate(name, version, className, subClass, options);
  myNewTable();
}

void CapiAttributeSet::update(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
                              StoreOpenOptions const* options) {
  update(name.getStoreName(), name.getVersion(), className, subClass, options);
}

void CapiAttributeSet::close() {
  char const* const label = "CapiAttributeSet::close";
  if (!isOpen()) Message::error(label, 0, "AttributeSet %s is not open", doGetName().c_str());
  try {
    doClose();
  } catch (UtlExcept const& e) {
    throw UtlExcept(e);
  } catch (...) {
    Message::fatal(label, 0, "Unknown exception thrown during close of AttributeSet '%s'.", doGetName().c_str());
  }
}

// --- questions --------------------------------------------------------------------------------

unsigned int CapiAttributeSet::getNInstances() const {
  myMustBeOpen("CapiAttributeSet::getNInstances");
  return doGetNInstances();
}

vLCString CapiAttributeSet::getClass() const {
  myMustBeOpen("CapiAttributeSet::getClass");
  return doGetClass();
}

vLCString CapiAttributeSet::getSubClass() const {
  myMustBeOpen("CapiAttributeSet::getSubClass");
  return doGetSubClass();
}

vLCString CapiAttributeSet::getName() const {
  myMustBeOpen("CapiAttributeSet::getName");
  return doGetName();
}

int CapiAttributeSet::getVersion() const {
  myMustBeOpen("CapiAttributeSet::getVersion");
  return doGetVersion();
}

KeyList CapiAttributeSet::getKeyList() const {
  myMustBeOpen("CapiAttributeSet::getKeyList");
  return doGetKeyList();
}

void CapiAttributeSet::getKeyList(KeyList& keys) const {
  myMustBeOpen("CapiAttributeSet::getKeyList");
  doGetKeyList(keys);
}

unsigned int CapiAttributeSet::getNAttributes() const {
  myMustBeOpen("CapiAttributeSet::getNAttributes");
  return doGetNAttributes();
}

Attribute CapiAttributeSet::getAttribute(vUCString const& name) const {
  myMustHaveAttribute("CapiAttributeSet::getAttribute", name);
  return doGetAttribute(name);
}

bool CapiAttributeSet::hasAttribute(vUCString const& name) const {
  myMustBeOpen("CapiAttributeSet::hasAttribute");
  return doHasAttribute(name);
}

std::list<Attribute> CapiAttributeSet::getAttributeList() const {
  myMustBeOpen("CapiAttributeSet::getAttributeList");
  return doGetAttributeList();
}

void CapiAttributeSet::getAttributeList(std::list<Attribute>& attributes) const {
  myMustBeOpen("CapiAttributeSet::getAttributeList");
  doGetAttributeList(attributes);
}

std::list<Attribute> CapiAttributeSet::getAttributeList(vUCString const& text,
                                                        AttributeMatch::AttributeMatchType match) const {
  myMustBeOpen("CapiAttributeSet::getAttributeList");
  return doGetMatchingAttributeList(text, match);
}

void CapiAttributeSet::getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const {
  myMustHaveAttribute("CapiAttributeSet::getUnique", attribute.getName());
  doGetUnique(attribute, order);
}

void CapiAttributeSet::getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                                         vUtlSort::SortOrder::SortOrderType order) const {
  myMustHaveAttribute("CapiAttributeSet::getGroupsAndSizes", attribute.getName());
  doGetGroupsAndSizes(attribute, sizes, order);
}

vHandle<Project> CapiAttributeSet::getProject() const { return doGetProject(); }

// --- changes of layout ------------------------------------------------------------------------------

void CapiAttributeSet::addInstances(unsigned int count) {
  myMustBeModifiable("CapiAttributeSet::addInstances");
  doAddInstances(count);
  myDataChanged();
}

void CapiAttributeSet::addAttribute(Attribute const& attribute) {
  char const* const label = "CapiAttributeSet::addAttribute";
  myMustBeModifiable(label);
  myMustNotHaveAttribute(label, attribute.getName());
  doAddAttribute(attribute);
}

void CapiAttributeSet::setAttributeClass(vUCString const& name, vUCString const& className) {
  char const* const label = "CapiAttributeSet::setAttributeClass";
  myMustHaveAttribute(label, name);
  myMustBeModifiable(label);
  doSetAttributeClass(name, className);
}

// --- bodies of the frame -------------------------------------------------------------------------------

void CapiAttributeSet::doGetKeyList(KeyList& keys) const { keys = doGetKeyList(); }

std::list<Attribute> CapiAttributeSet::doGetMatchingAttributeList(vUCString const& text,
                                                                  AttributeMatch::AttributeMatchType match) const {
  std::list<Attribute> chosen;
  for (Attribute const& a : doGetAttributeList())
    if (AttributeMatch::matches(a, text, match)) chosen.push_back(a);
  return chosen;
}

void CapiAttributeSet::doGetGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                                           vUtlSort::SortOrder::SortOrderType order) const {
  myTable("CapiAttributeSet::getGroupsAndSizes").getGroupsAndSizes(attribute, sizes, order);
}

void CapiAttributeSet::doGetUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const {
  myTable("CapiAttributeSet::getUnique").getUnique(attribute, order);
}

vHandle<Project> CapiAttributeSet::doGetProject() const { return m_project; }
