// Fuzz target for the offload header file parser: any text must parse or
// end in UtlExcept; what parses must parse the same a second time, in the
// other word order when it came as a day-name text, with a version of 1
// or 2 and data file names that carry the offload extension when they had
// none. Any other exception, a crash, or a mismatch is a finding.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "filestore/offload/OffloadHeaderFile.h"
#include "foundation/UtlExcept.h"
#include "tests/fuzz/FuzzTesting.h"

namespace {

[[noreturn]] void finding(char const* what) {
  std::fprintf(stderr, "offload_header_fuzz: %s\n", what);
  std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, std::size_t size) {
  fuzz_testing::raiseWithoutReports();
  std::string const text(reinterpret_cast<char const*>(data), size);
  OffloadHeaderFile first, second;
  try {
    first.parse(vFilename("fuzz.hdr"), text.data(), text.size());
  } catch (UtlExcept const&) {
    return 0;
  }
  int const version = first.getVersion().getVersion();
  if (version != 1 && version != 2) finding("a version other than 1 or 2");
  for (vFilename const& name : first.getDataFilenames())
    if (name.getExtension().isBlank()) finding("a data file name without an extension");
  try {
    second.parse(vFilename("fuzz.hdr"), text.data(), text.size());
  } catch (UtlExcept const&) {
    finding("a text that parsed once failed the second time");
  }
  if (second.getCRC() != first.getCRC() || second.getNOffsets() != first.getNOffsets() ||
      second.getDataFilenames().size() != first.getDataFilenames().size() ||
      second.getOffsetLimits() != first.getOffsetLimits())
    finding("two parses of one text differ");
  return 0;
}
