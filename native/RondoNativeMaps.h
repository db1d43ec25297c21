#ifndef NATIVE_RONDONATIVEMAPS_H
#define NATIVE_RONDONATIVEMAPS_H

// The process-wide state of the Java entry points: catalogs, projects and
// stores by key, made on first request and kept until the library is
// unloaded. Keys are built from the Java strings unchanged, so they are
// case-sensitive even where the objects behind them are not.
//
// One Java thread at a time; nothing here locks.

#include <jni.h>

#include <map>

#include "foundation/DataType.h"
#include "foundation/vHandle.h"
#include "foundation/vString.h"
#include "project/Project.h"
#include "project/ProjectCatalog.h"

class Store;

extern std::map<vString, vHandle<ProjectCatalog> > map_projectCatalog;
extern std::map<vString, vHandle<Project> > map_project;
extern std::map<vString, vHandle<Store> > map_store;

// A copy of a Java string; a null reference gives an empty string.
vString rondoJavaString(JNIEnv* env, jstring text);

// server "|" "RONDO"
vString createKeyForRondoProjectCatalog(JNIEnv* env, jstring server);
// catalog key "|" project
vString createKeyForRondoProject(JNIEnv* env, jstring server, jstring project);
// project key "|" dataName
vString createKeyForRondoStore(JNIEnv* env, jstring server, jstring project, jstring dataName);

// The map's entry for the key; a missing key inserts and returns an empty
// handle, which fails at its first use.
vHandle<ProjectCatalog> getRondoProjectCatalog(JNIEnv* env, jstring server);
vHandle<Project> getRondoProject(JNIEnv* env, jstring server, jstring project);

// The kind of an attribute as the host is told it: 2 for floating values
// (vFLOAT32, vFLOAT64), 1 for any other type.
jint rondoAttributeKind(DataType type);

// Tells the factories about the classes of the higher layers, once per
// process; every entry point calls it first.
void rondoEnsureClassesRegistered();

#endif
