// The shared store suite over a SEG-Y file that holds the reference
// content, laid out by a format description file. The store is read-only:
// the cases that write are skipped, the refusals checked.

#include <gtest/gtest.h>

#include <string>
#include <unistd.h>

#include "attribute/AttributeDefinitionTable.h"
#include "attribute/AttributeTranslationTable.h"
#include "filestore/segy/SegyDiskStore.h"
#include "filestore/segy/SegyTesting.h"
#include "foundation/TestReleaseTree.h"
#include "syslayer/FSTesting.h"
#include "testing/StoreConformance.h"

namespace {

// The vocabulary of the reference keys, in a release tree of the process's
// own that stays for the run, read again for each store in case another
// test read its own in between.
void installVocabulary() {
  static TestReleaseTree tree;
  static bool const written = [] {
    tree.writeSystemFile("AttributeDefTable4.txt", "CDP vInt32 1\nOFFSET vInt32 1\n");
    tree.writeSystemFile("KelpAttributeTranslations3.txt",
                         "CDP capi(null()) dorn:(null()) CDP vInt32 1\n"
                         "OFFSET capi(null()) dorn:(null()) OFFSET vInt32 1\n");
    return true;
  }();
  (void)written;
  AttributeDefinitionTable::instance().dropTable();
  AttributeTranslationTable::instance("Kelp").reload();
}

vHandle<AttributeSet> openReferenceFile() {
  installVocabulary();
  static int serial = 0;
  std::string const base =
      ::testing::TempDir() + "segy_conformance_" + std::to_string(::getpid()) + "_" + std::to_string(++serial);
  segy_testing::SegyWriter w;
  w.nSamples = 5;
  w.sampleInterval = 4000;
  w.sample = [](unsigned int t, unsigned int s) { return static_cast<float>(10 * t + s); };
  w.header = [](unsigned int t, segy_testing::SegyWriter const& writer, unsigned char* p) {
    writer.put32(p + 180, StoreConformance::referenceAttribute("CDP").getInt32(t));
    writer.put32(p + 36, StoreConformance::referenceAttribute("OFFSET").getInt32(t));
  };
  fs_testing::writeFile(base + ".sgy", w.file(StoreConformance::kNInstances));
  fs_testing::writeFile(base + ".syf",
                        "STORECLASS seismic\n"
                        "KEYNAMES CDP OFFSET\n"
                        "CDP     cdp     trace  181  int4  ensemble number\n"
                        "OFFSET  offset  trace  37   int4  source to receiver distance\n");
  SegyDiskStore* store = new SegyDiskStore;
  vHandle<AttributeSet> handle(store);
  store->open(StoreDescription(vFilename((base + ".sgy").c_str())));
  // The open file stays readable; nothing is left behind.
  std::remove((base + ".sgy").c_str());
  std::remove((base + ".syf").c_str());
  return handle;
}

StoreConformanceCase segyCase() {
  StoreConformanceCase c("SegyDiskStore");
  c.openForReading = openReferenceFile;
  c.makeUnopened = [] { return vHandle<AttributeSet>(new SegyDiskStore); };
  // No field of a trace header is a double.
  c.attributes = {"CDP", "OFFSET", "TRACE"};
  c.texts.unknownAttribute = "Attribute %s does not exist in file %s.";
  // Tuples not found reach the list read as instance 0.
  c.texts.keysMissing = "Attribute 'CDP': the vInstanceList has a zero in it, coont read from instance 0.";
  c.texts.notWritable = "Function not implemented in derived class -- needs code.";
  c.texts.notOpen = "Segy Disk File has not been opened yet!";
  return c;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(SegyDiskStore, StoreConformance, ::testing::Values(segyCase()), StoreConformance::caseName);
