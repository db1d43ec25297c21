#ifndef ATTRIBUTE_RECORDBUFFER_H
#define ATTRIBUTE_RECORDBUFFER_H

// RecordBuffer: instances kept as fixed-length records in one block of
// memory, as a file holds them, with attributes as byte offsets inside a
// record. A file store reads a run of records into the block at once and
// then cuts each attribute's values out of it (extractRange), or fills the
// fields and writes the records back (insertRange).
//
// Two forms: a range buffer holds the records of instances first to last in
// order; a list buffer holds the records of the instances of a list, in the
// order of the list, found through a map. Instance numbers are 1-based.
//
// A field is elementSize bytes at offset in each record; insert and extract
// move count such fields between the records and a packed block of the
// caller (field after field). Fields of 4 and 8 bytes move as single words,
// others by memcpy.
//
// Each instance can carry a flag word, allocated on the first set and kept
// when instances are added or deleted. Inserting marks the buffer dirty;
// allocate and empty make it clean.

#include <cstddef>
#include <unordered_map>
#include <vector>

class RecordBuffer {
 public:
  explicit RecordBuffer(int recordLength);
  // Deep copies: records, map and flags.
  RecordBuffer(RecordBuffer const& other);
  RecordBuffer& operator=(RecordBuffer const& other);
  virtual ~RecordBuffer();

  // Puts data that came from outside in this buffer's byte order in place:
  // nRecords records of recordLength bytes laid out as this buffer's. Plain
  // records need nothing.
  virtual void fixExternalData(void* records, int nRecords, int recordLength) const;
  // A new, empty buffer of the same kind, record length and field types.
  virtual RecordBuffer* createNew() const;
  // Range form only: n more records at the end (zeroed), or the last n
  // fewer; the first instance stays.
  virtual void addInstances(unsigned int n);
  virtual void deleteInstances(unsigned int n);
  virtual bool hasInstanceFlags() const;
  // 0 until a flag is set.
  virtual unsigned int getInstanceFlag(unsigned int instance);
  virtual void setInstanceFlag(unsigned int instance, unsigned int value);

  // A new buffer of the same kind holding a copy of everything.
  RecordBuffer* clone() const;

  // Range form, instances first to last; list form, the listed instances in
  // list order (each instance once). Records start zeroed.
  void allocate(unsigned int first, unsigned int last);
  void allocate(std::vector<unsigned int> const& list);
  void empty();

  int getRecordLength() const { return myRecordLength; }
  unsigned int getNInstances() const { return myNRecords; }
  // Record length times records; 0 when empty.
  long long getBufferSize() const;
  bool isEmpty() const { return myNRecords == 0; }
  bool isRange() const { return myIsRange; }
  bool isDirty() const { return myDirty; }
  void setDirty(bool dirty) { myDirty = dirty; }

  // Whether the buffer holds the instance(s); an instance 0 is fatal.
  bool inside(unsigned int instance) const;
  bool inside(unsigned int first, unsigned int last) const;
  bool inside(std::vector<unsigned int> const& list) const;

  // The address of a field of an instance's record (the instance must be
  // held).
  void* getBuffer(unsigned int instance, int offset);
  void const* getBuffer(unsigned int instance, int offset) const;
  // The instances of the first and the last record.
  unsigned int getFirstRecord() const;
  unsigned int getLastRecord() const;
  // The instances held, in record order.
  void getInstanceList(std::vector<unsigned int>& list) const;

  // count fields of instances first, first + 1, ... between data and the
  // records.
  void insertRange(void const* data, int elementSize, unsigned int count, int offset, unsigned int first);
  void extractRange(void* data, int elementSize, unsigned int count, int offset, unsigned int first) const;
  // count fields of the first count instances of the list.
  void insertList(void const* data, int elementSize, unsigned int count, int offset,
                  std::vector<unsigned int> const& list);
  void extractList(void* data, int elementSize, unsigned int count, int offset,
                   std::vector<unsigned int> const& list) const;

 protected:
  virtual void doInsertRange(void const* data, int elementSize, unsigned int count, int offset, unsigned int first);
  virtual void doInsertList(void const* data, int elementSize, unsigned int count, int offset,
                            std::vector<unsigned int> const& list);
  virtual void doExtractRange(void* data, int elementSize, unsigned int count, int offset,
                              unsigned int first) const;
  virtual void doExtractList(void* data, int elementSize, unsigned int count, int offset,
                             std::vector<unsigned int> const& list) const;

  // The record index of a held instance.
  unsigned int myRecordIndex(unsigned int instance) const;
  unsigned char* myRecord(unsigned int index) const {
    return myBuffer + static_cast<std::size_t>(index) * static_cast<std::size_t>(myRecordLength);
  }
  void myCheckInputs(char const* label, int elementSize, unsigned int count, int offset) const;
  void myCheckRange(char const* label, unsigned int first, unsigned int count) const;
  void myCheckList(char const* label, unsigned int count, std::vector<unsigned int> const& list) const;
  // Copies all that the base holds from other.
  void myAssignRecords(RecordBuffer const& other);

 private:
  void myResizeRecords(unsigned int nRecords);
  void myCheckFlagInstance(char const* label, unsigned int instance) const;

  unsigned int myFirst;
  unsigned int myLast;
  std::unordered_map<unsigned int, unsigned int> myMap;
  bool myIsRange;
  int myRecordLength;
  unsigned int myNRecords;
  unsigned char* myBuffer;
  unsigned int myNFlags;
  unsigned int* myFlags;
  bool myDirty;
};

#endif
