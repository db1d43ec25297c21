#ifndef PROJECT_PROJECTLISTENTRY_H
#define PROJECT_PROJECTLISTENTRY_H

// ProjectListEntry: one project that a catalog offers. Packed as its name
// alone, inside the frame of its ProjectList.

#include "foundation/Packable.h"
#include "foundation/vLCString.h"

class ProjectListEntry : public Packable {
 public:
  ProjectListEntry() {}
  explicit ProjectListEntry(vLCString const& name) : m_name(name) {}
  ~ProjectListEntry() override {}

  void pack(Packer& packer) const override;
  void unpack(Packer& packer) override;

  vLCString const& getName() const { return m_name; }
  void setName(vLCString const& name) { m_name = name; }

  bool operator==(ProjectListEntry const& other) const { return m_name == other.m_name; }
  bool operator!=(ProjectListEntry const& other) const { return !(*this == other); }
  bool operator<(ProjectListEntry const& other) const { return m_name < other.m_name; }

 protected:
  vLCString m_name;
};

#endif
