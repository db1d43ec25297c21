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

enum Opening { kUnopened, kReading, kUpdate };

// A store or a bare set on a shelf of its own.
template <class T>
vHandle<AttributeSet> onShelf(Opening how) {
  vHandle<AttributeSet> set(new T(vHandle<Project>(), referenceShelf()));
  if (how == kUpdate)
    set->update(kStore, 0, "", "", nullptr);
  else if (how == kReading)
    set->open(kStore, 0, "", "", nullptr);
  return set;
}

StoreConformanceCase storeCase() {
  StoreConformanceCase c("TestMemoryStore");
  c.openForReading = [] { return onShelf<TestMemoryStore>(kReading); };
  c.openForUpdate = [] { return onShelf<TestMemoryStore>(kUpdate); };
  c.makeUnopened = [] { return onShelf<TestMemoryStore>(kUnopened); };
  // The shelf outlives the store: what a close keeps, an open finds.
  c.reopen = [](vHandle<AttributeSet> written) {
    written->close();
    written->open(kStore, 0, "seismic", "3d", nullptr);
    return written;
  };
  return c;
}

// A bare set has the set's own words for a write to a read-only set and
// for a read before opening.
StoreConformanceCase setCase() {
  StoreConformanceCase c("TestMemoryAttributeSet");
  c.openForReading = [] { return onShelf<TestMemoryAttributeSet>(kReading); };
  c.openForUpdate = [] { return onShelf<TestMemoryAttributeSet>(kUpdate); };
  c.makeUnopened = [] { return onShelf<TestMemoryAttributeSet>(kUnopened); };
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

vHandle<AttributeSet> wrapped(Opening how) {
  CapiMaker::registerAttributeSetMaker(makeSetOnShelf);
  wrapperShelf() = referenceShelf();
  UTProject* project = new UTProject(vHandle<ProjectCatalog>(new UTProjectCatalog("host", ProjectType::UNITTEST)));
  project->open("survey");
  project->addStore(
      StoreDetails(kStore, 1, "seismic", "3d", 0, "", "", vDate(vDate::Invalid), "", 0, 0, ProjectType::UNITTEST));
  vHandle<AttributeSet> set(new CapiAttributeSetW(vHandle<Project>(project)));
  if (how == kUpdate)
    set->update(kStore, 1, "", "", nullptr);
  else if (how == kReading)
    set->open(kStore, 1, "", "", nullptr);
  return set;
}

StoreConformanceCase wrapperCase() {
  StoreConformanceCase c("CapiAttributeSetW");
  c.openForReading = [] { return wrapped(kReading); };
  c.openForUpdate = [] { return wrapped(kUpdate); };
  c.makeUnopened = [] { return wrapped(kUnopened); };
  c.texts.notWritable = "AttributeSet '%s' is not open for modification.";
  c.texts.notOpen = "The AttributeSet has not been opened yet.";
  return c;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(TestDouble, StoreConformance, ::testing::Values(storeCase(), setCase(), wrapperCase()),
                         StoreConformance::caseName);
