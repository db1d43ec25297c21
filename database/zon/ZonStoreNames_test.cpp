// Store names through a real project: partial names completed into name
// details, two idents that differ only in case kept apart, and a dataset another
// program wrote with an ident and version not in upper case.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "database/kvs/Kvs.h"
#include "database/zon/ZonStore.h"
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

// The store's first ELEV, after adding `add` to it and writing it back.
double bumpFirstElev(AttributeSet& store, double add) {
  Attribute elev = store.getAttribute("ELEV");
  store.read(elev, 1, 3);
  double const was = elev.getValue(1);
  elev.setValue(1, was + add);
  if (add != 0) store.write(elev, 1, 3);
  return was;
}

struct ZonStoreNames : SharedZonTestBed<ZonStoreNames> {};

std::string listed(vHandle<ZonProject> const& project) {
  std::string text;
  vHandle<Project::StoreList> const list = project->getStoreList("", "");
  for (vLCString const& s : *list) text += std::string(s.c_str()) + ";";
  return text;
}

}  // namespace

TEST_F(ZonStoreNames, PartialNamesAreCompletedThroughTheProject) {
  vHandle<ZonProject> project = bed.openProject("complete");
  writeTable(project, "TAB", "Line7", "1", 10);
  writeTable(project, "TAB", "Line7", "2", 20);
  writeTable(project, "SGD", "Line7", "1", 30);
  // given -> details; the last one is not in the project, to be made.
  for (auto const& c : std::vector<std::pair<char const*, char const*> >{{"line7", "TAB,2,LINE7,*"},
                                                                         {"LINE7,TAB,1", "TAB,1,LINE7,*"},
                                                                         {"line7,sgd", "SGD,1,LINE7"},
                                                                         {"hz,1,top,north", "HZ,1,TOP,NORTH"},
                                                                         {"line9,tab", "TAB,1,LINE9,*"}})
    EXPECT_EQ(c.second, std::string(NameDetails(vString(c.first), project.get(), true).getName().c_str()));
  expectFatal([&] { NameDetails(vString("nothing"), project.get(), true); }, "NameDetails::load",
              "Store names for Zonmesh have to have 4 parts separated by ,. Type,version,ident,domain. 'nothing' "
              "does not do this.");
  NameDetails held(vString("tab,0,line7,north"), project.get());
  EXPECT_TRUE(held.update());
  EXPECT_EQ("TAB,2,LINE7,NORTH", std::string(held.getName().c_str()));
  EXPECT_FALSE(NameDetails(vString("tab,0,line8,north"), project.get()).update());
}

TEST_F(ZonStoreNames, IdentsDifferingOnlyInCaseAreBothReachable) {
  vHandle<ZonProject> project = bed.openProject("clash");
  writeTable(project, "TAB", "Line7", "1", 10);
  writeTable(project, "TAB", "LINE7", "1", 20);
  EXPECT_EQ("line7,tab.1;line7,tab.2;", listed(project));
  std::string spelled[3];
  for (int version : {1, 2}) {
    // Each number is its own dataset, read and written back there alone.
    spelled[version] = project->getStoreDetails("line7,tab", version).getDescription1().c_str();
    double const base = spelled[version] == "Line7" ? 10 : 20;
    for (double add : {100, 0}) {
      ZonStore store{vHandle_cast<Project>(project)};
      store.update("line7,tab", version, "", "", nullptr);
      EXPECT_EQ(version, store.getVersion());
      EXPECT_EQ(add > 0 ? base : base + 100, bumpFirstElev(store, add)) << spelled[version];
      store.close();
    }
    // The exact spelling wins over the other in another case.
    vString name((spelled[version] + ",tab,1").c_str()), ident, type, text("0");
    ASSERT_TRUE(project->locateNameComponents(name, ident, type, text));
    EXPECT_EQ(spelled[version], ident.c_str());
  }
  std::string const both =
      "the datasets '" + spelled[1] + ",TAB,1' and '" + spelled[2] + ",TAB,1' differ only in case.";
  ZonStore store{vHandle_cast<Project>(project)};
  expectFatal([&] { store.open("line7,tab,1", 0, "", "", nullptr); }, "ZonProject::locateNameComponents",
              "The store name 'line7,tab,1' is ambiguous: " + both);
  vString ident("line7"), type("TAB"), version("1");
  expectFatal([&] { project->findTrueSpelling(ident, type, version); }, "ZonProject::findTrueSpelling",
              "The store name 'line7,TAB,1' is ambiguous: " + both);
}

TEST_F(ZonStoreNames, MixedCaseDatasetsAreListedOpenedAndRead) {
  vHandle<ZonProject> project = bed.openProject("names");
  writeTable(project, "TAB", "Line7", "1", 10);
  writeTable(project, "TAB", "Line7", "Pick", 20);
  EXPECT_EQ("line7,tab.1;line7,tab.2;", listed(project));
  // Each update adds 100 to the first ELEV, written back as the database
  // spells it: no upper-case copy appears.
  struct Case {
    char const* name;
    double first;
  } const cases[] = {{"line7,tab,1", 10}, {"LINE7,TAB,1", 110}, {"line7,tab,pick", 20}};
  for (Case const& c : cases) {
    ZonStore store{vHandle_cast<Project>(project)};
    store.update(c.name, 0, "", "", nullptr);
    EXPECT_EQ(c.first, bumpFirstElev(store, 100)) << c.name;
    store.close();
  }
  EXPECT_EQ(2u, project->getStoreDetailsList("", "")->size());
  ZonStore again{vHandle_cast<Project>(project)};
  again.open("line7,tab", 1, "", "", nullptr);
  EXPECT_EQ(210.0, bumpFirstElev(again, 0));
}
