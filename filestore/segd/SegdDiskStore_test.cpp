// The SEG-D store over files of the independent Python writer: samples of
// both formats against values worked out by hand, the trace header fields
// and their escapes, every kind of header block, tape images, broken disks
// and the refusals.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "filestore/segd/SegdDiskStore.h"
#include "filestore/segd/SegdTesting.h"
#include "syslayer/FSTesting.h"

namespace {

using segd_testing::writtenSample;

class SegdStoreTest : public ::testing::Test {
 protected:
  void SetUp() override { segd_testing::installVocabulary(); }
  fs_testing::TempDir dir;
};

std::vector<int> ints(SegdDiskStore const& store, char const* name, std::vector<unsigned int> const& list) {
  Attribute a = store.getAttribute(name);
  store.read(a, list);
  std::vector<int> out;
  for (unsigned int i = 1; i <= a.getNInstances(); ++i) out.push_back(static_cast<int>(a.getValue(i)));
  return out;
}

TEST_F(SegdStoreTest, Reads20BitTracesAndTheirHeaders) {
  std::string const path = dir / "shot.segd";
  ASSERT_TRUE(segd_testing::writeSegd(path, "--format 8015 --traces 3 --record 5 --interval 0x40 --chanset 7"));
  SegdDiskStore store;
  store.open(StoreDescription(vFilename(path.c_str())));
  ASSERT_EQ(3u, store.getNInstances());
  Attribute trace = store.getAttribute("TRACE");
  EXPECT_EQ(256, trace.getLength());
  EXPECT_EQ(4.0, trace.getSampleRate());
  store.read(trace, 1, 3);
  // By hand: (3000 + 256) / 8.
  EXPECT_EQ(407.0f, trace.getFloat32Pointer(3)[255]);
  for (unsigned int t = 1; t <= 3; ++t)
    for (unsigned int s = 1; s <= 256; ++s) ASSERT_EQ(writtenSample(t, s), trace.getFloat32Pointer(t)[s - 1]);
  // Typed by the vocabulary's definitions where it has them.
  EXPECT_EQ(vINT64, store.getAttribute("FFID").getDataType());
  EXPECT_EQ(vINT32, store.getAttribute("CHANNELSET").getDataType());
  std::vector<unsigned int> const list = {3, 1, 2};
  EXPECT_EQ((std::vector<int>{1234, 1234, 1234}), ints(store, "FFID", list));
  EXPECT_EQ((std::vector<int>{7, 7, 7}), ints(store, "CHANNELSET", list));
  EXPECT_EQ((std::vector<int>{3, 1, 2}), ints(store, "CHANNEL", list));
  KeyList wanted = store.getKeyList();
  ASSERT_EQ(2u, wanted.getNKeys());
  EXPECT_EQ("FFID CHANNEL", std::string(wanted.findName(1).c_str()) + " " + wanted.findName(2).c_str());
  // By key values, through the indexing table.
  int64_t const ffids[] = {1234, 1234};
  int const channels[] = {3, 1};
  wanted.begin()->copyData(2, ffids);
  (wanted.begin() + 1)->copyData(2, channels);
  Attribute sequence = store.getAttribute("SEQUENCE");
  store.read(sequence, wanted);
  EXPECT_EQ((std::vector<int>{3, 1}), (std::vector<int>{sequence.getInt32(1), sequence.getInt32(2)}));
}

TEST_F(SegdStoreTest, ReadsIeeeTracesBehindEveryHeaderBlockAndTheGap) {
  std::string const path = dir / "line.dsegd";
  // Headers: 1 + 1 additional + 2 scan types * (3 channel sets + 1 skew)
  // + 2 extended + 1 external = 13 blocks, then 2048 bytes.
  ASSERT_TRUE(segd_testing::writeSegd(path,
                                      "--format 8058 --traces 4 --record 1 --additional 1 --scan-types 2 "
                                      "--channel-sets 3 --skew 1 --extended 2 --external 1 --ffid 123456 "
                                      "--chanset 123 --muted 2"));
  SegdDiskStore store;
  store.open(vFilename(path.c_str()));
  EXPECT_EQ(13 * 32, store.getGeneralHeader()->getHeaderSize());
  ASSERT_EQ(4u, store.getNInstances());
  EXPECT_EQ(13 * 32 + 2048 + 4 * (51 * 4 + 20), store.getLength());
  Attribute trace = store.getAttribute("TRACE");
  EXPECT_EQ(51, trace.getLength());
  EXPECT_EQ(1.0, trace.getSampleRate());
  store.read(trace, std::vector<unsigned int>{4, 2});
  EXPECT_EQ(-500.125f, trace.getFloat32Pointer(1)[0]);   // -(4000 + 1) / 8
  EXPECT_EQ(-506.375f, trace.getFloat32Pointer(1)[50]);  // -(4000 + 51) / 8
  // Trace 2 has edit code 2: zeros, whatever its samples hold.
  for (int s = 0; s < 51; ++s) ASSERT_EQ(0.0f, trace.getFloat32Pointer(2)[s]);
  // File numbers past 9999 and channel sets past 99 sit in the escapes.
  EXPECT_EQ((std::vector<int>{123456, 123456}), ints(store, "FFID", {1, 4}));
  EXPECT_EQ((std::vector<int>{123, 123}), ints(store, "CHANNELSET", {1, 4}));
}

TEST_F(SegdStoreTest, RefusesWhatItCannotRead) {
  std::string const badBcd = dir / "badbcd.segd", tiny = dir / "tiny.segd", odd = dir / "odd.segd",
                    extended = dir / "ext.segd";
  ASSERT_TRUE(segd_testing::writeSegd(badBcd, "--bad-bcd"));
  fs_testing::writeFile(tiny, std::string(10, '\x80'));
  ASSERT_TRUE(segd_testing::writeSegd(odd, "--format 8015 --record 1"));  // 51 samples
  ASSERT_TRUE(segd_testing::writeSegd(extended, "--traces 3 --extended-trace 2"));
  SegdDiskStore store;
  expectFailure([&] { store.open(vFilename(badBcd.c_str())); }, "SegdDiskStore::open",
                "Unsupported file format 8020!");  // 0x80 0x1A
  expectFailure([&] { store.open(vFilename(tiny.c_str())); }, "SegdDiskStore::open",
                "Only read 10 bytes from header of file " + tiny + ".");
  EXPECT_FALSE(store.isOpen());
  expectFailure([&] { store.open(StoreDescription()); }, "SegdDiskStore::open(StoreDescription)",
                "StoreDescription must contain a flat file.");

  store.open(vFilename(odd.c_str()));
  Attribute trace = store.getAttribute("TRACE");
  expectFailure([&] { store.read(trace, std::vector<unsigned int>{1, 0}); }, "SegdDiskStore::read",
                "Attribute 'TRACE': the vInstanceList has a zero in it, coont read from instance 0.");
  expectFailure([&] { store.read(trace, std::vector<unsigned int>{5, 1}); }, "SegdDiskStore::read",
                "Instance numbers must be <5, list for 'TRACE' contained 5.");
  expectFailure([&] { store.getAttribute("NOPE"); }, "SegdDiskStore::getAttribute",
                "Attribute NOPE does not exist in file odd.");
  expectFailure([&] { store.openAttributeSet("other"); }, "SegdDiskStore::openAttributeSet",
                "File '" + odd + "' does not have AttributeSet named 'other'.");
  expectFailure([&] { store.addAttribute(Attribute("X", "", vINT32)); }, "SegdDiskStore::addAttribute",
                "Function not implemented in derived class -- needs code.");

  store.open(vFilename(extended.c_str()));
  Attribute ffid = store.getAttribute("FFID");
  store.read(ffid, 1, 1);
  EXPECT_EQ(1234, ffid.getValue(1));
  expectFailure([&] { store.read(ffid, 1, 3); }, "SegdDiskStore::TraceHeader::setHeader",
                "Extended trace headers is not supported!");

  SegdDiskStore::TraceHeader header;
  expectFailure([&] { header.setHeader(nullptr); }, "SegdDiskStore::TraceHeader::setHeader",
                "Invalid pointer to header block supplied!");
  unsigned char const block[20] = {0x12, 0x34, 0x01, 0x02, 0x00, 0x99, 0x00, 0x01, 0x80, 0x00, 0x07};
  header.setHeader(block);
  EXPECT_EQ(0x180, header.getHeaderValue(SegdDiskStore::TraceHeader::TIMING_WORD));
  EXPECT_EQ(7, header.getHeaderValue(SegdDiskStore::TraceHeader::SAMPLE_SKEW));
  expectFailure([&] { header.getHeaderValue(99); }, "SegdDiskStore::TraceHeader::getHeaderValue",
                "Unsupported header value: 99!");
}

// 8 traces of 256 samples in format 8015 (660 bytes each) after 64 bytes
// of headers.
TEST_F(SegdStoreTest, BrokenDisksGiveTheirMessagesAndKeepWholeTraces) {
  std::string const path = dir / "faulty.segd";
  ASSERT_TRUE(segd_testing::writeSegd(path, "--format 8015 --traces 8 --record 5"));
  disk_testing::expectTraceFileFaults<SegdDiskStore>(
      {path, "SegdDiskStore", 64, 660, 256, writtenSample, "CHANNEL",
       [](unsigned int i) { return static_cast<int>(i); }, "Failed to read instances 2:6",
       "Failed to read instances 4:5", 20, 20});
}

// Tape image blocks: each a little-endian length word, the data and the
// length again; 0 is a file mark, 0xFFFFFFFF the end of the medium.
std::string word(uint32_t v) {
  std::string w;
  for (int i = 0; i < 4; ++i) w += static_cast<char>((v >> (8 * i)) & 0xFF);
  return w;
}
std::string block(std::string const& data) {
  return word(static_cast<uint32_t>(data.size())) + data + word(static_cast<uint32_t>(data.size()));
}
std::string label(char const* text) { return block(text + std::string(80 - std::strlen(text), ' ')); }

// A record on tape images: the headers in one block and each trace in its
// own, labels on the first tape, the traces going on on a second.
TEST_F(SegdStoreTest, ARecordSpreadOverTwoTapesReadsAsTheFileDoes) {
  std::string const path = dir / "shot.segd";
  ASSERT_TRUE(segd_testing::writeSegd(path, "--format 8015 --traces 5 --record 5 --extended 1"));
  std::string const record = fs_testing::readFile(path);
  std::size_t const headers = 3 * 32, trace = 660;
  ASSERT_EQ(headers + 5 * trace, record.size());
  std::string first = label("VOL1T00001") + label("HDR1") + block(record.substr(0, headers));
  for (int t = 0; t < 3; ++t) first += block(record.substr(headers + t * trace, trace));
  first += word(0);
  std::string second;
  for (int t = 3; t < 5; ++t) second += block(record.substr(headers + t * trace, trace));
  second += word(0xFFFFFFFFu);
  fs_testing::writeFile(dir / "a.tap", first);
  fs_testing::writeFile(dir / "b.tap", second);

  EXPECT_EQ(2u, SegdDiskStore::tapeNames(("tape=" + (dir / "a.tap") + "," + (dir / "b.tap")).c_str()).size());
  EXPECT_TRUE(SegdDiskStore::tapeNames((dir / "a.tap").c_str()).empty());
  SegdDiskStore store;
  ::testing::internal::CaptureStdout();
  store.open(vFilename(("T=" + (dir / "a.tap") + ":" + (dir / "b.tap")).c_str()));
  EXPECT_EQ("Open tape: '" + (dir / "a.tap") + "'\nOpen tape: '" + (dir / "b.tap") + "'\n",
            ::testing::internal::GetCapturedStdout());
  ASSERT_EQ(5u, store.getNInstances());
  EXPECT_EQ("a", std::string(store.getName().c_str()));
  Attribute trace5 = store.getAttribute("TRACE");
  store.read(trace5, std::vector<unsigned int>{5, 2});
  EXPECT_EQ(-625.125f, trace5.getFloat32Pointer(1)[0]);  // -(5000 + 1) / 8
  for (unsigned int s = 1; s <= 256; ++s) ASSERT_EQ(writtenSample(2, s), trace5.getFloat32Pointer(2)[s - 1]);
  Attribute channel = store.getAttribute("CHANNEL");
  store.read(channel, 1, 5);
  for (unsigned int i = 1; i <= 5; ++i) EXPECT_EQ(static_cast<int>(i), channel.getInt32(i));
}

}  // namespace
