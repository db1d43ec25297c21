// Offload files written by an independent Python writer (testdata/), read
// through the store: every value equals what the writer says it wrote. And
// the store on broken disks, through the file service's test faults: reads
// that fail part way, files cut short.

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "filestore/offload/OffloadDiskStore.h"
#include "filestore/offload/OffloadTesting.h"
#include "syslayer/FSTesting.h"

using fs_testing::readFile;
using fs_testing::writeFile;

namespace {

// A file of the Python writer and what it wrote; names in lower case, as
// the store's open with options takes them.
struct Fixture {
  Fixture(char const* order, int version, int shape, int compressed) {
    offload_testing::writeFixture(file, expect, order, version, shape, compressed);
  }
  ~Fixture() { std::remove(file.c_str()), std::remove(expect.c_str()); }
  static inline int serial = 0;
  std::string const base =
      ::testing::TempDir() + "offload_peer_" + std::to_string(::getpid()) + "_" + std::to_string(++serial);
  std::string const file = base + ".offload", expect = base + ".txt";
};

// A rectangular little-endian file of 40-byte records from the Python
// writer, written once for the suite (no test leaves it changed): the trace
// of bin b is record 46 + b, 1800 + 40 b bytes in.
class OffloadFaultTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    dir = new fs_testing::TempDir;
    path = *dir / "faulty.offload";
    offload_testing::writeFixture(path, *dir / "faulty.txt", "<", 1, 991, 0);
  }
  static void TearDownTestSuite() { delete dir; }

  static int cdpOf(OffloadDiskStore const& store, unsigned int bin) {
    Attribute cdp("CDP", "", vINT32);
    store.read(cdp, bin, bin);
    return cdp.getInt32(1);
  }

  static inline fs_testing::TempDir* dir;
  static inline std::string path;
};

// Every value of every bin of the writer's file of this version, as the
// writer says it wrote them (rows).
void expectValues(OffloadDiskStore const& store, std::vector<std::vector<double>> const& rows, int version) {
  ASSERT_EQ(12u, rows.size());
  ASSERT_EQ(12u, store.getNInstances());
  Attribute fold("CMP.FOLD", "", vINT32), sub("SUBLINE", "", vINT32), cdp("CDP", "", vINT32),
      elev("ELEV", "", vFLOAT32), trace("TRACE", "", vFLOAT32), il("INLINE", "", vINT32),
      xl("CROSSLINE", "", vINT32), bin("OFFSET.BIN", "", vFLOAT64);
  for (Attribute* a : {&fold, &sub, &cdp, &elev, &trace, &il, &xl, &bin}) store.read(*a, 1, 12);
  ASSERT_EQ(7, trace.getLength());
  EXPECT_DOUBLE_EQ(8.0, store.getAttribute("TRACE").getFirstTime());
  for (unsigned int i = 1; i <= 12; ++i) {
    std::vector<double> const& row = rows[i - 1];
    EXPECT_EQ(row[0], fold.getInt32(i)) << i;
    EXPECT_EQ(row[1], sub.getInt32(i)) << i;
    EXPECT_EQ(row[2], cdp.getInt32(i)) << i;
    EXPECT_FLOAT_EQ(static_cast<float>(row[3]), elev.getFloat32(i)) << i;
    for (int s = 0; s < 7; ++s) EXPECT_FLOAT_EQ(static_cast<float>(row[4 + s]), trace.getFloat32Pointer(i)[s]);
    EXPECT_EQ(10 + 2 * static_cast<int>((i - 1) / 4), il.getInt32(i));
    EXPECT_EQ(100 + static_cast<int>((i - 1) % 4), xl.getInt32(i));
    EXPECT_DOUBLE_EQ(version == 2 ? 150.75 : 150.0, bin.getFloat64(i));
  }
}

}  // namespace

// Each byte order sees both versions, both shapes, packed and not.
TEST(OffloadPeer, EveryValueOfEveryVariantReadsAsWritten) {
  struct Variant {
    char const* order;
    int version, shape, compressed;
  };
  for (Variant const v : {Variant{"<", 1, 991, 0}, Variant{"<", 2, 995, 1}, Variant{">", 1, 995, 0},
                          Variant{">", 2, 991, 1}}) {
    SCOPED_TRACE(std::string(v.order) + " v" + std::to_string(v.version) + " shape " + std::to_string(v.shape));
    Fixture const f(v.order, v.version, v.shape, v.compressed);
    std::vector<std::vector<double>> const rows = offload_testing::rows(f.expect);
    ASSERT_EQ(12u, rows.size());
    OffloadDiskStore store;
    store.open(vFilename(f.file.c_str()));
    expectValues(store, rows, v.version);
    // A single live bin between dead ones, and a range of dead bins alone.
    Attribute one("CDP", "", vINT32);
    store.read(one, 6, 6);
    EXPECT_EQ(0, one.getInt32(1));
    store.read(one, std::vector<unsigned int>{7, 2});
    EXPECT_EQ(49, one.getInt32(1));
    EXPECT_EQ(14, one.getInt32(2));
    PropertyList const& p = store.getFile().getProperties();
    auto text = [&p](char const* n) { return std::string(p.findProperty(vUCString(n))->getString().c_str()); };
    EXPECT_EQ((std::vector<std::string>{v.order[0] == '<' ? "little" : "big",
                                        v.shape == 995 ? "polygonal" : "rectangular", "14", "ALONG_INLINES"}),
              (std::vector<std::string>{text("ENDIAN"), text("MOFFLD_SHAPE"), text("LAST_INLINE"),
                                        text("CMP_ORDERING")}));
    EXPECT_EQ(v.compressed != 0, p.hasProperty(vUCString("COMPRESSED")));
    if (v.compressed) {
      // The packed samples themselves, and their scaler.
      Attribute shorts("TRACE.I16", "", vINT16), scaler("TRACE.I16.SCALER", "", vFLOAT32);
      store.read(shorts, 4, 4), store.read(scaler, 4, 4);
      ASSERT_EQ(7, shorts.getLength());
      for (int s = 0; s < 7; ++s)
        EXPECT_FLOAT_EQ(static_cast<float>(rows[3][4 + s]),
                        static_cast<int16_t const*>(shorts.getPointer(1))[s] * (1.0f / scaler.getFloat32(1)));
    }
    // Key groups from the grid agree with those that the records give.
    for (char const* key : {"INLINE", "CDP"})
      for (auto order : {vUtlSort::SortOrder::ASCENDING, vUtlSort::SortOrder::DESCENDING}) {
        Attribute groups(key, "", vINT32), unique(key, "", vINT32), all(key, "", vINT32);
        std::vector<unsigned int> sizes;
        store.getGroupsAndSizes(groups, sizes, order);
        store.getUnique(unique, order);
        store.read(all, 1, 12);
        std::map<int, unsigned int> counts;
        for (unsigned int i = 1; i <= 12; ++i) ++counts[all.getInt32(i)];
        ASSERT_EQ(counts.size(), sizes.size()) << key;
        unsigned int k = order == vUtlSort::SortOrder::ASCENDING ? 1 : static_cast<unsigned int>(counts.size());
        for (auto const& [value, count] : counts) {
          EXPECT_EQ(value, groups.getInt32(k)) << key;
          EXPECT_EQ(value, unique.getInt32(k)) << key;
          EXPECT_EQ(count, sizes[k - 1]) << key;
          k = order == vUtlSort::SortOrder::ASCENDING ? k + 1 : k - 1;
        }
      }
    Attribute scattered("CDP", "", vINT32);
    store.getFile().readRangeScattered(scattered, 2, 3, {5, 1});
    ASSERT_EQ(5u, scattered.getNInstances());
    EXPECT_EQ(14, scattered.getInt32(5));
    EXPECT_EQ(21, scattered.getInt32(1));
    char const* const label = "OffloadAttributeFile::readRangeScattered";
    expectFailure([&] { store.getFile().readRangeScattered(scattered, 2, 3, {6, 1}); }, label,
                  "Attribute too small, contains 5 instances but we need 6 and it's not safe to resize!");
    expectFailure([&] { store.getFile().readRangeScattered(scattered, 2, 3, {0, 1}); }, label,
                  "Scattered write to position 0 is outsize of the range 1:5!");
    expectFailure([&] { store.getFile().readRangeScattered(scattered, 12, 13, {1, 2}); }, label,
                  "Scattered write to instance 13 is outsize of the range 1:12!");
    Attribute nowhere("NOWHERE", "", vINT32);
    expectFailure([&] { store.getFile().readRangeScattered({&scattered, &nowhere}, 2, 3, {1, 2}); }, label,
                  "Attribute NOWHERE was not found in list.");
    // The mute restored: two zeros in front, the whole trace from 0.
    StoreOpenOptions restore;
    restore.setRestoreMute(true);
    OffloadDiskStore muted;
    muted.open(vLCString(f.file.c_str()), 1, "seismic", "offloaddisk", &restore);
    Attribute whole("TRACE", "", vFLOAT32);
    muted.read(whole, 2, 2);
    ASSERT_EQ(9, whole.getLength());
    EXPECT_EQ(0.0, muted.getAttribute("TRACE").getFirstTime());
    EXPECT_EQ(0.0f, whole.getFloat32Pointer(1)[0]);
    EXPECT_FLOAT_EQ(static_cast<float>(rows[1][4]), whole.getFloat32Pointer(1)[2]);
  }
}

// A big-endian file through a word-swapping copy: each 4-byte word
// reversed, so the words read natively, the names read backwards word by
// word ("LBUS ENI") and the 16-bit samples come swapped in pairs.
TEST(OffloadPeer, WordSwappedCopiesReadAsTheOriginal) {
  for (auto const& [shape, compressed] : {std::pair{991, 0}, std::pair{995, 1}}) {
    SCOPED_TRACE("shape " + std::to_string(shape));
    Fixture const f(">", 2, shape, compressed);
    std::string bytes = readFile(f.file);
    for (std::size_t k = 0; k + 4 <= bytes.size(); k += 4) std::reverse(bytes.begin() + k, bytes.begin() + k + 4);
    writeFile(f.file, bytes);
    OffloadDiskStore store;
    store.open(vFilename(f.file.c_str()));
    EXPECT_EQ(vString("yes"), store.getFile().getProperties().findProperty(vUCString("HAS_BEEN_FSCP"))->getString());
    EXPECT_FALSE(store.getFile().isSwapped());
    expectValues(store, offload_testing::rows(f.expect), 2);
  }
}

TEST(OffloadPeer, BrokenFilesFailWithTheirOwnWords) {
  Fixture const f("<", 1, 991, 0);
  std::string const bytes = readFile(f.file), name = f.file;
  auto refused = [&](std::size_t at, int value, std::size_t cut, char const* in, std::string const& reason) {
    std::string copy = bytes.substr(0, bytes.size() - cut);
    std::memcpy(&copy[at], &value, 4);
    writeFile(name, copy);
    expectFailure([&] { OffloadDiskStore().open(vFilename(name.c_str())); }, in, reason);
  };
  refused(0, 65536000, 0, "OffloadAttributeFile::myCheckForByteSwap",
          "Expected header length of '" + name + "' to be >0 and <=1000, it was 65536000.");
  refused(4, 5, 0, "OffloadAttributeFile::myCheckHeader",
          "File " + name + " does not appear to be a offload file. Expected 77479 found 5.");
  refused(236, 3, 0, "OffloadAttributeFile::mySetVersionBits",
          "Can only handle versions upto 2. This file '" + name + "' is version 3.");
  int subline;
  std::memcpy(&subline, "XUBL", 4);
  // The table of this file starts at record 38 of 10 words; the first name at its word 3.
  refused(37 * 40 + 12, subline, 0, "OffloadAttributeFile::myCheckForFSCP",
          "Could not find Attribute SUBLINE to check for byteswapping.");
  // Cut into the record of bin 11: every bin has its record, so the file is
  // refused at open: 58 records of 40 bytes wanted, 56 there.
  refused(0, 100, 46, "OffloadAttributeFile::myOpenFile",
          "The offload file " + name + " is cut short: its header calls for 58 records of 40 bytes, it holds 56.");
}

// Every word of the file (header, table, maps, records) set to values a
// damaged file might hold: each file opens and reads, or fails with the
// system's own error.
TEST(OffloadPeer, DamagedHeaderWordsEndInTheSystemsError) {
  for (int compressed : {0, 1}) {
    Fixture const f(">", 2, 995, compressed);
    std::string const bytes = readFile(f.file);
    int failures = 0;
    for (std::size_t word = 0; word < bytes.size() / 4; ++word)
      for (uint32_t value : {0u, 0xffffffffu, 0x40000000u, 0x07000000u, 0x02000000u}) {
        std::string copy = bytes;
        std::memcpy(&copy[4 * word], &value, 4);
        writeFile(f.file, copy);
        try {
          OffloadDiskStore store;
          store.open(vFilename(f.file.c_str()));
          for (Attribute const& a : store.getAttributeList()) {
            Attribute values(a.getName(), "", a.getDataType());
            store.read(values, 1, store.getNInstances());
          }
        } catch (UtlExcept const&) {
          ++failures;
        }
      }
    EXPECT_GT(failures, 50);
  }
}

// Groups of a grid key and of a table attribute, against the values the
// writer put in; and the buffer's range follows the reads.
TEST(OffloadPeer, GroupsListTheirInstancesAndTheBufferTellsItsRange) {
  Fixture const f(">", 1, 995, 1);
  OffloadDiskStore store;
  store.open(vFilename(f.file.c_str()));
  OffloadAttributeFile& file = store.getFile();
  unsigned int first = 99, last = 99;
  EXPECT_FALSE(file.getBufferRange(first, last));
  struct Case {
    char const* name;
    DataType type;
    unsigned int first, last;
    std::vector<unsigned int> want;
  };
  // Grid keys by inline and crossline (last 0: to the end), a table key by its largest group.
  for (Case const& c : std::vector<Case>{{"INLINE", vINT32, 2, 3, {5, 6, 7, 8, 9, 10, 11, 12}},
                                         {"CROSSLINE", vINT32, 2, 0, {2, 6, 10, 3, 7, 11, 4, 8, 12}},
                                         {"CDP", vFLOAT64, 10, 0, {11}}}) {
    std::vector<unsigned int> got;
    file.locateByGroups(Attribute(c.name, "", c.type), c.first, c.last, got);
    EXPECT_EQ(c.want, got) << c.name << " " << c.first << ".." << c.last;
  }
  // Reads trim to live bins (1 and 12 are dead) and read ahead to the last live one.
  Attribute cdp("CDP", "", vINT32);
  file.readRange(cdp, 1, 3);
  EXPECT_TRUE(file.getBufferRange(first, last));
  EXPECT_EQ(std::make_pair(2u, 11u), std::make_pair(first, last));
}

// A dummy grid numbers inlines and crosslines from 1 whatever the header
// says; the header's own numbers stay in the properties.
TEST(OffloadPeer, DummyGridNumbersBinsFromOne) {
  Fixture const f("<", 2, 991, 0);
  fs_testing::Env dummy("SP_OFFLOAD_USEDUMMYGRID", "true");
  OffloadDiskStore store;
  store.open(vFilename(f.file.c_str()));
  Attribute il("INLINE", "", vINT32), xl("CROSSLINE", "", vINT32), cmp("CMP", "", vINT32), unique("INLINE", "", vINT32);
  store.read(il, 1, 12), store.read(xl, 1, 12), store.read(cmp, 1, 12);
  store.getUnique(unique, vUtlSort::SortOrder::DESCENDING);
  for (unsigned int i = 1; i <= 12; ++i) {
    EXPECT_EQ(1 + static_cast<int>((i - 1) / 4), il.getInt32(i)) << i;
    EXPECT_EQ(1 + static_cast<int>((i - 1) % 4), xl.getInt32(i)) << i;
    EXPECT_EQ(static_cast<int>(i), cmp.getInt32(i)) << i;
  }
  ASSERT_EQ(3u, unique.getNInstances());
  EXPECT_EQ(3, unique.getInt32(1));
  EXPECT_EQ(1, unique.getInt32(3));
  EXPECT_EQ(vString("10"), store.getFile().getProperties().findProperty(vUCString("FIRST_INLINE"))->getString());
}

// A header whose last inline is off its own grid: CMPs are counted from 1
// with the report; a sound header gives the grid's CMPs without one.
TEST(OffloadPeer, CmpCountedFromOneWhenTheGridCannotYieldIt) {
  for (bool damaged : {false, true}) {
    Fixture const f("<", 1, 991, 0);
    if (damaged) {
      std::fstream io(f.file, std::ios::binary | std::ios::in | std::ios::out);
      int const lastInline = 15;
      io.seekp(80);
      io.write(reinterpret_cast<char const*>(&lastInline), 4);
    }
    OffloadDiskStore store;
    store.open(vFilename(f.file.c_str()));
    Attribute cmp("CMP", "", vINT32);
    ::testing::internal::CaptureStderr();
    store.read(cmp, 1, 12);
    store.read(cmp, 1, 12);
    std::string const out = ::testing::internal::GetCapturedStderr();
    for (unsigned int i = 1; i <= 12; ++i) EXPECT_EQ(static_cast<int>(i), cmp.getInt32(i));
    std::string const reported = "Cannot calculate the CMP in the file: " + f.file;
    EXPECT_EQ(damaged, out.find(reported) != std::string::npos) << out;
    EXPECT_EQ(damaged, out.find("Will assume the first CMP is 1 with an increment of 1.") != std::string::npos);
    EXPECT_EQ(out.find(reported), out.rfind(reported)) << "reported once";
  }
}

// A failed read leaves the store usable; a cached range needs no file.
TEST_F(OffloadFaultTest, AFailedReadNamesItsRecordsAndACachedRangeNeedsNoFile) {
  OffloadDiskStore store;
  store.open(vFilename(path.c_str()));
  {
    // Bin 4 cannot be read; a read of bin 2 reads on through the window to
    // the last live bin, 11.
    fs_testing::Fault failing(path, FS_FAULT_FAILREAD, 1800 + 40 * 4 + 8);
    std::string const text = fatalText([&] { cdpOf(store, 2); });
    EXPECT_EQ(0u, text.find("OffloadAttributeFile::myReadRecords: Failed to do a partial read against the datafile "
                            "(fileOffset=1880, nbytes=400, frecord=48, lrecord=57, status="))
        << text;
  }
  EXPECT_EQ(14, cdpOf(store, 2));
  EXPECT_EQ(28, cdpOf(store, 4));
  store.getFile().cacheRange(2, 5);
  fs_testing::Fault everything(path, FS_FAULT_FAILREAD, 0);
  Attribute cdp("CDP", "", vINT32);
  store.getFile().extractRange(cdp, 3, 5);
  EXPECT_EQ(35, cdp.getInt32(3));
  Attribute trace("TRACE", "", vFLOAT32);  // of length 1: made the file's length
  store.getFile().extractRange(trace, 2, 2);
  EXPECT_EQ(7, trace.getLength());
  EXPECT_THROW(store.getFile().extractRange(cdp, 5, 6), UtlExcept);
}

TEST_F(OffloadFaultTest, ACutHeaderOrMapFails) {
  for (int64_t const size : {int64_t(2), int64_t(200), int64_t(1790)}) {
    fs_testing::Fault truncated(path, FS_FAULT_TRUNCATE, size);
    OffloadDiskStore store;
    EXPECT_THROW(store.open(vFilename(path.c_str())), UtlExcept) << size;
  }
}

TEST_F(OffloadFaultTest, AFailedRelayoutLeavesTheFileAsItWas) {
  std::string const before = fs_testing::readFile(path);
  OffloadDiskStore store;
  store.update(vFilename(path.c_str()));
  {
    // The copy of the traces fails at bin 5.
    fs_testing::Fault failing(path, FS_FAULT_FAILREAD, 1800 + 40 * 5 + 8);
    EXPECT_THROW(store.addAttribute(Attribute("EXTRA", "", vINT32)), UtlExcept);
  }
  EXPECT_FALSE(store.hasAttribute("EXTRA"));
  EXPECT_EQ(77, cdpOf(store, 11));
  store.close();
  EXPECT_EQ(before, fs_testing::readFile(path));
  EXPECT_FALSE(FS::exists(vFilename((path + ".relayout").c_str())));
}
