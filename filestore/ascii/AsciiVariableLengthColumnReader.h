#ifndef FILESTORE_ASCII_ASCIIVARIABLELENGTHCOLUMNREADER_H
#define FILESTORE_ASCII_ASCIIVARIABLELENGTHCOLUMNREADER_H

// AsciiVariableLengthColumnReader: columns of lines of any length.

#include "filestore/ascii/AsciiColumnReader.h"

class AsciiVariableLengthColumnReader : public AsciiColumnReader {
 public:
  AsciiVariableLengthColumnReader(AsciiCollator const& collator, AsciiFormat const& format);
  std::vector<Attribute> readAll(int set) override;

};

#endif
