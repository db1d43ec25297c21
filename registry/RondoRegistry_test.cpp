// The registration point: the client proxies, the in-memory classes and
// the views that it gives the factories.

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "decorator/ProfilingAttributeSetDecorator.h"
#include "filestore/memory/InMemoryAttributeSet.h"
#include "filestore/memory/InMemoryStore.h"
#include "foundation/ExceptionErrorHandler.h"
#include "foundation/RaiseError.h"
#include "foundation/SystemPropertyTable.h"
#include "foundation/TestReleaseTree.h"
#include "foundation/vDatabases.h"
#include "project/AttributeSetFactory.h"
#include "project/ProjectCatalogFactory.h"
#include "project/ProjectFactory.h"
#include "project/StoreFactory.h"
#include "registry/RondoRegistry.h"
#include "remote/ClientAttributeSet.h"
#include "remote/ClientProject.h"
#include "remote/ClientProjectCatalog.h"

namespace {

std::string str(vString const& s) { return std::string(s.c_str(), s.length()); }

std::string storeNames(vHandle<Project> const& project, char const* storeClass) {
  vHandle<Project::StoreList> list = project->getStoreList(storeClass, "");
  std::string all;
  for (vLCString const& n : *list) all += str(n) + " ";
  return all;
}

// A Rondo catalog is a client of a data server: the real one is started,
// and projects and attribute sets on it are clients too.
TEST(RondoRegistry, RondoCatalogsProjectsAndSetsAreClientsOfARealServer) {
  TestReleaseTree tree;
  tree.setEnv("HOME", tree.workDir());
  tree.setEnv("VSERVER", std::string(RONDO_TEST_BINARY_DIR) + "/bin/DataServer");
  tree.unsetEnv("SP_CAPI_DATASERVER");
  tree.setEnv("SP_DATASERVER_BACKEND", "UnitTest");
  tree.unsetEnv("FS_CLUSTERS");
  tree.unsetEnv("CAPI_DISABLERONDODATASERVER");
  tree.setEnv("RONDO_UNITTEST_STORES", " line12.3:seismic:2d\twells.1:well  Grid.2:seismic ");
  registerRondoClasses();
  registerRondoClasses();  // again: no harm

  vHandle<ProjectCatalog> catalog = ProjectCatalogFactory::create("", ProjectType::RONDO, "srv");
  ASSERT_NE(nullptr, dynamic_cast<ClientProjectCatalog*>(catalog.get()));
  EXPECT_EQ(ProjectType::RONDO, catalog->getProjectType());
  EXPECT_EQ("", str(catalog->getServer()));

  vHandle<Project> project = ProjectFactory::create(catalog);
  ASSERT_NE(nullptr, dynamic_cast<ClientProject*>(project.get()));
  project->open("survey");
  EXPECT_EQ("line12.3 wells.1 grid.2 ", storeNames(project, ""));
  EXPECT_EQ("line12.3 grid.2 ", storeNames(project, "seismic"));
  EXPECT_EQ("2d", str(project->getStoreDetails("line12", 3).getSubClass()));

  vHandle<AttributeSet> set = AttributeSetFactory::create(project);
  ASSERT_NE(nullptr, dynamic_cast<ClientAttributeSet*>(set.get()));
  set->open("line12", 3, "", "", nullptr);
  EXPECT_EQ(0u, set->getNInstances());
  EXPECT_EQ("2d", str(set->getSubClass()));
  set->close();
  // The server logged to the home directory.
  std::ifstream log(tree.workDir() + "DataServer.Rondo");
  EXPECT_TRUE(log.good());
}

// --- the factories' classes ------------------------------------------------------------------

Attribute ints(char const* name, std::vector<int> const& values) {
  Attribute a(name, "", vINT32);
  a.copyData(static_cast<unsigned int>(values.size()), values.data());
  return a;
}

std::vector<int> readInts(AttributeSet const& set, char const* name) {
  Attribute a = set.getAttribute(name);
  set.read(a, 1, set.getNInstances());
  std::vector<int> values;
  for (unsigned int i = 1; i <= a.getNInstances(); ++i) values.push_back(a.getInt32(i));
  return values;
}

KeyList cdpKey() {
  KeyList keys;
  keys.addKey(Attribute("CDP", "CDP", vINT32));
  return keys;
}

// A release tree whose system property table holds the records given; the
// table is read again when the tree comes and when it goes.
class PropertyTree {
 public:
  explicit PropertyTree(std::string const& records) : m_tree(new TestReleaseTree) {
    m_tree->unsetEnv("SP_CAPI_ATTRIBUTESETDECORATORS");
    m_tree->unsetEnv("SP_CAPI_TRANSLATIONS");
    m_tree->writeSystemFile("SystemPropertyTable2.txt", records);
    reload();
  }
  ~PropertyTree() {
    m_tree.reset();
    reload();
  }

 private:
  static void reload() {
    vDatabases::clearCache();
    SystemPropertyTable::instance().reload();
  }
  std::unique_ptr<TestReleaseTree> m_tree;
};

// Keeps the error reports as "label: text"; fatal messages raise as usual.
class RecordingHandler : public ExceptionErrorHandler {
 public:
  std::vector<std::string> errors;

 protected:
  void doError(char const* label, int, char const* text) override {
    errors.push_back(std::string(label) + ": " + text);
  }
  void doInfo(char const*, int, char const*) override {}
};

class FactoriesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    registerRondoClasses();
    StoreFactory::clearStores();
    AttributeSetFactory::clearAttributeSets();
  }
};

StoreDescription unitTestStore(char const* host, char const* store) {
  return StoreDescription(ProjectType::UNITTEST, "", host, "survey", store, "seismic", 0, "");
}

TEST_F(FactoriesTest, UnitTestProjectsGetInMemoryStoresAndSets) {
  PropertyTree noProperties("");
  StoreDescription d = unitTestStore("127.0.0.121", "line1");
  vHandle<Project> project = ProjectFactory::openProject(d.getFullProjectName());
  EXPECT_NE(nullptr, dynamic_cast<InMemoryStore*>(StoreFactory::create(project).get()));
  vHandle<AttributeSet> set = AttributeSetFactory::create(project);
  EXPECT_NE(nullptr, dynamic_cast<InMemoryAttributeSet*>(set.get()));
  EXPECT_EQ(project.get(), set->getProject().get());
}

vHandle<Project> project(StoreDescription const& d) { return ProjectFactory::openProject(d.getFullProjectName()); }

TEST_F(FactoriesTest, CreateAndOpenThroughAUnitTestProject) {
  PropertyTree noProperties("");
  StoreDescription d = unitTestStore("127.0.0.122", "line1");
  vHandle<Store> made = StoreFactory::createStore(d, "2d", cdpKey(), nullptr);
  vHandle<InMemoryStore> live;
  vHandle_cast(live, made);
  ASSERT_FALSE(live.isEmpty());
  EXPECT_EQ("line1", str(made->getName()));
  EXPECT_EQ("seismic", str(made->getClass()));
  EXPECT_EQ("2d", str(made->getSubClass()));
  EXPECT_EQ(1u, made->getKeyList().getNKeys());
  made->addInstances(3);
  made->write(ints("CDP", {7, 8, 9}), 1, 3);
  made->close();

  // A name of the project opens a new store of the project; the data of an
  // in-memory store are in the store object, so this one has none.
  vHandle<Store> opened = StoreFactory::openStore(d, "", nullptr);
  ASSERT_NE(nullptr, dynamic_cast<InMemoryStore*>(opened.get()));
  EXPECT_NE(made.get(), opened.get());
  EXPECT_TRUE(opened->isOpen());
  EXPECT_EQ(project(d).get(), opened->getProject().get());
  opened->close();

  // The live store, by its description, is opened again with its data.
  StoreDescription byAddress(live, "line1");
  vHandle<Store> again = StoreFactory::openStore(StoreDescription(byAddress.toString()), "", nullptr);
  EXPECT_EQ(made.get(), again.get());
  EXPECT_TRUE(again->isOpen());
  EXPECT_EQ((std::vector<int>{7, 8, 9}), readInts(*again, "CDP"));
  again->close();
  vHandle<Store> updated = StoreFactory::updateStore(byAddress, "", nullptr);
  updated->write(ints("CDP", {5}), 2, 2);
  EXPECT_EQ((std::vector<int>{7, 5, 9}), readInts(*updated, "CDP"));
  updated->close();
}

// The attribute set name reaches the store as its subclass, which the
// in-memory sets refuse without a class.
TEST_F(FactoriesTest, TheAttributeSetNameGoesToTheStoreAsSubclass) {
  PropertyTree noProperties("");
  StoreDescription d = unitTestStore("127.0.0.123", "line2");
  d.setStoreClass("");
  expectFatal([&] { StoreFactory::openStore(d, "picks", nullptr); }, "CapiAttributeSet::open",
              "For AttributeSet 'line2': A subClass of 'picks' cannot be specified without also giving a class.");
  expectFatal([&] { StoreFactory::createStore(d, "picks", cdpKey(), nullptr); }, "CapiAttributeSet::create",
              "For AttributeSet 'line2': A subClass of 'picks' cannot be specified without also giving a class.");
  d.setStoreClass("seismic");
  expectFatal([&] { StoreFactory::createStore(d, "", cdpKey(), nullptr); }, "CapiAttributeSet::create",
              "When creating AttributeSet 'line2', the subclass cannot be blank.");
  vHandle<Store> opened = StoreFactory::openStore(d, "picks", nullptr);
  EXPECT_TRUE(opened->isOpen());
  opened->close();
}

TEST_F(FactoriesTest, ALiveStoreIsCreatedInPlace) {
  vHandle<InMemoryStore> fresh(new InMemoryStore(vHandle<Project>()));
  StoreDescription d(fresh, "scratch");
  expectFatal([&] { StoreFactory::createStore(d, "", cdpKey(), nullptr); }, "CapiAttributeSet::create",
              "When creating AttributeSet 'scratch', the class cannot be blank.");
  d.setStoreClass("well");
  vHandle<Store> created = StoreFactory::createStore(d, "logs", cdpKey(), nullptr);
  EXPECT_EQ(static_cast<Store*>(fresh.get()), created.get());
  EXPECT_EQ("scratch", str(created->getName()));
  EXPECT_EQ("well", str(created->getClass()));
  EXPECT_EQ("logs", str(created->getSubClass()));
  EXPECT_EQ(1u, created->getKeyList().getNKeys());
  EXPECT_TRUE(StoreFactory::hasStore(d));
  created->close();
}

TEST_F(FactoriesTest, ProfilingViewsAsTheSiteAsks) {
  PropertyTree properties(
      "<SystemProperty name= AttributeSetDecorators package= capi description= \"views\" "
      "value= Profiling value= bogus value= PROFILING SystemProperty>\n");
  RecordingHandler recording;
  RaiseError::getInstance()->install(&recording);
  vHandle<Project> project = ProjectFactory::openProject(unitTestStore("127.0.0.124", "x").getFullProjectName());
  vHandle<AttributeSet> set = AttributeSetFactory::create(project);
  RaiseError::getInstance()->uninstall(&recording);
  EXPECT_EQ(std::vector<std::string>{"AttributeSetFactory::mySetWrapper: Unknown decorator request BOGUS, ignored."},
            recording.errors);

  // The last listed is outermost.
  auto* outer = dynamic_cast<ProfilingAttributeSetDecorator*>(set.get());
  ASSERT_NE(nullptr, outer);
  auto* inner = dynamic_cast<ProfilingAttributeSetDecorator*>(outer->getDecoratedSet().get());
  ASSERT_NE(nullptr, inner);
  EXPECT_NE(nullptr, dynamic_cast<InMemoryAttributeSet*>(inner->getDecoratedSet().get()));

  set->create("timed", "seismic", "2d", cdpKey(), nullptr);
  set->addInstances(2);
  set->write(ints("CDP", {3, 4}), 1, 2);
  EXPECT_EQ((std::vector<int>{3, 4}), readInts(*set, "CDP"));
  ::testing::internal::CaptureStderr();
  set->close();
  std::string const report = ::testing::internal::GetCapturedStderr();
  // Each of the two views reports the calls it saw.
  for (char const* label : {"timed create: ", "timed write(range): ", "timed read(range): ", "timed close: "}) {
    std::string::size_type first = report.find(label);
    ASSERT_NE(std::string::npos, first) << label << "\n" << report;
    EXPECT_NE(std::string::npos, report.find(label, first + 1)) << label << "\n" << report;
  }
}

TEST_F(FactoriesTest, FileFormatsWhoseStoreIsNotLinkedInAreNotHandled) {
  TestReleaseTree tree;
  int unhandled = 0;
  for (char const* tag : {"segy", "segd", "ascii", "shapefile", "fdm", "offload", "nyx"}) {
    if (StoreFactory::getMakers(StoreFactory::getFileStoreClass(tag)).openFile != nullptr) continue;
    ++unhandled;
    std::string const file = tree.writeWorkFile(std::string("data.") + tag, "data");
    StoreDescription d(vFilename(vString(file.c_str())));
    d.setFileFormat(tag);
    expectFatal([&] { StoreFactory::openStore(d, "", nullptr); }, "StoreFactory::openStore",
                "The file '" + file + "' is of a type '" + tag + "' which we cannot handle yet!");
  }
  EXPECT_GT(unhandled, 0);
}

}  // namespace
