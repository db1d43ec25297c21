#include "attribute/RecordBuffer.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "foundation/Message.h"
#include "foundation/vUtlSize.h"

namespace {

// Field moves with the record stride on one side and the packed stride on
// the other. Fixed sizes let the compiler use one load and one store.
template <std::size_t N>
inline void scatterFixed(unsigned char const* s, unsigned char* d, std::size_t dStride, unsigned int count) {
  for (unsigned int k = 0; k < count; ++k) std::memcpy(d + k * dStride, s + k * N, N);
}

template <std::size_t N>
inline void gatherFixed(unsigned char const* s, std::size_t sStride, unsigned char* d, unsigned int count) {
  for (unsigned int k = 0; k < count; ++k) std::memcpy(d + k * N, s + k * sStride, N);
}

// nRecords records of recordLength bytes, zeroed; none for an empty buffer.
unsigned char* newRecords(int recordLength, unsigned int nRecords) {
  std::size_t const bytes = vUtl::checkedBytes("RecordBuffer::allocate", nRecords, recordLength);
  if (bytes == 0) return nullptr;
  try {
    return new unsigned char[bytes]();
  } catch (std::bad_alloc const&) {
    Message::fatal("RecordBuffer::allocate", 0, "Cannot allocate %lld bytes of records.",
                   static_cast<long long>(recordLength) * nRecords);
  }
}

// One flag word per record, zeroed.
unsigned int* newFlags(unsigned int nRecords) {
  vUtl::checkedBytes("RecordBuffer::setInstanceFlag", nRecords, sizeof(unsigned int));
  return new unsigned int[nRecords]();
}

}  // namespace

RecordBuffer::RecordBuffer(int recordLength)
    : myFirst(1),
      myLast(0),
      myIsRange(true),
      myRecordLength(recordLength),
      myNRecords(0),
      myBuffer(nullptr),
      myNFlags(0),
      myFlags(nullptr),
      myDirty(false) {
  if (recordLength < 0)
    Message::fatal("RecordBuffer::RecordBuffer", 0, "Record length %d is less than zero.", recordLength);
}

RecordBuffer::RecordBuffer(RecordBuffer const& other) : RecordBuffer(other.myRecordLength) { myAssignRecords(other); }

RecordBuffer& RecordBuffer::operator=(RecordBuffer const& other) {
  if (this != &other) myAssignRecords(other);
  return *this;
}

RecordBuffer::~RecordBuffer() {
  delete[] myBuffer;
  delete[] myFlags;
}

void RecordBuffer::myAssignRecords(RecordBuffer const& other) {
  if (this == &other) return;
  unsigned char* buffer = newRecords(other.myRecordLength, other.myNRecords);
  if (buffer != nullptr)
    std::memcpy(buffer, other.myBuffer, static_cast<std::size_t>(other.myRecordLength) * other.myNRecords);
  unsigned int* flags = nullptr;
  if (other.myFlags != nullptr) {
    flags = newFlags(other.myNFlags);
    std::memcpy(flags, other.myFlags, sizeof(unsigned int) * other.myNFlags);
  }
  delete[] myBuffer;
  delete[] myFlags;
  myFirst = other.myFirst;
  myLast = other.myLast;
  myMap = other.myMap;
  myIsRange = other.myIsRange;
  myRecordLength = other.myRecordLength;
  myNRecords = other.myNRecords;
  myBuffer = buffer;
  myNFlags = other.myNFlags;
  myFlags = flags;
  myDirty = other.myDirty;
}

void RecordBuffer::fixExternalData(void*, int, int) const {}

RecordBuffer* RecordBuffer::createNew() const { return new RecordBuffer(myRecordLength); }

RecordBuffer* RecordBuffer::clone() const {
  RecordBuffer* copy = createNew();
  copy->myAssignRecords(*this);
  return copy;
}

// --- allocation --------------------------------------------------------------

void RecordBuffer::empty() {
  delete[] myBuffer;
  delete[] myFlags;
  myBuffer = nullptr;
  myFlags = nullptr;
  myNFlags = 0;
  myNRecords = 0;
  myFirst = 1;
  myLast = 0;
  myMap.clear();
  myIsRange = true;
  myDirty = false;
}

void RecordBuffer::allocate(unsigned int first, unsigned int last) {
  if (first < 1) Message::fatal("RecordBuffer::allocate", 0, "Instance %d was less than 1.", static_cast<int>(first));
  if (last < first) Message::fatal("RecordBuffer::allocate", 0, "Invalid instance range %u-%u.", first, last);
  unsigned int const n = last - first + 1;
  unsigned char* buffer = newRecords(myRecordLength, n);
  empty();
  myBuffer = buffer;
  myNRecords = n;
  myFirst = first;
  myLast = last;
}

void RecordBuffer::allocate(std::vector<unsigned int> const& list) {
  std::unordered_map<unsigned int, unsigned int> map;
  map.reserve(list.size());
  for (std::size_t k = 0; k < list.size(); ++k) {
    if (list[k] < 1)
      Message::fatal("RecordBuffer::allocate", 0, "Instance %d was less than 1.", static_cast<int>(list[k]));
    if (!map.emplace(list[k], static_cast<unsigned int>(k)).second)
      Message::fatal("RecordBuffer::allocate", 0, "Instance %u is twice in the instance list.", list[k]);
  }
  unsigned int const n = static_cast<unsigned int>(list.size());
  unsigned char* buffer = newRecords(myRecordLength, n);
  empty();
  myBuffer = buffer;
  myNRecords = n;
  myMap.swap(map);
  myIsRange = false;
  if (n > 0) {
    myFirst = list.front();
    myLast = list.back();
  }
}

long long RecordBuffer::getBufferSize() const {
  return static_cast<long long>(myRecordLength) * myNRecords;
}

// Keeps the records that fit; new ones are zero, and so are new flags.
void RecordBuffer::myResizeRecords(unsigned int nRecords) {
  unsigned char* buffer = newRecords(myRecordLength, nRecords);
  unsigned int const keep = std::min(nRecords, myNRecords);
  if (buffer != nullptr && keep > 0)
    std::memcpy(buffer, myBuffer, static_cast<std::size_t>(myRecordLength) * keep);
  unsigned int* flags = nullptr;
  if (myFlags != nullptr && nRecords > 0) {
    flags = newFlags(nRecords);
    std::memcpy(flags, myFlags, sizeof(unsigned int) * std::min(nRecords, myNFlags));
  }
  delete[] myBuffer;
  delete[] myFlags;
  myBuffer = buffer;
  myFlags = flags;
  myNFlags = flags != nullptr ? nRecords : 0;
  myNRecords = nRecords;
}

void RecordBuffer::addInstances(unsigned int n) {
  if (!myIsRange)
    Message::fatal("RecordBuffer::addInstances", 0, "Instances can only be added to a range RecordBuffer.");
  if (n == 0) return;
  if (n > 0xFFFFFFFFu - (myFirst - 1) - myNRecords)
    Message::fatal("RecordBuffer::addInstances", 0, "Cannot add %u instances to a RecordBuffer of %u from instance %u.",
                   n, myNRecords, myFirst);
  myResizeRecords(myNRecords + n);
  myLast = myFirst + myNRecords - 1;
}

void RecordBuffer::deleteInstances(unsigned int n) {
  if (!myIsRange)
    Message::fatal("RecordBuffer::deleteInstances", 0, "Instances can only be deleted from a range RecordBuffer.");
  if (n > myNRecords)
    Message::fatal("RecordBuffer::deleteInstances", 0, "Cannot delete %u instances from a RecordBuffer of %u.", n,
                   myNRecords);
  if (n == 0) return;
  myResizeRecords(myNRecords - n);
  myLast = myFirst + myNRecords - 1;
}

// --- instances -----------------------------------------------------------------

bool RecordBuffer::inside(unsigned int instance) const {
  if (instance < 1) Message::fatal("RecordBuffer::inside", 0, "Instance %d was less than 1.", static_cast<int>(instance));
  if (myNRecords == 0) return false;
  if (myIsRange) return instance >= myFirst && instance <= myLast;
  return myMap.find(instance) != myMap.end();
}

bool RecordBuffer::inside(unsigned int first, unsigned int last) const {
  if (first < 1) Message::fatal("RecordBuffer::inside", 0, "Instance %d was less than 1.", static_cast<int>(first));
  if (last < first) return false;
  if (myIsRange) return myNRecords > 0 && first >= myFirst && last <= myLast;
  for (unsigned long long i = first; i <= last; ++i)
    if (myMap.find(static_cast<unsigned int>(i)) == myMap.end()) return false;
  return true;
}

bool RecordBuffer::inside(std::vector<unsigned int> const& list) const {
  for (unsigned int i : list)
    if (!inside(i)) return false;
  return true;
}

unsigned int RecordBuffer::myRecordIndex(unsigned int instance) const {
  if (myIsRange) return instance - myFirst;
  return myMap.find(instance)->second;
}

void* RecordBuffer::getBuffer(unsigned int instance, int offset) {
  return const_cast<void*>(static_cast<RecordBuffer const*>(this)->getBuffer(instance, offset));
}

void const* RecordBuffer::getBuffer(unsigned int instance, int offset) const {
  if (myNRecords == 0) Message::fatal("RecordBuffer::getBuffer", 0, "buffer has not been allocated yet");
  if (offset < 0 || offset >= myRecordLength)
    Message::fatal("RecordBuffer::getBuffer", 0, "offset(%d) is outside the record of length %d.", offset,
                   myRecordLength);
  if (!inside(instance))
    Message::fatal("RecordBuffer::getBuffer", 0, "Instance %u is not in this RecordBuffer.", instance);
  return myRecord(myRecordIndex(instance)) + offset;
}

unsigned int RecordBuffer::getFirstRecord() const { return myNRecords > 0 ? myFirst : 0; }

unsigned int RecordBuffer::getLastRecord() const { return myNRecords > 0 ? myLast : 0; }

void RecordBuffer::getInstanceList(std::vector<unsigned int>& list) const {
  list.assign(myNRecords, 0);
  if (myIsRange) {
    for (unsigned int k = 0; k < myNRecords; ++k) list[k] = myFirst + k;
  } else {
    for (auto const& entry : myMap) list[entry.second] = entry.first;
  }
}

// --- checks ----------------------------------------------------------------------

void RecordBuffer::myCheckInputs(char const* label, int elementSize, unsigned int, int offset) const {
  if (myNRecords == 0) Message::fatal(label, 0, "buffer has not been allocated yet");
  if (offset < 0) Message::fatal(label, 0, "offset(%d) value less than zero.", offset);
  if (elementSize < 0) Message::fatal(label, 0, "elementSize(%d) value less than zero.", elementSize);
  if (static_cast<long long>(offset) + elementSize > myRecordLength)
    Message::fatal(label, 0, "offset(%d)+elementSize(%d)>myRecordLength(%d)", offset, elementSize, myRecordLength);
}

void RecordBuffer::myCheckRange(char const* label, unsigned int first, unsigned int count) const {
  if (count == 0) return;
  unsigned long long const last = static_cast<unsigned long long>(first) + count - 1;
  if (last > 0xFFFFFFFFull || !inside(first, static_cast<unsigned int>(last)))
    Message::fatal(label, 0, "Instances %u to %llu are not all in this RecordBuffer.", first, last);
}

void RecordBuffer::myCheckList(char const* label, unsigned int count, std::vector<unsigned int> const& list) const {
  if (count > list.size())
    Message::fatal(label, 0, "count(%u) is larger than the instance list (%u).", count,
                   static_cast<unsigned int>(list.size()));
  for (unsigned int k = 0; k < count; ++k)
    if (!inside(list[k])) Message::fatal(label, 0, "Instance %u is not in this RecordBuffer.", list[k]);
}

// --- moves ------------------------------------------------------------------------

void RecordBuffer::insertRange(void const* data, int elementSize, unsigned int count, int offset, unsigned int first) {
  myCheckInputs("RecordBuffer::insertRange", elementSize, count, offset);
  myCheckRange("RecordBuffer::insertRange", first, count);
  doInsertRange(data, elementSize, count, offset, first);
}

void RecordBuffer::extractRange(void* data, int elementSize, unsigned int count, int offset,
                                unsigned int first) const {
  myCheckInputs("RecordBuffer::extractRange", elementSize, count, offset);
  myCheckRange("RecordBuffer::extractRange", first, count);
  doExtractRange(data, elementSize, count, offset, first);
}

void RecordBuffer::insertList(void const* data, int elementSize, unsigned int count, int offset,
                              std::vector<unsigned int> const& list) {
  myCheckInputs("RecordBuffer::insertList", elementSize, count, offset);
  myCheckList("RecordBuffer::insertList", count, list);
  doInsertList(data, elementSize, count, offset, list);
}

void RecordBuffer::extractList(void* data, int elementSize, unsigned int count, int offset,
                               std::vector<unsigned int> const& list) const {
  myCheckInputs("RecordBuffer::extractList", elementSize, count, offset);
  myCheckList("RecordBuffer::extractList", count, list);
  doExtractList(data, elementSize, count, offset, list);
}

void RecordBuffer::doInsertRange(void const* data, int elementSize, unsigned int count, int offset,
                                 unsigned int first) {
  if (count == 0) return;
  myDirty = true;
  unsigned char const* s = static_cast<unsigned char const*>(data);
  std::size_t const size = static_cast<std::size_t>(elementSize);
  std::size_t const stride = static_cast<std::size_t>(myRecordLength);
  if (myIsRange) {
    unsigned char* d = myRecord(first - myFirst) + offset;
    if (size == 4)
      scatterFixed<4>(s, d, stride, count);
    else if (size == 8)
      scatterFixed<8>(s, d, stride, count);
    else
      for (unsigned int k = 0; k < count; ++k) std::memcpy(d + k * stride, s + k * size, size);
    return;
  }
  for (unsigned int k = 0; k < count; ++k) std::memcpy(myRecord(myRecordIndex(first + k)) + offset, s + k * size, size);
}

void RecordBuffer::doExtractRange(void* data, int elementSize, unsigned int count, int offset,
                                  unsigned int first) const {
  if (count == 0) return;
  unsigned char* d = static_cast<unsigned char*>(data);
  std::size_t const size = static_cast<std::size_t>(elementSize);
  std::size_t const stride = static_cast<std::size_t>(myRecordLength);
  if (myIsRange) {
    unsigned char const* s = myRecord(first - myFirst) + offset;
    if (size == 4)
      gatherFixed<4>(s, stride, d, count);
    else if (size == 8)
      gatherFixed<8>(s, stride, d, count);
    else
      for (unsigned int k = 0; k < count; ++k) std::memcpy(d + k * size, s + k * stride, size);
    return;
  }
  for (unsigned int k = 0; k < count; ++k) std::memcpy(d + k * size, myRecord(myRecordIndex(first + k)) + offset, size);
}

void RecordBuffer::doInsertList(void const* data, int elementSize, unsigned int count, int offset,
                                std::vector<unsigned int> const& list) {
  if (count == 0) return;
  myDirty = true;
  unsigned char const* s = static_cast<unsigned char const*>(data);
  std::size_t const size = static_cast<std::size_t>(elementSize);
  for (unsigned int k = 0; k < count; ++k) std::memcpy(myRecord(myRecordIndex(list[k])) + offset, s + k * size, size);
}

void RecordBuffer::doExtractList(void* data, int elementSize, unsigned int count, int offset,
                                 std::vector<unsigned int> const& list) const {
  unsigned char* d = static_cast<unsigned char*>(data);
  std::size_t const size = static_cast<std::size_t>(elementSize);
  for (unsigned int k = 0; k < count; ++k) std::memcpy(d + k * size, myRecord(myRecordIndex(list[k])) + offset, size);
}

// --- flags ----------------------------------------------------------------------------

void RecordBuffer::myCheckFlagInstance(char const* label, unsigned int instance) const {
  if (instance < 1) Message::fatal(label, 0, "first instance %d was less than 1.", static_cast<int>(instance));
  if (myIsRange) {
    if (instance < myFirst || instance > myLast || myNRecords == 0)
      Message::fatal(label, 0, "The instance %d was outwith the range %d:%d!", static_cast<int>(instance),
                     static_cast<int>(myFirst), static_cast<int>(myLast));
  } else if (myMap.find(instance) == myMap.end()) {
    Message::fatal(label, 0, "The instance %d is not within this instance list record buffer!",
                   static_cast<int>(instance));
  }
}

bool RecordBuffer::hasInstanceFlags() const { return myFlags != nullptr; }

unsigned int RecordBuffer::getInstanceFlag(unsigned int instance) {
  myCheckFlagInstance("RecordBuffer::getInstanceFlag", instance);
  return myFlags != nullptr ? myFlags[myRecordIndex(instance)] : 0u;
}

void RecordBuffer::setInstanceFlag(unsigned int instance, unsigned int value) {
  myCheckFlagInstance("RecordBuffer::setInstanceFlag", instance);
  if (myFlags == nullptr) {
    myFlags = newFlags(myNRecords);
    myNFlags = myNRecords;
  }
  myFlags[myRecordIndex(instance)] = value;
}
