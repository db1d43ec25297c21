#ifndef DECORATOR_MERGEMETHODNOSECONDARYSORT_H
#define DECORATOR_MERGEMETHODNOSECONDARYSORT_H

// Merge::MergeMethodNoSecondarySort: joins stores by the value of their
// primary key alone. At validation each store is scanned for runs of equal
// key value (groups); the groups of all stores are sorted by key, ascending
// or, in reverse mode, descending, and numbered through. Within a group the
// store's own order stands; groups of equal key keep no defined order among
// themselves. One 16-byte bin per group, not per instance.
//
// Stores with no instances are dropped at validation. Stores must share the
// first store's key list; an attribute that several stores have must be the
// same in all of them, and one that a store lacks reads as zeros for that
// store's instances.
//
// A range read maps to one read per run of consecutive instances of one
// store; a list read to one list read per store. The start of the last
// range read is kept, so that reading the same start again needs no search.

#include <map>
#include <vector>

#include "decorator/MergeMethodBase.h"
#include "foundation/DataType.h"
#include "foundation/vString.h"
#include "foundation/vUCStringTable.h"

namespace Merge {

class MergeMethodNoSecondarySort : public MergeMethodBase {
 public:
  // What the method keeps of one store.
  class StoreData {
   public:
    StoreData(vHandle<Store> const& store, KeyList const& keys);
    ~StoreData();

    // A read through a one-window cache per attribute (see cacheSize).
    void read(Attribute& attribute, unsigned int first, unsigned int last) const;
    // Whether the store has the attribute, asked once per name.
    bool hasAttribute(Attribute const& attribute) const;
    // Appends a key value to the key array; returns its index.
    template <class T>
    unsigned int saveKey(T value);
    template <class T>
    T keyAt(unsigned int index) const {
      return static_cast<T const*>(keyValues)[index];
    }
    void releaseKeys();

    vHandle<Store> store;
    KeyList keys;
    // One value per group, of the key's element type; malloc'ed.
    void* keyValues;
    unsigned int nKeyValues;
    unsigned int keyCapacity;
    // "<name>.<version>"
    vString title;
    DataType keyType;
    unsigned int nInstances;
    // Instances per cache window; 0 reads directly.
    unsigned int cacheSize;

   private:
    struct CacheEntry {
      unsigned int first = 0;
      unsigned int last = 0;
      Attribute data;
    };
    StoreData(StoreData const&) = delete;
    StoreData& operator=(StoreData const&) = delete;

    mutable std::map<vUCStringTableData const*, bool> m_attributeMap;
    mutable std::map<vUCStringTableData const*, CacheEntry> m_cache;
  };

  // One run of equal key in one store.
  struct Group {
    // The view's number of the group's first instance; during collation,
    // the index of the group's key in its store's key array.
    unsigned int mergedFirst;
    unsigned int store;
    unsigned int firstInStore;
    unsigned int count;
  };

  explicit MergeMethodNoSecondarySort(unsigned int cacheMegabytes = 0);
  ~MergeMethodNoSecondarySort() override;

  unsigned int getNInstances() const override;
  void read(Attribute& attribute, unsigned int first, unsigned int last) const override;
  void read(Attribute& attribute, std::vector<unsigned int> const& instances) const override;
  // The union of the stores' attributes.
  std::list<Attribute> getAttributeList() const override;
  void getAttributeList(std::list<Attribute>& attributes) const override;
  // These three ask the first store that is kept.
  std::list<Attribute> getAttributeList(vUCString const& text, AttributeMatch::AttributeMatchType match) const override;
  bool hasAttribute(vUCString const& name) const override;
  Attribute getAttribute(vUCString const& name) const override;
  vLCString getAttributeSetName() const override;
  vHandle<Store::AttributeSetList> getAttributeSetList() const override;
  void getAttributeSetList(Store::AttributeSetList& names) const override;
  KeyList getKeyList() const override;
  void getKeyList(KeyList& keys) const override;
  // Blank or the set name kept; nothing to do.
  void openAttributeSet(vLCString const& name) override;

  // For tests and tools: the sorted group bins, and how many searches the
  // reads have made.
  std::vector<Group> const& getGroups() const;
  unsigned long long getNSearches() const { return m_nSearches; }
  unsigned int getNStores() const { return static_cast<unsigned int>(m_stores.size()); }
  unsigned int getBytesPerInstance() const { return m_bytesPerInstance; }
  StoreData const& getStoreData(unsigned int i) const { return *m_stores[i]; }

 protected:
  void myDoReset() override;
  void myDoAddStore(vHandle<Store> const& store) override;
  void myDoValidateStores() const override;

 private:
  struct Run;

  void myCollateMergeData() const;
  template <class T>
  void myScanForGroups(unsigned int storeIndex) const;
  template <class T>
  void mySortGroups() const;
  template <class T>
  void mySaveGroupAndKeyValue(StoreData& store, unsigned int storeIndex, T value, unsigned int first,
                              unsigned int count) const;
  // The group that holds view instance k.
  unsigned int myFindGroup(char const* label, unsigned int k) const;
  // Checks one group's part of a read and adds it to the run.
  void myGroupRead(Group const& group, unsigned int offset, Attribute& attribute, unsigned int outputPosition,
                   unsigned int count, Run& run) const;
  void myFlush(Run& run, Attribute& attribute) const;
  Store const& myQuestionStore() const;

  mutable std::vector<vHandle<StoreData>> m_stores;
  mutable std::vector<Group> m_groups;
  bool m_collate;
  DataType m_keyType;
  mutable std::list<vLCString> m_setNames;
  KeyList m_keys;
  mutable std::list<Attribute> m_attributes;
  mutable unsigned int m_nInstances;
  mutable unsigned int m_bytesPerInstance;
  // The start of the last range read: its first instance, group, offset.
  mutable unsigned int m_nextExpected;
  mutable unsigned int m_positionGroup;
  mutable unsigned int m_positionOffset;

  // The store that definitions are asked of when none is kept.
  vHandle<Store> m_firstStore;
  vString m_firstTitle;
  mutable unsigned long long m_nSearches;
};

}  // namespace Merge

#endif
