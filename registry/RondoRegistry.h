#ifndef REGISTRY_RONDOREGISTRY_H
#define REGISTRY_RONDOREGISTRY_H

// The one place where the factories of the project layer learn about the
// concrete classes of the layers above it (the remote client proxies, the
// database projects, the in-memory store and its sets, the attribute set
// views). A program that wants those classes calls
// registerRondoClasses() once before its first catalog; calling it again
// does no harm. Nothing registers itself.
//
// Test seam: with RONDO_CLIENT_CATALOG_IS_UNITTEST=1 in the environment the
// client classes are stood in for by UTProjectCatalog and UTProject, so that
// a program that always asks for Rondo catalogs (the Java host) runs end to
// end without a data server. The stand-in projects then hold the stores
// listed in RONDO_UNITTEST_STORES: blank-separated entries
// "name.version[:class[:subclass]]", e.g. "line12.3:seismic wells.1:well".

void registerRondoClasses();

// True when the client classes are the unit-test stand-ins.
bool rondoClientIsUnitTest();

#endif
