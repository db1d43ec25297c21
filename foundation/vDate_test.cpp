#include "foundation/vDate.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/UtlExcept.h"

namespace {

// 2023-11-14 22:13:20 UTC, a Tuesday.
long const kSample = 1700000000L;

class MonthTable : public vDate {
 public:
  static vString name(int m) { return myGetMonthName(m); }
  static int number(vString const& s) { return myGetMonthNumber(s); }
};

// "method: reason" (with the file: "file/method: reason") of the UtlExcept that f raises.
template <class F>
std::string failureOf(F f, bool withFile = false) {
  try {
    f();
  } catch (UtlExcept const& e) {
    return (withFile ? std::string(e.getFileName().c_str()) + "/" : std::string()) + e.getMethod().c_str() + ": " +
           e.getReason().c_str();
  }
  return "(nothing raised)";
}

}  // namespace

TEST(vDateFields, UtcGettersAndTexts) {
  vDate d(kSample, false);
  EXPECT_FALSE(d.isLocalTime());
  // year, century, full century, year of century, month, day, hour, minute, second
  EXPECT_EQ((std::vector<int>{d.getYear(), d.getCentury(), d.getCenturyFull(), d.getCenturyYear(), d.getMonth(),
                              d.getDay(), d.getHour(), d.getMinute(), d.getSecond()}),
            (std::vector<int>{2023, 20, 2000, 23, 11, 14, 22, 13, 20}));
  EXPECT_FALSE(d.isDST());
  EXPECT_EQ(d.getFormatted(vDate::formatLONG), "20231114221320");
  EXPECT_EQ(d.getFormatted(vDate::formatRONDO), "14-NOV-2023 22:13:20");
  vDate early(3 * 86400L + 5, false);
  EXPECT_EQ(early.getFormatted(vDate::formatRONDO), "04-JAN-1970 00:00:05");
  EXPECT_EQ(d.getDateTime(), "14-Nov-23 22:13:20");
  EXPECT_EQ(d.getCTime(), "Tue Nov 14 22:13:20 2023");
  EXPECT_EQ(d.getUnixDateTime(), "Nov 14  2023");
  char buffer[32];
  d.get(buffer);
  EXPECT_STREQ("14-Nov-23 22:13:20", buffer);
  // Noon on the first of January of this year: time of day, no year.
  vDate thisYear(vDate::Valid);
  thisYear.set(5, 4, 12, 1, 1, -1);
  EXPECT_EQ(thisYear.getUnixDateTime(), "Jan 01 12:04");
  // Another year: the year after two blanks, no time.
  vDate other(thisYear);
  other.setYear(thisYear.getYear() - 1);
  EXPECT_EQ(other.getUnixDateTime(), vString("Jan 01  ") + vString::number(thisYear.getYear() - 1));
  EXPECT_EQ(vDate(vDate::Invalid).getUnixDateTime(), "");
}

TEST(vDateFormat, SetFormattedRoundTripsErrorsAndMonthNames) {
  vDate d(0L, false);
  d.setFormatted(vDate::formatRONDO, vString("05-MAR-2021 01:02:03"));
  EXPECT_EQ(1614906123L, d.getSeconds());
  d.setFormatted(vDate::formatLONG, vString("19991231235959"));
  EXPECT_EQ(946684799L, d.getSeconds());
  d.setFormatted(vDate::formatRONDO, vString("01-dec-2001 00:00:00"));
  EXPECT_EQ(12, d.getMonth());

  d = vDate(kSample, false);
  struct Case {
    int format;
    char const* text;
    char const* reason;
  } const cases[] = {
      {vDate::formatLONG, "2023", "vDate::setFormatted(): formatLONG length must = 14 characters!"},
      {vDate::formatRONDO, "5-MAR-2021 01:02:03", "vDate::setFormatted(): formatRONDO length must = 20 characters!"},
      {7, "x", "vDate::setFormatted(): Invalid format specified!"},
      // A bad field makes the date invalid.
      {vDate::formatLONG, "2023111422135x", "vDate::set(): Second parameter is out of range!"},
  };
  for (Case const& c : cases)
    EXPECT_EQ(failureOf([&] { d.setFormatted(static_cast<vDate::Format>(c.format), vString(c.text)); }), c.reason)
        << c.text;
  EXPECT_FALSE(d.isValid());

  EXPECT_EQ(MonthTable::name(12), "DEC");
  EXPECT_EQ(9, MonthTable::number(vString("September")));
  EXPECT_EQ(failureOf([] { MonthTable::name(13); }), "vDate::myGetMonthValue(): Month requested is out of range!");
  EXPECT_EQ(failureOf([] { MonthTable::number(vString("XYZ")); }), "vDate::myGetMonthValue(): Month not found!");
  // Only whole table entries match, not a run across two of them.
  EXPECT_THROW(MonthTable::number(vString("ANF")), UtlExcept);
}

TEST(vDateRanges, FieldsSettersAndInvalidDates) {
  struct Case {
    int s, mi, h, d, mo, y;
    char const* reason;
  } const cases[] = {
      {60, -1, -1, -1, -1, -1, "Second parameter is out of range!"},
      {-1, 60, -1, -1, -1, -1, "Minute parameter is out of range!"},
      {-1, -1, 24, -1, -1, -1, "Hour parameter is out of range!"},
      {-1, -1, -1, 0, -1, -1, "Day parameter is out of range!"},
      {-1, -1, -1, -1, 13, -1, "Month parameter is out of range!"},
      {-1, -1, -1, -1, -1, 1969, "Year parameter is out of range!"},
  };
  for (Case const& c : cases) {
    vDate d(kSample, false);
    EXPECT_EQ(failureOf([&] { d.set(c.s, c.mi, c.h, c.d, c.mo, c.y); }, true),
              std::string("vDate/vDate::set(): ") + c.reason);
    EXPECT_EQ(-1, d.getSeconds());
  }
  vDate d(kSample, false);
  d.setYear(2020);
  d.setMonth(2);
  d.setDay(29);
  d.setHour(1);
  d.setMinute(2);
  d.setSecond(3);
  EXPECT_EQ(d.getFormatted(vDate::formatLONG), "20200229010203");
  d.set(-1, -1, -1, 31, 4, -1);  // 31 April rolls over
  EXPECT_EQ(d.getFormatted(vDate::formatLONG), "20200501010203");
  vDate invalid(vDate::Invalid);
  invalid.setLocalTime(false);
  invalid.set(0, 0, 0, 2, 1, 1970);
  EXPECT_EQ(86400L, invalid.getSeconds());
  EXPECT_EQ(vDate(vDate::Invalid).getFormatted(vDate::formatLONG), "");
  EXPECT_FALSE(vDate(-5L).isValid());
  vDate c(kSample, false);
  c.setInvalid();
  EXPECT_FALSE(c.isValid());
  c.setSeconds(10);
  EXPECT_TRUE(c.isValid());
}

TEST(vDateArithmetic, SecondsAndDates) {
  vDate d(kSample, false);
  vDate later = d + 3600L;
  EXPECT_EQ(23, later.getHour());
  EXPECT_TRUE(later > d && d <= later && d != later && later - 3600L == d);
  EXPECT_TRUE(d == kSample && d < kSample + 1 && d != 0L);
  vDate span(3600L, false);
  EXPECT_EQ(kSample, (later - span).getSeconds());
  EXPECT_EQ(kSample + 7200L, (later + span).getSeconds());
  d += 60L;
  d -= 120L;
  EXPECT_EQ(12, d.getMinute());
  // add normalises the fields.
  d = vDate(kSample, false);
  d.add(0, 0, 0, 20, 0, 0);
  EXPECT_EQ(d.getFormatted(vDate::formatLONG), "20231204221320");
  d.add(40, 46, 1, 0, 1, 1);
  EXPECT_EQ(d.getFormatted(vDate::formatLONG), "20250105000000");
}
