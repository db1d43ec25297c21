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

// The classes made, in order, and the project of the last one.
std::vector<std::string>& made() {
  static std::vector<std::string> all;
  return all;
}

Project*& madeFor() {
  static Project* project = nullptr;
  return project;
}

template <bool kClient>
vHandle<AttributeSet> makeSet(vHandle<Project> const& project) {
  made().push_back(kClient ? "ClientAttributeSet" : "InMemoryAttributeSet");
  madeFor() = project.get();
  return vHandle<AttributeSet>(new TestMemoryAttributeSet(project, std::make_shared<TestMemoryShelf>()));
}

// Stands in for the set classes of the higher layers while it lives.
class SetStandIns {
 public:
  SetStandIns()
      : m_inMemory(AttributeSetFactory::registerSetMaker("InMemoryAttributeSet", &makeSet<false>)),
        m_client(AttributeSetFactory::registerSetMaker("ClientAttributeSet", &makeSet<true>)) {
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

std::string notAvailable(char const* className) {
  return std::string("Class ") + className +
         " is not available: no maker is registered for it (see registerRondoClasses).";
}

// A deferred project is opened and taken out first; the in-process type is
// served here on this host only.
TEST(AttributeSetFactoryCreate, ClassByProjectTypeAndHost) {
  SetStandIns standIns;
  PropertyTree noProperties("");
  vHandle<Project> inner(
      new UTProject(vHandle<ProjectCatalog>(new UTProjectCatalog("127.0.0.104", ProjectType::UNITTEST))));
  JITProjectDecorator* jit = new JITProjectDecorator(inner);
  vHandle<Project> deferred(jit);
  deferred->open("survey");
  vHandle<AttributeSet> set = AttributeSetFactory::create(deferred);
  EXPECT_EQ(std::vector<std::string>{"InMemoryAttributeSet"}, made());
  EXPECT_EQ(inner.get(), madeFor());
  EXPECT_TRUE(jit->isReallyOpen());

  std::string const here = str(vUtl::gethostname());
  set = AttributeSetFactory::create(projectOn(here.c_str(), ProjectType::ZONMESH));
  EXPECT_NE(nullptr, dynamic_cast<CapiAttributeSetW*>(set.get()));
  AttributeSetFactory::create(projectOn("127.0.0.101", ProjectType::ZONMESH));
  AttributeSetFactory::create(projectOn(here.c_str(), ProjectType::RONDO));
  EXPECT_EQ((std::vector<std::string>{"InMemoryAttributeSet", "ClientAttributeSet", "ClientAttributeSet"}), made());
}

// The switch is read once per process: the case runs in a process of its
// own.
TEST(AttributeSetFactoryCreate, BypassingTheDataServerServesTheInProcessTypeHere) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        ::setenv("CAPI_DISABLERONDODATASERVER", "1", 1);
        SetStandIns standIns;
        PropertyTree noProperties("");
        vHandle<AttributeSet> zon = AttributeSetFactory::create(projectOn("127.0.0.102", ProjectType::ZONMESH));
        vHandle<AttributeSet> rondo = AttributeSetFactory::create(projectOn("127.0.0.102", ProjectType::RONDO));
        bool here = dynamic_cast<CapiAttributeSetW*>(zon.get()) != nullptr;
        bool rondoHere = dynamic_cast<CapiAttributeSetW*>(rondo.get()) != nullptr;
        std::exit((here ? 1 : 0) + (rondoHere ? 2 : 0) + 10 * static_cast<int>(made().size()));
      },
      ::testing::ExitedWithCode(11), "");
}

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
  AttributeSetFactory::pushAttributeSet(first);
  AttributeSetFactory::clearAttributeSets();
  EXPECT_TRUE(recording.errors().empty());
}

TEST(AttributeSetFactoryWrap, DecoratorWordsAndTheTranslationRule) {
  SetStandIns standIns;
  vHandle<AttributeSet> set(new TestMemoryAttributeSet(vHandle<Project>(), std::make_shared<TestMemoryShelf>()));
  {
    PropertyTree properties(PropertyTree::record("capi", "MyWrappers", "value= timing value= Cache") +
                            PropertyTree::record("CAPI", "AttributeSetDecorators", "value= bogus"));
    Recording recording;
    EXPECT_EQ(set.get(), AttributeSetFactory::mySetWrapper("mywrappers", set).get());
    EXPECT_EQ((std::vector<std::string>{
                  "AttributeSetFactory::mySetWrapper: Unknown decorator request TIMING, ignored.",
                  "AttributeSetFactory::mySetWrapper: Unknown decorator request CACHE, ignored."}),
              recording.errors());
  }
  // Known words need their decorator class.
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
  // "TRANSLATIONS" switches translation on for Rondo and Kelp projects unless
  // its first value is "no"; without it no set is translated.
  auto bare = [](ProjectType::PROJECT_TYPE type) {
    return dynamic_cast<TestMemoryAttributeSet*>(AttributeSetFactory::create(projectOn("127.0.0.107", type)).get()) !=
           nullptr;
  };
  {
    PropertyTree properties(PropertyTree::record("CAPI", "TRANSLATIONS", "value= yes") +
                            PropertyTree::record("capi", "AttributeSetDecorators", "value= TRANSLATING"));
    expectFatal([&] { AttributeSetFactory::create(projectOn("127.0.0.107", ProjectType::KELP)); },
                "AttributeSetFactory::create", notAvailable("TranslatingAttributeSetDecorator"));
    EXPECT_TRUE(bare(ProjectType::DORN));
  }
  for (bool present : {false, true}) {
    PropertyTree properties(present ? PropertyTree::record("CAPI", "TRANSLATIONS", "value= No value= yes") : "");
    EXPECT_TRUE(bare(ProjectType::RONDO)) << present;
  }
  AttributeSetFactory::registerDecoratorMaker("ProfilingAttributeSetDecorator", profiling);
  AttributeSetFactory::registerDecoratorMaker("TranslatingAttributeSetDecorator", translating);
}

}  // namespace
