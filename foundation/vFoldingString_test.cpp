#include <gtest/gtest.h>

#include <sstream>

#include "foundation/TestFailure.h"
#include "foundation/UtlExcept.h"
#include "foundation/vLCString.h"
#include "foundation/vUCString.h"

// Folding is a property of the type, search arguments included; one or two overrides stand for each family.

TEST(vLCString, ConstructorsAppendsAssignmentsPrintfWriteAndStreamsFold) {
  EXPECT_EQ(vLCString("MiXeD Case"), "mixed case");
  EXPECT_EQ(vLCString('Q'), "q");
  EXPECT_STREQ("ab", vLCString(4, "AB").c_str());
  vLCString s("Store");
  s += "NAME";
  s.append(vString("_X"));
  s << 'Y' << 12 << 1.5E20;
  EXPECT_EQ(s, "storename_xy121.5e+20");
  s = vString("Plain");
  EXPECT_EQ(s, "plain");
  vString plain("MOVED");
  s = std::move(plain);
  EXPECT_EQ(s, "moved");
  s.printf("%s-%d", "ABC", 5);
  EXPECT_EQ(s, "abc-5");
  expectFailure([&] { s.printf("%10240d", 1); }, "vLCString::printf", "Message buffer overflow for format '%10240d'");
  s = "[....]";
  s.write(255, 1, 4, 64 | 512, '0', 0, 0);
  EXPECT_EQ(s, "[00ff]");
  std::istringstream in("'Quoted TEXT' Word");
  in >> s;
  EXPECT_EQ(s, "quoted text");
}

TEST(vLCString, SearchArgumentsAndChangesFold) {
  vLCString s("Project/StoreName.SGY");
  EXPECT_EQ(8, s.search("STORE"));
  EXPECT_EQ(8, s.search('S'));
  EXPECT_EQ(3, s.count('E') + s.count('Z'));
  int pos = 0;
  EXPECT_EQ(0, s.searchForLast(vString("E"), pos));
  EXPECT_EQ(16, pos);
  EXPECT_EQ(7, s.find_first_of(vString("/X")));
  vString left, right;
  EXPECT_TRUE(s.splitAtToken(left, right, vString("/STORE")));
  EXPECT_EQ(right, "name.sgy");
  EXPECT_EQ(s.get(vString("/"), vString(".SGY")), "storename");
  EXPECT_EQ(s.pop(vString("/S")), "project");
  s = "a-b-c";
  s.replace(vString("B"), vString("XY"));
  s.replace('-', 'Q');
  EXPECT_EQ(s, "aqxyqc");
  s.removeAll('Q');
  s.replace(0, 1, vString("ZZZ"), 0, 2);
  s.extendTo(7, 'P');
  s.center(9, 'C');
  EXPECT_EQ(s, "czzxycppc");
  s.toUpperCase();
  s.capitalizeEveryWord();
  EXPECT_EQ(s, "czzxycppc");
  // A range taken out is a plain vString: it may be upper-cased freely.
  vString part = vLCString("abc").get(0, 1);
  part.toUpperCase();
  EXPECT_EQ(part, "AB");
  // A swap with a plain string keeps both as they must be.
  vLCString lc("lower");
  vString other("UPPER");
  lc.swapContents(other);
  EXPECT_EQ(lc, "upper");
  EXPECT_EQ(other, "lower");
}

TEST(vUCString, FoldsToUpperCase) {
  vUCString s("Amplitude");
  s += "_rms";
  EXPECT_EQ(10, s.search("rms"));
  s.toLowerCase();
  s.capitalize();
  EXPECT_EQ(s, "AMPLITUDE_RMS");
  s << 1.5E20;
  EXPECT_EQ(s, "AMPLITUDE_RMS1.5E+20");
  s.printf("%s", "low");
  EXPECT_EQ(s, "LOW");
  expectFailure([&] { s.printf("%10240d", 1); }, "vUCString::printf", "Message buffer overflow for format '%10240d'");
  // Assignment through the base class still folds.
  vUCString u;
  vString& base = u;
  base = "through base";
  base += "more";
  EXPECT_EQ(u, "THROUGH BASEMORE");
}
