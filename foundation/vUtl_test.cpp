#include "foundation/vUtl.h"

#include <gtest/gtest.h>

#include "foundation/TestReleaseTree.h"
#include "foundation/vString.h"

namespace {

vString reformatted(char const* format) {
  vString f(format);
  vUtl::reformatInt64(f);
  return f;
}

}  // namespace

TEST(vUtlFormat, Int64ConversionsReadALongLong) {
  EXPECT_EQ(reformatted("%lld of %llu"), "%lld of %llu");
  EXPECT_EQ(reformatted("%I64d|%-8I64u|%I64x"), "%lld|%-8llu|%llx");
  EXPECT_EQ(reformatted("100%% %d %s"), "100%% %d %s");
  EXPECT_EQ(reformatted("%%I64d"), "%%I64d");
  // The printf entry points reformat too: a format from elsewhere, unknown to the compiler's format checks.
  char const* foreign = "%I64d";
  vString s;
  s.printf(foreign, 6000000000LL);
  EXPECT_EQ(s, "6000000000");
}

TEST(vUtlEnv, GetPutAndHome) {
  TestReleaseTree tree;
  vString value("stale");
  tree.unsetEnv("RONDO_VUTL_TEST");
  EXPECT_FALSE(vUtl::getenv("RONDO_VUTL_TEST", value));
  EXPECT_TRUE(value.isSharedEmpty());
  vUtl::putenv("RONDO_VUTL_TEST", vString("some value"));
  EXPECT_TRUE(vUtl::getenv("RONDO_VUTL_TEST", value));
  EXPECT_EQ(value, "some value");
  vUtl::putenv("RONDO_VUTL_TEST", vString());
  EXPECT_TRUE(vUtl::getenv("RONDO_VUTL_TEST", value));
  EXPECT_TRUE(value.isSharedEmpty());
  // The home directory follows HOME, else the password database.
  tree.setEnv("HOME", "/some/home");
  EXPECT_EQ(vUtl::homeDirectory(), "/some/home");
  tree.unsetEnv("HOME");
  EXPECT_FALSE(vUtl::homeDirectory().isBlank());
}
