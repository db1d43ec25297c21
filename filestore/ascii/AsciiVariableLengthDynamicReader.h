#ifndef FILESTORE_ASCII_ASCIIVARIABLELENGTHDYNAMICREADER_H
#define FILESTORE_ASCII_ASCIIVARIABLELENGTHDYNAMICREADER_H

// AsciiVariableLengthDynamicReader: one record a line, items separated by blanks, tabs
// or commas; with records of variable length the last attribute takes the
// items that remain.

#include "filestore/ascii/AsciiDynamicReader.h"

class AsciiVariableLengthDynamicReader : public AsciiDynamicReader {
 public:
  AsciiVariableLengthDynamicReader(AsciiCollator const& collator, AsciiFormat const& format);
  std::vector<Attribute> readAll(int set) override;
 protected:
  std::vector<Attribute> myReadLines(int set);
};

#endif
