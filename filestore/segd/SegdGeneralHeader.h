#ifndef FILESTORE_SEGD_SEGDGENERALHEADER_H
#define FILESTORE_SEGD_SEGDGENERALHEADER_H

// SegdGeneralHeader: the first 32-byte general header block of a SEG-D
// record, owned. Its fields are binary-coded decimal; each value is worked
// out at its first use and kept. Byte offsets below count from 0.
//
//   2-3   format code (4 digits)
//   11    high nibble: additional general header blocks
//   22    base scan interval: a power of two in 1/16 ms
//   25-26 low nibble of 25 and 26: record length, in tenths of 0.512 s
//   27    channel sets per scan type
//   28    scan types
//   29    sample skew blocks
//   30    extended header blocks
//   31    external header blocks

#include "foundation/vHandle.h"

class SegdGeneralHeader {
 public:
  static constexpr int LENGTH = 32;

  // Uses the block given, or a zeroed block of its own when it is null;
  // either way the header owns the block from then on (new[] of LENGTH).
  explicit SegdGeneralHeader(unsigned char* block);
  // A copy of the 32 bytes.
  explicit SegdGeneralHeader(unsigned char const* block);
  virtual ~SegdGeneralHeader();
  SegdGeneralHeader(SegdGeneralHeader const&) = delete;
  SegdGeneralHeader& operator=(SegdGeneralHeader const&) = delete;

  unsigned char const* getBlock() const { return m_block; }

  int getFormatCode() const;
  // The bytes before the first trace: this block, the additional general
  // blocks, the channel set and skew blocks of every scan type, the
  // extended and external blocks.
  int getHeaderSize() const;
  // The record length in milliseconds, truncated, taken as the number of
  // samples of a trace.
  int getTraceLength() const;
  // The base scan interval in milliseconds; 0 when no bit is set.
  double getSampleRate() const;

 private:
  unsigned char* m_block;
  mutable int m_formatCode;
  mutable int m_headerSize;
  mutable int m_traceLength;
  mutable double m_sampleRate;
  mutable bool m_haveFormatCode;
  mutable bool m_haveHeaderSize;
  mutable bool m_haveTraceLength;
  mutable bool m_haveSampleRate;
};

#endif
