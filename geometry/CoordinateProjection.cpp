#include "geometry/CoordinateProjection.h"

CoordinateProjection::CoordinateProjection() : m_pcsCode(0), m_utmZone(0), m_north(true), m_feet(false) {}

CoordinateProjection::~CoordinateProjection() = default;

void CoordinateProjection::setPCSCode(int code) {
  m_pcsCode = code;
  notify();
}

void CoordinateProjection::setUTMZone(int zone) {
  m_utmZone = zone;
  notify();
}

void CoordinateProjection::setNorthernHemisphere(bool north) {
  m_north = north;
  notify();
}

void CoordinateProjection::setFeet(bool feet) {
  m_feet = feet;
  notify();
}
