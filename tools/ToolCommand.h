#ifndef TOOLS_TOOLCOMMAND_H
#define TOOLS_TOOLCOMMAND_H

// ToolCommand: one entry of the rondo command table. A command names what
// it works on (the subject of its error lines) through the arguments it
// is given, and returns the process's exit status.

#include <string>

class ToolArguments;

struct ToolCommand {
  char const* name;
  // One line for the tool's own help.
  char const* summary;
  // The full help: usage, what it does, an example.
  char const* help;
  // The options that take a value, separated by spaces ("first last").
  char const* valueOptions;
  int (*run)(ToolArguments& arguments);
};

#endif
