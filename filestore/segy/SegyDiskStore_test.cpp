// The SEG-Y store over golden files written by the test writer: every value
// of every attribute, in each IEEE sample format and byte order, the store's
// questions, its conversions and its failures.

#include "filestore/segy/SegyDiskStore.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "attribute/AttributeDefinitionTable.h"
#include "attribute/AttributeTranslationTable.h"
#include "filestore/segy/SegyTesting.h"
#include "foundation/TestReleaseTree.h"
#include "syslayer/FSTesting.h"

namespace {

using segy_testing::goldenHeader;
using segy_testing::goldenSample;
using segy_testing::SegyWriter;

class SegyStoreTest : public ::testing::Test {
 protected:
  std::string write(SegyWriter const& writer, unsigned int nTraces, std::string const& name = "line.sgy") {
    std::string const path = dir / name;
    fs_testing::writeFile(path, writer.file(nTraces));
    return path;
  }
  vHandle<SegyDiskStore> openFile(std::string const& path) {
    vHandle<SegyDiskStore> store(new SegyDiskStore);
    store->open(vFilename(path.c_str()));
    return store;
  }

  fs_testing::TempDir dir;
};

// Every attribute of the shot format at its place, every trace; ranges and
// lists of every kind are the store suite's.
void expectGoldenShotStore(SegyDiskStore const& store, unsigned int nTraces, unsigned int nSamples) {
  ASSERT_EQ(nTraces, store.getNInstances());
  Attribute trace = store.getAttribute("TRACE");
  ASSERT_EQ(static_cast<int>(nSamples), trace.getLength());
  store.read(trace, 1, nTraces);
  for (unsigned int i = 1; i <= nTraces; ++i)
    for (unsigned int s = 1; s <= nSamples; ++s)
      ASSERT_EQ(goldenSample(i, s), trace.getFloat32Pointer(i)[s - 1]) << i << " " << s;
  std::vector<std::string> const fields = {"SEGY.REEL.COUNT", "FFID",      "CHANNEL",   "SHOT.UNIQUE.ID",
                                           "CMP",             "CMP_NUMBER", "SHOT.RW.X", "SHOT.RW.Y",
                                           "RCVR.RW.X",       "RCVR.RW.Y",  "RCVR.LINE", "RCVR.BIN"};
  for (std::size_t f = 0; f < fields.size(); ++f) {
    SCOPED_TRACE(fields[f]);
    int const offset = segy_testing::shotOffsets()[f];
    Attribute a = store.getAttribute(fields[f].c_str());
    store.read(a, 1, nTraces);
    for (unsigned int i = 1; i <= nTraces; ++i) ASSERT_EQ(goldenHeader(i, offset), a.getInt32(i)) << i;
  }
  Attribute unique = store.getAttribute("RCVR.UNIQUE.ID");
  store.read(unique, 2, 2);
  EXPECT_EQ(goldenHeader(2, 201), unique.getInt32(1)) << "the same bytes as RCVR.BIN";
}

TEST_F(SegyStoreTest, ReadsGoldenFilesOfEachFormatAndByteOrder) {
  struct Case {
    int code;
    bool bigEndian;
  };
  // IBM samples are checked on files that segyio writes; this writer's IBM
  // words come from the converter that reads them.
  for (Case c : {Case{5, true}, Case{6, false}}) {
    SCOPED_TRACE("format " + std::to_string(c.code) + (c.bigEndian ? " big-endian" : " this machine's order"));
    SegyWriter w;
    w.formatCode = c.code;
    w.bigEndian = c.bigEndian;
    w.nSamples = 7;
    vHandle<SegyDiskStore> store = openFile(write(w, 9));
    EXPECT_EQ(c.bigEndian, store->getBinaryHeader()->isByteSwapped());
    expectGoldenShotStore(*store, 9, 7);
  }
}

TEST_F(SegyStoreTest, AnswersWhatItIsAndWhatItHolds) {
  SegyWriter w;
  w.text = "C 1 CLIENT: GOLDEN SEISMIC (TEST) LINE 42";
  std::string const path = write(w, 4, "north_line.SGY");
  vHandle<SegyDiskStore> store = openFile(path);
  EXPECT_EQ(std::string("north_line"), store->getName().c_str());
  EXPECT_EQ(3600 + 4 * 260, store->getLength());
  // One attribute set, named as the store.
  EXPECT_EQ((Store::AttributeSetList{"north_line"}), *store->getAttributeSetList());
  expectFailure([&] { store->openAttributeSet("south"); }, "SegyDiskStore::openAttributeSet",
                "File '" + path + "' does not have AttributeSet named 'south'.");
  // The text header in ASCII, all 3200 bytes.
  vString const text = store->getEBCDICHeaderInASCII();
  ASSERT_EQ(3200u, text.length());
  EXPECT_EQ(w.text, std::string(text.c_str(), w.text.size()));
  EXPECT_EQ(std::string(3200 - w.text.size(), ' '), std::string(text.c_str() + w.text.size()));
}

TEST_F(SegyStoreTest, ConvertsToTheTypeAskedFor) {
  SegyWriter w;
  w.nSamples = 3;
  vHandle<SegyDiskStore> store = openFile(write(w, 3));
  Attribute trace64("TRACE", "", vFLOAT64, 1);
  store->read(trace64, 2, 3);
  ASSERT_EQ(3, trace64.getLength()) << "the store's length";
  EXPECT_EQ(goldenSample(3, 2), trace64.getFloat64Pointer(2)[1]);
  Attribute traceInt("TRACE", "", vINT32, 3);
  store->read(traceInt, 1, 1);
  EXPECT_EQ(1003, traceInt.getInt32Pointer(1)[2]);
  char const* const label = "SegyDiskFile::local_doConversion";
  Attribute cmpText("CMP", "", vSTRING);
  expectFailure([&] { store->read(cmpText, 1, 1); }, label,
                "Cannot convert from Int32 to vSTRING for Attribute CMP.");
}

TEST_F(SegyStoreTest, ConvertsShortFieldsOfAFormatFile) {
  AttributeDefinitionTable::instance().dropTable();
  TestReleaseTree tree;
  tree.writeSystemFile("AttributeDefTable4.txt", segy_testing::definitions());
  tree.writeSystemFile("KelpAttributeTranslations3.txt", segy_testing::kelpTranslations());
  AttributeTranslationTable::instance("Kelp").reload();
  SegyWriter w;
  w.header = [](unsigned int t, SegyWriter const& writer, unsigned char* p) {
    writer.put16(p + 114, static_cast<int16_t>(-static_cast<int>(t)));
    writer.putIeee(p + 120, static_cast<float>(t) / 4.0f);
  };
  for (bool bigEndian : {true, false}) {
    w.bigEndian = bigEndian;
    w.formatCode = bigEndian ? 1 : 5;
    std::string const path = write(w, 3);
    TestReleaseTree::write(dir / "line.syf", "STATIC st trace 115 int2\nSCALE sc trace 121 ieee4\n");
    StoreDescription description{vFilename(path.c_str())};
    SegyDiskStore store;
    store.open(description);
    EXPECT_EQ(dir / "line.syf", std::string(store.getFormatFile().c_str()));
    Attribute a = store.getAttribute("STATIC");
    EXPECT_EQ(vINT16, a.getDataType());
    store.read(a, 1, 3);
    EXPECT_EQ(-3, a.getInt16(3));
    Attribute wide("STATIC", "", vFLOAT64);
    store.read(wide, 1, 3);
    EXPECT_EQ(-2.0, wide.getFloat64(2));
    Attribute scale("SCALE", "", vFLOAT32);
    store.read(scale, 1, 3);
    EXPECT_EQ(0.75f, scale.getFloat32(3));
    Attribute rounded("SCALE", "", vINT32);
    store.read(rounded, 1, 3);
    EXPECT_EQ(1, rounded.getInt32(3)) << "0.75 rounds to 1";
    // Opened again by file name alone: the default shot format.
    store.open(vFilename(path.c_str()));
    EXPECT_TRUE(store.getFormatFile().getFilename().isBlank());
    EXPECT_FALSE(store.hasAttribute("STATIC"));
  }
  AttributeDefinitionTable::instance().dropTable();
}

TEST_F(SegyStoreTest, AFileOfHeadersAloneHoldsNoTraces) {
  SegyWriter w;
  std::string const exact = dir / "empty.sgy";
  fs_testing::writeFile(exact, w.fileHeaders());
  segy_testing::Recording recording;
  EXPECT_EQ(0u, openFile(exact)->getNInstances());
  EXPECT_TRUE(recording.errors().empty());
}

TEST_F(SegyStoreTest, RefusesFilesItCannotRead) {
  char const* const label = "SegyDiskStore::open";
  SegyWriter w;
  w.formatCode = 8;
  std::string const eightBit = write(w, 2);
  SegyDiskStore store;
  expectFailure([&] { store.open(vFilename(eightBit.c_str())); }, label,
                "Can only read IEEE and IBM format files at present.");
  EXPECT_FALSE(store.isOpen());
  w.formatCode = 3;
  std::string const sixteenBit = write(w, 2);
  expectFailure([&] { store.open(vFilename(sixteenBit.c_str())); }, "SegyBinaryHeader::getFormatCode",
                "Unexpected format code 3");
  w.formatCode = 5;
  int const nSamples = w.nSamples;
  w.nSamples = 0;
  fs_testing::writeFile(dir / "nosamples.sgy", w.file(2));
  w.nSamples = nSamples;
  expectFailure([&] { store.open(vFilename((dir / "nosamples.sgy").c_str())); }, label,
                "File " + (dir / "nosamples.sgy") + " has no samples per trace in its binary header.");
  std::string const vlr = dir / "old.sgy";
  fs_testing::writeFile(vlr, "=)=)" + std::string(5000, 'x'));
  expectFailure([&] { store.open(vFilename(vlr.c_str())); }, label, "VLR datafiles not supported yet!");
  std::string const tiny = dir / "tiny.sgy";
  fs_testing::writeFile(tiny, std::string(300, '\x40'));
  expectFailure([&] { store.open(vFilename(tiny.c_str())); }, label,
                "Only read 300 bytes from header of file " + tiny + ".");
  std::string const missing = dir / "missing.sgy";
  try {
    MessageHandling quiet;
    store.open(vFilename(missing.c_str()));
    ADD_FAILURE() << "opened a missing file";
  } catch (UtlExcept const& e) {
    EXPECT_NE(std::string::npos, std::string(e.getReason().c_str()).find(missing)) << e.getReason().c_str();
  }
  EXPECT_FALSE(store.isOpen());
  // After all that, a good file opens.
  w.formatCode = 1;
  store.open(vFilename(write(w, 2).c_str()));
  EXPECT_EQ(2u, store.getNInstances());
}

TEST_F(SegyStoreTest, OpensByDescriptionWithItsFormatFile) {
  SegyWriter w;
  std::string const path = write(w, 2);
  SegyDiskStore store;
  expectFailure([&] { store.open(StoreDescription(vString("kelp:server:host:project:store"))); },
                "SegyDiskStore::open(StoreDescription)", "StoreDescription must contain a flat file.");
  StoreDescription described{vFilename(path.c_str())};
  described.setFormatSpec((dir / "nothere.syf").c_str());
  expectFailure([&] { store.open(described); }, "SegyDiskStore::open(StoreDescription)",
                "Store format spec file '" + (dir / "nothere.syf") + "' doesn't exist.");
  // No spec and nothing beside the file: the shot format.
  store.open(StoreDescription(vFilename(path.c_str())));
  EXPECT_TRUE(store.hasAttribute("FFID"));
}

}  // namespace
