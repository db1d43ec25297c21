#ifndef DECORATOR_STOREDECORATORFACTORY_H
#define DECORATOR_STOREDECORATORFACTORY_H

// StoreDecoratorFactory: the one way to stack views on a store and to take
// them off again. Each adder takes the store to decorate and returns the new
// outermost store; where it has an output parameter, the same new decorator
// is handed back as its own type too, so that the caller can configure it
// (selectAttribute, addOperator, ...) before its first use.
//
// Removing a decorator does not close it: it goes with its last handle, and
// it leaves the decorator holding an empty handle.

#include "decorator/AttributeMappingDecorator.h"
#include "decorator/AttributeSelectDecorator.h"
#include "decorator/BinDecorator.h"
#include "decorator/BindStoreDecorator.h"
#include "decorator/ConcatStoreDecorator.h"
#include "decorator/GatherStoreDecorator.h"
#include "decorator/InfillStoreDecorator.h"
#include "decorator/MergeStoreDecorator.h"
#include "decorator/RestoreMuteDecorator.h"
#include "decorator/ScratchStoreDecorator.h"
#include "decorator/SelectStoreDecorator.h"
#include "decorator/SortStoreDecorator.h"
#include "foundation/vHandle.h"
#include "project/Store.h"

class StoreDescription;

class StoreDecoratorFactory {
 public:
  // new T(store), handed back in decorator and as the returned store; both
  // handles share one count.
  template <class T>
  static vHandle<Store> addDecorator(vHandle<Store> store, vHandle<T>& decorator) {
    decorator = vHandle<T>(new T(store));
    return vHandle_cast<Store>(decorator);
  }

  // The store under the schema of a mapping file.
  static vHandle<Store> addAttributeMapping(vHandle<Store> store, vFilename const& file);
  // The values of attribute snapped to the bins of binner.
  static vHandle<Store> addBin(vHandle<Store> store, Binner const& binner, Attribute const& attribute);
  // Stores bound end to end, store first; more through addStore.
  static vHandle<Store> addBind(vHandle<Store> store, vHandle<BindStoreDecorator>& decorator);
  // The key grid of a two-key store completed, over the range of all groups.
  static vHandle<Store> addInfill(vHandle<Store> store);
  // Vector attributes shown from time zero, their leading mute restored.
  static vHandle<Store> addRestoreMute(vHandle<Store> store);
  // A store that is closed and deleted from its project when its last
  // handle goes (or at its close).
  static vHandle<Store> addScratch(vHandle<Store> store);
  static vHandle<Store> addAttributeSelect(vHandle<Store> store, vHandle<AttributeSelectDecorator>& decorator);
  // A select view over a new, empty operator collection.
  static vHandle<Store> addSelect(vHandle<Store> store, vHandle<SelectStoreDecorator>& decorator);
  // A sort view, to be given its keys (addSortKey) before its first read.
  static vHandle<Store> addSort(vHandle<Store> store, vHandle<SortStoreDecorator>& decorator);
  // A merge view with store as its first store; forward false merges in
  // descending key order. Further stores are added through the returned
  // store's own type (MergeStoreDecorator::addStore).
  static vHandle<Store> addMerge(vHandle<Store> store, unsigned int cacheMegabytes, bool forward);
  // The attribute sets of store end to end.
  static vHandle<Store> addConcat(vHandle<Store> store);
  static vHandle<Store> addConcat(vHandle<Store> store, vHandle<ConcatStoreDecorator>& decorator);
  // The attribute sets of store interleaved, instance by instance.
  static vHandle<Store> addGather(vHandle<Store> store);
  // Kept so that applications built for the full processing system link;
  // always refused here.
  static vHandle<Store> addOffloadCrosslines(vHandle<Store> store, unsigned int count, StoreDescription* description);
  static vHandle<Store> addOffloadGather(vHandle<Store> store, unsigned int count, StoreDescription* description);

  // The store below the outermost decorator (released from it), or the
  // store itself when it is no decorator.
  static vHandle<Store> removeDecorator(vHandle<Store> store);
  // The innermost store, every decorator on the way released.
  static vHandle<Store> removeAllDecorators(vHandle<Store> store);

 private:
  StoreDecoratorFactory() = delete;
};

#endif
