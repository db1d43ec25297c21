#include "filestore/memory/InMemoryAttributeSet.h"

#include "attribute/AttributeHelper.h"
#include "foundation/Message.h"
#include "project/Project.h"

InMemoryAttributeSet::InMemoryAttributeSet(vHandle<Project> const& project)
    : CapiAttributeSet(project), m_keys(nullptr), m_buffer(nullptr) {}

InMemoryAttributeSet::InMemoryAttributeSet(InMemoryAttributeSet const& other)
    : CapiAttributeSet(other),
      Packable(other),
      m_name(other.m_name),
      m_class(other.m_class),
      m_subClass(other.m_subClass),
      m_keys(other.m_keys != nullptr ? new KeyList(*other.m_keys) : nullptr),
      m_buffer(other.m_buffer.isEmpty() ? nullptr : new AttributeSetBuffer(*other.m_buffer)) {
  // Copies of a property interface share its list: this copy gets its own.
  PropertyI::operator=(PropertyI());
  if (other.isSet()) addProperties(other);
}

InMemoryAttributeSet::~InMemoryAttributeSet() { delete m_keys; }

// --- hooks of the frame --------------------------------------------------------------------

void InMemoryAttributeSet::doPreCreate(vLCString const&, vLCString const&, vLCString const&, KeyList const&,
                                       StoreCreationOptions const*) {
  clearProperties();
  delete m_keys;
  m_keys = nullptr;
  m_buffer = vHandle<AttributeSetBuffer>();
}

void InMemoryAttributeSet::doPostCreate(vLCString const& name, vLCString const& className, vLCString const& subClass,
                                        KeyList const& keys, StoreCreationOptions const*) {
  m_name = name;
  m_class = className;
  m_subClass = subClass;
  m_keys = new KeyList(keys);
  m_buffer = vHandle<AttributeSetBuffer>(new AttributeSetBuffer);
  for (Attribute const& key : keys) m_buffer->addAttribute(Attribute(key));
}

void InMemoryAttributeSet::doPreOpen(vLCString const&, int, vLCString const&, vLCString const&,
                                     StoreOpenOptions const*) {}

void InMemoryAttributeSet::doPostOpen(vLCString const&, int, vLCString const&, vLCString const&,
                                      StoreOpenOptions const*) {}

void InMemoryAttributeSet::doPreUpdate(vLCString const&, int, vLCString const&, vLCString const&,
                                       StoreOpenOptions const*) {}

void InMemoryAttributeSet::doPostUpdate(vLCString const&, int, vLCString const&, vLCString const&,
                                        StoreOpenOptions const*) {}

// The data stay; only the flags go, so that the set can be opened again.
void InMemoryAttributeSet::doClose() {
  setIsNotOpen();
  setIsNotWriteable();
}

unsigned int InMemoryAttributeSet::doGetNInstances() const { return m_buffer->getNInstances(); }

vLCString InMemoryAttributeSet::doGetClass() const { return m_class; }

vLCString InMemoryAttributeSet::doGetSubClass() const { return m_subClass; }

vLCString InMemoryAttributeSet::doGetName() const { return m_name; }

int InMemoryAttributeSet::doGetVersion() const { return 0; }

KeyList InMemoryAttributeSet::doGetKeyList() const { return m_keys != nullptr ? *m_keys : KeyList(); }

void InMemoryAttributeSet::doAddInstances(unsigned int count) {
  if (m_buffer->getNInstances() == 0)
    m_buffer->setNInstances(count);
  else
    m_buffer->addInstances(count);
}

void InMemoryAttributeSet::doAddAttribute(Attribute const& attribute) { m_buffer->addAttribute(attribute); }

bool InMemoryAttributeSet::doHasAttribute(vUCString const& name) const { return m_buffer->hasAttribute(name); }

std::list<Attribute> InMemoryAttributeSet::doGetAttributeList() const { return m_buffer->getAttributeList(); }

void InMemoryAttributeSet::doGetAttributeList(std::list<Attribute>& attributes) const {
  m_buffer->getAttributeList(attributes);
}

Attribute InMemoryAttributeSet::doGetAttribute(vUCString const& name) const {
  return Attribute(readAttributeAndData(name));
}

// A class given is kept, not dropped: the set is the only place it lives.
void InMemoryAttributeSet::doSetAttributeClass(vUCString const& name, vUCString const& className) {
  m_buffer->updateAttributeAndData(name).setClass(className);
}

unsigned int InMemoryAttributeSet::doGetNAttributes() const {
  return static_cast<unsigned int>(m_buffer->getAttributeList().size());
}

void InMemoryAttributeSet::doReadRange(Attribute& attribute, unsigned int first, unsigned int last) const {
  // A last of 0 passed the frame's check as the last instance.
  if (last == 0) last = m_buffer->getNInstances();
  Attribute const& stored = m_buffer->readAttributeAndData(attribute.getName());
  attribute.resize(last - first + 1);
  AttributeHelper::copyRange(stored, first, last, attribute, 1);
}

void InMemoryAttributeSet::doReadList(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  Attribute const& stored = m_buffer->readAttributeAndData(attribute.getName());
  attribute.resize(static_cast<unsigned int>(instances.size()));
  AttributeHelper::copy(stored, instances, attribute, 1u);
}

void InMemoryAttributeSet::doWriteRange(Attribute const& attribute, unsigned int first, unsigned int) {
  Attribute& stored = m_buffer->updateAttributeAndData(attribute.getName());
  AttributeHelper::copyRange(attribute, 1, attribute.getNInstances(), stored, first);
}

void InMemoryAttributeSet::doWriteList(Attribute const& attribute, std::vector<unsigned int> const& instances) {
  Attribute& stored = m_buffer->updateAttributeAndData(attribute.getName());
  AttributeHelper::copy(attribute, 1u, stored, instances);
}

// --- direct operations ---------------------------------------------------------------------

void InMemoryAttributeSet::setClass(vLCString const& className) { m_class = className; }

void InMemoryAttributeSet::setSubClass(vLCString const& subClass) { m_subClass = subClass; }

void InMemoryAttributeSet::setKeyList(KeyList& keys) {
  for (Attribute const& key : keys)
    if (!m_buffer->hasAttribute(key.getName()))
      Message::fatal("InMemoryAttributeSet::setKeyList", 0, "Key %s does not exist in the Store %s ",
                     key.getName().c_str(), m_name.c_str());
  KeyList* copy = new KeyList(keys);
  delete m_keys;
  m_keys = copy;
}

bool InMemoryAttributeSet::hasAttribute(vUCString const& name) const { return m_buffer->hasAttribute(name); }

bool InMemoryAttributeSet::hasAttribute(vUCStringTableData const* const& name) const {
  return m_buffer->hasAttribute(name);
}

void InMemoryAttributeSet::deleteInstances(unsigned int n) {
  if (m_buffer->getNInstances() == 0)
    m_buffer->setNInstances(0);
  else
    m_buffer->deleteInstances(n);
  myDataChanged();
}

void InMemoryAttributeSet::keepInstances(std::vector<unsigned int> const& instances) {
  m_buffer->keepInstances(instances);
  myDataChanged();
}

void InMemoryAttributeSet::renameAttribute(vUCString const& oldName, vUCString const& newName) {
  m_buffer->renameAttribute(oldName, newName);
  myDataChanged();
}

void InMemoryAttributeSet::deleteAttribute(vUCString const& name) {
  m_buffer->deleteAttribute(name);
  if (m_keys != nullptr) m_keys->removeKey(name);
  myDataChanged();
}

void InMemoryAttributeSet::setAttributeAndData(Attribute& attribute) {
  char const* const label = "InMemoryAttributeSet::setAttributeAndData";
  if (attribute.getNInstances() != m_buffer->getNInstances())
    Message::fatal(label, 0, "Attribute %s doesn't have the same number of instances as the Store %s ",
                   attribute.getName().c_str(), m_name.c_str());
  if (!m_buffer->hasAttribute(attribute.getName()))
    Message::fatal(label, 0, "Attribute %s not found in %s ", attribute.getName().c_str(), m_name.c_str());
  m_buffer->setAttributeAndData(attribute);
  myDataChanged();
}

Attribute& InMemoryAttributeSet::getAttributeAndData(vUCString const& name) { return updateAttributeAndData(name); }

Attribute const& InMemoryAttributeSet::getAttributeAndData(vUCString const& name) const {
  return readAttributeAndData(name);
}

Attribute const& InMemoryAttributeSet::readAttributeAndData(vUCString const& name) const {
  return m_buffer->readAttributeAndData(name);
}

Attribute const& InMemoryAttributeSet::readAttributeAndData(vUCStringTableData const* name) const {
  return m_buffer->readAttributeAndData(name);
}

Attribute& InMemoryAttributeSet::updateAttributeAndData(vUCString const& name) {
  // What the caller does with it is not seen here.
  myDataChanged();
  return m_buffer->updateAttributeAndData(name);
}

Attribute& InMemoryAttributeSet::updateAttributeAndData(vUCStringTableData const* name) {
  myDataChanged();
  return m_buffer->updateAttributeAndData(name);
}

int* InMemoryAttributeSet::getInt32Pointer(vUCString const& name, unsigned int instance) {
  return updateAttributeAndData(name).getInt32Pointer(instance);
}

int const* InMemoryAttributeSet::getInt32Pointer(vUCString const& name, unsigned int instance) const {
  return readAttributeAndData(name).getInt32Pointer(instance);
}

long long* InMemoryAttributeSet::getInt64Pointer(vUCString const& name, unsigned int instance) {
  return updateAttributeAndData(name).getInt64Pointer(instance);
}

long long const* InMemoryAttributeSet::getInt64Pointer(vUCString const& name, unsigned int instance) const {
  return readAttributeAndData(name).getInt64Pointer(instance);
}

float* InMemoryAttributeSet::getFloat32Pointer(vUCString const& name, unsigned int instance) {
  return updateAttributeAndData(name).getFloat32Pointer(instance);
}

float const* InMemoryAttributeSet::getFloat32Pointer(vUCString const& name, unsigned int instance) const {
  return readAttributeAndData(name).getFloat32Pointer(instance);
}

double* InMemoryAttributeSet::getFloat64Pointer(vUCString const& name, unsigned int instance) {
  return updateAttributeAndData(name).getFloat64Pointer(instance);
}

double const* InMemoryAttributeSet::getFloat64Pointer(vUCString const& name, unsigned int instance) const {
  return readAttributeAndData(name).getFloat64Pointer(instance);
}

vHandle<AttributeSetBuffer> InMemoryAttributeSet::getAttributeSetBuffer() { return m_buffer; }

vHandle<AttributeSetBuffer> const InMemoryAttributeSet::getAttributeSetBuffer() const { return m_buffer; }

bool InMemoryAttributeSet::prepareBuffer(AttributeSetBuffer& buffer) const {
  // A copy is deep and keeps fields in their records; without instances it
  // is the layout alone.
  AttributeSetBuffer layout(*m_buffer);
  layout.setNInstances(0);
  buffer = layout;
  return true;
}

void InMemoryAttributeSet::readBufferRange(AttributeSetBuffer& buffer, unsigned int first, unsigned int last) const {
  buffer.readBufferRange(*m_buffer, first, last);
}

bool InMemoryAttributeSet::loadRangeFromStore(bool replace, vHandle<AttributeSet> source, unsigned int first,
                                              unsigned int last) {
  if (replace) {
    vHandle<AttributeSetBuffer> fresh(new AttributeSetBuffer);
    if (!source->prepareBuffer(*fresh)) return false;
    m_buffer = fresh;
    m_name = source->getName();
    m_class = source->getClass();
    m_subClass = source->getSubClass();
    if (m_keys == nullptr) m_keys = new KeyList;
    source->getKeyList(*m_keys);
    if (!isOpen()) open(m_name, 0, m_class, m_subClass, nullptr);
    myDataChanged();
  }
  if (first == 0) return true;
  if (last == 0) last = source->getNInstances();
  // The buffer holds the range read, from its first instance on.
  if (last >= first) m_buffer->setNInstances(last - first + 1);
  source->readBufferRange(*m_buffer, first, last);
  myDataChanged();
  return true;
}
