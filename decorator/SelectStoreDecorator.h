#ifndef DECORATOR_SELECTSTOREDECORATOR_H
#define DECORATOR_SELECTSTOREDECORATOR_H

// SelectStoreDecorator: a view of the instances of a store that pass a
// SelectOperatorCollection. Instance k of the view is the k-th selected
// instance of the store below, in ascending order.
//
// The selection is made lazily, at the first getNInstances,
// getCurrentSelection or read, so that operators can be added first;
// addOperator and setSelection afterwards make it be made again at the next
// need. Every read goes to the store below as a list read of the mapped
// numbers. Writes are refused: through a filtered view they would land on
// other instances than meant.

#include <vector>

#include "decorator/SelectOperatorCollection.h"
#include "decorator/StoreDecoratorImp.h"
#include "foundation/vHandle.h"

class SelectStoreDecorator : public StoreDecoratorImp {
 public:
  SelectStoreDecorator(vHandle<Store> const& store, vHandle<SelectOperatorCollection> const& collection);
  ~SelectStoreDecorator() override;

  // Hands the operator to the collection; the selection is made again.
  void addOperator(vHandle<SelectOperatorBase> const& op);
  // Another collection; the selection is made again.
  void setSelection(vHandle<SelectOperatorCollection> const& collection);
  vHandle<SelectOperatorCollection> getSelection() const { return m_collection; }
  // Also the collection's.
  void setDebugMode(bool debug);
  bool getDebugMode() const { return m_debug; }
  // The selected instances, numbers of the store below.
  std::vector<unsigned int> getCurrentSelection() const;

  unsigned int getNInstances() const override;
  // Refused: "Has not been written yet."
  void addInstances(unsigned int count) override;
  void write(Attribute const& attribute, unsigned int first, unsigned int last) override;
  void write(Attribute const& attribute, std::vector<unsigned int> const& instances) override;
  void write(Attribute const& attribute, Attribute const& key, unsigned int firstGroup,
             unsigned int lastGroup) override;
  void write(Attribute const& attribute, KeyList const& keys) override;
  void addAttribute(Attribute const& attribute) override;
  Store& operator=(PropertyI const& properties) override;

  // The listed instances of the view.
  void doReadList(Attribute& attribute, std::vector<unsigned int> const& instances) const override;
  // Instances first to last of the view (last 0: to the last).
  void doReadRange(Attribute& attribute, unsigned int first, unsigned int last) const override;

 private:
  void mySetup() const;

  mutable std::vector<unsigned int> m_selected;
  vHandle<SelectOperatorCollection> m_collection;
  mutable bool m_isSetup;
  bool m_debug;
};

#endif
