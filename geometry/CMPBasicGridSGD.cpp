// The grid told by the values of an SGD header.

#include <cmath>
#include <cstdio>

#include "foundation/Message.h"
#include "geometry/CMPBasicGrid.h"

namespace {
// Azimuths closer than this to a right angle count as perpendicular; well
// below what a header written with single precision can tell apart.
double const PerpendicularTolerance = 1e-6;

double normalised(double angle) { return angle < 0.0 ? angle + 2.0 * M_PI : angle; }
}  // namespace

int CMPBasicGrid::myIsPerpendicular(double azimuthX, double azimuthY) {
  double d = normalised(azimuthY) - normalised(azimuthX);
  // Into (-pi, pi], so that a turn across 2 pi counts as the small one.
  d = std::remainder(d, 2.0 * M_PI);
  if (std::fabs(d - M_PI / 2.0) < PerpendicularTolerance) return 1;
  if (std::fabs(d + M_PI / 2.0) < PerpendicularTolerance) return -1;
  return 0;
}

void CMPBasicGrid::myValidateSGDParameters(double azimuthX, double azimuthY, float dx, float dy, int firstInline,
                                           int lastInline, int firstCrossline, int lastCrossline) const {
  vString complaints;
  char text[400];
  if (myIsPerpendicular(azimuthX, azimuthY) == 0) {
    std::snprintf(text, sizeof text, "AZY (%g rad.) must be +/- 90 degrees (PI/2) from AZX (%g rad.)\n", azimuthY,
                  azimuthX);
    complaints += text;
  }
  if (!(dx > 0.0f) || !(dy > 0.0f)) {
    std::snprintf(text, sizeof text, "DX/DY (Crossline/Inline intervals) must be > 0. (DX=%g, DY=%g)\n", dx, dy);
    complaints += text;
  }
  if (firstInline <= 0 || firstCrossline <= 0 || lastInline < firstInline || lastCrossline < firstCrossline) {
    std::snprintf(text, sizeof text,
                  "FINL/FCRL (First Inline/First Crossline) must be > 0, and, LINL/LCRL (Last Inline/Last "
                  "Crossline) must not be less than FINL/FCRL. (FINL=%d, LINL=%d, FCRL=%d, LCRL=%d)\n",
                  firstInline, lastInline, firstCrossline, lastCrossline);
    complaints += text;
  }
  if (!complaints.isEmpty()) Message::fatal("CMPBasicGrid::myValidateSGDParameters", 0, "%s", complaints.c_str());
}

CMPBasicGrid::CMPBasicGrid(double x0, double y0, double azimuthX, double azimuthY, float dx, float dy, int firstInline,
                           int lastInline, int firstCrossline, int lastCrossline)
    : CMPBasicGrid() {
  myValidateSGDParameters(azimuthX, azimuthY, dx, dy, firstInline, lastInline, firstCrossline, lastCrossline);
  m_units = 1;
  m_ordering = ALONG_INLINES;
  m_firstCMP = 1;
  m_cmpIncrement = 1;
  m_inlineIncrement = 1;
  m_crosslineIncrement = 1;
  m_numInlines = lastInline - firstInline + 1;
  m_numCrosslines = lastCrossline - firstCrossline + 1;
  m_numBinsAlongOrderingWithPadding = m_numCrosslines;
  m_crosslineInterval = dx;
  m_inlineInterval = myIsPerpendicular(azimuthX, azimuthY) * dy;
  m_surveyOrigin = vCoordinate(0.0, 0.0);
  // First as a grid whose line 0 lies at (x0, y0) ...
  m_firstInline = 0;
  m_firstCrossline = 0;
  m_realWorldOrigin = vCoordinate(x0, y0);
  setRotationAngle(azimuthX);
  myCheckup();
  // ... then moved to its first bin, which becomes the origin of both frames.
  vCoordinate const first = convertBinToSurvey(BinPos(firstInline, firstCrossline));
  m_realWorldOrigin = convertSurveyToRW(first);
  m_surveyOrigin = first;
  m_firstInline = firstInline;
  m_firstCrossline = firstCrossline;
  myCheckup();
}

bool CMPBasicGrid::isValidForSGDGrid(vString* reason) const {
  char const* why = nullptr;
  if (m_inlineIncrement != 1 || m_crosslineIncrement != 1)
    why = "Inline/Crossline Increments must be 1 only";
  else if (!(m_crosslineInterval > 0.0f))
    why = "Crossline Interval must be positive, non-zero";
  if (why && reason) *reason = why;
  return why == nullptr;
}

void CMPBasicGrid::getSGDGridValues(double& x0, double& y0, double& azimuthX, double& azimuthY, float& dx, float& dy,
                                    int& firstInline, int& lastInline, int& firstCrossline, int& lastCrossline) const {
  vString reason;
  if (!isValidForSGDGrid(&reason)) Message::fatal("CMPBasicGrid::getSGDGridValues", 0, "%s", reason.c_str());
  vCoordinate const origin = convertSurveyToRW(convertBinToSurvey(BinPos(0, 0)));
  x0 = origin.getX();
  y0 = origin.getY();
  azimuthX = m_rotationAngle;
  azimuthY = m_inlineInterval > 0.0f ? m_rotationAngle + M_PI / 2.0 : m_rotationAngle - M_PI / 2.0;
  dx = std::fabs(m_crosslineInterval);
  dy = std::fabs(m_inlineInterval);
  firstInline = m_firstInline;
  lastInline = getLastInline();
  firstCrossline = m_firstCrossline;
  lastCrossline = getLastCrossline();
}
