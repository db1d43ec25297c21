#ifndef FILESTORE_MEMORY_INMEMORYSTORE_H
#define FILESTORE_MEMORY_INMEMORYSTORE_H

// InMemoryStore: a store held wholly in memory. Its attribute sets are
// InMemoryAttributeSets kept in a list in the store, the primary one first;
// a secondary set lives in the list from its creation on, and keeps its
// data when it is closed. The packed form carries the whole store, so that
// it can cross a channel or go to a file.
//
// The direct operations of InMemoryAttributeSet are offered here too, by
// the same names: each works on the store's active attribute set.
//
// For Store::writeIMSRange and writeIMSList a program installs
// asAttributeSet with Store::setInMemoryStoreView (registry/ does).

#include <list>
#include <vector>

#include "filestore/memory/InMemoryAttributeSet.h"
#include "foundation/Packable.h"
#include "project/StoreImp.h"

class InMemoryStore : public StoreImp, public Packable {
 public:
  static constexpr short Magic = 3063;
  static constexpr short Version = 1;

  explicit InMemoryStore(vHandle<Project> const& project);
  // A deep copy: every set is cloned, none is shared.
  InMemoryStore(InMemoryStore const& other);
  ~InMemoryStore() override;

  // How Store sees an InMemoryStore: as itself.
  static AttributeSet const& asAttributeSet(InMemoryStore const& store);

  void pack(Packer& packer) const override;
  void unpack(Packer& packer) override;
  virtual bool loadRangeFromStore(bool replace, vHandle<Store> source, unsigned int first, unsigned int last);
  virtual void deleteInstances(unsigned int n);
  virtual bool hasAttribute(vUCStringTableData const* const& name) const;
  bool hasAttribute(vUCString const& name) const override;

  void setClass(vLCString const& className);
  void setSubClass(vLCString const& subClass);
  void setKeyList(KeyList& keys);
  void keepInstances(std::vector<unsigned int> const& instances);
  void renameAttribute(vUCString const& oldName, vUCString const& newName);
  void deleteAttribute(vUCString const& name);
  void setAttributeAndData(Attribute& attribute);
  Attribute& getAttributeAndData(vUCString const& name);
  Attribute const& getAttributeAndData(vUCString const& name) const;
  Attribute const& readAttributeAndData(vUCString const& name) const;
  Attribute const& readAttributeAndData(vUCStringTableData const* name) const;
  Attribute& updateAttributeAndData(vUCString const& name);
  Attribute& updateAttributeAndData(vUCStringTableData const* name);
  vHandle<AttributeSetBuffer> getAttributeSetBuffer();
  vHandle<AttributeSetBuffer> const getAttributeSetBuffer() const;

  // The sets of the store, the primary first.
  std::list<vHandle<AttributeSet> > const& getAttributeSets() const { return m_sets; }

 protected:
  // Empties the list of sets.
  void doCreate() override;
  // A new set, put at the end of the list.
  vHandle<AttributeSet> doCreateAttributeSet(vHandle<Project> const& project) const override;
  // A copy of an InMemoryAttributeSet (any other set raises std::bad_cast),
  // put at the end of the list.
  vHandle<AttributeSet> doCreateAttributeSetClone(AttributeSet const& set) override;
  // The set of the list that bears the set's constructed name.
  vHandle<AttributeSet> doFindAttributeSet(vLCString const& name) override;

 private:
  InMemoryStore& operator=(InMemoryStore const&) = delete;
  InMemoryAttributeSet& myActive() const;

  mutable std::list<vHandle<AttributeSet> > m_sets;
};

#endif
