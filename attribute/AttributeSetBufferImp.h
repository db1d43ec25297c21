#ifndef ATTRIBUTE_ATTRIBUTESETBUFFERIMP_H
#define ATTRIBUTE_ATTRIBUTESETBUFFERIMP_H

// AttributeSetBufferImp: what an AttributeSetBuffer holds, shared by the
// buffers assigned from one another. The operations are AttributeSetBuffer's.
//
// Each attribute has an entry, ordered by the lexical rank of its interned
// name. A plain entry's Attribute holds the values of all instances. An
// entry in a record is a field of a named RecordBuffer: its Attribute holds
// no values until they are asked for (then a copy of the field, "loaded"),
// or until they are changed through the buffer ("dirty": newer than the
// records, until multiplex() writes them back).

#include <cstdint>
#include <map>

#include "attribute/Attribute.h"
#include "attribute/RecordBuffer.h"
#include "foundation/vHandle.h"
#include "foundation/vString.h"
#include "foundation/vUCStringTable.h"

struct AttributeSetBufferEntry {
  AttributeSetBufferEntry() : dirty(false), inRecord(false), loaded(false), offset(0), fieldSize(0) {}

  bool dirty;
  bool inRecord;
  bool loaded;
  // Byte offset of the field in the record, and its bytes per instance as
  // noted when the field was laid out.
  int offset;
  int fieldSize;
  Attribute attribute;
  // The RecordBuffer that holds the field.
  vString bufferName;
};

class AttributeSetBufferImp {
 public:
  struct ByNameRank {
    bool operator()(vUCStringTableData const* a, vUCStringTableData const* b) const {
      return vUCStringTableData::isLess(a, b);
    }
  };
  typedef std::map<vUCStringTableData const*, AttributeSetBufferEntry, ByNameRank> Entries;
  typedef std::map<vString, vHandle<RecordBuffer> > Buffers;

  AttributeSetBufferImp();
  // A deep copy: attributes with their values and records of their own.
  AttributeSetBufferImp(AttributeSetBufferImp const& other);
  ~AttributeSetBufferImp();

  unsigned int nInstances;
  Entries entries;
  Buffers buffers;
  unsigned int nDeleted;
  // The cached getAttributeIDCRC(), valid until the layout changes.
  bool crcValid;
  uint32_t crc;

 private:
  AttributeSetBufferImp& operator=(AttributeSetBufferImp const&) = delete;
};

#endif
