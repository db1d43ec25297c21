#ifndef FILESTORE_DISK_EXISTINGATTRIBUTEFILE_H
#define FILESTORE_DISK_EXISTINGATTRIBUTEFILE_H

// ExistingAttributeFile: the process-wide register of the kinds of
// attribute file, by file extension. Each kind registers one example of
// itself; a file is then opened (or deleted) by the example of its
// extension. The concrete kinds live above this layer: they are registered
// by the one registration point of the program (registry/), never by
// static initialisation, so that linking this layer pulls in none of them.
// Extensions compare exactly. One thread at a time.

#include <map>
#include <string>

#include "filestore/disk/AttributeFile.h"
#include "foundation/vHandle.h"
#include "foundation/vString.h"

class ExistingAttributeFile {
 public:
  // The one register, made at the first call.
  static ExistingAttributeFile& getInstance();

  // Takes over the example. A null example and a second example for one
  // extension are fatal.
  void registerExample(vString const& extension, AttributeFile* example);
  bool isRegistered(vString const& extension) const;
  // A new file object over the file, made by the example of its extension.
  vHandle<AttributeFile> open(vFilename const& name, Attribute const& shape, AttributeFile::OpenOptions options);
  // Removes the file through the example of its extension.
  void deleteFile(vFilename const& name);

 private:
  ExistingAttributeFile() {}
  ExistingAttributeFile(ExistingAttributeFile const&) = delete;
  ExistingAttributeFile& operator=(ExistingAttributeFile const&) = delete;

  AttributeFile& myExampleFor(char const* label, vFilename const& name);

  std::map<std::string, vHandle<AttributeFile> > m_examples;
};

#endif
