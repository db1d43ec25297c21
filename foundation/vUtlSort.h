#ifndef FOUNDATION_VUTLSORT_H
#define FOUNDATION_VUTLSORT_H

// vUtlSort: the sort orders that group questions (getUnique,
// getGroupsAndSizes) and the sorting templates take. The values are part of
// the remote protocol, where an order travels as an int: never renumber them.

namespace vUtlSort {

struct SortOrder {
  enum SortOrderType {
    DESCENDING = -1,
    ASCENDING = 1
  };
};

}  // namespace vUtlSort

#endif
