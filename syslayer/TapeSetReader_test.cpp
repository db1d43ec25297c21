#include <cctype>
#include <cstdint>
#include <list>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "syslayer/FSService.h"
#include "syslayer/FSTesting.h"
#include "syslayer/SysUtil.h"
#include "syslayer/TapeSetReader.h"

namespace {

using fs_testing::expectFailure;
using fs_testing::TempDir;

// Builds tape images byte by byte, independently of the service's writer.
class Image {
 public:
  Image& block(std::string const& data) {
    word(static_cast<uint32_t>(data.size()));
    m_bytes += data;
    return word(static_cast<uint32_t>(data.size()));
  }
  Image& mark() { return word(0); }
  Image& gap() { return word(0xFFFFFFFEu); }
  Image& endOfMedium() { return word(0xFFFFFFFFu); }
  Image& raw(std::string const& s) {
    m_bytes += s;
    return *this;
  }
  Image& labels() {
    return block(label("VOL1", "T00001")).block(label("HDR1", "")).block(label("HDR2", ""));
  }
  std::string const& bytes() const { return m_bytes; }

  static std::string label(char const* kind, char const* value) {
    char record[80];
    int status;
    fs_bansi_(kind, value, record, status);
    EXPECT_EQ(status, FS_GOOD);
    return std::string(record, 80);
  }

 private:
  Image& word(uint32_t v) {
    for (int i = 0; i < 4; ++i) m_bytes += static_cast<char>((v >> (8 * i)) & 0xFF);
    return *this;
  }
  std::string m_bytes;
};

std::string readAll(TapeSetReader& r, unsigned chunk = 7) {
  std::string out;
  std::vector<char> buf(chunk);
  for (;;) {
    unsigned const n = r.read(buf.data(), chunk);
    out.append(buf.data(), n);
    if (n < chunk) return out;
  }
}

TEST(TapeLabels, RecordsAreEightyBlankFilledBytes) {
  std::string const vol = Image::label("VOL1", "T00001");
  std::string const hdr1 = Image::label("HDR1", "SITEOWNER");
  std::string const hdr2 = Image::label("HDR2", "ignored");
  char user[20];
  ut_getuser_(user, 20);
  for (char& c : user) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  EXPECT_EQ(vol, "VOL1T00001" + std::string(27, ' ') + std::string(user, 20) + std::string(23, ' '));

  char date[6];
  ut_date_("world", date, 6);
  EXPECT_EQ(hdr1, "HDR1RONDO" + std::string(18, ' ') + "00010001000100" + std::string(date, 6) + " " +
                      "00001 000000" + "SITEOWNER" + std::string(11, ' '));
  EXPECT_EQ(hdr2, "HDR2U0000000000" + std::string(65, ' '));
  EXPECT_EQ(Image::label("EOF2", ""), "EOF2" + hdr2.substr(4));

  char record[80];
  int status;
  fs_bansi_("XYZ1", "", record, status);
  EXPECT_EQ(status, FS_BADLABEL);

  char kind[5], value[32];
  fs_ransi_(vol.data(), 80, kind, value, sizeof value, status);
  EXPECT_EQ(status, FS_GOOD);
  EXPECT_EQ(std::string(kind) + value, "VOL1T00001");
  fs_ransi_(vol.data(), 79, kind, value, sizeof value, status);
  EXPECT_EQ(status, FS_BADLABEL);
}

TEST(TapeImages, WrittenFramingIsByteExactAndReadsBack) {
  TempDir dir;
  std::string const name = dir / "t.tap";
  int id;
  ASSERT_EQ(FS_opent(name.c_str(), FS_TAPE | FS_CREATE, &id), FS_GOOD);
  ASSERT_EQ(FS_writet(id, "abc", 3), FS_GOOD);
  ASSERT_EQ(FS_writet(id, nullptr, 0), FS_GOOD);
  ASSERT_EQ(FS_writet(id, "0123456789", 10), FS_GOOD);
  ASSERT_EQ(FS_closet(id), FS_GOOD);
  EXPECT_EQ(fs_testing::readFile(name), Image().block("abc").mark().block("0123456789").bytes());

  fs_testing::writeFile(name, Image().block("abc").mark().gap().block("0123456789").endOfMedium().bytes());
  ASSERT_EQ(FS_opent(name.c_str(), FS_TAPE | FS_READONLY, &id), FS_GOOD);
  char buf[16];
  int got;
  EXPECT_EQ(FS_readt(id, buf, 16, 8192, &got), FS_GOOD);
  EXPECT_EQ(std::string(buf, static_cast<size_t>(got)), "abc");
  EXPECT_EQ(FS_readt(id, buf, 16, 8192, &got), FS_EOF);
  EXPECT_EQ(FS_readt(id, buf, 16, 8192, &got), FS_GOOD);  // the gap: a blank block
  EXPECT_EQ(got, 0);
  EXPECT_EQ(FS_readt(id, buf, 4, 8192, &got), FS_BLOCKTOOLONG);
  EXPECT_EQ(std::string(buf, static_cast<size_t>(got)), "0123");
  EXPECT_EQ(FS_readt(id, buf, 16, 8192, &got), FS_EOV);
  ASSERT_EQ(FS_closet(id), FS_GOOD);

  // Cut inside a block, or with lengths that disagree: broken framing.
  fs_testing::writeFile(name, Image().raw(std::string("\3\0\0\0abc\4\0\0\0", 11)).bytes());
  ASSERT_EQ(FS_opent(name.c_str(), FS_TAPE | FS_READONLY, &id), FS_GOOD);
  EXPECT_EQ(FS_readt(id, buf, 16, 8192, &got), FS_BADFRAME);
  FS_closet(id);
}

TEST(TapeSetReader, InitialAndLaterSkipsAndDriveNames) {
  TempDir dir;
  std::string const a = dir / "a.tap";
  fs_testing::writeFile(a, Image().labels().block("0123").block("456789").block("abc").mark().bytes());
  TapeSetReader r({a.c_str()});
  r.setInitialSkip(6);
  ::testing::internal::CaptureStdout();
  EXPECT_EQ(readAll(r, 3), "6789abc");
  // Skips between reads cross blocks and stop at the end.
  std::string const b = dir / "b.tap";
  fs_testing::writeFile(b, Image().block("0123456789").block("abcdefghij").bytes());
  TapeSetReader s({b.c_str()});
  EXPECT_EQ(s.skip(12), 12);
  char buf[4];
  ASSERT_EQ(s.read(buf, 4), 4u);
  EXPECT_EQ(std::string(buf, 4), "cdef");
  EXPECT_EQ(s.skip(100), 4);
  // Drive names set the type of the tapes after them.
  std::string const c = dir / "c.tap";
  fs_testing::writeFile(c, Image().block("data").bytes());
  TapeSetReader d({c.c_str(), "F3592", c.c_str(), "FNOTADRIVE"});
  ASSERT_EQ(d.read(buf, 4), 4u);
  ASSERT_EQ(d.read(buf, 4), 4u);
  EXPECT_EQ(d.getDeviceType(), 0x20080000);
  // An "F" name that is no drive is a tape like any other.
  expectFailure([&] { d.read(buf, 4); }, "FS_terminate", "FNOTADRIVE: No such file or directory");
  ::testing::internal::GetCapturedStdout();
}

TEST(TapeSetReader, VariableLengthFiles) {
  TempDir dir;
  std::string const v = dir / "old.vlr";
  int id, status;
  fs_open_(v.c_str(), FS_VLR | FS_CREATE, 0, 0, 0, id, status);
  ASSERT_EQ(status, FS_GOOD);
  fs_writevlr_(id, "rec one ", 8, status);
  fs_writevlr_(id, "rec two", 7, status);
  ASSERT_EQ(FS_close(id), FS_GOOD);
  // Framed like a tape image, without marks.
  EXPECT_EQ(fs_testing::readFile(v), Image().block("rec one ").block("rec two").bytes());
  TapeSetReader r({v.c_str()});
  ::testing::internal::CaptureStdout();
  EXPECT_EQ(readAll(r), "rec one rec two");
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "Open vlr:" + v + "\n");
  EXPECT_FALSE(r.isOpen());
}

TEST(TapeSetReader, BrokenTapesAreFatalTruncatedOnesEndTheVolumeBlankOnesFailAtTheTenth) {
  TempDir dir;
  std::string const cut = dir / "cut.tap";
  fs_testing::writeFile(cut, Image().block("whole").bytes() + Image().block("partial").bytes().substr(0, 8));
  TapeSetReader r({cut.c_str()});
  char buf[16];
  ::testing::internal::CaptureStdout();
  ASSERT_EQ(r.read(buf, 5), 5u);
  expectFailure([&] { r.read(buf, 5); }, "FS_terminate", cut + ": Broken block framing");

  std::string const bad = dir / "bad.tap";
  fs_testing::writeFile(bad, Image().block("0123456789").block("abcdefghij").bytes());
  fs_testing::Fault failing(bad, FS_FAULT_FAILREAD, 20);  // cleared at the end, as is the truncation below
  TapeSetReader f({bad.c_str()});
  ASSERT_EQ(f.read(buf, 10), 10u);
  expectFailure([&] { f.read(buf, 10); }, "FS_terminate", bad + ": Input/output error");
  // A truncated image ends the volume where it stops.
  FS_testfault(bad.c_str(), FS_FAULT_TRUNCATE, 18);
  TapeSetReader t({bad.c_str()});
  EXPECT_EQ(readAll(t), "0123456789");
  // The tenth blank read in a row fails, the ninth does not.
  std::string const nine = dir / "nine.tap", ten = dir / "ten.tap";
  Image n, g;
  for (int i = 0; i < 9; ++i) n.gap(), g.gap();
  g.gap();
  fs_testing::writeFile(nine, n.block("after nine").bytes());
  fs_testing::writeFile(ten, g.block("after ten").bytes());
  TapeSetReader ok({nine.c_str()});
  EXPECT_EQ(readAll(ok), "after nine");
  TapeSetReader blank({ten.c_str()});
  expectFailure([&] { blank.read(buf, 4); }, "TapeSetReader::myReadNext",
                "Problems reading tape " + ten + ", keep getting blank.");
  ::testing::internal::GetCapturedStdout();
}

}  // namespace
