#include "foundation/vDate.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "foundation/UtlExcept.h"

namespace {

char const s_months[] = "JANFEBMARAPRMAYJUNJULAUGSEPOCTNOVDEC";

[[noreturn]] void rangeError(char const* reason) { throw UtlExcept(reason, "vDate::set()", -1, "vDate"); }

// Parses n decimal digits at text+pos; -2 (never a valid field) when any of
// them is not a digit.
int digits(vString const& text, unsigned int pos, unsigned int n) {
  int v = 0;
  for (unsigned int i = 0; i < n; ++i) {
    char const c = text[static_cast<int>(pos + i)];
    if (c < '0' || c > '9') return -2;
    v = v * 10 + (c - '0');
  }
  return v;
}

}  // namespace

vDate::vDate(State state) : m_localTime(true), m_state(Invalid), m_tm(), m_time(-1) {
  if (state == Valid)
    setSeconds(static_cast<long>(std::time(nullptr)));
  else
    setInvalid();
}

vDate::vDate(long seconds, bool localTime) : m_localTime(localTime), m_state(Invalid), m_tm(), m_time(-1) {
  setSeconds(seconds);
}

vDate::~vDate() {}

void vDate::myUpdateTime() {
  if (m_time < 0) {
    setInvalid();
    return;
  }
  time_t const t = static_cast<time_t>(m_time);
  struct tm out;
  struct tm* r = m_localTime ? localtime_r(&t, &out) : gmtime_r(&t, &out);
  if (!r) {
    setInvalid();
    return;
  }
  m_tm = out;
  m_state = Valid;
}

void vDate::setInvalid() {
  m_state = Invalid;
  m_time = -1;
  std::memset(&m_tm, 0, sizeof m_tm);
}

void vDate::setSeconds(long seconds) {
  m_time = seconds;
  myUpdateTime();
}

long vDate::getSeconds() const { return m_time; }
bool vDate::isValid() const { return m_state == Valid; }
bool vDate::isLocalTime() const { return m_localTime; }

void vDate::setLocalTime(bool local) {
  m_localTime = local;
  if (m_state == Valid) myUpdateTime();
}

// --- arithmetic ----------------------------------------------------------------

vDate vDate::operator+(long seconds) const {
  vDate r(*this);
  r += seconds;
  return r;
}

vDate vDate::operator-(long seconds) const {
  vDate r(*this);
  r -= seconds;
  return r;
}

vDate& vDate::operator+=(long seconds) {
  if (m_state == Valid) setSeconds(m_time + seconds);
  return *this;
}

vDate& vDate::operator-=(long seconds) {
  if (m_state == Valid) setSeconds(m_time - seconds);
  return *this;
}

vDate vDate::operator+(vDate const& other) const { return *this + other.m_time; }
vDate vDate::operator-(vDate const& other) const { return *this - other.m_time; }
vDate& vDate::operator+=(vDate const& other) { return *this += other.m_time; }
vDate& vDate::operator-=(vDate const& other) { return *this -= other.m_time; }

bool vDate::operator==(long s) const { return m_time == s; }
bool vDate::operator!=(long s) const { return m_time != s; }
bool vDate::operator<(long s) const { return m_time < s; }
bool vDate::operator<=(long s) const { return m_time <= s; }
bool vDate::operator>(long s) const { return m_time > s; }
bool vDate::operator>=(long s) const { return m_time >= s; }
bool vDate::operator==(vDate const& o) const { return m_time == o.m_time; }
bool vDate::operator!=(vDate const& o) const { return m_time != o.m_time; }
bool vDate::operator<(vDate const& o) const { return m_time < o.m_time; }
bool vDate::operator<=(vDate const& o) const { return m_time <= o.m_time; }
bool vDate::operator>(vDate const& o) const { return m_time > o.m_time; }
bool vDate::operator>=(vDate const& o) const { return m_time >= o.m_time; }

// --- text ------------------------------------------------------------------------

vString vDate::myStrftime(char const* format) const {
  if (m_state != Valid) return vString();
  char buffer[128];
  size_t const n = std::strftime(buffer, sizeof buffer, format, &m_tm);
  buffer[n] = 0;
  return vString(buffer);
}

vString vDate::getDate() const { return myStrftime("%d-%b-%y"); }
vString vDate::getTime() const { return myStrftime("%H:%M:%S"); }
vString vDate::getDateTime() const { return myStrftime("%d-%b-%y %H:%M:%S"); }

vString vDate::getUnixDateTime() const {
  vDate now(Valid);
  now.setLocalTime(m_localTime);
  if (now.getYear() == getYear()) return myStrftime("%b %d %H:%M");
  return myStrftime("%b %d  %Y");
}

vString vDate::getCTime() const {
  if (m_state != Valid) return vString();
  char buffer[64];
  if (!asctime_r(&m_tm, buffer)) return vString();
  vString s(buffer);
  s.trimRight();
  return s;
}

void vDate::get(char* buffer) const {
  if (!buffer) return;
  vString s = getDateTime();
  std::memcpy(buffer, s.c_str(), s.length() + 1);
}

vString vDate::getFormatted(Format format) const {
  vString out;
  getFormatted(format, out);
  return out;
}

void vDate::getFormatted(Format format, vString& out) const {
  switch (format) {
    case formatLONG:
      out = myStrftime("%Y%m%d%H%M%S");
      return;
    case formatRONDO: {
      if (m_state != Valid) {
        out.erase();
        return;
      }
      char layout[64];
      std::snprintf(layout, sizeof layout, "%%d-%s-%%Y %%H:%%M:%%S", myGetMonthName(m_tm.tm_mon + 1).c_str());
      out = myStrftime(layout);
      return;
    }
  }
  throw UtlExcept("Invalid format specified!", "vDate::getFormatted()", -1, "vDate");
}

void vDate::setFormatted(Format format, vString const& text) {
  switch (format) {
    case formatLONG:
      if (text.length() != 14)
        throw UtlExcept("formatLONG length must = 14 characters!", "vDate::setFormatted()", -1, "vDate");
      set(digits(text, 12, 2), digits(text, 10, 2), digits(text, 8, 2), digits(text, 6, 2), digits(text, 4, 2),
          digits(text, 0, 4));
      return;
    case formatRONDO:
      if (text.length() != 20)
        throw UtlExcept("formatRONDO length must = 20 characters!", "vDate::setFormatted()", -1, "vDate");
      set(digits(text, 18, 2), digits(text, 15, 2), digits(text, 12, 2), digits(text, 0, 2),
          myGetMonthNumber(text.substr(3, 3)), digits(text, 7, 4));
      return;
  }
  throw UtlExcept("Invalid format specified!", "vDate::setFormatted()", -1, "vDate");
}

// Both look-ups in the month table report under the one method name of the
// table, myGetMonthValue.
vString vDate::myGetMonthName(int month) {
  if (month < 1 || month > 12)
    throw UtlExcept("Month requested is out of range!", "vDate::myGetMonthValue()", -1, "vDate");
  return vString(3, s_months + 3 * (month - 1));
}

int vDate::myGetMonthNumber(vString const& name) {
  vString key = name.getLeft(3);
  key.toUpperCase();
  if (key.length() == 3)
    for (int m = 0; m < 12; ++m)
      if (std::strncmp(s_months + 3 * m, key.c_str(), 3) == 0) return m + 1;
  throw UtlExcept("Month not found!", "vDate::myGetMonthValue()", -1, "vDate");
}

// --- fields ----------------------------------------------------------------------

void vDate::myFromFields(int second, int minute, int hour, int day, int month, int year) {
  struct tm t = m_tm;
  if (m_state != Valid) {
    std::memset(&t, 0, sizeof t);
    t.tm_mday = 1;
    t.tm_year = 70;
  }
  if (second != -1) t.tm_sec = second;
  if (minute != -1) t.tm_min = minute;
  if (hour != -1) t.tm_hour = hour;
  if (day != -1) t.tm_mday = day;
  if (month != -1) t.tm_mon = month - 1;
  if (year != -1) t.tm_year = year - 1900;
  t.tm_isdst = -1;
  time_t const s = m_localTime ? std::mktime(&t) : timegm(&t);
  if (s == static_cast<time_t>(-1)) {
    setInvalid();
    return;
  }
  setSeconds(static_cast<long>(s));
}

void vDate::set(int second, int minute, int hour, int day, int month, int year) {
  char const* reason = nullptr;
  if (second != -1 && (second < 0 || second > 59))
    reason = "Second parameter is out of range!";
  else if (minute != -1 && (minute < 0 || minute > 59))
    reason = "Minute parameter is out of range!";
  else if (hour != -1 && (hour < 0 || hour > 23))
    reason = "Hour parameter is out of range!";
  else if (day != -1 && (day < 1 || day > 31))
    reason = "Day parameter is out of range!";
  else if (month != -1 && (month < 1 || month > 12))
    reason = "Month parameter is out of range!";
  else if (year != -1 && year < 1970)
    reason = "Year parameter is out of range!";
  if (reason) {
    setInvalid();
    rangeError(reason);
  }
  myFromFields(second, minute, hour, day, month, year);
}

void vDate::add(int seconds, int minutes, int hours, int days, int months, int years) {
  if (m_state != Valid) return;
  struct tm t = m_tm;
  t.tm_sec += seconds;
  t.tm_min += minutes;
  t.tm_hour += hours;
  t.tm_mday += days;
  t.tm_mon += months;
  t.tm_year += years;
  t.tm_isdst = -1;
  time_t const s = m_localTime ? std::mktime(&t) : timegm(&t);
  if (s == static_cast<time_t>(-1)) {
    setInvalid();
    return;
  }
  setSeconds(static_cast<long>(s));
}

void vDate::setYear(int year) { set(-1, -1, -1, -1, -1, year); }
void vDate::setMonth(int month) { set(-1, -1, -1, -1, month, -1); }
void vDate::setDay(int day) { set(-1, -1, -1, day, -1, -1); }
void vDate::setHour(int hour) { set(-1, -1, hour, -1, -1, -1); }
void vDate::setMinute(int minute) { set(-1, minute, -1, -1, -1, -1); }
void vDate::setSecond(int second) { set(second, -1, -1, -1, -1, -1); }

int vDate::getYear() const { return m_tm.tm_year + 1900; }
int vDate::getCentury() const { return getYear() / 100; }
int vDate::getCenturyFull() const { return getCentury() * 100; }
int vDate::getCenturyYear() const { return getYear() % 100; }
int vDate::getMonth() const { return m_tm.tm_mon + 1; }
int vDate::getDay() const { return m_tm.tm_mday; }
int vDate::getHour() const { return m_tm.tm_hour; }
int vDate::getMinute() const { return m_tm.tm_min; }
int vDate::getSecond() const { return m_tm.tm_sec; }
bool vDate::isDST() const { return m_tm.tm_isdst > 0; }

vDate vDate::getNow() { return vDate(Valid); }
vString vDate::getNowFormatted() { return getNow().getFormatted(formatRONDO); }
