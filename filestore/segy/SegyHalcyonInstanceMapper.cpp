#include "filestore/segy/SegyHalcyonInstanceMapper.h"

#include "foundation/Message.h"

SegyHalcyonInstanceMapper::SegyHalcyonInstanceMapper() {
  m_layout.tracesPerBlock = 0;
  m_layout.traceLength = 0;
  m_layout.blockLength = 0;
}

SegyHalcyonInstanceMapper::~SegyHalcyonInstanceMapper() {}

void SegyHalcyonInstanceMapper::myCheck() const {
  if (m_layout.traceLength <= 0 || m_layout.tracesPerBlock == 0)
    Message::fatal("SegyHalcyonInstanceMapper::doConvert", 0,
                   "Record byte length is not set, object not properly initialised!");
}

void SegyHalcyonInstanceMapper::doConvert(RangeList const& ranges, std::vector<Span>& spans) const {
  myCheck();
  for (auto const& range : ranges) {
    unsigned int instance = range.first;
    while (instance <= range.second && instance != 0) {
      unsigned int const place = (instance - 1) % m_layout.tracesPerBlock;
      unsigned int const leftInBlock = m_layout.tracesPerBlock - place;
      unsigned int const leftInRange = range.second - instance + 1;
      unsigned int const count = leftInBlock < leftInRange ? leftInBlock : leftInRange;
      Span span;
      span.count = count;
      span.firstOffset = SegyKernels::blockedTraceOffset(m_layout, instance);
      span.lastOffset = SegyKernels::blockedTraceOffset(m_layout, instance + count - 1);
      spans.push_back(span);
      if (range.second - instance < count) break;
      instance += count;
    }
  }
}

std::vector<long long> SegyHalcyonInstanceMapper::convert(unsigned int first, unsigned int last) {
  myCheck();
  std::vector<long long> offsets;
  for (unsigned int i = first; i >= first && i <= last && i != 0; ++i) {
    offsets.push_back(SegyKernels::blockedTraceOffset(m_layout, i));
    if (i == last) break;
  }
  return offsets;
}

std::vector<long long> SegyHalcyonInstanceMapper::convert(std::vector<unsigned int> const& instances) {
  myCheck();
  std::vector<long long> offsets;
  offsets.reserve(instances.size());
  for (unsigned int i : instances) offsets.push_back(i == 0 ? -1 : SegyKernels::blockedTraceOffset(m_layout, i));
  return offsets;
}
