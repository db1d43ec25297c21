#ifndef SYSLAYER_FS_H
#define SYSLAYER_FS_H

// FS: the system layer's file and host services, as seen from the classes
// above the C boundary.

#include <vector>

#include "foundation/vFilename.h"
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

// True when something (file, directory, device) of that name exists; a
// dangling symbolic link does not count.
bool exists(vFilename const& name);

// The names matching a shell-style pattern ('*', '?', "[...]", in any
// directory part too), sorted by byte value. Hidden names match only a
// pattern that spells their leading '.'. No match gives an empty list.
void getMatchingFiles(vString const& pattern, std::vector<vFilename>& result);

}  // namespace FS

#endif
