#ifndef FILESTORE_ASCII_ASCIIFIXEDLENGTHDYNAMICREADER_H
#define FILESTORE_ASCII_ASCIIFIXEDLENGTHDYNAMICREADER_H

// AsciiFixedLengthDynamicReader: as its base, on lines that the collator cut
// by the fixed length of the format.

#include "filestore/ascii/AsciiVariableLengthDynamicReader.h"

class AsciiFixedLengthDynamicReader : public AsciiVariableLengthDynamicReader {
 public:
  AsciiFixedLengthDynamicReader(AsciiCollator const& collator, AsciiFormat const& format);
  std::vector<Attribute> readAll(int set) override;

};

#endif
