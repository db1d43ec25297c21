// The connection entry points of com.nyx.orda.business.io.protocols.rondo.
// RondoNativeCodeLoader: open a catalog, open a project, list its stores.
// Everything goes to standard output, where the host collects it.

#include <cstdlib>
#include <iostream>
#include <list>
#include <vector>

#include "foundation/Message.h"
#include "foundation/UtlExcept.h"
#include "foundation/vLCString.h"
#include "native/RondoNativeMaps.h"
#include "project/ProjectCatalogFactory.h"
#include "project/ProjectFactory.h"
#include "project/ProjectType.h"
#include "registry/RondoRegistry.h"

std::map<vString, vHandle<ProjectCatalog> > map_projectCatalog;
std::map<vString, vHandle<Project> > map_project;
std::map<vString, vHandle<Store> > map_store;

namespace {

char const kKeySeparator[] = "|";
char const kKeyType[] = "RONDO";

// Reports a failure of an entry point that answers false.
void reportFailure(UtlExcept const& e, char const* line) {
  std::cout << e << line << std::endl;
}

}  // namespace

void rondoEnsureClassesRegistered() {
  static bool registered = false;
  if (registered) return;
  registered = true;
  registerRondoClasses();
}

vString rondoJavaString(JNIEnv* env, jstring text) {
  if (text == nullptr) return vString();
  char const* chars = env->GetStringUTFChars(text, nullptr);
  vString copy(chars);
  env->ReleaseStringUTFChars(text, chars);
  return copy;
}

vString createKeyForRondoProjectCatalog(JNIEnv* env, jstring server) {
  vString key = rondoJavaString(env, server);
  key += kKeySeparator;
  key += kKeyType;
  return key;
}

vString createKeyForRondoProject(JNIEnv* env, jstring server, jstring project) {
  vString key = createKeyForRondoProjectCatalog(env, server);
  key += kKeySeparator;
  key += rondoJavaString(env, project);
  return key;
}

vString createKeyForRondoStore(JNIEnv* env, jstring server, jstring project, jstring dataName) {
  vString key = createKeyForRondoProject(env, server, project);
  key += kKeySeparator;
  key += rondoJavaString(env, dataName);
  return key;
}

vHandle<ProjectCatalog> getRondoProjectCatalog(JNIEnv* env, jstring server) {
  return map_projectCatalog[createKeyForRondoProjectCatalog(env, server)];
}

vHandle<Project> getRondoProject(JNIEnv* env, jstring server, jstring project) {
  return map_project[createKeyForRondoProject(env, server, project)];
}

extern "C" {

JNIEXPORT jboolean JNICALL Java_com_nyx_orda_business_io_protocols_rondo_RondoNativeCodeLoader_RondoOpenConnection(
    JNIEnv* env, jobject, jstring server) {
  rondoEnsureClassesRegistered();
  try {
    vHandle<ProjectCatalog> catalog;
    char const* chars = server ? env->GetStringUTFChars(server, nullptr) : "";
    vString serverName(chars);
    vLCString lowercaseServer(chars);

    vString key = createKeyForRondoProjectCatalog(env, server);
    auto found = map_projectCatalog.find(key);
    if (found != map_projectCatalog.end()) {
      catalog = found->second;
    } else {
      // The host sees servers as it spells them; the factory caches by the
      // folded name, so two spellings share one catalog.
      catalog = ProjectCatalogFactory::create(lowercaseServer, ProjectType::RONDO, lowercaseServer);
      map_projectCatalog[key] = catalog;
    }
    if (server) env->ReleaseStringUTFChars(server, chars);
    return JNI_TRUE;
  } catch (UtlExcept const& e) {
    // The character copy is left to the virtual machine on this path.
    reportFailure(e, "Unable to Open Connection!!!!!!!!!!!");
    return JNI_FALSE;
  }
}

JNIEXPORT jboolean JNICALL Java_com_nyx_orda_business_io_protocols_rondo_RondoNativeCodeLoader_RondoOpenProject(
    JNIEnv* env, jobject, jstring server, jstring project) {
  rondoEnsureClassesRegistered();
  try {
    vHandle<ProjectCatalog> catalog = getRondoProjectCatalog(env, server);
    char const* serverChars = server ? env->GetStringUTFChars(server, nullptr) : "";
    char const* projectChars = project ? env->GetStringUTFChars(project, nullptr) : "";

    vString key = createKeyForRondoProject(env, server, project);
    vHandle<Project> theProject;
    auto found = map_project.find(key);
    if (found == map_project.end()) {
      theProject = ProjectFactory::create(catalog);
      map_project[key] = theProject;
    } else {
      theProject = found->second;
    }
    if (!theProject->isOpen()) theProject->open(vLCString(projectChars));

    if (server) env->ReleaseStringUTFChars(server, serverChars);
    if (project) env->ReleaseStringUTFChars(project, projectChars);
    return JNI_TRUE;
  } catch (UtlExcept const& e) {
    reportFailure(e, "Unable to Open Project!!!!!!!!!!!");
    return JNI_FALSE;
  }
}

JNIEXPORT jboolean JNICALL Java_com_nyx_orda_business_io_protocols_rondo_RondoNativeCodeLoader_RondoGetContents(
    JNIEnv* env, jobject, jstring server, jstring project, jstring storeClass, jobject sink) {
  rondoEnsureClassesRegistered();
  jclass sinkClass = sink ? env->GetObjectClass(sink) : nullptr;
  if (sinkClass == nullptr) return JNI_FALSE;
  jmethodID append = env->GetMethodID(sinkClass, "append", "(Ljava/lang/String;)V");
  if (append == nullptr) {
    // The answer is false, not the lookup's NoSuchMethodError.
    env->ExceptionClear();
    return JNI_FALSE;
  }

  // Nothing here is expected to fail once the project is open; a failure
  // means the host broke the order of calls, and it ends the host as it
  // would if it crossed into the virtual machine, but with the report.
  try {
    vHandle<Project> theProject = getRondoProject(env, server, project);
    char const* classChars = storeClass ? env->GetStringUTFChars(storeClass, nullptr) : "";
    vHandle<Project::StoreList> list = theProject->getStoreList(vLCString(classChars), vLCString(""));

    for (vLCString const& name : *list) {
      // Listed names are "name.version"; the host wants the name alone.
      int dot = name.search('.');
      if (dot <= 0)
        Message::fatal("RondoGetContents", 0, "Store name '%s' is not of the form name.version (outlen>0).",
                       name.c_str());
      std::vector<char> buffer(static_cast<size_t>(dot) + 1, '\0');
      name.get(buffer.data(), 0, dot + 1);
      jstring text = env->NewStringUTF(buffer.data());
      env->CallVoidMethod(sink, append, text);
      env->DeleteLocalRef(text);
    }

    if (storeClass) env->ReleaseStringUTFChars(storeClass, classChars);
    return JNI_TRUE;
  } catch (UtlExcept const& e) {
    std::cout << e << std::flush;
    std::exit(-1);
  }
}

}  // extern "C"
