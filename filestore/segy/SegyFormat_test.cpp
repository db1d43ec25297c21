// The format objects: the base, the default shot format and the format
// description files with every message of their grammar.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "attribute/AttributeDefinitionTable.h"
#include "filestore/segy/SegyFormatFile.h"
#include "filestore/segy/SegyTesting.h"
#include "foundation/TestReleaseTree.h"

namespace {

// The base's own knowledge.
class PlainFormat : public SegyFormatBase {};

vHandle<SegyBinaryHeader> headerWith(uint16_t nSamples, uint16_t interval) {
  segy_testing::SegyWriter w;
  w.nSamples = nSamples;
  w.sampleInterval = interval;
  std::string const block = w.fileHeaders().substr(SegyKernels::TEXT_HEADER_LENGTH);
  return vHandle<SegyBinaryHeader>(new SegyBinaryHeader(block.data()));
}

std::vector<std::string> names(std::list<Attribute> const& list) {
  std::vector<std::string> out;
  for (Attribute const& a : list) out.push_back(a.getName().c_str());
  return out;
}

TEST(SegyFormatBase, KnowsTheReelCountTheCmpAndTheSamples) {
  PlainFormat format;
  expectFailure([&] { format.getAttributeList(); }, "SegyFormatBase::getAttributeList",
                "A SegyBinaryHeader is required.");
  format.setBinaryHeader(headerWith(750, 2000));
  std::list<Attribute> const list = format.getAttributeList();
  EXPECT_EQ((std::vector<std::string>{"TRACE", "CMP", "SEGY.REEL.COUNT"}), names(list));
  Attribute const& trace = list.front();
  EXPECT_EQ(vFLOAT32, trace.getDataType());
  EXPECT_EQ(750, trace.getLength());
  EXPECT_EQ(2.0, trace.getSampleRate());
  EXPECT_EQ(4, format.getAttributeOffset("SEGY.REEL.COUNT"));
  EXPECT_EQ(20, format.getAttributeOffset("CMP"));
  expectFailure([&] { format.getSegyType("FFID"); }, "SegyFormatBase::doGetSegyType",
                "Attribute FFID is not in this file.");
}

// --- format description files ---------------------------------------------------------

class SegyFormatFileTest : public ::testing::Test {
 protected:
  // Translation tables live for the process: read this test's again.
  void SetUp() override { segy_testing::installVocabulary(tree); }
  void TearDown() override { AttributeDefinitionTable::instance().dropTable(); }

  static vHandle<SegyFormatFile> withHeader() {
    vHandle<SegyFormatFile> format(new SegyFormatFile);
    format->setBinaryHeader(headerWith(5, 4000));
    return format;
  }
  // A format loaded from text written as name.syf in the working directory.
  vHandle<SegyFormatFile> load(std::string const& text, std::string const& name = "layout") {
    tree.writeWorkFile(name + ".syf", text);
    vHandle<SegyFormatFile> format = withHeader();
    EXPECT_TRUE(format->loadFormat(vFilename((name + ".txt").c_str())));
    return format;
  }
  void expectLoadFailure(std::string const& text, std::string const& reason) {
    tree.writeWorkFile("bad.syf", text);
    vHandle<SegyFormatFile> format = withHeader();
    expectFailure([&] { format->loadFormat(vFilename("bad")); }, "SegyFileFormat::myLoadFormat", reason);
  }

  TestReleaseTree tree;
};

TEST_F(SegyFormatFileTest, ReadsEntriesClassesKeysAndCommentsAndCutsOverlongLines) {
  vHandle<SegyFormatFile> format = load(
      "# a layout of our own\n"
      "\n"
      "   \t \r\n"
      "format kelp\n"
      "STORECLASS Horizons   # trailing comment\n"
      "StoreSubClass picks\n"
      "KEYNAMES FFID CHAN\n"
      "FFID     ffid   TRACE  9    int4   field record number  \n"
      "CHAN     chan   trace  13   int4\n"
      "REEL_TRACE rt   trace  5    int4   reel trace count\n"
      "STATIC   st     trace  99   int2   a static # comment\n"
      "AMP      amp    trace  101  ieee4  amplitude\n"
      "JOBID    job    binary 1    int4   job id, no attribute\n");
  EXPECT_EQ(std::string("kelp"), format->getFormatName().c_str());
  EXPECT_EQ(std::string("HORIZONS"), format->getStoreClass().c_str());
  EXPECT_EQ(std::string("PICKS"), format->getStoreSubClass().c_str());
  // Key names through the Kelp table: FFID is the scheme's FIELD_RECORD,
  // CHAN its CHANNEL.
  std::vector<std::string> keyNames;
  for (auto const& k : format->getKeyNames()) keyNames.push_back(k.c_str());
  EXPECT_EQ((std::vector<std::string>{"FIELD_RECORD", "CHANNEL"}), keyNames);

  SegyFormatSpecs const& specs = format->getSpecs();
  ASSERT_EQ(8u, specs.entries.size()) << "six lines, CMP and TRACE added";
  EXPECT_EQ(std::string("a static"), specs.entries[3].description.c_str());
  EXPECT_EQ(SegyFormatSpecs::BINARY, specs.entries[5].location);
  EXPECT_TRUE(specs.entries[5].attribute.isEmpty()) << "a binary entry makes no attribute";
  EXPECT_EQ(0u, specs.traceEntries.count(vUCString("JOBID")));

  std::list<Attribute> const list = format->getAttributeList();
  EXPECT_EQ((std::vector<std::string>{"FIELD_RECORD", "CHANNEL", "SEGY.REEL.COUNT", "STATIC", "AMP", "CMP",
                                      "TRACE"}),
            names(list));
  // Translated attributes take the defined type; the file's type stays
  // what is read.
  EXPECT_EQ(vINT64, format->getAttributeList().front().getDataType());
  EXPECT_EQ(vINT32, format->getSegyType("FIELD_RECORD"));
  EXPECT_EQ(vINT16, format->getSegyType("STATIC"));
  EXPECT_EQ(98, format->getAttributeOffset("STATIC"));
  expectFailure([&] { format->getSegyType("FFID"); }, "SegyFormatFile::doGetSegyType",
                "Attribute 'FFID' is not defined in format file 'layout.syf'.");
  // An overlong line is cut.
  format = load("LONGNAME ln trace 17 int4 " + std::string(1100, 'd') + "\n", "long");
  EXPECT_EQ(1023u - 26u, format->getSpecs().entries[0].description.length());
  EXPECT_EQ(16, format->getAttributeOffset("LONGNAME"));
}

TEST_F(SegyFormatFileTest, RefusesEachBadLineWithItsNumberTheDornSchemeAndALoadBeforeTheHeader) {
  expectLoadFailure("FORMAT CSV\n", "The FORMAT line (1) must be followed by KELP or DORN, not CSV.");
  expectLoadFailure("\n\nLONELY\n", "Error on line 3: column 1 cannot be blank.");
  expectLoadFailure("A a header 5 int4\n", "Error on line 1: segy location must be binary or trace, not header.");
  expectLoadFailure("A a trace 5x int4\n", "Error on line 1: position must an integer, not 5x.");
  expectLoadFailure("A a trace 5 INT4\n", "Error on line 1: Unknown format 'INT4'.");
  expectLoadFailure("A a trace 5 # int4\n", "Error on line 1: format cannot be blank.");
  // The Dorn scheme, and any load before the binary header.
  tree.writeWorkFile("dorn.syf", "FORMAT DORN\nA a trace 5 int4\n");
  SegyFormatFile format;
  expectFailure([&] { format.loadFormat(vFilename("dorn.syf")); }, "SegyFormatFile::loadFormat",
                "Requires that a BinaryHeader has been supplied first.");
  format.setBinaryHeader(headerWith(5, 4000));
  expectFailure([&] { format.loadFormat(vFilename("dorn.syf")); }, "SegyFormatFile::local_createAttributes",
                "dorn format specifier not impelmented yet.");
}

TEST_F(SegyFormatFileTest, FindsTheFileAsNamedOrAmongTheSystemFiles) {
  EXPECT_FALSE(withHeader()->loadFormat(vFilename("nowhere.syf")));
  tree.writeSystemFile("shipped.syf", "STORECLASS shipped\n");
  vHandle<SegyFormatFile> shipped = withHeader();
  EXPECT_TRUE(shipped->loadFormat(vFilename("shipped.dat")));
  EXPECT_EQ(std::string("SHIPPED"), shipped->getStoreClass().c_str());
  // A local copy wins over the shipped one.
  tree.writeWorkFile("shipped.syf", "STORECLASS local\n");
  vHandle<SegyFormatFile> local = withHeader();
  EXPECT_TRUE(local->loadFormat(vFilename("shipped")));
  EXPECT_EQ(std::string("LOCAL"), local->getStoreClass().c_str());
  EXPECT_EQ((std::vector<std::string>{"CMP", "TRACE"}), names(local->getAttributeList()));
}

}  // namespace
