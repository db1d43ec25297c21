#include "foundation/vString.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>
#include <string>

#include "foundation/TestAddressSpaceCap.h"
#include "foundation/TestFailure.h"
#include "foundation/UtlExcept.h"

TEST(vStringEmpty, OperationsThatEmptyAStringGiveBackTheSharedBuffer) {
  EXPECT_EQ(vString(static_cast<char const*>(nullptr)).c_str(), vString("").c_str());
  vString s("aaa");
  s.removeAll('a');
  EXPECT_TRUE(s.isSharedEmpty());
  vString moved("abc");
  vString target(std::move(moved));
  EXPECT_TRUE(moved.isSharedEmpty());
  EXPECT_TRUE(vString("abc").substr(5).isSharedEmpty());
}

TEST(vStringCompare, EqualityChecksLengthFirstButTextFormsUseStrcmp) {
  vString padded(5, "ab");
  vString plain("ab");
  EXPECT_TRUE(padded != plain);
  EXPECT_TRUE("ab" == padded);
  EXPECT_FALSE(padded < plain || plain < padded);
  EXPECT_TRUE(vString("b") > vString("abc"));
  EXPECT_NE(0, vString::stricmp("\xC9", "\xE9"));
  EXPECT_EQ(0, vString("HeLLo").stricmp("hello"));
}

TEST(vStringTests, BlankAndInteger) {
  // Blank means only spaces and tabs; a zero-padded string is blank too.
  for (char const* t : {"", " \t "}) EXPECT_TRUE(vString(t).isBlank() && vString(t).isEmpty()) << t;
  for (char const* t : {" x ", "\n"}) EXPECT_FALSE(vString(t).isBlank() || vString(t).isEmpty()) << t;
  EXPECT_TRUE(vString(4, " ").isBlank());
  // One sign and digits only; a lone sign counts.
  for (char const* t : {"+7", "-"}) EXPECT_TRUE(vString(t).isInteger()) << t;
  for (char const* t : {"", "+-1", "12a", " 12"}) EXPECT_FALSE(vString(t).isInteger()) << t;
}

// A range is inclusive and clipped; a bad one is fatal; at() throws directly.
TEST(vStringGet, RangesSubstrAndIndexChecks) {
  vString s("abcdef");
  EXPECT_EQ(s.get(4, 100), "ef");
  EXPECT_TRUE(s.get(10, 12).isSharedEmpty());
  vString abc("abc");
  expectFailure([&] { abc.get(-1, 2); }, "vString::get", "negative startIndex -1 for string abc");
  expectFailure([&] { abc.get(3, 1); }, "vString::get", "startIndex 3 greater than endIndex 1 for string abc");
  EXPECT_EQ('b', abc.at(1));
  expectFailure([&] { abc.at(3); }, "vString::at()", "Trying to index beyond end of string");
  vString const& cs = abc;
  expectFailure([&] { cs.at(7); }, "vString::at()", "Requested position is out of range.");
  EXPECT_TRUE(s.substr(2, 0).isSharedEmpty());
  EXPECT_EQ(s.substr(2, 0xFFFFFFFFu), "cdef");
  EXPECT_EQ(s.getRight(20), "abcdef");
  char buf[4];
  s.get(buf, 2, sizeof buf);
  EXPECT_STREQ("cde", buf);
}

TEST(vStringSearch, PositionsOffsetsIntegersTokensAndPop) {
  vString s("abcabc");
  EXPECT_EQ(2, s.count('b') + s.count('z'));
  EXPECT_EQ(3, s.search("ab", 2));
  EXPECT_EQ(-1, s.search("abc", 100));
  EXPECT_EQ(2, s.find_first_of(vString("xc")));
  EXPECT_EQ(-1, vString("aaa").find_first_not_of(vString("a")));
  vString const n("x12 2 123");
  EXPECT_EQ(4, n.searchInteger(vString("2")));
  EXPECT_EQ(-1, n.searchInteger(vString("23")));
  vString k("key=[value] rest");
  EXPECT_EQ(k.get(vString("["), vString("]")), "value");
  EXPECT_TRUE(k.get(vString("<"), vString(">")).isSharedEmpty());
  vString list("a,b");
  list.pop(vString(","));
  EXPECT_EQ(list.pop(vString(",")), "b");
  EXPECT_TRUE(list.isSharedEmpty());
  vString other;
  k.swapContents(other);
  EXPECT_TRUE(k.isSharedEmpty());
  EXPECT_EQ(other, "key=[value] rest");
}

TEST(vStringSplit, TokenAbsentAtStartAtEnd) {
  struct Case {
    char const* text;
    char const* token;
    bool last, found;
    char const *left, *right;
  } const cases[] = {{"abc", ":", false, false, "abc", ""},     {":abc", ":", false, true, "", "abc"},
                     {"a::b::c", "::", false, true, "a", "b::c"}, {"a::b::c", "::", true, true, "a::b", "c"},
                     {"abc", ".", true, false, "abc", ""}};
  for (Case const& c : cases) {
    vString left("l"), right("r");
    bool const found = c.last ? vString(c.text).splitAtLastToken(left, right, vString(c.token))
                              : vString(c.text).splitAtToken(left, right, vString(c.token));
    EXPECT_EQ(c.found, found) << c.text;
    EXPECT_EQ(left, c.left) << c.text;
    EXPECT_EQ(right, c.right) << c.text;
    EXPECT_TRUE(*c.right != '\0' || right.isSharedEmpty()) << c.text;
    EXPECT_TRUE(*c.left != '\0' || left.isSharedEmpty()) << c.text;
  }
  vString left, right;
  EXPECT_TRUE(vString("a:b").splitAtToken(left, right, ':'));
  EXPECT_EQ(right, "b");
  EXPECT_FALSE(vString("abc").splitAtLastToken(left, right, '.'));
}

TEST(vStringSize, TruncateSetSizeCenterRightExtendFill) {
  vString s("abcdef");
  EXPECT_EQ(-1, s.truncate(-1));
  EXPECT_EQ(0, s.truncate(3));
  EXPECT_EQ(s, "abc");
  EXPECT_EQ(-1, s.setSize(0));
  EXPECT_EQ(s, "abc");
  EXPECT_EQ(8, s.setSize(8));
  EXPECT_EQ(8, s.getSize());
  EXPECT_EQ(0, s[0]);
  vString c("  ab ");
  c.center(6, '*');
  EXPECT_EQ(c, "**ab**");
  vString keep(" ab ");
  keep.center(6, 0);
  EXPECT_EQ(keep, " ab ");
  vString r("7");
  r.right(3, '0');
  EXPECT_EQ(r, "007");
  r.extendTo(5, '.');
  EXPECT_EQ(r, "007..");
  r.fill('x');
  EXPECT_EQ(r, "xxxxx");
  r.fill(2, 'y');
  EXPECT_EQ(r, "yy");
}

TEST(vStringRead, NumbersBooleansAndEmptyStrings) {
  EXPECT_EQ(-42, vString("-42").readi());
  EXPECT_DOUBLE_EQ(2.5, vString("2.5").readd());
  EXPECT_EQ(9000000000LL, vString("9000000000").readi64());
  for (char const* f : {"", "  ", "F", "0", " n ", "disabled"}) EXPECT_FALSE(vString(f).readb()) << f;
  for (char const* t : {"1", "FALSE", "nope"}) EXPECT_TRUE(vString(t).readb()) << t;
}

TEST(vStringWrite, NumberIntoAFieldAndFixedStreamFormats) {
  // Flag bits: 16 decimal, 32 octal, 64 hexadecimal, 128 show base, 256 show point, 512 upper case, 1024 show +.
  // A field outside the string changes nothing; a number too wide for its field shows nines.
  struct Case {
    char const* before;
    bool real;
    double value;
    int first, last;
    long flags;
    char fill;
    int width, precision, written;
    char const* after;
  } const cases[] = {
      {"|....|....|", false, 42, 1, 4, 0, ' ', 0, 0, 4, "|  42|....|"},
      {"|  42|....|", false, 123456, 6, 9, 0, ' ', 0, 0, 4, "|  42|9999|"},
      {"|-999|9999|", false, 255, 6, 9, 64 | 512, '0', 0, 0, 4, "|-999|00FF|"},
      {"|-999|00FF|", false, 1, 8, 20, 0, ' ', 0, 0, -1, "|-999|00FF|"},
      {"x=", false, 7, 0, -1, 1024, '0', 4, 0, 4, "x=+007"},
      {"[      ]", true, 3.14159, 1, 6, 0, ' ', 0, 2, 6, "[  3.14]"},
      // Zero fill goes between the sign and the digits.
      {"|....|......|", false, -42, 1, 4, 0, '0', 0, 0, 4, "|-042|......|"},
      // A stream width beyond the field does not fit: nines, sign kept.
      {"| -42|-002.5|", false, -1, 1, 4, 0, ' ', 6, 0, 4, "|-999|-002.5|"},
      {"[....]", false, 8, 1, 4, 32 | 128, ' ', 0, 0, 4, "[ 010]"},
      // Appending: a last of -1 adds the number at the end.
      {"", true, 2.0, 0, -1, 256, ' ', 0, -1, 7, "2.00000"},
      {"ab", false, 1, 0, 2, 0, ' ', 0, 0, -1, "ab"},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(std::string(c.before) + " <- " + std::to_string(c.value));
    vString s(c.before);
    int const written =
        c.real ? s.write(static_cast<float>(c.value), c.first, c.last, c.flags, c.fill, c.width, c.precision)
               : s.write(static_cast<int>(c.value), c.first, c.last, c.flags, c.fill, c.width, c.precision);
    EXPECT_EQ(c.written, written);
    EXPECT_STREQ(c.after, s.c_str());
  }
  // Appending takes at most fifty characters.
  vString s("v=");
  EXPECT_EQ(50, s.write(7, 0, -1, 0, '.', 70, 0));
  EXPECT_EQ(std::string(s.c_str(), s.length()), "v=" + std::string(50, '.'));
  vString out;
  out << 0.1 << ' ' << 1.0e20 << ' ' << 3.14159265358979 << ' ' << 3.14159265f;
  EXPECT_EQ(out, "0.1 1E+20 3.14159265358979 3.141593");
  out.erase();
  out << 12 << ' ' << 9000000000LL << "/" << vString("x");
  EXPECT_EQ(out, "12 9000000000/x");
  EXPECT_EQ(vString::number(1234567890123LL), "1234567890123");
  EXPECT_EQ(vString::number(0.5f), "0.5");
}

TEST(vStringChange, EditsInPlace) {
  vString s("a.b.c");
  s.replace('.', '/');
  EXPECT_EQ(s, "a/b/c");
  s.replace(vString("/"), vString("::"));
  EXPECT_EQ(s, "a::b::c");
  vString noRescan("aa");
  noRescan.replace(vString("a"), vString("aa"));
  EXPECT_EQ(noRescan, "aaaa");
  vString r("hello world");
  r.replace(0, 5, vString("xxGOODBYExx"), 2, 7);
  EXPECT_EQ(r, "GOODBYE world");
  r.removeAll('o');
  EXPECT_EQ(r, "GOODBYE wrld");
  r.reverse();
  EXPECT_EQ(r, "dlrw EYBDOOG");
  vString c("hELLO wORLD");
  c.capitalize();
  EXPECT_EQ(c, "Hello world");
  vString w("hELLO wORLD-foo 3rd x_y \xe9t\xe9");
  w.capitalizeEveryWord();
  EXPECT_EQ(w, "Hello World-Foo 3rd X_Y \xe9T\xe9");
  vString n("a\x01" "b\xff" "c\rd\x02");
  n.replaceNonAscii();  // up to a carriage return
  EXPECT_EQ(std::string(n.c_str(), n.length()), std::string("a b c\0d\x02", 8));
  vString twice("ab");
  twice += twice;
  twice.append(twice);
  EXPECT_EQ(twice, "abababab");
  vString t("xyz");
  t = t.c_str() + 1;
  EXPECT_EQ(t, "yz");
}

#ifdef RONDO_TEST_ADDRESS_SPACE_CAP
// Out of memory a string throws its own exception, and one that cannot grow keeps its text.
TEST(vStringDeathTest, AllocationFailures) {
  EXPECT_EXIT(
      {
        testMapLargeBlocksExactly();
        TestAddressSpaceCap cap(16u << 20);
        if (!cap.isCapped()) std::exit(2);
        vString grow("abc");
        try {
          grow.extendTo(256 << 20, '.');
        } catch (UtlExcept const& e) {
          std::fprintf(stderr, "[%s|%s|%s]\n", e.getFileName().c_str(), e.getMethod().c_str(), e.getReason().c_str());
        }
        std::fprintf(stderr, "[%s]\n", grow.c_str());
        std::exit(0);
      },
      ::testing::ExitedWithCode(0),
      "^\\[vString\\|vString::myReallocate\\(\\)\\|Could not reallocate memory for data.\\]\n\\[abc\\]\n$");
}
#endif

TEST(vStringMatch, ShellPatternsSetsAndBacktracking) {
  vString const s("trace_042.sgy");
  for (char const* p : {"*", "trace_???.sgy", "trace_[0-9][0-9][0-9].*", "trace_[^1-9]*", "*_*2.s*y"})
    EXPECT_TRUE(s.match(vString(p))) << p;
  for (char const* p : {"trace_??.sgy", "TRACE*", "trace"}) EXPECT_FALSE(s.match(vString(p))) << p;
  struct Case {
    char const* text;
    char const* pattern;
    bool matches;
  };
  Case const cases[] = {
      // A '-' first or last in a set, or after a range, is a member.
      {"-", "[-a]", true}, {"-", "[a-]", true}, {"b", "[-a]", false}, {"-", "[a-c-x]", true},
      {"", "?", false}, {"m", "[a-cq-s]", false},
      {"b", "[^a-c]", false}, {"d", "[^a-c]", true},
      // A set always takes one character, also when negated.
      {"", "[^a]", false}, {"ab", "[^x]", false},
      // '*' is tried at every position, so a later occurrence can still match.
      {"abXcdXef", "*X*X*", true}, {"aXbXc", "*Xc", true}, {"aXbXc", "*Xd", false}, {"", "*?", false}, {"aXb", "a.b", false},
  };
  for (Case const& c : cases)
    EXPECT_EQ(c.matches, vString(c.text).match(vString(c.pattern))) << c.text << " ~ " << c.pattern;
}

TEST(vStringEnv, ExpandKnownNamesOnly) {
  ::setenv("VSTRING_TEST_A", "alpha", 1);
  ::setenv("VSTRING_TEST_LOOP", "${VSTRING_TEST_A}", 1);
  ::unsetenv("VSTRING_TEST_NONE");
  vString s("x/${VSTRING_TEST_A}/${VSTRING_TEST_NONE}/${VSTRING_TEST_LOOP}/${open");
  s.expandEnvironment();
  EXPECT_EQ(s, "x/alpha/${VSTRING_TEST_NONE}/${VSTRING_TEST_A}/${open");
}

#ifdef RONDO_TEST_ADDRESS_SPACE_CAP
// The one failure in formatting, out of memory adapting the format: its copy fits under the cap, the adapted not.
TEST(vStringPrintfDeathTest, ExceptionWhileFormattingIsFatal) {
  EXPECT_EXIT(
      {
        testMapLargeBlocksExactly();
        size_t const n = 4u << 20;
        std::string const format = "%%" + std::string(n, 'x');
        // The reason names the format; the message buffer holds 10239 of it.
        std::string const expected = ("Exception while printing format '" + format +
                                      "'. Check for using %d when printing vInstances, use %lld instead.")
                                         .substr(0, 10239);
        vString s("old");
        TestAddressSpaceCap cap(n + n / 2);
        if (!cap.isCapped()) std::exit(2);
        try {
          s.printf(format.c_str(), 0);
        } catch (UtlExcept const& e) {
          if (e.getReason() == expected.c_str() && e.getMethod() == "vString::printf" && s == "old")
            std::fprintf(stderr, "checked\n");
        }
        std::exit(0);
      },
      ::testing::ExitedWithCode(0), "FATAL(.|\n)*vString::printf(.|\n)*checked");
}
#endif

TEST(vStringStream, QuotedAndPlainWords) {
  // Only the opening mark closes; words end at a blank or line end, not at a quote; an open quote runs to the end.
  std::istringstream in("  \"two words\" 'say \"hi\"'\t\n ab\"c'd \"unterminated");
  vString s;
  s.getQuotedString(in, false);
  EXPECT_EQ(s, "two words");
  for (char const* word : {"say \"hi\"", "ab\"c'd", "unterminated"}) {
    in >> s;
    EXPECT_EQ(s, word);
  }
  EXPECT_FALSE(in >> s);
  EXPECT_TRUE(s.isSharedEmpty());
  std::istringstream kept("\"a b\"");
  s.getQuotedString(kept, true);
  EXPECT_EQ(s, "\"a");
  std::ostringstream out;
  out << vString("written") << '|' << vString();
  EXPECT_EQ("written|", out.str());
}
