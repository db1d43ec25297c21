#ifndef GEOMETRY_COORDINATEPROJECTION_H
#define GEOMETRY_COORDINATEPROJECTION_H

// CoordinateProjection: a projected coordinate system, by EPSG code or else
// by UTM zone and hemisphere on the datum, in metres or in feet. A code
// other than 0 wins over the zone. Every setter notifies.

#include "geometry/CoordinateDatum.h"

class CoordinateProjection : public CoordinateDatum {
 public:
  CoordinateProjection();
  ~CoordinateProjection() override;

  int getPCSCode() const { return m_pcsCode; }
  void setPCSCode(int code);
  int getUTMZone() const { return m_utmZone; }
  void setUTMZone(int zone);
  bool isNorthernHemisphere() const { return m_north; }
  void setNorthernHemisphere(bool north);
  bool isFeet() const { return m_feet; }
  void setFeet(bool feet);

 private:
  int m_pcsCode;
  int m_utmZone;
  bool m_north;
  bool m_feet;
};

#endif
