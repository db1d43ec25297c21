#include "filestore/disk/DiskStore.h"

#include "foundation/Message.h"
#include "project/Project.h"

namespace {

char const* const kNeedsCode = "Function not implemented in derived class -- needs code.";

[[noreturn]] void needsCode(char const* label) { Message::fatal(label, 0, "%s", kNeedsCode); }

}  // namespace

DiskStore::DiskStore(vHandle<Project> const& project)
    : Store(project), m_indexingTable(new AttributeSetIndexingTable(static_cast<AttributeSet const&>(*this))) {}

DiskStore::~DiskStore() {}

// --- properties ----------------------------------------------------------------------

void DiskStore::addProperty(Property const& property) { PropertyI::addProperty(property); }

void DiskStore::addProperties(PropertyI const& other) { PropertyI::addProperties(other); }

void DiskStore::removeProperty(vUCString const& name) { PropertyI::removeProperty(name); }

void DiskStore::removeProperty(iterator position) { PropertyI::removeProperty(position); }

void DiskStore::setPropertyList(PropertyI const& other) { PropertyI::setPropertyList(other); }

void DiskStore::clearProperties() { PropertyI::clearProperties(); }

// --- opening -----------------------------------------------------------------------------

void DiskStore::open(vLCString const&, int, vLCString const&, vLCString const&, StoreOpenOptions const*) {
  Message::fatal("DiskStore::Open", 0, "Usage: open(filename)");
}

void DiskStore::open(FullStoreName const&, vLCString const&, vLCString const&, StoreOpenOptions const*) {
  Message::fatal("DiskStore::Open", 0, "Usage: open(filename)");
}

// --- refused -------------------------------------------------------------------------------

void DiskStore::create(vLCString const&, vLCString const&, vLCString const&, KeyList const&,
                       StoreCreationOptions const*) {
  needsCode("DiskStore::create");
}

void DiskStore::create(FullStoreName const&, vLCString const&, vLCString const&, KeyList const&,
                       StoreCreationOptions const*) {
  needsCode("DiskStore::create");
}

void DiskStore::update(vLCString const&, int, vLCString const&, vLCString const&, StoreOpenOptions const*) {
  needsCode("DiskStore::update");
}

void DiskStore::update(FullStoreName const&, vLCString const&, vLCString const&, StoreOpenOptions const*) {
  needsCode("DiskStore::update");
}

void DiskStore::write(Attribute const&, unsigned int, unsigned int) { needsCode("DiskStore::write"); }

void DiskStore::write(Attribute const&, std::vector<unsigned int> const&) { needsCode("DiskStore::write"); }

void DiskStore::write(Attribute const&, Attribute const&, unsigned int, unsigned int) {
  needsCode("DiskStore::write");
}

void DiskStore::write(Attribute const&, KeyList const&) { needsCode("DiskStore::write"); }

void DiskStore::setAttributeClass(vUCString const&, vUCString const&) { needsCode("DiskStore::setAttributeClass"); }

void DiskStore::createAttributeSet(vLCString const&, KeyList const&) { needsCode("DiskStore::createAttributeSet"); }

void DiskStore::updateAttributeSet(vLCString const&) { needsCode("DiskStore::updateAttributeSet"); }

void DiskStore::openAttributeSet(vLCString const&) { needsCode("DiskStore::openAttributeSet"); }

vHandle<Store::AttributeSetList> DiskStore::getAttributeSetList() const {
  needsCode("DiskStore::getAttributeSetList");
}

void DiskStore::getAttributeSetList(AttributeSetList&) const { needsCode("DiskStore::getAttributeSetList"); }

vLCString DiskStore::getAttributeSetName() const { needsCode("DiskStore::getAttributeSetName"); }

vLCString DiskStore::getPrimaryAttributeSetName() const { needsCode("DiskStore::getPrimaryAttributeSetName"); }

vLCString DiskStore::getClass() const { needsCode("DiskStore::getClass"); }

vLCString DiskStore::getSubClass() const { needsCode("DiskStore::getSubClass"); }

void DiskStore::addInstances(unsigned int) { needsCode("DiskStore::addInstances"); }

Store& DiskStore::operator=(PropertyI const&) { needsCode("DiskStore::operator="); }

void DiskStore::addAttribute(Attribute const&) { Message::fatal("DiskStore::addAttribute", 0, "Not Implement yet!"); }

bool DiskStore::operator==(Store const&) const { needsCode("DiskStore::operator=="); }

bool DiskStore::operator!=(Store const&) const { needsCode("DiskStore::operator!="); }

int DiskStore::getVersion() const { needsCode("DiskStore::getVersion"); }

unsigned int DiskStore::getNAttributes() const { needsCode("DiskStore::getNAttributes"); }

vHandle<Project> DiskStore::getProject() const { return m_project; }

// --- through the indexing table ------------------------------------------------------------

void DiskStore::read(Attribute& attribute, KeyList const& keys) const {
  std::vector<unsigned int> instances;
  m_indexingTable->locateByKeys(keys, instances, false);
  read(attribute, instances);
}

void DiskStore::read(Attribute& attribute, Attribute const& groups, unsigned int firstGroup,
                     unsigned int lastGroup) const {
  std::vector<unsigned int> instances;
  m_indexingTable->locateByGroups(groups, firstGroup, lastGroup, instances);
  read(attribute, instances);
}

void DiskStore::getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                                  vUtlSort::SortOrder::SortOrderType order) const {
  m_indexingTable->getGroupsAndSizes(attribute, sizes, order);
}

void DiskStore::getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const {
  m_indexingTable->getUnique(attribute, order);
}
