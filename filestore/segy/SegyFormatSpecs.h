#ifndef FILESTORE_SEGY_SEGYFORMATSPECS_H
#define FILESTORE_SEGY_SEGYFORMATSPECS_H

// SegyFormatSpecs: the entries of a SEG-Y format description file, in file
// order, and the entries that lie in the trace by the name of the attribute
// each one made.

#include <map>
#include <vector>

#include "attribute/Attribute.h"
#include "foundation/DataType.h"
#include "foundation/vHandle.h"
#include "foundation/vString.h"
#include "foundation/vUCString.h"

struct SegyFormatSpecs {
  enum Location { BINARY = 1, TRACE = 2 };

  struct Entry {
    // The name the file gives, and the second name of its line.
    vUCString name;
    vString alias;
    // The attribute the entry made (trace entries only, once made).
    vHandle<Attribute> attribute;
    int location;
    // Byte offset, 0-based.
    int offset;
    // Type in the file: vINT32, vINT16 or vFLOAT32.
    DataType type;
    vString description;
  };

  std::vector<Entry> entries;
  // Index into entries, by the name of the attribute made.
  std::map<vUCString, std::size_t> traceEntries;
};

#endif
