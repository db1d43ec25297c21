#include "attribute/DataPtr.h"

#include "attribute/TypedBlock.h"

#include <cstdint>
#include <cstring>
#include <new>

#include "foundation/Message.h"
#include "foundation/UtlExcept.h"
#include "foundation/vString.h"
#include "foundation/vUtl.h"

namespace {

char const* const kFile = "DataPtr";

// The types a block can be made of: 1 to 7, 11, 12 and 16.
bool isSupported(DataType type) {
  return (type >= vINT8 && type <= vINT64) || type == vFLOAT32 || type == vFLOAT64 || type == vBOOL8;
}

vString typeName(int type) {
  if ((type >= vNOTYPE && type <= vIBMFLOAT32) || type == vENDFRAME || type == vPACKFRAME)
    return vUtl::dataTypeName(type);
  vString s;
  s.printf("DataType(%d)", type);
  return s;
}

int sizeOf(DataType type) { return isSupported(type) ? vUtl::dataTypeSize(type) : 0; }

}  // namespace

DataPtr::DataPtr()
    : m_dataReleased(false),
      m_lengthsReleased(false),
      m_ownsData(true),
      m_ownsLengths(true),
      m_conversion(0),
      m_nElements(0),
      m_dataType(vNOTYPE),
      m_lengths(nullptr),
      m_data(nullptr),
      m_transferMethod(ALLOCATE),
      m_originalDataType(vNOTYPE) {}

DataPtr::DataPtr(DataPtr const& other) : DataPtr() { deepCopy(other); }

DataPtr::DataPtr(DataPtr&& other) : DataPtr() { operator=(static_cast<DataPtr&>(other)); }

DataPtr::DataPtr(DataType type, unsigned int nElements, void* data, unsigned int* lengths,
                 TransferMethodType method)
    : DataPtr() {
  myInit(type, nElements, data, lengths, method, "DataPtr::DataPtr()");
}

DataPtr::DataPtr(DataType type, unsigned int nElements, void const* data, unsigned int const* lengths)
    : DataPtr() {
  myInit(type, nElements, data, lengths, COPY, "DataPtr::DataPtr()");
}

DataPtr::~DataPtr() {
  myDeallocData();
  myDeallocLengths();
}

long long DataPtr::mySum(unsigned int const* lengths, unsigned int n) {
  long long sum = 0;
  for (unsigned int i = 0; i < n; ++i) sum += lengths[i];
  return sum;
}

void* DataPtr::myAllocData(DataType type, long long nValues, char const* label) const {
  if (!isSupported(type)) Message::fatal(label, 0, "Unsupported data type %s.", typeName(type).c_str());
  if (nValues <= 0) return nullptr;
  if (static_cast<unsigned long long>(nValues) > SIZE_MAX / 16)
    Message::fatal(label, 0, "Cannot allocate %lld values of %s.", nValues, typeName(type).c_str());
  std::size_t const n = static_cast<std::size_t>(nValues);
  try {
    // Unsupported types were refused above, so a block always comes back.
    return newTypedBlock(type, n);
  } catch (std::bad_alloc const&) {
    Message::fatal(label, 0, "Cannot allocate %lld values of %s.", nValues, typeName(type).c_str());
  }
}

void DataPtr::myDeallocData() {
  void* p = m_data;
  bool const owned = m_ownsData && !m_dataReleased;
  m_data = nullptr;
  if (!owned || p == nullptr) return;
  // Blocks are only ever made or taken for the supported types.
  deleteTypedBlock(m_dataType, p);
}

void DataPtr::myDeallocLengths() {
  if (m_ownsLengths && !m_lengthsReleased) delete[] m_lengths;
  m_lengths = nullptr;
}

void DataPtr::myInit(DataType type, unsigned int nElements, void const* data, unsigned int const* lengths,
                     TransferMethodType method, char const* label) {
  if (nElements == 0 && (data != nullptr || lengths != nullptr))
    Message::fatal("DataPtr::DataPtr(...)", 0, "Given nElements=0, but mData or myLength!=0");
  if (nElements > 0 && !isSupported(type)) Message::fatal(label, 0, "Unsupported data type %s.", typeName(type).c_str());
  m_dataType = type;
  m_transferMethod = method;
  if (nElements == 0) return;

  if (method == TRANSFER || method == BORROW) {
    unsigned int* ownLengths = const_cast<unsigned int*>(lengths);
    void* block = const_cast<void*>(data);
    bool madeBlock = false;
    if (block == nullptr) {
      block = myAllocData(type, ownLengths ? mySum(ownLengths, nElements) : nElements, label);
      madeBlock = true;
    }
    m_nElements = nElements;
    m_lengths = ownLengths;
    m_data = block;
    m_ownsLengths = method == TRANSFER;
    m_ownsData = method == TRANSFER || madeBlock;
    return;
  }

  // COPY and ALLOCATE both own fresh memory.
  long long const total = lengths ? mySum(lengths, nElements) : nElements;
  unsigned int* ownLengths = nullptr;
  if (lengths != nullptr) {
    ownLengths = new unsigned int[nElements];
    std::memcpy(ownLengths, lengths, sizeof(unsigned int) * nElements);
  }
  void* block = nullptr;
  try {
    block = myAllocData(type, total, label);
  } catch (...) {
    delete[] ownLengths;
    throw;
  }
  if (method == COPY && data != nullptr && block != nullptr)
    std::memcpy(block, data, static_cast<std::size_t>(total) * static_cast<std::size_t>(sizeOf(type)));
  m_nElements = nElements;
  m_lengths = ownLengths;
  m_data = block;
  m_ownsData = true;
  m_ownsLengths = true;
}

DataPtr& DataPtr::operator=(DataPtr& rhs) {
  if (this == &rhs) return *this;
  if (rhs.m_dataReleased || rhs.m_lengthsReleased)
    throw UtlExcept("rhs is in the middle of releasing its data", "DataPtr::operator=()", __LINE__, kFile);
  myDeallocData();
  myDeallocLengths();
  m_dataReleased = false;
  m_lengthsReleased = false;
  m_ownsData = rhs.m_ownsData;
  m_ownsLengths = rhs.m_ownsLengths;
  m_conversion = rhs.m_conversion;
  m_nElements = rhs.m_nElements;
  m_dataType = rhs.m_dataType;
  m_lengths = rhs.m_lengths;
  m_data = rhs.m_data;
  m_transferMethod = rhs.m_transferMethod;
  m_originalDataType = rhs.m_originalDataType;
  rhs.m_data = nullptr;
  rhs.m_lengths = nullptr;
  rhs.m_nElements = 0;
  rhs.m_ownsData = true;
  rhs.m_ownsLengths = true;
  rhs.m_conversion = 0;
  return *this;
}

DataPtr& DataPtr::operator=(DataPtr&& rhs) { return operator=(static_cast<DataPtr&>(rhs)); }

void* DataPtr::getData() const {
  if (m_dataReleased) throw UtlExcept("Illegal after releaseData!.", "DataPtr::getData()", __LINE__, kFile);
  return m_data;
}

unsigned int* DataPtr::getLengths() const {
  if (m_lengthsReleased)
    throw UtlExcept("Illegal after releaseLengths!.", "DataPtr::getLengths()", __LINE__, kFile);
  return m_lengths;
}

long long DataPtr::getTotalLength() const {
  if (m_lengths != nullptr) return mySum(m_lengths, m_nElements);
  return m_nElements;
}

long long DataPtr::getTotalNBytes() const { return getTotalLength() * sizeOf(m_dataType); }

void* DataPtr::releaseData() {
  if (m_dataReleased) throw UtlExcept("Illegal to make second call!.", "DataPtr::releaseData()", __LINE__, kFile);
  void* p = m_data;
  m_data = nullptr;
  m_dataReleased = true;
  m_ownsData = false;
  return p;
}

unsigned int* DataPtr::releaseLengths() {
  if (m_lengthsReleased)
    throw UtlExcept("Illegal to make second call!.", "DataPtr::releaseLengths()", __LINE__, kFile);
  unsigned int* p = m_lengths;
  m_lengths = nullptr;
  m_lengthsReleased = true;
  m_ownsLengths = false;
  return p;
}

void DataPtr::prepare(DataPtr& source) {
  if (!isSupported(m_dataType))
    Message::fatal("DataPtr::prepare()", 0, "Unsupported data type %s.", typeName(m_dataType).c_str());
  void* const sourceData = source.getData();
  unsigned int* const sourceLengths = source.getLengths();
  if (source.m_ownsData && sourceData != nullptr && sizeOf(source.m_dataType) == sizeOf(m_dataType)) {
    myDeallocData();
    myDeallocLengths();
    m_dataReleased = m_lengthsReleased = false;
    m_nElements = source.m_nElements;
    m_data = sourceData;
    m_lengths = sourceLengths;
    m_ownsData = true;
    m_ownsLengths = source.m_ownsLengths;
    source.m_ownsData = false;
    source.m_ownsLengths = false;
    m_conversion = 1;
    m_originalDataType = source.m_originalDataType;
    return;
  }
  prepare(static_cast<DataPtr const&>(source));
}

void DataPtr::prepare(DataPtr const& source) {
  if (!isSupported(m_dataType))
    Message::fatal("DataPtr::prepare()", 0, "Unsupported data type %s.", typeName(m_dataType).c_str());
  unsigned int* const sourceLengths = source.getLengths();
  long long const total = sourceLengths ? mySum(sourceLengths, source.m_nElements) : source.m_nElements;
  unsigned int* lengths = nullptr;
  if (sourceLengths != nullptr && source.m_nElements > 0) {
    lengths = new unsigned int[source.m_nElements];
    std::memcpy(lengths, sourceLengths, sizeof(unsigned int) * source.m_nElements);
  }
  void* block = nullptr;
  try {
    block = myAllocData(m_dataType, total, "DataPtr::prepare()");
  } catch (...) {
    delete[] lengths;
    throw;
  }
  myDeallocData();
  myDeallocLengths();
  m_dataReleased = m_lengthsReleased = false;
  m_nElements = source.m_nElements;
  m_data = block;
  m_lengths = lengths;
  m_ownsData = true;
  m_ownsLengths = true;
  m_conversion = 0;
  m_originalDataType = source.m_originalDataType;
}

void DataPtr::deepCopy(DataPtr const& source) {
  if (this == &source) return;
  if (source.m_dataReleased || source.m_lengthsReleased)
    throw UtlExcept("rhs is in the middle of releasing its data", "DataPtr::deepCopy()", __LINE__, kFile);
  DataPtr copy(source.m_dataType, source.m_nElements, static_cast<void const*>(source.m_data),
               static_cast<unsigned int const*>(source.m_lengths));
  copy.m_originalDataType = source.m_originalDataType;
  copy.m_transferMethod = source.m_transferMethod;
  operator=(copy);
}
