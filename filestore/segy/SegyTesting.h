#ifndef FILESTORE_SEGY_SEGYTESTING_H
#define FILESTORE_SEGY_SEGYTESTING_H

// Test helpers of the SEG-Y store (tests only): a writer of SEG-Y files
// whose values tell where they lie, a recorder of non-fatal messages, and a
// release tree with the attribute vocabulary the format files use.
//
// The golden layout: sample s (1-based) of trace t holds t * 1000 + s; the
// 32-bit trace header field at byte offset o holds t * 1000 + o, at the
// offsets of the default shot format (4, 8, ..., 84, 197 and 201); binary
// header fields hold their offset (32-bit ones 1000 + offset) except
// those that shape the file.

#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "attribute/AttributeDefinitionTable.h"
#include "attribute/AttributeTranslationTable.h"
#include "filestore/disk/TraceFileFaultTesting.h"
#include "filestore/segy/SegyKernels.h"
#include "foundation/ErrorHandler.h"
#include "foundation/TestReleaseTree.h"
#include "foundation/vUtl.h"

namespace segy_testing {

// The shot format's 32-bit header fields, by offset.
inline std::vector<int> const& shotOffsets() {
  static std::vector<int> const offsets = {4, 8, 12, 16, 20, 24, 72, 76, 80, 84, 197, 201};
  return offsets;
}

inline float goldenSample(unsigned int trace, unsigned int sample) {
  return static_cast<float>(trace * 1000u + sample);
}
inline int32_t goldenHeader(unsigned int trace, int offset) {
  return static_cast<int32_t>(trace * 1000u + static_cast<unsigned int>(offset));
}

// ASCII to EBCDIC (code page 37) for the printable characters.
inline unsigned char asciiToEbcdic(char c) {
  static char const ascii[] =
      " !\"#$%&'()*+,-./0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^_`abcdefghijklmnopqrstuvwxyz{|}~";
  static unsigned char const ebcdic[] = {
      0x40, 0x5A, 0x7F, 0x7B, 0x5B, 0x6C, 0x50, 0x7D, 0x4D, 0x5D, 0x5C, 0x4E, 0x6B, 0x60, 0x4B, 0x61,
      0xF0, 0xF1, 0xF2, 0xF3, 0xF4, 0xF5, 0xF6, 0xF7, 0xF8, 0xF9, 0x7A, 0x5E, 0x4C, 0x7E, 0x6E, 0x6F,
      0x7C, 0xC1, 0xC2, 0xC3, 0xC4, 0xC5, 0xC6, 0xC7, 0xC8, 0xC9, 0xD1, 0xD2, 0xD3, 0xD4, 0xD5, 0xD6,
      0xD7, 0xD8, 0xD9, 0xE2, 0xE3, 0xE4, 0xE5, 0xE6, 0xE7, 0xE8, 0xE9, 0xBA, 0xE0, 0xBB, 0xB0, 0x6D,
      0x79, 0x81, 0x82, 0x83, 0x84, 0x85, 0x86, 0x87, 0x88, 0x89, 0x91, 0x92, 0x93, 0x94, 0x95, 0x96,
      0x97, 0x98, 0x99, 0xA2, 0xA3, 0xA4, 0xA5, 0xA6, 0xA7, 0xA8, 0xA9, 0xC0, 0x4F, 0xD0, 0xA1};
  for (std::size_t k = 0; k < sizeof ebcdic; ++k)
    if (ascii[k] == c) return ebcdic[k];
  return 0x40;
}

// A SEG-Y file in memory, written field by field in the chosen byte order.
class SegyWriter {
 public:
  int formatCode = 1;
  bool bigEndian = true;
  uint16_t nSamples = 5;
  uint16_t sampleInterval = 4000;
  int16_t dataTracesPerRecord = 0;
  std::string text = "C 1 GOLDEN FILE WRITTEN BY THE SEGY STORE TESTS";
  // The value of a sample; the golden one by default.
  std::function<float(unsigned int, unsigned int)> sample = goldenSample;
  // Extra work on each trace header (in the file's order), after the golden
  // fields.
  std::function<void(unsigned int, SegyWriter const&, unsigned char*)> header;

  int32_t traceLength() const { return SegyKernels::traceLength(nSamples); }

  void put16(unsigned char* at, int16_t value) const {
    std::memcpy(at, &value, 2);
    if (bigEndian) vUtl::swapBytes16(at, 1);
  }
  void put32(unsigned char* at, int32_t value) const {
    std::memcpy(at, &value, 4);
    if (bigEndian) vUtl::swapBytes32(at, 1);
  }
  // A sample in the file's sample format.
  void putFloat(unsigned char* at, float value) const {
    if (formatCode == 1)
      vUtl::ieeeToIbm(&value, at, 1, bigEndian);
    else
      putIeee(at, value);
  }
  void putIeee(unsigned char* at, float value) const {
    std::memcpy(at, &value, 4);
    if (bigEndian) vUtl::swapBytes32(at, 1);
  }

  std::string fileHeaders() const {
    std::string bytes(SegyKernels::FILE_HEADER_LENGTH, '\0');
    unsigned char* p = reinterpret_cast<unsigned char*>(&bytes[0]);
    for (int k = 0; k < SegyKernels::TEXT_HEADER_LENGTH; ++k)
      p[k] = asciiToEbcdic(k < static_cast<int>(text.size()) ? text[static_cast<std::size_t>(k)] : ' ');
    unsigned char* b = p + SegyKernels::TEXT_HEADER_LENGTH;
    for (int o = 0; o < 12; o += 4) put32(b + o, 1000 + o);
    for (int o = 12; o < 60; o += 2) put16(b + o, static_cast<int16_t>(o));
    put16(b + 12, dataTracesPerRecord);
    put16(b + 16, static_cast<int16_t>(sampleInterval));
    put16(b + 20, static_cast<int16_t>(nSamples));
    put16(b + 24, static_cast<int16_t>(formatCode));
    return bytes;
  }

  std::string trace(unsigned int t) const {
    std::string bytes(static_cast<std::size_t>(traceLength()), '\0');
    unsigned char* p = reinterpret_cast<unsigned char*>(&bytes[0]);
    for (int o : shotOffsets()) put32(p + o, goldenHeader(t, o));
    if (header) header(t, *this, p);
    for (unsigned int s = 1; s <= nSamples; ++s) putFloat(p + 240 + 4 * (s - 1), sample(t, s));
    return bytes;
  }

  // Headers and traces 1 to nTraces.
  std::string file(unsigned int nTraces) const {
    std::string bytes = fileHeaders();
    for (unsigned int t = 1; t <= nTraces; ++t) bytes += trace(t);
    return bytes;
  }

  // The blocked layout: blocks of a 2048-byte block header (filled with
  // 0xEE) and dataTracesPerRecord - 1 traces.
  std::string blockedFile(unsigned int nBlocks) const {
    std::string bytes = fileHeaders();
    unsigned int const perBlock = static_cast<unsigned int>(dataTracesPerRecord - 1);
    unsigned int t = 1;
    for (unsigned int b = 0; b < nBlocks; ++b) {
      bytes += std::string(SegyKernels::BLOCK_HEADER_LENGTH, '\xEE');
      for (unsigned int k = 0; k < perBlock; ++k) bytes += trace(t++);
    }
    return bytes;
  }
};

// Records the errors said while it lives.
using disk_testing::Recording;

// The definitions that the format files of the tests name, and a Kelp
// translation table that renames one of them.
inline char const* definitions() {
  return "CMP.X         vFloat64  1\n"
         "CMP.Y         vFloat64  1\n"
         "SEGY.REEL.COUNT vInt32  1\n"
         "SHOT.RW.X     vFloat64  1\n"
         "SHOT.RW.Y     vFloat64  1\n"
         "MID.X         vFloat64  1\n"
         "MID.Y         vFloat64  1\n"
         "CMP.MEAN.X    vFloat64  1\n"
         "CMP.MEAN.Y    vFloat64  1\n"
         "RCVR.RW.X     vFloat64  1\n"
         "RCVR.RW.Y     vFloat64  1\n"
         "FIELD_RECORD  vInt64    1\n"
         "CHANNEL       vInt32    1\n"
         "CDP           vInt32    1\n"
         "OFFSET        vInt32    1\n";
}
inline char const* kelpTranslations() {
  return "FIELD_RECORD  capi(int64())  dorn:(int32())  FFID  vInt32  1\n"
         "CHANNEL       capi(null())   dorn:(null())   CHAN  vInt32  1\n";
}

// Puts both into tree and has the tables read them again.
inline void installVocabulary(TestReleaseTree& tree) {
  AttributeDefinitionTable::instance().dropTable();
  tree.writeSystemFile("AttributeDefTable4.txt", definitions());
  tree.writeSystemFile("KelpAttributeTranslations3.txt", kelpTranslations());
  AttributeTranslationTable::instance("Kelp").reload();
}

}  // namespace segy_testing

#endif
