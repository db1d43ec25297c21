#ifndef FILESTORE_ASCII_ASCIISTRATEGICREADER_H
#define FILESTORE_ASCII_ASCIISTRATEGICREADER_H

// AsciiStrategicReader: one way of turning the data lines of a record set
// into columns, one for each attribute of the format, holding every record
// of the set. Items are scanned with "%ld" for integers and "%lg" for
// floats; an item that does not scan reads as 0 and, when the format checks
// numbers, is counted and reported once by report().

#include <string>
#include <vector>

#include "attribute/Attribute.h"
#include "filestore/ascii/AsciiCollator.h"
#include "filestore/ascii/AsciiFormat.h"

class AsciiStrategicReader {
 public:
  AsciiStrategicReader(AsciiCollator const& collator, AsciiFormat const& format);
  virtual ~AsciiStrategicReader();

  // The columns of the records of a set (1-based).
  virtual std::vector<Attribute> readAll(int set) = 0;
  // The message of the non-numerical items met, if any were.
  void report() const;
  int getNonNumericalItems() const { return m_nonNumerical; }

  static void scanItem(char const* item, DataType type, void* destination);

 protected:
  // Empty columns of the format's attributes, n records each; variable
  // length ones take the lengths given.
  std::vector<Attribute> myColumns(unsigned int n, std::vector<int> const& lastLengths) const;
  void checkItem(char const* item);
  // Scans an item into a column at a record (1-based) and position.
  void myPut(Attribute& column, unsigned int record, int position, std::string const& item);
  [[noreturn]] void myTooFewItems(int line, int found, int needed) const;

  AsciiCollator const& m_collator;
  AsciiFormat const& m_format;
  int m_nonNumerical;
};

#endif
