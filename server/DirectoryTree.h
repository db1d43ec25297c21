#ifndef SERVER_DIRECTORYTREE_H
#define SERVER_DIRECTORYTREE_H

// The few file-system questions of the directory back end. A path is
// judged by where it really leads (every link resolved), so that a link
// in a project cannot take the server outside its root.

#include <string>
#include <vector>

#include "foundation/vString.h"

namespace DirectoryTree {

// The path with every link and "." or ".." resolved; blank when it does
// not exist.
vString resolve(vString const& path);
// True when the resolved path is the root or lies below it.
bool isWithin(vString const& root, vString const& resolved);
bool isDirectory(vString const& path);
bool isRegularFile(vString const& path);
// The names in a directory, sorted, without "." and "..". A directory that
// cannot be read is fatal with the system's reason: an empty list would
// pass for a project, or a root, without stores.
std::vector<std::string> entries(vString const& directory);

}  // namespace DirectoryTree

#endif
