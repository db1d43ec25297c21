// Project types: names, accepted spellings and the interactive prompt.

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "foundation/TestReleaseTree.h"
#include "project/ProjectType.h"

namespace {

std::string str(vString const& s) { return std::string(s.c_str(), s.length()); }

TEST(ProjectType, NamesOfAllTypes) {
  char const* names[] = {"NoType", "Rondo", "Kelp", "Dorn", "UnitTest", "FlatFile", "Memory", "InMemory", "Zonmesh"};
  for (int t = 0; t <= 8; ++t) {
    EXPECT_EQ(names[t], str(ProjectType::getProjectTypeName(t)));
    // Every name reads back as its own type.
    EXPECT_EQ(t, ProjectType::getProjectType(ProjectType::getProjectTypeName(t)));
  }
  expectFatal([] { ProjectType::getProjectTypeName(9); }, "ProjectType::getProjectTypeName", "Unknown PROJECT_TYPE 9.");
  expectFatal([] { ProjectType::getProjectTypeName(-1); }, "ProjectType::getProjectTypeName", "Unknown PROJECT_TYPE -1.");
}

TEST(ProjectType, AcceptedSpellingsIgnoreCaseOthersAreUnknown) {
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

}  // namespace
