// The shared store suite against a real kvsd. The velocity, water-depth and
// grid adapters hold the reference content under their own column names:
// reads see them through the mapping view, writes go to the store itself.
// Write cases check their rows after a close, a daemon restart and an open
// in a fresh project. A seismic store loads and writes no attributes of its
// own (its traces are counted, its parameters are properties), so it cannot
// hold the reference content.

#include "database/zon/ZonStore.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

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
  static vHandle<ZonProject> project = bed().openProject("conform");
  return project;
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

// newAttribute: an attribute of the dictionary, under the adapter's name for it.
StoreConformanceCase baseCase(char const* name, char const* newAttribute) {
  StoreConformanceCase c(name);
  c.makeUnopened = [] { return vHandle<AttributeSet>(new ZonStore(vHandle_cast<Project>(project()))); };
  c.reopen = [](vHandle<AttributeSet> written) { return bed().reopenAfterRestart(written, project(), "conform"); };
  c.attributes = {"CDP", "OFFSET", "ELEV"};
  if (newAttribute) c.newAttribute = newAttribute;
  c.hasClasses = false;
  c.texts.notOpen = "The store has not been opened yet!";
  c.texts.keyWriteCount =
      "The number of instances (%lld) with keys does not match the number of instances (%lld) for Attribute %s.";
  return c;
}

// --- Adapters that hold the reference content as it is ---------------------------------

vHandle<ZonStore> referenceStore(Layout const& layout, bool forUpdate) {
  vString const name = nextName(layout.type);
  ZonStore store{vHandle_cast<Project>(project())};
  store.create(name, layout.className, layout.subClass, StoreConformance::referenceKeys(), nullptr);
  StoreConformance::populate(store, {"CDP", "OFFSET", "ELEV"});
  store.addProperty(Property("HORIZONNAME", "reference"));
  store.close();
  return openStore(project(), name, forUpdate);
}

StoreConformanceCase zonCase(char const* name, Layout const& layout, char const* newAttribute) {
  StoreConformanceCase c = baseCase(name, newAttribute);
  c.openForReading = [layout] { return vHandle_cast<AttributeSet>(referenceStore(layout, false)); };
  c.openForUpdate = [layout] { return vHandle_cast<AttributeSet>(referenceStore(layout, true)); };
  c.texts.keysMissing =
      "Key list has duplicate or missing values in AttributeSet '%s'. Wanted %lld value(s) but found %lld.";
  return c;
}

// --- Adapters seen through the mapping view ----------------------------------------------

// The reference values under an adapter's own column names, written
// through the adapter and closed; the store's name.
vString writeReference(Layout const& layout) {
  vString const name = nextName(layout.type);
  ZonStore store{vHandle_cast<Project>(project())};
  store.create(name, layout.className, layout.subClass, layout.keys, nullptr);
  unsigned int const n = StoreConformance::kNInstances;
  store.addInstances(n);
  for (Column const& c : layout.columns) {
    Attribute a(c.name, "", c.type);
    a.resize(n);
    for (unsigned int i = 1; i <= n; ++i) a.setValue(i, StoreConformance::referenceValue(c.reference, i));
    if (!store.hasAttribute(c.name)) store.addAttribute(Attribute(c.name, "", c.type));
    store.write(a, 1, n);
  }
  store.close();
  return name;
}

vHandle<AttributeSet> mappedStore(Layout const& layout) {
  vHandle<AttributeMappingDecorator> view(
      new AttributeMappingDecorator(vHandle_cast<Store>(openStore(project(), writeReference(layout)))));
  for (Column const& c : layout.columns) {
    vString expression(c.reference);
    expression << (vString(c.reference) == vString("ELEV") ? ":d = " : ":i = ") << c.name;
    view->processExpression(expression);
  }
  return vHandle_cast<AttributeSet>(vHandle_cast<Store>(view));
}

// What the view refuses by design: it reads no key tuples, and list faults
// come up from the store in its own column names.
StoreConformanceCase viewed(char const* name, Layout const& layout, char const* newAttribute) {
  StoreConformanceCase c = baseCase(name, newAttribute);
  c.openForReading = [layout] { return mappedStore(layout); };
  c.openForUpdate = [layout] { return vHandle_cast<AttributeSet>(openStore(project(), writeReference(layout), true)); };
  for (Column const& column : layout.columns)
    if (vString(column.name) != vString(column.reference)) c.ownNames[column.reference] = column.name;
  c.hasKeyList = false;
  c.notApplicable = {"ReadsByKeyValues", "RefusesBadListsAndNamesWithTheirTexts"};
  c.texts.keysMissing = "Not supported by this decorator!";
  c.texts.notWritable = "Not supported by this decorator!";
  c.texts.unknownAttribute = "This attribute does not exist in the parser list!";
  c.texts.unknownDefinition = "The attribute '%s' was not found in the store!";
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
  StoreConformanceCase c = viewed("ZonVelocity", {"velo", "velocity", "time_rms", columns, keys}, nullptr);
  // A velocity store holds exactly its three columns.
  c.notApplicable.push_back("AddsAttributesAndClasses");
  return c;
}

// A grid is one row of figures in use, but its table takes any number:
// twelve rows of three of its figures hold the reference values.
std::vector<Column> const gridColumns = {
    {"FIRST_CMP", "CDP", vINT32}, {"CMP_INCREMENT", "OFFSET", vINT32}, {"INLINE_INTERVAL", "ELEV", vFLOAT64}};
std::vector<Column> const waterDepthColumns = {
    {"XVAL", "CDP", vFLOAT64}, {"YVAL", "OFFSET", vFLOAT64}, {"ATVAL", "ELEV", vFLOAT32}};

}  // namespace

INSTANTIATE_TEST_SUITE_P(ZonStores, StoreConformance,
                         ::testing::Values(zonCase("ZonPlain", {"tab", "table", "plain", {}, {}}, "RECUMB"),
                                           zonCase("ZonHorizon", {"hz", "horizon", "3d", {}, {}}, "RECUMBENCY"),
                                           zonCase("ZonMute", {"mute", "mute", "offset", {}, {}}, "RECUMB")),
                         StoreConformance::caseName);
INSTANTIATE_TEST_SUITE_P(
    ZonAdapters, StoreConformance,
    ::testing::Values(velocityCase(),
                      viewed("ZonWDepth", {"wdep", "wdepth", "", waterDepthColumns, KeyList()}, "RECUMB"),
                      viewed("ZonGrid", {"grid", "zongrid", "", gridColumns, KeyList()}, "FIRST_INLINE")),
    StoreConformance::caseName);
