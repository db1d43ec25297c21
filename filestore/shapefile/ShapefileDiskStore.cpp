#include "filestore/shapefile/ShapefileDiskStore.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "filestore/shapefile/ShapefileWriter.h"
#include "foundation/Message.h"
#include "project/Project.h"

namespace {

char const* const kNotOpen = "Shapefile Disk File has not been opened yet!";
char const* const kWholeOnly =
    "At this time, this file format only supports writing of the entire attribute, first to last.";

// A column of n instances, of the lengths given when it is variable length.
Attribute makeColumn(Attribute const& definition, unsigned int n, std::vector<int> const& lengths) {
  Attribute column(definition);
  if (definition.isVariableLength()) {
    int* owned = new int[std::max<std::size_t>(lengths.size(), 1)];
    std::copy(lengths.begin(), lengths.end(), owned);
    column.resize(n, nullptr, owned);
  } else {
    column.resize(n);
  }
  return column;
}

void setAt(Attribute& a, unsigned int instance, int k, double value) {
  switch (a.getDataType()) {
    case vINT16:
      a.getInt16Pointer(instance)[k] = static_cast<short>(std::lround(value));
      break;
    case vINT32:
      a.getInt32Pointer(instance)[k] = static_cast<int>(std::llround(value));
      break;
    case vINT64:
      a.getInt64Pointer(instance)[k] = std::llround(value);
      break;
    case vFLOAT32:
      a.getFloat32Pointer(instance)[k] = static_cast<float>(value);
      break;
    default:
      a.getFloat64Pointer(instance)[k] = value;
  }
}

bool isGeometry(vUCString const& name) {
  static char const* const names[] = {"X", "Y", "Z", "PART_LENGTHS", "XVAL", "YVAL", "ATVAL", "LOCATOR"};
  for (char const* n : names)
    if (name == vUCString(n)) return true;
  return false;
}

}  // namespace

ShapefileDiskStore::ShapefileDiskStore() : ShapefileDiskStore(vHandle<Project>()) {}

ShapefileDiskStore::ShapefileDiskStore(vHandle<Project> const& project)
    : SingleSetDiskStore(project, "ShapefileDiskStore", kNotOpen),
      m_created(false),
      m_shapeType(0),
      m_nInstances(0) {}

ShapefileDiskStore::~ShapefileDiskStore() {
  if (!m_isOpen) return;
  try {
    close();
  } catch (...) {
    // A file that could not be written has reported why.
  }
}

// --- opening, making and closing --------------------------------------------------------

void ShapefileDiskStore::open(StoreDescription const& description) {
  if (!description.isFlatFile())
    Message::fatal("ShapefileDiskStore::open(StoreDescription)", 0, "StoreDescription must contain a flat file.");
  open(description.getFlatFileName());
}

void ShapefileDiskStore::open(vFilename const& file) {
  if (m_isOpen) close();
  vFilename shp(file);
  shp.setExtension("shp");
  ShapefileReader reader(shp);
  if (!reader.isOpen())
    Message::fatal("ShapefileDiskStore::open", 0,
                   "Could not open shapefile %s.\nCheck the spelling, the permissions, and that both data (.shp) and "
                   "index (.shx) files are present.\n%s",
                   shp.c_str(), reader.getFailure().c_str());
  m_shapeType = reader.getShapeType();
  m_class = Shapefile::getStoreClass(reader.getShapeType());
  m_subClass = Shapefile::getStoreSubClass(reader.getShapeType());
  m_fileName = shp;
  m_nInstances = reader.getNShapes();
  myBuildPropertyList(reader.getCoordinateSystem());
  myAddGeometryAttributes();
  myTakeGeometry(reader);
  myAddDBFAttributes(reader);
  getIndexingTable().clearCache();
  m_created = false;
  m_isOpen = true;
}

void ShapefileDiskStore::create(StoreDescription const& description, vLCString const& subClass) {
  if (!description.isFlatFile())
    Message::fatal("ShapefileDiskStore::create(StoreDescription)", 0, "StoreDescription must contain a flat file.");
  vLCString storeClass = description.getStoreClass();
  if (storeClass.isBlank()) storeClass = "shapes";
  if (Shapefile::getShapeType(storeClass, subClass) == 0)
    Message::fatal("ShapefileDiskStore::create", 0, "A shapefile cannot hold the store class %s, subclass %s.",
                   storeClass.c_str(), subClass.c_str());
  if (m_isOpen) close();
  clearProperties();
  m_fileName = description.getFlatFileName();
  m_fileName.setExtension("shp");
  m_class = storeClass;
  m_shapeType = Shapefile::getShapeType(storeClass, subClass);
  m_subClass = Shapefile::getStoreSubClass(m_shapeType);
  m_nInstances = 0;
  myAddGeometryAttributes();
  getIndexingTable().clearCache();
  m_created = true;
  m_isOpen = true;
}

void ShapefileDiskStore::create(vFilename const& file) { create(StoreDescription(file), vLCString()); }

void ShapefileDiskStore::close() {
  if (m_isOpen && m_created) {
    // The store ends closed whether or not the files could be written.
    m_isOpen = false;
    myDoBufferedWrites();
  }
  m_isOpen = false;
  m_created = false;
  myClearAttributes();
  m_columns.clear();
  m_nInstances = 0;
  getIndexingTable().clearCache();
}

void ShapefileDiskStore::myBuildPropertyList(vString const& coordinateSystem) {
  clearProperties();
  DiskStore::addProperty(Property("COORDINATE_SYSTEM", coordinateSystem));
  // Only a system that says what it is has a domain: a local one, or a .prj
  // that holds no system at all, is not geographic.
  char const* domain = "unknown";
  if (std::strncmp(coordinateSystem.c_str(), "PROJCS", 6) == 0)
    domain = "projected";
  else if (std::strncmp(coordinateSystem.c_str(), "GEOGCS", 6) == 0)
    domain = "geographic";
  DiskStore::addProperty(Property("COORDINATE_DOMAIN", domain));
  // Map data name their own axes and value for a map picture.
  if (m_class == vLCString("mapdata")) {
    vString const names[] = {"XVAL", "YVAL", "ATVAL"};
    DiskStore::addProperty(Property("XYZ_PLOT_ATTRIBUTES", 3u, names));
  }
}

void ShapefileDiskStore::myAddAttribute(Attribute const& definition) {
  myAddDefinition(definition);
  m_columns[definition.getName()] = Attribute(definition);
}

void ShapefileDiskStore::myAddGeometryAttributes() {
  myClearAttributes();
  m_columns.clear();
  if (m_class == vLCString("mapdata")) {
    for (char const* name : {"XVAL", "YVAL", "ATVAL"}) myAddAttribute(Attribute(name, "", vFLOAT32));
    myAddAttribute(Attribute("LOCATOR", "", vINT32));
    return;
  }
  bool const points = m_subClass == vLCString("points");
  int const length = points ? 1 : Attribute::VARIABLE_LENGTH;
  for (char const* name : {"X", "Y", "Z"}) myAddAttribute(Attribute(name, "", vFLOAT64, length));
  if (!points) myAddAttribute(Attribute("PART_LENGTHS", "", vINT32, Attribute::VARIABLE_LENGTH));
}

void ShapefileDiskStore::myTakeGeometry(ShapefileReader const& reader) {
  unsigned int const n = reader.getNShapes();
  std::vector<int> lengths(n), parts(n);
  for (unsigned int s = 1; s <= n; ++s) {
    lengths[s - 1] = reader.getLength(s);
    parts[s - 1] = static_cast<int>(reader.getShape(s).parts.size());
  }
  for (Attribute const& definition : myAttributes()) {
    vUCString const& name = definition.getName();
    Attribute column = makeColumn(definition, n, name == vUCString("PART_LENGTHS") ? parts : lengths);
    for (unsigned int s = 1; s <= n; ++s) {
      Shapefile::Shape const& shape = reader.getShape(s);
      if (name == vUCString("LOCATOR")) {
        column.setInt32(s, static_cast<int>(s));
        continue;
      }
      std::vector<int> partLengths(shape.parts);
      std::vector<double> const* values = &shape.z;
      if (name == vUCString("X") || name == vUCString("XVAL")) values = &shape.x;
      if (name == vUCString("Y") || name == vUCString("YVAL")) values = &shape.y;
      if (name == vUCString("PART_LENGTHS")) {
        long long total = 0;
        for (std::size_t k = 0; k < partLengths.size(); ++k) {
          column.getInt32Pointer(s)[k] = partLengths[k];
          total += partLengths[k];
        }
        if (total != static_cast<long long>(shape.x.size()))
          Message::fatal("ShapefileDiskStore::open", 0, "***ERROR*** Accumulated lengths do not match data size.");
        continue;
      }
      int const count = definition.isVariableLength() ? column.getLength(s) : 1;
      for (int k = 0; k < count && k < static_cast<int>(values->size()); ++k) setAt(column, s, k, (*values)[k]);
    }
    m_columns[name] = std::move(column);
  }
}

void ShapefileDiskStore::myAddDBFAttributes(ShapefileReader const& reader) {
  for (Attribute const& field : reader.getFields()) {
    vUCString const& name = field.getName();
    if (name == vUCString("LOCATOR") && m_class == vLCString("mapdata")) {
      Attribute& locator = m_columns[name];
      for (unsigned int s = 1; s <= m_nInstances; ++s)
        locator.setInt32(s, static_cast<int>(std::llround(field.getValue(s))));
      continue;
    }
    if (isGeometry(name) || m_columns.count(name) > 0) continue;
    Attribute definition(name, field.getClass(), field.getDataType());
    myAddDefinition(definition);
    Attribute column;
    column.copyData(field);
    m_columns[name] = std::move(column);
  }
}

// --- what the store holds ---------------------------------------------------------------

unsigned int ShapefileDiskStore::getNInstances() const {
  myCheckOpen("ShapefileDiskStore::getNInstances");
  return m_nInstances;
}

Attribute const& ShapefileDiskStore::myColumn(char const* label, vUCString const& name) const {
  auto const found = m_columns.find(name);
  if (found == m_columns.end())
    Message::fatal(label, 0, "Attribute %s does not exist in file %s.", name.c_str(), m_fileName.getRoot().c_str());
  return found->second;
}

void ShapefileDiskStore::openAttributeSet(vLCString const& name) {
  myCheckOpen("ShapefileDiskStore::openAttributeSet");
  SingleSetDiskStore::openAttributeSet(name);
}

void ShapefileDiskStore::myRefuseAttributeSet(vLCString const& name) const {
  Message::fatal("ShapefileDiskStore::openAttributeSet", 0, "File '%s' does not have AttributeSet names '%s'.",
                 m_fileName.c_str(), name.c_str());
}

// --- reads ------------------------------------------------------------------------------

void ShapefileDiskStore::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  char const* const label = "ShapefileDiskStore::read";
  myCheckOpen(label);
  last = myCheckRange(label, first, last);
  Attribute const& column = myColumn(label, attribute.getName());
  std::vector<unsigned int> instances(last - first + 1);
  for (unsigned int i = first; i <= last; ++i) instances[i - first] = i;
  myCopyOut(column, attribute, instances);
}

void ShapefileDiskStore::read(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  char const* const label = "ShapefileDiskStore::read";
  myCheckOpen(label);
  myCheckList(label, attribute.getName(), instances);
  myCopyOut(myColumn(label, attribute.getName()), attribute, instances);
}

void ShapefileDiskStore::myCopyOut(Attribute const& column, Attribute& attribute,
                                   std::vector<unsigned int> const& instances) const {
  DataType const wanted = attribute.getDataType();
  bool const text = column.getDataType() == vSTRING;
  if (text != (wanted == vSTRING))
    Message::fatal("ShapefileDiskStore::read", 0, "Cannot convert from %s to %s for Attribute %s.",
                   text ? "String" : "a number", text ? "a number" : "String", attribute.getName().c_str());
  Attribute result(attribute.getName(), attribute.getClass(), wanted, column.getLength(), attribute.getSampleRate(),
                   attribute.getFirstTime());
  unsigned int const n = static_cast<unsigned int>(instances.size());
  std::vector<int> lengths;
  if (column.isVariableLength())
    for (unsigned int i : instances) lengths.push_back(column.getLength(i));
  result = makeColumn(result, n, lengths);
  for (unsigned int k = 0; k < n; ++k) {
    unsigned int const from = instances[k];
    int const count = column.isVariableLength() ? column.getLength(from) : column.getLength();
    for (int p = 0; p < count; ++p) {
      if (text)
        result.getStringPointer(k + 1)[p] = column.getStringPointer(from)[p];
      else if (wanted == vINT64 && column.getDataType() == vINT64)
        // Past 2^53 a double would round.
        result.getInt64Pointer(k + 1)[p] = column.getInt64Pointer(from)[p];
      else
        setAt(result, k + 1, p, column.getValue(from, p + 1));
    }
  }
  attribute = std::move(result);
}

// --- writes -----------------------------------------------------------------------------

void ShapefileDiskStore::myCheckWritable(char const* label) const {
  if (m_isOpen && m_created) return;
  myCheckOpen(label);
  Message::fatal(label, 0, "The store '%s' has not been opened for modification!", getName().c_str());
}

void ShapefileDiskStore::addAttribute(Attribute const& attribute) {
  myCheckWritable("ShapefileDiskStore::addAttribute");
  if (m_columns.count(attribute.getName()) > 0) return;
  myAddAttribute(Attribute(attribute));
}

void ShapefileDiskStore::addInstances(unsigned int count) {
  myCheckWritable("ShapefileDiskStore::addInstances");
  m_nInstances += count;
}

void ShapefileDiskStore::write(Attribute const& attribute, unsigned int first, unsigned int last) {
  char const* const label = "ShapefileDiskStore::write";
  myCheckWritable(label);
  auto const found = m_columns.find(attribute.getName());
  if (found == m_columns.end())
    Message::fatal(label, 0, "Attribute %s is not in the store.", attribute.getName().c_str());
  if (first != 1 || last != m_nInstances) {
    Message::error(label, 0, kWholeOnly);
    return;
  }
  if (attribute.getNInstances() != last - first + 1)
    Message::fatal(label, 0, "The Attribute '%s' to be written has %lld instances, but last-first+1 is %lld.",
                   attribute.getName().c_str(), static_cast<long long>(attribute.getNInstances()),
                   static_cast<long long>(last - first + 1));
  found->second.copyData(attribute);
}

void ShapefileDiskStore::write(Attribute const&, std::vector<unsigned int> const&) {
  myCheckWritable("ShapefileDiskStore::write");
  Message::error("ShapefileDiskStore::write", 0, kWholeOnly);
}

void ShapefileDiskStore::write(Attribute const&, Attribute const&, unsigned int, unsigned int) {
  myCheckWritable("ShapefileDiskStore::write");
  Message::error("ShapefileDiskStore::write", 0, kWholeOnly);
}

void ShapefileDiskStore::write(Attribute const&, KeyList const&) {
  myCheckWritable("ShapefileDiskStore::write");
  Message::error("ShapefileDiskStore::write", 0, kWholeOnly);
}

Attribute const* ShapefileDiskStore::myBuffered(char const* name) const {
  auto const found = m_columns.find(vUCString(name));
  if (found == m_columns.end() || found->second.getNInstances() != m_nInstances || m_nInstances == 0) return nullptr;
  return &found->second;
}

void ShapefileDiskStore::myDoBufferedWrites() {
  ShapefileWriter writer(m_fileName, m_class, m_shapeType == 21 ? vLCString("measured") : m_subClass);
  auto const system = findProperty(vUCString("COORDINATE_SYSTEM"));
  if (system != endProperty()) writer.setCoordinateSystem(system->getString());
  if (m_class == vLCString("mapdata"))
    myWritePoints(writer);
  else
    myWritePolygons(writer);
  for (Attribute const& definition : myAttributes()) {
    vUCString const& name = definition.getName();
    if (isGeometry(name) && !(name == vUCString("LOCATOR"))) continue;
    Attribute const* values = myBuffered(name.c_str());
    // A column never written is written as zeros (blank).
    Attribute field(definition);
    if (values != nullptr)
      field.copyData(*values);
    else if (name == vUCString("LOCATOR"))
      continue;
    writer.addField(field);
  }
  writer.write();
}

void ShapefileDiskStore::myWritePolygons(ShapefileWriter& writer) const {
  Attribute const* x = myBuffered("X");
  Attribute const* y = myBuffered("Y");
  Attribute const* z = myBuffered("Z");
  Attribute const* parts = myBuffered("PART_LENGTHS");
  for (unsigned int s = 1; s <= m_nInstances; ++s) {
    int const n = x != nullptr ? x->getLength(s) : (m_subClass == vLCString("points") ? 1 : 0);
    std::vector<double> xs(n, 0.0), ys(n, 0.0), zs(n, 0.0);
    for (int k = 0; k < n; ++k) {
      if (x != nullptr) xs[k] = x->getValue(s, k + 1);
      if (y != nullptr && k < y->getLength(s)) ys[k] = y->getValue(s, k + 1);
      if (z != nullptr && k < z->getLength(s)) zs[k] = z->getValue(s, k + 1);
    }
    std::vector<int> lengths;
    if (parts != nullptr) {
      long long total = 0;
      for (int k = 0; k < parts->getLength(s); ++k) {
        lengths.push_back(static_cast<int>(parts->getValue(s, k + 1)));
        total += lengths.back();
      }
      if (total != n)
        Message::fatal("ShapefileDiskStore::myWritePolygons", 0,
                       "***ERROR*** Accumulated lengths do not match data size.");
    }
    writer.addShape(n, xs.data(), ys.data(), zs.data(), lengths);
  }
}

void ShapefileDiskStore::myWritePoints(ShapefileWriter& writer) const {
  Attribute const* x = myBuffered("XVAL");
  Attribute const* y = myBuffered("YVAL");
  Attribute const* value = myBuffered("ATVAL");
  for (unsigned int s = 1; s <= m_nInstances; ++s)
    writer.addShape(x != nullptr ? x->getValue(s) : 0.0, y != nullptr ? y->getValue(s) : 0.0,
                    value != nullptr ? value->getValue(s) : 0.0);
}
