#include "filestore/shapefile/ShapefileReader.h"

#include <shapefil.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "foundation/Message.h"
#include "syslayer/FS.h"

namespace {

// A part of the shapefile, by its extension in lower case or, where only
// that is there, in upper case, as shapelib finds the parts it opens.
vFilename beside(vFilename const& file, char const* extension) {
  vFilename other(file);
  other.setExtension(extension);
  if (FS::exists(other)) return other;
  std::string upper(extension);
  for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  vFilename shouted(file);
  shouted.setExtension(upper.c_str());
  return FS::exists(shouted) ? shouted : other;
}

// Field types as the .dbf declares them; see the header.
DataType fieldType(char native, int width, int decimals) {
  switch (native) {
    case 'N':
      if (decimals == 0) return width <= 11 ? vINT32 : vINT64;
      return vFLOAT64;
    case 'F':
      return vFLOAT64;
    case 'L':
    case 'D':
      return vINT32;
    default:
      return vSTRING;
  }
}

unsigned int bigEndian32(unsigned char const* p) {
  return static_cast<unsigned int>(p[0]) << 24 | static_cast<unsigned int>(p[1]) << 16 |
         static_cast<unsigned int>(p[2]) << 8 | p[3];
}

// The first shape (from 1) whose .shx entry does not name a record of the
// .shp of the same number and length, 0 when all agree; shapelib trusts
// the index.
int firstDisagreement(vFilename const& shpFile, long long nShapes) {
  std::ifstream shx(beside(shpFile, "shx").c_str(), std::ios::binary);
  std::ifstream shp(beside(shpFile, "shp").c_str(), std::ios::binary);
  if (!shx || !shp) return 1;
  shp.seekg(0, std::ios::end);
  long long const shpSize = shp.tellg();
  shx.seekg(100);
  for (long long i = 0; i < nShapes; ++i) {
    unsigned char entry[8], header[8];
    if (!shx.read(reinterpret_cast<char*>(entry), 8)) return static_cast<int>(i + 1);
    long long const offset = 2LL * bigEndian32(entry);
    long long const length = 2LL * bigEndian32(entry + 4);
    if (offset < 100 || offset + 8 + length > shpSize) return static_cast<int>(i + 1);
    shp.seekg(offset);
    if (!shp.read(reinterpret_cast<char*>(header), 8) || bigEndian32(header) != static_cast<unsigned int>(i + 1) ||
        2LL * bigEndian32(header + 4) != length)
      return static_cast<int>(i + 1);
  }
  return 0;
}

// shapelib's own complaints are not printed: the reader's failure says what
// went wrong in the store's words. The last is kept for a debugger.
thread_local std::string lastComplaint;

void keepComplaint(char const* message) { lastComplaint = message; }

SAHooks quietHooks() {
  SAHooks hooks;
  SASetupDefaultHooks(&hooks);
  hooks.Error = &keepComplaint;
  return hooks;
}

}  // namespace

ShapefileReader::ShapefileReader(vFilename const& file) : Shapefile(file) {
  m_isOpen = myReadShapes() && myReadTable();
  if (m_isOpen) myReadCoordinateSystem();
}

ShapefileReader::~ShapefileReader() = default;

bool ShapefileReader::myReadShapes() {
  SAHooks hooks = quietHooks();
  SHPHandle shp = SHPOpenLL(m_fileName.c_str(), "rb", &hooks);
  if (shp == nullptr) {
    m_failure = "The data (.shp) or index (.shx) file does not open.";
    return false;
  }
  int count = 0;
  SHPGetInfo(shp, &count, &m_shapeType, nullptr, nullptr);
  int const bad = firstDisagreement(m_fileName, count);
  bool good = bad == 0;
  if (!good)
    m_failure = vString("The index (.shx) and the data (.shp) disagree at shape ") + std::to_string(bad).c_str() + ".";
  for (int i = 0; i < count && good; ++i) {
    SHPObject* object = SHPReadObject(shp, i);
    // An index entry that points at no record of the data file, or at one
    // of another number, is a file pair that disagrees.
    if (object == nullptr || object->nShapeId != i) {
      m_failure = vString("The index (.shx) and the data (.shp) disagree at shape ") + std::to_string(i + 1).c_str() +
                  ".";
      good = false;
    } else {
      Shape shape;
      int const n = object->nVertices;
      shape.x.assign(object->padfX, object->padfX + n);
      shape.y.assign(object->padfY, object->padfY + n);
      if (m_shapeType == 21 && object->padfM != nullptr)
        shape.z.assign(object->padfM, object->padfM + n);
      else if (object->padfZ != nullptr)
        shape.z.assign(object->padfZ, object->padfZ + n);
      else
        shape.z.assign(static_cast<std::size_t>(n), 0.0);
      if (m_shapeType == 3 || m_shapeType == 5)
        for (int p = 0; p < object->nParts; ++p) {
          int const end = p + 1 < object->nParts ? object->panPartStart[p + 1] : n;
          shape.parts.push_back(end - object->panPartStart[p]);
        }
      m_shapes.push_back(std::move(shape));
    }
    if (object != nullptr) SHPDestroyObject(object);
  }
  SHPClose(shp);
  return good;
}

bool ShapefileReader::myReadTable() {
  vFilename const dbfFile = beside(m_fileName, "dbf");
  if (!FS::exists(dbfFile)) return true;
  SAHooks hooks = quietHooks();
  DBFHandle dbf = DBFOpenLL(dbfFile.c_str(), "rb", &hooks);
  if (dbf == nullptr) {
    m_failure = "The table (.dbf) does not open.";
    return false;
  }
  int const records = DBFGetRecordCount(dbf);
  // shapelib reads the records of a table cut short as empty values, the
  // whole ones too: a table must hold every record its header counts.
  std::ifstream table(dbfFile.c_str(), std::ios::binary | std::ios::ate);
  long long const size = table ? static_cast<long long>(table.tellg()) : 0;
  long long const held = dbf->nRecordLength > 0 ? (size - dbf->nHeaderLength) / dbf->nRecordLength : records;
  if (held < records) {
    m_failure = vString("The table (.dbf) is cut short: its header calls for ") + std::to_string(records).c_str() +
                " records of " + std::to_string(dbf->nRecordLength).c_str() + " bytes, it holds " +
                std::to_string(std::max(0LL, held)).c_str() + ".";
    DBFClose(dbf);
    return false;
  }
  if (records != static_cast<int>(m_shapes.size())) {
    m_failure = vString("The table (.dbf) has ") + std::to_string(records).c_str() + " records for " +
                std::to_string(m_shapes.size()).c_str() + " shapes.";
    DBFClose(dbf);
    return false;
  }
  int const fields = DBFGetFieldCount(dbf);
  for (int f = 0; f < fields; ++f) {
    char name[XBASE_FLDNAME_LEN_READ + 1] = {};
    int width = 0;
    int decimals = 0;
    DBFGetFieldInfo(dbf, f, name, &width, &decimals);
    char const native = DBFGetNativeFieldType(dbf, f);
    Attribute field(vUCString(name), vUCString(""), fieldType(native, width, decimals));
    field.resize(static_cast<unsigned int>(records));
    for (int r = 0; r < records; ++r) {
      unsigned int const instance = static_cast<unsigned int>(r + 1);
      bool const null = DBFIsAttributeNULL(dbf, r, f) != 0;
      char const* text = null ? "" : DBFReadStringAttribute(dbf, r, f);
      switch (field.getDataType()) {
        case vSTRING:
          field.setString(instance, vString(text));
          break;
        case vFLOAT64:
          field.setFloat64(instance, null ? 0.0 : DBFReadDoubleAttribute(dbf, r, f));
          break;
        case vINT64:
          field.setInt64(instance, std::strtoll(text, nullptr, 10));
          break;
        default:
          if (native == 'L')
            field.setInt32(instance, (text[0] == 'T' || text[0] == 't' || text[0] == 'Y' || text[0] == 'y') ? 1 : 0);
          else
            field.setInt32(instance, static_cast<int>(std::strtol(text, nullptr, 10)));
      }
    }
    m_fields.push_back(std::move(field));
  }
  DBFClose(dbf);
  return true;
}

void ShapefileReader::myReadCoordinateSystem() {
  std::ifstream in(beside(m_fileName, "prj").c_str());
  if (!in) return;
  std::stringstream text;
  text << in.rdbuf();
  std::string s = text.str();
  while (!s.empty() && (s.back() == '\n' || s.back() == '\r' || s.back() == ' ')) s.pop_back();
  m_coordinateSystem = vString(s.c_str());
}

void ShapefileReader::addShape(int, double const*, double const*, double const*, std::vector<int> const&) {
  Message::fatal("ShapefileReader::addShape", 0, "Cannot add shapes to a file opened for read-only.");
}

void ShapefileReader::addShape(double, double, double) {
  Message::fatal("ShapefileReader::addShape", 0, "Cannot add shapes to a file opened for read-only.");
}
