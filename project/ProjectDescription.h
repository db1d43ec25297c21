#ifndef PROJECT_PROJECTDESCRIPTION_H
#define PROJECT_PROJECTDESCRIPTION_H

// ProjectDescription: a catalog description and the project in it, read
// from the text a user types:
//
//     type:[[server:]host:]project (Rondo, Kelp, Dorn, UnitTest, Zonmesh)
//     f:/path/file.ext[:]          (a flat file; its directory is the project)
//     i:                           (in memory)
//     [[[type:]server:]host:]project  (any other text, as a FullProjectName,
//                                      where a first field of four must be
//                                      "notype" or empty)
//
// Blank fields take the default project's server, host and name.

#include "foundation/vLCString.h"
#include "project/FullProjectName.h"
#include "project/ProjectCatalogDescription.h"

class ProjectDescription : public ProjectCatalogDescription {
 public:
  ProjectDescription();
  explicit ProjectDescription(vString const& text);
  ProjectDescription(ProjectDescription const& other) = default;
  ProjectDescription& operator=(ProjectDescription const& other) = default;
  ~ProjectDescription() override;

  // Also takes the file's directory as project name.
  void setFlatFile(vFilename const& file) override;

  virtual vLCString const& getProjectName() const { return m_projectName; }
  virtual void setProjectName(vLCString const& name) { m_projectName = name; }
  virtual FullProjectName getFullProjectName() const;

  // The catalog's text followed by the project name.
  vString toString() const override;

  bool operator==(ProjectDescription const& other) const;
  bool operator!=(ProjectDescription const& other) const { return !(*this == other); }
  bool operator<(ProjectDescription const& other) const;

 protected:
  vLCString m_projectName;
};

#endif
