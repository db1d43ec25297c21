// The factories of the lower layers with the classes registered here, on real files and a real kvsd.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <sstream>
#include <string>

#include "database/zon/ZonProject.h"
#include "database/zon/ZonProjectCatalog.h"
#include "database/zon/ZonTestDatabase.h"
#include "decorator/ProfilingAttributeSetDecorator.h"
#include "decorator/TranslatingAttributeSetDecorator.h"
#include "filestore/memory/InMemoryAttributeSet.h"
#include "filestore/memory/InMemoryStore.h"
#include "filestore/disk/ExistingAttributeFile.h"
#include "filestore/fdm/FdmDiskStore.h"
#include "filestore/nyx/NyxDiskStore.h"
#include "filestore/nyx/NyxFormat.h"
#include "filestore/nyx/NyxTesting.h"
#include "filestore/offload/OffloadAttributeFile.h"
#include "filestore/offload/OffloadDiskStore.h"
#include "filestore/segd/SegdDiskStore.h"
#include "filestore/segd/SegdTesting.h"
#include "filestore/segy/SegyDiskStore.h"
#include "filestore/segy/SegyTesting.h"
#include "foundation/TestReleaseTree.h"
#include "project/AttributeSetFactory.h"
#include "project/CapiProject.h"
#include "project/ProjectCatalogFactory.h"
#include "project/ProjectFactory.h"
#include "project/StoreFactory.h"
#include "project/StoreFactoryTesting.h"
#include "registry/RondoRegistry.h"
#include "syslayer/FSTesting.h"

namespace {

using namespace factory_testing;

// UnitTest projects have in-memory stores and sets; the views a site may ask for have their makers.
TEST(RondoRegistryFactories, UnitTestProjectsAndViews) {
  registerRondoClasses();
  StoreFactory::clearStores();
  AttributeSetFactory::clearAttributeSets();
  StoreDescription d(ProjectType::UNITTEST, "", "127.0.0.122", "survey", "line1", "seismic", 0, "");
  KeyList keys;
  keys.addKey(Attribute("CDP", "CDP", vINT32));
  vHandle<Store> made = StoreFactory::createStore(d, "2d", keys, nullptr);
  EXPECT_NE(nullptr, dynamic_cast<InMemoryStore*>(made.get()));
  made->close();
  vHandle<Project> project = ProjectFactory::openProject(d.getFullProjectName());
  EXPECT_NE(nullptr, dynamic_cast<InMemoryAttributeSet*>(AttributeSetFactory::create(project).get()));
  vHandle<Store> opened = StoreFactory::openStore(d, "", nullptr);
  ASSERT_NE(nullptr, dynamic_cast<InMemoryStore*>(opened.get()));
  EXPECT_EQ(project.get(), opened->getProject().get());
  opened->close();

  vHandle<AttributeSet> bare(new InMemoryAttributeSet(vHandle<Project>()));
  auto make = [&](char const* name) {
    AttributeSetFactory::DecoratorMaker maker = AttributeSetFactory::getDecoratorMaker(name);
    return maker ? maker(bare) : vHandle<AttributeSet>();
  };
  EXPECT_NE(nullptr, dynamic_cast<ProfilingAttributeSetDecorator*>(make("ProfilingAttributeSetDecorator").get()));
  EXPECT_NE(nullptr, dynamic_cast<TranslatingAttributeSetDecorator*>(make("TranslatingAttributeSetDecorator").get()));
}

vHandle<Store> openFile(std::string const& path) {
  return StoreFactory::openStore(StoreDescription(vFilename(path.c_str())), "", nullptr);
}

int readInt(Store const& store, char const* name, unsigned int at) {
  Attribute a = store.getAttribute(name);
  store.read(a, at, at);
  return a.getInt32(1);
}

// Runs a fixture script of the file store tests with these arguments.
int fixture(char const* script, std::string const& arguments) {
  return std::system(("/usr/bin/python3 " RONDO_TEST_SOURCE_DIR "/filestore/" + std::string(script) + " " + arguments)
                         .c_str());
}

// Each file format reaches its own store, and "cst" files are made by the factory.
TEST(RondoRegistryFiles, FilesOpenAsTheStoresOfTheirFormat) {
  registerRondoClasses();
  segd_testing::installVocabulary();
  fs_testing::TempDir dir;
  segy_testing::SegyWriter w;
  w.dataTracesPerRecord = 3;
  fs_testing::writeFile(dir / "a.sgy", w.file(4));
  vHandle<Store> store = openFile(dir / "a.sgy");
  ASSERT_NE(nullptr, dynamic_cast<SegyDiskStore*>(store.get()));
  EXPECT_EQ(segy_testing::goldenHeader(3, 20), readInt(*store, "CMP", 3));
  ASSERT_TRUE(segd_testing::writeSegd(dir / "a.segd", "--traces 3"));
  store = openFile(dir / "a.segd");
  ASSERT_NE(nullptr, dynamic_cast<SegdDiskStore*>(store.get()));
  Attribute trace = store->getAttribute("TRACE");
  store->read(trace, 3, 3);
  EXPECT_EQ(segd_testing::writtenSample(3, 2), trace.getFloat32Pointer(1)[1]);

  // Offload files, which also open as attribute files of their kind.
  std::string const offload = dir / "survey.offload";
  ASSERT_EQ(0, fixture("offload/testdata/offload_fixture.py", offload + " " + (dir / "expect.txt") + " '>' 1 995 1"));
  store = openFile(offload);
  ASSERT_NE(nullptr, dynamic_cast<OffloadDiskStore*>(store.get()));
  EXPECT_EQ(21, readInt(*store, "CDP", 3));
  Attribute cdp = store->getAttribute("CDP");
  // Registered once; a second registration leaves the example in place.
  OffloadAttributeFile::registerFile(ExistingAttributeFile::getInstance());
  EXPECT_EQ(12u, ExistingAttributeFile::getInstance().open(vFilename(offload.c_str()), cdp, {})->getNInstances());

  // FDM volumes, told how their traces are laid out.
  std::string const fdmPath = dir / "rms.fdm";
  ASSERT_EQ(0, fixture("fdm/testdata/fdm_fixture.py", fdmPath + " '>'"));
  StoreDescription description{vFilename(fdmPath.c_str())};
  description.setFileFormat("fdm");
  description.setFormatSpec("gridded_time_rms/intrp/1");
  store = StoreFactory::openStore(description, "", nullptr);
  auto* fdm = dynamic_cast<FdmDiskStore*>(store.get());
  ASSERT_NE(nullptr, fdm);
  EXPECT_TRUE(fdm->isInterpolating());
  EXPECT_TRUE(store->hasAttribute("VELTRACE.RMS"));

  std::string const cst = dir / "made.cst";
  store = StoreFactory::createStore(StoreDescription(vFilename(cst.c_str())), "", KeyList(), nullptr);
  ASSERT_NE(nullptr, dynamic_cast<NyxDiskStore*>(store.get()));
  trace = Attribute("TRACE", "", vFLOAT32, 2, 4.0);
  store->addAttribute(trace);
  trace.resize(3);
  trace.getFloat32Pointer(3)[1] = 1.5f;
  store->write(trace, 1, 3);
  store->close();
  Attribute back("TRACE", "", vFLOAT32);
  openFile(cst)->read(back, 3, 3);
  EXPECT_EQ(1.5f, back.getFloat32Pointer(1)[1]);
}

// The finder picks the Nyx mapping file that gives groups, by the file's name and its traces.
TEST(RondoRegistryNyx, TheFinderPicksTheMappingThatGivesGroups) {
  registerRondoClasses();
  TestReleaseTree tree;  // the mapping files lie in the release of the checkout
  tree.setEnv("VREL", RONDO_TEST_SOURCE_DIR "/release/");
  fs_testing::TempDir dir;
  struct Case {
    char const* name;
    char const* spec;
    char const* traces;
  } const cases[] = {{"line2d.cst", "2dCMPGathers", "12"},
                     {"line2dstk.cst", "2dStack", "12 5 stack"},
                     {"area3dSTK.cst", "3dInlineStacks", "12"},
                     {"area3d.nyx", "3dCMPGathers", "12"},
                     {"plain.cst", "", "12"},
                     {"single2d.cst", "", "1"}};
  for (Case const& c : cases) {
    SCOPED_TRACE(c.name);
    std::string const path = dir / c.name;
    nyx_testing::writeFixture("cst", path, ">", 5, c.traces);
    EXPECT_EQ(std::string(c.spec), NyxFormat::getSpecification(StoreDescription{vFilename(path.c_str())}).c_str());
  }
  // The factory asks this finder when told to: the stack is seen through its mapping, keyed by CDP.
  StoreOpenOptions options;
  options.setAutoSpecifyCSTFiles(true);
  vHandle<Store> store =
      StoreFactory::openStore(StoreDescription{vFilename((dir / "line2dstk.cst").c_str())}, "", &options);
  ASSERT_EQ(nullptr, dynamic_cast<NyxDiskStore*>(store.get()));
  KeyList const keys = store->getKeyList();
  ASSERT_LT(0u, keys.getNKeys());
  EXPECT_EQ(vUCString("CDP"), keys.begin()->getName());
  StoreDescription shots{vFilename((dir / "line2d.cst").c_str())};
  EXPECT_TRUE(NyxFormat::mySpecProducesGroups(shots, "2dShotGathers"));
  EXPECT_EQ(vString(), shots.getFormatSpec());
  EXPECT_FALSE(NyxFormat::mySpecProducesGroups(shots, "noSuchSpec"));
}

}  // namespace

// Zonmesh projects are the linked database back end: Capi and the prompt give its servers, the factories read a
// real kvsd.
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
  EXPECT_STREQ("zonsite", Capi::getDefaultCapiZonServer().c_str());
  EXPECT_NE(nullptr, dynamic_cast<ZonProjectCatalog*>(catalog.get()));

  vHandle<Project> project = ProjectFactory::openProject(ProjectType::ZONMESH, "zonsite", "datahost", "SURVEY7");
  ASSERT_NE(nullptr, dynamic_cast<ZonProject*>(project.get()));
  EXPECT_EQ(12u, project->getAttributeSetDetails("line1,seis", 0).front().getNInstances());

  // A store made from its description alone goes to the default server's
  // project, as a dataset of the type its class translates to.
  KeyList keys;
  keys.addKey(Attribute("SHOT", "", vINT32));
  vHandle<Store> made =
      StoreFactory::createStore(StoreDescription(vString("zonmesh::datahost:survey7:made#table#")), "plain", keys, nullptr);
  made->addInstances(3);
  made->write(factory_testing::ints("SHOT", {10, 20, 30}), 1, 3);
  made->close();
  vHandle_cast<ZonProject>(project)->emptyDatasetCache();
  vHandle<Project::StoreList> tables = project->getStoreList("table", "");
  ASSERT_EQ(1u, tables->size());
  EXPECT_EQ("made,tab.1", str(tables->front()));
  EXPECT_EQ(3u, project->getAttributeSetDetails("made,tab", 0).front().getNInstances());
  ProjectFactory::emptyCache();
}
