#ifndef FILESTORE_SEGY_SEGYHALCYONINSTANCEMAPPER_H
#define FILESTORE_SEGY_SEGYHALCYONINSTANCEMAPPER_H

// SegyHalcyonInstanceMapper: instance numbers of a blocked SEG-Y file (tag
// "dsegy") to file byte spans. After the 3600 bytes of file headers the
// file holds blocks of a 2048-byte block header and a fixed number of
// traces; instance i lies in block (i - 1) / tracesPerBlock at place
// (i - 1) % tracesPerBlock. A run of consecutive instances inside one block
// is one span of the file, read at once.

#include <vector>

#include "filestore/segy/SegyKernels.h"
#include "foundation/vInstanceMapper.h"

class SegyHalcyonInstanceMapper : public vInstanceMapper<long long> {
 public:
  // count traces from the byte offset (0-based) of the first to that of the
  // last.
  struct Span {
    unsigned int count;
    long long firstOffset;
    long long lastOffset;
  };

  SegyHalcyonInstanceMapper();
  ~SegyHalcyonInstanceMapper() override;

  // The layout of the file's blocks (SegyKernels::countBlockedTraces).
  void setLayout(SegyKernels::BlockLayout const& layout) { m_layout = layout; }
  SegyKernels::BlockLayout const& getLayout() const { return m_layout; }

  // The spans of the ranges, range after range. Fatal without a trace
  // length: "Record byte length is not set, object not properly
  // initialised!".
  void doConvert(RangeList const& ranges, std::vector<Span>& spans) const;

  // The byte offset of each instance's trace.
  std::vector<long long> convert(unsigned int first, unsigned int last) override;
  std::vector<long long> convert(std::vector<unsigned int> const& instances) override;

 private:
  void myCheck() const;

  SegyKernels::BlockLayout m_layout;
};

#endif
