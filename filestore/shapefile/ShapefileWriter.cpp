#include "filestore/shapefile/ShapefileWriter.h"

#include <shapefil.h>

#include <algorithm>
#include <cstdio>
#include <string>

#include "foundation/Message.h"

namespace {

char const* const kLabel = "ShapefileWriter::write";

vFilename beside(vFilename const& file, char const* extension) {
  vFilename other(file);
  other.setExtension(extension);
  return other;
}

}  // namespace

ShapefileWriter::ShapefileWriter(vFilename const& file, vLCString const& storeClass, vLCString const& subClass)
    : Shapefile(file) {
  m_shapeType = Shapefile::getShapeType(storeClass, subClass);
  if (m_shapeType == 0)
    Message::fatal("ShapefileWriter", 0, "A shapefile cannot hold the store class %s, subclass %s.",
                   storeClass.c_str(), subClass.c_str());
  m_isOpen = true;
}

ShapefileWriter::~ShapefileWriter() = default;

void ShapefileWriter::addField(Attribute const& field) {
  Attribute copy;
  copy.copyData(field);
  m_fields.push_back(std::move(copy));
}

void ShapefileWriter::write() {
  SHPHandle shp = SHPCreate(m_fileName.c_str(), m_shapeType);
  if (shp == nullptr) Message::fatal(kLabel, 0, "Could not create shapefile %s.", m_fileName.c_str());
  for (std::size_t i = 0; i < m_shapes.size(); ++i) {
    Shape const& shape = m_shapes[i];
    int const n = static_cast<int>(shape.x.size());
    std::vector<int> starts;
    int at = 0;
    for (int length : shape.parts) {
      starts.push_back(at);
      at += length;
    }
    SHPObject* object = SHPCreateObject(m_shapeType, -1, static_cast<int>(starts.size()),
                                        starts.empty() ? nullptr : starts.data(), nullptr, n, shape.x.data(),
                                        shape.y.data(), m_shapeType == 11 ? shape.z.data() : nullptr,
                                        m_shapeType == 21 ? shape.z.data() : nullptr);
    if (m_shapeType == 5) SHPRewindObject(shp, object);
    int const written = SHPWriteObject(shp, -1, object);
    SHPDestroyObject(object);
    if (written < 0) {
      SHPClose(shp);
      Message::fatal(kLabel, 0, "Could not write shape %d to %s.", static_cast<int>(i + 1), m_fileName.c_str());
    }
  }
  SHPClose(shp);

  DBFHandle dbf = DBFCreate(beside(m_fileName, "dbf").c_str());
  if (dbf == nullptr) Message::fatal(kLabel, 0, "Could not create the table of shapefile %s.", m_fileName.c_str());
  int index = 0;
  for (Attribute const& field : m_fields) {
    std::string name(field.getName().c_str());
    if (name.size() > 10) name.resize(10);
    int added = -1;
    switch (field.getDataType()) {
      case vSTRING: {
        int width = 1;
        for (unsigned int i = 1; i <= field.getNInstances(); ++i)
          width = std::max(width, static_cast<int>(field.getString(i).length()));
        added = DBFAddField(dbf, name.c_str(), FTString, std::min(width, 254), 0);
        break;
      }
      case vINT16:
      case vINT32:
        added = DBFAddField(dbf, name.c_str(), FTInteger, 11, 0);
        break;
      case vINT64:
        added = DBFAddField(dbf, name.c_str(), FTInteger, 20, 0);
        break;
      default:
        added = DBFAddField(dbf, name.c_str(), FTDouble, 24, 15);
    }
    if (added != index++) {
      DBFClose(dbf);
      Message::fatal(kLabel, 0, "Could not add the field %s to the table of shapefile %s.", name.c_str(),
                     m_fileName.c_str());
    }
  }
  // A table without fields still needs a record for each shape.
  if (m_fields.empty()) DBFAddField(dbf, "ID", FTInteger, 11, 0);
  for (std::size_t r = 0; r < m_shapes.size(); ++r) {
    int const record = static_cast<int>(r);
    unsigned int const instance = static_cast<unsigned int>(r + 1);
    if (m_fields.empty()) DBFWriteIntegerAttribute(dbf, record, 0, record + 1);
    int f = 0;
    for (Attribute const& field : m_fields) {
      bool const has = instance <= field.getNInstances();
      switch (field.getDataType()) {
        case vSTRING:
          DBFWriteStringAttribute(dbf, record, f, has ? field.getString(instance).c_str() : "");
          break;
        case vINT16:
        case vINT32:
          DBFWriteIntegerAttribute(dbf, record, f, has ? static_cast<int>(field.getValue(instance)) : 0);
          break;
        case vINT64: {
          // Past the range of a double: the digits go in as they are.
          char digits[32];
          std::snprintf(digits, sizeof digits, "%20lld", has ? field.getInt64(instance) : 0LL);
          DBFWriteAttributeDirectly(dbf, record, f, digits);
          break;
        }
        default:
          DBFWriteDoubleAttribute(dbf, record, f, has ? field.getValue(instance) : 0.0);
      }
      ++f;
    }
  }
  DBFClose(dbf);

  if (!m_coordinateSystem.isBlank()) {
    std::FILE* prj = std::fopen(beside(m_fileName, "prj").c_str(), "w");
    if (prj == nullptr) Message::fatal(kLabel, 0, "Could not create the .prj file of shapefile %s.", m_fileName.c_str());
    std::fputs(m_coordinateSystem.c_str(), prj);
    std::fclose(prj);
  }
}
