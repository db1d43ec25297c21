#ifndef FOUNDATION_SYSTEMPROPERTYMANAGER_H
#define FOUNDATION_SYSTEMPROPERTYMANAGER_H

// SystemPropertyManager: the one call by which code reads a setting. The
// environment variable "SP_<SECTION>_<NAME>" comes first and overrides any
// table; otherwise the SystemPropertyTable answers (and is loaded on first
// need, so a process that finds all it asks for in its environment never
// reads a table file).

#include "foundation/SystemProperty.h"
#include "foundation/vUCString.h"

class SystemPropertyManager {
 public:
  static bool hasSystemProperty(vUCString const& section, vUCString const& name);
  // Absent from both is fatal: test with hasSystemProperty first.
  static SystemProperty getSystemProperty(vUCString const& section, vUCString const& name);
};

#endif
