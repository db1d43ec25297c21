// The connection entry points, called directly with the environment of a
// real virtual machine that the test process starts, so that the maps and
// the factories behind them can be looked at. The Java classes are those of
// the test host (java/), compiled into the build tree.
//
// The tests of the maps stand test catalogs and projects in for the client
// classes; their servers are loopback addresses or names mapped onto them by
// FS_CLUSTERS, and each test uses its own, because the maps live as long as
// the process. The tests of the road to the data server use the real client
// classes and start the real DataServer (VSERVER, as set here) on this host,
// to which FS_CLUSTERS maps their server names.

#include <gtest/gtest.h>
#include <jni.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "foundation/Message.h"
#include "foundation/TestReleaseTree.h"
#include "native/NativeTesting.h"
#include "foundation/vUtl.h"
#include "native/RondoNativeMaps.h"
#include "project/ProjectCatalogFactory.h"
#include "project/ProjectFactory.h"
#include "project/StoreDetails.h"
#include "project/UTProject.h"
#include "project/UTProjectCatalog.h"
#include "registry/RondoRegistry.h"
#include "remote/ClientProject.h"
#include "remote/ClientProjectCatalog.h"

extern "C" {
// The virtual machine uses memory faults on purpose and keeps its memory to
// the end; a sanitized test process must leave both to it.
char const* __asan_default_options() { return "handle_segv=0:allow_user_segv_handler=1:detect_leaks=0"; }
}

namespace {

std::string str(vString const& s) { return std::string(s.c_str(), s.length()); }

using native_testing::buildTree;
using native_testing::jstr;
using native_testing::jvm;
using native_testing::newObject;

int nCatalogs = 0;

ProjectCatalog* makeCatalog(vString const& host, ProjectType::PROJECT_TYPE type, vString const&) {
  ++nCatalogs;
  return new UTProjectCatalog(host, type);
}

// Closed, so that RondoOpenProject has to open it; with three stores.
Project* makeProject(vHandle<ProjectCatalog> const& catalog) {
  UTProject* p = new UTProject(catalog);
  p->close();
  for (char const* name : {"line12", "wells", "cube"}) {
    StoreDetails d(ProjectType::RONDO, "", name, 2);
    d.setClass(std::string(name) == "wells" ? "well" : "seismic");
    p->addStore(d);
  }
  return p;
}

// Not there at the first attempt to open it, there at the second.
class LateProject : public UTProject {
 public:
  explicit LateProject(vHandle<ProjectCatalog> const& catalog) : UTProject(catalog) { UTProject::close(); }
  void open(vLCString const& name) override {
    if (m_attempts++ == 0) Message::fatal("LateProject::open", 0, "Project %s is not there yet.", name.c_str());
    UTProject::open(name);
  }

 private:
  int m_attempts = 0;
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
    // The entry points register the real classes once: that is done first,
    // so that the stand-ins below stay for the test.
    rondoEnsureClassesRegistered();
    m_catalog = ProjectCatalogFactory::registerMaker("ClientProjectCatalog", &makeCatalog);
    m_project = ProjectFactory::registerMaker("ClientProject", &makeProject);
  }
  void TearDown() override {
    ProjectCatalogFactory::registerMaker("ClientProjectCatalog", m_catalog);
    ProjectFactory::registerMaker("ClientProject", m_project);
  }

  // The names a RondoResultSink received.
  static std::string received(jobject sink) {
    JNIEnv* env = jvm();
    jclass cls = env->GetObjectClass(sink);
    jobject list = env->CallObjectMethod(sink, env->GetMethodID(cls, "getNames", "()Ljava/util/List;"));
    jobject text = env->CallObjectMethod(list, env->GetMethodID(env->GetObjectClass(list), "toString",
                                                                "()Ljava/lang/String;"));
    char const* chars = env->GetStringUTFChars(static_cast<jstring>(text), nullptr);
    std::string out(chars);
    env->ReleaseStringUTFChars(static_cast<jstring>(text), chars);
    return out;
  }

  TestReleaseTree m_tree;

 private:
  ProjectCatalogFactory::Maker m_catalog = nullptr;
  ProjectFactory::Maker m_project = nullptr;
};

TEST_F(RondoNative, SecondConnectionFindsTheMapEntryWithoutTheFactory) {
  // Keys join the Java strings unchanged.
  EXPECT_EQ("Srv|RONDO|p|Line12.3", str(createKeyForRondoStore(jvm(), jstr("Srv"), jstr("p"), jstr("Line12.3"))));
  EXPECT_EQ("|RONDO|", str(createKeyForRondoProject(jvm(), nullptr, jstr(""))));
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
}

void expectReport(std::string const& out, char const* reason, char const* method, char const* line);

// The real client classes, with the real data server behind them.
class RondoNativeServer : public RondoNative {
 protected:
  void SetUp() override {
    ASSERT_NE(nullptr, jvm()) << "no virtual machine";
    rondoEnsureClassesRegistered();
    registerRondoClasses();
    m_tree.setEnv("HOME", m_tree.workDir());
    m_tree.setEnv("VSERVER", buildTree() + "/bin/DataServer");
    m_tree.setEnv("SP_DATASERVER_TRACE", "1");
    m_tree.unsetEnv("SP_CAPI_DATASERVER");
    m_tree.setEnv("SP_DATASERVER_BACKEND", "UnitTest");
    m_tree.unsetEnv("CAPI_DISABLERONDODATASERVER");
    m_tree.setEnv("RONDO_UNITTEST_STORES", "line12.2:seismic wells.2:well cube.2:seismic");
  }
  void TearDown() override {}

  // The requests of the server's log to an object, as their codes.
  std::vector<int> requestsTo(int id) {
    std::vector<int> codes;
    std::ifstream in(m_tree.workDir() + "DataServer.Rondo");
    std::string line;
    std::string const head = " request " + std::to_string(id) + " code ";
    while (std::getline(in, line)) {
      size_t const at = line.find(head);
      if (at != std::string::npos) codes.push_back(std::stoi(line.substr(at + head.size())));
    }
    return codes;
  }
};

TEST_F(RondoNativeServer, OpenProjectOpensOnceAndListsStoresWithoutVersions) {
  JNIEnv* env = jvm();
  m_tree.setEnv("FS_CLUSTERS", "north=" + str(vUtl::gethostname()));
  ::testing::internal::CaptureStdout();
  ASSERT_TRUE(RONDO_JNI(RondoOpenConnection)(env, nullptr, jstr("North")));
  std::string const printed = ::testing::internal::GetCapturedStdout();
  EXPECT_EQ(0u, printed.find("Executing \"" + buildTree() + "/bin/DataServer Rondo Address:")) << printed;
  vHandle<ProjectCatalog> catalog = map_projectCatalog["North|RONDO"];
  ASSERT_NE(nullptr, dynamic_cast<ClientProjectCatalog*>(catalog.get()));
  EXPECT_EQ(str(vUtl::gethostname()), str(catalog->getHost()));

  ASSERT_TRUE(RONDO_JNI(RondoOpenProject)(env, nullptr, jstr("North"), jstr("North_Sea")));
  vHandle<Project> project = map_project["North|RONDO|North_Sea"];
  ASSERT_NE(nullptr, dynamic_cast<ClientProject*>(project.get()));
  EXPECT_TRUE(project->isOpen());
  int const id = dynamic_cast<ClientProject*>(project.get())->getID();

  // Open already: the second call neither makes nor opens.
  unsigned int cached = ProjectFactory::getCacheSize();
  EXPECT_TRUE(RONDO_JNI(RondoOpenProject)(env, nullptr, jstr("North"), jstr("North_Sea")));
  EXPECT_EQ(cached, ProjectFactory::getCacheSize());
  EXPECT_EQ(project.get(), map_project["North|RONDO|North_Sea"].get());
  EXPECT_EQ(std::vector<int>{98}, requestsTo(id));

  jobject sink = newObject("com/nyx/orda/business/io/protocols/rondo/RondoResultSink");
  ASSERT_NE(nullptr, sink);
  EXPECT_TRUE(RONDO_JNI(RondoGetContents)(env, nullptr, jstr("North"), jstr("North_Sea"), jstr(""), sink));
  EXPECT_EQ("[line12, wells, cube]", received(sink));
  jobject seismic = newObject("com/nyx/orda/business/io/protocols/rondo/RondoResultSink");
  EXPECT_TRUE(
      RONDO_JNI(RondoGetContents)(env, nullptr, jstr("North"), jstr("North_Sea"), jstr("SEISMIC"), seismic));
  EXPECT_EQ("[line12, cube]", received(seismic));
  EXPECT_EQ((std::vector<int>{98, 103, 103}), requestsTo(id));
}

// One data server serves the Rondo projects of a cluster, and this host's
// has one from the test above: a blank server name is this host too, and
// has a cluster of its own.
TEST_F(RondoNativeServer, AServerThatCannotServeAnswersFalseWithItsReason) {
  JNIEnv* env = jvm();
  m_tree.setEnv("SP_DATASERVER_BACKEND", "Nonsense");
  size_t entries = map_projectCatalog.size();
  ::testing::internal::CaptureStdout();
  EXPECT_FALSE(RONDO_JNI(RondoOpenConnection)(env, nullptr, jstr("")));
  std::string const out = ::testing::internal::GetCapturedStdout();
  expectReport(out.substr(out.find('\n') + 1), "Server said:-o The DataServer BACKEND 'Nonsense' is not a project type.",
               "COBPortal::myMessage", "Unable to Open Connection!!!!!!!!!!!");
  EXPECT_EQ(entries, map_projectCatalog.size());
}

// The report of the exception, then the line of the entry point.
void expectReport(std::string const& out, char const* reason, char const* method, char const* line) {
  EXPECT_NE(std::string::npos, out.find(std::string("\n") + reason + "\n")) << out;
  EXPECT_NE(std::string::npos, out.find(std::string("(Method=") + method + ")\n")) << out;
  std::string tail = std::string(line) + "\n";
  ASSERT_GE(out.size(), tail.size()) << out;
  EXPECT_EQ(tail, out.substr(out.size() - tail.size()));
  EXPECT_EQ(out.find(tail), out.size() - tail.size()) << "the line comes after the report";
}

TEST_F(RondoNative, FailuresAnswerFalseAndKeepNothing) {
  JNIEnv* env = jvm();
  ProjectCatalogFactory::registerMaker("ClientProjectCatalog", nullptr);
  size_t entries = map_projectCatalog.size();
  ::testing::internal::CaptureStdout();
  EXPECT_FALSE(RONDO_JNI(RondoOpenConnection)(env, nullptr, jstr("127.0.1.6")));
  expectReport(::testing::internal::GetCapturedStdout(),
               "Class ClientProjectCatalog is not available: no maker is registered for it (see registerRondoClasses).",
               "ProjectCatalogFactory::createEx", "Unable to Open Connection!!!!!!!!!!!");
  EXPECT_EQ(entries, map_projectCatalog.size());
  // A project before its connection leaves an empty catalog in the map.
  ::testing::internal::CaptureStdout();
  EXPECT_FALSE(RONDO_JNI(RondoOpenProject)(env, nullptr, jstr("127.0.1.7"), jstr("p")));
  expectReport(::testing::internal::GetCapturedStdout(), "Trying to get a NULL pointer", "vHandle::get()",
               "Unable to Open Project!!!!!!!!!!!");
  EXPECT_EQ(entries + 1, map_projectCatalog.size());
  EXPECT_TRUE(map_projectCatalog["127.0.1.7|RONDO"].isEmpty());
  EXPECT_EQ(0u, map_project.count("127.0.1.7|RONDO|p"));
  // A sink without append answers false: StringBuilder has an append of the
  // name, but not of the signature. Nothing is looked up in the maps.
  jobject builder = newObject("java/lang/StringBuilder");
  ASSERT_NE(nullptr, builder);
  EXPECT_FALSE(RONDO_JNI(RondoGetContents)(env, nullptr, jstr("127.0.1.5"), jstr("p"), jstr(""), builder));
  EXPECT_FALSE(env->ExceptionCheck());
  EXPECT_FALSE(RONDO_JNI(RondoGetContents)(env, nullptr, jstr("127.0.1.5"), jstr("p"), jstr(""), nullptr));
  EXPECT_EQ(0u, map_project.count("127.0.1.5|RONDO|p"));
}

TEST_F(RondoNative, AProjectThatFailedToOpenStaysInTheMapAndOpensLater) {
  JNIEnv* env = jvm();
  ProjectFactory::registerMaker("ClientProject", &makeLateProject);
  ASSERT_TRUE(RONDO_JNI(RondoOpenConnection)(env, nullptr, jstr("127.0.1.10")));
  ::testing::internal::CaptureStdout();
  EXPECT_FALSE(RONDO_JNI(RondoOpenProject)(env, nullptr, jstr("127.0.1.10"), jstr("Late")));
  expectReport(::testing::internal::GetCapturedStdout(), "Project late is not there yet.", "LateProject::open",
               "Unable to Open Project!!!!!!!!!!!");
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
}

using RondoNativeDeathTest = RondoNative;

TEST_F(RondoNativeDeathTest, ContentsOfAnUnopenedProjectOrANamelessStoreEndTheHost) {
  EXPECT_EXIT(
      {
        jobject sink = newObject("com/nyx/orda/business/io/protocols/rondo/RondoResultSink");
        RONDO_JNI(RondoGetContents)(jvm(), nullptr, jstr("127.0.1.8"), jstr("never"), jstr(""), sink);
        std::exit(0);
      },
      ::testing::ExitedWithCode(255), "Trying to get a NULL pointer");
  // So does a store name without a name.
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
