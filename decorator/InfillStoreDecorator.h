#ifndef DECORATOR_INFILLSTOREDECORATOR_H
#define DECORATOR_INFILLSTOREDECORATOR_H

// InfillStoreDecorator: a two-key store shown with its key grid complete
// (InfillAttributeSetIndexingTable). The keys are the store's first two
// unless addKeyAttributes names others. Key attributes read the grid;
// every other attribute reads the store's values at the instances it has
// and zeros at the instances the view invents. Read-only.

#include "decorator/InfillAttributeSetIndexingTable.h"
#include "decorator/StoreDecoratorImp.h"

class InfillStoreDecorator : public StoreDecoratorImp {
 public:
  // padWithinGroup: each group completed over its own range rather than
  // over the range of all.
  InfillStoreDecorator(vHandle<Store> const& store, bool padWithinGroup);
  // Any of the table's pad types.
  InfillStoreDecorator(vHandle<Store> const& store, InfillAttributeSetIndexingTable::AttrPadType padType);
  ~InfillStoreDecorator() override;

  void addKeyAttributes(vUCString const& primary, vUCString const& secondary);
  void applyPaddingLimits(double minimum, double maximum, double increment);
  void getAttributePadLimits(double& minimum, double& maximum, double& increment) const;

  unsigned int getNInstances() const override;
  void getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const override;
  void getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                         vUtlSort::SortOrder::SortOrderType order) const override;
  void write(Attribute const& attribute, unsigned int first, unsigned int last) override;
  void write(Attribute const& attribute, std::vector<unsigned int> const& instances) override;
  void write(Attribute const& attribute, Attribute const& groups, unsigned int firstGroup,
             unsigned int lastGroup) override;
  void write(Attribute const& attribute, KeyList const& keys) override;
  void addAttribute(Attribute const& attribute) override;
  void addInstances(unsigned int count) override;

  void doReadList(Attribute& attribute, std::vector<unsigned int> const& instances) const override;
  void doReadRange(Attribute& attribute, unsigned int first, unsigned int last) const override;

 private:
  InfillTemplate const& myTemplate() const;
  // The view's instances read into attribute: key values from the grid,
  // other values from the store below (zero where invented).
  void doTranslateInstList(Attribute& attribute, std::vector<unsigned int> const& instances) const;

  vHandle<InfillAttributeSetIndexingTable> m_infillTable;
};

#endif
