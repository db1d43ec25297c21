#include "filestore/segy/SegyKernels.h"

#include <cstring>

#include "foundation/vUtl.h"

namespace SegyKernels {

int16_t readInt16(void const* field) {
  int16_t value;
  std::memcpy(&value, field, sizeof value);
  return value;
}

uint16_t readUInt16(void const* field) {
  uint16_t value;
  std::memcpy(&value, field, sizeof value);
  return value;
}

int32_t readInt32(void const* field) {
  int32_t value;
  std::memcpy(&value, field, sizeof value);
  return value;
}

int16_t readSwappedInt16(void const* field) {
  unsigned char const* p = static_cast<unsigned char const*>(field);
  unsigned char bytes[2] = {p[1], p[0]};
  return readInt16(bytes);
}

int32_t readSwappedInt32(void const* field) {
  unsigned char const* p = static_cast<unsigned char const*>(field);
  unsigned char bytes[4] = {p[3], p[2], p[1], p[0]};
  return readInt32(bytes);
}

bool isOtherByteOrder(void const* binaryHeader) {
  return readUInt16(static_cast<unsigned char const*>(binaryHeader) + FORMAT_CODE_OFFSET) > 125;
}

void swapBinaryHeader(void* binaryHeader) {
  unsigned char* block = static_cast<unsigned char*>(binaryHeader);
  vUtl::swapBytes32(block, 3);
  vUtl::swapBytes16(block + 12, 24);
  vUtl::swapBytes16(block + 300, 4);
  vUtl::swapBytes16(block + 308, 1);
}

namespace {

// Code page 37 to ASCII, built from the printable characters and their
// EBCDIC codes; everything else reads as a blank.
struct EbcdicTable {
  unsigned char toAscii[256];
  EbcdicTable() {
    std::memset(toAscii, ' ', sizeof toAscii);
    static char const ascii[] =
        " !\"#$%&'()*+,-./0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^_`abcdefghijklmnopqrstuvwxyz{|}~";
    static unsigned char const ebcdic[] = {
        0x40, 0x5A, 0x7F, 0x7B, 0x5B, 0x6C, 0x50, 0x7D, 0x4D, 0x5D, 0x5C, 0x4E, 0x6B, 0x60, 0x4B, 0x61,
        0xF0, 0xF1, 0xF2, 0xF3, 0xF4, 0xF5, 0xF6, 0xF7, 0xF8, 0xF9, 0x7A, 0x5E, 0x4C, 0x7E, 0x6E, 0x6F,
        0x7C, 0xC1, 0xC2, 0xC3, 0xC4, 0xC5, 0xC6, 0xC7, 0xC8, 0xC9, 0xD1, 0xD2, 0xD3, 0xD4, 0xD5, 0xD6,
        0xD7, 0xD8, 0xD9, 0xE2, 0xE3, 0xE4, 0xE5, 0xE6, 0xE7, 0xE8, 0xE9, 0xBA, 0xE0, 0xBB, 0xB0, 0x6D,
        0x79, 0x81, 0x82, 0x83, 0x84, 0x85, 0x86, 0x87, 0x88, 0x89, 0x91, 0x92, 0x93, 0x94, 0x95, 0x96,
        0x97, 0x98, 0x99, 0xA2, 0xA3, 0xA4, 0xA5, 0xA6, 0xA7, 0xA8, 0xA9, 0xC0, 0x4F, 0xD0, 0xA1};
    static_assert(sizeof ebcdic == sizeof ascii - 1, "one EBCDIC code for each printable character");
    for (std::size_t k = 0; k < sizeof ebcdic; ++k) toAscii[ebcdic[k]] = static_cast<unsigned char>(ascii[k]);
    toAscii[0x15] = '\n';
    toAscii[0x25] = '\n';
    toAscii[0x0D] = '\r';
    toAscii[0x05] = '\t';
  }
};

}  // namespace

void ebcdicToAscii(void const* source, void* target, std::size_t n) {
  static EbcdicTable const table;
  unsigned char const* in = static_cast<unsigned char const*>(source);
  unsigned char* out = static_cast<unsigned char*>(target);
  for (std::size_t k = 0; k < n; ++k) out[k] = table.toAscii[in[k]];
}

bool convertSamples(void const* source, float* target, std::size_t n, int formatCode, bool swapped) {
  switch (formatCode) {
    case 1:
      vUtl::ibmToIeee(source, target, n, swapped);
      return true;
    case 5:
    case 6:
      if (swapped)
        vUtl::swapBytes32(source, target, n);
      else if (source != target)
        std::memmove(target, source, n * sizeof(float));
      return true;
    default:
      return false;
  }
}

uint32_t countPlainTraces(long long fileSize, int32_t traceLength, long long& expectedSize) {
  long long const data = fileSize - FILE_HEADER_LENGTH;
  uint32_t const traces = data > 0 && traceLength > 0 ? static_cast<uint32_t>(data / traceLength) : 0u;
  expectedSize = FILE_HEADER_LENGTH + static_cast<long long>(traces) * traceLength;
  return traces;
}

BlockCount countBlockedTraces(long long fileSize, int32_t traceLength, int dataTracesPerRecord) {
  BlockCount count;
  long long const data = fileSize - FILE_HEADER_LENGTH;
  uint32_t const perBlock = dataTracesPerRecord > 1 ? static_cast<uint32_t>(dataTracesPerRecord - 1) : 0u;
  count.layout.traceLength = traceLength;
  count.layout.tracesPerBlock = perBlock;
  count.layout.blockLength = BLOCK_HEADER_LENGTH + static_cast<long long>(perBlock) * traceLength;
  count.blocks = data > 0 && perBlock > 0 ? data / count.layout.blockLength : 0;
  count.instances = static_cast<uint32_t>(count.blocks * perBlock);
  count.expectedSize = FILE_HEADER_LENGTH + count.blocks * count.layout.blockLength;
  count.mismatch = false;
  if (count.expectedSize != fileSize) {
    long long const grown = FILE_HEADER_LENGTH + count.blocks * (count.layout.blockLength + traceLength);
    count.mismatch = grown != fileSize;
    count.layout.tracesPerBlock = perBlock + 1;
    count.layout.blockLength += traceLength;
  }
  return count;
}

}  // namespace SegyKernels
