#ifndef DECORATOR_STOREDECORATORIMP_H
#define DECORATOR_STOREDECORATORIMP_H

// StoreDecoratorImp: the base of read-only views that change which instances
// a store shows or in which order. A view implements two reads in its own
// numbering, doReadRange and doReadList, and maps the numbers down to the
// store below; reads by groups and by keys, and the group questions, are
// answered by an indexing table over this view itself (not over the store
// below), so that they see the view's instances in the view's order and end
// in the view's list read.
//
// Instance numbers given to a view are 1-based numbers of the view; ranges
// are inclusive.

#include <vector>

#include "decorator/StoreDecorator.h"
#include "filestore/disk/AttributeSetIndexingTable.h"
#include "foundation/vHandle.h"

class StoreDecoratorImp : public StoreDecorator {
 public:
  explicit StoreDecoratorImp(vHandle<Store> const& store);
  ~StoreDecoratorImp() override;

  void getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const override;
  void read(Attribute& attribute, unsigned int first, unsigned int last) const override;
  void read(Attribute& attribute, std::vector<unsigned int> const& instances) const override;
  // The instances of the groups, then the view's list read.
  void read(Attribute& attribute, Attribute const& groups, unsigned int firstGroup,
            unsigned int lastGroup) const override;
  // The instance of each key tuple, then the view's list read; every tuple
  // must be found once.
  void read(Attribute& attribute, KeyList const& keys) const override;
  void getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                         vUtlSort::SortOrder::SortOrderType order) const override;
  Store& operator=(PropertyI const& properties) override;

  // Reads the listed instances of this view, in list order.
  virtual void doReadList(Attribute& attribute, std::vector<unsigned int> const& instances) const = 0;
  // Reads instances first to last of this view.
  virtual void doReadRange(Attribute& attribute, unsigned int first, unsigned int last) const = 0;

 protected:
  // Checks shared by views, with the texts of the in-process sets. A range:
  // a last of 0 stands for the last instance n; first must be at least 1 and
  // at most last. Returns the effective last.
  static unsigned int myCheckFirstLast(char const* label, unsigned int first, unsigned int last, unsigned int n);
  // A list: no instance 0 and none above n.
  static void myCheckList(char const* label, Attribute const& attribute, std::vector<unsigned int> const& instances,
                          unsigned int n);

  // The instances a view shows have changed, or will at its next set-up:
  // group tables built on the old ones are forgotten.
  void myInstancesChanged() const;

  vHandle<AttributeSetIndexingTable> m_indexingTable;
};

#endif
