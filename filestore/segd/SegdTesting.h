#ifndef FILESTORE_SEGD_SEGDTESTING_H
#define FILESTORE_SEGD_SEGDTESTING_H

// Test helpers of the SEG-D store (tests only): SEG-D files written by the
// independent Python writer in testdata/, and the value it gives a sample.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "attribute/AttributeDefinitionTable.h"
#include "attribute/AttributeTranslationTable.h"
#include "filestore/disk/TraceFileFaultTesting.h"
#include "foundation/TestReleaseTree.h"

namespace segd_testing {

// A vocabulary in a release tree of the process's own that stays for the
// run: FFID as a 64-bit integer (so that its definition shows), CHANNEL as
// a 32-bit one, and the names of the conformance suite. Read again each
// time in case another test read its own in between.
inline void installVocabulary() {
  static TestReleaseTree tree;
  static bool const written = [] {
    tree.writeSystemFile("AttributeDefTable4.txt", "FFID vInt64 1\nCHANNEL vInt32 1\nCDP vInt32 1\nOFFSET vInt32 1\n");
    // FFID and CHANNEL shown as the suite's keys.
    char const* const keys =
        "FFID capi(null()) dorn:(int32()) CDP vInt32 1\n"
        "CHANNEL capi(null()) dorn:(null()) OFFSET vInt32 1\n";
    tree.writeSystemFile("KelpAttributeTranslations3.txt", keys);
    tree.writeSystemFile("NoTypeAttributeTranslations3.txt", keys);
    return true;
  }();
  (void)written;
  AttributeDefinitionTable::instance().dropTable();
  AttributeTranslationTable::instance("Kelp").reload();
  AttributeTranslationTable::instance("NoType").reload();
}

// Runs the writer: path, then its options (see segd_fixture.py). A missing
// python3 or numpy fails the test that asked.
inline bool writeSegd(std::string const& path, std::string const& options = "") {
  std::string const cmd = "/usr/bin/python3 " RONDO_TEST_SOURCE_DIR "/filestore/segd/testdata/segd_fixture.py '" +
                          path + "' " + options;
  bool const ok = std::system(cmd.c_str()) == 0;
  if (!ok) ADD_FAILURE() << "python3 with numpy is needed: " << cmd;
  return ok;
}

// The writer's sample s (from 1) of trace t (from 1).
inline float writtenSample(unsigned int t, unsigned int s) {
  float const magnitude = static_cast<float>(1000 * t + s) / 8.0f;
  return s % 2 ? -magnitude : magnitude;
}

// Records the errors said while it lives.
using disk_testing::Recording;

}  // namespace segd_testing

#endif
