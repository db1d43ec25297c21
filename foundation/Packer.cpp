#include "foundation/Packer.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <ostream>
#include <utility>

#include "foundation/Packable.h"
#include "foundation/UtlExcept.h"
#include "foundation/vDate.h"
#include "foundation/vString.h"
#include "foundation/vUtl.h"

namespace {

// A buffer may not grow beyond this, so that sizes stay signed 32-bit.
long long const kMaxBytes = 2100000000LL;
// Growth is by half the need, but never by more than this in one step.
long long const kMaxGrowth = 100000LL;
// Room for a body being received is first made for at most this many
// bytes, and then grows with what arrives.
long long const kReceiveStep = 65536LL;
// Bytes of an address-of entry beyond the 5 of an array head.
int const kAddressOfExtra = 8;
uint32_t const kSwappedMagic = 0xD6126A02u;
int32_t const kSwappedVersion = 0x01000000;

char const* const kStateNames[] = {"", "PACKINIT", "PACKPACKING", "PACKSENT", "PACKUNPACKING", "PACKUNPACKED",
                                   "PACKDELETED"};

// What an operation does in each state.
enum Outcome { kIllegal = 0, kSame = -1, kDeleteInfo = -2, kNoMoreData = -3 };

// Rows: states PACKINIT .. PACKDELETED. Columns: operations pack, send,
// receive, unpack, discard, delete, first, read tag.
int const kStateTable[6][8] = {
    {Packer::PACKPACKING, kIllegal, Packer::PACKUNPACKING, kIllegal, kIllegal, Packer::PACKDELETED, kIllegal,
     kIllegal},
    {kSame, Packer::PACKSENT, kIllegal, kIllegal, kIllegal, kDeleteInfo, kIllegal, kIllegal},
    {Packer::PACKPACKING, kSame, Packer::PACKUNPACKING, Packer::PACKUNPACKING, kIllegal, Packer::PACKDELETED,
     kIllegal, kSame},
    {kIllegal, kSame, kIllegal, kSame, Packer::PACKUNPACKED, kDeleteInfo, kSame, kSame},
    {Packer::PACKPACKING, kSame, Packer::PACKUNPACKING, kNoMoreData, kSame, Packer::PACKDELETED,
     Packer::PACKUNPACKING, kSame},
    {kIllegal, kIllegal, kIllegal, kIllegal, kIllegal, kIllegal, kIllegal, kIllegal},
};

inline uint32_t loadU32(unsigned char const* p) {
  uint32_t v;
  std::memcpy(&v, p, 4);
  return v;
}
inline int32_t loadI32(unsigned char const* p) {
  int32_t v;
  std::memcpy(&v, p, 4);
  return v;
}
inline void storeU32(unsigned char* p, uint32_t v) { std::memcpy(p, &v, 4); }
inline void storeI32(unsigned char* p, int32_t v) { std::memcpy(p, &v, 4); }

// Bytes of one element of a base type inside a message; 0 for types that
// have no fixed element (vSTRING text) or no data at all.
int streamElementSize(int base, char const* label) {
  if (base == vDATE) return 5;
  if (base == vSTRING) return 0;
  if (base == vPACKFRAME) return 2;
  if (base == vENDFRAME) return 0;
  if (base < 0 || base > vIBMFLOAT32) Message::fatal(label, 0, "Unknown DataType %d.", base);
  return vUtl::dataTypeSize(base);
}

// Reverses the multi-byte fields of count elements of a base type, in place.
void swapElements(unsigned char* data, int base, uint32_t count) {
  switch (base) {
    case vINT16:
    case vUINT16:
    case vPACKFRAME:
      vUtl::swapBytes16(data, count);
      break;
    case vINT32:
    case vUINT32:
    case vFLOAT32:
      vUtl::swapBytes32(data, count);
      break;
    case vINT64:
    case vUINT64:
    case vFLOAT64:
      vUtl::swapBytes64(data, count);
      break;
    case vDATE:
      // Each date is a flag byte and the 32-bit seconds.
      for (uint32_t i = 0; i < count; ++i) vUtl::swapBytes32(data + 5 * static_cast<std::size_t>(i) + 1, 1);
      break;
    default:
      break;
  }
}

[[noreturn]] void pastEnd(char const* label, int position, int end) {
  Message::fatal(label, 0, "Corrupt message: the entry at offset %d runs past the end of the message (%d bytes).",
                 position, end);
}

}  // namespace

// The decoded head of one entry, checked against the end of the message.
struct Packer::Entry {
  int type;             // the type byte as stored
  uint32_t count;       // elements: array count, 1 scalar, 2 frame start, 0 frame end
  uint32_t nBytes;      // bytes of the data
  unsigned char const* data;  // where the data are (buffer or caller memory)
  int position;         // offset of the type byte
  int next;             // offset of the next entry
};

// --- construction -------------------------------------------------------------

Packer::Packer(int capacity) {
  setCapacity(capacity);
}

Packer::Packer(int size, unsigned char const* buffer) : Packer(0) {
  char const* const label = "Packer::Packer(size,const buf)";
  if (size < HEADER_SIZE || buffer == nullptr)
    Message::fatal(label, 0, "Bad message received. Message of %d bytes is shorter than its header.", size);
  myInitFromHeader(buffer, size, label);
  myAllocate(size, label);
  std::memcpy(m_buffer, buffer, static_cast<std::size_t>(size));
  myFromBuffer(size, label);
}

Packer::Packer(int size, unsigned char* buffer) : Packer(0) {
  char const* const label = "Packer::Packer(size,buf)";
  try {
    if (size < HEADER_SIZE || buffer == nullptr)
      Message::fatal(label, 0, "Bad message received. Message of %d bytes is shorter than its header.", size);
    myInitFromHeader(buffer, size, label);
  } catch (...) {
    delete[] buffer;
    throw;
  }
  delete[] m_buffer;
  m_buffer = buffer;
  m_capacity = size;
  myFromBuffer(size, label);
}

Packer::Packer(Packer const& other) {
  *this = other;
}

Packer& Packer::operator=(Packer const& other) {
  if (this == &other) return *this;
  unsigned char* copy = new (std::nothrow) unsigned char[static_cast<std::size_t>(other.m_capacity)];
  if (copy == nullptr) Message::fatal("Packer::operator=", 0, "Cannot allocate buffer of size %d.", other.m_capacity);
  int const used = other.myUsedBytes();
  if (used > 0) std::memcpy(copy, other.m_buffer, static_cast<std::size_t>(used));
  delete[] m_buffer;
  m_buffer = copy;
  m_capacity = other.m_capacity;
  m_size = other.m_size;
  m_writePos = other.m_writePos;
  m_state = other.m_state;
  m_readPos = other.m_readPos;
  m_end = other.m_end;
  m_lastType = other.m_lastType;
  m_nEntries = other.m_nEntries;
  // The buffer refers to the address table by index, so they go together.
  m_addresses = other.m_addresses;
  m_nAddressOf = other.m_nAddressOf;
  m_addressOfBytes = other.m_addressOfBytes;
  m_receiveLength = other.m_receiveLength;
  m_frameDepth = 0;
  m_swap = false;
  m_wireHeads.clear();
  m_wire.reset();
  m_wireCapacity = 0;
  m_wireValid = false;
  return *this;
}

void Packer::swap(Packer& other) noexcept {
  using std::swap;
  swap(m_size, other.m_size);
  swap(m_writePos, other.m_writePos);
  swap(m_capacity, other.m_capacity);
  swap(m_buffer, other.m_buffer);
  swap(m_state, other.m_state);
  swap(m_readPos, other.m_readPos);
  swap(m_frameDepth, other.m_frameDepth);
  swap(m_swap, other.m_swap);
  swap(m_nAddressOf, other.m_nAddressOf);
  swap(m_addressOfBytes, other.m_addressOfBytes);
  swap(m_nEntries, other.m_nEntries);
  swap(m_lastType, other.m_lastType);
  swap(m_end, other.m_end);
  swap(m_addresses, other.m_addresses);
  swap(m_wireHeads, other.m_wireHeads);
  swap(m_wire, other.m_wire);
  swap(m_wireCapacity, other.m_wireCapacity);
  swap(m_wireValid, other.m_wireValid);
  swap(m_receiveLength, other.m_receiveLength);
}

Packer::~Packer() {
  try {
    mySetMyState(PACKOP_DELETE, "Packer::~Packer");
  } catch (...) {
    // A destructor must not throw; the state no longer matters.
  }
  delete[] m_buffer;
  m_buffer = nullptr;
  m_size = 0;
  m_writePos = 0;
}

// --- state --------------------------------------------------------------------

Packer::PackState Packer::myNextState(PackOperation op, char const* label) const {
  if (m_state < PACKINIT || m_state > PACKDELETED)
    Message::fatal(label, 0, "Unknown current state %d.", static_cast<int>(m_state));
  int const column = static_cast<int>(op) - PACKOP_PACK;
  int const outcome = (column >= 0 && column < 8) ? kStateTable[m_state - PACKINIT][column] : kIllegal;
  switch (outcome) {
    case kIllegal:
      Message::fatal(label, 0, "Illegal operation %d for state %s.", static_cast<int>(op), kStateNames[m_state]);
    case kNoMoreData:
      Message::fatal(label, 0, "No more data to unpack.");
    case kSame:
    case kDeleteInfo:
      return m_state;
    default:
      return static_cast<PackState>(outcome);
  }
}

void Packer::mySetMyState(PackOperation op, char const* label) {
  PackState const next = myNextState(op, label);
  if (op == PACKOP_DELETE && next == m_state) {
    Message::info(label, 0, "Packer object deleted while in %s state.", kStateNames[m_state]);
  }
  m_state = next;
}

// --- buffer -------------------------------------------------------------------

int Packer::myUsedBytes() const { return m_writePos > 0 ? m_writePos : m_end; }

int Packer::getCapacity() const { return m_capacity - HEADER_SIZE; }

void Packer::setCapacity(int capacity) {
  char const* const label = "Packer::setCapacity";
  if (capacity < 0) Message::fatal(label, 0, "Capacity cannot be negative, %d was supplied.", capacity);
  int const used = myUsedBytes();
  if (static_cast<long long>(capacity) + HEADER_SIZE < used)
    Message::fatal(label, 0, "Cannot set capacity to less than already used.Used=%d Supplied=%d.", used, capacity);
  myAllocate((static_cast<long long>(capacity) + 19) & ~3LL, label);
}

void Packer::myAllocate(long long capacity, char const* label) {
  if (capacity > 0x7FFFFFFFLL) Message::fatal(label, 0, "Cannot allocate buffer of size %lld.", capacity);
  if (m_buffer != nullptr && capacity == m_capacity) return;
  unsigned char* fresh = new (std::nothrow) unsigned char[static_cast<std::size_t>(capacity)];
  if (fresh == nullptr) Message::fatal(label, 0, "Cannot allocate buffer of size %d.", static_cast<int>(capacity));
  int const used = myUsedBytes();
  if (m_buffer != nullptr && used > 0) std::memcpy(fresh, m_buffer, static_cast<std::size_t>(used));
  delete[] m_buffer;
  m_buffer = fresh;
  m_capacity = static_cast<int32_t>(capacity);
}

void Packer::myCheckCapacity(long long nBytes, char const* label) {
  long long const needed = static_cast<long long>(m_writePos) + nBytes + 5;
  if (needed <= m_capacity) return;
  long long grown = needed + std::min(needed / 2, kMaxGrowth);
  if (grown > kMaxBytes) grown = needed + 1000;
  if (grown > kMaxBytes) grown = needed;
  if (grown > kMaxBytes)
    Message::fatal(label, 0, "Packer cannot handle >2gig. Has %d, wanted another %lld.", m_writePos, nBytes);
  // setCapacity rounds (c + 19) down to a multiple of 4: at least c + 16.
  setCapacity(static_cast<int>(grown - HEADER_SIZE));
}

// --- packing ------------------------------------------------------------------

void Packer::myStartMessage() {
  m_writePos = HEADER_SIZE;
  m_size = 0;
  m_end = 0;
  m_readPos = 0;
  m_frameDepth = 0;
  m_swap = false;
  m_nAddressOf = 0;
  m_addressOfBytes = 0;
  m_nEntries = 0;
  m_addresses.clear();
  m_wireHeads.clear();
  m_wireValid = false;
  m_receiveLength = -1;
}

void Packer::myAddData(int type, void const* data, long long count, long long nBytes, bool addressOf,
                       char const* label) {
  if (nBytes < 0 || nBytes > 0x7FFFFFFFLL) Message::fatal(label, 0, "Requested number of bytes (%lld) was invalid.", nBytes);
  if (count < 0 || count > 0x7FFFFFFFLL) Message::fatal(label, 0, "Requested array count (%lld) was invalid.", count);
  if (nBytes > 0 && data == nullptr)
    Message::fatal(label, 0, "Null data given for %lld elements of %s.", count, vUtl::dataTypeName(type).c_str());
  PackState const next = myNextState(PACKOP_PACK, label);
  if (m_writePos == 0) myStartMessage();
  if (addressOf) {
    // What the message will take on the way out, where the data are copied.
    long long const wire =
        static_cast<long long>(m_writePos) - static_cast<long long>(kAddressOfExtra) * m_nAddressOf + m_addressOfBytes;
    if (wire + 5 + nBytes > kMaxBytes)
      Message::fatal(label, 0, "Packer cannot handle >2gig. Has %lld, wanted another %lld.", wire, nBytes);
    myCheckCapacity(kAddressOfExtra, label);
    unsigned char* p = m_buffer + m_writePos;
    p[0] = static_cast<unsigned char>(type | vARRAYOF | vADDRESSOF);
    storeU32(p + 1, static_cast<uint32_t>(count));
    storeU32(p + 5, static_cast<uint32_t>(m_addresses.size()));
    storeU32(p + 9, static_cast<uint32_t>(nBytes));
    m_addresses.push_back(AddressOf{static_cast<unsigned char const*>(data), static_cast<uint32_t>(nBytes), m_writePos});
    m_writePos += 5 + kAddressOfExtra;
    m_addressOfBytes += nBytes;
    ++m_nAddressOf;
  } else {
    myCheckCapacity(nBytes, label);
    unsigned char* p = m_buffer + m_writePos;
    if (count != 0 || nBytes == 0) {
      *p++ = static_cast<unsigned char>(type | vARRAYOF);
      storeU32(p, static_cast<uint32_t>(count));
      p += 4;
    } else {
      *p++ = static_cast<unsigned char>(type);
    }
    if (nBytes > 0) std::memcpy(p, data, static_cast<std::size_t>(nBytes));
    m_writePos = static_cast<int32_t>((p - m_buffer) + nBytes);
  }
  ++m_nEntries;
  m_state = next;
}

#define RONDO_PACKER_NUMBER(T, CODE)                                                                      \
  void Packer::pack(T value) { myPackScalar(value, CODE, "Packer::pack"); }                               \
  void Packer::pack(T const* values, unsigned int count) {                                                \
    myPackArray(values, count, CODE, false, "Packer::pack");                                              \
  }                                                                                                       \
  void Packer::packAddressOf(T const* values, unsigned int count) {                                       \
    myPackArray(values, count, CODE, true, "Packer::packAddressOf");                                      \
  }                                                                                                       \
  void Packer::unpack(T& value) { myUnpackScalar(value, CODE, "Packer::unpack"); }                        \
  unsigned int Packer::unpack(T* values) { return myUnpackArray(values, CODE | vARRAYOF, "Packer::unpack"); }

RONDO_PACKER_NUMBER(signed char, vINT8)
RONDO_PACKER_NUMBER(char, vCHAR8)
RONDO_PACKER_NUMBER(unsigned char, vUINT8)
RONDO_PACKER_NUMBER(short, vINT16)
RONDO_PACKER_NUMBER(unsigned short, vUINT16)
RONDO_PACKER_NUMBER(int, vINT32)
RONDO_PACKER_NUMBER(unsigned int, vUINT32)
RONDO_PACKER_NUMBER(long long, vINT64)
RONDO_PACKER_NUMBER(unsigned long long, vUINT64)
RONDO_PACKER_NUMBER(float, vFLOAT32)
RONDO_PACKER_NUMBER(double, vFLOAT64)
#if defined(__LP64__)
static_assert(sizeof(long) == 8, "long is 64-bit on LP64");
RONDO_PACKER_NUMBER(long, vINT64)
RONDO_PACKER_NUMBER(unsigned long, vUINT64)
#endif

#undef RONDO_PACKER_NUMBER

void Packer::packBool(bool value) {
  unsigned char const b = value ? 1 : 0;
  myAddData(vBOOL8, &b, 0, 1, false, "Packer::packBool");
}

void Packer::packBool(bool const* values, unsigned int count) {
  char const* const label = "Packer::packBool";
  if (count == 0) return myAddData(vBOOL8, nullptr, 0, 0, false, label);
  if (values == nullptr) Message::fatal(label, 0, "Null data given for %u Bool8s.", count);
  // A bool may hold any bit pattern in memory; the stream has 0 or 1.
  unsigned char* bytes = new (std::nothrow) unsigned char[count];
  if (bytes == nullptr) Message::fatal(label, 0, "Could not allocate memory for %d Bool8s.", static_cast<int>(count));
  std::unique_ptr<unsigned char[]> owner(bytes);
  for (unsigned int i = 0; i < count; ++i) {
    unsigned char raw;
    std::memcpy(&raw, values + i, 1);
    bytes[i] = raw != 0 ? 1 : 0;
  }
  myAddData(vBOOL8, bytes, count, count, false, label);
}

void Packer::pack(vString const& text) {
  unsigned int const length = text.length();
  if (length == 0) return myAddData(vCHAR8, nullptr, 0, 0, false, "Packer::pack");
  // The text and its terminating zero.
  myAddData(vCHAR8, text.c_str(), static_cast<long long>(length) + 1, static_cast<long long>(length) + 1, false,
            "Packer::pack");
}

void Packer::pack(char const* text) {
  vString const s(text);
  pack(s);
}

void Packer::pack(vString const* texts, unsigned int count) {
  char const* const label = "Packer::pack";
  if (count > 0 && texts == nullptr) Message::fatal(label, 0, "Null data given for %u vSTRINGs.", count);
  long long total = 0;
  for (unsigned int i = 0; i < count; ++i) total += static_cast<long long>(std::strlen(texts[i].c_str())) + 1;
  if (total > 0x7FFFFFFFLL) Message::fatal(label, 0, "Requested number of bytes (%lld) was invalid.", total);
  PackState const next = myNextState(PACKOP_PACK, label);
  if (m_writePos == 0) myStartMessage();
  myCheckCapacity(total, label);
  unsigned char* p = m_buffer + m_writePos;
  *p++ = static_cast<unsigned char>(vARRAYOF | vSTRING);
  storeU32(p, count);
  p += 4;
  // Each text up to its first zero, then the zero.
  for (unsigned int i = 0; i < count; ++i) {
    std::size_t const n = std::strlen(texts[i].c_str()) + 1;
    std::memcpy(p, texts[i].c_str(), n);
    p += n;
  }
  m_writePos = static_cast<int32_t>(p - m_buffer);
  ++m_nEntries;
  m_state = next;
}

namespace {
void encodeDate(vDate const& date, unsigned char* p) {
  p[0] = date.isValid() ? 0 : 1;
  storeI32(p + 1, static_cast<int32_t>(date.getSeconds()));
}
void decodeDate(unsigned char const* p, vDate& date) {
  date.setSeconds(static_cast<long>(loadI32(p + 1)));
  if (p[0] & 1) date.setInvalid();
}
}  // namespace

void Packer::pack(vDate const& date) {
  unsigned char bytes[5];
  encodeDate(date, bytes);
  myAddData(vDATE, bytes, 0, 5, false, "Packer::pack");
}

void Packer::pack(vDate const* dates, unsigned int count) {
  char const* const label = "Packer::pack";
  if (count > 0 && dates == nullptr) Message::fatal(label, 0, "Null data given for %u vDATEs.", count);
  long long const total = 5LL * count;
  if (total > 0x7FFFFFFFLL) Message::fatal(label, 0, "Requested number of bytes (%lld) was invalid.", total);
  PackState const next = myNextState(PACKOP_PACK, label);
  if (m_writePos == 0) myStartMessage();
  myCheckCapacity(total, label);
  unsigned char* p = m_buffer + m_writePos;
  *p++ = static_cast<unsigned char>(vARRAYOF | vDATE);
  storeU32(p, count);
  p += 4;
  for (unsigned int i = 0; i < count; ++i, p += 5) encodeDate(dates[i], p);
  m_writePos = static_cast<int32_t>(p - m_buffer);
  ++m_nEntries;
  m_state = next;
}

void Packer::pack(Packable const& object) { object.pack(*this); }

// --- frames -------------------------------------------------------------------

void Packer::packFrame(short magic, short version) {
  unsigned char bytes[4];
  std::memcpy(bytes, &magic, 2);
  std::memcpy(bytes + 2, &version, 2);
  myAddData(vPACKFRAME, bytes, 0, 4, false, "Packer::packFrame");
  ++m_frameDepth;
}

void Packer::endFrame() {
  char const* const label = "Packer::endFrame";
  if (m_state == PACKUNPACKING || m_state == PACKUNPACKED) {
    mySetMyState(PACKOP_UNPACK, label);
    Entry e;
    myPrepareNextEntry(e, label);
    if (e.type != vENDFRAME)
      Message::fatal(label, 0, "Mismatched data type. Data is %d, asked for %d.", e.type, static_cast<int>(vENDFRAME));
    m_lastType = e.type;
    m_readPos = e.next;
    --m_frameDepth;
    myCheckEnd(label);
    return;
  }
  // A frame end is one byte: it never takes the array form.
  PackState const next = myNextState(PACKOP_PACK, label);
  if (m_writePos == 0) myStartMessage();
  myCheckCapacity(0, label);
  m_buffer[m_writePos++] = static_cast<unsigned char>(vENDFRAME);
  ++m_nEntries;
  --m_frameDepth;
  m_state = next;
}

void Packer::unpackFrame(short& magic, short& version) {
  char const* const label = "Packer::unpackFrame";
  mySetMyState(PACKOP_UNPACK, label);
  Entry e;
  myPrepareNextEntry(e, label);
  if (e.type != vPACKFRAME)
    Message::fatal(label, 0, "Mismatched data type. Data is %d, asked for %d.", e.type, static_cast<int>(vPACKFRAME));
  std::memcpy(&magic, e.data, 2);
  std::memcpy(&version, e.data + 2, 2);
  m_lastType = e.type;
  m_readPos = e.next;
  ++m_frameDepth;
  myCheckEnd(label);
}

void Packer::skipFrame() {
  try {
    if (myReadStart() <= HEADER_SIZE) next();
    int depth = (m_lastType == vENDFRAME) ? 0 : 1;
    while (m_state != PACKUNPACKED) {
      int const type = getNextDataType();
      next();
      if (type == vENDFRAME) {
        if (--depth <= 0) return;
      } else if (type == vPACKFRAME) {
        ++depth;
      } else if (depth == 0) {
        return;
      }
    }
  } catch (UtlExcept const&) {
    // Running off the end of the message ends the skip.
  }
}

void Packer::skipRestOfFrame() {
  try {
    int depth = 1;
    while (depth > 0 && m_state != PACKUNPACKED) {
      DataType const type = getNextDataType();
      if (type == vNOTYPE) return;
      next();
      if (type == vENDFRAME)
        --depth;
      else if (type == vPACKFRAME)
        ++depth;
    }
  } catch (UtlExcept const&) {
    // As for skipFrame, running off the end of the message ends the skip.
  }
}

// --- reading ------------------------------------------------------------------

void Packer::myPrepareNextEntry(Entry& e, char const* label) const {
  if (m_receiveLength >= 0) Message::fatal(label, 0, "The message is still being received.");
  int const pos = myReadStart();
  int const end = m_end;
  if (pos >= end) Message::fatal(label, 0, "No more data to unpack.");
  unsigned char const* const base = m_buffer;
  int const t = base[pos];
  e.type = t;
  e.position = pos;
  long long const avail = static_cast<long long>(end) - (pos + 1);
  if (vUtl::dataTypeIsAddressOf(t)) {
    if (avail < 12) pastEnd(label, pos, end);
    uint32_t const count = loadU32(base + pos + 1);
    uint32_t const index = loadU32(base + pos + 5);
    uint32_t const nBytes = loadU32(base + pos + 9);
    if (index >= m_addresses.size() || m_addresses[index].position != pos || m_addresses[index].nBytes != nBytes)
      Message::fatal(label, 0, "Corrupt message: the address-of entry at offset %d does not belong to this message.",
                     pos);
    e.count = count;
    e.nBytes = nBytes;
    e.data = m_addresses[index].data;
    e.next = pos + 13;
    return;
  }
  if (t == vENDFRAME) {
    e.count = 0;
    e.nBytes = 0;
    e.data = base + pos + 1;
    e.next = pos + 1;
    return;
  }
  long long count = 1;
  int dataPos = pos + 1;
  int const baseType = t & 0x7F;
  if (t & vARRAYOF) {
    if (avail < 4) pastEnd(label, pos, end);
    count = loadU32(base + pos + 1);
    dataPos = pos + 5;
  }
  long long const left = static_cast<long long>(end) - dataPos;
  long long nBytes = 0;
  if (baseType == vSTRING) {
    if (!(t & vARRAYOF))
      Message::fatal(label, 0, "Corrupt message: the vSTRING entry at offset %d is not an array.", pos);
    // Every text ends in a zero within the message.
    if (count > left) pastEnd(label, pos, end);
    unsigned char const* p = base + dataPos;
    unsigned char const* const stop = base + end;
    for (long long i = 0; i < count; ++i) {
      void const* zero = std::memchr(p, 0, static_cast<std::size_t>(stop - p));
      if (zero == nullptr) pastEnd(label, pos, end);
      p = static_cast<unsigned char const*>(zero) + 1;
    }
    nBytes = p - (base + dataPos);
  } else if (t == vPACKFRAME) {
    count = 2;
    nBytes = 4;
    if (nBytes > left) pastEnd(label, pos, end);
  } else {
    long long const size = streamElementSize(baseType, label);
    if (size == 0 && count > 0 && baseType != vNOTYPE)
      Message::fatal(label, 0, "Corrupt message: the entry at offset %d is an array of %s.", pos,
                     vUtl::dataTypeName(t).c_str());
    if (baseType == vNOTYPE && (t & vARRAYOF) && count > 0)
      Message::fatal(label, 0, "Corrupt message: the entry at offset %d is an array of %s.", pos,
                     vUtl::dataTypeName(t).c_str());
    nBytes = count * size;
    if (nBytes > left) pastEnd(label, pos, end);
  }
  e.count = static_cast<uint32_t>(count);
  e.nBytes = static_cast<uint32_t>(nBytes);
  e.data = base + dataPos;
  e.next = dataPos + static_cast<int>(nBytes);
}

void Packer::myCheckEnd(char const* label) {
  if (m_readPos >= m_end) {
    m_state = PACKUNPACKED;
    if (m_frameDepth != 0) Message::fatal(label, 0, "Number of packframes does not match endframes");
  }
}

void Packer::myGetData(int type, void* destination, char const* label) {
  mySetMyState(PACKOP_UNPACK, label);
  Entry e;
  myPrepareNextEntry(e, label);
  m_lastType = e.type;
  int const found = vUtl::dataTypeIsAddressOf(e.type) ? (e.type & ~vADDRESSOF) : e.type;
  if (found != type)
    Message::fatal(label, 0, "Mismatched data type. Data is %s, asked for %s.", vUtl::dataTypeName(found).c_str(),
                   vUtl::dataTypeName(type).c_str());
  if (e.nBytes > 0) std::memcpy(destination, e.data, e.nBytes);
  m_readPos = e.next;
  myCheckEnd(label);
}

template <class T>
unsigned int Packer::myUnpackArray(T* values, int type, char const* label) {
  mySetMyState(PACKOP_UNPACK, label);
  Entry e;
  myPrepareNextEntry(e, label);
  m_lastType = e.type;
  int const found = vUtl::dataTypeIsAddressOf(e.type) ? (e.type & ~vADDRESSOF) : e.type;
  if (found != type)
    Message::fatal(label, 0, "Mismatched data type. Data is %s, asked for %s.", vUtl::dataTypeName(found).c_str(),
                   vUtl::dataTypeName(type).c_str());
  if (e.nBytes > 0) {
    if (values == nullptr) Message::fatal(label, 0, "No room given for %u elements.", e.count);
    std::memcpy(values, e.data, e.nBytes);
  }
  m_readPos = e.next;
  myCheckEnd(label);
  return e.count;
}

void Packer::unpackBool(bool& value) {
  unsigned char b = 0;
  myGetData(vBOOL8, &b, "Packer::unpackBool");
  value = (b == 1);
}

unsigned int Packer::unpackBool(bool* values) {
  char const* const label = "Packer::unpackBool";
  mySetMyState(PACKOP_UNPACK, label);
  Entry e;
  myPrepareNextEntry(e, label);
  m_lastType = e.type;
  int const wanted = vARRAYOF | vBOOL8;
  if (e.type != wanted)
    Message::fatal(label, 0, "Mismatched data type. Data is %s, asked for %s.", vUtl::dataTypeName(e.type).c_str(),
                   vUtl::dataTypeName(wanted).c_str());
  if (e.count > 0 && values == nullptr) Message::fatal(label, 0, "No room given for %u elements.", e.count);
  for (uint32_t i = 0; i < e.count; ++i) values[i] = (e.data[i] == 1);
  m_readPos = e.next;
  myCheckEnd(label);
  return e.count;
}

void Packer::unpack(vString& text) {
  char const* const label = "Packer::unpack";
  mySetMyState(PACKOP_UNPACK, label);
  Entry e;
  myPrepareNextEntry(e, label);
  m_lastType = e.type;
  if (e.type != (vARRAYOF | vCHAR8))
    Message::fatal(label, 0, "Mismatched data type. Data is %d, should be vARRAYOF|vCHAR8.", e.type);
  // Assigned through the virtual operator= so that folding strings fold.
  vString const value(e.count > 0 ? static_cast<int>(e.count - 1) : 0, reinterpret_cast<char const*>(e.data));
  text = value;
  m_readPos = e.next;
  myCheckEnd(label);
}

unsigned int Packer::unpack(vString* texts) {
  char const* const label = "Packer::unpack";
  mySetMyState(PACKOP_UNPACK, label);
  Entry e;
  myPrepareNextEntry(e, label);
  m_lastType = e.type;
  if (e.type != (vARRAYOF | vSTRING))
    Message::fatal(label, 0, "Mismatched data type. Data is %s, asked for vSTRING|ARRAYOF.",
                   vUtl::dataTypeName(e.type).c_str());
  if (e.count > 0 && texts == nullptr) Message::fatal(label, 0, "No room given for %u elements.", e.count);
  // The entry check found every zero inside the message.
  char const* p = reinterpret_cast<char const*>(e.data);
  for (uint32_t i = 0; i < e.count; ++i) {
    std::size_t const n = std::strlen(p);
    vString const value(static_cast<int>(n), p);
    texts[i] = value;
    p += n + 1;
  }
  m_readPos = e.next;
  myCheckEnd(label);
  return e.count;
}

void Packer::unpack(vDate& date) {
  unsigned char bytes[5];
  myGetData(vDATE, bytes, "Packer::unpack");
  decodeDate(bytes, date);
}

unsigned int Packer::unpack(vDate* dates) {
  char const* const label = "Packer::unpack";
  mySetMyState(PACKOP_UNPACK, label);
  Entry e;
  myPrepareNextEntry(e, label);
  m_lastType = e.type;
  if (e.type != (vARRAYOF | vDATE))
    Message::fatal(label, 0, "Mismatched data type. Data is %s, asked for vDATE|ARRAYOF.",
                   vUtl::dataTypeName(e.type).c_str());
  if (e.count > 0 && dates == nullptr) Message::fatal(label, 0, "No room given for %u elements.", e.count);
  for (uint32_t i = 0; i < e.count; ++i) decodeDate(e.data + 5 * static_cast<std::size_t>(i), dates[i]);
  m_readPos = e.next;
  myCheckEnd(label);
  return e.count;
}

void Packer::unpack(Packable& object) { object.unpack(*this); }

// --- inspection ---------------------------------------------------------------

unsigned int Packer::getNElements() {
  if (m_state != PACKSENT && m_state != PACKUNPACKING) return 0;
  if (m_receiveLength >= 0) return 0;
  if (myReadStart() >= m_end) return 0;
  Entry e;
  myPrepareNextEntry(e, "Packer::getNElements");
  return e.count;
}

DataType Packer::getNextDataType() const {
  if (m_state != PACKSENT && m_state != PACKUNPACKING) return vNOTYPE;
  if (m_receiveLength >= 0) return vNOTYPE;
  int const pos = myReadStart();
  if (pos >= m_end) return vNOTYPE;
  return static_cast<DataType>(m_buffer[pos]);
}

int Packer::getNRemainingBytes() const {
  if (m_state != PACKSENT && m_state != PACKUNPACKING) return 0;
  if (m_receiveLength >= 0) return 0;
  int const left = m_end - myReadStart();
  return left > 0 ? left : 0;
}

bool Packer::next() {
  char const* const label = "Packer::next";
  if (m_state == PACKUNPACKED) return false;
  mySetMyState(PACKOP_UNPACK, label);
  if (m_receiveLength >= 0) Message::fatal(label, 0, "The message is still being received.");
  if (myReadStart() >= m_end) {
    // A message without entries.
    m_state = PACKUNPACKED;
    return false;
  }
  Entry e;
  myPrepareNextEntry(e, label);
  m_lastType = e.type;
  if (e.type == vENDFRAME) --m_frameDepth;
  if (e.type == vPACKFRAME) ++m_frameDepth;
  m_readPos = e.next;
  myCheckEnd(label);
  return m_state == PACKUNPACKING;
}

void Packer::first() {
  mySetMyState(PACKOP_FIRST, "Packer::first");
  m_readPos = HEADER_SIZE;
  m_frameDepth = 0;
  m_lastType = vNOTYPE;
  if (m_readPos >= m_end) m_state = PACKUNPACKED;
}

void Packer::discard() {
  mySetMyState(PACKOP_DISCARD, "Packer::discard");
  m_readPos = m_end;
  m_frameDepth = 0;
}

int Packer::getMessageTag() {
  mySetMyState(PACKOP_READTAG, "Packer::getMessageTag");
  if (m_end < HEADER_SIZE && m_size < HEADER_SIZE) return 0;
  return loadI32(m_buffer + 12);
}

// --- finishing and transport -------------------------------------------------

void Packer::myPrepareToSend(char const* label, int tag) {
  PackState const next = myNextState(PACKOP_SEND, label);
  if (m_writePos == 0) {
    // Nothing new: the message goes again as it stands.
    m_state = next;
    return;
  }
  if (m_frameDepth != 0) Message::fatal(label, 0, "Number of packframes does not match endframes");
  m_end = m_writePos;
  m_size = static_cast<int32_t>(m_writePos - kAddressOfExtra * m_nAddressOf + m_addressOfBytes);
  m_writePos = 0;
  m_readPos = 0;
  m_lastType = vNOTYPE;
  storeI32(m_buffer, MAGIC);
  storeI32(m_buffer + 4, VERSION);
  storeI32(m_buffer + 8, m_size - HEADER_SIZE);
  storeI32(m_buffer + 12, tag);
  m_wireHeads.clear();
  m_wireValid = false;
  m_state = next;
}

void Packer::getSegments(std::vector<Segment>& segments, int tag) {
  myPrepareToSend("Packer::getSegments", tag);
  segments.clear();
  if (m_size == 0) return;
  if (m_addresses.empty()) {
    segments.push_back(Segment{m_buffer, static_cast<std::size_t>(m_size)});
    return;
  }
  // Entry heads as they go out: the array form of each address-of entry.
  if (m_wireHeads.size() != 5 * m_addresses.size()) {
    m_wireHeads.resize(5 * m_addresses.size());
    for (std::size_t i = 0; i < m_addresses.size(); ++i) {
      unsigned char const* entry = m_buffer + m_addresses[i].position;
      m_wireHeads[5 * i] = static_cast<unsigned char>(entry[0] & ~vADDRESSOF);
      std::memcpy(&m_wireHeads[5 * i + 1], entry + 1, 4);
    }
  }
  int from = 0;
  for (std::size_t i = 0; i < m_addresses.size(); ++i) {
    int const at = m_addresses[i].position;
    if (at > from) segments.push_back(Segment{m_buffer + from, static_cast<std::size_t>(at - from)});
    segments.push_back(Segment{&m_wireHeads[5 * i], 5});
    if (m_addresses[i].nBytes > 0) segments.push_back(Segment{m_addresses[i].data, m_addresses[i].nBytes});
    from = at + 5 + kAddressOfExtra;
  }
  if (m_end > from) segments.push_back(Segment{m_buffer + from, static_cast<std::size_t>(m_end - from)});
}

void Packer::myBuildWire(char const* label) {
  if (m_wireValid) return;
  std::vector<Segment> segments;
  // The message is already finished: this only lays out its pieces.
  PackState const state = m_state;
  getSegments(segments, 0);
  m_state = state;
  // The memory is kept from message to message: fresh pages would cost
  // more than the copy itself.
  if (m_wireCapacity < m_size) {
    m_wire.reset();
    m_wireCapacity = 0;
    unsigned char* fresh = new (std::nothrow) unsigned char[static_cast<std::size_t>(m_size)];
    if (fresh == nullptr) Message::fatal(label, 0, "Cannot allocate buffer of size %d.", m_size);
    m_wire.reset(fresh);
    m_wireCapacity = m_size;
  }
  unsigned char* wire = m_wire.get();
  for (Segment const& s : segments) {
    std::memcpy(wire, s.data, s.size);
    wire += s.size;
  }
  m_wireValid = true;
}

void Packer::getBuffer(unsigned char const** buffer, int& size, int tag) {
  char const* const label = "Packer::getBuffer";
  myPrepareToSend(label, tag);
  if (m_size == 0) {
    *buffer = nullptr;
    size = 0;
    return;
  }
  if (m_addresses.empty()) {
    *buffer = m_buffer;
  } else {
    myBuildWire(label);
    *buffer = m_wire.get();
  }
  size = m_size;
}

void Packer::dumpBytes(std::ostream& out) {
  unsigned char const* bytes = nullptr;
  int size = 0;
  getBuffer(&bytes, size, 0);
  std::ios_base::fmtflags const flags = out.flags();
  out << std::hex;
  for (int i = 0; i < size; ++i) {
    if (i % 10 == 0) out << '\n';
    out << " 0x" << static_cast<unsigned int>(bytes[i]) << ",";
  }
  out.flags(flags);
}

// --- receiving ----------------------------------------------------------------

void Packer::myInitFromHeader(unsigned char const* header, long long available, char const* label) {
  uint32_t const magic = loadU32(header);
  bool swap;
  if (magic == static_cast<uint32_t>(MAGIC)) {
    swap = false;
  } else if (magic == kSwappedMagic) {
    swap = true;
  } else {
    Message::fatal(label, 0, "Bad message received. Magic was %d expected %d.", static_cast<int>(magic), MAGIC);
  }
  int32_t const version = loadI32(header + 4);
  if (version != VERSION && version != kSwappedVersion) Message::fatal(label, 0, "Bad version received.");
  uint32_t length = loadU32(header + 8);
  if (swap) length = __builtin_bswap32(length);
  if (available >= 0 && static_cast<long long>(length) + HEADER_SIZE != available)
    Message::fatal(label, 0, "Bad message received. Body length %u does not fit a message of %lld bytes.", length,
                   available);
  if (length > static_cast<uint32_t>(kMaxBytes - HEADER_SIZE))
    Message::fatal(label, 0, "Bad message received. Body length %u is too large.", length);
  m_swap = swap;
}

void Packer::myNormaliseHeader() {
  // A swapped message is turned around once, on arrival; from then on the
  // buffer, header included, is in this host's order.
  uint32_t tag = loadU32(m_buffer + 12);
  tag = __builtin_bswap32(tag);
  storeI32(m_buffer, MAGIC);
  storeI32(m_buffer + 4, VERSION);
  storeI32(m_buffer + 8, m_end - HEADER_SIZE);
  storeU32(m_buffer + 12, tag);
}

void Packer::myFromBuffer(int size, char const* label) {
  PackState const next = myNextState(PACKOP_RECEIVE, label);
  bool const swap = m_swap;
  myStartMessage();
  m_writePos = 0;
  m_swap = swap;
  m_size = size;
  m_end = size;
  if (m_swap) {
    mySwapBody(m_buffer, m_end, true, label);
    myNormaliseHeader();
  }
  m_readPos = HEADER_SIZE;
  m_state = next;
}

int Packer::beginReceive(unsigned char const* header) {
  char const* const label = "Packer::beginReceive";
  PackState const next = myNextState(PACKOP_RECEIVE, label);
  if (header == nullptr) Message::fatal(label, 0, "Bad message received. No header was given.");
  myInitFromHeader(header, -1, label);
  bool const swap = m_swap;
  uint32_t length = loadU32(header + 8);
  if (swap) length = __builtin_bswap32(length);
  // Only a first step: the length is the sender's word, not yet backed by
  // any bytes.
  long long const room = HEADER_SIZE + std::min(static_cast<long long>(length), kReceiveStep);
  myStartMessage();
  m_writePos = 0;
  m_swap = swap;
  if (m_capacity < room) myAllocate(room, label);
  std::memcpy(m_buffer, header, HEADER_SIZE);
  m_end = HEADER_SIZE;
  m_size = static_cast<int32_t>(HEADER_SIZE + length);
  m_receiveLength = static_cast<int32_t>(length);
  m_readPos = HEADER_SIZE;
  m_state = next;
  return m_receiveLength;
}

unsigned char* Packer::getReceiveBuffer(int offset, int n) {
  char const* const label = "Packer::getReceiveBuffer";
  if (m_receiveLength < 0) Message::fatal(label, 0, "No message is being received.");
  long long const last = static_cast<long long>(offset) + n;
  if (offset < 0 || n < 0 || last > m_receiveLength)
    Message::fatal(label, 0, "Bytes %d to %lld lie outside the body of %d bytes being received.", offset, last - 1,
                   m_receiveLength);
  long long const need = HEADER_SIZE + last;
  if (need > m_capacity) {
    // Eightfold, so that a body that comes in small pieces is copied little
    // (fresh pages cost more than the copy), while the room never exceeds
    // eight times what has arrived, nor what the header announced.
    long long grown = std::max(need, 8LL * m_capacity);
    grown = std::min(grown, static_cast<long long>(HEADER_SIZE) + m_receiveLength);
    myAllocate(grown, label);
  }
  if (need > m_end) m_end = static_cast<int32_t>(need);
  return m_buffer + HEADER_SIZE + offset;
}

void Packer::endReceive() {
  char const* const label = "Packer::endReceive";
  if (m_receiveLength < 0) Message::fatal(label, 0, "No message is being received.");
  if (m_end != HEADER_SIZE + m_receiveLength) {
    int const got = m_end - HEADER_SIZE;
    int const length = m_receiveLength;
    abortReceive();
    Message::fatal(label, 0, "Bad message received. Only %d of its %d body bytes were received.", got, length);
  }
  m_receiveLength = -1;
  if (m_swap) {
    try {
      mySwapBody(m_buffer, m_end, true, label);
    } catch (...) {
      abortReceive();
      throw;
    }
    myNormaliseHeader();
  }
  m_readPos = HEADER_SIZE;
}

void Packer::abortReceive() {
  m_state = PACKUNPACKED;
  m_end = HEADER_SIZE;
  m_size = HEADER_SIZE;
  m_readPos = HEADER_SIZE;
  m_frameDepth = 0;
  m_receiveLength = -1;
}

// --- byte order ---------------------------------------------------------------

void Packer::mySwapBody(unsigned char* buffer, int end, bool countsForeign, char const* label) {
  int pos = HEADER_SIZE;
  while (pos < end) {
    int const t = buffer[pos];
    long long const avail = static_cast<long long>(end) - (pos + 1);
    if (vUtl::dataTypeIsAddressOf(t))
      Message::fatal(label, 0, "Corrupt message: the address-of entry at offset %d does not belong to this message.", pos);
    if (t == vENDFRAME) {
      pos += 1;
      continue;
    }
    if (t == vPACKFRAME) {
      if (avail < 4) pastEnd(label, pos, end);
      vUtl::swapBytes16(buffer + pos + 1, 2);
      pos += 5;
      continue;
    }
    int const baseType = t & 0x7F;
    long long count = 1;
    int dataPos = pos + 1;
    if (t & vARRAYOF) {
      if (avail < 4) pastEnd(label, pos, end);
      if (!countsForeign) count = loadU32(buffer + pos + 1);
      vUtl::swapBytes32(buffer + pos + 1, 1);
      if (countsForeign) count = loadU32(buffer + pos + 1);
      dataPos = pos + 5;
    }
    long long const left = static_cast<long long>(end) - dataPos;
    if (baseType == vSTRING) {
      if (!(t & vARRAYOF))
        Message::fatal(label, 0, "Corrupt message: the vSTRING entry at offset %d is not an array.", pos);
      if (count > left) pastEnd(label, pos, end);
      unsigned char* p = buffer + dataPos;
      unsigned char* const stop = buffer + end;
      for (long long i = 0; i < count; ++i) {
        void* zero = std::memchr(p, 0, static_cast<std::size_t>(stop - p));
        if (zero == nullptr) pastEnd(label, pos, end);
        p = static_cast<unsigned char*>(zero) + 1;
      }
      pos = static_cast<int>(p - buffer);
      continue;
    }
    long long const size = streamElementSize(baseType, label);
    if ((size == 0 || baseType == vNOTYPE) && (t & vARRAYOF) && count > 0)
      Message::fatal(label, 0, "Corrupt message: the entry at offset %d is an array of %s.", pos,
                     vUtl::dataTypeName(t).c_str());
    long long const nBytes = count * size;
    if (nBytes > left) pastEnd(label, pos, end);
    swapElements(buffer + dataPos, baseType, static_cast<uint32_t>(count));
    pos = dataPos + static_cast<int>(nBytes);
  }
}

void Packer::reverseByteOrder(unsigned char* message, int size) {
  char const* const label = "Packer::reverseByteOrder";
  if (message == nullptr || size < HEADER_SIZE)
    Message::fatal(label, 0, "Bad message received. Message of %d bytes is shorter than its header.", size);
  Packer probe(0);
  probe.myInitFromHeader(message, size, label);
  mySwapBody(message, size, probe.m_swap, label);
  vUtl::swapBytes32(message, 4);
}
