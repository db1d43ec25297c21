#include "foundation/SystemProperty.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <istream>
#include <string>
#include <ostream>

#include "foundation/Message.h"

namespace {

char const* const kRead = "SystemProperty::operator>>";

bool isBlankChar(int c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v'; }

// Skips white space; false at the end of the stream.
bool mySkipBlanks(std::istream& in) {
  for (;;) {
    int c = in.peek();
    if (c == std::char_traits<char>::eof()) return false;
    if (!isBlankChar(c)) return true;
    in.get();
  }
}

// One token: a double-quoted text (backslash escapes the quote and itself) or
// a run of non-blank characters. False when the stream ends first, or inside
// an open quote.
bool myReadToken(std::istream& in, vString& token, bool& quoted) {
  token.erase();
  quoted = false;
  if (!mySkipBlanks(in)) return false;
  std::string text;
  if (in.peek() == '"') {
    quoted = true;
    in.get();
    for (;;) {
      int c = in.get();
      if (c == std::char_traits<char>::eof()) return false;
      if (c == '"') break;
      if (c == '\\') {
        int n = in.peek();
        if (n == '"' || n == '\\') c = in.get();
      }
      text += static_cast<char>(c);
    }
  } else {
    for (;;) {
      int c = in.peek();
      if (c == std::char_traits<char>::eof() || isBlankChar(c)) break;
      text += static_cast<char>(in.get());
    }
  }
  token = text.c_str();
  return true;
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
  long long v = std::strtoll(begin, &end, 0);
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
  vString token;
  bool quoted = false;
  for (;;) {
    if (!myReadToken(in, token, quoted)) {
      if (quoted) myEndedEarly();
      in.setstate(std::ios::failbit);
      return in;
    }
    if (quoted || token[0] != '#') break;
    std::string rest;
    std::getline(in, rest);
  }
  if (quoted || token.stricmp("<SystemProperty") != 0)
    Message::fatal(kRead, 0, "Unknown token '%s' where a system property record should start.", token.c_str());

  vUCString section, name;
  vString description;
  std::vector<vString> values;
  for (;;) {
    if (!myReadToken(in, token, quoted)) myEndedEarly();
    if (!quoted && token.stricmp("SystemProperty>") == 0) break;
    vString value;
    bool valueQuoted = false;
    if (quoted) {
      Message::fatal(kRead, 0, "Unknown token '%s' in the system property record.", token.c_str());
    } else if (token.stricmp("name=") == 0) {
      if (!myReadToken(in, value, valueQuoted)) myEndedEarly();
      name = value;
    } else if (token.stricmp("package=") == 0) {
      if (!myReadToken(in, value, valueQuoted)) myEndedEarly();
      section = value;
    } else if (token.stricmp("description=") == 0) {
      if (!myReadToken(in, value, valueQuoted)) myEndedEarly();
      description = value;
    } else if (token.stricmp("value=") == 0) {
      if (!myReadToken(in, value, valueQuoted)) myEndedEarly();
      value.expandEnvironment();
      values.push_back(value);
    } else {
      Message::fatal(kRead, 0, "Unknown token '%s' in the system property record.", token.c_str());
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
