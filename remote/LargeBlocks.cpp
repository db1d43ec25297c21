#include "remote/LargeBlocks.h"

#include <malloc.h>

void keepLargeBlocksInHeap() {
  static bool const done = [] {
    // The largest threshold the C library takes; freed heap above the
    // trim threshold still goes back to the system.
    int const largest = static_cast<int>(4 * 1024 * 1024 * sizeof(long));
    ::mallopt(M_MMAP_THRESHOLD, largest);
    ::mallopt(M_TRIM_THRESHOLD, 4 * largest);
    return true;
  }();
  (void)done;
}
