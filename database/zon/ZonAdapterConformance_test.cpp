// The shared store suite over the velocity, water-depth and grid adapters.
// Each store is written through its adapter under the adapter's own column
// names, closed, opened again through the real kvsd and seen through the
// mapping view under the reference names. A seismic store loads and
// writes no attributes of its own (its traces are counted, its parameters
// are properties), so it cannot hold the reference content.

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "database/zon/ZonStore.h"
#include "database/zon/ZonTestBed.h"
#include "decorator/AttributeMappingDecorator.h"
#include "testing/StoreConformance.h"

namespace {

ZonTestBed& bed() {
  static std::unique_ptr<ZonTestBed> bed(new ZonTestBed);
  return *bed;
}

vHandle<ZonProject> project() {
  static vHandle<ZonProject> project = bed().openProject("adapters");
  return project;
}

vHandle<ZonStore> reopen(vString const& name) {
  vHandle<ZonStore> store(new ZonStore(vHandle_cast<Project>(project())));
  store->open(name, 0, "", "", nullptr);
  return store;
}

vString nextName(char const* type) {
  static int count = 0;
  vString name("ref");
  name << ++count << "," << type;
  return name;
}

struct Column {
  char const* name;       // the adapter's own
  char const* reference;  // the reference attribute it holds
  DataType type;
};

// The reference values under an adapter's own column names, written
// through the adapter, closed, opened again and seen through the mapping
// view under the reference names.
vHandle<AttributeSet> mappedStore(char const* type, char const* className, char const* subClass,
                                  std::vector<Column> const& columns, KeyList const& keys) {
  vString const name = nextName(type);
  ZonStore store{vHandle_cast<Project>(project())};
  store.create(name, className, subClass, keys, nullptr);
  unsigned int const n = StoreConformance::kNInstances;
  store.addInstances(n);
  for (Column const& c : columns) {
    Attribute a(c.name, "", c.type);
    a.resize(n);
    for (unsigned int i = 1; i <= n; ++i) a.setValue(i, StoreConformance::referenceValue(c.reference, i));
    if (!store.hasAttribute(c.name)) store.addAttribute(Attribute(c.name, "", c.type));
    store.write(a, 1, n);
  }
  store.close();
  vHandle<AttributeMappingDecorator> view(new AttributeMappingDecorator(vHandle_cast<Store>(reopen(name))));
  for (Column const& c : columns) {
    vString expression(c.reference);
    expression << (vString(c.reference) == vString("ELEV") ? ":d = " : ":i = ") << c.name;
    view->processExpression(expression);
  }
  return vHandle_cast<AttributeSet>(vHandle_cast<Store>(view));
}

// A velocity function of the 3D domain: location CDP, time TIME (the keys
// the dictionary gives its table) and velocity VRMS.
StoreConformanceCase velocityCase() {
  StoreConformanceCase c("ZonVelocity");
  c.openForReading = [] {
    KeyList keys;
    keys.addKey(Attribute("CDP", "", vINT32));
    keys.addKey(Attribute("TIME", "", vFLOAT32));
    return mappedStore("velo", "velocity", "time_rms",
                       {{"CDP", "CDP", vINT32}, {"TIME", "OFFSET", vFLOAT32}, {"VRMS", "ELEV", vFLOAT32}}, keys);
  };
  return c;
}

StoreConformanceCase waterDepthCase() {
  StoreConformanceCase c("ZonWDepth");
  c.openForReading = [] {
    return mappedStore("wdep", "wdepth", "",
                       {{"XVAL", "CDP", vFLOAT64}, {"YVAL", "OFFSET", vFLOAT64}, {"ATVAL", "ELEV", vFLOAT32}},
                       KeyList());
  };
  return c;
}

// A grid is one row of figures in use, but its table takes any number:
// twelve rows of three of its figures hold the reference values.
StoreConformanceCase gridCase() {
  StoreConformanceCase c("ZonGrid");
  c.openForReading = [] {
    return mappedStore("grid", "zongrid", "",
                       {{"FIRST_CMP", "CDP", vINT32},
                        {"CMP_INCREMENT", "OFFSET", vINT32},
                        {"INLINE_INTERVAL", "ELEV", vFLOAT64}},
                       KeyList());
  };
  return c;
}

// What the view refuses by design. The view is read-only, so the suite's
// write cases are left out: the adapters write in the reference store's
// close, and the memory copy that takes writes is the one every adapter
// shares (its write cases run over the plain, horizon and mute stores).
StoreConformanceCase viewed(StoreConformanceCase c) {
  c.makeUnopened = [] { return vHandle<AttributeSet>(new ZonStore(vHandle_cast<Project>(project()))); };
  c.attributes = {"CDP", "OFFSET", "ELEV"};
  c.hasClasses = false;
  c.hasKeyList = false;
  c.notApplicable = {
      // The view reads no key tuples.
      "ReadsByKeyValues",
      // List faults come up from the store in its own column names.
      "RefusesBadListsAndNamesWithTheirTexts"};
  c.texts.notOpen = "The store has not been opened yet!";
  c.texts.keysMissing = "Not supported by this decorator!";
  c.texts.notWritable = "Not supported by this decorator!";
  c.texts.unknownAttribute = "This attribute does not exist in the parser list!";
  c.texts.unknownDefinition = "The attribute '%s' was not found in the store!";
  return c;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(ZonAdapters, StoreConformance,
                         ::testing::Values(viewed(velocityCase()), viewed(waterDepthCase()), viewed(gridCase())),
                         StoreConformance::caseName);
