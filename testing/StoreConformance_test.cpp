// The conformance suite run on the in-memory test double: as a store
// (StoreImp over test sets), as a bare attribute set, and through the
// wrapper that chooses a set by the project's details.

#include <gtest/gtest.h>

#include "project/CapiAttributeSetW.h"
#include "project/CapiMaker.h"
#include "project/Project.h"
#include "project/UTProject.h"
#include "project/UTProjectCatalog.h"
#include "testing/StoreConformance.h"
#include "testing/TestMemoryStore.h"

namespace {

char const* const kStore = "reference";

// A shelf holding the reference store, written through a store's create.
std::shared_ptr<TestMemoryShelf> referenceShelf() {
  auto shelf = std::make_shared<TestMemoryShelf>();
  TestMemoryStore writer(vHandle<Project>(), shelf);
  writer.create(kStore, "seismic", "3d", StoreConformance::referenceKeys(), nullptr);
  StoreConformance::populate(writer);
  writer.close();
  return shelf;
}

vHandle<AttributeSet> testStore(bool open, bool update) {
  vHandle<AttributeSet> store(new TestMemoryStore(vHandle<Project>(), referenceShelf()));
  if (update)
    store->update(kStore, 0, "seismic", "3d", nullptr);
  else if (open)
    store->open(kStore, 0, "seismic", "3d", nullptr);
  return store;
}

StoreConformanceCase storeCase() {
  StoreConformanceCase c("TestMemoryStore");
  c.openForReading = [] { return testStore(true, false); };
  c.openForUpdate = [] { return testStore(true, true); };
  c.makeUnopened = [] { return testStore(false, false); };
  // The shelf outlives the store: what a close keeps, an open finds.
  c.reopen = [](vHandle<AttributeSet> written) {
    written->close();
    written->open(kStore, 0, "seismic", "3d", nullptr);
    return written;
  };
  return c;
}

vHandle<AttributeSet> testSet(bool update) {
  vHandle<AttributeSet> set(new TestMemoryAttributeSet(vHandle<Project>(), referenceShelf()));
  if (update)
    set->update(kStore, 0, "", "", nullptr);
  else
    set->open(kStore, 0, "", "", nullptr);
  return set;
}

// A bare set has the set's own words for a write to a read-only set and
// for a read before opening.
StoreConformanceCase setCase() {
  StoreConformanceCase c("TestMemoryAttributeSet");
  c.openForReading = [] { return testSet(false); };
  c.openForUpdate = [] { return testSet(true); };
  c.makeUnopened = [] {
    return vHandle<AttributeSet>(new TestMemoryAttributeSet(vHandle<Project>(), referenceShelf()));
  };
  c.texts.notWritable = "AttributeSet '%s' is not open for modification.";
  c.texts.notOpen = "AttributeSet is not open.";
  return c;
}

// The wrapper finds the class in the project's listing and makes its set
// through the registered maker.
std::shared_ptr<TestMemoryShelf>& wrapperShelf() {
  static std::shared_ptr<TestMemoryShelf> shelf;
  return shelf;
}

vHandle<AttributeSet> makeSetOnShelf(vHandle<Project> const& project, vLCString const& storeClass,
                                     vLCString const&) {
  EXPECT_EQ("seismic", std::string(storeClass.c_str()));
  return vHandle<AttributeSet>(new TestMemoryAttributeSet(project, wrapperShelf()));
}

vHandle<AttributeSet> wrapped(bool open, bool update) {
  CapiMaker::registerAttributeSetMaker(makeSetOnShelf);
  wrapperShelf() = referenceShelf();
  UTProject* project = new UTProject(vHandle<ProjectCatalog>(new UTProjectCatalog("host", ProjectType::UNITTEST)));
  project->open("survey");
  StoreDetails details(ProjectType::UNITTEST, "", kStore, 1);
  details.setClass("seismic");
  details.setSubClass("3d");
  project->addStore(details);
  vHandle<AttributeSet> set(new CapiAttributeSetW(vHandle<Project>(project)));
  if (update)
    set->update(kStore, 1, "", "", nullptr);
  else if (open)
    set->open(kStore, 1, "", "", nullptr);
  return set;
}

StoreConformanceCase wrapperCase() {
  StoreConformanceCase c("CapiAttributeSetW");
  c.openForReading = [] { return wrapped(true, false); };
  c.openForUpdate = [] { return wrapped(true, true); };
  c.makeUnopened = [] { return wrapped(false, false); };
  c.texts.notWritable = "AttributeSet '%s' is not open for modification.";
  c.texts.notOpen = "The AttributeSet has not been opened yet.";
  return c;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(TestDouble, StoreConformance, ::testing::Values(storeCase(), setCase(), wrapperCase()),
                         StoreConformance::caseName);
