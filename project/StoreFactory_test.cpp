// What a flat file's name tells the store factory.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "project/StoreFactoryTesting.h"

namespace {

using namespace factory_testing;

// --- identification by name ---------------------------------------------------------

TEST(StoreFactoryIdentify, ShapefilesOnlyByTheirExactExtensions) {
  TestReleaseTree tree;
  for (char const* name : {"a.shp", "a.dbf"}) {
    StoreDescription d = fileIn(tree, name);
    EXPECT_TRUE(StoreFactory::identifyFileFormat(d, nullptr)) << name;
    EXPECT_EQ("shapefile", str(d.getFileFormat())) << name;
    EXPECT_EQ("shapes", str(d.getStoreClass())) << name;
  }
  // Upper case is not a shapefile here, and nothing else claims it.
  StoreDescription upper = fileIn(tree, "a.SHP");
  EXPECT_FALSE(StoreFactory::identifyFileFormat(upper, nullptr));
}

TEST(StoreFactoryIdentify, SegyAndNyxByTheLowerCasedExtension) {
  TestReleaseTree tree;
  struct Case {
    char const* name;
    char const* format;
  };
  for (Case c : {Case{"a.SGY", "segy"}, Case{"b.nyx", "nyxcst"}, Case{"c.Dat", "nyxdat"}}) {
    StoreDescription d = fileIn(tree, c.name);
    EXPECT_TRUE(StoreFactory::identifyFileFormat(d, nullptr)) << c.name;
    EXPECT_EQ(c.format, str(d.getFileFormat())) << c.name;
    EXPECT_EQ("seismic", str(d.getStoreClass())) << c.name;
  }
  // These are left to the extension itself when the store is opened.
  for (char const* name : {"d.segy", "d.txt"}) {
    StoreDescription d = fileIn(tree, name);
    EXPECT_FALSE(StoreFactory::identifyFileFormat(d, nullptr)) << name;
  }
}

// The format spec found for a Nyx file: a mapping file named after the kind of
// data that the file name tells, where one exists in the working directory.
vFilename nyxSpecBeside(StoreDescription const& description) {
  vString name = description.getFlatFileName().getRoot();
  std::string kind = std::string(name.c_str()).find("2d") != std::string::npos ? "2dStack" : "3dInlineStacks";
  std::string candidate = std::string(description.getFlatFileName().getDirectory().c_str()) + "/" + kind + ".cstf";
  return std::filesystem::exists(candidate) ? vFilename(candidate.c_str()) : vFilename();
}

class NyxFinder {
 public:
  explicit NyxFinder(StoreFactory::NyxSpecificationFinder finder)
      : m_saved(StoreFactory::registerNyxSpecificationFinder(finder)) {}
  ~NyxFinder() { StoreFactory::registerNyxSpecificationFinder(m_saved); }

 private:
  StoreFactory::NyxSpecificationFinder m_saved;
};

TEST(StoreFactoryIdentify, CstFilesGetTheSpecFoundForThemOnlyWhenAsked) {
  TestReleaseTree tree;
  NyxFinder finder(&nyxSpecBeside);
  std::string const spec = tree.writeWorkFile("2dStack.cstf", "mapping");
  StoreOpenOptions automatic;
  automatic.setAutoSpecifyCSTFiles(true);

  StoreDescription found = fileIn(tree, "line2d.cst");
  ASSERT_TRUE(StoreFactory::identifyFileFormat(found, &automatic));
  EXPECT_EQ(spec, str(found.getFormatSpec()));

  // A spec given is kept.
  StoreDescription given = fileIn(tree, "line2d.cst");
  given.setFormatSpec("my.cstf");
  ASSERT_TRUE(StoreFactory::identifyFileFormat(given, &automatic));
  EXPECT_EQ("my.cstf", str(given.getFormatSpec()));

  // Not asked for: no options, or the switch off.
  StoreOpenOptions manual;
  for (StoreOpenOptions const* options : std::vector<StoreOpenOptions const*>{nullptr, &manual}) {
    StoreDescription d = fileIn(tree, "line2d.cst");
    ASSERT_TRUE(StoreFactory::identifyFileFormat(d, options));
    EXPECT_EQ("", str(d.getFormatSpec()));
  }
  // Nothing found: the format spec stays blank, the file is still Nyx.
  StoreDescription none = fileIn(tree, "volume3d.cst");
  ASSERT_TRUE(StoreFactory::identifyFileFormat(none, &automatic));
  EXPECT_EQ("", str(none.getFormatSpec()));
  // Without a finder, not even the format spec beside it is found.
  NyxFinder noFinder(nullptr);
  StoreDescription unfound = fileIn(tree, "line2d.cst");
  ASSERT_TRUE(StoreFactory::identifyFileFormat(unfound, &automatic));
  EXPECT_EQ("", str(unfound.getFormatSpec()));
}

// A text table is described by a ".txf" file of the same root beside it,
// whose first word is the store class.
vFilename txfBeside(vFilename const& file, vLCString& storeClass) {
  std::string path = std::string(file.getDirectory().c_str()) + "/" + file.getRoot().c_str() + ".txf";
  std::ifstream in(path);
  std::string word;
  if (!(in >> word)) return vFilename();
  storeClass = word.c_str();
  return vFilename(path.c_str());
}

class AsciiFinder {
 public:
  explicit AsciiFinder(StoreFactory::AsciiSpecificationFinder finder)
      : m_saved(StoreFactory::registerAsciiSpecificationFinder(finder)) {}
  ~AsciiFinder() { StoreFactory::registerAsciiSpecificationFinder(m_saved); }

 private:
  StoreFactory::AsciiSpecificationFinder m_saved;
};

TEST(StoreFactoryIdentify, TextTablesByTheirFormatDescription) {
  TestReleaseTree tree;
  AsciiFinder finder(&txfBeside);
  std::string const txf = tree.writeWorkFile("wells.txf", "Well\ncolumns 1 2\n");
  StoreDescription d = fileIn(tree, "wells.xyz");
  ASSERT_TRUE(StoreFactory::identifyFileFormat(d, nullptr));
  EXPECT_EQ("ascii", str(d.getFileFormat()));
  EXPECT_EQ(txf, str(d.getFormatSpec()));
  EXPECT_EQ("well", str(d.getStoreClass()));

  StoreDescription undescribed = fileIn(tree, "picks.xyz");
  EXPECT_FALSE(StoreFactory::identifyFileFormat(undescribed, nullptr));

  // A spec given settles it before any description is looked for.
  StoreDescription given = fileIn(tree, "wells.xyz");
  given.setFormatSpec("other.txf");
  ASSERT_TRUE(StoreFactory::identifyFileFormat(given, nullptr));
  EXPECT_EQ("", str(given.getFileFormat()));

  // Without a finder nothing is described.
  AsciiFinder noFinder(nullptr);
  StoreDescription unread = fileIn(tree, "wells.xyz");
  EXPECT_FALSE(StoreFactory::identifyFileFormat(unread, nullptr));
}

TEST(StoreFactoryIdentify, TagTable) {
  // The table itself is data; a tag is found in any case, and only whole.
  EXPECT_EQ("SegyDiskStore", str(StoreFactory::getFileStoreClass("SGY")));
  EXPECT_EQ("NyxDiskStore", str(StoreFactory::getFileStoreClass("nyxdat")));
  for (char const* tag : {"", "segy2"}) EXPECT_EQ("", str(StoreFactory::getFileStoreClass(tag)));
}

}  // namespace
