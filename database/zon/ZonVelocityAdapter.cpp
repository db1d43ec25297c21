#include "database/zon/ZonVelocityAdapter.h"

#include <vector>

#include "database/zon/CapiZon.h"
#include "foundation/Message.h"
#include "foundation/SystemProperty.h"
#include "foundation/SystemPropertyManager.h"

ZonVelocityAdapter::ZonVelocityAdapter(vHandle<ZonProject> const& project) : ZonPlainAdapter(project) {}

ZonVelocityAdapter::~ZonVelocityAdapter() {}

vLCString ZonVelocityAdapter::getClass() const { return vLCString("velocity"); }

vLCString ZonVelocityAdapter::getSubClass() const { return vLCString("time_rms"); }

vString ZonVelocityAdapter::myColumnName(vUCString const& attribute) const { return vString(attribute.c_str()); }

vUCString ZonVelocityAdapter::myAttributeName(vString const& column) const { return vUCString(column.c_str()); }

void ZonVelocityAdapter::doInit(KeyList& keys, std::list<Attribute>& attributes, PropertyI& properties) {
  ZonPlainAdapter::doInit(keys, attributes, properties);
}

void ZonVelocityAdapter::doLoad(KeyList& keys, std::list<Attribute>& attributes, PropertyI& properties) {
  ZonPlainAdapter::doLoad(keys, attributes, properties);
}

void ZonVelocityAdapter::handleKVSVelocitySyntheticEndData(std::list<Attribute>& attributes, KeyList const& keys) {
  vUCString const section(CapiZon::getSystemPropertySection().c_str());
  if (!SystemPropertyManager::hasSystemProperty(section, "KVSENDVELOCITY") || keys.getNKeys() != 2) return;
  double const end = SystemPropertyManager::getSystemProperty(section, "KVSENDVELOCITY").getFloat64Value(0);
  Attribute* location = nullptr;
  Attribute* time = nullptr;
  Attribute* velocity = nullptr;
  for (Attribute& a : attributes) {
    if (a.getName() == keys.findName(1)) location = &a;
    else if (a.getName() == keys.findName(2)) time = &a;
    else velocity = &a;
  }
  if (!location || !time || !velocity) return;
  // The rows of each function, then its end row where it falls short.
  unsigned int const n = location->getNInstances();
  std::vector<double> rows[3];
  for (unsigned int i = 1; i <= n; ++i) {
    rows[0].push_back(location->getValue(i));
    rows[1].push_back(time->getValue(i));
    rows[2].push_back(velocity->getValue(i));
    bool const last = i == n || location->getValue(i + 1) != location->getValue(i);
    if (last && time->getValue(i) < end) {
      rows[0].push_back(location->getValue(i));
      rows[1].push_back(end);
      rows[2].push_back(velocity->getValue(i));
    }
  }
  Attribute* const columns[3] = {location, time, velocity};
  for (int c = 0; c < 3; ++c) {
    columns[c]->resize(static_cast<unsigned int>(rows[c].size()));
    for (std::size_t i = 0; i < rows[c].size(); ++i)
      columns[c]->setValue(static_cast<unsigned int>(i + 1), rows[c][i]);
  }
}

void ZonVelocityAdapter::doWriteAll(std::list<Attribute>& attributes, KeyList const& keys,
                                    PropertyI const& properties) {
  if (attributes.size() != 3)
    Message::fatal("ZonVelocityAdapter::doWriteAll", 0, "Wrong number of Attributes <%d> in AttributeList for %s",
                   static_cast<int>(attributes.size()), getStoreName().c_str());
  myMustBe2DOr3D("ZonVelocityAdapter::doWriteAll");
  handleKVSVelocitySyntheticEndData(attributes, keys);
  myWrite(attributes, properties);
}
