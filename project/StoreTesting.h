#ifndef PROJECT_STORETESTING_H
#define PROJECT_STORETESTING_H

// Test helpers of the store layer: a checker of failures by method and
// text, and a byte builder that writes Packer messages by hand, apart from
// the Packer, so that packed forms are compared byte for byte and the frames
// of old writers can be built as those writers built them.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "foundation/MessageHandling.h"
#include "foundation/Packer.h"
#include "foundation/UtlExcept.h"

namespace store_testing {

// Runs f, which must fail with UtlExcept with this method and reason.
template <class F>
void expectFailure(F f, std::string const& method, std::string const& reason) {
  try {
    MessageHandling quiet;
    f();
    ADD_FAILURE() << "expected the failure: " << reason;
  } catch (UtlExcept const& e) {
    EXPECT_EQ(method, std::string(e.getMethod().c_str())) << "reason: " << e.getReason().c_str();
    EXPECT_EQ(reason, std::string(e.getReason().c_str()));
  }
}

// Entries in the Packer's layout, in this host's byte order.
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
  Bytes& frame(int16_t magic, int16_t version) {
    byte(0x7F);
    raw(&magic, 2);
    return raw(&version, 2);
  }
  Bytes& end() { return byte(0x7E); }
  Bytes& int32(int32_t v) { return byte(5).raw(&v, 4); }
  Bytes& uint32(uint32_t v) { return byte(6).raw(&v, 4); }
  Bytes& int64(int64_t v) { return byte(7).raw(&v, 8); }
  Bytes& float32(float v) { return byte(11).raw(&v, 4); }
  Bytes& float64(double v) { return byte(12).raw(&v, 8); }
  Bytes& boolean(bool v) { return byte(16).byte(v ? 1 : 0); }
  Bytes& text(char const* s) {
    byte(0x8E);
    uint32_t const n = static_cast<uint32_t>(std::strlen(s));
    uint32_t const count = n == 0 ? 0 : n + 1;
    raw(&count, 4);
    return n == 0 ? *this : raw(s, n + 1);
  }
  Bytes& append(std::vector<unsigned char> const& bytes) { return raw(bytes.data(), bytes.size()); }

  std::vector<unsigned char> const& body() const { return m_body; }

  // A Packer reading the message of this body.
  std::unique_ptr<Packer> reader() const {
    std::vector<unsigned char> m(16);
    int32_t const magic = 40506070;
    int32_t const version = 1;
    int32_t const length = static_cast<int32_t>(m_body.size());
    std::memcpy(&m[0], &magic, 4);
    std::memcpy(&m[4], &version, 4);
    std::memcpy(&m[8], &length, 4);
    m.insert(m.end(), m_body.begin(), m_body.end());
    return std::unique_ptr<Packer>(new Packer(static_cast<int>(m.size()), static_cast<unsigned char const*>(m.data())));
  }

 private:
  std::vector<unsigned char> m_body;
};

// The body of what a Packer holds: everything behind the header.
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

}  // namespace store_testing

#endif
