#ifndef TOOLS_INFOCOMMAND_H
#define TOOLS_INFOCOMMAND_H

// InfoCommand: `rondo info STORE [--json]`: what a store holds: class,
// subclass, instance count, one line per attribute (name, data type,
// length, sample rate, first time, the two statistic values), the key
// list and the properties. --json gives the same as one JSON object.

#include "tools/ToolCommand.h"

class InfoCommand {
 public:
  static ToolCommand const& command();
  static int run(ToolArguments& arguments);
};

#endif
