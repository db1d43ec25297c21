#ifndef PROJECT_CAPIPROJECT_H
#define PROJECT_CAPIPROJECT_H

// The process switches and defaults of the store layer that concern
// projects: whether the data server is bypassed, which back ends the build
// has, and the user's default project.

#include <list>

#include "foundation/vString.h"

class ProjectDescription;

namespace Capi {

// True when CAPI_DISABLERONDODATASERVER holds a non-zero integer. Read once
// per process; later changes of the environment are not seen.
bool disableRondoDataServer();
// The database back end is part of every build.
bool haveCapiZon();

// The database servers of this installation, as the database back end
// knows them. That layer sits above this one, so it hands its two answers
// in through registerCapiZonServers (registerRondoClasses does); until then
// there is no default server and no list.
struct CapiZonServers {
  vString (*defaultServer)();
  void (*availableServers)(std::list<vString>& servers);
};
// Installs both answers and returns the ones they replace; a null member
// drops that answer again.
CapiZonServers registerCapiZonServers(CapiZonServers servers);
// Blank when nothing is registered.
vString getDefaultCapiZonServer();
// Appends each server to the list; adds nothing when nothing is registered.
void getCapiZonAvailableServers(std::list<vString>& servers);

// The first line of ~/.vproject; else the first word of ./.project, with
// "r::" in front when it holds no ':'; else "r:::".
vString getDefaultProjectString();
// getDefaultProjectString() stripped and parsed; a type left at NoType
// becomes the default type. An empty text gives an empty description.
ProjectDescription getDefaultProjectName();

}  // namespace Capi

#endif
