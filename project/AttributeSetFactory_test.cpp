// The attribute set factory: the class of a project's sets by type and
// host, the queue of pushed sets, and the wrapping that the site's system
// properties ask for, read from a release tree of the test's own.
//
// The set classes of higher layers are stood in for by sets held in memory,
// noted as they are made; the real classes are tested through the
// registry.

#include "foundation/TestFailure.h"
#include "project/AttributeSetFactory.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/vUtl.h"
#include "project/CapiAttributeSetW.h"
#include "project/JITProjectDecorator.h"
#include "project/StoreFactoryTesting.h"
#include "project/UTProject.h"
#include "project/UTProjectCatalog.h"

namespace {

using namespace factory_testing;

struct Made {
  std::string className;
  Project* project;
};

std::vector<Made>& made() {
  static std::vector<Made> all;
  return all;
}

vHandle<AttributeSet> makeInMemory(vHandle<Project> const& project) {
  made().push_back({"InMemoryAttributeSet", project.get()});
  return vHandle<AttributeSet>(new TestMemoryAttributeSet(project, std::make_shared<TestMemoryShelf>()));
}

vHandle<AttributeSet> makeClient(vHandle<Project> const& project) {
  made().push_back({"ClientAttributeSet", project.get()});
  return vHandle<AttributeSet>(new TestMemoryAttributeSet(project, std::make_shared<TestMemoryShelf>()));
}

// Stands in for the set classes of the higher layers while it lives.
class SetStandIns {
 public:
  SetStandIns()
      : m_inMemory(AttributeSetFactory::registerSetMaker("InMemoryAttributeSet", &makeInMemory)),
        m_client(AttributeSetFactory::registerSetMaker("ClientAttributeSet", &makeClient)) {
    made().clear();
    AttributeSetFactory::clearAttributeSets();
  }
  ~SetStandIns() {
    AttributeSetFactory::registerSetMaker("InMemoryAttributeSet", m_inMemory);
    AttributeSetFactory::registerSetMaker("ClientAttributeSet", m_client);
    AttributeSetFactory::clearAttributeSets();
  }

 private:
  AttributeSetFactory::SetMaker m_inMemory;
  AttributeSetFactory::SetMaker m_client;
};

vHandle<Project> projectOn(char const* host, ProjectType::PROJECT_TYPE type) {
  vHandle<Project> project(new UTProject(vHandle<ProjectCatalog>(new UTProjectCatalog(host, type))));
  project->open("survey");
  return project;
}

std::string notAvailable(char const* className) {
  return std::string("Class ") + className +
         " is not available: no maker is registered for it (see registerRondoClasses).";
}

// --- the class by project type and host ---------------------------------------------------

TEST(AttributeSetFactoryCreate, ClassByProjectType) {
  SetStandIns standIns;
  PropertyTree noProperties("");
  struct Case {
    ProjectType::PROJECT_TYPE type;
    char const* className;
  };
  for (Case c : {Case{ProjectType::UNITTEST, "InMemoryAttributeSet"}, Case{ProjectType::ZONMESH, "ClientAttributeSet"}}) {
    made().clear();
    vHandle<Project> project = projectOn("127.0.0.101", c.type);
    vHandle<AttributeSet> set = AttributeSetFactory::create(project);
    ASSERT_EQ(1u, made().size()) << c.type;
    EXPECT_EQ(c.className, made()[0].className) << c.type;
    EXPECT_EQ(project.get(), set->getProject().get()) << c.type;
  }
}

TEST(AttributeSetFactoryCreate, TheInProcessTypeOnThisHostIsServedHere) {
  SetStandIns standIns;
  PropertyTree noProperties("");
  vHandle<Project> local = projectOn(vUtl::gethostname().c_str(), ProjectType::ZONMESH);
  vHandle<AttributeSet> set = AttributeSetFactory::create(local);
  CapiAttributeSetW* wrapper = dynamic_cast<CapiAttributeSetW*>(set.get());
  ASSERT_NE(nullptr, wrapper);
  EXPECT_TRUE(made().empty());
  // Other types on this host are not.
  AttributeSetFactory::create(projectOn(vUtl::gethostname().c_str(), ProjectType::RONDO));
  ASSERT_EQ(1u, made().size());
  EXPECT_EQ("ClientAttributeSet", made()[0].className);
}

// The switch is read once per process: each case runs in a process of its
// own.
TEST(AttributeSetFactoryCreate, BypassingTheDataServerServesTheInProcessTypeHere) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  for (char const* value : {"1", "0"}) {
    EXPECT_EXIT(
        {
          ::setenv("CAPI_DISABLERONDODATASERVER", value, 1);
          SetStandIns standIns;
          PropertyTree noProperties("");
          vHandle<AttributeSet> zon = AttributeSetFactory::create(projectOn("127.0.0.102", ProjectType::ZONMESH));
          vHandle<AttributeSet> rondo = AttributeSetFactory::create(projectOn("127.0.0.102", ProjectType::RONDO));
          bool here = dynamic_cast<CapiAttributeSetW*>(zon.get()) != nullptr;
          bool rondoHere = dynamic_cast<CapiAttributeSetW*>(rondo.get()) != nullptr;
          std::exit((here ? 1 : 0) + (rondoHere ? 2 : 0) + 10 * static_cast<int>(made().size()));
        },
        ::testing::ExitedWithCode(value[0] == '1' ? 11 : 20), "")
        << value;
  }
}

TEST(AttributeSetFactoryCreate, ClassesWithoutAMaker) {
  SetStandIns standIns;
  PropertyTree noProperties("");
  AttributeSetFactory::registerSetMaker("InMemoryAttributeSet", nullptr);
  expectFatal([] { AttributeSetFactory::create(projectOn("127.0.0.103", ProjectType::UNITTEST)); },
              "AttributeSetFactory::create", notAvailable("InMemoryAttributeSet"));
  AttributeSetFactory::registerSetMaker("ClientAttributeSet", nullptr);
  expectFatal([] { AttributeSetFactory::create(projectOn("127.0.0.103", ProjectType::KELP)); },
              "AttributeSetFactory::create", notAvailable("ClientAttributeSet"));
  EXPECT_TRUE(made().empty());
}

TEST(AttributeSetFactoryCreate, ADeferredProjectIsOpenedAndTakenOut) {
  SetStandIns standIns;
  PropertyTree noProperties("");
  vHandle<Project> inner(
      new UTProject(vHandle<ProjectCatalog>(new UTProjectCatalog("127.0.0.104", ProjectType::UNITTEST))));
  JITProjectDecorator* jit = new JITProjectDecorator(inner);
  vHandle<Project> deferred(jit);
  deferred->open("survey");
  vHandle<AttributeSet> set = AttributeSetFactory::create(deferred);
  ASSERT_EQ(1u, made().size());
  EXPECT_EQ(inner.get(), made()[0].project);
  EXPECT_TRUE(jit->isReallyOpen());
}

// --- the queue ---------------------------------------------------------------------------

TEST(AttributeSetFactoryQueue, PushedSetsFirstInFirstOutAndUnwrapped) {
  SetStandIns standIns;
  PropertyTree properties(PropertyTree::record("capi", "AttributeSetDecorators", "value= PROFILING") +
                          PropertyTree::record("CAPI", "TRANSLATIONS", "value= yes"));
  Recording recording;
  auto shelf = std::make_shared<TestMemoryShelf>();
  vHandle<AttributeSet> first(new TestMemoryAttributeSet(vHandle<Project>(), shelf));
  vHandle<AttributeSet> second(new TestMemoryAttributeSet(vHandle<Project>(), shelf));
  AttributeSetFactory::pushAttributeSet(first);
  AttributeSetFactory::pushAttributeSet(second);
  // Neither wrapping is there to be had, and none is tried.
  EXPECT_EQ(first.get(), AttributeSetFactory::create(projectOn("127.0.0.105", ProjectType::RONDO)).get());
  EXPECT_EQ(second.get(), AttributeSetFactory::create(projectOn("127.0.0.105", ProjectType::KELP)).get());
  EXPECT_TRUE(made().empty());
  expectFatal([] { AttributeSetFactory::create(projectOn("127.0.0.105", ProjectType::RONDO)); },
              "AttributeSetFactory::mySetWrapper", notAvailable("ProfilingAttributeSetDecorator"));

  AttributeSetFactory::pushAttributeSet(first);
  AttributeSetFactory::clearAttributeSets();
  EXPECT_TRUE(recording.errors().empty());
}

// --- wrapping by configuration --------------------------------------------------------------

TEST(AttributeSetFactoryWrap, UnknownWordsAreReportedAndPassedOver) {
  SetStandIns standIns;
  {
    // Without the property the set stays bare.
    PropertyTree noProperties(PropertyTree::record("capi", "Other", "value= PROFILING"));
    Recording recording;
    vHandle<AttributeSet> set(new TestMemoryAttributeSet(vHandle<Project>(), std::make_shared<TestMemoryShelf>()));
    EXPECT_EQ(set.get(), AttributeSetFactory::mySetWrapper("AttributeSetDecorators", set).get());
    EXPECT_TRUE(recording.errors().empty());
  }
  PropertyTree properties(PropertyTree::record("capi", "MyWrappers", "value= timing value= Cache") +
                          PropertyTree::record("CAPI", "AttributeSetDecorators", "value= bogus"));
  Recording recording;
  vHandle<AttributeSet> set(new TestMemoryAttributeSet(vHandle<Project>(), std::make_shared<TestMemoryShelf>()));
  EXPECT_EQ(set.get(), AttributeSetFactory::mySetWrapper("mywrappers", set).get());
  EXPECT_EQ((std::vector<std::string>{"AttributeSetFactory::mySetWrapper: Unknown decorator request TIMING, ignored.",
                                      "AttributeSetFactory::mySetWrapper: Unknown decorator request CACHE, ignored."}),
            recording.errors());
}

TEST(AttributeSetFactoryWrap, KnownWordsNeedTheirDecoratorClass) {
  SetStandIns standIns;
  vHandle<AttributeSet> set(new TestMemoryAttributeSet(vHandle<Project>(), std::make_shared<TestMemoryShelf>()));
  AttributeSetFactory::DecoratorMaker profiling =
      AttributeSetFactory::registerDecoratorMaker("ProfilingAttributeSetDecorator", nullptr);
  AttributeSetFactory::DecoratorMaker translating =
      AttributeSetFactory::registerDecoratorMaker("TranslatingAttributeSetDecorator", nullptr);
  {
    PropertyTree properties(PropertyTree::record("capi", "AttributeSetDecorators", "value= bogus value= Profiling"));
    Recording recording;
    EXPECT_EQ("AttributeSetFactory::mySetWrapper: " + notAvailable("ProfilingAttributeSetDecorator"),
              fatalText([&] { AttributeSetFactory::mySetWrapper("AttributeSetDecorators", set); }));
    // Words before it were seen, in order.
    EXPECT_EQ(std::vector<std::string>{"AttributeSetFactory::mySetWrapper: Unknown decorator request BOGUS, ignored."},
              recording.errors());
  }
  {
    // The word is taken, silently, and left to the translation rule.
    PropertyTree properties(PropertyTree::record("capi", "AttributeSetDecorators", "value= translating"));
    Recording recording;
    EXPECT_EQ(set.get(), AttributeSetFactory::mySetWrapper("AttributeSetDecorators", set).get());
    EXPECT_TRUE(recording.errors().empty());
  }
  AttributeSetFactory::registerDecoratorMaker("ProfilingAttributeSetDecorator", profiling);
  AttributeSetFactory::registerDecoratorMaker("TranslatingAttributeSetDecorator", translating);
}

// "TRANSLATIONS" switches translation on for Rondo and Kelp projects unless
// its first value is "no"; without it no set is translated.
TEST(AttributeSetFactoryWrap, TranslationsForRondoAndKelpProjects) {
  SetStandIns standIns;
  AttributeSetFactory::DecoratorMaker translating =
      AttributeSetFactory::registerDecoratorMaker("TranslatingAttributeSetDecorator", nullptr);
  auto bare = [](ProjectType::PROJECT_TYPE type) {
    return dynamic_cast<TestMemoryAttributeSet*>(AttributeSetFactory::create(projectOn("127.0.0.107", type)).get()) !=
           nullptr;
  };
  {
    PropertyTree properties(PropertyTree::record("CAPI", "TRANSLATIONS", "value= yes") +
                            PropertyTree::record("capi", "AttributeSetDecorators", "value= TRANSLATING"));
    for (ProjectType::PROJECT_TYPE type : {ProjectType::RONDO, ProjectType::KELP})
      expectFatal([&] { AttributeSetFactory::create(projectOn("127.0.0.107", type)); }, "AttributeSetFactory::create",
                  notAvailable("TranslatingAttributeSetDecorator"));
    for (ProjectType::PROJECT_TYPE type : {ProjectType::NOTYPE, ProjectType::DORN})
      EXPECT_TRUE(bare(type)) << type;
  }
  for (bool present : {false, true}) {
    PropertyTree properties(present ? PropertyTree::record("CAPI", "TRANSLATIONS", "value= No value= yes") : "");
    for (ProjectType::PROJECT_TYPE type : {ProjectType::RONDO, ProjectType::KELP}) EXPECT_TRUE(bare(type)) << present;
  }
  AttributeSetFactory::registerDecoratorMaker("TranslatingAttributeSetDecorator", translating);
}

}  // namespace
