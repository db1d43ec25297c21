#ifndef DECORATOR_MERGESTOREDECORATOR_H
#define DECORATOR_MERGESTOREDECORATOR_H

// MergeStoreDecorator: a view that joins several stores into one sequence,
// ordered by the value of their primary key (see
// Merge::MergeMethodNoSecondarySort). The store given at construction is
// the first; more are added until the first question is asked of the view,
// which fixes them. The view reads by range and by list; reads by groups and
// keys, and writes, are refused.

#include <list>
#include <vector>

#include "decorator/MergeMethodNoSecondarySort.h"
#include "decorator/StoreDecorator.h"

class MergeStoreDecorator : public StoreDecorator {
 public:
  // cacheMegabytes: memory for the key scan's cache, over all stores;
  // forward false merges in descending key order.
  MergeStoreDecorator(vHandle<Store> const& store, unsigned int cacheMegabytes, bool forward);
  ~MergeStoreDecorator() override;

  void addStore(vHandle<Store> const& store);
  Merge::MergeMethodNoSecondarySort const& getMethod() const { return m_method; }

  unsigned int getNInstances() const override;
  KeyList getKeyList() const override;
  void getKeyList(KeyList& keys) const override;
  std::list<Attribute> getAttributeList() const override;
  void getAttributeList(std::list<Attribute>& attributes) const override;
  std::list<Attribute> getAttributeList(vUCString const& text, AttributeMatch::AttributeMatchType match) const override;
  void read(Attribute& attribute, unsigned int first, unsigned int last) const override;
  void read(Attribute& attribute, std::vector<unsigned int> const& instances) const override;
  Attribute getAttribute(vUCString const& name) const override;
  bool hasAttribute(vUCString const& name) const override;
  void openAttributeSet(vLCString const& name) override;
  vHandle<AttributeSetList> getAttributeSetList() const override;
  void getAttributeSetList(AttributeSetList& names) const override;
  vLCString getAttributeSetName() const override;

  // Refused: "Has not been written yet!"
  void read(Attribute& attribute, Attribute const& key, unsigned int firstGroup,
            unsigned int lastGroup) const override;
  void read(Attribute& attribute, KeyList const& keys) const override;
  void addInstances(unsigned int count) override;
  void write(Attribute const& attribute, unsigned int first, unsigned int last) override;
  void write(Attribute const& attribute, std::vector<unsigned int> const& instances) override;
  void write(Attribute const& attribute, Attribute const& key, unsigned int firstGroup,
             unsigned int lastGroup) override;
  void write(Attribute const& attribute, KeyList const& keys) override;
  void addAttribute(Attribute const& attribute) override;

 private:
  Merge::MergeMethodNoSecondarySort m_method;
};

#endif
