#include "decorator/StoreDecoratorFactory.h"

#include "decorator/SelectOperatorCollection.h"
#include "foundation/Message.h"

vHandle<Store> StoreDecoratorFactory::addScratch(vHandle<Store> store) {
  vHandle<ScratchStoreDecorator> decorator;
  return addDecorator(store, decorator);
}

vHandle<Store> StoreDecoratorFactory::addAttributeSelect(vHandle<Store> store,
                                                         vHandle<AttributeSelectDecorator>& decorator) {
  return addDecorator(store, decorator);
}

vHandle<Store> StoreDecoratorFactory::addSelect(vHandle<Store> store, vHandle<SelectStoreDecorator>& decorator) {
  vHandle<SelectOperatorCollection> collection(new SelectOperatorCollection);
  decorator = vHandle<SelectStoreDecorator>(new SelectStoreDecorator(store, collection));
  return vHandle_cast<Store>(decorator);
}

vHandle<Store> StoreDecoratorFactory::addSort(vHandle<Store> store, vHandle<SortStoreDecorator>& decorator) {
  return addDecorator(store, decorator);
}

vHandle<Store> StoreDecoratorFactory::addMerge(vHandle<Store> store, unsigned int cacheMegabytes, bool forward) {
  return vHandle<Store>(new MergeStoreDecorator(store, cacheMegabytes, forward));
}

vHandle<Store> StoreDecoratorFactory::addConcat(vHandle<Store> store) {
  vHandle<ConcatStoreDecorator> decorator;
  return addDecorator(store, decorator);
}

vHandle<Store> StoreDecoratorFactory::addConcat(vHandle<Store> store, vHandle<ConcatStoreDecorator>& decorator) {
  return addDecorator(store, decorator);
}

vHandle<Store> StoreDecoratorFactory::addGather(vHandle<Store> store) {
  vHandle<GatherStoreDecorator> decorator;
  return addDecorator(store, decorator);
}

vHandle<Store> StoreDecoratorFactory::addOffloadCrosslines(vHandle<Store>, unsigned int, StoreDescription*) {
  Message::fatal("StoreDecoratorFactory::addOffloadDCrosslinesDecorator", 0, "Not supported ... no Dorn available!");
}

vHandle<Store> StoreDecoratorFactory::addOffloadGather(vHandle<Store>, unsigned int, StoreDescription*) {
  Message::fatal("StoreDecoratorFactory::addOffloadGatherDecorator", 0, "Not supported ... no Dorn available!");
}

vHandle<Store> StoreDecoratorFactory::removeDecorator(vHandle<Store> store) {
  StoreDecorator* decorator = dynamic_cast<StoreDecorator*>(store.pointer());
  if (decorator == nullptr) return store;
  return decorator->releaseDecoratedStore();
}

vHandle<Store> StoreDecoratorFactory::removeAllDecorators(vHandle<Store> store) {
  vHandle<Store> current = store;
  for (;;) {
    vHandle<Store> below = removeDecorator(current);
    if (below == current) return current;
    current = below;
  }
}

vHandle<Store> StoreDecoratorFactory::addAttributeMapping(vHandle<Store> store, vFilename const& file) {
  AttributeMappingDecorator* mapping = new AttributeMappingDecorator(store);
  vHandle<Store> handle(mapping);
  mapping->processExpression(file);
  return handle;
}

vHandle<Store> StoreDecoratorFactory::addBin(vHandle<Store> store, Binner const& binner, Attribute const& attribute) {
  BinDecorator* bin = new BinDecorator(store);
  vHandle<Store> handle(bin);
  bin->open(binner, attribute);
  return handle;
}

vHandle<Store> StoreDecoratorFactory::addRestoreMute(vHandle<Store> store) {
  return vHandle<Store>(new RestoreMuteDecorator(store));
}

vHandle<Store> StoreDecoratorFactory::addBind(vHandle<Store> store, vHandle<BindStoreDecorator>& decorator) {
  return addDecorator(store, decorator);
}

vHandle<Store> StoreDecoratorFactory::addInfill(vHandle<Store> store) {
  return vHandle<Store>(new InfillStoreDecorator(store, false));
}
