#ifndef SERVER_UNITTESTSTOREFILE_H
#define SERVER_UNITTESTSTOREFILE_H

// The files that give a scripted store of the UnitTest back end its data
// (see DataServerBackend): an InMemoryStore in its packed form, the
// Packer's message bytes as they stand.

#include "filestore/memory/InMemoryStore.h"
#include "foundation/vString.h"

// Writes the open store to the file; fatal when the file cannot be written.
void writeUnitTestStoreFile(InMemoryStore const& store, vString const& file);

#endif
