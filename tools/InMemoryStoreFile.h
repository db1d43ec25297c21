#ifndef TOOLS_INMEMORYSTOREFILE_H
#define TOOLS_INMEMORYSTOREFILE_H

// InMemoryStoreFile: a file that holds an InMemoryStore in its packed form
// (as DemoStores writes them for the UnitTest back end). Such a file is
// known by its first bytes, whatever its name: a Packer message, in either
// byte order, whose first entry is the frame of an InMemoryStore.

#include <string>

#include "foundation/vHandle.h"
#include "project/Store.h"

class InMemoryStoreFile {
 public:
  static bool recognise(std::string const& path);
  // A new store loaded from the file, open; fatal for a file that cannot be
  // read or unpacked.
  static vHandle<Store> load(std::string const& path);
};

#endif
