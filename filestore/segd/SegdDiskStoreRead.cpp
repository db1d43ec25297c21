// Reads of SegdDiskStore: traces into the record buffer, values out of it.

#include <algorithm>
#include <cstring>
#include <string>

#include "filestore/segd/SegdDiskStore.h"
#include "filestore/segd/SegdKernels.h"
#include "foundation/Message.h"
#include "foundation/vUtl.h"

void SegdDiskStore::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  char const* const label = "SegdDiskStore::read";
  last = myCheckRange(label, first, last);
  myDefinition(label, attribute.getName());
  myAllocateBufferRange(first, last);
  myExtractData(attribute, first, last - first + 1, nullptr);
}

void SegdDiskStore::read(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  char const* const label = "SegdDiskStore::read";
  myCheckList(label, attribute.getName(), instances);
  myDefinition(label, attribute.getName());
  if (!instances.empty() && isRun(instances)) {
    read(attribute, instances.front(), instances.back());
    return;
  }
  if (!instances.empty()) myAllocateBufferList(instances);
  myExtractData(attribute, 0, static_cast<unsigned int>(instances.size()), &instances);
}

// --- filling the buffer ------------------------------------------------------------------

void SegdDiskStore::myReadTraces(char const* label, void* target, unsigned int first, unsigned int last) const {
  long long const offset = m_dataStart + static_cast<long long>(first - 1) * m_traceLength;
  long long const count = static_cast<long long>(last - first + 1) * m_traceLength;
  if (!m_tapeData.empty()) {
    // Whole traces only: the instances were counted from this data.
    std::memcpy(target, m_tapeData.data() + offset, static_cast<std::size_t>(count));
    return;
  }
  long long const got = m_file.read(offset + 1, target, count);
  if (got != count || !m_file.isGood()) {
    m_file.clear();
    m_recordBuffer->empty();
    Message::fatal(label, 0, "Failed to read instances %lld:%lld", static_cast<long long>(first),
                   static_cast<long long>(last));
  }
}

void SegdDiskStore::myAllocateBufferRange(unsigned int first, unsigned int last) const {
  RecordBuffer& buffer = *m_recordBuffer;
  if (!buffer.isEmpty() && buffer.inside(first, last)) return;
  buffer.allocate(first, last);
  myReadTraces("SegdDiskStore::myAllocateBufferRange", buffer.getBuffer(first, 0), first, last);
}

void SegdDiskStore::myAllocateBufferList(std::vector<unsigned int> const& instances) const {
  RecordBuffer& buffer = *m_recordBuffer;
  if (!buffer.isEmpty() && buffer.inside(instances)) return;
  // Each trace once, in file order, so that runs of neighbours are one read.
  std::vector<unsigned int> sorted(instances);
  std::sort(sorted.begin(), sorted.end());
  sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
  buffer.allocate(sorted);
  std::size_t k = 0;
  while (k < sorted.size()) {
    std::size_t end = k + 1;
    while (end < sorted.size() && sorted[end] == sorted[end - 1] + 1) ++end;
    myReadTraces("SegdDiskStore::myAllocateBufferList", buffer.getBuffer(sorted[k], 0), sorted[k], sorted[end - 1]);
    k = end;
  }
}

// --- values out of the buffer ------------------------------------------------------------

void SegdDiskStore::myExtractData(Attribute& attribute, unsigned int first, unsigned int count,
                                  std::vector<unsigned int> const* list) const {
  char const* const label = list ? "SegdDiskStore::myExtractData(ilist)" : "SegdDiskStore::myExtractData(range)";
  vUCString const name = attribute.getName();
  Attribute const& definition = myDefinition(label, name);
  int field = -1;
  bool sequence = false;
  bool const samples = name == vUCString("TRACE");
  if (name == vUCString("FFID"))
    field = TraceHeader::FILE_NUMBER;
  else if (name == vUCString("CHANNELSET"))
    field = TraceHeader::CHANNEL_SET;
  else if (name == vUCString("TRACENUMBER") || name == vUCString("CHANNEL"))
    field = TraceHeader::TRACE_NUMBER;
  else if (name == vUCString("SEQUENCE"))
    sequence = true;
  else if (!samples)
    Message::fatal(label, 0, "Unsupported attribute '%s' requested!", name.c_str());

  DataType const wanted = attribute.getDataType();
  int const length = definition.getLength();
  if (attribute.getLength() != length || attribute.isVector() != definition.isVector())
    attribute = Attribute(name, attribute.getClass(), wanted, length, definition.getSampleRate(),
                          definition.getFirstTime());
  attribute.resize(count);
  std::size_t const nValues = static_cast<std::size_t>(count) * static_cast<std::size_t>(length);
  if (nValues == 0) return;
  DataType const sourceType = samples ? vFLOAT32 : vINT32;
  void* const data = attribute.getPointer(1);
  std::vector<unsigned char> scratch;
  void* target = data;
  if (wanted != sourceType) {
    scratch.resize(nValues * 4);
    target = scratch.data();
  }
  RecordBuffer const& buffer = *m_recordBuffer;
  int const code = m_generalHeader->getFormatCode();
  TraceHeader header;
  for (unsigned int k = 0; k < count; ++k) {
    unsigned int const instance = list ? (*list)[k] : first + k;
    if (sequence) {
      static_cast<int32_t*>(target)[k] = static_cast<int32_t>(instance);
      continue;
    }
    unsigned char const* const record = static_cast<unsigned char const*>(buffer.getBuffer(instance, 0));
    header.setHeader(record);
    if (!samples) {
      static_cast<int32_t*>(target)[k] = header.getHeaderValue(field);
      continue;
    }
    float* const out = static_cast<float*>(target) + static_cast<std::size_t>(k) * length;
    // No more samples than a trace holds, whatever length the vocabulary
    // gave a record of none.
    std::size_t const held = header.isMuted() ? 0u : std::min<std::size_t>(length, m_nSamples);
    std::memset(out + held, 0, (static_cast<std::size_t>(length) - held) * sizeof(float));
    if (held > 0 && code == 8015)
      SegdKernels::fc_8015toieee(record + SegdKernels::TRACE_HEADER_LENGTH, out, held);
    else if (held > 0)
      SegdKernels::fc_8058toieee(record + SegdKernels::TRACE_HEADER_LENGTH, out, held);
  }
  if (target != data) vUtl::copyConvert(target, sourceType, data, wanted, nValues);
}
