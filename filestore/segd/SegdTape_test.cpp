// A SEG-D record on tape images: the headers in one block and each trace in
// its own, labels on the first tape, the traces going on on a second.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "filestore/segd/SegdDiskStore.h"
#include "filestore/segd/SegdTesting.h"
#include "syslayer/FSTesting.h"

namespace {

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

TEST(SegdTapes, ARecordSpreadOverTwoTapesReadsAsTheFileDoes) {
  segd_testing::installVocabulary();
  fs_testing::TempDir dir;
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
  for (unsigned int s = 1; s <= 256; ++s)
    ASSERT_EQ(segd_testing::writtenSample(2, s), trace5.getFloat32Pointer(2)[s - 1]);
  Attribute channel = store.getAttribute("CHANNEL");
  store.read(channel, 1, 5);
  for (unsigned int i = 1; i <= 5; ++i) EXPECT_EQ(static_cast<int>(i), channel.getInt32(i));
}

}  // namespace
