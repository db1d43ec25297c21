#ifndef FOUNDATION_VUTLSIZE_H
#define FOUNDATION_VUTLSIZE_H

// Sizes of memory blocks computed from numbers that came from files or
// messages. Such a number is 64 bits wide; size_t is 32 bits on a 32-bit
// build, and no object there may span more than half the address space. A
// plain cast would wrap a big request into a small block that the read then
// overruns, so every such size goes through here first.

#include <cstddef>
#include <cstdint>

namespace vUtl {

// The largest block one object may span on this machine: what pointer
// differences reach (2^31 - 1 bytes on a 32-bit build).
constexpr unsigned long long maxBlockBytes() { return static_cast<unsigned long long>(PTRDIFF_MAX); }

// Whether count items of itemSize bytes fit in one block. Negative numbers
// do not.
bool fitsInMemory(long long count, long long itemSize);

// count times itemSize as a size_t. Anything that does not fit is fatal,
// labelled with the caller's label: "Cannot hold %lld items of %lld bytes:
// more than the %llu bytes this machine can address in one block."
std::size_t checkedBytes(char const* label, long long count, long long itemSize);

}  // namespace vUtl

#endif
