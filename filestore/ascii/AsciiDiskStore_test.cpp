// Text tables read value by value: written by GDAL's ogr2ogr as CSV, and by
// hand with the quirks of hand-made files; the record sets of shape files,
// fold maps, the store's own files, and bad input with its texts.

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "filestore/ascii/AsciiDataReader.h"
#include "filestore/ascii/AsciiDiskStore.h"
#include "filestore/ascii/AsciiTesting.h"
#include "foundation/TestFailure.h"
#include "foundation/vString.h"
#include "project/StoreFactory.h"
#include "registry/RondoRegistry.h"

namespace {

using ascii_testing::scratch;

std::vector<double> column(AsciiDiskStore const& store, char const* name) {
  Attribute a = store.getAttribute(name);
  store.read(a, 1, store.getNInstances());
  std::vector<double> v;
  a.getValues(v);
  return v;
}

AsciiDiskStore& opened(AsciiDiskStore& store, std::string const& path, std::string const& spec = "") {
  StoreDescription description{vFilename(path.c_str())};
  if (!spec.empty()) description.setFormatSpec(spec.c_str());
  EXPECT_TRUE(store.open(description)) << path;
  return store;
}

TEST(AsciiDiskStore, CsvFromOgrThroughTheStoreFactory) {
  ascii_testing::useSourceRelease();
  registerRondoClasses();
  std::string const dir = scratch("ogr", "");
  std::string const json = scratch("wells.geojson", R"({"type":"FeatureCollection","features":[
{"type":"Feature","properties":{"depth":1250.5,"count":7,"name":"A-1, north"},"geometry":{"type":"Point","coordinates":[431000.25,6520000]}},
{"type":"Feature","properties":{"depth":-980.125,"count":-3,"name":"B 2"},"geometry":{"type":"Point","coordinates":[432500,6521500.5]}}]})");
  std::string const command = "rm -rf " + dir + " && mkdir -p " + dir + " && ogr2ogr -f CSV -lco GEOMETRY=AS_XY " +
                              dir + "/wells.csv " + json + " && mv " + dir + "/wells.csv " + dir + "/wells.txt";
  ASSERT_EQ(0, std::system(command.c_str())) << "GDAL's ogr2ogr is needed: run scripts/install-deps";
  vHandle<Store> store =
      StoreFactory::openStore(StoreDescription(vFilename((dir + "/wells.txt").c_str())), "", nullptr);
  EXPECT_EQ("generic", std::string(store->getClass().c_str()));
  ASSERT_EQ(2u, store->getNInstances());
  auto values = [&](char const* name) {
    Attribute a = store->getAttribute(name);
    store->read(a, 1, 2);
    return std::vector<double>{a.getValue(1), a.getValue(2)};
  };
  EXPECT_EQ((std::vector<double>{6520000, 6521500.5}), values("Y"));
  EXPECT_EQ((std::vector<double>{1250.5, -980.125}), values("DEPTH"));
  EXPECT_EQ((std::vector<double>{7, -3}), values("COUNT"));
  Attribute name = store->getAttribute("NAME");
  EXPECT_EQ(vSTRING, name.getDataType());
  store->read(name, 1, 2);
  EXPECT_EQ("A-1, north|B 2", std::string(name.getString(1).c_str()) + "|" + name.getString(2).c_str());
}

TEST(AsciiDiskStore, HandMadeFilesWithTheirQuirks) {
  ascii_testing::useSourceRelease();
  // A title, the names, CRLF line ends, tabs and commas, blank lines.
  AsciiDiskStore free;
  opened(free, scratch("free.txt", "Survey north\r\nA B C D\r\n1\t2, 3 4\r\n\r\n  5,6,7,8\r\n\n-9 10.5 11 .5\r\n"));
  EXPECT_EQ((std::vector<double>{1, 5, -9}), column(free, "A"));
  EXPECT_EQ((std::vector<double>{4, 8, 0.5}), column(free, "D"));

  // Fixed columns with values that touch, on fixed-length lines.
  std::string const fixedSpec = scratch(
      "fixed.txf", "<Header Lines=\"1-1\"></Header><SingleLineRecords Length=\"FIXED\" Columns=\"1-4 5-10\" "
                   "Formats=\"i32 f64\">CDP DEPTH</SingleLineRecords>");
  AsciiDiskStore fixed;
  opened(fixed, scratch("fixed.dat", "HEAD......\n  12-3.500\n-100  7.25\n"), fixedSpec);
  EXPECT_EQ(vINT32, fixed.getAttribute("CDP").getDataType());
  EXPECT_EQ((std::vector<double>{12, -100}), column(fixed, "CDP"));
  EXPECT_EQ((std::vector<double>{-3.5, 7.25}), column(fixed, "DEPTH"));

  // Records of variable length, and records over several lines.
  AsciiDiskStore variable;
  opened(variable, scratch("variable.dat", "1 2 10 20 30\n3 4\n5 6 70\n"),
         scratch("variable.txf", "<SingleLineRecords>X Y VALUES ...</SingleLineRecords>"));
  EXPECT_EQ(Attribute::VARIABLE_LENGTH, variable.getAttribute("VALUES").getLength());
  EXPECT_EQ((std::vector<double>{10, 20, 30, 70}), column(variable, "VALUES"));
  AsciiDiskStore multi;
  opened(multi, scratch("multi.dat", "1 2\n3 4 5\n6\n"),
         scratch("multi.txf", "<MultiLineRecords>P Q R</MultiLineRecords>"));
  EXPECT_EQ((std::vector<double>{2, 5}), column(multi, "Q"));

  // Records of several lines and of any length, ended by blank lines.
  AsciiDiskStore outlines;
  opened(outlines, scratch("outlines.dat", "1 7\n10 11\n12 13\n\n\n2 8 20\n21\n\n3 9 30\n"),
         scratch("outlines.txf", "<MultiLineRecords>ID N XY ...</MultiLineRecords>"));
  ASSERT_EQ(3u, outlines.getNInstances());
  EXPECT_EQ((std::vector<double>{7, 8, 9}), column(outlines, "N"));
  Attribute xy = outlines.getAttribute("XY");
  outlines.read(xy, 1, 3);
  std::vector<std::vector<double> > points(3);
  for (unsigned int r = 1; r <= 3; ++r)
    for (int p = 1; p <= xy.getLength(r); ++p) points[r - 1].push_back(xy.getValue(r, p));
  EXPECT_EQ((std::vector<std::vector<double> >{{10, 11, 12, 13}, {20, 21}, {30}}), points);

  // Text among the numbers: read as 0, counted and reported once.
  std::string const text = "1 2\n3 x\ny z\n";
  AsciiFormat format{vFilename(scratch("two.txf", "<SingleLineRecords>U V</SingleLineRecords>").c_str())};
  format.setCheckingNumbers(true);
  AsciiCollator collator(text.c_str(), static_cast<long long>(text.size()), format);
  AsciiDataReader reader(collator, format);
  Attribute v("V", "", vFLOAT64);
  EXPECT_EQ(1, fs_testing::quietErrors([&] {
              EXPECT_EQ(3u, reader.getNumberOfRecords(1));
              reader.read(1, v, {1, 2, 3});
            }));
  std::vector<double> got;
  v.getValues(got);
  EXPECT_EQ((std::vector<double>{2, 0, 0}), got);
}

TEST(AsciiDiskStore, RecordSetsAndFoldMaps) {
  ascii_testing::useSourceRelease();
  AsciiDiskStore shapes;
  opened(shapes, scratch("shapes.txt", "outline size 2 colour red\nlake\n1 2 0\n3 4 0\n5 6 1\nisland\n7 8 9\n"));
  EXPECT_EQ("shapes", std::string(shapes.getClass().c_str()));
  EXPECT_EQ("red", std::string(shapes.findProperty(vUCString("COLOR"))->getString().c_str()));
  Store::AttributeSetList sets;
  shapes.getAttributeSetList(sets);
  EXPECT_EQ((std::vector<std::string>{"lake", "island"}), (std::vector<std::string>{sets.front().c_str(), sets.back().c_str()}));
  EXPECT_EQ((std::vector<double>{1, 3, 5}), column(shapes, "X"));
  shapes.openAttributeSet("island");
  EXPECT_EQ((std::vector<double>{8}), column(shapes, "Y"));
  expectFailure([&] { shapes.openAttributeSet("sea"); }, "AsciiDiskStore::openAttributeSet",
                "File '" + scratch("shapes.txt", "") + "' does not have AttributeSet name 'sea'.");

  AsciiDiskStore fold;
  opened(fold, scratch("fold.txt",
                       "description: fold of the north survey\ndatatype: fold first_inline: 100 inline_increment: 2\n"
                       "num_inlines: 2 first_crossline: 10 crossline_increment: 1 num_crosslines: 3\n"
                       "inline_interval: 25 crossline_interval: 12.5 x_origin: 1000 y_origin: 2000 angle: 90\n"
                       "4 5 6\n7\n8 9\n"));
  EXPECT_EQ("horizon", std::string(fold.getClass().c_str()));
  EXPECT_EQ((std::vector<double>{4, 5, 6, 7, 8, 9}), column(fold, "CMP.FOLD"));
  EXPECT_EQ((std::vector<double>{100, 100, 100, 102, 102, 102}), column(fold, "INLINE"));
  EXPECT_EQ((std::vector<double>{10, 11, 12, 10, 11, 12}), column(fold, "CROSSLINE"));
  EXPECT_NEAR(M_PI / 2, fold.findProperty(vUCString("ROTATION_ANGLE"))->getFloat64(), 1e-12);
}

TEST(AsciiDiskStore, HorizonWrittenWithItsHeaderAndReadBack) {
  ascii_testing::useSourceRelease();
  std::string const file = scratch("top.txt", "");
  {
    AsciiDiskStore store;
    StoreDescription description{vFilename(file.c_str())};
    description.setFormatSpec(AsciiFormat::getDirectory() + "PelagosHorizon2.txf");
    store.create(description);
    store.addInstances(2);
    for (Property const& p : {Property("FIRST_INLINE", 10), Property("INLINE_INCREMENT", 2), Property("NUM_INLINES", 5),
                              Property("INLINE_INTERVAL", 12.5), Property("FIRST_CROSSLINE", 100),
                              Property("CROSSLINE_INCREMENT", 1), Property("NUM_CROSSLINES", 3),
                              Property("CROSSLINE_INTERVAL", 25.0), Property("HORIZONNAME", "Top_Chalk")})
      store.addProperty(p);
    double const il[] = {10, 12}, xl[] = {100, 102}, z[] = {1500.25, -3};
    Attribute a("INLINE", "", vFLOAT64), b("CROSSLINE", "", vFLOAT64), c("Z", "", vFLOAT64);
    a.copyData(2, il);
    b.copyData(2, xl);
    c.copyData(2, z);
    for (Attribute* x : {&a, &b, &c}) store.write(*x, 1, 2);
  }
  EXPECT_EQ("PELAGOS HORIZON V1.0\nLINEX 100 102 1\nLINEY 10 18 2\nSTEPX 25\nSTEPY 25\nORIGIN 0 0\nDOMAIN time\n"
            "NUMSURFACES 1         \nSURFACE Top_Chalk\nNUMATTR 5\nATTRIBUTE INLINE\nATTRIBUTE CROSSLINE\n"
            "ATTRIBUTE X\nATTRIBUTE Y\nATTRIBUTE Z\n10 100 0 0 1500.25\n12 102 0 0 -3\n",
            fs_testing::readFile(file));
  AsciiDiskStore back;
  opened(back, file);
  EXPECT_EQ("horizon", std::string(back.getClass().c_str()));
  EXPECT_EQ("top_chalk", std::string(back.getAttributeSetName().c_str()));
  EXPECT_EQ((std::vector<double>{1500.25, -3}), column(back, "Z"));
  // The header read back gives the grid it was written from.
  auto property = [&back](char const* name) { return back.findProperty(vUCString(name)); };
  EXPECT_EQ(5, property("NUM_INLINES")->getInt32());
  EXPECT_EQ(12.5, property("INLINE_INTERVAL")->getFloat64());
  EXPECT_EQ("Top_Chalk", std::string(property("HORIZONNAME")->getString().c_str()));
  EXPECT_EQ("time", std::string(property("DOMAIN")->getString().c_str()));

  // A hand-made header with an origin and a depth domain.
  AsciiDiskStore made;
  opened(made, scratch("made.dat", "PELAGOS HORIZON V1.0\nLINEX 200 240 4\nLINEY 7 9 1\nSTEPX 50\nSTEPY 12.5\n"
                                   "ORIGIN 4500.5 -20\nDOMAIN depth\nNUMSURFACES 1\nSURFACE Base\nNUMATTR 1\n"
                                   "ATTRIBUTE Z\n7 200 0 0 1\nSURFACE Top\n8 204 0 0 2\n"));
  EXPECT_EQ(11, made.findProperty(vUCString("NUM_CROSSLINES"))->getInt32());
  EXPECT_EQ(-20.0, made.findProperty(vUCString("Y_REALWORLD_ORIGIN"))->getFloat64());
  EXPECT_EQ("depth", std::string(made.findProperty(vUCString("DOMAIN"))->getString().c_str()));
  made.openAttributeSet("top");
  EXPECT_EQ("Top", std::string(made.findProperty(vUCString("HORIZONNAME"))->getString().c_str()));
  EXPECT_EQ((std::vector<double>{2}), column(made, "Z"));

  // Inlines counted down by a step up give no grid, and say so.
  std::string const reversed =
      scratch("reversed.dat", "PELAGOS HORIZON V1.0\nLINEX 200 240 4\nLINEY 9 7 1\nSTEPX 50\nSTEPY 12.5\nORIGIN 0 0\n"
                              "DOMAIN depth\nNUMSURFACES 1\nSURFACE Base\nNUMATTR 1\nATTRIBUTE Z\n7 200 0 0 1\n");
  AsciiDiskStore down;
  ::testing::internal::CaptureStderr();
  opened(down, reversed);
  std::string const said = ::testing::internal::GetCapturedStderr();
  EXPECT_NE(std::string::npos, said.find("The horizon header of " + reversed +
                                         " gives no grid: LINEX 200 240 4 and LINEY 9 7 1 must each be a first "
                                         "line, a last line and a nonzero increment that leads from the first to "
                                         "the last."))
      << said;
  EXPECT_EQ(down.endProperty(), down.findProperty(vUCString("NUM_INLINES")));
  EXPECT_EQ((std::vector<double>{1}), column(down, "Z"));
}

TEST(AsciiDiskStore, WrittenFilesAndBadInput) {
  ascii_testing::useSourceRelease();
  std::string const file = scratch("written.txt", "");
  {
    AsciiDiskStore store;
    store.create(vFilename(file.c_str()));
    for (char const* name : {"ALPHA", "BETA", "GAMMA", "DELTA"}) store.addAttribute(Attribute(name, "", vFLOAT64));
    store.addAttribute(Attribute("LABEL", "", vSTRING));
    store.addInstances(2);
    Attribute label("LABEL", "", vSTRING);
    label.resize(2);
    label.setString(1, vString("two words"));
    label.setString(2, vString("x"));
    store.write(label, 1, 2);
    Attribute a("ALPHA", "", vFLOAT64);
    double const alpha[] = {0.1, -2.5e-7};
    a.copyData(2, alpha);
    EXPECT_EQ(1, fs_testing::quietErrors([&] { store.write(a, 1, 1); }));
    store.write(a, 1, 2);
    expectFailure([&] { store.write(Attribute("OMEGA", "", vINT32), 1, 2); }, "AsciiDiskStore::write",
                  "Attribute OMEGA is not in the store.");
  }
  EXPECT_EQ("ALPHA BETA GAMMA DELTA LABEL\n0.10000000000000001 0 0 0 \"two words\"\n-2.4999999999999999e-07 0 0 0 x\n",
            fs_testing::readFile(file));
  AsciiDiskStore back;
  opened(back, file);
  EXPECT_EQ((std::vector<double>{0.1, -2.5e-7}), column(back, "ALPHA"));
  Attribute text = back.getAttribute("LABEL");
  back.read(text, std::vector<unsigned int>{2, 1});
  EXPECT_EQ("x|two words", std::string(text.getString(1).c_str()) + "|" + text.getString(2).c_str());
  Attribute a = back.getAttribute("ALPHA");
  expectFailure([&] { back.read(a, 2, 3); }, "AsciiDiskStore::read", "Instance range 2,3 is bad, NInstances is 2");

  // Too few items on a line, a line too short for its columns: the open
  // fails, the store stays closed.
  AsciiDiskStore few;
  std::string const fewFile = scratch("few.txt", "A B C D\n1 2 3 4\n5 6 7\n");
  expectFailure([&] { few.open(vFilename(fewFile.c_str())); }, "AsciiDataReader",
                "Line 3 has 3 items, but the format needs 4.");
  EXPECT_FALSE(few.isOpen());
  AsciiDiskStore shortLine;
  StoreDescription shortFile{vFilename(scratch("short.dat", "    12  3.5\n  7\n").c_str())};
  shortFile.setFormatSpec(scratch("short.txf", "<SingleLineRecords Columns=\"1-4 5-11\">P Q</SingleLineRecords>").c_str());
  expectFailure([&] { shortLine.open(shortFile); }, "AsciiDataReader",
                "Line 2 has 3 characters, but the format reads columns 5-11.");
  // A table with a NUL byte in its first block is not text: refused at
  // open rather than read as empty.
  std::string const binary = scratch("nul.txt", std::string("A B\n1 2\n\0\n", 10));
  AsciiDiskStore nul;
  expectFailure([&] { opened(nul, binary); }, "AsciiDiskStore::open",
                "'" + binary + "' is not a text table: its first 4096 bytes hold a NUL byte.");
  EXPECT_FALSE(nul.isOpen());
  AsciiDiskStore missing;
  EXPECT_FALSE(missing.open(vFilename("/no/such/table.txt")));
  EXPECT_FALSE(missing.isOpen());
  expectFailure([&] { missing.open(StoreDescription(vFilename("/no/such/table.txt")) = StoreDescription()); },
                "AsciiDiskStore::open(StoreDescription)", "StoreDescription must contain a flat file.");
}

}  // namespace
