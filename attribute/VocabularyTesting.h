#ifndef ATTRIBUTE_VOCABULARYTESTING_H
#define ATTRIBUTE_VOCABULARYTESTING_H

// Test helpers (tests only) for the attribute vocabulary: a release tree
// with a small definition file and translation files in it, and the
// process-wide definition table emptied before and after each test so that
// every test reads its own files.

#include <gtest/gtest.h>

#include <string>

#include "attribute/AttributeDefinitionTable.h"
#include "attribute/AttributeTesting.h"
#include "foundation/TestReleaseTree.h"

namespace vocabulary_testing {

// Eight classes of every kind of type and length.
inline char const* definitions() {
  return "CDP        vInt32    1\n"
         "OFFSET     vFloat32  1\n"
         "SOURCE_X   vFloat64  1\n"
         "SAMPLES    vFloat32  vector\n"
         "PICKS      vFloat32  variable\n"
         "COUNT      vInt32    1\n"
         "LINE_NAME  vString   1\n"
         "REC_TIME   vInt64    1\n";
}

// A scheme that renames, converts, restores originals and passes text.
inline char const* translations() {
  return "SOURCE_X   capi(float64())   dorn:(float32())  SHOT_X   vFloat32  1\n"
         "CDP        capi(null())      dorn:(null())     CDP_NO   vInt32    1\n"
         "COUNT      capi(original())  dorn:(float32())  COUNT_F  vFloat32  1\n"
         "PICKS      capi(float32())   dorn:(float64())  PICK_T   vFloat64  Variable\n"
         "SAMPLES    capi(null())      dorn:(null())     TRACE    vFloat32  VECTOR\n"
         "LINE_NAME  capi()            dorn:()           LINE     vString   1\n"
         "REC_TIME   capi(int64())     dorn:(int32())    TIME_MS  vInt32    1\n";
}

class VocabularyTest : public ::testing::Test {
 protected:
  void SetUp() override {
    AttributeDefinitionTable::instance().dropTable();
    tree.writeSystemFile("AttributeDefTable4.txt", definitions());
  }
  void TearDown() override { AttributeDefinitionTable::instance().dropTable(); }

  TestReleaseTree tree;
};

// What f prints on standard output and standard error, together.
template <class F>
std::string printed(F f) {
  ::testing::internal::CaptureStdout();
  ::testing::internal::CaptureStderr();
  f();
  std::string out = ::testing::internal::GetCapturedStdout();
  out += ::testing::internal::GetCapturedStderr();
  return out;
}

}  // namespace vocabulary_testing

#endif
