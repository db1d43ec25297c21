#include "database/zon/CapiZon.h"

#include <iostream>

#include "foundation/SystemProperty.h"
#include "foundation/SystemPropertyManager.h"
#include "foundation/vDate.h"

int CapiZon::s_timers = -1;

vString CapiZon::getSystemPropertySection() { return vString("CAPIZON"); }

bool CapiZon::timersEnabled() {
  if (s_timers < 0) {
    vUCString section(getSystemPropertySection().c_str());
    s_timers = SystemPropertyManager::hasSystemProperty(section, "TIMERS") &&
                       SystemPropertyManager::getSystemProperty(section, "TIMERS").getBoolValue(0)
                   ? 1
                   : 0;
  }
  return s_timers == 1;
}

void CapiZon::enableTimers(bool on) { s_timers = on ? 1 : 0; }

void CapiZon::timer(char const* method, int step) {
  if (!timersEnabled()) return;
  std::cout << method << " " << step << ": " << vDate::getNowFormatted().c_str() << std::endl;
}
