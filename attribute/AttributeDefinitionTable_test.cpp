#include "attribute/AttributeDefinitionTable.h"

#include <gtest/gtest.h>

#include <string>

#include "attribute/AttributeDefinition.h"
#include "attribute/VocabularyTesting.h"
#include "foundation/Packer.h"
#include "foundation/UtlExcept.h"

using attribute_testing::bodyOf;
using attribute_testing::Bytes;
using attribute_testing::expectFailure;
using attribute_testing::receive;
using vocabulary_testing::printed;
using vocabulary_testing::VocabularyTest;

namespace {

AttributeDefinitionTable& table() { return AttributeDefinitionTable::instance(); }

typedef VocabularyTest DefinitionTableTest;

}  // namespace

TEST_F(DefinitionTableTest, LoadsOnTheFirstQuestionFromTheSystemFiles) {
  EXPECT_FALSE(table().isLoaded());
  EXPECT_TRUE(table().hasDefinition("CDP"));
  EXPECT_EQ(8, table().getNEntries());

  Attribute const cdp = table().getDefinition("CDP");
  EXPECT_EQ(vINT32, cdp.getDataType());

  // Names are found in any case; an absent class throws with its name.
  EXPECT_EQ(vFLOAT64, table().getDefinition("Source_x").getDataType());
  EXPECT_FALSE(table().hasDefinition("SOURCE_XY"));
  expectFailure([] { table().getDefinition("nothing_here"); }, "AttributeDefinitionTable::getDefinition()",
                "AttributeDefinitionTable::getDefinition() Attribute definition for 'NOTHING_HERE' not found.");
}

TEST_F(DefinitionTableTest, AMissingFileIsFatalAndLeavesTheTableEmpty) {
  std::remove((tree.systemFilesDir() + "AttributeDefTable4.txt").c_str());
  std::string const reason = "File AttributeDefTable4.txt was not found in ./ or " + tree.systemFilesDir() + ".";
  expectFatal([] { table().hasDefinition("CDP"); }, "SystemFileLoader::myOpen()", reason);
  expectFatal([] { table().reload(); }, "SystemFileLoader::myOpen()", reason);
  EXPECT_FALSE(table().isLoaded());
}

TEST_F(DefinitionTableTest, AFileInTheWorkingDirectoryWins) {
  tree.writeWorkFile("AttributeDefTable4.txt", "LOCAL_ONLY vFloat64 3\n");
  EXPECT_TRUE(table().hasDefinition("LOCAL_ONLY"));
  EXPECT_FALSE(table().hasDefinition("CDP"));
}

TEST_F(DefinitionTableTest, RecordsNotUnderstoodVanishSilently) {
  tree.writeSystemFile("AttributeDefTable4.txt",
                       "NAME DATATYPE LENGTH\n"
                       "BAD_TYPE vFloat 1\n"
                       "NOT_HELD vDate 1\n"
                       "AFTER_TYPE vInt32 1\n"
                       "BAD_LENGTH vInt32 two\n"
                       "NEGATIVE vInt32 -4\n"
                       "TOO_LONG vInt32 99999999999\n"
                       "AFTER_LENGTH vFloat32 12\n"
                       "   spread\n\n  vint64\t\tVariable   lower_case vfloat64 VECTOR\n"
                       "CUT_SHORT vInt32\n");
  std::string const out = printed([] { EXPECT_TRUE(table().hasDefinition("AFTER_TYPE")); });
  EXPECT_EQ("", out);
  for (char const* gone : {"NAME", "BAD_TYPE", "NOT_HELD", "BAD_LENGTH", "NEGATIVE", "TOO_LONG", "CUT_SHORT"})
    EXPECT_FALSE(table().hasDefinition(gone)) << gone;
  EXPECT_EQ(12, table().getDefinition("AFTER_LENGTH").getLength());
  // Words, not lines, make a record; the length word is read in any case.
  EXPECT_TRUE(table().getDefinition("SPREAD").isVariableLength());
  EXPECT_EQ(Attribute::VECTOR_LENGTH, table().getDefinition("LOWER_CASE").getLength());
}

TEST_F(DefinitionTableTest, ALaterDefinitionOfAClassWins) {
  tree.writeSystemFile("AttributeDefTable4.txt", "TWICE vInt32 1\nOTHER vInt32 1\ntwice vFloat64 4\n");
  EXPECT_EQ(vFLOAT64, table().getDefinition("TWICE").getDataType());

  table().addDefinition(Attribute("OTHER", "OTHER", vSTRING, 1));
  table().addDefinition(Attribute("FROM_CODE", "CODE_CLASS", vINT16, 2));
  EXPECT_EQ(vSTRING, table().getDefinition("OTHER").getDataType());
  // Entries go under their class.
  EXPECT_FALSE(table().hasDefinition("FROM_CODE"));
  EXPECT_STREQ("FROM_CODE", table().getDefinition("CODE_CLASS").getName().c_str());
}

TEST_F(DefinitionTableTest, ReloadRereadsAndHandedOutCopiesStay) {
  Attribute const before = table().getDefinition("OFFSET");
  tree.writeSystemFile("AttributeDefTable4.txt", "OFFSET vFloat64 2\n");
  EXPECT_EQ(vFLOAT32, table().getDefinition("OFFSET").getDataType());
  table().reload();
  EXPECT_EQ(vFLOAT64, table().getDefinition("OFFSET").getDataType());
  EXPECT_EQ(vFLOAT32, before.getDataType());

  table().dropTable();
  // An empty table counts as not loaded: the next question loads it again.
  EXPECT_EQ(2, table().getDefinition("OFFSET").getLength());
}

TEST_F(DefinitionTableTest, AnEmptyFileLeavesTheTableUnloaded) {
  tree.writeSystemFile("AttributeDefTable4.txt", "   \n");
  EXPECT_FALSE(table().hasDefinition("CDP"));
  EXPECT_FALSE(table().isLoaded());
  tree.writeSystemFile("AttributeDefTable4.txt", "CDP vInt32 1\n");
  EXPECT_TRUE(table().hasDefinition("CDP"));
}

TEST_F(DefinitionTableTest, AttributeDefinitionSetsLengthOnlyWhenAskedAndAlwaysTheTimes) {
  EXPECT_EQ(1, AttributeDefinition::getDefinition("SOURCE_X", 0, 0.0, 0.0).getLength());

  Attribute const set = AttributeDefinition::getDefinition("SAMPLES", 7, 0.5, 1.0);
  EXPECT_EQ(7, set.getLength());
  EXPECT_EQ(1.0, set.getFirstTime());

  Attribute const variable = AttributeDefinition::getDefinition("PICKS", 0, 2.0, -4.0);
  EXPECT_TRUE(variable.isVariableLength());
  EXPECT_EQ(-4.0, variable.getFirstTime());
  // A scalar keeps its length of 1: another is refused by the attribute.
  expectFailure([] { AttributeDefinition::getDefinition("SOURCE_X", 7, 0.5, 1.0); }, "Attribute::setLength",
                "Cannot setLength of non vector Attributes, SOURCE_X is not a vector type.");
  // The table keeps its own definition.
  EXPECT_EQ(0.0, table().getDefinition("SAMPLES").getSampleRate());
}

TEST_F(DefinitionTableTest, PacksAndUnpacksTheSameDefinitions) {
  ASSERT_TRUE(table().hasDefinition("CDP"));
  Packer out;
  table().pack(out);
  std::vector<unsigned char> const body = bodyOf(out);

  // Frame, count, then the entries in class order.
  Bytes expected;
  expected.frame(9845, 1).int32(8);
  std::vector<unsigned char> const head = expected.body();
  ASSERT_GT(body.size(), head.size());
  EXPECT_TRUE(std::equal(head.begin(), head.end(), body.begin()));
  EXPECT_EQ(0x7E, body.back());

  std::map<vUCString, Attribute> const sent = table().getDefinitions();
  table().dropTable();
  std::unique_ptr<Packer> in = receive(out);
  table().unpack(*in);
  ASSERT_EQ(sent.size(), table().getDefinitions().size());
  for (auto const& entry : sent) {
    auto const found = table().getDefinitions().find(entry.first);
    ASSERT_NE(table().getDefinitions().end(), found) << entry.first.c_str();
    EXPECT_TRUE(found->second.compare(entry.second)) << entry.first.c_str();
    EXPECT_EQ(entry.second.getLength(), found->second.getLength());
  }
  // Unpacked definitions count as loaded: the file is not read over them.
  std::remove((tree.systemFilesDir() + "AttributeDefTable4.txt").c_str());
  EXPECT_TRUE(table().hasDefinition("PICKS"));
}

TEST_F(DefinitionTableTest, UnpackAddsToWhatIsThere) {
  table().addDefinition(Attribute("KEPT", "KEPT", vINT32, 1));
  table().addDefinition(Attribute("CDP", "CDP", vSTRING, 1));
  Packer out;
  AttributeDefinitionTable::instance().pack(out);
  table().dropTable();
  table().addDefinition(Attribute("CDP", "CDP", vFLOAT64, 1));
  table().addDefinition(Attribute("LOCAL", "LOCAL", vINT32, 1));
  std::unique_ptr<Packer> in = receive(out);
  table().unpack(*in);
  EXPECT_EQ(3, table().getNEntries());
  EXPECT_EQ(vSTRING, table().getDefinition("CDP").getDataType());
  EXPECT_TRUE(table().hasDefinition("LOCAL"));
}

TEST_F(DefinitionTableTest, AForeignFrameIsRefused) {
  Bytes magic;
  magic.frame(9846, 1).int32(0).end();
  expectFailure([&] { table().unpack(*magic.reader()); }, "AttributeDefinitionTable::unpack()",
                "AttributeDefinitionTable::unpack() Bad magic number.");
  Bytes version;
  version.frame(9845, 2).int32(0).end();
  expectFailure([&] { table().unpack(*version.reader()); }, "AttributeDefinitionTable::unpack()",
                "AttributeDefinitionTable::unpack() Bad version number.");
  EXPECT_FALSE(table().isLoaded());

  // A table of nothing is a valid message.
  Bytes none;
  none.frame(9845, 1).int32(0).end();
  table().unpack(*none.reader());
  EXPECT_EQ(0, table().getNEntries());
}
