#ifndef ATTRIBUTE_ATTRIBUTESETBUFFER_H
#define ATTRIBUTE_ATTRIBUTESETBUFFER_H

// AttributeSetBuffer: the attributes of a set together with their values for
// instances 1 to getNInstances(). Some are held as whole Attribute objects;
// others are fields of named RecordBuffers, laid out as a file holds them,
// so that a block of instances moves between a store and its user as records
// rather than attribute by attribute.
//
// A field's values are cut out of the records when asked for
// (readAttributeAndData, loadAttributeData); changes made through
// updateAttributeAndData or setAttributeAndData stay in the Attribute
// ("dirty") until multiplex() puts them back into the records. Moves of
// whole records (import, export, reading from another buffer, layouts)
// refuse buffers with such changes pending.
//
// Assignment shares: after a = b both name the same buffer. Copy
// construction is deep. One thread at a time.

#include <cstdint>
#include <list>
#include <utility>
#include <vector>

#include "attribute/Attribute.h"
#include "attribute/AttributeSetBufferImp.h"
#include "attribute/RecordBuffer.h"
#include "foundation/vHandle.h"
#include "foundation/vString.h"
#include "foundation/vUCString.h"

class AttributeSetBuffer {
 public:
  // (attribute, byte offset in the record)
  typedef std::list<std::pair<Attribute, int> > Layout;

  AttributeSetBuffer();
  AttributeSetBuffer(AttributeSetBuffer const& other);
  AttributeSetBuffer& operator=(AttributeSetBuffer const& other);
  ~AttributeSetBuffer();

  // A plain attribute: its values when it has as many instances as the
  // buffer, otherwise zeros.
  void addAttribute(Attribute const& attribute);
  // A copy of buffer under name, with the layout's attributes as its fields.
  // A buffer with records must hold instances 1 to getNInstances(); an empty
  // one is allocated so.
  void addRecordBuffer(vString const& name, RecordBuffer const& buffer, Layout const& layout);
  bool hasAttribute(vUCString const& name) const;
  bool hasAttribute(vUCStringTableData const* name) const;
  void deleteAttribute(vUCString const& name);
  void renameAttribute(vUCString const& oldName, vUCString const& newName);
  // The definitions, in name order.
  void getAttributeList(std::list<Attribute>& list) const;
  std::list<Attribute> getAttributeList() const;
  // The fields of all record buffers, in record order (by buffer name, then
  // offset).
  void getAttributeLayout(Layout& layout) const;

  // n instances, all values zero; pending changes are dropped.
  void setNInstances(unsigned int n);
  // n more instances at the end (zero), or the last n fewer.
  void addInstances(unsigned int n);
  void deleteInstances(unsigned int n);
  unsigned int getNInstances() const;
  // Instances removed by deleteInstances and keepInstances so far.
  unsigned int getNDeleted() const;
  // Keeps the listed instances, in the order of the list.
  void keepInstances(std::vector<unsigned int> const& list);
  // Puts the pending changes of fields back into their records. False when
  // some attribute no longer fits its field (it stays pending).
  bool multiplex();

  // Raw records, per instance those of each record buffer in name order (or
  // of the one named). importRange takes the records of instances first to
  // last from source and puts them at destination on.
  void importRange(char const* source, unsigned int first, unsigned int last, unsigned int destination,
                   vString const& bufferName = vString());
  void exportRange(char* target, unsigned int first, unsigned int last, vString const& bufferName = vString()) const;
  // Instances of another buffer into this one, from destination on; by name
  // of attribute and of record buffer.
  void readBufferRange(AttributeSetBuffer const& source, unsigned int first, unsigned int last,
                       unsigned int destination = 1);
  void readBufferInstances(AttributeSetBuffer const& source, std::vector<unsigned int> const& list,
                           unsigned int destination = 1);

  void loadAttributeData(vUCString const& name);
  // Takes the attribute's values over (the attribute ends empty); it must
  // have the buffer's number of instances.
  void setAttributeAndData(Attribute& attribute);
  // The values of a plain attribute (null without instances).
  void* getPointer(vString const& name);
  // Whether the attribute was changed through the buffer since the last
  // setNInstances or multiplex (false for a name not held).
  bool isDirty(vUCString const& name) const;
  // The stored attribute with its values, for changing (marks it dirty) or
  // for reading.
  Attribute& updateAttributeAndData(vUCString const& name);
  Attribute& updateAttributeAndData(vUCStringTableData const* name);
  Attribute const& readAttributeAndData(vUCString const& name) const;
  Attribute const& readAttributeAndData(vUCStringTableData const* name) const;
  // A chained CRC of the layout: two buffers of the same attributes in the
  // same places give the same value.
  uint32_t getAttributeIDCRC() const;

 private:
  AttributeSetBufferEntry* myFind(vUCStringTableData const* name) const;
  AttributeSetBufferEntry* myFind(vUCString const& name) const;
  AttributeSetBufferEntry& myGet(char const* label, vUCString const& name) const;
  AttributeSetBufferEntry& myGet(char const* label, vUCStringTableData const* name) const;
  void myLoad(AttributeSetBufferEntry& entry) const;
  void myDropCopies() const;
  bool myHasPendingChanges() const;
  void myRefuseDirty(char const* label, AttributeSetBuffer const* other) const;
  RecordBuffer& myBuffer(char const* label, vString const& name) const;
  std::vector<RecordBuffer*> mySelect(char const* label, vString const& bufferName) const;
  void myCopyInstances(AttributeSetBuffer const& source, std::vector<unsigned int> const& from,
                       unsigned int destination, bool contiguous);

  vHandle<AttributeSetBufferImp> myImp;
};

#endif
