#include <cmath>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "syslayer/IRRecord.h"
#include "syslayer/SSHeap.h"

namespace {

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
