// The reading strategies of text tables.

#include <cstdio>
#include <cstring>

#include "filestore/ascii/AsciiFixedLengthColumnReader.h"
#include "filestore/ascii/AsciiFixedLengthDynamicReader.h"
#include "filestore/ascii/AsciiTarsusFoldMapReader.h"
#include "filestore/ascii/AsciiText.h"
#include "filestore/ascii/AsciiVariableLengthColumnReader.h"
#include "foundation/Message.h"
#include "foundation/vString.h"

namespace {

char const* const kLabel = "AsciiDataReader";

std::vector<Attribute> listToVector(std::list<Attribute> const& list) {
  return std::vector<Attribute>(list.begin(), list.end());
}

}  // namespace

// --- the base ---------------------------------------------------------------------------

AsciiStrategicReader::AsciiStrategicReader(AsciiCollator const& collator, AsciiFormat const& format)
    : m_collator(collator), m_format(format), m_nonNumerical(0) {}

AsciiStrategicReader::~AsciiStrategicReader() = default;

void AsciiStrategicReader::scanItem(char const* item, DataType type, void* destination) {
  switch (type) {
    case vINT32:
    case vINT64:
    case vINT16: {
      long value = 0;
      if (std::sscanf(item, "%ld", &value) != 1) value = 0;
      if (type == vINT32)
        *static_cast<int*>(destination) = static_cast<int>(value);
      else if (type == vINT16)
        *static_cast<short*>(destination) = static_cast<short>(value);
      else
        *static_cast<long long*>(destination) = value;
      break;
    }
    case vFLOAT32:
    case vFLOAT64: {
      double value = 0;
      if (std::sscanf(item, "%lg", &value) != 1) value = 0;
      if (type == vFLOAT32)
        *static_cast<float*>(destination) = static_cast<float>(value);
      else
        *static_cast<double*>(destination) = value;
      break;
    }
    default:
      Message::fatal(kLabel, 0, "Unsupported attribute format.");
  }
}

void AsciiStrategicReader::checkItem(char const* item) {
  if (m_format.isCheckingNumbers() && !AsciiFormat::isNumber(item)) ++m_nonNumerical;
}

void AsciiStrategicReader::report() const {
  if (m_nonNumerical > 0)
    Message::error(kLabel, 0, "%d non-numerical items were encountered during the data input.", m_nonNumerical);
}

std::vector<Attribute> AsciiStrategicReader::myColumns(unsigned int n, std::vector<int> const& lastLengths) const {
  std::vector<Attribute> columns = listToVector(m_format.getAttributeList());
  for (Attribute& column : columns) {
    if (column.isVariableLength()) {
      int* lengths = new int[n > 0 ? n : 1];
      for (unsigned int k = 0; k < n; ++k) lengths[k] = k < lastLengths.size() ? lastLengths[k] : 0;
      column.resize(n, nullptr, lengths);
    } else {
      column.resize(n);
    }
  }
  return columns;
}

void AsciiStrategicReader::myPut(Attribute& column, unsigned int record, int position, std::string const& item) {
  if (column.getDataType() == vSTRING) {
    column.getStringPointer(record)[position] = vString(item.c_str());
    return;
  }
  checkItem(item.c_str());
  char* base = static_cast<char*>(column.getPointer(record));
  scanItem(item.c_str(), column.getDataType(), base + static_cast<std::size_t>(position) * column.getDataTypeSize());
}

void AsciiStrategicReader::myTooFewItems(int line, int found, int needed) const {
  Message::fatal(kLabel, 0, "Line %d has %d items, but the format needs %d.", line, found, needed);
}

// --- items as a stream ------------------------------------------------------------------

AsciiDynamicReader::AsciiDynamicReader(AsciiCollator const& collator, AsciiFormat const& format)
    : AsciiStrategicReader(collator, format) {}

void AsciiDynamicReader::myItems(int set, std::vector<std::string>& items, std::vector<int>& lines) const {
  for (int line : m_collator.getDataRecords(set))
    for (std::string const& item : ascii_text::items(m_collator.getLine(line), m_format.getItemSeparator())) {
      items.push_back(item);
      lines.push_back(line);
    }
}

std::vector<Attribute> AsciiDynamicReader::readAll(int set) {
  if (m_format.areRecordsVariableLength()) return myReadVariableLengthRecordsIntoBuffers(set);
  std::vector<std::string> items;
  std::vector<int> lines;
  myItems(set, items, lines);
  std::size_t const width = m_format.getAttributeList().size();
  if (width == 0) return {};
  if (items.size() % width != 0)
    myTooFewItems(lines.back(), static_cast<int>(items.size() % width), static_cast<int>(width));
  unsigned int const n = static_cast<unsigned int>(items.size() / width);
  std::vector<Attribute> columns = myColumns(n, std::vector<int>(n, 1));
  for (unsigned int r = 0; r < n; ++r)
    for (std::size_t k = 0; k < width; ++k) myPut(columns[k], r + 1, 0, items[r * width + k]);
  return columns;
}

std::vector<Attribute> AsciiDynamicReader::myReadVariableLengthRecordsIntoBuffers(int set) {
  std::size_t const width = m_format.getAttributeList().size();
  if (width == 0) return {};
  // The collator leaves blank lines out of the records, so a gap in the
  // line numbers is where one record ends.
  std::vector<std::vector<std::string> > records;
  std::vector<int> firstLines;
  int previous = -1;
  for (int line : m_collator.getDataRecords(set)) {
    if (records.empty() || line != previous + 1) {
      records.emplace_back();
      firstLines.push_back(line);
    }
    for (std::string const& item : ascii_text::items(m_collator.getLine(line), m_format.getItemSeparator())) records.back().push_back(item);
    previous = line;
  }
  std::size_t const fixed = width - 1;
  std::vector<int> lastLengths;
  for (std::size_t r = 0; r < records.size(); ++r) {
    if (records[r].size() < fixed)
      myTooFewItems(firstLines[r], static_cast<int>(records[r].size()), static_cast<int>(fixed));
    lastLengths.push_back(static_cast<int>(records[r].size() - fixed));
  }
  unsigned int const n = static_cast<unsigned int>(records.size());
  std::vector<Attribute> columns = myColumns(n, lastLengths);
  for (unsigned int r = 0; r < n; ++r) {
    for (std::size_t k = 0; k < fixed; ++k) myPut(columns[k], r + 1, 0, records[r][k]);
    for (int p = 0; p < lastLengths[r]; ++p)
      myPut(columns[fixed], r + 1, p, records[r][fixed + static_cast<std::size_t>(p)]);
  }
  return columns;
}

AsciiTarsusFoldMapReader::AsciiTarsusFoldMapReader(AsciiCollator const& collator, AsciiFormat const& format)
    : AsciiDynamicReader(collator, format) {}

std::vector<Attribute> AsciiTarsusFoldMapReader::readAll(int set) {
  std::vector<std::string> items;
  std::vector<int> lines;
  myItems(set, items, lines);
  CMPBasicGrid const& grid = m_format.getCMPBasicGrid();
  int const nCrosslines = grid.getNumCrosslines();
  unsigned int const n = static_cast<unsigned int>(items.size());
  std::vector<Attribute> columns = myColumns(n, {});
  for (unsigned int r = 0; r < n; ++r) {
    myPut(columns[0], r + 1, 0, items[r]);
    int const inlineIndex = nCrosslines > 0 ? static_cast<int>(r) / nCrosslines : 0;
    int const crosslineIndex = nCrosslines > 0 ? static_cast<int>(r) % nCrosslines : 0;
    columns[1].setValue(r + 1, grid.getFirstInline() + inlineIndex * grid.getInlineInc());
    columns[2].setValue(r + 1, grid.getFirstCrossline() + crosslineIndex * grid.getCrosslineInc());
  }
  return columns;
}

// --- a record a line, by items ----------------------------------------------------------

AsciiVariableLengthDynamicReader::AsciiVariableLengthDynamicReader(AsciiCollator const& collator,
                                                                   AsciiFormat const& format)
    : AsciiDynamicReader(collator, format) {}

std::vector<Attribute> AsciiVariableLengthDynamicReader::readAll(int set) { return myReadLines(set); }

std::vector<Attribute> AsciiVariableLengthDynamicReader::myReadLines(int set) {
  std::vector<int> const& records = m_collator.getDataRecords(set);
  std::size_t const width = m_format.getAttributeList().size();
  bool const variable = m_format.areRecordsVariableLength();
  std::vector<std::vector<std::string> > split;
  std::vector<int> lastLengths;
  for (int line : records) {
    split.push_back(ascii_text::items(m_collator.getLine(line), m_format.getItemSeparator()));
    std::size_t const found = split.back().size();
    std::size_t const needed = variable ? width - 1 : width;
    if (found < needed) myTooFewItems(line, static_cast<int>(found), static_cast<int>(needed));
    lastLengths.push_back(variable ? static_cast<int>(found - (width - 1)) : 1);
  }
  unsigned int const n = static_cast<unsigned int>(records.size());
  std::vector<Attribute> columns = myColumns(n, lastLengths);
  for (unsigned int r = 0; r < n; ++r) {
    for (std::size_t k = 0; k < width; ++k) {
      if (variable && k + 1 == width) {
        for (int p = 0; p < lastLengths[r]; ++p) myPut(columns[k], r + 1, p, split[r][k + static_cast<std::size_t>(p)]);
      } else {
        myPut(columns[k], r + 1, 0, split[r][k]);
      }
    }
  }
  return columns;
}

AsciiFixedLengthDynamicReader::AsciiFixedLengthDynamicReader(AsciiCollator const& collator, AsciiFormat const& format)
    : AsciiVariableLengthDynamicReader(collator, format) {}

std::vector<Attribute> AsciiFixedLengthDynamicReader::readAll(int set) { return myReadLines(set); }

// --- a record a line, by columns ---------------------------------------------------------

AsciiColumnReader::AsciiColumnReader(AsciiCollator const& collator, AsciiFormat const& format)
    : AsciiStrategicReader(collator, format) {}

std::vector<Attribute> AsciiColumnReader::readAll(int set) {
  std::vector<int> const& records = m_collator.getDataRecords(set);
  std::vector<AsciiFormat::Range> const& ranges = m_format.getColumnsList();
  unsigned int const n = static_cast<unsigned int>(records.size());
  std::vector<Attribute> columns = myColumns(n, std::vector<int>(n, 1));
  for (unsigned int r = 0; r < n; ++r) {
    int const line = records[r];
    std::string const& text = m_collator.getLine(line);
    for (std::size_t k = 0; k < ranges.size() && k < columns.size(); ++k) {
      int const first = ranges[k].first, last = ranges[k].last;
      if (first < 1 || last < first || static_cast<int>(text.size()) < first)
        Message::fatal(kLabel, 0, "Line %d has %d characters, but the format reads columns %d-%d.", line,
                       static_cast<int>(text.size()), first, last);
      myPut(columns[k], r + 1, 0, ascii_text::strip(text.substr(static_cast<std::size_t>(first - 1),
                                                                 static_cast<std::size_t>(last - first + 1))));
    }
  }
  return columns;
}

AsciiVariableLengthColumnReader::AsciiVariableLengthColumnReader(AsciiCollator const& collator,
                                                                 AsciiFormat const& format)
    : AsciiColumnReader(collator, format) {}

std::vector<Attribute> AsciiVariableLengthColumnReader::readAll(int set) { return AsciiColumnReader::readAll(set); }

AsciiFixedLengthColumnReader::AsciiFixedLengthColumnReader(AsciiCollator const& collator, AsciiFormat const& format)
    : AsciiColumnReader(collator, format) {}

std::vector<Attribute> AsciiFixedLengthColumnReader::readAll(int set) { return AsciiColumnReader::readAll(set); }
