#include "tools/GridInfo.h"

#include <cmath>
#include <cstdio>
#include <vector>

#include <ogr_spatialref.h>

#include "attribute/Property.h"
#include "geometry/BinPos.h"
#include "foundation/UtlExcept.h"
#include "geometry/CMPGrid.h"
#include "tools/ValueFormat.h"

namespace {

struct Corner {
  int inlineNumber;
  int crossline;
  vCoordinate rw;
};

vCoordinate world(CMPGrid const& grid, int inlineNumber, int crossline) {
  return grid.convertSurveyToRW(grid.convertBinToSurvey(BinPos(inlineNumber, crossline)));
}

// Degrees clockwise from north (the y axis), in [0, 360).
double azimuth(vCoordinate const& from, vCoordinate const& to) {
  double const degrees = std::atan2(to.getX() - from.getX(), to.getY() - from.getY()) * 180.0 / M_PI;
  return degrees < 0.0 ? degrees + 360.0 : degrees;
}

struct Summary {
  CMPGrid grid;
  std::vector<Corner> corners;
  double inlineAzimuth;     // the way inline numbers grow
  double crosslineAzimuth;  // the way crossline numbers grow
  std::string projection;   // empty when the store names none
};

std::string projectionOf(Store const& store) {
  auto const p = store.findProperty(vUCString("COORDINATE_SYSTEM"));
  if (p == store.endProperty() || p->getNElements() < 1) return "";
  std::string const text = p->getString(1).c_str();
  if (text.empty()) return "";
  OGRSpatialReference reference;
  if (reference.SetFromUserInput(text.c_str()) != OGRERR_NONE || reference.GetName() == nullptr) return text;
  std::string const name = reference.GetName();
  return name == text ? text : text + " (" + name + ")";
}

// A grid the store carries but the geometry refuses (obsolete storage
// biases) leaves the rest of the report standing: the refusal is shown in
// its place.
bool summarise(Store const& store, Summary& s, std::string& refusal) {
  if (!CMPGrid::containsGrid(store)) return false;
  try {
    s.grid.loadFromStore(store);
  } catch (UtlExcept const& e) {
    refusal = e.getReason().c_str();
    return true;
  }
  CMPGrid const& g = s.grid;
  int const il0 = g.getFirstInline(), il1 = g.getLastInline();
  int const xl0 = g.getFirstCrossline(), xl1 = g.getLastCrossline();
  for (auto const& [il, xl] : {std::make_pair(il0, xl0), std::make_pair(il0, xl1), std::make_pair(il1, xl1),
                               std::make_pair(il1, xl0)})
    s.corners.push_back(Corner{il, xl, world(g, il, xl)});
  s.inlineAzimuth = azimuth(world(g, il0, xl0), world(g, il0 + g.getInlineInc(), xl0));
  s.crosslineAzimuth = azimuth(world(g, il0, xl0), world(g, il0, xl0 + g.getCrosslineInc()));
  s.projection = projectionOf(store);
  return true;
}

std::string num(double value) {
  std::string out;
  ValueFormat::appendNumber(out, value);
  return out;
}

}  // namespace

void GridInfo::writeText(ToolOutput& out, Store const& store) {
  Summary s;
  std::string refusal;
  if (!summarise(store, s, refusal)) return;
  if (!refusal.empty()) {
    out.put("grid        not shown: " + refusal + "\n");
    return;
  }
  CMPGrid const& g = s.grid;
  char line[512];
  std::snprintf(line, sizeof line,
                "grid        inlines %d to %d by %d (%d), crosslines %d to %d by %d (%d)\n"
                "grid        intervals %s along inlines, %s along crosslines, %s\n"
                "grid        CMPs from %d by %d, %s\n"
                "grid        origin %s %s, rotation %s rad, inline azimuth %s, crossline azimuth %s\n",
                g.getFirstInline(), g.getLastInline(), g.getInlineInc(), g.getNumInlines(), g.getFirstCrossline(),
                g.getLastCrossline(), g.getCrosslineInc(), g.getNumCrosslines(), num(g.getInlineInterval()).c_str(),
                num(g.getCrosslineInterval()).c_str(), g.getUnits() ? "metres" : "feet", g.getFirstCMP(),
                g.getCMPInc(), g.getOrdering() == CMPBasicGrid::ALONG_INLINES ? "along inlines" : "along crosslines",
                num(g.getRealWorldOrigin().getX()).c_str(), num(g.getRealWorldOrigin().getY()).c_str(),
                num(g.getRotationAngle()).c_str(), num(s.inlineAzimuth).c_str(), num(s.crosslineAzimuth).c_str());
  out.put(line);
  for (Corner const& c : s.corners) {
    std::snprintf(line, sizeof line, "grid        corner %d/%d at %s %s\n", c.inlineNumber, c.crossline,
                  num(c.rw.getX()).c_str(), num(c.rw.getY()).c_str());
    out.put(line);
  }
  if (!s.projection.empty()) out.put("grid        projection " + s.projection + "\n");
}

std::string GridInfo::json(Store const& store) {
  Summary s;
  std::string refusal;
  if (!summarise(store, s, refusal)) return "null";
  if (!refusal.empty()) return "{\"error\":" + ValueFormat::jsonString(refusal.c_str()) + "}";
  CMPGrid const& g = s.grid;
  auto n = [](double v) { return ValueFormat::jsonNumber(v); };
  std::string out = "{\"firstInline\":" + std::to_string(g.getFirstInline()) +
                    ",\"lastInline\":" + std::to_string(g.getLastInline()) +
                    ",\"inlineIncrement\":" + std::to_string(g.getInlineInc()) +
                    ",\"inlines\":" + std::to_string(g.getNumInlines()) +
                    ",\"firstCrossline\":" + std::to_string(g.getFirstCrossline()) +
                    ",\"lastCrossline\":" + std::to_string(g.getLastCrossline()) +
                    ",\"crosslineIncrement\":" + std::to_string(g.getCrosslineInc()) +
                    ",\"crosslines\":" + std::to_string(g.getNumCrosslines()) +
                    ",\"inlineInterval\":" + n(g.getInlineInterval()) +
                    ",\"crosslineInterval\":" + n(g.getCrosslineInterval()) +
                    ",\"units\":" + (g.getUnits() ? "\"METERS\"" : "\"FEET\"") +
                    ",\"firstCMP\":" + std::to_string(g.getFirstCMP()) +
                    ",\"cmpIncrement\":" + std::to_string(g.getCMPInc()) + ",\"ordering\":" +
                    (g.getOrdering() == CMPBasicGrid::ALONG_INLINES ? "\"ALONG_INLINES\"" : "\"ALONG_CROSSLINES\"") +
                    ",\"origin\":[" + n(g.getRealWorldOrigin().getX()) + "," + n(g.getRealWorldOrigin().getY()) +
                    "],\"rotation\":" + n(g.getRotationAngle()) + ",\"inlineAzimuth\":" + n(s.inlineAzimuth) +
                    ",\"crosslineAzimuth\":" + n(s.crosslineAzimuth) + ",\"corners\":[";
  char const* separator = "";
  for (Corner const& c : s.corners) {
    out += separator;
    out += "{\"inline\":" + std::to_string(c.inlineNumber) + ",\"crossline\":" + std::to_string(c.crossline) +
           ",\"x\":" + n(c.rw.getX()) + ",\"y\":" + n(c.rw.getY()) + "}";
    separator = ",";
  }
  out += "],\"projection\":";
  out += s.projection.empty() ? std::string("null") : ValueFormat::jsonString(s.projection.c_str());
  return out + "}";
}
