#include "native/MapdataReader.h"

#include <algorithm>

#include "attribute/Property.h"
#include "native/TimesliceToMapdataDecorator.h"

namespace {

bool isSeismic(vHandle<Store> const& store) { return store->getClass() == "seismic"; }

bool oneOf(vUCString const& name, std::initializer_list<char const*> candidates) {
  for (char const* candidate : candidates)
    if (name == candidate) return true;
  return false;
}

// The three plot names after a pass; the pass runs only while one is blank.
bool incomplete(vUCString const& x, vUCString const& y, vUCString const& value) {
  return x.isBlank() || y.isBlank() || value.isBlank();
}

// The values of n instances of a scalar column, taken flat from the start.
template <class To, class From>
void convert(From const* from, unsigned int n, std::vector<To>& out) {
  for (unsigned int k = 0; k < n; ++k) out[k] = static_cast<To>(from[k]);
}

template <class To>
void copyColumn(Attribute const& attribute, unsigned int n, std::vector<To>& out) {
  if (n == 0 || attribute.getNInstances() == 0) return;
  // No more than the attribute holds, whatever the store counts.
  n = static_cast<unsigned int>(std::min<long long>(n, attribute.getTotalLength()));
  switch (attribute.getDataType()) {
    case vINT32:
      convert(attribute.getInt32Pointer(1), n, out);
      break;
    case vINT64:
      convert(attribute.getInt64Pointer(1), n, out);
      break;
    case vFLOAT32:
      convert(attribute.getFloat32Pointer(1), n, out);
      break;
    case vFLOAT64:
      convert(attribute.getFloat64Pointer(1), n, out);
      break;
    default:
      break;
  }
}

}  // namespace

MapdataReader::MapdataReader(vHandle<Store> const& store) : StoreClassReader(store), m_valid(false) {
  if (m_store->getClass() == "seismic" && m_store->getSubClass() == "timeslice")
    m_store = vHandle<Store>(new TimesliceToMapdataDecorator(m_store));
  myFindPlotAttributes();
}

MapdataReader::~MapdataReader() {}

bool MapdataReader::isValid() const { return m_valid; }

std::vector<vUCString> const& MapdataReader::getNames() const { return m_scalarNames; }

void MapdataReader::getNames(vString& x, vString& y, vString& value, vString& locator) const {
  x = m_x;
  y = m_y;
  value = m_value;
  locator = m_locator;
}

void MapdataReader::myFindPlotAttributes() {
  vUCString x, y, value, locator;
  std::list<Attribute> const attributes = m_store->getAttributeList();
  bool const seismic = isSeismic(m_store);

  if (seismic) {
    for (Attribute const& a : attributes) {
      vUCString const& name = a.getName();
      if (a.getLength() == 1) m_scalarNames.push_back(name);
      if (name == "XVAL") x = name;
      if (name == "YVAL") y = name;
      if (oneOf(name, {"ATVAL", "STATIC"})) value = name;
      if (oneOf(name, {"LOCATOR", "VALUE"})) locator = name;
    }
    if (incomplete(x, y, value)) {
      for (Attribute const& a : attributes) {
        vUCString const& name = a.getName();
        if (name == "X") x = name;
        if (name == "Y") y = name;
        if (name == "Z") value = name;
      }
    }
    if (incomplete(x, y, value)) {
      for (Attribute const& a : attributes) {
        vUCString const& name = a.getName();
        if (name == "XCOORD") x = name;
        if (name == "YCOORD") y = name;
        if (oneOf(name, {"TIME", "DEPTH", "CMP.FOLD"})) value = name;
      }
    }
    if (incomplete(x, y, value)) {
      for (Attribute const& a : attributes) {
        vUCString const& name = a.getName();
        if (oneOf(name, {"XLINE", "CROSSLINE"})) x = name;
        if (name == "INLINE") y = name;
        if (oneOf(name, {"TIME", "DEPTH", "CMP.FOLD"})) value = name;
      }
    }
  }

  // The store's own choice beats every name.
  if (m_store->hasProperty(vUCString("XYZ_PLOT_ATTRIBUTES"))) {
    Property const& chosen = *m_store->findProperty(vUCString("XYZ_PLOT_ATTRIBUTES"));
    x = chosen.getString(1);
    y = chosen.getString(2);
    value = chosen.getString(3);
  }
  if (m_store->hasProperty(vUCString("LOCATOR_ATTRIBUTE")))
    locator = m_store->findProperty(vUCString("LOCATOR_ATTRIBUTE"))->getString(1);

  if (seismic && !value.isBlank() && (x.isBlank() || y.isBlank())) {
    for (Attribute const& a : attributes) {
      vUCString const& name = a.getName();
      if (oneOf(name, {"CMP.X", "CMP.RW.X"})) x = name;
      if (oneOf(name, {"CMP.Y", "CMP.RW.Y"})) y = name;
    }
  }
  if (locator.isBlank() && !value.isBlank()) locator = value;

  m_valid = myIsValidAttribute(attributes, x) && myIsValidAttribute(attributes, y) &&
            myIsValidAttribute(attributes, value) && myIsValidAttribute(attributes, locator);
  if (m_valid) {
    m_x = x;
    m_y = y;
    m_value = value;
    m_locator = locator;
  }
}

bool MapdataReader::myIsValidAttribute(std::list<Attribute> const& attributes, vUCString const& name) const {
  if (name.isBlank()) return false;
  for (Attribute const& a : attributes) {
    if (a.getName() != name) continue;
    DataType const type = a.getDataType();
    return type == vINT32 || type == vFLOAT32 || type == vINT64 || type == vFLOAT64;
  }
  // A name from the properties that the store does not hold.
  return false;
}

void MapdataReader::myCopyToFloat64(Attribute const& attribute, unsigned int n, std::vector<double>& out) {
  copyColumn(attribute, n, out);
}

void MapdataReader::myCopyToFloat32(Attribute const& attribute, unsigned int n, std::vector<float>& out) {
  copyColumn(attribute, n, out);
}

void MapdataReader::getData(std::vector<double>& x, std::vector<double>& y, std::vector<float>& value) const {
  if (!isValid()) return;
  unsigned int const n = m_store->getNInstances();
  Attribute ax = m_store->getAttribute(m_x);
  Attribute ay = m_store->getAttribute(m_y);
  Attribute av = m_store->getAttribute(m_value);
  if (n > 0) {
    m_store->read(ax, 1, n);
    m_store->read(ay, 1, n);
    m_store->read(av, 1, n);
  }
  x.assign(n, 0.0);
  y.assign(n, 0.0);
  value.assign(n, 0.0f);
  myCopyToFloat64(ax, n, x);
  myCopyToFloat64(ay, n, y);
  myCopyToFloat32(av, n, value);
}

void MapdataReader::getData(std::vector<vUCString> const& names, std::list<Attribute>& out) const {
  unsigned int const n = m_store->getNInstances();
  for (vUCString const& name : names) {
    if (!m_store->hasAttribute(name)) continue;
    out.push_back(m_store->getAttribute(name));
    if (n > 0) m_store->read(out.back(), 1, n);
  }
}
