// Byte order reversal. The contiguous kernels are plain loops of
// load / bswap / store through memcpy, which the compilers turn into
// byte shuffles. They are compiled in several variants (AVX2, SSSE3 and the
// baseline of the target) and the loader picks the best one for the CPU,
// since the baseline of x86 has no byte shuffle and 32- and 64-bit swaps
// would stay scalar.

#include <cstring>

#include "foundation/Message.h"
#include "foundation/vUtl.h"

#if (defined(__x86_64__) || defined(__i386__)) && defined(__linux__) && !defined(RONDO_NO_TARGET_CLONES)
#if defined(__clang__)
#define RONDO_SWAP_KERNEL __attribute__((target_clones("avx2", "ssse3", "default")))
#else
#define RONDO_SWAP_KERNEL \
  __attribute__((target_clones("avx2", "ssse3", "default"), optimize("tree-vectorize")))
#endif
#elif defined(__GNUC__) && !defined(__clang__)
#define RONDO_SWAP_KERNEL __attribute__((optimize("tree-vectorize")))
#else
#define RONDO_SWAP_KERNEL
#endif

namespace {

inline uint16_t bswap(uint16_t v) { return __builtin_bswap16(v); }
inline uint32_t bswap(uint32_t v) { return __builtin_bswap32(v); }
inline uint64_t bswap(uint64_t v) { return __builtin_bswap64(v); }

template <typename U>
inline void swapInPlace(unsigned char* p, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    U v;
    std::memcpy(&v, p + i * sizeof(U), sizeof(U));
    v = bswap(v);
    std::memcpy(p + i * sizeof(U), &v, sizeof(U));
  }
}

template <typename U>
inline void swapCopy(unsigned char const* __restrict s, unsigned char* __restrict t, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    U v;
    std::memcpy(&v, s + i * sizeof(U), sizeof(U));
    v = bswap(v);
    std::memcpy(t + i * sizeof(U), &v, sizeof(U));
  }
}

[[noreturn]] void badSize(int size) {
  Message::fatal("ByteSwap::swapBytes()", 0, "Invalid datatype, datasize =%d.", size);
}

}  // namespace

namespace vUtl {

RONDO_SWAP_KERNEL void swapBytes16(void* data, std::size_t n) {
  swapInPlace<uint16_t>(static_cast<unsigned char*>(data), n);
}
RONDO_SWAP_KERNEL void swapBytes32(void* data, std::size_t n) {
  swapInPlace<uint32_t>(static_cast<unsigned char*>(data), n);
}
RONDO_SWAP_KERNEL void swapBytes64(void* data, std::size_t n) {
  swapInPlace<uint64_t>(static_cast<unsigned char*>(data), n);
}

RONDO_SWAP_KERNEL void swapBytes16(void const* source, void* target, std::size_t n) {
  if (source == target) return swapInPlace<uint16_t>(static_cast<unsigned char*>(target), n);
  swapCopy<uint16_t>(static_cast<unsigned char const*>(source), static_cast<unsigned char*>(target), n);
}
RONDO_SWAP_KERNEL void swapBytes32(void const* source, void* target, std::size_t n) {
  if (source == target) return swapInPlace<uint32_t>(static_cast<unsigned char*>(target), n);
  swapCopy<uint32_t>(static_cast<unsigned char const*>(source), static_cast<unsigned char*>(target), n);
}
RONDO_SWAP_KERNEL void swapBytes64(void const* source, void* target, std::size_t n) {
  if (source == target) return swapInPlace<uint64_t>(static_cast<unsigned char*>(target), n);
  swapCopy<uint64_t>(static_cast<unsigned char const*>(source), static_cast<unsigned char*>(target), n);
}

void swapBytes(void* data, int size, int n) {
  if (n <= 0) {
    if (size != 2 && size != 4 && size != 8) badSize(size);
    return;
  }
  switch (size) {
    case 2: return swapBytes16(data, static_cast<std::size_t>(n));
    case 4: return swapBytes32(data, static_cast<std::size_t>(n));
    case 8: return swapBytes64(data, static_cast<std::size_t>(n));
    default: badSize(size);
  }
}

void swapBytes(void const* source, int size, int sourceStride, unsigned int nGroups, int groupLength,
               void* target, int targetStride) {
  void (*kernel)(void const*, void*, std::size_t) = nullptr;
  switch (size) {
    case 2: kernel = swapBytes16; break;
    case 4: kernel = swapBytes32; break;
    case 8: kernel = swapBytes64; break;
    default: badSize(size);
  }
  if (nGroups == 0 || groupLength <= 0) return;
  std::size_t const run = static_cast<std::size_t>(groupLength);
  std::size_t const runBytes = run * static_cast<std::size_t>(size);
  unsigned char const* s = static_cast<unsigned char const*>(source);
  unsigned char* t = static_cast<unsigned char*>(target);
  // Back to back groups are one run: one call and the loop vectorises.
  if (static_cast<std::size_t>(sourceStride) == runBytes && static_cast<std::size_t>(targetStride) == runBytes) {
    kernel(s, t, run * nGroups);
    return;
  }
  std::ptrdiff_t const ss = sourceStride;
  std::ptrdiff_t const ts = targetStride;
  if (run == 1) {
    // The common record case: one value per record, gathered or scattered.
    switch (size) {
      case 2:
        for (unsigned int g = 0; g < nGroups; ++g) {
          uint16_t v;
          std::memcpy(&v, s + static_cast<std::ptrdiff_t>(g) * ss, 2);
          v = bswap(v);
          std::memcpy(t + static_cast<std::ptrdiff_t>(g) * ts, &v, 2);
        }
        return;
      case 4:
        for (unsigned int g = 0; g < nGroups; ++g) {
          uint32_t v;
          std::memcpy(&v, s + static_cast<std::ptrdiff_t>(g) * ss, 4);
          v = bswap(v);
          std::memcpy(t + static_cast<std::ptrdiff_t>(g) * ts, &v, 4);
        }
        return;
      default:
        for (unsigned int g = 0; g < nGroups; ++g) {
          uint64_t v;
          std::memcpy(&v, s + static_cast<std::ptrdiff_t>(g) * ss, 8);
          v = bswap(v);
          std::memcpy(t + static_cast<std::ptrdiff_t>(g) * ts, &v, 8);
        }
        return;
    }
  }
  for (unsigned int g = 0; g < nGroups; ++g) kernel(s + static_cast<std::ptrdiff_t>(g) * ss, t + static_cast<std::ptrdiff_t>(g) * ts, run);
}

}  // namespace vUtl
