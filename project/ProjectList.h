#ifndef PROJECT_PROJECTLIST_H
#define PROJECT_PROJECTLIST_H

// ProjectList: the projects of a catalog, in the order the catalog gives
// them until sort() is called. Packed as a frame holding the number of
// entries and then each entry's name.

#include <vector>

#include "foundation/Packable.h"
#include "project/ProjectListEntry.h"

class ProjectList : public Packable {
 public:
  static short const Magic = 1020;
  static short const Version = 1;

  typedef std::vector<ProjectListEntry>::iterator iterator;
  typedef std::vector<ProjectListEntry>::const_iterator const_iterator;

  ProjectList() {}
  ~ProjectList() override {}

  void pack(Packer& packer) const override;
  // Replaces the entries; a foreign frame is fatal.
  void unpack(Packer& packer) override;

  void add(ProjectListEntry const& entry) { m_entries.push_back(entry); }
  iterator erase(iterator position) { return m_entries.erase(position); }
  // By name.
  void sort();
  unsigned int size() const { return static_cast<unsigned int>(m_entries.size()); }
  iterator begin() { return m_entries.begin(); }
  iterator end() { return m_entries.end(); }
  const_iterator begin() const { return m_entries.begin(); }
  const_iterator end() const { return m_entries.end(); }
  // The first entry of that name, or end().
  iterator find(vLCString const& name);
  const_iterator find(vLCString const& name) const;

  bool operator==(ProjectList const& other) const { return m_entries == other.m_entries; }
  bool operator!=(ProjectList const& other) const { return !(*this == other); }

 protected:
  std::vector<ProjectListEntry> m_entries;
};

#endif
