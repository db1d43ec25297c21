#ifndef NATIVE_RONDODATANATIVES_H
#define NATIVE_RONDODATANATIVES_H

// The store side of the data entry points. A data descriptor names a server,
// a project on it and a store; its store is kept in map_store under the
// store key and, once opened, stays open for the life of the process: the
// version of the first opener stays in force.
//
// A store that cannot be made or opened ends the process (exit -1) with the
// report "Can't open project" and the reason: the host never sees a false
// from that path. A false comes only from a descriptor without the four
// methods (getProject, getServerHost, getDataName, getRONDOType).

#include <jni.h>

#include "foundation/vHandle.h"
#include "project/Store.h"

// The store of the key; a store not in the map yet is made, unopened, for
// the project of the map (which must have been opened by RondoOpenProject).
vHandle<Store> getRondoStore(JNIEnv* env, jstring server, jstring project, jstring dataName);

// The descriptor's store, opened with the version given unless it is open.
bool openStoreOnData(JNIEnv* env, jobject descriptor, vHandle<Store>& store, int version);
// The descriptor's store, closed if it is open. Nothing in the library
// closes stores; this is here for a host that wants to.
bool closeStoreOnData(JNIEnv* env, jobject descriptor, vHandle<Store>& store);

#endif
