// Store names through a real project: partial names completed into name
// details, a seismic-geometry table opened and written back by its three-part
// name, and two idents that differ only in case kept apart.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "database/kvs/Kvs.h"
#include "database/zon/ZonStore.h"
#include "database/zon/ZonStoreKVS.h"
#include "database/zon/ZonTestBed.h"
#include "project/NameDetails.h"

using namespace kvs;

namespace {

// A dataset of one TAB1 table with ELEV = base, base + 1, base + 2.
void writeTable(vHandle<ZonProject> const& project, char const* type, char const* ident, char const* version,
                double base) {
  project->setSession();
  KvsObject ds = KvsOpen(project->getSession(), KvsNmode, 2L, KvsNtype, type, KvsNident, ident, KvsNversion,
                         version, 0L);
  ASSERT_NE(nullptr, ds);
  KvsObject t = KvsCreate(ds, KvsNname, "TAB1", 0L);
  std::vector<int> cdp{1, 2, 3}, offset{100, 100, 100};
  std::vector<double> elev{base, base + 1, base + 2};
  KvsCreate(t, KvsNname, "CDP", KvsNdata, cdp.data(), 0L);
  KvsCreate(t, KvsNname, "OFFSET", KvsNdata, offset.data(), 0L);
  KvsCreate(t, KvsNname, "ELEV", KvsNdata, elev.data(), 0L);
  ASSERT_EQ(3, KvsWrite(t, 3));
  ASSERT_EQ(0, KvsReplace(ds));
  KvsClose(ds);
  project->emptyDatasetCache();
}

double firstElev(AttributeSet& store) {
  Attribute elev = store.getAttribute("ELEV");
  store.read(elev, 1, 3);
  return elev.getValue(1);
}

std::string listed(vHandle<ZonProject> const& project) {
  std::string text;
  vHandle<Project::StoreList> const list = project->getStoreList("", "");
  for (vLCString const& s : *list) text += std::string(s.c_str()) + ";";
  return text;
}

}  // namespace

TEST(ZonStoreNames, PartialNamesAreCompletedThroughTheProject) {
  ZonTestBed bed;
  vHandle<ZonProject> project = bed.openProject("complete");
  writeTable(project, "TAB", "Line7", "1", 10);
  writeTable(project, "TAB", "Line7", "2", 20);
  writeTable(project, "SGD", "Line7", "1", 30);
  struct Case {
    char const* given;
    char const* details;
  } const cases[] = {{"line7", "TAB,2,LINE7,*"},          {"line7,tab", "TAB,2,LINE7,*"},
                     {"LINE7,TAB,1", "TAB,1,LINE7,*"},    {"line7,sgd", "SGD,1,LINE7"},
                     {"line9,tab", "TAB,1,LINE9,*"},      {"hz,1,top,north", "HZ,1,TOP,NORTH"},
                     {"sgd,1,line7", "SGD,1,LINE7"}};
  for (Case const& c : cases) {
    NameDetails n(vString(c.given), project.get(), true);
    EXPECT_EQ(c.details, std::string(n.getName().c_str())) << c.given;
    EXPECT_EQ(static_cast<NameDetailsCompleter*>(project.get()), n.getProject());
  }
  expectFatal([&] { NameDetails(vString("nothing"), project.get(), true); }, "NameDetails::load",
              "Store names for Zonmesh have to have 4 parts separated by ,. Type,version,ident,domain. 'nothing' "
              "does not do this.");
  // update(): the newest version for "0", the domain kept; nothing without a
  // project or for a dataset the project does not hold.
  NameDetails held(vString("tab,0,line7,north"), project.get());
  EXPECT_TRUE(held.update());
  EXPECT_EQ("TAB,2,LINE7,NORTH", std::string(held.getName().c_str()));
  NameDetails lone(vString("tab,0,line7,north"));
  EXPECT_FALSE(lone.update());
  NameDetails missing(vString("tab,0,line8,north"), project.get());
  EXPECT_FALSE(missing.update());
  EXPECT_EQ("TAB,0,LINE8,NORTH", std::string(missing.getName().c_str()));
}

TEST(ZonStoreNames, GeometryTableOpensByItsListedNameAndIsWrittenBack) {
  ZonTestBed bed;
  vHandle<ZonProject> project = bed.openProject("geometry");
  writeTable(project, "SGD", "Line7", "1", 30);
  writeTable(project, "TAB", "Line7", "1", 10);
  EXPECT_EQ("line7,tab.1;sgd,1,line7.1;", listed(project));
  vHandle<ZonStore> store(new ZonStore(vHandle_cast<Project>(project)));
  store->update("sgd,1,line7", 0, "", "", nullptr);
  EXPECT_EQ("SGD,1,LINE7", std::string(store->getImplementation().getNameDetails()->getName().c_str()));
  Attribute elev = store->getAttribute("ELEV");
  store->read(elev, 1, 3);
  EXPECT_EQ(30.0, elev.getValue(1));
  elev.setValue(1, 35.0);
  store->write(elev, 1, 3);
  vHandle<AttributeSet> again = bed.reopenAfterRestart(vHandle_cast<AttributeSet>(store), project, "geometry");
  EXPECT_EQ(35.0, firstElev(*again));
  EXPECT_EQ("line7,tab.1;sgd,1,line7.1;", listed(project));
}

TEST(ZonStoreNames, IdentsDifferingOnlyInCaseAreBothReachable) {
  ZonTestBed bed;
  vHandle<ZonProject> project = bed.openProject("clash");
  writeTable(project, "TAB", "Line7", "1", 10);
  writeTable(project, "TAB", "LINE7", "1", 20);
  EXPECT_EQ("line7,tab.1;line7,tab.2;", listed(project));
  // Each number opens its own dataset, read and written back there alone.
  for (int version : {1, 2}) {
    std::string const ident(project->getStoreDetails("line7,tab", version).getDescription1().c_str());
    ZonStore store{vHandle_cast<Project>(project)};
    store.update("line7,tab", version, "", "", nullptr);
    Attribute elev = store.getAttribute("ELEV");
    store.read(elev, 1, 3);
    EXPECT_EQ(ident == "Line7" ? 10.0 : 20.0, elev.getValue(1)) << ident;
    elev.setValue(1, elev.getValue(1) + 100);
    store.write(elev, 1, 3);
    store.close();
  }
  for (char const* ident : {"Line7", "LINE7"}) {
    // The exact spelling wins over the other one in another case.
    vString name(std::string(ident).append(",tab,1").c_str()), found, type, version("0");
    ASSERT_TRUE(project->locateNameComponents(name, found, type, version));
    EXPECT_STREQ(ident, found.c_str());
    ZonStore store{vHandle_cast<Project>(project)};
    int const number = project->getStoreDetails("line7,tab", 1).getDescription1() == vString(ident) ? 1 : 2;
    store.open("line7,tab", number, "", "", nullptr);
    EXPECT_EQ(std::string(ident) == "Line7" ? 110.0 : 120.0, firstElev(store)) << ident;
  }
  // In neither spelling: refused, naming both.
  std::string const first(project->getStoreDetails("line7,tab", 1).getDescription1().c_str());
  std::string const second(project->getStoreDetails("line7,tab", 2).getDescription1().c_str());
  std::string const both = "the datasets '" + first + ",TAB,1' and '" + second + ",TAB,1' differ only in case.";
  ZonStore store{vHandle_cast<Project>(project)};
  expectFatal([&] { store.open("line7,tab,1", 0, "", "", nullptr); }, "ZonProject::locateNameComponents",
              "The store name 'line7,tab,1' is ambiguous: " + both);
  vString ident("line7"), type("TAB"), version("1");
  expectFatal([&] { project->findTrueSpelling(ident, type, version); }, "ZonProject::findTrueSpelling",
              "The store name 'line7,TAB,1' is ambiguous: " + both);
}
