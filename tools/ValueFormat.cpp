#include "tools/ValueFormat.h"

#include <cmath>
#include <cstdio>

#include "foundation/Message.h"
#include "foundation/vUtl.h"

namespace {

template <typename T>
void appendIntegers(std::string& out, void const* data, int n, char const* format) {
  T const* values = static_cast<T const*>(data);
  char text[32];
  for (int i = 0; i < n; ++i) {
    if (i) out.push_back(' ');
    int const len = std::snprintf(text, sizeof text, format, values[i]);
    out.append(text, static_cast<std::size_t>(len));
  }
}

template <typename T>
void appendReals(std::string& out, void const* data, int n) {
  T const* values = static_cast<T const*>(data);
  for (int i = 0; i < n; ++i) {
    if (i) out.push_back(' ');
    ValueFormat::appendNumber(out, static_cast<double>(values[i]));
  }
}

}  // namespace

void ValueFormat::appendNumber(std::string& out, double value) {
  char text[32];
  int const len = std::snprintf(text, sizeof text, "%.9g", value);
  out.append(text, static_cast<std::size_t>(len));
}

bool ValueFormat::isNumeric(DataType type) {
  switch (type) {
    case vINT8: case vUINT8: case vINT16: case vUINT16: case vINT32: case vUINT32:
    case vINT64: case vUINT64: case vFLOAT32: case vFLOAT64: case vBOOL8:
      return true;
    default:
      return false;
  }
}

void ValueFormat::appendInstance(std::string& out, Attribute const& attribute, unsigned int instance) {
  int const n = attribute.getLength(instance);
  if (n <= 0) return;
  void const* data = attribute.getPointer(instance);
  switch (attribute.getDataType()) {
    case vINT8: appendIntegers<signed char>(out, data, n, "%d"); break;
    case vUINT8: appendIntegers<unsigned char>(out, data, n, "%u"); break;
    case vBOOL8: appendIntegers<unsigned char>(out, data, n, "%u"); break;
    case vINT16: appendIntegers<short>(out, data, n, "%d"); break;
    case vUINT16: appendIntegers<unsigned short>(out, data, n, "%u"); break;
    case vINT32: appendIntegers<int>(out, data, n, "%d"); break;
    case vUINT32: appendIntegers<unsigned int>(out, data, n, "%u"); break;
    case vINT64: appendIntegers<long long>(out, data, n, "%lld"); break;
    case vUINT64: appendIntegers<unsigned long long>(out, data, n, "%llu"); break;
    case vFLOAT32: appendReals<float>(out, data, n); break;
    case vFLOAT64: appendReals<double>(out, data, n); break;
    case vSTRING: {
      vString const* values = static_cast<vString const*>(data);
      for (int i = 0; i < n; ++i) {
        if (i) out.push_back(' ');
        out.append(values[i].c_str());
      }
      break;
    }
    default:
      Message::fatal("ValueFormat::appendInstance", 0, "Cannot print values of type %s of Attribute %s.",
                     vUtl::dataTypeName(attribute.getDataType()).c_str(), attribute.getName().c_str());
  }
}

namespace {

// The length of the well-formed UTF-8 sequence at p, 0 when there is none.
int utf8Length(unsigned char const* p) {
  unsigned char const c = p[0];
  int n = 0;
  unsigned char low = 0x80, high = 0xbf;
  if (c >= 0xc2 && c <= 0xdf) {
    n = 2;
  } else if (c >= 0xe0 && c <= 0xef) {
    n = 3;
    if (c == 0xe0) low = 0xa0;
    if (c == 0xed) high = 0x9f;
  } else if (c >= 0xf0 && c <= 0xf4) {
    n = 4;
    if (c == 0xf0) low = 0x90;
    if (c == 0xf4) high = 0x8f;
  } else {
    return 0;
  }
  if (p[1] < low || p[1] > high) return 0;
  for (int i = 2; i < n; ++i)
    if (p[i] < 0x80 || p[i] > 0xbf) return 0;
  return n;
}

}  // namespace

std::string ValueFormat::jsonString(char const* text) {
  std::string out = "\"";
  for (char const* p = text; *p; ++p) {
    unsigned char const c = static_cast<unsigned char>(*p);
    if (c >= 0x80) {
      // Names and texts from files are bytes: UTF-8 passes, any other byte
      // is read as Latin-1, so that the output stays valid JSON.
      int const n = utf8Length(reinterpret_cast<unsigned char const*>(p));
      if (n > 0) {
        out.append(p, static_cast<std::size_t>(n));
        p += n - 1;
      } else {
        char escaped[8];
        std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
        out.append(escaped);
      }
    } else if (c == '"' || c == '\\') {
      out.push_back('\\');
      out.push_back(static_cast<char>(c));
    } else if (c < 0x20) {
      char escaped[8];
      std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
      out.append(escaped);
    } else {
      out.push_back(static_cast<char>(c));
    }
  }
  return out + "\"";
}

std::string ValueFormat::jsonNumber(double value) {
  if (!std::isfinite(value)) return "null";
  std::string out;
  appendNumber(out, value);
  return out;
}
