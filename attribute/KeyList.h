#ifndef ATTRIBUTE_KEYLIST_H
#define ATTRIBUTE_KEYLIST_H

// KeyList: the sort keys of an attribute set, primary key first. Each key is
// an attribute definition (no data); keys are told apart by name, so a
// look-up is a pointer comparison of interned names. Key numbers are 1-based.

#include <vector>

#include "attribute/Attribute.h"
#include "foundation/Packable.h"
#include "foundation/vUCString.h"

class Packer;
class vString;

class KeyList : public Packable {
 public:
  typedef std::vector<Attribute> Keys;
  typedef Keys::iterator iterator;
  typedef Keys::const_iterator const_iterator;
  typedef Keys::reverse_iterator reverse_iterator;
  typedef Keys::const_reverse_iterator const_reverse_iterator;

  static constexpr short Magic = 1501;
  static constexpr short Version = 1;

  KeyList();
  KeyList(KeyList const& other);
  explicit KeyList(Packer& packer);
  ~KeyList() override;
  KeyList& operator=(KeyList const& other);
  // Same number of keys with the same names in the same order.
  bool operator==(KeyList const& other) const;
  bool operator!=(KeyList const& other) const { return !operator==(other); }

  // Appends a copy of the definition; a blank or repeated name throws.
  void addKey(Attribute const& key);
  void removeKey(vUCString const& name);
  void clear() { m_keys.clear(); }
  unsigned int getNKeys() const { return static_cast<unsigned int>(m_keys.size()); }

  iterator begin() { return m_keys.begin(); }
  const_iterator begin() const { return m_keys.begin(); }
  iterator end() { return m_keys.end(); }
  const_iterator end() const { return m_keys.end(); }
  reverse_iterator rbegin() { return m_keys.rbegin(); }
  const_reverse_iterator rbegin() const { return m_keys.rbegin(); }
  reverse_iterator rend() { return m_keys.rend(); }
  const_reverse_iterator rend() const { return m_keys.rend(); }
  iterator beginKey() { return m_keys.begin(); }
  const_iterator beginKey() const { return m_keys.begin(); }
  iterator endKey() { return m_keys.end(); }
  const_iterator endKey() const { return m_keys.end(); }

  // The key of the same name, or end().
  iterator findKey(Attribute const& key);
  const_iterator findKey(Attribute const& key) const;
  // Key number n. Out of range: the text goes to *message and end() is
  // returned, or without a message it is a fatal error.
  iterator findKey(unsigned int n, vString* message = nullptr);
  const_iterator findKey(unsigned int n, vString* message = nullptr) const;
  // The name of key n, or an empty name.
  vUCString findName(unsigned int n, vString* message = nullptr) const;
  // The 1-based position of the key of that name, or 0.
  unsigned int determineKeyNumber(Attribute const& key) const;

  void pack(Packer& packer) const override;
  void unpack(Packer& packer) override;

 private:
  Keys m_keys;
};

#endif
