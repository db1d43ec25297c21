// Index files of "dat" files (made, taken, and ignored when wrong), and the
// store on broken disks through the file service's test faults.

#include <gtest/gtest.h>

#include "filestore/nyx/NyxDiskStore.h"
#include "filestore/nyx/NyxTesting.h"
#include "syslayer/FSTesting.h"

using fs_testing::expectFailure;
using namespace nyx_testing;

namespace {

int cmpOf(NyxDiskStore const& store, unsigned int i) {
  Attribute a("CMP", "", vINT32);
  store.read(a, std::vector<unsigned int>{i});
  return a.getInt32(1);
}

std::string word(uint32_t v) {
  return std::string{static_cast<char>(v), static_cast<char>(v >> 8), static_cast<char>(v >> 16),
                     static_cast<char>(v >> 24)};
}

}  // namespace

TEST(NyxIndex, MadeTakenAWrongOneIgnoredAndACutFileRefused) {
  fs_testing::TempDir dir;
  std::string const path = dir / "line.dat", index = dir / "line.idx";
  writeFixture("dat", path, ">", 5);
  NyxDiskStore store;
  store.open(vFilename(path.c_str()));
  EXPECT_FALSE(store.hasIndexFile());
  store.generateIndexFile();
  EXPECT_TRUE(NyxDiskStore::hasIndexFile(vFilename(path.c_str())));
  EXPECT_TRUE(store.isUsingIndex());
  store.close();
  // Version 1, 276-byte records, 12 instances; trace 7 (the first of the
  // second trace block) lies after the prologue, history, comment block,
  // first block (with its 8 additional bytes) and second block header.
  std::string const made = fs_testing::readFile(index);
  ASSERT_EQ(16u + 12 * 8, made.size());
  EXPECT_EQ(word(1) + word(276) + word(12) + word(0), made.substr(0, 16));
  EXPECT_EQ(word(228 + 20 + 32 + 32 + 6 * 276 + 24) + word(0), made.substr(16 + 6 * 8, 8));
  store.open(vFilename(path.c_str()));
  EXPECT_TRUE(store.isUsingIndex());
  EXPECT_EQ(cmp(7), cmpOf(store, 7));
  store.close();

  struct Case {
    std::string bytes;
    std::string message;
  } const cases[] = {
      {word(2) + made.substr(4), "Index file '" + index + "' is not the correct version, we only support version 1, not 2!"},
      {word(1) + word(280) + made.substr(8),
       "Index file '" + index + "' does not contain the right record length, expected 276 found 280!"},
      {made.substr(0, 8) + word(11) + made.substr(12, 4 + 11 * 8),
       "Index file '" + index + "' does not contain the right number of instances, expected 12 found 11!"},
      // Cut inside its fifth record, it holds four.
      {made.substr(0, 16 + 4 * 8 + 3),
       "Index file '" + index + "' does not contain the right number of instances, expected 12 found 4!"}};
  for (Case const& c : cases) {
    fs_testing::writeFile(index, c.bytes);
    ::testing::internal::CaptureStderr();
    store.open(vFilename(path.c_str()));
    std::string const said = ::testing::internal::GetCapturedStderr();
    EXPECT_NE(std::string::npos, said.find(c.message)) << said;
    EXPECT_FALSE(store.isUsingIndex());
    EXPECT_EQ(cmp(12), cmpOf(store, 12));
    store.close();
  }

  // Cut at a trace, the file is refused at open where its last block or its
  // index gives the count it had; its second block starts at byte 1968.
  fs_testing::writeFile(index, made);
  std::string const whole = fs_testing::readFile(path);
  std::string const cut = "The Nyx file " + path + " is cut short: its ";
  fs_testing::writeFile(path, whole.substr(0, 1968 + 24 + 3 * 276));
  expectFailure([&] { store.open(vFilename(path.c_str())); }, "NyxDiskStore::myGetDatFileDetails",
                cut + "block at byte 1968 calls for 6 traces of 276 bytes, it holds 3.");
  fs_testing::writeFile(path, whole.substr(0, 1968));
  expectFailure([&] { store.open(vFilename(path.c_str())); }, "NyxDiskStore::open",
                cut + "index calls for 12 traces of 276 bytes, it holds 6.");
  EXPECT_FALSE(store.isOpen());
}

TEST(NyxFaults, ShortReadsGiveTheSameValuesAndAFailedReadNamesItsInstance) {
  fs_testing::TempDir dir;
  for (char const* name : {"f.cst", "f.dat"}) {
    std::string const path = dir / name;
    writeFixture(name + 2, path, "<", 3);
    NyxDiskStore store;
    {
      fs_testing::Fault shortReads(path, FS_FAULT_SHORTREAD, 7);
      store.open(vFilename(path.c_str()));
      Attribute trace("TRACE", "", vFLOAT32);
      store.read(trace, 2, 11);
      EXPECT_EQ(sample(3, 11, 4), trace.getFloat32Pointer(10)[4]) << name;
    }
    // Nothing from byte 2000 on: trace 8 of the cst file (1932 to 2207) and
    // trace 7 of the dat file (1992 to 2267) cannot be read.
    fs_testing::Fault failing(path, FS_FAULT_FAILREAD, 2000);
    unsigned int const broken = name[2] == 'c' ? 8 : 7;
    // The record service names a failed read; a block file's reads only
    // see how many bytes came.
    std::string const expected =
        "NyxDiskStore::read: " +
        (name[2] == 'c' ? "Failed to read the instance 8 from the file '" + path + "' for instance 8 ... status "
                        : "Failed to read 276 bytes from the file '" + path + "' for instance 7, got ");
    std::string const text = fatalText([&] { cmpOf(store, broken); });
    EXPECT_EQ(expected, text.substr(0, expected.size())) << text;
    EXPECT_EQ(cmp(5), cmpOf(store, 5));
  }
}

// The site's settings: an index made on opening, a blocking factor.
TEST(NyxIndex, SettingsOfTheSite) {
  fs_testing::TempDir dir;
  std::string const path = dir / "auto.dat";
  writeFixture("dat", path, "<", 5);
  fs_testing::Env autoIndex("SP_NYX_AUTOGENERATEINDEX", "true"), blocking("SP_NYX_BLOCKINGFACTOR", "4");
  NyxDiskStore store;
  store.open(vFilename(path.c_str()));
  EXPECT_TRUE(store.isUsingIndex());
  EXPECT_TRUE(NyxDiskStore::hasIndexFile(vFilename(path.c_str())));
  EXPECT_EQ(4 * 276, store.getRecord().physicalRecLenB);
  store.close();
  ::setenv("SP_NYX_BLOCKINGFACTOR", "0", 1);
  expectFailure([&] { store.open(vFilename(path.c_str())); }, "NyxDiskStore::open",
                "Failed to set the blocking factor to 0 for '" + path + "' ... status 0!");
  EXPECT_FALSE(store.isOpen());
}
