#ifndef ATTRIBUTE_ATTRIBUTETESTING_H
#define ATTRIBUTE_ATTRIBUTETESTING_H

// Test helpers of the attribute model, shared by the layers above it: a checker of failures by method and
// text, and a byte builder that writes Packer messages by hand, independent
// of the Packer, so that packed forms can be compared byte for byte and old
// frames built as their writers built them.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "attribute/Attribute.h"
#include "foundation/MessageHandling.h"
#include "foundation/Packer.h"
#include "foundation/TestFailure.h"
#include "foundation/UtlExcept.h"

namespace attribute_testing {

using ::expectFailure;

// One expected failure: what to run, the method that reports it, its text.
struct Failure {
  std::function<void()> run;
  char const* method;
  std::string reason;
};

// Runs f, which must fail with this method and text, raised in the source
// file named `file` at a real line.
template <class F>
void expectFailureFrom(F f, char const* method, std::string const& reason, char const* file) {
  try {
    MessageHandling quiet;
    f();
    ADD_FAILURE() << "expected a failure: " << reason;
  } catch (UtlExcept const& e) {
    EXPECT_EQ(std::string(method), std::string(e.getMethod().c_str()));
    EXPECT_EQ(reason, std::string(e.getReason().c_str()));
    EXPECT_EQ(std::string(file), std::string(e.getFileName().c_str()));
    EXPECT_GT(e.getLineNumber(), 0);
  }
}

// The reason of the UtlExcept that f raises, and its method when asked: for
// texts that carry a line number. Empty when f returns.
template <class F>
std::string reasonOf(F f, std::string* method = nullptr) {
  try {
    MessageHandling quiet;
    f();
  } catch (UtlExcept const& e) {
    if (method) *method = e.getMethod().c_str();
    return e.getReason().c_str();
  }
  return "";
}

// The values of a vINT32, vFLOAT64 or vSTRING attribute, all instances in a row.
inline std::vector<int> intsOf(Attribute const& a) {
  if (a.getNInstances() == 0) return {};
  int const* p = a.getInt32Pointer(1);
  return std::vector<int>(p, p + a.getTotalLength());
}
inline std::vector<double> doublesOf(Attribute const& a) {
  if (a.getNInstances() == 0) return {};
  double const* p = a.getFloat64Pointer(1);
  return std::vector<double>(p, p + a.getTotalLength());
}
inline std::vector<std::string> stringsOf(Attribute const& a) {
  std::vector<std::string> out;
  long long const n = a.getTotalLength();
  vString const* s = n > 0 ? a.getStringPointer(1) : nullptr;
  for (long long i = 0; i < n; ++i) out.push_back(s[i].c_str());
  return out;
}

// A scalar attribute holding these values, one an instance.
inline Attribute filled(char const* name, char const* className, DataType type, std::initializer_list<double> values) {
  Attribute a(name, className, type, 1);
  a.resize(static_cast<unsigned int>(values.size()));
  unsigned int i = 1;
  for (double v : values) a.setValue(i++, v);
  return a;
}

// The names of a container's attributes, in its order.
template <class C>
std::vector<std::string> namesOf(C const& attributes) {
  std::vector<std::string> out;
  for (Attribute const& a : attributes) out.push_back(a.getName().c_str());
  return out;
}

// The length of each instance.
inline std::vector<int> lengthsOf(Attribute const& a) {
  std::vector<int> out;
  for (unsigned int i = 1; i <= a.getNInstances(); ++i) out.push_back(a.getLength(i));
  return out;
}

// Runs the rows in order; each must fail with its own method and text.
inline void expectFailures(std::vector<Failure> const& rows) {
  for (Failure const& row : rows) {
    SCOPED_TRACE(row.reason);
    expectFailure(row.run, row.method, row.reason);
  }
}

// Appends entries in the Packer's wire layout, in this host's byte order.
class Bytes {
 public:
  Bytes& raw(void const* p, std::size_t n) {
    unsigned char const* b = static_cast<unsigned char const*>(p);
    m_body.insert(m_body.end(), b, b + n);
    return *this;
  }
  Bytes& byte(unsigned v) {
    unsigned char const b = static_cast<unsigned char>(v);
    return raw(&b, 1);
  }
  Bytes& u32(uint32_t v) { return raw(&v, 4); }
  Bytes& frame(int16_t magic, int16_t version) {
    byte(0x7F);
    raw(&magic, 2);
    return raw(&version, 2);
  }
  Bytes& end() { return byte(0x7E); }
  Bytes& int16(int16_t v) { return byte(3).raw(&v, 2); }
  Bytes& int32(int32_t v) { return byte(5).raw(&v, 4); }
  Bytes& uint32(uint32_t v) { return byte(6).raw(&v, 4); }
  Bytes& int64(int64_t v) { return byte(7).raw(&v, 8); }
  Bytes& float32(float v) { return byte(11).raw(&v, 4); }
  Bytes& float64(double v) { return byte(12).raw(&v, 8); }
  Bytes& boolean(bool v) { return byte(16).byte(v ? 1 : 0); }
  // One vString: an array of vCHAR8 with its NUL, or an empty array.
  Bytes& text(char const* s) {
    byte(0x8E);
    std::size_t const n = std::strlen(s);
    if (n == 0) return u32(0);
    u32(static_cast<uint32_t>(n + 1));
    return raw(s, n + 1);
  }
  template <class T>
  Bytes& array(int type, std::vector<T> const& values) {
    byte(0x80 | type);
    u32(static_cast<uint32_t>(values.size()));
    return values.empty() ? *this : raw(values.data(), values.size() * sizeof(T));
  }
  Bytes& boolArray(std::vector<bool> const& values) {
    byte(0x80 | 16);
    u32(static_cast<uint32_t>(values.size()));
    for (bool b : values) byte(b ? 1 : 0);
    return *this;
  }
  Bytes& texts(std::vector<std::string> const& values) {
    byte(0x91);
    u32(static_cast<uint32_t>(values.size()));
    for (std::string const& s : values) raw(s.c_str(), s.size() + 1);
    return *this;
  }

  Bytes& append(std::vector<unsigned char> const& bytes) { return raw(bytes.data(), bytes.size()); }

  std::vector<unsigned char> const& body() const { return m_body; }

  // The whole message: header and body.
  std::vector<unsigned char> message(int32_t tag = 0) const {
    std::vector<unsigned char> m(16);
    int32_t const magic = 40506070;
    int32_t const version = 1;
    int32_t const length = static_cast<int32_t>(m_body.size());
    std::memcpy(&m[0], &magic, 4);
    std::memcpy(&m[4], &version, 4);
    std::memcpy(&m[8], &length, 4);
    std::memcpy(&m[12], &tag, 4);
    m.insert(m.end(), m_body.begin(), m_body.end());
    return m;
  }

  // A Packer reading this message (from a copy of the bytes).
  std::unique_ptr<Packer> reader() const {
    std::vector<unsigned char> const m = message();
    return std::unique_ptr<Packer>(new Packer(static_cast<int>(m.size()), static_cast<unsigned char const*>(m.data())));
  }

 private:
  std::vector<unsigned char> m_body;
};

// The body of a packed message: everything behind the 16-byte header.
inline std::vector<unsigned char> bodyOf(Packer& packer) {
  unsigned char const* buffer = nullptr;
  int size = 0;
  packer.getBuffer(&buffer, size, 0);
  if (buffer == nullptr || size < 16) return std::vector<unsigned char>();
  return std::vector<unsigned char>(buffer + 16, buffer + size);
}

// A Packer that reads what `packer` holds, as a receiver would.
inline std::unique_ptr<Packer> receive(Packer& packer) {
  unsigned char const* buffer = nullptr;
  int size = 0;
  packer.getBuffer(&buffer, size, 0);
  return std::unique_ptr<Packer>(new Packer(size, buffer));
}

}  // namespace attribute_testing

#endif
