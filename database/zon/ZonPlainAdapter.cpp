#include "database/zon/ZonPlainAdapter.h"

#include <strings.h>

#include "database/kvs/Kvs.h"
#include "database/kvs/KvsDict.h"
#include "foundation/Message.h"
#include "foundation/UtlExcept.h"

using namespace kvs;

ZonPlainAdapter::ZonPlainAdapter(vHandle<ZonProject> const& project) : ZonAdapterBase(project) {}

ZonPlainAdapter::~ZonPlainAdapter() {}

vLCString ZonPlainAdapter::getClass() const { return vLCString(myTableClass()); }

vLCString ZonPlainAdapter::getSubClass() const {
  if (!myDomain.isEmpty()) return vLCString(myDomain);
  char const* domain = KvsDtDomName(KvsDtTabDom(KvsDtTab(myTableClass().c_str())));
  return vLCString(domain ? domain : "");
}

// A seismic-geometry table keeps its header values in the group the
// database has for them.
char const* ZonPlainAdapter::myParameterGroup() const {
  return strcasecmp(myInfo->getNameDetails()->getType().c_str(), "SGD") == 0 ? "SGD" : "PROP";
}

ZonAdapterBase::Object ZonPlainAdapter::myTable(char const* label) const {
  Object const table = myFindTable();
  if (!table) Message::fatal(label, 0, "The table doesn't exist for %s.\n", getStoreName().c_str());
  return table;
}

void ZonPlainAdapter::myRead(KeyList& keys, std::list<Attribute>& attributes, PropertyI& properties,
                             bool withData) {
  Object const table = myTable(withData ? "ZonPlainAdapter::doLoad" : "ZonPlainAdapter::doInit");
  myTableType = KvsType(table);
  char const* domain = KvsDomain(table);
  myDomain = domain ? domain : "";
  try {
    myReadColumns(table, keys, attributes, withData);
  } catch (UtlExcept const& e) {
    Message::fatal(withData ? "ZonPlainAdapter::doLoad" : "ZonPlainAdapter::doInit", 0, "Error reading table. %s",
                   e.getReason().c_str());
  }
  myReadParameters(table, myParameterGroup(), properties);
}

void ZonPlainAdapter::doInit(KeyList& keys, std::list<Attribute>& attributes, PropertyI& properties) {
  myRead(keys, attributes, properties, false);
}

void ZonPlainAdapter::doLoad(KeyList& keys, std::list<Attribute>& attributes, PropertyI& properties) {
  myRead(keys, attributes, properties, true);
}

ZonAdapterBase::Object ZonPlainAdapter::myWrite(std::list<Attribute> const& attributes,
                                                PropertyI const& properties) {
  Object const table = myWriteColumns(myTableClass(), attributes);
  myWriteParameters(table, myParameterGroup(), properties);
  return table;
}

void ZonPlainAdapter::doWriteAll(std::list<Attribute>& attributes, KeyList const&, PropertyI const& properties) {
  myWrite(attributes, properties);
}

void ZonPlainAdapter::myMustBe2DOr3D(char const* label) const {
  vString const domain(vString(ZonPlainAdapter::getSubClass()).c_str());
  if (strcasecmp(domain.c_str(), "2D") != 0 && strcasecmp(domain.c_str(), "3D") != 0)
    Message::fatal(label, 0, "Unknown domain %s.", domain.c_str());
}
