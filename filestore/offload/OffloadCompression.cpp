#include "filestore/offload/OffloadCompression.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

int windowsOf(int n, int window) { return window > 0 && n > 0 ? (n - 1) / window + 1 : 1; }

float readFloat(void const* record, int index) {
  float value;
  std::memcpy(&value, static_cast<char const*>(record) + 4 * index, 4);
  return value;
}

void writeFloat(void* record, int index, float value) {
  std::memcpy(static_cast<char*>(record) + 4 * index, &value, 4);
}

float largestMagnitude(float const* samples, int n) {
  float largest = 0.0f;
  for (int i = 0; i < n; ++i) largest = std::max(largest, std::fabs(samples[i]));
  return largest;
}

// Where sample i of a run lies among the run's shorts.
inline int slot(int i, int n, bool swap) {
  if (!swap) return i;
  if (i == n - 1 && (n & 1)) return i + 1;
  return i ^ 1;
}

// Truncation toward zero, kept inside the 16-bit range against rounding at
// the largest value.
inline int16_t pack(float value, float scale) {
  float const scaled = value * scale;
  if (scaled >= 32767.0f) return 32767;
  if (scaled <= -32767.0f) return -32767;
  return static_cast<int16_t>(scaled);
}

void packRun(float const* samples, int n, float scale, bool swap, int16_t* shorts) {
  if (!swap) {
    for (int i = 0; i < n; ++i) shorts[i] = pack(samples[i], scale);
    return;
  }
  for (int i = 0; i < n; ++i) shorts[slot(i, n, true)] = pack(samples[i], scale);
}

// Eight at a time, so that the compiler turns the body into vector
// conversions and multiplies.
void unpackPlain(int16_t const* shorts, int n, float inverse, float* samples) {
  int i = 0;
  for (; i + 8 <= n; i += 8) {
    float v[8];
    for (int k = 0; k < 8; ++k) v[k] = static_cast<float>(shorts[i + k]) * inverse;
    std::memcpy(samples + i, v, sizeof v);
  }
  for (; i < n; ++i) samples[i] = static_cast<float>(shorts[i]) * inverse;
}

void unpackRun(int16_t const* shorts, int n, float scaler, bool swap, float* samples) {
  if (!(scaler >= 1e-20f)) {
    for (int i = 0; i < n; ++i) samples[i] = 0.0f;
    return;
  }
  float const inverse = 1.0f / scaler;
  if (!swap) {
    unpackPlain(shorts, n, inverse, samples);
    return;
  }
  for (int i = 0; i < n; ++i) samples[i] = static_cast<float>(shorts[slot(i, n, true)]) * inverse;
}

// A window whose largest value is below the threshold is stored with a
// zero scaler, so that it reads back as zeros.
float windowScale(float const* samples, int n) {
  float const largest = largestMagnitude(samples, n);
  return largest < 1e-30f ? 0.0f : 32766.0f / largest;
}

}  // namespace

int compression_moffld_int16Tlen(int n, int window) {
  int const windows = windowsOf(n, window);
  if (window == 0 || windows == 1) return (n - 1) / 2 + 2;
  return (n - 1) / 2 + windows + 2;
}

void compression_moffld_int16(int n, float* floats, bool swap, void* record, int window, int direction) {
  if (n <= 0) return;
  int windows = windowsOf(n, window);
  int length = windows > 1 ? window : n;
  if (direction <= 0) {
    // The record says how it was cut.
    float const first = readFloat(record, 0);
    if (first < 0.0f && -static_cast<double>(first) < n) {
      length = std::max(1, static_cast<int>(-first));
      windows = windowsOf(n, length);
    } else {
      windows = 1;
      length = n;
    }
  }
  bool const several = windows > 1;
  int16_t* shorts = reinterpret_cast<int16_t*>(static_cast<char*>(record) + (several ? 4 * (windows + 1) : 4));
  if (direction > 0) {
    if (several) writeFloat(record, 0, -(static_cast<float>(window) + 0.1f));
    if (n & 1) shorts[slot(n - 1, n, swap) ^ 1] = 0;  // the pad
    for (int k = 0; k < windows; ++k) {
      int const base = k * length;
      int const count = std::min(length, n - base);
      float const scale = windowScale(floats + base, count);
      writeFloat(record, several ? k + 1 : 0, scale);
      if (!swap && !several) {
        packRun(floats, n, scale, false, shorts);
        break;
      }
      for (int i = base; i < base + count; ++i) shorts[slot(i, n, swap)] = pack(floats[i], scale);
    }
    return;
  }
  for (int k = 0; k < windows; ++k) {
    int const base = k * length;
    int const count = std::min(length, n - base);
    float const scaler = readFloat(record, several ? k + 1 : 0);
    if (!swap && !several) {
      unpackRun(shorts, n, scaler, false, floats);
      return;
    }
    float const inverse = scaler >= 1e-20f ? 1.0f / scaler : 0.0f;
    for (int i = base; i < base + count; ++i) floats[i] = static_cast<float>(shorts[slot(i, n, swap)]) * inverse;
  }
}

float ds_computescaler(float const* samples, int n) {
  float largest = 0.0f, smallest = 0.0f;
  for (int i = 0; i < n; ++i) {
    largest = std::max(largest, samples[i]);
    smallest = std::min(smallest, samples[i]);
  }
  float const m = std::max(largest, -smallest);
  if (m == 0.0f) return 1.0f;
  if (m < 1e-30f) return 3.2766e34f;
  return 32766.0f / m;
}

void ds_float32toint16(float const* samples, int n, float scaler, int16_t* shorts) {
  packRun(samples, n, scaler, false, shorts);
}

void ds_int16tofloat32(int16_t const* shorts, int n, float scaler, float* samples) {
  unpackRun(shorts, n, scaler, false, samples);
}

void ds_float32toint16withswap(float const* samples, int n, float scaler, int16_t* shorts) {
  packRun(samples, n, scaler, true, shorts);
}

void ds_int16tofloat32withswap(int16_t const* shorts, int n, float scaler, float* samples) {
  unpackRun(shorts, n, scaler, true, samples);
}
