// Fuzz target for the FDM header parser: any bytes give a header, valid or
// not, without a crash. A valid header's words (in this machine's order)
// parse again as a valid, unswapped header with the same values; an
// invalid one answers 0 and -1.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "filestore/fdm/FdmBinaryHeader.h"

namespace {

[[noreturn]] void finding(char const* what) {
  std::fprintf(stderr, "fdm_header_fuzz: %s\n", what);
  std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, std::size_t size) {
  FdmBinaryHeader const first(data, size);
  if (!first.isValidHeader()) {
    if (first.getNCrossline() != 0 || first.getNZ() != 0 || first.getSpatialZIncrement() != 0.0f ||
        first.getVersion() != -1 || first.getRotation() != 0.0f)
      finding("an invalid header answers values");
    return 0;
  }
  if (size < static_cast<std::size_t>(FdmBinaryHeader::LENGTH)) finding("a short header is valid");
  int const n = first.getNCrossline();
  if (n < 1 || n > 100000) finding("a crossline count out of range");
  unsigned char bytes[FdmBinaryHeader::LENGTH];
  std::memcpy(bytes, first.getWords(), sizeof bytes);
  std::memcpy(bytes + 72, data + 72, 4);  // the mark is read as bytes
  FdmBinaryHeader const second(bytes, sizeof bytes);
  if (!second.isValidHeader() || second.wasEndianChanged()) finding("a header's own words do not parse as native");
  if (second.getNCrossline() != n || second.getNInline() != first.getNInline() || second.getNZ() != first.getNZ() ||
      second.getMinInline() != first.getMinInline() || second.getVersion() != first.getVersion())
    finding("two parses of one header differ");
  return 0;
}
