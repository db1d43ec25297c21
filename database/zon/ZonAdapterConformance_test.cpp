// The shared store suite over the velocity, water-depth and grid adapters.
// Each store is written through its adapter under the adapter's own column
// names and closed. For reads it is opened again through the real kvsd and
// seen through the mapping view under the reference names; the view takes
// no plain writes, so the write cases run on the store opened for update
// under its own names, and check their rows after a close, a restart of
// the daemon and an open in a fresh project. A seismic store loads and
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

// A restart of the daemon lets the library go: the project is opened
// afresh after one.
vHandle<ZonProject>& project() {
  static vHandle<ZonProject> project = bed().openProject("adapters");
  return project;
}

vHandle<ZonStore> reopen(vLCString const& name, bool forUpdate = false) {
  vHandle<ZonStore> store(new ZonStore(vHandle_cast<Project>(project())));
  if (forUpdate)
    store->update(name, 0, "", "", nullptr);
  else
    store->open(name, 0, "", "", nullptr);
  return store;
}

vHandle<AttributeSet> reopenAfterRestart(vHandle<AttributeSet> written) {
  return bed().reopenAfterRestart(written, project(), "adapters");
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

struct Layout {
  char const* type;
  char const* className;
  char const* subClass;
  std::vector<Column> columns;
  KeyList keys;
};

// The reference values under an adapter's own column names, written
// through the adapter and closed; the store's name.
vString writeReference(Layout const& layout) {
  std::vector<Column> const& columns = layout.columns;
  vString const name = nextName(layout.type);
  ZonStore store{vHandle_cast<Project>(project())};
  store.create(name, layout.className, layout.subClass, layout.keys, nullptr);
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
  return name;
}

// The store opened again and seen through the mapping view under the
// reference names.
vHandle<AttributeSet> mappedStore(Layout const& layout) {
  vString const name = writeReference(layout);
  std::vector<Column> const& columns = layout.columns;
  vHandle<AttributeMappingDecorator> view(new AttributeMappingDecorator(vHandle_cast<Store>(reopen(name))));
  for (Column const& c : columns) {
    vString expression(c.reference);
    expression << (vString(c.reference) == vString("ELEV") ? ":d = " : ":i = ") << c.name;
    view->processExpression(expression);
  }
  return vHandle_cast<AttributeSet>(vHandle_cast<Store>(view));
}

// The case over a layout: reads through the view, writes on the store
// itself under its own names.
StoreConformanceCase adapterCase(char const* name, Layout const& layout) {
  StoreConformanceCase c(name);
  c.openForReading = [layout] { return mappedStore(layout); };
  c.openForUpdate = [layout] { return vHandle_cast<AttributeSet>(reopen(writeReference(layout), true)); };
  c.reopen = reopenAfterRestart;
  for (Column const& column : layout.columns)
    if (vString(column.name) != vString(column.reference)) c.ownNames[column.reference] = column.name;
  return c;
}

// A velocity function of the 3D domain: location CDP, time TIME (the keys
// the dictionary gives its table) and velocity VRMS.
StoreConformanceCase velocityCase() {
  KeyList keys;
  keys.addKey(Attribute("CDP", "", vINT32));
  keys.addKey(Attribute("TIME", "", vFLOAT32));
  std::vector<Column> const columns = {
      {"CDP", "CDP", vINT32}, {"TIME", "OFFSET", vFLOAT32}, {"VRMS", "ELEV", vFLOAT32}};
  StoreConformanceCase c = adapterCase("ZonVelocity", {"velo", "velocity", "time_rms", columns, keys});
  // A velocity store holds exactly its three columns.
  c.notApplicable.push_back("AddsAttributesAndClasses");
  return c;
}

StoreConformanceCase waterDepthCase() {
  std::vector<Column> const columns = {
      {"XVAL", "CDP", vFLOAT64}, {"YVAL", "OFFSET", vFLOAT64}, {"ATVAL", "ELEV", vFLOAT32}};
  StoreConformanceCase c = adapterCase("ZonWDepth", {"wdep", "wdepth", "", columns, KeyList()});
  c.newAttribute = "RECUMB";
  return c;
}

// A grid is one row of figures in use, but its table takes any number:
// twelve rows of three of its figures hold the reference values.
StoreConformanceCase gridCase() {
  std::vector<Column> const columns = {
      {"FIRST_CMP", "CDP", vINT32}, {"CMP_INCREMENT", "OFFSET", vINT32}, {"INLINE_INTERVAL", "ELEV", vFLOAT64}};
  StoreConformanceCase c = adapterCase("ZonGrid", {"grid", "zongrid", "", columns, KeyList()});
  c.newAttribute = "FIRST_INLINE";
  return c;
}

// What the view refuses by design. The view takes no plain writes; those
// go to the store itself (above).
StoreConformanceCase viewed(StoreConformanceCase c) {
  c.makeUnopened = [] { return vHandle<AttributeSet>(new ZonStore(vHandle_cast<Project>(project()))); };
  c.attributes = {"CDP", "OFFSET", "ELEV"};
  c.hasClasses = false;
  c.hasKeyList = false;
  // The view reads no key tuples.
  c.notApplicable.push_back("ReadsByKeyValues");
  // List faults come up from the store in its own column names.
  c.notApplicable.push_back("RefusesBadListsAndNamesWithTheirTexts");
  c.texts.notOpen = "The store has not been opened yet!";
  c.texts.keysMissing = "Not supported by this decorator!";
  c.texts.notWritable = "Not supported by this decorator!";
  c.texts.unknownAttribute = "This attribute does not exist in the parser list!";
  c.texts.unknownDefinition = "The attribute '%s' was not found in the store!";
  // Writes meet the store itself, with its own words.
  c.texts.keyWriteCount =
      "The number of instances (%lld) with keys does not match the number of instances (%lld) for Attribute %s.";
  return c;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(ZonAdapters, StoreConformance,
                         ::testing::Values(viewed(velocityCase()), viewed(waterDepthCase()), viewed(gridCase())),
                         StoreConformance::caseName);
