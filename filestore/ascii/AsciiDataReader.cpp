#include "filestore/ascii/AsciiDataReader.h"

#include "filestore/ascii/AsciiFixedLengthColumnReader.h"
#include "filestore/ascii/AsciiFixedLengthDynamicReader.h"
#include "filestore/ascii/AsciiTarsusFoldMapReader.h"
#include "filestore/ascii/AsciiVariableLengthColumnReader.h"
#include "foundation/Message.h"
#include "foundation/vString.h"

AsciiDataReader::AsciiDataReader(AsciiCollator const& collator, AsciiFormat const& format)
    : m_collator(collator), m_format(format) {
  myGetNewReadingStrategy();
}

AsciiDataReader::~AsciiDataReader() = default;

void AsciiDataReader::myGetNewReadingStrategy() {
  if (m_format.hasFixedColumns()) {
    if (m_format.hasFixedLengthLines())
      m_strategy.reset(new AsciiFixedLengthColumnReader(m_collator, m_format));
    else
      m_strategy.reset(new AsciiVariableLengthColumnReader(m_collator, m_format));
  } else if (m_format.areRecordsSingleLine()) {
    if (m_format.hasFixedLengthLines())
      m_strategy.reset(new AsciiFixedLengthDynamicReader(m_collator, m_format));
    else
      m_strategy.reset(new AsciiVariableLengthDynamicReader(m_collator, m_format));
  } else if (m_format.areLinesMultiRecord()) {
    m_strategy.reset(new AsciiTarsusFoldMapReader(m_collator, m_format));
  } else {
    m_strategy.reset(new AsciiDynamicReader(m_collator, m_format));
  }
}

void AsciiDataReader::myRead(int set) {
  if (m_sets.count(set) > 0) return;
  m_sets[set] = m_strategy->readAll(set);
  m_strategy->report();
}

unsigned int AsciiDataReader::getNumberOfRecords(int set) {
  myRead(set);
  std::vector<Attribute> const& columns = m_sets[set];
  return columns.empty() ? 0 : columns.front().getNInstances();
}

Attribute const* AsciiDataReader::getColumn(int set, vUCString const& name) {
  myRead(set);
  for (Attribute const& column : m_sets[set])
    if (column.getName() == name) return &column;
  return nullptr;
}

void AsciiDataReader::read(int set, Attribute& attribute, std::vector<unsigned int> const& records) {
  Attribute const* found = getColumn(set, attribute.getName());
  if (found == nullptr)
    Message::fatal("AsciiDataReader::read", 0, "Attribute %s is not defined in the file format.",
                   attribute.getName().c_str());
  Attribute const& column = *found;
  // Text is served as text whatever was asked for.
  DataType const wanted = attribute.getDataType() == vSTRING || column.getDataType() == vSTRING
                              ? column.getDataType()
                              : attribute.getDataType();
  Attribute result(attribute.getName(), attribute.getClass(), wanted, column.getLength(), attribute.getSampleRate(),
                   attribute.getFirstTime());
  unsigned int const n = static_cast<unsigned int>(records.size());
  if (column.isVariableLength()) {
    int* lengths = new int[n > 0 ? n : 1];
    for (unsigned int k = 0; k < n; ++k) lengths[k] = column.getLength(records[k]);
    result.resize(n, nullptr, lengths);
  } else {
    result.resize(n);
  }
  for (unsigned int k = 0; k < n; ++k) {
    unsigned int const from = records[k];
    int const count = column.isVariableLength() ? column.getLength(from) : column.getLength();
    if (wanted == vSTRING) {
      for (int p = 0; p < count; ++p) result.getStringPointer(k + 1)[p] = column.getStringPointer(from)[p];
      continue;
    }
    for (int p = 0; p < count; ++p) {
      double const v = column.getValue(from, p + 1);
      switch (wanted) {
        case vINT16:
          result.getInt16Pointer(k + 1)[p] = static_cast<short>(v);
          break;
        case vINT32:
          result.getInt32Pointer(k + 1)[p] = static_cast<int>(v);
          break;
        case vINT64:
          // Past 2^53 a double would round.
          result.getInt64Pointer(k + 1)[p] =
              column.getDataType() == vINT64 ? column.getInt64Pointer(from)[p] : static_cast<long long>(v);
          break;
        case vFLOAT32:
          result.getFloat32Pointer(k + 1)[p] = static_cast<float>(v);
          break;
        default:
          result.getFloat64Pointer(k + 1)[p] = v;
      }
    }
  }
  attribute = std::move(result);
}
