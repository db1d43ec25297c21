#ifndef GEOMETRY_COORDINATEPROJECTOR_H
#define GEOMETRY_COORDINATEPROJECTOR_H

// CoordinateProjector: converts between geographic coordinates (longitude
// in x, latitude in y, degrees) and real-world coordinates of the
// projection in force. That is its own projection unless setProjection
// names another, which must outlive the projector or be replaced first.
// The projector subscribes to the projection in force and rebuilds itself
// whenever it changes. The datum is the one of the projection in force.
//
// Failures to define a system are reported by Message::error, not raised:
// the projector stays invalid and conversions answer false.

#include "foundation/vString.h"
#include "geometry/CoordinateProjection.h"
#include "geometry/CoordinateProjectionSubscriber.h"

class CoordinateProjector : public CoordinateProjectionSubscriber {
 public:
  enum ConversionFlags {
    // Transform even when no point is near the central meridian.
    IgnoreCentralMeridian = 1
  };
  // getDescription kinds.
  enum DescriptionKind { ProjectedSystem = 0, GeographicSystem = 1, ShortName = 2 };

  CoordinateProjector();
  ~CoordinateProjector() override;

  void update() override = 0;
  virtual bool isValid() const = 0;
  virtual vString getDescription(int kind) = 0;
  // In place, n points; x holds longitudes and y latitudes on the way in.
  virtual bool convertLatLongToRW(int n, double* x, double* y, int flags) = 0;
  // In place; x holds longitudes and y latitudes on the way out.
  virtual bool convertRWToLatLong(int n, double* x, double* y) = 0;

  // A null projection puts the projector's own back in force.
  void setProjection(CoordinateProjection* projection);
  CoordinateProjection& getProjection() { return *m_inForce; }
  CoordinateProjection const& getProjection() const { return *m_inForce; }
  CoordinateDatum& getDatum() { return *m_inForce; }
  CoordinateDatum const& getDatum() const { return *m_inForce; }

  // A projector on GDAL.
  static CoordinateProjector* newInstance();

 protected:
  // Name of the trace lines of this projector.
  char const* myTraceName() const { return m_traceName; }

 private:
  CoordinateProjector(CoordinateProjector const&) = delete;
  CoordinateProjector& operator=(CoordinateProjector const&) = delete;

  char const* m_traceName;
  CoordinateProjection m_projection;
  CoordinateProjection* m_inForce;
};

#endif
