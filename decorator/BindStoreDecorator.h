#ifndef DECORATOR_BINDSTOREDECORATOR_H
#define DECORATOR_BINDSTOREDECORATOR_H

// BindStoreDecorator: stores of one shape (class, subclass, keys, vector
// layouts) bound end to end, the decorated store first. The attributes are
// the union of the stores' attributes and "STORE.ID", the 1-based ordinal
// of the store an instance comes from, taken afresh from the stores at
// each question; a store that lacks an attribute reads zeros for it. Read-only; reads by groups and keys are not
// offered.

#include <list>
#include <vector>

#include "decorator/StoreDecorator.h"
#include "filestore/disk/AttributeSetIndexingTable.h"

class BindStoreDecorator : public StoreDecorator {
 public:
  explicit BindStoreDecorator(vHandle<Store> const& store);
  ~BindStoreDecorator() override;

  // Opens the store's primary set, checks that it matches the first store
  // and appends it.
  void addStore(vHandle<Store> store);
  std::list<vHandle<Store> > const& getStores() const { return m_stores; }

  unsigned int getNInstances() const override;
  void addInstances(unsigned int count) override;
  void write(Attribute const& attribute, unsigned int first, unsigned int last) override;
  void write(Attribute const& attribute, std::vector<unsigned int> const& instances) override;
  void write(Attribute const& attribute, Attribute const& groups, unsigned int firstGroup,
             unsigned int lastGroup) override;
  void write(Attribute const& attribute, KeyList const& keys) override;
  void addAttribute(Attribute const& attribute) override;
  void getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const override;
  std::list<Attribute> getAttributeList() const override;
  void getAttributeList(std::list<Attribute>& attributes) const override;
  std::list<Attribute> getAttributeList(vUCString const& text, AttributeMatch::AttributeMatchType match) const override;
  void read(Attribute& attribute, unsigned int first, unsigned int last) const override;
  void read(Attribute& attribute, std::vector<unsigned int> const& instances) const override;
  void read(Attribute& attribute, Attribute const& groups, unsigned int firstGroup,
            unsigned int lastGroup) const override;
  void read(Attribute& attribute, KeyList const& keys) const override;
  Attribute getAttribute(vUCString const& name) const override;
  bool hasAttribute(vUCString const& name) const override;
  unsigned int getNAttributes() const override;
  void getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                         vUtlSort::SortOrder::SortOrderType order) const override;
  void openAttributeSet(vLCString const& name) override;
  void updateAttributeSet(vLCString const& name) override;

 private:
  void myCheckClassOK(Store const& store) const;
  void myCheckKeysOK(Store const& store) const;
  void myCheckAttributesOK(Store const& store) const;
  void myCheckVectorsOK(Store const& store, Attribute const& mine, Attribute const& theirs) const;
  bool myIsStoreID(Attribute const& attribute) const { return attribute.getNameID() == m_storeID.getNameID(); }
  // Reads instances first to last of store into attribute from position at.
  void myGetPartialData(Store const& store, Attribute& attribute, unsigned int first, unsigned int last,
                        unsigned int at) const;
  void myGetPartialListData(Store const& store, Attribute& attribute, std::vector<unsigned int> const& local,
                            std::vector<unsigned int> const& positions) const;
  static void mySetStoreID(Attribute& attribute, unsigned int at, unsigned int count, int id);
  template <class Each>
  void mySetAttributeSet(char const* label, vLCString const& name, Each each);

  std::list<vHandle<Store> > m_stores;
  Attribute m_storeID;
  mutable vHandle<AttributeSetIndexingTable> m_indexingTable;
};

#endif
