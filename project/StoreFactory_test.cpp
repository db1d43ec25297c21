// What a flat file's name tells the store factory.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "project/StoreFactoryTesting.h"

namespace {

using namespace factory_testing;

// --- identification by name ---------------------------------------------------------

TEST(StoreFactoryIdentify, ShapefilesOnlyByTheirExactExtensions) {
  TestReleaseTree tree;
  StoreDescription d = fileIn(tree, "a.dbf");
  EXPECT_TRUE(StoreFactory::identifyFileFormat(d, nullptr));
  EXPECT_EQ("shapefile", str(d.getFileFormat()));
  EXPECT_EQ("shapes", str(d.getStoreClass()));
  // Upper case is not a shapefile here, and nothing else claims it.
  StoreDescription upper = fileIn(tree, "a.SHP");
  EXPECT_FALSE(StoreFactory::identifyFileFormat(upper, nullptr));
}

TEST(StoreFactoryIdentify, SeismicByTheLowerCasedExtension) {
  TestReleaseTree tree;
  StoreDescription d = fileIn(tree, "c.Dat");
  EXPECT_TRUE(StoreFactory::identifyFileFormat(d, nullptr));
  EXPECT_EQ("nyxdat", str(d.getFileFormat()));
  EXPECT_EQ("seismic", str(d.getStoreClass()));
  // Left to the extension itself when the store is opened.
  StoreDescription segy = fileIn(tree, "d.segy");
  EXPECT_FALSE(StoreFactory::identifyFileFormat(segy, nullptr));
  // The tag table: a tag is found in any case, and only whole.
  EXPECT_EQ("SegyDiskStore", str(StoreFactory::getFileStoreClass("SGY")));
  EXPECT_EQ("", str(StoreFactory::getFileStoreClass("segy2")));
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

  // Not asked for.
  StoreDescription d = fileIn(tree, "line2d.cst");
  ASSERT_TRUE(StoreFactory::identifyFileFormat(d, nullptr));
  EXPECT_EQ("", str(d.getFormatSpec()));
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
}

}  // namespace
