#include "database/zon/ZonWDepthAdapter.h"

#include "database/zon/ZonNamedColumns.h"
#include "foundation/Message.h"

namespace {

ZonNamedColumn const kNames[] = {{"XVAL", "XVAL"}, {"YVAL", "YVAL"}, {"ATVAL", "ATVAL"}};
ZonNamedColumns const kColumns(kNames);

}  // namespace

ZonWDepthAdapter::ZonWDepthAdapter(vHandle<ZonProject> const& project) : ZonPlainAdapter(project) {}

ZonWDepthAdapter::~ZonWDepthAdapter() {}

vLCString ZonWDepthAdapter::getClass() const { return vLCString("wdepth"); }

vLCString ZonWDepthAdapter::getSubClass() const { return vLCString(); }

vString ZonWDepthAdapter::myColumnName(vUCString const& attribute) const { return kColumns.columnOf(attribute); }

vUCString ZonWDepthAdapter::myAttributeName(vString const& column) const { return kColumns.attributeOf(column); }

void ZonWDepthAdapter::doInit(KeyList& keys, std::list<Attribute>& attributes, PropertyI& properties) {
  ZonPlainAdapter::doInit(keys, attributes, properties);
}

void ZonWDepthAdapter::doLoad(KeyList& keys, std::list<Attribute>& attributes, PropertyI& properties) {
  ZonPlainAdapter::doLoad(keys, attributes, properties);
}

void ZonWDepthAdapter::doWriteAll(std::list<Attribute>& attributes, KeyList const&, PropertyI const& properties) {
  char const* const needed[] = {"XVAL", "YVAL", "ATVAL"};
  for (char const* name : needed) {
    bool found = false;
    for (Attribute const& a : attributes) found = found || a.getName() == vUCString(name);
    if (!found)
      Message::fatal("ZonWDepthAdapter::doWriteAll", 0, "Attribute %s is missing in water depth %s.", name,
                     getStoreName().c_str());
  }
  myWrite(attributes, properties);
}
