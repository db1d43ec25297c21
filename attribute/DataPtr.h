#ifndef ATTRIBUTE_DATAPTR_H
#define ATTRIBUTE_DATAPTR_H

// DataPtr: a typed block of values in transit between conversions, with the
// lengths of its instances when they differ, and a record of who owns what.
//
// The element count is the number of values, or with a lengths array the
// number of instances (the values then being the sum of the lengths). Blocks
// are array-new blocks of the value type and lengths an array-new block of
// unsigned int; what a DataPtr owns it frees at its end.
//
// Ownership moves rather than copies: operator= takes everything from the
// right side, and prepare() lets the output of a conversion take over the
// input's block when both types have the same size, so that the conversion
// works in place. releaseData() and releaseLengths() hand the pointers out
// for good; using them afterwards is an error.
//
// Values of vINT8, vUINT8, vINT16, vUINT16, vINT32, vUINT32, vINT64,
// vFLOAT32, vFLOAT64 and vBOOL8 can be held.

#include "foundation/DataType.h"

class DataPtr {
 public:
  enum TransferMethodType {
    // The given pointers are taken over and freed here.
    TRANSFER = 1,
    // What is given is copied; a missing block is allocated.
    COPY = 2,
    // A new block is allocated (zeroed); given data are ignored, given
    // lengths are copied to size it.
    ALLOCATE = 3,
    // The given pointers are used and never freed here: a view of memory
    // that someone else keeps.
    BORROW = 4
  };

  // Empty: no type, no values.
  DataPtr();
  // A deep copy.
  DataPtr(DataPtr const& other);
  // Takes everything from other, as operator= does.
  DataPtr(DataPtr&& other);
  DataPtr(DataType type, unsigned int nElements, void* data, unsigned int* lengths, TransferMethodType method);
  // Copies of what is given; a missing block is allocated (zeroed).
  DataPtr(DataType type, unsigned int nElements, void const* data = nullptr, unsigned int const* lengths = nullptr);
  ~DataPtr();

  // A move: this takes the right side's data, lengths and count, and the
  // right side is left empty.
  DataPtr& operator=(DataPtr& rhs);
  DataPtr& operator=(DataPtr&& rhs);

  unsigned int getNElements() const { return m_nElements; }
  DataType getDataType() const { return m_dataType; }
  DataType getOriginalDataType() const { return m_originalDataType; }
  void setOriginalDataType(DataType type) { m_originalDataType = type; }
  TransferMethodType getTransferMethod() const { return m_transferMethod; }
  void* getData() const;
  unsigned int* getLengths() const;
  bool isVariableLength() const { return m_lengths != nullptr; }
  // Values held: the sum of the lengths, or the element count.
  long long getTotalLength() const;
  long long getTotalNBytes() const;
  bool ownsData() const { return m_ownsData; }
  bool ownsLengths() const { return m_ownsLengths; }
  // True when this object works on the block of the DataPtr it was prepared
  // from.
  bool isInPlace() const { return m_conversion != 0; }

  // Makes this (keeping its own data type) the output of a conversion from
  // source: takes over source's block when source owns it and the element
  // sizes agree, and otherwise allocates a block for source's values, with a
  // copy of its lengths.
  void prepare(DataPtr& source);
  // The same, always with a new block.
  void prepare(DataPtr const& source);
  // This becomes a copy of source that owns everything.
  void deepCopy(DataPtr const& source);

  // Hands the block (or lengths) out; this object no longer frees it.
  void* releaseData();
  unsigned int* releaseLengths();

 private:
  void myInit(DataType type, unsigned int nElements, void const* data, unsigned int const* lengths,
              TransferMethodType method, char const* label);
  void myDeallocData();
  void myDeallocLengths();
  void* myAllocData(DataType type, long long nValues, char const* label) const;
  static long long mySum(unsigned int const* lengths, unsigned int n);

  bool m_dataReleased;
  bool m_lengthsReleased;
  bool m_ownsData;
  bool m_ownsLengths;
  int m_conversion;
  unsigned int m_nElements;
  DataType m_dataType;
  unsigned int* m_lengths;
  void* m_data;
  TransferMethodType m_transferMethod;
  DataType m_originalDataType;
};

#endif
