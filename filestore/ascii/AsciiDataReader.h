#ifndef FILESTORE_ASCII_ASCIIDATAREADER_H
#define FILESTORE_ASCII_ASCIIDATAREADER_H

// AsciiDataReader: the values of a text table's attributes. The reading
// strategy is chosen once: a format of fixed columns reads by columns (on
// fixed-length lines or not); otherwise single line records read by items
// (on fixed-length lines or not); lines of several records read as a fold
// map; anything else as a stream of items. The first read of a record set
// reads all of it; attributes are then served from memory.

#include <map>
#include <memory>
#include <vector>

#include "attribute/Attribute.h"
#include "filestore/ascii/AsciiCollator.h"
#include "filestore/ascii/AsciiFormat.h"
#include "filestore/ascii/AsciiStrategicReader.h"

class AsciiDataReader {
 public:
  AsciiDataReader(AsciiCollator const& collator, AsciiFormat const& format);
  ~AsciiDataReader();

  AsciiFormat const& getFormat() const { return m_format; }
  // Records of a set (1-based).
  unsigned int getNumberOfRecords(int set);
  // The whole column of an attribute of a set; null for a name the format
  // does not have.
  Attribute const* getColumn(int set, vUCString const& name);
  // Values of records of a set (1-based) into the attribute, converted to
  // its type.
  void read(int set, Attribute& attribute, std::vector<unsigned int> const& records);

 private:
  void myGetNewReadingStrategy();
  void myRead(int set);

  AsciiCollator const& m_collator;
  AsciiFormat const& m_format;
  std::unique_ptr<AsciiStrategicReader> m_strategy;
  std::map<int, std::vector<Attribute> > m_sets;
};

#endif
