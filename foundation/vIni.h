#ifndef FOUNDATION_VINI_H
#define FOUNDATION_VINI_H

// vIni: an INI file in memory. Sections hold key and value pairs in the
// order read; section names and keys are vLCString, so every look-up ignores
// case. Format:
//
//   - leading white space of a line is ignored; empty lines and lines that
//     begin with ';' or '#' are skipped;
//   - "[name]", at least three characters, starts a section or resumes one
//     seen before ("[]" is too short and is read as a key line);
//   - inside a section a line splits at its first '=': the key is stripped of
//     blanks, the value is kept as written (a line without '=' is a key with
//     an empty value, a line that starts with '=' has an empty key);
//   - a key already present in the section is ignored: the first one stays;
//   - lines outside any section are ignored.
//
// The typed getters strip the value before converting it and give the
// default when the key is absent; a value that does not convert is fatal.

#include <cstdint>
#include <iosfwd>
#include <utility>
#include <vector>

#include "foundation/vLCString.h"
#include "foundation/vString.h"

class vIni {
 public:
  typedef std::pair<vLCString, vString> KeyValue;

  vIni();
  virtual ~vIni();

  // Adds the file's contents; a file that cannot be opened is fatal.
  void loadFromFile(vString const& path);
  void loadFromMemory(vString const& text);
  void loadFromStream(std::istream& in);
  void clear();

  bool doesSectionExist(vLCString const& section) const;
  bool doesKeyExist(vLCString const& section, vLCString const& key) const;

  // The value as written, or the default.
  vString getString(vLCString const& section, vLCString const& key, vString const& defaultValue = vString()) const;
  // The value split at any of the delimiters, each part stripped, empty parts
  // dropped; nothing when the key is absent.
  std::vector<vString> getStringDelimited(vLCString const& section, vLCString const& key,
                                          vString const& delimiters = ",") const;
  // True for the same words as SystemProperty::getBoolValue.
  bool getBool(vLCString const& section, vLCString const& key, bool defaultValue = false) const;
  int32_t getInt32(vLCString const& section, vLCString const& key, int32_t defaultValue = 0) const;
  int64_t getInt64(vLCString const& section, vLCString const& key, int64_t defaultValue = 0) const;
  float getFloat32(vLCString const& section, vLCString const& key, float defaultValue = 0.0f) const;
  double getFloat64(vLCString const& section, vLCString const& key, double defaultValue = 0.0) const;

  // 0 for a section that does not exist.
  int getNKeys(vLCString const& section) const;
  std::vector<vLCString> getSections() const;
  std::vector<vLCString> getKeys(vLCString const& section) const;
  std::vector<vString> getValues(vLCString const& section) const;
  std::vector<KeyValue> getKeysAndValues(vLCString const& section) const;

 protected:
  void myLoad(std::istream& in);

 private:
  struct Section {
    vLCString name;
    std::vector<KeyValue> entries;
  };

  Section const* myFindSection(vLCString const& section) const;
  KeyValue const* myFindKey(vLCString const& section, vLCString const& key) const;
  // The stripped value of a key that exists, for conversion.
  bool myGetStripped(vLCString const& section, vLCString const& key, vString& value) const;

  std::vector<Section> m_sections;
};

#endif
