#include "foundation/vTokenizer.h"

#include <cstring>

vTokenizer::vTokenizer() : m_position(0) { setDelimiters(" \t\n\r"); }

vTokenizer::vTokenizer(vString const& text, vString const& delimiters) : vString(text), m_position(0) {
  setDelimiters(delimiters);
}

void vTokenizer::setString(vString const& text) {
  vString::operator=(text);
  m_position = 0;
}

void vTokenizer::setDelimiters(vString const& delimiters) {
  std::memset(m_delimiters, 0, sizeof m_delimiters);
  for (unsigned int i = 0; i < delimiters.length(); ++i) {
    int const bit = myBit(delimiters[static_cast<int>(i)]);
    m_delimiters[bit >> 5] |= 1u << (bit & 31);
  }
}

bool vTokenizer::isDelimiter(char c) const {
  int const bit = myBit(c);
  return (m_delimiters[bit >> 5] >> (bit & 31)) & 1u;
}

void vTokenizer::setCurrentPosition(int position) { m_position = position < 0 ? 0 : position; }

bool vTokenizer::next(vString& token) {
  token.erase();
  int const n = static_cast<int>(length());
  char const* p = c_str();
  while (m_position < n && isDelimiter(p[m_position])) ++m_position;
  if (m_position >= n) return false;
  int const start = m_position;
  while (m_position < n && !isDelimiter(p[m_position])) ++m_position;
  token = substr(static_cast<unsigned int>(start), static_cast<unsigned int>(m_position - start));
  return true;
}

vString vTokenizer::tail() const {
  int const n = static_cast<int>(length());
  char const* p = c_str();
  int i = m_position;
  while (i < n && isDelimiter(p[i])) ++i;
  if (i >= n) return vString();
  return substr(static_cast<unsigned int>(i));
}

void vTokenizer::getAllTokens(std::list<vString>& tokens) {
  vString token;
  while (next(token)) tokens.push_back(token);
}
