// What the shared store suite cannot reach: columns it cannot hold, the
// typed adapters' own rules, and the edges of the memory copy.

#include <gtest/gtest.h>

#include <signal.h>

#include <vector>

#include "database/kvs/Kvs.h"
#include "database/zon/ZonStore.h"
#include "database/zon/ZonStoreKVS.h"
#include "database/zon/ZonTestBed.h"
#include "foundation/MessageHandling.h"
#include "foundation/TestFailure.h"
#include "foundation/UtlExcept.h"

using namespace kvs;

namespace {

struct Column {
  char const* name;
  DataType type;
};

struct Dataset {
  char const* name;
  char const* className;
  char const* subClass;
  std::vector<Column> columns;  // the keys first
  std::size_t nKeys;
  unsigned int n;
  char const* property;  // a string property the store must keep, or null
};

// Keys 1 1 2 2 3 3 / 100 200 100 200 ..., sorted as the database keeps
// them; other columns k * 1000 + instance + 0.5 (exact in a float), texts
// "S<instance>"; a grid's ordering one of its two words.
Attribute values(Column const& c, unsigned int n, int k) {
  Attribute a(c.name, "", c.type);
  a.resize(n);
  for (unsigned int i = 1; i <= n; ++i) {
    if (c.type == vSTRING) {
      vString text(vString(c.name) == vString("CMP_ORDERING") ? "ALONG_CROSSLINES" : "S");
      if (text == vString("S")) text << static_cast<int>(i);
      a.setString(i, text);
    } else if (k == 0) {
      a.setValue(i, (i + 1) / 2);
    } else if (k == 1) {
      a.setValue(i, 100.0 * ((i - 1) % 2 + 1));
    } else {
      a.setValue(i, (c.type == vINT32 ? 0.0 : 0.5) + k * 1000 + i);
    }
  }
  return a;
}

std::vector<Dataset> datasets() {
  return {
      {"plain1,tab", "table", "plain", {{"CDP", vINT32}, {"OFFSET", vINT32}, {"ELEV", vFLOAT64}}, 2, 6, nullptr},
      {"hz1,hz", "horizon", "3d",
       {{"CDP", vINT32}, {"OFFSET", vINT32}, {"DATAINDEX", vINT32}, {"HORIZONNAMES", vSTRING},
        {"HORIZONINDEX", vINT32}, {"HTIME", vFLOAT32}, {"HORIZONFLOATVALUES", vFLOAT32}, {"RECUMBENCY", vINT32}},
       2, 6, "HORIZONNAME"},
      {"vel1,velo", "velocity", "time_rms", {{"CDP", vINT32}, {"TIME", vFLOAT32}, {"VRMS", vFLOAT32}}, 2, 6, nullptr},
      {"grid1,grid", "zongrid", "",
       {{"CMP_ORDERING", vSTRING},      {"FIRST_CMP", vINT32},          {"CMP_INCREMENT", vINT32},
        {"CMPLINE_INCREMENT", vINT32},  {"FIRST_INLINE", vINT32},       {"INLINE_INCREMENT", vINT32},
        {"NUM_INLINES", vINT32},        {"INLINE_INTERVAL", vFLOAT64},  {"FIRST_CROSSLINE", vINT32},
        {"CROSSLINE_INCREMENT", vINT32}, {"NUM_CROSSLINES", vINT32},    {"CROSSLINE_INTERVAL", vFLOAT64},
        {"ROTATION_ANGLE", vFLOAT64},   {"X_REALWORLD_ORIGIN", vFLOAT64}, {"Y_REALWORLD_ORIGIN", vFLOAT64},
        {"X_SURVEY_ORIGIN", vFLOAT64},  {"Y_SURVEY_ORIGIN", vFLOAT64},
        {"NUM_BINS_ALONG_ORDERING_WITH_PADDING", vINT32}},
       0, 1, "UNITS"},
  };
}

void writeDataset(vHandle<ZonProject> const& project, Dataset const& d) {
  KeyList keys;
  for (std::size_t k = 0; k < d.nKeys; ++k) keys.addKey(Attribute(d.columns[k].name, "", d.columns[k].type));
  ZonStore store{vHandle_cast<Project>(project)};
  store.create(d.name, d.className, d.subClass, keys, nullptr);
  for (std::size_t k = d.nKeys; k < d.columns.size(); ++k)
    store.addAttribute(Attribute(d.columns[k].name, "", d.columns[k].type));
  store.addInstances(d.n);
  for (std::size_t k = 0; k < d.columns.size(); ++k) store.write(values(d.columns[k], d.n, int(k)), 1, d.n);
  if (d.property) store.addProperty(Property(d.property, "FEET"));
  store.close();
}

struct ZonStoreRoundTrip : SharedZonTestBed<ZonStoreRoundTrip> {};

}  // namespace

// The shared suite takes every adapter across a restart with three columns;
// the horizon's and the grid's full sets of columns, texts among them, and
// their properties survive one too.
TEST_F(ZonStoreRoundTrip, HorizonAndGridSurviveARestart) {
  std::vector<Dataset> const kept = {datasets()[1], datasets()[3]};
  for (Dataset const& d : kept) writeDataset(bed.openProject("trips"), d);
  bed.stop(SIGTERM);
  bed.start();
  vHandle<ZonProject> project = bed.openProject("trips");
  for (Dataset const& d : kept) {
    SCOPED_TRACE(d.name);
    vHandle<ZonStore> store = openStore(project, d.name);
    EXPECT_STREQ(d.className, store->getClass().c_str());
    ASSERT_EQ(d.n, store->getNInstances());
    EXPECT_EQ(d.columns.size(), store->getNAttributes());
    int k = 0;
    for (Column const& c : d.columns) {
      Attribute const expected = values(c, d.n, k++);
      Attribute back = store->getAttribute(c.name);
      store->read(back, 1, d.n);
      for (unsigned int i = 1; i <= d.n; ++i) {
        if (c.type == vSTRING) {
          EXPECT_STREQ(expected.getString(i).c_str(), back.getString(i).c_str()) << c.name;
        } else {
          EXPECT_EQ(expected.getValue(i), back.getValue(i)) << c.name << " " << i;
        }
      }
    }
    EXPECT_STREQ("FEET", store->findProperty(vUCString(d.property))->getString().c_str());
  }
}

TEST_F(ZonStoreRoundTrip, TypedDatasetsRefuseWhatTheyCannotHoldAndVelocitiesGetEndRows) {
  vHandle<ZonProject> project = bed.openProject("refusals");
  Dataset horizon = datasets()[1];
  horizon.property = nullptr;
  expectFatal([&] { writeDataset(project, horizon); }, "ZonHorizonAdapter::doWriteAll",
              "The property HORIZONNAME is required for horizon hz1,hz.");
  Dataset velocity = datasets()[2];
  velocity.columns.push_back({"ELEV", vFLOAT64});
  expectFatal([&] { writeDataset(project, velocity); }, "ZonVelocityAdapter::doWriteAll",
              "Wrong number of Attributes <4> in AttributeList for vel1,velo");
  ZonStore store{vHandle_cast<Project>(project)};
  store.create("grid2,grid", "zongrid", "", KeyList(), nullptr);
  Attribute ordering = values({"CMP_ORDERING", vSTRING}, 1, 0);
  ordering.setString(1, "DIAGONAL");
  store.addAttribute(ordering);
  store.addInstances(1);
  store.write(ordering, 1, 1);
  expectFatal([&] { store.close(); }, "ZonGridAdapter::doWriteAll", "Unknown ordering DIAGONAL for grid grid2,grid.");
  // Without data conversion a column takes only its own type.
  ZonStore::setDataConversion(Capi::eNoDataConversion);
  Dataset plain = datasets()[0];
  plain.columns[2].type = vFLOAT32;
  expectFatal([&] { writeDataset(project, plain); }, "ZonBuildAttribute::buildDornColumn", "Unexpected DataType vFLOAT32");
  ZonStore::setDataConversion(Capi::eDataTypeConversion);
  // None of them reached the database.
  for (char const* name : {"hz1,hz", "vel1,velo", "grid2,grid", "plain1,tab"})
    expectFatal([&] { openStore(project, name); }, "ZonAdapterBase::open", std::string("Store not found ") + name);
  // Velocity functions get their end row where the environment asks for one.
  bed.tree().setEnv("SP_CAPIZON_KVSENDVELOCITY", "5000");
  project = bed.openProject("velocity");
  writeDataset(project, datasets()[2]);
  vHandle<ZonStore> velocities = openStore(project, "vel1,velo");
  ASSERT_EQ(9u, velocities->getNInstances());
  Attribute cdp("CDP", "", vINT32), time("TIME", "", vFLOAT32), rms("VRMS", "", vFLOAT32);
  velocities->read(cdp, 1, 9);
  velocities->read(time, 1, 9);
  velocities->read(rms, 1, 9);
  // Function 2 was rows 3 and 4: times 100 and 200, velocities 2003.5
  // and 2004.5; its end row follows them.
  EXPECT_EQ(2, cdp.getValue(6));
  EXPECT_EQ(200, time.getValue(5));
  EXPECT_EQ(5000, time.getValue(6));
  EXPECT_EQ(2004.5, rms.getValue(6));
  EXPECT_EQ(5000, time.getValue(9));
  bed.tree().unsetEnv("SP_CAPIZON_KVSENDVELOCITY");
}

TEST_F(ZonStoreRoundTrip, SeismicAndGeometryTablesKeepTheirParameters) {
  vHandle<ZonProject> project = bed.openProject("seismic");
  // Written by the library itself, as a loader of traces would.
  project->setSession();
  KvsObject ds =
      KvsOpen(project->getSession(), KvsNmode, 2L, KvsNtype, "SEIS", KvsNident, "LINE1", KvsNversion, "1", 0L);
  ASSERT_NE(nullptr, ds);
  KvsObject t = KvsCreate(ds, KvsNname, "TRACE3D", 0L);
  int cdp[3] = {1, 2, 3}, offset[3] = {100, 100, 100};
  KvsCreate(t, KvsNname, "CDP", KvsNdata, cdp, 0L);
  KvsCreate(t, KvsNname, "OFFSET", KvsNdata, offset, 0L);
  KvsObject params = KvsCreate(t, KvsNclass, "SEIS", 0L);
  KvsParamPut(params, KvsParam{"STATUS", "SEIS", "INT", "", false, 3, 0, 0, ""});
  KvsParamPut(params, KvsParam{"NOTE", "SEIS", "C", "", false, 0, 0, 0, "migrated"});
  ASSERT_EQ(3, KvsWrite(t, 3));
  ASSERT_EQ(0, KvsReplace(ds));
  KvsClose(ds);
  project->removeFromCache("line1,seis");
  vHandle<ZonStore> store = openStore(project, "line1,seis", true);
  EXPECT_EQ("seismic/3d", std::string(store->getClass().c_str()) + "/" + store->getSubClass().c_str());
  EXPECT_EQ(3u, store->getNInstances());
  EXPECT_EQ(0u, store->getNAttributes());
  EXPECT_EQ(3, store->findProperty(vUCString("STATUS"))->getInt32());
  EXPECT_STREQ("migrated", store->findProperty(vUCString("NOTE"))->getString().c_str());
  expectFatal([&] { store->createAttributeSet("trace2d", KeyList()); }, "ZonSeismicAdapter::createAttributeSet",
              "Store line1,seis is seismic; no attribute set trace2d can be made in it here.");
  store->removeProperty(vUCString("STATUS"));
  store->addProperty(Property("STATUS", 4));
  store->close();  // traces and their parameters are not written from here
  EXPECT_EQ(3, openStore(project, "line1,seis")->findProperty(vUCString("STATUS"))->getInt32());
  // A seismic-geometry table made through a store keeps its properties in
  // the geometry group; a vector, which no column can hold, is refused as
  // it is added, and so is a one-value vector, whose sample rate would go.
  Dataset const sgd{"sgd,1,line5", "geometry", "", {{"CDP", vINT32}, {"XVAL", vFLOAT64}}, 1, 4, "NOTE"};
  writeDataset(project, sgd);
  EXPECT_STREQ("geometry", project->getStoreDetails(sgd.name, 0).getClass().c_str());
  vHandle<ZonStore> geometry = openStore(project, sgd.name, true);
  Attribute back = geometry->getAttribute("XVAL");
  geometry->read(back, 1, 4);
  EXPECT_EQ(values(sgd.columns[1], 4, 1).getValue(3), back.getValue(3));
  expectFatal([&] { geometry->addAttribute(Attribute("ELEV", "", vFLOAT64, 4)); }, "ZonStoreKVS::addAttribute",
              "Attribute ELEV has 4 values per instance; store sgd,1,line5 keeps one value per instance in each "
              "database column.");
  expectFatal([&] { geometry->addAttribute(Attribute("PICK", "", vFLOAT32, 1, 4.0)); }, "ZonStoreKVS::addAttribute",
              "Attribute PICK has a sample rate of 4; store sgd,1,line5 keeps one plain value per instance in each "
              "database column, without a sample rate.");
  geometry->close();
  project->setSession();
  ds = KvsOpen(project->getSession(), KvsNmode, 1L, KvsNtype, "SGD", KvsNident, "LINE5", KvsNversion,
                         "1", 0L);
  KvsParam const* note = KvsParamFind(KvsFind(KvsFind(ds, "SGD1"), "SGD"), "NOTE");
  EXPECT_EQ("FEET", note ? note->text : "none");
  KvsClose(ds);
}

TEST_F(ZonStoreRoundTrip, LoadsOnFirstNeedClosesWriteOnlyChangesAndRefusesDuplicateKeys) {
  MessageHandling quiet;
  writeDataset(bed.openProject("edges"), datasets()[0]);
  vHandle<ZonStore> reader = openStore(bed.openProject("edges"), "plain1,tab");
  EXPECT_EQ(3u, reader->getNAttributes());  // known from open, without the data
  EXPECT_FALSE(reader->getImplementation().isLoaded());
  // The daemon goes away between open and the first read: a clear failure;
  // back again, the same store reads.
  bed.stop(SIGKILL);
  EXPECT_THROW(reader->getNInstances(), UtlExcept);
  bed.start();
  EXPECT_EQ(6u, reader->getNInstances());
  EXPECT_TRUE(reader->getImplementation().isLoaded());

  // A close with nothing changed needs no daemon; one with a change does,
  // and fails whole, leaving the database as it was.
  vHandle<ZonStore> quietOne = openStore(bed.openProject("edges"), "plain1,tab", true);
  vHandle<ZonStore> changed = openStore(bed.openProject("edges"), "plain1,tab", true);
  Attribute elev = values({"ELEV", vFLOAT64}, 6, 2);
  elev.setValue(1, -1.0);
  changed->write(elev, 1, 6);
  ZonStore unreachable{vHandle_cast<Project>(bed.openProject("edges"))};
  bed.stop(SIGKILL);
  quietOne->close();
  EXPECT_THROW(changed->close(), UtlExcept);
  // Unreachable at open: a clear failure, and no store left open.
  EXPECT_THROW(unreachable.open("plain1,tab", 0, "", "", nullptr), UtlExcept);
  EXPECT_FALSE(unreachable.isOpen());
  bed.start();
  vHandle<ZonStore> again = openStore(bed.openProject("edges"), "plain1,tab");
  Attribute back("ELEV", "", vFLOAT64);
  again->read(back, 1, 6);
  EXPECT_EQ(2001.5, back.getValue(1));

  // A store let go without a close still writes its changes.
  {
    vHandle<ZonStore> forgotten = openStore(bed.openProject("edges"), "plain1,tab", true);
    elev.setValue(2, -2.0);
    forgotten->write(elev, 1, 6);
  }
  vHandle<ZonStore> after = openStore(bed.openProject("edges"), "plain1,tab");
  after->read(back, 1, 6);
  EXPECT_EQ(-2.0, back.getValue(2));

  // Duplicate keys raise at read and write.
  vHandle<ZonStore> store = openStore(bed.openProject("edges"), "plain1,tab", true);
  Attribute const cdp = values({"CDP", vINT32}, 1, 0), offset = values({"OFFSET", vINT32}, 1, 1);
  store->write(offset, 2, 2);  // (1, 200) becomes a second (1, 100)
  KeyList keys;
  keys.addKey(cdp);
  keys.addKey(offset);
  keys.begin()->copyData(cdp);
  (keys.begin() + 1)->copyData(offset);
  Attribute byKeys("ELEV", "", vFLOAT64);
  expectFatal([&] { store->read(byKeys, keys); }, "ZonStoreKVS::read(byKeys)", "Duplicate keys found: [1, 100]");
  byKeys.resize(1);
  expectFatal([&] { store->write(byKeys, keys); }, "ZonStoreKVS::write(byKeys)", "Duplicate keys found: [1, 100]");
  expectFatal([&] { store->setAttributeClass("ELEV", "X"); }, "ZonStoreKVS::setAttributeClass",
              "Should not do this on a ZonStoreKVS.");
}

// A horizon written in both domains is one dataset of two tables. The
// first the database sends (HZ2D) serves the store; the other is a
// secondary set, read and written in its turn, and what a switch of sets
// sends outlives a daemon restart. A set made through a store is a new
// table of its dataset; the store's own table, though its name sorts after
// the new one's, stays the primary set.
TEST_F(ZonStoreRoundTrip, TheOtherTablesOfADatasetAreSecondarySets) {
  Dataset d = datasets()[1];
  writeDataset(bed.openProject("sets"), d);
  d.subClass = "2d";
  d.n = 4;
  writeDataset(bed.openProject("sets"), d);
  writeDataset(bed.openProject("sets"), datasets()[0]);
  auto htime = [](ZonStore& store, unsigned int n) {
    Attribute a = store.getAttribute("HTIME");
    store.read(a, 1, n);
    return a;
  };
  {
    vHandle<ZonStore> store = openStore(bed.openProject("sets"), "hz1,hz", true);
    Store::AttributeSetList names;
    store->getAttributeSetList(names);
    EXPECT_EQ((Store::AttributeSetList{vLCString("hz1,hz"), vLCString("hz3d")}), names);
    EXPECT_EQ(4u, store->getNInstances());
    store->updateAttributeSet("hz3d");
    EXPECT_EQ("hz3d", std::string(store->getAttributeSetName().c_str()));
    Attribute a = htime(*store, 6);
    EXPECT_EQ(5002.5, a.getValue(2));
    a.setValue(2, -1.0);
    store->write(a, 1, 6);
    expectFatal([&] { store->openAttributeSet("hz2d"); }, "ZonAdapterBase::updateAttributeSet",
                "Attribute set hz2d is not in store hz1,hz.");
    store->updateAttributeSet("hz1,hz");
    EXPECT_EQ(4u, store->getNInstances());
    store->close();
  }
  std::vector<Column> const columns{{"CDP", vINT32}, {"OFFSET", vINT32}, {"HTIME", vFLOAT32}};
  KeyList keys;
  for (Column const& c : {columns[0], columns[1]}) keys.addKey(Attribute(c.name, "", c.type));
  {
    vHandle<ZonStore> store = openStore(bed.openProject("sets"), "plain1,tab", true);
    expectFatal([&] { store->createAttributeSet("tab1", keys); }, "ZonAdapterBase::createAttributeSet",
                "Cannot create an AttributeSet called 'tab1' in Store 'plain1,tab' because one already exists.");
    store->createAttributeSet("hz2d", keys);
    store->addAttribute(Attribute("HTIME", "", vFLOAT32));
    store->addInstances(4);
    int k = 0;
    for (Column const& c : columns) store->write(values(c, 4, k++), 1, 4);
    store->close();
  }
  bed.stop(SIGTERM);
  bed.start();
  vHandle<ZonStore> store = openStore(bed.openProject("sets"), "hz1,hz");
  Attribute primary = htime(*store, 4);
  for (unsigned int i = 1; i <= 4; ++i) EXPECT_EQ(5000.5 + i, primary.getValue(i));
  store->openAttributeSet("hz3d");
  Attribute secondary = htime(*store, 6);
  for (unsigned int i = 1; i <= 6; ++i) EXPECT_EQ(i == 2 ? -1.0 : 5000.5 + i, secondary.getValue(i)) << i;
  expectFatal([&] { store->openAttributeSet("nope"); }, "ZonAdapterBase::openAttributeSet",
              "Attribute set nope is not in store hz1,hz.");
  vHandle<ZonStore> plain = openStore(bed.openProject("sets"), "plain1,tab");
  EXPECT_EQ(6u, plain->getNInstances());
  plain->openAttributeSet("hz2d");
  EXPECT_EQ(values(columns[2], 4, 2).getValue(3), htime(*plain, 4).getValue(3));
}
