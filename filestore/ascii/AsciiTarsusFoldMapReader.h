#ifndef FILESTORE_ASCII_ASCIITARSUSFOLDMAPREADER_H
#define FILESTORE_ASCII_ASCIITARSUSFOLDMAPREADER_H

// AsciiTarsusFoldMapReader: a fold map: lines of several fold values, one
// record each, laid over the grid of the header along inlines (crossline
// numbers fastest); INLINE and CROSSLINE come from the grid.

#include "filestore/ascii/AsciiDynamicReader.h"

class AsciiTarsusFoldMapReader : public AsciiDynamicReader {
 public:
  AsciiTarsusFoldMapReader(AsciiCollator const& collator, AsciiFormat const& format);
  std::vector<Attribute> readAll(int set) override;

};

#endif
