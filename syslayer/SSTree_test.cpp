#include <string>

#include <gtest/gtest.h>

#include "syslayer/FSTesting.h"
#include "syslayer/SSHeap.h"

namespace {

using fs_testing::alive;
using fs_testing::expectFailure;
using fs_testing::leaf;
using fs_testing::quietErrors;
using fs_testing::root;

TEST(SSTree, AdoptMovesAStructureAndItsSubtree) {
  int32_t const r = root();
  int32_t const types[] = {SS_STRUCT, SS_ASTRUCT};
  int32_t a, b;
  ss_define_(a, r, 2, types);
  ss_define_(b, r, 2, types);
  int32_t const x = leaf(a, 1, "x");
  ss_putnth_(a, 1, x);
  int32_t below;
  ss_defnth_(below, x, 2, 1, nullptr);  // x's text slot now holds a structure
  ss_adopt_(x, b, 1);
  int32_t v;
  ss_getnth_(a, 1, v);
  EXPECT_EQ(v, 0);
  EXPECT_EQ(ss_[x + 1], b);
  // Into an array element; what the element held goes.
  ss_alloc_(a, 2, 2);
  int32_t const old = leaf(a, 2, "old");
  ss_putaword_(a, 2, 1, old);
  ss_adoptarray_(x, a, 2, 1);
  EXPECT_FALSE(alive(old));
  ss_getaword_(a, 2, 1, v);
  EXPECT_EQ(v, x);
  // Not below itself, and never the root.
  expectFailure([&] { ss_adopt_(a, below, 1); }, "SS_adopt", "Illegal adopt");
  expectFailure([&] { ss_adoptarray_(x, a, 2, 3); }, "SS_adoptarray", "Illegal array ordinal");
  ss_delete_(a);
  ss_delete_(b);
  EXPECT_FALSE(alive(x));
  EXPECT_FALSE(alive(below));
}

TEST(SSTree, RemoveDetachesAndRemoverDeletesBelow) {
  int32_t const r = root();
  int32_t const types[] = {SS_STRUCT, SS_ASTRUCT, SS_INT};
  int32_t t;
  ss_define_(t, r, 3, types);
  int32_t const c = leaf(t, 1, "c");
  ss_putnth_(t, 1, c);
  ss_alloc_(t, 2, 2);
  int32_t const e1 = leaf(t, 2, "e1"), e2 = leaf(t, 3, "e2");
  ss_putaword_(t, 2, 1, e1);
  ss_putaword_(t, 2, 2, e2);
  ss_remove_(c);
  EXPECT_EQ(ss_[c + 1], 0);
  ss_subremove_(t, 2);
  EXPECT_FALSE(alive(e2));
  int32_t n;
  ss_asize_(t, 2, n);
  EXPECT_EQ(n, 2);  // the array stays
  ss_adopt_(c, t, 1);
  ss_remover_(t);
  EXPECT_FALSE(alive(c));
  EXPECT_TRUE(alive(t));
  expectFailure([&] { ss_remove_(r); }, "SS_remove", "Illegal remove of the root");
  ss_delete_(t);
}

TEST(SSTree, TextsWithLengthsCodesAndTextKeys) {
  int32_t const r = root();
  int32_t const types[] = {SS_TEXT, SS_ATEXT, SS_CODE, SS_ASTRUCT};
  int32_t s;
  ss_define_(s, r, 4, types);
  ss_puttext_(s, 1, "abcdef", 6);
  char buf[4];
  int32_t n;
  ss_gettextn_(s, 1, buf, 4, n);
  EXPECT_EQ(std::string(buf, 4), "abcd");
  EXPECT_EQ(n, 6);
  ss_alloc_(s, 2, 2);
  ss_putatext_(s, 2, 2, "xy", 2);
  ss_getatextn_(s, 2, 2, buf, 4, n);
  EXPECT_EQ(std::string(buf, 4) + std::to_string(n), "xy  2");
  ss_putnth_(s, 3, 77);
  int32_t code;
  ss_getcode_(s, 3, code);
  EXPECT_EQ(code, 77);
  EXPECT_EQ(quietErrors([&] { ss_getcode_(s, 1, code); }), 1);
  EXPECT_EQ(code, 0);

  ss_alloc_(s, 4, 3);
  int32_t const keys[] = {leaf(s, 1, "alpha"), leaf(s, 2, "beta"), leaf(s, 3, "alphabet")};
  for (int32_t e = 1; e <= 3; ++e) ss_putaword_(s, 4, e, keys[e - 1]);
  int32_t found;
  ss_locates_(s, 2, "alphabet", 8, found);
  EXPECT_EQ(found, keys[2]);
  ss_delete_(s);
}

TEST(SSTree, RawBlocks) {
  root();
  int32_t a, b;
  ss_calloc_(10, a);
  for (int i = 0; i < 10; ++i) ss_[a + i] = i + 1;
  ss_untalloc_(a);
  ss_balloc_(10, b);
  EXPECT_EQ(b, a);  // the freed block comes back, zeroed
  EXPECT_EQ(ss_[b + 3], 0);
  ss_untalloc_(b);
  expectFailure([&] { ss_untalloc_(b); }, "SS_untalloc", "Not an allocated block");
  expectFailure([&] { ss_balloc_(0, b); }, "SS_balloc", "Illegal size");
}

}  // namespace
