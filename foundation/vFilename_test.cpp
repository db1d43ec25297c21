#include "foundation/vFilename.h"

#include <gtest/gtest.h>

#include "foundation/TestFailure.h"
#include "foundation/UtlExcept.h"
#include "foundation/vUtl.h"

TEST(vFilenameUnix, HostAbsolutePathAndDottedName) {
  vFilename f(vString("sunhost:/data/survey/line.001.sgy"));
  EXPECT_EQ(f.getHost(), "sunhost");
  EXPECT_EQ(f.getDirectory(), "/data/survey");
  EXPECT_EQ(f.getRoot(), "line.001");
  EXPECT_EQ(f.getExtension(), "sgy");
  EXPECT_EQ(f.getName(), "line.001.sgy");
  EXPECT_EQ(0, f.getDrive());
  EXPECT_FALSE(f.isNT());
  EXPECT_EQ(f.getFilename(), "sunhost:/data/survey/line.001.sgy");
  EXPECT_STREQ("sunhost:/data/survey/line.001.sgy", f.c_str());
  EXPECT_EQ(33u, f.length());
}

TEST(vFilenameUnix, RoundTrips) {
  for (char const* text : {"/data/x.txt", "/x", "/", "relative/dir/name", "name.ext", "host:/a/b/", "/a/b/noext",
                           "hh:rel/x.y"}) {
    vFilename f(text);
    EXPECT_EQ(f.getFilename(), text) << text;
    vFilename again(f.getFilename());
    EXPECT_TRUE(again == f) << text;
  }
}

TEST(vFilenameUnix, PartsCanBeChanged) {
  vFilename f("/data/in.sgy");
  f.setExtension(".segy");
  EXPECT_EQ(f.getFilename(), "/data/in.segy");
  f.setName("out.txt");
  EXPECT_EQ(f.getFilename(), "/data/out.txt");
  f.setRoot("renamed");
  EXPECT_EQ(f.getFilename(), "/data/renamed.txt");
  f.setDirectory("/other/place/");
  EXPECT_EQ(f.getDirectory(), "/other/place");
  f.setHost("far");
  EXPECT_EQ(f.getFilename(), "far:/other/place/renamed.txt");
  f.setDirectory("\\win\\style\\");
  EXPECT_EQ(f.getDirectory(), "/win/style");
  f.clearHost();
  f.clearExtension();
  EXPECT_EQ(f.getFilename(), "/win/style/renamed");
  f.setName("noext");
  EXPECT_EQ(f.getExtension(), "");
  f.clearDirectory();
  EXPECT_EQ(f.getFilename(), "noext");
  f.clearName();
  EXPECT_EQ(f.getFilename(), "");
  f.setDirectory("/");
  f.setName("top.cfg");
  EXPECT_EQ(f.getFilename(), "/top.cfg");
}

TEST(vFilenameNT, DriveAndPath) {
  vFilename f("D:\\projects\\north\\lines.txt");
  EXPECT_TRUE(f.isNT());
  EXPECT_EQ('D', f.getDrive());
  EXPECT_EQ(f.getHost(), "");
  EXPECT_EQ(f.getDirectory(), "/projects/north");
  EXPECT_EQ(f.getRoot(), "lines");
  EXPECT_EQ(f.getExtension(), "txt");
  EXPECT_EQ(f.getFilename(), "D:/projects/north/lines.txt");
  vFilename again(f.getFilename());
  EXPECT_TRUE(again.isNT());
  EXPECT_TRUE(again == f);
  EXPECT_EQ(again.getFilename(), f.getFilename());
}

TEST(vFilenameNT, HostWithDrive) {
  vFilename f("\\\\server\\e:\\share\\file.dat");
  EXPECT_EQ(f.getHost(), "server");
  EXPECT_EQ('e', f.getDrive());
  EXPECT_EQ(f.getDirectory(), "/share");
  EXPECT_EQ(f.getName(), "file.dat");
  EXPECT_EQ(f.getFilename(), "\\\\server\\e:/share/file.dat");
  vFilename again(f.getFilename());
  EXPECT_EQ(again.getHost(), "server");
  EXPECT_EQ(again.getDirectory(), "/share");
  EXPECT_TRUE(again == f);
}

TEST(vFilenameNT, HostWithoutDriveKeepsTheDefault) {
  vFilename f("\\\\server\\dir\\name.x");
  EXPECT_EQ(f.getHost(), "server");
  EXPECT_EQ('C', f.getDrive());
  EXPECT_EQ(f.getFilename(), "\\\\server\\C:dir/name.x");
  vFilename again(f.getFilename());
  EXPECT_TRUE(again == f);
}

TEST(vFilenameNT, DefaultDriveAloneIsNoPath) {
  vFilename f("C:");
  EXPECT_TRUE(f.isNT());
  EXPECT_EQ(f.getFilename(), "");
  vFilename g("E:");
  EXPECT_EQ(g.getFilename(), "E:");
}

TEST(vFilenameNT, Errors) {
  expectFailure([] { vFilename("\\\\hostonly"); }, "vFilename::myDecodeNT", "invalid filename '\\\\hostonly'");
  vFilename f;
  expectFailure([&] { f.setDrive('3'); }, "vFilename::setDrive", "Invalid drive letter '3'.");
  f.setDrive(0);
  EXPECT_EQ(0, f.getDrive());
  f.setDrive('z');
  EXPECT_EQ('z', f.getDrive());
}

TEST(vFilenameCompare, BlankHostIsThisHostAndDrivesIgnoreCase) {
  vFilename here("/tmp/a.b");
  vFilename named(vUtl::gethostname() + vString(":/tmp/a.b"));
  EXPECT_TRUE(here == named);
  vFilename elsewhere("not-this-host-at-all:/tmp/a.b");
  EXPECT_FALSE(here == elsewhere);
  EXPECT_TRUE(here != elsewhere);
  // Each part on its own makes a difference, except the case of the drive.
  struct Pair {
    char const* a;
    char const* b;
    bool same;
  } const pairs[] = {
      {"d:\\x\\y.z", "D:\\x\\y.z", true}, {"d:\\x\\y.z", "D:\\x\\y.w", false}, {"/x/y.z", "/w/y.z", false},
      {"E:\\x\\y.z", "D:\\x\\y.z", false}, {"/x/w.z", "/x/y.z", false}, {"/x/y", "/x/y.z", false},
      {"/x/Y.z", "/x/y.z", false}, {"one:/x/y.z", "two:/x/y.z", false}, {"one:/x/y.z", "one:/x/y.z", true},
  };
  for (Pair const& p : pairs) EXPECT_EQ(p.same, vFilename(p.a) == vFilename(p.b)) << p.a << " vs " << p.b;
  vFilename copy;
  copy = here;
  EXPECT_TRUE(copy == here);
  copy = "/elsewhere/a.b";
  EXPECT_FALSE(copy == here);
}
