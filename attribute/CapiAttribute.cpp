#include "attribute/CapiAttribute.h"

#include <sys/stat.h>

#include <algorithm>
#include <ostream>

#include "foundation/Message.h"
#include "foundation/vString.h"
#include "foundation/vUtl.h"

namespace {

struct Switches {
  Capi::eAttributeConversion attributeConversion = Capi::eAttributeTranslation;
  Capi::eDataConversion dataConversion = Capi::eDataTypeConversion;
  bool dataBrowserActive = false;
  bool zon9999Hidden = false;
  DataType horizonTimesType = vINT32;
};

Switches& switches() {
  static Switches s;
  return s;
}

template <class It>
It findByName(It first, It last, vUCString const& name) {
  return std::find_if(first, last, [&](Attribute const& a) { return a.getName() == name; });
}

template <class It>
It findName(It first, It last, vUCString const& name) {
  return std::find_if(first, last, [&](vUCString const& n) { return n == name; });
}

}  // namespace

namespace Capi {

bool has(std::list<Attribute> const& list, Attribute const& attribute) { return has(list, attribute.getName()); }

bool has(std::list<Attribute> const& list, vUCString const& name) {
  return findByName(list.begin(), list.end(), name) != list.end();
}

std::list<Attribute>::iterator find(std::list<Attribute>& list, Attribute const& attribute) {
  return findByName(list.begin(), list.end(), attribute.getName());
}

std::list<Attribute>::const_iterator find(std::list<Attribute> const& list, Attribute const& attribute) {
  return findByName(list.begin(), list.end(), attribute.getName());
}

std::list<Attribute>::iterator find(std::list<Attribute>& list, vUCString const& name) {
  return findByName(list.begin(), list.end(), name);
}

std::list<Attribute>::const_iterator find(std::list<Attribute> const& list, vUCString const& name) {
  return findByName(list.begin(), list.end(), name);
}

bool has(std::vector<vUCString> const& list, Attribute const& attribute) { return has(list, attribute.getName()); }

bool has(std::vector<vUCString> const& list, vUCString const& name) {
  return findName(list.begin(), list.end(), name) != list.end();
}

std::vector<vUCString>::iterator find(std::vector<vUCString>& list, Attribute const& attribute) {
  return findName(list.begin(), list.end(), attribute.getName());
}

std::vector<vUCString>::const_iterator find(std::vector<vUCString> const& list, Attribute const& attribute) {
  return findName(list.begin(), list.end(), attribute.getName());
}

std::vector<vUCString>::iterator find(std::vector<vUCString>& list, vUCString const& name) {
  return findName(list.begin(), list.end(), name);
}

std::vector<vUCString>::const_iterator find(std::vector<vUCString> const& list, vUCString const& name) {
  return findName(list.begin(), list.end(), name);
}

void print(std::ostream& out, std::list<Attribute>::const_iterator first, std::list<Attribute>::const_iterator last) {
  for (; first != last; ++first) out << *first;
}

void setAttributeConversion(eAttributeConversion conversion) { switches().attributeConversion = conversion; }
eAttributeConversion getAttributeConversion() { return switches().attributeConversion; }
void setDataConversion(eDataConversion conversion) { switches().dataConversion = conversion; }
eDataConversion getDataConversion() { return switches().dataConversion; }

void setDataBrowserActive(bool active) { switches().dataBrowserActive = active; }
bool isDataBrowserActive() { return switches().dataBrowserActive; }

bool haveCapiRondo() {
  vString release;
  if (!vUtl::getenv("RELEASE", release) || release.isEmpty()) return false;
  struct stat info;
  return ::stat(release.c_str(), &info) == 0;
}

bool haveAnyCapiRondo() { return haveCapiRondo(); }

bool haveCapiDorn() { return false; }

bool isCapiZon9999Hidden() { return switches().zon9999Hidden; }
void hideCapiZon9999(bool hide) { switches().zon9999Hidden = hide; }

DataType setHorizonTimesType(DataType type) {
  if (type != vINT32 && type != vFLOAT32)
    Message::fatal("Capi:setHorizonTimesType", 0, "Illegal type %s, must be vINT32 or vFLAOT32.",
                   vUtl::dataTypeName(type).c_str());
  DataType const old = switches().horizonTimesType;
  switches().horizonTimesType = type;
  return old;
}

DataType getHorizonTimesType() { return switches().horizonTimesType; }

vUCString const& getHorizonTimeName() {
  static vUCString const integerTimes("HTIME");
  static vUCString const floatTimes("HORIZONFLOATVALUES");
  return switches().horizonTimesType == vFLOAT32 ? floatTimes : integerTimes;
}

}  // namespace Capi
