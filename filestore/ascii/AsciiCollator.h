#ifndef FILESTORE_ASCII_ASCIICOLLATOR_H
#define FILESTORE_ASCII_ASCIICOLLATOR_H

// AsciiCollator: cuts the text of a table into lines, the header, and the
// record sets of its data. Lines are cut at line ends, or, for a format of
// fixed-length lines, every length of the first line. The header is the
// format's header lines, or, when it names none, the lines before the
// first line of numbers only. Only the Pelagos horizon and shape formats
// have more than one record set: a horizon's sets start at "SURFACE"
// lines, a shape file's at any line of the data that is not numbers. Blank
// lines are counted and skipped.

#include <string>
#include <vector>

#include "filestore/ascii/AsciiFormat.h"

class AsciiCollator {
 public:
  struct AsciiRecordSet {
    std::string name;
    // 1-based lines of the set's data, inclusive; size is its data lines.
    int firstLine;
    int lastLine;
    int size;
  };

  AsciiCollator(char const* text, long long length, AsciiFormat const& format);

  std::vector<std::string> const& getLines() const { return m_lines; }
  // 1-based.
  std::string const& getLine(int line) const { return m_lines.at(static_cast<std::size_t>(line - 1)); }
  int getFixedLineLength() const { return m_fixedLineLength; }
  int getNumberOfLines() const { return static_cast<int>(m_lines.size()); }
  int getLineLength(int line) const { return static_cast<int>(getLine(line).size()); }
  int getMaximumLineLength() const;
  int getLastHeaderLine() const { return m_lastHeaderLine; }
  int getFirstDataLine() const { return m_lastHeaderLine + 1; }
  int getLastDataLine() const { return static_cast<int>(m_lines.size()); }
  int getEndOfData() const { return getLastDataLine(); }
  long long getHeaderSize() const { return m_headerSize; }
  long long getDataSize() const { return m_dataSize; }
  int getBlankLines() const { return m_blankLines; }
  // The data lines of a set that hold data (not blank, not a set's title).
  std::vector<int> const& getDataRecords(int set) const;
  int getFirstDataRecord() const;
  int getNumberOfDataRecords() const;
  int getNumberOfRecordSets() const { return static_cast<int>(m_sets.size()); }
  std::string const& getRecordSetName(int set) const { return findRecordSet(set).name; }
  // 1-based; fatal outside the sets of the file.
  AsciiRecordSet const& findRecordSet(int set) const;
  std::vector<AsciiFormat::Range> const& getColumnsList() const { return m_format.getColumnsList(); }

 private:
  void myArrangeAsLines(char const* text, long long length);
  void myArrangeFixedLengthDataIntoLines(char const* text, long long length);
  void myArrangeFreeFormatDataIntoLines(char const* text, long long length);
  void myFindHeader();
  void myFindRecordSets();
  void myFindPelagosHorizonSurfaces();
  void myFindPelagosShapeSets();

  AsciiFormat const& m_format;
  std::vector<std::string> m_lines;
  int m_fixedLineLength;
  int m_lastHeaderLine;
  long long m_headerSize;
  long long m_dataSize;
  int m_blankLines;
  std::vector<AsciiRecordSet> m_sets;
  std::vector<std::vector<int> > m_records;
};

#endif
