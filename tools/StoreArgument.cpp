#include "tools/StoreArgument.h"

#include <sys/stat.h>

#include <algorithm>

#include "foundation/Message.h"
#include "foundation/vUtl.h"
#include "project/StoreFactory.h"
#include "tools/InMemoryStoreFile.h"

namespace {

// A plain path: without ':', or one that is there on disk (a file name may
// hold ':' and '#', which a store name reads as its separators).
bool isPath(std::string const& text) {
  struct stat s;
  return text.find(':') == std::string::npos || ::stat(text.c_str(), &s) == 0;
}

// The file on this host that the text names, as a plain path or as a flat
// file's store name; empty for a store of any other kind or on another host.
std::string localFile(std::string const& text) {
  if (isPath(text)) return text;
  vString report;
  if (!StoreDescription::validateStoreName(vString(text.c_str()), report)) return std::string();
  StoreDescription const description{vString(text.c_str())};
  if (!description.isFlatFile()) return std::string();
  vFilename file = description.getFlatFileName();
  if (!file.getHost().isBlank() && file.getHost() != vUtl::gethostname()) return std::string();
  file.clearHost();
  return file.getFilename().c_str();
}

}  // namespace

StoreDescription StoreArgument::describe(std::string const& text) {
  if (text.empty()) Message::fatal("StoreArgument::describe", 0, "No store named.");
  if (isPath(text)) return StoreDescription(vFilename(text.c_str()));
  vString report;
  if (!StoreDescription::validateStoreName(vString(text.c_str()), report))
    Message::fatal("StoreArgument::describe", 0, "%s", report.c_str());
  return StoreDescription(vString(text.c_str()));
}

vHandle<Store> StoreArgument::open(std::string const& text) {
  // A pipe would be waited on for ever by the first read of its bytes,
  // however the file is named.
  std::string const file = localFile(text);
  struct stat s;
  if (!file.empty() && ::stat(file.c_str(), &s) == 0) {
    if (S_ISFIFO(s.st_mode) || S_ISSOCK(s.st_mode))
      Message::fatal("StoreArgument::open", 0, "'%s' is a pipe or a socket, not a file that holds a store.",
                     file.c_str());
    if (S_ISDIR(s.st_mode))
      Message::fatal("StoreArgument::open", 0,
                     "'%s' is a directory: name a file in it (a data server lists a directory of files as a "
                     "project, see rondo ls).",
                     file.c_str());
  }
  if (!text.empty() && isPath(text) && InMemoryStoreFile::recognise(text)) {
    // Loaded, named by its in-memory name and closed, so that the factory
    // opens it as it opens any store; the factory's handle keeps it alive.
    vHandle<Store> loaded = InMemoryStoreFile::load(text);
    std::string const name = StoreDescription(loaded).toString().c_str();
    loaded->close();
    return open(name);
  }
  StoreDescription const description = describe(text);
  return StoreFactory::openStore(description, description.getAttributeSetName(), nullptr);
}

void StoreArgument::checkRange(vHandle<Store> const& store, Attribute probe, unsigned int first, unsigned int last,
                               unsigned int n) {
  if (first <= last && last <= n) return;
  if (last > n)
    store->read(probe, last, last);
  else if (first > n)
    // The store would name the instance as a last one, which the user did not give.
    Message::fatal("StoreArgument::checkRange", 0, "first instance %u must be <= number of instances %u.", first, n);
  else
    store->read(probe, first, last);
  Message::fatal("StoreArgument::checkRange", 0, "Instances %u to %u are not in the store, which has %u.", first,
                 last, n);
}

unsigned int StoreArgument::blockSize(long long bytesPerInstance) {
  long long const bytes = 8LL << 20;
  long long const instances = 2048;
  return static_cast<unsigned int>(
      std::max<long long>(1, std::min<long long>(instances, bytes / std::max<long long>(1, bytesPerInstance))));
}
