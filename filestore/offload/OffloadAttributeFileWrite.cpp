// The writing side of OffloadAttributeFile: new files, updates of existing
// ones, and the relayout that adds attributes or inlines.

#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "attribute/RondoAttributeTranslator.h"
#include "attribute/RondoConversion.h"
#include "filestore/disk/AttributeSetIndexingTable.h"
#include "filestore/offload/OffloadAttributeFile.h"
#include "filestore/offload/OffloadCompression.h"
#include "foundation/Message.h"
#include "foundation/vUtl.h"

namespace {

// A table entry as the file holds it: kind, format code and length as words
// in the file's order, the name in 80 blanks-padded characters, each 4-byte
// word reversed for a file that went through a word-swapping copy.
void putEntry(int* entry, Attribute const& stored, bool swap, bool fscp) {
  entry[0] = stored.getDataType() == vINT32 ? 1 : 2;
  entry[1] = RondoConversion::dornToFT(stored.getDataType());
  entry[2] = stored.getLength();
  if (swap) vUtl::swapBytes32(entry, 3);
  char name[80];
  std::memset(name, ' ', sizeof name);
  std::memcpy(name, stored.getName().c_str(), std::min<std::size_t>(80, stored.getName().length()));
  if (fscp)
    for (int c = 0; c < 80; c += 4) {
      std::swap(name[c], name[c + 3]);
      std::swap(name[c + 1], name[c + 2]);
    }
  std::memcpy(entry + 3, name, sizeof name);
}

}  // namespace

void OffloadAttributeFile::create(vFilename const& name) {
  if (m_isOpen || m_created)
    Message::fatal("OffloadAttributeFile::create", 0, "Cannot add things to an existing file.%s", name.c_str());
  m_fileName = name;
  m_created = true;
}

Attribute OffloadAttributeFile::myTableForm(Attribute const& attribute) {
  Attribute const rondo = RondoAttributeTranslator::convertToRondo(attribute);
  DataType const t = rondo.getDataType();
  bool const integer = t == vINT8 || t == vINT16 || t == vINT32 || t == vINT64 || t == vUINT8 || t == vUINT16;
  DataType const type = integer ? vINT32 : vFLOAT32;
  return Attribute(rondo.getName(), "", type, std::max(1, attribute.getLength()));
}

void OffloadAttributeFile::addAttribute(Attribute const& attribute) {
  if (!m_created) {
    if (!m_update)
      Message::fatal("OffloadAttributeFile::addAttribute", 0, "Cannot add things to an existing file.%s",
                     m_fileName.c_str());
    myOpenFile();
    if (hasAttribute(attribute.getName()) || hasAttribute(myTableForm(attribute).getName()))
      Message::fatal("OffloadAttributeFile::addAttribute", 0, "Attribute '%s' already exists in file '%s'.",
                     attribute.getName().c_str(), m_fileName.c_str());
    myRelayout(&attribute, 0);
    return;
  }
  if (m_laidOut)
    Message::fatal("OffloadAttributeFile::addAttribute", 0,
                   "File %s cannot be extended once data has been written to it.", m_fileName.c_str());
  m_attributes.push_back(attribute);
}

void OffloadAttributeFile::addInstances(unsigned int count) {
  char const* const label = "OffloadAttributeFile::addInstances";
  if (m_created)
    Message::fatal(label, 0, "File %s cannot be extended once data has been written to it.", m_fileName.c_str());
  if (!m_update) Message::fatal(label, 0, "Cannot add things to an existing file.%s", m_fileName.c_str());
  myOpenFile();
  if (count == 0) return;
  if (count % static_cast<unsigned int>(m_header[9]) != 0)
    Message::fatal(label, 0, "Instances are added by whole inlines of %d crosslines to '%s', not %d.", m_header[9],
                   m_fileName.c_str(), static_cast<int>(count));
  myRelayout(nullptr, static_cast<int>(count / static_cast<unsigned int>(m_header[9])));
}

void OffloadAttributeFile::setGrid(CMPBasicGrid const& grid) { m_grid = grid; }

void OffloadAttributeFile::setCompression(CompressionType type) {
  if (type != NONE && type != INT16)
    Message::fatal("OffloadAttributeFile::setCompression", 0, "Unexpected CompressionType %d.", static_cast<int>(type));
  m_compression = type;
}

void OffloadAttributeFile::setOffset(double first, double increment, int count, int sequence) {
  if (count < 1) Message::fatal("OffloadAttributeFile::setOffset", 0, "Number of offsets must be >=1, got %d.", count);
  if (sequence < 0 || sequence > count)
    Message::fatal("OffloadAttributeFile::setOffset", 0, "Offset sequence %d must be >0 and <=%d.", sequence, count);
  m_firstOffset = first;
  m_offsetIncrement = increment;
  m_nOffsets = count;
  m_sequence = sequence;
}

void OffloadAttributeFile::myDoCreation() {
  char const* const label = "OffloadAttributeFile::myDoCreation";
  Attribute const* trace = nullptr;
  for (Attribute const& attribute : m_attributes)
    if (attribute.getName() == vUCString("TRACE")) trace = &attribute;
  if (!trace) Message::fatal(label, 0, "Attribute '%s' does not exist in file '%s'.", "TRACE", m_fileName.c_str());
  // The table: every attribute but the trace under the older system's name,
  // and SUBLINE, by which readers tell a word-swapped copy.
  std::vector<Attribute> table;
  std::vector<std::pair<vUCString, vUCString> > names;  // caller's, table's
  bool subline = false;
  for (Attribute const& attribute : m_attributes) {
    if (attribute.getName() == vUCString("TRACE")) continue;
    Attribute const stored = myTableForm(attribute);
    subline = subline || stored.getName() == vUCString("SUBLINE");
    if (stored.getName() != attribute.getName()) names.emplace_back(attribute.getName(), stored.getName());
    table.push_back(stored);
  }
  if (!subline) table.insert(table.begin(), Attribute("SUBLINE", "", vINT32, 1));
  std::vector<int> h(100, 0);
  h[0] = 100;
  h[1] = 77479;
  for (Attribute const& attribute : table) h[3] += attribute.getLength();
  double const rate = trace->getSampleRate() > 0 ? trace->getSampleRate() : 1.0;
  h[18] = static_cast<int>(trace->getFirstTime() / rate + 0.5);
  h[2] = trace->getLength() + h[18];
  h[4] = static_cast<int>(rate * 1000 + 0.5);
  h[8] = m_compression == INT16 ? compression_moffld_int16Tlen(trace->getLength(), 0) : trace->getLength();
  h[6] = static_cast<int>(table.size());
  h[7] = h[3] + h[8];
  h[5] = 23 * h[6];
  h[9] = m_grid.getNumCrosslines();
  h[10] = m_grid.getNumInlines();
  h[11] = m_grid.getFirstCrossline();
  h[12] = m_grid.getFirstInline();
  h[13] = m_grid.getCrosslineInc();
  h[14] = m_grid.getInlineInc();
  float const xl = m_grid.getCrosslineInterval(), il = m_grid.getInlineInterval();
  std::memcpy(&h[15], &xl, 4);
  std::memcpy(&h[16], &il, 4);
  h[17] = m_compression;
  h[19] = m_grid.getLastCrossline();
  h[20] = m_grid.getLastInline();
  if (h[9] <= 0 || h[10] <= 0) Message::fatal(label, 0, "File %s has no grid to lay its bins out.", m_fileName.c_str());
  bool const floats =
      m_firstOffset != static_cast<int>(m_firstOffset) || m_offsetIncrement != static_cast<int>(m_offsetIncrement);
  h[59] = floats ? 2 : 1;
  m_version = vHandle<OffloadVersionBits>(OffloadVersionBits::forVersion(h[59]));
  h[21] = m_sequence;
  m_version->setFileOffset(h.data(), (m_sequence - 1) * m_offsetIncrement + m_firstOffset);
  m_version->setFileOffsets(h.data(), m_firstOffset, m_offsetIncrement,
                            (m_nOffsets - 1) * m_offsetIncrement + m_firstOffset);
  h[60] = static_cast<int>(::getpid());
  h[64] = m_nOffsets;
  h[89] = 991;
  int const L = h[7];
  long long const bins = static_cast<long long>(h[9]) * h[10];
  h[31] = ((h[0] - 1) / L) * 4 + 2;
  h[33] = h[31] + (h[5] - 1) / L + 1;
  h[34] = static_cast<int>(h[33] + bins / L + 1);
  // Header, table, fold map of zeros and a record of zeros for every bin.
  std::vector<int> head(static_cast<std::size_t>(h[34] - 1) * L, 0);
  std::memcpy(head.data(), h.data(), 4 * h.size());
  for (std::size_t k = 0; k < table.size(); ++k)
    putEntry(&head[static_cast<std::size_t>(h[31] - 1) * L + 23 * k], table[k], false, false);
  m_ioFile = FS::create(m_fileName, FS::RecordFile, 0, 4 * L);
  if (!m_ioFile.isGood()) m_ioFile.terminate(label);
  m_ioFile.setNoByteSwapping();
  myWriteWords(1, head.data(), 4LL * static_cast<long long>(head.size()));
  std::vector<char> zeros(static_cast<std::size_t>(4 * L) * 1024, 0);
  for (long long b = 0; b < bins; b += 1024) {
    long long const n = std::min<long long>(1024, bins - b);
    myWriteWords(h[34] + b, zeros.data(), 4LL * L * n);
  }
  m_header = h;
  m_laidOut = true;
  m_file = m_ioFile;
  m_attributes.clear();
  myBuildAttributes();
  // Until closed the file answers under the caller's names too.
  for (auto const& pair : names) {
    for (Attribute& attribute : m_attributes)
      if (attribute.getName() == pair.second) attribute.setName(pair.first);
    for (AttributeOffset& offset : m_offsets)
      if (offset.name == pair.second) offset.name = pair.first;
  }
  std::sort(m_offsets.begin(), m_offsets.end());
  // The caller's grid stands for the session: the file holds its lines and
  // intervals but not its origins and rotation.
  CMPBasicGrid const given = m_grid;
  mySetupGrid();
  m_grid = given;
  m_shape = vString("rectangular");
  m_offsetBin = m_version->getFileOffset(m_header.data());
  mySetupProperties();
  m_fold.assign(static_cast<std::size_t>(bins), 0);
  m_mask.clear();
  m_isOpen = true;
}

void OffloadAttributeFile::myWriteWords(long long record, void const* data, long long bytes) {
  int const put = m_ioFile.write(record, data, static_cast<int>(bytes));
  if (put != bytes || !m_ioFile.isGood()) m_ioFile.terminate("OffloadAttributeFile::myWriteWords");
}

long long OffloadAttributeFile::myTraceRecords() {
  if (m_mask.empty()) return static_cast<long long>(m_header[9]) * m_header[10];
  // Polygonal: the records behind the first trace record, and at least one
  // past the largest the mask names.
  long long records = m_file.getNRecords() - m_header[34] + 1;
  for (std::size_t k = 0; k < m_fold.size(); ++k)
    if (m_fold[k] != 0) records = std::max(records, static_cast<long long>(m_mask[k]) + 1);
  return std::max(0LL, records);
}

void OffloadAttributeFile::myEncode(char* record, Attribute const& attribute, unsigned int instance,
                                    Attribute const& definition, int offset) {
  void const* in = attribute.getPointer(instance);
  int const length = definition.getLength();
  if (definition.getName() == vUCString("TRACE")) {
    std::vector<float> samples(static_cast<std::size_t>(length));
    vUtl::copyConvert(in, attribute.getDataType(), samples.data(), vFLOAT32, samples.size());
    if (m_header[17] != 0) {
      compression_moffld_int16(length, samples.data(), m_fscp, record, 0, 1);
      if (m_swap) {
        vUtl::swapBytes32(record, 1);
        vUtl::swapBytes16(record + 4, 2 * static_cast<std::size_t>(m_header[8] - 1));
      }
    } else {
      std::memcpy(record, samples.data(), 4 * samples.size());
      if (m_swap) vUtl::swapBytes32(record, samples.size());
    }
    return;
  }
  vUtl::copyConvert(in, attribute.getDataType(), record + offset, definition.getDataType(),
                    static_cast<std::size_t>(length));
  if (m_swap) vUtl::swapBytes32(record + offset, static_cast<std::size_t>(length));
}

void OffloadAttributeFile::writeRange(Attribute const& attribute, unsigned int first, unsigned int last) {
  if (m_index) m_index->clearCache();  // the group tables may no longer hold
  char const* const label = "OffloadAttributeFile::writeRange";
  if (m_created && !m_laidOut) myDoCreation();
  myOpenFile();
  if (!m_created && !m_update) {
    if (restoreMute && attribute.getName() == vUCString("TRACE"))
      Message::fatal(label, 0, "Writing muted data when restoring is enabled is not supported yet!");
    if (!hasAttribute(attribute.getName()))
      Message::fatal(label, 0, "Attribute '%s' does not exist in file '%s'.", attribute.getName().c_str(),
                     m_fileName.c_str());
    if (m_shape == vString("polygonal"))
      Message::fatal(label, 0, "Writing to a polygon moffload file is not supported yet!");
    Message::fatal(label, 0, "Writing to a rectangular moffload file is not supported yet!");
  }
  if (restoreMute && m_header[18] != 0 && attribute.getName() == vUCString("TRACE"))
    Message::fatal(label, 0, "Writing muted data when restoring is enabled is not supported yet!");
  if (!hasAttribute(attribute.getName()))
    Message::fatal(label, 0, "Attribute '%s' does not exist in file '%s'.", attribute.getName().c_str(),
                   m_fileName.c_str());
  if (last == 0) last = getNInstances();
  myCheckRange(first, last);
  Attribute const& definition = myDefinition(label, attribute.getName());
  int const offset = getOffset(definition);
  // Computed attributes hold nothing in the file.
  if (offset < 0) return;
  if (attribute.getNInstances() != last - first + 1 || attribute.getLength() != definition.getLength())
    Message::fatal(label, 0, "Attribute '%s' has %d instances of length %d, the file wants %d of length %d.",
                   attribute.getName().c_str(), static_cast<int>(attribute.getNInstances()), attribute.getLength(),
                   static_cast<int>(last - first + 1), definition.getLength());
  std::size_t const recordBytes = 4u * static_cast<std::size_t>(m_header[7]);
  m_dirty = true;
  if (m_mask.empty()) {
    // Every bin has its record: the range in one block.
    if (m_buffer.empty() || first < m_bufferFirst || last > m_bufferLast) myLoadRecords(first, last);
    for (unsigned int i = first; i <= last; ++i) {
      myEncode(m_buffer.data() + static_cast<std::size_t>(i - m_bufferFirst) * recordBytes, attribute, i - first + 1,
               definition, offset);
      if (m_fold[i - 1] == 0) m_fold[i - 1] = 1;
    }
    myWriteWords(m_header[34] + static_cast<long long>(first) - 1,
                 m_buffer.data() + static_cast<std::size_t>(first - m_bufferFirst) * recordBytes,
                 static_cast<long long>(last - first + 1) * static_cast<long long>(recordBytes));
    return;
  }
  // Polygonal: record by record; a dead bin has none and gets a new one at
  // the end of the file.
  long long records = myTraceRecords();
  std::vector<char> record(recordBytes);
  for (unsigned int i = first; i <= last; ++i) {
    long long position = m_mask[i - 1];
    if (m_fold[i - 1] != 0) {
      myReadRecords(m_header[34] + position, 1, record.data());
    } else {
      position = records++;
      std::fill(record.begin(), record.end(), 0);
      m_mask[i - 1] = static_cast<int>(position);
      m_fold[i - 1] = 1;
    }
    myEncode(record.data(), attribute, i - first + 1, definition, offset);
    myWriteWords(m_header[34] + position, record.data(), static_cast<long long>(recordBytes));
  }
  m_buffer.clear();
  m_bufferFirst = m_bufferLast = 0;
}

void OffloadAttributeFile::writeList(Attribute const& attribute, std::vector<unsigned int> const& instances) {
  Attribute one(attribute.getName(), attribute.getClass(), attribute.getDataType(), attribute.getLength(),
                attribute.getSampleRate(), attribute.getFirstTime());
  std::size_t const bytes =
      static_cast<std::size_t>(attribute.getLength()) * static_cast<std::size_t>(attribute.getDataTypeSize());
  for (std::size_t k = 0; k < instances.size(); ++k) {
    one.resize(1);
    std::memcpy(one.getPointer(1), attribute.getPointer(static_cast<unsigned int>(k + 1)), bytes);
    writeRange(one, instances[k], instances[k]);
  }
}

void OffloadAttributeFile::flush() {
  if (!(m_created && m_laidOut) && !(m_update && m_isOpen && m_dirty)) return;
  long long const bins = static_cast<long long>(m_header[9]) * m_header[10];
  long long const records = (bins - 1) / m_header[7] + 1;
  auto put = [&](long long record, std::vector<int> words) {
    words.resize(static_cast<std::size_t>(records * m_header[7]), 0);
    if (m_swap) vUtl::swapBytes32(words.data(), words.size());
    myWriteWords(record, words.data(), 4LL * static_cast<long long>(words.size()));
  };
  put(m_header[33], m_fold);
  if (!m_mask.empty()) put(m_header[33] + bins / m_header[7] + 1, m_mask);
  m_dirty = false;
}

void OffloadAttributeFile::myRelayout(Attribute const* added, int moreInlines) {
  char const* const label = "OffloadAttributeFile::myRelayout";
  std::vector<int> h = m_header;
  long long const oldBins = static_cast<long long>(h[9]) * h[10];
  long long const oldRecords = myTraceRecords();
  bool const polygonal = !m_mask.empty();
  std::vector<int> table(static_cast<std::size_t>(h[5]), 0);
  if (h[6] > 0) myReadRecords(h[31], 0, reinterpret_cast<char*>(table.data()));
  int addedWords = 0;
  if (added) {
    Attribute const stored = myTableForm(*added);
    addedWords = stored.getLength();
    table.resize(table.size() + 23, 0);
    putEntry(&table[table.size() - 23], stored, m_swap, m_fscp);
    h[3] += addedWords;
    h[6] += 1;
    h[5] = 23 * h[6];
    h[7] = h[3] + h[8];
  }
  h[10] += moreInlines;
  h[20] = h[12] + (h[10] - 1) * (h[14] ? h[14] : 1);
  int const L = h[7], oldL = m_header[7];
  long long const bins = static_cast<long long>(h[9]) * h[10];
  h[31] = ((h[0] - 1) / L) * 4 + 2;
  h[33] = h[31] + (h[5] - 1) / L + 1;
  long long const maskRecord = h[33] + bins / L + 1;
  h[34] = static_cast<int>(polygonal ? maskRecord + bins / L + 1 : maskRecord);
  std::vector<int> fold(m_fold), mask(m_mask);
  fold.resize(static_cast<std::size_t>(bins), 0);
  if (polygonal) mask.resize(static_cast<std::size_t>(bins), -1);

  // Everything before the first trace record, in the file's order.
  std::vector<int> head(static_cast<std::size_t>(h[34] - 1) * L, 0);
  std::memcpy(head.data(), h.data(), 4 * std::min<std::size_t>(h.size(), static_cast<std::size_t>(h[0])));
  std::memcpy(&head[static_cast<std::size_t>(h[31] - 1) * L], table.data(), 4 * table.size());
  std::memcpy(&head[static_cast<std::size_t>(h[33] - 1) * L], fold.data(), 4 * fold.size());
  if (polygonal) std::memcpy(&head[static_cast<std::size_t>(maskRecord - 1) * L], mask.data(), 4 * mask.size());
  if (m_swap) {
    // The table is in the file's order already.
    std::size_t const tableAt = static_cast<std::size_t>(h[31] - 1) * L;
    vUtl::swapBytes32(head.data(), tableAt);
    vUtl::swapBytes32(head.data() + tableAt + table.size(), head.size() - tableAt - table.size());
  }
  std::string const temporary = std::string(m_fileName.c_str()) + ".relayout";
  vFilename const target(temporary.c_str());
  FS::ioFile out = FS::create(target, FS::RecordFile, 0, 4 * L);
  if (!out.isGood()) out.terminate(label);
  out.setNoByteSwapping();
  auto write = [&](long long record, void const* data, long long bytes) {
    if (out.write(record, data, static_cast<int>(bytes)) != bytes || !out.isGood()) {
      out.clear();
      out.close();
      FS::rm(FS::DeleteFile, target);
      Message::fatal(label, 0, "Could not lay out '%s' anew in '%s'.", m_fileName.c_str(), temporary.c_str());
    }
  };
  try {
    write(1, head.data(), 4LL * static_cast<long long>(head.size()));
    // Trace records, widened by the new attribute's words, which start as zeros.
    long long const chunk = 1024;
    std::vector<char> in(static_cast<std::size_t>(chunk * 4 * oldL)), wide(static_cast<std::size_t>(chunk * 4 * L));
    for (long long r = 0; r < oldRecords; r += chunk) {
      long long const n = std::min(chunk, oldRecords - r);
      myReadRecords(m_header[34] + r, static_cast<unsigned int>(n), in.data());
      std::fill(wide.begin(), wide.end(), 0);
      for (long long k = 0; k < n; ++k)
        std::memcpy(wide.data() + k * 4 * L, in.data() + k * 4 * oldL, static_cast<std::size_t>(4 * oldL));
      write(h[34] + r, wide.data(), n * 4LL * L);
    }
    std::fill(wide.begin(), wide.end(), 0);
    if (!polygonal)
      for (long long r = oldBins; r < bins; r += chunk)
        write(h[34] + r, wide.data(), std::min(chunk, bins - r) * 4LL * L);
  } catch (...) {
    // The file stays as it was; the half-made one goes.
    if (out.isOpen()) {
      out.clear();
      out.close();
      FS::rm(FS::DeleteFile, target);
    }
    throw;
  }
  out.close();
  m_file.clear();
  m_file.close();
  if (FS::mv(FS::DeleteFile, target, m_fileName) != 1)
    Message::fatal(label, 0, "Could not lay out '%s' anew in '%s'.", m_fileName.c_str(), temporary.c_str());
  // Opened again on the new layout.
  m_isOpen = false;
  m_dirty = false;
  m_buffer.clear();
  m_bufferFirst = m_bufferLast = 0;
  m_index.reset();
  myOpenFile();
}
