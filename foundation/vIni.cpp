#include "foundation/vIni.h"

#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "foundation/Message.h"
#include "foundation/SystemProperty.h"

namespace {

bool isSpace(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }

// Decimal, or hexadecimal after "0x": a leading zero is no octal mark,
// since "0900" in a site file means nine hundred.
int myIntegerBase(char const* text) {
  while (std::isspace(static_cast<unsigned char>(*text))) ++text;
  if (*text == '+' || *text == '-') ++text;
  return (text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) ? 16 : 10;
}

// Whole-text conversions: the value (already stripped) must be all number.
bool myToInt64(vString const& text, int64_t& out) {
  char const* begin = text.c_str();
  char* end = nullptr;
  errno = 0;
  long long v = std::strtoll(begin, &end, myIntegerBase(begin));
  if (end == begin || *end != '\0' || errno == ERANGE) return false;
  out = static_cast<int64_t>(v);
  return true;
}

bool myToDouble(vString const& text, double& out) {
  char const* begin = text.c_str();
  char* end = nullptr;
  errno = 0;
  double v = std::strtod(begin, &end);
  if (end == begin || *end != '\0' || (errno == ERANGE && std::isinf(v))) return false;
  out = v;
  return true;
}

[[noreturn]] void myBadValue(char const* method, vString const& value, vLCString const& section,
                             vLCString const& key, char const* what) {
  Message::fatal(method, 0, "The value '%s' of key '%s' in section '%s' is not a valid %s!", value.c_str(), key.c_str(),
                 section.c_str(), what);
}

}  // namespace

vIni::vIni() {}

vIni::~vIni() {}

void vIni::clear() { m_sections.clear(); }

void vIni::loadFromFile(vString const& path) {
  std::ifstream in(path.c_str(), std::ios::in | std::ios::binary);
  if (!in.is_open()) Message::fatal("vIni::loadFromFile", 0, "Unable to open the INI file '%s'!", path.c_str());
  myLoad(in);
}

void vIni::loadFromMemory(vString const& text) {
  std::istringstream in(std::string(text.c_str(), text.length()));
  myLoad(in);
}

void vIni::loadFromStream(std::istream& in) { myLoad(in); }

void vIni::myLoad(std::istream& in) {
  Section* current = nullptr;
  std::string raw;
  while (std::getline(in, raw)) {
    size_t first = 0;
    while (first < raw.size() && isSpace(raw[first])) ++first;
    size_t last = raw.size();
    while (last > first && isSpace(raw[last - 1])) --last;
    if (first == last) continue;
    char lead = raw[first];
    if (lead == ';' || lead == '#') continue;

    if (lead == '[' && raw[last - 1] == ']' && last - first >= 3) {
      vLCString name(raw.substr(first + 1, last - first - 2).c_str());
      name.strip();
      current = nullptr;
      for (Section& s : m_sections)
        if (s.name == name) current = &s;
      if (!current) {
        m_sections.push_back(Section());
        m_sections.back().name = name;
        current = &m_sections.back();
      }
      continue;
    }
    if (!current) continue;

    // The value keeps what was written after '=', up to the line end (a
    // carriage return of a DOS line end is not part of it).
    std::string line = raw.substr(first);
    if (!line.empty() && line[line.size() - 1] == '\r') line.erase(line.size() - 1);
    size_t eq = line.find('=');
    vLCString key;
    vString value;
    if (eq == std::string::npos) {
      key = line.c_str();
    } else {
      key = line.substr(0, eq).c_str();
      value = line.substr(eq + 1).c_str();
    }
    key.strip();
    bool known = false;
    for (KeyValue const& kv : current->entries)
      if (kv.first == key) known = true;
    if (!known) current->entries.push_back(KeyValue(key, value));
  }
}

vIni::Section const* vIni::myFindSection(vLCString const& section) const {
  for (Section const& s : m_sections)
    if (s.name == section) return &s;
  return nullptr;
}

vIni::KeyValue const* vIni::myFindKey(vLCString const& section, vLCString const& key) const {
  Section const* s = myFindSection(section);
  if (!s) return nullptr;
  for (KeyValue const& kv : s->entries)
    if (kv.first == key) return &kv;
  return nullptr;
}

bool vIni::myGetStripped(vLCString const& section, vLCString const& key, vString& value) const {
  KeyValue const* kv = myFindKey(section, key);
  if (!kv) return false;
  value = kv->second;
  value.trimRight();
  value.trimLeft();
  return true;
}

bool vIni::doesSectionExist(vLCString const& section) const { return myFindSection(section) != nullptr; }

bool vIni::doesKeyExist(vLCString const& section, vLCString const& key) const {
  return myFindKey(section, key) != nullptr;
}

vString vIni::getString(vLCString const& section, vLCString const& key, vString const& defaultValue) const {
  KeyValue const* kv = myFindKey(section, key);
  return kv ? kv->second : defaultValue;
}

std::vector<vString> vIni::getStringDelimited(vLCString const& section, vLCString const& key,
                                              vString const& delimiters) const {
  std::vector<vString> parts;
  KeyValue const* kv = myFindKey(section, key);
  if (!kv) return parts;
  std::string text(kv->second.c_str(), kv->second.length());
  std::string delims(delimiters.c_str(), delimiters.length());
  size_t pos = 0;
  for (;;) {
    size_t end = text.find_first_of(delims, pos);
    vString part(text.substr(pos, end == std::string::npos ? std::string::npos : end - pos).c_str());
    part.trimRight();
    part.trimLeft();
    if (!part.isEmpty()) parts.push_back(part);
    if (end == std::string::npos) break;
    pos = end + 1;
  }
  return parts;
}

bool vIni::getBool(vLCString const& section, vLCString const& key, bool defaultValue) const {
  vString value;
  if (!myGetStripped(section, key, value)) return defaultValue;
  return SystemProperty::isTrueText(value);
}

int32_t vIni::getInt32(vLCString const& section, vLCString const& key, int32_t defaultValue) const {
  vString value;
  if (!myGetStripped(section, key, value)) return defaultValue;
  int64_t v = 0;
  if (!myToInt64(value, v) || v < INT32_MIN || v > INT32_MAX)
    myBadValue("vIni::getInt32", value, section, key, "32-bit integer");
  return static_cast<int32_t>(v);
}

int64_t vIni::getInt64(vLCString const& section, vLCString const& key, int64_t defaultValue) const {
  vString value;
  if (!myGetStripped(section, key, value)) return defaultValue;
  int64_t v = 0;
  if (!myToInt64(value, v)) myBadValue("vIni::getInt64", value, section, key, "64-bit integer");
  return v;
}

float vIni::getFloat32(vLCString const& section, vLCString const& key, float defaultValue) const {
  vString value;
  if (!myGetStripped(section, key, value)) return defaultValue;
  double v = 0;
  if (!myToDouble(value, v) || (std::isfinite(v) && std::fabs(v) > 3.4028234663852886e38))
    myBadValue("vIni::getFloat32", value, section, key, "32-bit float");
  return static_cast<float>(v);
}

double vIni::getFloat64(vLCString const& section, vLCString const& key, double defaultValue) const {
  vString value;
  if (!myGetStripped(section, key, value)) return defaultValue;
  double v = 0;
  if (!myToDouble(value, v)) myBadValue("vIni::getFloat64", value, section, key, "64-bit float");
  return v;
}

int vIni::getNKeys(vLCString const& section) const {
  Section const* s = myFindSection(section);
  return s ? static_cast<int>(s->entries.size()) : 0;
}

std::vector<vLCString> vIni::getSections() const {
  std::vector<vLCString> names;
  for (Section const& s : m_sections) names.push_back(s.name);
  return names;
}

std::vector<vLCString> vIni::getKeys(vLCString const& section) const {
  std::vector<vLCString> keys;
  if (Section const* s = myFindSection(section))
    for (KeyValue const& kv : s->entries) keys.push_back(kv.first);
  return keys;
}

std::vector<vString> vIni::getValues(vLCString const& section) const {
  std::vector<vString> values;
  if (Section const* s = myFindSection(section))
    for (KeyValue const& kv : s->entries) values.push_back(kv.second);
  return values;
}

std::vector<vIni::KeyValue> vIni::getKeysAndValues(vLCString const& section) const {
  Section const* s = myFindSection(section);
  return s ? s->entries : std::vector<KeyValue>();
}
