#include "geometry/OGRProjector.h"

#include <cpl_conv.h>
#include <cpl_error.h>
#include <ogr_spatialref.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <vector>

#include "foundation/DornDebug.h"
#include "foundation/Message.h"
#include "foundation/vUtl.h"

namespace {

char const* const NoProjected = "The projected coordinate system has not been defined.";
char const* const NoGeographic = "The geographic coordinate system has not been defined.";
// Points this far or farther from the central meridian are not transformed:
// the projections here are meant for a zone, and lose their accuracy beyond.
double const MeridianLimit = 18.0;
double const MetresPerFoot = 0.3048;

bool startsWith(vString const& text, char const* prefix) {
  return std::strncmp(text.c_str(), prefix, std::strlen(prefix)) == 0;
}

void addLine(vString& text, char const* label, char const* value) {
  text += label;
  text += value ? value : "";
  text += "\n";
}

void addLine(vString& text, char const* label, double value) {
  char number[64];
  std::snprintf(number, sizeof number, "%.10g", value);
  addLine(text, label, number);
}

// GDAL's own reports go to the trace rather than to standard error: the
// projector reports through Message what it could not do.
class QuietGDAL {
 public:
  QuietGDAL() {
    CPLErrorReset();
    CPLPushErrorHandler(CPLQuietErrorHandler);
  }
  ~QuietGDAL() {
    CPLPopErrorHandler();
    if (DornDebug::isEnabled() && CPLGetLastErrorNo() != CPLE_None)
      DornDebug::printf("CoordinateProjector: GDAL: %s", CPLGetLastErrorMsg());
  }
  QuietGDAL(QuietGDAL const&) = delete;
  QuietGDAL& operator=(QuietGDAL const&) = delete;
};

}  // namespace

OGRProjector::OGRProjector() : m_projected(nullptr), m_toRW(nullptr), m_toLatLong(nullptr) {
  vString grid = vUtl::supportFilesDirectory();
  grid += "Grid";
  CPLSetConfigOption("GEOTIFF_CSV", grid.c_str());
}

OGRProjector::~OGRProjector() {
  myDeleteTransformations();
  delete m_projected;
}

void OGRProjector::myDeleteTransformations() {
  OGRCoordinateTransformation::DestroyCT(m_toRW);
  OGRCoordinateTransformation::DestroyCT(m_toLatLong);
  m_toRW = nullptr;
  m_toLatLong = nullptr;
}

void OGRProjector::update() { myCreateCoordinateTransformations(); }

bool OGRProjector::isValid() const { return m_toRW != nullptr && m_toLatLong != nullptr; }

void OGRProjector::myCreateCoordinateTransformations() {
  char const* label = "OGRProjector::myCreateCoordinateTransformations";
  CoordinateProjection const& projection = getProjection();
  bool const tracing = DornDebug::isEnabled();
  QuietGDAL quiet;
  myDeleteTransformations();
  delete m_projected;
  m_projected = new OGRSpatialReference();
  vString const name = getDescription(ShortName);

  OGRErr made = OGRERR_FAILURE;
  if (projection.getPCSCode() != 0) {
    made = m_projected->importFromEPSG(projection.getPCSCode());
    if (tracing) DornDebug::printf("%s: Projected coordinate system: EPSG:%d", myTraceName(), projection.getPCSCode());
  } else if (projection.getGCSCode() == 0) {
    Message::error(label, 0, "%s", NoGeographic);
  } else if (projection.getUTMZone() == 0) {
    Message::error(label, 0, "%s", NoProjected);
  } else {
    made = m_projected->importFromEPSG(projection.getGCSCode());
    if (made == OGRERR_NONE) {
      m_projected->SetProjCS(name.c_str());
      made = m_projected->SetUTM(projection.getUTMZone(), projection.isNorthernHemisphere());
    }
    if (tracing)
      DornDebug::printf("%s: Projected coordinate system: %s, UTM%d%s ", myTraceName(),
                        projection.getGeodeticDatum().c_str(), projection.getUTMZone(),
                        projection.isNorthernHemisphere() ? "N" : "S");
  }
  if (made != OGRERR_NONE || !m_projected->IsProjected()) {
    if (tracing) DornDebug::printf("%s: ERROR: The projected coordinate system has not been defined.", myTraceName());
    if (made == OGRERR_NONE || projection.getPCSCode() != 0) Message::error(label, 0, "%s", NoProjected);
    delete m_projected;
    m_projected = nullptr;
    return;
  }

  vString const& datum = projection.getGeodeticDatum();
  std::unique_ptr<OGRSpatialReference> geographic;
  if (datum.isBlank() || startsWith(datum, "PROJCS")) {
    geographic.reset(m_projected->CloneGeogCS());
  } else {
    geographic.reset(new OGRSpatialReference());
    OGRErr const taken = startsWith(datum, "GEOGCS") ? geographic->importFromWkt(datum.c_str())
                                                     : geographic->SetWellKnownGeogCS(datum.c_str());
    if (taken != OGRERR_NONE) geographic.reset();
  }
  if (!geographic) {
    Message::error(label, 0, "%s", NoGeographic);
    return;
  }
  if (tracing) DornDebug::printf("%s: Geographic coordinate system: %s", myTraceName(), geographic->GetName());

  if (projection.isFeet())
    m_projected->SetLinearUnitsAndUpdateParameters("FEET", MetresPerFoot);
  else
    m_projected->SetLinearUnitsAndUpdateParameters("METERS", 1.0);
  m_projected->SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
  geographic->SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);

  m_toRW = OGRCreateCoordinateTransformation(geographic.get(), m_projected);
  if (tracing && m_toRW)
    DornDebug::printf("%s: Lat/Lon to RW X/Y transformation created successfully", myTraceName());
  else if (tracing)
    DornDebug::printf("%s: Lat/Lon to RW X/Y transformation creation failed", myTraceName());
  m_toLatLong = OGRCreateCoordinateTransformation(m_projected, geographic.get());
  if (tracing && m_toLatLong)
    DornDebug::printf("%s: RW X/Y to Lat/Lon transformation created successfully", myTraceName());
  else if (tracing)
    DornDebug::printf("%s: RW X/Y to Lat/Lon transformation creation failed", myTraceName());
}

bool OGRProjector::convertLatLongToRW(int n, double* x, double* y, int flags) {
  if (!m_toRW) update();
  if (!m_toRW) return false;
  bool const tracing = DornDebug::isEnabled();
  if (tracing) DornDebug::printf("%s: Transform %d points from Lat/Lon to RW X/Y", myTraceName(), n);
  if (!(flags & IgnoreCentralMeridian)) {
    double const meridian = m_projected->GetNormProjParm(SRS_PP_CENTRAL_MERIDIAN, 0.0);
    bool near = false;
    for (int i = 0; i < n && !near; ++i) near = std::fabs(std::remainder(x[i] - meridian, 360.0)) < MeridianLimit;
    if (!near) {
      if (tracing)
        DornDebug::printf("%s: Shape is not close to central meridian--transformation skipped", myTraceName());
      return false;
    }
  }
  std::vector<int> states(n > 0 ? n : 1);
  QuietGDAL quiet;
  bool const done = m_toRW->Transform(n, x, y, nullptr, states.data()) != 0;
  if (!done && tracing) myTraceStates(n, states.data());
  return done;
}

bool OGRProjector::convertRWToLatLong(int n, double* x, double* y) {
  if (!m_toLatLong) update();
  if (!m_toLatLong) return false;
  std::vector<int> states(n > 0 ? n : 1);
  QuietGDAL quiet;
  bool const done = m_toLatLong->Transform(n, x, y, nullptr, states.data()) != 0;
  if (!done && DornDebug::isEnabled()) myTraceStates(n, states.data());
  return done;
}

void OGRProjector::myTraceStates(int n, int const* states) const {
  DornDebug::printf("%s: Transformation failed; Point states follow (100 per numbered line):", myTraceName());
  for (int first = 0; first < n; first += 100) {
    vString line;
    for (int i = first; i < n && i < first + 100; ++i) line += states[i] ? '1' : '0';
    DornDebug::printf("%d: %s", first / 100 + 1, line.c_str());
  }
}

vString OGRProjector::getDescription(int kind) {
  CoordinateProjection const& projection = getProjection();
  if (kind == ShortName) {
    char text[64];
    if (projection.getPCSCode() != 0)
      std::snprintf(text, sizeof text, "EPSG:%d", projection.getPCSCode());
    else
      std::snprintf(text, sizeof text, "UTM %d%s", projection.getUTMZone(),
                    projection.isNorthernHemisphere() ? "N" : "S");
    vString name(text);
    if (!projection.getGeodeticDatum().isBlank() && !startsWith(projection.getGeodeticDatum(), "PROJCS") &&
        !startsWith(projection.getGeodeticDatum(), "GEOGCS")) {
      name += " ";
      name += projection.getGeodeticDatum();
    }
    return name;
  }
  if (!m_projected) {
    Message::error("OGRProjector::getDescription", 0, "%s", NoProjected);
    return NoProjected;
  }
  std::unique_ptr<OGRSpatialReference> geographic(m_projected->CloneGeogCS());
  OGRSpatialReference const& system = kind == GeographicSystem ? *geographic : *m_projected;
  vString text;
  vString title(": ");
  title += system.GetName() ? system.GetName() : "";
  if (kind == GeographicSystem) {
    addLine(text, "Geographic Coordinate System", title.c_str());
  } else {
    addLine(text, "Projected Coordinate System", title.c_str());
    char const* authority = system.GetAuthorityName(nullptr);
    if (authority && std::strcmp(authority, "EPSG") == 0)
      addLine(text, "EPSG:", system.GetAuthorityCode(nullptr));
    else if (projection.getUTMZone() != 0)
      addLine(text, "UTM ", getDescription(ShortName).c_str() + 4);
  }
  addLine(text, "  Datum: ", system.GetAttrValue("DATUM"));
  addLine(text, "    Spheroid: ", system.GetAttrValue("SPHEROID"));
  addLine(text, "      Semi Major Axis = ", system.GetSemiMajor());
  addLine(text, "      Inverse Flattening = ", system.GetInvFlattening());
  addLine(text, "  Prime Meridian: ", system.GetAttrValue("PRIMEM"));
  char const* angular = nullptr;
  system.GetAngularUnits(&angular);
  addLine(text, "  Angular Units: ", angular);
  if (kind != GeographicSystem) {
    char const* linear = nullptr;
    double const metres = system.GetLinearUnits(&linear);
    vString units(linear ? linear : "");
    char number[64];
    std::snprintf(number, sizeof number, "; Per/Meter = %.10g", 1.0 / metres);
    units += number;
    addLine(text, "  Units: ", units.c_str());
    addLine(text, "  Method: ", system.GetAttrValue("PROJECTION"));
    addLine(text, "    Latitude Of Origin = ", system.GetNormProjParm(SRS_PP_LATITUDE_OF_ORIGIN, 0.0));
    addLine(text, "    Central Meridian = ", system.GetNormProjParm(SRS_PP_CENTRAL_MERIDIAN, 0.0));
    addLine(text, "    Scale Factor = ", system.GetNormProjParm(SRS_PP_SCALE_FACTOR, 1.0));
    addLine(text, "    False Easting = ", system.GetNormProjParm(SRS_PP_FALSE_EASTING, 0.0));
    addLine(text, "    False Northing = ", system.GetNormProjParm(SRS_PP_FALSE_NORTHING, 0.0));
  }
  return text;
}
