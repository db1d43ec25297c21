#ifndef ATTRIBUTE_BYTESWAPPEDRECORDBUFFER_H
#define ATTRIBUTE_BYTESWAPPEDRECORDBUFFER_H

// ByteSwappedRecordBuffer: a RecordBuffer whose records hold their numbers
// in the other byte order, as read from a file written on a machine of the
// other kind. The records stay as the file has them; each field is swapped
// as it moves in or out, by the element size of its type (setType), in the
// same pass as the move. Fields of 1-byte types (such as the IBM floats of
// a trace that are told as vCHAR8 so that a later conversion sees the file's
// bytes) move unchanged.

#include <map>

#include "attribute/RecordBuffer.h"
#include "foundation/DataType.h"

class ByteSwappedRecordBuffer : public RecordBuffer {
 public:
  explicit ByteSwappedRecordBuffer(int recordLength);
  ~ByteSwappedRecordBuffer() override;

  // Swaps each field of each record in place, by the types set: for records
  // copied out of the buffer as they are and wanted in this machine's order.
  void fixExternalData(void* records, int nRecords, int recordLength) const override;
  RecordBuffer* createNew() const override;

  // The type of the field at offset; set again, the new type counts.
  void setType(int offset, DataType type);
  // The element size of the field at offset; an offset never set is fatal
  // from "ByteSwappedRecordBuffer::getType": "Offset (%d) to attribute does
  // not exist.".
  int getSize(int offset) const;

 protected:
  void doInsertRange(void const* data, int elementSize, unsigned int count, int offset, unsigned int first) override;
  void doInsertList(void const* data, int elementSize, unsigned int count, int offset,
                    std::vector<unsigned int> const& list) override;
  void doExtractRange(void* data, int elementSize, unsigned int count, int offset, unsigned int first) const override;
  void doExtractList(void* data, int elementSize, unsigned int count, int offset,
                     std::vector<unsigned int> const& list) const override;

  int myGetSize(int offset) const;
  // The values of one field of elementSize bytes: elementSize / size.
  int myGroupLength(char const* label, int elementSize, int size) const;

 private:
  std::map<int, int> mySizes;
};

#endif
