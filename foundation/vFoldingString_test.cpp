#include <gtest/gtest.h>

#include <sstream>

#include "foundation/TestFailure.h"
#include "foundation/UtlExcept.h"
#include "foundation/vLCString.h"
#include "foundation/vUCString.h"

// Folding is a property of the type: whatever goes in comes out folded, and
// search arguments are folded the same way.

TEST(vLCString, EveryConstructorFolds) {
  EXPECT_EQ(vLCString("MiXeD Case"), "mixed case");
  EXPECT_EQ(vLCString('Q'), "q");
  EXPECT_EQ(vLCString(vString("ABC")), "abc");
  vLCString padded(4, "AB");
  EXPECT_EQ(4u, padded.length());
  EXPECT_STREQ("ab", padded.c_str());
  EXPECT_TRUE(vLCString(static_cast<char const*>(nullptr)).isSharedEmpty());
  vLCString copy(padded);
  EXPECT_TRUE(copy == padded);
}

TEST(vLCString, AppendingAndAssigningFold) {
  vLCString s("Store");
  s += "NAME";
  EXPECT_EQ(s, "storename");
  s += vString("_X");
  s += 'Y';
  EXPECT_EQ(s, "storename_xy");
  s.append(vString("ZZ"));
  EXPECT_EQ(s, "storename_xyzz");
  s << "A" << 'B' << vString("C") << 12 << 1.5E20;
  EXPECT_EQ(s, "storename_xyzzabc121.5e+20");
  s = "UPPER";
  EXPECT_EQ(s, "upper");
  s = vString("Plain");
  EXPECT_EQ(s, "plain");
  s = 'K';
  EXPECT_EQ(s, "k");
  vString plain("MOVED");
  s = std::move(plain);
  EXPECT_EQ(s, "moved");
}

TEST(vLCString, SearchArgumentsAreFolded) {
  vLCString s("Project/StoreName.SGY");
  EXPECT_EQ(8, s.search("STORE"));
  EXPECT_EQ(8, s.search(vString("StOrE")));
  EXPECT_EQ(8, s.search('S'));
  EXPECT_EQ(3, s.count('E') + s.count('Z'));
  int pos = 0;
  EXPECT_EQ(0, s.searchForLast('.', pos));
  EXPECT_EQ(17, pos);
  EXPECT_EQ(0, s.searchForLast(vString("E"), pos));
  EXPECT_EQ(16, pos);
  EXPECT_EQ(7, s.find_first_of(vString("/X")));
  EXPECT_EQ(1, s.find_first_not_of(vString("P")));
  vString left, right;
  EXPECT_TRUE(s.splitAtToken(left, right, vString("/STORE")));
  EXPECT_EQ(left, "project");
  EXPECT_EQ(right, "name.sgy");
  EXPECT_EQ(s.get(vString("/"), vString(".SGY")), "storename");
  EXPECT_EQ(s.pop(vString("/S")), "project");
  EXPECT_EQ(s, "torename.sgy");
}

TEST(vLCString, ReplaceAndFillFold) {
  vLCString s("a-b-c");
  s.replace(vString("B"), vString("XY"));
  EXPECT_EQ(s, "a-xy-c");
  s.replace('-', 'Q');
  EXPECT_EQ(s, "aqxyqc");
  s.removeAll('Q');
  EXPECT_EQ(s, "axyc");
  s.replace(0, 1, vString("ZZZ"), 0, 2);
  EXPECT_EQ(s, "zzxyc");
  s.extendTo(7, 'P');
  EXPECT_EQ(s, "zzxycpp");
  s.right(8, 'R');
  EXPECT_EQ(s, "rzzxycpp");
  s.center(10, 'C');
  EXPECT_EQ(s, "crzzxycppc");
  s.fill('W');
  EXPECT_EQ(s, "wwwwwwwwww");
  s.fill(2, 'V');
  EXPECT_EQ(s, "vv");
}

TEST(vLCString, CaseChangesRangesAndSwapsKeepTheFolding) {
  vLCString s("Name Of Thing");
  s.toUpperCase();
  EXPECT_EQ(s, "name of thing");
  s.capitalize();
  EXPECT_EQ(s, "name of thing");
  s.capitalizeEveryWord();
  EXPECT_EQ(s, "name of thing");
  // A range taken out is a plain vString: it may be upper-cased freely.
  vString part = vLCString("abc").get(0, 1);
  EXPECT_EQ(part, "ab");
  part.toUpperCase();
  EXPECT_EQ(part, "AB");
  // A swap with a plain string keeps both as they must be.
  vLCString lc("lower");
  vString plain("UPPER");
  lc.swapContents(plain);
  EXPECT_EQ(lc, "upper");
  EXPECT_EQ(plain, "lower");
}

TEST(vLCString, PrintfWriteAndStreamsFold) {
  vLCString s;
  s.printf("%s-%d", "ABC", 5);
  EXPECT_EQ(s, "abc-5");
  expectFailure([&] { s.printf("%10240d", 1); }, "vLCString::printf", "Message buffer overflow for format '%10240d'");
  s = "[....]";
  s.write(255, 1, 4, 64 | 512, '0', 0, 0);
  EXPECT_EQ(s, "[00ff]");
  std::istringstream in("'Quoted TEXT' Word");
  in >> s;
  EXPECT_EQ(s, "quoted text");
  s.getQuotedString(in, false);
  EXPECT_EQ(s, "word");
}

TEST(vUCString, FoldsToUpperCase) {
  vUCString s("Amplitude");
  EXPECT_EQ(s, "AMPLITUDE");
  s += "_rms";
  EXPECT_EQ(s, "AMPLITUDE_RMS");
  EXPECT_EQ(10, s.search("rms"));
  EXPECT_EQ(10, s.search('r'));
  s.toLowerCase();
  s.capitalize();
  s.capitalizeEveryWord();
  EXPECT_EQ(s, "AMPLITUDE_RMS");
  s << 1.5E20;
  EXPECT_EQ(s, "AMPLITUDE_RMS1.5E+20");
  s = "x";
  EXPECT_EQ(s, "X");
  s.printf("%s", "low");
  EXPECT_EQ(s, "LOW");
  expectFailure([&] { s.printf("%10240d", 1); }, "vUCString::printf", "Message buffer overflow for format '%10240d'");
  s.toUpperCase();
  EXPECT_EQ(s, "LOW");
  // Assignment through the base class still folds.
  vUCString u;
  vString& base = u;
  base = "through base";
  EXPECT_EQ(u, "THROUGH BASE");
  base += "more";
  EXPECT_EQ(u, "THROUGH BASEMORE");
  base = vString("moved");
  EXPECT_EQ(u, "MOVED");
}
