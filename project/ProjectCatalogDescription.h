#ifndef PROJECT_PROJECTCATALOGDESCRIPTION_H
#define PROJECT_PROJECTCATALOGDESCRIPTION_H

// ProjectCatalogDescription: where a catalog is, as a user names it: a type,
// and either a server and data host (the catalog types) or a flat file.
// Blank parts are completed from the default project and this host.

#include "foundation/vFilename.h"
#include "foundation/vString.h"
#include "project/ProjectType.h"

class ProjectCatalogDescription {
 public:
  ProjectCatalogDescription();
  ProjectCatalogDescription(ProjectCatalogDescription const& other) = default;
  ProjectCatalogDescription& operator=(ProjectCatalogDescription const& other) = default;
  virtual ~ProjectCatalogDescription();

  // A catalog of a type served by a server: NoType, Rondo, Kelp, Dorn,
  // UnitTest, InMemory or Zonmesh. A blank host is the default project's,
  // or this host. A Dorn server must be a known database; a Kelp server
  // must not be one of the reserved data hosts.
  void setCapi(ProjectType::PROJECT_TYPE type, vString const& server, vString const& host);
  // A flat file: its host is the data host.
  virtual void setFlatFile(vFilename const& file);
  // NoType becomes the type that a project name without one stands for:
  // Rondo.
  virtual void setDefaultProjectType();

  virtual ProjectType::PROJECT_TYPE getProjectType() const { return m_type; }
  virtual vString const& getServerHost() const { return m_serverHost; }
  virtual vString const& getDataHost() const { return m_dataHost; }
  // The directory of the flat file.
  virtual vString getPath() const;
  virtual vFilename const& getFlatFileName() const { return m_flatFile; }
  // NoType, Rondo, Kelp, Dorn, UnitTest and Zonmesh.
  virtual bool isCapi() const;
  virtual bool isFlatFile() const;
  virtual bool isInMemory() const;

  // "Type:server:host:", "FlatFile:file:", "InMemory:".
  virtual vString toString() const;

  // Same type and place: the server for Dorn and Zonmesh, the data host for
  // the other catalog types, the file for flat files.
  bool operator==(ProjectCatalogDescription const& other) const;
  bool operator!=(ProjectCatalogDescription const& other) const { return !(*this == other); }
  // By type name, then by the same field.
  bool operator<(ProjectCatalogDescription const& other) const;

  // For a Kelp data host that holds data but runs no data server, the Kelp
  // data server that serves it; empty for any other host.
  static vString getReservedDataHostServer(vString const& host);

 protected:
  // The field that places a description of this type.
  vString myPlace() const;

  ProjectType::PROJECT_TYPE m_type;
  vString m_serverHost;
  vString m_dataHost;
  vFilename m_flatFile;
};

#endif
