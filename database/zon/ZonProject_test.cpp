#include "database/zon/ZonProject.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "database/zon/CapiZon.h"
#include "database/zon/CapiZonFactory.h"
#include "database/zon/ZonTestDatabase.h"
#include "foundation/ErrorHandler.h"
#include "foundation/RaiseError.h"

namespace {

std::string str(vString const& s) { return std::string(s.c_str(), s.length()); }
std::string str(ProjectListEntry const& e) { return str(e.getName()); }

template <class List>
std::string joined(List const& list) {
  std::string text;
  for (auto const& s : list) text += str(s) + ";";
  return text;
}

// Keeps what the handlers are given, and passes it on.
class Recorder : public ErrorHandler {
 public:
  std::vector<std::string> lines;
  Recorder() { RaiseError::getInstance()->install(this); }
  ~Recorder() override { RaiseError::getInstance()->uninstall(this); }

 protected:
  void doFatal(char const* label, int, char const* text) override { lines.push_back(std::string("F:") + label + ":" + text); }
  void doError(char const* label, int, char const* text) override { lines.push_back(std::string("E:") + label + ":" + text); }
  void doInfo(char const* label, int, char const* text) override { lines.push_back(std::string("I:") + label + ":" + text); }
};

struct ZonProjects : ::testing::Test {
  ZonTestDatabase db;
  vHandle<ProjectCatalog> catalog = CapiZonFactory::createProjectCatalog("datahost", "");

  vHandle<ZonProject> openProject(char const* name) {
    vHandle<Project> project = CapiZonFactory::createProject(catalog);
    project->open(name);
    return vHandle_cast<ZonProject>(project);
  }
};

}  // namespace

// The catalog lists the server's projects; a project opened in another case
// takes the server's spelling, and its stores are the datasets by ident and
// type, each version with its details and its tables.
TEST_F(ZonProjects, ListOpenAndDescribeDatasets) {
  ASSERT_TRUE(db.writeShots("Survey7", "SEIS", "Line12", "1", 30));
  ASSERT_TRUE(db.writeShots("Survey7", "SEIS", "Line12", "2", 40));
  ASSERT_TRUE(db.writeShots("Survey7", "HZ", "Top", "base", 5));
  ASSERT_TRUE(db.writeShots("Survey7", "TAB", "T1", "1", 2));
  ASSERT_TRUE(db.writeShots("other", "SEIS", "L1", "1", 1));
  // The catalog's project list and the project's general record are the
  // library's blocks, and are given back whole.
  long const lent = kvs::kvsAllocated;

  vHandle<ProjectList> projects = catalog->getProjectList();
  EXPECT_EQ("survey7;other;", joined(*projects));

  EXPECT_EQ(ProjectType::ZONMESH, catalog->getProjectType());
  EXPECT_EQ("datahost", str(catalog->getHost()));
  vHandle<ZonProject> project = openProject("SURVEY7");
  EXPECT_EQ("zonsite/survey7", str(project->getServerHost()) + "/" + str(project->getName()));

  EXPECT_EQ("line12,seis.1;line12,seis.2;t1,tab.1;top,hz.1;", joined(*project->getStoreList("", "")));
  EXPECT_EQ(4u, project->getStoreDetailsList("", "")->size());
  EXPECT_EQ(lent, kvs::kvsAllocated);
  // The class of a dataset type is the one the class translations give it
  // with a table of the dictionary; this dictionary has none for SEIS.
  EXPECT_EQ("t1,tab.1;", joined(*project->getStoreList("table", "plain")));

  StoreDetails newest = project->getStoreDetails("line12,seis", 0);
  EXPECT_EQ(2, newest.getVersion());
  EXPECT_GT(newest.getDate().getSeconds(), 1000000000L);
  EXPECT_EQ(1, project->getStoreDetails("line12,seis", 1).getVersion());
  // A version named by text comes as a third component.
  EXPECT_TRUE(project->hasStore("top,hz,base", 0));
  EXPECT_TRUE(project->hasStore("top,hz", 1));
  EXPECT_TRUE(project->hasStore("top", 0));  // the one dataset of that ident
  EXPECT_FALSE(project->hasStore("line12,seis", 3));
  EXPECT_FALSE(project->hasStore("l1,seis", 0));

  Project::AttributeSetDetailsList sets = project->getAttributeSetDetails("line12,seis", 1);
  ASSERT_EQ(1u, sets.size());
  EXPECT_EQ("shots", str(sets.front().getName()));
  EXPECT_EQ(30u, sets.front().getNInstances());
  EXPECT_EQ(40u, project->getAttributeSetDetails("line12,seis", 0).front().getNInstances());

  // Deleting goes to the database, and the cache forgets the store.
  EXPECT_TRUE(project->deleteStore("line12,seis", 1, "", ""));
  EXPECT_FALSE(project->hasStore("line12,seis", 1));
  EXPECT_TRUE(project->hasStore("line12,seis", 2));
  ASSERT_TRUE(db.writeShots("Survey7", "SEIS", "Line12", "3", 2));
  project->emptyDatasetCache();
  EXPECT_TRUE(project->purgeStore(1, "line12,seis", "", ""));
  project->emptyDatasetCache();
  EXPECT_FALSE(project->hasStore("line12,seis", 2));
  EXPECT_EQ(3, project->getStoreDetails("line12,seis", 0).getVersion());
  EXPECT_FALSE(project->deleteStore("line12,seis", 7, "", ""));

  expectFatal([&] { project->getStoreDetails("nothing,seis", 0); }, "ZonProject::getStoreDetails",
              "The store 'nothing,seis' does not exist!");
  project->close();
  expectFatal([&] { project->hasStore("top,hz", 0); }, "ZonProject::hasStore", "Project is not open!");
}

// Seismic-geometry tables stand apart from the stores: each version is named
// by the three parts of its name details, and an ident alone still names the
// line beside its geometry.
TEST_F(ZonProjects, GeometryTablesAreNamedApart) {
  ASSERT_TRUE(db.writeShots("geo", "SEIS", "Line12", "1", 3));
  ASSERT_TRUE(db.writeShots("geo", "SGD", "Line12", "1", 5));
  ASSERT_TRUE(db.writeShots("geo", "SGD", "Line12", "2", 6));
  vHandle<ZonProject> project = openProject("geo");
  EXPECT_EQ("line12,seis.1;sgd,1,line12.1;sgd,2,line12.2;", joined(*project->getStoreList("", "")));

  struct Case {
    char const* name;
    char const* found;  // ident/type/version
    unsigned int rows;
  } const cases[] = {{"line12", "Line12/SEIS/1", 3},
                     {"sgd,1,line12", "Line12/SGD/1", 5},
                     {"SGD,2,LINE12", "Line12/SGD/2", 6},
                     {"line12,sgd", "Line12/SGD/2", 6}};
  for (Case const& c : cases) {
    vString name(c.name), ident, type, version("0");
    EXPECT_TRUE(project->locateNameComponents(name, ident, type, version)) << c.name;
    EXPECT_EQ(c.found, str(ident) + "/" + str(type) + "/" + str(version));
    EXPECT_EQ(c.rows, project->getAttributeSetDetails(c.name, 0).front().getNInstances()) << c.name;
  }
  // One about to be made, named type first.
  vString fresh("sgd,3,line9"), ident, type, version;
  EXPECT_FALSE(project->locateNameComponents(fresh, ident, type, version));
  EXPECT_EQ("line9/SGD/3", str(ident) + "/" + str(type) + "/" + str(version));

  EXPECT_TRUE(project->deleteStore("sgd,1,line12", 0, "", ""));
  EXPECT_FALSE(project->hasStore("sgd,1,line12", 0));
  EXPECT_TRUE(project->hasStore("sgd,2,line12", 0));
  EXPECT_TRUE(project->hasStore("line12", 0));
}

// The library serves one project at a time: alternating projects start it
// again at each switch, the same project twice does not.
TEST_F(ZonProjects, SwitchingProjectsReactivatesOnlyOnChangeAndMessagesPassOn) {
  ASSERT_TRUE(db.writeShots("alpha", "SEIS", "A", "1", 3));
  ASSERT_TRUE(db.writeShots("beta", "SEIS", "B", "1", 4));
  vHandle<ZonProject> alpha = openProject("alpha");
  // With timers on, open prints each of its steps with the time of day.
  CapiZon::enableTimers(true);
  testing::internal::CaptureStdout();
  vHandle<ZonProject> beta = openProject("beta");
  std::string const timed = testing::internal::GetCapturedStdout();
  CapiZon::enableTimers(false);
  for (char const* step : {"ZonProject::open 1: ", "ZonProject::open 2: ", "ZonProject::open 3: ", "ZonProject::open 4: "})
    EXPECT_NE(std::string::npos, timed.find(step)) << timed;
  int before = vKvsActivate::getCounter();
  alpha->setSession();
  alpha->setSession();
  EXPECT_EQ(before + 1, vKvsActivate::getCounter());
  EXPECT_EQ(3u, alpha->getAttributeSetDetails("a,seis", 0).front().getNInstances());
  EXPECT_EQ(4u, beta->getAttributeSetDetails("b,seis", 0).front().getNInstances());
  EXPECT_EQ(3u, alpha->getAttributeSetDetails("a,seis", 0).front().getNInstances());
  EXPECT_EQ(before + 3, vKvsActivate::getCounter());
  EXPECT_EQ(1u, beta->getStoreList("", "")->size());
  // Library messages reach the system's handlers by severity, without their
  // prefix, and the routine ones are dropped.
  Recorder recorder;
  for (char const* text : {"%I dataset L1 successfully replaced", "%I No data selected in database for dataset X",
                           "%I hello", "%W careful", "%E Not existing version 4", "%E broken",
                           "Deleting version : 3", "%S severe"})
    kvs::KvsPrintf(text);
  std::string all;
  for (std::string const& l : recorder.lines) all += l + "|";
  EXPECT_EQ("I:CapiZon: hello|E:CapiZon: careful|E:CapiZon: broken|E:CapiZon:%S severe|", all);
}

// The light list answers from what the project holds, without the database;
// the full one asks it, and so sees what another program wrote since. The
// daemon gone between two reads, or unreachable at open: the system's own
// errors, naming the server, the project and the library's reason.
TEST_F(ZonProjects, LightListsAndADaemonKilledOrUnreachable) {
  ASSERT_TRUE(db.writeShots("alpha", "SEIS", "A", "1", 3));
  vHandle<ZonProject> project = openProject("alpha");
  EXPECT_EQ(1u, project->getLightStoreDetailsList("", "")->size());
  ASSERT_TRUE(db.writeShots("alpha", "SEIS", "B", "1", 2));
  EXPECT_EQ(1u, project->getLightStoreDetailsList("", "")->size());
  EXPECT_EQ(2u, project->getStoreDetailsList("", "")->size());
  EXPECT_EQ(3u, project->getAttributeSetDetails("a,seis", 0).front().getNInstances());
  db.stop(SIGKILL);
  MessageHandling quiet;
  std::string const read = fatalText([&] { project->getAttributeSetDetails("a,seis", 0); });
  EXPECT_EQ(0u, read.find("ZonProject::getAttributeSetDetails: Error reading store a,seis: ")) << read;
  EXPECT_EQ(2u, project->getLightStoreDetailsList("", "")->size());
  std::string const list = fatalText([&] { project->getStoreDetailsList("", ""); });
  EXPECT_EQ(0u, list.find("ZonProject::DatasetCache::myPopulateCache: ")) << list;

  vKvsActivate::deactivate();
  vHandle<Project> fresh = CapiZonFactory::createProject(catalog);
  expectFatal([&] { fresh->open("beta"); }, "KvsActivate::project",
              "Unable to initialise KVS:  Server='zonsite'  Project='beta'  error=9 '%S Could not find kvsd server "
              "(PORT " + std::to_string(db.port()) + ") on 127.0.0.1'  KVSROOT='" + db.clientFolder() + "'");
}
