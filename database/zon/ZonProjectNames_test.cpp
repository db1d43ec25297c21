// Store names against the datasets of another writer: a dataset whose ident
// and version are not upper case is listed, opened by its listed name and by
// an upper-case one, and read.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "database/kvs/Kvs.h"
#include "database/zon/ZonStore.h"
#include "database/zon/ZonTestBed.h"

using namespace kvs;

namespace {

// A TAB1 table of n rows straight through the library, as another program
// writes it: CDP = 1 + i, OFFSET = 100, ELEV = base + i.
void writeTable(ZonProject& project, char const* ident, char const* version, long n, double base) {
  project.setSession();
  KvsObject ds = KvsOpen(project.getSession(), KvsNmode, 2L, KvsNtype, "TAB", KvsNident, ident, KvsNversion,
                         version, 0L);
  ASSERT_NE(nullptr, ds);
  KvsObject t = KvsCreate(ds, KvsNname, "TAB1", 0L);
  std::vector<int> cdp(n), offset(n, 100);
  std::vector<double> elev(n);
  for (long i = 0; i < n; ++i) {
    cdp[i] = 1 + static_cast<int>(i);
    elev[i] = base + i;
  }
  KvsCreate(t, KvsNname, "CDP", KvsNdata, cdp.data(), 0L);
  KvsCreate(t, KvsNname, "OFFSET", KvsNdata, offset.data(), 0L);
  KvsCreate(t, KvsNname, "ELEV", KvsNdata, elev.data(), 0L);
  ASSERT_EQ(n, KvsWrite(t, n));
  ASSERT_EQ(0, KvsReplace(ds));
  KvsClose(ds);
}

}  // namespace

TEST(ZonProjectNames, MixedCaseDatasetsAreListedOpenedAndRead) {
  ZonTestBed bed;
  vHandle<ZonProject> project = bed.openProject("names");
  writeTable(*project, "Line7", "1", 4, 10.0);
  writeTable(*project, "Top2", "Pick", 3, 20.0);
  project->emptyDatasetCache();

  std::string listed;
  vHandle<Project::StoreList> const list = project->getStoreList("", "");
  for (vLCString const& s : *list) listed += std::string(s.c_str()) + ";";
  EXPECT_EQ("line7,tab.1;top2,tab.1;", listed);

  struct Case {
    char const* name;
    unsigned int n;
    double base;
  } const cases[] = {{"line7,tab", 4, 10.0}, {"LINE7,TAB", 4, 10.0}, {"Line7,Tab", 4, 10.0},
                     {"top2,tab,pick", 3, 20.0}, {"TOP2,TAB,PICK", 3, 20.0}, {"top2,tab", 3, 20.0}};
  for (Case const& c : cases) {
    SCOPED_TRACE(c.name);
    ZonStore store{vHandle_cast<Project>(project)};
    store.open(c.name, 0, "", "", nullptr);
    ASSERT_EQ(c.n, store.getNInstances());
    Attribute elev = store.getAttribute("ELEV");
    store.read(elev, 1, c.n);
    for (unsigned int i = 1; i <= c.n; ++i) EXPECT_EQ(c.base + i - 1, elev.getValue(i));
    store.close();
  }

  // Updating the dataset writes it back under the database's spelling: no
  // second dataset in upper case appears.
  {
    ZonStore store{vHandle_cast<Project>(project)};
    store.update("LINE7,TAB", 0, "", "", nullptr);
    Attribute elev = store.getAttribute("ELEV");
    store.read(elev, 1, 4);
    elev.setValue(1, 99.0);
    store.write(elev, 1, 4);
    store.close();
  }
  project->emptyDatasetCache();
  vHandle<Project::StoreDetailsList> all = project->getStoreDetailsList("", "");
  ASSERT_EQ(2u, all->size());
  EXPECT_EQ("Line7", std::string(all->front().getDescription1().c_str()));
  ZonStore again{vHandle_cast<Project>(project)};
  again.open("line7,tab", 0, "", "", nullptr);
  Attribute elev = again.getAttribute("ELEV");
  again.read(elev, 1, 4);
  EXPECT_EQ(99.0, elev.getValue(1));
}
