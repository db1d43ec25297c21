// Catalog and project descriptions: parsing, completion from the default
// project, checks, ordering and text; and the user's default project.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "foundation/TestReleaseTree.h"
#include "foundation/vUtl.h"
#include "project/CapiProject.h"
#include "project/ProjectDescription.h"
#include "project/ProjectTesting.h"

namespace {

std::string str(vString const& s) { return std::string(s.c_str(), s.length()); }

using project_testing::DefaultProject;
using project_testing::SiteDatabases;

void expectCatalog(ProjectDescription const& d, ProjectType::PROJECT_TYPE type, std::string const& server,
                   std::string const& host, char const* project) {
  EXPECT_EQ(type, d.getProjectType());
  EXPECT_EQ(server, str(d.getServerHost()));
  EXPECT_EQ(host, str(d.getDataHost()));
  EXPECT_EQ(project, str(d.getProjectName()));
}

TEST(ProjectDescription, BlankFieldsComeFromTheDefaultProject) {
  DefaultProject def(true);
  expectCatalog(ProjectDescription(vString("r:srv::")), ProjectType::RONDO, "srv", "defhost", "defproj");
  expectCatalog(ProjectDescription(vString("survey")), ProjectType::NOTYPE, "", "defhost", "survey");
}

TEST(ProjectDescription, TextWithoutATypeFlatFilesMemoryAndKelpReservedHosts) {
  DefaultProject none(false);
  ProjectDescription d(vString("srv:hostA:survey"));
  expectCatalog(d, ProjectType::NOTYPE, "srv", "hostA", "survey");
  EXPECT_TRUE(d.isCapi());
  EXPECT_EQ("NoType:srv:hostA:survey", str(d.toString()));
  // A type word in front of three fields is the type; a blank host is this host.
  expectCatalog(ProjectDescription(vString("r::survey")), ProjectType::RONDO, "", str(vUtl::gethostname()), "survey");
  // In the place of a type, only a type.
  expectFatal([] { ProjectDescription d2(vString("venus:srv:hostA:p")); }, "ProjectDescription(vString)",
              "Unknown project type 'venus'.");

  ProjectDescription f(vString("f:/data/lines/a.sgy:"));
  EXPECT_TRUE(f.isFlatFile());
  EXPECT_EQ("/data/lines", str(f.getPath()));
  EXPECT_EQ("FlatFile:/data/lines/a.sgy:/data/lines", str(f.toString()));

  expectCatalog(ProjectDescription(vString("flatfile:hostF:/data/b.txt")), ProjectType::FLATFILE, "", "hostF", "/data");

  ProjectDescription m(vString("i:"));
  EXPECT_TRUE(m.isInMemory());
  EXPECT_EQ("InMemory:", str(m.toString()));

  // Kelp's reserved data hosts run no server.
  expectFatal([] { ProjectDescription d{vString("k::KelpArchive:p")}; }, "ProjectCatalogDescription::setCapi()",
              "'KelpArchive' is a reserved Kelp data host that runs no data server; use the Kelp data server "
              "'kelpserver'.");
  EXPECT_EQ("kelpserver", str(ProjectCatalogDescription::getReservedDataHostServer("KELPVAULT")));
  EXPECT_EQ("", str(ProjectCatalogDescription::getReservedDataHostServer("kelpserver")));
}

TEST(ProjectDescription, DornServersMustBeKnownDatabasesEqualityAndOrder) {
  DefaultProject none(false);
  TestReleaseTree tree;
  SiteDatabases site;
  expectCatalog(ProjectDescription(vString("dorn:hprod:hostA:p")), ProjectType::DORN, "hprod", "hostA", "p");
  expectCatalog(ProjectDescription(vString("d:Houston:hostA:p")), ProjectType::DORN, "Houston", "hostA", "p");
  // A type word as server: the user dropped a colon.
  expectFatal([&] { ProjectDescription d(vString("dorn:kelp:hostB:p")); }, "ProjectCatalogDescription::setCapi",
              "Invalid server 'kelp', maybe you meant kelp::hostB:<project>:<store> (missing colon after kelp)");
  // Only those words, and only as spelt there.
  expectFatal([] { ProjectDescription d(vString("d:mars:hostA:p")); }, "ProjectCatalogDescription::setCapi",
              "Unrecognised server 'mars'.");
  // A blank server is the site's default server.
  tree.setEnv("DORNSERVER", "hdev");
  expectCatalog(ProjectDescription(vString("d::hostA:p")), ProjectType::DORN, "hdev", "hostA", "p");

  // Catalog descriptions are equal where they place the catalog alike.
  auto cat = [](ProjectType::PROJECT_TYPE t, char const* server, char const* host) {
    ProjectCatalogDescription d;
    d.setCapi(t, server, host);
    return d;
  };
  // Rondo, Kelp, UnitTest: the data host places the catalog.
  EXPECT_EQ(cat(ProjectType::RONDO, "s1", "h"), cat(ProjectType::RONDO, "s2", "h"));
  EXPECT_NE(cat(ProjectType::RONDO, "s", "h1"), cat(ProjectType::RONDO, "s", "h2"));
  // Dorn and Zonmesh: the server.
  EXPECT_EQ(cat(ProjectType::DORN, "hprod", "h1"), cat(ProjectType::DORN, "hprod", "h2"));
  EXPECT_NE(cat(ProjectType::DORN, "hprod", "h"), cat(ProjectType::DORN, "hdev", "h"));
  // Memory descriptions of a type are all equal.
  EXPECT_EQ(cat(ProjectType::INMEMORY, "", "a"), cat(ProjectType::INMEMORY, "", "b"));
  ProjectCatalogDescription f1, f2;
  f1.setFlatFile(vFilename("/a/x.txt"));
  f2.setFlatFile(vFilename("/a/y.txt"));
  EXPECT_NE(f1, f2);

  // By type name first: Dorn < FlatFile < Kelp < Rondo < UnitTest < Zonmesh.
  EXPECT_TRUE(cat(ProjectType::DORN, "hprod", "z") < f1);
  EXPECT_TRUE(f1 < cat(ProjectType::KELP, "a", "a"));
  EXPECT_TRUE(cat(ProjectType::RONDO, "z", "a") < cat(ProjectType::RONDO, "a", "b"));
  EXPECT_FALSE(cat(ProjectType::RONDO, "a", "b") < cat(ProjectType::RONDO, "z", "b"));

  ProjectDescription p1(vString("r:s:h:alpha")), p2(vString("r:s:h:beta"));
  EXPECT_TRUE(p1 < p2);
  EXPECT_EQ(FullProjectName(vString("rondo:s:h:alpha")), p1.getFullProjectName());
}

TEST(ProjectCatalogDescription, SetCapiTakesCatalogTypesOnlyAndCompletesABlankHost) {
  DefaultProject none(false);
  ProjectCatalogDescription d;
  expectFatal([&] { d.setCapi(ProjectType::FLATFILE, "s", "h"); }, "ProjectCatalogDescription::setCapi()",
              "ProjectType must be either DORN, RONDO or KELP");
  // An in-memory catalog is taken, as no Capi one.
  d.setCapi(ProjectType::INMEMORY, "hprod", "h");
  EXPECT_FALSE(d.isCapi());
  EXPECT_TRUE(d.isInMemory());
  EXPECT_EQ("InMemory:", str(d.toString()));
  d.setFlatFile(vFilename("/x/y.txt"));
  d.setCapi(ProjectType::UNITTEST, "s", "h");
  EXPECT_EQ("", str(d.getFlatFileName().getFilename()));
  EXPECT_EQ("UnitTest:s:h:", str(d.toString()));
  // A catalog description takes no project from a flat file.
  d.setFlatFile(vFilename("/x/y.txt"));
  EXPECT_EQ("FlatFile:/x/y.txt:", str(d.toString()));
  ProjectCatalogDescription none2;
  none2.setDefaultProjectType();
  EXPECT_EQ(ProjectType::RONDO, none2.getProjectType());

  // A blank host is completed from the default project, or is this host.
  d.setCapi(ProjectType::ZONMESH, "centre", "");
  EXPECT_EQ(str(vUtl::gethostname()), str(d.getDataHost()));
  DefaultProject def(true);
  d.setCapi(ProjectType::UNITTEST, "s", "  ");
  EXPECT_EQ("defhost", str(d.getDataHost()));
  // A Kelp server left blank is the completed host.
  d.setCapi(ProjectType::KELP, "", "");
  EXPECT_EQ("defhost", str(d.getServerHost()));
}

TEST(Capi, DefaultProjectStringAndNameFromVprojectThenProject) {
  DefaultProject none(false);
  TestReleaseTree tree;
  tree.setEnv("HOME", tree.root());
  EXPECT_EQ("r:::", str(Capi::getDefaultProjectString()));

  tree.writeWorkFile(".project", "  survey7 trailing words\nsecond line\n");
  EXPECT_EQ("r::survey7", str(Capi::getDefaultProjectString()));

  TestReleaseTree::write(tree.root() + "/.vproject", "unittest:s:h:home project\nignored\n");
  EXPECT_EQ("unittest:s:h:home project", str(Capi::getDefaultProjectString()));

  // The name read from it; without a type, the default type.
  TestReleaseTree::write(tree.root() + "/.vproject", "  srv:hostA:p  \n");
  expectCatalog(Capi::getDefaultProjectName(), ProjectType::RONDO, "srv", "hostA", "p");

  TestReleaseTree::write(tree.root() + "/.vproject", "   \n");
  expectCatalog(Capi::getDefaultProjectName(), ProjectType::NOTYPE, "", "", "");
}

// The switch is read once per process: each value is tried in a child.
TEST(CapiDeathTest, DisableRondoDataServerIsANonZeroInteger) {
  struct {
    char const* value;
    int disabled;
  } const cases[] = {{"-3", 1}, {"yes", 0}};
  for (auto const& c : cases) {
    EXPECT_EXIT(
        {
          setenv("CAPI_DISABLERONDODATASERVER", c.value, 1);
          bool first = Capi::disableRondoDataServer();
          // Later changes are not seen.
          setenv("CAPI_DISABLERONDODATASERVER", first ? "0" : "1", 1);
          std::exit(Capi::disableRondoDataServer() == first ? (first ? 1 : 0) : 2);
        },
        ::testing::ExitedWithCode(c.disabled), "")
        << c.value;
  }
}

}  // namespace
