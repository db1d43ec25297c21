#ifndef GEOMETRY_VCOORDINATE_H
#define GEOMETRY_VCOORDINATE_H

// vCoordinate: a point (x, y) in a plane, real-world or survey.

#include <iosfwd>

class vCoordinate {
 public:
  vCoordinate() : m_x(0.0), m_y(0.0) {}
  vCoordinate(double x, double y) : m_x(x), m_y(y) {}

  double getX() const { return m_x; }
  double getY() const { return m_y; }
  void setX(double x) { m_x = x; }
  void setY(double y) { m_y = y; }

  vCoordinate operator+(vCoordinate const& o) const { return vCoordinate(m_x + o.m_x, m_y + o.m_y); }
  vCoordinate operator-(vCoordinate const& o) const { return vCoordinate(m_x - o.m_x, m_y - o.m_y); }
  vCoordinate& operator+=(vCoordinate const& o);
  vCoordinate& operator-=(vCoordinate const& o);
  bool operator==(vCoordinate const& o) const { return m_x == o.m_x && m_y == o.m_y; }
  bool operator!=(vCoordinate const& o) const { return !(*this == o); }
  // By x, then y: an order for maps and sets, not a geometric one.
  bool operator<(vCoordinate const& o) const;

  double getDistance(vCoordinate const& o) const;
  // Turns the point about the origin: (y sin a + x cos a, y cos a - x sin a),
  // which is clockwise for a positive angle.
  vCoordinate& rotate(double angle);
  // Whether both components are within tolerance of other's.
  bool within(vCoordinate const& other, double tolerance) const;

  // Direction from one point to another, counter-clockwise from the x axis.
  static double azimuthInRadians(vCoordinate const& from, vCoordinate const& to);
  static double azimuthInDegrees(vCoordinate const& from, vCoordinate const& to);
  static double convertDegreesToRadians(double degrees);
  static double convertRadiansToDegrees(double radians);

 private:
  double m_x;
  double m_y;
};

std::ostream& operator<<(std::ostream& out, vCoordinate const& c);

#endif
