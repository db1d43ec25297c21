#include "database/zon/ZonMuteAdapter.h"

#include "database/zon/ZonNamedColumns.h"

namespace {

ZonNamedColumn const kNames[] = {{"MUTEOFFSETS", "MOFFSET"}, {"MUTETIMES", "MTIME"}};
ZonNamedColumns const kColumns(kNames);

}  // namespace

ZonMuteAdapter::ZonMuteAdapter(vHandle<ZonProject> const& project) : ZonPlainAdapter(project) {}

ZonMuteAdapter::~ZonMuteAdapter() {}

vLCString ZonMuteAdapter::getClass() const { return vLCString("Mute"); }

vLCString ZonMuteAdapter::getSubClass() const { return vLCString("offset"); }

vString ZonMuteAdapter::myColumnName(vUCString const& attribute) const { return kColumns.columnOf(attribute); }

vUCString ZonMuteAdapter::myAttributeName(vString const& column) const { return kColumns.attributeOf(column); }

void ZonMuteAdapter::doInit(KeyList& keys, std::list<Attribute>& attributes, PropertyI& properties) {
  ZonPlainAdapter::doInit(keys, attributes, properties);
}

void ZonMuteAdapter::doLoad(KeyList& keys, std::list<Attribute>& attributes, PropertyI& properties) {
  ZonPlainAdapter::doLoad(keys, attributes, properties);
}

void ZonMuteAdapter::doWriteAll(std::list<Attribute>& attributes, KeyList const&, PropertyI const& properties) {
  myMustBe2DOr3D("ZonMuteAdapter::doWriteAll");
  myWrite(attributes, properties);
}
