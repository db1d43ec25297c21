// The Nyx store over "cst", "dat" and tape files of the Python fixture, in
// both byte orders and every sample format, and over "cst" files it makes.

#include "filestore/nyx/NyxDiskStore.h"

#include <gtest/gtest.h>

#include <sstream>

#include "filestore/nyx/NyxTesting.h"
#include "syslayer/FSTesting.h"

using fs_testing::expectFailure;
using namespace nyx_testing;

namespace {

void expectTraces(NyxDiskStore const& store, int format, unsigned int first, unsigned int last, bool tapes = false) {
  Attribute trace("TRACE", "", vFLOAT32), cmps("CMP", "", vINT32), depth("WDEPTH", "", vFLOAT64),
      word("WORD25", "", vINT32);
  for (Attribute* a : {&trace, &cmps, &depth, &word}) store.read(*a, first, last);
  if (tapes) return;
  ASSERT_EQ(5, trace.getLength());
  ASSERT_EQ(last - first + 1, trace.getNInstances());
  for (unsigned int i = first; i <= last; ++i) {
    unsigned int const row = i - first + 1;
    for (int s = 0; s < 5; ++s) ASSERT_EQ(sample(format, i, s), trace.getFloat32Pointer(row)[s]) << i << ":" << s;
    EXPECT_EQ(cmp(i), cmps.getInt32(row));
    EXPECT_EQ(50.5 + i, depth.getFloat64(row));
    EXPECT_EQ(250000 + static_cast<int>(i), word.getInt32(row));
  }
}

}  // namespace

TEST(NyxDiskStore, CstAndDatFilesInBothOrdersAndEveryFormat) {
  fs_testing::TempDir dir;
  for (char const* kind : {"cst", "dat"})
    for (char const* order : {"<", ">"})
      for (int format : {1, 2, 3, 5}) {
        // Block files share the sample conversions of "cst" files: one format each.
        if (kind[0] == 'd' && format != 5) continue;
        SCOPED_TRACE(std::string(kind) + order + std::to_string(format));
        std::string const path = dir / (std::string("line.") + (kind[0] == 'd' ? "DAT" : "cst"));
        writeFixture(kind, path, order, format);
        NyxDiskStore store;
        store.open(vFilename(path.c_str()));
        EXPECT_EQ(order[0] == '>', store.isByteSwapped());
        ASSERT_EQ(12u, store.getNInstances());
        EXPECT_EQ(format, store.getRecord().dataFormat);
        expectTraces(store, format, 1, 12);
      }
}

// A class in the description names the subclass, with a message; the class
// itself or none leaves "nyxdisk".
TEST(NyxDiskStore, SubclassOverriddenByTheDescription) {
  fs_testing::TempDir dir;
  std::string const path = dir / "s.cst";
  writeFixture("cst", path, "<", 5);
  for (char const* given : {"2dstack", "seismic"}) {
    StoreDescription description{vFilename(path.c_str())};
    description.setStoreClass(given);
    NyxDiskStore store;
    ::testing::internal::CaptureStderr();
    store.open(description);
    std::string const said = ::testing::internal::GetCapturedStderr();
    bool const overridden = std::string(given) == "2dstack";
    EXPECT_EQ(vLCString(overridden ? given : "nyxdisk"), store.getSubClass()) << given;
    EXPECT_EQ(overridden, said.find("Overriding subclass from 'nyxdisk' to '2dstack'") != std::string::npos) << said;
    store.close();
    store.open(vFilename(path.c_str()));
    EXPECT_EQ(vLCString("nyxdisk"), store.getSubClass());
    store.close();
  }
}

TEST(NyxDiskStore, RecordPrintsItsFields) {
  fs_testing::TempDir dir;
  std::string const path = dir / "r.cst";
  writeFixture("cst", path, ">", 1, "3 10");
  NyxDiskStore store;
  store.open(vFilename(path.c_str()));
  std::ostringstream out;
  out << store.getRecord();
  EXPECT_EQ(
      "File Format        : 1\nData Format        : 1\nTrace Type         : 1\nN SamplesPerTrace  : 10\n"
      "Int Trace Length W : 74\nInt Trace Length B : 296\nExt Trace Length W : 69\nExt Trace Length B : 276\n"
      "Sample Rate        : 4.000000\nExt Record Length B: 276\nPhysical Rec Len B : 276\nnInstances         : 3\n"
      "OwnData            : 0\n",
      out.str());
}

// "T=a,b": two tapes in order, 30 bytes dropped; forward only.
TEST(NyxDiskStore, TapeSetsReadForwardOnly) {
  fs_testing::TempDir dir;
  writeFixture("tape", dir / "t", "<", 3);
  {
    NyxDiskStore store;
    ::testing::internal::CaptureStdout();
    store.open(vFilename(("T=" + (dir / "t1.tap") + "," + (dir / "t2.tap")).c_str()));
    expectTraces(store, 3, 1, 7, true);
    Attribute trace("TRACE", "", vFLOAT32);
    expectFailure([&] { store.read(trace, 3, 4); }, "NyxDiskStore::read",
                  "Only sequential reading is supported by tapes (3 != 8)");
    expectFailure([&] { store.read(trace, std::vector<unsigned int>{8}); }, "NyxDiskStore::read",
                  "Tape reading via instance list is not supported!");
    store.read(trace, 8, 12);
    EXPECT_EQ(sample(3, 12, 4), trace.getFloat32Pointer(5)[4]);
    expectFailure([&] { store.read(trace, 13, 13); }, "NyxDiskStore::read",
                  "Requesting data after hitting the end-of-tape!");
    expectFailure([&] { store.generateIndexFile(); }, "NyxDiskStore::generateIndexFile",
                  "Cannot generate an index file for tapes!");
    ::testing::internal::GetCapturedStdout();
  }
  NyxDiskStore late;
  ::testing::internal::CaptureStdout();
  late.open(vFilename(("T " + (dir / "t1.tap") + ":" + (dir / "t2.tap")).c_str()));
  Attribute trace("TRACE", "", vFLOAT32);
  expectFailure([&] { late.read(trace, 2, 2); }, "NyxDiskStore::read",
                "The first read must be from instance 1 ... not 2!");
  ::testing::internal::GetCapturedStdout();
  EXPECT_TRUE(NyxDiskStore::isTapeName("Tape=x"));
  EXPECT_FALSE(NyxDiskStore::isTapeName("tapex=y"));
}

TEST(NyxDiskStore, MadeCstFilesReadBack) {
  fs_testing::TempDir dir;
  for (DataType type : {vFLOAT32, vINT16}) {
    std::string const path = dir / "made.cst";
    {
      NyxDiskStore store;
      store.create(vFilename(path.c_str()));
      EXPECT_TRUE(store.isCreating());
      Attribute trace("TRACE", "", type, 3, 2.0), cmps("CMP", "", vINT32), elev("ELEV", "", vFLOAT64);
      for (Attribute const& a : {cmps, trace, elev}) store.addAttribute(a);
      expectFailure([&] { store.addAttribute(cmps); }, "NyxDiskStore::addAttribute",
                    "Already added the attribute CMP!");
      expectFailure([&] { store.addAttribute(Attribute("OFFSET", "", vFLOAT32)); }, "NyxDiskStore::addAttribute",
                    "The format of attribute OFFSET is incorrect for this type of disk store!");
      trace.resize(4);
      for (unsigned int i = 1; i <= 4; ++i)
        for (int s = 0; s < 3; ++s) {
          if (type == vFLOAT32) trace.getFloat32Pointer(i)[s] = 1000.0f * i + s;
          else trace.getInt16Pointer(i)[s] = static_cast<short>(1000 * i + s);
        }
      int const cmpValues[] = {7, 8};
      cmps.copyData(2, cmpValues);
      store.write(trace, 1, 4);
      store.write(cmps, 3, 4);
      expectFailure([&] { store.write(cmps, 4, 5); }, "NyxDiskStore::write",
                    "Invalid instance range (4:5) for the write of CMP ... we only support 1:4!");
      Attribute wrong("CMP", "", vINT64);
      wrong.resize(1);
      expectFailure([&] { store.write(wrong, 1, 1); }, "NyxDiskStore::write",
                    "Expected the datatype of CMP to be vINT32, not vINT64!");
      store.close();
    }
    NyxDiskStore store;
    store.open(vFilename(path.c_str()));
    ASSERT_EQ(4u, store.getNInstances());
    EXPECT_EQ(type == vFLOAT32 ? 5 : 1, store.getRecord().dataFormat);
    Attribute trace("TRACE", "", vFLOAT32), cmps("CMP", "", vINT32);
    store.read(trace, 1, 4);
    store.read(cmps, 1, 4);
    EXPECT_EQ(2.0, trace.getSampleRate());
    EXPECT_EQ(4002.0f, trace.getFloat32Pointer(4)[2]);
    EXPECT_EQ(1001.0f, trace.getFloat32Pointer(1)[1]);
    EXPECT_EQ(0, cmps.getInt32(2));
    EXPECT_EQ(8, cmps.getInt32(4));
    Attribute more("CMP", "", vINT32);
    expectFailure([&] { store.write(more, 1, 1); }, "NyxDiskStore::write", "A Nyx fisk file has not created yet!");
  }
}

TEST(NyxDiskStore, BadFilesAndNames) {
  fs_testing::TempDir dir;
  std::string const path = dir / "bad.cst";
  NyxDiskStore store;
  auto open = [&] { store.open(vFilename(path.c_str())); };
  expectFailure(open, "NyxDiskStore::open", "The file '" + path + "' does not exist!");
  expectFailure([&] { store.open(vFilename("host:/data/a.cst")); }, "NyxDiskStore::open",
                "Cannot open 'host:/data/a.cst' as only local files are supported!");
  writeFixture("cst", path, "<", 5, "3");
  std::string const bytes = fs_testing::readFile(path);
  fs_testing::writeFile(path, bytes.substr(0, bytes.size() - 4));
  expectFailure(open, "NyxDiskStore::open", "Calculation error, physical file size 824 != calculated size 552!");
  std::string odd = bytes;
  odd[32] = 6;  // data format word 8
  fs_testing::writeFile(path, odd);
  expectFailure(open, "NyxDiskStore::open", "Data format 6 is unsupported!");
  fs_testing::writeFile(path, bytes);
  open();
  expectFailure(open, "NyxDiskStore::open", "A Nyx disk file is already open '" + path + "'!");
  expectFailure([&] { store.getAttribute("WORD64"); }, "NyxDiskStore::getAttribute",
                "Word index 64 out of range for attribute WORD64!");
  Attribute unknown("CDP", "", vINT32);
  expectFailure([&] { store.read(unknown, 1, 1); }, "NyxDiskStore::read", "Unsupported attribute 'CDP'!");
}

// A "dat" file whose prologue, history trace or blocks are wrong.
TEST(NyxDiskStore, BadDatFiles) {
  fs_testing::TempDir dir;
  std::string const path = dir / "bad.dat";
  writeFixture("dat", path, "<", 5, "2");
  std::string const good = fs_testing::readFile(path);
  auto changed = [&](std::size_t at, std::string const& bytes) {
    std::string b = good;
    b.replace(at, bytes.size(), bytes);
    return b;
  };
  struct Case {
    std::string bytes;
    std::string reason;
  } const cases[] = {
      {good.substr(0, 100), "Failed to read the initial part of the file!"},
      {changed(232, std::string("\0\0\0\0", 4)), "Failed to read the first word out of the special history trace!"},
      {changed(228, std::string("\xff\xff\0\0", 4)), "Failed to skip past the first \"special\" trace!"},
      {good.substr(0, 290), "Failed to read block header from file!"},
      {changed(280, std::string("\0\0\x01\0", 4)), "Failed to move to the next block header at position 280 in the file!"},
      {changed(280 + 24 + 8 + 60, std::string("\x06\0\0\0", 4)), "Data format 6 is unsupported!"},
      {changed(280 + 24 + 8 + 40, std::string("\x06\0\0\0", 4)),
       "Calculation error, physical file size 308 != calculated size 312!"}};
  for (Case const& c : cases) {
    fs_testing::writeFile(path, c.bytes);
    NyxDiskStore store;
    expectFailure([&] { store.open(vFilename(path.c_str())); }, "NyxDiskStore::myGetDatFileDetails", c.reason);
  }
}
