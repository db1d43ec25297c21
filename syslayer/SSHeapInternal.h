#ifndef SYSLAYER_SSHEAPINTERNAL_H
#define SYSLAYER_SSHEAPINTERNAL_H

// Shared helpers of the ss heap's source files. Not for use outside them.

#include <cstdint>

namespace ss_internal {

int32_t const kHeader = 20;
// First words of raw blocks: handed out (ss_balloc_) and only reserved
// (ss_allocate_, until committed).
int32_t const kRawMark = -5;
int32_t const kReservedMark = -6;

// The first word never handed out.
int64_t heapTop();
// A live block with its self index (a structure or an array).
bool isLive(int32_t index);

bool checking();
// A zeroed block of `words` words; its first word's index.
int32_t allocBlock(int32_t words, char const* routine);
void freeBlock(int32_t start, int32_t words);
// Fatal unless id can be used as a structure (see SSHeap.h).
void checkId(int32_t id, char const* routine);
int32_t nSlots(int32_t id);
int32_t mapAt(int32_t id);
// The index of a slot's value word, after checking id and ordinal.
int32_t slotAt(int32_t id, int32_t ordinal, char const* routine);
int32_t typeOf(int32_t id, int32_t ordinal);
void setType(int32_t id, int32_t ordinal, int32_t type);
int32_t elementWords(int32_t arrayType);
void releaseStruct(int32_t id);
// Frees what a slot of this type holds when owner made it.
void releaseValue(int32_t type, int32_t value, int32_t owner);
// A new text block; returns the pointer for the value word (block + 3).
int32_t newText(int32_t parent, char const* text, int32_t length, char const* routine);
// Copies the text at pointer into out, blank-filled to length.
void readText(int32_t pointer, char* out, int32_t length);
int32_t textLength(int32_t pointer);

}  // namespace ss_internal

#endif
