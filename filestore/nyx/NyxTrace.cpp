#include "filestore/nyx/NyxTrace.h"

#include <cmath>
#include <cstring>
#include <vector>

namespace NyxTrace {

int sampleSize(int dataFormat) {
  switch (dataFormat) {
    case 1:
    case 2:
      return 2;
    case 3:
    case 4:
    case 5:
    case 7:
      return 4;
    default:
      return 0;
  }
}

uint32_t swap32(uint32_t w) { return (w >> 24) | ((w >> 8) & 0xff00u) | ((w << 8) & 0xff0000u) | (w << 24); }

void swapWords(void* words, std::size_t count) {
  uint32_t* w = static_cast<uint32_t*>(words);
  for (std::size_t k = 0; k < count; ++k) w[k] = swap32(w[k]);
}

void swapHalves(void* halves, std::size_t count) {
  uint16_t* h = static_cast<uint16_t*>(halves);
  for (std::size_t k = 0; k < count; ++k) h[k] = static_cast<uint16_t>((h[k] >> 8) | (h[k] << 8));
}

namespace {

float ibmToIeee(uint32_t ibm) {
  uint32_t const fraction = ibm & 0x00ffffffu;
  if (fraction == 0) return 0.0f;
  int const exponent = static_cast<int>((ibm >> 24) & 0x7f) - 64;
  double const value = std::ldexp(static_cast<double>(fraction), 4 * exponent - 24);
  return static_cast<float>((ibm & 0x80000000u) ? -value : value);
}

}  // namespace

void unpackFormat2(int16_t const* in, float scale, float* out, int count) {
  // From the end, so that out may be the samples' own buffer.
  for (int k = count - 1; k >= 0; --k) out[k] = static_cast<float>(in[k]) * scale;
}

void unpackFormat2Swapped(int16_t const* in, float scale, float* out, int count) {
  for (int k = count - 1; k >= 0; --k) {
    uint16_t const h = static_cast<uint16_t>(in[k]);
    out[k] = static_cast<float>(static_cast<int16_t>((h >> 8) | (h << 8))) * scale;
  }
}

bool decodeSamples(int32_t const* header, void const* samples, float* out, int count, int dataFormat, bool swapped) {
  switch (dataFormat) {
    case 1: {
      int16_t const* in = static_cast<int16_t const*>(samples);
      int const exponent = header[SCALE_EXPONENT];
      for (int k = count - 1; k >= 0; --k) {
        uint16_t h = static_cast<uint16_t>(in[k]);
        if (swapped) h = static_cast<uint16_t>((h >> 8) | (h << 8));
        float const v = static_cast<float>(static_cast<int16_t>(h));
        out[k] = exponent == 0 ? v : std::ldexp(v, exponent);
      }
      return true;
    }
    case 2: {
      float scale;
      std::memcpy(&scale, &header[SCALE], 4);
      if (swapped)
        unpackFormat2Swapped(static_cast<int16_t const*>(samples), scale, out, count);
      else
        unpackFormat2(static_cast<int16_t const*>(samples), scale, out, count);
      return true;
    }
    case 3:
    case 5:
    case 7: {
      uint32_t const* in = static_cast<uint32_t const*>(samples);
      for (int k = 0; k < count; ++k) {
        uint32_t w = in[k];
        if (swapped) w = swap32(w);
        if (dataFormat == 3)
          out[k] = ibmToIeee(w);
        else
          std::memcpy(&out[k], &w, 4);
      }
      return true;
    }
    default:
      return false;
  }
}

bool encodeSamples(float const* in, void* samples, int count, int dataFormat, int32_t* header) {
  if (dataFormat == 5) {
    std::memcpy(samples, in, static_cast<std::size_t>(count) * 4);
    return true;
  }
  if (dataFormat != 1) return false;
  // The smallest exponent that keeps the largest sample within 16 bits.
  float largest = 0.0f;
  for (int k = 0; k < count; ++k) largest = std::fmax(largest, std::fabs(in[k]));
  int exponent = 0;
  while (largest > 32767.0f * std::ldexp(1.0f, exponent)) ++exponent;
  header[SCALE_EXPONENT] = exponent;
  int16_t* out = static_cast<int16_t*>(samples);
  for (int k = 0; k < count; ++k) out[k] = static_cast<int16_t>(std::lround(std::ldexp(in[k], -exponent)));
  return true;
}

}  // namespace NyxTrace
