// Fuzz target for the SEG-Y store: any bytes as a SEG-Y file (text and
// binary headers, trace headers, the trace count from the file size, the
// sample formats and byte orders), optionally with a format description
// file beside it, must open and read or end in UtlExcept.
//
// Input: a flags byte; when flags 8 or 16 are set, a two-byte fault limit
// (low byte first); when flag 2 is set, a two-byte length and that many
// bytes of format description ("syf") text; the rest is the SEG-Y file.
//   flag 1  the file is named "dsegy": the blocked layout;
//   flag 2  a format description file lies beside the file;
//   flag 4  the attributes are also read by a list of instances;
//   flags 8 and 16  the file service's test fault on the file, with the
//           limit: 8 reads that deliver at most limit bytes each, 16 reads
//           that fail from byte limit on, both the file cut at limit bytes.
// What opens must read every attribute over its first traces and its last
// one, with values for each instance asked for. Any other exception, a
// crash, a sanitizer report or a mismatch is a finding.

#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <list>
#include <string>
#include <vector>

#include "attribute/Attribute.h"
#include "filestore/segy/SegyDiskStore.h"
#include "foundation/UtlExcept.h"
#include "project/StoreDescription.h"
#include "syslayer/FSService.h"
#include "tests/fuzz/FuzzTesting.h"

namespace {

[[noreturn]] void finding(char const* what) {
  std::fprintf(stderr, "segy_file_fuzz: %s\n", what);
  std::abort();
}

void writeFile(std::string const& path, char const* data, std::size_t size) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(data, static_cast<std::streamsize>(size));
  if (!out) finding("cannot write the input file");
}

std::string& workRoot() {
  static std::string root;
  return root;
}

void removeWorkDir() {
  std::error_code ignored;
  std::filesystem::remove_all(workRoot(), ignored);
}

// A release tree of this process with the attribute definitions and the
// Kelp names that format files refer to, and a directory for the inputs.
std::string const& workDir() {
  static std::string const dir = [] {
    char pattern[] = "/tmp/segy-fuzz-XXXXXX";
    if (::mkdtemp(pattern) == nullptr) finding("cannot make a directory");
    std::string const root = pattern;
    workRoot() = root;
    std::string const system = root + "/SystemFiles";
    if (::mkdir(system.c_str(), 0755) != 0) finding("cannot make a directory");
    std::string const defs =
        "CMP.X vFloat64 1\nCMP.Y vFloat64 1\nSEGY.REEL.COUNT vInt32 1\nSHOT.RW.X vFloat64 1\n"
        "SHOT.RW.Y vFloat64 1\nRCVR.RW.X vFloat64 1\nRCVR.RW.Y vFloat64 1\nFIELD_RECORD vInt64 1\n"
        "CHANNEL vInt32 1\nCDP vInt32 1\nOFFSET vInt32 1\n";
    std::string const kelp =
        "FIELD_RECORD  capi(int64())  dorn:(int32())  FFID  vInt32  1\n"
        "CHANNEL       capi(null())   dorn:(null())   CHAN  vInt32  1\n";
    writeFile(system + "/AttributeDefTable4.txt", defs.data(), defs.size());
    writeFile(system + "/KelpAttributeTranslations3.txt", kelp.data(), kelp.size());
    ::setenv("VREL", root.c_str(), 1);
    std::atexit(removeWorkDir);
    return root;
  }();
  return dir;
}

// Reads an attribute and checks that a value came for each instance.
void readChecked(SegyDiskStore const& store, Attribute& attribute, unsigned int first, unsigned int last) {
  store.read(attribute, first, last);
  if (attribute.getNInstances() != last - first + 1) finding("a range read gave another count");
}

void readAll(SegyDiskStore const& store, bool lists) {
  unsigned int const n = store.getNInstances();
  if (n == 0) return;
  std::list<Attribute> const attributes = store.getAttributeList();
  int read = 0;
  for (Attribute const& definition : attributes) {
    if (++read > 24) break;
    Attribute attribute = definition;
    readChecked(store, attribute, 1, n < 3 ? n : 3);
    readChecked(store, attribute, n, n);
    if (lists) {
      std::vector<unsigned int> const list = {n, 1, n};
      store.read(attribute, list);
      if (attribute.getNInstances() != list.size()) finding("a list read gave another count");
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, std::size_t size) {
  fuzz_testing::raiseWithoutReports();
  if (size < 1) return 0;
  uint8_t const flags = data[0];
  std::size_t at = 1;
  auto word = [&]() -> std::size_t {
    std::size_t const value = at + 2 <= size ? (data[at] | (static_cast<std::size_t>(data[at + 1]) << 8)) : 0;
    at = at + 2 <= size ? at + 2 : size;
    return value;
  };
  int const fault = (flags >> 3) & 3;
  int64_t const limit = fault != 0 ? static_cast<int64_t>(word()) : 0;
  std::string format;
  if (flags & 2) {
    std::size_t const length = word();
    std::size_t const end = at + (length < size - at ? length : size - at);
    format.assign(reinterpret_cast<char const*>(data + at), end - at);
    at = end;
  }
  std::string const base = workDir() + "/input";
  std::string const file = base + ((flags & 1) ? ".dsegy" : ".sgy");
  writeFile(file, reinterpret_cast<char const*>(data + at), size - at);
  std::remove((base + ".syf").c_str());
  if (flags & 2) writeFile(base + ".syf", format.data(), format.size());
  int const kinds[] = {FS_FAULT_NONE, FS_FAULT_SHORTREAD, FS_FAULT_FAILREAD, FS_FAULT_TRUNCATE};
  if (fault != 0) fs_testfault_(file.c_str(), kinds[fault], fault == 1 && limit == 0 ? 1 : limit);
  struct EndFault {
    ~EndFault() { fs_testfault_("", FS_FAULT_NONE, 0); }
  } const endFault;
  try {
    SegyDiskStore store;
    if (flags & 2)
      store.open(StoreDescription(vFilename(file.c_str())));
    else
      store.open(vFilename(file.c_str()));
    long long const length = fault == 3 && limit < static_cast<long long>(size - at) ? limit : size - at;
    if (store.getLength() != length) finding("the store's length is not the file's");
    readAll(store, (flags & 4) != 0);
    store.close();
  } catch (UtlExcept const&) {
  }
  return 0;
}
