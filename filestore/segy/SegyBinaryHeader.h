#ifndef FILESTORE_SEGY_SEGYBINARYHEADER_H
#define FILESTORE_SEGY_SEGYBINARYHEADER_H

// SegyBinaryHeader: the 400-byte binary header of a SEG-Y file. Built on a
// caller's block it works in that block (and puts its numbers in this
// machine's order there); built on a null block or from a const block it
// owns a block of its own.
//
// Every accessor first runs a one-time check of byte order: a header whose
// format code reads above 125 in this machine's order is in the other
// order, and its numbers are swapped in place once (SegyKernels). So a
// big-endian file read on x86 is swapped, and a header in this machine's
// order isn't.

#include <cstdint>

class SegyBinaryHeader {
 public:
  static constexpr int LENGTH = 400;

  // A zeroed block of its own.
  SegyBinaryHeader();
  // Works in block; a null block gets a zeroed block of its own.
  explicit SegyBinaryHeader(char* block);
  // A copy of the 400 bytes at block.
  explicit SegyBinaryHeader(char const* block);
  ~SegyBinaryHeader();
  SegyBinaryHeader(SegyBinaryHeader const&) = delete;
  SegyBinaryHeader& operator=(SegyBinaryHeader const&) = delete;

  int32_t getJobIdentNumber() const { return my32(0); }
  int32_t getLineNumber() const { return my32(4); }
  int32_t getReelNumber() const { return my32(8); }
  int16_t getNumberDataTracesPerRecord() const { return my16(12); }
  int16_t getNumberAuxiliaryTracesPerRecord() const { return my16(14); }
  // Microseconds.
  uint16_t getSampleInterval() const { return static_cast<uint16_t>(my16(16)); }
  int16_t getSampleIntervalInField() const { return my16(18); }
  int16_t getNumberSamplePerTrace() const { return my16(20); }
  int16_t getNumberSamplePerTraceInField() const { return my16(22); }
  // 1, 5, 6 or 8; any other code is fatal: "Unexpected format code" and the
  // code, from "SegyBinaryHeader::getFormatCode".
  uint16_t getFormatCode() const;
  int16_t getCdpFold() const { return my16(26); }
  int16_t getTraceSortingCode() const { return my16(28); }
  int16_t getVerticalSumCode() const { return my16(30); }
  int16_t getSweepFrequencyStart() const { return my16(32); }
  int16_t getSweepFrequencyEnd() const { return my16(34); }
  int16_t getSweepLength() const { return my16(36); }
  int16_t getSweepTypeCode() const { return my16(38); }
  int16_t getSweepTraceNumber() const { return my16(40); }
  int16_t getSweepTaperlengthStart() const { return my16(42); }
  int16_t getSweepTaperlengthEnd() const { return my16(44); }
  int16_t getSweepTaperType() const { return my16(46); }
  int16_t getCorrelatedDataTraces() const { return my16(48); }
  int16_t getBinaryGainRecovered() const { return my16(50); }
  int16_t getAmplitudeRecoveryMethod() const { return my16(52); }
  int16_t getMeasurementSystem() const { return my16(54); }
  int16_t getImpulseSignalPolarity() const { return my16(56); }
  int16_t getVibratoryPolarityCode() const { return my16(58); }

  // Whether the header was found in the other byte order (after the check).
  bool isByteSwapped() const;
  // The block, in this machine's order once any accessor ran.
  char const* getBlock() const { return m_block; }

 private:
  void myCheckByteOrder() const;
  int16_t my16(int offset) const;
  int32_t my32(int offset) const;

  char* m_block;
  bool m_owned;
  mutable bool m_checked;
  mutable bool m_swapped;
};

#endif
