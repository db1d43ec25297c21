#include "attribute/KeyList.h"

#include <cstdint>

#include "foundation/Message.h"
#include "foundation/Packer.h"
#include "foundation/UtlExcept.h"
#include "foundation/vString.h"

namespace {
char const* const kFile = "KeyList";
}

KeyList::KeyList() : Packable() {}

KeyList::KeyList(KeyList const& other) : Packable(), m_keys(other.m_keys) {}

KeyList::KeyList(Packer& packer) : Packable() { unpack(packer); }

KeyList::~KeyList() {}

KeyList& KeyList::operator=(KeyList const& other) {
  if (this != &other) m_keys = other.m_keys;
  return *this;
}

bool KeyList::operator==(KeyList const& other) const {
  if (m_keys.size() != other.m_keys.size()) return false;
  for (std::size_t i = 0; i < m_keys.size(); ++i)
    if (m_keys[i] != other.m_keys[i]) return false;
  return true;
}

void KeyList::addKey(Attribute const& key) {
  if (key.getName().isBlank())
    throw UtlExcept("Not allowed to add an empty Attribute to the KeyList", "KeyList::addKey()", __LINE__, kFile);
  if (findKey(key) != m_keys.end()) {
    vString reason(key.getName());
    reason += " already exists in this KeyList.";
    throw UtlExcept(reason, vString("KeyList::addKey()"), __LINE__, kFile);
  }
  // A key is a definition: the copy carries no data.
  m_keys.push_back(Attribute(key));
}

void KeyList::removeKey(vUCString const& name) {
  // A name nobody interned cannot be a key; looking it up must not add it.
  vUCString key(name);
  key.strip();
  vUCStringTableData const* id = nullptr;
  if (!Attribute::getStringTable().exists(key, &id)) return;
  for (iterator i = m_keys.begin(); i != m_keys.end(); ++i) {
    if (i->getNameID() == id) {
      m_keys.erase(i);
      return;
    }
  }
}

KeyList::iterator KeyList::findKey(Attribute const& key) {
  for (iterator i = m_keys.begin(); i != m_keys.end(); ++i)
    if (*i == key) return i;
  return m_keys.end();
}

KeyList::const_iterator KeyList::findKey(Attribute const& key) const {
  for (const_iterator i = m_keys.begin(); i != m_keys.end(); ++i)
    if (*i == key) return i;
  return m_keys.end();
}

KeyList::const_iterator KeyList::findKey(unsigned int n, vString* message) const {
  if (n == 0 || n > m_keys.size()) {
    vString text;
    text.printf("Requested key number '%d' outside valid range (1-%d)", static_cast<int>(n),
                static_cast<int>(m_keys.size()));
    if (message == nullptr) Message::fatal("KeyList::findKey(int)", 0, "%s", text.c_str());
    *message = text;
    return m_keys.end();
  }
  return m_keys.begin() + (n - 1);
}

KeyList::iterator KeyList::findKey(unsigned int n, vString* message) {
  const_iterator const i = static_cast<KeyList const*>(this)->findKey(n, message);
  return m_keys.begin() + (i - m_keys.cbegin());
}

vUCString KeyList::findName(unsigned int n, vString* message) const {
  const_iterator const i = findKey(n, message);
  if (i == m_keys.end()) return vUCString();
  return i->getName();
}

unsigned int KeyList::determineKeyNumber(Attribute const& key) const {
  const_iterator const i = findKey(key);
  if (i == m_keys.end()) return 0;
  return static_cast<unsigned int>(i - m_keys.begin()) + 1;
}

void KeyList::pack(Packer& packer) const {
  packer.packFrame(Magic, Version);
  packer.pack(static_cast<int32_t>(m_keys.size()));
  for (const_iterator i = m_keys.begin(); i != m_keys.end(); ++i) i->pack(packer);
  packer.endFrame();
}

void KeyList::unpack(Packer& packer) {
  m_keys.clear();
  short magic = 0;
  short version = 0;
  packer.unpackFrame(magic, version);
  if (magic != Magic) throw UtlExcept("Bad magic value, not a KeyList.", "KeyList::unpack()", __LINE__, kFile);
  if (version != Version)
    throw UtlExcept("Bad KeyList Version, not supported.", "KeyList::unpack()", __LINE__, kFile);
  int32_t n = 0;
  packer.unpack(n);
  // Every key is a whole frame: more keys than bytes left is a forged count.
  if (n < 0 || n > packer.getNRemainingBytes())
    Message::fatal("KeyList::unpack()", 0, "Bad number of keys %d with %d bytes left.", static_cast<int>(n),
                   packer.getNRemainingBytes());
  // A key list that travels carries the wanted key values, and a copy of an
  // Attribute keeps its definition alone: each key is unpacked in place, in
  // room reserved up front so that no key is ever copied.
  Keys keys;
  keys.reserve(static_cast<std::size_t>(n));
  for (int32_t i = 0; i < n; ++i) keys.emplace_back(packer);
  packer.endFrame();
  m_keys.swap(keys);
}
