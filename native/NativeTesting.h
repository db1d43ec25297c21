#ifndef NATIVE_NATIVETESTING_H
#define NATIVE_NATIVETESTING_H

// Test helper (tests only): the build tree, the one Java virtual machine
// of a test process, which whichever test asks first makes, with the Java
// host's classes on its class path, and the entry points the tests call.

#include <jni.h>

#include <cstdlib>
#include <string>

#define RONDO_JNI(name) Java_com_nyx_orda_business_io_protocols_rondo_RondoNativeCodeLoader_##name

extern "C" {
jboolean RONDO_JNI(RondoOpenConnection)(JNIEnv*, jobject, jstring);
jboolean RONDO_JNI(RondoOpenProject)(JNIEnv*, jobject, jstring, jstring);
jboolean RONDO_JNI(RondoGetContents)(JNIEnv*, jobject, jstring, jstring, jstring, jobject);
jboolean RONDO_JNI(RondoGetDataInfo)(JNIEnv*, jobject, jobject, jobject);
jboolean RONDO_JNI(RondoLoadAttributeI)(JNIEnv*, jobject, jobject, jstring, jintArray);
jboolean RONDO_JNI(RondoLoadAttributeF)(JNIEnv*, jobject, jobject, jstring, jfloatArray, jint, jint);
jboolean RONDO_JNI(RondoLoadAttributeFromTabindexF)(JNIEnv*, jobject, jobject, jstring, jintArray, jint,
                                                     jfloatArray);
}

namespace native_testing {

// RONDO_BINARY_DIR, or else the build tree this program was built in.
inline std::string buildTree() {
  char const* build = std::getenv("RONDO_BINARY_DIR");
  return build && *build ? std::string(build) : std::string(RONDO_TEST_BINARY_DIR);
}

// Null when no virtual machine can be made.
inline JNIEnv* jvm() {
  static JNIEnv* env = [] {
    JavaVM* vm = nullptr;
    JNIEnv* made = nullptr;
    jsize n = 0;
    if (JNI_GetCreatedJavaVMs(&vm, 1, &n) == JNI_OK && n == 1) {
      vm->GetEnv(reinterpret_cast<void**>(&made), JNI_VERSION_1_8);
      return made;
    }
    std::string classPath = "-Djava.class.path=" + buildTree() + "/java/classes";
    JavaVMOption options[2];
    options[0].optionString = const_cast<char*>(classPath.c_str());
    // The virtual machine leaves the process's signals to the tests.
    options[1].optionString = const_cast<char*>("-Xrs");
    JavaVMInitArgs args;
    args.version = JNI_VERSION_1_8;
    args.nOptions = 2;
    args.options = options;
    args.ignoreUnrecognized = JNI_FALSE;
    if (JNI_CreateJavaVM(&vm, reinterpret_cast<void**>(&made), &args) != JNI_OK) return static_cast<JNIEnv*>(nullptr);
    return made;
  }();
  return env;
}

inline jstring jstr(char const* text) { return jvm()->NewStringUTF(text); }

// A new object of a class with a constructor of no arguments; null, with
// the exception told and cleared, where there is no such class.
inline jobject newObject(std::string const& className) {
  JNIEnv* env = jvm();
  jclass cls = env->FindClass(className.c_str());
  if (cls == nullptr) {
    env->ExceptionDescribe();
    env->ExceptionClear();
    return nullptr;
  }
  return env->NewObject(cls, env->GetMethodID(cls, "<init>", "()V"));
}

}  // namespace native_testing

#endif
