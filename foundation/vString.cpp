#include "foundation/vString.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <new>
#include <sstream>
#include <string>

#include "foundation/Message.h"
#include "foundation/UtlExcept.h"
#include "foundation/vUtl.h"

namespace {

// The one buffer every empty string points at. Never written (its single
// byte stays zero) and never freed: myDeallocate() recognises it by address.
char s_emptyBuffer[1] = {0};

inline bool isBlankChar(char c) { return c == ' ' || c == '\t'; }
inline bool isSpaceChar(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }
inline bool isDigitChar(char c) { return c >= '0' && c <= '9'; }
inline char asciiLower(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

// Plain byte search that does not stop at embedded zeros.
int findBytes(char const* hay, unsigned int hayLen, char const* needle, unsigned int needleLen, unsigned int start) {
  if (needleLen == 0 || start >= hayLen || needleLen > hayLen - start) return -1;
  for (unsigned int i = start; i + needleLen <= hayLen; ++i)
    if (hay[i] == needle[0] && std::memcmp(hay + i, needle, needleLen) == 0) return static_cast<int>(i);
  return -1;
}

int findLastBytes(char const* hay, unsigned int hayLen, char const* needle, unsigned int needleLen) {
  if (needleLen == 0 || needleLen > hayLen) return -1;
  for (unsigned int i = hayLen - needleLen + 1; i-- > 0;)
    if (hay[i] == needle[0] && std::memcmp(hay + i, needle, needleLen) == 0) return static_cast<int>(i);
  return -1;
}

// Shell-style matching: ? * [set] [^set] [a-z], everything else literal.
bool globMatch(char const* s, char const* p) {
  while (*p) {
    switch (*p) {
      case '?':
        if (!*s) return false;
        ++s;
        ++p;
        break;
      case '*':
        ++p;
        if (!*p) return true;
        for (;; ++s) {
          if (globMatch(s, p)) return true;
          if (!*s) return false;
        }
      case '[': {
        ++p;
        bool negate = false;
        if (*p == '^') {
          negate = true;
          ++p;
        }
        bool found = false;
        bool haveMember = false;
        char member = 0;
        char const c = *s;
        while (*p && *p != ']') {
          if (*p == '-' && haveMember && p[1] && p[1] != ']') {
            if (c >= member && c <= p[1]) found = true;
            p += 2;
            haveMember = false;
          } else {
            if (*p == c) found = true;
            member = *p;
            haveMember = true;
            ++p;
          }
        }
        if (*p == ']') ++p;
        if (!c || found == negate) return false;
        ++s;
        break;
      }
      default:
        if (*s != *p) return false;
        ++s;
        ++p;
        break;
    }
  }
  return *s == 0;
}

void applyStreamFlags(std::ostringstream& os, long flags, char fill, int width) {
  if (flags & 64)
    os << std::hex;
  else if (flags & 32)
    os << std::oct;
  else
    os << std::dec;
  if (flags & 128) os << std::showbase;
  if (flags & 256) os << std::showpoint;
  if (flags & 512) os << std::uppercase;
  if (flags & 1024) os << std::showpos;
  if (fill) os.fill(fill);
  // Zeros go between the sign or base and the digits, as report columns want.
  if (fill == '0') os << std::internal;
  if (width > 0) os.width(width);
}

// Set while the exception for a failed allocation is being built. That
// exception holds strings of its own; when even those cannot be had, the
// nested failure throws std::bad_alloc instead of recursing until the
// exception runtime gives up and terminates the process.
thread_local bool s_reportingAllocationFailure = false;

class ReportingAllocationFailure {
 public:
  ReportingAllocationFailure() { s_reportingAllocationFailure = true; }
  ~ReportingAllocationFailure() { s_reportingAllocationFailure = false; }
  ReportingAllocationFailure(ReportingAllocationFailure const&) = delete;
  ReportingAllocationFailure& operator=(ReportingAllocationFailure const&) = delete;
};

[[noreturn]] void allocationFailed(char const* reason, char const* method, int line) {
  if (s_reportingAllocationFailure) throw std::bad_alloc();
  ReportingAllocationFailure reporting;
  // Built in place as the thrown object: no copy that could fail again.
  throw UtlExcept(reason, method, line, "vString");
}

}  // namespace

// --- storage -----------------------------------------------------------------

void vString::myAllocate(unsigned int length) {
  if (length == 0) {
    m_data = s_emptyBuffer;
    m_length = 0;
    return;
  }
  char* p = static_cast<char*>(std::malloc(static_cast<size_t>(length) + 1));
  if (!p) allocationFailed("Could not allocate memory for data.", "vString::myAllocate()", __LINE__);
  p[length] = 0;
  m_data = p;
  m_length = length;
}

void vString::myReallocate(unsigned int length) {
  if (length == 0) {
    myDeallocate();
    return;
  }
  char* old = (m_data == s_emptyBuffer) ? nullptr : m_data;
  char* p = static_cast<char*>(std::realloc(old, static_cast<size_t>(length) + 1));
  if (!p) allocationFailed("Could not reallocate memory for data.", "vString::myReallocate()", __LINE__);
  if (!old) p[0] = 0;
  p[length] = 0;
  m_data = p;
  m_length = length;
}

void vString::myDeallocate() {
  if (m_data != s_emptyBuffer) std::free(m_data);
  m_data = s_emptyBuffer;
  m_length = 0;
}

void vString::myAssign(char const* text, unsigned int length) {
  if (length == 0 || !text) {
    myDeallocate();
    return;
  }
  // Allocate first: text may live in our own buffer.
  char* p = static_cast<char*>(std::malloc(static_cast<size_t>(length) + 1));
  if (!p) allocationFailed("Could not allocate memory for data.", "vString::myAllocate()", __LINE__);
  std::memcpy(p, text, length);
  p[length] = 0;
  myDeallocate();
  m_data = p;
  m_length = length;
}

void vString::myAppend(char const* text, unsigned int length) {
  if (length == 0 || !text) return;
  bool const inside = m_data != s_emptyBuffer && text >= m_data && text <= m_data + m_length;
  size_t const offset = inside ? static_cast<size_t>(text - m_data) : 0;
  unsigned int const oldLength = m_length;
  myReallocate(oldLength + length);
  if (inside) text = m_data + offset;
  std::memmove(m_data + oldLength, text, length);
  m_data[m_length] = 0;
}

void vString::myFold() {}

bool vString::isSharedEmpty() const { return m_data == s_emptyBuffer; }

// --- construction --------------------------------------------------------------

vString::vString() : m_data(s_emptyBuffer), m_length(0) {}

vString::vString(char const* text) : m_data(s_emptyBuffer), m_length(0) {
  if (text && *text) myAssign(text, static_cast<unsigned int>(std::strlen(text)));
}

vString::vString(char c) : m_data(s_emptyBuffer), m_length(0) {
  if (c) myAssign(&c, 1);
}

vString::vString(int n, char const* s) : m_data(s_emptyBuffer), m_length(0) {
  if (n <= 0) return;
  myAllocate(static_cast<unsigned int>(n));
  std::memset(m_data, 0, static_cast<size_t>(n));
  if (s) {
    size_t len = strnlen(s, static_cast<size_t>(n));
    std::memcpy(m_data, s, len);
  }
}

vString::vString(vString const& other) : m_data(s_emptyBuffer), m_length(0) { myAssign(other.m_data, other.m_length); }

vString::vString(vString&& other) noexcept : m_data(other.m_data), m_length(other.m_length) {
  other.m_data = s_emptyBuffer;
  other.m_length = 0;
}

vString::~vString() { myDeallocate(); }

// --- padding and filling -----------------------------------------------------

void vString::center(int n, char c) {
  if (c == 0 || n < 1) return;
  strip();
  if (static_cast<int>(m_length) >= n) return;
  unsigned int const pad = static_cast<unsigned int>(n) - m_length;
  unsigned int const left = pad / 2;
  vString out(n, nullptr);
  std::memset(out.m_data, c, static_cast<size_t>(n));
  std::memcpy(out.m_data + left, m_data, m_length);
  swapContents(out);
}

void vString::swapContents(vString& other) {
  char* d = m_data;
  uint32_t l = m_length;
  m_data = other.m_data;
  m_length = other.m_length;
  other.m_data = d;
  other.m_length = l;
  myFold();
  other.myFold();
}

void vString::right(int n, char c) {
  if (c == 0 || n < 1 || static_cast<int>(m_length) >= n) return;
  unsigned int const pad = static_cast<unsigned int>(n) - m_length;
  vString out(n, nullptr);
  std::memset(out.m_data, c, pad);
  std::memcpy(out.m_data + pad, m_data, m_length);
  myAssign(out.m_data, out.m_length);
}

void vString::extendTo(int n, char c) {
  if (c == 0 || n < 1 || static_cast<int>(m_length) >= n) return;
  unsigned int const old = m_length;
  myReallocate(static_cast<unsigned int>(n));
  std::memset(m_data + old, c, static_cast<size_t>(n) - old);
}

void vString::fill(char c) {
  if (m_length == 0) return;
  std::memset(m_data, c, m_length);
}

void vString::fill(int n, char c) {
  if (n < 1) {
    myDeallocate();
    return;
  }
  if (static_cast<unsigned int>(n) != m_length) myReallocate(static_cast<unsigned int>(n));
  std::memset(m_data, c, static_cast<size_t>(n));
}

// --- extraction ----------------------------------------------------------------

vString vString::get(int startIndex, int endIndex) const {
  if (startIndex < 0) Message::fatal("vString::get", 0, "negative startIndex %d for string %s", startIndex, m_data);
  if (startIndex > endIndex)
    Message::fatal("vString::get", 0, "startIndex %d greater than endIndex %d for string %s", startIndex, endIndex,
                   m_data);
  if (m_length == 0 || static_cast<unsigned int>(startIndex) >= m_length) return vString();
  unsigned int end = static_cast<unsigned int>(endIndex);
  if (end >= m_length) end = m_length - 1;
  vString out;
  out.myAssign(m_data + startIndex, end - static_cast<unsigned int>(startIndex) + 1);
  return out;
}

vString vString::get(vString const& open, vString const& close) const {
  int const a = findBytes(m_data, m_length, open.m_data, open.m_length, 0);
  if (a < 0) return vString();
  unsigned int const from = static_cast<unsigned int>(a) + open.m_length;
  int const b = findBytes(m_data, m_length, close.m_data, close.m_length, from);
  unsigned int const to = b < 0 ? m_length : static_cast<unsigned int>(b);
  vString out;
  out.myAssign(m_data + from, to - from);
  return out;
}

void vString::get(char* out, int start, int outlen) const {
  if (!out || outlen < 1) return;
  out[0] = 0;
  if (start < 0 || static_cast<unsigned int>(start) >= m_length) return;
  unsigned int n = m_length - static_cast<unsigned int>(start);
  if (n > static_cast<unsigned int>(outlen - 1)) n = static_cast<unsigned int>(outlen - 1);
  std::memcpy(out, m_data + start, n);
  out[n] = 0;
}

int vString::getSize() const { return static_cast<int>(m_length); }

vString vString::substr(unsigned int pos, unsigned int n) const {
  if (n == 0 || pos >= m_length) return vString();
  unsigned int avail = m_length - pos;
  if (n != 0xFFFFFFFFu && n < avail) avail = n;
  vString out;
  out.myAssign(m_data + pos, avail);
  return out;
}

vString vString::getLeft(int n) const { return n <= 0 ? vString() : substr(0, static_cast<unsigned int>(n)); }

vString vString::getRight(int n) const {
  if (n <= 0) return vString();
  if (static_cast<unsigned int>(n) >= m_length) return *this;
  return substr(m_length - static_cast<unsigned int>(n), static_cast<unsigned int>(n));
}

vString vString::getMid(int start, int n) const {
  if (start < 0 || n <= 0) return vString();
  return substr(static_cast<unsigned int>(start), static_cast<unsigned int>(n));
}

vString vString::pop(vString const& delimiter) {
  int const pos = findBytes(m_data, m_length, delimiter.m_data, delimiter.m_length, 0);
  if (pos < 0) {
    vString all(*this);
    erase();
    return all;
  }
  vString head = substr(0, static_cast<unsigned int>(pos));
  vString rest = substr(static_cast<unsigned int>(pos) + delimiter.m_length);
  *this = rest;
  return head;
}

// --- tests -------------------------------------------------------------------

bool vString::isBlank() const {
  for (char const* p = m_data; *p; ++p)
    if (!isBlankChar(*p)) return false;
  return true;
}

bool vString::isEmpty() const {
  for (unsigned int i = 0; i < m_length && m_data[i]; ++i)
    if (!isBlankChar(m_data[i])) return false;
  return true;
}

bool vString::isInteger() const {
  if (isBlank()) return false;
  unsigned int i = 0;
  if (m_data[0] == '+' || m_data[0] == '-') i = 1;
  for (; i < m_length; ++i)
    if (!isDigitChar(m_data[i])) return false;
  return true;
}

bool vString::match(vString const& pattern) const { return globMatch(m_data, pattern.m_data); }

// --- searching -----------------------------------------------------------------

int vString::search(char c) const {
  void const* p = std::memchr(m_data, c, m_length);
  return p ? static_cast<int>(static_cast<char const*>(p) - m_data) : -1;
}

int vString::count(char c) const {
  int n = 0;
  for (unsigned int i = 0; i < m_length; ++i)
    if (m_data[i] == c) ++n;
  return n;
}

int vString::search(vString const& text, int start) const {
  return findBytes(m_data, m_length, text.m_data, text.m_length, start < 0 ? 0u : static_cast<unsigned int>(start));
}

int vString::search(char const* text, int start) const {
  if (!text) return -1;
  return findBytes(m_data, m_length, text, static_cast<unsigned int>(std::strlen(text)),
                   start < 0 ? 0u : static_cast<unsigned int>(start));
}

int vString::searchInteger(vString const& text, int start) const {
  unsigned int from = start < 0 ? 0u : static_cast<unsigned int>(start);
  for (;;) {
    int const pos = findBytes(m_data, m_length, text.m_data, text.m_length, from);
    if (pos < 0) return -1;
    unsigned int const end = static_cast<unsigned int>(pos) + text.m_length;
    bool const digitBefore = pos > 0 && isDigitChar(m_data[pos - 1]);
    bool const digitAfter = end < m_length && isDigitChar(m_data[end]);
    if (!digitBefore && !digitAfter) return pos;
    from = static_cast<unsigned int>(pos) + 1;
  }
}

int vString::searchForLast(char c, int& pos) const {
  pos = 0;
  for (unsigned int i = m_length; i-- > 0;) {
    if (m_data[i] == c) {
      pos = static_cast<int>(i);
      return 0;
    }
  }
  return -1;
}

int vString::searchForLast(vString const& text, int& pos) const {
  pos = 0;
  int const p = findLastBytes(m_data, m_length, text.m_data, text.m_length);
  if (p < 0) return -1;
  pos = p;
  return 0;
}

int vString::find_first_not_of(vString const& set, unsigned int pos) const {
  for (unsigned int i = pos; i < m_length; ++i)
    if (!std::memchr(set.m_data, m_data[i], set.m_length)) return static_cast<int>(i);
  return -1;
}

int vString::find_first_of(vString const& set, unsigned int pos) const {
  for (unsigned int i = pos; i < m_length; ++i)
    if (std::memchr(set.m_data, m_data[i], set.m_length)) return static_cast<int>(i);
  return -1;
}

// --- replacing -----------------------------------------------------------------

void vString::replace(char from, char to) {
  for (unsigned int i = 0; i < m_length; ++i)
    if (m_data[i] == from) m_data[i] = to;
}

void vString::replace(vString const& from, vString const& to) {
  if (from.m_length == 0) return;
  int pos = findBytes(m_data, m_length, from.m_data, from.m_length, 0);
  if (pos < 0) return;
  vString out;
  unsigned int done = 0;
  while (pos >= 0) {
    out.myAppend(m_data + done, static_cast<unsigned int>(pos) - done);
    out.myAppend(to.m_data, to.m_length);
    done = static_cast<unsigned int>(pos) + from.m_length;
    pos = findBytes(m_data, m_length, from.m_data, from.m_length, done);
  }
  out.myAppend(m_data + done, m_length - done);
  myAssign(out.m_data, out.m_length);
}

vString& vString::replace(unsigned int pos, unsigned int n, vString const& text, unsigned int tpos, unsigned int tn) {
  if (pos > m_length) pos = m_length;
  if (n > m_length - pos) n = m_length - pos;
  vString insert = text.substr(tpos, tn);
  vString out;
  out.myAppend(m_data, pos);
  out.myAppend(insert.m_data, insert.m_length);
  out.myAppend(m_data + pos + n, m_length - pos - n);
  myAssign(out.m_data, out.m_length);
  return *this;
}

void vString::replaceNonAscii() {
  for (char* p = m_data; *p; ++p) {
    unsigned char const c = static_cast<unsigned char>(*p);
    if (c == '\r') {
      *p = 0;
      break;
    }
    if (c >= 128 || (!std::isprint(c) && !std::isspace(c))) *p = ' ';
  }
}

void vString::removeAll(char c) {
  unsigned int j = 0;
  for (unsigned int i = 0; i < m_length; ++i)
    if (m_data[i] != c) m_data[j++] = m_data[i];
  if (j != m_length) {
    if (j == 0)
      myDeallocate();
    else
      myReallocate(j);
  }
}

// --- sizing and trimming ---------------------------------------------------------

int vString::setSize(int n) {
  if (n == static_cast<int>(m_length)) return n;
  if (n < 1) return -1;
  myReallocate(static_cast<unsigned int>(n));
  // The content is lost; zero all of it so that no byte is left undefined.
  std::memset(m_data, 0, static_cast<size_t>(n));
  return n;
}

int vString::truncate(int n) {
  if (n < 0) return -1;
  if (static_cast<unsigned int>(n) >= m_length) return 0;
  myReallocate(static_cast<unsigned int>(n));
  return 0;
}

void vString::strip() {
  unsigned int b = 0;
  unsigned int e = m_length;
  while (b < e && isBlankChar(m_data[b])) ++b;
  while (e > b && isBlankChar(m_data[e - 1])) --e;
  if (b == 0 && e == m_length) return;
  myAssign(m_data + b, e - b);
}

void vString::trimRight() {
  unsigned int e = m_length;
  while (e > 0 && isSpaceChar(m_data[e - 1])) --e;
  if (e != m_length) myAssign(m_data, e);
}

void vString::trimLeft() {
  unsigned int b = 0;
  while (b < m_length && isSpaceChar(m_data[b])) ++b;
  if (b != 0) myAssign(m_data + b, m_length - b);
}

void vString::trimRight(vString const& text) {
  vString copy(text);
  copy.trimRight();
  *this = copy;
}

void vString::trimLeft(vString const& text) {
  vString copy(text);
  copy.reverse();
  copy.trimRight();
  copy.reverse();
  *this = copy;
}

void vString::reverse() {
  for (unsigned int i = 0, j = m_length; i + 1 < j; ++i, --j) {
    char t = m_data[i];
    m_data[i] = m_data[j - 1];
    m_data[j - 1] = t;
  }
}

void vString::erase() { myDeallocate(); }

// --- access ------------------------------------------------------------------

void vString::print() const { std::cout << m_data; }
unsigned int vString::size() const { return m_length; }
unsigned int vString::length() const { return m_length; }
char const* vString::pointer() const { return m_data; }
char* vString::spointer() { return m_data; }
char const* vString::string() const { return m_data; }
char const* vString::c_str() const { return m_data; }
char& vString::operator[](int i) { return m_data[i]; }
char const& vString::operator[](int i) const { return m_data[i]; }

char& vString::at(unsigned int i) {
  if (i >= m_length) throw UtlExcept("Trying to index beyond end of string", "vString::at()", __LINE__, "vString");
  return m_data[i];
}

char const& vString::at(unsigned int i) const {
  if (i >= m_length) throw UtlExcept("Requested position is out of range.", "vString::at()", __LINE__, "vString");
  return m_data[i];
}

// --- conversion ----------------------------------------------------------------

float vString::readf() const { return m_length ? std::strtof(m_data, nullptr) : 0.0f; }
double vString::readd() const { return m_length ? std::strtod(m_data, nullptr) : 0.0; }
int vString::readi() const { return m_length ? std::atoi(m_data) : 0; }
long long vString::readi64() const { return m_length ? std::strtoll(m_data, nullptr, 10) : 0LL; }

bool vString::readb() const {
  if (m_length == 0) return false;
  vString t(*this);
  t.trimLeft();
  t.trimRight();
  if (t.m_length == 0) return false;
  if (t.m_length == 1) {
    char const c = asciiLower(t.m_data[0]);
    return !(c == 'f' || c == 'n' || c == '0');
  }
  if (t.stricmp("no") == 0) return false;
  if (t == "false" || t == "negative" || t == "disabled") return false;
  return true;
}

vString vString::number(int v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%d", v);
  return vString(buf);
}

vString vString::number(long long v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%lld", v);
  return vString(buf);
}

vString vString::number(double v) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.15G", v);
  return vString(buf);
}

vString vString::number(float v) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.7G", static_cast<double>(v));
  return vString(buf);
}

namespace {

// Fits a formatted number into a field of `width` characters: longer text is
// replaced by all nines with the sign kept, shorter text is right-aligned.
std::string fitField(std::string text, unsigned int width, bool negative, char fill) {
  if (text.size() > width) {
    if (negative && width > 0)
      text = "-" + std::string(width - 1, '9');
    else
      text = std::string(width, '9');
  } else if (text.size() < width) {
    text = std::string(width - text.size(), fill ? fill : ' ') + text;
  }
  return text;
}

// The width of the field first..last of s: 0 for "append" (last is -1), -1
// for a field that does not lie within s.
int fieldWidth(vString const& s, int first, int last) {
  if (last == -1) return 0;
  if (first < 0 || last < first || static_cast<unsigned int>(last) >= s.length()) return -1;
  return last - first + 1;
}

// Writes text into the field first..last of s, or appends it (clipped to a
// fresh 50-character buffer) when last is -1.
int placeField(vString& s, std::string const& formatted, int first, int last, bool negative, char fill) {
  if (last == -1) {
    std::string text = formatted.size() > 50 ? formatted.substr(0, 50) : formatted;
    s += text.c_str();
    return static_cast<int>(text.size());
  }
  unsigned int const width = static_cast<unsigned int>(last - first + 1);
  std::string const text = fitField(formatted, width, negative, fill);
  std::memcpy(s.spointer() + first, text.data(), width);
  return static_cast<int>(width);
}

}  // namespace

// The stream pads to the whole field, so that a '0' fill goes between the
// sign (or base) and the digits rather than in front of the sign.
int vString::write(float value, int first, int last, long flags, char fill, int width, int precision) {
  int const field = fieldWidth(*this, first, last);
  if (field < 0) return -1;
  std::ostringstream os;
  applyStreamFlags(os, flags, fill, width > field ? width : field);
  if (precision >= 0) {
    os.setf(std::ios::fixed, std::ios::floatfield);
    os.precision(precision);
  }
  os << value;
  return placeField(*this, os.str(), first, last, value < 0, fill);
}

int vString::write(int value, int first, int last, long flags, char fill, int width, int /*precision*/) {
  int const field = fieldWidth(*this, first, last);
  if (field < 0) return -1;
  std::ostringstream os;
  applyStreamFlags(os, flags, fill, width > field ? width : field);
  os << value;
  return placeField(*this, os.str(), first, last, value < 0, fill);
}

// --- case --------------------------------------------------------------------

void vString::toUpperCase() {
  for (unsigned int i = 0; i < m_length; ++i) m_data[i] = static_cast<char>(std::toupper(static_cast<unsigned char>(m_data[i])));
}

void vString::toLowerCase() {
  for (unsigned int i = 0; i < m_length; ++i) m_data[i] = static_cast<char>(std::tolower(static_cast<unsigned char>(m_data[i])));
}

void vString::capitalize() {
  bool first = true;
  for (unsigned int i = 0; i < m_length; ++i) {
    unsigned char const c = static_cast<unsigned char>(m_data[i]);
    if (!std::isalpha(c)) continue;
    m_data[i] = static_cast<char>(first ? std::toupper(c) : std::tolower(c));
    first = false;
  }
}

void vString::capitalizeEveryWord() {
  bool up = true;
  for (unsigned int i = 0; i < m_length; ++i) {
    unsigned char const c = static_cast<unsigned char>(m_data[i]);
    if (c < 128 && std::isalpha(c)) {
      m_data[i] = static_cast<char>(up ? std::toupper(c) : std::tolower(c));
      up = false;
    } else if (c >= 128 || std::ispunct(c) || std::isspace(c)) {
      up = true;
    } else {
      up = false;
    }
  }
}

// --- splitting -----------------------------------------------------------------

namespace {

bool splitAt(vString const& s, int pos, unsigned int tokenLength, vString& left, vString& right) {
  if (pos < 0) {
    vString all(s);
    right.erase();
    left = all;
    return false;
  }
  vString l = s.substr(0, static_cast<unsigned int>(pos));
  vString r = s.substr(static_cast<unsigned int>(pos) + tokenLength);
  left = l;
  right = r;
  return true;
}

}  // namespace

bool vString::splitAtToken(vString& left, vString& right, char token) const {
  return splitAt(*this, vString::search(token), 1, left, right);
}

bool vString::splitAtToken(vString& left, vString& right, vString const& token) const {
  return splitAt(*this, findBytes(m_data, m_length, token.m_data, token.m_length, 0), token.m_length, left, right);
}

bool vString::splitAtLastToken(vString& left, vString& right, char token) const {
  int pos = 0;
  if (vString::searchForLast(token, pos) != 0) pos = -1;
  return splitAt(*this, pos, 1, left, right);
}

bool vString::splitAtLastToken(vString& left, vString& right, vString const& token) const {
  return splitAt(*this, findLastBytes(m_data, m_length, token.m_data, token.m_length), token.m_length, left, right);
}

// --- assignment and appending ----------------------------------------------------

vString& vString::operator=(vString const& other) {
  if (this != &other) myAssign(other.m_data, other.m_length);
  return *this;
}

vString& vString::operator=(char const* text) {
  myAssign(text, text ? static_cast<unsigned int>(std::strlen(text)) : 0u);
  return *this;
}

vString& vString::operator=(char c) {
  myAssign(&c, c ? 1u : 0u);
  return *this;
}

vString& vString::operator=(vString&& other) noexcept {
  if (this != &other) {
    myDeallocate();
    m_data = other.m_data;
    m_length = other.m_length;
    other.m_data = s_emptyBuffer;
    other.m_length = 0;
    myFold();
  }
  return *this;
}

vString& vString::operator+=(vString const& other) {
  myAppend(other.m_data, other.m_length);
  return *this;
}

vString& vString::operator+=(char const* text) {
  if (text) myAppend(text, static_cast<unsigned int>(std::strlen(text)));
  return *this;
}

vString& vString::operator+=(char c) {
  if (c) myAppend(&c, 1);
  return *this;
}

vString& vString::append(vString const& text) { return vString::operator+=(text); }

vString& vString::operator<<(double v) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.15G", v);
  myAppend(buf, static_cast<unsigned int>(std::strlen(buf)));
  return *this;
}

vString& vString::operator<<(float v) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.7G", static_cast<double>(v));
  myAppend(buf, static_cast<unsigned int>(std::strlen(buf)));
  return *this;
}

vString& vString::operator<<(int v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%d", v);
  myAppend(buf, static_cast<unsigned int>(std::strlen(buf)));
  return *this;
}

vString& vString::operator<<(long long v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%lld", v);
  myAppend(buf, static_cast<unsigned int>(std::strlen(buf)));
  return *this;
}

vString& vString::operator<<(char const* text) { return vString::operator+=(text); }
vString& vString::operator<<(char c) { return vString::operator+=(c); }
vString& vString::operator<<(vString const& text) { return vString::operator+=(text); }

vString vString::operator+(vString const& o) {
  vString out(*this);
  out.myAppend(o.m_data, o.m_length);
  return out;
}

vString vString::operator+(vString const& o) const {
  vString out(*this);
  out.myAppend(o.m_data, o.m_length);
  return out;
}

// --- comparison ------------------------------------------------------------------

bool vString::operator==(vString const& o) const { return m_length == o.m_length && std::strcmp(m_data, o.m_data) == 0; }
bool vString::operator!=(vString const& o) const { return !(*this == o); }
bool vString::operator==(char const* o) const { return std::strcmp(m_data, o ? o : "") == 0; }
bool vString::operator!=(char const* o) const { return std::strcmp(m_data, o ? o : "") != 0; }
bool vString::operator<(vString const& o) const { return std::strcmp(m_data, o.m_data) < 0; }
bool vString::operator<(char const* o) const { return std::strcmp(m_data, o ? o : "") < 0; }
bool vString::operator<=(vString const& o) const { return std::strcmp(m_data, o.m_data) <= 0; }
bool vString::operator<=(char const* o) const { return std::strcmp(m_data, o ? o : "") <= 0; }
bool vString::operator>(vString const& o) const { return std::strcmp(m_data, o.m_data) > 0; }
bool vString::operator>(char const* o) const { return std::strcmp(m_data, o ? o : "") > 0; }
bool vString::operator>=(vString const& o) const { return std::strcmp(m_data, o.m_data) >= 0; }
bool vString::operator>=(char const* o) const { return std::strcmp(m_data, o ? o : "") >= 0; }

int vString::stricmp(char const* a, char const* b) {
  if (!a) a = "";
  if (!b) b = "";
  for (;; ++a, ++b) {
    char const ca = asciiLower(*a);
    char const cb = asciiLower(*b);
    if (ca != cb || ca == 0) return static_cast<unsigned char>(ca) - static_cast<unsigned char>(cb);
  }
}

int vString::stricmp(vString const& o) const { return stricmp(m_data, o.m_data); }
int vString::stricmp(char const* o) const { return stricmp(m_data, o); }

bool operator==(char const* a, vString const& b) { return b == a; }
bool operator!=(char const* a, vString const& b) { return b != a; }
bool operator<(char const* a, vString const& b) { return b > a; }

// --- streams -------------------------------------------------------------------

std::istream& vString::getQuotedString(std::istream& in, bool ignoreQuotes) {
  erase();
  in >> std::ws;
  int c = in.peek();
  if (c == std::char_traits<char>::eof()) {
    in.setstate(std::ios::failbit);
    return in;
  }
  std::string text;
  if (!ignoreQuotes && (c == '"' || c == '\'')) {
    int const mark = in.get();
    while ((c = in.get()) != std::char_traits<char>::eof() && c != mark) text += static_cast<char>(c);
    if (c == std::char_traits<char>::eof()) in.clear(in.rdstate() & ~std::ios::failbit);
  } else {
    text += static_cast<char>(in.get());
    while ((c = in.peek()) != std::char_traits<char>::eof() && c != ' ' && c != '\t' && c != '\n')
      text += static_cast<char>(in.get());
  }
  *this = text.c_str();
  return in;
}

std::ostream& operator<<(std::ostream& out, vString const& s) { return out << s.c_str(); }
std::istream& operator>>(std::istream& in, vString& s) { return s.getQuotedString(in, false); }

// --- environment and formatting ------------------------------------------------

void vString::expandEnvironment() {
  vString result;
  vString rest(*this);
  for (;;) {
    int const open = rest.vString::search("${", 0);
    if (open < 0) {
      result.myAppend(rest.m_data, rest.m_length);
      break;
    }
    result.myAppend(rest.m_data, static_cast<unsigned int>(open));
    vString after = rest.substr(static_cast<unsigned int>(open) + 2);
    int const close = after.vString::search('}');
    if (close < 0) {
      result.myAppend("${", 2);
      result.myAppend(after.m_data, after.m_length);
      break;
    }
    vString name = after.substr(0, static_cast<unsigned int>(close));
    vString value;
    if (vUtl::getenv(name.c_str(), value)) {
      result.myAppend(value.m_data, value.m_length);
    } else {
      result.myAppend("${", 2);
      result.myAppend(name.m_data, name.m_length);
      result.myAppend("}", 1);
    }
    rest = after.substr(static_cast<unsigned int>(close) + 1);
  }
  *this = result;
}

void vString::myVPrintf(char const* method, char const* errorMethod, char const* format, va_list args) {
  vString fmt(format);
  char buffer[10240];
  int n = -1;
  try {
    vUtl::reformatInt64(fmt);
    n = std::vsnprintf(buffer, sizeof buffer, fmt.c_str(), args);
  } catch (...) {
    Message::fatal(method, 0,
                   "Exception while printing format '%s'. Check for using %%d when printing vInstances, use %%lld "
                   "instead.",
                   format);
  }
  if (n < 0) Message::fatal(errorMethod, 0, "Error writing message with format '%s'", format);
  if (n >= static_cast<int>(sizeof buffer)) Message::fatal(method, 0, "Message buffer overflow for format '%s'", format);
  myAssign(buffer, static_cast<unsigned int>(n));
  myFold();
}

void vString::printf(char const* format, ...) {
  va_list args;
  va_start(args, format);
  try {
    myVPrintf("vString::printf", "vStrinf::printf", format, args);
  } catch (...) {
    va_end(args);
    throw;
  }
  va_end(args);
}
