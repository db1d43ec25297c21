// The data entry points, called with the environment of a real virtual
// machine, against the real data server (VSERVER) and its UnitTest back
// end, whose scripted stores get their data from packed store files that
// the suite writes first. The host's view is what it prints: the library's
// lines and the callbacks of the Java sinks (each echoes its call), in the
// order they happen on standard output; and the Java arrays, value by value.
//
// Every test opens a project of its own on the one server of the suite, so
// that its stores are new in the maps and in the server. The server is the
// one of the blank server name (this host, a cluster of its own), which the
// loader's suite, run before in the same process, leaves unmade: there is
// one server per cluster and process, started with the environment of the
// moment. The paths that end
// the host run as death tests, with standard output sent to the error
// stream where the test can see it.

#include <gtest/gtest.h>
#include <jni.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "attribute/KeyList.h"
#include "attribute/Property.h"
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

jobject infoSink() { return newObject(std::string(kPackage) + "RondoInfoSink"); }

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
void writeLine(std::string const& file, bool twoKeys = true) {
  InMemoryStore store{vHandle<Project>()};
  KeyList keys;
  keys.addKey(Attribute("CDP", "CDP", vINT32));
  if (twoKeys) keys.addKey(Attribute("OFFSET", "OFFSET", vINT32));
  store.create("line", "seismic", "2d", keys, nullptr);
  if (!twoKeys) store.addAttribute(Attribute("OFFSET", "OFFSET", vINT32));
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

// Scalar columns, numbered by their place, over 4 instances.
void writeColumns(std::string const& file, char const* name, char const* className,
                  std::vector<char const*> const& columns, bool plotProperty = false) {
  InMemoryStore store{vHandle<Project>()};
  store.create(name, className, "none", KeyList(), nullptr);
  for (char const* column : columns) store.addAttribute(Attribute(column, "", vFLOAT64));
  store.addInstances(4);
  double place = 0;
  for (char const* column : columns) {
    ++place;
    for (unsigned int i = 1; i <= 4; ++i) store.updateAttributeAndData(column).setFloat64(i, place * 10 + i);
  }
  if (plotProperty) {
    vString const names[3] = {columns[0], columns[1], columns[2]};
    store.addProperty(Property("XYZ_PLOT_ATTRIBUTES", 3u, names));
  }
  writeStore(store, file);
}

// Slices at 100 and 104 over crosslines 20, 21, along inlines 200 and 202.
void writeSlices(std::string const& file) {
  InMemoryStore store{vHandle<Project>()};
  store.create("slices", "seismic", "timeslice", KeyList(), nullptr);
  store.addAttribute(Attribute("CROSSLINE", "", vINT32));
  store.addAttribute(Attribute("SLICE.TIME", "", vFLOAT32));
  store.addAttribute(Attribute("TRACE", "", vFLOAT32, 2, 2.0, 200.0));
  store.addInstances(4);
  for (unsigned int i = 1; i <= 4; ++i) {
    store.updateAttributeAndData("CROSSLINE").setInt32(i, static_cast<int>(20 + (i - 1) % 2));
    store.updateAttributeAndData("SLICE.TIME").setFloat32(i, i <= 2 ? 100.0f : 104.0f);
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
    writeLine(s_dir + "/onekey.store", false);
    writeColumns(s_dir + "/tops.store", "tops", "horizon", {"EAST", "NORTH", "DEPTH"}, true);
    writeColumns(s_dir + "/picks.store", "picks", "seismic", {"X", "XVAL", "Y", "YVAL", "Z", "ATVAL"});
    writeColumns(s_dir + "/cmp.store", "cmp", "seismic", {"TIME", "CMP.X", "CMP.Y"});
    writeSlices(s_dir + "/slices.store");
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
    std::string const d = s_dir + "/";
    m_tree.setEnv("RONDO_UNITTEST_STORES", "line.1:seismic:2d:" + d + "line.store late.3:seismic:2d:" + d +
                                               "line.store onekey.1:seismic:2d:" + d + "onekey.store tops.1:horizon::" +
                                               d + "tops.store picks.1:seismic::" + d + "picks.store cmp.1:seismic::" +
                                               d + "cmp.store slices.1:seismic:timeslice:" + d + "slices.store");
    // The grid of a time slice takes its position attributes from the
    // vocabulary.
    std::ifstream in(std::string(RONDO_TEST_SOURCE_DIR) + "/release/SystemFiles/AttributeDefTable4.txt");
    std::stringstream text;
    text << in.rdbuf();
    m_tree.writeSystemFile("AttributeDefTable4.txt", text.str());
  }

  // Connects and opens the test's own project.
  void open(char const* project) {
    ASSERT_TRUE(RONDO_JNI(RondoOpenConnection)(jvm(), nullptr, jstr(kServer)));
    ::testing::internal::CaptureStdout();
    bool const opened = RONDO_JNI(RondoOpenProject)(jvm(), nullptr, jstr(kServer), jstr(project));
    std::string const printed = ::testing::internal::GetCapturedStdout();
    ASSERT_TRUE(opened) << printed;
  }

  // What GetDataInfo prints, with the sink's echo of its calls.
  static std::string info(char const* project, char const* data, bool* result) {
    jobject sink = infoSink();
    ::testing::internal::CaptureStdout();
    *result = RONDO_JNI(RondoGetDataInfo)(jvm(), nullptr, descriptor(kServer, project, data), sink);
    return ::testing::internal::GetCapturedStdout();
  }

  // Loads, printing captured; the answer.
  bool loadI(char const* project, char const* data, char const* name, jintArray values) {
    ::testing::internal::CaptureStdout();
    bool const r = RONDO_JNI(RondoLoadAttributeI)(jvm(), nullptr, descriptor(kServer, project, data), jstr(name),
                                                  values);
    m_printed = ::testing::internal::GetCapturedStdout();
    return r;
  }
  bool loadF(char const* project, char const* data, char const* name, jfloatArray values, jint first, jint count) {
    ::testing::internal::CaptureStdout();
    bool const r = RONDO_JNI(RondoLoadAttributeF)(jvm(), nullptr, descriptor(kServer, project, data), jstr(name),
                                                  values, first, count);
    m_printed = ::testing::internal::GetCapturedStdout();
    return r;
  }
  bool loadTab(char const* project, char const* data, char const* name, jintArray indices, jint n,
               jfloatArray values) {
    ::testing::internal::CaptureStdout();
    bool const r = RONDO_JNI(RondoLoadAttributeFromTabindexF)(jvm(), nullptr, descriptor(kServer, project, data),
                                                              jstr(name), indices, n, values);
    m_printed = ::testing::internal::GetCapturedStdout();
    return r;
  }

  static std::string s_dir;
  TestReleaseTree m_tree;
  std::string m_printed;
};

std::string RondoData::s_dir;

TEST_F(RondoData, InfoOfASeismicLineGivesKeysStatisticsAndTheTraceLayout) {
  open("info");
  bool result = false;
  std::string const printed = info("info", "line", &result);
  EXPECT_TRUE(result);
  EXPECT_EQ(
      "setNbElements(5)\n"
      "+++++KEY Attribute is: CDP\n"
      "+++++Stats on Attribute is :0,0\n"
      "addStatisticOnAttribute(CDP, 0.0, 0.0)\n"
      "addKeyAttributeName(CDP, 1)\n"
      "+++++KEY Attribute is: OFFSET\n"
      "+++++Stats on Attribute is :0,0\n"
      "addStatisticOnAttribute(OFFSET, 0.0, 0.0)\n"
      "addKeyAttributeName(OFFSET, 1)\n"
      "+++++PRIMARY KEY is: CDP\n"
      "+++++SECONDARY KEY is: OFFSET\n"
      "setProperty(Primary Key, CDP)\n"
      "setProperty(Secondary Key, OFFSET)\n"
      "++++Attribute is: BIG\n"
      "+++++Stats on Attribute is :0,0\n"
      "addStatisticOnAttribute(BIG, 0.0, 0.0)\n"
      "addAttributeName(BIG, 1)\n"
      "++++Attribute is: CDP\n"
      "+++++Stats on Attribute is :0,0\n"
      "addStatisticOnAttribute(CDP, 0.0, 0.0)\n"
      "addAttributeName(CDP, 1)\n"
      "++++Attribute is: DBL\n"
      "+++++Stats on Attribute is :0,0\n"
      "addStatisticOnAttribute(DBL, 0.0, 0.0)\n"
      "addAttributeName(DBL, 2)\n"
      "++++Attribute is: OFFSET\n"
      "+++++Stats on Attribute is :0,0\n"
      "addStatisticOnAttribute(OFFSET, 0.0, 0.0)\n"
      "addAttributeName(OFFSET, 1)\n"
      "++++Attribute is: SHORT\n"
      "+++++Stats on Attribute is :0,0\n"
      "addStatisticOnAttribute(SHORT, 0.0, 0.0)\n"
      "addAttributeName(SHORT, 1)\n"
      "++++Attribute is: STATIC\n"
      "+++++Stats on Attribute is :-3.9,7.25\n"
      "addStatisticOnAttribute(STATIC, -3.9, 7.25)\n"
      "addAttributeName(STATIC, 2)\n"
      "================== Length: 4\n"
      "setProperty(Length, 4)\n"
      "setProperty(SampleRate, 2.000000)\n"
      "setProperty(FirstTime, 10.000000)\n",
      printed);
}

TEST_F(RondoData, InfoOfMapDataNamesThePositionAndTheValue) {
  open("maps");
  struct Case {
    char const* data;
    char const* expected;
  };
  Case const cases[] = {
      // Any class, by the store's property.
      {"tops",
       "setNbElements(4)\naddKeyAttributeName(EAST, 1)\naddKeyAttributeName(NORTH, 1)\naddAttributeName(DEPTH, 2)\n"},
      // XVAL before X.
      {"picks",
       "setNbElements(4)\naddKeyAttributeName(XVAL, 1)\naddKeyAttributeName(YVAL, 1)\naddAttributeName(ATVAL, 2)\n"},
      // A value without position takes the midpoint.
      {"cmp",
       "setNbElements(4)\naddKeyAttributeName(CMP.X, 1)\naddKeyAttributeName(CMP.Y, 1)\naddAttributeName(TIME, 2)\n"},
      // A time slice as its grid: 2 inlines by 2 crosslines.
      {"slices",
       "setNbElements(4)\naddKeyAttributeName(CROSSLINE, 1)\naddKeyAttributeName(INLINE, 1)\n"
       "addAttributeName(AMPLITUDE.000100, 2)\n"},
  };
  for (Case const& c : cases) {
    bool result = false;
    EXPECT_EQ(c.expected, info("maps", c.data, &result)) << c.data;
    EXPECT_TRUE(result) << c.data;
  }
}

TEST_F(RondoData, LoadIConvertsByTypeFromTheStartOfTheData) {
  open("loadi");
  jintArray values = newInts({-7, -7, -7, -7, -7, -7});
  EXPECT_TRUE(loadI("loadi", "line", "CDP", values));
  EXPECT_EQ((std::vector<jint>{101, 102, 103, 104, 105, -7}), ints(values));
  EXPECT_TRUE(loadI("loadi", "line", "static", values));
  EXPECT_EQ((std::vector<jint>{3, -3, 0, 0, 7, -7}), ints(values));
  EXPECT_TRUE(loadI("loadi", "line", "BIG", values));
  EXPECT_EQ((std::vector<jint>{5, -1, INT32_MIN, -2, 5, -7}), ints(values));
  EXPECT_TRUE(loadI("loadi", "line", "DBL", values));
  EXPECT_EQ((std::vector<jint>{2, -2, 1000000000, 0, 0, -7}), ints(values));
  // Vectors are taken flat: five values from trace 1 on.
  EXPECT_TRUE(loadI("loadi", "line", "TRACE", values));
  EXPECT_EQ((std::vector<jint>{100, 101, 102, 103, 200, -7}), ints(values));
  // A type it does not convert leaves the array as it was.
  jintArray untouched = newInts({9, 9, 9, 9, 9});
  EXPECT_TRUE(loadI("loadi", "line", "SHORT", untouched));
  EXPECT_EQ((std::vector<jint>{9, 9, 9, 9, 9}), ints(untouched));
  EXPECT_EQ("", m_printed);
}

TEST_F(RondoData, LoadFTakesWholeAttributesOrRangesOfTraces) {
  open("loadf");
  jfloatArray values = newFloats(9);
  // first or count -1: the whole attribute, n values from instance 1.
  EXPECT_TRUE(loadF("loadf", "line", "STATIC", values, -1, 3));
  EXPECT_EQ((std::vector<float>{3.9f, -3.9f, 0.5f, -0.5f, 7.25f, -1, -1, -1, -1}), floats(values));
  EXPECT_TRUE(loadF("loadf", "line", "BIG", values, 2, -1));
  EXPECT_EQ((std::vector<float>{4294967301.0f, -1, 2147483648.0f, -4294967298.0f, 5, -1, -1, -1, -1}),
            floats(values));
  EXPECT_TRUE(loadF("loadf", "line", "DBL", values, -1, -1));
  EXPECT_EQ((std::vector<float>{2.75f, -2.75f, 1e9f, 0.999f, -0.999f, -1, -1, -1, -1}), floats(values));
  // Traces 2 and 3 (first is 0-based), one block of 4 after the other.
  EXPECT_TRUE(loadF("loadf", "line", "TRACE", values, 1, 2));
  EXPECT_EQ((std::vector<float>{200, 201, 202, 203, 300, 301, 302, 303, -1}), floats(values));
  // No traces: nothing written, and true.
  jfloatArray kept = newFloats(4, 5.0f);
  EXPECT_TRUE(loadF("loadf", "line", "TRACE", kept, 4, 0));
  EXPECT_EQ((std::vector<float>{5, 5, 5, 5}), floats(kept));
  EXPECT_EQ("", m_printed);

  // Ranges are for traces only, by that name exactly.
  for (char const* name : {"STATIC", "trace"}) {
    EXPECT_FALSE(loadF("loadf", "line", name, values, 0, 2));
    EXPECT_EQ("RondoLoadAttributeF---------- Trace index != TRACE not yet implemented!!!!!!!!!!!!!!!!!!!!!!! \n",
              m_printed);
  }
}

TEST_F(RondoData, LoadFromTabindexTakesTheListedTraces) {
  open("tab");
  jfloatArray values = newFloats(9);
  EXPECT_TRUE(loadTab("tab", "line", "TRACE", newInts({4, 0}), 2, values));
  EXPECT_EQ((std::vector<float>{500, 501, 502, 503, 100, 101, 102, 103, -1}), floats(values));
  // Only as many as told.
  EXPECT_TRUE(loadTab("tab", "line", "TRACE", newInts({2, 3}), 1, values));
  EXPECT_EQ((std::vector<float>{300, 301, 302, 303, 100, 101, 102, 103, -1}), floats(values));
  EXPECT_EQ("", m_printed);

  EXPECT_FALSE(loadTab("tab", "line", "STATIC", newInts({0}), 1, values));
  EXPECT_EQ("RondoLoadAttributeF---------- Trace index != TRACE not yet implemented!!!!!!!!!!!!!!!!!!!!!!! \n",
            m_printed);
  EXPECT_FALSE(loadTab("tab", "line", "TRACE", newInts({0}), 0, values));
  EXPECT_EQ("", m_printed);
}

TEST_F(RondoData, ArraysTooSmallAreRefused) {
  open("sizes");
  EXPECT_FALSE(loadI("sizes", "line", "CDP", newInts({0, 0, 0, 0})));
  EXPECT_EQ("RondoLoadAttributeI---------- The array holds 4 values, 5 are needed!!!!!!!!!!!\n", m_printed);
  EXPECT_FALSE(loadI("sizes", "line", "CDP", nullptr));
  EXPECT_EQ("RondoLoadAttributeI---------- No array given!!!!!!!!!!!\n", m_printed);
  jfloatArray four = newFloats(4);
  EXPECT_FALSE(loadF("sizes", "line", "STATIC", four, -1, -1));
  EXPECT_EQ("RondoLoadAttributeF---------- The array holds 4 values, 5 are needed!!!!!!!!!!!\n", m_printed);
  EXPECT_FALSE(loadF("sizes", "line", "TRACE", newFloats(7), 0, 2));
  EXPECT_EQ("RondoLoadAttributeF---------- The array holds 7 values, 8 are needed!!!!!!!!!!!\n", m_printed);
  EXPECT_FALSE(loadF("sizes", "line", "TRACE", newFloats(8), 0, -2));
  EXPECT_EQ("RondoLoadAttributeF---------- The array holds 8 values, -8 are needed!!!!!!!!!!!\n", m_printed);
  EXPECT_FALSE(loadF("sizes", "line", "TRACE", newFloats(8), -3, 1));
  EXPECT_EQ("RondoLoadAttributeF---------- First trace -3 is before the first!!!!!!!!!!!\n", m_printed);
  EXPECT_FALSE(loadTab("sizes", "line", "TRACE", newInts({0, 1}), 2, newFloats(7)));
  EXPECT_EQ("RondoLoadAttributeFromTabindexF---------- The array holds 7 values, 8 are needed!!!!!!!!!!!\n",
            m_printed);
  EXPECT_FALSE(loadTab("sizes", "line", "TRACE", newInts({0}), 2, newFloats(8)));
  EXPECT_EQ("RondoLoadAttributeFromTabindexF---------- The array holds 1 values, 2 are needed!!!!!!!!!!!\n",
            m_printed);
  // Nothing was written where it fitted either.
  EXPECT_EQ((std::vector<float>{-1, -1, -1, -1}), floats(four));
}

TEST_F(RondoData, DescriptorsAndSinksWithoutTheirMethodsAnswerFalse) {
  open("methods");
  jobject notADescriptor = newObject("java/lang/Object");
  jobject sink = infoSink();
  JNIEnv* env = jvm();
  size_t const stores = map_store.size();
  EXPECT_FALSE(RONDO_JNI(RondoGetDataInfo)(env, nullptr, notADescriptor, sink));
  EXPECT_FALSE(RONDO_JNI(RondoLoadAttributeI)(env, nullptr, notADescriptor, jstr("CDP"), newInts({0})));
  EXPECT_FALSE(RONDO_JNI(RondoLoadAttributeF)(env, nullptr, notADescriptor, jstr("TRACE"), newFloats(4), 0, 1));
  EXPECT_FALSE(
      RONDO_JNI(RondoLoadAttributeFromTabindexF)(env, nullptr, notADescriptor, jstr("TRACE"), newInts({0}), 1, newFloats(4)));
  EXPECT_FALSE(RONDO_JNI(RondoGetDataInfo)(env, nullptr, nullptr, sink));
  EXPECT_FALSE(env->ExceptionCheck());
  EXPECT_EQ(stores, map_store.size());
  // The store opens before the sink is looked at.
  EXPECT_FALSE(RONDO_JNI(RondoGetDataInfo)(env, nullptr, descriptor(kServer, "methods", "line"),
                                           newObject("java/lang/Object")));
  EXPECT_FALSE(env->ExceptionCheck());
  EXPECT_EQ(stores + 1, map_store.size());
  EXPECT_TRUE(map_store["|RONDO|methods|line"]->isOpen());
}

TEST_F(RondoData, TheFirstOpenerChoosesTheVersion) {
  open("versions");
  // Opened by the info, at version 0, the store of version 3 loads traces
  // too, although a load alone would ask for version 1.
  bool result = false;
  info("versions", "late", &result);
  ASSERT_TRUE(result);
  jfloatArray values = newFloats(4);
  EXPECT_TRUE(loadF("versions", "late", "TRACE", values, 0, 1));
  EXPECT_EQ((std::vector<float>{100, 101, 102, 103}), floats(values));
  vHandle<Store> store;
  EXPECT_TRUE(openStoreOnData(jvm(), descriptor(kServer, "versions", "late"), store, 1));
  EXPECT_EQ(map_store["|RONDO|versions|late"].get(), store.get());
  // Closing a store that was never opened makes it and leaves it closed.
  vHandle<Store> closed;
  EXPECT_TRUE(closeStoreOnData(jvm(), descriptor(kServer, "versions", "tops"), closed));
  EXPECT_EQ(map_store["|RONDO|versions|tops"].get(), closed.get());
  EXPECT_FALSE(closed->isOpen());
  EXPECT_FALSE(closeStoreOnData(jvm(), nullptr, closed));
  // A store open for reading closes without writing its properties back to
  // the server's set, which would refuse them; it opens again afterwards,
  // by the info at version 0 (the project has no version 1 of it, which a
  // load alone would ask for).
  ASSERT_TRUE(store->isOpen());
  EXPECT_TRUE(closeStoreOnData(jvm(), descriptor(kServer, "versions", "late"), closed));
  EXPECT_EQ(store.get(), closed.get());
  EXPECT_FALSE(store->isOpen());
  info("versions", "late", &result);
  ASSERT_TRUE(result);
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

TEST_F(RondoDataDeathTest, AStoreThatDoesNotOpenEndsTheHost) {
  EXPECT_HOST_ENDS("gone", RONDO_JNI(RondoGetDataInfo)(jvm(), nullptr, descriptor(kServer, "gone", "nosuch"), infoSink()),
                   "Can't open project\nReason: 'Server said:-o Store nosuch version 0 is not in project gone. in method "
                   "'COBPortal::myMessage'\n");
  // A load of version 1 where the project has version 3 only.
  EXPECT_HOST_ENDS("gone",
                   RONDO_JNI(RondoLoadAttributeF)(jvm(), nullptr, descriptor(kServer, "gone", "late"), jstr("TRACE"),
                                                  newFloats(4), 0, 1),
                   "Can't open project\nReason: 'Server said:-o Store late version 1 is not in project gone. in method "
                   "'COBPortal::myMessage'\n");
  // A project never opened.
  EXPECT_HOST_ENDS("",
                   RONDO_JNI(RondoLoadAttributeI)(jvm(), nullptr, descriptor(kServer, "never", "line"), jstr("CDP"),
                                                  newInts({0})),
                   "Can't open project\nReason: 'Trying to get a NULL pointer in method 'vHandle::get()'\n");
}

TEST_F(RondoDataDeathTest, AFailureOfAnOpenStoreEndsTheHostWithItsReport) {
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
  EXPECT_HOST_ENDS("bad", RONDO_JNI(RondoGetDataInfo)(jvm(), nullptr, descriptor(kServer, "bad", "onekey"), infoSink()),
                   "Data set onekey has 1 key attributes; a primary and a secondary are needed.\n   "
                   "(Method=RondoGetDataInfo)");
}

}  // namespace
