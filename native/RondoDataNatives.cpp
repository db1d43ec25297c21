// The data entry points of RondoNativeCodeLoader: what a data set holds and
// the loading of attributes into Java arrays, and the opening of the store
// a data descriptor names.
//
// Everything goes to standard output, where the host collects it. A store
// that cannot be opened ends the process. A failure of the store once it is
// open ends it too, with the report, as an exception crossing into the
// virtual machine would, only readable. A Java array too small for what a
// load would write is refused with a false: the library never writes past
// the end of the host's memory.

#include "native/RondoDataNatives.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <list>

#include "attribute/Attribute.h"
#include "attribute/KeyList.h"
#include "foundation/Message.h"
#include "foundation/UtlExcept.h"
#include "foundation/vLCString.h"
#include "foundation/vUCString.h"
#include "native/MapdataReader.h"
#include "native/RondoNativeMaps.h"
#include "project/StoreFactory.h"

jint rondoAttributeKind(DataType type) { return type == vFLOAT32 || type == vFLOAT64 ? 2 : 1; }

namespace {

char const kNotTrace[] =
    "RondoLoadAttributeF---------- Trace index != TRACE not yet implemented!!!!!!!!!!!!!!!!!!!!!!! ";

// The four strings a data descriptor gives.
struct Descriptor {
  jstring project = nullptr;
  jstring server = nullptr;
  jstring dataName = nullptr;
  jstring type = nullptr;
};

jmethodID lookUp(JNIEnv* env, jclass cls, char const* name, char const* signature) {
  jmethodID id = env->GetMethodID(cls, name, signature);
  // A missing method is a false answer, not a NoSuchMethodError.
  if (id == nullptr) env->ExceptionClear();
  return id;
}

bool readDescriptor(JNIEnv* env, jobject descriptor, Descriptor& out) {
  jclass cls = descriptor ? env->GetObjectClass(descriptor) : nullptr;
  if (cls == nullptr) return false;
  char const* const text = "()Ljava/lang/String;";
  jmethodID getProject = lookUp(env, cls, "getProject", text);
  jmethodID getServerHost = lookUp(env, cls, "getServerHost", text);
  jmethodID getDataName = lookUp(env, cls, "getDataName", text);
  jmethodID getType = lookUp(env, cls, "getRONDOType", text);
  if (!getProject || !getServerHost || !getDataName || !getType) return false;
  out.project = static_cast<jstring>(env->CallObjectMethod(descriptor, getProject));
  out.server = static_cast<jstring>(env->CallObjectMethod(descriptor, getServerHost));
  out.dataName = static_cast<jstring>(env->CallObjectMethod(descriptor, getDataName));
  out.type = static_cast<jstring>(env->CallObjectMethod(descriptor, getType));
  return true;
}

// The characters of a Java string held until release(); a null string reads
// as empty.
class JavaChars {
 public:
  JavaChars(JNIEnv* env, jstring text) : m_env(env), m_text(text) {
    m_chars = text ? env->GetStringUTFChars(text, nullptr) : "";
  }
  char const* get() const { return m_chars; }
  void release() {
    if (m_text) m_env->ReleaseStringUTFChars(m_text, m_chars);
    m_text = nullptr;
  }

 private:
  JNIEnv* m_env;
  jstring m_text;
  char const* m_chars;
};

// The end of the host on a failure of an open store.
[[noreturn]] void endHost(UtlExcept const& e) {
  std::cout << e << std::flush;
  std::exit(-1);
}

// Refuses an array that cannot take `needed` values.
bool arrayHolds(JNIEnv* env, jarray array, long long needed, char const* method) {
  if (array == nullptr) {
    std::cout << method << "---------- No array given!!!!!!!!!!!" << std::endl;
    return false;
  }
  jsize const size = env->GetArrayLength(array);
  if (needed < 0 || needed > size) {
    std::cout << method << "---------- The array holds " << size << " values, " << needed
              << " are needed!!!!!!!!!!!" << std::endl;
    return false;
  }
  return true;
}

// The attribute's values go back at once, not when it is destroyed.
void releaseAttribute(Attribute& attribute) {
  attribute.resize(0);
  attribute.releaseLengths();
}

// Values from the start of the attribute's data, at most what it holds.
long long available(Attribute const& attribute, long long wanted) {
  long long const held = attribute.getNInstances() == 0 ? 0 : attribute.getTotalLength();
  return wanted < held ? wanted : held;
}

// n values from value `from` (0-based, flat) into out, by the data type;
// any other type writes nothing.
void copyToFloat(Attribute const& attribute, long long from, long long n, jfloat* out) {
  if (n <= 0) return;
  switch (attribute.getDataType()) {
    case vINT32: {
      int const* v = attribute.getInt32Pointer(1) + from;
      for (long long k = 0; k < n; ++k) out[k] = static_cast<jfloat>(v[k]);
      break;
    }
    case vINT64: {
      long long const* v = attribute.getInt64Pointer(1) + from;
      for (long long k = 0; k < n; ++k) out[k] = static_cast<jfloat>(v[k]);
      break;
    }
    case vFLOAT32: {
      float const* v = attribute.getFloat32Pointer(1) + from;
      for (long long k = 0; k < n; ++k) out[k] = v[k];
      break;
    }
    case vFLOAT64: {
      double const* v = attribute.getFloat64Pointer(1) + from;
      for (long long k = 0; k < n; ++k) out[k] = static_cast<jfloat>(v[k]);
      break;
    }
    default:
      break;
  }
}

void copyToInt(Attribute const& attribute, long long n, jint* out) {
  if (n <= 0) return;
  switch (attribute.getDataType()) {
    case vINT32: {
      int const* v = attribute.getInt32Pointer(1);
      for (long long k = 0; k < n; ++k) out[k] = v[k];
      break;
    }
    case vFLOAT32: {
      float const* v = attribute.getFloat32Pointer(1);
      for (long long k = 0; k < n; ++k) out[k] = static_cast<jint>(v[k]);
      break;
    }
    case vINT64: {
      // The low 32 bits.
      long long const* v = attribute.getInt64Pointer(1);
      for (long long k = 0; k < n; ++k) out[k] = static_cast<jint>(static_cast<uint32_t>(v[k]));
      break;
    }
    case vFLOAT64: {
      double const* v = attribute.getFloat64Pointer(1);
      for (long long k = 0; k < n; ++k) out[k] = static_cast<jint>(v[k]);
      break;
    }
    default:
      break;
  }
}

// The callbacks of an info sink.
struct InfoSink {
  jmethodID setNbElements = nullptr;
  jmethodID addAttributeName = nullptr;
  jmethodID addKeyAttributeName = nullptr;
  jmethodID addStatisticOnAttribute = nullptr;
  jmethodID setProperty = nullptr;
};

bool lookUpSink(JNIEnv* env, jobject sink, InfoSink& out) {
  jclass cls = sink ? env->GetObjectClass(sink) : nullptr;
  if (cls == nullptr) return false;
  out.setNbElements = lookUp(env, cls, "setNbElements", "(I)V");
  out.addAttributeName = lookUp(env, cls, "addAttributeName", "(Ljava/lang/String;I)V");
  out.addKeyAttributeName = lookUp(env, cls, "addKeyAttributeName", "(Ljava/lang/String;I)V");
  out.addStatisticOnAttribute = lookUp(env, cls, "addStatisticOnAttribute", "(Ljava/lang/String;FF)V");
  out.setProperty = lookUp(env, cls, "setProperty", "(Ljava/lang/String;Ljava/lang/String;)V");
  return out.setNbElements && out.addAttributeName && out.addKeyAttributeName && out.addStatisticOnAttribute &&
         out.setProperty;
}

void callWithName(JNIEnv* env, jobject sink, jmethodID method, vString const& name, jint kind) {
  jstring text = env->NewStringUTF(name.c_str());
  env->CallVoidMethod(sink, method, text, kind);
  env->DeleteLocalRef(text);
}

void callStatistic(JNIEnv* env, jobject sink, jmethodID method, vString const& name, double a, double b) {
  jstring text = env->NewStringUTF(name.c_str());
  // Floats travel through the variable arguments as doubles.
  env->CallVoidMethod(sink, method, text, static_cast<jdouble>(a), static_cast<jdouble>(b));
  env->DeleteLocalRef(text);
}

void callProperty(JNIEnv* env, jobject sink, jmethodID method, char const* name, vString const& value) {
  jstring n = env->NewStringUTF(name);
  jstring v = env->NewStringUTF(value.c_str());
  env->CallVoidMethod(sink, method, n, v);
  env->DeleteLocalRef(n);
  env->DeleteLocalRef(v);
}

void printStatistics(double a, double b) { std::cout << "+++++Stats on Attribute is :" << a << "," << b << std::endl; }

// What a map data set tells the host: three names and the count.
void describeMap(JNIEnv* env, jobject sink, InfoSink const& calls, MapdataReader const& reader) {
  vString first, second, third, fourth;
  reader.getNames(first, second, third, fourth);
  vHandle<Store> const& store = reader.getStore();
  // Their types are asked, which makes sure the store has the three.
  for (vString const* name : {&first, &second, &third}) store->getAttribute(vUCString(name->c_str())).getDataType();
  env->CallVoidMethod(sink, calls.setNbElements, static_cast<jint>(store->getNInstances()));
  callWithName(env, sink, calls.addKeyAttributeName, first, 1);
  callWithName(env, sink, calls.addKeyAttributeName, second, 1);
  callWithName(env, sink, calls.addAttributeName, third, 2);
}

// What any other data set tells: its keys and their statistics, the first
// two keys as primary and secondary, the trace layout, the other attributes.
void describeData(JNIEnv* env, jobject sink, InfoSink const& calls, vHandle<Store> const& store) {
  std::list<Attribute> const attributes = store->getAttributeList();
  env->CallVoidMethod(sink, calls.setNbElements, static_cast<jint>(store->getNInstances()));
  KeyList const keys = store->getKeyList();

  double a = 0.0, b = 0.0;
  long long n = 0;
  for (Attribute const& listed : keys) {
    Attribute const key(listed);
    std::cout << "+++++KEY Attribute is: " << key.getName() << std::endl;
    key.getStatisticValues(a, b, n);
    printStatistics(a, b);
    callStatistic(env, sink, calls.addStatisticOnAttribute, key.getName(), a, b);
    callWithName(env, sink, calls.addKeyAttributeName, key.getName(), rondoAttributeKind(key.getDataType()));
  }

  if (keys.getNKeys() < 2)
    Message::fatal("RondoGetDataInfo", 0, "Data set %s has %u key attributes; a primary and a secondary are needed.",
                   store->getName().c_str(), keys.getNKeys());
  auto key = keys.begin();
  vString const primary = key->getName();
  vString const secondary = (++key)->getName();
  std::cout << "+++++PRIMARY KEY is: " << primary << std::endl;
  std::cout << "+++++SECONDARY KEY is: " << secondary << std::endl;
  callProperty(env, sink, calls.setProperty, "Primary Key", primary);
  callProperty(env, sink, calls.setProperty, "Secondary Key", secondary);

  for (Attribute const& attribute : attributes) {
    vUCString const& name = attribute.getName();
    if (name == "INLINE" || name == "CROSSLINE") continue;
    if (name == "TRACE") {
      std::cout << "================== Length: " << attribute.getLength() << std::endl;
      vString text;
      text.printf("%d", attribute.getLength());
      callProperty(env, sink, calls.setProperty, "Length", text);
      text.printf("%f", attribute.getSampleRate());
      callProperty(env, sink, calls.setProperty, "SampleRate", text);
      text.printf("%f", attribute.getFirstTime());
      callProperty(env, sink, calls.setProperty, "FirstTime", text);
      continue;
    }
    std::cout << "++++Attribute is: " << name << std::endl;
    attribute.getStatisticValues(a, b, n);
    printStatistics(a, b);
    callStatistic(env, sink, calls.addStatisticOnAttribute, name, a, b);
    callWithName(env, sink, calls.addAttributeName, name, rondoAttributeKind(attribute.getDataType()));
  }
}

// The stores of the map go at the exit of the process, before the
// process-wide objects that a store uses to close itself (names of reserved
// properties, the factories' caches): the map is built when the library
// loads, before those, and would otherwise be destroyed after them.
void releaseStoresAtExit() { map_store.clear(); }

}  // namespace

vHandle<Store> getRondoStore(JNIEnv* env, jstring server, jstring project, jstring dataName) {
  vString const key = createKeyForRondoStore(env, server, project, dataName);
  auto const found = map_store.find(key);
  if (found != map_store.end()) return found->second;
  vHandle<Store> store = StoreFactory::create(getRondoProject(env, server, project));
  static bool const releasedAtExit = std::atexit(&releaseStoresAtExit) == 0;
  (void)releasedAtExit;
  map_store[key] = store;
  return store;
}

bool openStoreOnData(JNIEnv* env, jobject descriptor, vHandle<Store>& store, int version) {
  Descriptor d;
  if (!readDescriptor(env, descriptor, d)) return false;
  JavaChars dataName(env, d.dataName);
  JavaChars type(env, d.type);
  try {
    store = getRondoStore(env, d.server, d.project, d.dataName);
    if (!store->isOpen()) store->open(vLCString(dataName.get()), version, vLCString(""), vLCString(""), nullptr);
  } catch (UtlExcept const& e) {
    std::cout << "Can't open project" << e.toString("\nReason: '%R in method '%M'") << std::endl;
    std::exit(-1);
  } catch (...) {
    std::cout << "Can't open  project. Unknown execption" << std::endl;
    std::exit(-1);
  }
  dataName.release();
  type.release();
  return true;
}

bool closeStoreOnData(JNIEnv* env, jobject descriptor, vHandle<Store>& store) {
  Descriptor d;
  if (!readDescriptor(env, descriptor, d)) return false;
  JavaChars dataName(env, d.dataName);
  JavaChars type(env, d.type);
  try {
    store = getRondoStore(env, d.server, d.project, d.dataName);
    if (store->isOpen()) store->close();
  } catch (UtlExcept const& e) {
    std::cout << "Can't close project" << e.toString("\nReason: '%R in method '%M'") << std::endl;
    std::exit(-1);
  } catch (...) {
    std::cout << "Can't close  project. Unknown exeption" << std::endl;
    std::exit(-1);
  }
  dataName.release();
  type.release();
  return true;
}

extern "C" {

JNIEXPORT jboolean JNICALL Java_com_nyx_orda_business_io_protocols_rondo_RondoNativeCodeLoader_RondoGetDataInfo(
    JNIEnv* env, jobject, jobject descriptor, jobject sink) {
  rondoEnsureClassesRegistered();
  vHandle<Store> store;
  if (!openStoreOnData(env, descriptor, store, 0)) return JNI_FALSE;
  InfoSink calls;
  if (!lookUpSink(env, sink, calls)) return JNI_FALSE;
  try {
    MapdataReader const reader(store);
    if (reader.isValid())
      describeMap(env, sink, calls, reader);
    else
      describeData(env, sink, calls, store);
  } catch (UtlExcept const& e) {
    endHost(e);
  }
  return JNI_TRUE;
}

JNIEXPORT jboolean JNICALL Java_com_nyx_orda_business_io_protocols_rondo_RondoNativeCodeLoader_RondoLoadAttributeI(
    JNIEnv* env, jobject, jobject descriptor, jstring attributeName, jintArray values) {
  rondoEnsureClassesRegistered();
  vHandle<Store> store;
  if (!openStoreOnData(env, descriptor, store, 0)) return JNI_FALSE;
  try {
    JavaChars name(env, attributeName);
    unsigned int const n = store->getNInstances();
    Attribute attribute = store->getAttribute(vUCString(name.get()));
    if (n > 0) store->read(attribute, 1, n);
    if (!arrayHolds(env, values, n, "RondoLoadAttributeI")) return JNI_FALSE;
    jint* buffer = env->GetIntArrayElements(values, nullptr);
    if (buffer == nullptr) return JNI_FALSE;
    copyToInt(attribute, available(attribute, n), buffer);
    env->ReleaseIntArrayElements(values, buffer, 0);
    releaseAttribute(attribute);
    name.release();
  } catch (UtlExcept const& e) {
    endHost(e);
  }
  return JNI_TRUE;
}

JNIEXPORT jboolean JNICALL Java_com_nyx_orda_business_io_protocols_rondo_RondoNativeCodeLoader_RondoLoadAttributeF(
    JNIEnv* env, jobject, jobject descriptor, jstring attributeName, jfloatArray values, jint first, jint count) {
  rondoEnsureClassesRegistered();
  vHandle<Store> store;
  if (!openStoreOnData(env, descriptor, store, 1)) return JNI_FALSE;
  try {
    JavaChars name(env, attributeName);
    Attribute attribute = store->getAttribute(vUCString(name.get()));
    unsigned int n = store->getNInstances();
    bool const whole = first == -1 || count == -1;
    if (!whole && std::strcmp(name.get(), "TRACE") != 0) {
      std::cout << kNotTrace << std::endl;
      return JNI_FALSE;
    }
    if (!whole) n = static_cast<unsigned int>(attribute.getLength());
    long long const needed = whole ? n : static_cast<long long>(count) * n;
    if (!whole && first < 0) {
      std::cout << "RondoLoadAttributeF---------- First trace " << first << " is before the first!!!!!!!!!!!"
                << std::endl;
      return JNI_FALSE;
    }
    if (!arrayHolds(env, values, needed, "RondoLoadAttributeF")) return JNI_FALSE;
    jfloat* buffer = env->GetFloatArrayElements(values, nullptr);
    if (buffer == nullptr) return JNI_FALSE;
    if (whole) {
      if (n > 0) store->read(attribute, 1, n);
      copyToFloat(attribute, 0, available(attribute, n), buffer);
    } else if (count > 0) {
      // Traces first+1 .. first+count; block k of n values at (k-1)*n.
      unsigned int const from = static_cast<unsigned int>(first) + 1;
      store->read(attribute, from, from + static_cast<unsigned int>(count) - 1);
      copyToFloat(attribute, 0, available(attribute, needed), buffer);
    }
    env->ReleaseFloatArrayElements(values, buffer, 0);
    releaseAttribute(attribute);
    name.release();
  } catch (UtlExcept const& e) {
    endHost(e);
  }
  return JNI_TRUE;
}

JNIEXPORT jboolean JNICALL
Java_com_nyx_orda_business_io_protocols_rondo_RondoNativeCodeLoader_RondoLoadAttributeFromTabindexF(
    JNIEnv* env, jobject, jobject descriptor, jstring attributeName, jintArray indices, jint nIndices,
    jfloatArray values) {
  rondoEnsureClassesRegistered();
  vHandle<Store> store;
  if (!openStoreOnData(env, descriptor, store, 1)) return JNI_FALSE;
  try {
    JavaChars name(env, attributeName);
    Attribute attribute = store->getAttribute(vUCString(name.get()));
    if (std::strcmp(name.get(), "TRACE") != 0) {
      std::cout << kNotTrace << std::endl;
      return JNI_FALSE;
    }
    long long const n = attribute.getLength();
    if (nIndices == 0) return JNI_FALSE;
    if (!arrayHolds(env, indices, nIndices, "RondoLoadAttributeFromTabindexF") ||
        !arrayHolds(env, values, n * nIndices, "RondoLoadAttributeFromTabindexF"))
      return JNI_FALSE;
    jint* index = env->GetIntArrayElements(indices, nullptr);
    jfloat* buffer = env->GetFloatArrayElements(values, nullptr);
    if (index == nullptr || buffer == nullptr) return JNI_FALSE;
    for (jint i = 0; i < nIndices; ++i) {
      jint const t = index[i];
      if (t < 0)
        Message::fatal("RondoLoadAttributeFromTabindexF", 0, "Trace index %d is before the first trace.",
                       static_cast<int>(t));
      unsigned int const instance = static_cast<unsigned int>(t) + 1;
      store->read(attribute, instance, instance);
      copyToFloat(attribute, 0, available(attribute, n), buffer + i * n);
    }
    env->ReleaseFloatArrayElements(values, buffer, 0);
    env->ReleaseIntArrayElements(indices, index, 0);
    releaseAttribute(attribute);
    name.release();
  } catch (UtlExcept const& e) {
    endHost(e);
  }
  return JNI_TRUE;
}

}  // extern "C"
