#ifndef FILESTORE_NYX_NYXTRACE_H
#define FILESTORE_NYX_NYXTRACE_H

// NyxTrace: the layout of one Nyx trace and the decoding of its samples.
//
// A trace is 64 words of 32 bits of header and then its samples. The words
// this system gives meaning to (all 32-bit integers in the file's byte
// order unless noted):
//
//   0  trace number            8  data format (the "cst" files' word)
//   1  SHOT.UNIQUE.ID          9  bytes of samples
//   2  CHANNEL                10  samples per trace
//   3  RECEIVER               11  sample interval, microseconds
//   4  CMP                    12  scale exponent of format 1
//   5  OFFSET                 13  scale of format 2 (IEEE float)
//   6  WDEPTH (IEEE float)    15  data format of a "dat" file (low 3 bits)
//   7  trace type
//
// Data formats: 1 16-bit integers times 2 to the power of the scale
// exponent; 2 16-bit integers times the float scale; 3 IBM floats; 5 and 7
// IEEE floats. Format 4 has 4-byte samples this system does not decode.

#include <cstddef>
#include <cstdint>

namespace NyxTrace {

constexpr int HEADER_WORDS = 64;
constexpr int HEADER_BYTES = 4 * HEADER_WORDS;

enum Word {
  TRACE_NUMBER = 0,
  SHOT_UNIQUE_ID = 1,
  CHANNEL = 2,
  RECEIVER = 3,
  CMP = 4,
  OFFSET = 5,
  WDEPTH = 6,
  TRACE_TYPE = 7,
  DATA_FORMAT = 8,
  SAMPLE_BYTES = 9,
  NSAMPLES = 10,
  SAMPLE_INTERVAL = 11,
  SCALE_EXPONENT = 12,
  SCALE = 13,
  DAT_FORMAT = 15
};

// Bytes of one sample of a data format; 0 for an unknown format.
int sampleSize(int dataFormat);

uint32_t swap32(uint32_t w);
void swapWords(void* words, std::size_t count);
void swapHalves(void* halves, std::size_t count);

// The samples of a trace (its header in this machine's order) into IEEE
// floats, count of them from samples, in place allowed (samples may be
// out). false for a format that can't be decoded.
bool decodeSamples(int32_t const* header, void const* samples, float* out, int count, int dataFormat, bool swapped);
// Format 2's two routines, in the file's order and swapped.
void unpackFormat2(int16_t const* in, float scale, float* out, int count);
void unpackFormat2Swapped(int16_t const* in, float scale, float* out, int count);
// IEEE floats into the samples of a format written in this machine's order
// (1: integer with the exponent header word; 5: as they are); false for
// any other format.
bool encodeSamples(float const* in, void* samples, int count, int dataFormat, int32_t* header);

}  // namespace NyxTrace

#endif
