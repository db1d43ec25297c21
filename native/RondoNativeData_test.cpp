// The data entry points, called with the environment of a real virtual
// machine, against the real data server and its UnitTest back end serving a
// packed store file. Every test opens a project of its own, so that its
// stores are new in the maps and the server. What the Java host sees of the
// common paths is checked in java/; here are the branches it does not take.

#include <gtest/gtest.h>
#include <jni.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "attribute/KeyList.h"
#include "filestore/memory/InMemoryStore.h"
#include "foundation/Packer.h"
#include "foundation/TestReleaseTree.h"
#include "native/NativeTesting.h"
#include "native/RondoDataNatives.h"
#include "native/RondoNativeMaps.h"
#include "project/Project.h"
#include "registry/RondoRegistry.h"

namespace {

using native_testing::buildTree;
using native_testing::jstr;
using native_testing::jvm;
using native_testing::newObject;

char const kServer[] = "";
char const kPackage[] = "com/nyx/orda/business/io/protocols/rondo/";

jobject descriptor(char const* server, char const* project, char const* data) {
  JNIEnv* env = jvm();
  jclass cls = env->FindClass((std::string(kPackage) + "RondoDataDescriptor").c_str());
  jmethodID make = env->GetMethodID(
      cls, "<init>", "(Ljava/lang/String;Ljava/lang/String;Ljava/lang/String;Ljava/lang/String;)V");
  return env->NewObject(cls, make, jstr(server), jstr(project), jstr(data), jstr("RONDO"));
}

jintArray newInts(std::vector<jint> const& values) {
  jintArray a = jvm()->NewIntArray(static_cast<jsize>(values.size()));
  jvm()->SetIntArrayRegion(a, 0, static_cast<jsize>(values.size()), values.data());
  return a;
}
std::vector<jint> ints(jintArray a) {
  std::vector<jint> out(static_cast<size_t>(jvm()->GetArrayLength(a)));
  jvm()->GetIntArrayRegion(a, 0, static_cast<jsize>(out.size()), out.data());
  return out;
}
jfloatArray newFloats(size_t n, float fill = -1.0f) {
  std::vector<jfloat> values(n, fill);
  jfloatArray a = jvm()->NewFloatArray(static_cast<jsize>(n));
  jvm()->SetFloatArrayRegion(a, 0, static_cast<jsize>(n), values.data());
  return a;
}
std::vector<float> floats(jfloatArray a) {
  std::vector<float> out(static_cast<size_t>(jvm()->GetArrayLength(a)));
  jvm()->GetFloatArrayRegion(a, 0, static_cast<jsize>(out.size()), out.data());
  return out;
}

// --- the stores of the suite's server --------------------------------------------

void writeStore(InMemoryStore const& store, std::string const& file) {
  Packer packer;
  packer.pack(store);
  unsigned char const* bytes = nullptr;
  int size = 0;
  packer.getBuffer(&bytes, size, 0);
  std::ofstream(file, std::ios::binary).write(reinterpret_cast<char const*>(bytes), size);
}

// A 2D line of 5 traces of 4 samples, keyed by CDP and OFFSET; sample j of
// trace i is i * 100 + j. Columns of every type the loaders convert.
void writeLine(std::string const& file) {
  InMemoryStore store{vHandle<Project>()};
  KeyList keys;
  keys.addKey(Attribute("CDP", "CDP", vINT32));
  keys.addKey(Attribute("OFFSET", "OFFSET", vINT32));
  store.create("line", "seismic", "2d", keys, nullptr);
  store.addAttribute(Attribute("TRACE", "TRACE", vFLOAT32, 4, 2.0, 10.0));
  Attribute statics("STATIC", "", vFLOAT32);
  statics.setStatisticValues(-3.9, 7.25, 0);
  store.addAttribute(statics);
  store.addAttribute(Attribute("BIG", "", vINT64));
  store.addAttribute(Attribute("DBL", "", vFLOAT64));
  store.addAttribute(Attribute("SHORT", "", vINT16));
  store.addAttribute(Attribute("INLINE", "", vINT32));
  store.addInstances(5);
  float const staticValues[5] = {3.9f, -3.9f, 0.5f, -0.5f, 7.25f};
  long long const bigValues[5] = {0x100000005LL, -1, 0x80000000LL, -0x100000002LL, 5};
  double const doubleValues[5] = {2.75, -2.75, 1e9, 0.999, -0.999};
  for (unsigned int i = 1; i <= 5; ++i) {
    store.updateAttributeAndData("CDP").setInt32(i, static_cast<int>(100 + i));
    store.updateAttributeAndData("OFFSET").setInt32(i, static_cast<int>(25 * i));
    store.updateAttributeAndData("STATIC").setFloat32(i, staticValues[i - 1]);
    store.updateAttributeAndData("BIG").setInt64(i, bigValues[i - 1]);
    store.updateAttributeAndData("DBL").setFloat64(i, doubleValues[i - 1]);
    store.updateAttributeAndData("SHORT").setInt16(i, static_cast<short>(i));
    store.updateAttributeAndData("INLINE").setInt32(i, 7);
    float* trace = store.updateAttributeAndData("TRACE").getFloat32Pointer(i);
    for (int j = 0; j < 4; ++j) trace[j] = static_cast<float>(i * 100 + j);
  }
  writeStore(store, file);
}

class RondoData : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    char pattern[] = "/tmp/rondo-data-XXXXXX";
    char* made = ::mkdtemp(pattern);
    s_dir = made ? made : "/tmp";
    writeLine(s_dir + "/line.store");
  }
  static void TearDownTestSuite() {
    std::error_code ignored;
    std::filesystem::remove_all(s_dir, ignored);
  }

  void SetUp() override {
    ASSERT_NE(nullptr, jvm()) << "no virtual machine";
    rondoEnsureClassesRegistered();
    registerRondoClasses();
    m_tree.setEnv("HOME", m_tree.workDir());
    m_tree.setEnv("VSERVER", buildTree() + "/bin/DataServer");
    m_tree.unsetEnv("SP_CAPI_DATASERVER");
    m_tree.setEnv("SP_DATASERVER_BACKEND", "UnitTest");
    m_tree.unsetEnv("CAPI_DISABLERONDODATASERVER");
    std::string const line = s_dir + "/line.store";
    m_tree.setEnv("RONDO_UNITTEST_STORES", "line.1:seismic:2d:" + line + " late.3:seismic:2d:" + line);
  }

  // Connects and opens the test's own project.
  void open(char const* project) {
    ASSERT_TRUE(RONDO_JNI(RondoOpenConnection)(jvm(), nullptr, jstr(kServer)));
    ::testing::internal::CaptureStdout();
    bool const opened = RONDO_JNI(RondoOpenProject)(jvm(), nullptr, jstr(kServer), jstr(project));
    std::string const printed = ::testing::internal::GetCapturedStdout();
    ASSERT_TRUE(opened) << printed;
  }

  // GetDataInfo's answer; what it prints, with the sink's echo, captured.
  bool info(char const* project, char const* data) {
    ::testing::internal::CaptureStdout();
    jobject sink = newObject(std::string(kPackage) + "RondoInfoSink");
    bool const r = RONDO_JNI(RondoGetDataInfo)(jvm(), nullptr, descriptor(kServer, project, data), sink);
    m_printed = ::testing::internal::GetCapturedStdout();
    return r;
  }

  // Loads, printing captured; the answer.
  template <class Entry, class... Rest>
  bool load(Entry entry, char const* project, char const* data, char const* name, Rest... rest) {
    ::testing::internal::CaptureStdout();
    bool const r = entry(jvm(), nullptr, descriptor(kServer, project, data), jstr(name), rest...);
    m_printed = ::testing::internal::GetCapturedStdout();
    return r;
  }
  bool loadI(char const* p, char const* d, char const* name, jintArray values) {
    return load(&RONDO_JNI(RondoLoadAttributeI), p, d, name, values);
  }
  bool loadF(char const* p, char const* d, char const* name, jfloatArray values, jint first, jint count) {
    return load(&RONDO_JNI(RondoLoadAttributeF), p, d, name, values, first, count);
  }
  bool loadTab(char const* p, char const* d, char const* name, jintArray indices, jint n, jfloatArray values) {
    return load(&RONDO_JNI(RondoLoadAttributeFromTabindexF), p, d, name, indices, n, values);
  }

  static std::string s_dir;
  TestReleaseTree m_tree;
  std::string m_printed;
};

std::string RondoData::s_dir;

// LoadI and LoadF convert by type, LoadF takes whole attributes, ranges or
// lists of traces, and arrays too small are refused.
TEST_F(RondoData, LoadsConvertByTypeAndRefuseArraysTooSmall) {
  open("loads");
  // 32-bit types as the Java host loads them; the low bits of 64-bit ones.
  jintArray numbers = newInts({-7, -7, -7, -7, -7, -7});
  EXPECT_TRUE(loadI("loads", "line", "BIG", numbers));
  EXPECT_EQ((std::vector<jint>{5, -1, INT32_MIN, -2, 5, -7}), ints(numbers));
  EXPECT_TRUE(loadI("loads", "line", "DBL", numbers));
  EXPECT_EQ((std::vector<jint>{2, -2, 1000000000, 0, 0, -7}), ints(numbers));
  // Vectors are taken flat: five values from trace 1 on.
  EXPECT_TRUE(loadI("loads", "line", "TRACE", numbers));
  EXPECT_EQ((std::vector<jint>{100, 101, 102, 103, 200, -7}), ints(numbers));
  // A type it does not convert leaves the array as it was.
  jintArray untouched = newInts({9, 9, 9, 9, 9});
  EXPECT_TRUE(loadI("loads", "line", "SHORT", untouched));
  EXPECT_EQ((std::vector<jint>{9, 9, 9, 9, 9}), ints(untouched));
  EXPECT_EQ("", m_printed);

  jfloatArray values = newFloats(9);
  // first or count -1: the whole attribute, n values from instance 1.
  EXPECT_TRUE(loadF("loads", "line", "BIG", values, 2, -1));
  EXPECT_EQ((std::vector<float>{4294967301.0f, -1, 2147483648.0f, -4294967298.0f, 5, -1, -1, -1, -1}),
            floats(values));
  EXPECT_TRUE(loadF("loads", "line", "DBL", values, -1, 3));
  EXPECT_EQ((std::vector<float>{2.75f, -2.75f, 1e9f, 0.999f, -0.999f, -1, -1, -1, -1}), floats(values));
  // No traces: nothing written, and true.
  jfloatArray kept = newFloats(4, 5.0f);
  EXPECT_TRUE(loadF("loads", "line", "TRACE", kept, 4, 0));
  EXPECT_EQ((std::vector<float>{5, 5, 5, 5}), floats(kept));
  EXPECT_EQ("", m_printed);

  // Lists are for traces only, by that name exactly (ranges: the Java host).
  EXPECT_FALSE(loadTab("loads", "line", "trace", newInts({0}), 1, values));
  EXPECT_EQ("RondoLoadAttributeF---------- Trace index != TRACE not yet implemented!!!!!!!!!!!!!!!!!!!!!!! \n",
            m_printed);

  // Only as many listed traces as told; none is false.
  jfloatArray listed = newFloats(9);
  EXPECT_TRUE(loadTab("loads", "line", "TRACE", newInts({2, 3}), 1, listed));
  EXPECT_EQ((std::vector<float>{300, 301, 302, 303, -1, -1, -1, -1, -1}), floats(listed));
  EXPECT_FALSE(loadTab("loads", "line", "TRACE", newInts({0}), 0, listed));
  EXPECT_EQ("", m_printed);

  EXPECT_FALSE(loadI("loads", "line", "CDP", nullptr));
  EXPECT_EQ("RondoLoadAttributeI---------- No array given!!!!!!!!!!!\n", m_printed);
  jfloatArray four = newFloats(4);
  EXPECT_FALSE(loadF("loads", "line", "STATIC", four, -1, -1));
  EXPECT_EQ("RondoLoadAttributeF---------- The array holds 4 values, 5 are needed!!!!!!!!!!!\n", m_printed);
  EXPECT_FALSE(loadF("loads", "line", "TRACE", newFloats(8), -3, 1));
  EXPECT_EQ("RondoLoadAttributeF---------- First trace -3 is before the first!!!!!!!!!!!\n", m_printed);
  EXPECT_FALSE(loadTab("loads", "line", "TRACE", newInts({0}), 2, newFloats(8)));
  EXPECT_EQ("RondoLoadAttributeFromTabindexF---------- The array holds 1 values, 2 are needed!!!!!!!!!!!\n",
            m_printed);
  // Nothing was written where it fitted either.
  EXPECT_EQ((std::vector<float>{-1, -1, -1, -1}), floats(four));
}

TEST_F(RondoData, TheFirstOpenerChoosesTheVersion) {
  open("versions");
  // Opened by the info (version 0), version 3 loads; a load alone asks for 1.
  ASSERT_TRUE(info("versions", "late"));
  jfloatArray values = newFloats(4);
  EXPECT_TRUE(loadF("versions", "late", "TRACE", values, 0, 1));
  EXPECT_EQ((std::vector<float>{100, 101, 102, 103}), floats(values));
  vHandle<Store> store;
  EXPECT_TRUE(openStoreOnData(jvm(), descriptor(kServer, "versions", "late"), store, 1));
  EXPECT_EQ(map_store["|RONDO|versions|late"].get(), store.get());
  // Closing a store that was never opened makes it and leaves it closed.
  vHandle<Store> closed;
  EXPECT_TRUE(closeStoreOnData(jvm(), descriptor(kServer, "versions", "line"), closed));
  EXPECT_EQ(map_store["|RONDO|versions|line"].get(), closed.get());
  EXPECT_FALSE(closed->isOpen());
  EXPECT_FALSE(closeStoreOnData(jvm(), nullptr, closed));
  // Open for reading, it closes without sending its properties, and reopens.
  ASSERT_TRUE(store->isOpen());
  EXPECT_TRUE(closeStoreOnData(jvm(), descriptor(kServer, "versions", "late"), closed));
  EXPECT_EQ(store.get(), closed.get());
  EXPECT_FALSE(store->isOpen());
  ASSERT_TRUE(info("versions", "late"));
  EXPECT_TRUE(loadF("versions", "late", "TRACE", values, 0, 1));
  EXPECT_EQ((std::vector<float>{100, 101, 102, 103}), floats(values));
}

// --- the paths that end the host ---------------------------------------------------

// A regular expression that matches the text as it stands.
std::string literally(std::string const& text) {
  std::string out;
  for (char c : text) {
    if (std::string("\\^$.|?*+()[]{}").find(c) != std::string::npos) out += '\\';
    out += c;
  }
  return out;
}

// Standard output to the error stream, where a death test looks.
void printToErrors() {
  std::fflush(stdout);
  ::dup2(2, 1);
}

using RondoDataDeathTest = RondoData;

// Runs call in a child that opened project (unless ""), with its printing
// sent where the death test looks; the host must end with text.
#define EXPECT_HOST_ENDS(project, call, text)                                 \
  EXPECT_EXIT(                                                                \
      {                                                                       \
        if (std::string(project) != "") open(project);                        \
        printToErrors();                                                      \
        call;                                                                 \
        std::exit(0);                                                         \
      },                                                                      \
      ::testing::ExitedWithCode(255), literally(text))

// A store that does not open (a load of version 1 where the project has
// version 3 only; a project never opened), and failures of an open store.
TEST_F(RondoDataDeathTest, FailuresOfTheStoreEndTheHostWithTheirReport) {
  EXPECT_HOST_ENDS("gone",
                   RONDO_JNI(RondoLoadAttributeF)(jvm(), nullptr, descriptor(kServer, "gone", "late"), jstr("TRACE"),
                                                  newFloats(4), 0, 1),
                   "Can't open project\nReason: 'Server said:-o Store late version 1 is not in project gone. in method "
                   "'COBPortal::myMessage'\n");
  EXPECT_HOST_ENDS("",
                   RONDO_JNI(RondoLoadAttributeI)(jvm(), nullptr, descriptor(kServer, "never", "line"), jstr("CDP"),
                                                  newInts({0})),
                   "Can't open project\nReason: 'Trying to get a NULL pointer in method 'vHandle::get()'\n");
  EXPECT_HOST_ENDS("bad",
                   RONDO_JNI(RondoLoadAttributeI)(jvm(), nullptr, descriptor(kServer, "bad", "line"), jstr("NOSUCH"),
                                                  newInts({0, 0, 0, 0, 0})),
                   "\n====================== EXCEPTION TRACEBACK =======================\n"
                   "Server said:-o Attribute NOSUCH is not in the AttributeSet line.\n"
                   "   (Method=COBPortal::myMessage)\n");
  EXPECT_HOST_ENDS("bad",
                   RONDO_JNI(RondoLoadAttributeFromTabindexF)(jvm(), nullptr, descriptor(kServer, "bad", "line"),
                                                              jstr("TRACE"), newInts({5}), 1, newFloats(4)),
                   "Server said:-o last instance 6 must be <= number of instances 5.\n"
                   "   (Method=COBPortal::myMessage)\n");
}

}  // namespace
