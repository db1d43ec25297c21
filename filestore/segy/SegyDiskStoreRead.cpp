// Reads of SegyDiskStore: traces into the record buffer, values out of it.

#include <algorithm>
#include <string>

#include "filestore/segy/SegyDiskStore.h"
#include "filestore/segy/SegyKernels.h"
#include "foundation/Message.h"
#include "foundation/vUtl.h"

namespace {

char const* const kConversionLabel = "SegyDiskFile::local_doConversion";

// Whether values of the file's type go to the type asked for; fatal when
// they cannot.
void checkConversion(DataType fileType, DataType wanted, vUCString const& name) {
  if (fileType == wanted) return;
  vString const target = vUtl::dataTypeName(wanted);
  switch (fileType) {
    case vINT16:
      if (wanted == vINT32 || wanted == vINT64 || wanted == vFLOAT32 || wanted == vFLOAT64) return;
      Message::fatal(kConversionLabel, 0, "Cannot convert from Int16 to %s for Attribute %s.", target.c_str(),
                     name.c_str());
    case vINT32:
      if (wanted == vINT64 || wanted == vFLOAT32 || wanted == vFLOAT64) return;
      Message::fatal(kConversionLabel, 0, "Cannot convert from Int32 to %s for Attribute %s.", target.c_str(),
                     name.c_str());
    case vFLOAT32:
      if (wanted == vINT32 || wanted == vINT64 || wanted == vFLOAT64) return;
      Message::fatal(kConversionLabel, 0, "Cannot convert from Float32 to %s for Attribute %s.", target.c_str(),
                     name.c_str());
    default:
      Message::fatal(kConversionLabel, 0, "Cannot convert from %s to %s for Attribute %s.",
                     vUtl::dataTypeName(fileType).c_str(), target.c_str(), name.c_str());
  }
}

}  // namespace

void SegyDiskStore::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  char const* const label = "SegyDiskStore::read";
  last = myCheckRange(label, first, last);
  myDefinition(label, attribute.getName());
  myAllocateBufferRange(first, last);
  myExtract(attribute, first, last - first + 1, nullptr);
}

void SegyDiskStore::read(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  char const* const label = "SegyDiskStore::read";
  myCheckList(label, attribute.getName(), instances);
  myDefinition(label, attribute.getName());
  if (!instances.empty() && isRun(instances)) {
    read(attribute, instances.front(), instances.back());
    return;
  }
  if (!m_mapper.isEmpty()) Message::fatal(label, 0, "Halcyon format not supported!");
  if (!instances.empty()) myAllocateBufferList(instances);
  myExtract(attribute, 0, static_cast<unsigned int>(instances.size()), &instances);
}

// --- filling the buffer ------------------------------------------------------------------

void SegyDiskStore::myReadTraces(char const* label, unsigned char* target, long long offset, long long count,
                                 unsigned int instance) const {
  long long const got = m_file.read(offset + 1, target, count);
  if (got != count || !m_file.isGood()) {
    m_file.clear();
    m_recordBuffer->empty();
    Message::fatal(label, 0, "Failed to read instance %lld",
                   static_cast<long long>(instance));
  }
}

void SegyDiskStore::myAllocateBufferRange(unsigned int first, unsigned int last) const {
  RecordBuffer& buffer = *m_recordBuffer;
  if (!buffer.isEmpty() && buffer.inside(first, last)) return;
  buffer.allocate(first, last);
  if (!m_mapper.isEmpty()) {
    myReadHalcyonData(first, last);
    return;
  }
  long long const offset =
      SegyKernels::FILE_HEADER_LENGTH + static_cast<long long>(first - 1) * static_cast<long long>(m_traceLength);
  long long const count = static_cast<long long>(last - first + 1) * m_traceLength;
  try {
    myReadTraces("SegyDiskStore::myAllocateBufferRange", static_cast<unsigned char*>(buffer.getBuffer(first, 0)),
                 offset, count, first);
  } catch (...) {
    buffer.empty();
    throw;
  }
}

void SegyDiskStore::myAllocateBufferList(std::vector<unsigned int> const& instances) const {
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
    long long const offset = SegyKernels::FILE_HEADER_LENGTH +
                             static_cast<long long>(sorted[k] - 1) * static_cast<long long>(m_traceLength);
    myReadTraces("SegyDiskStore::myAllocateBufferList", static_cast<unsigned char*>(buffer.getBuffer(sorted[k], 0)),
                 offset,
                 static_cast<long long>(end - k) * m_traceLength, sorted[k]);
    k = end;
  }
}

void SegyDiskStore::myReadHalcyonData(unsigned int first, unsigned int last) const {
  vInstanceMapperBase::RangeList ranges;
  vInstanceMapperBase::compressInstancesToRanges(first, last, ranges);
  std::vector<SegyHalcyonInstanceMapper::Span> spans;
  m_mapper->doConvert(ranges, spans);
  unsigned int instance = first;
  for (SegyHalcyonInstanceMapper::Span const& span : spans) {
    long long const count = static_cast<long long>(span.count) * m_traceLength;
    long long const got =
        m_file.read(span.firstOffset + 1, m_recordBuffer->getBuffer(instance, 0), count);
    if (got != count || !m_file.isGood()) {
      m_file.clear();
      m_recordBuffer->empty();
      Message::fatal("SegyDiskStore::myReadHalcyonData", 0,
                     "Failed to read %s bytes at position %s in the halcyon segy file", std::to_string(count).c_str(),
                     std::to_string(span.firstOffset).c_str());
    }
    instance += span.count;
  }
}

// --- values out of the buffer ------------------------------------------------------------

void SegyDiskStore::myExtract(Attribute& attribute, unsigned int first, unsigned int count,
                              std::vector<unsigned int> const* list) const {
  vUCString const name = attribute.getName();
  Attribute const& definition = myDefinition("SegyDiskStore::read", name);
  DataType const fileType = m_format->getSegyType(name);
  int const offset = m_format->getAttributeOffset(name);
  DataType const wanted = attribute.getDataType();
  bool const samples = name == vUCString("TRACE");
  int const code = m_binaryHeader->getFormatCode();
  if (samples && code != 1 && code != 5 && code != 6)
    Message::fatal(kConversionLabel, 0, "Cannot convert traces of type %d.", code);
  // Samples are IEEE floats once converted, whatever the file holds.
  DataType const sourceType = samples ? vFLOAT32 : fileType;
  checkConversion(sourceType, wanted, name);

  int const length = definition.getLength();
  if (attribute.getLength() != length || attribute.isVector() != definition.isVector())
    attribute = Attribute(name, attribute.getClass(), wanted, length, definition.getSampleRate(),
                          definition.getFirstTime());
  attribute.resize(count);
  if (count == 0) return;
  std::size_t const nValues = static_cast<std::size_t>(count) * static_cast<std::size_t>(length);
  if (nValues == 0) return;
  int const elementSize = vUtl::dataTypeSize(sourceType);
  void* const data = attribute.getPointer(1);
  std::vector<unsigned char> scratch;
  void* target = data;
  if (wanted != sourceType) {
    scratch.resize(nValues * static_cast<std::size_t>(elementSize));
    target = scratch.data();
  }
  RecordBuffer const& buffer = *m_recordBuffer;
  if (samples) {
    // Straight from the records into IEEE floats: one pass over the samples.
    bool const swapped = m_binaryHeader->isByteSwapped();
    float* out = static_cast<float*>(target);
    for (unsigned int k = 0; k < count; ++k) {
      unsigned int const instance = list ? (*list)[k] : first + k;
      SegyKernels::convertSamples(buffer.getBuffer(instance, offset), out + static_cast<std::size_t>(k) * length,
                                  static_cast<std::size_t>(length), code, swapped);
    }
  } else if (list) {
    buffer.extractList(target, length * elementSize, count, offset, *list);
  } else {
    buffer.extractRange(target, length * elementSize, count, offset, first);
  }
  if (target != data) vUtl::copyConvert(target, sourceType, data, wanted, nValues);
}
