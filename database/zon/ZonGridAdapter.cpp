#include "database/zon/ZonGridAdapter.h"

#include <strings.h>

#include "database/zon/ZonNamedColumns.h"
#include "foundation/Message.h"

namespace {

ZonNamedColumn const kNames[] = {{"CMP_ORDERING", "ORDERING"},
                                 {"FIRST_CMP", "FIRSTCMP"},
                                 {"CMP_INCREMENT", "CMPINC"},
                                 {"CMPLINE_INCREMENT", "CMPLINEINC"},
                                 {"FIRST_INLINE", "FIRSTIL"},
                                 {"INLINE_INCREMENT", "ILINC"},
                                 {"NUM_INLINES", "NIL"},
                                 {"INLINE_INTERVAL", "ILINTV"},
                                 {"FIRST_CROSSLINE", "FIRSTXL"},
                                 {"CROSSLINE_INCREMENT", "XLINC"},
                                 {"NUM_CROSSLINES", "NXL"},
                                 {"CROSSLINE_INTERVAL", "XLINTV"},
                                 {"ROTATION_ANGLE", "ROTATION"},
                                 {"X_REALWORLD_ORIGIN", "XWORLD"},
                                 {"Y_REALWORLD_ORIGIN", "YWORLD"},
                                 {"X_SURVEY_ORIGIN", "XSURVEY"},
                                 {"Y_SURVEY_ORIGIN", "YSURVEY"},
                                 {"NUM_BINS_ALONG_ORDERING_WITH_PADDING", "NBINSPAD"}};
ZonNamedColumns const kColumns(kNames);

bool oneOf(vString const& text, char const* a, char const* b) {
  return strcasecmp(text.c_str(), a) == 0 || strcasecmp(text.c_str(), b) == 0;
}

}  // namespace

ZonGridAdapter::ZonGridAdapter(vHandle<ZonProject> const& project) : ZonPlainAdapter(project) {}

ZonGridAdapter::~ZonGridAdapter() {}

vLCString ZonGridAdapter::getClass() const { return vLCString("ZonGrid"); }

vLCString ZonGridAdapter::getSubClass() const { return vLCString(); }

vString ZonGridAdapter::myColumnName(vUCString const& attribute) const { return kColumns.columnOf(attribute); }

vUCString ZonGridAdapter::myAttributeName(vString const& column) const { return kColumns.attributeOf(column); }

void ZonGridAdapter::doInit(KeyList& keys, std::list<Attribute>& attributes, PropertyI& properties) {
  ZonPlainAdapter::doInit(keys, attributes, properties);
}

void ZonGridAdapter::doLoad(KeyList& keys, std::list<Attribute>& attributes, PropertyI& properties) {
  ZonPlainAdapter::doLoad(keys, attributes, properties);
}

void ZonGridAdapter::doWriteAll(std::list<Attribute>& attributes, KeyList const&, PropertyI const& properties) {
  char const* const label = "ZonGridAdapter::doWriteAll";
  for (Attribute const& a : attributes) {
    if (a.getName() != vUCString("CMP_ORDERING") || a.getDataType() != vSTRING) continue;
    for (unsigned int i = 1; i <= a.getNInstances(); ++i)
      if (!oneOf(a.getString(i), "ALONG_INLINES", "ALONG_CROSSLINES"))
        Message::fatal(label, 0, "Unknown ordering %s for grid %s.", a.getString(i).c_str(), getStoreName().c_str());
  }
  vUCString const units("UNITS");
  if (properties.hasProperty(units)) {
    vString const given = properties.findProperty(units)->getString();
    if (!oneOf(given, "METERS", "FEET"))
      Message::fatal(label, 0, "Unknown units %s for grid %s.", given.c_str(), getStoreName().c_str());
  }
  myWrite(attributes, properties);
}
