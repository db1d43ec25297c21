// The registration point: the client proxies, the in-memory and SEG-Y classes and
// the views that it gives the factories.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "database/zon/ZonProject.h"
#include "database/zon/ZonProjectCatalog.h"
#include "database/zon/ZonTestDatabase.h"
#include "decorator/AttributeMappingDecorator.h"
#include "decorator/ProfilingAttributeSetDecorator.h"
#include "decorator/StoreDecoratorFactory.h"
#include "decorator/TranslatingAttributeSetDecorator.h"
#include "filestore/memory/InMemoryAttributeSet.h"
#include "filestore/memory/InMemoryStore.h"
#include "filestore/disk/ExistingAttributeFile.h"
#include "filestore/fdm/FdmDiskStore.h"
#include "filestore/offload/OffloadDiskStore.h"
#include "filestore/segd/SegdDiskStore.h"
#include "filestore/segd/SegdTesting.h"
#include "filestore/segy/SegyDiskStore.h"
#include "filestore/segy/SegyTesting.h"
#include "foundation/TestReleaseTree.h"
#include "project/AttributeSetFactory.h"
#include "project/ProjectCatalogFactory.h"
#include "project/ProjectFactory.h"
#include "project/StoreFactory.h"
#include "project/StoreFactoryTesting.h"
#include "registry/RondoRegistry.h"
#include "remote/ClientAttributeSet.h"
#include "remote/ClientProject.h"
#include "remote/ClientProjectCatalog.h"
#include "syslayer/FSTesting.h"

namespace {

using namespace factory_testing;

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

KeyList cdpKey() {
  KeyList keys;
  keys.addKey(Attribute("CDP", "CDP", vINT32));
  return keys;
}

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

vHandle<Project> project(StoreDescription const& d) { return ProjectFactory::openProject(d.getFullProjectName()); }

TEST_F(FactoriesTest, CreateAndOpenThroughAUnitTestProject) {
  PropertyTree noProperties("");
  StoreDescription d = unitTestStore("127.0.0.122", "line1");
  vHandle<Store> made = StoreFactory::createStore(d, "2d", cdpKey(), nullptr);
  vHandle<InMemoryStore> live;
  vHandle_cast(live, made);
  ASSERT_FALSE(live.isEmpty());
  EXPECT_EQ("2d", str(made->getSubClass()));
  vHandle<AttributeSet> set = AttributeSetFactory::create(project(d));
  EXPECT_NE(nullptr, dynamic_cast<InMemoryAttributeSet*>(set.get()));
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
}

// The attribute set name reaches the store as its subclass, which the
// in-memory sets refuse without a class.
TEST_F(FactoriesTest, TheAttributeSetNameGoesToTheStoreAsSubclass) {
  PropertyTree noProperties("");
  StoreDescription d = unitTestStore("127.0.0.123", "line2");
  d.setStoreClass("");
  expectFatal([&] { StoreFactory::openStore(d, "picks", nullptr); }, "CapiAttributeSet::open",
              "For AttributeSet 'line2': A subClass of 'picks' cannot be specified without also giving a class.");
  d.setStoreClass("seismic");
  vHandle<Store> opened = StoreFactory::openStore(d, "picks", nullptr);
  EXPECT_TRUE(opened->isOpen());
  opened->close();
}

// The translating set view and the attribute mapping of stores that the
// factory maps.
TEST_F(FactoriesTest, TranslatingAndMappingViewsAreGiven) {
  AttributeSetFactory::DecoratorMaker maker = AttributeSetFactory::getDecoratorMaker("TranslatingAttributeSetDecorator");
  ASSERT_NE(nullptr, maker);
  vHandle<AttributeSet> bare(new InMemoryAttributeSet(vHandle<Project>()));
  EXPECT_NE(nullptr, dynamic_cast<TranslatingAttributeSetDecorator*>(maker(bare).get()));

  StoreFactory::AttributeMapping const mapping = StoreFactory::registerAttributeMapping({nullptr, nullptr});
  StoreFactory::registerAttributeMapping(mapping);
  bool (*resolve)(vFilename const&, vString const&, vFilename&) = &AttributeMappingDecorator::resolveMapFilename;
  EXPECT_EQ(resolve, mapping.resolve);
  EXPECT_EQ(&StoreDecoratorFactory::addAttributeMapping, mapping.apply);
}

TEST_F(FactoriesTest, ProfilingViewsAsTheSiteAsks) {
  PropertyTree properties(
      "<SystemProperty name= AttributeSetDecorators package= capi description= \"views\" "
      "value= Profiling value= bogus value= PROFILING SystemProperty>\n");
  vHandle<AttributeSet> set;
  {
    Recording recording;
    set = AttributeSetFactory::create(
        ProjectFactory::openProject(unitTestStore("127.0.0.124", "x").getFullProjectName()));
    EXPECT_EQ(std::vector<std::string>{"AttributeSetFactory::mySetWrapper: Unknown decorator request BOGUS, ignored."},
              recording.errors());
  }

  // The last listed is outermost.
  auto* outer = dynamic_cast<ProfilingAttributeSetDecorator*>(set.get());
  ASSERT_NE(nullptr, outer);
  auto* inner = dynamic_cast<ProfilingAttributeSetDecorator*>(outer->getDecoratedSet().get());
  ASSERT_NE(nullptr, inner);
  EXPECT_NE(nullptr, dynamic_cast<InMemoryAttributeSet*>(inner->getDecoratedSet().get()));
}

TEST_F(FactoriesTest, FileFormatsWhoseStoreIsNotLinkedInAreNotHandled) {
  TestReleaseTree tree;
  // Every format's store is linked in now; take each out in turn, as a
  // build without it would have it.
  for (char const* tag : {"segy", "segd", "ascii", "shapefile", "fdm", "offload", "nyx"}) {
    vString const storeClass = StoreFactory::getFileStoreClass(tag);
    StoreFactory::Makers const linked = StoreFactory::registerMakers(storeClass, StoreFactory::Makers{});
    EXPECT_NE(nullptr, linked.openFile) << tag;
    std::string const file = tree.writeWorkFile(std::string("data.") + tag, "data");
    StoreDescription d(vFilename(vString(file.c_str())));
    d.setFileFormat(tag);
    expectFatal([&] { StoreFactory::openStore(d, "", nullptr); }, "StoreFactory::openStore",
                "The file '" + file + "' is of a type '" + tag + "' which we cannot handle yet!");
    StoreFactory::registerMakers(storeClass, linked);
  }
}

// SEG-Y files reach the SEG-Y store by every tag.
TEST(RondoRegistrySegy, SegyFilesOpenAsSegyStoresByEveryTag) {
  registerRondoClasses();
  fs_testing::TempDir dir;
  segy_testing::SegyWriter w;
  w.dataTracesPerRecord = 3;
  std::string const plain = w.file(4);
  for (char const* name : {"a.sgy", "b.SGY", "c.segy", "d"}) {
    std::string const path = dir / name;
    fs_testing::writeFile(path, plain);
    StoreDescription description{vFilename(path.c_str())};
    if (std::string(name) == "d") description.setFileFormat("segy");
    vHandle<Store> store = StoreFactory::openStore(description, "", nullptr);
    ASSERT_NE(nullptr, dynamic_cast<SegyDiskStore*>(store.get())) << name;
    EXPECT_TRUE(store->isOpen());
    EXPECT_EQ(4u, store->getNInstances()) << name;
    Attribute cmp = store->getAttribute("CMP");
    store->read(cmp, 4, 4);
    EXPECT_EQ(segy_testing::goldenHeader(4, 20), cmp.getInt32(1));
  }
  // The blocked variant: two blocks of two traces.
  std::string const blocked = dir / "e.dsegy";
  fs_testing::writeFile(blocked, w.blockedFile(2));
  vHandle<Store> store = StoreFactory::openStore(StoreDescription(vFilename(blocked.c_str())), "", nullptr);
  ASSERT_NE(nullptr, dynamic_cast<SegyDiskStore*>(store.get()));
  EXPECT_EQ(4u, store->getNInstances());
  Attribute cmp = store->getAttribute("CMP");
  store->read(cmp, 3, 4);
  EXPECT_EQ(segy_testing::goldenHeader(3, 20), cmp.getInt32(1));
}

// SEG-D files reach the SEG-D store by every tag; a "dsegd" file has its
// traces 2048 bytes later.
TEST(RondoRegistrySegd, SegdFilesOpenAsSegdStoresByEveryTag) {
  registerRondoClasses();
  segd_testing::installVocabulary();
  fs_testing::TempDir dir;
  for (char const* name : {"a.segd", "b.SGD", "c.dsegd"}) {
    std::string const path = dir / name;
    ASSERT_TRUE(segd_testing::writeSegd(path, "--traces 3"));
    vHandle<Store> store = StoreFactory::openStore(StoreDescription(vFilename(path.c_str())), "", nullptr);
    ASSERT_NE(nullptr, dynamic_cast<SegdDiskStore*>(store.get())) << name;
    EXPECT_EQ(vLCString("segddisk"), store->getSubClass());
    EXPECT_EQ(3u, store->getNInstances()) << name;
    Attribute trace = store->getAttribute("TRACE");
    store->read(trace, 3, 3);
    EXPECT_EQ(segd_testing::writtenSample(3, 2), trace.getFloat32Pointer(1)[1]) << name;
  }
}

// Offload data files reach the offload store by their extension, and
// attribute files of that kind are opened by the offload file.
TEST(RondoRegistryOffload, OffloadFilesOpenAsOffloadStores) {
  registerRondoClasses();
  fs_testing::TempDir dir;
  std::string const path = dir / "survey.offload";
  std::string const cmd = "/usr/bin/python3 " RONDO_TEST_SOURCE_DIR "/filestore/offload/testdata/offload_fixture.py " +
                          path + " " + (dir / "expect.txt") + " '>' 1 995 1";
  ASSERT_EQ(0, std::system(cmd.c_str())) << "python3 with numpy is needed";
  vHandle<Store> store = StoreFactory::openStore(StoreDescription(vFilename(path.c_str())), "", nullptr);
  ASSERT_NE(nullptr, dynamic_cast<OffloadDiskStore*>(store.get()));
  EXPECT_EQ(vLCString("offloaddisk"), store->getSubClass());
  Attribute cdp = store->getAttribute("CDP");
  store->read(cdp, 3, 3);
  EXPECT_EQ(21, cdp.getInt32(1));
  vHandle<AttributeFile> file =
      ExistingAttributeFile::getInstance().open(vFilename(path.c_str()), cdp, AttributeFile::OpenOptions());
  EXPECT_EQ(12u, file->getNInstances());
  EXPECT_EQ(vString("offload"), file->getRegistrationName());
}

// FDM volumes reach the FDM store by their extension, and by the format tag
// that a format spec comes with.
TEST(RondoRegistryFdm, FdmFilesOpenAsFdmStores) {
  registerRondoClasses();
  fs_testing::TempDir dir;
  std::string const path = dir / "rms.fdm";
  std::string const cmd =
      "/usr/bin/python3 " RONDO_TEST_SOURCE_DIR "/filestore/fdm/testdata/fdm_fixture.py " + path + " '>'";
  ASSERT_EQ(0, std::system(cmd.c_str()));
  EXPECT_NE(nullptr, dynamic_cast<FdmDiskStore*>(
                         StoreFactory::openStore(StoreDescription(vFilename(path.c_str())), "", nullptr).get()));
  StoreDescription description{vFilename(path.c_str())};
  description.setFileFormat("fdm");
  description.setFormatSpec("gridded_time_rms/intrp/1");
  vHandle<Store> store = StoreFactory::openStore(description, "", nullptr);
  auto* fdm = dynamic_cast<FdmDiskStore*>(store.get());
  ASSERT_NE(nullptr, fdm);
  EXPECT_TRUE(fdm->isInterpolating());
  EXPECT_EQ(vLCString("gridded_time_rms"), store->getSubClass());
  EXPECT_TRUE(store->hasAttribute("VELTRACE.RMS"));
}

}  // namespace

// Projects of type Zonmesh are the database back end linked into the
// process: the prompt lists the installed database servers, and the
// factories give catalogs and projects that read a real kvsd.
TEST(RondoRegistryZon, ZonmeshProjectsAreTheLinkedDatabaseBackEnd) {
  registerRondoClasses();
  ZonTestDatabase db;
  ASSERT_TRUE(db.writeShots("Survey7", "SEIS", "Line1", "1", 12));
  std::filesystem::create_directories(db.tree.releaseDir() + "SupportFiles/CapiZon/second");

  std::istringstream answers("z\n-l\nzonsite\ndatahost\n");
  std::streambuf* oldIn = std::cin.rdbuf(answers.rdbuf());
  testing::internal::CaptureStdout();
  vHandle<ProjectCatalog> catalog = ProjectCatalogFactory::enter(ProjectType::NOTYPE, "", "");
  std::string shown = testing::internal::GetCapturedStdout();
  std::cin.rdbuf(oldIn);
  EXPECT_NE(std::string::npos, shown.find("         second        zonsite\n")) << shown;
  EXPECT_NE(nullptr, dynamic_cast<ZonProjectCatalog*>(catalog.get()));
  EXPECT_EQ("zonsite", str(catalog->getServer()));

  vHandle<Project> project = ProjectFactory::openProject(ProjectType::ZONMESH, "zonsite", "datahost", "SURVEY7");
  ASSERT_NE(nullptr, dynamic_cast<ZonProject*>(project.get()));
  EXPECT_EQ("line1,seis.1 ", storeNames(project, ""));
  EXPECT_EQ(12u, project->getAttributeSetDetails("line1,seis", 0).front().getNInstances());

  // A store made from its description alone goes to the default server's
  // project, as a dataset of the type its class translates to.
  KeyList keys;
  keys.addKey(Attribute("SHOT", "", vINT32));
  vHandle<Store> made =
      StoreFactory::createStore(StoreDescription(vString("zonmesh::datahost:survey7:made#table#")), "plain", keys, nullptr);
  made->addInstances(3);
  Attribute shots("SHOT", "", vINT32);
  shots.resize(3);
  for (unsigned int i = 1; i <= 3; ++i) shots.setInt32(i, static_cast<int>(10 * i));
  made->write(shots, 1, 3);
  made->close();
  vHandle_cast<ZonProject>(project)->emptyDatasetCache();
  EXPECT_EQ("made,tab.1 ", storeNames(project, "table"));
  EXPECT_EQ(3u, project->getAttributeSetDetails("made,tab", 0).front().getNInstances());
  ProjectFactory::emptyCache();
}
