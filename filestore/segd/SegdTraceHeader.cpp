// SegdDiskStore::TraceHeader: on its own, so that the header parsers can be
// linked without the store.

#include "filestore/segd/SegdDiskStore.h"
#include "filestore/segd/SegdKernels.h"
#include "foundation/Message.h"

void SegdDiskStore::TraceHeader::setHeader(unsigned char const* block) {
  char const* const label = "SegdDiskStore::TraceHeader::setHeader";
  if (block == nullptr) Message::fatal(label, 0, "Invalid pointer to header block supplied!");
  if (block[9] != 0) Message::fatal(label, 0, "Extended trace headers is not supported!");
  m_block = block;
}

unsigned char const* SegdDiskStore::TraceHeader::myBlock() const {
  if (m_block == nullptr)
    Message::fatal("SegdDiskStore::TraceHeader::getHeaderValue", 0, "Invalid pointer to header block supplied!");
  return m_block;
}

int SegdDiskStore::TraceHeader::getHeaderValue(int which) const {
  unsigned char const* const b = myBlock();
  switch (which) {
    case FILE_NUMBER:
      if (b[0] == 0xFF && b[1] == 0xFF) return static_cast<int>(SegdKernels::bcd(b + 17, 3));
      return static_cast<int>(SegdKernels::bcd(b, 2));
    case SCAN_TYPE:
      return SegdKernels::bcd(b[2]);
    case CHANNEL_SET:
      if (b[3] == 0xFF) return static_cast<int>(SegdKernels::bcd(b + 15, 2));
      return SegdKernels::bcd(b[3]);
    case TRACE_NUMBER:
      return static_cast<int>(SegdKernels::bcd(b + 4, 2));
    case TIMING_WORD:
      return (b[6] << 16) | (b[7] << 8) | b[8];
    case EXTENSIONS:
      return b[9];
    case SAMPLE_SKEW:
      return b[10];
    default:
      Message::fatal("SegdDiskStore::TraceHeader::getHeaderValue", 0, "Unsupported header value: %d!", which);
  }
}

bool SegdDiskStore::TraceHeader::isMuted() const { return myBlock()[11] == 2; }
