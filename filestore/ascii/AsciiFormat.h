#ifndef FILESTORE_ASCII_ASCIIFORMAT_H
#define FILESTORE_ASCII_ASCIIFORMAT_H

// AsciiFormat: what a text table looks like. Loaded from a format
// description file (".txf"), found by recognising a few well-known headers
// (getSpecification), or made up by looking at the data.
//
// A description file holds tags in the manner of XML, found by searching
// for '<' and '>', names and argument names compared without regard to
// case; the body of a tag runs to the next '<':
//
//   <DynamicFormat>
//   <Header Lines="1-3 5-5"></Header>
//   <SingleLineRecords Length="FIXED" Columns="1-10 11-20" Formats="i32 f64">
//     CDP DEPTH
//   </SingleLineRecords>
//
// with RepeatingRecords (lines of several records) and MultiLineRecords
// (records over several lines) as the other record tags. The body names
// the attributes: defined names take their definition, others are vFLOAT64
// of length 1; "..." makes the records variable length (the last
// attribute takes what remains of a record). Faults in a description are
// messages and fall back to defaults.
//
// Made from data, the first line of numbers only ends the header; its
// number of items picks the first built-in format with as many attributes,
// or else a generic format whose attributes are named by the header line
// just before the numbers when it has as many words, and COLUMN_<n>
// otherwise.

#include <list>
#include <string>
#include <vector>

#include "attribute/Attribute.h"
#include "foundation/vFilename.h"
#include "foundation/vHandle.h"
#include "foundation/vLCString.h"
#include "foundation/vString.h"
#include "foundation/vUCString.h"
#include "geometry/CMPBasicGrid.h"

class StoreDescription;

class AsciiFormat {
 public:
  enum RecordKind { REPEATING = 0, SINGLE_LINE = 1, MULTI_LINE = 2 };
  // A 1-based, inclusive range of line or character column numbers.
  struct Range {
    int first;
    int last;
  };

  // An empty generic format: single line records, no attributes.
  AsciiFormat();
  explicit AsciiFormat(vFilename const& specification);
  // The description's format spec, or else one found for its file.
  explicit AsciiFormat(StoreDescription const& description);
  explicit AsciiFormat(char const* data);

  bool isDynamic() const { return m_dynamic; }
  vFilename const& getFilename() const { return m_fileName; }
  vUCString const& getZAttributeName() const { return m_zAttributeName; }
  std::list<Attribute> const& getAttributeList() const { return m_attributes; }
  std::list<Attribute> const& getAttributeDescriptions() const { return m_attributes; }
  vLCString getStoreClass() const;
  vLCString getStoreSubClass() const;
  std::vector<vUCString> const& getKeyNames() const { return m_keyNames; }
  void setNumberOfRecordSets(int n) { m_nRecordSets = n; }
  int getNumberOfRecordSets() const { return m_nRecordSets; }
  bool hasFixedColumns() const { return !m_columns.empty(); }
  std::vector<Range> const& getColumnsList() const { return m_columns; }
  std::vector<DataType> const& getFormatsList() const { return m_formats; }
  std::vector<Range> const& getHeaderRangesList() const { return m_headerRanges; }
  int getNumberOfRecordHeaderItems() const { return m_nRecordHeaderItems; }
  void setCheckingNumbers(bool checking) { m_checkingNumbers = checking; }
  bool isCheckingNumbers() const { return m_checkingNumbers; }
  bool areRecordsSingleLine() const { return m_kind == SINGLE_LINE; }
  bool areRecordsMultiLine() const { return m_kind == MULTI_LINE; }
  bool areLinesMultiRecord() const { return m_kind == REPEATING; }
  int getRecordKind() const { return m_kind; }
  char getRecordSeparator() const { return m_recordSeparator; }
  char getItemSeparator() const { return m_itemSeparator; }
  bool hasFixedLengthLines() const { return m_fixedLengthLines; }
  bool areRecordsVariableLength() const { return m_variableLength; }
  void setAttributeName(int index, char const* name);
  // The first letter of the name of the attribute of a column (0-based).
  char getAttributeInitialForColumn(int column) const;
  // Fatal without one: "Attempt to access empty grid.".
  CMPBasicGrid const& getCMPBasicGrid() const;
  bool hasCMPBasicGrid() const { return m_hasGrid; }
  void setCMPBasicGrid(CMPBasicGrid const& grid);
  // The last line of the header ranges, 0 without a header.
  int getLastHeaderLine() const;
  // Attribute index (0-based) to character columns.
  void setColumns(int index, int first, int last);
  void setRecordsAreVariableLength(bool variable) { m_variableLength = variable; }
  void setRecordsAreSingleLine(bool single);
  void setLinesAreFixedLength(bool fixed) { m_fixedLengthLines = fixed; }
  void setRecordsAreMultiLine(bool multi);
  // New attributes are vFLOAT64 "COLUMN_<n>".
  void setNumberOfAttributes(int n);
  void setAttributes(std::list<Attribute> const& attributes);
  // A format from the text of a description, as if read from a file of
  // that name.
  static AsciiFormat fromText(char const* specification, vFilename const& name = vFilename());
  // Writes the description file back in the form it is read in.
  void write(vFilename const& file) const;

  // The support directory of the built-in formats: the support files
  // directory followed by "Capi/".
  static vString getDirectory();
  // The built-in format that the start of a text or file has, blank when
  // none; a file that does not open has none.
  static vFilename getSpecification(char const* text);
  static vFilename getSpecification(vFilename const& file);
  // The "*.txf" files of the support directory, in name order.
  static std::vector<vFilename> getSpecifications();
  // The root name of the built-in format of a text, blank when none.
  static vString getFormatIdentifier(char const* text);
  static bool isNumber(char const* text);

 private:
  void myConstructFromFilename(vFilename const& specification);
  void myParseFormatSpecification(vString const& text);
  void myParseTag(vString const& name, vString const& arguments, vString const& body);
  void myParseRecordsTag(int kind, vString const& arguments, vString const& body);
  void myConstructFromData(char const* data);
  void myConstructTextTable(std::vector<std::string> const& lines, std::size_t first);
  bool myMatchPredefinedFormat(int count);
  void myConstructDynamicFormat(char const* data);

  vFilename m_fileName;
  vString m_text;
  std::list<Attribute> m_attributes;
  std::vector<Range> m_columns;
  std::vector<DataType> m_formats;
  std::vector<Range> m_headerRanges;
  std::vector<vUCString> m_keyNames;
  int m_kind;
  bool m_fixedLengthLines;
  bool m_dynamic;
  bool m_checkingNumbers;
  bool m_variableLength;
  char m_recordSeparator;
  char m_itemSeparator;
  int m_nRecordSets;
  int m_nRecordHeaderItems;
  vUCString m_zAttributeName;
  CMPBasicGrid m_grid;
  bool m_hasGrid;
};

#endif
