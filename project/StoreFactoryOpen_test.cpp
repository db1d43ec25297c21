// Flat files through the store factory: what a name tells, dispatch by
// format tag, the formats this build cannot handle, and the attribute
// mapping of the Nyx formats.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "project/StoreFactoryTesting.h"

namespace {

using namespace factory_testing;

std::string const kOpen = "StoreFactory::openStore";
std::string const kCreate = "StoreFactory::createStore";

std::string cannotHandle(std::string const& file, std::string const& tag) {
  return "The file '" + file + "' is of a type '" + tag + "' which we cannot handle yet!";
}

std::string path(StoreDescription const& d) { return str(d.getFlatFileName().getFilename()); }

// A tag whose store is not there fails, as does a file of no kind. Identification works on a copy; a name it
// does not identify goes by its extension, and a format given wins in any case, making up no class.
TEST(StoreFactoryOpenFile, ByIdentificationExtensionOrGivenFormatOrNotAtAll) {
  TestReleaseTree tree;
  StoreDescription d = fileIn(tree, "a.sgy");
  expectFatal([&] { StoreFactory::openStore(d, "", nullptr); }, kOpen.c_str(), cannotHandle(path(d), "segy"));
  expectFatal([&] { StoreFactory::hasStore(d); }, "StoreFactory::hasStore", "Cannot handle file names yet." + path(d));
  StoreDescription none = fileIn(tree, "grid.");
  expectFatal([&] { StoreFactory::openStore(none, "", nullptr); }, kOpen.c_str(),
              "We do not know the type of file '" + path(none) + "', therefore we cannot handle it!");

  StandIn shapefiles("ShapefileDiskStore", fileMakers());
  StandIn segy("SegyDiskStore", fileMakers());
  for (char const* name : {"a.shp", "line.sgy", "line.segy", "traces.bin"}) shelve(fileShelf(), name);
  struct Case {
    char const* file;
    char const* given;
    char const* format;
    char const* storeClass;
  } const cases[] = {{"a.SHP", "", "", ""},
                     {"line.SGY", "", "segy", "seismic"},
                     {"line.segy", "", "", ""},
                     {"traces.bin", "SGY", "SGY", ""}};
  for (Case const& c : cases) {
    SCOPED_TRACE(c.file);
    StoreDescription file = fileIn(tree, c.file);
    file.setFileFormat(c.given);
    seen().clear();
    vHandle<Store> store = StoreFactory::openStore(file, "", nullptr);
    ASSERT_EQ(1u, seen().size());
    EXPECT_EQ(c.format, str(seen()[0].description.getFileFormat()));
    EXPECT_EQ(c.storeClass, str(seen()[0].description.getStoreClass()));
    EXPECT_EQ(path(file), path(seen()[0].description));
    EXPECT_EQ(c.given, str(file.getFileFormat()));
    EXPECT_TRUE(store->getProject().isEmpty());
  }
}

struct Mapped {
  std::string file;
  std::string mapFile;
  Store* below = nullptr;
  vHandle<Store> view;
};

Mapped& mapped() {
  static Mapped m;
  return m;
}

// A mapping file is the format spec, with ".cstf", in the data file's directory.
bool resolveBeside(vFilename const& file, vString const& spec, vFilename& mapFile) {
  mapped().file = str(file.getFilename());
  std::string candidate = std::string(file.getDirectory().c_str()) + "/" + spec.c_str() + ".cstf";
  if (spec.isBlank() || !std::filesystem::exists(candidate)) return false;
  mapFile = vFilename(candidate.c_str());
  return true;
}

// The view: a second store on the same set, so that the caller can tell it
// from the store below.
vHandle<Store> applyMapping(vHandle<Store> store, vFilename const& mapFile) {
  mapped().mapFile = str(mapFile.getFilename());
  mapped().below = store.get();
  mapped().view = vHandle<Store>(new TestMemoryStore(vHandle<Project>(), fileShelf()));
  mapped().view->open(store->getName(), 0, "", "", nullptr);
  return mapped().view;
}

// Only Nyx stores with a spec are mapped, and only with their mapping file.
TEST(StoreFactoryNyx, ASpecNeedsItsMappingFileWhichIsPutOnTheStore) {
  TestReleaseTree tree;
  StandIn nyx("NyxDiskStore", fileMakers());
  StandIn segy("SegyDiskStore", fileMakers());
  StoreFactory::AttributeMapping saved = StoreFactory::registerAttributeMapping({&resolveBeside, &applyMapping});
  Restore restore([&] {
    StoreFactory::registerAttributeMapping(saved);
    mapped() = Mapped();
  });
  shelve(fileShelf(), "line.dat");
  StoreDescription d = fileIn(tree, "line.dat");
  d.setFormatSpec("2dStack");
  expectFatal([&] { StoreFactory::openStore(d, "", nullptr); }, kOpen.c_str(),
              "Could not find the attribute mapping file '2dStack'!");
  EXPECT_EQ(path(d), mapped().file);
  // The store was opened first.
  EXPECT_EQ(1u, seen().size());

  std::string const map = tree.writeWorkFile("2dStack.cstf", "mapping");
  shelve(fileShelf(), "line.sgy");
  StoreDescription other = fileIn(tree, "line.sgy");
  other.setFormatSpec("2dStack");
  StoreFactory::openStore(other, "", nullptr);
  EXPECT_TRUE(mapped().view.isEmpty());
  vHandle<Store> store = StoreFactory::openStore(d, "", nullptr);
  EXPECT_EQ(map, mapped().mapFile);
  EXPECT_EQ(mapped().view.get(), store.get());
  EXPECT_NE(mapped().below, store.get());
}

TEST(StoreFactoryCreateFile, OnlyTextTablesShapefilesAndNyxFilesAreMadeByTheirMakers) {
  TestReleaseTree tree;
  {
    // A class registered without the maker of the act is no help to it.
    StandIn ascii("AsciiDiskStore", {nullptr, &openOnShelf, nullptr, nullptr});
    StoreDescription txt = fileIn(tree, "wells.txt");
    expectFatal([&] { StoreFactory::createStore(txt, "", KeyList(), nullptr); }, kCreate.c_str(),
                cannotHandle(path(txt), "txt"));
    EXPECT_TRUE(seen().empty());
  }
  StandIn segy("SegyDiskStore", fileMakers());
  StandIn ascii("AsciiDiskStore", fileMakers());
  StandIn shapes("ShapefileDiskStore", fileMakers());
  StandIn nyx("NyxDiskStore", fileMakers());
  KeyList keys;
  StoreDescription sgy = fileIn(tree, "line.sgy");
  expectFatal([&] { StoreFactory::createStore(sgy, "", keys, nullptr); }, kCreate.c_str(),
              cannotHandle(path(sgy), "sgy"));
  EXPECT_TRUE(seen().empty());

  struct Case {
    char const* name;
    char const* format;
  };
  for (Case c : {Case{"wells.TXT", ""}, Case{"roads.x", "Shapefile"}, Case{"line.cst", ""}}) {
    seen().clear();
    StoreDescription d = fileIn(tree, c.name);
    d.setFileFormat(c.format);
    vHandle<Store> store = StoreFactory::createStore(d, "outlines", keys, nullptr);
    ASSERT_EQ(1u, seen().size()) << c.name;
    EXPECT_EQ("outlines", seen()[0].setName);
    EXPECT_EQ(d, seen()[0].description) << c.name;
  }
}

// Shapefiles only by their exact extensions, seismic by the lower-cased
// one; a ".segy" is left to the extension itself when the store is opened.
TEST(StoreFactoryIdentify, ShapefilesAndSeismicByTheirExtensions) {
  TestReleaseTree tree;
  struct Case {
    char const* file;
    bool identified;
    char const* format;
    char const* storeClass;
  } const cases[] = {{"a.dbf", true, "shapefile", "shapes"},
                     {"a.SHP", false, "", ""},
                     {"c.Dat", true, "nyxdat", "seismic"},
                     {"d.segy", false, "", ""}};
  for (Case const& c : cases) {
    SCOPED_TRACE(c.file);
    StoreDescription d = fileIn(tree, c.file);
    EXPECT_EQ(c.identified, StoreFactory::identifyFileFormat(d, nullptr));
    EXPECT_EQ(c.format, str(d.getFileFormat()));
    EXPECT_EQ(c.storeClass, str(d.getStoreClass()));
  }
  // The tag table: a tag is found in any case, and only whole.
  EXPECT_EQ("SegyDiskStore", str(StoreFactory::getFileStoreClass("SGY")));
  EXPECT_EQ("", str(StoreFactory::getFileStoreClass("segy2")));
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

TEST(StoreFactoryIdentify, TextTablesByTheirFormatDescription) {
  TestReleaseTree tree;
  StoreFactory::AsciiSpecificationFinder saved = StoreFactory::registerAsciiSpecificationFinder(&txfBeside);
  Restore restore([&] { StoreFactory::registerAsciiSpecificationFinder(saved); });
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
