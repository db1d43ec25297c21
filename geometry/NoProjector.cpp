#include "geometry/NoProjector.h"

#include "foundation/Message.h"

namespace {
char const* const Unavailable = "Operation unavailable--the lat/long map projection toolkit is not available.";
}

NoProjector::NoProjector() = default;

NoProjector::~NoProjector() = default;

void NoProjector::update() {}

bool NoProjector::isValid() const { return false; }

vString NoProjector::getDescription(int) { return "Projection technology not available on this platform."; }

bool NoProjector::convertLatLongToRW(int, double*, double*, int) {
  Message::error("NoProjector::convertLatLongToRW", 0, "%s", Unavailable);
  return false;
}

bool NoProjector::convertRWToLatLong(int, double*, double*) {
  Message::error("NoProjector::convertRWToLatLong", 0, "%s", Unavailable);
  return false;
}
