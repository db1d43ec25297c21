#include "foundation/vUtlSize.h"

#include "foundation/Message.h"

namespace vUtl {

bool fitsInMemory(long long count, long long itemSize) {
  if (count < 0 || itemSize < 0) return false;
  if (count == 0 || itemSize == 0) return true;
  unsigned long long const n = static_cast<unsigned long long>(count);
  unsigned long long const size = static_cast<unsigned long long>(itemSize);
  return n <= maxBlockBytes() / size;
}

std::size_t checkedBytes(char const* label, long long count, long long itemSize) {
  if (!fitsInMemory(count, itemSize))
    Message::fatal(label, 0, "Cannot hold %lld items of %lld bytes: more than the %llu bytes this machine can address "
                   "in one block.", count, itemSize, maxBlockBytes());
  return static_cast<std::size_t>(count) * static_cast<std::size_t>(itemSize);
}

}  // namespace vUtl
