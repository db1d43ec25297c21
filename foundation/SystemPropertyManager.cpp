#include "foundation/SystemPropertyManager.h"

#include "foundation/SystemPropertyEnvironment.h"
#include "foundation/SystemPropertyTable.h"

bool SystemPropertyManager::hasSystemProperty(vUCString const& section, vUCString const& name) {
  if (SystemPropertyEnvironment::hasSystemProperty(section, name)) return true;
  return SystemPropertyTable::instance().hasSystemProperty(section, name);
}

SystemProperty SystemPropertyManager::getSystemProperty(vUCString const& section, vUCString const& name) {
  if (SystemPropertyEnvironment::hasSystemProperty(section, name))
    return SystemPropertyEnvironment::getSystemProperty(section, name);
  return SystemPropertyTable::instance().getSystemProperty(section, name);
}
