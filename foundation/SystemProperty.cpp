#include "foundation/SystemProperty.h"

#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <istream>
#include <string>
#include <ostream>

#include "foundation/Message.h"

namespace {

char const* const kRead = "SystemProperty::operator>>";

// Decimal, or hexadecimal after "0x": a leading zero is no octal mark,
// since "0900" in a site file means nine hundred.
int myIntegerBase(char const* text) {
  while (std::isspace(static_cast<unsigned char>(*text))) ++text;
  if (*text == '+' || *text == '-') ++text;
  return (text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) ? 16 : 10;
}

bool isBlankChar(int c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v'; }

// One token of a record: a double-quoted text (backslash escapes the quote
// and itself) or a run of non-blank characters, with what stood before it.
struct Token {
  std::string text;
  bool quoted = false;
  bool lineStart = false;  // the first token of its line
  std::string gap;         // the blanks between it and the token before
};

// Tokens of a record stream, with one token of look-ahead.
class RecordLexer {
 public:
  explicit RecordLexer(std::istream& in) : m_in(in), m_hasPending(false), m_open(false) {}

  // False at the end of the stream, or inside an open quote (openQuote()).
  bool next(Token& t) {
    if (m_hasPending) {
      t = m_pending;
      m_hasPending = false;
      return true;
    }
    t = Token();
    for (;;) {
      int c = m_in.peek();
      if (c == std::char_traits<char>::eof()) return false;
      if (!isBlankChar(c)) break;
      m_in.get();
      if (c == '\n') {
        t.lineStart = true;
        t.gap.clear();
      } else {
        t.gap += static_cast<char>(c);
      }
    }
    if (m_in.peek() == '"') {
      t.quoted = true;
      m_in.get();
      for (;;) {
        int c = m_in.get();
        if (c == std::char_traits<char>::eof()) {
          m_open = true;
          return false;
        }
        if (c == '"') break;
        if (c == '\\') {
          int n = m_in.peek();
          if (n == '"' || n == '\\') c = m_in.get();
        }
        t.text += static_cast<char>(c);
      }
    } else {
      for (;;) {
        int c = m_in.peek();
        if (c == std::char_traits<char>::eof() || isBlankChar(c)) break;
        t.text += static_cast<char>(m_in.get());
      }
    }
    return true;
  }
  void push(Token const& t) {
    m_pending = t;
    m_hasPending = true;
  }
  bool openQuote() const { return m_open; }
  // Drops the rest of the current line (a comment).
  void skipLine() {
    std::string rest;
    std::getline(m_in, rest);
  }

 private:
  std::istream& m_in;
  Token m_pending;
  bool m_hasPending;
  bool m_open;
};

char const* const kKeywords[] = {"name=", "package=", "description=", "value="};

bool isKeyword(std::string const& text) {
  for (char const* k : kKeywords)
    if (vString::stricmp(text.c_str(), k) == 0) return true;
  return false;
}

// The keyword that a token such as "name=PING" begins with, or null.
char const* attachedKeyword(std::string const& text) {
  for (char const* k : kKeywords) {
    std::size_t const n = std::strlen(k);
    if (text.size() > n && vString::stricmp(text.substr(0, n).c_str(), k) == 0) return k;
  }
  return nullptr;
}

// A word that ends a value written without quotes: a keyword, any other
// word ending in '=' (so that a misspelt keyword is still refused), or a
// record bracket.
bool endsAValue(Token const& t) {
  if (t.quoted || t.lineStart) return true;
  if (t.text.empty() || t.text.back() == '=' || attachedKeyword(t.text) != nullptr) return true;
  return vString::stricmp(t.text.c_str(), "SystemProperty>") == 0 ||
         vString::stricmp(t.text.c_str(), "<SystemProperty") == 0;
}

// Adds to a value written without quotes the further words of its line, as
// they stand, up to the next keyword: so "description= ping command" is
// one description.
void myRestOfValue(RecordLexer& lex, std::string& value) {
  Token w;
  while (lex.next(w)) {
    if (endsAValue(w)) {
      lex.push(w);
      return;
    }
    value += w.gap;
    value += w.text;
  }
}

void myWriteQuoted(std::ostream& out, vString const& text) {
  out << '"';
  for (unsigned int i = 0; i < text.length(); ++i) {
    char c = text[static_cast<int>(i)];
    if (c == '"' || c == '\\') out << '\\';
    out << c;
  }
  out << '"';
}

[[noreturn]] void myEndedEarly() {
  Message::fatal(kRead, 0, "The system property record ended before 'SystemProperty>'.");
}

}  // namespace

SystemProperty::SystemProperty() {}

SystemProperty::SystemProperty(vUCString const& section, vUCString const& name, vString const& description,
                               std::vector<vString> const& values)
    : m_section(section), m_name(name), m_description(description), m_values(values) {}

SystemProperty::SystemProperty(SystemProperty const& other)
    : m_section(other.m_section), m_name(other.m_name), m_description(other.m_description), m_values(other.m_values) {}

SystemProperty& SystemProperty::operator=(SystemProperty const& other) {
  if (this != &other) {
    m_section = other.m_section;
    m_name = other.m_name;
    m_description = other.m_description;
    m_values = other.m_values;
  }
  return *this;
}

SystemProperty::~SystemProperty() {}

int SystemProperty::getNValues() const { return static_cast<int>(m_values.size()); }

void SystemProperty::myCheckIndex(int index, char const* method) const {
  if (index < 0 || index >= getNValues()) Message::fatal(method, 0, "The value at index %d does not exists! ", index);
}

vString const& SystemProperty::getValue(int index) const {
  myCheckIndex(index, "SystemProperty::getValue");
  return m_values[static_cast<size_t>(index)];
}

void SystemProperty::getValue(int index, vString& value) const { value = getValue(index); }

int32_t SystemProperty::getInt32Value(int index) const {
  myCheckIndex(index, "SystemProperty::getInt32Value");
  vString const& text = m_values[static_cast<size_t>(index)];
  char const* begin = text.c_str();
  char* end = nullptr;
  errno = 0;
  long long v = std::strtoll(begin, &end, myIntegerBase(begin));
  while (end && isBlankChar(static_cast<unsigned char>(*end))) ++end;
  if (end == begin || *end != '\0' || errno == ERANGE || v < INT32_MIN || v > INT32_MAX)
    Message::fatal("SystemProperty::getInt32Value", 0, "The value '%s' at index %d is not a 32-bit integer! ",
                   text.c_str(), index);
  return static_cast<int32_t>(v);
}

double SystemProperty::getFloat64Value(int index) const {
  myCheckIndex(index, "SystemProperty::getFloat64Value");
  vString const& text = m_values[static_cast<size_t>(index)];
  char const* begin = text.c_str();
  char* end = nullptr;
  errno = 0;
  double v = std::strtod(begin, &end);
  while (end && isBlankChar(static_cast<unsigned char>(*end))) ++end;
  if (end == begin || *end != '\0' || (errno == ERANGE && std::isinf(v)))
    Message::fatal("SystemProperty::getFloat64Value", 0, "The value '%s' at index %d is not a number! ", text.c_str(),
                   index);
  return v;
}

bool SystemProperty::isTrueText(vString const& text) {
  static char const* const kTrue[] = {"y", "yes", "t", "true", "e", "enabled", "on"};
  vString t(text);
  t.strip();
  for (char const* word : kTrue)
    if (vString::stricmp(t.c_str(), word) == 0) return true;
  return false;
}

bool SystemProperty::getBoolValue(int index) const {
  myCheckIndex(index, "SystemProperty::getBoolValue");
  return isTrueText(m_values[static_cast<size_t>(index)]);
}

void SystemProperty::setComponents(vUCString const& section, vUCString const& name, vString const& description,
                                   std::vector<vString> const& values) {
  m_section = section;
  m_name = name;
  m_description = description;
  m_values = values;
}

void SystemProperty::addValue(vString const& value) { m_values.push_back(value); }

void SystemProperty::clear() {
  m_section.erase();
  m_name.erase();
  m_description.erase();
  m_values.clear();
}

bool SystemProperty::operator==(SystemProperty const& other) const {
  return m_section == other.m_section && m_name == other.m_name && m_description == other.m_description &&
         m_values == other.m_values;
}

bool SystemProperty::operator!=(SystemProperty const& other) const { return !(*this == other); }

bool SystemProperty::operator<(SystemProperty const& other) const {
  if (m_section != other.m_section) return m_section < other.m_section;
  return m_name < other.m_name;
}

std::istream& operator>>(std::istream& in, SystemProperty& property) {
  RecordLexer lex(in);
  Token token;
  for (;;) {
    if (!lex.next(token)) {
      if (lex.openQuote()) myEndedEarly();
      in.setstate(std::ios::failbit);
      return in;
    }
    if (token.quoted || token.text[0] != '#') break;
    lex.skipLine();
  }
  if (token.quoted || vString::stricmp(token.text.c_str(), "<SystemProperty") != 0)
    Message::fatal(kRead, 0, "Unknown token '%s' where a system property record should start.", token.text.c_str());

  vUCString section, name;
  vString description;
  std::vector<vString> values;
  for (;;) {
    if (!lex.next(token)) myEndedEarly();
    if (!token.quoted && vString::stricmp(token.text.c_str(), "SystemProperty>") == 0) break;
    if (token.quoted) Message::fatal(kRead, 0, "Unknown token '%s' in the system property record.", token.text.c_str());
    // The keyword, and the value: the next token, or what follows the
    // keyword within the same token.
    std::string keyword = token.text;
    std::string value;
    bool valueQuoted = false;
    if (char const* k = attachedKeyword(token.text)) {
      keyword = k;
      value = token.text.substr(std::strlen(k));
    } else if (isKeyword(token.text)) {
      Token v;
      if (!lex.next(v)) myEndedEarly();
      value = v.text;
      valueQuoted = v.quoted;
    } else {
      Message::fatal(kRead, 0, "Unknown token '%s' in the system property record.", token.text.c_str());
    }
    if (!valueQuoted) myRestOfValue(lex, value);
    vString text(value.c_str());
    if (vString::stricmp(keyword.c_str(), "name=") == 0) {
      name = text;
    } else if (vString::stricmp(keyword.c_str(), "package=") == 0) {
      section = text;
    } else if (vString::stricmp(keyword.c_str(), "description=") == 0) {
      description = text;
    } else {
      text.expandEnvironment();
      values.push_back(text);
    }
  }
  if (name.isEmpty()) Message::fatal(kRead, 0, "The system property record has no name.");
  if (section.isEmpty())
    Message::fatal(kRead, 0, "The system property record '%s' has no package.", name.c_str());
  property.setComponents(section, name, description, values);
  return in;
}

std::ostream& operator<<(std::ostream& out, SystemProperty const& property) {
  out << "<SystemProperty name= ";
  myWriteQuoted(out, property.getName());
  out << " package= ";
  myWriteQuoted(out, property.getSection());
  out << " description= ";
  myWriteQuoted(out, property.getDescription());
  for (vString const& v : property.getValues()) {
    out << " value= ";
    myWriteQuoted(out, v);
  }
  out << " SystemProperty>";
  return out;
}
