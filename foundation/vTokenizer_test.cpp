#include "foundation/vTokenizer.h"

#include <gtest/gtest.h>

#include <list>

namespace {

std::list<std::string> all(vTokenizer& t) {
  std::list<vString> tokens;
  t.getAllTokens(tokens);
  std::list<std::string> out;
  for (vString const& s : tokens) out.push_back(s.c_str());
  return out;
}

}  // namespace

TEST(vTokenizer, NextStopsOnTheDelimiterTailLooksAheadDefaultsAndResets) {
  vTokenizer t(vString("  key = some value  "), vString(" ="));
  vString token;
  ASSERT_TRUE(t.next(token));
  EXPECT_EQ(token, "key");
  EXPECT_EQ(5, t.getCurrentPosition());
  EXPECT_EQ(t.tail(), "some value  ");
  EXPECT_EQ(5, t.getCurrentPosition());
  ASSERT_TRUE(t.next(token));
  ASSERT_TRUE(t.next(token));
  EXPECT_EQ(token, "value");
  EXPECT_FALSE(t.next(token));
  EXPECT_TRUE(t.tail().isSharedEmpty());
  vTokenizer d;
  d.setString(vString("one\ttwo\nthree"));
  EXPECT_EQ((std::list<std::string>{"one", "two", "three"}), all(d));
  d.setCurrentPosition(4);
  ASSERT_TRUE(d.next(token));
  EXPECT_EQ(token, "two");
  d.setDelimiters(vString("o"));
  d.setCurrentPosition(0);
  EXPECT_EQ((std::list<std::string>{"ne\ttw", "\nthree"}), all(d));
}
