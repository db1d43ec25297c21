// Project types, project and store names: the text grammar both ways, and
// the interactive prompt for a type.

#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>
#include <string>

#include "foundation/TestReleaseTree.h"
#include "project/FullProjectName.h"
#include "project/FullStoreName.h"
#include "project/NameDetails.h"
#include "project/ProjectType.h"

namespace {

std::string str(vString const& s) { return std::string(s.c_str(), s.length()); }

TEST(ProjectType, NamesOfAllTypesAndTheirAcceptedSpellings) {
  char const* names[] = {"NoType", "Rondo", "Kelp", "Dorn", "UnitTest", "FlatFile", "Memory", "InMemory", "Zonmesh"};
  for (int t = 0; t <= 8; ++t) {
    EXPECT_EQ(names[t], str(ProjectType::getProjectTypeName(t)));
    EXPECT_EQ(t, ProjectType::getProjectType(ProjectType::getProjectTypeName(t)));
  }
  expectFatal([] { ProjectType::getProjectTypeName(9); }, "ProjectType::getProjectTypeName", "Unknown PROJECT_TYPE 9.");
  expectFatal([] { ProjectType::getProjectTypeName(-1); }, "ProjectType::getProjectTypeName", "Unknown PROJECT_TYPE -1.");

  // Accepted spellings ignore case; others are unknown.
  struct {
    char const* text;
    ProjectType::PROJECT_TYPE type;
  } const cases[] = {
      {"", ProjectType::NOTYPE}, {"RondoV", ProjectType::DORN}, {"Flat File", ProjectType::FLATFILE},
  };
  for (auto const& c : cases) {
    EXPECT_EQ(c.type, ProjectType::getProjectType(c.text)) << c.text;
    ProjectType::PROJECT_TYPE t = ProjectType::KELP;
    EXPECT_TRUE(ProjectType::isValidProjectType(vString(c.text), t)) << c.text;
    EXPECT_EQ(c.type, t);
  }
  EXPECT_EQ(ProjectType::NOTYPE, ProjectType::getProjectType(static_cast<char const*>(nullptr)));
  ProjectType::PROJECT_TYPE t = ProjectType::RONDO;
  EXPECT_FALSE(ProjectType::isValidProjectType(vString(" rondo"), t));
  EXPECT_EQ(ProjectType::NOTYPE, t);
  expectFatal([] { ProjectType::getProjectType("rondo4"); }, "ProjectType::getProjectType",
              "Unknown PROJECT_TYPE name rondo4.");
}

TEST(ProjectType, EnterTakesTheFirstLetterOffersTheCurrentTypeAndAsksAgain) {
  auto enter = [](char const* answer, ProjectType::PROJECT_TYPE& t) {
    std::istringstream in(answer);
    std::ostringstream out;
    ProjectType::enter(t, in, out);
    return out.str();
  };
  ProjectType::PROJECT_TYPE t = ProjectType::DORN;
  EXPECT_EQ("type of project Rondo, Kelp, Zon [Dorn]: ", enter("  inmem  \n", t));
  EXPECT_EQ(ProjectType::INMEMORY, t);
  // A blank answer takes the offered type.
  t = ProjectType::KELP;
  enter("\n", t);
  EXPECT_EQ(ProjectType::KELP, t);

  t = ProjectType::RONDO;
  EXPECT_EQ(
      "type of project Rondo, Kelp, Zon [Rondo]: "
      "Unknown project Type:dorn\nChoose rondo or kelp.\n    or f for flatfile\n"
      "type of project Rondo, Kelp, Zon [Rondo]: ",
      enter("dorn\nzon\n", t));
  EXPECT_EQ(ProjectType::ZONMESH, t);

  // The end of input ends it.
  t = ProjectType::NOTYPE;
  expectFatal([&] { enter("x\n", t); }, "ProjectType::enter", "No answer to the question for the type of project.");
}

void expectProject(FullProjectName const& n, ProjectType::PROJECT_TYPE type, char const* server, char const* host,
                   char const* project) {
  EXPECT_EQ(type, n.getProjectType());
  EXPECT_EQ(server, str(n.getServerName()));
  EXPECT_EQ(host, str(n.getHostName()));
  EXPECT_EQ(project, str(n.getProject()));
}

TEST(FullProjectName, TextFormsComparisonAndBadNames) {
  EXPECT_EQ("survey", str(FullProjectName(ProjectType::NOTYPE, "", "", "Survey").getFullName()));
  EXPECT_EQ("Rondo:::survey", str(FullProjectName(ProjectType::RONDO, "", "", "survey").getFullName()));
  EXPECT_EQ("Kelp:s:h:survey", str(FullProjectName(vString("k"), "s", "h", "survey").getFullName()));
  EXPECT_EQ("h:", str(FullProjectName(ProjectType::NOTYPE, "", "h", "").getFullName()));
  // An empty type name is no type.
  expectProject(FullProjectName(vString(":srv:hostA:survey")), ProjectType::NOTYPE, "srv", "hostA", "survey");
  expectProject(FullProjectName(vString("")), ProjectType::NOTYPE, "", "", "");
  FullProjectName const names[] = {FullProjectName(ProjectType::NOTYPE, "s", "", "p"),
                                   FullProjectName(ProjectType::UNITTEST, "s", "", "")};
  for (FullProjectName const& n : names) {
    FullProjectName back(n.getFullName());
    EXPECT_EQ(n, back) << n.getFullName().c_str();
  }
  // A fifth field makes the type name hold a colon.
  expectFatal([] { FullProjectName n(vString("r:x:srv:h:p")); }, "ProjectType::getProjectType",
              "Unknown PROJECT_TYPE name r:x.");
  expectFatal([] { FullProjectName n(ProjectType::RONDO, "srv:1", "h", "p"); }, "FullProjectName::FullProjectName()",
              "Invalid serverName for Store Name");

  // Comparison is field by field.
  FullProjectName a(ProjectType::RONDO, "s", "h", "p");
  EXPECT_EQ(a, FullProjectName(vString("r:s:h:P")));
  EXPECT_NE(a, FullProjectName(ProjectType::RONDO, "s", "H", "p"));
  EXPECT_TRUE(FullProjectName(ProjectType::ZONMESH, "a", "z", "z") < FullProjectName(ProjectType::RONDO, "b", "a", "a"));
  EXPECT_TRUE(FullProjectName(ProjectType::RONDO, "a", "h", "p") < FullProjectName(ProjectType::KELP, "a", "h", "p"));
  EXPECT_FALSE(a < a);
}

void expectStore(FullStoreName const& n, char const* project, char const* store, int version, char const* set) {
  EXPECT_EQ(project, str(n.getFullProjectName().getFullName()));
  EXPECT_EQ(store, str(n.getStoreName()));
  EXPECT_EQ(version, n.getVersion());
  EXPECT_EQ(set, str(n.getAttributeSetName()));
}

TEST(FullStoreName, TextFormsAndParts) {
  // Folded before it is checked.
  expectStore(FullStoreName(vString("Line12")), "", "line12", 0, "");
  expectStore(FullStoreName(vString("survey:line12.3")), "survey", "line12", 3, "");
  expectStore(FullStoreName(vString("r:srv:h:survey:line12.3/set")), "Rondo:srv:h:survey", "line12", 3, "set");
  expectStore(FullStoreName(vString("h:survey:")), "h:survey", "", 0, "");
  // The version comes from the last '.': digits before it stay in the name.
  expectStore(FullStoreName(vString("a_1-2,3.12")), "", "a_1-2,3", 12, "");
  // A non-numeric tail stays in the name and fails the character set.
  expectFatal([] { FullStoreName n(vString("p:seis.1x/set")); }, "FullStoreName::FullStoreName()",
              "Invalid store name 'seis.1x'");

  // A given version takes the name whole; from parts, one is split off.
  expectStore(FullStoreName(vString("p:line12"), 7), "p", "line12", 7, "");
  // From parts, a version is split off a name that is invalid with it.
  FullProjectName project(ProjectType::RONDO, "srv", "h", "survey");
  expectStore(FullStoreName(project, "line12", 4, "set"), "Rondo:srv:h:survey", "line12", 4, "set");
  expectStore(FullStoreName(project, "line12.5"), "Rondo:srv:h:survey", "line12", 5, "");
  expectStore(FullStoreName(vString("unittest"), "", "", "p", "x.2"), "UnitTest:::p", "x", 2, "");
  // With a version given, a dotted name is not split.
  expectFatal([&] { FullStoreName n(project, "line.x"); }, "FullStoreName::FullStoreName()",
              "Invalid dataset name 'line.x' ");
}

TEST(FullStoreName, BriefAndFullNamesReadBack) {
  FullProjectName project(ProjectType::NOTYPE, "", "h", "survey");
  EXPECT_EQ("line", str(FullStoreName(project, "line", 0).getBriefName()));
  EXPECT_EQ("line.3", str(FullStoreName(project, "line", 3).getBriefName()));
  EXPECT_EQ("", str(FullStoreName(project, "line", -2).getBriefName()));
  EXPECT_EQ("h:survey:line.3/set", str(FullStoreName(project, "line", 3, "set").getFullName()));
  // No leading ':' for a store without a project.
  EXPECT_EQ("line/set", str(FullStoreName(vString("line/set")).getFullName()));
  char const* texts[] = {"s::survey:line.2", "Rondo:s:h:p:x.1/y"};
  for (char const* t : texts) {
    FullStoreName n{vString(t)};
    EXPECT_EQ(t, str(n.getFullName()));
    EXPECT_EQ(n, FullStoreName(n.getFullName()));
  }
  EXPECT_NE(FullStoreName(vString("p:a.1")), FullStoreName(vString("p:a.2")));
  EXPECT_TRUE(FullStoreName(vString("p:a.9")) < FullStoreName(vString("p:b.1")));
}

// The character set and the permission for bad names are read once per
// process, so each setting is tried in a child of its own.
TEST(FullStoreNameDeathTest, CharacterSetFromTheSiteConfiguration) {
  EXPECT_EXIT(
      {
        setenv("SP_CAPI_FULLSTORENAMECHARSET", "abc.", 1);
        bool ok = FullStoreName::myIsValidStoreName("a.b") && !FullStoreName::myIsValidStoreName("d") &&
                  FullStoreName(vString("ab.c")).getStoreName() == "ab.c";
        // Read once: a later setting is not seen.
        setenv("SP_CAPI_FULLSTORENAMECHARSET", "d", 1);
        ok = ok && !FullStoreName::myIsValidStoreName("d") && FullStoreName::myIsValidStoreName("a.b");
        std::exit(ok ? 0 : 1);
      },
      ::testing::ExitedWithCode(0), "");
  EXPECT_EXIT(
      {
        setenv("SP_CAPI_ALLOWBADNAMES", "YES", 1);
        bool ok = FullStoreName::myIsValidStoreName("Bad Name!") &&
                  FullStoreName(vString("seis.abc")).getStoreName() == "seis.abc";
        std::exit(ok ? 0 : 1);
      },
      ::testing::ExitedWithCode(0), "");
}

void expectParts(NameDetails const& n, char const* type, char const* version, char const* ident, char const* domain) {
  EXPECT_EQ(type, str(n.getType()));
  EXPECT_EQ(version, str(n.getVersion()));
  EXPECT_EQ(ident, str(n.getIdent()));
  EXPECT_EQ(domain, str(n.getDomain()));
}

TEST(NameDetails, PartsAreUpperCaseReadBackAndNeedADomainButForSGD) {
  NameDetails n(vString("sgy,1,Line12,north"));
  expectParts(n, "SGY", "1", "LINE12", "NORTH");
  EXPECT_EQ("SGY,1,LINE12,NORTH", str(n.getName()));

  // Only SGD may end after its ident.
  n.load("sgd,2,wells");
  expectParts(n, "SGD", "2", "WELLS", "");
  n.load("SGD,2,wells,");
  EXPECT_EQ("SGD,2,WELLS", str(n.getName()));

  // Empty parts stay in their place; a fifth stays with the domain.
  n.load("a,b,c,d,e");
  EXPECT_EQ("A,B,C,D,E", str(n.getName()));

  n.load("");
  EXPECT_EQ(NameDetails(), n);

  vString built;
  NameDetails::buildName("hz", "3", "top", "", built);
  EXPECT_EQ("hz,3,top", str(built));

  // A domain is needed but for SGD; a refused name leaves the parts as they were.
  n.load("hz,1,top,north");
  expectFatal([&] { n.load("sgdx,1,a"); }, "NameDetails::load",
              "Store names for Zonmesh have to have 4 parts separated by ,. Type,version,ident,domain. 'sgdx,1,a' "
              "does not do this.");
  expectParts(n, "HZ", "1", "TOP", "NORTH");
}

}  // namespace
