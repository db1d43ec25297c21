// Database stores against a real kvsd: the shared store suite over the
// plain, horizon and mute adapters, round trips of every adapter across a
// daemon restart, and the failures and edge cases of the memory copy.

#include "database/zon/ZonStore.h"

#include <gtest/gtest.h>

#include <memory>

#include "database/kvs/Kvs.h"
#include "database/zon/ZonStoreKVS.h"
#include "database/zon/ZonTestBed.h"
#include "foundation/MessageHandling.h"
#include "testing/StoreConformance.h"

using namespace kvs;

namespace {

// --- The shared suite ------------------------------------------------------------------

ZonTestBed& sharedBed() {
  static std::unique_ptr<ZonTestBed> bed(new ZonTestBed);
  return *bed;
}

// A restart of the daemon lets the library go: the project is opened
// afresh after one.
vHandle<ZonProject>& sharedProject() {
  static vHandle<ZonProject> project = sharedBed().openProject("conform");
  return project;
}

// A written store closed, the daemon restarted, and the store opened again
// in a fresh project.
vHandle<AttributeSet> reopenAfterRestart(vHandle<AttributeSet> written) {
  return sharedBed().reopenAfterRestart(written, sharedProject(), "conform");
}

struct Kind {
  char const* caseName;
  char const* className;
  char const* subClass;
  char const* type;
  // An attribute of the dictionary, under the adapter's name for it.
  char const* newAttribute;
};

vHandle<ZonStore> referenceStore(Kind const& kind, bool forUpdate) {
  static int count = 0;
  vString name("ref");
  name << ++count << "," << kind.type;
  vHandle<ZonStore> store(new ZonStore(vHandle_cast<Project>(sharedProject())));
  store->create(name, kind.className, kind.subClass, StoreConformance::referenceKeys(), nullptr);
  StoreConformance::populate(*store, {"CDP", "OFFSET", "ELEV"});
  store->addProperty(Property("HORIZONNAME", "reference"));
  store->close();
  vHandle<ZonStore> reader(new ZonStore(vHandle_cast<Project>(sharedProject())));
  if (forUpdate)
    reader->update(name, 0, "", "", nullptr);
  else
    reader->open(name, 0, "", "", nullptr);
  return reader;
}

StoreConformanceCase zonCase(Kind kind) {
  StoreConformanceCase c(kind.caseName);
  c.openForReading = [kind] { return vHandle_cast<AttributeSet>(referenceStore(kind, false)); };
  c.openForUpdate = [kind] { return vHandle_cast<AttributeSet>(referenceStore(kind, true)); };
  c.makeUnopened = [] { return vHandle<AttributeSet>(new ZonStore(vHandle_cast<Project>(sharedProject()))); };
  c.reopen = reopenAfterRestart;
  c.attributes = {"CDP", "OFFSET", "ELEV"};
  c.newAttribute = kind.newAttribute;
  c.hasClasses = false;
  c.texts.notOpen = "The store has not been opened yet!";
  c.texts.keysMissing =
      "Key list has duplicate or missing values in AttributeSet '%s'. Wanted %lld value(s) but found %lld.";
  c.texts.keyWriteCount =
      "The number of instances (%lld) with keys does not match the number of instances (%lld) for Attribute %s.";
  return c;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(ZonStores, StoreConformance,
                         ::testing::Values(zonCase({"ZonPlain", "table", "plain", "tab", "RECUMB"}),
                                           zonCase({"ZonHorizon", "horizon", "3d", "hz", "RECUMBENCY"}),
                                           zonCase({"ZonMute", "mute", "offset", "mute", "RECUMB"})),
                         StoreConformance::caseName);
