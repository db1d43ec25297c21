// The shared store suite over the in-memory store.

#include <gtest/gtest.h>

#include "filestore/memory/InMemoryStore.h"
#include "project/Project.h"
#include "testing/StoreConformance.h"

namespace {

// A store created, filled with the reference content and closed: what a
// reader finds.
vHandle<InMemoryStore> referenceStore() {
  vHandle<InMemoryStore> store(new InMemoryStore(vHandle<Project>()));
  store->create("reference", "seismic", "3d", StoreConformance::referenceKeys(), nullptr);
  StoreConformance::populate(*store);
  store->close();
  return store;
}

StoreConformanceCase inMemoryCase() {
  StoreConformanceCase c("InMemoryStore");
  c.openForReading = [] {
    vHandle<InMemoryStore> store = referenceStore();
    store->open("reference", 0, "", "", nullptr);
    return vHandle_cast<AttributeSet>(store);
  };
  c.openForUpdate = [] {
    vHandle<InMemoryStore> store = referenceStore();
    store->update("reference", 0, "", "", nullptr);
    return vHandle_cast<AttributeSet>(store);
  };
  c.makeUnopened = [] { return vHandle<AttributeSet>(new InMemoryStore(vHandle<Project>())); };
  return c;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(InMemoryStore, StoreConformance, ::testing::Values(inMemoryCase()), StoreConformance::caseName);
