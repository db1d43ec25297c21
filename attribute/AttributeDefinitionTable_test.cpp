#include "attribute/AttributeDefinitionTable.h"

#include <gtest/gtest.h>

#include <string>

#include "attribute/VocabularyTesting.h"

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
  EXPECT_EQ(vFLOAT64, table().getDefinition("Source_x").getDataType());
  EXPECT_EQ(8, table().getNEntries());
  expectFailure([] { table().getDefinition("nothing_here"); }, "AttributeDefinitionTable::getDefinition()",
                "AttributeDefinitionTable::getDefinition() Attribute definition for 'NOTHING_HERE' not found.");
  // A missing file leaves the table empty.
  std::remove((tree.systemFilesDir() + "AttributeDefTable4.txt").c_str());
  expectFatal([] { table().reload(); }, "SystemFileLoader::myOpen()",
              "File AttributeDefTable4.txt was not found in ./ or " + tree.systemFilesDir() + ".");
  EXPECT_FALSE(table().isLoaded());
}

TEST_F(DefinitionTableTest, RecordsNotUnderstoodVanishSilentlyAndALaterDefinitionWins) {
  tree.writeSystemFile("AttributeDefTable4.txt",
                       "NAME DATATYPE LENGTH\n"
                       "TWICE vInt32 1\n"
                       "BAD_TYPE vFloat 1\n"
                       "NOT_HELD vDate 1\n"
                       "AFTER_TYPE vInt32 1\n"
                       "BAD_LENGTH vInt32 two\n"
                       "NEGATIVE vInt32 -4\n"
                       "TOO_LONG vInt32 99999999999\n"
                       "AFTER_LENGTH vFloat32 12\n"
                       "twice vFloat64 4\n"
                       "   spread\n\n  vint64\t\tVariable   lower_case vfloat64 VECTOR\n"
                       "CUT_SHORT vInt32\n");
  EXPECT_EQ("", printed([] { EXPECT_TRUE(table().hasDefinition("AFTER_TYPE")); }));
  for (char const* gone : {"NAME", "BAD_TYPE", "NOT_HELD", "BAD_LENGTH", "NEGATIVE", "TOO_LONG", "CUT_SHORT"})
    EXPECT_FALSE(table().hasDefinition(gone)) << gone;
  EXPECT_EQ(12, table().getDefinition("AFTER_LENGTH").getLength());
  EXPECT_EQ(vFLOAT64, table().getDefinition("TWICE").getDataType());
  // Words, not lines, make a record; the length word is read in any case.
  EXPECT_TRUE(table().getDefinition("SPREAD").isVariableLength());
  EXPECT_EQ(Attribute::VECTOR_LENGTH, table().getDefinition("LOWER_CASE").getLength());
  // Entries from code go under their class.
  table().addDefinition(Attribute("FROM_CODE", "AFTER_TYPE", vINT16, 2));
  EXPECT_FALSE(table().hasDefinition("FROM_CODE"));
  EXPECT_STREQ("FROM_CODE", table().getDefinition("AFTER_TYPE").getName().c_str());
}

TEST_F(DefinitionTableTest, ReloadRereadsAndHandedOutCopiesStay) {
  Attribute const before = table().getDefinition("OFFSET");
  tree.writeSystemFile("AttributeDefTable4.txt", "OFFSET vFloat64 2\n");
  EXPECT_EQ(vFLOAT32, table().getDefinition("OFFSET").getDataType());
  table().reload();
  EXPECT_EQ(vFLOAT64, table().getDefinition("OFFSET").getDataType());
  EXPECT_EQ(vFLOAT32, before.getDataType());
  // An empty table counts as not loaded: the next question loads it again.
  tree.writeSystemFile("AttributeDefTable4.txt", "   \n");
  table().dropTable();
  EXPECT_FALSE(table().hasDefinition("OFFSET"));
  EXPECT_FALSE(table().isLoaded());
  tree.writeSystemFile("AttributeDefTable4.txt", "CDP vInt32 1\n");
  EXPECT_TRUE(table().hasDefinition("CDP"));
}

TEST_F(DefinitionTableTest, PacksAndUnpacksTheSameDefinitions) {
  ASSERT_TRUE(table().hasDefinition("CDP"));
  Packer out;
  table().pack(out);
  // Frame, count, then the entries in class order.
  std::vector<unsigned char> const body = bodyOf(out);
  std::vector<unsigned char> const head = Bytes().frame(9845, 1).int32(8).body();
  ASSERT_GT(body.size(), head.size());
  EXPECT_TRUE(std::equal(head.begin(), head.end(), body.begin()));
  EXPECT_EQ(0x7E, body.back());

  std::map<vUCString, Attribute> const sent = table().getDefinitions();
  table().dropTable();
  table().unpack(*receive(out));
  ASSERT_EQ(sent.size(), table().getDefinitions().size());
  for (auto const& entry : sent)
    EXPECT_TRUE(table().getDefinitions().at(entry.first).compare(entry.second)) << entry.first.c_str();
  // Unpacked definitions count as loaded: the file is not read over them.
  std::remove((tree.systemFilesDir() + "AttributeDefTable4.txt").c_str());
  EXPECT_TRUE(table().hasDefinition("PICKS"));

  // Unpacking adds to what is there; a packed entry wins.
  Packer one;
  table().pack(one);
  table().dropTable();
  table().addDefinition(Attribute("CDP", "CDP", vSTRING, 1));
  table().addDefinition(Attribute("LOCAL", "LOCAL", vINT32, 1));
  table().unpack(*receive(one));
  EXPECT_EQ(9, table().getNEntries());
  EXPECT_EQ(vINT32, table().getDefinition("CDP").getDataType());
}

TEST_F(DefinitionTableTest, AForeignFrameIsRefused) {
  expectFailure([] { table().unpack(*Bytes().frame(9846, 1).int32(0).end().reader()); },
                "AttributeDefinitionTable::unpack()", "AttributeDefinitionTable::unpack() Bad magic number.");
  expectFailure([] { table().unpack(*Bytes().frame(9845, 2).int32(0).end().reader()); },
                "AttributeDefinitionTable::unpack()", "AttributeDefinitionTable::unpack() Bad version number.");
  EXPECT_FALSE(table().isLoaded());
}
