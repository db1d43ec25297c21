#ifndef REMOTE_LARGEBLOCKS_H
#define REMOTE_LARGEBLOCKS_H

// Both ends of a data server connection move attribute data in blocks of
// megabytes, a new block for every read (the message, the attribute's
// data). By default the C library maps each such block from the system and
// unmaps it when freed, so every read pays for fresh zeroed pages, several
// times the cost of the copy itself. keepLargeBlocksInHeap() has blocks up
// to the library's limit (32 MB on 64-bit, 16 MB on 32-bit) come from the
// heap and be kept there for the next read. Called once per process by the
// client catalog and the data server; later calls do nothing.

void keepLargeBlocksInHeap();

#endif
