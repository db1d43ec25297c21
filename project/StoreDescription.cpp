#include "project/StoreDescription.h"

#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <tuple>
#include <utility>

#include "foundation/Message.h"

namespace {

// --- the live in-memory stores that descriptions were made of ---------------
//
// An in-memory name carries the store's address as a number. The address
// is turned back into a store only through this table, which holds a slave
// handle of every in-memory store that a description was made of: an
// address that no live store of this process answers to is refused, never
// followed.

std::map<int64_t, vHandle<Store>>& inMemoryStores() {
  static std::map<int64_t, vHandle<Store>> stores;
  return stores;
}

int64_t addressOf(Store const* store) {
  return static_cast<int64_t>(reinterpret_cast<uintptr_t>(store));
}

void registerInMemoryStore(vHandle<Store> const& store) {
  auto& stores = inMemoryStores();
  for (auto it = stores.begin(); it != stores.end();) {
    if (it->second.isEmpty())
      it = stores.erase(it);
    else
      ++it;
  }
  int64_t address = addressOf(store.pointer());
  stores.erase(address);
  // Made in place: a copy of a slave handle would be a master, and would
  // keep the store alive.
  stores.emplace(std::piecewise_construct, std::forward_as_tuple(address), std::forward_as_tuple(store, true));
}

// --- text helpers -------------------------------------------------------------

std::string lower(std::string s) {
  for (char& c : s)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return s;
}

bool isLetterOrDigit(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'); }

bool isAlphanumeric(std::string const& s) {
  for (char c : s)
    if (!isLetterOrDigit(c) && c != '_' && c != '-') return false;
  return true;
}

// Alphanumeric, '/', and up to two '#': a Kelp project.
bool isAlphanumericWithHash(std::string const& s) {
  int hashes = 0;
  for (char c : s) {
    if (c == '#') {
      if (++hashes > 2) return false;
    } else if (!isLetterOrDigit(c) && c != '_' && c != '-' && c != '/') {
      return false;
    }
  }
  return true;
}

bool isFileNameCharacters(std::string const& s, bool allowComma) {
  for (char c : s)
    if (!isLetterOrDigit(c) && c != '/' && c != '\\' && c != '_' && c != '-' && c != '.' && !(allowComma && c == ','))
      return false;
  return true;
}

bool isNumeric(std::string const& s) {
  for (char c : s)
    if (c < '0' || c > '9') return false;
  return true;
}

// The characters of a store: a letter or digit first, then letters, digits
// and _ - \ / # . = , with one '.' at most. On failure the text splits at
// the first offending character, which belongs to neither part.
bool isStoreCharacters(std::string const& s, std::string& prefix, std::string& rest) {
  if (s.empty() || !isLetterOrDigit(s[0])) {
    prefix.clear();
    rest = s;
    return false;
  }
  bool dot = false;
  for (std::size_t i = 1; i < s.size(); ++i) {
    char c = s[i];
    bool ok = isLetterOrDigit(c) || c == '_' || c == '-' || c == '\\' || c == '/' || c == '#' || c == '=' || c == ',';
    if (c == '.') {
      ok = !dot;
      dot = true;
    }
    if (!ok) {
      prefix = s.substr(0, i);
      rest = s.substr(i + 1);
      return false;
    }
  }
  return true;
}

// Splits at the first ':'; false, and nothing moved, when there is none.
bool splitAtColon(std::string& rest, std::string& field) {
  std::size_t pos = rest.find(':');
  if (pos == std::string::npos) return false;
  field = rest.substr(0, pos);
  rest = rest.substr(pos + 1);
  return true;
}

enum Kind { kDorn, kRondo, kKelp, kZonmesh, kFile, kInMemory, kUnchecked, kNone };

Kind kindOf(std::string const& word) {
  if (word.empty() || word == "dorn" || word == "d") return kDorn;
  if (word == "rondo" || word == "r") return kRondo;
  if (word == "kelp" || word == "k") return kKelp;
  if (word == "zonmesh" || word == "zon" || word == "z") return kZonmesh;
  if (word == "file" || word == "f" || word == "flatfile") return kFile;
  if (word == "inmemory" || word == "i") return kInMemory;
  if (word == "notype" || word == "unittest" || word == "sharedmemory") return kUnchecked;
  return kNone;
}

char const* const kInvalidStore = " <- ERROR store contains invalid character ...";

bool validateProjectAndStore(std::string const& project, std::string const& store, std::string& message) {
  std::string prefix;
  std::string rest;
  if (!isAlphanumeric(project))
    message = project + " <- ERROR project contains invalid character ..." + ":" + store;
  else if (!project.empty() && store.empty())
    message = project + ":" + " <- ERROR expected project:store";
  else if (!isStoreCharacters(store, prefix, rest))
    message = project + ":" + prefix + kInvalidStore + rest;
  return message.empty();
}

bool validateZonmesh(std::string const& t, std::string r, std::string& message) {
  std::string s;
  if (!splitAtColon(r, s)) {
    s = r;
    r.clear();
    if (!s.empty()) {
      message = t + ":" + s + "Zonmesh has no server so \"" + s + "\" is invalid";
      return false;
    }
  }
  std::string h;
  std::string before = r;
  if (!splitAtColon(r, h)) {
    message = t + ":" + s + ": <- ERROR expected host (which may be null) ..." + before;
    return false;
  }
  std::string p;
  before = r;
  if (!splitAtColon(r, p)) {
    message = t + ":" + s + h + ": <- ERROR expected project  ..." + before;
    return false;
  }
  if (r.empty()) {
    message = t + ":" + s + h + ":" + p + ": <- ERROR expected store name  ..." + r;
    return false;
  }
  return true;
}

bool validateInMemory(std::string const& t, std::string const& r, std::string& message) {
  std::size_t dot = r.find('.');
  std::string store = dot == std::string::npos ? r : r.substr(0, dot);
  std::string address = dot == std::string::npos ? std::string() : r.substr(dot + 1);
  std::string prefix;
  std::string rest;
  // Once the store part is split off, the address is the text not yet
  // read: both reports end with it.
  if (store.empty() || !isStoreCharacters(store, prefix, rest)) {
    message = t + ":" + store + " <- ERROR invalid store name ..." + address;
    return false;
  }
  if (!isNumeric(address)) {
    message = t + ":" + store + "." + address + " <- ERROR invalid address ..." + address;
    return false;
  }
  return true;
}

bool validateFile(std::string const& t, std::string r, std::string& message) {
  if (r.empty()) {
    message = t + ": <- ERROR no file name";
    return false;
  }
  std::size_t hash = r.find('#');
  if (hash == 0) {
    message = t + ":" + " <- ERROR no filename before format ..." + r;
    return false;
  }
  if (hash != std::string::npos) r = r.substr(0, hash);

  std::size_t equals = r.find('=');
  if (equals != std::string::npos) {
    // A Nyx file list: key=file,file,...
    std::string files = r.substr(equals + 1);
    if (!isFileNameCharacters(files, true)) {
      message = files + " <- ERROR filename contains illegal characters ..." + r;
      return false;
    }
    return true;
  }

  std::string host;
  std::string file = r;
  std::size_t colon = r.find(':');
  if (colon != std::string::npos) {
    std::string first = r.substr(0, colon);
    std::string second = r.substr(colon + 1);
    if (second.find('#') != std::string::npos || second.empty()) {
      file = first;
    } else {
      host = first;
      file = second;
    }
  }
  // These faults add up rather than stop the check.
  if (!isAlphanumeric(host)) message += t + ":" + host + " <- ERROR unrecognised hostname ..." + r;
  if (!isFileNameCharacters(file, false))
    message += t + ":" + host + ":" + file + " <- ERROR filename contains illegal characters ..." + r;
  if (file.empty()) message += t + ":" + host + ":" + file + " <- ERROR no filename found ..." + r;
  return message.empty();
}

// Dorn, Rondo and Kelp names, and a name with an empty type word, taken as
// Dorn.
bool validateServed(Kind kind, std::string const& t, std::string const& whole, std::string r, int nColons,
                    std::string& message) {
  std::string prefix;
  std::string rest;
  if (!t.empty() && r.empty()) {
    message = whole + " <- ERROR no store name or server";
    return false;
  }
  if ((kind == kRondo || kind == kKelp) && nColons == 1) {
    if (!isStoreCharacters(r, prefix, rest)) {
      message = t + ":" + prefix + kInvalidStore + rest;
      return false;
    }
    return true;
  }

  std::string s;
  std::string h;
  std::string p;
  std::string before = r;
  if (splitAtColon(r, s)) {
    before = r;
    if (!splitAtColon(r, h)) {
      message = t + ":" + s + ":" + " <- ERROR expected host  ..." + before;
      return false;
    }
    before = r;
    if (!splitAtColon(r, p)) {
      message = t + ":" + s + ":" + h + ":" + " <- ERROR expected project:store  ..." + before;
      return false;
    }
  }
  bool (*projectClass)(std::string const&) = kind == kKelp ? isAlphanumericWithHash : isAlphanumeric;
  if (!p.empty() && !projectClass(p)) message = t + ":" + s + ":" + h + ":" + p + " <- ERROR invalid project name  ..." + r;
  std::string const store = r;
  if (!message.empty()) return false;

  std::string const echo = t + ":" + s + ":" + h + ":" + p + ":";
  if (kind != kRondo && !isAlphanumeric(s)) {
    message = t + ":" + s + " <- ERROR server contains invalid characters ..." + ":" + h + ":" + p + ":" + store;
  } else if (!isAlphanumeric(h)) {
    message = t + ":" + s + ":" + h + " <- ERROR host contains invalid character ..." + ":" + p + ":" + store;
  } else if (!projectClass(p)) {
    message = t + ":" + s + ":" + h + ":" + p + " <- ERROR project contains invalid character ..." + ":" + store;
  } else if (store.empty()) {
    message = echo + " <- ERROR expected store ..." + r;
  } else if (store[0] == ':') {
    message = echo + ": <- ERROR too many : ... " + store.substr(1);
  } else if (!isStoreCharacters(store, prefix, rest)) {
    message = echo + prefix + kInvalidStore + rest;
  } else {
    std::size_t dot = store.find('.');
    std::size_t length = dot == std::string::npos ? store.size() : dot;
    std::size_t hash = store.find('#');
    if (kind == kDorn && length > 40) {
      message = echo + store + " <- ERROR a Dorn store name can't be longer than 40 characters ...";
    } else if (kind == kRondo && length > 17) {
      message = echo + store + " <- ERROR a Rondo store name can't be longer than 17 characters ...";
    } else if (hash != std::string::npos && store.find('#', hash + 1) == std::string::npos) {
      message = echo + store + " <- ERROR store class should terminate with #";
    }
  }
  return message.empty();
}

}  // namespace

// --- construction ---------------------------------------------------------------

StoreDescription::StoreDescription() : m_version(0), m_address(0) {}

StoreDescription::StoreDescription(vString const& name) : m_version(0), m_address(0) {
  int colon = name.search(':');
  if (colon < 0) {
    // A bare name is a Dorn store.
    vString dorn("dorn:");
    dorn += name;
    myParseProjectServed(dorn);
    return;
  }
  unsigned int c = static_cast<unsigned int>(colon);
  std::string word = lower(std::string(name.substr(0, c).c_str()));
  vString rest = name.substr(c + 1);
  Kind kind = kindOf(word);
  if (!word.empty() && kind == kFile)
    myParseFlatFile(rest);
  else if (kind == kInMemory)
    myParseInMemory(rest);
  else
    myParseProjectServed(name);
}

StoreDescription::StoreDescription(vFilename const& file) : m_version(0), m_address(0) { setFlatFile(file); }

StoreDescription::StoreDescription(FullStoreName const& name) : m_version(0), m_address(0) {
  setCapi(name.getProjectType(), name.getServerName(), name.getHostName(), name.getProject(), name.getStoreName(),
          vLCString(), name.getVersion(), name.getAttributeSetName());
}

StoreDescription::StoreDescription(ProjectType::PROJECT_TYPE type, vString const& server, vString const& host,
                                   vLCString const& project, vLCString const& store, vLCString const& storeClass,
                                   int version, vLCString const& attributeSet)
    : m_version(0), m_address(0) {
  setCapi(type, server, host, project, store, storeClass, version, attributeSet);
}

StoreDescription::StoreDescription(ProjectDescription const& project, vLCString const& store,
                                   vLCString const& storeClass, int version, vLCString const& attributeSet)
    : ProjectDescription(project),
      m_storeName(store),
      m_storeClass(storeClass),
      m_version(version),
      m_attributeSetName(attributeSet),
      m_address(0) {}

StoreDescription::StoreDescription(vHandle<Store>& store) : m_version(0), m_address(0) {
  myInitInMemory(store, store->getName());
}

StoreDescription::~StoreDescription() {}

void StoreDescription::myInitInMemory(vHandle<Store> const& store, vString const& name) {
  m_type = ProjectType::INMEMORY;
  m_serverHost.erase();
  m_dataHost.erase();
  m_flatFile = vFilename();
  m_projectName.erase();
  m_storeName = name;
  m_store = store;
  m_address = addressOf(store.get());
  registerInMemoryStore(store);
}

void StoreDescription::myParseFlatFile(vString const& text) {
  vString rest(text);
  vString format;
  int pos = 0;
  if (rest.searchForLast('#', pos) == 0) {
    rest = rest.substr(0, static_cast<unsigned int>(pos));
    if (rest.searchForLast('#', pos) == 0) {
      format = rest.substr(static_cast<unsigned int>(pos) + 1);
      rest = rest.substr(0, static_cast<unsigned int>(pos));
    }
  }
  if (rest.length() > 0 && rest[static_cast<int>(rest.length()) - 1] == ':') rest = rest.substr(0, rest.length() - 1);
  setFlatFile(vFilename(rest));
  int colon = format.search(':');
  if (colon < 0) {
    m_fileFormat = format;
  } else {
    m_fileFormat = format.substr(0, static_cast<unsigned int>(colon));
    m_formatSpec = format.substr(static_cast<unsigned int>(colon) + 1);
  }
}

void StoreDescription::myParseInMemory(vString const& rest) {
  int dot = 0;
  vString address;
  if (rest.searchForLast('.', dot) == 0) {
    m_storeName = rest.substr(0, static_cast<unsigned int>(dot));
    address = rest.substr(static_cast<unsigned int>(dot) + 1);
  } else {
    m_storeName = rest;
  }
  m_address = address.isInteger() ? address.readi64() : 0;
  if (m_address == 0)
    Message::fatal("StoreDescription::StoreDescription", 0, "An InMemoryStore must have an address!");
  m_type = ProjectType::INMEMORY;
}

void StoreDescription::myParseProjectServed(vString const& text) {
  vString store(text);
  int pos = 0;
  if (text.searchForLast(':', pos) == 0) {
    unsigned int p = static_cast<unsigned int>(pos);
    ProjectDescription::operator=(ProjectDescription(text.substr(0, p)));
    store = text.substr(p + 1);
  }
  if (store.searchForLast('#', pos) == 0) {
    store = store.substr(0, static_cast<unsigned int>(pos));
    if (store.searchForLast('#', pos) == 0) {
      m_storeClass = store.substr(static_cast<unsigned int>(pos) + 1);
      store = store.substr(0, static_cast<unsigned int>(pos));
    }
  }
  if (store.searchForLast('/', pos) == 0) {
    m_attributeSetName = store.substr(static_cast<unsigned int>(pos) + 1);
    store = store.substr(0, static_cast<unsigned int>(pos));
  }
  if (store.searchForLast('.', pos) == 0) {
    vString version = store.substr(static_cast<unsigned int>(pos) + 1);
    if (version.isInteger()) {
      m_version = version.readi();
      store = store.substr(0, static_cast<unsigned int>(pos));
    }
  }
  m_storeName = store;
}

void StoreDescription::setCapi(ProjectType::PROJECT_TYPE type, vString const& server, vString const& host,
                               vLCString const& project, vLCString const& store, vLCString const& storeClass,
                               int version, vLCString const& attributeSet) {
  ProjectCatalogDescription::setCapi(type, server, host);
  m_projectName = project;
  m_storeName = store;
  m_storeClass = storeClass;
  m_version = version;
  m_attributeSetName = attributeSet;
  m_fileFormat.erase();
  m_formatSpec.erase();
  m_store = vHandle<Store>();
  m_address = 0;
}

void StoreDescription::setFlatFile(vFilename const& file) {
  ProjectDescription::setFlatFile(file);
  m_storeName = file.getName();
  m_storeClass.erase();
  m_version = 0;
  m_store = vHandle<Store>();
  m_address = 0;
}

// --- text ---------------------------------------------------------------------------

vString StoreDescription::myProjectPart() const {
  if (isCapi()) return ProjectDescription::toString();
  return ProjectCatalogDescription::toString();
}

vString StoreDescription::toString() const {
  vString text = myProjectPart();
  if (isFlatFile()) {
    if (!m_fileFormat.isBlank()) {
      text += '#';
      text += m_fileFormat;
      if (!m_formatSpec.isBlank()) {
        text += ':';
        text += m_formatSpec;
      }
      text += '#';
    }
    return text;
  }
  if (isInMemory()) {
    text += m_storeName;
    text += '.';
    text += vString::number(static_cast<long long>(m_address));
    return text;
  }
  text += ':';
  text += m_storeName;
  text += '.';
  text += vString::number(static_cast<int>(m_version));
  if (!m_attributeSetName.isBlank()) {
    text += '/';
    text += m_attributeSetName;
  }
  text += '#';
  text += m_storeClass;
  text += '#';
  return text;
}

vString StoreDescription::getTitle() const {
  vString part = myProjectPart();
  if (isFlatFile()) {
    int colon = part.search(':');
    vString path = part.substr(static_cast<unsigned int>(colon) + 1);
    return path.length() > 0 ? path.substr(0, path.length() - 1) : path;
  }
  part += ':';
  part += m_storeName;
  part += '.';
  part += vString::number(static_cast<int>(m_version));
  if (!m_attributeSetName.isBlank()) {
    part += '/';
    part += m_attributeSetName;
  }
  return part;
}

bool StoreDescription::isEmpty() const {
  return m_type == ProjectType::NOTYPE && m_serverHost.isBlank() && m_dataHost.isBlank() &&
         m_flatFile.getFilename().isBlank() && m_projectName.isBlank() && m_storeName.isBlank();
}

FullStoreName StoreDescription::getFullStoreName() const {
  return FullStoreName(m_type, m_serverHost, m_dataHost, m_projectName, m_storeName, m_version, m_attributeSetName);
}

bool StoreDescription::isValid(vString& message) const {
  message.erase();
  if (isFlatFile() && m_flatFile.getFilename().length() > kMaxFileNameLength) {
    message = "The full file name is too long: ";
    message += m_flatFile.getFilename();
    return false;
  }
  return true;
}

// --- in-memory stores -------------------------------------------------------------------

vHandle<Store> StoreDescription::getStore() const {
  if (!m_store.isEmpty() || m_address == 0) return m_store;
  auto const& stores = inMemoryStores();
  auto it = stores.find(m_address);
  if (it == stores.end() || it->second.isEmpty())
    Message::fatal("StoreDescription::getStore", 0, "There is no InMemoryStore at address %lld in this process.",
                   static_cast<long long>(m_address));
  return vHandle<Store>(it->second);
}

vHandle<Store> StoreDescription::getAddressAndName(vLCString& name) const {
  name = m_storeName;
  return getStore();
}

// --- comparison --------------------------------------------------------------------------

bool StoreDescription::operator==(StoreDescription const& other) const {
  return ProjectDescription::operator==(other) && m_storeName == other.m_storeName &&
         m_storeClass == other.m_storeClass && m_version == other.m_version &&
         m_attributeSetName == other.m_attributeSetName && m_fileFormat == other.m_fileFormat &&
         m_formatSpec == other.m_formatSpec && m_address == other.m_address;
}

bool StoreDescription::operator<(StoreDescription const& other) const {
  if (ProjectDescription::operator<(other)) return true;
  if (other.ProjectDescription::operator<(*this)) return false;
  if (m_storeName != other.m_storeName) return m_storeName < other.m_storeName;
  if (m_storeClass != other.m_storeClass) return m_storeClass < other.m_storeClass;
  if (m_version != other.m_version) return m_version < other.m_version;
  return m_attributeSetName < other.m_attributeSetName;
}

std::ostream& operator<<(std::ostream& out, StoreDescription const& description) {
  return out << description.toString();
}

// --- validation --------------------------------------------------------------------------

bool StoreDescription::validateStoreName(vString const& nameText, vString& messageText) {
  messageText.erase();
  std::string name(nameText.c_str(), nameText.length());
  std::string message;
  if (name.empty()) {
    messageText = " <- ERROR empty name";
    return false;
  }
  int nColons = 0;
  for (char c : name)
    if (c == ':') ++nColons;
  if (nColons == 0) {
    std::string prefix;
    std::string rest;
    if (!isStoreCharacters(name, prefix, rest)) {
      messageText = (prefix + kInvalidStore + rest).c_str();
      return false;
    }
    name = "dorn:" + name;
    nColons = 1;
  }
  std::size_t colon = name.find(':');
  std::string t = lower(name.substr(0, colon));
  std::string r = name.substr(colon + 1);

  bool ok = true;
  switch (Kind kind = kindOf(t)) {
    case kUnchecked:
      ok = true;
      break;
    case kDorn:
    case kRondo:
    case kKelp:
      ok = validateServed(kind, t, name, r, nColons, message);
      break;
    case kZonmesh:
      ok = validateZonmesh(t, r, message);
      break;
    case kInMemory:
      ok = validateInMemory(t, r, message);
      break;
    case kFile:
      ok = validateFile(t, r, message);
      break;
    case kNone:
      if (nColons == 1) {
        ok = validateProjectAndStore(t, r, message);
      } else {
        message = t + ": <- ERROR unrecognised type  ..." + r;
        ok = false;
      }
      break;
  }
  messageText = message.c_str();
  return ok && message.empty();
}
