#ifndef FILESTORE_NYX_NYXDATLAYOUT_H
#define FILESTORE_NYX_NYXDATLAYOUT_H

// NyxDatLayout: where the traces of a Nyx "dat" file lie. The file, in its
// byte order (told by the first word):
//
//   a word holding 224, the length of the prologue's texts, then the
//   texts: 26 bytes of identification, 38 of job, 160 of description;
//   a word with the length H of a "special" history trace, 0 for none;
//   with one, H bytes whose first word is -1;
//   blocks to the end of the file, each a header of six words (block
//   size in bytes with the header, block type, byte swap flag, instances in
//   the block, data format, additional bytes) and its body: for blocks of
//   type 7 and 15 the additional bytes and then the traces back to back,
//   for others anything.
//
// Every trace has the layout of NyxTrace and the sample count and format
// of the first one. parse() walks the blocks once and keeps each trace
// block's first trace and count; bad files end in the reader's messages.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "filestore/nyx/NyxTrace.h"

struct NyxDatLayout {
  static constexpr int PROLOGUE = 224;
  static constexpr int BLOCK_HEADER_WORDS = 6;

  struct Block {
    long long firstTrace;  // byte offset
    int count;
  };

  // Reads count bytes at a 0-based offset; returns the bytes read.
  typedef std::function<long long(long long offset, void* buffer, long long count)> Reader;

  // Fatal, labelled by label, when the file is not one; name is the file's
  // in the message of one cut short.
  void parse(Reader const& read, long long fileSize, char const* label, std::string const& name = std::string());
  // The byte offset of an instance (from 1).
  long long offsetOf(long long instance) const;

  bool swapped = false;
  int dataFormat = 0;
  int nSamples = 0;
  int traceBytes = 0;
  long long nInstances = 0;
  int32_t firstHeader[NyxTrace::HEADER_WORDS] = {};
  std::vector<Block> blocks;
};

#endif
