#include "filestore/segy/SegyBinaryHeader.h"

#include <cstring>

#include "filestore/segy/SegyKernels.h"
#include "foundation/Message.h"

SegyBinaryHeader::SegyBinaryHeader()
    : m_block(new char[LENGTH]()), m_owned(true), m_checked(false), m_swapped(false) {}

SegyBinaryHeader::SegyBinaryHeader(char* block)
    : m_block(block), m_owned(block == nullptr), m_checked(false), m_swapped(false) {
  if (m_owned) m_block = new char[LENGTH]();
}

SegyBinaryHeader::SegyBinaryHeader(char const* block)
    : m_block(new char[LENGTH]), m_owned(true), m_checked(false), m_swapped(false) {
  std::memcpy(m_block, block, LENGTH);
}

SegyBinaryHeader::~SegyBinaryHeader() {
  if (m_owned) delete[] m_block;
}

uint16_t SegyBinaryHeader::getFormatCode() const {
  uint16_t const code = static_cast<uint16_t>(my16(SegyKernels::FORMAT_CODE_OFFSET));
  if (code != 1 && code != 5 && code != 6 && code != 8)
    Message::fatal("SegyBinaryHeader::getFormatCode", 0, "Unexpected format code %d", static_cast<int>(code));
  return code;
}

bool SegyBinaryHeader::isByteSwapped() const {
  myCheckByteOrder();
  return m_swapped;
}

void SegyBinaryHeader::myCheckByteOrder() const {
  if (m_checked) return;
  m_checked = true;
  if (SegyKernels::isOtherByteOrder(m_block)) {
    SegyKernels::swapBinaryHeader(m_block);
    m_swapped = true;
  }
}

int16_t SegyBinaryHeader::my16(int offset) const {
  myCheckByteOrder();
  return SegyKernels::readInt16(m_block + offset);
}

int32_t SegyBinaryHeader::my32(int offset) const {
  myCheckByteOrder();
  return SegyKernels::readInt32(m_block + offset);
}
