#ifndef FILESTORE_ASCII_ASCIIFIXEDLENGTHCOLUMNREADER_H
#define FILESTORE_ASCII_ASCIIFIXEDLENGTHCOLUMNREADER_H

// AsciiFixedLengthColumnReader: columns of lines cut by the fixed length of the
// format.

#include "filestore/ascii/AsciiColumnReader.h"

class AsciiFixedLengthColumnReader : public AsciiColumnReader {
 public:
  AsciiFixedLengthColumnReader(AsciiCollator const& collator, AsciiFormat const& format);
  std::vector<Attribute> readAll(int set) override;

};

#endif
