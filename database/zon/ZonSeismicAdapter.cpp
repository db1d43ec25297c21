#include "database/zon/ZonSeismicAdapter.h"

#include "database/kvs/Kvs.h"
#include "foundation/Message.h"

using namespace kvs;

ZonSeismicAdapter::ZonSeismicAdapter(vHandle<ZonProject> const& project) : ZonPlainAdapter(project) {}

ZonSeismicAdapter::~ZonSeismicAdapter() {}

vLCString ZonSeismicAdapter::getClass() const { return vLCString("seismic"); }

vLCString ZonSeismicAdapter::getSubClass() const { return ZonPlainAdapter::getSubClass(); }

vString ZonSeismicAdapter::myColumnName(vUCString const& attribute) const { return vString(attribute.c_str()); }

vUCString ZonSeismicAdapter::myAttributeName(vString const& column) const { return vUCString(column.c_str()); }

void ZonSeismicAdapter::doInit(KeyList& keys, std::list<Attribute>& attributes, PropertyI& properties) {
  Object const table = myTable("ZonSeismicAdapter::doInit");
  myTableType = KvsType(table);
  char const* domain = KvsDomain(table);
  myDomain = domain ? domain : "";
  keys.clear();
  attributes.clear();
  long rows = 0;
  KvsGet(table, KvsNsize, &rows, 0L);
  myInfo->setNInstances(static_cast<unsigned int>(rows));
  myReadParameters(table, "SEIS", properties);
}

void ZonSeismicAdapter::doLoad(KeyList&, std::list<Attribute>&, PropertyI&) {}

void ZonSeismicAdapter::doWriteAll(std::list<Attribute>&, KeyList const&, PropertyI const&) {}

void ZonSeismicAdapter::createAttributeSet(vLCString const& name, KeyList const&) {
  Message::fatal("ZonSeismicAdapter::createAttributeSet", 0,
                 "Store %s is seismic; no attribute set %s can be made in it here.", getStoreName().c_str(),
                 name.c_str());
}
