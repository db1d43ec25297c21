#ifndef TOOLS_GRIDINFO_H
#define TOOLS_GRIDINFO_H

// GridInfo: the CMP grid that a store carries, as `rondo info` shows it:
// line numbers, intervals, CMP numbering, the real-world origin, rotation
// and azimuths, the corner bins in real-world coordinates, and the
// coordinate system when the store names one ("COORDINATE_SYSTEM").

#include <string>

#include "project/Store.h"
#include "tools/ToolOutput.h"

class GridInfo {
 public:
  // Lines that begin "grid"; nothing for a store without a grid.
  static void writeText(ToolOutput& out, Store const& store);
  // The JSON value of the grid, "null" for a store without one.
  static std::string json(Store const& store);
};

#endif
