#ifndef FOUNDATION_VDATE_H
#define FOUNDATION_VDATE_H

// vDate: a calendar time to the second, kept both as seconds since the epoch
// and as the broken-down fields of local time (default) or UTC. A negative
// time, a C library failure or a field out of range makes the date invalid,
// with time -1. Not thread-safe (localtime/gmtime).
//
// Formats: formatLONG "YYYYMMDDhhmmss" (14 characters) and formatRONDO
// "D-MON-YYYY hh:mm:ss" with a zero-padded day (20 characters).

#include <ctime>

#include "foundation/vString.h"

class vDate {
 public:
  enum State { Valid = 0, Invalid = 1 };
  enum Format { formatLONG = 0, formatRONDO = 1 };

  // Valid means now; Invalid an invalid date.
  explicit vDate(State state = Valid);
  explicit vDate(long seconds, bool localTime = true);
  vDate(vDate const& other) = default;
  vDate& operator=(vDate const& other) = default;
  virtual ~vDate();

  // Arithmetic in seconds.
  virtual vDate operator+(long seconds) const;
  virtual vDate operator-(long seconds) const;
  virtual vDate& operator-=(long seconds);
  virtual vDate& operator+=(long seconds);
  virtual bool operator==(long seconds) const;
  virtual bool operator!=(long seconds) const;
  virtual bool operator<(long seconds) const;
  virtual bool operator<=(long seconds) const;
  virtual bool operator>(long seconds) const;
  virtual bool operator>=(long seconds) const;
  // The same with the other date's seconds.
  virtual vDate operator+(vDate const& other) const;
  virtual vDate operator-(vDate const& other) const;
  virtual vDate& operator-=(vDate const& other);
  virtual vDate& operator+=(vDate const& other);
  virtual bool operator==(vDate const& other) const;
  virtual bool operator!=(vDate const& other) const;
  virtual bool operator<(vDate const& other) const;
  virtual bool operator<=(vDate const& other) const;
  virtual bool operator>(vDate const& other) const;
  virtual bool operator>=(vDate const& other) const;

  // Seconds since the epoch, -1 when invalid.
  virtual long getSeconds() const;
  // "%d-%b-%y"
  virtual vString getDate() const;
  // "%H:%M:%S"
  virtual vString getTime() const;
  // "%d-%b-%y %H:%M:%S"
  virtual vString getDateTime() const;
  // "%b %d %H:%M" within the current year, "%b %d  %Y" otherwise (as ls).
  virtual vString getUnixDateTime() const;
  // ctime() without its line end.
  virtual vString getCTime() const;
  // getDateTime() into buffer, which must hold 19 bytes.
  virtual void get(char* buffer) const;
  virtual vString getFormatted(Format format) const;
  virtual void getFormatted(Format format, vString& out) const;
  // Parses a formatted date; a wrong length or format throws UtlExcept.
  virtual void setFormatted(Format format, vString const& text);
  // Adds to the fields and normalises (mktime).
  virtual void add(int seconds, int minutes, int hours, int days, int months, int years);
  virtual bool isLocalTime() const;
  virtual void setLocalTime(bool local);
  // Each value -1 leaves its field alone; out of range throws UtlExcept.
  virtual void set(int second, int minute, int hour, int day, int month, int year);
  virtual void setYear(int year);
  virtual void setMonth(int month);
  virtual void setDay(int day);
  virtual void setHour(int hour);
  virtual void setMinute(int minute);
  virtual void setSecond(int second);
  // Full year, e.g. 2024.
  virtual int getYear() const;
  // 20 for 2024
  virtual int getCentury() const;
  // 2000 for 2024
  virtual int getCenturyFull() const;
  // 24 for 2024
  virtual int getCenturyYear() const;
  // 1-12
  virtual int getMonth() const;
  virtual int getDay() const;
  virtual int getHour() const;
  virtual int getMinute() const;
  virtual int getSecond() const;
  virtual bool isDST() const;
  virtual bool isValid() const;
  virtual void setInvalid();
  virtual void setSeconds(long seconds);

  static vDate getNow();
  // The present time in formatRONDO.
  static vString getNowFormatted();

 protected:
  // "JAN".."DEC"; throws for a month outside 1-12.
  static vString myGetMonthName(int month);
  // 1-12 from the first three letters, any case; throws when unknown.
  static int myGetMonthNumber(vString const& name);
  void myUpdateTime();
  void myFromFields(int second, int minute, int hour, int day, int month, int year);
  vString myStrftime(char const* format) const;

  bool m_localTime;
  int m_state;
  // Broken-down fields: second to time zone, month 0-11, year less 1900.
  struct tm m_tm;
  long m_time;
};

#endif
