#include "filestore/segd/SegdKernels.h"

#include <cstring>

#include "foundation/Message.h"
#include "foundation/vUtl.h"

namespace SegdKernels {

namespace {

// 2^(e - 15): a 16-bit fraction read as an integer, scaled by its exponent.
constexpr float kScale[16] = {1.0f / 32768, 1.0f / 16384, 1.0f / 8192, 1.0f / 4096, 1.0f / 2048, 1.0f / 1024,
                              1.0f / 512,   1.0f / 256,   1.0f / 128,  1.0f / 64,   1.0f / 32,   1.0f / 16,
                              1.0f / 8,     1.0f / 4,     1.0f / 2,    1.0f};

inline float sample(unsigned char const* p, unsigned exponent) {
  int16_t const fraction = static_cast<int16_t>(static_cast<uint16_t>((p[0] << 8) | p[1]));
  return static_cast<float>(fraction) * kScale[exponent];
}

}  // namespace

void fc_8015toieee(void const* source, float* target, std::size_t n) {
  if (n % 4 != 0) Message::fatal("fc_8015toieee", 0, "8015 samples must be in groups of four.");
  unsigned char const* __restrict s = static_cast<unsigned char const*>(source);
  float* __restrict t = target;
  for (std::size_t g = n / 4; g > 0; --g, s += 10, t += 4) {
    unsigned const exponents = (static_cast<unsigned>(s[0]) << 8) | s[1];
    t[0] = sample(s + 2, exponents >> 12);
    t[1] = sample(s + 4, (exponents >> 8) & 0x0F);
    t[2] = sample(s + 6, (exponents >> 4) & 0x0F);
    t[3] = sample(s + 8, exponents & 0x0F);
  }
}

void fc_8058toieee(void const* source, float* target, std::size_t n) {
  // The file's words are big-endian: the other order on this machine's x86.
  unsigned const probe = 1;
  if (*reinterpret_cast<unsigned char const*>(&probe) == 1)
    vUtl::swapBytes32(source, target, n);
  else if (source != target)
    std::memmove(target, source, n * sizeof(float));
}

}  // namespace SegdKernels
