// Numeric block conversion, IBM floating point, CRC-32 and list limits.
//
// The conversion loops are what every file store spends its time in after
// the read itself, so they are pure loops over unaligned bytes (memcpy loads
// and stores, which compile to plain moves) that the vectoriser can take.
// All type pairs go through one template; the pairs of the seismic formats
// (16- and 32-bit integers and floats to and from floats, with or without a
// byte swap in the same pass) are also compiled in several instruction-set
// variants chosen by the loader, because the baseline of x86 has no byte
// shuffle and a swap would otherwise stay scalar. Pairs without a fused
// variant swap through a small stack block that stays in the first-level
// cache.

#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

#include "foundation/Message.h"
#include "foundation/vString.h"
#include "foundation/vUtl.h"

// Not on i386: position-independent code there cannot call a local ifunc.
#if defined(__x86_64__) && defined(__linux__) && !defined(RONDO_NO_TARGET_CLONES)
#if defined(__clang__)
#define RONDO_CONVERT_HOT __attribute__((target_clones("avx2", "ssse3", "default")))
#else
#define RONDO_CONVERT_HOT \
  __attribute__((target_clones("avx2", "ssse3", "default"), optimize("tree-vectorize")))
#endif
#elif defined(__GNUC__) && !defined(__clang__)
#define RONDO_CONVERT_HOT __attribute__((optimize("tree-vectorize")))
#else
#define RONDO_CONVERT_HOT
#endif

#if defined(__GNUC__) && !defined(__clang__)
#define RONDO_CONVERT_LOOP __attribute__((optimize("tree-vectorize")))
#else
#define RONDO_CONVERT_LOOP
#endif

namespace {

typedef unsigned char Byte;

// ---------------------------------------------------------------------------
// Element access and the conversion of one value.

inline uint8_t bswapU(uint8_t v) { return v; }
inline uint16_t bswapU(uint16_t v) { return __builtin_bswap16(v); }
inline uint32_t bswapU(uint32_t v) { return __builtin_bswap32(v); }
inline uint64_t bswapU(uint64_t v) { return __builtin_bswap64(v); }

template <std::size_t N>
struct UnsignedOf;
template <>
struct UnsignedOf<1> {
  typedef uint8_t type;
};
template <>
struct UnsignedOf<2> {
  typedef uint16_t type;
};
template <>
struct UnsignedOf<4> {
  typedef uint32_t type;
};
template <>
struct UnsignedOf<8> {
  typedef uint64_t type;
};

template <class T, bool Swap>
inline T load(Byte const* p) {
  typedef typename UnsignedOf<sizeof(T)>::type U;
  U u;
  std::memcpy(&u, p, sizeof(U));
  if (Swap) u = bswapU(u);
  T v;
  std::memcpy(&v, &u, sizeof(T));
  return v;
}

template <class T>
inline void store(Byte* p, T v) {
  std::memcpy(p, &v, sizeof(T));
}

// Conversions out of floating point tell the range from the bit pattern
// rather than by comparing doubles: compilers will not turn a floating-point
// comparison into a vector select while floating-point traps are possible,
// and a loop with a branch does not vectorise.

inline uint64_t bitsOf(double x) {
  uint64_t b;
  std::memcpy(&b, &x, sizeof b);
  return b;
}

inline double doubleOf(uint64_t b) {
  double x;
  std::memcpy(&x, &b, sizeof x);
  return x;
}

uint64_t const kMagnitude = 0x7FFFFFFFFFFFFFFFULL;
uint64_t const kInfinityBits = 0x7FF0000000000000ULL;

// Truncation toward zero, saturating, NaN to 0; built as nint is.
inline int32_t truncToInt32(double x) {
  uint64_t const b = bitsOf(x);
  uint64_t const m = b & kMagnitude;
  bool const outside = m >= 0x41E0000000000000ULL;  // 2^31
  int32_t const i = static_cast<int32_t>(doubleOf(b & (static_cast<uint64_t>(outside) - 1u)));
  uint32_t const limit = (0x7FFFFFFFu + static_cast<uint32_t>(b >> 63)) & (0u - static_cast<uint32_t>(m <= kInfinityBits));
  uint32_t const pick = 0u - static_cast<uint32_t>(outside);
  return static_cast<int32_t>((static_cast<uint32_t>(i) & ~pick) | (limit & pick));
}

inline int64_t truncToInt64(double x) {
  uint64_t const b = bitsOf(x);
  uint64_t const m = b & kMagnitude;
  bool const outside = m >= 0x43E0000000000000ULL;  // 2^63
  int64_t const i = static_cast<int64_t>(doubleOf(b & (static_cast<uint64_t>(outside) - 1u)));
  uint64_t const limit = (0x7FFFFFFFFFFFFFFFULL + (b >> 63)) & (0u - static_cast<uint64_t>(m <= kInfinityBits));
  uint64_t const pick = 0u - static_cast<uint64_t>(outside);
  return static_cast<int64_t>((static_cast<uint64_t>(i) & ~pick) | (limit & pick));
}

template <bool Trunc>
inline int32_t toInt32(double x) {
  return Trunc ? truncToInt32(x) : static_cast<int32_t>(vUtl::nint(x));
}

// The same from a float, in 32-bit lanes only: there is no float between
// 2^31 - 128 and 2^31, so 2^31 bounds both rounding and truncation, and
// x - trunc(x) is exact in float arithmetic.
template <bool Trunc>
inline int32_t toInt32(float x) {
  uint32_t b;
  std::memcpy(&b, &x, sizeof b);
  uint32_t const m = b & 0x7FFFFFFFu;
  bool const outside = m >= 0x4F000000u;  // 2^31
  uint32_t const insideBits = b & (static_cast<uint32_t>(outside) - 1u);
  float inside;
  std::memcpy(&inside, &insideBits, sizeof inside);
  int32_t i = static_cast<int32_t>(inside);
  if (!Trunc) i += static_cast<int32_t>(2.0f * (inside - static_cast<float>(i)));
  uint32_t const limit = (0x7FFFFFFFu + (b >> 31)) & (0u - static_cast<uint32_t>(m <= 0x7F800000u));
  uint32_t const pick = 0u - static_cast<uint32_t>(outside);
  return static_cast<int32_t>((static_cast<uint32_t>(i) & ~pick) | (limit & pick));
}

template <bool Trunc>
inline int64_t toInt64(double x) {
  return Trunc ? truncToInt64(x) : static_cast<int64_t>(vUtl::nint64(x));
}

// Floating point to an integer of at most 32 bits, saturating.
template <class D, bool Trunc, class S>
inline D floatToNarrow(S x) {
  if constexpr (std::is_same<D, int32_t>::value) {
    return toInt32<Trunc>(x);
  } else if constexpr (std::is_same<D, uint32_t>::value) {
    int64_t v = toInt64<Trunc>(static_cast<double>(x));
    v = v < 0 ? 0 : v;
    v = v > static_cast<int64_t>(UINT32_MAX) ? static_cast<int64_t>(UINT32_MAX) : v;
    return static_cast<D>(v);
  } else {
    int32_t v = toInt32<Trunc>(x);
    int32_t const lo = std::numeric_limits<D>::min();
    int32_t const hi = std::numeric_limits<D>::max();
    v = v < lo ? lo : v;
    v = v > hi ? hi : v;
    return static_cast<D>(v);
  }
}

// Floating point to a 64-bit integer, saturating.
template <class D, bool Trunc>
inline D floatToWide(double x) {
  if constexpr (std::is_signed<D>::value) {
    return toInt64<Trunc>(x);
  } else {
    uint64_t const b = bitsOf(x);
    uint64_t const m = b & kMagnitude;
    // NaN and every negative value (which rounds to 0 or below) give 0.
    if (m > kInfinityBits || (b >> 63) != 0) return 0;
    if (m >= 0x43F0000000000000ULL) return UINT64_MAX;  // 2^64
    // From 2^63 on the value is an integer that only the unsigned type holds.
    if (m >= 0x43E0000000000000ULL) return static_cast<uint64_t>(x);
    return static_cast<uint64_t>(toInt64<Trunc>(x));
  }
}

// vFLOAT64 to vFLOAT32. Beyond the largest float IEEE arithmetic (which
// the compilers follow for floating conversions, as C's Annex F has it)
// rounds to infinity of the sign; with Clip the result is the largest float
// of the sign instead. NaN stays NaN.
template <bool Clip>
inline float doubleToFloat(double v) {
  if constexpr (!Clip) {
    return static_cast<float>(v);
  } else {
    uint64_t const b = bitsOf(v);
    uint64_t const m = b & kMagnitude;
    uint64_t const largest = 0x47EFFFFFE0000000ULL;  // the largest float as a double
    uint64_t const limit = (b & ~kMagnitude) | largest;
    bool const outside = m > largest && m <= kInfinityBits;
    return static_cast<float>(doubleOf(outside ? limit : b));
  }
}

template <class S, class D, bool Clip>
inline D intToInt(S v) {
  if (!Clip || std::is_same<S, D>::value) return static_cast<D>(v);
  long long const lo = static_cast<long long>(std::numeric_limits<D>::min());
  unsigned long long const hi = static_cast<unsigned long long>(std::numeric_limits<D>::max());
  if (std::is_signed<S>::value) {
    long long const w = static_cast<long long>(v);
    if (w < lo) return std::numeric_limits<D>::min();
    if (w > 0 && static_cast<unsigned long long>(w) > hi) return std::numeric_limits<D>::max();
    return static_cast<D>(w);
  }
  unsigned long long const w = static_cast<unsigned long long>(v);
  if (w > hi) return std::numeric_limits<D>::max();
  return static_cast<D>(w);
}

template <class S, class D, bool Clip, bool Trunc>
inline D convertOne(S v) {
  if constexpr (std::is_floating_point<D>::value) {
    if constexpr (std::is_same<S, double>::value && std::is_same<D, float>::value) {
      return doubleToFloat<Clip>(v);
    } else {
      return static_cast<D>(v);
    }
  } else if constexpr (std::is_floating_point<S>::value) {
    if constexpr (sizeof(D) == 8) {
      return floatToWide<D, Trunc>(static_cast<double>(v));
    } else if constexpr (Clip) {
      return floatToNarrow<D, Trunc>(v);
    } else {
      return static_cast<D>(floatToWide<int64_t, Trunc>(static_cast<double>(v)));
    }
  } else {
    return intToInt<S, D, Clip>(v);
  }
}

// ---------------------------------------------------------------------------
// The loops.

template <class S, class D, bool Clip, bool Trunc, bool Swap>
inline void convertLoop(Byte const* __restrict s, Byte* __restrict t, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i)
    store<D>(t + i * sizeof(D), convertOne<S, D, Clip, Trunc>(load<S, Swap>(s + i * sizeof(S))));
}

// Equal sizes in place: each element is read and written at one address, so
// the loop carries no dependence between elements.
template <class S, class D, bool Clip, bool Trunc, bool Swap>
inline void convertLoopInPlace(Byte* p, std::size_t n) {
  static_assert(sizeof(S) == sizeof(D), "in place needs equal sizes");
  for (std::size_t i = 0; i < n; ++i)
    store<D>(p + i * sizeof(D), convertOne<S, D, Clip, Trunc>(load<S, Swap>(p + i * sizeof(S))));
}

typedef void (*CopyKernel)(Byte const*, Byte*, std::size_t);
typedef void (*InPlaceKernel)(Byte*, std::size_t);

template <class S, class D, bool Clip, bool Trunc>
RONDO_CONVERT_LOOP void genericCopy(Byte const* s, Byte* t, std::size_t n) {
  convertLoop<S, D, Clip, Trunc, false>(s, t, n);
}

template <class S, class D, bool Clip, bool Trunc>
RONDO_CONVERT_LOOP void genericInPlace(Byte* p, std::size_t n) {
  if constexpr (sizeof(S) == sizeof(D)) convertLoopInPlace<S, D, Clip, Trunc, false>(p, n);
}

// The fused kernels of the seismic sample formats, one non-template
// function each, so that every one gets its instruction-set variants.
#define RONDO_HOT_PAIR(NAME, S, D, CLIP)                                                        \
  RONDO_CONVERT_HOT void NAME##Copy(Byte const* s, Byte* t, std::size_t n) {                     \
    convertLoop<S, D, CLIP, false, false>(s, t, n);                                              \
  }                                                                                              \
  RONDO_CONVERT_HOT void NAME##CopySwap(Byte const* s, Byte* t, std::size_t n) {                 \
    convertLoop<S, D, CLIP, false, true>(s, t, n);                                               \
  }
#define RONDO_HOT_IN_PLACE(NAME, S, D, CLIP)                                                    \
  RONDO_CONVERT_HOT void NAME##InPlace(Byte* p, std::size_t n) {                                 \
    convertLoopInPlace<S, D, CLIP, false, false>(p, n);                                          \
  }                                                                                              \
  RONDO_CONVERT_HOT void NAME##InPlaceSwap(Byte* p, std::size_t n) {                             \
    convertLoopInPlace<S, D, CLIP, false, true>(p, n);                                           \
  }

RONDO_HOT_PAIR(i16f32, int16_t, float, false)
RONDO_HOT_PAIR(i16i32, int16_t, int32_t, false)
RONDO_HOT_PAIR(i32f32, int32_t, float, false)
RONDO_HOT_PAIR(i32f64, int32_t, double, false)
RONDO_HOT_PAIR(f32i32, float, int32_t, true)
RONDO_HOT_PAIR(f32f64, float, double, false)
RONDO_HOT_PAIR(f64f32, double, float, false)
RONDO_HOT_IN_PLACE(i32f32, int32_t, float, false)
RONDO_HOT_IN_PLACE(f32i32, float, int32_t, true)

#undef RONDO_HOT_PAIR
#undef RONDO_HOT_IN_PLACE

// ---------------------------------------------------------------------------
// Dispatch.

enum Kind { kI8, kU8, kI16, kU16, kI32, kU32, kI64, kU64, kF32, kF64, kNKinds, kBad = -1 };

int kindOf(int type) {
  switch (type) {
    case vINT8:
    case vCHAR8:
      return kI8;
    case vUINT8:
    case vUCHAR8:
    case vBOOL8:
      return kU8;
    case vINT16:
      return kI16;
    case vUINT16:
      return kU16;
    case vINT32:
      return kI32;
    case vUINT32:
      return kU32;
    case vINT64:
      return kI64;
    case vUINT64:
      return kU64;
    case vFLOAT32:
      return kF32;
    case vFLOAT64:
      return kF64;
    default:
      return kBad;
  }
}

int const kSize[kNKinds] = {1, 1, 2, 2, 4, 4, 8, 8, 4, 8};

template <int K>
struct KindType;
template <>
struct KindType<kI8> {
  typedef int8_t type;
};
template <>
struct KindType<kU8> {
  typedef uint8_t type;
};
template <>
struct KindType<kI16> {
  typedef int16_t type;
};
template <>
struct KindType<kU16> {
  typedef uint16_t type;
};
template <>
struct KindType<kI32> {
  typedef int32_t type;
};
template <>
struct KindType<kU32> {
  typedef uint32_t type;
};
template <>
struct KindType<kI64> {
  typedef int64_t type;
};
template <>
struct KindType<kU64> {
  typedef uint64_t type;
};
template <>
struct KindType<kF32> {
  typedef float type;
};
template <>
struct KindType<kF64> {
  typedef double type;
};

// Mode bits of the tables: clip 1, truncate 2 (the latter only matters for
// floating sources, so integer sources share one kernel for both).
struct Kernels {
  CopyKernel copy[kNKinds][kNKinds][4];
  InPlaceKernel inPlace[kNKinds][kNKinds][4];
};

template <int S, int D, int Mode>
void fillOne(Kernels& k) {
  typedef typename KindType<S>::type ST;
  typedef typename KindType<D>::type DT;
  constexpr bool clip = (Mode & 1) != 0;
  constexpr bool trunc = (Mode & 2) != 0 && std::is_floating_point<ST>::value;
  k.copy[S][D][Mode] = &genericCopy<ST, DT, clip, trunc>;
  k.inPlace[S][D][Mode] = sizeof(ST) == sizeof(DT) ? &genericInPlace<ST, DT, clip, trunc> : nullptr;
}

template <int S, int D>
void fillPair(Kernels& k) {
  fillOne<S, D, 0>(k);
  fillOne<S, D, 1>(k);
  fillOne<S, D, 2>(k);
  fillOne<S, D, 3>(k);
}

template <int S, int... D>
void fillRow(Kernels& k, std::integer_sequence<int, D...>) {
  (fillPair<S, D>(k), ...);
}

template <int... S>
void fillAll(Kernels& k, std::integer_sequence<int, S...> seq) {
  (fillRow<S>(k, seq), ...);
}

Kernels const& kernels() {
  static Kernels const table = [] {
    Kernels k;
    fillAll(k, std::make_integer_sequence<int, kNKinds>());
    return k;
  }();
  return table;
}

// The fused kernel for a pair, or null. The float to int32 kernel rounds
// and saturates, which is what the clip mode means for it.
CopyKernel hotCopy(int s, int d, int mode, bool swap) {
  bool const trunc = (mode & 2) != 0;
  if (s == kI16 && d == kF32) return swap ? i16f32CopySwap : i16f32Copy;
  if (s == kI16 && d == kI32 && !(mode & 1)) return swap ? i16i32CopySwap : i16i32Copy;
  if (s == kI32 && d == kF32) return swap ? i32f32CopySwap : i32f32Copy;
  if (s == kI32 && d == kF64) return swap ? i32f64CopySwap : i32f64Copy;
  if (s == kF32 && d == kI32 && (mode & 1) && !trunc) return swap ? f32i32CopySwap : f32i32Copy;
  if (s == kF32 && d == kF64) return swap ? f32f64CopySwap : f32f64Copy;
  if (s == kF64 && d == kF32 && !(mode & 1)) return swap ? f64f32CopySwap : f64f32Copy;
  return nullptr;
}

InPlaceKernel hotInPlace(int s, int d, int mode, bool swap) {
  bool const trunc = (mode & 2) != 0;
  if (s == kI32 && d == kF32) return swap ? i32f32InPlaceSwap : i32f32InPlace;
  if (s == kF32 && d == kI32 && (mode & 1) && !trunc) return swap ? f32i32InPlaceSwap : f32i32InPlace;
  return nullptr;
}

void swapRun(Byte const* s, Byte* t, int size, std::size_t n) {
  switch (size) {
    case 2:
      vUtl::swapBytes16(s, t, n);
      break;
    case 4:
      vUtl::swapBytes32(s, t, n);
      break;
    case 8:
      vUtl::swapBytes64(s, t, n);
      break;
    default:
      if (s != t) std::memcpy(t, s, n);
      break;
  }
}

vString typeText(int type) {
  if ((type >= vNOTYPE && type <= vIBMFLOAT32) || type == vENDFRAME || type == vPACKFRAME ||
      ((type & 0x80) && ((type & 0x3F) <= vIBMFLOAT32)))
    return vUtl::dataTypeName(type);
  vString s;
  s.printf("DataType(%d)", type);
  return s;
}

// ---------------------------------------------------------------------------
// IBM System/360 single precision.

// sign, 7-bit exponent of 16 biased by 64, 24-bit fraction 0.F:
// (-1)^s * F * 2^(4e - 280) with F the fraction as an integer. Every such
// value is a double, so one multiplication is exact and the conversion to
// float is the one rounding. Written without branches, so that it
// vectorises.
inline uint32_t ibmWordToFloatBits(uint32_t w) {
  uint64_t const e = (w >> 24) & 0x7Fu;
  uint64_t const scaleBits = (4 * e + 743) << 52;
  double scale;
  std::memcpy(&scale, &scaleBits, sizeof scale);
  double const a = static_cast<double>(static_cast<int32_t>(w & 0x00FFFFFFu)) * scale;
  // Magnitudes from 2^128 - 2^103 on round to infinity, as IEEE has it.
  float const f = static_cast<float>(a);
  uint32_t bits;
  std::memcpy(&bits, &f, sizeof bits);
  return bits | (w & 0x80000000u);
}

// The float as an integer mantissa times a power of two, normalised through
// the exact float of that mantissa (so denormals need no special path):
// value = fr * 2^ex with fr in [0.5, 1). The hexadecimal exponent is
// h = ceil(ex / 4), and the fraction loses r = 4h - ex of its 24 bits:
// scaled to 2^(27 - 4h) the magnitude is an integer with the kept bits and 3
// below them, rounded to nearest, ties to even. Zero, infinities and NaN go
// through the same arithmetic on a stand-in mantissa and are replaced at the
// end, so that no operation has a special input, no branch is needed, and
// all of it runs in 32-bit lanes.
inline uint32_t floatBitsToIbmWord(uint32_t b) {
  uint32_t const sign = b & 0x80000000u;
  uint32_t const mag = b & 0x7FFFFFFFu;
  uint32_t const e = mag >> 23;
  int32_t const mantissa =
      static_cast<int32_t>((mag & 0x7FFFFFu) | (static_cast<uint32_t>(e != 0) << 23) | static_cast<uint32_t>(mag == 0));
  int32_t const shift = static_cast<int32_t>(e) - 150 + static_cast<int32_t>(e == 0);
  float const mf = static_cast<float>(mantissa);
  uint32_t mfBits;
  std::memcpy(&mfBits, &mf, sizeof mfBits);
  int32_t const k = static_cast<int32_t>(mfBits >> 23) - 127;  // floor(log2(mantissa))
  int32_t const ex = k + 1 + shift;
  // ex >= -148 keeps the dividend positive.
  int32_t const h = static_cast<int32_t>(static_cast<uint32_t>(ex + 259) >> 2) - 64;
  int32_t const r = 4 * h - ex;
  uint32_t const scaleBits = static_cast<uint32_t>(26 - k - r + 127) << 23;
  float scale;
  std::memcpy(&scale, &scaleBits, sizeof scale);
  uint32_t const x = static_cast<uint32_t>(static_cast<int32_t>(mf * scale));
  // When bits are lost (r > 0) the fraction stays below 2^23, so rounding
  // up never reaches the next hexadecimal digit.
  uint32_t const frac = (x + 3u + ((x >> 3) & 1u)) >> 3;
  uint32_t const word = sign | (static_cast<uint32_t>(h + 64) << 24) | frac;
  // Zero keeps its sign, infinity is the largest magnitude, NaN is 0. The
  // choice is merged by masks: a selection would let the compiler move the
  // arithmetic above into a branch of its own, and the loop would not
  // vectorise.
  uint32_t const special = (sign & (0u - static_cast<uint32_t>(mag == 0 || mag == 0x7F800000u))) |
                           (0x7FFFFFFFu & (0u - static_cast<uint32_t>(mag == 0x7F800000u)));
  uint32_t const pick = 0u - static_cast<uint32_t>(mag - 1u < 0x7F7FFFFFu);  // finite, not zero
  return (word & pick) | (special & ~pick);
}

inline void ibmToIeeeCopy(Byte const* __restrict s, Byte* __restrict t, std::size_t n, bool swap) {
  if (swap) {
    for (std::size_t i = 0; i < n; ++i) store<uint32_t>(t + 4 * i, ibmWordToFloatBits(load<uint32_t, true>(s + 4 * i)));
  } else {
    for (std::size_t i = 0; i < n; ++i) store<uint32_t>(t + 4 * i, ibmWordToFloatBits(load<uint32_t, false>(s + 4 * i)));
  }
}

inline void ibmToIeeeInPlace(Byte* p, std::size_t n, bool swap) {
  if (swap) {
    for (std::size_t i = 0; i < n; ++i) store<uint32_t>(p + 4 * i, ibmWordToFloatBits(load<uint32_t, true>(p + 4 * i)));
  } else {
    for (std::size_t i = 0; i < n; ++i) store<uint32_t>(p + 4 * i, ibmWordToFloatBits(load<uint32_t, false>(p + 4 * i)));
  }
}

inline void ieeeToIbmCopy(Byte const* __restrict s, Byte* __restrict t, std::size_t n, bool swap) {
  if (swap) {
    for (std::size_t i = 0; i < n; ++i) store<uint32_t>(t + 4 * i, bswapU(floatBitsToIbmWord(load<uint32_t, false>(s + 4 * i))));
  } else {
    for (std::size_t i = 0; i < n; ++i) store<uint32_t>(t + 4 * i, floatBitsToIbmWord(load<uint32_t, false>(s + 4 * i)));
  }
}

inline void ieeeToIbmInPlace(Byte* p, std::size_t n, bool swap) {
  if (swap) {
    for (std::size_t i = 0; i < n; ++i) store<uint32_t>(p + 4 * i, bswapU(floatBitsToIbmWord(load<uint32_t, false>(p + 4 * i))));
  } else {
    for (std::size_t i = 0; i < n; ++i) store<uint32_t>(p + 4 * i, floatBitsToIbmWord(load<uint32_t, false>(p + 4 * i)));
  }
}

// Each of the four is one function with its instruction-set variants.
RONDO_CONVERT_HOT void ibmToIeeeRun(Byte const* s, Byte* t, std::size_t n, bool swap) {
  if (static_cast<void const*>(s) == static_cast<void const*>(t))
    ibmToIeeeInPlace(t, n, swap);
  else
    ibmToIeeeCopy(s, t, n, swap);
}

RONDO_CONVERT_HOT void ieeeToIbmRun(Byte const* s, Byte* t, std::size_t n, bool swap) {
  if (static_cast<void const*>(s) == static_cast<void const*>(t))
    ieeeToIbmInPlace(t, n, swap);
  else
    ieeeToIbmCopy(s, t, n, swap);
}

// ---------------------------------------------------------------------------
// CRC-32, slicing by eight.

struct CrcTables {
  uint32_t t[8][256];
  constexpr CrcTables() : t() {
    for (uint32_t i = 0; i < 256; ++i) {
      uint32_t c = i;
      for (int k = 0; k < 8; ++k) c = (c & 1u) ? (0xEDB88320u ^ (c >> 1)) : (c >> 1);
      t[0][i] = c;
    }
    for (uint32_t i = 0; i < 256; ++i)
      for (int s = 1; s < 8; ++s) t[s][i] = (t[s - 1][i] >> 8) ^ t[0][t[s - 1][i] & 0xFFu];
  }
};

constexpr CrcTables kCrc;

}  // namespace

namespace vUtl {

void copyConvert(void const* source, int sourceType, void* target, int targetType, std::size_t n, int flags) {
  int const s = kindOf(sourceType);
  int const d = kindOf(targetType);
  if (s == kBad || d == kBad)
    Message::fatal("vUtl::copyConvert()", 0, "Cannot convert %s data to %s.", typeText(sourceType).c_str(),
                   typeText(targetType).c_str());
  if (n == 0) return;
  Byte const* src = static_cast<Byte const*>(source);
  Byte* dst = static_cast<Byte*>(target);
  bool const swap = (flags & ConvertSwapSource) != 0 && kSize[s] > 1;
  int const mode = flags & (ConvertClip | ConvertTruncate);
  bool const inPlace = static_cast<void const*>(src) == static_cast<void const*>(dst);

  // One type to itself is a move, with the swap if asked for.
  if (s == d) {
    if (swap)
      swapRun(src, dst, kSize[s], n);
    else if (!inPlace)
      std::memmove(dst, src, n * static_cast<std::size_t>(kSize[s]));
    return;
  }

  if (inPlace) {
    if (kSize[s] != kSize[d])
      Message::fatal("vUtl::copyConvert()", 0, "Cannot convert %s data to %s in place.",
                     typeText(sourceType).c_str(), typeText(targetType).c_str());
    if (InPlaceKernel hot = hotInPlace(s, d, mode, swap)) return hot(dst, n);
    if (swap) swapRun(dst, dst, kSize[s], n);
    kernels().inPlace[s][d][mode](dst, n);
    return;
  }

  if (CopyKernel hot = hotCopy(s, d, mode, swap)) return hot(src, dst, n);
  CopyKernel const kernel = kernels().copy[s][d][mode];
  if (!swap) return kernel(src, dst, n);
  // Swapped sources of the other pairs go through a block small enough to
  // stay in the first-level cache, so memory is still passed once.
  std::size_t const block = 2048;
  alignas(64) Byte buffer[block * 8];
  std::size_t const ss = static_cast<std::size_t>(kSize[s]);
  std::size_t const ds = static_cast<std::size_t>(kSize[d]);
  for (std::size_t done = 0; done < n; done += block) {
    std::size_t const m = n - done < block ? n - done : block;
    swapRun(src + done * ss, buffer, kSize[s], m);
    kernel(buffer, dst + done * ds, m);
  }
}

void ibmToIeee(void const* source, void* target, std::size_t n, bool swap) {
  ibmToIeeeRun(static_cast<Byte const*>(source), static_cast<Byte*>(target), n, swap);
}

void ieeeToIbm(void const* source, void* target, std::size_t n, bool swap) {
  ieeeToIbmRun(static_cast<Byte const*>(source), static_cast<Byte*>(target), n, swap);
}

uint32_t calculateCRC(void const* data, std::size_t n, uint32_t crc) {
  Byte const* p = static_cast<Byte const*>(data);
  uint32_t c = ~crc;
  while (n >= 8) {
    uint32_t lo;
    uint32_t hi;
    std::memcpy(&lo, p, 4);
    std::memcpy(&hi, p + 4, 4);
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    lo = __builtin_bswap32(lo);
    hi = __builtin_bswap32(hi);
#endif
    lo ^= c;
    c = kCrc.t[7][lo & 0xFFu] ^ kCrc.t[6][(lo >> 8) & 0xFFu] ^ kCrc.t[5][(lo >> 16) & 0xFFu] ^
        kCrc.t[4][lo >> 24] ^ kCrc.t[3][hi & 0xFFu] ^ kCrc.t[2][(hi >> 8) & 0xFFu] ^
        kCrc.t[1][(hi >> 16) & 0xFFu] ^ kCrc.t[0][hi >> 24];
    p += 8;
    n -= 8;
  }
  while (n-- > 0) c = kCrc.t[0][(c ^ *p++) & 0xFFu] ^ (c >> 8);
  return ~c;
}

bool getLimits(std::vector<unsigned int> const& list, unsigned int& smallest, unsigned int& largest) {
  if (list.empty()) return false;
  unsigned int lo = list.front();
  unsigned int hi = lo;
  for (unsigned int v : list) {
    lo = v < lo ? v : lo;
    hi = v > hi ? v : hi;
  }
  smallest = lo;
  largest = hi;
  return true;
}

bool getLimits(std::vector<int> const& list, int& smallest, int& largest) {
  if (list.empty()) return false;
  int lo = list.front();
  int hi = lo;
  for (int v : list) {
    lo = v < lo ? v : lo;
    hi = v > hi ? v : hi;
  }
  smallest = lo;
  largest = hi;
  return true;
}

}  // namespace vUtl
