#ifndef TOOLS_STOREARGUMENT_H
#define TOOLS_STOREARGUMENT_H

// StoreArgument: the store a user names on the command line, in the
// system's store-name grammar. Text without a ':' is a path: a flat file
// whose format the store factory identifies ("a.sgy", "line#segy#"), or
// a packed InMemoryStore, known by its first bytes (InMemoryStoreFile).
// Everything goes through StoreDescription and StoreFactory, so each
// format and view the factories learn about is reachable from here.

#include <string>

#include "attribute/Attribute.h"
#include "foundation/vHandle.h"
#include "project/Store.h"
#include "project/StoreDescription.h"

class StoreArgument {
 public:
  // Fatal, with the grammar's own report, for a name it refuses.
  static StoreDescription describe(std::string const& text);
  // The store, open for reading.
  static vHandle<Store> open(std::string const& text);
  // Fatal unless first to last are instances of the store (n of them). A
  // range the store does not have is reported in the store's own words:
  // the smallest read of the probe attribute that shows the fault.
  static void checkRange(vHandle<Store> const& store, Attribute probe, unsigned int first, unsigned int last,
                         unsigned int n);
  // How many instances to read at once when each gives that many bytes of
  // values: a few megabytes, and never so many instances that a store
  // reading whole records (a SEG-Y store reads whole traces even for one
  // header word) holds more than that.
  static unsigned int blockSize(long long bytesPerInstance);
};

#endif
