#include "filestore/segd/SegdGeneralHeader.h"

#include <cstring>

#include "filestore/segd/SegdKernels.h"
#include "foundation/Message.h"

using SegdKernels::bcd;

SegdGeneralHeader::SegdGeneralHeader(unsigned char* block)
    : m_block(block),
      m_formatCode(0),
      m_headerSize(0),
      m_traceLength(0),
      m_sampleRate(0.0),
      m_haveFormatCode(false),
      m_haveHeaderSize(false),
      m_haveTraceLength(false),
      m_haveSampleRate(false) {
  if (m_block == nullptr) m_block = new unsigned char[LENGTH]();
}

SegdGeneralHeader::SegdGeneralHeader(unsigned char const* block)
    : SegdGeneralHeader(static_cast<unsigned char*>(nullptr)) {
  std::memcpy(m_block, block, LENGTH);
}

SegdGeneralHeader::~SegdGeneralHeader() { delete[] m_block; }

int SegdGeneralHeader::getFormatCode() const {
  if (!m_haveFormatCode) {
    m_formatCode = static_cast<int>(bcd(m_block + 2, 2));
    m_haveFormatCode = true;
  }
  return m_formatCode;
}

int SegdGeneralHeader::getHeaderSize() const {
  if (!m_haveHeaderSize) {
    char const* const label = "SegdGeneralHeader::getHeaderSize";
    int const additional = m_block[11] >> 4;
    int const extended = bcd(m_block[30]);
    int const external = bcd(m_block[31]);
    // A count of 255 would send the reader to the second general header,
    // which must then be there.
    if (extended == 255 && additional == 0)
      Message::fatal(label, 0,
                     "Header format mismatch ... been told to use the number of extended headers in the 2nd general "
                     "header but we don't have one!");
    if (external == 255 && additional == 0)
      Message::fatal(label, 0,
                     "Header format mismatch ... been told to use the number of external headers in the 2nd general "
                     "header but we don't have one!");
    int const blocks =
        (bcd(m_block[28]) + bcd(m_block[29])) * bcd(m_block[27]) + extended + external + additional;
    m_headerSize = blocks * LENGTH + LENGTH;
    m_haveHeaderSize = true;
  }
  return m_headerSize;
}

int SegdGeneralHeader::getTraceLength() const {
  if (!m_haveTraceLength) {
    float const tenths = static_cast<float>(bcd(m_block[26]) + (m_block[25] & 0x0F) * 100);
    m_traceLength = static_cast<int>(tenths / 10.0f * 0.512f * 1000.0f);
    m_haveTraceLength = true;
  }
  return m_traceLength;
}

double SegdGeneralHeader::getSampleRate() const {
  if (!m_haveSampleRate) {
    static double const kRates[8] = {0.0625, 0.125, 0.25, 0.5, 1.0, 2.0, 4.0, 8.0};
    m_sampleRate = 0.0;
    for (int bit = 0; bit < 8; ++bit)
      if (m_block[22] & (1u << bit)) {
        m_sampleRate = kRates[bit];
        break;
      }
    m_haveSampleRate = true;
  }
  return m_sampleRate;
}
