// Store names: every form parsed and printed back, the validation report
// with its markers, ordering and equality, flat-file limits and in-memory
// stores.

#include <gtest/gtest.h>

#include <string>

#include "foundation/TestReleaseTree.h"
#include "foundation/vUtl.h"
#include "project/ProjectTesting.h"
#include "project/StoreDescription.h"
#include "project/StoreTesting.h"
#include "testing/TestMemoryStore.h"

using store_testing::expectFailure;

namespace {

std::string str(vString const& s) { return std::string(s.c_str(), s.length()); }

// No default project, "houston" a known database and the default Dorn
// server, while it lives.
struct NameSetting {
  NameSetting() { tree.setEnv("DORNSERVER", "houston"); }
  TestReleaseTree tree;
  project_testing::DefaultProject none;
  project_testing::SiteDatabases site;
};

// "H" in an expected text stands for this host.
std::string withHost(std::string text) {
  std::string host = str(vUtl::gethostname());
  for (std::size_t pos = text.find("@H"); pos != std::string::npos; pos = text.find("@H", pos + host.size()))
    text.replace(pos, 2, host);
  return text;
}

}  // namespace

TEST(StoreDescription, EveryFormParsesAndPrintsBack) {
  NameSetting setting;
  struct Case {
    char const* name;
    char const* text;
  } const cases[] = {
      // A bare name is a Dorn store, also when it is a type word.
      {"foo", "Dorn:houston:@H::foo.0##"},
      {"f", "Dorn:houston:@H::f.0##"},
      {"DORN:houston:hostA:proj:Line1.3/Headers#Seismic#", "Dorn:houston:hostA:proj:line1.3/headers#seismic#"},
      {"d::hostA:proj:line1", "Dorn:houston:hostA:proj:line1.0##"},
      {"r:store", "Rondo::@H::store.0##"},
      // A Kelp catalog without a server is served from its data host.
      {"k:store", "Kelp:@H:@H::store.0##"},
      {"z::hostZ:proj:type,1,ident,domain", "Zonmesh::hostZ:proj:type,1,ident,domain.0##"},
      {"proj:store.4", "NoType::@H:proj:store.4##"},
      // A '.' followed by no integer belongs to the name.
      {"r::h:p:name.v2", "Rondo::h:p:name.v2.0##"},
      {"file:/data/line1.sgy", "FlatFile:/data/line1.sgy:"},
      {"F:/data/line1.sgy#segy#", "FlatFile:/data/line1.sgy:#segy#"},
      {"flatfile:/data/line1.sgy#segy:/fmt/line1.syf#", "FlatFile:/data/line1.sgy:#segy:/fmt/line1.syf#"},
      // A single trailing '#' is dropped, and a trailing ':' too.
      {"file:/data/a.sgy#", "FlatFile:/data/a.sgy:"},
      {"file:/data/a.sgy:", "FlatFile:/data/a.sgy:"},
      // A format without its closing mark goes with the mark; the last marked format counts.
      {"file:/data/a.sgy#segy", "FlatFile:/data/a.sgy:"},
      {"file:/data/a.sgy#segy#x", "FlatFile:/data/a.sgy:#segy#"},
      {"inmemory:foo.1234", "InMemory:foo.1234"},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.name);
    StoreDescription d{vString(c.name)};
    std::string printed = str(d.toString());
    EXPECT_EQ(withHost(c.text), printed);
    // The printed form is canonical: it parses to the same description.
    StoreDescription again{vString(printed.c_str())};
    EXPECT_TRUE(again == d) << printed;
    EXPECT_EQ(printed, str(again.toString()));
  }
}

TEST(StoreDescription, FieldsConstructorsSettersAndTheFlatFileLimit) {
  NameSetting setting;
  StoreDescription d(vString("rondo:srv:hostA:proj:Line1.3/Headers#Seismic#"));
  EXPECT_EQ("Rondo:srv:hostA:proj:line1.3/headers", str(d.getTitle()));
  EXPECT_EQ(FullStoreName(vString("rondo:srv:hostA:proj:line1.3/headers")), d.getFullStoreName());
  // A store class without its closing mark is no class.
  StoreDescription open(vString("r:srv:h:p:name#seismic"));
  EXPECT_EQ("name", str(open.getStoreName()));
  EXPECT_TRUE(open.getStoreClass().isEmpty());

  StoreDescription file(vString("file:/data/survey/line1.sgy#segy:/fmt/line1.syf#"));
  EXPECT_EQ("/data/survey", str(file.getProjectName()));
  EXPECT_EQ("/data/survey/line1.sgy", str(file.getTitle()));
  StoreDescription f{vFilename("/data/x/wells.txt")};
  f.setFileFormat("ascii");
  EXPECT_EQ("FlatFile:/data/x/wells.txt:#ascii#", str(f.toString()));

  // setFlatFile forgets class and version.
  StoreDescription r(vString("r:srv:h:p:store.5#seismic#"));
  r.setFlatFile(vFilename("/a/b.sgy"));
  EXPECT_EQ(0, r.getVersion());
  EXPECT_TRUE(r.getStoreClass().isEmpty());

  FullStoreName const seven(ProjectType::RONDO, "srv", "hostA", "proj", "line", 7, "set");
  EXPECT_EQ("Rondo:srv:hostA:proj:line.7/set##", str(StoreDescription(seven).toString()));
  StoreDescription parts(ProjectType::RONDO, "srv", "hostA", "proj", "line", "seismic", 7, "set");
  EXPECT_EQ("Rondo:srv:hostA:proj:line.7/set#seismic#", str(parts.toString()));
  StoreDescription fromProject(ProjectDescription(vString("rondo:srv:hostA:proj")), "line", "seismic", 7, "set");
  EXPECT_TRUE(fromProject == parts);

  // A flat file name of 128 characters is the limit.
  std::string path128 = "/" + std::string(123, 'a') + ".sgy";
  vString message("stale");
  EXPECT_TRUE(StoreDescription(vFilename(path128.c_str())).isValid(message));
  EXPECT_TRUE(message.isEmpty());
  std::string path129 = "/" + std::string(124, 'a') + ".sgy";
  EXPECT_FALSE(StoreDescription(vFilename(path129.c_str())).isValid(message));
  EXPECT_EQ("The full file name is too long: " + path129, str(message));
  // Only flat files are limited.
  std::string longStore = "r:srv:h:p:" + std::string(200, 'a');
  EXPECT_TRUE(StoreDescription(vString(longStore.c_str())).isValid(message));
}

TEST(StoreDescription, EqualityTakesEveryFieldOrderOnlyTheNamingOnes) {
  NameSetting setting;
  StoreDescription a(vString("file:/d/a.sgy#segy#"));
  StoreDescription b(vString("file:/d/a.sgy#segd#"));
  EXPECT_TRUE(a != b);
  EXPECT_FALSE(a < b);
  EXPECT_FALSE(b < a);
  // The same for the address of an in-memory store.
  StoreDescription at1(vString("inmemory:foo.1"));
  StoreDescription at2(vString("inmemory:foo.2"));
  EXPECT_TRUE(at1 != at2);
  EXPECT_FALSE(at1 < at2 || at2 < at1);
  EXPECT_TRUE(at1 == StoreDescription(vString("i:foo.1")));

  char const* ordered[] = {
      "dorn:houston:h:p:zzz",  // "Dorn" before "Rondo"
      "r:srv:h:p:abc.9", "r:srv:h:p:abc.2#b#", "r:srv:h:p:abc.2/s#b#", "r:srv:h:p:abd",
  };
  for (std::size_t i = 0; i + 1 < sizeof ordered / sizeof *ordered; ++i) {
    StoreDescription lo{vString(ordered[i])};
    StoreDescription hi{vString(ordered[i + 1])};
    EXPECT_TRUE(lo < hi) << ordered[i] << " < " << ordered[i + 1];
    EXPECT_FALSE(hi < lo) << ordered[i + 1] << " < " << ordered[i];
    EXPECT_TRUE(lo != hi);
  }
  // The project part comes first: another data host orders before the store.
  EXPECT_TRUE(StoreDescription(vString("r:srv:a:p:zzz")) < StoreDescription(vString("r:srv:b:p:aaa")));
}

TEST(StoreDescription, ValidationReportsWhereANameWentWrong) {
  std::string const d40(40, 'd');
  std::string const r17(17, 'r');
  struct Case {
    std::string name;
    bool ok;
    std::string message;
  } const cases[] = {
      {"", false, " <- ERROR empty name"},
      {"fo$o", false, "fo <- ERROR store contains invalid character ...o"},
      // An empty word is Dorn, but reports the missing store.
      {":", false, ":::: <- ERROR expected store ..."},
      // The whole name is echoed as typed; the type word is lower-cased.
      {"DORN:", false, "DORN: <- ERROR no store name or server"},
      // A bare name is checked as a Dorn store: its limit and its echo.
      {d40 + "d", false, "dorn::::" + d40 + "d <- ERROR a Dorn store name can't be longer than 40 characters ..."},
      {"kelp:k$:h:p:store", false, "kelp:k$ <- ERROR server contains invalid characters ...:h:p:store"},
      {"dorn:srv:store", false, "dorn:srv: <- ERROR expected host  ...store"},
      {"dorn:srv:host:store", false, "dorn:srv:host: <- ERROR expected project:store  ...store"},
      {"rondo:s$v:h:p:store", true, ""},
      {"dorn:s:h$:p:store", false, "dorn:s:h$ <- ERROR host contains invalid character ...:p:store"},
      {"dorn:s:h:p$:store", false, "dorn:s:h:p$ <- ERROR invalid project name  ...store"},
      {"dorn:s:h:p::store", false, "dorn:s:h:p:: <- ERROR too many : ... store"},
      {"dorn:" + d40, true, ""},
      {"rondo:s:h:p:" + r17, true, ""},
      {"rondo:s:h:p:" + r17 + "r.1", false,
       "rondo:s:h:p:" + r17 + "r.1 <- ERROR a Rondo store name can't be longer than 17 characters ..."},
      // The short form of Rondo and Kelp has no length limit.
      {"rondo:" + r17 + r17, true, ""},
      {"dorn:s:h:p:name#seismic", false, "dorn:s:h:p:name#seismic <- ERROR store class should terminate with #"},
      {"zonmesh:abc", false, "zonmesh:abcZonmesh has no server so \"abc\" is invalid"},
      {"zonmesh:", false, "zonmesh:: <- ERROR expected host (which may be null) ..."},
      {"z::h:p", false, "z:h: <- ERROR expected project  ...p"},
      {"zonmesh::h:p:", false, "zonmesh:h:p: <- ERROR expected store name  ..."},
      // The address is what was not read when the store part was split off.
      {"inmemory:foo.12ab", false, "inmemory:foo.12ab <- ERROR invalid address ...12ab"},
      {"inmemory:.123", false, "inmemory: <- ERROR invalid store name ...123"},
      {"file:", false, "file: <- ERROR no file name"},
      {"file::", false, "file:: <- ERROR no filename found ...:"},
      {"file:#segy#", false, "file: <- ERROR no filename before format ...#segy#"},
      // The faults of a file name add up.
      {"flatfile:ho$t:/a b", false,
       "flatfile:ho$t <- ERROR unrecognised hostname ...ho$t:/a bflatfile:ho$t:/a b <- ERROR filename contains "
       "illegal characters ...ho$t:/a b"},
      {"foo:bar:baz", false, "foo: <- ERROR unrecognised type  ...bar:baz"},
      {"pr$j:store", false, "pr$j <- ERROR project contains invalid character ...:store"},
      {"notype:any$thing goes", true, ""},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.name);
    vString message("stale");
    EXPECT_EQ(c.ok, StoreDescription::validateStoreName(c.name.c_str(), message));
    EXPECT_EQ(c.message, str(message));
  }
}

TEST(StoreDescription, InMemoryNamesNeedTheAddressOfALiveStore) {
  vString message;
  EXPECT_TRUE(StoreDescription::validateStoreName("inmemory:foo.0", message));
  expectFailure([] { StoreDescription d(vString("inmemory:foo.0")); }, "StoreDescription::StoreDescription",
                "An InMemoryStore must have an address!");
  StoreDescription d(vString("inmemory:foo.1234"));
  EXPECT_EQ(1234, d.getAddress());
  EXPECT_EQ("InMemory::foo.0", str(d.getTitle()));
  // No live store answers to that address: it is refused, never followed.
  expectFailure([&] { d.getStore(); }, "StoreDescription::getStore",
                "There is no InMemoryStore at address 1234 in this process.");

  // A live store is found again by its printed name.
  std::string printed;
  {
    TestMemoryStore* raw = new TestMemoryStore(vHandle<Project>());
    vHandle<Store> store(raw);
    store->create("scratch", "seismic", "3d", KeyList(), nullptr);
    StoreDescription held(store);
    EXPECT_EQ(static_cast<long long>(reinterpret_cast<uintptr_t>(raw)), held.getAddress());
    printed = str(held.toString());
    EXPECT_EQ("InMemory:scratch." + std::to_string(held.getAddress()), printed);

    vLCString name;
    vHandle<Store> found = StoreDescription(vString(printed.c_str())).getAddressAndName(name);
    EXPECT_EQ(3, store.getMasterCount()) << "store, held, found";

    vHandle<TestMemoryStore> derived(new TestMemoryStore(vHandle<Project>()));
    StoreDescription named(derived, "Other");
    EXPECT_EQ("other", str(named.getStoreName()));
    EXPECT_TRUE(named.getStore() == vHandle_cast<Store>(derived));
  }
  // The store is gone: its address names nothing any more.
  StoreDescription stale(vString(printed.c_str()));
  MessageHandling quiet;
  EXPECT_THROW(stale.getStore(), UtlExcept);
}
