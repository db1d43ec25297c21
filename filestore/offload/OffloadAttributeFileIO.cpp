// Reads and writes of OffloadAttributeFile: records into the window,
// values out of it.

#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "filestore/disk/AttributeSetIndexingTable.h"
#include "filestore/offload/OffloadAttributeFile.h"
#include "filestore/offload/OffloadCompression.h"
#include "foundation/Message.h"
#include "foundation/MessageHandling.h"
#include "foundation/UtlExcept.h"
#include "geometry/BinPos.h"
#include "foundation/vUtl.h"

namespace {
unsigned int const kWindow = 4096;

// The window length that a packed record's first word gives: 0 for one
// window, and never beyond the trace, however damaged the word.
int packedWindow(float lead, int n) {
  if (!(lead < 0.0f)) return 0;
  double const window = -static_cast<double>(lead);
  return window >= n ? 0 : std::max(1, static_cast<int>(window));
}
}  // namespace

void OffloadAttributeFile::myReadRecords(long long record, unsigned int count, char* target) {
  // count 0: as many bytes as the target's block needs, read by the caller's
  // size below.
  long long bytes = static_cast<long long>(count) * 4LL * m_header[7];
  if (count == 0) {
    if (record == m_header[31])
      bytes = 4LL * m_header[5];
    else
      bytes = 4LL * m_header[9] * m_header[10];
  }
  if (bytes == 0) return;
  // A disk may hand the bytes over in pieces; partial reads of whole
  // records read on until they are whole.
  long long const recordBytes = 4LL * m_header[7];
  long long const lastRecord = record + (bytes - 1) / recordBytes;
  long long got = 0;
  if (bytes % recordBytes == 0) {
    got = m_file.read(record, target, bytes);
    if (got >= 0 && got < bytes) {
      // A short read ends at the end of the data, or wherever the disk
      // stopped: the rest, from the first record not whole, by a partial
      // read that reads on, and fails where the data really end.
      m_file.clear();
      long long const whole = got / recordBytes;
      long long const more = m_file.partialRead(0, static_cast<int>(recordBytes), record + whole, lastRecord,
                                                target + whole * recordBytes);
      got = whole * recordBytes + more;
    }
  } else {
    // Maps and tables end inside their last record.
    std::vector<char> whole(static_cast<std::size_t>((lastRecord - record + 1) * recordBytes));
    got = m_file.partialRead(0, static_cast<int>(recordBytes), record, lastRecord, whole.data());
    if (got == static_cast<long long>(whole.size())) {
      std::memcpy(target, whole.data(), static_cast<std::size_t>(bytes));
      got = bytes;
    }
  }
  if (got != bytes || !m_file.isGood()) {
    int const status = m_file.getStatus();
    m_file.clear();
    Message::fatal("OffloadAttributeFile::myReadRecords", 0,
                   "Failed to do a partial read against the datafile (fileOffset=%d, nbytes=%d, frecord=%d, "
                   "lrecord=%d, status=%d)!",
                   static_cast<int>((record - 1) * recordBytes), static_cast<int>(bytes), static_cast<int>(record),
                   static_cast<int>(lastRecord), status);
  }
}

void OffloadAttributeFile::myCheckRange(unsigned int first, unsigned int last) {
  char const* const label = "OffloadAttributeFile::readRange";
  long long const n = getNInstances();
  if (first < 1) Message::fatal(label, 0, "First instance must be >0, yours was %lld", static_cast<long long>(first));
  if (first > last)
    Message::fatal(label, 0, "First instance %lld must be <= last instance %lld.", static_cast<long long>(first),
                   static_cast<long long>(last));
  if (last > n)
    Message::fatal(label, 0, "Last instance %lld must be <= number of instances %lld.", static_cast<long long>(last),
                   n);
}

int OffloadAttributeFile::myTraceSamples() const { return m_header[2] - m_header[18]; }

void OffloadAttributeFile::myShape(Attribute& attribute, Attribute const& definition) {
  if (attribute.getLength() != definition.getLength() || attribute.getDataType() == vNOTYPE)
    attribute = Attribute(definition.getName(), attribute.getClass(),
                          attribute.getDataType() == vNOTYPE ? definition.getDataType() : attribute.getDataType(),
                          definition.getLength(), definition.getSampleRate(), definition.getFirstTime());
}

void OffloadAttributeFile::readRange(Attribute& attribute, unsigned int first, unsigned int last) {
  myOpenFile();
  if (last == 0) last = getNInstances();
  myCheckRange(first, last);
  myShape(attribute, myDefinition("OffloadAttributeFile::readRange", attribute.getName()));
  if (getOffset(attribute) < 0) {
    myGenerate(attribute, first, last);
    return;
  }
  unsigned int liveFirst = first, liveLast = last;
  while (liveFirst <= last && m_fold[liveFirst - 1] == 0) ++liveFirst;
  while (liveLast >= liveFirst && liveLast > 0 && m_fold[liveLast - 1] == 0) --liveLast;
  attribute.resize(last - first + 1);
  if (liveFirst > liveLast) {
    myZapDead(attribute, first, last, last + 1, last);
    return;
  }
  if (m_buffer.empty() || liveFirst < m_bufferFirst || liveLast > m_bufferLast) {
    // A window reaches on past short requests, so that reading trace by
    // trace touches the file once per window.
    unsigned int windowLast = std::max(liveLast, std::min(getNInstances(), liveFirst + kWindow - 1));
    while (windowLast > liveLast && m_fold[windowLast - 1] == 0) --windowLast;
    myLoadRecords(liveFirst, windowLast);
  }
  myExtract(attribute, first, last);
  myZapDead(attribute, first, last, liveFirst, liveLast);
}

void OffloadAttributeFile::extractRange(Attribute& attribute, unsigned int first, unsigned int last) {
  myOpenFile();
  myCheckRange(first, last);
  myShape(attribute, myDefinition("OffloadAttributeFile::extractRange", attribute.getName()));
  if (getOffset(attribute) < 0) {
    myGenerate(attribute, first, last);
    return;
  }
  if (m_buffer.empty() || first < m_bufferFirst || last > m_bufferLast)
    Message::fatal("OffloadAttributeFile::extractRange", 0, "Instances %d to %d are not in the buffer.",
                   static_cast<int>(first), static_cast<int>(last));
  attribute.resize(last - first + 1);
  myExtract(attribute, first, last);
}

void OffloadAttributeFile::cacheRange(unsigned int first, unsigned int last) {
  myOpenFile();
  myCheckRange(first, last);
  myLoadRecords(first, last);
}

void OffloadAttributeFile::readList(Attribute& attribute, std::vector<unsigned int> const& instances) {
  Attribute const& definition = myDefinition("OffloadAttributeFile::readList", attribute.getName());
  DataType const type = attribute.getDataType() == vNOTYPE ? definition.getDataType() : attribute.getDataType();
  Attribute result(definition.getName(), attribute.getClass(), type, definition.getLength(), definition.getSampleRate(),
                   definition.getFirstTime());
  result.resize(static_cast<unsigned int>(instances.size()));
  std::size_t const bytes =
      static_cast<std::size_t>(result.getLength()) * static_cast<std::size_t>(result.getDataTypeSize());
  for (std::size_t k = 0; k < instances.size(); ++k) {
    Attribute one(definition.getName(), attribute.getClass(), type, definition.getLength(), definition.getSampleRate(),
                  definition.getFirstTime());
    readRange(one, instances[k], instances[k]);
    std::memcpy(result.getPointer(static_cast<unsigned int>(k + 1)), one.getPointer(1), bytes);
  }
  attribute = result;
  attribute.copyData(result);
}

void OffloadAttributeFile::readRangeScattered(Attribute& attribute, unsigned int first, unsigned int last,
                                              std::vector<unsigned int> const& positions) {
  char const* const label = "OffloadAttributeFile::readRangeScattered";
  unsigned int const n = getNInstances();
  for (unsigned int i : {first, last})
    if (i < 1 || i > n)
      Message::fatal(label, 0, "Scattered write to instance %d is outsize of the range 1:%d!", static_cast<int>(i),
                     static_cast<int>(n));
  myCheckRange(first, last);
  if (positions.size() != last - first + 1)
    Message::fatal(label, 0, "Scattered read of %d instances was given %d positions.",
                   static_cast<int>(last - first + 1), static_cast<int>(positions.size()));
  unsigned int largest = 0;
  for (unsigned int p : positions) largest = std::max(largest, p);
  Attribute values(attribute.getName(), attribute.getClass(), attribute.getDataType());
  readRange(values, first, last);
  if (attribute.getNInstances() == 0 || attribute.getLength() != values.getLength()) {
    if (attribute.getNInstances() != 0)
      Message::fatal(label, 0, "Attribute too small, contains %d instances but we need %d and it's not safe to resize!",
                     static_cast<int>(attribute.getNInstances()), static_cast<int>(largest));
    attribute = values;
    attribute.resize(largest);
  } else if (attribute.getNInstances() < largest) {
    Message::fatal(label, 0, "Attribute too small, contains %d instances but we need %d and it's not safe to resize!",
                   static_cast<int>(attribute.getNInstances()), static_cast<int>(largest));
  }
  std::size_t const bytes =
      static_cast<std::size_t>(values.getLength()) * static_cast<std::size_t>(values.getDataTypeSize());
  for (std::size_t k = 0; k < positions.size(); ++k) {
    if (positions[k] < 1)
      Message::fatal(label, 0, "Scattered write to position %d is outsize of the range 1:%d!",
                     static_cast<int>(positions[k]), static_cast<int>(attribute.getNInstances()));
    std::memcpy(attribute.getPointer(positions[k]), values.getPointer(static_cast<unsigned int>(k + 1)), bytes);
  }
}

void OffloadAttributeFile::readRangeScattered(std::vector<Attribute*> const& attributes, unsigned int first,
                                              unsigned int last, std::vector<unsigned int> const& positions) {
  // Every name is looked up before any is read, so a bad list leaves the
  // caller's attributes as they were.
  for (Attribute const* attribute : attributes)
    if (!hasAttribute(attribute->getName()))
      Message::fatal("OffloadAttributeFile::readRangeScattered", 0, "Attribute %s was not found in list.",
                     attribute->getName().c_str());
  for (Attribute* attribute : attributes) readRangeScattered(*attribute, first, last, positions);
}

void OffloadAttributeFile::myLoadRecords(unsigned int first, unsigned int last) {
  std::size_t const recordBytes = 4u * static_cast<std::size_t>(m_header[7]);
  std::size_t const size = static_cast<std::size_t>(last - first + 1) * recordBytes;
  // A rectangular window is read whole; a polygonal one has gaps for its
  // dead bins, which must read as zeros.
  if (m_mask.empty())
    m_buffer.resize(size);
  else
    m_buffer.assign(size, 0);
  m_bufferFirst = m_bufferLast = 0;
  if (m_mask.empty()) {
    myReadRecords(m_header[34] + static_cast<long long>(first) - 1, last - first + 1, m_buffer.data());
  } else {
    unsigned int k = first;
    while (k <= last) {
      if (m_fold[k - 1] == 0) {
        ++k;
        continue;
      }
      unsigned int end = k;
      while (end < last && m_fold[end] != 0 && m_mask[end] == m_mask[end - 1] + 1) ++end;
      myReadRecords(m_header[34] + static_cast<long long>(m_mask[k - 1]), end - k + 1,
                    m_buffer.data() + static_cast<std::size_t>(k - first) * recordBytes);
      k = end + 1;
    }
  }
  m_bufferFirst = first;
  m_bufferLast = last;
}

void OffloadAttributeFile::myExtract(Attribute& attribute, unsigned int first, unsigned int last) {
  std::size_t const recordBytes = 4u * static_cast<std::size_t>(m_header[7]);
  vUCString const name = attribute.getName();
  DataType const wanted = attribute.getDataType();
  int const length = attribute.getLength();
  int const stored = myTraceSamples();
  int const mute = restoreMute ? m_header[18] : 0;
  bool const compressed = m_header[17] != 0;
  std::vector<float> samples(static_cast<std::size_t>(std::max(stored, 1)));
  std::vector<char> scratch(recordBytes);
  int const offset = getOffset(attribute);
  for (unsigned int i = first; i <= last; ++i) {
    void* out = attribute.getPointer(i - first + 1);
    if (i < m_bufferFirst || i > m_bufferLast || m_fold[i - 1] == 0) continue;  // zeroed by myZapDead
    char const* record = m_buffer.data() + static_cast<std::size_t>(i - m_bufferFirst) * recordBytes;
    if (name == vUCString("TRACE") && !m_swap && wanted == vFLOAT32 && mute == 0) {
      // The common case straight into the caller's block.
      float* target = static_cast<float*>(out);
      if (!compressed) {
        std::memcpy(target, record, 4 * static_cast<std::size_t>(stored));
        continue;
      }
      float lead;
      std::memcpy(&lead, record, 4);
      if (compression_moffld_int16Tlen(stored, packedWindow(lead, stored)) > m_header[8])
        Message::fatal("OffloadAttributeFile::myExtract", 0, "Compressed trace %d of %s is longer than its record.",
                       static_cast<int>(i), m_fileName.c_str());
      compression_moffld_int16(stored, target, m_fscp, const_cast<char*>(record), 0, 0);
      continue;
    }
    if (name == vUCString("TRACE")) {
      std::fill(samples.begin(), samples.end(), 0.0f);
      if (compressed) {
        std::size_t const words = static_cast<std::size_t>(m_header[8]);
        std::memcpy(scratch.data(), record, 4 * words);
        if (m_swap) vUtl::swapBytes32(scratch.data(), 1);
        float lead;
        std::memcpy(&lead, scratch.data(), 4);
        int const window = packedWindow(lead, stored);
        int const needed = compression_moffld_int16Tlen(stored, window);
        if (needed > m_header[8])
          Message::fatal("OffloadAttributeFile::myExtract", 0, "Compressed trace %d of %s is longer than its record.",
                         static_cast<int>(i), m_fileName.c_str());
        if (m_swap) {
          int const nScalers = window > 0 ? (stored - 1) / window + 1 : 0;
          vUtl::swapBytes32(scratch.data() + 4, static_cast<std::size_t>(nScalers));
          vUtl::swapBytes16(scratch.data() + 4 * (nScalers + 1), 2 * (words - 1 - static_cast<std::size_t>(nScalers)));
        }
        compression_moffld_int16(stored, samples.data(), m_fscp, scratch.data(), 0, 0);
      } else {
        std::memcpy(samples.data(), record, 4 * static_cast<std::size_t>(stored));
        if (m_swap) vUtl::swapBytes32(samples.data(), static_cast<std::size_t>(stored));
      }
      char* target = static_cast<char*>(out);
      int const size = vUtl::dataTypeSize(wanted);
      std::memset(target, 0, static_cast<std::size_t>(mute) * static_cast<std::size_t>(size));
      vUtl::copyConvert(samples.data(), vFLOAT32, target + static_cast<std::size_t>(mute) * size, wanted,
                        static_cast<std::size_t>(stored));
      continue;
    }
    if (name == vUCString("TRACE.I16")) {
      std::vector<int16_t> shorts(static_cast<std::size_t>(stored) + 1);
      std::memcpy(shorts.data(), record + 4, 2 * static_cast<std::size_t>(stored));
      if (m_swap) vUtl::swapBytes16(shorts.data(), static_cast<std::size_t>(stored));
      if (m_fscp)
        for (int s = 0; s + 1 < stored; s += 2) std::swap(shorts[s], shorts[s + 1]);
      vUtl::copyConvert(shorts.data(), vINT16, out, wanted, static_cast<std::size_t>(stored));
      continue;
    }
    std::vector<int> words(static_cast<std::size_t>(length));
    std::memcpy(words.data(), record + offset, 4 * static_cast<std::size_t>(length));
    if (m_swap) vUtl::swapBytes32(words.data(), words.size());
    DataType const type = name == vUCString("TRACE.I16.SCALER") ? vFLOAT32 : myDefinition("", name).getDataType();
    vUtl::copyConvert(words.data(), type, out, wanted, static_cast<std::size_t>(length));
  }
}

void OffloadAttributeFile::myZapDead(Attribute& attribute, unsigned int first, unsigned int last,
                                     unsigned int liveFirst, unsigned int liveLast) {
  std::size_t const bytes =
      static_cast<std::size_t>(attribute.getLength()) * static_cast<std::size_t>(attribute.getDataTypeSize());
  // A dead bin has no trace, so none of its values is read.
  for (unsigned int i = first; i <= last; ++i) {
    bool const outside = i < liveFirst || i > liveLast;
    if (outside || m_fold[i - 1] == 0) std::memset(attribute.getPointer(i - first + 1), 0, bytes);
  }
}

void OffloadAttributeFile::myGenerate(Attribute& attribute, unsigned int first, unsigned int last) {
  vUCString const name = attribute.getName();
  attribute.resize(last - first + 1);
  std::vector<double> values(last - first + 1);
  for (unsigned int i = first; i <= last; ++i) {
    int const index = static_cast<int>(i);
    double value = 0;
    if (name == vUCString("CMP")) {
      if (m_cmpTested == 0) myTestGenerateCmp();
      value = m_cmpTested > 0 ? m_grid.convertCMPIndexToCMP(index) : index;
    }
    else if (name == vUCString("INLINE"))
      value = m_grid.convertCMPIndexToInline(index);
    else if (name == vUCString("CROSSLINE"))
      value = m_grid.convertCMPIndexToCrossline(index);
    else if (name == vUCString("CMP.FOLD"))
      value = m_fold[static_cast<std::size_t>(index - 1)];
    else if (name == vUCString("OFFSET.BIN"))
      value = m_offsetBin;
    values[i - first] = value;
  }
  vUtl::copyConvert(values.data(), vFLOAT64, attribute.getPointer(1), attribute.getDataType(), values.size());
}


void OffloadAttributeFile::myTestGenerateCmp() {
  int const* h = m_header.data();
  bool ok = false;
  try {
    MessageHandling quiet;
    long long const bins = static_cast<long long>(h[9]) * h[10];
    ok = m_grid.convertBinToCMP(BinPos(h[12], h[11])) == m_grid.convertCMPIndexToCMP(1) &&
         m_grid.convertBinToCMP(BinPos(h[20], h[19])) == m_grid.convertCMPIndexToCMP(static_cast<int>(bins));
  } catch (UtlExcept const&) {
    ok = false;
  }
  m_cmpTested = ok ? 1 : -1;
  if (!ok) {
    Message::info("OffloadAttributeFile::myTestGenerateCmp", 0, "Cannot calculate the CMP in the file: %s",
                  m_fileName.c_str());
    Message::info("OffloadAttributeFile::myTestGenerateCmp", 0,
                  "Will assume the first CMP is 1 with an increment of 1.");
  }
}
