// Format descriptions: numbers, the tags and their faults, writing one
// back, and the built-in formats found by their headers.

#include <gtest/gtest.h>

#include <string>

#include "filestore/ascii/AsciiFormat.h"
#include "filestore/ascii/AsciiTesting.h"
#include "foundation/TestFailure.h"

namespace {

using ascii_testing::scratch;

TEST(AsciiFormat, Numbers) {
  struct Case {
    char const* text;
    bool number;
  } const cases[] = {{" -3.5 ", true}, {"1.2.3", true}, {"1 2", false}, {"   ", false},
                     {"1e5", false},   {"-", false},    {"- 12", true}, {"12 .", true}};
  for (Case const& c : cases) EXPECT_EQ(c.number, AsciiFormat::isNumber(c.text)) << '"' << c.text << '"';
}

TEST(AsciiFormat, TagsFaultsAndWritingBack) {
  ascii_testing::useSourceRelease();
  std::string const spec = scratch("cols.txf",
                                   "<header lines=\"1-2 4-4\"></Header><Unknown thing>\n"
                                   "<SingleLineRecords Length=\"fixed\" COLUMNS=\"1-6 7-14\" formats=\"I32 f32\">\n"
                                   "  CDP depth ...\n</SingleLineRecords>\n");
  AsciiFormat f{vFilename(spec.c_str())};
  // Tags and names in any case; the written form below holds what was read.
  EXPECT_TRUE(f.areRecordsVariableLength());
  EXPECT_EQ(4, f.getLastHeaderLine());
  std::string const back = scratch("back.txf", "");
  f.write(vFilename(back.c_str()));
  EXPECT_EQ("<Header Lines=\"1-2 4-4\"></Header>\n"
            "<SingleLineRecords Length=\"FIXED\" Columns=\"1-6 7-14\" Formats=\"i32 f32 \">CDP DEPTH ...</SingleLineRecords>\n",
            fs_testing::readFile(back));
  AsciiFormat again{vFilename(back.c_str())};
  EXPECT_EQ(f.getColumnsList().size(), again.getColumnsList().size());
  EXPECT_EQ(f.getFormatsList(), again.getFormatsList());

  // Three columns for four attributes, two formats for three: messages, and
  // the defaults.
  std::string const faulty =
      scratch("faulty.txf", "<MultiLineRecords Columns=\"1-2 3-4 5-6\" Formats=\"f64 i64\">A B C D</MultiLineRecords>");
  EXPECT_EQ(4, fs_testing::quietErrors([&] {
              AsciiFormat g{vFilename(faulty.c_str())};
              EXPECT_FALSE(g.hasFixedColumns());
              EXPECT_TRUE(g.getFormatsList().empty());
              EXPECT_EQ(vFLOAT64, g.getAttributeList().front().getDataType());
            }));
  std::string const unknown = scratch("unknown.txf", "<SingleLineRecords Formats=\"i32 q8\">A B</SingleLineRecords>");
  expectFailure([&] { AsciiFormat h{vFilename(unknown.c_str())}; }, "AsciiFormat", "Unknown format.");
  AsciiFormat empty;
  expectFailure([&] { empty.getCMPBasicGrid(); }, "AsciiFormat::getCMPBasicGrid", "Attempt to access empty grid.");
}

TEST(AsciiFormat, BuiltInFormatsByTheirHeaders) {
  ascii_testing::useSourceRelease();
  struct Case {
    char const* text;
    char const* root;
    char const* storeClass;
  } const cases[] = {
      {"PELAGOS HORIZON V1.0\nLINEX 1 9 1\n", "PelagosHorizon2", "horizon"},
      // Anywhere, in a file of another kind too; two markers before one.
      {"PELAGOS MAPDATA V1.0 with size and colour\n", "PelagosShapes", "shapes"},
      {"PELAGOS MAPDATA V1.0\n", "PelagosMapData", "generic"},
      {"1 2 3\n4 5 6\n", "", ""},
  };
  for (Case const& c : cases) {
    vFilename const spec = AsciiFormat::getSpecification(c.text);
    EXPECT_EQ(c.root, std::string(spec.getRoot().c_str())) << c.text;
    if (*c.root) {
      EXPECT_EQ(std::string(AsciiFormat::getDirectory().c_str()) + c.root + ".txf", spec.getFilename().c_str());
      EXPECT_EQ(c.storeClass, std::string(AsciiFormat(spec).getStoreClass().c_str()));
    }
  }
  // Only the first 256 bytes count.
  std::string const late = scratch("late.txt", std::string(300, ' ') + "VoxelGeo XYZ\n");
  EXPECT_TRUE(AsciiFormat::getSpecification(vFilename(late.c_str())).getFilename().isBlank());
  EXPECT_TRUE(AsciiFormat::getSpecification(vFilename("/no/such/file.txt")).getFilename().isBlank());
  // From data: three numbers a line match the first built-in format of three
  // attributes; four are generic, named by the line above.
  AsciiFormat three("some header\n1 2 3\n");
  EXPECT_EQ("PelagosMapData", std::string(three.getFilename().getRoot().c_str()));
  AsciiFormat four("title\nX,Y,DEPTH,COUNT\n1,2,3,4\n");
  EXPECT_EQ(2, four.getLastHeaderLine());
  ASSERT_EQ(4u, four.getAttributeList().size());
  EXPECT_EQ("COUNT", std::string(four.getAttributeList().back().getName().c_str()));
  AsciiFormat unnamed("1 2 3 4 5 6\n");
  EXPECT_EQ("COLUMN_6", std::string(unnamed.getAttributeList().back().getName().c_str()));
}

}  // namespace
