#include "filestore/fdm/FdmBinaryHeader.h"

#include <cmath>
#include <cstring>

namespace {

uint32_t swap32(uint32_t w) { return (w >> 24) | ((w >> 8) & 0xff00u) | ((w << 8) & 0xff0000u) | (w << 24); }

float asFloat(uint32_t w) {
  float f;
  std::memcpy(&f, &w, 4);
  return f;
}

// A crossline count: a whole number from 1 to 100000.
bool isCount(uint32_t w) {
  float const f = asFloat(w);
  return !std::isnan(f) && f >= 1.0f && f <= 100000.0f && f == std::floor(f);
}

}  // namespace

FdmBinaryHeader::FdmBinaryHeader() : m_words(), m_valid(false), m_swapped(false), m_extended(false) {}

FdmBinaryHeader::FdmBinaryHeader(void const* bytes, std::size_t size) : FdmBinaryHeader() {
  if (bytes == nullptr || size < static_cast<std::size_t>(LENGTH)) return;
  std::memcpy(m_words, bytes, LENGTH);
  char const* mark = static_cast<char const*>(bytes) + 72;
  m_extended = std::memcmp(mark, "VFDM", 4) == 0 || std::memcmp(mark, "MDFV", 4) == 0;
  if (isCount(m_words[1])) {
    m_valid = true;
    return;
  }
  if (!isCount(swap32(m_words[1]))) return;
  for (uint32_t& w : m_words) w = swap32(w);
  m_valid = true;
  m_swapped = true;
}

float FdmBinaryHeader::myFloat(int byte) const { return m_valid ? asFloat(m_words[byte / 4]) : 0.0f; }

int FdmBinaryHeader::myCount(int byte) const {
  if (!m_valid) return 0;
  float const f = asFloat(m_words[byte / 4]);
  // Out of the range of int (or NaN) counts as nothing.
  if (!(f > -2.0e9f && f < 2.0e9f)) return 0;
  return static_cast<int>(std::lround(f));
}

int FdmBinaryHeader::myExtendedInt(int byte) const {
  return hasExtendedHeader() ? static_cast<int>(m_words[byte / 4]) : -1;
}
