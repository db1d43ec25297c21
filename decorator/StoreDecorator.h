#ifndef DECORATOR_STOREDECORATOR_H
#define DECORATOR_STOREDECORATOR_H

// StoreDecorator: a Store that owns another Store and passes everything on to
// it. Views derive from it and override what they change; what they leave
// alone reaches the store below untranslated: the same instance numbers,
// names and arguments.
//
// The decorator shares the decorated store's project and properties (the
// property interface forwards). A handful of operations are deliberately not
// forwarded (its forwarding base leaves them out) and keep the behaviour of
// the bases: isSet, packProperties, unpackProperties, prepareBuffer,
// readBufferRange, flush, writeIMSRange and writeIMSList. readBufferRange thus reads through this object's own read(),
// so that a view's instance map applies to buffered reads too, and flush does
// not reach the store below: a caller who needs that asks for
// getDecoratedStore().
//
// A decorator never closes the store below on its destruction; the counted
// handle alone decides when that store goes. After releaseDecoratedStore()
// every forwarded call fails in the handle's null check.
//
// Decorators are made and unstacked by StoreDecoratorFactory. One thread at
// a time.

#include <list>
#include <vector>

#include "foundation/vHandle.h"
#include "project/ForwardingStore.h"

class StoreDecorator : public ForwardingStore {
 public:
  // Holds its own reference to store and takes over its project.
  explicit StoreDecorator(vHandle<Store> const& store);
  ~StoreDecorator() override;
  // The copy assignment below would hide it.
  using ForwardingStore::operator=;

  // --- The store below.
  // Hands back a counted copy and leaves this decorator with an empty handle.
  virtual vHandle<Store> releaseDecoratedStore();
  // A counted copy.
  virtual vHandle<Store> getDecoratedStore() const;
  // Replaces the store below; the same (non-null) object changes nothing.
  virtual void setDecoratedStore(vHandle<Store> store);

 protected:
  Store& forwardTarget() const override;

  StoreDecorator(StoreDecorator const&) = delete;
  StoreDecorator& operator=(StoreDecorator const&) = delete;

  vHandle<Store> m_decoratedStore;
};

#endif
