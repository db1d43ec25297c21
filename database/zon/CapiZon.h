#ifndef DATABASE_ZON_CAPIZON_H
#define DATABASE_ZON_CAPIZON_H

// CapiZon: the settings of the database back end, in the system property
// section "CAPIZON". TIMERS switches on the step timing lines that the
// project and the stores print to standard output.

#include "foundation/vString.h"

class CapiZon {
 public:
  static vString getSystemPropertySection();
  // Read once from the property TIMERS and kept; enableTimers overrides it.
  static bool timersEnabled();
  static void enableTimers(bool on);
  // One timing line: the method, the step, ": " and the time of day.
  static void timer(char const* method, int step);

 private:
  static int s_timers;  // -1 until read
};

#endif
