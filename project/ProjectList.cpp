#include "project/ProjectList.h"

#include <algorithm>

#include "foundation/Message.h"
#include "foundation/Packer.h"

void ProjectListEntry::pack(Packer& packer) const { packer.pack(m_name); }

void ProjectListEntry::unpack(Packer& packer) {
  vString name;
  packer.unpack(name);
  m_name = name;
}

void ProjectList::pack(Packer& packer) const {
  packer.packFrame(Magic, Version);
  packer.pack(static_cast<int32_t>(m_entries.size()));
  for (ProjectListEntry const& e : m_entries) e.pack(packer);
  packer.endFrame();
}

void ProjectList::unpack(Packer& packer) {
  m_entries.clear();
  short magic = 0;
  short version = 0;
  packer.unpackFrame(magic, version);
  if (magic != Magic)
    Message::fatal("ProjectList::unpack", 0, "Magic number mismatch: expected %d, got %d.", Magic, magic);
  if (version != Version)
    Message::fatal("ProjectList::unpack", 0, "Version number mismatch: expected %d, got %d.", Version, version);
  int32_t n = 0;
  packer.unpack(n);
  // Each name takes at least five bytes: a count beyond what is left is
  // forged, and must not size anything.
  if (n < 0 || n > packer.getNRemainingBytes())
    Message::fatal("ProjectList::unpack", 0, "Bad number of projects %d with %d bytes left.", static_cast<int>(n),
                   packer.getNRemainingBytes());
  std::vector<ProjectListEntry> entries(static_cast<size_t>(n));
  for (ProjectListEntry& e : entries) e.unpack(packer);
  packer.endFrame();
  m_entries.swap(entries);
}

void ProjectList::sort() { std::stable_sort(m_entries.begin(), m_entries.end()); }

ProjectList::iterator ProjectList::find(vLCString const& name) {
  return std::find_if(m_entries.begin(), m_entries.end(),
                      [&name](ProjectListEntry const& e) { return e.getName() == name; });
}

ProjectList::const_iterator ProjectList::find(vLCString const& name) const {
  return std::find_if(m_entries.begin(), m_entries.end(),
                      [&name](ProjectListEntry const& e) { return e.getName() == name; });
}
