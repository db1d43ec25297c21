#ifndef FILESTORE_SEGY_SEGYKERNELS_H
#define FILESTORE_SEGY_SEGYKERNELS_H

// SegyKernels: the byte-level work of the SEG-Y store as pure functions over
// caller buffers: no files, no allocation, no state. The store and its
// header class are built on these, and the tests try them without files.
//
// File layout (SEG-Y Rev 0): 3200 bytes of EBCDIC text, a 400-byte binary
// header, then traces of a 240-byte header and the samples. Every sample
// format is sized at 4 bytes a sample.

#include <cstddef>
#include <cstdint>

namespace SegyKernels {

constexpr int TEXT_HEADER_LENGTH = 3200;
constexpr int BINARY_HEADER_LENGTH = 400;
constexpr int FILE_HEADER_LENGTH = TEXT_HEADER_LENGTH + BINARY_HEADER_LENGTH;
constexpr int TRACE_HEADER_LENGTH = 240;
// The header of each block of the blocked layout.
constexpr int BLOCK_HEADER_LENGTH = 2048;
// The byte offset of the format code in the binary header.
constexpr int FORMAT_CODE_OFFSET = 24;

// Fields in this machine's order, at any alignment.
int16_t readInt16(void const* field);
uint16_t readUInt16(void const* field);
int32_t readInt32(void const* field);
// Fields in the other order (big-endian on x86), at any alignment.
int16_t readSwappedInt16(void const* field);
int32_t readSwappedInt32(void const* field);

// Whether a binary header is in the other byte order: its format code, read
// as a 16-bit word in this machine's order, exceeds 125.
bool isOtherByteOrder(void const* binaryHeader);
// Puts the numbers of a binary header in the other byte order, in place:
// the three 32-bit words at the start, the 24 16-bit fields from offset 12,
// four 16-bit values at offset 300 and one at offset 308.
void swapBinaryHeader(void* binaryHeader);

// n bytes of EBCDIC (code page 37) text as ASCII. Letters, digits, blank
// and the punctuation of printable ASCII map to themselves; the EBCDIC line
// ends (NL, LF) become '\n', CR '\r', HT '\t'; every other byte, NUL
// included, becomes a blank, so that the result is printable text.
// source and target may be the same address.
void ebcdicToAscii(void const* source, void* target, std::size_t n);

// Bytes of one trace of nSamples samples.
inline int32_t traceLength(uint32_t nSamples) {
  return TRACE_HEADER_LENGTH + 4 * static_cast<int32_t>(nSamples);
}

// n samples of a trace in a sample format (1 IBM float, 5 and 6 IEEE float)
// as IEEE floats in this machine's order; swapped says the file's words are
// in the other order. source and target may be the same address. False for
// another format, with nothing written.
bool convertSamples(void const* source, float* target, std::size_t n, int formatCode, bool swapped);

// The whole traces of a plain file of fileSize bytes. expectedSize is the
// size those traces make; a file of another size has a partial last trace
// (or less than the headers).
uint32_t countPlainTraces(long long fileSize, int32_t traceLength, long long& expectedSize);

// The blocked layout: after the 3600 bytes of headers, blocks of a 2048-byte
// block header and tracesPerBlock traces.
struct BlockLayout {
  uint32_t tracesPerBlock;
  int32_t traceLength;
  long long blockLength;
};
// The layout of a blocked file whose binary header gives dataTracesPerRecord
// traces per record: the blocks hold one trace fewer. Blocks and instances
// come from the file size; a size that is not headers plus whole blocks is
// also tried as whole blocks of one trace more, and in either such case the
// layout grows to dataTracesPerRecord traces per block while the instances
// stay as first counted. mismatch says that neither size fitted; the
// expected size given is then headers plus whole blocks.
struct BlockCount {
  BlockLayout layout;
  long long blocks;
  uint32_t instances;
  long long expectedSize;
  bool mismatch;
};
BlockCount countBlockedTraces(long long fileSize, int32_t traceLength, int dataTracesPerRecord);
// The byte offset (0-based) of an instance's trace in a blocked file.
inline long long blockedTraceOffset(BlockLayout const& layout, uint32_t instance) {
  uint32_t const block = (instance - 1) / layout.tracesPerBlock;
  uint32_t const place = (instance - 1) % layout.tracesPerBlock;
  return static_cast<long long>(block) * layout.blockLength + static_cast<long long>(place) * layout.traceLength +
         BLOCK_HEADER_LENGTH + FILE_HEADER_LENGTH;
}

}  // namespace SegyKernels

#endif
