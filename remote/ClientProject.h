#ifndef REMOTE_CLIENTPROJECT_H
#define REMOTE_CLIENTPROJECT_H

// ClientProject: a project served by the data server of its catalog. Each
// operation is one request to the twin in the server and one reply; the
// host names and the type come from the catalog without a message.

#include "foundation/vHandle.h"
#include "foundation/vLCString.h"
#include "project/Project.h"
#include "remote/COB.h"

class ClientProjectCatalog;
class Packer;

class ClientProject : public Project, public COB {
 public:
  // The catalog must be a ClientProjectCatalog.
  explicit ClientProject(vHandle<ProjectCatalog> const& catalog);
  ~ClientProject() override;

  void open(vLCString const& name) override;
  void close() override;
  // Fatal for a closed project.
  vLCString getName() const override;
  ProjectType::PROJECT_TYPE getProjectType() const override;
  bool isOpen() const override;
  vHandle<ProjectCatalog> getProjectCatalog() override;
  vHandle<StoreList> getStoreList(vLCString const& storeClass, vLCString const& subClass) override;
  vHandle<StoreDetailsList> getStoreDetailsList(vLCString const& storeClass, vLCString const& subClass) override;
  vString getProjectHost() const override;
  vString getServerHost() const override;
  bool deleteStore(vLCString const& name, int version, vLCString const& storeClass,
                   vLCString const& subClass) override;
  bool purgeStore(int keep, vLCString const& name, vLCString const& storeClass, vLCString const& subClass) override;
  bool hasStore(vLCString const& name, int version) override;
  StoreDetails getStoreDetails(vLCString const& name, int version) const override;
  AttributeSetDetailsList getAttributeSetDetails(vLCString const& name, int version) override;
  // Opens the new twin again under the name, if open.
  void doCommsReinitialize() override;

 private:
  ClientProject(ClientProject const&) = delete;
  ClientProject& operator=(ClientProject const&) = delete;

  static COB* myParent(vHandle<ProjectCatalog> const& catalog);
  void mySendReceive(Packer& packer, char const* method) const;
  // The exchange, and the reply's code read and checked.
  void myGetOK(Packer& packer, char const* method, int expected) const;

  bool m_open;
  vHandle<vLCString> m_name;
};

#endif
