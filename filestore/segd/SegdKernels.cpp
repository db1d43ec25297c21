#include "filestore/segd/SegdKernels.h"

#include <cstring>

#if (defined(__x86_64__) || defined(__i386__)) && defined(__linux__)
#include <immintrin.h>
#define SEGD_HAVE_X86_PATHS 1
#endif

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

namespace {

void groups8015(unsigned char const* __restrict s, float* __restrict t, std::size_t groups) {
  for (; groups > 0; --groups, s += 10, t += 4) {
    unsigned const exponents = (static_cast<unsigned>(s[0]) << 8) | s[1];
    t[0] = sample(s + 2, exponents >> 12);
    t[1] = sample(s + 4, (exponents >> 8) & 0x0F);
    t[2] = sample(s + 6, (exponents >> 4) & 0x0F);
    t[3] = sample(s + 8, exponents & 0x0F);
  }
}

#ifdef SEGD_HAVE_X86_PATHS
// Two groups a step, one in each 128-bit lane, through one byte shuffle: a
// 32-bit lane gets its fraction in the top half (q * 2^16, exact as a
// float) and the byte holding its exponent nibble in byte 1. The nibble is
// shifted into the exponent field of a float 2^(e - 31), by which the
// fraction is multiplied: q * 2^(e - 15), exact. Each step loads 16 bytes
// from the start of each group, so the last two groups are left to the
// scalar loop.
__attribute__((target("avx2"), always_inline)) inline void step8015Avx2(unsigned char const* s, float* t) {
  __m256i const spread = _mm256_setr_epi8(-1, 0, 3, 2, -1, 0, 5, 4, -1, 1, 7, 6, -1, 1, 9, 8,  //
                                          -1, 0, 3, 2, -1, 0, 5, 4, -1, 1, 7, 6, -1, 1, 9, 8);
  __m256i const fraction = _mm256_set1_epi32(static_cast<int>(0xFFFF0000u));
  __m256i const nibble = _mm256_setr_epi32(0xF000, 0x0F00, 0xF000, 0x0F00, 0xF000, 0x0F00, 0xF000, 0x0F00);
  __m256i const shift = _mm256_setr_epi32(11, 15, 11, 15, 11, 15, 11, 15);
  __m256i const bias = _mm256_set1_epi32(96 << 23);
  __m128i const a = _mm_loadu_si128(reinterpret_cast<__m128i const*>(s));
  __m256i const v =
      _mm256_inserti128_si256(_mm256_castsi128_si256(a), _mm_loadu_si128(reinterpret_cast<__m128i const*>(s + 10)), 1);
  __m256i const lanes = _mm256_shuffle_epi8(v, spread);
  __m256 const q = _mm256_cvtepi32_ps(_mm256_and_si256(lanes, fraction));
  __m256i const e = _mm256_sllv_epi32(_mm256_and_si256(lanes, nibble), shift);
  _mm256_storeu_ps(t, _mm256_mul_ps(q, _mm256_castsi256_ps(_mm256_add_epi32(e, bias))));
}

// Two steps a turn where the input allows: they are independent, and the
// loop's own counting is spread over four groups.
__attribute__((target("avx2"))) std::size_t groups8015Avx2(unsigned char const* s, float* t, std::size_t groups) {
  std::size_t done = 0;
  for (; done + 5 <= groups; done += 4, s += 40, t += 16) {
    step8015Avx2(s, t);
    step8015Avx2(s + 20, t + 8);
  }
  for (; done + 3 <= groups; done += 2, s += 20, t += 8) step8015Avx2(s, t);
  return done;
}

// 2^(e - 31) for the two nibbles of an exponent byte, high nibble first.
struct ScalePairs {
  float v[256][2];
  constexpr ScalePairs() : v() {
    for (int b = 0; b < 256; ++b) {
      v[b][0] = 1.0f / static_cast<float>(1u << (31 - (b >> 4)));
      v[b][1] = 1.0f / static_cast<float>(1u << (31 - (b & 0x0F)));
    }
  }
};
alignas(16) constexpr ScalePairs kScalePairs;

// One group, within its own ten bytes. Without a byte shuffle the four
// fractions are spread by pairing each 16-bit word with itself: a 32-bit
// lane holds the bytes h l h l, and shifted by 8 and masked it is q * 2^16.
// The scales of the two exponent bytes come from a table: working them out
// in the vector (a multiply as a per-lane shift) ran a quarter slower than
// the two lookups, which are still about half of the time of a group.
__attribute__((target("sse2"))) inline void group8015Sse2(unsigned char const* s, float* t) {
  __m128i f = _mm_loadl_epi64(reinterpret_cast<__m128i const*>(s + 2));
  f = _mm_and_si128(_mm_slli_epi32(_mm_unpacklo_epi16(f, f), 8), _mm_set1_epi32(static_cast<int>(0xFFFF0000u)));
  __m128 scale = _mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<__m128i const*>(kScalePairs.v[s[0]])));
  scale = _mm_loadh_pi(scale, reinterpret_cast<__m64 const*>(kScalePairs.v[s[1]]));
  _mm_storeu_ps(t, _mm_mul_ps(_mm_cvtepi32_ps(f), scale));
}

// Four groups a step: at about eleven instructions a group, the loop's own
// counting is worth spreading.
__attribute__((target("sse2"))) void groups8015Sse2(unsigned char const* s, float* t, std::size_t groups) {
  for (; groups >= 4; groups -= 4, s += 40, t += 16) {
    group8015Sse2(s, t);
    group8015Sse2(s + 10, t + 4);
    group8015Sse2(s + 20, t + 8);
    group8015Sse2(s + 30, t + 12);
  }
  for (; groups > 0; --groups, s += 10, t += 4) group8015Sse2(s, t);
}

bool haveAvx2() {
  static bool const have = __builtin_cpu_supports("avx2");
  return have;
}
bool haveSse2() {
  static bool const have = __builtin_cpu_supports("sse2");
  return have;
}
#endif

}  // namespace

bool has8015Path(Path8015 path) {
  switch (path) {
    case Path8015::PORTABLE:
      return true;
#ifdef SEGD_HAVE_X86_PATHS
    case Path8015::SSE2:
      return haveSse2();
    case Path8015::AVX2:
      return haveAvx2();
#endif
    default:
      return false;
  }
}

void fc_8015toieee(Path8015 path, void const* source, float* target, std::size_t n) {
  if (n % 4 != 0) Message::fatal("fc_8015toieee", 0, "8015 samples must be in groups of four.");
  if (!has8015Path(path)) Message::fatal("fc_8015toieee", 0, "This machine cannot convert 8015 samples that way.");
  unsigned char const* s = static_cast<unsigned char const*>(source);
  std::size_t groups = n / 4;
#ifdef SEGD_HAVE_X86_PATHS
  if (path == Path8015::SSE2) return groups8015Sse2(s, target, groups);
  if (path == Path8015::AVX2) {
    std::size_t const done = groups8015Avx2(s, target, groups);
    s += done * 10;
    target += done * 4;
    groups -= done;
  }
#endif
  groups8015(s, target, groups);
}

void fc_8015toieee(void const* source, float* target, std::size_t n) {
  static Path8015 const fastest = has8015Path(Path8015::AVX2)   ? Path8015::AVX2
                                  : has8015Path(Path8015::SSE2) ? Path8015::SSE2
                                                                : Path8015::PORTABLE;
  fc_8015toieee(fastest, source, target, n);
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
