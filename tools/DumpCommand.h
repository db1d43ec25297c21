#ifndef TOOLS_DUMPCOMMAND_H
#define TOOLS_DUMPCOMMAND_H

// DumpCommand: `rondo dump STORE ATTRIBUTE[,ATTRIBUTE...] [--first N]
// [--last M]`: one line per instance, its number, a tab, and then each
// attribute's values separated by spaces, a tab between attributes.
// Instances are read in blocks of about a few megabytes, so memory stays
// bounded whatever the store's size, and the output goes out block by
// block, so a reader that stops early stops the dump.

#include "tools/ToolCommand.h"

class DumpCommand {
 public:
  static ToolCommand const& command();
  static int run(ToolArguments& arguments);
};

#endif
