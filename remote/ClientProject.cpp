#include "remote/ClientProject.h"

#include <iterator>

#include "foundation/Message.h"
#include "foundation/Packer.h"
#include "remote/ClientCodes.h"
#include "remote/ClientProjectCatalog.h"

namespace {

int32_t code(ClientCode::ProjectCode c) { return static_cast<int32_t>(c); }

}  // namespace

COB* ClientProject::myParent(vHandle<ProjectCatalog> const& catalog) {
  ClientProjectCatalog* client = dynamic_cast<ClientProjectCatalog*>(catalog.pointer());
  if (client == nullptr)
    Message::fatal("ClientProject::ClientProject", 0, "The catalog of a client project must be a client catalog.");
  return client;
}

ClientProject::ClientProject(vHandle<ProjectCatalog> const& catalog)
    : Project(catalog), COB("Project", myParent(catalog)), m_open(false), m_name(new vLCString) {}

ClientProject::~ClientProject() {}

void ClientProject::mySendReceive(Packer& packer, char const* method) const {
  CommChan::StatusType const status = sendAndReceive(packer);
  if (status != CommChan::OK)
    Message::fatal(method, 0,
                   "Could not communicate with the data server. Status was %s. Please include contents of "
                   "~/DataServer.%s on %s in an error report.",
                   CommChan::status(status), ProjectType::getProjectTypeName(getProjectType()).c_str(),
                   getServerHost().c_str());
}

void ClientProject::myGetOK(Packer& packer, char const* method, int expected) const {
  mySendReceive(packer, method);
  int32_t got = 0;
  packer.unpack(got);
  if (got != expected)
    Message::fatal(method, 0, "Did not get expected message %d from data server, got %d instead.", expected,
                   static_cast<int>(got));
}

void ClientProject::open(vLCString const& name) {
  Packer packer(100);
  packer.pack(code(ClientCode::ProjectOpen));
  packer.pack(name);
  myGetOK(packer, "ClientProject::open", ClientCode::ProjectAck);
  *m_name = name;
  m_open = true;
}

void ClientProject::close() {
  Packer packer(20);
  packer.pack(code(ClientCode::ProjectClose));
  myGetOK(packer, "ClientProject::close", ClientCode::ProjectAck);
  *m_name = vLCString();
  m_open = false;
}

vLCString ClientProject::getName() const {
  if (!m_open) Message::fatal("ClientProject::getName", 0, "Project is not open yet.");
  return *m_name;
}

ProjectType::PROJECT_TYPE ClientProject::getProjectType() const { return m_catalog->getProjectType(); }

bool ClientProject::isOpen() const { return m_open; }

vHandle<ProjectCatalog> ClientProject::getProjectCatalog() { return m_catalog; }

vString ClientProject::getProjectHost() const { return m_catalog->getHost(); }

vString ClientProject::getServerHost() const { return m_catalog->getServer(); }

vHandle<Project::StoreList> ClientProject::getStoreList(vLCString const& storeClass, vLCString const& subClass) {
  Packer packer(100);
  packer.pack(code(ClientCode::GetStoreList));
  packer.pack(storeClass);
  packer.pack(subClass);
  myGetOK(packer, "ClientProject::getStoreList", ClientCode::GetStoreList);
  vHandle<StoreList> list(new StoreList);
  unpack(packer, std::back_inserter(*list), vLCString());
  return list;
}

vHandle<Project::StoreDetailsList> ClientProject::getStoreDetailsList(vLCString const& storeClass,
                                                                      vLCString const& subClass) {
  Packer packer(100);
  packer.pack(code(ClientCode::GetStoreDetailsList));
  packer.pack(storeClass);
  packer.pack(subClass);
  myGetOK(packer, "ClientProject::getStoreDetailsList", ClientCode::GetStoreDetailsList);
  vHandle<StoreDetailsList> list(new StoreDetailsList);
  unpack(packer, std::back_inserter(*list), StoreDetails());
  return list;
}

bool ClientProject::deleteStore(vLCString const& name, int version, vLCString const& storeClass,
                                vLCString const& subClass) {
  Packer packer(100);
  packer.pack(code(ClientCode::DeleteStore));
  packer.pack(name);
  packer.pack(static_cast<int32_t>(version));
  packer.pack(storeClass);
  packer.pack(subClass);
  myGetOK(packer, "ClientProject::deleteStore", ClientCode::DeleteStore);
  bool done = false;
  packer.unpackBool(done);
  return done;
}

bool ClientProject::purgeStore(int keep, vLCString const& name, vLCString const& storeClass,
                               vLCString const& subClass) {
  Packer packer(100);
  packer.pack(code(ClientCode::PurgeStore));
  packer.pack(static_cast<int32_t>(keep));
  packer.pack(name);
  packer.pack(storeClass);
  packer.pack(subClass);
  myGetOK(packer, "ClientProject::purgeStore", ClientCode::PurgeStore);
  int32_t purged = 0;
  packer.unpack(purged);
  return purged != 0;
}

bool ClientProject::hasStore(vLCString const& name, int version) {
  Packer packer(100);
  packer.pack(code(ClientCode::HasStore));
  packer.pack(name);
  packer.pack(static_cast<int32_t>(version));
  myGetOK(packer, "ClientProject::hasStore", ClientCode::HasStore);
  bool has = false;
  packer.unpackBool(has);
  return has;
}

StoreDetails ClientProject::getStoreDetails(vLCString const& name, int version) const {
  Packer packer(100);
  packer.pack(code(ClientCode::GetStoreDetails));
  packer.pack(name);
  packer.pack(static_cast<int32_t>(version));
  myGetOK(packer, "ClientProject::getStoreDetails", ClientCode::GetStoreDetails);
  StoreDetails details;
  details.unpack(packer);
  return details;
}

Project::AttributeSetDetailsList ClientProject::getAttributeSetDetails(vLCString const& name, int version) {
  Packer packer(100);
  packer.pack(code(ClientCode::GetAttributeSetDetails));
  packer.pack(name);
  packer.pack(static_cast<int32_t>(version));
  myGetOK(packer, "ClientProject::getAttributeSetDetails", ClientCode::GetAttributeSetDetails);
  AttributeSetDetailsList list;
  unpack(packer, std::back_inserter(list), AttributeSetDetails());
  return list;
}

void ClientProject::doCommsReinitialize() {
  if (m_open) open(*m_name);
}
