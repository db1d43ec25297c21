#ifndef FILESTORE_ASCII_ASCIICOLUMNREADER_H
#define FILESTORE_ASCII_ASCIICOLUMNREADER_H

// AsciiColumnReader: one record a line, each attribute cut out of its own range
// of character columns. A line that ends before a column it needs is
// fatal, with the line.

#include "filestore/ascii/AsciiStrategicReader.h"

class AsciiColumnReader : public AsciiStrategicReader {
 public:
  AsciiColumnReader(AsciiCollator const& collator, AsciiFormat const& format);
  std::vector<Attribute> readAll(int set) override;
};

#endif
