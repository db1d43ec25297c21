#ifndef FOUNDATION_SYSTEMPROPERTYENVIRONMENT_H
#define FOUNDATION_SYSTEMPROPERTYENVIRONMENT_H

// SystemPropertyEnvironment: system properties given per process by the
// environment. The variable of section S and name N is "SP_<S>_<N>" in upper
// case; its text is split at blanks into the property's values, a double-
// quoted part staying one value. A variable set to nothing is a property
// without values. Read afresh at every call: nothing is cached.

#include "foundation/SystemProperty.h"
#include "foundation/vString.h"
#include "foundation/vUCString.h"

class SystemPropertyEnvironment {
 public:
  static bool hasSystemProperty(vUCString const& section, vUCString const& name);
  // Absent is fatal.
  static SystemProperty getSystemProperty(vUCString const& section, vUCString const& name);

  static void myMakeEnvironmentName(vUCString const& section, vUCString const& name, vString& out);
};

#endif
