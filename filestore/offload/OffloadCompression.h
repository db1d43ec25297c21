#ifndef FILESTORE_OFFLOAD_OFFLOADCOMPRESSION_H
#define FILESTORE_OFFLOAD_OFFLOADCOMPRESSION_H

// The 16-bit sample packing of offload traces. A packed record is a float
// scaler at word 0 and the samples as 16-bit integers (sample × scaler,
// truncated) from byte 4, padded to an even count. A record cut in windows
// has −(window + 0.1) at word 0, one scaler per window behind it and the
// samples from the word after the last scaler. A scaler below 1e-20 reads
// as a window of zeros.
//
// With swap set, each pair of neighbouring samples is stored the other way
// round (as a word-swapping copy leaves them), a lone last sample in the
// second place of its pair.

#include <cstdint>

// Words of a packed trace of n samples with window length window (0: one).
int compression_moffld_int16Tlen(int n, int window);
// direction > 0 packs floats into record; otherwise unpacks record into
// floats. record holds compression_moffld_int16Tlen(n, window) words.
void compression_moffld_int16(int n, float* floats, bool swap, void* record, int window, int direction);

// One common scaler for a trace: 32766 over the largest magnitude; 1.0 for
// an all-zero trace, 3.2766e34 when the largest is below 1e-30.
float ds_computescaler(float const* samples, int n);
// samples × scaler, truncated, into n shorts; and back, × 1/scaler (zeros
// when the scaler is below 1e-20).
void ds_float32toint16(float const* samples, int n, float scaler, int16_t* shorts);
void ds_int16tofloat32(int16_t const* shorts, int n, float scaler, float* samples);
// The same with each pair of shorts swapped.
void ds_float32toint16withswap(float const* samples, int n, float scaler, int16_t* shorts);
void ds_int16tofloat32withswap(int16_t const* shorts, int n, float scaler, float* samples);

#endif
