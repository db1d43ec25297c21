#ifndef TOOLS_PROJECTCOMMANDS_H
#define TOOLS_PROJECTCOMMANDS_H

// ProjectCommands: `rondo projects [HOST]` lists the projects of the data
// server on a host, `rondo ls [HOST:]PROJECT [CLASS]` the stores of one
// project, one line each: name.version, class, subclass, instances. Both go
// through the same client catalog and project as the Java host, which start
// or find the host's DataServer.

#include "tools/ToolCommand.h"

class ProjectCommands {
 public:
  static ToolCommand const& projects();
  static ToolCommand const& ls();
  static int runProjects(ToolArguments& arguments);
  static int runLs(ToolArguments& arguments);
};

#endif
