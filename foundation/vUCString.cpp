#include "foundation/vUCString.h"

#include <cctype>
#include <cstdarg>
#include <cstring>
#include <istream>

namespace {

// The argument of a search, folded the way this string is.
vString folded(vString const& s) {
  vString f(s);
  char* p = f.spointer();
  for (unsigned int i = 0; i < f.length(); ++i) p[i] = vUCString::fold(p[i]);
  return f;
}

}  // namespace

char vUCString::fold(char c) { return static_cast<char>(std::toupper(static_cast<unsigned char>(c))); }

void vUCString::myFold() {
  for (unsigned int i = 0; i < m_length; ++i) m_data[i] = fold(m_data[i]);
}

vUCString::vUCString() {}
vUCString::vUCString(char const* text) : vString(text) { myFold(); }
vUCString::vUCString(char c) : vString(c) { myFold(); }
vUCString::vUCString(int n, char const* s) : vString(n, s) { myFold(); }
vUCString::vUCString(vString const& other) : vString(other) { myFold(); }
vUCString::vUCString(vUCString const& other) : vString(other) {}
vUCString::vUCString(vUCString&& other) noexcept : vString(static_cast<vString&&>(other)) {}
vUCString::~vUCString() {}

void vUCString::center(int n, char c) {
  vString::center(n, fold(c));
}

void vUCString::right(int n, char c) { vString::right(n, fold(c)); }
void vUCString::extendTo(int n, char c) { vString::extendTo(n, fold(c)); }
void vUCString::fill(char c) { vString::fill(fold(c)); }
void vUCString::fill(int n, char c) { vString::fill(n, fold(c)); }

vString vUCString::get(int startIndex, int endIndex) const { return vString::get(startIndex, endIndex); }
vString vUCString::get(vString const& open, vString const& close) const {
  return vString::get(folded(open), folded(close));
}
void vUCString::get(char* out, int start, int outlen) const { vString::get(out, start, outlen); }

int vUCString::search(char c) const { return vString::search(fold(c)); }
int vUCString::count(char c) const { return vString::count(fold(c)); }
int vUCString::search(vString const& text, int start) const { return vString::search(folded(text), start); }
int vUCString::search(char const* text, int start) const {
  if (!text) return -1;
  return vString::search(folded(vString(text)), start);
}
int vUCString::searchForLast(char c, int& pos) const { return vString::searchForLast(fold(c), pos); }
int vUCString::searchForLast(vString const& text, int& pos) const { return vString::searchForLast(folded(text), pos); }
int vUCString::find_first_not_of(vString const& set, unsigned int pos) const {
  return vString::find_first_not_of(folded(set), pos);
}
int vUCString::find_first_of(vString const& set, unsigned int pos) const {
  return vString::find_first_of(folded(set), pos);
}

void vUCString::replace(char from, char to) { vString::replace(fold(from), fold(to)); }
void vUCString::replace(vString const& from, vString const& to) {
  vString::replace(folded(from), to);
  myFold();
}
vString& vUCString::replace(unsigned int pos, unsigned int n, vString const& text, unsigned int tpos, unsigned int tn) {
  vString::replace(pos, n, text, tpos, tn);
  myFold();
  return *this;
}
void vUCString::removeAll(char c) { vString::removeAll(fold(c)); }

int vUCString::write(float value, int first, int last, long flags, char fill, int width, int precision) {
  int const r = vString::write(value, first, last, flags, fill, width, precision);
  myFold();
  return r;
}
int vUCString::write(int value, int first, int last, long flags, char fill, int width, int precision) {
  int const r = vString::write(value, first, last, flags, fill, width, precision);
  myFold();
  return r;
}

// The folding always wins.
void vUCString::toLowerCase() {}
void vUCString::capitalize() {}
void vUCString::capitalizeEveryWord() {}
void vUCString::toUpperCase() { vString::toUpperCase(); }

bool vUCString::splitAtToken(vString& left, vString& right, char token) const {
  return vString::splitAtToken(left, right, fold(token));
}
bool vUCString::splitAtToken(vString& left, vString& right, vString const& token) const {
  return vString::splitAtToken(left, right, folded(token));
}
vString vUCString::pop(vString const& delimiter) { return vString::pop(folded(delimiter)); }

vUCString& vUCString::operator=(vString const& other) {
  vString::operator=(other);
  myFold();
  return *this;
}
vUCString& vUCString::operator=(char const* text) {
  vString::operator=(text);
  myFold();
  return *this;
}
vUCString& vUCString::operator=(char c) {
  vString::operator=(fold(c));
  return *this;
}
vUCString& vUCString::operator=(vUCString const& other) {
  vString::operator=(other);
  return *this;
}
vUCString& vUCString::operator=(vUCString&& other) noexcept {
  vString::operator=(static_cast<vString&&>(other));
  return *this;
}

vUCString& vUCString::operator+=(vString const& other) {
  unsigned int const old = m_length;
  vString::operator+=(other);
  myFoldFrom(old);
  return *this;
}
vUCString& vUCString::operator+=(char const* text) {
  unsigned int const old = m_length;
  vString::operator+=(text);
  myFoldFrom(old);
  return *this;
}
vUCString& vUCString::operator+=(char c) {
  vString::operator+=(fold(c));
  return *this;
}
vUCString& vUCString::append(vString const& text) { return vUCString::operator+=(text); }

vUCString& vUCString::operator<<(double v) {
  unsigned int const old = m_length;
  vString::operator<<(v);
  myFoldFrom(old);
  return *this;
}
vUCString& vUCString::operator<<(float v) {
  unsigned int const old = m_length;
  vString::operator<<(v);
  myFoldFrom(old);
  return *this;
}
vUCString& vUCString::operator<<(int v) {
  vString::operator<<(v);
  return *this;
}
vUCString& vUCString::operator<<(long long v) {
  vString::operator<<(v);
  return *this;
}
vUCString& vUCString::operator<<(char const* text) { return vUCString::operator+=(text); }
vUCString& vUCString::operator<<(char c) { return vUCString::operator+=(c); }
vUCString& vUCString::operator<<(vString const& text) { return vUCString::operator+=(text); }

std::istream& vUCString::getQuotedString(std::istream& in, bool ignoreQuotes) {
  vString::getQuotedString(in, ignoreQuotes);
  myFold();
  return in;
}

void vUCString::printf(char const* format, ...) {
  va_list args;
  va_start(args, format);
  try {
    myVPrintf("vUCString::printf", "vUCString::printf", format, args);
  } catch (...) {
    va_end(args);
    throw;
  }
  va_end(args);
}

void vUCString::myFoldFrom(unsigned int from) {
  for (unsigned int i = from; i < m_length; ++i) m_data[i] = fold(m_data[i]);
}

std::istream& operator>>(std::istream& in, vUCString& s) { return s.getQuotedString(in, false); }
