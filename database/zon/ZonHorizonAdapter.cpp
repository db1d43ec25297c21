#include "database/zon/ZonHorizonAdapter.h"

#include "database/kvs/Kvs.h"
#include "database/kvs/KvsObject.h"
#include "database/zon/ZonNamedColumns.h"
#include "foundation/Message.h"

using namespace kvs;

namespace {

ZonNamedColumn const kNames[] = {{"DATAINDEX", "DATAINDEX"}, {"HORIZONNAMES", "HZNAMES"},
                                 {"HORIZONINDEX", "HZINDEX"}, {"HTIME", "HTIME"},
                                 {"HORIZONFLOATVALUES", "HZFLOATS"}, {"RECUMBENCY", "RECUMB"}};
ZonNamedColumns const kColumns(kNames);
vUCString const kHorizonName("HORIZONNAME");

}  // namespace

ZonHorizonAdapter::ZonHorizonAdapter(vHandle<ZonProject> const& project) : ZonPlainAdapter(project) {}

ZonHorizonAdapter::~ZonHorizonAdapter() {}

vLCString ZonHorizonAdapter::getClass() const { return vLCString("horizon"); }

vLCString ZonHorizonAdapter::getSubClass() const { return ZonPlainAdapter::getSubClass(); }

vString ZonHorizonAdapter::myColumnName(vUCString const& attribute) const { return kColumns.columnOf(attribute); }

vUCString ZonHorizonAdapter::myAttributeName(vString const& column) const { return kColumns.attributeOf(column); }

void ZonHorizonAdapter::doInit(KeyList& keys, std::list<Attribute>& attributes, PropertyI& properties) {
  ZonPlainAdapter::doInit(keys, attributes, properties);
  const KvsParam* name = nullptr;
  for (Object child : myFindTable()->children)
    if (KvsIsA(child, kvsParamsClass) && child->name == "SGD") name = KvsParamFind(child, "HZNAME");
  if (properties.hasProperty(kHorizonName)) properties.removeProperty(kHorizonName);
  if (name) properties.addProperty(Property(kHorizonName, vString(name->text.c_str())));
}

void ZonHorizonAdapter::doLoad(KeyList& keys, std::list<Attribute>& attributes, PropertyI& properties) {
  ZonPlainAdapter::doLoad(keys, attributes, properties);
}

void ZonHorizonAdapter::doWriteAll(std::list<Attribute>& attributes, KeyList const&, PropertyI const& properties) {
  if (!properties.hasProperty(kHorizonName))
    Message::fatal("ZonHorizonAdapter::doWriteAll", 0, "The property HORIZONNAME is required for horizon %s.",
                   getStoreName().c_str());
  myMustBe2DOr3D("ZonHorizonAdapter::doWriteAll");
  Object const table = myWrite(attributes, properties);
  KvsParam name;
  name.name = "HZNAME";
  name.cls = "SGD";
  name.fmt = "C";
  name.text = properties.findProperty(kHorizonName)->getString().c_str();
  KvsParamPut(KvsCreate(table, KvsNclass, "SGD", 0L), name);
}
