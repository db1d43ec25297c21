#include "foundation/UtlExcept.h"

#include <gtest/gtest.h>

#include <sstream>

TEST(UtlExceptTraceBack, EachPartOnlyWhenPresentAndTheStreamBanner) {
  UtlExcept e("just the reason", "");
  EXPECT_EQ(e.toString("%T|%L|%F|%K"), "just the reason\n|-1||");
  UtlExcept all("bad things", "Grid::check", 3, "Grid.cpp");
  EXPECT_EQ(all.getTraceBack(), "bad things\n   (Method=Grid::check   File=Grid.cpp   Line=3)\n");
  std::ostringstream out;
  out << all;
  EXPECT_EQ(out.str(),
            "\n\n====================== EXCEPTION TRACEBACK =======================\n"
            "bad things\n   (Method=Grid::check   File=Grid.cpp   Line=3)\n"
            "==================================================================\n");
  EXPECT_EQ(UtlExcept("r", "", 12).getTraceBack(), "r\n   (Line=12)\n");
  EXPECT_EQ(UtlExcept(vString("r"), vString("M"), 0).getTraceBack(), "r\n   (Method=M   Line=0)\n");
  UtlExcept stacked("#0 main", "reason", "method", -1, nullptr);
  EXPECT_EQ(stacked.getTraceBack(), "reason\n   (Method=method)\n");
  EXPECT_EQ(stacked.toString("%K|%R"), "#0 main|reason");
}

TEST(UtlExceptFormat, Specifiers) {
  UtlExcept e("why", "Who::what", 42, "where.cpp");
  e.setStack("stack text");
  // Blanks between specifiers only lead a following literal; none follows.
  EXPECT_EQ(e.toString("%R %M %F %L"), "whyWho::whatwhere.cpp42");
  EXPECT_EQ(e.toString("R=%R, M=%M, F=%F, L=%L"), "R=why, M=Who::what, F=where.cpp, L=42");
  // An unknown specifier emits the bare letter; "%%" emits nothing but leaves the flag, so "Rest" reads as %R.
  EXPECT_EQ(e.toString("a%xb%Q"), "axbQ");
  EXPECT_EQ(e.toString("100%%Rest"), "100why");
}

TEST(UtlExceptOperators, CopyAssignAndAppend) {
  UtlExcept a("first", "A::a", 1, "a.cpp");
  a.setStack("sa");
  UtlExcept b("second", "B::b");
  auto fields = [](UtlExcept const& e) { return std::string(e.toString("%R/%M/%L/%F/%K").c_str()); };
  UtlExcept c(a);
  EXPECT_EQ(fields(c), "first/A::a/1/a.cpp/sa");
  c = b;
  EXPECT_EQ(fields(c), "second/B::b/-1//");

  UtlExcept sum = a + b;
  EXPECT_EQ(sum.getTraceBack(), a.getTraceBack() + b.getTraceBack());
  a += b;
  EXPECT_EQ(a.getTraceBack(), sum.getTraceBack());
}
