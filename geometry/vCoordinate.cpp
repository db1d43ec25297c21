#include "geometry/vCoordinate.h"

#include <cmath>
#include <ostream>

vCoordinate& vCoordinate::operator+=(vCoordinate const& o) {
  m_x += o.m_x;
  m_y += o.m_y;
  return *this;
}

vCoordinate& vCoordinate::operator-=(vCoordinate const& o) {
  m_x -= o.m_x;
  m_y -= o.m_y;
  return *this;
}

bool vCoordinate::operator<(vCoordinate const& o) const { return m_x < o.m_x || (m_x == o.m_x && m_y < o.m_y); }

double vCoordinate::getDistance(vCoordinate const& o) const { return std::hypot(m_x - o.m_x, m_y - o.m_y); }

vCoordinate& vCoordinate::rotate(double angle) {
  double const c = std::cos(angle);
  double const s = std::sin(angle);
  double const x = m_y * s + m_x * c;
  m_y = m_y * c - m_x * s;
  m_x = x;
  return *this;
}

bool vCoordinate::within(vCoordinate const& other, double tolerance) const {
  return std::fabs(m_x - other.m_x) <= tolerance && std::fabs(m_y - other.m_y) <= tolerance;
}

double vCoordinate::azimuthInRadians(vCoordinate const& from, vCoordinate const& to) {
  return std::atan2(to.m_y - from.m_y, to.m_x - from.m_x);
}

double vCoordinate::azimuthInDegrees(vCoordinate const& from, vCoordinate const& to) {
  return convertRadiansToDegrees(azimuthInRadians(from, to));
}

double vCoordinate::convertDegreesToRadians(double degrees) { return degrees * M_PI / 180.0; }

double vCoordinate::convertRadiansToDegrees(double radians) { return radians * 180.0 / M_PI; }

std::ostream& operator<<(std::ostream& out, vCoordinate const& c) {
  return out << "(" << c.getX() << ", " << c.getY() << ")";
}
