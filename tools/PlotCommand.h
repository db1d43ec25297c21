#ifndef TOOLS_PLOTCOMMAND_H
#define TOOLS_PLOTCOMMAND_H

// PlotCommand: `rondo plot STORE --out FILE.png ...`: a picture of a store,
// written through GDAL's PNG driver. A seismic store gives a
// variable-density image of a range of traces, one column per trace and
// one row per sample, clipped at a percentile of the absolute values, in
// grey or red-white-blue. A map data set (a store of another class, or
// any store with --x and --y) gives its points, coloured by the value of
// an attribute.

#include "tools/ToolCommand.h"

class PlotCommand {
 public:
  static ToolCommand const& command();
  static int run(ToolArguments& arguments);
};

#endif
