#ifndef GEOMETRY_OGRPROJECTOR_H
#define GEOMETRY_OGRPROJECTOR_H

// OGRProjector: a projector on GDAL's spatial references. GDAL 3 would take
// latitude first for geographic systems that the authority orders so; both
// references are set to the traditional GIS order here, so that x is
// always longitude (or easting) and y latitude (or northing). EPSG codes are
// resolved through PROJ's database.
//
// Descriptions: ProjectedSystem and GeographicSystem give the parts of that
// system, one a line; ShortName gives "EPSG:<code>" or "UTM <zone><N|S>",
// followed by the datum name.

#include "geometry/CoordinateProjector.h"

class OGRCoordinateTransformation;
class OGRSpatialReference;

class OGRProjector : public CoordinateProjector {
 public:
  OGRProjector();
  ~OGRProjector() override;

  void update() override;
  bool isValid() const override;
  vString getDescription(int kind) override;
  bool convertLatLongToRW(int n, double* x, double* y, int flags) override;
  bool convertRWToLatLong(int n, double* x, double* y) override;

 private:
  void myCreateCoordinateTransformations();
  void myDeleteTransformations();
  // Reports the states of a failed transformation when tracing.
  void myTraceStates(int n, int const* states) const;

  OGRSpatialReference* m_projected;
  OGRCoordinateTransformation* m_toRW;
  OGRCoordinateTransformation* m_toLatLong;
};

#endif
