#include "remote/ClientAttributeSet.h"

#include "foundation/Message.h"
#include "foundation/Packer.h"
#include "project/FullStoreName.h"
#include "project/ProjectType.h"
#include "project/StoreCreationOptions.h"
#include "project/StoreOpenOptions.h"
#include "remote/ClientCodes.h"
#include "remote/ClientProject.h"

namespace {

int32_t code(ClientCode::SetCode c) { return static_cast<int32_t>(c); }

}  // namespace

COB* ClientAttributeSet::myParent(vHandle<Project> const& project) {
  ClientProject* client = dynamic_cast<ClientProject*>(project.pointer());
  if (client == nullptr)
    Message::fatal("ClientAttributeSet::ClientAttributeSet", 0,
                   "The project of a client attribute set must be a client project.");
  return client;
}

ClientAttributeSet::ClientAttributeSet(vHandle<Project> const& project)
    : AttributeSet(project), COB("AttributeSet", myParent(project)), m_open(false), m_writeable(false),
      m_created(false), m_cache(0), m_version(-1), m_options(nullptr), m_nInstances(0) {}

ClientAttributeSet::~ClientAttributeSet() { delete m_options; }

// --- exchanges ------------------------------------------------------------------

void ClientAttributeSet::mySendReceive(Packer& packer, char const* method) const {
  CommChan::StatusType const status = sendAndReceive(packer);
  if (status != CommChan::OK)
    Message::fatal(method, 0,
                   "Could not communicate with the data server. Status was %s.Please include contents of "
                   "~/DataServer.%s on %s in a error report.",
                   CommChan::status(status), ProjectType::getProjectTypeName(m_project->getProjectType()).c_str(),
                   m_project->getServerHost().c_str());
}

void ClientAttributeSet::myGetOK(Packer& packer, char const* method, int expected) const {
  mySendReceive(packer, method);
  int32_t got = 0;
  packer.unpack(got);
  if (got != expected)
    Message::fatal(method, 0, "Did not get expected message %d from data server, got %d instead.", expected,
                   static_cast<int>(got));
}

void ClientAttributeSet::myResetCache() const {
  m_cache = 0;
  m_nInstances = 0;
  m_version = -1;
  m_name = vLCString();
  m_class = vLCString();
  m_subClass = vLCString();
  m_attributes.clear();
  m_keys = KeyList();
  delete m_options;
  m_options = nullptr;
}

void ClientAttributeSet::myCheckWriteable(char const* operation) const {
  if (m_writeable) return;
  vString const label = vString("ClientAttributeSet::") + operation;
  Message::fatal(label.c_str(), 0, "AttributeSet %s is not open for writing.", m_name.c_str());
}

// --- opening and closing -------------------------------------------------------------

bool ClientAttributeSet::isOpen() const { return m_open; }

void ClientAttributeSet::create(vLCString const& name, vLCString const& className, vLCString const& subClass,
                                KeyList const& keys, StoreCreationOptions const* options) {
  Packer packer(100);
  packer.pack(code(ClientCode::Create));
  packer.pack(name);
  packer.pack(className);
  packer.pack(subClass);
  packer.pack(keys);
  packer.packBool(options != nullptr);
  if (options != nullptr) packer.pack(*options);
  myGetOK(packer, "ClientAttributeSet::create", ClientCode::Create);
  m_open = m_writeable = m_created = true;
  myResetCache();
  m_name = name;
  m_class = className;
  m_subClass = subClass;
  m_keys = keys;
  m_cache |= NameBit | ClassBit | SubClassBit | KeyListBit;
  myGetProperties();
}

void ClientAttributeSet::create(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
                                KeyList const& keys, StoreCreationOptions const* options) {
  create(name.getStoreName(), className, subClass, keys, options);
}

void ClientAttributeSet::myDoOpen(int requestCode, vLCString const& name, int version, vLCString const& className,
                                  vLCString const& subClass, StoreOpenOptions const* options) {
  char const* const label = requestCode == ClientCode::Open ? "ClientAttributeSet::open" : "ClientAttributeSet::update";
  Packer packer(100);
  packer.pack(static_cast<int32_t>(requestCode));
  packer.pack(name);
  packer.pack(static_cast<int32_t>(version));
  packer.pack(className);
  packer.pack(subClass);
  packer.packBool(options != nullptr);
  if (options != nullptr) packer.pack(*options);
  myGetOK(packer, label, requestCode);
  myGetProperties();
  m_open = true;
  myResetCache();
  m_name = name;
  m_cache |= NameBit;
  if (options != nullptr) m_options = new StoreOpenOptions(*options);
  m_nInstances = myGetNInstances();
  getVersion();
  getClass();
  getSubClass();
}

void ClientAttributeSet::open(vLCString const& name, int version, vLCString const& className,
                              vLCString const& subClass, StoreOpenOptions const* options) {
  myDoOpen(ClientCode::Open, name, version, className, subClass, options);
  m_writeable = false;
  m_created = false;
}

void ClientAttributeSet::open(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
                              StoreOpenOptions const* options) {
  open(name.getStoreName(), name.getVersion(), className, subClass, options);
}

void ClientAttributeSet::update(vLCString const& name, int version, vLCString const& className,
                                vLCString const& subClass, StoreOpenOptions const* options) {
  myDoOpen(ClientCode::Update, name, version, className, subClass, options);
  m_writeable = true;
  m_created = false;
}

void ClientAttributeSet::update(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
                                StoreOpenOptions const* options) {
  update(name.getStoreName(), name.getVersion(), className, subClass, options);
}

void ClientAttributeSet::close() {
  if (m_writeable) mySendProperties();
  m_open = m_writeable = m_created = false;
  myResetCache();
  Packer packer(20);
  packer.pack(code(ClientCode::Close));
  myGetOK(packer, "ClientAttributeSet::close", ClientCode::Close);
}

void ClientAttributeSet::doCommsReinitialize() {
  if (!m_open) return;
  vLCString const name = m_name;
  int const version = m_version;
  vLCString const className = m_class;
  vLCString const subClass = m_subClass;
  StoreOpenOptions* const options = m_options == nullptr ? nullptr : new StoreOpenOptions(*m_options);
  unsigned int const held = m_nInstances;
  try {
    if (m_writeable) {
      update(name, version, className, subClass, options);
      if (m_nInstances < held) addInstances(held - m_nInstances);
    } else {
      open(name, version, className, subClass, options);
    }
  } catch (...) {
    delete options;
    throw;
  }
  delete options;
}

// --- what the set is -------------------------------------------------------------------

unsigned int ClientAttributeSet::myGetNInstances() const {
  Packer packer(50);
  packer.pack(code(ClientCode::GetNInstances));
  myGetOK(packer, "ClientAttributeSet::myGetNInstances", ClientCode::GetNInstances);
  unsigned int n = 0;
  packer.unpack(n);
  return n;
}

unsigned int ClientAttributeSet::getNInstances() const { return m_nInstances; }

vLCString ClientAttributeSet::getName() const {
  if (m_cache & NameBit) return m_name;
  Packer packer(50);
  packer.pack(code(ClientCode::GetName));
  myGetOK(packer, "ClientAttributeSet::getName", ClientCode::GetName);
  vString name;
  packer.unpack(name);
  m_name = name;
  m_cache |= NameBit;
  return m_name;
}

int ClientAttributeSet::getVersion() const {
  if (m_cache & VersionBit) return m_version;
  Packer packer(20);
  packer.pack(code(ClientCode::GetVersion));
  myGetOK(packer, "ClientAttributeSet::getVersion", ClientCode::GetVersion);
  int32_t version = 0;
  packer.unpack(version);
  m_version = version;
  m_cache |= VersionBit;
  return m_version;
}

vLCString ClientAttributeSet::getClass() const {
  if (m_cache & ClassBit) return m_class;
  Packer packer(50);
  packer.pack(code(ClientCode::GetClass));
  myGetOK(packer, "ClientAttributeSet::getClass", ClientCode::GetClass);
  vString text;
  packer.unpack(text);
  m_class = text;
  m_cache |= ClassBit;
  return m_class;
}

vLCString ClientAttributeSet::getSubClass() const {
  if (m_cache & SubClassBit) return m_subClass;
  Packer packer(50);
  packer.pack(code(ClientCode::GetSubClass));
  myGetOK(packer, "ClientAttributeSet::getSubClass", ClientCode::GetSubClass);
  vString text;
  packer.unpack(text);
  m_subClass = text;
  m_cache |= SubClassBit;
  return m_subClass;
}

KeyList ClientAttributeSet::getKeyList() const {
  if (m_cache & KeyListBit) return m_keys;
  Packer packer(20);
  packer.pack(code(ClientCode::GetKeyList));
  myGetOK(packer, "ClientAttributeSet::getKeyList", ClientCode::GetKeyList);
  m_keys.unpack(packer);
  m_cache |= KeyListBit;
  return m_keys;
}

vHandle<Project> ClientAttributeSet::getProject() const { return m_project; }

bool ClientAttributeSet::operator==(AttributeSet const& other) const {
  if (!m_open) return !other.isOpen();
  if (!other.isOpen()) return false;
  if (getNInstances() != other.getNInstances() || getVersion() != other.getVersion()) return false;
  std::list<Attribute> const mine = getAttributeList();
  std::list<Attribute> const theirs = other.getAttributeList();
  if (mine.size() != theirs.size()) {
    Message::error("ClientAttributeSet::operator==", 0, "The sets have %d and %d attributes.",
                   static_cast<int>(mine.size()), static_cast<int>(theirs.size()));
    return false;
  }
  auto b = theirs.begin();
  for (auto a = mine.begin(); a != mine.end(); ++a, ++b) {
    if (!(*a == *b)) {
      Message::error("ClientAttributeSet::operator==", 0, "Attribute %s differs from %s.", a->getName().c_str(),
                     b->getName().c_str());
      return false;
    }
  }
  return true;
}

// --- properties ------------------------------------------------------------------------

void ClientAttributeSet::myGetProperties() {
  Packer packer(1008);
  packer.pack(code(ClientCode::GetProperties));
  myGetOK(packer, "ClientAttributeSet::myGetProperties", ClientCode::GetProperties);
  PropertyI::clearProperties();
  PropertyI::unpackProperties(packer);
}

void ClientAttributeSet::mySendProperties() {
  Packer packer(1008);
  packer.pack(code(ClientCode::SendProperties));
  packProperties(packer);
  myGetOK(packer, "ClientAttributeSet::mySendProperties", ClientCode::SendProperties);
}

void ClientAttributeSet::addProperty(Property const& property) {
  myCheckWriteable("addProperty()");
  if (PropertyI::hasProperty(property.getName())) PropertyI::removeProperty(property.getName());
  PropertyI::addProperty(property);
}

void ClientAttributeSet::addProperties(PropertyI const& other) {
  myCheckWriteable("addProperty(pi)");
  for (PropertyI::const_iterator it = other.beginProperty(); it != other.endProperty(); ++it)
    if (PropertyI::hasProperty(it->getName())) PropertyI::removeProperty(it->getName());
  PropertyI::addProperties(other);
}

void ClientAttributeSet::removeProperty(vUCString const& name) {
  myCheckWriteable("removeProperty(name)");
  PropertyI::removeProperty(name);
}

void ClientAttributeSet::removeProperty(PropertyI::iterator position) {
  myCheckWriteable("removeProperty(iterator)");
  PropertyI::removeProperty(position);
}

void ClientAttributeSet::clearProperties() {
  myCheckWriteable("clearProperties()");
  PropertyI::clearProperties();
}

void ClientAttributeSet::setPropertyList(PropertyI const&) { Message::fatal("setproplist", 0, "Needcode"); }

ClientAttributeSet& ClientAttributeSet::operator=(PropertyI const& other) {
  myCheckWriteable("operator=");
  PropertyI::clearProperties();
  PropertyI::addProperties(other);
  return *this;
}
