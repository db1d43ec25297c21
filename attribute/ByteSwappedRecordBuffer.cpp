#include "attribute/ByteSwappedRecordBuffer.h"

#include <algorithm>

#include "foundation/Message.h"
#include "foundation/vUtl.h"

ByteSwappedRecordBuffer::ByteSwappedRecordBuffer(int recordLength) : RecordBuffer(recordLength) {}

ByteSwappedRecordBuffer::~ByteSwappedRecordBuffer() {}

RecordBuffer* ByteSwappedRecordBuffer::createNew() const {
  ByteSwappedRecordBuffer* fresh = new ByteSwappedRecordBuffer(getRecordLength());
  fresh->mySizes = mySizes;
  return fresh;
}

void ByteSwappedRecordBuffer::setType(int offset, DataType type) {
  if (offset < 0 || offset >= getRecordLength())
    Message::fatal("ByteSwappedRecordBuffer::setType", 0, "offset(%d) is outside the record of length %d.", offset,
                   getRecordLength());
  mySizes[offset] = vUtl::dataTypeSize(type);
}

int ByteSwappedRecordBuffer::getSize(int offset) const {
  std::map<int, int>::const_iterator const it = mySizes.find(offset);
  if (it == mySizes.end())
    Message::fatal("ByteSwappedRecordBuffer::getType", 0, "Offset (%d) to attribute does not exist.", offset);
  return it->second;
}

int ByteSwappedRecordBuffer::myGetSize(int offset) const { return getSize(offset); }

int ByteSwappedRecordBuffer::myGroupLength(char const* label, int elementSize, int size) const {
  if (elementSize % size != 0)
    Message::fatal(label, 0, "elementSize(%d) is not a multiple of the size (%d) of the field's values.", elementSize,
                   size);
  return elementSize / size;
}

// Whole runs go through the strided form of the swap: the records on one
// side, the packed fields on the other, swapped while they move.

void ByteSwappedRecordBuffer::doInsertRange(void const* data, int elementSize, unsigned int count, int offset,
                                            unsigned int first) {
  int const size = myGetSize(offset);
  if (size <= 1) return RecordBuffer::doInsertRange(data, elementSize, count, offset, first);
  int const group = myGroupLength("ByteSwappedRecordBuffer::insertRange", elementSize, size);
  if (count == 0) return;
  setDirty(true);
  if (isRange()) {
    vUtl::swapBytes(data, size, elementSize, count, group, myRecord(myRecordIndex(first)) + offset, getRecordLength());
    return;
  }
  unsigned char const* s = static_cast<unsigned char const*>(data);
  for (unsigned int k = 0; k < count; ++k)
    vUtl::swapBytes(s + static_cast<std::size_t>(k) * elementSize, size, elementSize, 1, group,
                    myRecord(myRecordIndex(first + k)) + offset, elementSize);
}

void ByteSwappedRecordBuffer::doExtractRange(void* data, int elementSize, unsigned int count, int offset,
                                             unsigned int first) const {
  int const size = myGetSize(offset);
  if (size <= 1) return RecordBuffer::doExtractRange(data, elementSize, count, offset, first);
  int const group = myGroupLength("ByteSwappedRecordBuffer::extractRange", elementSize, size);
  if (count == 0) return;
  if (isRange()) {
    vUtl::swapBytes(myRecord(myRecordIndex(first)) + offset, size, getRecordLength(), count, group, data, elementSize);
    return;
  }
  unsigned char* d = static_cast<unsigned char*>(data);
  for (unsigned int k = 0; k < count; ++k)
    vUtl::swapBytes(myRecord(myRecordIndex(first + k)) + offset, size, elementSize, 1, group,
                    d + static_cast<std::size_t>(k) * elementSize, elementSize);
}

void ByteSwappedRecordBuffer::doInsertList(void const* data, int elementSize, unsigned int count, int offset,
                                           std::vector<unsigned int> const& list) {
  int const size = myGetSize(offset);
  if (size <= 1) return RecordBuffer::doInsertList(data, elementSize, count, offset, list);
  int const group = myGroupLength("ByteSwappedRecordBuffer::insertList", elementSize, size);
  if (count == 0) return;
  setDirty(true);
  unsigned char const* s = static_cast<unsigned char const*>(data);
  for (unsigned int k = 0; k < count; ++k)
    vUtl::swapBytes(s + static_cast<std::size_t>(k) * elementSize, size, elementSize, 1, group,
                    myRecord(myRecordIndex(list[k])) + offset, elementSize);
}

void ByteSwappedRecordBuffer::doExtractList(void* data, int elementSize, unsigned int count, int offset,
                                            std::vector<unsigned int> const& list) const {
  int const size = myGetSize(offset);
  if (size <= 1) return RecordBuffer::doExtractList(data, elementSize, count, offset, list);
  int const group = myGroupLength("ByteSwappedRecordBuffer::extractList", elementSize, size);
  unsigned char* d = static_cast<unsigned char*>(data);
  for (unsigned int k = 0; k < count; ++k)
    vUtl::swapBytes(myRecord(myRecordIndex(list[k])) + offset, size, elementSize, 1, group,
                    d + static_cast<std::size_t>(k) * elementSize, elementSize);
}

void ByteSwappedRecordBuffer::fixExternalData(void* records, int nRecords, int recordLength) const {
  if (nRecords <= 0) return;
  unsigned char* base = static_cast<unsigned char*>(records);
  for (std::map<int, int>::const_iterator it = mySizes.begin(); it != mySizes.end(); ++it) {
    int const size = it->second;
    if (size <= 1) continue;
    // A field runs to the next typed offset or the end of the record.
    std::map<int, int>::const_iterator next = it;
    ++next;
    int const end = next == mySizes.end() ? recordLength : std::min(next->first, recordLength);
    int const values = (end - it->first) / size;
    if (values <= 0) continue;
    vUtl::swapBytes(base + it->first, size, recordLength, static_cast<unsigned int>(nRecords), values, base + it->first,
                    recordLength);
  }
}
