#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "syslayer/FSTesting.h"
#include "syslayer/SSHeap.h"

namespace {

using fs_testing::alive;
using fs_testing::expectFailure;
using fs_testing::leaf;
using fs_testing::quietErrors;
using fs_testing::root;

// Id checking on for one test.
struct Checking {
  Checking() { ss_[1] |= 1; }
  ~Checking() { ss_[1] &= ~1; }
};

std::string text(int32_t id, int32_t ordinal, int32_t length) {
  std::string out(static_cast<size_t>(length), '?');
  ss_gettext_(id, ordinal, &out[0], length);
  return out;
}

TEST(SSHeap, StructuresSlotsAndTypes) {
  int32_t const r = root();
  int32_t const types[] = {SS_INT, SS_FLOAT, SS_DOUBLE, SS_DOUBLE, SS_TEXT, SS_AINT, SS_ATEXT, SS_CODE, SS_STRUCT};
  EXPECT_EQ(ss_[0], r);
  EXPECT_EQ(ss_[19], 501930925);
  EXPECT_EQ(ss_[r], 7);
  int32_t s;
  ss_define_(s, r, 9, types);
  EXPECT_EQ(ss_[s - 1], s);
  EXPECT_EQ(ss_[s + 1], r);
  int32_t size;
  ss_size_(s, size);
  EXPECT_EQ(size, 3 + 2 + 9);  // header, two map words, nine slots
  // The map: four bits a slot, eight slots a word, first slot lowest.
  EXPECT_EQ(static_cast<uint32_t>(ss_[s + 3]), 0x6A743321u);
  EXPECT_EQ(ss_[s + 4], 5);
  int32_t t, v;
  ss_puttype_(s, 8, SS_INT);
  ss_gettype_(s, 8, t);
  EXPECT_EQ(t, SS_INT);
  ss_putdouble_(s, 3, 2.5e300);
  double d;
  ss_getdouble_(s, 3, d);
  EXPECT_EQ(d, 2.5e300);
  expectFailure([&] { ss_getnth_(s, 10, v); }, "SS_getnth", "Illegal ordinal");
  ss_delete_(s);
}

TEST(SSHeap, ArraysCheckTheirKindAndSlot) {
  int32_t const r = root();
  int32_t const types[] = {SS_ATEXT, SS_ADOUBLE, SS_AINT, SS_INT};
  int32_t s;
  ss_define_(s, r, 4, types);
  ss_alloc_(s, 2, 2);
  double d = 9;
  ss_alloc_(s, 3, 1);
  expectFailure([&] { ss_alloc_(s, 4, 5); }, "SS_alloc", "Illegal allocate attempt");
  // The wrong kind of access is warned of and does nothing.
  EXPECT_EQ(quietErrors([&] {
              ss_getadouble_(s, 3, 1, d);
              ss_putatext_(s, 2, 1, "x", 1);
            }),
            2);
  EXPECT_EQ(d, 0);
  ss_delete_(s);
}

TEST(SSHeap, BadIdsOnlyWithChecking) {
  int32_t const r = root();
  int32_t s;
  ss_define_(s, r, 1, nullptr);
  ss_delete_(s);
  EXPECT_FALSE(alive(s));
  // The block is free, its self word cleared: without checking the stale
  // id is still used, with checking it is refused.
  int32_t n = -1;
  ss_size_(s, n);
  EXPECT_EQ(n, 3 + 1 + 1);
  int32_t live;
  ss_define_(live, r, 2, nullptr);  // not the freed block: another size
  ASSERT_NE(live, s);
  ss_[live - 1] = 12345;            // a self index that differs
  ss_n_(live, n);
  EXPECT_EQ(n, 2);
  {
    Checking on;
    expectFailure([&] { ss_n_(live, n); }, "SS_n", "Bad struct id");
    int32_t child;
    expectFailure([&] { ss_define_(child, s, 1, nullptr); }, "SS_define", "Illegal parent");
    expectFailure([&] { ss_alloc_(s, 1, 1); }, "SS_alloc", "id mismatch");
  }
  ss_[live - 1] = live;
  ss_delete_(live);
}

TEST(SSHeap, TreesDeleteWholeAndLocateByKey) {
  int32_t const r = root();
  int32_t const top[] = {SS_STRUCT, SS_ASTRUCT, SS_INT};
  int32_t t;
  ss_define_(t, r, 3, top);
  ss_alloc_(t, 2, 3);
  std::vector<int32_t> kids;
  for (int32_t e = 1; e <= 3; ++e) {
    kids.push_back(leaf(t, 200 + e, "kid"));
    ss_putaword_(t, 2, e, kids.back());
  }
  int32_t found = -1;
  ss_locate_(t, 1, 202, found);
  EXPECT_EQ(found, kids[1]);
  // Deleting a child clears the parent's hold.
  ss_delete_(kids[1]);
  int32_t w;
  ss_getaword_(t, 2, 2, w);
  EXPECT_EQ(w, 0);
  ss_locate_(t, 1, 202, found);
  EXPECT_EQ(found, 0);
  ss_delete_(t);
  for (int32_t id : {t, kids[0], kids[2]}) EXPECT_FALSE(alive(id)) << id;
}

TEST(SSHeap, GrowingHeapKeepsValues) {
  int32_t const r = root();
  std::vector<int32_t> ids;
  int64_t const before = ss_heapsize_();
  for (int i = 0; i < 3000; ++i) ids.push_back(leaf(r, i, ("text " + std::to_string(i)).c_str()));
  EXPECT_GT(ss_heapsize_(), before);
  for (int i = 0; i < 3000; ++i) {
    std::string const t = "text " + std::to_string(i);
    ASSERT_EQ(text(ids[static_cast<size_t>(i)], 2, static_cast<int32_t>(t.size())), t);
  }
  for (int32_t s : ids) ss_delete_(s);
}

int32_t const kLeaf[] = {SS_INT, SS_UNSET, SS_UNSET};

// A node with key in slot 1, slot 2 for one child, slot 3 for an array.
int32_t node(int32_t parent, int32_t key) {
  int32_t s;
  ss_define_(s, parent, 3, kLeaf);
  ss_putnth_(s, 1, key);
  return s;
}

struct Search {
  int32_t path[SS_LOCATEDEPTH];
  int32_t next[SS_LOCATEDEPTH];
  int32_t size = 0;
  int32_t from;
  explicit Search(int32_t id) : from(id) {}
  int32_t locate(int32_t key) {
    int32_t found = -1;
    ss_locate_(from, 1, key, found, path, next, size);
    return found;
  }
};

TEST(SSSearch, HitsInOrderAndSteppingBack) {
  // t: a(7) holding b(7) in slot 2; array slot 3 of t holding c(7), d(5)
  // with d holding e(7).
  int32_t const t = node(root(), 0);
  int32_t const a = node(t, 7);
  int32_t b, e, el;
  ss_defnth_(b, a, 2, 3, kLeaf);
  ss_putnth_(b, 1, 7);
  ss_adopt_(a, t, 2);
  int32_t const c = node(t, 7), d = node(t, 5);
  ss_attach_(c, t, 3, el);
  ss_attach_(d, t, 3, el);
  EXPECT_EQ(el, 2);
  ss_defnth_(e, d, 2, 3, kLeaf);
  ss_putnth_(e, 1, 7);

  Search all(t);
  std::vector<int32_t> hits;
  for (int32_t f; (f = all.locate(7)) != 0;) {
    hits.push_back(f);
    EXPECT_GT(all.size, SS_LOCATEMARK);
  }
  EXPECT_EQ(hits, (std::vector<int32_t>{a, b, c, e}));
  EXPECT_EQ(all.size, 0);

  // Stepping back over a skips what lies below it, and over d what lies
  // below d; stepping back over t ends the search.
  Search skip(t);
  EXPECT_EQ(skip.locate(7), a);
  ss_unlocate1_(skip.path, skip.next, skip.size);
  EXPECT_EQ(skip.locate(7), c);
  EXPECT_EQ(skip.locate(5), d);
  ss_unlocate_(d, skip.path, skip.next, skip.size);
  EXPECT_EQ(skip.locate(7), 0);
  Search end(t);
  EXPECT_EQ(end.locate(7), a);
  expectFailure([&] { ss_unlocate_(e, end.path, end.next, end.size); }, "SS_unlocate", "Not on the search path");
  ss_unlocate_(t, end.path, end.next, end.size);
  EXPECT_EQ(end.size, 0);

  // A state whose path went away, and a tree deeper than the work arrays.
  EXPECT_EQ(end.locate(7), a);
  ss_delete_(a);
  expectFailure([&] { end.locate(7); }, "SS_locate", "Bad search state");
  int32_t deep = t;
  for (int i = 0; i < SS_LOCATEDEPTH + 1; ++i) {
    int32_t child;
    ss_defnth_(child, deep, 2, 3, kLeaf);
    deep = child;
  }
  ss_putnth_(deep, 1, 42);
  expectFailure([&] { Search(t).locate(42); }, "SS_locate", "Tree too deep");
  ss_delete_(t);
}

TEST(SSSearch, LengthBaseAndReservations) {
  int32_t const types[] = {SS_INT, SS_TEXT, SS_AINT};
  int32_t t, child, base;
  ss_define_(t, root(), 3, types);
  ss_puttext_(t, 2, "abcdefg", 7);
  ss_alloc_(t, 3, 4);
  ss_defnth_(child, t, 1, 1, types);
  // Blocks with their self words: t 3+1+3+1, text (7+3)/4+4, array 3+4+1,
  // child 3+1+1+1.
  int32_t length;
  ss_slength_(t, length);
  EXPECT_EQ(length, 8 + 6 + 8 + 6);
  ss_delnth_(t, 2);
  ss_def_(t, 3, SS_UNSET);
  ss_slength_(t, length);
  EXPECT_EQ(length, 8 + 6);

  // Bulk words through the base index land in the elements.
  ss_def_(t, 3, SS_AINT);
  ss_alloc_(t, 3, 3);
  ss_base_(t, 3, base);
  ss_[base + 2] = 12;
  int32_t w;
  ss_getaword_(t, 3, 3, w);
  EXPECT_EQ(w, 12);

  // A reservation gives back its tail at commit: the next block of that
  // size takes the freed words.
  int32_t r, again, gone;
  ss_allocate_(50, r);
  ss_commit_(r, 10);
  ss_allocate_(38, again);
  EXPECT_EQ(again, r + 10 + 2);
  ss_break_(again);
  ss_allocate_(38, gone);
  EXPECT_EQ(gone, again);
  expectFailure([&] { ss_commit_(r, 5); }, "SS_commit", "Not a reservation");
  expectFailure([&] { ss_commit_(gone, 39); }, "SS_commit", "Illegal commit");
  ss_break_(gone);
  ss_untalloc_(r);
  expectFailure([&] { ss_attach_(t, t, 3, w); }, "SS_attach", "Illegal adopt");
  ss_delete_(t);
}

}  // namespace
