#include "decorator/StoreDecorator.h"

#include "project/Project.h"

StoreDecorator::StoreDecorator(vHandle<Store> const& store)
    : ForwardingStore(store->getProject()), m_decoratedStore(store) {}

StoreDecorator::~StoreDecorator() {}

// An empty handle fails in its null check.
Store& StoreDecorator::forwardTarget() const { return *m_decoratedStore; }

// --- the store below ------------------------------------------------------------------------

vHandle<Store> StoreDecorator::releaseDecoratedStore() {
  vHandle<Store> released(m_decoratedStore);
  m_decoratedStore = vHandle<Store>();
  return released;
}

vHandle<Store> StoreDecorator::getDecoratedStore() const { return m_decoratedStore; }

void StoreDecorator::setDecoratedStore(vHandle<Store> store) {
  if (!store.isEmpty() && store == m_decoratedStore) return;
  m_decoratedStore = store;
}
