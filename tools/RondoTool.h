#ifndef TOOLS_RONDOTOOL_H
#define TOOLS_RONDOTOOL_H

// RondoTool: the `rondo` program. It registers the system's classes with
// the factories, picks the command by its first word from the command
// table, and turns every failure into one line on standard error,
// "rondo: <subject>: <message>", with exit status 1 (2 for a mistake in
// the command line). A new command is one more entry in the table.

#include <vector>

#include "tools/ToolCommand.h"

class RondoTool {
 public:
  static int run(int argc, char** argv);
  static std::vector<ToolCommand> const& commands();
};

#endif
