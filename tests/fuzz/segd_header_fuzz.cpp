// Fuzz target for the SEG-D header parsers: the first 32 bytes as a general
// header, the next 20 as a demultiplexed trace header, the rest as 8015
// and 8058 samples. Any input must parse or end in UtlExcept; the values
// must stay within what their BCD digits can make, and a second question
// must give the first answer. Any other exception, a crash, or a mismatch
// is a finding.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "filestore/segd/SegdDiskStore.h"
#include "filestore/segd/SegdGeneralHeader.h"
#include "filestore/segd/SegdKernels.h"
#include "foundation/UtlExcept.h"
#include "tests/fuzz/FuzzTesting.h"

namespace {

[[noreturn]] void finding(char const* what) {
  std::fprintf(stderr, "segd_header_fuzz: %s\n", what);
  std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, std::size_t size) {
  fuzz_testing::raiseWithoutReports();
  unsigned char block[SegdGeneralHeader::LENGTH] = {};
  std::memcpy(block, data, size < sizeof block ? size : sizeof block);
  SegdGeneralHeader header(static_cast<unsigned char const*>(block));
  try {
    int const format = header.getFormatCode();
    int const headerSize = header.getHeaderSize();
    int const traceLength = header.getTraceLength();
    double const rate = header.getSampleRate();
    // Two BCD bytes make at most 165 * 100 + 165; counts at most 165 each.
    if (format < 0 || format > 16665) finding("a format code past four digits");
    if (headerSize < 32 || headerSize % 32 != 0 || headerSize > 32 * (1 + 330 * 165 + 2 * 165 + 15))
      finding("a header size that is not whole blocks");
    if (traceLength < 0 || traceLength > 1665 * 512 / 10 + 1) finding("a record length past its digits");
    if (rate != 0.0 && (rate < 0.0625 || rate > 8.0 || std::fmod(std::log2(rate), 1.0) != 0.0))
      finding("a sample rate that is not a power of two of the table");
    if (header.getFormatCode() != format || header.getHeaderSize() != headerSize ||
        header.getTraceLength() != traceLength || header.getSampleRate() != rate)
      finding("a second answer differs from the first");
  } catch (UtlExcept const&) {
  }
  if (size < 52) return 0;
  SegdDiskStore::TraceHeader trace;
  try {
    trace.setHeader(data + 32);
    for (int which = SegdDiskStore::TraceHeader::FILE_NUMBER; which <= SegdDiskStore::TraceHeader::SAMPLE_SKEW;
         ++which)
      if (trace.getHeaderValue(which) < 0) finding("a negative trace header value");
    trace.isMuted();
  } catch (UtlExcept const&) {
    if (data[32 + 9] == 0) finding("a trace header without extensions refused");
  }
  std::size_t const n = (size - 52) / 10 * 4;
  std::size_t const words = (size - 52) / 4;
  std::vector<float> samples(n > words ? n : words);
  SegdKernels::fc_8015toieee(data + 52, samples.data(), n);
  for (std::size_t k = 0; k < n; ++k)
    if (!(std::fabs(samples[k]) <= 32768.0f)) finding("an 8015 sample past its range");
  SegdKernels::fc_8058toieee(data + 52, samples.data(), words);
  return 0;
}
