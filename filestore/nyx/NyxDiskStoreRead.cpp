// Reads of NyxDiskStore: trace records from a "cst" or "dat" file or the
// tapes, values out of them.

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "filestore/nyx/NyxDiskStore.h"
#include "filestore/nyx/NyxFS.h"
#include "foundation/Message.h"
#include "foundation/vUtl.h"
#include "syslayer/TapeSetReader.h"

namespace {
char const* const kReadLabel = "NyxDiskStore::read";
}  // namespace

long long NyxDiskStore::myOffsetOf(unsigned int instance) const {
  if (!m_index.empty()) return m_index[instance - 1];
  if (m_record.fileFormat == DAT) return m_dat.offsetOf(instance);
  return static_cast<long long>(instance - 1) * m_record.extRecordLengthB;
}

void NyxDiskStore::myReadRecord(unsigned int instance, unsigned char* record) const {
  if (m_record.fileFormat == TAPES) {
    myReadTapeRecord(instance, record);
  } else {
    long long const offset = myOffsetOf(instance);
    long long const bytes = m_record.extRecordLengthB;
    long long got = 0;
    int status = 1;
    char const* text = "";
    vString serviceText;
    if (m_record.fileFormat == DAT) {
      if (NYXFSlseek(m_datFd, offset, SEEK_SET) == offset) {
        while (got < bytes) {
          long const n = NYXFSread(m_datFd, record + got, static_cast<unsigned long>(bytes - got));
          if (n <= 0) break;
          got += n;
        }
      }
      if (got != bytes) {
        status = NYXFSerrno();
        text = NYXFSerror();
      }
    } else {
      got = m_file.read(offset + 1, record, bytes);
      bool const failed = !m_file.isGood();
      status = m_file.getStatus();
      m_file.clear();
      // The service saying the read failed is another fault than a file
      // that ends early; each has its own words.
      if (failed)
        Message::fatal(kReadLabel, 0, "Failed to read the instance %s from the file '%s' for instance %d ... status %d!",
                       std::to_string(instance).c_str(), m_fileName.c_str(), static_cast<int>(instance), status);
      if (got != bytes) {
        serviceText = vString("short read");
        text = serviceText.c_str();
      }
    }
    if (got != bytes)
      Message::fatal(kReadLabel, 0, "Failed to read %d bytes from the file '%s' for instance %d, got %d bytes ... status %d:%s!",
                     static_cast<int>(bytes), m_fileName.c_str(), static_cast<int>(instance), static_cast<int>(got),
                     status, text);
  }
  if (m_swapped) NyxTrace::swapWords(record, NyxTrace::HEADER_WORDS);
}

void NyxDiskStore::myReadTapeRecord(unsigned int instance, unsigned char* record) const {
  if (m_tapeEnded) Message::fatal(kReadLabel, 0, "Requesting data after hitting the end-of-tape!");
  if (m_tapeNext == 1 && instance != 1)
    Message::fatal(kReadLabel, 0, "The first read must be from instance 1 ... not %d!", static_cast<int>(instance));
  if (instance != m_tapeNext)
    Message::fatal(kReadLabel, 0, "Only sequential reading is supported by tapes (%d != %d)",
                   static_cast<int>(instance), static_cast<int>(m_tapeNext));
  unsigned const bytes = static_cast<unsigned>(m_record.extRecordLengthB);
  unsigned done = 0;
  if (!m_tapeFirst.empty()) {
    std::memcpy(record, m_tapeFirst.data(), m_tapeFirst.size());
    done = static_cast<unsigned>(m_tapeFirst.size());
    m_tapeFirst.clear();
  }
  if (m_tapes->read(record + done, bytes - done) != bytes - done) {
    m_tapeEnded = true;
    Message::fatal(kReadLabel, 0, "Requesting data after hitting the end-of-tape!");
  }
  ++m_tapeNext;
}

void NyxDiskStore::myLoadRange(unsigned int first, unsigned int last) const {
  if (!m_cache.empty() && first == m_cacheFirst && last == m_cacheLast) return;
  std::size_t const bytes = myStride();
  m_cache.clear();
  m_cacheFirst = m_cacheLast = 0;
  std::vector<unsigned char> records((last - first + 1) * bytes);
  for (unsigned int i = first; i <= last; ++i) myReadRecord(i, records.data() + (i - first) * bytes);
  m_cache.swap(records);
  m_cacheFirst = first;
  m_cacheLast = last;
}

void NyxDiskStore::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  myCheckOpen(kReadLabel);
  // A tape set's count is not known before its end, so a last of 0 there
  // cannot mean the last instance.
  if (m_record.fileFormat == TAPES && last == 0 && first >= 1)
    Message::fatal(kReadLabel, 0, "first instance %lld must be <= last instance %lld.", static_cast<long long>(first),
                   0LL);
  last = myCheckRange(kReadLabel, first, last);
  Attribute definition;
  int word = 0;
  if (!myDefinition(attribute.getName(), definition, word))
    Message::fatal(kReadLabel, 0, "Unsupported attribute '%s'!", attribute.getName().c_str());
  myLoadRange(first, last);
  std::vector<unsigned char const*> rows;
  for (unsigned int i = first; i <= last; ++i)
    rows.push_back(m_cache.data() + static_cast<std::size_t>(i - first) * myStride());
  myExtract(attribute, rows);
}

void NyxDiskStore::read(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  myCheckOpen(kReadLabel);
  if (m_record.fileFormat == TAPES) Message::fatal(kReadLabel, 0, "Tape reading via instance list is not supported!");
  myCheckList(kReadLabel, attribute.getName(), instances);
  Attribute definition;
  int word = 0;
  if (!myDefinition(attribute.getName(), definition, word))
    Message::fatal(kReadLabel, 0, "Unsupported attribute '%s'!", attribute.getName().c_str());
  std::size_t const bytes = myStride();
  std::vector<unsigned char> records(instances.size() * bytes);
  std::vector<unsigned char const*> rows;
  for (std::size_t k = 0; k < instances.size(); ++k) {
    myReadRecord(instances[k], records.data() + k * bytes);
    rows.push_back(records.data() + k * bytes);
  }
  myExtract(attribute, rows);
}

void NyxDiskStore::myExtract(Attribute& attribute, std::vector<unsigned char const*> const& records) const {
  Attribute definition;
  int word = 0;
  myDefinition(attribute.getName(), definition, word);
  DataType const wanted = attribute.getDataType() == vNOTYPE ? definition.getDataType() : attribute.getDataType();
  int const length = definition.getLength();
  Attribute values(definition);
  unsigned int const count = static_cast<unsigned int>(records.size());
  values.resize(count);
  std::size_t const headerBytes = NyxTrace::HEADER_BYTES;
  for (unsigned int k = 0; k < count; ++k) {
    int32_t header[NyxTrace::HEADER_WORDS];
    std::memcpy(header, records[k], headerBytes);
    if (word >= 0) {
      std::memcpy(values.getPointer(k + 1), &header[word], 4);
      continue;
    }
    if (!NyxTrace::decodeSamples(header, records[k] + headerBytes, values.getFloat32Pointer(k + 1), length,
                                 m_record.dataFormat, m_swapped))
      Message::fatal("NyxDiskStore::myDecodeDatData", 0, "Unhandled data format %d detected!", m_record.dataFormat);
  }
  if (wanted == definition.getDataType()) {
    attribute = std::move(values);
    return;
  }
  attribute = Attribute(definition.getName(), attribute.getClass(), wanted, length, definition.getSampleRate(),
                        definition.getFirstTime());
  attribute.resize(count);
  if (count > 0)
    vUtl::copyConvert(values.getPointer(1), definition.getDataType(), attribute.getPointer(1), wanted,
                      static_cast<std::size_t>(count) * static_cast<std::size_t>(length));
}
