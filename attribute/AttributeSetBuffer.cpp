#include "attribute/AttributeSetBuffer.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <tuple>

#include "attribute/AttributeHelper.h"
#include "foundation/Message.h"
#include "foundation/vUtl.h"

namespace {

char const* const kMissing = "Attribute '%s' does not exist in this AttributeSetBuffer.";
char const* const kDirty = "Reading instances from/to dirty attribute set buffers is not supported yet!";

// The interned entry of a name, or null for a name never interned (which no
// buffer can hold), without interning it.
vUCStringTableData const* lookUp(vUCString const& name) {
  vUCString stripped(name);
  stripped.strip();
  vUCStringTableData const* id = nullptr;
  if (!Attribute::getStringTable().exists(stripped, &id)) return nullptr;
  return id;
}

AttributeSetBufferEntry& newEntry(AttributeSetBufferImp::Entries& entries, vUCStringTableData const* id) {
  return entries.emplace(std::piecewise_construct, std::forward_as_tuple(id), std::forward_as_tuple()).first->second;
}

// n instances of fresh values: zeros (Attribute::resize leaves new memory
// as it comes).
void resizeZeroed(Attribute& attribute, unsigned int n) {
  unsigned int const old = attribute.getNInstances();
  attribute.resize(n);
  if (n != old) AttributeHelper::zero(attribute);
}

}  // namespace

// --- the shared part ------------------------------------------------------------

AttributeSetBufferImp::AttributeSetBufferImp() : nInstances(0), nDeleted(0), crcValid(false), crc(0) {}

AttributeSetBufferImp::AttributeSetBufferImp(AttributeSetBufferImp const& other)
    : nInstances(other.nInstances), nDeleted(other.nDeleted), crcValid(other.crcValid), crc(other.crc) {
  for (Entries::const_iterator it = other.entries.begin(); it != other.entries.end(); ++it) {
    AttributeSetBufferEntry& e = newEntry(entries, it->first);
    AttributeSetBufferEntry const& o = it->second;
    e.dirty = o.dirty;
    e.inRecord = o.inRecord;
    e.loaded = o.loaded;
    e.offset = o.offset;
    e.fieldSize = o.fieldSize;
    e.bufferName = o.bufferName;
    if (o.attribute.getNInstances() > 0)
      e.attribute.copyData(o.attribute);
    else
      e.attribute = o.attribute;
  }
  for (Buffers::const_iterator it = other.buffers.begin(); it != other.buffers.end(); ++it)
    buffers[it->first] = vHandle<RecordBuffer>(it->second->clone());
}

AttributeSetBufferImp::~AttributeSetBufferImp() {}

// --- construction -------------------------------------------------------------------

AttributeSetBuffer::AttributeSetBuffer() : myImp(new AttributeSetBufferImp) {}

AttributeSetBuffer::AttributeSetBuffer(AttributeSetBuffer const& other)
    : myImp(new AttributeSetBufferImp(*other.myImp)) {}

AttributeSetBuffer& AttributeSetBuffer::operator=(AttributeSetBuffer const& other) {
  myImp = other.myImp;
  return *this;
}

AttributeSetBuffer::~AttributeSetBuffer() {}

// --- look-up -------------------------------------------------------------------------

AttributeSetBufferEntry* AttributeSetBuffer::myFind(vUCStringTableData const* name) const {
  if (name == nullptr) return nullptr;
  AttributeSetBufferImp::Entries::iterator const it = myImp->entries.find(name);
  return it == myImp->entries.end() ? nullptr : &it->second;
}

AttributeSetBufferEntry* AttributeSetBuffer::myFind(vUCString const& name) const { return myFind(lookUp(name)); }

AttributeSetBufferEntry& AttributeSetBuffer::myGet(char const* label, vUCString const& name) const {
  AttributeSetBufferEntry* e = myFind(name);
  if (e == nullptr) Message::fatal(label, 0, kMissing, name.c_str());
  return *e;
}

AttributeSetBufferEntry& AttributeSetBuffer::myGet(char const* label, vUCStringTableData const* name) const {
  AttributeSetBufferEntry* e = myFind(name);
  if (e == nullptr) Message::fatal(label, 0, kMissing, name != nullptr ? name->getString().c_str() : "");
  return *e;
}

RecordBuffer& AttributeSetBuffer::myBuffer(char const* label, vString const& name) const {
  AttributeSetBufferImp::Buffers::iterator const it = myImp->buffers.find(name);
  if (it == myImp->buffers.end())
    Message::fatal(label, 0, "RecordBuffer '%s' does not exist in this AttributeSetBuffer.", name.c_str());
  return *it->second;
}

std::vector<RecordBuffer*> AttributeSetBuffer::mySelect(char const* label, vString const& bufferName) const {
  std::vector<RecordBuffer*> selected;
  if (!bufferName.isEmpty()) {
    selected.push_back(&myBuffer(label, bufferName));
    return selected;
  }
  for (AttributeSetBufferImp::Buffers::iterator it = myImp->buffers.begin(); it != myImp->buffers.end(); ++it)
    selected.push_back(it->second.get());
  return selected;
}

// A field's values are cut out of its records once, on demand; a changed
// attribute already holds the newer values.
void AttributeSetBuffer::myLoad(AttributeSetBufferEntry& e) const {
  if (!e.inRecord || e.loaded || e.dirty) return;
  unsigned int const n = myImp->nInstances;
  e.attribute.resize(n);
  if (n > 0)
    myBuffer("AttributeSetBuffer::loadAttributeData", e.bufferName)
        .extractRange(e.attribute.getPointer(1), e.fieldSize, n, e.offset, 1);
  e.loaded = true;
}

// After records changed, copies cut out of them earlier are stale.
void AttributeSetBuffer::myDropCopies() const {
  for (AttributeSetBufferImp::Entries::iterator it = myImp->entries.begin(); it != myImp->entries.end(); ++it) {
    AttributeSetBufferEntry& e = it->second;
    if (e.inRecord && e.loaded && !e.dirty) {
      e.attribute.resize(0);
      e.loaded = false;
    }
  }
}

bool AttributeSetBuffer::myHasPendingChanges() const {
  for (AttributeSetBufferImp::Entries::const_iterator it = myImp->entries.begin(); it != myImp->entries.end(); ++it)
    if (it->second.inRecord && it->second.dirty) return true;
  return false;
}

void AttributeSetBuffer::myRefuseDirty(char const* label, AttributeSetBuffer const* other) const {
  if (myHasPendingChanges() || (other != nullptr && other->myHasPendingChanges())) Message::fatal(label, 0, kDirty);
}

// --- attributes ------------------------------------------------------------------------

void AttributeSetBuffer::addAttribute(Attribute const& attribute) {
  char const* const label = "AttributeSetBuffer::addAttribute";
  if (myFind(attribute.getName()) != nullptr)
    Message::fatal(label, 0, "Attribute '%s' has already been added to this AttributeSetBuffer.",
                   attribute.getName().c_str());
  AttributeSetBufferEntry& e = newEntry(myImp->entries, Attribute::getNameID(attribute.getName()));
  unsigned int const n = myImp->nInstances;
  if (n > 0 && attribute.getNInstances() == n) {
    e.attribute.copyData(attribute);
  } else {
    e.attribute = attribute;
    resizeZeroed(e.attribute, n);
  }
  myImp->crcValid = false;
}

void AttributeSetBuffer::addRecordBuffer(vString const& name, RecordBuffer const& buffer, Layout const& layout) {
  char const* const label = "AttributeSetBuffer::addRecordBuffer";
  if (myImp->buffers.find(name) != myImp->buffers.end())
    Message::fatal(label, 0, "RecordBuffer '%s' has already been added to this AttributeSetBuffer.", name.c_str());
  unsigned int const n = myImp->nInstances;
  if (!buffer.isEmpty() && !(buffer.isRange() && buffer.getFirstRecord() == 1 && buffer.getLastRecord() == n))
    Message::fatal(label, 0, "RecordBuffer '%s' holds %u records, not those of instances 1 to %u.", name.c_str(),
                   buffer.getNInstances(), n);
  // Every field is checked before anything is added.
  for (Layout::const_iterator it = layout.begin(); it != layout.end(); ++it) {
    Attribute const& a = it->first;
    if (myFind(a.getName()) != nullptr)
      Message::fatal(label, 0, "Attribute '%s' has already been added to this AttributeSetBuffer.",
                     a.getName().c_str());
    if (a.isVariableLength() || a.getDataType() == vSTRING)
      Message::fatal(label, 0, "Attribute '%s' of type %s cannot be a field of a RecordBuffer.", a.getName().c_str(),
                     vUtl::dataTypeName(a.getDataType()).c_str());
    if (it->second < 0 || static_cast<long long>(it->second) + a.getNBytes() > buffer.getRecordLength())
      Message::fatal(label, 0, "offset(%d)+elementSize(%d)>myRecordLength(%d)", it->second, a.getNBytes(),
                     buffer.getRecordLength());
  }
  vHandle<RecordBuffer> copy(buffer.clone());
  if (copy->isEmpty() && n > 0) copy->allocate(1, n);
  myImp->buffers[name] = copy;
  for (Layout::const_iterator it = layout.begin(); it != layout.end(); ++it) {
    AttributeSetBufferEntry& e = newEntry(myImp->entries, Attribute::getNameID(it->first.getName()));
    e.attribute = it->first;
    e.attribute.resize(0);
    e.inRecord = true;
    e.offset = it->second;
    e.fieldSize = it->first.getNBytes();
    e.bufferName = name;
  }
  myImp->crcValid = false;
}

bool AttributeSetBuffer::hasAttribute(vUCString const& name) const { return myFind(name) != nullptr; }

bool AttributeSetBuffer::hasAttribute(vUCStringTableData const* name) const { return myFind(name) != nullptr; }

void AttributeSetBuffer::deleteAttribute(vUCString const& name) {
  vUCStringTableData const* id = lookUp(name);
  myGet("AttributeSetBuffer::deleteAttribute", name);
  myImp->entries.erase(id);
  myImp->crcValid = false;
}

void AttributeSetBuffer::renameAttribute(vUCString const& oldName, vUCString const& newName) {
  char const* const label = "AttributeSetBuffer::renameAttribute";
  vUCStringTableData const* oldId = lookUp(oldName);
  AttributeSetBufferEntry* old = myFind(oldId);
  if (old == nullptr)
    Message::fatal(label, 0, "Attribute '%s' cannot be renamed to '%s', because it does not exist.", oldName.c_str(),
                   newName.c_str());
  vUCStringTableData const* newId = Attribute::getNameID(newName);
  if (newId == oldId) return;
  if (myFind(newId) != nullptr)
    Message::fatal(label, 0, "Attribute '%s' cannot be renamed to '%s', because '%s' exists already.",
                   oldName.c_str(), newName.c_str(), newName.c_str());
  AttributeSetBufferEntry& e = newEntry(myImp->entries, newId);
  e.dirty = old->dirty;
  e.inRecord = old->inRecord;
  e.loaded = old->loaded;
  e.offset = old->offset;
  e.fieldSize = old->fieldSize;
  e.bufferName = old->bufferName;
  e.attribute.transferData(old->attribute);
  e.attribute.setName(newId->getString());
  myImp->entries.erase(oldId);
  myImp->crcValid = false;
}

void AttributeSetBuffer::getAttributeList(std::list<Attribute>& list) const {
  list.clear();
  for (AttributeSetBufferImp::Entries::const_iterator it = myImp->entries.begin(); it != myImp->entries.end(); ++it)
    list.push_back(it->second.attribute);
}

std::list<Attribute> AttributeSetBuffer::getAttributeList() const {
  std::list<Attribute> list;
  getAttributeList(list);
  return list;
}

void AttributeSetBuffer::getAttributeLayout(Layout& layout) const {
  if (myHasPendingChanges())
    Message::fatal("AttributeSetBuffer::getAttributeLayout", 0,
                   "Building a layout containing dirty attribute set buffers is not supported yet!");
  std::vector<AttributeSetBufferEntry const*> fields;
  for (AttributeSetBufferImp::Entries::const_iterator it = myImp->entries.begin(); it != myImp->entries.end(); ++it)
    if (it->second.inRecord) fields.push_back(&it->second);
  std::stable_sort(fields.begin(), fields.end(), [](AttributeSetBufferEntry const* a, AttributeSetBufferEntry const* b) {
    if (a->bufferName != b->bufferName) return a->bufferName < b->bufferName;
    return a->offset < b->offset;
  });
  layout.clear();
  for (AttributeSetBufferEntry const* e : fields) layout.push_back(std::make_pair(Attribute(e->attribute), e->offset));
}

// --- instances --------------------------------------------------------------------------

void AttributeSetBuffer::setNInstances(unsigned int n) {
  for (AttributeSetBufferImp::Entries::iterator it = myImp->entries.begin(); it != myImp->entries.end(); ++it) {
    AttributeSetBufferEntry& e = it->second;
    if (e.inRecord)
      e.attribute.resize(0);
    else
      resizeZeroed(e.attribute, n);
    e.dirty = false;
    e.loaded = false;
  }
  for (AttributeSetBufferImp::Buffers::iterator it = myImp->buffers.begin(); it != myImp->buffers.end(); ++it) {
    if (n > 0)
      it->second->allocate(1, n);
    else
      it->second->empty();
  }
  myImp->nInstances = n;
}

void AttributeSetBuffer::addInstances(unsigned int n) {
  if (n == 0) return;
  unsigned int const total = myImp->nInstances + n;
  for (AttributeSetBufferImp::Entries::iterator it = myImp->entries.begin(); it != myImp->entries.end(); ++it) {
    AttributeSetBufferEntry& e = it->second;
    if (!e.inRecord || e.loaded || e.dirty) AttributeHelper::reallocate(e.attribute, total);
  }
  for (AttributeSetBufferImp::Buffers::iterator it = myImp->buffers.begin(); it != myImp->buffers.end(); ++it) {
    if (it->second->isEmpty())
      it->second->allocate(1, total);
    else
      it->second->addInstances(n);
  }
  myImp->nInstances = total;
}

void AttributeSetBuffer::deleteInstances(unsigned int n) {
  if (n > myImp->nInstances)
    Message::fatal("AttributeSetBuffer::deleteInstances", 0,
                   "Cannot delete %u instances, AttributeSetBuffer has %u instances.", n, myImp->nInstances);
  if (n == 0) return;
  unsigned int const total = myImp->nInstances - n;
  for (AttributeSetBufferImp::Entries::iterator it = myImp->entries.begin(); it != myImp->entries.end(); ++it) {
    AttributeSetBufferEntry& e = it->second;
    if (!e.inRecord || e.loaded || e.dirty) AttributeHelper::reallocate(e.attribute, total);
  }
  for (AttributeSetBufferImp::Buffers::iterator it = myImp->buffers.begin(); it != myImp->buffers.end(); ++it) {
    if (total == 0)
      it->second->empty();
    else
      it->second->deleteInstances(n);
  }
  myImp->nInstances = total;
  myImp->nDeleted += n;
}

unsigned int AttributeSetBuffer::getNInstances() const { return myImp->nInstances; }

unsigned int AttributeSetBuffer::getNDeleted() const { return myImp->nDeleted; }

void AttributeSetBuffer::keepInstances(std::vector<unsigned int> const& list) {
  char const* const label = "AttributeSetBuffer::keepInstances";
  unsigned int const n = myImp->nInstances;
  if (list.size() > n)
    Message::fatal(label, 0, "AttributeSetBuffer has %lld instances, but instance list has %lld values",
                   static_cast<long long>(n), static_cast<long long>(list.size()));
  unsigned int smallest = 0;
  unsigned int largest = 0;
  if (vUtl::getLimits(list, smallest, largest) && (smallest < 1 || largest > n))
    Message::fatal(label, 0, "Instance numbers %u to %u of the list are outside the range 1 to %u.", smallest, largest,
                   n);
  unsigned int const kept = static_cast<unsigned int>(list.size());
  for (AttributeSetBufferImp::Entries::iterator it = myImp->entries.begin(); it != myImp->entries.end(); ++it) {
    AttributeSetBufferEntry& e = it->second;
    if (!e.inRecord || e.loaded || e.dirty) AttributeHelper::keepInstances(e.attribute, list);
  }
  for (AttributeSetBufferImp::Buffers::iterator it = myImp->buffers.begin(); it != myImp->buffers.end(); ++it) {
    RecordBuffer const& old = *it->second;
    vHandle<RecordBuffer> fresh(old.createNew());
    if (kept > 0) {
      fresh->allocate(1, kept);
      std::size_t const length = static_cast<std::size_t>(old.getRecordLength());
      for (unsigned int k = 0; k < kept && length > 0; ++k)
        std::memcpy(fresh->getBuffer(k + 1, 0), old.getBuffer(list[k], 0), length);
      if (it->second->hasInstanceFlags())
        for (unsigned int k = 0; k < kept; ++k) fresh->setInstanceFlag(k + 1, it->second->getInstanceFlag(list[k]));
    }
    it->second = fresh;
  }
  myImp->nInstances = kept;
  myImp->nDeleted += n - kept;
}

bool AttributeSetBuffer::multiplex() {
  if (myImp->buffers.empty()) return true;
  bool all = true;
  unsigned int const n = myImp->nInstances;
  for (AttributeSetBufferImp::Entries::iterator it = myImp->entries.begin(); it != myImp->entries.end(); ++it) {
    AttributeSetBufferEntry& e = it->second;
    if (!e.inRecord || !e.dirty) continue;
    Attribute const& a = e.attribute;
    if (a.isVariableLength() || a.getNBytes() != e.fieldSize || a.getNInstances() != n) {
      all = false;
      continue;
    }
    if (n > 0) myBuffer("AttributeSetBuffer::multiplex", e.bufferName).insertRange(a.getPointer(1), e.fieldSize, n, e.offset, 1);
    e.dirty = false;
    e.loaded = true;
  }
  return all;
}

// --- whole records ---------------------------------------------------------------------

void AttributeSetBuffer::exportRange(char* target, unsigned int first, unsigned int last,
                                     vString const& bufferName) const {
  char const* const label = "AttributeSetBuffer::exportRange";
  unsigned int const n = myImp->nInstances;
  if (first < 1 || last < first || last > n)
    Message::fatal(label, 0, "Invalid instance range %d-%d, AttributeSetBuffer has %d instances.",
                   static_cast<int>(first), static_cast<int>(last), static_cast<int>(n));
  myRefuseDirty(label, nullptr);
  std::vector<RecordBuffer*> const buffers = mySelect(label, bufferName);
  char* out = target;
  for (unsigned int i = first; i <= last; ++i) {
    for (RecordBuffer* b : buffers) {
      std::size_t const length = static_cast<std::size_t>(b->getRecordLength());
      if (length == 0) continue;
      std::memcpy(out, b->getBuffer(i, 0), length);
      out += length;
    }
  }
}

void AttributeSetBuffer::importRange(char const* source, unsigned int first, unsigned int last,
                                     unsigned int destination, vString const& bufferName) {
  char const* const label = "AttributeSetBuffer::importRange";
  unsigned int const n = myImp->nInstances;
  if (first < 1 || last < first)
    Message::fatal(label, 0, "Invalid instance range %d-%d, AttributeSetBuffer has %d instances.",
                   static_cast<int>(first), static_cast<int>(last), static_cast<int>(n));
  if (destination < 1)
    Message::fatal(label, 0, "Invalid destination instance %d ... must be greater than zero.",
                   static_cast<int>(destination));
  if (static_cast<unsigned long long>(destination) + (last - first) > n)
    Message::fatal(label, 0,
                   "Importing the instance range %d-%d to instance %d exceeds the capacity of the buffer (%d "
                   "instances)",
                   static_cast<int>(first), static_cast<int>(last), static_cast<int>(destination), static_cast<int>(n));
  myRefuseDirty(label, nullptr);
  std::vector<RecordBuffer*> const buffers = mySelect(label, bufferName);
  char const* in = source;
  for (unsigned int k = 0; k <= last - first; ++k) {
    for (RecordBuffer* b : buffers) {
      std::size_t const length = static_cast<std::size_t>(b->getRecordLength());
      if (length == 0) continue;
      std::memcpy(b->getBuffer(destination + k, 0), in, length);
      in += length;
      b->setDirty(true);
    }
  }
  myDropCopies();
}

void AttributeSetBuffer::readBufferRange(AttributeSetBuffer const& source, unsigned int first, unsigned int last,
                                         unsigned int destination) {
  char const* const label = "AttributeSetBuffer::readBufferRange";
  myRefuseDirty(label, &source);
  unsigned int const sourceN = source.myImp->nInstances;
  unsigned int const n = myImp->nInstances;
  if (first < 1 || last < first || last > sourceN)
    Message::fatal(label, 0, "Invalid instance range %d-%d, AttributeSetBuffer has %d instances.",
                   static_cast<int>(first), static_cast<int>(last), static_cast<int>(sourceN));
  if (destination < 1)
    Message::fatal(label, 0, "Invalid destination instance %d ... must be greater than zero.",
                   static_cast<int>(destination));
  if (static_cast<unsigned long long>(destination) + (last - first) > n)
    Message::fatal(label, 0,
                   "Reading the instance range %d-%d to instance %d exceeds the capacity of the buffer (%d instances)",
                   static_cast<int>(first), static_cast<int>(last), static_cast<int>(destination), static_cast<int>(n));
  if (source.myImp.pointer() == myImp.pointer()) {
    if (first == destination) return;
    AttributeSetBuffer const copy(source);
    return readBufferRange(copy, first, last, destination);
  }
  std::vector<unsigned int> from(last - first + 1);
  for (unsigned int k = 0; k < from.size(); ++k) from[k] = first + k;
  myCopyInstances(source, from, destination, true);
}

void AttributeSetBuffer::readBufferInstances(AttributeSetBuffer const& source, std::vector<unsigned int> const& list,
                                             unsigned int destination) {
  char const* const label = "AttributeSetBuffer::readBufferInstances";
  myRefuseDirty(label, &source);
  unsigned int const sourceN = source.myImp->nInstances;
  unsigned int const n = myImp->nInstances;
  for (unsigned int i : list)
    if (i < 1 || i > sourceN)
      Message::fatal(label, 0, "Invalid instance %d, AttributeSetBuffer has %d instances.", static_cast<int>(i),
                     static_cast<int>(sourceN));
  if (destination < 1)
    Message::fatal(label, 0, "Invalid destination instance %d ... must be greater than zero.",
                   static_cast<int>(destination));
  if (static_cast<unsigned long long>(destination) + list.size() - 1 > n && !list.empty())
    Message::fatal(label, 0, "Reading the instances supplied exceeds the capacity of the buffer (%d instances)",
                   static_cast<int>(n));
  if (list.empty()) return;
  if (source.myImp.pointer() == myImp.pointer()) {
    AttributeSetBuffer const copy(source);
    return readBufferInstances(copy, list, destination);
  }
  myCopyInstances(source, list, destination, false);
}

// Records of record buffers that both have, under one name and of one
// length, move whole; a field whose attribute has the same place in the
// source's record moves with them. Everything else goes attribute by
// attribute, by name; attributes the source lacks are left as they are.
void AttributeSetBuffer::myCopyInstances(AttributeSetBuffer const& source, std::vector<unsigned int> const& from,
                                         unsigned int destination, bool contiguous) {
  char const* const label = "AttributeSetBuffer::readBufferRange";
  AttributeSetBufferImp& src = *source.myImp;
  unsigned int const count = static_cast<unsigned int>(from.size());
  std::vector<vString> whole;
  for (AttributeSetBufferImp::Buffers::iterator it = myImp->buffers.begin(); it != myImp->buffers.end(); ++it) {
    AttributeSetBufferImp::Buffers::iterator const other = src.buffers.find(it->first);
    if (other == src.buffers.end() || other->second->getRecordLength() != it->second->getRecordLength()) continue;
    std::size_t const length = static_cast<std::size_t>(it->second->getRecordLength());
    for (unsigned int k = 0; k < count && length > 0; ++k)
      std::memcpy(it->second->getBuffer(destination + k, 0), other->second->getBuffer(from[k], 0), length);
    it->second->setDirty(true);
    whole.push_back(it->first);
  }
  for (AttributeSetBufferImp::Entries::iterator it = myImp->entries.begin(); it != myImp->entries.end(); ++it) {
    AttributeSetBufferEntry& e = it->second;
    AttributeSetBufferEntry* s = source.myFind(it->first);
    if (s == nullptr) continue;
    if (e.inRecord && s->inRecord && e.bufferName == s->bufferName && e.offset == s->offset &&
        e.fieldSize == s->fieldSize && std::find(whole.begin(), whole.end(), e.bufferName) != whole.end())
      continue;
    source.myLoad(*s);
    Attribute const& a = s->attribute;
    if (!e.inRecord) {
      if (contiguous) {
        AttributeHelper::copyRange(a, from.front(), from.back(), e.attribute, destination);
      } else if (a.isVariableLength()) {
        for (unsigned int k = 0; k < count; ++k) AttributeHelper::copyRange(a, from[k], from[k], e.attribute, destination + k);
      } else {
        AttributeHelper::copy(a, from, e.attribute, destination);
      }
      continue;
    }
    if (a.isVariableLength() || a.getDataType() != e.attribute.getDataType() || a.getNBytes() != e.fieldSize)
      Message::fatal(label, 0, "Attribute '%s' does not fit its field in RecordBuffer '%s'.", a.getName().c_str(),
                     e.bufferName.c_str());
    RecordBuffer& b = myBuffer(label, e.bufferName);
    if (contiguous) {
      b.insertRange(a.getPointer(from.front()), e.fieldSize, count, e.offset, destination);
    } else {
      for (unsigned int k = 0; k < count; ++k) b.insertRange(a.getPointer(from[k]), e.fieldSize, 1, e.offset, destination + k);
    }
  }
  myDropCopies();
}

// --- single attributes -------------------------------------------------------------------

void AttributeSetBuffer::loadAttributeData(vUCString const& name) {
  myLoad(myGet("AttributeSetBuffer::loadAttributeData", name));
}

void AttributeSetBuffer::setAttributeAndData(Attribute& attribute) {
  unsigned int const n = myImp->nInstances;
  if (attribute.getNInstances() != n)
    Message::fatal("AttributeSetBuffer::setAttributeAndData", 0,
                   "New attribute '%s' has %lld instances, but the buffer has %lld. They must be the same.",
                   attribute.getName().c_str(), static_cast<long long>(attribute.getNInstances()),
                   static_cast<long long>(n));
  AttributeSetBufferEntry* e = myFind(attribute.getName());
  if (e == nullptr) {
    e = &newEntry(myImp->entries, Attribute::getNameID(attribute.getName()));
    myImp->crcValid = false;
  }
  e->attribute.transferData(attribute);
  e->dirty = true;
  e->loaded = e->inRecord;
}

void* AttributeSetBuffer::getPointer(vString const& name) {
  char const* const label = "AttributeSetBuffer::getPointer";
  AttributeSetBufferEntry& e = myGet(label, vUCString(name));
  if (e.inRecord)
    Message::fatal(label, 0, "Attribute '%s' is part of a RecordBuffer. You cannot call getPointer for this Attribute",
                   e.attribute.getName().c_str());
  return e.attribute.getNInstances() > 0 ? e.attribute.getPointer(1) : nullptr;
}

bool AttributeSetBuffer::isDirty(vUCString const& name) const {
  AttributeSetBufferEntry const* e = myFind(name);
  return e != nullptr && e->dirty;
}

Attribute& AttributeSetBuffer::updateAttributeAndData(vUCString const& name) {
  AttributeSetBufferEntry& e = myGet("AttributeSetBuffer::updateAttributeAndData", name);
  myLoad(e);
  e.dirty = true;
  return e.attribute;
}

Attribute& AttributeSetBuffer::updateAttributeAndData(vUCStringTableData const* name) {
  AttributeSetBufferEntry& e = myGet("AttributeSetBuffer::updateAttributeAndData", name);
  myLoad(e);
  e.dirty = true;
  return e.attribute;
}

Attribute const& AttributeSetBuffer::readAttributeAndData(vUCString const& name) const {
  AttributeSetBufferEntry& e = myGet("AttributeSetBuffer::readAttributeAndData", name);
  myLoad(e);
  return e.attribute;
}

Attribute const& AttributeSetBuffer::readAttributeAndData(vUCStringTableData const* name) const {
  AttributeSetBufferEntry& e = myGet("AttributeSetBuffer::readAttributeAndData", name);
  myLoad(e);
  return e.attribute;
}

uint32_t AttributeSetBuffer::getAttributeIDCRC() const {
  AttributeSetBufferImp& imp = *myImp;
  if (imp.crcValid) return imp.crc;
  uint32_t crc = 0;
  for (AttributeSetBufferImp::Entries::const_iterator it = imp.entries.begin(); it != imp.entries.end(); ++it) {
    AttributeSetBufferEntry const& e = it->second;
    // The marker of a field is its record buffer's place in name order, so
    // that it depends on the layout alone.
    uint32_t marker = 0;
    int32_t offset = 0;
    if (e.inRecord) {
      AttributeSetBufferImp::Buffers::const_iterator const b = imp.buffers.find(e.bufferName);
      marker = 1u + static_cast<uint32_t>(std::distance(imp.buffers.cbegin(), b));
      offset = e.offset;
    }
    crc = vUtl::calculateCRC(&marker, sizeof marker, crc);
    crc = vUtl::calculateCRC(&offset, sizeof offset, crc);
    vUCString const& name = it->first->getString();
    crc = vUtl::calculateCRC(name.c_str(), name.length(), crc);
  }
  imp.crc = crc;
  imp.crcValid = true;
  return crc;
}
