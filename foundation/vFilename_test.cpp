#include "foundation/vFilename.h"

#include <gtest/gtest.h>

#include "foundation/TestFailure.h"
#include "foundation/UtlExcept.h"
#include "foundation/vUtl.h"

TEST(vFilenameUnix, PartsCanBeChanged) {
  vFilename f("/data/in.v1.sgy");
  EXPECT_EQ(f.getRoot(), "in.v1");
  EXPECT_EQ(f.getExtension(), "sgy");
  f.setExtension(".segy");
  EXPECT_EQ(f.getFilename(), "/data/in.v1.segy");
  f.setName("out.txt");
  EXPECT_EQ(f.getFilename(), "/data/out.txt");
  f.setRoot("renamed");
  f.setDirectory("/other/place/");
  f.setHost("far");
  EXPECT_EQ(f.getFilename(), "far:/other/place/renamed.txt");
  f.setDirectory("\\win\\style\\");
  EXPECT_EQ(f.getDirectory(), "/win/style");
  f.clearHost();
  f.clearExtension();
  EXPECT_EQ(f.getFilename(), "/win/style/renamed");
  f.clearName();
  EXPECT_EQ(f.getFilename(), "/win/style/");
}

TEST(vFilenameNT, DecodeRoundTripAndErrors) {
  struct Case {
    char const* text;
    char const* host;
    char drive;
    char const* directory;
    char const* written;
  } const cases[] = {
      {"D:\\projects\\north\\lines.txt", "", 'D', "/projects/north", "D:/projects/north/lines.txt"},
      {"\\\\server\\e:\\share\\file.dat", "server", 'e', "/share", "\\\\server\\e:/share/file.dat"},
      // A host without a drive keeps the default one.
      {"\\\\server\\dir\\name.x", "server", 'C', "dir", "\\\\server\\C:dir/name.x"},
      // The default drive alone is no path; another drive is.
      {"C:", "", 'C', "", ""},
      {"E:", "", 'E', "", "E:"},
  };
  for (Case const& c : cases) {
    vFilename f(c.text);
    EXPECT_TRUE(f.isNT()) << c.text;
    EXPECT_EQ(f.getHost(), c.host) << c.text;
    EXPECT_EQ(c.drive, f.getDrive()) << c.text;
    EXPECT_EQ(f.getDirectory(), c.directory) << c.text;
    EXPECT_EQ(f.getFilename(), c.written) << c.text;
    if (*c.written != '\0') {
      EXPECT_TRUE(vFilename(f.getFilename()) == f) << c.text;
    }
  }
  expectFailure([] { vFilename("\\\\hostonly"); }, "vFilename::myDecodeNT", "invalid filename '\\\\hostonly'");
  vFilename f;
  expectFailure([&] { f.setDrive('3'); }, "vFilename::setDrive", "Invalid drive letter '3'.");
}

TEST(vFilenameCompare, BlankHostIsThisHostAndDrivesIgnoreCase) {
  vFilename here("/tmp/a.b");
  vFilename named(vUtl::gethostname() + vString(":/tmp/a.b"));
  EXPECT_TRUE(here == named);
  vFilename elsewhere("not-this-host-at-all:/tmp/a.b");
  EXPECT_FALSE(here == elsewhere);
  // Each part on its own makes a difference, except the case of the drive.
  struct Pair {
    char const* a;
    char const* b;
    bool same;
  } const pairs[] = {
      {"d:\\x\\y.z", "D:\\x\\y.z", true}, {"/x/y.z", "/w/y.z", false}, {"E:\\x\\y.z", "D:\\x\\y.z", false},
      {"/x/y", "/x/y.z", false}, {"/x/Y.z", "/x/y.z", false}, {"one:/x/y.z", "two:/x/y.z", false},
  };
  for (Pair const& p : pairs) EXPECT_EQ(p.same, vFilename(p.a) == vFilename(p.b)) << p.a << " vs " << p.b;
}
