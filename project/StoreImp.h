#ifndef PROJECT_STOREIMP_H
#define PROJECT_STOREIMP_H

// StoreImp: the standard Store. It holds the primary attribute set, and the
// active one, which is the primary or one secondary set at a time; every
// AttributeSet operation goes to the active set after one guard:
//
//   reads and questions   the store must be open
//   writes and property   the store must be open for modification
//   changes
//
// The sets are made on first need, by doCreateAttributeSet(), so that a
// store that is never opened costs no more than its handles. The store's
// property interface shares the active set's list.
//
// A derived class supplies the sets (doCreateAttributeSet), finds a
// secondary set by name (doFindAttributeSet), resets itself for a create
// (doCreate), and closes itself in its destructor when it is still open.
// Not thread-safe.

#include "foundation/vHandle.h"
#include "foundation/vLCString.h"
#include "project/Store.h"

class StoreImp : public Store {
 public:
  explicit StoreImp(vHandle<Project> const& project);
  ~StoreImp() override;

  // --- Properties: demand a store open for modification, then change the
  // active set's list. clearProperties keeps ATTRIBUTESET_NAMES and
  // ATTRIBUTESET_VERSIONS.
  void addProperty(Property const& property) override;
  void addProperties(PropertyI const& other) override;
  void removeProperty(vUCString const& name) override;
  void removeProperty(iterator position) override;
  void clearProperties() override;
  void setPropertyList(PropertyI const& other) override;

  // --- AttributeSet
  bool isOpen() const override;
  // Makes a fresh primary set (doCreate first) and creates it; refused
  // while the store is open under another name.
  void create(vLCString const& name, vLCString const& className, vLCString const& subClass, KeyList const& keys,
              StoreCreationOptions const* options) override;
  void create(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
              KeyList const& keys, StoreCreationOptions const* options) override;
  void open(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
            StoreOpenOptions const* options) override;
  // Opens the store, then the attribute set that the name holds, if any.
  void open(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
            StoreOpenOptions const* options) override;
  void update(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
              StoreOpenOptions const* options) override;
  void update(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
              StoreOpenOptions const* options) override;
  // Of the active set.
  unsigned int getNInstances() const override;
  vLCString getClass() const override;
  vLCString getSubClass() const override;
  // Of the primary set: the store's own.
  vLCString getName() const override;
  int getVersion() const override;
  void close() override;
  KeyList getKeyList() const override;
  void getKeyList(KeyList& keys) const override;
  void addInstances(unsigned int count) override;
  void write(Attribute const& attribute, unsigned int first, unsigned int last) override;
  void write(Attribute const& attribute, std::vector<unsigned int> const& instances) override;
  void write(Attribute const& attribute, Attribute const& key, unsigned int firstGroup,
             unsigned int lastGroup) override;
  void write(Attribute const& attribute, KeyList const& keys) override;
  void addAttribute(Attribute const& attribute) override;
  void getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const override;
  std::list<Attribute> getAttributeList() const override;
  void getAttributeList(std::list<Attribute>& attributes) const override;
  std::list<Attribute> getAttributeList(vUCString const& text, AttributeMatch::AttributeMatchType match) const override;
  void read(Attribute& attribute, unsigned int first, unsigned int last) const override;
  void read(Attribute& attribute, std::vector<unsigned int> const& instances) const override;
  void read(Attribute& attribute, Attribute const& key, unsigned int firstGroup,
            unsigned int lastGroup) const override;
  void read(Attribute& attribute, KeyList const& keys) const override;
  Attribute getAttribute(vUCString const& name) const override;
  bool hasAttribute(vUCString const& name) const override;
  void setAttributeClass(vUCString const& name, vUCString const& className) override;
  unsigned int getNAttributes() const override;
  void getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                         vUtlSort::SortOrder::SortOrderType order) const override;
  vHandle<Project> getProject() const override;
  bool prepareBuffer(AttributeSetBuffer& buffer) const override;
  void readBufferRange(AttributeSetBuffer& buffer, unsigned int first, unsigned int last) const override;

  // --- Store
  void createAttributeSet(vLCString const& name, KeyList const& keys) override;
  void openAttributeSet(vLCString const& name) override;
  void updateAttributeSet(vLCString const& name) override;
  vHandle<AttributeSetList> getAttributeSetList() const override;
  void getAttributeSetList(AttributeSetList& names) const override;
  vLCString getAttributeSetName() const override;
  vLCString getPrimaryAttributeSetName() const override;
  // A StoreImp cannot be compared or assigned properties: these raise.
  bool operator==(Store const& other) const override;
  bool operator!=(Store const& other) const override;
  Store& operator=(PropertyI const& properties) override;

  // The name under which secondary set `name` of this store lives in the
  // project: the store's name, '_', the set's name.
  vLCString myConstructSetName(vLCString const& name) const;
  // The reverse, as far as it goes: a trailing '_' and a leading "aset_"
  // are dropped; any other name stays as it is.
  static vLCString myDeconstructSetName(vLCString const& name);

 protected:
  StoreImp(StoreImp const& other) = default;

  // A new, closed attribute set of the derived class's kind.
  virtual vHandle<AttributeSet> doCreateAttributeSet(vHandle<Project> const& project) const = 0;
  // The object of secondary set `name`, to be opened under its constructed
  // name; here a new one, for sets that live in the project.
  virtual vHandle<AttributeSet> doFindAttributeSet(vLCString const& name);
  // Resets the derived class for a create; nothing here.
  virtual void doCreate();
  // For classes that clone their sets; raises here.
  virtual vHandle<AttributeSet> doCreateAttributeSetClone(AttributeSet const& set);

  // Makes the primary set, which becomes the active one too.
  void initialize(vHandle<Project> const& project) const;
  void myInitializeActiveSet() const {
    if (m_active.isEmpty()) initialize(m_project);
  }

  // Guards. The detail of an attribute operation is the attribute's name.
  void myMustBeOpen(char const* method) const {
    myInitializeActiveSet();
    if (!m_isOpen) myMustBeOpenError(method, nullptr);
  }
  void myMustBeOpen(char const* method, vUCString const& detail) const {
    myInitializeActiveSet();
    if (!m_isOpen) myMustBeOpenError(method, "%s", detail.c_str());
  }
  // Without a format (null or empty) the text ends in "!".
  [[noreturn]] void myMustBeOpenError(char const* method, char const* format, ...) const
      __attribute__((format(printf, 3, 4)));
  void myMustBeWritable(char const* method) const {
    myInitializeActiveSet();
    if (!m_writable) myMustBeWritableError(method);
  }
  [[noreturn]] void myMustBeWritableError(char const* method) const;
  void myMustNotBeOpen(char const* method, char const* detail) const;

  // Secondary sets.
  bool myIsPrimaryName(vLCString const& name) const;
  void myMustHaveSet(char const* method, vLCString const& name) const;
  void myMustNotHaveSet(char const* method, vLCString const& name) const;
  int myGetVersionOfSet(char const* method, vLCString const& name) const;
  // The 1-based position of name in ATTRIBUTESET_NAMES, searched from the
  // end; 0 when it is not there.
  unsigned int myFindSetName(vLCString const& name) const;
  typedef void (AttributeSet::*SetOpener)(vLCString const&, int, vLCString const&, vLCString const&,
                                          StoreOpenOptions const*);
  void mySwitchActiveSet(char const* method, vLCString const& name, SetOpener member);
  void myCloseActiveSetIfNotPrime();
  void myUpdatePropertyWithName(vLCString const& name);
  void myUpdatePropertyWithVersion(int version);

  // Properties: the store's interface shares the active set's list.
  void myCopyPrimeSetProperties();
  void mySetActiveProperties();
  void mySavePrimeSetProperties();

  mutable vHandle<AttributeSet> m_active;
  mutable vHandle<AttributeSet> m_primary;
  bool m_isOpen;
  vLCString m_name;
  bool m_writable;
};

#endif
