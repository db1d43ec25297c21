// The SEG-Y store over golden files written by the test writer: every value
// of every attribute, in each IEEE sample format and byte order, the store's
// questions, its conversions and its failures, on good and broken disks.

#include "filestore/segy/SegyDiskStore.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <tuple>
#include <vector>

#include "attribute/AttributeDefinitionTable.h"
#include "filestore/segy/SegyTesting.h"
#include "foundation/TestAddressSpaceCap.h"
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
  // IBM samples are checked on files that segyio writes; this writer's IBM
  // words come from the converter that reads them.
  for (bool bigEndian : {true, false}) {
    SegyWriter w;
    w.formatCode = bigEndian ? 5 : 6;
    SCOPED_TRACE("format " + std::to_string(w.formatCode) + (bigEndian ? " big-endian" : " this machine's order"));
    w.bigEndian = bigEndian;
    w.nSamples = 7;
    vHandle<SegyDiskStore> store = openFile(write(w, 9));
    EXPECT_EQ(bigEndian, store->getBinaryHeader()->isByteSwapped());
    expectGoldenShotStore(*store, 9, 7);
  }
}

TEST_F(SegyStoreTest, AnswersWhatItIsAndConvertsToTheTypeAskedFor) {
  SegyWriter w;
  w.text = "C 1 CLIENT: GOLDEN SEISMIC (TEST) LINE 42";
  w.nSamples = 3;
  std::string const path = write(w, 4, "north_line.SGY");
  vHandle<SegyDiskStore> store = openFile(path);
  EXPECT_EQ(std::string("north_line"), store->getName().c_str());
  EXPECT_EQ(3600 + 4 * 252, store->getLength());
  EXPECT_EQ((Store::AttributeSetList{"north_line"}), *store->getAttributeSetList());
  expectFailure([&] { store->openAttributeSet("south"); }, "SegyDiskStore::openAttributeSet",
                "File '" + path + "' does not have AttributeSet named 'south'.");
  EXPECT_EQ(w.text + std::string(3200 - w.text.size(), ' '), std::string(store->getEBCDICHeaderInASCII().c_str()));
  Attribute trace64("TRACE", "", vFLOAT64, 1);
  store->read(trace64, 2, 3);
  ASSERT_EQ(3, trace64.getLength()) << "the store's length";
  EXPECT_EQ(goldenSample(3, 2), trace64.getFloat64Pointer(2)[1]);
  Attribute traceInt("TRACE", "", vINT32, 3);
  store->read(traceInt, 1, 1);
  EXPECT_EQ(1003, traceInt.getInt32Pointer(1)[2]);
  Attribute cmpText("CMP", "", vSTRING);
  expectFailure([&] { store->read(cmpText, 1, 1); }, "SegyDiskFile::local_doConversion",
                "Cannot convert from Int32 to vSTRING for Attribute CMP.");
}

TEST_F(SegyStoreTest, ConvertsShortFieldsOfAFormatFile) {
  TestReleaseTree tree;
  segy_testing::installVocabulary(tree);
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
    SegyDiskStore store;
    store.open(StoreDescription(vFilename(path.c_str())));
    EXPECT_EQ(dir / "line.syf", std::string(store.getFormatFile().c_str()));
    EXPECT_EQ(vINT16, store.getAttribute("STATIC").getDataType());
    // 0.75 read as an Int32 rounds to 1.
    for (auto const& c : {std::make_tuple("STATIC", vINT16, -3.0), std::make_tuple("STATIC", vFLOAT64, -3.0),
                          std::make_tuple("SCALE", vFLOAT32, 0.75), std::make_tuple("SCALE", vINT32, 1.0)}) {
      Attribute a(std::get<0>(c), "", std::get<1>(c));
      store.read(a, 1, 3);
      EXPECT_EQ(std::get<2>(c), a.getValue(3)) << std::get<0>(c) << " as type " << std::get<1>(c);
    }
    // Opened again by file name alone: the default shot format.
    store.open(vFilename(path.c_str()));
    EXPECT_TRUE(store.getFormatFile().getFilename().isBlank());
    EXPECT_FALSE(store.hasAttribute("STATIC"));
  }
  AttributeDefinitionTable::instance().dropTable();
}

TEST_F(SegyStoreTest, RefusesFilesItCannotRead) {
  char const* const label = "SegyDiskStore::open";
  auto file = [](int formatCode, uint16_t nSamples) {
    SegyWriter w;
    w.formatCode = formatCode;
    w.nSamples = nSamples;
    return w.file(2);
  };
  std::string const noSamples = dir / "c.sgy", tiny = dir / "e.sgy", missing = dir / "f.sgy";
  struct Case {
    char const* name;
    std::string bytes;
    char const* label;
    std::string reason;
  } const cases[] = {
      {"a.sgy", file(8, 5), label, "Can only read IEEE and IBM format files at present."},
      {"b.sgy", file(3, 5), "SegyBinaryHeader::getFormatCode", "Unexpected format code 3"},
      {"c.sgy", file(5, 0), label, "File " + noSamples + " has no samples per trace in its binary header."},
      {"d.sgy", "=)=)" + std::string(5000, 'x'), label, "VLR datafiles not supported yet!"},
      {"e.sgy", std::string(300, '\x40'), label, "Only read 300 bytes from header of file " + tiny + "."},
  };
  SegyDiskStore store;
  for (Case const& c : cases) {
    SCOPED_TRACE(c.name);
    fs_testing::writeFile(dir / c.name, c.bytes);
    expectFailure([&] { store.open(vFilename((dir / c.name).c_str())); }, c.label, c.reason);
    EXPECT_FALSE(store.isOpen());
  }
  {
    MessageHandling quiet;
    EXPECT_NE(std::string::npos, fatalText([&] { store.open(vFilename(missing.c_str())); }).find(missing));
  }
  EXPECT_FALSE(store.isOpen());
  expectFailure([&] { store.open(StoreDescription(vString("kelp:server:host:project:store"))); },
                "SegyDiskStore::open(StoreDescription)", "StoreDescription must contain a flat file.");
  std::string const empty = dir / "empty.sgy";
  fs_testing::writeFile(empty, SegyWriter().fileHeaders());
  StoreDescription described{vFilename(empty.c_str())};
  described.setFormatSpec((dir / "nothere.syf").c_str());
  expectFailure([&] { store.open(described); }, "SegyDiskStore::open(StoreDescription)",
                "Store format spec file '" + (dir / "nothere.syf") + "' doesn't exist.");
  // After all that, a file of headers alone opens, holding no traces; with
  // no format file given and none beside it, in the shot format.
  segy_testing::Recording recording;
  store.open(StoreDescription(vFilename(empty.c_str())));
  EXPECT_EQ(0u, store.getNInstances());
  EXPECT_TRUE(recording.errors().empty());
  EXPECT_TRUE(store.hasAttribute("FFID"));
}

// 8 traces of 10 samples (280 bytes each) after the 3600 bytes of headers.
TEST_F(SegyStoreTest, BrokenDisksGiveTheirMessagesAndKeepWholeTraces) {
  SegyWriter w;
  w.nSamples = 10;
  disk_testing::expectTraceFileFaults<SegyDiskStore>(
      {write(w, 8, "faulty.sgy"), "SegyDiskStore", 3600, 280, 10, goldenSample, "CMP",
       [](unsigned int i) { return goldenHeader(i, 20); }, "Failed to read instance 2", "Failed to read instance 4",
       3300, 100});
}

// A file of more than 4 GiB (sparse, so it costs no disk): a read of all
// its traces is more than a 32-bit process can hold, and must be refused as
// such rather than wrap into a small buffer the read overruns.
TEST_F(SegyStoreTest, AReadBeyondTheMachineIsTheStoresOwnError) {
  SegyWriter writer;
  writer.formatCode = 5;
  writer.nSamples = 16000;  // traces of 64240 bytes
  unsigned int const nTraces = 70000;
  std::string const path = write(writer, 1, "huge.sgy");
  // The 64-bit form: a 32-bit build of this test has a 32-bit off_t.
  ASSERT_EQ(0, ::truncate64(path.c_str(), 3600 + nTraces * static_cast<long long>(writer.traceLength())));
  vHandle<SegyDiskStore> store = openFile(path);
  ASSERT_EQ(nTraces, store->getNInstances());
  Attribute trace = store->getAttribute("TRACE");
  if (sizeof(void*) == 4) {
    expectFailure([&] { store->read(trace, 1, 0); }, "RecordBuffer::allocate",
                  "Cannot hold 70000 items of 64240 bytes: more than the 2147483647 bytes this machine can address "
                  "in one block.");
  } else {
#ifdef RONDO_TEST_ADDRESS_SPACE_CAP
    TestAddressSpaceCap cap(64 << 20);
    ASSERT_TRUE(cap.isCapped());
    expectFailure([&] { store->read(trace, 1, 0); }, "RecordBuffer::allocate",
                  "Cannot allocate 4496800000 bytes of records.");
#endif
  }
  // The store is still good for what fits: the first trace and the last,
  // past 4 GiB in the file.
  store->read(trace, std::vector<unsigned int>{nTraces, 1});
  EXPECT_EQ(goldenSample(1, 16000), trace.getFloat32Pointer(2)[15999]);
  EXPECT_EQ(0.0f, trace.getFloat32Pointer(1)[15999]);
}

}  // namespace
