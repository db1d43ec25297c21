#include "attribute/Property.h"

#include "attribute/TypedBlock.h"

#include <cfloat>
#include <cstdarg>
#include <cstdio>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <type_traits>

#include "foundation/Message.h"
#include "foundation/Packer.h"
#include "foundation/UtlExcept.h"
#include "foundation/vUtl.h"

namespace {

char const* const kFile = "Property";

bool isHoldable(int type) {
  switch (type) {
    case vINT8:
    case vUINT8:
    case vINT16:
    case vUINT16:
    case vINT32:
    case vUINT32:
    case vFLOAT32:
    case vFLOAT64:
    case vBOOL8:
    case vSTRING:
      return true;
    default:
      return false;
  }
}

bool isPackable(int type) { return isHoldable(type) && type != vINT8 && type != vUINT8; }

std::size_t sizeOf(DataType type) { return static_cast<std::size_t>(vUtl::dataTypeSize(type)); }

// C conversions, with what C leaves undefined (a float beyond an integer's
// range, NaN) pinned to the nearest end of the range, and 0.
template <class To, class From>
To cCast(From v) {
  if constexpr (std::is_floating_point<From>::value && std::is_integral<To>::value) {
    if (std::isnan(v)) return 0;
    if (v >= static_cast<From>(std::numeric_limits<To>::max())) return std::numeric_limits<To>::max();
    if (v <= static_cast<From>(std::numeric_limits<To>::min())) return std::numeric_limits<To>::min();
    return static_cast<To>(v);
  } else if constexpr (std::is_same<To, float>::value && std::is_same<From, double>::value) {
    if (v > FLT_MAX) return HUGE_VALF;
    if (v < -FLT_MAX) return -HUGE_VALF;
    return static_cast<float>(v);
  } else {
    return static_cast<To>(v);
  }
}

vString format(char const* fmt, ...) __attribute__((format(printf, 1, 2)));

vString format(char const* fmt, ...) {
  char buffer[512];
  va_list args;
  va_start(args, fmt);
  int const n = std::vsnprintf(buffer, sizeof buffer, fmt, args);
  va_end(args);
  if (n < 0) return vString();
  return vString(buffer);
}

vString formatValue(short v) { return format("%hd", v); }
vString formatValue(unsigned short v) { return format("%hu", v); }
vString formatValue(int v) { return format("%d", v); }
vString formatValue(unsigned int v) { return format("%u", v); }
vString formatValue(float v) { return format("%f", static_cast<double>(v)); }
vString formatValue(double v) { return format("%lf", v); }
vString formatValue(bool v) { return vString(v ? "true" : "false"); }

// The name of a type in conversion messages.
char const* targetName(DataType type) {
  switch (type) {
    case vINT8:
      return "Int8";
    case vUINT8:
      return "UInt8";
    case vINT16:
      return "Int16";
    case vUINT16:
      return "UInt16";
    case vINT32:
      return "Int32";
    case vUINT32:
      return "UInt32";
    case vFLOAT32:
      return "Float32";
    case vFLOAT64:
      return "Float64";
    case vBOOL8:
      return "Bool8";
    default:
      return "vString";
  }
}

// A zeroed block of n elements (empty strings for vSTRING).
void* allocateBlock(DataType type, unsigned int n) { return n == 0 ? nullptr : newTypedBlock(type, n); }

}  // namespace

// ---------------------------------------------------------------------------
// Construction

void Property::myInitEmpty() {
  m_nElements = 0;
  m_dataType = vNOTYPE;
  m_data = nullptr;
}

Property::Property() : Packable() { myInitEmpty(); }

Property::Property(Property const& other) : Packable() {
  myInitEmpty();
  operator=(other);
}

Property::Property(vUCString const& name, vString const& value) : Packable() {
  myInitEmpty();
  redefine(name, 1, &value);
}

Property::Property(vUCString const& name, char const* value) : Packable() {
  myInitEmpty();
  vString const text(value);
  redefine(name, 1, &text);
}

Property::Property(vUCString const& name, double value) : Packable() {
  myInitEmpty();
  redefine(name, vFLOAT64, 1, &value);
}

Property::Property(vUCString const& name, float value) : Packable() {
  myInitEmpty();
  redefine(name, vFLOAT32, 1, &value);
}

Property::Property(vUCString const& name, int value) : Packable() {
  myInitEmpty();
  redefine(name, vINT32, 1, &value);
}

Property::Property(vUCString const& name, unsigned int value) : Packable() {
  myInitEmpty();
  redefine(name, vUINT32, 1, &value);
}

Property::Property(vUCString const& name, short value) : Packable() {
  myInitEmpty();
  redefine(name, vINT16, 1, &value);
}

Property::Property(vUCString const& name, unsigned short value) : Packable() {
  myInitEmpty();
  redefine(name, vUINT16, 1, &value);
}

Property::Property(vUCString const& name, unsigned char value) : Packable() {
  myInitEmpty();
  redefine(name, vBOOL8, 1, &value);
}

Property::Property(vUCString const& name, unsigned int n, vString const* values) : Packable() {
  myInitEmpty();
  redefine(name, n, values);
}

Property::Property(vUCString const& name, unsigned int n, double const* values) : Packable() {
  myInitEmpty();
  redefine(name, vFLOAT64, n, values);
}

Property::Property(vUCString const& name, unsigned int n, float const* values) : Packable() {
  myInitEmpty();
  redefine(name, vFLOAT32, n, values);
}

Property::Property(vUCString const& name, unsigned int n, int const* values) : Packable() {
  myInitEmpty();
  redefine(name, vINT32, n, values);
}

Property::Property(vUCString const& name, unsigned int n, unsigned int const* values) : Packable() {
  myInitEmpty();
  redefine(name, vUINT32, n, values);
}

Property::Property(vUCString const& name, unsigned int n, short const* values) : Packable() {
  myInitEmpty();
  redefine(name, vINT16, n, values);
}

Property::Property(vUCString const& name, unsigned int n, unsigned short const* values) : Packable() {
  myInitEmpty();
  redefine(name, vUINT16, n, values);
}

Property::Property(vUCString const& name, unsigned int n, unsigned char const* values) : Packable() {
  myInitEmpty();
  redefine(name, vBOOL8, n, values);
}

Property::Property(vUCString const& name, DataType type, unsigned int n, void const* data) : Packable() {
  myInitEmpty();
  redefine(name, type, n, data);
}

Property::~Property() {
  try {
    freeMyData();
  } catch (...) {
  }
}

bool Property::isInitialized() const { return !m_name.isBlank() && m_dataType != vNOTYPE; }

void Property::swap(Property& other) {
  std::swap(m_nElements, other.m_nElements);
  std::swap(m_dataType, other.m_dataType);
  m_name.swapContents(other.m_name);
  std::swap(m_data, other.m_data);
}

void Property::freeMyData() {
  void* p = m_data;
  m_data = nullptr;
  m_nElements = 0;
  if (p == nullptr) return;
  if (!deleteTypedBlock(m_dataType, p))
    Message::fatal("Property::freeMyData()", 0, "Unsupported data type %d.", static_cast<int>(m_dataType));
}

void Property::resize(unsigned int n) {
  if (!isInitialized()) Message::fatal("Property::resize()", 0, "Trying to resize an uninitialized Property.");
  if (!isHoldable(m_dataType)) Message::fatal("Property::resize()", 0, "Invalid datatype");
  void* block = allocateBlock(m_dataType, n);
  unsigned int const keep = n < m_nElements ? n : m_nElements;
  if (keep > 0) {
    if (m_dataType == vSTRING) {
      vString* to = static_cast<vString*>(block);
      vString* from = static_cast<vString*>(m_data);
      for (unsigned int i = 0; i < keep; ++i) to[i].swapContents(from[i]);
    } else {
      std::memcpy(block, m_data, keep * sizeOf(m_dataType));
    }
  }
  freeMyData();
  m_data = block;
  m_nElements = n;
}

void Property::redefine(vUCString const& name, unsigned int n, vString const* values) {
  if (name.isBlank()) throw UtlExcept("Can't redefine with a blank name.", "Property::redefine(strings)", __LINE__, kFile);
  Property fresh;
  fresh.m_name = name;
  fresh.m_dataType = vSTRING;
  fresh.resize(n);
  if (values != nullptr) {
    vString* to = static_cast<vString*>(fresh.m_data);
    for (unsigned int i = 0; i < n; ++i) to[i] = values[i];
  }
  swap(fresh);
}

void Property::redefine(vUCString const& name, DataType type, unsigned int n, void const* data) {
  if (name.isBlank()) throw UtlExcept("Can't redefine with a blank name.", "Property::redefine(generic)", __LINE__, kFile);
  // Built aside, so that a bad type leaves this property as it was.
  Property fresh;
  fresh.m_name = name;
  fresh.m_dataType = type;
  fresh.resize(n);
  if (data != nullptr && n > 0) {
    if (type == vSTRING) {
      vString* to = static_cast<vString*>(fresh.m_data);
      vString const* from = static_cast<vString const*>(data);
      for (unsigned int i = 0; i < n; ++i) to[i] = from[i];
    } else if (type == vBOOL8) {
      uint8_t* to = static_cast<uint8_t*>(fresh.m_data);
      uint8_t const* from = static_cast<uint8_t const*>(data);
      for (unsigned int i = 0; i < n; ++i) to[i] = from[i] != 0 ? 1 : 0;
    } else {
      std::memcpy(fresh.m_data, data, n * sizeOf(type));
    }
  }
  swap(fresh);
}

Property& Property::operator=(Property const& other) {
  if (this == &other) return *this;
  Property copy;
  copy.m_name = other.m_name;
  copy.m_dataType = other.m_dataType;
  if (other.isInitialized() && isHoldable(other.m_dataType)) {
    copy.resize(other.m_nElements);
    if (other.m_nElements > 0) {
      if (other.m_dataType == vSTRING) {
        vString* to = static_cast<vString*>(copy.m_data);
        vString const* from = static_cast<vString const*>(other.m_data);
        for (unsigned int i = 0; i < other.m_nElements; ++i) to[i] = from[i];
      } else {
        std::memcpy(copy.m_data, other.m_data, other.m_nElements * sizeOf(other.m_dataType));
      }
    }
  }
  swap(copy);
  return *this;
}

// ---------------------------------------------------------------------------
// Elements

unsigned int Property::myGetOffset(unsigned int element) const {
  if (element == 0 || element > m_nElements)
    Message::fatal("Property::myGetOffset()", 0, "Requesting element %d in property %s ... valid range is 1..%d",
                   static_cast<int>(element), m_name.c_str(), static_cast<int>(m_nElements));
  return static_cast<unsigned int>(sizeOf(m_dataType)) * (element - 1);
}

double Property::myParse(vString const& text, char const* target, char const* method) const {
  vString s(text);
  s.strip();
  char const* begin = s.c_str();
  char* end = nullptr;
  double const v = s.isEmpty() ? 0.0 : std::strtod(begin, &end);
  if (s.isEmpty() || end == begin || *end != '\0') {
    vString reason("Unable to convert string value (");
    reason += text;
    reason += ") to ";
    reason += target;
    reason += " in property ";
    reason += m_name;
    throw UtlExcept(reason, vString(method), __LINE__, kFile);
  }
  return v;
}

template <class To>
To Property::myGet(unsigned int element, char const* target, char const* method) const {
  if (!isHoldable(m_dataType)) Message::fatal(method, 0, "Invalid data type.");
  unsigned int const i = myGetOffset(element) / static_cast<unsigned int>(sizeOf(m_dataType));
  switch (m_dataType) {
    case vINT8:
      return cCast<To>(static_cast<int8_t const*>(m_data)[i]);
    case vUINT8:
      return cCast<To>(static_cast<uint8_t const*>(m_data)[i]);
    case vINT16:
      return cCast<To>(static_cast<int16_t const*>(m_data)[i]);
    case vUINT16:
      return cCast<To>(static_cast<uint16_t const*>(m_data)[i]);
    case vINT32:
      return cCast<To>(static_cast<int32_t const*>(m_data)[i]);
    case vUINT32:
      return cCast<To>(static_cast<uint32_t const*>(m_data)[i]);
    case vFLOAT32:
      return cCast<To>(static_cast<float const*>(m_data)[i]);
    case vFLOAT64:
      return cCast<To>(static_cast<double const*>(m_data)[i]);
    case vBOOL8:
      return cCast<To>(static_cast<uint8_t const*>(m_data)[i] != 0 ? 1 : 0);
    default:
      return cCast<To>(myParse(static_cast<vString const*>(m_data)[i], target, method));
  }
}

double Property::getFloat64(unsigned int element) const {
  return myGet<double>(element, "Float64", "Property::getFloat64()");
}

float Property::getFloat32(unsigned int element) const {
  return myGet<float>(element, "Float32", "Property::getFloat32()");
}

int Property::getInt32(unsigned int element) const { return myGet<int32_t>(element, "Int32", "Property::getInt32()"); }

unsigned int Property::getUInt32(unsigned int element) const {
  return myGet<uint32_t>(element, "UInt32", "Property::getUInt32()");
}

short Property::getInt16(unsigned int element) const { return myGet<int16_t>(element, "Int16", "Property::getInt16()"); }

unsigned short Property::getUInt16(unsigned int element) const {
  return myGet<uint16_t>(element, "UInt16", "Property::getUInt16()");
}

bool Property::getBool8(unsigned int element) const {
  if (m_dataType == vSTRING) {
    unsigned int const i = myGetOffset(element) / static_cast<unsigned int>(sizeOf(m_dataType));
    vString s(static_cast<vString const*>(m_data)[i]);
    s.strip();
    if (s.stricmp("true") == 0) return true;
    if (s.stricmp("false") == 0) return false;
    return myParse(static_cast<vString const*>(m_data)[i], "Bool8", "Property::getBool8()") != 0.0;
  }
  return myGet<double>(element, "Bool8", "Property::getBool8()") != 0.0;
}

vString Property::getString(unsigned int element) const {
  if (!isHoldable(m_dataType)) Message::fatal("Property::getString()", 0, "Invalid data type.");
  unsigned int const i = myGetOffset(element) / static_cast<unsigned int>(sizeOf(m_dataType));
  switch (m_dataType) {
    case vINT8:
      return format("%d", static_cast<int>(static_cast<int8_t const*>(m_data)[i]));
    case vUINT8:
      return format("%u", static_cast<unsigned int>(static_cast<uint8_t const*>(m_data)[i]));
    case vINT16:
      return formatValue(static_cast<short>(static_cast<int16_t const*>(m_data)[i]));
    case vUINT16:
      return formatValue(static_cast<unsigned short>(static_cast<uint16_t const*>(m_data)[i]));
    case vINT32:
      return formatValue(static_cast<int>(static_cast<int32_t const*>(m_data)[i]));
    case vUINT32:
      return formatValue(static_cast<unsigned int>(static_cast<uint32_t const*>(m_data)[i]));
    case vFLOAT32:
      return formatValue(static_cast<float const*>(m_data)[i]);
    case vFLOAT64:
      return formatValue(static_cast<double const*>(m_data)[i]);
    case vBOOL8:
      return formatValue(static_cast<uint8_t const*>(m_data)[i] != 0);
    default:
      return static_cast<vString const*>(m_data)[i];
  }
}

template <class From>
void Property::mySet(From value, unsigned int element, char const* method) {
  if (!isHoldable(m_dataType)) Message::fatal(method, 0, "Invalid data type.");
  unsigned int const i = myGetOffset(element) / static_cast<unsigned int>(sizeOf(m_dataType));
  switch (m_dataType) {
    case vINT8:
      static_cast<int8_t*>(m_data)[i] = cCast<int8_t>(value);
      break;
    case vUINT8:
      static_cast<uint8_t*>(m_data)[i] = cCast<uint8_t>(value);
      break;
    case vINT16:
      static_cast<int16_t*>(m_data)[i] = cCast<int16_t>(value);
      break;
    case vUINT16:
      static_cast<uint16_t*>(m_data)[i] = cCast<uint16_t>(value);
      break;
    case vINT32:
      static_cast<int32_t*>(m_data)[i] = cCast<int32_t>(value);
      break;
    case vUINT32:
      static_cast<uint32_t*>(m_data)[i] = cCast<uint32_t>(value);
      break;
    case vFLOAT32:
      static_cast<float*>(m_data)[i] = cCast<float>(value);
      break;
    case vFLOAT64:
      static_cast<double*>(m_data)[i] = cCast<double>(value);
      break;
    case vBOOL8:
      static_cast<uint8_t*>(m_data)[i] = value != 0 ? 1 : 0;
      break;
    default:
      static_cast<vString*>(m_data)[i] = formatValue(value);
      break;
  }
}

void Property::setFloat64(double value, unsigned int element) { mySet(value, element, "Property::setFloat64()"); }

void Property::setFloat32(float value, unsigned int element) { mySet(value, element, "Property::setFloat32()"); }

void Property::setInt32(int value, unsigned int element) { mySet(value, element, "Property::setInt32()"); }

void Property::setUInt32(unsigned int value, unsigned int element) { mySet(value, element, "Property::setUInt32()"); }

void Property::setInt16(short value, unsigned int element) { mySet(value, element, "Property::setInt16()"); }

void Property::setUInt16(unsigned short value, unsigned int element) {
  mySet(value, element, "Property::setUInt16()");
}

// Reports under the name of setInt16, which is what callers have always seen.
void Property::setBool8(bool value, unsigned int element) { mySet(value, element, "Property::setInt16()"); }

void Property::setString(vString const& value, unsigned int element) {
  if (!isHoldable(m_dataType)) Message::fatal("Property::setString()", 0, "Invalid data type.");
  unsigned int const i = myGetOffset(element) / static_cast<unsigned int>(sizeOf(m_dataType));
  if (m_dataType == vSTRING) {
    static_cast<vString*>(m_data)[i] = value;
    return;
  }
  if (m_dataType == vBOOL8) {
    vString s(value);
    s.strip();
    bool b;
    if (s.stricmp("true") == 0)
      b = true;
    else if (s.stricmp("false") == 0)
      b = false;
    else
      b = myParse(value, "Bool8", "Property::setString()") != 0.0;
    static_cast<uint8_t*>(m_data)[i] = b ? 1 : 0;
    return;
  }
  double const v = myParse(value, targetName(m_dataType), "Property::setString()");
  mySet(v, element, "Property::setString()");
}

// ---------------------------------------------------------------------------
// Comparison

namespace {

template <class T>
bool equalElements(void const* a, void const* b, unsigned int n) {
  T const* x = static_cast<T const*>(a);
  T const* y = static_cast<T const*>(b);
  for (unsigned int i = 0; i < n; ++i)
    if (!(x[i] == y[i])) return false;
  return true;
}

}  // namespace

bool Property::compare(Property const& other) const {
  if (!(m_name == other.m_name) || m_dataType != other.m_dataType || m_nElements != other.m_nElements) return false;
  if (m_nElements == 0) return true;
  switch (m_dataType) {
    case vINT8:
      return equalElements<int8_t>(m_data, other.m_data, m_nElements);
    case vUINT8:
    case vBOOL8:
      return equalElements<uint8_t>(m_data, other.m_data, m_nElements);
    case vINT16:
      return equalElements<int16_t>(m_data, other.m_data, m_nElements);
    case vUINT16:
      return equalElements<uint16_t>(m_data, other.m_data, m_nElements);
    case vINT32:
      return equalElements<int32_t>(m_data, other.m_data, m_nElements);
    case vUINT32:
      return equalElements<uint32_t>(m_data, other.m_data, m_nElements);
    case vFLOAT32:
      return equalElements<float>(m_data, other.m_data, m_nElements);
    case vFLOAT64:
      return equalElements<double>(m_data, other.m_data, m_nElements);
    case vSTRING:
      return equalElements<vString>(m_data, other.m_data, m_nElements);
    default:
      return false;
  }
}

// ---------------------------------------------------------------------------
// Packing

void Property::pack(Packer& packer) const {
  if (!isPackable(m_dataType)) Message::fatal("Property::pack()", 0, "Unsupported data type.");
  packer.packFrame(Magic, Version);
  packer.pack(m_name);
  packer.pack(static_cast<int32_t>(m_dataType));
  packer.pack(static_cast<int32_t>(m_nElements));
  unsigned int const n = m_nElements;
  if (n > 0) {
    switch (m_dataType) {
      case vINT16:
        packer.pack(static_cast<short const*>(m_data), n);
        break;
      case vUINT16:
        packer.pack(static_cast<unsigned short const*>(m_data), n);
        break;
      case vINT32:
        packer.pack(static_cast<int const*>(m_data), n);
        break;
      case vUINT32:
        packer.pack(static_cast<unsigned int const*>(m_data), n);
        break;
      case vFLOAT32:
        packer.pack(static_cast<float const*>(m_data), n);
        break;
      case vFLOAT64:
        packer.pack(static_cast<double const*>(m_data), n);
        break;
      case vBOOL8: {
        std::unique_ptr<bool[]> flags(new bool[n]);
        for (unsigned int i = 0; i < n; ++i) flags[i] = static_cast<uint8_t const*>(m_data)[i] != 0;
        packer.packBool(flags.get(), n);
        break;
      }
      default:
        for (unsigned int i = 0; i < n; ++i) packer.pack(static_cast<vString const*>(m_data)[i]);
        break;
    }
  }
  packer.endFrame();
}

void Property::unpack(Packer& packer) {
  short magic = 0;
  short version = 0;
  packer.unpackFrame(magic, version);
  if (magic != Magic) Message::fatal("Property::unpack()", 0, "Bad magic value, not a Property.");
  if (version != Version) Message::fatal("Property::unpack()", 0, "Bad Property Version, not supported.");
  vString name;
  packer.unpack(name);
  int32_t type = 0;
  int32_t count = 0;
  packer.unpack(type);
  packer.unpack(count);
  if (!isPackable(type)) Message::fatal("Property::unpack()", 0, "Unsupported data type.");
  // Counts are checked against the message before anything is allocated.
  bool const countOk = count >= 0 && (count == 0 || (type == vSTRING ? count <= packer.getNRemainingBytes()
                                                                     : static_cast<long long>(packer.getNElements()) ==
                                                                           count));
  if (!countOk)
    Message::fatal("Property::unpack()", 0, "Bad element count %d for Property %s.", count, name.c_str());
  Property fresh;
  fresh.redefine(vUCString(name), static_cast<DataType>(type), static_cast<unsigned int>(count), nullptr);
  unsigned int const n = static_cast<unsigned int>(count);
  if (n > 0) {
    switch (type) {
      case vINT16:
        packer.unpack(static_cast<short*>(fresh.m_data));
        break;
      case vUINT16:
        packer.unpack(static_cast<unsigned short*>(fresh.m_data));
        break;
      case vINT32:
        packer.unpack(static_cast<int*>(fresh.m_data));
        break;
      case vUINT32:
        packer.unpack(static_cast<unsigned int*>(fresh.m_data));
        break;
      case vFLOAT32:
        packer.unpack(static_cast<float*>(fresh.m_data));
        break;
      case vFLOAT64:
        packer.unpack(static_cast<double*>(fresh.m_data));
        break;
      case vBOOL8: {
        std::unique_ptr<bool[]> flags(new bool[n]);
        packer.unpackBool(flags.get());
        for (unsigned int i = 0; i < n; ++i) static_cast<uint8_t*>(fresh.m_data)[i] = flags[i] ? 1 : 0;
        break;
      }
      default:
        for (unsigned int i = 0; i < n; ++i) packer.unpack(static_cast<vString*>(fresh.m_data)[i]);
        break;
    }
  }
  packer.endFrame();
  swap(fresh);
}
