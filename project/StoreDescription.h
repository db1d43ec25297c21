#ifndef PROJECT_STOREDESCRIPTION_H
#define PROJECT_STOREDESCRIPTION_H

// StoreDescription: a store as a user names it, parsed. Everything that
// opens a store works from one of these, never from the raw text.
//
// Forms of a name (type words in any case):
//
//   store                                    as dorn:store
//   dorn:store, d:...    dorn:server:host:project:store
//   rondo:store, r:...   rondo:server:host:project:store
//   kelp:store, k:...    kelp:server:host:project:store   (the project may
//                                                          hold '#' and '/')
//   zonmesh::host:project:store              (zon, z; never a server)
//   project:store                            (one colon, no type word)
//   file:path, file:host:path                (f, flatfile), each optionally
//       followed by #format# or #format:spec#
//   file:key=file,file...                    a Nyx file list
//   inmemory:store.address                   (i) a live in-memory store
//   notype:..., unittest:..., sharedmemory:...   not checked
//
// where the store of a project-served name is
//
//   name[.version][/attributeset][#storeclass#]
//
// Parsing does not validate: validateStoreName() is the check, with a
// report that shows where a name went wrong, and the parsing constructor's
// only failure is an in-memory name without an address. toString() writes
// the canonical form back, which parses to an equal description.

#include <cstdint>
#include <iosfwd>

#include "foundation/vFilename.h"
#include "foundation/vHandle.h"
#include "foundation/vLCString.h"
#include "foundation/vString.h"
#include "project/FullStoreName.h"
#include "project/ProjectDescription.h"
#include "project/ProjectType.h"
#include "project/Store.h"

class StoreDescription : public ProjectDescription {
 public:
  // An empty description.
  StoreDescription();
  // Parses a store name; see above.
  explicit StoreDescription(vString const& name);
  // A flat file: the store is the file's name without its directory.
  explicit StoreDescription(vFilename const& file);
  explicit StoreDescription(FullStoreName const& name);
  StoreDescription(ProjectType::PROJECT_TYPE type, vString const& server, vString const& host,
                   vLCString const& project, vLCString const& store, vLCString const& storeClass, int version,
                   vLCString const& attributeSet);
  StoreDescription(ProjectDescription const& project, vLCString const& store, vLCString const& storeClass,
                   int version, vLCString const& attributeSet);
  // A live in-memory store, which the description holds; the name is the
  // store's own.
  explicit StoreDescription(vHandle<Store>& store);
  // The same for a store of a class derived from Store (an
  // InMemoryStore), under the name given.
  template <class S>
  StoreDescription(vHandle<S>& store, vString const& name) : m_version(0), m_address(0) {
    myInitInMemory(vHandle_cast<Store>(store), name);
  }
  StoreDescription(StoreDescription const& other) = default;
  StoreDescription& operator=(StoreDescription const& other) = default;
  ~StoreDescription() override;

  // A project-served store, in one step.
  void setCapi(ProjectType::PROJECT_TYPE type, vString const& server, vString const& host, vLCString const& project,
               vLCString const& store, vLCString const& storeClass, int version, vLCString const& attributeSet);
  // The file, with the store name from it; no class, version 0.
  void setFlatFile(vFilename const& file) override;

  // The canonical text:
  //   Type:server:host:project:store.version[/set]#class#
  //   InMemory:store.address
  //   FlatFile:path:[#format[:spec]#]
  vString toString() const override;
  // True when the project part is empty and the store name blank.
  virtual bool isEmpty() const;

  virtual vLCString const& getStoreName() const { return m_storeName; }
  virtual void setStoreName(vString const& name) { m_storeName = name; }
  virtual int getVersion() const { return m_version; }
  virtual void setVersion(int version) { m_version = version; }
  virtual vLCString const& getStoreClass() const { return m_storeClass; }
  virtual void setStoreClass(vLCString const& storeClass) { m_storeClass = storeClass; }
  virtual FullStoreName getFullStoreName() const;
  virtual vLCString const& getAttributeSetName() const { return m_attributeSetName; }
  virtual void setAttributeSetName(vLCString const& name) { m_attributeSetName = name; }
  // The name without marks: the bare path of a flat file, otherwise
  // "project part:store.version[/set]".
  virtual vString getTitle() const;
  virtual void setFileFormat(vString const& format) { m_fileFormat = format; }
  virtual vString const& getFileFormat() const { return m_fileFormat; }
  virtual void setFormatSpec(vString const& spec) { m_formatSpec = spec; }
  virtual vString const& getFormatSpec() const { return m_formatSpec; }

  // False, with the reason in message, for a flat file whose full name is
  // longer than the file service takes (128 characters).
  bool isValid(vString& message) const;
  // Whether a name is acceptable. On failure, message echoes the name as far
  // as it was understood, a marker " <- ERROR ..." saying what is wrong, and
  // what was not read. Never throws for a bad name.
  static bool validateStoreName(vString const& name, vString& message);

  // The in-memory store: the held handle, or the store registered at the
  // address of a parsed in-memory name.
  vHandle<Store> getStore() const;
  vHandle<Store> getAddressAndName(vLCString& name) const;
  long long getAddress() const { return m_address; }

  // Project part, store name, class, version, attribute set, file format,
  // format spec and address.
  bool operator==(StoreDescription const& other) const;
  bool operator!=(StoreDescription const& other) const { return !(*this == other); }
  // Project part, then store name, class, version and attribute set: the
  // format, spec and address take no part, so two unequal descriptions may
  // be unordered.
  bool operator<(StoreDescription const& other) const;

  static const unsigned int kMaxFileNameLength = 128;

 private:
  void myInitInMemory(vHandle<Store> const& store, vString const& name);
  void myParseFlatFile(vString const& rest);
  void myParseInMemory(vString const& rest);
  void myParseProjectServed(vString const& text);
  // The project part of toString().
  vString myProjectPart() const;

  vLCString m_storeName;
  vLCString m_storeClass;
  int32_t m_version;
  vLCString m_attributeSetName;
  vString m_fileFormat;
  vString m_formatSpec;
  vHandle<Store> m_store;
  int64_t m_address;
};

// toString().
std::ostream& operator<<(std::ostream& out, StoreDescription const& description);

#endif
