#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "syslayer/FSTesting.h"
#include "syslayer/IRRecord.h"
#include "syslayer/SSHeap.h"

namespace {

using fs_testing::expectFailure;
using fs_testing::quietErrors;

int32_t root() {
  int32_t r;
  ss_init_(r);
  return r;
}

// Id checking on for one test.
struct Checking {
  Checking() { ss_[1] |= 1; }
  ~Checking() { ss_[1] &= ~1; }
};

bool alive(int32_t id) {
  int32_t ok = 0;
  ss_verify_(id, ok);
  return ok == 1;
}

// A structure of a key and a name.
int32_t leaf(int32_t parent, int32_t key, char const* name) {
  int32_t const types[] = {SS_INT, SS_TEXT};
  int32_t s;
  ss_define_(s, parent, 2, types);
  ss_putnth_(s, 1, key);
  ss_puttext_(s, 2, name, static_cast<int32_t>(std::string(name).size()));
  return s;
}

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

int32_t fresh() {
  int32_t id;
  ir_new_(id);
  return id;
}

std::string gett(int32_t id, int32_t index, int32_t length, int32_t& status) {
  std::string out(static_cast<size_t>(length), '?');
  ir_gett_(id, index, &out[0], length, status);
  return out;
}

TEST(IRRecord, RecordsHangUnderTheRootAndScalarsConvertOnRead) {
  int32_t root1, kind, i, status;
  ir_init_(root1);
  int32_t const a = fresh();
  EXPECT_EQ(ss_[a + 1], root1);  // parent
  // Every store sets the changed flag in word five.
  EXPECT_EQ(ss_[a + 5], 0);
  ir_puti_(a, 0, 1);
  EXPECT_EQ(ss_[a + 5], 1);
  ss_[a + 5] = 0;
  ir_putnt_(a, 0, "abcdef", 3);
  EXPECT_EQ(gett(a, 1, 4, status), "abc ");

  int32_t const id = fresh();
  ir_puti_(id, 0, 42);
  double d;
  EXPECT_EQ(gett(id, 0, 5, status), "42   ");

  ir_putf_(id, 0, -2.75f);
  ir_geti_(id, 0, i, status);
  EXPECT_EQ(status, 1);
  EXPECT_EQ(i, -2);  // truncated
  EXPECT_EQ(gett(id, 0, 6, status), "-2.75 ");

  ir_putd_(id, 0, 1.0 / 3.0);
  ir_kind_(id, kind);
  EXPECT_EQ(kind, IR_DOUBLE);
  ir_getd_(id, 0, d, status);
  EXPECT_EQ(d, 1.0 / 3.0);
  EXPECT_EQ(gett(id, 0, 17, status), "0.333333333333333");

  ir_putd_(id, 0, 3e10);
  ir_geti_(id, 0, i, status);
  EXPECT_EQ(status, 0);  // out of the integer range
  ir_putl_(id, 0, 7);
  ir_geti_(id, 0, i, status);
  EXPECT_EQ(i, 1);
  // Nothing at index 2 of a scalar.
  ir_geti_(id, 2, i, status);
  EXPECT_EQ(status, 0);
}

TEST(IRRecord, ArraysGrowSizeAndConvert) {
  int32_t const id = fresh();
  ir_puti_(id, 3, 30);
  int32_t kind, n, status;
  ir_kind_(id, kind);
  ir_n_(id, n);
  EXPECT_EQ(kind, IR_ARRAY + IR_INT);
  EXPECT_EQ(n, 3);
  ir_puti_(id, 1, 10);
  ir_putf_(id, 2, 20.9f);  // converted to the array's kind
  int32_t values[4] = {-1, -1, -1, -1};
  ir_getisr_(id, 1, 3, values, status);
  EXPECT_EQ(status, 1);
  EXPECT_EQ(values[0] * 10000 + values[1] * 100 + values[2], 102030);
  ir_getisr_(id, 2, 3, values, status);
  EXPECT_EQ(status, 0);  // the third is past the end
  int32_t logical[3];
  ir_puti_(id, 2, 0);
  ir_getlsr_(id, 1, 3, logical, status);
  EXPECT_EQ(logical[1] * 10 + logical[2], 1);

  int32_t const t = fresh();
  ir_putt_(t, 2, "second");
  ir_putd_(t, 1, 2.5);
  char texts[3 * 7];
  ir_gettsr_(t, 1, 3, texts, 7, status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(std::string(texts, 14), "2.5    second ");
  EXPECT_EQ(std::string(texts + 14, 7), "       ");

  // A scalar sized becomes an array holding it first.
  int32_t const s = fresh();
  ir_putd_(s, 0, 6.5);
  ir_setn_(s, 3);
  ir_kind_(s, kind);
  EXPECT_EQ(kind, IR_ARRAY + IR_DOUBLE);
  double d;
  ir_getd_(s, 1, d, status);
  EXPECT_EQ(d, 6.5);
}

TEST(IRRecord, Conversions) {
  int32_t to, status;
  ir_convert_(IR_INT, 7, IR_FLOAT, to, status);
  float f;
  std::memcpy(&f, &to, sizeof f);
  EXPECT_EQ(status, 1);
  EXPECT_EQ(f, 7.0f);
  double d;
  ir_convert8_(IR_DOUBLE, -9.99, IR_INT, d, status);
  EXPECT_EQ(d, -9.0);
  ir_convert8_(IR_DOUBLE, 1e300, IR_FLOAT, d, status);
  EXPECT_TRUE(std::isinf(d));
  char text[8];
  ir_format_(IR_FLOAT, 0.5, text, 8);
  EXPECT_EQ(std::string(text, 8), "0.5     ");
}

}  // namespace
