#ifndef SYSLAYER_FS_H
#define SYSLAYER_FS_H

// FS: the system layer's file and host services, as seen from the classes
// above the C boundary.

#include "foundation/vString.h"

namespace FS {

// The cluster that a host belongs to. Catalogs and projects are cached per
// cluster, so that two nodes of one cluster share them.
//
// Until the record file service answers this, the mapping comes from the
// environment variable FS_CLUSTERS: blank- or comma-separated pairs
// "host=cluster", e.g. "node1=big node2=big". Host names compare exactly. A
// host that is not listed is its own cluster, and a blank host stays blank.
// The variable is read at every call, so a process may change it.
vString getCluster(vString const& host);

}  // namespace FS

#endif
