#include "filestore/ascii/AsciiCollator.h"

#include <algorithm>
#include <cstring>

#include "filestore/ascii/AsciiText.h"
#include "foundation/Message.h"

namespace {

std::string rootOf(AsciiFormat const& format) { return format.getFilename().getRoot().c_str(); }

bool isBlank(std::string const& line) { return line.find_first_not_of(" \t\r") == std::string::npos; }

}  // namespace

AsciiCollator::AsciiCollator(char const* text, long long length, AsciiFormat const& format)
    : m_format(format), m_fixedLineLength(0), m_lastHeaderLine(0), m_headerSize(0), m_dataSize(0), m_blankLines(0) {
  myArrangeAsLines(text, length);
  myFindHeader();
  myFindRecordSets();
}

void AsciiCollator::myArrangeAsLines(char const* text, long long length) {
  if (m_format.hasFixedLengthLines())
    myArrangeFixedLengthDataIntoLines(text, length);
  else
    myArrangeFreeFormatDataIntoLines(text, length);
}

void AsciiCollator::myArrangeFixedLengthDataIntoLines(char const* text, long long length) {
  if (!m_format.hasFixedLengthLines())
    Message::fatal("AsciiCollator::myArrangeFixedLengthDataIntoLines", 0,
                   "Programming Reality Check: The format does not specify fixed length lines, but the code is about to "
                   "assume just that.");
  char const* end = static_cast<char const*>(std::memchr(text, '\n', static_cast<std::size_t>(length)));
  long long const stride = end == nullptr ? length : end - text + 1;
  m_fixedLineLength = static_cast<int>(end == nullptr ? length : end - text);
  if (m_fixedLineLength > 0 && text[m_fixedLineLength - 1] == '\r') --m_fixedLineLength;
  for (long long at = 0; stride > 0 && at < length; at += stride) {
    long long const n = std::min<long long>(m_fixedLineLength, length - at);
    m_lines.emplace_back(text + at, static_cast<std::size_t>(n));
  }
}

void AsciiCollator::myArrangeFreeFormatDataIntoLines(char const* text, long long length) {
  if (m_format.hasFixedLengthLines())
    Message::fatal("AsciiCollator::myArrangeFreeFormatDataIntoLines", 0,
                   "Programming Reality Check: The format specifies fixed line lengths, but the code is doing an "
                   "expensive search for line boundaries.");
  long long at = 0;
  while (at < length) {
    char const* end = static_cast<char const*>(std::memchr(text + at, '\n', static_cast<std::size_t>(length - at)));
    long long const stop = end == nullptr ? length : end - text;
    long long n = stop - at;
    if (n > 0 && text[at + n - 1] == '\r') --n;
    m_lines.emplace_back(text + at, static_cast<std::size_t>(n));
    at = stop + 1;
  }
}

void AsciiCollator::myFindHeader() {
  if (!m_format.getHeaderRangesList().empty()) {
    m_lastHeaderLine = std::min(m_format.getLastHeaderLine(), getNumberOfLines());
  } else {
    int line = 0;
    while (line < getNumberOfLines() && !ascii_text::isNumericLine(m_lines[static_cast<std::size_t>(line)])) ++line;
    // A file with no numbers at all is all data: its lines are reported
    // when read.
    m_lastHeaderLine = line == getNumberOfLines() ? 0 : line;
  }
  for (int k = 0; k < getNumberOfLines(); ++k) {
    long long const size = static_cast<long long>(m_lines[static_cast<std::size_t>(k)].size()) + 1;
    (k < m_lastHeaderLine ? m_headerSize : m_dataSize) += size;
  }
}

void AsciiCollator::myFindRecordSets() {
  std::string const root = rootOf(m_format);
  if (root == "PelagosHorizon2") {
    myFindPelagosHorizonSurfaces();
    return;
  }
  if (root == "PelagosShapes" || root == "PelagosPolygons" || root == "PelagosPolylines") {
    myFindPelagosShapeSets();
    return;
  }
  if (m_format.getNumberOfRecordSets() > 1) {
    if (m_format.getFilename().getFilename().isBlank())
      Message::fatal("AsciiCollator::myFindRecordSets", 0,
                     "There is no support yet for multiple record sets in static formats.");
    Message::fatal("AsciiCollator::myFindRecordSets", 0, "There is no support yet for multiple record sets in %s format.",
                   root.c_str());
  }
  m_sets.push_back(AsciiRecordSet{std::string(), getFirstDataLine(), getLastDataLine(), 0});
  m_records.emplace_back();
  for (int line = getFirstDataLine(); line <= getLastDataLine(); ++line) {
    if (isBlank(getLine(line)))
      ++m_blankLines;
    else
      m_records.back().push_back(line);
  }
  m_sets.back().size = static_cast<int>(m_records.back().size());
}

void AsciiCollator::myFindPelagosHorizonSurfaces() {
  for (int line = getFirstDataLine(); line <= getLastDataLine(); ++line) {
    std::string const& text = getLine(line);
    if (isBlank(text)) {
      ++m_blankLines;
      continue;
    }
    std::string const stripped = ascii_text::strip(text);
    if (stripped.compare(0, 7, "SURFACE") == 0 || m_sets.empty()) {
      bool const title = stripped.compare(0, 7, "SURFACE") == 0;
      m_sets.push_back(AsciiRecordSet{title ? ascii_text::strip(stripped.substr(7)) : std::string(),
                                      title ? line + 1 : line, line, 0});
      m_records.emplace_back();
      if (title) continue;
    }
    if (!ascii_text::isNumericLine(text)) continue;
    m_records.back().push_back(line);
    m_sets.back().lastLine = line;
  }
  for (std::size_t k = 0; k < m_sets.size(); ++k) m_sets[k].size = static_cast<int>(m_records[k].size());
  if (m_sets.empty()) {
    m_sets.push_back(AsciiRecordSet{std::string(), getFirstDataLine(), getLastDataLine(), 0});
    m_records.emplace_back();
  }
}

void AsciiCollator::myFindPelagosShapeSets() {
  for (int line = getFirstDataLine(); line <= getLastDataLine(); ++line) {
    std::string const& text = getLine(line);
    if (isBlank(text)) {
      ++m_blankLines;
      continue;
    }
    bool const numeric = ascii_text::isNumericLine(text);
    if (!numeric || m_sets.empty()) {
      m_sets.push_back(AsciiRecordSet{numeric ? std::string() : ascii_text::strip(text), numeric ? line : line + 1,
                                      line, 0});
      m_records.emplace_back();
      if (!numeric) continue;
    }
    m_records.back().push_back(line);
    m_sets.back().lastLine = line;
  }
  for (std::size_t k = 0; k < m_sets.size(); ++k) m_sets[k].size = static_cast<int>(m_records[k].size());
  if (m_sets.empty()) {
    m_sets.push_back(AsciiRecordSet{std::string(), getFirstDataLine(), getLastDataLine(), 0});
    m_records.emplace_back();
  }
}

AsciiCollator::AsciiRecordSet const& AsciiCollator::findRecordSet(int set) const {
  if (set < 1 || set > getNumberOfRecordSets())
    Message::fatal("AsciiCollator::findRecordSet", 0, "Program asked for record set %d but file contains record sets 1-%d.",
                   set, getNumberOfRecordSets());
  return m_sets[static_cast<std::size_t>(set - 1)];
}

std::vector<int> const& AsciiCollator::getDataRecords(int set) const {
  findRecordSet(set);
  return m_records[static_cast<std::size_t>(set - 1)];
}

int AsciiCollator::getFirstDataRecord() const {
  return m_records.empty() || m_records.front().empty() ? 0 : m_records.front().front();
}

int AsciiCollator::getNumberOfDataRecords() const {
  int n = 0;
  for (auto const& r : m_records) n += static_cast<int>(r.size());
  return n;
}

int AsciiCollator::getMaximumLineLength() const {
  std::size_t longest = 0;
  for (std::string const& line : m_lines) longest = std::max(longest, line.size());
  return static_cast<int>(longest);
}
