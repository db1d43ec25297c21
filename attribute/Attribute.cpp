#include "attribute/Attribute.h"

#include <algorithm>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <ostream>

#include "foundation/Message.h"
#include "foundation/Packer.h"
#include "foundation/UtlExcept.h"
#include "foundation/vString.h"
#include "foundation/vUtl.h"
#include "foundation/vUtlSize.h"

namespace {

char const* const kFile = "Attribute";

// vINT16, vINT32, vINT64, vFLOAT32, vFLOAT64 and vSTRING.
unsigned int const kSupportedMask = 0x218a8u;

bool isSupportedType(int type) { return type >= 0 && type < 32 && ((kSupportedMask >> type) & 1u) != 0; }

// The printable name of any type code, also of one that vUtl does not know:
// a message about a bad code must not itself fail on that code.
vString typeName(int type) {
  if ((type >= vNOTYPE && type <= vIBMFLOAT32) || type == vENDFRAME || type == vPACKFRAME)
    return vUtl::dataTypeName(type);
  vString s;
  s.printf("DataType(%d)", type);
  return s;
}

// A double stored as an integer by C rules (truncation toward zero), with
// what C leaves undefined pinned down: NaN gives 0, values beyond the range
// give its nearest end.
template <class T>
T toInteger(double v) {
  if (std::isnan(v)) return 0;
  if (v >= static_cast<double>(std::numeric_limits<T>::max())) return std::numeric_limits<T>::max();
  if (v <= static_cast<double>(std::numeric_limits<T>::min())) return std::numeric_limits<T>::min();
  return static_cast<T>(v);
}

float toFloat(double v) {
  if (v > FLT_MAX) return HUGE_VALF;
  if (v < -FLT_MAX) return -HUGE_VALF;
  return static_cast<float>(v);
}

template <class T>
void deleteArray(void* p) {
  delete[] static_cast<T*>(p);
}

// Non-null stand-in for the data of an empty array entry.
char gEmpty[8];

}  // namespace

// ---------------------------------------------------------------------------
// String table

vUCStringTable& Attribute::getStringTable() {
  // Never destroyed: attributes in static storage may outlive any order of
  // destruction, and their name pointers must stay valid to the end.
  static vUCStringTable* table = new vUCStringTable;
  return *table;
}

vUCStringTableData const* Attribute::getNameID(vUCString const& name) {
  vUCString s(name);
  s.strip();
  return getStringTable().add(s);
}

vUCStringTableData const* Attribute::getClassID(vUCString const& className) { return getNameID(className); }

// ---------------------------------------------------------------------------
// Construction

void Attribute::mySetDataFieldsEmpty() {
  m_dataType = vNOTYPE;
  m_originalDataType = vNOTYPE;
  m_length = VECTOR_LENGTH;
  m_sampleRate = 0.0;
  m_firstTime = 0.0;
  m_elementSize = 0;
  m_nInstances = 0;
  m_data = nullptr;
  m_lengths = nullptr;
  m_offsets = nullptr;
  m_isVector = true;
  m_minValue = 0.0;
  m_maxValue = 0.0;
  m_nZeros = 0;
  m_name = m_class = m_originalName = m_originalClass = nullptr;
  m_dataHandler = nullptr;
}

Attribute::Attribute() {
  mySetDataFieldsEmpty();
  m_name = m_originalName = m_class = m_originalClass = getNameID(vUCString());
}

void Attribute::myInit(vUCString const& name, vUCString const& className, DataType type, int length,
                       double sampleRate, double firstTime) {
  mySetDataFieldsEmpty();
  m_name = m_originalName = getNameID(name);
  m_class = m_originalClass = getClassID(className);
  mySetDataType(type);
  m_length = length;
  m_sampleRate = sampleRate;
  m_firstTime = firstTime;
  myContructorInitialize();
}

Attribute::Attribute(char const* name, char const* className, DataType type, int length, double sampleRate,
                     double firstTime) {
  myInit(vUCString(name), vUCString(className), type, length, sampleRate, firstTime);
}

Attribute::Attribute(vUCString const& name, vUCString const& className, DataType type, int length,
                     double sampleRate, double firstTime) {
  myInit(name, className, type, length, sampleRate, firstTime);
}

Attribute::Attribute(char const* name, vUCString const& className, DataType type, int length, double sampleRate,
                     double firstTime) {
  myInit(vUCString(name), className, type, length, sampleRate, firstTime);
}

Attribute::Attribute(vUCString const& name, char const* className, DataType type, int length, double sampleRate,
                     double firstTime) {
  myInit(name, vUCString(className), type, length, sampleRate, firstTime);
}

Attribute::Attribute(Attribute const& other) : Packable() {
  mySetDataFieldsEmpty();
  operator=(other);
}

Attribute::Attribute(Attribute&& other) noexcept : Packable() {
  mySetDataFieldsEmpty();
  // Nothing to free here yet, so neither step can fail.
  Attribute::operator=(static_cast<Attribute const&>(other));
  myMoveDataFrom(other);
}

Attribute& Attribute::operator=(Attribute&& other) {
  if (this != &other) myTakeOver(other);
  return *this;
}

Attribute::Attribute(Packer& packer) {
  mySetDataFieldsEmpty();
  m_name = m_originalName = m_class = m_originalClass = getNameID(vUCString());
  myUnpack(packer);
}

Attribute::~Attribute() {
  // The type was checked when it was set, so freeing cannot fail; should it
  // all the same, a leak is better than ending the process here.
  try {
    myFreeData();
  } catch (...) {
  }
  myFreeLengths();
}

void Attribute::myContructorInitialize() {
  m_nInstances = 0;
  if (m_length < 0 && m_length != VARIABLE_LENGTH)
    Message::fatal("Attribute::myContructorInitialize", 0,
                   "Attribute (%s) length was %d, it must be >=0 or Attribute::VARIABLE_LENGTH.", getName().c_str(),
                   m_length);
  if (m_length > 1 || m_length == 0)
    m_isVector = true;
  else
    m_isVector = m_sampleRate != 0.0;
  resize(0, nullptr, nullptr, nullptr);
}

void Attribute::mySetDataType(DataType type) {
  if (!isSupportedType(type))
    Message::fatal("Attribute::mySetDataType", 0, "Data Type %s is unsupported at this time for Attribute:%s.",
                   typeName(type).c_str(), getName().c_str());
  m_dataType = type;
  m_elementSize = vUtl::dataTypeSize(type);
}

// ---------------------------------------------------------------------------
// Copying and comparing

Attribute& Attribute::operator=(Attribute const& other) {
  if (this == &other) return *this;
  // The block is freed by its present type, so it has to go before the type
  // changes.
  if (m_nInstances > 0 || m_data != nullptr || m_dataHandler != nullptr) resize(0, nullptr, nullptr, nullptr);
  m_dataType = other.m_dataType;
  m_originalDataType = other.m_originalDataType;
  m_length = other.m_length;
  m_sampleRate = other.m_sampleRate;
  m_firstTime = other.m_firstTime;
  m_elementSize = other.m_elementSize;
  m_isVector = other.m_isVector;
  m_minValue = other.m_minValue;
  m_maxValue = other.m_maxValue;
  m_nZeros = other.m_nZeros;
  m_name = other.m_name;
  m_class = other.m_class;
  m_originalName = other.m_originalName;
  m_originalClass = other.m_originalClass;
  // Lengths left behind by releaseData() belong to no instances any more.
  myFreeLengths();
  return *this;
}

bool Attribute::operator==(Attribute const& other) const { return m_name == other.m_name; }

bool Attribute::operator!=(Attribute const& other) const { return m_name != other.m_name; }

bool Attribute::operator<(Attribute const& other) const {
  return vUCStringTableData::isLess(m_name, other.m_name);
}

bool Attribute::compare(Attribute const& other) const {
  if (m_name != other.m_name || m_class != other.m_class) return false;
  if (m_dataType != other.m_dataType || m_length != other.m_length) return false;
  if (m_originalDataType != vNOTYPE && other.m_originalDataType != vNOTYPE &&
      m_originalDataType != other.m_originalDataType)
    return false;
  return m_sampleRate == other.m_sampleRate;
}

// ---------------------------------------------------------------------------
// Definition

vUCString const& Attribute::getName() const { return m_name->getString(); }

void Attribute::setName(vUCString const& name) { m_name = m_originalName = getNameID(name); }

void Attribute::setName(char const* name) { setName(vUCString(name)); }

vUCString const& Attribute::getClass() const { return m_class->getString(); }

void Attribute::setClass(vUCString const& className) { m_class = m_originalClass = getClassID(className); }

void Attribute::setClass(char const* className) { setClass(vUCString(className)); }

vUCStringTableData const* Attribute::getNameID() const { return m_name; }

vUCStringTableData const* Attribute::getClassID() const { return m_class; }

DataType Attribute::getDataType() const { return m_dataType; }

int Attribute::getLength() const { return m_length; }

void Attribute::setLength(int length) {
  if (!m_isVector && length != m_length)
    Message::fatal("Attribute::setLength", 0, "Cannot setLength of non vector Attributes, %s is not a vector type.",
                   getName().c_str());
  if (m_nInstances > 0 && length != m_length)
    Message::fatal("Attribute::setLength", 0,
                   "Not allowed to change the length os an Attribute '%s' with existing instances.",
                   getName().c_str());
  if (length <= 0 && length != VARIABLE_LENGTH)
    Message::fatal("Attribute::setLength", 0,
                   "Length must be a positive, non-zero number or Attribute::VARIABLE_LENGTH - not %d, for "
                   "Attribute %s.",
                   length, getName().c_str());
  if (length == m_length) return;
  // Lengths kept after releaseData() mean nothing under another length.
  myFreeLengths();
  m_length = length;
}

int Attribute::getLength(unsigned int instance) const {
  if (!isVariableLength()) return m_length;
  myValidateInstance(instance, "Attribute::getLength", __LINE__, kFile, true);
  if (m_lengths == nullptr)
    Message::fatal("Attribute::getLength", 0,
                   "Offsets array not initialized in variable length Attribute %s... supplied a lengths array?",
                   getName().c_str());
  return m_lengths[instance - 1];
}

long long Attribute::getTotalLength() const {
  if (!isVariableLength()) return static_cast<long long>(m_length) * m_nInstances;
  if (m_offsets == nullptr || m_lengths == nullptr || m_nInstances == 0 || m_elementSize == 0) return 0;
  return m_offsets[m_nInstances - 1] / m_elementSize + m_lengths[m_nInstances - 1];
}

double Attribute::getSampleRate() const { return m_sampleRate; }

void Attribute::setSampleRate(double sampleRate) { m_sampleRate = sampleRate; }

unsigned int Attribute::getNInstances() const { return m_nInstances; }

bool Attribute::isVariableLength() const { return m_length == VARIABLE_LENGTH; }

bool Attribute::isSortable() const { return m_length == 1; }

int Attribute::getNBytes() const {
  if (isVariableLength()) return VARIABLE_LENGTH;
  return m_length * m_elementSize;
}

int Attribute::getNBytes(unsigned int instance) const { return getLength(instance) * m_elementSize; }

long long Attribute::getTotalNBytes() const {
  if (!isVariableLength()) return getTotalLength() * m_elementSize;
  if (m_lengths == nullptr) return 0;
  long long sum = 0;
  for (unsigned int i = 0; i < m_nInstances; ++i) sum += m_lengths[i];
  return sum * m_elementSize;
}

void Attribute::setFirstTime(double firstTime) { m_firstTime = firstTime; }

double Attribute::getFirstTime() const { return m_firstTime; }

// The values per instance that the time arithmetic works with: instance 1's
// for a variable length.
int Attribute::myEffectiveLength() const {
  if (!isVariableLength()) return m_length;
  if (m_nInstances == 0 || m_lengths == nullptr) return 0;
  return m_lengths[0];
}

double Attribute::getLastTime() const { return m_firstTime + m_sampleRate * (myEffectiveLength() - 1); }

int Attribute::getElementNBytes() const { return m_elementSize; }

int Attribute::getDataTypeSize() const { return m_dataType == vNOTYPE ? 0 : vUtl::dataTypeSize(m_dataType); }

void Attribute::getStatisticValues(double& minValue, double& maxValue, long long& nZeros) const {
  minValue = m_minValue;
  maxValue = m_maxValue;
  nZeros = m_nZeros;
}

void Attribute::setStatisticValues(double const& minValue, double const& maxValue, long long const& nZeros) {
  m_minValue = minValue;
  m_maxValue = maxValue;
  m_nZeros = nZeros;
}

// ---------------------------------------------------------------------------
// Time and sample arithmetic

int Attribute::getSampleAtTime(double time) const {
  int const length = myEffectiveLength();
  double const sample = std::trunc((time - m_firstTime) / m_sampleRate + 0.5) + 1.0;
  if (!(sample >= 1.0 && sample <= static_cast<double>(length)))
    Message::fatal("Attribute::getSampleAtTime", 0, "Time %g is outside the range %g - %g for Attribute %s.", time,
                   m_firstTime, getLastTime(), getName().c_str());
  return static_cast<int>(sample);
}

double Attribute::getTimeAtSample(int sample) const {
  int const length = myEffectiveLength();
  if (sample < 1 || sample > length)
    Message::fatal("Attribute::getTimeAtSample", 0, "Sample %d outside the range 1 - %d for Attribute %s.", sample,
                   length, getName().c_str());
  return (sample - 1) * m_sampleRate + m_firstTime;
}

int Attribute::getSamplesInGate(double gate) const { return toInteger<int>(gate / m_sampleRate + 0.5); }

double Attribute::getTimeLengthOfGate(int nSamples) const { return nSamples * m_sampleRate; }

// ---------------------------------------------------------------------------
// Memory

void* Attribute::myAllocateMemory(long long nValues) const {
  if (nValues <= 0) return nullptr;
  // Checked against the widest value, whichever the type: a count from a
  // file must not wrap into a small block.
  if (!vUtl::fitsInMemory(nValues, static_cast<long long>(std::max(sizeof(vString), sizeof(double)))))
    Message::fatal("Attribute::myAllocateMemory", 0, "Cannot allocate %lld values for Attribute %s.", nValues,
                   getName().c_str());
  std::size_t const n = static_cast<std::size_t>(nValues);
  try {
    switch (m_dataType) {
      case vINT16:
        return new short[n];
      case vINT32:
        return new int[n];
      case vINT64:
        return new long long[n];
      case vFLOAT32:
        return new float[n];
      case vFLOAT64:
        return new double[n];
      case vSTRING:
        return new vString[n];
      default:
        break;
    }
  } catch (std::bad_alloc const&) {
    Message::fatal("Attribute::myAllocateMemory", 0, "Cannot allocate %lld values for Attribute %s.", nValues,
                   getName().c_str());
  }
  Message::fatal("Attribute::myAllocateMemory", 0, "Attribute '%s(Class:%s)' has an unsupported data type '%s'.",
                 getName().c_str(), getClass().c_str(), typeName(m_dataType).c_str());
}

void Attribute::myFreeData() {
  if (m_dataHandler != nullptr) {
    // The data belong to whatever the handler keeps alive.
    AttributeDataHandler* h = m_dataHandler;
    m_dataHandler = nullptr;
    m_data = nullptr;
    m_nInstances = 0;
    delete h;
    return;
  }
  void* p = m_data;
  m_data = nullptr;
  m_nInstances = 0;
  if (p == nullptr) return;
  switch (m_dataType) {
    case vINT16:
      deleteArray<short>(p);
      break;
    case vINT32:
      deleteArray<int>(p);
      break;
    case vINT64:
      deleteArray<long long>(p);
      break;
    case vFLOAT32:
      deleteArray<float>(p);
      break;
    case vFLOAT64:
      deleteArray<double>(p);
      break;
    case vSTRING:
      // Array delete destroys from the last string to the first.
      deleteArray<vString>(p);
      break;
    default:
      // Memory of an unknown kind cannot be given back: it stays lost, but
      // the attribute no longer refers to it.
      Message::fatal("Attribute::myFreeData", 0, "Unsupported data type %s for Attribute %s.",
                     typeName(m_dataType).c_str(), getName().c_str());
  }
}

void Attribute::myFreeLengths() {
  delete[] m_lengths;
  delete[] m_offsets;
  m_lengths = nullptr;
  m_offsets = nullptr;
}

namespace {

// Byte offsets of instances from their lengths; null after a fatal message.
int* buildOffsets(int const* lengths, unsigned int n, int elementSize, vString const& name) {
  int* offsets = new int[n];
  long long offset = 0;
  for (unsigned int i = 0; i < n; ++i) {
    if (lengths[i] < 0) {
      delete[] offsets;
      Message::fatal("Attribute::myBuildOffsets", 0, "Length %d of instance %lld is negative for Attribute %s.",
                     lengths[i], static_cast<long long>(i) + 1, name.c_str());
    }
    if (offset > INT_MAX) {
      delete[] offsets;
      Message::fatal("Attribute::myBuildOffsets", 0, "Attribute %s holds more than %d bytes.", name.c_str(), INT_MAX);
    }
    offsets[i] = static_cast<int>(offset);
    offset += static_cast<long long>(lengths[i]) * elementSize;
  }
  if (offset > INT_MAX) {
    delete[] offsets;
    Message::fatal("Attribute::myBuildOffsets", 0, "Attribute %s holds more than %d bytes.", name.c_str(), INT_MAX);
  }
  return offsets;
}

}  // namespace

void Attribute::myBuildOffsets(unsigned int from) {
  if (m_offsets == nullptr || m_lengths == nullptr) return;
  if (from == 0 && m_nInstances > 0) m_offsets[0] = 0;
  for (unsigned int i = from == 0 ? 1 : from; i < m_nInstances; ++i)
    m_offsets[i] = m_offsets[i - 1] + m_elementSize * m_lengths[i - 1];
}

void Attribute::resize(unsigned int nInstances, void* data, int* lengths, AttributeDataHandler* handler) {
  if (isVariableLength()) {
    if (handler != nullptr)
      Message::fatal("Attribute::resize", 0, "Cannot resize a variable length attribute with a lengths parameter!");
    // Until the end, lengths stays the caller's when anything fails.
    int* ownLengths = nullptr;
    int* offsets = nullptr;
    void* block = data;
    if (nInstances > 0) {
      // Lengths and offsets take a word per instance.
      vUtl::checkedBytes("Attribute::resize", nInstances, sizeof(int));
      bool const madeLengths = lengths == nullptr;
      ownLengths = madeLengths ? new int[nInstances]() : lengths;
      try {
        offsets = buildOffsets(ownLengths, nInstances, m_elementSize, getName());
        if (block == nullptr) {
          long long const total =
              m_elementSize == 0 ? 0
                                 : offsets[nInstances - 1] / m_elementSize + ownLengths[nInstances - 1];
          block = myAllocateMemory(total);
        }
      } catch (...) {
        delete[] offsets;
        if (madeLengths) delete[] ownLengths;
        throw;
      }
    } else {
      delete[] lengths;
    }
    if (block != m_data || m_dataHandler != nullptr) myFreeData();
    myFreeLengths();
    m_nInstances = nInstances;
    m_data = block;
    m_lengths = ownLengths;
    m_offsets = offsets;
    return;
  }

  if (handler != nullptr && data == nullptr)
    Message::fatal("Attribute::resize", 0, "Cannot specify an attribute data handler without data on a resize!");
  if (handler != nullptr && lengths != nullptr)
    Message::fatal("Attribute::resize", 0,
                   "Cannot specify a lengths array when specifying an attribute data handler on a resize!");
  if (lengths != nullptr)
    Message::fatal("Attribute::resize", 0, "You must not supply a list of lengths for fixed length attribute:'%s'.",
                   getName().c_str());
  myFreeLengths();

  long long const nValues = static_cast<long long>(m_length) * nInstances;
  if (data == nullptr) {
    // A repeated read of the same count reuses the block. A block lent
    // through a handler is not ours to overwrite, though: it is replaced by
    // a private one.
    if (nInstances > 0 && nInstances == m_nInstances && m_dataHandler == nullptr) return;
    void* block = myAllocateMemory(nValues);
    myFreeData();
    m_data = block;
    m_nInstances = nInstances;
    return;
  }
  if (data == m_data) {
    // The memory held already: only the count and, when one is given, the
    // keeper change.
    if (handler != nullptr && handler != m_dataHandler) {
      delete m_dataHandler;
      m_dataHandler = handler;
    }
    m_nInstances = nInstances;
    return;
  }
  myFreeData();
  m_data = data;
  m_dataHandler = handler;
  m_nInstances = nInstances;
}

void Attribute::transferData(Attribute& source) {
  if (&source == this) return;
  if (!isSupportedType(source.m_dataType))
    Message::fatal("Attribute::transferData", 0, "Unsupported data type %s for %s.",
                   typeName(source.m_dataType).c_str(), source.getName().c_str());
  myTakeOver(source);
}

void Attribute::myTakeOver(Attribute& source) {
  resize(0, nullptr, nullptr, nullptr);
  operator=(source);
  myMoveDataFrom(source);
}

void Attribute::myMoveDataFrom(Attribute& source) {
  // The pointers move as they are; the offsets go along, being those of
  // the same lengths.
  m_data = source.m_data;
  m_lengths = source.m_lengths;
  m_offsets = source.m_offsets;
  m_nInstances = source.m_nInstances;
  m_dataHandler = source.m_dataHandler;
  source.m_data = nullptr;
  source.m_lengths = nullptr;
  source.m_offsets = nullptr;
  source.m_nInstances = 0;
  source.m_dataHandler = nullptr;
}

void Attribute::copyData(Attribute const& other) {
  if (&other == this) return;
  if (!isSupportedType(other.m_dataType))
    Message::fatal("Attribute::copyData", 0, "Unsupported data type %s for %s.", typeName(other.m_dataType).c_str(),
                   other.getName().c_str());
  int* lengths = nullptr;
  if (other.isVariableLength() && other.m_nInstances > 0 && other.m_lengths != nullptr) {
    lengths = new int[other.m_nInstances];
    std::memcpy(lengths, other.m_lengths, sizeof(int) * other.m_nInstances);
  }
  operator=(other);
  try {
    resize(other.m_nInstances, nullptr, lengths, nullptr);
  } catch (...) {
    delete[] lengths;
    throw;
  }
  if (m_data == nullptr || other.m_data == nullptr) return;
  if (m_dataType == vSTRING) {
    vString* to = static_cast<vString*>(m_data);
    vString const* from = static_cast<vString const*>(other.m_data);
    long long const n = getTotalLength();
    for (long long i = 0; i < n; ++i) to[i] = from[i];
  } else {
    std::memcpy(m_data, other.m_data, static_cast<std::size_t>(getTotalNBytes()));
  }
}

void Attribute::copyData(unsigned int nInstances, void const* data, int const* lengths) {
  if (isVariableLength() && lengths == nullptr && nInstances > 0)
    Message::fatal("Attribute::copyData", 0, "Cannot copy variable length Attribute '%s' without lengths array.",
                   getName().c_str());
  if (!isVariableLength() && lengths != nullptr)
    Message::fatal("Attribute::copyData", 0, "Can only give lengths array with a variable length Attribute (%s).",
                   getName().c_str());
  int* copy = nullptr;
  if (lengths != nullptr && nInstances > 0) {
    copy = new int[nInstances];
    std::memcpy(copy, lengths, sizeof(int) * nInstances);
  }
  try {
    resize(nInstances, nullptr, copy, nullptr);
  } catch (...) {
    delete[] copy;
    throw;
  }
  if (data == nullptr || m_data == nullptr) return;
  if (m_dataType == vSTRING) {
    vString* to = static_cast<vString*>(m_data);
    vString const* from = static_cast<vString const*>(data);
    long long const n = getTotalLength();
    for (long long i = 0; i < n; ++i) to[i] = from[i];
  } else {
    std::memcpy(m_data, data, static_cast<std::size_t>(getTotalNBytes()));
  }
}

// ---------------------------------------------------------------------------
// Releasing

void Attribute::myCheckCanReleaseData() const {
  if (m_dataHandler != nullptr)
    Message::fatal("Attribute::myCheckCanReleaseData", 0,
                   "Attribute has a data handler, use releaseDataHandler instead!");
}

void* Attribute::myRelease(DataType wanted, char const* method) {
  if (wanted != vNOTYPE) myCheckDataType(wanted, method);
  myCheckCanReleaseData();
  void* p = m_data;
  m_data = nullptr;
  m_nInstances = 0;
  return p;
}

short* Attribute::releaseInt16Data() { return static_cast<short*>(myRelease(vINT16, "Attribute::releaseInt16Data")); }

int* Attribute::releaseInt32Data() { return static_cast<int*>(myRelease(vINT32, "Attribute::releaseInt32Data")); }

long long* Attribute::releaseInt64Data() {
  return static_cast<long long*>(myRelease(vINT64, "Attribute::releaseInt64Data"));
}

float* Attribute::releaseFloat32Data() {
  return static_cast<float*>(myRelease(vFLOAT32, "Attribute::releaseFloat32Data"));
}

double* Attribute::releaseFloat64Data() {
  return static_cast<double*>(myRelease(vFLOAT64, "Attribute::releaseFloat64Data"));
}

vString* Attribute::releaseStringData() {
  return static_cast<vString*>(myRelease(vSTRING, "Attribute::releaseStringData"));
}

void* Attribute::releaseData() { return myRelease(vNOTYPE, "Attribute::releaseData"); }

void Attribute::releaseLengths() { myFreeLengths(); }

AttributeDataHandler* Attribute::releaseDataHandler() {
  if (m_dataHandler == nullptr)
    Message::fatal("Attribute::releaseDataHandler", 0, "Attribute does not have a data handler!");
  AttributeDataHandler* h = m_dataHandler;
  m_dataHandler = nullptr;
  m_data = nullptr;
  m_nInstances = 0;
  return h;
}

// ---------------------------------------------------------------------------
// Access

void Attribute::myValidateInstance(unsigned int instance, char const* method, int line, char const* file,
                                   bool fatal) const {
  if (instance != 0 && instance <= m_nInstances) return;
  vString text;
  text.printf("Instance %lld is out of range 1:%lld for %s (%s - line %d)", static_cast<long long>(instance),
              static_cast<long long>(m_nInstances), getName().c_str(), file, line);
  if (fatal) Message::fatal(method, 0, "%s", text.c_str());
  throw UtlExcept(text, vString(method), line, file);
}

void Attribute::myCheckDataType(DataType wanted, char const* method) const {
  if (m_dataType != wanted)
    Message::fatal(method, 0, "Data type of Attribute %s is not %s, it's %s. Not allowed to call this method",
                   getName().c_str(), typeName(wanted).c_str(), typeName(m_dataType).c_str());
}

void Attribute::myGetChecks(unsigned int instance, char const* method) const {
  myValidateInstance(instance, method, __LINE__, kFile, false);
  if (isVariableLength())
    Message::fatal(method, 0, "Can't call this method on variable length attribute: %s.", getName().c_str());
  if (m_length != 1) Message::fatal(method, 0, "Can't use this method on vector type attribute: %s.", getName().c_str());
}

void Attribute::myGetChecks2(unsigned int instance, int position, char const* method) const {
  myValidateInstance(instance, method, __LINE__, kFile, false);
  int const length = getLength(instance);
  if (position < 1 || position > length)
    Message::fatal(method, 0, "Position %d is out of range 1 - %d for Attribute %s.", position, length,
                   getName().c_str());
}

long long Attribute::myOffset(unsigned int instance) const {
  if (!isVariableLength()) return static_cast<long long>(getNBytes()) * (instance - 1);
  if (m_offsets == nullptr)
    Message::fatal("Attribute::getPointer", 0,
                   "Offsets array not initialized in variable length Attribute %s... supplied a lengths array?",
                   getName().c_str());
  return m_offsets[instance - 1];
}

void const* Attribute::getPointer(unsigned int instance) const {
  if (m_nInstances == 0) Message::fatal("Attribute::getPointer", 0, "Attribute %s has no data", getName().c_str());
  // Instance 1 is where the block starts: nothing to check or compute.
  if (instance == 1) return m_data;
  myValidateInstance(instance, "Attribute::getPointer", __LINE__, kFile, true);
  return static_cast<char const*>(m_data) + myOffset(instance);
}

void* Attribute::getPointer(unsigned int instance) {
  return const_cast<void*>(static_cast<Attribute const*>(this)->getPointer(instance));
}

#define ATTRIBUTE_TYPED_POINTER(Name, T, Code)                                                       \
  T* Attribute::get##Name##Pointer(unsigned int instance) {                                          \
    myCheckDataType(Code, "Attribute::get" #Name "Pointer");                                          \
    return static_cast<T*>(getPointer(instance));                                                     \
  }                                                                                                  \
  T const* Attribute::get##Name##Pointer(unsigned int instance) const {                              \
    myCheckDataType(Code, "Attribute::get" #Name "Pointer");                                          \
    return static_cast<T const*>(getPointer(instance));                                               \
  }

ATTRIBUTE_TYPED_POINTER(Int16, short, vINT16)
ATTRIBUTE_TYPED_POINTER(Int32, int, vINT32)
ATTRIBUTE_TYPED_POINTER(Int64, long long, vINT64)
ATTRIBUTE_TYPED_POINTER(Float32, float, vFLOAT32)
ATTRIBUTE_TYPED_POINTER(Float64, double, vFLOAT64)
ATTRIBUTE_TYPED_POINTER(String, vString, vSTRING)

#undef ATTRIBUTE_TYPED_POINTER

int* Attribute::getLengthsPointer() { return m_lengths; }

int const* Attribute::getLengthsPointer() const { return m_lengths; }

// Scalars: the block is one value per instance, so instance n is element n-1.
#define ATTRIBUTE_SCALAR(Name, T, Code)                                                              \
  T Attribute::get##Name(unsigned int instance) const {                                              \
    myGetChecks(instance, "Attribute::get" #Name);                                                   \
    myCheckDataType(Code, "Attribute::get" #Name);                                                   \
    return static_cast<T const*>(m_data)[instance - 1];                                              \
  }                                                                                                  \
  void Attribute::set##Name(unsigned int instance, T value) {                                        \
    myGetChecks(instance, "Attribute::set" #Name);                                                   \
    myCheckDataType(Code, "Attribute::set" #Name);                                                   \
    static_cast<T*>(m_data)[instance - 1] = value;                                                   \
  }

ATTRIBUTE_SCALAR(Int16, short, vINT16)
ATTRIBUTE_SCALAR(Int32, int, vINT32)
ATTRIBUTE_SCALAR(Int64, long long, vINT64)
ATTRIBUTE_SCALAR(Float32, float, vFLOAT32)
ATTRIBUTE_SCALAR(Float64, double, vFLOAT64)

#undef ATTRIBUTE_SCALAR

vString const& Attribute::getString(unsigned int instance) const {
  myGetChecks(instance, "Attribute::getString");
  myCheckDataType(vSTRING, "Attribute::getString");
  return static_cast<vString const*>(m_data)[instance - 1];
}

void Attribute::setString(unsigned int instance, vString const& value) {
  myGetChecks(instance, "Attribute::setString");
  myCheckDataType(vSTRING, "Attribute::setString");
  static_cast<vString*>(m_data)[instance - 1] = value;
}

namespace {

double valueAt(void const* p, DataType type) {
  switch (type) {
    case vINT16:
      return *static_cast<short const*>(p);
    case vINT32:
      return *static_cast<int const*>(p);
    case vINT64:
      return static_cast<double>(*static_cast<long long const*>(p));
    case vFLOAT32:
      return *static_cast<float const*>(p);
    case vFLOAT64:
      return *static_cast<double const*>(p);
    default:
      return 0.0;
  }
}

}  // namespace

double Attribute::getValue(unsigned int instance) const {
  myGetChecks(instance, "Attribute::getValue");
  if (!vUtl::dataTypeIsAttributeNumber(m_dataType))
    Message::fatal("Attribute::getValue", 0, "Unsupported data type %s for %s.", typeName(m_dataType).c_str(),
                   getName().c_str());
  return valueAt(static_cast<char const*>(m_data) + static_cast<std::size_t>(m_elementSize) * (instance - 1),
                 m_dataType);
}

double Attribute::getValue(unsigned int instance, int position) const {
  myGetChecks2(instance, position, "Attribute::getValue");
  if (!vUtl::dataTypeIsAttributeNumber(m_dataType))
    Message::fatal("Attribute::getValue", 0, "Unsupported data type %s for %s.", typeName(m_dataType).c_str(),
                   getName().c_str());
  char const* p = static_cast<char const*>(getPointer(instance));
  return valueAt(p + static_cast<std::size_t>(m_elementSize) * (position - 1), m_dataType);
}

void Attribute::setValue(unsigned int instance, double value) {
  myGetChecks(instance, "Attribute::setValue");
  unsigned int const i = instance - 1;
  switch (m_dataType) {
    case vINT16:
      static_cast<short*>(m_data)[i] = toInteger<short>(value);
      break;
    case vINT32:
      static_cast<int*>(m_data)[i] = toInteger<int>(value);
      break;
    case vINT64:
      static_cast<long long*>(m_data)[i] = toInteger<long long>(value);
      break;
    case vFLOAT32:
      static_cast<float*>(m_data)[i] = toFloat(value);
      break;
    case vFLOAT64:
      static_cast<double*>(m_data)[i] = value;
      break;
    default:
      Message::fatal("Attribute::setValue", 0, "Unsupported data type %s for %s.", typeName(m_dataType).c_str(),
                     getName().c_str());
  }
}

void Attribute::setValue(unsigned int instance, vString const& value) {
  myGetChecks(instance, "Attribute::setValue");
  if (m_dataType != vSTRING)
    Message::fatal("Attribute::setValue", 0,
                   "Unsupported data type %s - This is the overloaded String version! Attribute:%s.",
                   typeName(m_dataType).c_str(), getName().c_str());
  static_cast<vString*>(m_data)[instance - 1] = value;
}

void Attribute::getValues(std::vector<double>& values) const {
  if (!vUtl::dataTypeIsAttributeNumber(m_dataType))
    Message::fatal("Attribute::getValues", 0, "Unexpected DataType %s for Attribute %s.",
                   typeName(m_dataType).c_str(), getName().c_str());
  long long const n = m_data == nullptr ? 0 : getTotalLength();
  values.resize(static_cast<std::size_t>(n));
  for (long long i = 0; i < n; ++i) {
    switch (m_dataType) {
      case vINT16:
        values[i] = static_cast<short const*>(m_data)[i];
        break;
      case vINT32:
        values[i] = static_cast<int const*>(m_data)[i];
        break;
      case vINT64:
        values[i] = static_cast<double>(static_cast<long long const*>(m_data)[i]);
        break;
      case vFLOAT32:
        values[i] = static_cast<float const*>(m_data)[i];
        break;
      default:
        values[i] = static_cast<double const*>(m_data)[i];
        break;
    }
  }
}

// ---------------------------------------------------------------------------
// Variable lengths

void Attribute::setInstanceLength(unsigned int instance, int newLength) {
  if (!isVariableLength())
    Message::fatal("Attribute::setInstanceLength", 0, "Attribute '%s' must be variable length to use this function.",
                   getName().c_str());
  myValidateInstance(instance, "Attribute::setInstanceLength", __LINE__, kFile, true);
  if (m_lengths == nullptr || m_offsets == nullptr)
    Message::fatal("Attribute::setInstanceLength", 0,
                   "Offsets array not initialized in variable length Attribute %s... supplied a lengths array?",
                   getName().c_str());
  if (m_elementSize == 0)
    Message::fatal("Attribute::setInstanceLength", 0, "Unsupported data type %s for Attribute %s.",
                   typeName(m_dataType).c_str(), getName().c_str());
  if (newLength < 0)
    Message::fatal("Attribute::setInstanceLength", 0, "Length %d of instance %lld is negative for Attribute %s.",
                   newLength, static_cast<long long>(instance), getName().c_str());
  unsigned int const i = instance - 1;
  int const oldLength = m_lengths[i];
  if (newLength == oldLength) return;

  long long const total = getTotalLength();
  long long const start = m_offsets[i] / m_elementSize;  // first value of the instance
  long long const oldEnd = start + oldLength;
  long long const tail = total - oldEnd;  // values behind the instance
  std::size_t const es = static_cast<std::size_t>(m_elementSize);

  if (newLength > oldLength) {
    long long const grow = newLength - oldLength;
    if ((total + grow) * m_elementSize > INT_MAX)
      Message::fatal("Attribute::myBuildOffsets", 0, "Attribute %s holds more than %d bytes.", getName().c_str(),
                     INT_MAX);
    void* block = myAllocateMemory(total + grow);
    if (m_dataType == vSTRING) {
      vString* from = static_cast<vString*>(m_data);
      vString* to = static_cast<vString*>(block);
      for (long long k = 0; k < oldEnd; ++k) to[k].swapContents(from[k]);
      for (long long k = 0; k < tail; ++k) to[oldEnd + grow + k].swapContents(from[oldEnd + k]);
    } else if (m_data != nullptr) {
      char const* from = static_cast<char const*>(m_data);
      char* to = static_cast<char*>(block);
      std::memcpy(to, from, static_cast<std::size_t>(oldEnd) * es);
      std::memcpy(to + (oldEnd + grow) * es, from + oldEnd * es, static_cast<std::size_t>(tail) * es);
      // The new values of the instance start as zeros, as strings start empty.
      std::memset(to + oldEnd * es, 0, static_cast<std::size_t>(grow) * es);
    } else {
      std::memset(block, 0, static_cast<std::size_t>(total + grow) * es);
    }
    unsigned int const n = m_nInstances;
    myFreeData();
    m_data = block;
    m_nInstances = n;
  } else {
    long long const newEnd = start + newLength;
    if (m_dataType == vSTRING) {
      vString* s = static_cast<vString*>(m_data);
      for (long long k = newEnd; k < oldEnd; ++k) s[k].erase();
      for (long long k = 0; k < tail; ++k) s[newEnd + k].swapContents(s[oldEnd + k]);
    } else {
      char* p = static_cast<char*>(m_data);
      std::memmove(p + newEnd * es, p + oldEnd * es, static_cast<std::size_t>(tail) * es);
    }
  }
  m_lengths[i] = newLength;
  myBuildOffsets(instance);
}

// ---------------------------------------------------------------------------
// Packing

void Attribute::pack(Packer& packer) const {
  long long const total = m_nInstances > 0 ? getTotalLength() : 0;
  if (total > static_cast<long long>(UINT_MAX))
    Message::fatal("Attribute::pack", 0, "Attribute %s has too many values (%lld) to pack.", getName().c_str(),
                   total);
  unsigned int const n = static_cast<unsigned int>(total);
  packer.packFrame(Magic, Version);
  packer.pack(getName());
  packer.pack(getClass());
  packer.pack(static_cast<int32_t>(m_dataType));
  packer.pack(static_cast<int32_t>(m_length));
  packer.pack(m_sampleRate);
  packer.pack(m_firstTime);
  packer.packBool(m_isVector);
  packer.pack(static_cast<long long>(m_nInstances));
  if (m_nInstances > 0) {
    if (isVariableLength()) {
      if (m_lengths != nullptr) {
        packer.pack(m_lengths, m_nInstances);
      } else {
        // Lengths released: the instances are empty as far as anyone can tell.
        std::vector<int> zeros(m_nInstances, 0);
        packer.pack(zeros.data(), m_nInstances);
      }
    }
    void const* data = m_data != nullptr && n > 0 ? m_data : gEmpty;
    switch (m_dataType) {
      case vINT16:
        packer.pack(static_cast<short const*>(data), n);
        break;
      case vINT32:
        packer.pack(static_cast<int const*>(data), n);
        break;
      case vINT64:
        packer.pack(static_cast<long long const*>(data), n);
        break;
      case vFLOAT32:
        packer.pack(static_cast<float const*>(data), n);
        break;
      case vFLOAT64:
        packer.pack(static_cast<double const*>(data), n);
        break;
      case vSTRING: {
        vString const none;
        packer.pack(n > 0 ? static_cast<vString const*>(m_data) : &none, n);
        break;
      }
      default:
        Message::fatal("Attribute::pack", 0, "Unsupported data type '%s' for Attribute %s.",
                       typeName(m_dataType).c_str(), getName().c_str());
    }
  }
  packer.pack(m_minValue);
  packer.pack(m_maxValue);
  packer.pack(static_cast<long long>(m_nZeros));
  packer.pack(static_cast<int32_t>(m_originalDataType));
  packer.endFrame();
}

void Attribute::unpack(Packer& packer) { myUnpack(packer); }

namespace {

// Reads one array entry of exactly `expected` elements into `data`.
template <class T>
void unpackValues(Packer& packer, void* data, long long expected) {
  T scratch[1];
  T* to = expected > 0 ? static_cast<T*>(data) : scratch;
  packer.unpack(to);
}

}  // namespace

// Everything is read into a scratch attribute first: a stream that fails
// half way leaves this attribute as it was.
void Attribute::myUnpack(Packer& packer) {
  short magic = 0;
  short version = 0;
  packer.unpackFrame(magic, version);
  if (magic != Magic)
    Message::fatal("Attribute::unpack", 0, "Bad magic value %d, expected %d.", static_cast<int>(magic),
                   static_cast<int>(Magic));
  if (version < 1)
    Message::fatal("Attribute::unpack", 0, "Bad version value %d, expected 1 to %d.", static_cast<int>(version),
                   static_cast<int>(Version));
  vString name;
  vString className;
  packer.unpack(name);
  packer.unpack(className);
  int32_t type = 0;
  int32_t length = 0;
  packer.unpack(type);
  // A default attribute (no type yet) travels too, as long as it holds
  // nothing.
  bool const untyped = type == vNOTYPE;
  if (!untyped && !isSupportedType(type))
    Message::fatal("Attribute::unpack", 0, "Unsupported data type '%s' for Attribute %s.", typeName(type).c_str(),
                   vUCString(name).c_str());
  packer.unpack(length);
  double sampleRate = 0.0;
  double firstTime = 0.0;
  packer.unpack(sampleRate);
  packer.unpack(firstTime);
  bool isVector = length != 1 && length != VARIABLE_LENGTH;
  if (version >= 2) packer.unpackBool(isVector);

  // Old writers sent the count as a 32-bit word.
  unsigned int nInstances = 0;
  DataType const countType = packer.getNextDataType();
  if (countType == vINT32) {
    int32_t n = 0;
    packer.unpack(n);
    if (n < 0)
      Message::fatal("Attribute::unpack", 0, "Number of instances is too large for this attribute (%s).",
                     vString::number(static_cast<long long>(n)).c_str());
    nInstances = static_cast<unsigned int>(n);
  } else if (countType == vUINT32) {
    uint32_t n = 0;
    packer.unpack(n);
    nInstances = n;
  } else {
    long long n = 0;
    packer.unpack(n);
    if ((static_cast<unsigned long long>(n) >> 32) != 0)
      Message::fatal("Attribute::unpack", 0, "Number of instances is too large for this attribute (%s).",
                     vString::number(n).c_str());
    nInstances = static_cast<unsigned int>(n);
  }

  if (untyped && nInstances > 0)
    Message::fatal("Attribute::unpack", 0, "Unsupported data type '%s' for Attribute %s.", typeName(type).c_str(),
                   vUCString(name).c_str());
  Attribute scratch;
  if (untyped) {
    scratch.setName(vUCString(name));
    scratch.setClass(vUCString(className));
    scratch.m_length = length;
    scratch.m_sampleRate = sampleRate;
    scratch.m_firstTime = firstTime;
    scratch.myContructorInitialize();
  } else {
    scratch.myInit(vUCString(name), vUCString(className), static_cast<DataType>(type), length, sampleRate,
                   firstTime);
  }
  scratch.m_isVector = isVector;

  double minValue = 0.0;
  double maxValue = 0.0;
  long long nZeros = 0;
  if (version == 3) {
    packer.unpack(minValue);
    packer.unpack(maxValue);
    packer.unpack(nZeros);
  }

  if (nInstances > 0) {
    int* lengths = nullptr;
    long long expected = 0;
    if (scratch.isVariableLength()) {
      if (packer.getNElements() != nInstances || packer.getNextDataType() != (vARRAYOF | vINT32))
        Message::fatal("Attribute::unpack", 0, "Attribute %s expects %u instance lengths, the stream has %u.",
                       scratch.getName().c_str(), nInstances, packer.getNElements());
      lengths = new int[nInstances];
      try {
        packer.unpack(lengths);
      } catch (...) {
        delete[] lengths;
        throw;
      }
      for (unsigned int i = 0; i < nInstances; ++i) expected += lengths[i] < 0 ? 0 : lengths[i];
    } else {
      expected = static_cast<long long>(length) * nInstances;
    }
    // The Packer has checked that the next entry lies within the message,
    // so a count that agrees is safe to allocate for.
    if (static_cast<long long>(packer.getNElements()) != expected) {
      delete[] lengths;
      Message::fatal("Attribute::unpack", 0, "Attribute %s expects %lld values, the stream has %u.",
                     scratch.getName().c_str(), expected, packer.getNElements());
    }
    try {
      scratch.resize(nInstances, nullptr, lengths, nullptr);
    } catch (...) {
      // A failed resize leaves the lengths with their giver.
      delete[] lengths;
      throw;
    }
    switch (type) {
      case vINT16:
        unpackValues<short>(packer, scratch.m_data, expected);
        break;
      case vINT32:
        unpackValues<int>(packer, scratch.m_data, expected);
        break;
      case vINT64:
        unpackValues<long long>(packer, scratch.m_data, expected);
        break;
      case vFLOAT32:
        unpackValues<float>(packer, scratch.m_data, expected);
        break;
      case vFLOAT64:
        unpackValues<double>(packer, scratch.m_data, expected);
        break;
      default:
        unpackValues<vString>(packer, scratch.m_data, expected);
        break;
    }
  }

  if (version >= 4) {
    packer.unpack(minValue);
    packer.unpack(maxValue);
    packer.unpack(nZeros);
  }
  int32_t originalType = vNOTYPE;
  if (version >= 5) packer.unpack(originalType);
  // Kept as a DataType, so only a base type may come.
  if (originalType < vNOTYPE || originalType > vIBMFLOAT32)
    Message::fatal("Attribute::unpack", 0, "Unsupported data type '%s' for Attribute %s.",
                   typeName(originalType).c_str(), scratch.getName().c_str());
  if (version > Version)
    packer.skipFrame();
  else
    packer.endFrame();

  scratch.m_minValue = minValue;
  scratch.m_maxValue = maxValue;
  scratch.m_nZeros = nZeros;
  scratch.m_originalDataType = static_cast<DataType>(originalType);
  myTakeOver(scratch);
}

// ---------------------------------------------------------------------------
// Debug print

std::ostream& operator<<(std::ostream& out, Attribute const& a) {
  out << " Attribute Name:" << a.getName() << "\n";
  out << "          Class:" << a.getClass() << "\n";
  out << "       DataType:" << typeName(a.getDataType()) << "\n";
  out << "  Orig DataType:" << typeName(a.getOriginalDataType()) << "\n";
  if (a.isVariableLength())
    out << "         Length:Variable Length\n";
  else
    out << "         Length:" << a.getLength() << "\n";
  out << "     SampleRate:" << a.getSampleRate() << "\n";
  out << "     First Time:" << a.getFirstTime() << "\n";
  out << "      Last Time:" << a.getLastTime() << "\n";
  out << "    N Instances:" << a.getNInstances() << "\n";
  double minValue = 0.0;
  double maxValue = 0.0;
  long long nZeros = 0;
  a.getStatisticValues(minValue, maxValue, nZeros);
  out << "      Min Value:" << minValue << "   Max Value:" << maxValue << "\n";
  out << "        N Zeros:" << nZeros << "\n";
  return out;
}
