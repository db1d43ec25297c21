#include "project/FullStoreName.h"

#include "foundation/Message.h"
#include "foundation/SystemPropertyManager.h"
#include "foundation/vUCString.h"

namespace {

char const* const kConstructorLabel = "FullStoreName::FullStoreName()";

// The value of CAPI/<name>, or the fallback when the property is not set.
vString capiProperty(char const* name, char const* fallback) {
  vUCString section("CAPI");
  vUCString key(name);
  if (!SystemPropertyManager::hasSystemProperty(section, key)) return vString(fallback);
  SystemProperty property = SystemPropertyManager::getSystemProperty(section, key);
  if (property.getNValues() < 1) return vString(fallback);
  return property.getValue(0);
}

}  // namespace

FullStoreName::FullStoreName() : m_version(0) {}

FullStoreName::FullStoreName(vString const& text) : m_version(0) {
  int pos = 0;
  if (text.searchForLast(kSeparator, pos) == 0) {
    unsigned int p = static_cast<unsigned int>(pos);
    sortProjectName(p > 0 ? text.substr(0, p) : vString());
    myParseStorePart(text.substr(p + 1), true);
  } else {
    myParseStorePart(text, true);
  }
}

FullStoreName::FullStoreName(vString const& text, int version) : m_version(version) {
  int pos = 0;
  if (text.searchForLast(kSeparator, pos) == 0) {
    unsigned int p = static_cast<unsigned int>(pos);
    sortProjectName(p > 0 ? text.substr(0, p) : vString());
    myParseStorePart(text.substr(p + 1), false);
  } else {
    myParseStorePart(text, false);
  }
}

FullStoreName::FullStoreName(FullProjectName const& project, vLCString const& store, int version,
                             vLCString const& attributeSet)
    : FullProjectName(project), m_store(store), m_version(version), m_attributeSet(attributeSet) {
  myCheckParts();
}

FullStoreName::FullStoreName(ProjectType::PROJECT_TYPE type, vString const& server, vString const& host,
                             vLCString const& project, vLCString const& store, int version,
                             vLCString const& attributeSet)
    : FullProjectName(type, server, host, project), m_store(store), m_version(version), m_attributeSet(attributeSet) {
  myCheckParts();
}

FullStoreName::FullStoreName(vString const& typeName, vString const& server, vString const& host,
                             vLCString const& project, vLCString const& store, int version,
                             vLCString const& attributeSet)
    : FullProjectName(typeName, server, host, project),
      m_store(store),
      m_version(version),
      m_attributeSet(attributeSet) {
  myCheckParts();
}

FullStoreName::~FullStoreName() {}

void FullStoreName::myParseStorePart(vString const& text, bool withVersionAndSet) {
  vString name(text);
  if (withVersionAndSet) {
    int pos = 0;
    if (name.searchForLast('/', pos) == 0) {
      unsigned int p = static_cast<unsigned int>(pos);
      m_attributeSet = name.substr(p + 1);
      name = p > 0 ? name.substr(0, p) : vString();
    }
    if (name.searchForLast('.', pos) == 0) {
      unsigned int p = static_cast<unsigned int>(pos);
      vString tail = name.substr(p + 1);
      if (tail.isInteger()) {
        m_version = tail.readi();
        name = p > 0 ? name.substr(0, p) : vString();
      }
    }
  }
  m_store = name;
  if (!myIsValidStoreName(m_store)) Message::fatal(kConstructorLabel, 0, "Invalid store name '%s'", m_store.c_str());
}

bool FullStoreName::myCheckForVersion(vLCString const& name) {
  int pos = 0;
  if (name.searchForLast('.', pos) != 0) return false;
  unsigned int p = static_cast<unsigned int>(pos);
  vString tail = name.substr(p + 1);
  if (!tail.isInteger()) return false;
  vLCString left = p > 0 ? name.substr(0, p) : vString();
  if (!myIsValidStoreName(left)) return false;
  m_store = left;
  m_version = tail.readi();
  return true;
}

void FullStoreName::myCheckParts() {
  if (myIsValidStoreName(m_store)) return;
  vLCString given(m_store);
  if (m_version == 0 && myCheckForVersion(given)) return;
  Message::fatal(kConstructorLabel, 0, "Invalid dataset name '%s' ", given.c_str());
}

bool FullStoreName::myIsValidStoreName(vLCString const& name) {
  // Looked up once per process: names are checked far more often than the
  // site configuration changes.
  static vString const charset = capiProperty("FULLSTORENAMECHARSET", "0123456789abcdefghijklmnopqrstuvwxyz_-,");
  if (name.find_first_not_of(charset) < 0) return true;
  static bool const allowBad = [] {
    vLCString allow(capiProperty("ALLOWBADNAMES", ""));
    return allow == "yes";
  }();
  return allowBad;
}

vString FullStoreName::getBriefName() const {
  if (m_version < 0) return vString();
  vString brief(m_store);
  if (m_version > 0) {
    brief += '.';
    brief += vString::number(m_version);
  }
  return brief;
}

vString FullStoreName::getFullName() const {
  vString name = myProjectFullName();
  name += kSeparator;
  name += getBriefName();
  if (!m_attributeSet.isBlank()) {
    name += '/';
    name += m_attributeSet;
  }
  if (name.length() > 0 && name[0] == kSeparator) name = name.substr(1);
  return name;
}

bool FullStoreName::operator==(FullStoreName const& other) const {
  return FullProjectName::operator==(other) && m_store == other.m_store && m_version == other.m_version &&
         m_attributeSet == other.m_attributeSet;
}

bool FullStoreName::operator<(FullStoreName const& other) const {
  if (FullProjectName::operator<(other)) return true;
  if (other.FullProjectName::operator<(*this)) return false;
  if (m_store != other.m_store) return m_store < other.m_store;
  if (m_version != other.m_version) return m_version < other.m_version;
  return m_attributeSet < other.m_attributeSet;
}
