#ifndef GEOMETRY_COORDINATEDATUM_H
#define GEOMETRY_COORDINATEDATUM_H

// CoordinateDatum: the geodetic datum of a coordinate system, by name, and
// the code of its geographic coordinate system (0 when the name tells
// none). The name is one of "WGS84", "WGS72", "NAD27", "NAD83", "EPSG:<code>",
// or the WKT of a geographic (GEOGCS) or projected (PROJCS) system.

#include <vector>

#include "foundation/vString.h"
#include "geometry/CoordinateProjectionPublisher.h"

class CoordinateDatum : public CoordinateProjectionPublisher {
 public:
  CoordinateDatum();
  ~CoordinateDatum() override;

  vString const& getGeodeticDatum() const { return m_datum; }
  int getGCSCode() const { return m_gcsCode; }
  // Notifies the subscribers, unless the name is the one held already.
  void setGeodeticDatum(vString const& name);
  // "EPSG:<code> <name>" of every geographic 2-D system that PROJ's
  // database knows (the CSV tables of old GDAL versions are gone).
  static void getGeodeticDatumDescriptions(std::vector<vString>& descriptions);

 private:
  vString m_datum;
  int m_gcsCode;
};

#endif
