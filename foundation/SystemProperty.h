#ifndef FOUNDATION_SYSTEMPROPERTY_H
#define FOUNDATION_SYSTEMPROPERTY_H

// SystemProperty: one named setting of the site configuration. A section
// (the "package"), a name, a description and a list of text values. Values
// are converted on demand; a bad index or a text that is not a number ends in
// a fatal message.
//
// Text form, as held in the property tables (tokens separated by white space):
//
//   <SystemProperty name= PING package= UTL description= "ping command"
//                   value= "vping %s" SystemProperty>
//
// "<SystemProperty" and the keywords are recognised in any case. A keyword's
// value is the token after it, or what follows the '=' in the same token
// ("name=PING"). A value in double quotes is taken as it stands; one without
// quotes also takes the further words of its line, up to the next keyword,
// any other word ending in '=', or "SystemProperty>", so
//
//   description= the ping command
//
// needs no quotes. "value=" may repeat; each adds one value. Values may hold
// "${NAME}" references to the environment, expanded when read. A '#' where
// a record could start comments out the rest of that line.

#include <iosfwd>
#include <vector>

#include "foundation/vString.h"
#include "foundation/vUCString.h"

class SystemProperty {
 public:
  SystemProperty();
  SystemProperty(vUCString const& section, vUCString const& name, vString const& description = vString(),
                 std::vector<vString> const& values = std::vector<vString>());
  SystemProperty(SystemProperty const& other);
  SystemProperty& operator=(SystemProperty const& other);
  virtual ~SystemProperty();

  vUCString const& getSection() const { return m_section; }
  vUCString const& getName() const { return m_name; }
  vString const& getDescription() const { return m_description; }
  std::vector<vString> const& getValues() const { return m_values; }

  int getNValues() const;
  vString const& getValue(int index) const;
  void getValue(int index, vString& value) const;
  int32_t getInt32Value(int index) const;
  double getFloat64Value(int index) const;
  // True for "y", "yes", "t", "true", "e", "enabled" and "on" in any case.
  bool getBoolValue(int index) const;

  void setComponents(vUCString const& section, vUCString const& name, vString const& description,
                     std::vector<vString> const& values);
  void addValue(vString const& value);
  void clear();

  // Equal when all components are; ordered by section, then name.
  bool operator==(SystemProperty const& other) const;
  bool operator!=(SystemProperty const& other) const;
  bool operator<(SystemProperty const& other) const;

  // The text that true values are recognised by, shared with other readers of
  // configuration so that a switch means the same everywhere.
  static bool isTrueText(vString const& text);

 private:
  void myCheckIndex(int index, char const* method) const;

  vUCString m_section;
  vUCString m_name;
  vString m_description;
  std::vector<vString> m_values;
};

// Reads one record. At the end of the stream before a record starts, the
// stream's fail bit is set and the property is left unchanged. An unknown
// token, a missing name or section, or a record cut short is fatal.
std::istream& operator>>(std::istream& in, SystemProperty& property);
// Writes the record in the form read above.
std::ostream& operator<<(std::ostream& out, SystemProperty const& property);

#endif
