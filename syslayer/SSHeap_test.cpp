#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/Message.h"
#include "foundation/MessageHandling.h"
#include "syslayer/FSTesting.h"
#include "syslayer/SSHeap.h"

namespace {

using fs_testing::expectFailure;

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
  Message::clearNErrors();
  {
    MessageHandling quiet;
    ss_getadouble_(s, 3, 1, d);
    ss_putatext_(s, 2, 1, "x", 1);
  }
  EXPECT_EQ(Message::getNErrors(), 2);
  Message::clearNErrors();
  EXPECT_EQ(d, 0);
  ss_delete_(s);
}

TEST(SSHeap, BadIdsOnlyWithChecking) {
  int32_t const r = root();
  int32_t s;
  ss_define_(s, r, 1, nullptr);
  ss_delete_(s);
  int32_t ok = 1;
  ss_verify_(s, ok);
  EXPECT_EQ(ok, 0);
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
  int32_t const leaf[] = {SS_INT, SS_TEXT};
  int32_t t;
  ss_define_(t, r, 3, top);
  ss_alloc_(t, 2, 3);
  std::vector<int32_t> kids;
  for (int32_t e = 1; e <= 3; ++e) {
    int32_t k;
    ss_define_(k, t, 2, leaf);
    ss_putnth_(k, 1, 200 + e);
    ss_putaword_(t, 2, e, k);
    kids.push_back(k);
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
  int32_t ok;
  for (int32_t id : {t, kids[0], kids[2]}) {
    ss_verify_(id, ok);
    EXPECT_EQ(ok, 0) << id;
  }
}

TEST(SSHeap, GrowingHeapKeepsValues) {
  int32_t const r = root();
  int32_t const types[] = {SS_INT, SS_TEXT};
  std::vector<int32_t> ids;
  int64_t const before = ss_heapsize_();
  for (int i = 0; i < 3000; ++i) {
    int32_t s;
    ss_define_(s, r, 2, types);
    ss_putnth_(s, 1, i);
    std::string const t = "text " + std::to_string(i);
    ss_puttext_(s, 2, t.data(), static_cast<int32_t>(t.size()));
    ids.push_back(s);
  }
  EXPECT_GT(ss_heapsize_(), before);
  for (int i = 0; i < 3000; ++i) {
    std::string const t = "text " + std::to_string(i);
    ASSERT_EQ(text(ids[static_cast<size_t>(i)], 2, static_cast<int32_t>(t.size())), t);
  }
  for (int32_t s : ids) ss_delete_(s);
}

}  // namespace
