#ifndef PROJECT_CAPIPROJECT_H
#define PROJECT_CAPIPROJECT_H

// The process switches and defaults of the store layer that concern
// projects: whether the data server is bypassed, which back ends the build
// has, and the user's default project.

#include "foundation/vString.h"

class ProjectDescription;

namespace Capi {

// True when CAPI_DISABLERONDODATASERVER holds a non-zero integer. Read once
// per process; later changes of the environment are not seen.
bool disableRondoDataServer();
// The database back end is part of every build.
bool haveCapiZon();

// The first line of ~/.vproject; else the first word of ./.project, with
// "r::" in front when it holds no ':'; else "r:::".
vString getDefaultProjectString();
// getDefaultProjectString() stripped and parsed; a type left at NoType
// becomes the default type. An empty text gives an empty description.
ProjectDescription getDefaultProjectName();

}  // namespace Capi

#endif
