// Fuzz target for the Nyx "dat" file parser (prologue, history trace, block
// headers, first trace header): any bytes as a file must parse or end in
// UtlExcept. What parses must place every trace inside the file, count
// the traces of its blocks, and give a record the store accepts.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "filestore/nyx/NyxDatLayout.h"
#include "filestore/nyx/NyxDiskStore.h"
#include "foundation/UtlExcept.h"
#include "tests/fuzz/FuzzTesting.h"

namespace {

[[noreturn]] void finding(char const* what) {
  std::fprintf(stderr, "nyx_dat_fuzz: %s\n", what);
  std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, std::size_t size) {
  fuzz_testing::raiseWithoutReports();
  long long const fileSize = static_cast<long long>(size);
  NyxDatLayout::Reader const reader = [&](long long offset, void* buffer, long long count) -> long long {
    if (offset < 0 || count < 0 || offset > fileSize) return -1;
    long long const n = offset + count > fileSize ? fileSize - offset : count;
    std::memcpy(buffer, data + offset, static_cast<std::size_t>(n));
    return n;
  };
  NyxDatLayout layout;
  try {
    layout.parse(reader, fileSize, "nyx_dat_fuzz");
  } catch (UtlExcept const&) {
    return 0;
  }
  long long total = 0;
  for (NyxDatLayout::Block const& b : layout.blocks) {
    if (b.count < 1 || b.firstTrace < 0 || b.firstTrace + b.count * static_cast<long long>(layout.traceBytes) > fileSize)
      finding("a trace outside the file");
    total += b.count;
  }
  if (total != layout.nInstances || total < 1) finding("the instances are not the blocks' traces");
  if (layout.offsetOf(total) < 0 || layout.offsetOf(total + 1) != -1) finding("offsetOf out of step with the blocks");
  try {
    NyxDiskStore::Record record;
    record.validateHeader(NyxDiskStore::DAT, layout.dataFormat, layout.nSamples, 4.0f, -1, "nyx_dat_fuzz");
    if (record.extTraceLengthB != layout.traceBytes) finding("the record and the layout disagree on a trace");
  } catch (UtlExcept const&) {
    finding("a parsed layout whose record is refused");
  }
  return 0;
}
