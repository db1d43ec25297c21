#include "foundation/vLCString.h"

#include <cctype>
#include <cstdarg>
#include <cstring>
#include <istream>

namespace {

// The argument of a search, folded the way this string is.
vString folded(vString const& s) {
  vString f(s);
  char* p = f.spointer();
  for (unsigned int i = 0; i < f.length(); ++i) p[i] = vLCString::fold(p[i]);
  return f;
}

}  // namespace

char vLCString::fold(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }

void vLCString::myFold() {
  for (unsigned int i = 0; i < m_length; ++i) m_data[i] = fold(m_data[i]);
}

vLCString::vLCString() {}
vLCString::vLCString(char const* text) : vString(text) { myFold(); }
vLCString::vLCString(char c) : vString(c) { myFold(); }
vLCString::vLCString(int n, char const* s) : vString(n, s) { myFold(); }
vLCString::vLCString(vString const& other) : vString(other) { myFold(); }
vLCString::vLCString(vLCString const& other) : vString(other) {}
vLCString::vLCString(vLCString&& other) noexcept : vString(static_cast<vString&&>(other)) {}
vLCString::~vLCString() {}

void vLCString::center(int n, char c) {
  vString::center(n, fold(c));
}

void vLCString::swapContents(vString& other) {
  vString::swapContents(other);
  myFold();
}

void vLCString::right(int n, char c) { vString::right(n, fold(c)); }
void vLCString::extendTo(int n, char c) { vString::extendTo(n, fold(c)); }
void vLCString::fill(char c) { vString::fill(fold(c)); }
void vLCString::fill(int n, char c) { vString::fill(n, fold(c)); }

vString vLCString::get(int startIndex, int endIndex) const { return vString::get(startIndex, endIndex); }
vString vLCString::get(vString const& open, vString const& close) const {
  return vString::get(folded(open), folded(close));
}
void vLCString::get(char* out, int start, int outlen) const { vString::get(out, start, outlen); }

int vLCString::search(char c) const { return vString::search(fold(c)); }
int vLCString::count(char c) const { return vString::count(fold(c)); }
int vLCString::search(vString const& text, int start) const { return vString::search(folded(text), start); }
int vLCString::search(char const* text, int start) const {
  if (!text) return -1;
  return vString::search(folded(vString(text)), start);
}
int vLCString::searchForLast(char c, int& pos) const { return vString::searchForLast(fold(c), pos); }
int vLCString::searchForLast(vString const& text, int& pos) const { return vString::searchForLast(folded(text), pos); }
int vLCString::find_first_not_of(vString const& set, unsigned int pos) const {
  return vString::find_first_not_of(folded(set), pos);
}
int vLCString::find_first_of(vString const& set, unsigned int pos) const {
  return vString::find_first_of(folded(set), pos);
}

void vLCString::replace(char from, char to) { vString::replace(fold(from), fold(to)); }
void vLCString::replace(vString const& from, vString const& to) {
  vString::replace(folded(from), to);
  myFold();
}
vString& vLCString::replace(unsigned int pos, unsigned int n, vString const& text, unsigned int tpos, unsigned int tn) {
  vString::replace(pos, n, text, tpos, tn);
  myFold();
  return *this;
}
void vLCString::removeAll(char c) { vString::removeAll(fold(c)); }

int vLCString::write(float value, int first, int last, long flags, char fill, int width, int precision) {
  int const r = vString::write(value, first, last, flags, fill, width, precision);
  myFold();
  return r;
}
int vLCString::write(int value, int first, int last, long flags, char fill, int width, int precision) {
  int const r = vString::write(value, first, last, flags, fill, width, precision);
  myFold();
  return r;
}

// The folding always wins.
void vLCString::toUpperCase() {}
void vLCString::capitalize() {}
void vLCString::capitalizeEveryWord() {}
void vLCString::toLowerCase() { vString::toLowerCase(); }

bool vLCString::splitAtToken(vString& left, vString& right, char token) const {
  return vString::splitAtToken(left, right, fold(token));
}
bool vLCString::splitAtToken(vString& left, vString& right, vString const& token) const {
  return vString::splitAtToken(left, right, folded(token));
}
vString vLCString::pop(vString const& delimiter) { return vString::pop(folded(delimiter)); }

vLCString& vLCString::operator=(vString const& other) {
  vString::operator=(other);
  myFold();
  return *this;
}
vLCString& vLCString::operator=(char const* text) {
  vString::operator=(text);
  myFold();
  return *this;
}
vLCString& vLCString::operator=(char c) {
  vString::operator=(fold(c));
  return *this;
}
vLCString& vLCString::operator=(vLCString const& other) {
  vString::operator=(other);
  return *this;
}
vLCString& vLCString::operator=(vLCString&& other) noexcept {
  vString::operator=(static_cast<vString&&>(other));
  return *this;
}

vLCString& vLCString::operator+=(vString const& other) {
  unsigned int const old = m_length;
  vString::operator+=(other);
  myFoldFrom(old);
  return *this;
}
vLCString& vLCString::operator+=(char const* text) {
  unsigned int const old = m_length;
  vString::operator+=(text);
  myFoldFrom(old);
  return *this;
}
vLCString& vLCString::operator+=(char c) {
  vString::operator+=(fold(c));
  return *this;
}
vLCString& vLCString::append(vString const& text) { return vLCString::operator+=(text); }

vLCString& vLCString::operator<<(double v) {
  unsigned int const old = m_length;
  vString::operator<<(v);
  myFoldFrom(old);
  return *this;
}
vLCString& vLCString::operator<<(float v) {
  unsigned int const old = m_length;
  vString::operator<<(v);
  myFoldFrom(old);
  return *this;
}
vLCString& vLCString::operator<<(int v) {
  vString::operator<<(v);
  return *this;
}
vLCString& vLCString::operator<<(long long v) {
  vString::operator<<(v);
  return *this;
}
vLCString& vLCString::operator<<(char const* text) { return vLCString::operator+=(text); }
vLCString& vLCString::operator<<(char c) { return vLCString::operator+=(c); }
vLCString& vLCString::operator<<(vString const& text) { return vLCString::operator+=(text); }

std::istream& vLCString::getQuotedString(std::istream& in, bool ignoreQuotes) {
  vString::getQuotedString(in, ignoreQuotes);
  myFold();
  return in;
}

void vLCString::printf(char const* format, ...) {
  va_list args;
  va_start(args, format);
  try {
    myVPrintf("vLCString::printf", "vLCString::printf", format, args);
  } catch (...) {
    va_end(args);
    throw;
  }
  va_end(args);
}

void vLCString::myFoldFrom(unsigned int from) {
  for (unsigned int i = from; i < m_length; ++i) m_data[i] = fold(m_data[i]);
}

std::istream& operator>>(std::istream& in, vLCString& s) { return s.getQuotedString(in, false); }
