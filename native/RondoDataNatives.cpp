// The data entry points of RondoNativeCodeLoader: what a data set holds and
// the loading of attributes into Java arrays. They need the store layer,
// which is not part of this build yet: until then each answers false, so
// that the host treats the data as unavailable.

#include "native/RondoNativeMaps.h"

jint rondoAttributeKind(DataType type) { return type == vFLOAT32 || type == vFLOAT64 ? 2 : 1; }

extern "C" {

JNIEXPORT jboolean JNICALL Java_com_nyx_orda_business_io_protocols_rondo_RondoNativeCodeLoader_RondoGetDataInfo(
    JNIEnv*, jobject, jobject, jobject) {
  rondoEnsureClassesRegistered();
  return JNI_FALSE;
}

JNIEXPORT jboolean JNICALL Java_com_nyx_orda_business_io_protocols_rondo_RondoNativeCodeLoader_RondoLoadAttributeI(
    JNIEnv*, jobject, jobject, jstring, jintArray) {
  rondoEnsureClassesRegistered();
  return JNI_FALSE;
}

JNIEXPORT jboolean JNICALL Java_com_nyx_orda_business_io_protocols_rondo_RondoNativeCodeLoader_RondoLoadAttributeF(
    JNIEnv*, jobject, jobject, jstring, jfloatArray, jint, jint) {
  rondoEnsureClassesRegistered();
  return JNI_FALSE;
}

JNIEXPORT jboolean JNICALL
Java_com_nyx_orda_business_io_protocols_rondo_RondoNativeCodeLoader_RondoLoadAttributeFromTabindexF(
    JNIEnv*, jobject, jobject, jstring, jintArray, jint, jfloatArray) {
  rondoEnsureClassesRegistered();
  return JNI_FALSE;
}

}  // extern "C"
