#ifndef DATABASE_ZON_ZONSTOREKVS_H
#define DATABASE_ZON_ZONSTOREKVS_H

// ZonStoreKVS: a store of a database project held wholly in memory. Open
// reads the structure of the dataset (keys, attribute definitions,
// properties) through its adapter; the data are loaded once, on the first
// read or question that needs them. Writes change the memory copy only;
// flush and close send the whole dataset back through the adapter, and a
// close with nothing changed sends nothing. A store dropped without close
// leaves the database as it was. The other tables of a dataset are the
// store's secondary attribute sets; one set is in memory at a time, and
// making another active first sends what changed of the one before. A new
// set is a new table of the dataset, of the dictionary class its name
// gives. A column holds one value per instance: vectors are refused when
// they are added.
//
// The memory copy is an InMemoryAttributeSet, kept open for writing: the
// checks of open and writeable state, and the key look-ups, are this
// class's; the range, list and group work is the set's.

#include <memory>

#include "attribute/CapiAttribute.h"
#include "database/zon/ZonAdapterBase.h"
#include "project/Store.h"

class InMemoryAttributeSet;
class ZonProject;

class ZonStoreKVS : public Store {
 public:
  explicit ZonStoreKVS(vHandle<Project> const& project);
  ~ZonStoreKVS() override;

  static Capi::eDataConversion getDataConversion();
  static void setDataConversion(Capi::eDataConversion conversion);
  static int myTraceLevel;

  bool isOpen() const override;
  void create(vLCString const& name, vLCString const& className, vLCString const& subClass, KeyList const& keys,
              StoreCreationOptions const* options) override;
  void create(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
              KeyList const& keys, StoreCreationOptions const* options) override;
  void open(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
            StoreOpenOptions const* options) override;
  void open(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
            StoreOpenOptions const* options) override;
  void update(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
              StoreOpenOptions const* options) override;
  void update(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
              StoreOpenOptions const* options) override;
  unsigned int getNInstances() const override;
  vLCString getClass() const override;
  vLCString getSubClass() const override;
  vLCString getName() const override;
  int getVersion() const override;
  void close() override;
  KeyList getKeyList() const override;
  using AttributeSet::getKeyList;
  using AttributeSet::getAttributeList;
  void addInstances(unsigned int count) override;
  void write(Attribute const& attribute, unsigned int first, unsigned int last) override;
  void write(Attribute const& attribute, std::vector<unsigned int> const& instances) override;
  void write(Attribute const& attribute, Attribute const& key, unsigned int firstGroup,
             unsigned int lastGroup) override;
  void write(Attribute const& attribute, KeyList const& keys) override;
  void addAttribute(Attribute const& attribute) override;
  void getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const override;
  std::list<Attribute> getAttributeList() const override;
  std::list<Attribute> getAttributeList(vUCString const& text, AttributeMatch::AttributeMatchType match) const override;
  void read(Attribute& attribute, unsigned int first, unsigned int last) const override;
  void read(Attribute& attribute, std::vector<unsigned int> const& instances) const override;
  void read(Attribute& attribute, Attribute const& key, unsigned int firstGroup,
            unsigned int lastGroup) const override;
  void read(Attribute& attribute, KeyList const& keys) const override;
  Attribute getAttribute(vUCString const& name) const override;
  bool hasAttribute(vUCString const& name) const override;
  // Raises: "Should not do this on a ZonStoreKVS.".
  void setAttributeClass(vUCString const& name, vUCString const& className) override;
  unsigned int getNAttributes() const override;
  void getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                         vUtlSort::SortOrder::SortOrderType order) const override;
  vHandle<Project> getProject() const override;
  // Raises: "Not yet implemented.".
  void readBufferRange(AttributeSetBuffer& buffer, unsigned int first, unsigned int last) const override;

  void createAttributeSet(vLCString const& name, KeyList const& keys) override;
  void openAttributeSet(vLCString const& name) override;
  void updateAttributeSet(vLCString const& name) override;
  void flush() override;
  vHandle<AttributeSetList> getAttributeSetList() const override;
  void getAttributeSetList(AttributeSetList& names) const override;
  vLCString getAttributeSetName() const override;
  vLCString getPrimaryAttributeSetName() const override;
  bool operator==(Store const& other) const override;
  bool operator!=(Store const& other) const override;
  Store& operator=(PropertyI const& properties) override;

  // The details of the dataset open, null before open or create.
  vHandle<NameDetails> getNameDetails() const { return myDetails; }
  // Whether the data have been loaded (for tests of laziness).
  bool isLoaded() const { return myLoaded; }

 private:
  ZonStoreKVS(ZonStoreKVS const&) = delete;
  ZonStoreKVS& operator=(ZonStoreKVS const&) = delete;

  void myOpen(char const* label, vLCString const& name, int version, bool writeable);
  // The adapter of the dataset type; "HZ" is a horizon.
  void mySetAdapter(vHandle<NameDetails> details);
  // The details of a store name, and the dataset it was found as (empty
  // when it is still to be made). A geometry table's details have no
  // domain, as its name has none.
  vHandle<NameDetails> myNameDetails(vLCString const& name, int version, vString const& domain,
                                     ZonAdapterBase::Spelling& found) const;
  void myMustBeOpen(char const* label) const;
  void myMustBeWriteable(char const* label) const;
  // "Attribute %s has %d values per instance; store %s keeps one value per
  // instance in each database column." (or, for a variable length, "has a
  // length of its own for each instance").
  static void myMustBeScalar(char const* label, Attribute const& attribute, vLCString const& store);
  void myLoadData() const;
  void myWriteData();
  void myReset();
  // Writes what changed of the active set, makes another one active and
  // reads its definitions; its data load on first need.
  void mySwitchSet(char const* label, vLCString const& name);
  static vLCString myMemoryClass(vLCString const& name);
  // The instances holding each tuple of the keys' values, in order:
  // "Duplicate keys found:" when the store holds a tuple twice, and the
  // count message when a tuple is not there.
  std::vector<unsigned int> myBuildListByKeys(char const* label, KeyList const& keys) const;

  static Capi::eDataConversion myDataConversion;

  vHandle<ZonProject> myProject;
  bool myIsOpen;
  bool myWriteable;
  std::unique_ptr<ZonAdapterBase> myAdapter;
  vHandle<NameDetails> myDetails;
  vLCString myName;
  int myVersion;
  mutable KeyList myKeys;
  mutable std::list<Attribute> myAttributes;
  mutable bool myModified;
  mutable bool myLoaded;
  mutable vHandle<InMemoryAttributeSet> myData;
};

#endif
