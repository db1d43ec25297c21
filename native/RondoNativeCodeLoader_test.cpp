// The connection entry points, called with the environment of a real virtual
// machine, so that the maps behind them can be looked at; test catalogs and
// projects stand in for the client classes. The real DataServer behind them,
// as the Java host sees it, is checked in java/ and by the data entry points.

#include <gtest/gtest.h>
#include <jni.h>

#include <cstdlib>
#include <string>

#include "foundation/Message.h"
#include "foundation/TestReleaseTree.h"
#include "native/NativeTesting.h"
#include "native/RondoNativeMaps.h"
#include "project/ProjectCatalogFactory.h"
#include "project/ProjectFactory.h"
#include "project/StoreDetails.h"
#include "project/UTProject.h"
#include "project/UTProjectCatalog.h"

extern "C" {
// The virtual machine uses memory faults on purpose and keeps its memory to
// the end; a sanitized test process must leave both to it.
char const* __asan_default_options() { return "handle_segv=0:allow_user_segv_handler=1:detect_leaks=0"; }
}

namespace {

std::string str(vString const& s) { return std::string(s.c_str(), s.length()); }

using native_testing::jstr;
using native_testing::jvm;
using native_testing::newObject;

int nCatalogs = 0;

ProjectCatalog* makeCatalog(vString const& host, ProjectType::PROJECT_TYPE type, vString const&) {
  ++nCatalogs;
  return new UTProjectCatalog(host, type);
}

// Not there at the first attempt to open it, there at the second.
class LateProject : public UTProject {
 public:
  explicit LateProject(vHandle<ProjectCatalog> const& catalog) : UTProject(catalog) { UTProject::close(); }
  void open(vLCString const& name) override {
    if (attempts++ == 0) Message::fatal("LateProject::open", 0, "Project %s is not there yet.", name.c_str());
    UTProject::open(name);
  }
  int attempts = 0;
};

Project* makeLateProject(vHandle<ProjectCatalog> const& catalog) { return new LateProject(catalog); }

// A project whose one store has no name before its version.
Project* makeBadProject(vHandle<ProjectCatalog> const& catalog) {
  UTProject* p = new UTProject(catalog);
  p->addStore(StoreDetails(ProjectType::RONDO, "", "", 1));
  return p;
}

class RondoNative : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(nullptr, jvm()) << "no virtual machine";
    // The real classes are registered once, first, so the stand-ins stay.
    rondoEnsureClassesRegistered();
    m_catalog = ProjectCatalogFactory::registerMaker("ClientProjectCatalog", &makeCatalog);
    m_project = ProjectFactory::registerMaker("ClientProject", &makeLateProject);
  }
  void TearDown() override {
    ProjectCatalogFactory::registerMaker("ClientProjectCatalog", m_catalog);
    ProjectFactory::registerMaker("ClientProject", m_project);
  }

  TestReleaseTree m_tree;

 private:
  ProjectCatalogFactory::Maker m_catalog = nullptr;
  ProjectFactory::Maker m_project = nullptr;
};

TEST_F(RondoNative, ConnectionsFindTheirMapEntryWithoutTheFactoryOrKeepNothing) {
  m_tree.setEnv("FS_CLUSTERS", "srva=127.0.1.1");
  int made = nCatalogs;
  size_t entries = map_projectCatalog.size();
  unsigned int cached = ProjectCatalogFactory::getCacheSize();
  EXPECT_TRUE(RONDO_JNI(RondoOpenConnection)(jvm(), nullptr, jstr("SrvA")));
  EXPECT_EQ(made + 1, nCatalogs);
  vHandle<ProjectCatalog> first = map_projectCatalog["SrvA|RONDO"];
  EXPECT_EQ("127.0.1.1", str(first->getHost()));

  // Were the factory asked again, this cluster would give a new catalog.
  m_tree.setEnv("FS_CLUSTERS", "srva=127.0.1.2");
  EXPECT_TRUE(RONDO_JNI(RondoOpenConnection)(jvm(), nullptr, jstr("SrvA")));
  EXPECT_EQ(made + 1, nCatalogs);
  EXPECT_EQ(cached + 1, ProjectCatalogFactory::getCacheSize());
  EXPECT_EQ(entries + 1, map_projectCatalog.size());
  EXPECT_EQ(first.get(), map_projectCatalog["SrvA|RONDO"].get());

  // Spellings of one server share the factory's catalog.
  m_tree.setEnv("FS_CLUSTERS", "srvb=127.0.1.3");
  made = nCatalogs;
  entries = map_projectCatalog.size();
  EXPECT_TRUE(RONDO_JNI(RondoOpenConnection)(jvm(), nullptr, jstr("SrvB")));
  EXPECT_TRUE(RONDO_JNI(RondoOpenConnection)(jvm(), nullptr, jstr("SRVB")));
  EXPECT_EQ(entries + 2, map_projectCatalog.size());
  EXPECT_EQ(made + 1, nCatalogs);
  EXPECT_EQ(map_projectCatalog["SrvB|RONDO"].get(), map_projectCatalog["SRVB|RONDO"].get());

  // Failures keep nothing (the report of a failed connection: the Java host).
  ProjectCatalogFactory::registerMaker("ClientProjectCatalog", nullptr);
  entries = map_projectCatalog.size();
  ::testing::internal::CaptureStdout();
  EXPECT_FALSE(RONDO_JNI(RondoOpenConnection)(jvm(), nullptr, jstr("127.0.1.6")));
  ::testing::internal::GetCapturedStdout();
  EXPECT_EQ(entries, map_projectCatalog.size());
  EXPECT_FALSE(RONDO_JNI(RondoGetContents)(jvm(), nullptr, jstr("127.0.1.5"), jstr("p"), jstr(""), nullptr));
  EXPECT_EQ(0u, map_project.count("127.0.1.5|RONDO|p"));
}

TEST_F(RondoNative, AProjectThatFailedToOpenStaysInTheMapAndOpensLater) {
  JNIEnv* env = jvm();
  ASSERT_TRUE(RONDO_JNI(RondoOpenConnection)(env, nullptr, jstr("127.0.1.10")));
  ::testing::internal::CaptureStdout();
  EXPECT_FALSE(RONDO_JNI(RondoOpenProject)(env, nullptr, jstr("127.0.1.10"), jstr("Late")));
  // The report of the exception, then the line of the entry point.
  EXPECT_EQ("\n\n====================== EXCEPTION TRACEBACK =======================\nProject late is not there yet.\n"
            "   (Method=LateProject::open)\n" + std::string(66, '=') + "\nUnable to Open Project!!!!!!!!!!!\n",
            ::testing::internal::GetCapturedStdout());
  vHandle<Project> project = map_project["127.0.1.10|RONDO|Late"];
  ASSERT_FALSE(project.isEmpty());
  EXPECT_FALSE(project->isOpen());

  // The second call takes the closed project from the map and opens it.
  unsigned int cached = ProjectFactory::getCacheSize();
  ::testing::internal::CaptureStdout();
  EXPECT_TRUE(RONDO_JNI(RondoOpenProject)(env, nullptr, jstr("127.0.1.10"), jstr("Late")));
  EXPECT_EQ("", ::testing::internal::GetCapturedStdout());
  EXPECT_EQ(cached, ProjectFactory::getCacheSize());
  EXPECT_EQ(project.get(), map_project["127.0.1.10|RONDO|Late"].get());
  EXPECT_TRUE(project->isOpen());
  // Open already: the third call neither makes nor opens.
  EXPECT_TRUE(RONDO_JNI(RondoOpenProject)(env, nullptr, jstr("127.0.1.10"), jstr("Late")));
  EXPECT_EQ(cached, ProjectFactory::getCacheSize());
  EXPECT_EQ(2, dynamic_cast<LateProject*>(project.get())->attempts);
}

using RondoNativeDeathTest = RondoNative;

TEST_F(RondoNativeDeathTest, ANamelessStoreEndsTheHost) {
  EXPECT_EXIT(
      {
        ProjectFactory::registerMaker("ClientProject", &makeBadProject);
        JNIEnv* env = jvm();
        RONDO_JNI(RondoOpenConnection)(env, nullptr, jstr("127.0.1.9"));
        RONDO_JNI(RondoOpenProject)(env, nullptr, jstr("127.0.1.9"), jstr("p"));
        jobject sink = newObject("com/nyx/orda/business/io/protocols/rondo/RondoResultSink");
        RONDO_JNI(RondoGetContents)(env, nullptr, jstr("127.0.1.9"), jstr("p"), jstr(""), sink);
        std::exit(0);
      },
      ::testing::ExitedWithCode(255), "is not of the form name.version");
}

}  // namespace
