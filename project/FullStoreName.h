#ifndef PROJECT_FULLSTORENAME_H
#define PROJECT_FULLSTORENAME_H

// FullStoreName: a store in a project, with its version and, optionally, one
// of its attribute sets:
//
//     [project name:]store[.version][/attributeset]
//
// A version is split off only when the text behind the last '.' is an
// integer; otherwise the '.' belongs to the name, where the default
// character set does not allow it.

#include "foundation/vLCString.h"
#include "project/FullProjectName.h"

class FullStoreName : public FullProjectName {
 public:
  FullStoreName();
  // The whole text form.
  explicit FullStoreName(vString const& text);
  // The project part and the store name, taken whole; the version is given.
  FullStoreName(vString const& text, int version);
  FullStoreName(FullProjectName const& project, vLCString const& store, int version = 0,
                vLCString const& attributeSet = vLCString());
  FullStoreName(ProjectType::PROJECT_TYPE type, vString const& server, vString const& host, vLCString const& project,
                vLCString const& store, int version = 0, vLCString const& attributeSet = vLCString());
  FullStoreName(vString const& typeName, vString const& server, vString const& host, vLCString const& project,
                vLCString const& store, int version = 0, vLCString const& attributeSet = vLCString());
  FullStoreName(FullStoreName const& other) = default;
  FullStoreName& operator=(FullStoreName const& other) = default;
  ~FullStoreName() override;

  vLCString const& getStoreName() const { return m_store; }
  int getVersion() const { return m_version; }
  vLCString const& getAttributeSetName() const { return m_attributeSet; }
  FullProjectName getFullProjectName() const { return *this; }

  void setVersion(int version) { m_version = version; }
  void setAttributeSetName(vLCString const& name) { m_attributeSet = name; }

  // "store" for version 0, "store.version" for a positive version, empty
  // for a negative one.
  vString getBriefName() const;
  // The project's full name, ':', the brief name and "/attributeset".
  vString getFullName() const override;

  bool operator==(FullStoreName const& other) const;
  bool operator!=(FullStoreName const& other) const { return !(*this == other); }
  bool operator<(FullStoreName const& other) const;

  // True when every character is in the store name character set (system
  // property CAPI/FULLSTORENAMECHARSET, by default lower-case letters,
  // digits and "_-,"), or when CAPI/ALLOWBADNAMES is "yes". Both properties
  // are read once per process.
  static bool myIsValidStoreName(vLCString const& name);

 protected:
  void myParseStorePart(vString const& text, bool withVersionAndSet);
  // Splits a trailing ".version" off a name given whole; true when what is
  // left is a valid name.
  bool myCheckForVersion(vLCString const& name);
  void myCheckParts();

  vLCString m_store;
  int m_version;
  vLCString m_attributeSet;
};

#endif
