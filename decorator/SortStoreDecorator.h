#ifndef DECORATOR_SORTSTOREDECORATOR_H
#define DECORATOR_SORTSTOREDECORATOR_H

// SortStoreDecorator: a view of a store in the order of one or two key
// attributes, each ascending or descending. At the first read the keys of
// all instances are gathered from the store below in blocks of 1024, sorted
// in place by a heap sort that carries the instance numbers along, and the
// resulting index maps every later read: instance k of the view is
// index[k-1] of the store below, and a read of the view is one list read
// below. The index is made once; a store that grows afterwards does not
// grow the view.
//
// The key list of the view is the sort keys, so that key and group reads
// through the view find the view's own order. Writes are refused: through a
// reordered view they would land on other instances than meant.
//
// Keys may be of type vINT16, vINT32, vINT64, vFLOAT32 or vFLOAT64; other
// types are refused at the first read. The sort is not stable, and a
// descending key is the ascending order mirrored, ties included.

#include <list>
#include <vector>

#include "attribute/Attribute.h"
#include "attribute/KeyList.h"
#include "decorator/StoreDecoratorImp.h"
#include "foundation/vHandle.h"
#include "foundation/vUCString.h"
#include "foundation/vUtlSort.h"

class SortStoreDecorator : public StoreDecoratorImp {
 public:
  // Keys are gathered in blocks of this many instances.
  static unsigned int const kBlockSize = 1024;

  explicit SortStoreDecorator(vHandle<Store> const& store);
  ~SortStoreDecorator() override;

  // Appends a sort key; the first is the primary one. At most two keys.
  // A key added after the first read is listed but does not re-sort.
  void addSortKey(vUCString const& name, vUtlSort::SortOrder::SortOrderType order);

  // The sort keys, in the order they were added.
  KeyList getKeyList() const override;
  void getKeyList(KeyList& keys) const override;
  // Refused: "Has not been written yet."
  void addInstances(unsigned int count) override;
  void write(Attribute const& attribute, unsigned int first, unsigned int last) override;
  void write(Attribute const& attribute, std::vector<unsigned int> const& instances) override;
  void write(Attribute const& attribute, Attribute const& key, unsigned int firstGroup,
             unsigned int lastGroup) override;
  void write(Attribute const& attribute, KeyList const& keys) override;
  void addAttribute(Attribute const& attribute) override;
  Store& operator=(PropertyI const& properties) override;

  void doReadList(Attribute& attribute, std::vector<unsigned int> const& instances) const override;
  // A last of 0 reads to the last instance of the view.
  void doReadRange(Attribute& attribute, unsigned int first, unsigned int last) const override;

  // The primary key's values and the number of instances of each, as the
  // store below has them (ascending), gathered at set-up.
  vHandle<Attribute> getGroupAttribute() const;
  std::vector<unsigned int> const& getGroupSizes() const;
  unsigned int getNGroups() const;
  // Instance k of the view is entry k-1, a number of the store below.
  std::vector<unsigned int> const& getIndex() const;

 private:
  void mySetupRead() const;
  void myGatherKeys(unsigned int n) const;
  void mySort1Key() const;
  void mySort2Key() const;

  std::list<vUCString> m_sortKeyNames;
  std::list<vUtlSort::SortOrder::SortOrderType> m_sortOrders;
  mutable std::list<Attribute> m_keyAttributes;
  mutable vHandle<Attribute> m_groupAttribute;
  mutable std::vector<unsigned int> m_groupSizes;
  mutable unsigned int m_nGroups;
  mutable std::vector<unsigned int> m_index;
  KeyList m_sortKeys;
  mutable bool m_isSetup;
};

#endif
