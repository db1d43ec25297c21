#ifndef FILESTORE_SEGD_SEGDKERNELS_H
#define FILESTORE_SEGD_SEGDKERNELS_H

// SegdKernels: the byte-level work of the SEG-D store as pure functions over
// caller buffers: binary-coded decimal fields, trace sizes and the two
// demultiplexed sample formats. No files, no allocation, no state.
//
// Format 8015 (20-bit binary) packs four samples in ten bytes: a 16-bit word
// of four 4-bit binary exponents (sample 1 in the high nibble of the first
// byte, sample 4 in the low nibble of the second), then four big-endian
// 16-bit two's complement fractions (the sign bit, then 2^-1 down to 2^-15).
// A sample is its fraction times 2 to its exponent. Format 8058 is
// big-endian IEEE single precision.

#include <cstddef>
#include <cstdint>

namespace SegdKernels {

constexpr int GENERAL_HEADER_LENGTH = 32;
constexpr int TRACE_HEADER_LENGTH = 20;
// What follows the headers of a ".dsegd" file before its first trace.
constexpr int DSEGD_GAP = 2048;

// A byte as two decimal digits: high nibble times 10 plus low nibble. A
// nibble above 9 is not refused; it counts as its binary value.
inline int bcd(unsigned char byte) { return (byte >> 4) * 10 + (byte & 0x0F); }
// n BCD bytes, most significant first.
inline long long bcd(unsigned char const* bytes, int n) {
  long long value = 0;
  for (int k = 0; k < n; ++k) value = value * 100 + bcd(bytes[k]);
  return value;
}

// Bytes of one trace (header included) of nSamples samples, or 0 for a
// format other than 8015 and 8058.
inline int32_t traceLength(int formatCode, int32_t nSamples) {
  if (formatCode == 8015) return (nSamples / 4) * 10 + TRACE_HEADER_LENGTH;
  if (formatCode == 8058) return nSamples * 4 + TRACE_HEADER_LENGTH;
  return 0;
}

// n samples of format 8015 (n a multiple of 4) from source into IEEE floats
// in this machine's order. A count not divisible by 4 is fatal: "8015
// samples must be in groups of four.".
void fc_8015toieee(void const* source, float* target, std::size_t n);
// The ways of converting 8015 samples, for the tests and benchmarks that
// hold them against each other; fc_8015toieee above takes the fastest this
// machine has. All give the same bits.
enum class Path8015 { PORTABLE, SSE2, AVX2 };
bool has8015Path(Path8015 path);
// As fc_8015toieee, by the given path; one this machine lacks is fatal.
void fc_8015toieee(Path8015 path, void const* source, float* target, std::size_t n);
// n big-endian IEEE floats (format 8058) into this machine's order. source
// and target may be the same address.
void fc_8058toieee(void const* source, float* target, std::size_t n);

}  // namespace SegdKernels

#endif
