// The wrapper that opens one attribute set of the in-process back end: the
// real set made through the registered maker, a class given asked of no
// one, and what a close leaves. The conformance suite runs it as a store.

#include <gtest/gtest.h>

#include "project/CapiAttributeSetW.h"
#include "project/CapiMaker.h"
#include "project/JITProjectDecorator.h"
#include "project/StoreTesting.h"
#include "project/UTProject.h"
#include "project/UTProjectCatalog.h"
#include "testing/TestMemoryStore.h"

using store_testing::expectFailure;

namespace {

std::string str(vString const& s) { return std::string(s.c_str(), s.length()); }

// What the maker was asked for, and the shelf its sets use.
struct MakerLog {
  vHandle<Project> project;
  std::string storeClass;
  int calls = 0;
  std::shared_ptr<TestMemoryShelf> shelf;
};

MakerLog& log() {
  static MakerLog l;
  return l;
}

vHandle<AttributeSet> recordingMaker(vHandle<Project> const& project, vLCString const& storeClass,
                                     vLCString const&) {
  MakerLog& l = log();
  l.project = project;
  l.storeClass = str(storeClass);
  ++l.calls;
  return vHandle<AttributeSet>(new TestMemoryAttributeSet(project, l.shelf));
}

// Installs the recording maker over a shelf with set "lines" (class
// seismic/2d, one instance), and a project that lists it.
class WrapperSetting {
 public:
  WrapperSetting() : m_saved(CapiMaker::registerAttributeSetMaker(recordingMaker)) {
    log() = MakerLog();
    log().shelf = std::make_shared<TestMemoryShelf>();
    TestMemoryAttributeSet writer(vHandle<Project>(), log().shelf);
    writer.create("lines", "seismic", "2d", KeyList(), nullptr);
    writer.addInstances(1);
    writer.close();
    m_utProject = new UTProject(vHandle<ProjectCatalog>(new UTProjectCatalog("host", ProjectType::UNITTEST)));
    m_project = vHandle<Project>(m_utProject);
    m_project->open("survey");
    m_utProject->addStore(
        StoreDetails("lines", 1, "seismic", "2d", 0, "", "", vDate(vDate::Invalid), "", 0, 0, ProjectType::UNITTEST));
  }
  ~WrapperSetting() {
    CapiMaker::registerAttributeSetMaker(m_saved);
    log() = MakerLog();
  }

  vHandle<Project> project() const { return m_project; }
  UTProject& utProject() const { return *m_utProject; }

 private:
  CapiMaker::AttributeSetMaker m_saved;
  UTProject* m_utProject;
  vHandle<Project> m_project;
};

}  // namespace

// Reads before opening and a blank class asked of the project are the
// conformance suite's; here the rest.
TEST(CapiAttributeSetW, CloseAGivenClassAndADeferredProject) {
  WrapperSetting setting;
  CapiAttributeSetW w(setting.project());
  w.open("lines", 1, "", "", nullptr);
  EXPECT_EQ(1, log().calls);
  w.close();
  EXPECT_TRUE(w.getAttributeSet().isEmpty());
  expectFailure([&] { w.close(); }, "CapiAttributeSetW::close", "The AttributeSet has not been opened yet.");

  setting.utProject().isOpen();  // marks the last call
  w.update("lines", 0, "seismic", "2d", nullptr);
  EXPECT_EQ("isOpen", str(setting.utProject().getLastCall()));
  w.addInstances(2);
  EXPECT_EQ(3u, w.getNInstances());
  w.close();
  w.create("new", "shapes", "polygon", KeyList(), nullptr);
  EXPECT_EQ("shapes", log().storeClass);
  EXPECT_EQ("shapes", str(w.getClass()));
  w.close();

  // The maker gets the project out of a deferred wrapper.
  vHandle<Project> inner(new UTProject(vHandle<ProjectCatalog>(new UTProjectCatalog("host", ProjectType::UNITTEST))));
  JITProjectDecorator* deferred = new JITProjectDecorator(inner);
  vHandle<Project> outer(deferred);
  outer->open("survey");
  EXPECT_FALSE(deferred->isReallyOpen());
  vHandle<AttributeSet> set = CapiMaker::attributeSet(outer, "seismic", "3d");
  EXPECT_TRUE(log().project == inner);
  EXPECT_TRUE(deferred->isReallyOpen());
  EXPECT_FALSE(set.isEmpty());
}
