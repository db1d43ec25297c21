// A dataset that another program wrote with an ident and version not in
// upper case is listed, opened by its listed name or in upper case, read,
// and written back under its own spelling.

#include <gtest/gtest.h>

#include <vector>

#include "database/kvs/Kvs.h"
#include "database/zon/ZonStore.h"
#include "database/zon/ZonTestBed.h"

using namespace kvs;

TEST(ZonProjectNames, MixedCaseDatasetsAreListedOpenedAndRead) {
  ZonTestBed bed;
  vHandle<ZonProject> project = bed.openProject("names");
  // ELEV = 10, 11, 12 in each, but 20, 21, 22 in Pick.
  for (char const* version : {"1", "Pick", "top"}) {
    project->setSession();
    KvsObject ds = KvsOpen(project->getSession(), KvsNmode, 2L, KvsNtype, "TAB", KvsNident,
                           *version == 't' ? "Top" : "Line7", KvsNversion, *version == 't' ? "1" : version, 0L);
    KvsObject t = KvsCreate(ds, KvsNname, "TAB1", 0L);
    std::vector<int> cdp{1, 2, 3}, offset{100, 100, 100};
    std::vector<double> elev{10, 11, 12};
    if (*version == 'P') elev = {20, 21, 22};
    KvsCreate(t, KvsNname, "CDP", KvsNdata, cdp.data(), 0L);
    KvsCreate(t, KvsNname, "OFFSET", KvsNdata, offset.data(), 0L);
    KvsCreate(t, KvsNname, "ELEV", KvsNdata, elev.data(), 0L);
    ASSERT_EQ(3, KvsWrite(t, 3));
    ASSERT_EQ(0, KvsReplace(ds));
    KvsClose(ds);
  }
  project->emptyDatasetCache();
  vHandle<Project::StoreList> const list = project->getStoreList("", "");
  ASSERT_EQ(3u, list->size());
  EXPECT_STREQ("line7,tab.1", list->front().c_str());

  struct Case {
    char const* name;
    double third;  // each update adds 100
  } const cases[] = {{"line7,tab,1", 12}, {"LINE7,TAB,1", 112}, {"line7,tab,pick", 22}, {"LINE7,TAB", 122}};
  for (Case const& c : cases) {
    ZonStore store{vHandle_cast<Project>(project)};
    store.update(c.name, 0, "", "", nullptr);
    ASSERT_EQ(3u, store.getNInstances()) << c.name;
    Attribute elev = store.getAttribute("ELEV");
    store.read(elev, 1, 3);
    EXPECT_EQ(c.third, elev.getValue(3)) << c.name;
    // Written back as the database spells it: no upper-case copy appears.
    elev.setValue(3, elev.getValue(3) + 100);
    store.write(elev, 1, 3);
    store.close();
  }
  EXPECT_EQ(3u, project->getStoreDetailsList("", "")->size());
  ZonStore again{vHandle_cast<Project>(project)};
  again.open("line7,tab", 1, "", "", nullptr);
  Attribute elev = again.getAttribute("ELEV");
  again.read(elev, 1, 3);
  EXPECT_EQ(212.0, elev.getValue(3));
}
