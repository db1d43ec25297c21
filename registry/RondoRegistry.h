#ifndef REGISTRY_RONDOREGISTRY_H
#define REGISTRY_RONDOREGISTRY_H

// The one place where the factories of the project layer learn about the
// concrete classes of the layers above it (the remote client proxies, the
// database projects, the in-memory store and its sets, the attribute set
// views). A program that wants those classes calls
// registerRondoClasses() once before its first catalog; calling it again
// does no harm. Nothing registers itself.

void registerRondoClasses();

// The same for the data server program, with one difference: a catalog that
// would be the client of a data server is refused ("A data server does not
// start a data server: ..."), so that no setting can make a server start
// servers of its own.
void registerDataServerClasses();

#endif
