#ifndef FILESTORE_ASCII_ASCIIDYNAMICREADER_H
#define FILESTORE_ASCII_ASCIIDYNAMICREADER_H

// AsciiDynamicReader: records of as many items as the format has attributes, read
// as one stream of items over the lines of the set, so that a record may
// run over several lines.

#include "filestore/ascii/AsciiStrategicReader.h"

class AsciiDynamicReader : public AsciiStrategicReader {
 public:
  AsciiDynamicReader(AsciiCollator const& collator, AsciiFormat const& format);
  std::vector<Attribute> readAll(int set) override;
 protected:
  // The items of the set's lines, each with its line number.
  void myItems(int set, std::vector<std::string>& items, std::vector<int>& lines) const;
  // Records of several lines whose last attribute takes the items left
  // over; a record ends at a blank line.
  std::vector<Attribute> myReadVariableLengthRecordsIntoBuffers(int set);
};

#endif
