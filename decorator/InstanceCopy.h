#ifndef DECORATOR_INSTANCECOPY_H
#define DECORATOR_INSTANCECOPY_H

// InstanceCopy: moving whole instances between attributes of one fixed
// length, as the joining views assemble a read out of reads of the stores
// below. Numeric values move as bytes; text values by assignment, since a
// vString is an object.

#include <cstring>

#include "attribute/Attribute.h"
#include "foundation/vString.h"

namespace InstanceCopy {

// count instances of source from sourcePosition to target at targetPosition
// (1-based). Both attributes have the same type and length.
inline void copy(Attribute const& source, unsigned int sourcePosition, Attribute& target,
                 unsigned int targetPosition, unsigned int count) {
  if (count == 0) return;
  if (source.getDataType() == vSTRING) {
    long long const n = static_cast<long long>(count) * source.getLength();
    vString const* from = source.getStringPointer(sourcePosition);
    vString* to = target.getStringPointer(targetPosition);
    for (long long i = 0; i < n; ++i) to[i] = from[i];
    return;
  }
  std::memcpy(target.getPointer(targetPosition), source.getPointer(sourcePosition),
              static_cast<std::size_t>(count) * static_cast<std::size_t>(source.getNBytes()));
}

// count instances of target from position, as zeros (empty texts).
inline void zero(Attribute& target, unsigned int position, unsigned int count) {
  if (count == 0) return;
  if (target.getDataType() == vSTRING) {
    long long const n = static_cast<long long>(count) * target.getLength();
    vString* to = target.getStringPointer(position);
    for (long long i = 0; i < n; ++i) to[i] = vString();
    return;
  }
  std::memset(target.getPointer(position), 0,
              static_cast<std::size_t>(count) * static_cast<std::size_t>(target.getNBytes()));
}

}  // namespace InstanceCopy

#endif
