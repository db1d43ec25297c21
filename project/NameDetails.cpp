#include "project/NameDetails.h"

#include "foundation/Message.h"

namespace {

// The text up to the next separator, consumed; the whole rest when there is
// none, or when `last` asks for it.
vString nextPart(vString& rest, bool last) {
  int pos = last ? -1 : rest.search(NameDetails::kSeparator);
  vString part;
  if (pos < 0) {
    part = rest;
    rest.erase();
  } else {
    unsigned int p = static_cast<unsigned int>(pos);
    part = p > 0 ? rest.substr(0, p) : vString();
    rest = rest.substr(p + 1);
  }
  part.toUpperCase();
  return part;
}

}  // namespace

NameDetails::NameDetails() : m_project(nullptr) {}

NameDetails::NameDetails(vString const& name, NameDetailsCompleter* project, bool complete) : m_project(project) {
  if (complete)
    myComplete(name);
  else
    load(name);
}

bool NameDetails::myComplete(vString const& name) {
  vString rest(name);
  bool const geometry = nextPart(rest, false) == "SGD";
  int const separators = name.count(kSeparator);
  if (m_project == nullptr || name.isBlank() || separators >= 3 || (geometry && separators == 2)) {
    load(name);
    return false;
  }
  vString given(name), ident, type, version("0");
  bool const found = m_project->locateNameComponents(given, ident, type, version);
  // Not in the project, and no type to make it with: the name is short.
  if (type.isBlank()) {
    load(name);
    return false;
  }
  ident.toUpperCase();
  type.toUpperCase();
  version.toUpperCase();
  m_ident = ident;
  m_type = type;
  m_version = version;
  m_domain = type == "SGD" ? vString() : vString("*");
  return found;
}

bool NameDetails::update() {
  if (m_project == nullptr || m_ident.isBlank() || m_type.isBlank()) return false;
  vString key(m_ident);
  key += vString(kSeparator);
  key += m_type;
  vString ident, type;
  if (!m_project->findBestMatch(key, ident, type)) return false;
  // A version that is not a number is found by its text, as a third part.
  vString version(m_version.isBlank() ? vString("0") : m_version);
  vString name(ident);
  name += vString(kSeparator);
  name += type;
  if (!version.isInteger()) {
    name += vString(kSeparator);
    name += version;
  }
  if (!m_project->locateNameComponents(name, ident, type, version)) return false;
  ident.toUpperCase();
  type.toUpperCase();
  version.toUpperCase();
  m_ident = ident;
  m_type = type;
  m_version = version;
  if (m_domain.isBlank() && type != "SGD") m_domain = "*";
  return true;
}

void NameDetails::load(vString const& name) {
  if (name.isEmpty()) {
    m_type.erase();
    m_version.erase();
    m_ident.erase();
    m_domain.erase();
    return;
  }
  vString rest(name);
  vString type = nextPart(rest, false);
  vString version = nextPart(rest, false);
  vString ident = nextPart(rest, false);
  vString domain = nextPart(rest, true);
  if (domain.isBlank() && type != "SGD")
    Message::fatal("NameDetails::load", 0,
                   "Store names for Zonmesh have to have 4 parts separated by %c. Type%cversion%cident%cdomain. '%s' "
                   "does not do this.",
                   kSeparator, kSeparator, kSeparator, kSeparator, name.c_str());
  m_type = type;
  m_version = version;
  m_ident = ident;
  m_domain = domain;
}

void NameDetails::buildName(vString const& type, vString const& version, vString const& ident, vString const& domain,
                            vString& text) {
  if (domain.isBlank())
    text.printf("%s%c%s%c%s", type.c_str(), kSeparator, version.c_str(), kSeparator, ident.c_str());
  else
    text.printf("%s%c%s%c%s%c%s", type.c_str(), kSeparator, version.c_str(), kSeparator, ident.c_str(), kSeparator,
                domain.c_str());
}

void NameDetails::getName(vString& text) const { buildName(m_type, m_version, m_ident, m_domain, text); }

vString NameDetails::getName() const {
  vString text;
  getName(text);
  return text;
}

bool NameDetails::operator==(NameDetails const& other) const {
  return m_type == other.m_type && m_version == other.m_version && m_ident == other.m_ident &&
         m_domain == other.m_domain && m_project == other.m_project;
}
