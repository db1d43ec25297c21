#include "filestore/fdm/FdmDiskStore.h"

#include <cmath>
#include <cstdlib>
#include <string>

#include "foundation/Message.h"
#include "foundation/vUtl.h"
#include "geometry/CMPGrid.h"
#include "project/Project.h"

namespace {

char const* const kNotOpen = "Fdm Disk File has not been opened yet!";

bool endsWith(std::string const& text, std::string const& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// The velocity attribute of a type text.
char const* velocityName(vString const& typeText) {
  std::string const text = vLCString(typeText).c_str();
  if (endsWith(text, "time_rms")) return "VELTRACE.RMS";
  if (endsWith(text, "time_interval")) return "VELTRACE.INTERVAL";
  if (endsWith(text, "time_foc")) return "VELTRACE.FOCONSTANTS";
  return "VELTRACE.DEFAULT";
}

}  // namespace

FdmDiskStore::FdmDiskStore() : FdmDiskStore(vHandle<Project>()) {}

FdmDiskStore::FdmDiskStore(vHandle<Project> const& project)
    : SingleSetDiskStore(project, "FdmDiskStore", kNotOpen), m_interpolate(false), m_interpolation(0),
      m_subClass("gridded_default") {}

FdmDiskStore::~FdmDiskStore() { close(); }

std::vector<vLCString> FdmDiskStore::getFDMSubclassTypes() {
  return {vLCString("gridded_default"), vLCString("gridded_depth_interval"), vLCString("gridded_time_foc"),
          vLCString("gridded_time_interval"), vLCString("gridded_time_rms")};
}

void FdmDiskStore::open(StoreDescription const& description) {
  if (!description.isFlatFile())
    Message::fatal("FdmDiskStore::open(StoreDescription)", 0, "StoreDescription must contain a flat file.");
  m_interpolate = false;
  m_interpolation = 0;
  std::string const spec = description.getFormatSpec().c_str();
  if (spec.find_first_not_of(" \t") != std::string::npos) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (std::size_t slash; (slash = spec.find('/', start)) != std::string::npos; start = slash + 1)
      parts.push_back(spec.substr(start, slash - start));
    parts.push_back(spec.substr(start));
    if (!parts[0].empty()) m_subClass = vLCString(parts[0].c_str());
    if (parts.size() > 2 && vLCString(parts[1].c_str()) == vLCString("intrp")) {
      char* end = nullptr;
      long const n = std::strtol(parts[2].c_str(), &end, 10);
      if (!parts[2].empty() && *end == '\0') {
        m_interpolate = true;
        m_interpolation = static_cast<int>(n);
      }
    }
    if (vLCString(description.getFileFormat()) == vLCString("fdm")) m_typeText = vString(parts[0].c_str());
  }
  open(description.getFlatFileName());
}

void FdmDiskStore::open(vFilename const& file) {
  if (m_isOpen) Message::fatal("FdmDiskStore::open", 0, "FdmDiskStore is already open as '%s'.", m_fileName.c_str());
  m_fileName = file;
  m_reader.setFile(m_fileName);
  try {
    myBuildLimits();
  } catch (...) {
    m_reader.close();
    throw;
  }
  myBuildAttributes();
  // The grid as properties, as every store that carries one shows it.
  clearProperties();
  CMPGrid(m_grid).addToStore(*this);
  getIndexingTable().clearCache();
  m_isOpen = true;
}

void FdmDiskStore::myBuildLimits() {
  char const* const label = "FdmDiskStore::open";
  FdmBinaryHeader const& h = m_reader.getHeader();
  if (!h.isValidHeader() || h.getNInline() < 1 || h.getNZ() < 1)
    Message::fatal(label, 0, "The file '%s' is not an FDM file: its header is invalid.", m_fileName.c_str());
  long long const nx = h.getNCrossline(), ny = h.getNInline(), nz = h.getNZ();
  long long const needed = FdmBinaryHeader::LENGTH + 4 * nx * ny * nz;
  FS::iFile probe = FS::open(m_fileName, FS::ByteFile);
  long long const size = probe.isGood() ? probe.getNRecords() : -1;
  probe.clear();
  if (probe.isOpen()) probe.close();
  if (size < needed)
    Message::fatal(label, 0, "The FDM file '%s' holds %lld bytes, fewer than the %lld its header needs.",
                   m_fileName.c_str(), size, needed);
  auto nonZero = [](int v) { return v == 0 ? 1 : v; };
  auto nonZeroF = [](float v) { return v == 0.0f ? 1.0f : v; };
  double rotation = h.getRotation();
  if (h.getAngleUnits() != 1) rotation *= M_PI / 180.0;
  m_grid = CMPBasicGrid(1, 1, h.getMinInline(), nonZero(h.getInlineIncrement()), static_cast<int>(ny),
                        h.getMinCrossline(), nonZero(h.getCrosslineIncrement()), static_cast<int>(nx), vCoordinate(),
                        nonZeroF(h.getSpatialInlineIncrement()), nonZeroF(h.getSpatialCrosslineIncrement()), rotation,
                        CMPBasicGrid::ALONG_INLINES,
                        vCoordinate(h.getSpatialCrosslineOrigin(), h.getSpatialInlineOrigin()));
}

void FdmDiskStore::myBuildAttributes() {
  FdmBinaryHeader const& h = m_reader.getHeader();
  m_velocityName = vUCString(velocityName(m_typeText));
  myClearAttributes();
  m_keyList = KeyList();
  Attribute const crossline("CROSSLINE", "CROSSLINE", vINT32);
  Attribute const inlineKey("INLINE", "INLINE", vINT32);
  Attribute const velocity(m_velocityName, "VELTRACE", vFLOAT32, h.getNZ(), h.getSpatialZIncrement(),
                           h.getSpatialZOrigin());
  for (Attribute const& a : {crossline, inlineKey, velocity}) myAddDefinition(a);
  m_keyList.addKey(crossline);
  m_keyList.addKey(inlineKey);
}

void FdmDiskStore::close() {
  m_reader.close();
  myClearAttributes();
  m_keyList = KeyList();
  getIndexingTable().clearCache();
  m_isOpen = false;
}

unsigned int FdmDiskStore::getNInstances() const {
  myCheckOpen("FdmDiskStore::getNInstances");
  return static_cast<unsigned int>(m_grid.getNumBins());
}

Attribute FdmDiskStore::getAttribute(vUCString const& name) const {
  myCheckOpen("FdmDiskStore::getAttribute");
  Attribute const* const definition = myFindDefinition(name);
  if (definition == nullptr)
    Message::fatal("FdmDiskStore::getAttribute", 0, "Reading of attribute name <%s> is not supported by FdmDiskStore",
                   name.c_str());
  return *definition;
}

void FdmDiskStore::myRefuseAttributeSet(vLCString const& name) const {
  Message::fatal("FdmDiskStore::openAttributeSet", 0, "Invalid attribute set name '%s', only blank or '%s' acceptable!",
                 name.c_str(), getName().c_str());
}

// --- reading ------------------------------------------------------------------------------

void FdmDiskStore::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  char const* const label = "FdmDiskStore::read";
  myCheckOpen(label);
  long long const n = getNInstances();
  if (last == 0) last = static_cast<unsigned int>(n);  // through the last, as every store reads
  if (first < 1 || first > last || last > n)
    Message::fatal(label, 0, "Instance range %lld, %lld is incorrect, NInstances is %lld",
                   static_cast<long long>(first), static_cast<long long>(last), n);
  std::vector<unsigned int> instances;
  for (unsigned int i = first; i <= last; ++i) instances.push_back(i);
  read(attribute, instances);
}

void FdmDiskStore::read(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  char const* const label = "FdmDiskStore::read";
  myCheckOpen(label);
  if (instances.empty()) Message::fatal(label, 0, "List is empty - nothing to do");
  long long const n = getNInstances();
  for (unsigned int i : instances)
    if (i < 1 || i > n)
      Message::fatal(label, 0, "Instance %lld is beyond end of Store, which has %lld instances.",
                     static_cast<long long>(i), n);
  Attribute const* const found = myFindDefinition(attribute.getName());
  if (found == nullptr)
    Message::fatal(label, 0, "Reading of attribute name <%s> is not supported by FdmDiskStore",
                   attribute.getName().c_str());
  Attribute const& definition = *found;
  DataType const wanted = attribute.getDataType();
  Attribute values(definition);
  values.resize(static_cast<unsigned int>(instances.size()));
  for (std::size_t k = 0; k < instances.size(); ++k)
    myReadInstance(values, static_cast<unsigned int>(k + 1), instances[k]);
  if (wanted == definition.getDataType()) {
    attribute = std::move(values);
    return;
  }
  attribute = Attribute(definition.getName(), attribute.getClass(), wanted, definition.getLength(),
                        definition.getSampleRate(), definition.getFirstTime());
  attribute.resize(static_cast<unsigned int>(instances.size()));
  vUtl::copyConvert(values.getPointer(1), definition.getDataType(), attribute.getPointer(1), wanted,
                    instances.size() * static_cast<std::size_t>(definition.getLength()));
}

void FdmDiskStore::myReadInstance(Attribute& attribute, unsigned int row, unsigned int instance) const {
  int const nx = m_grid.getNumCrosslines();
  int const inlineIndex = static_cast<int>((instance - 1) / nx) + 1;
  int const crosslineIndex = static_cast<int>((instance - 1) % nx) + 1;
  BinPos const bin = m_grid.convertInlineCrosslineIndexesToBin(inlineIndex, crosslineIndex);
  vUCString const& name = attribute.getName();
  if (name == vUCString("CROSSLINE")) {
    *attribute.getInt32Pointer(row) = bin.getCrossline();
    return;
  }
  if (name == vUCString("INLINE")) {
    *attribute.getInt32Pointer(row) = bin.getInline();
    return;
  }
  vCoordinate const position = m_grid.convertBinToSurvey(bin);
  float* trace = attribute.getFloat32Pointer(row);
  int const nz = m_reader.getZNumberOfSamples();
  if (m_interpolate) {
    m_reader.biLinearLoadOntoY(static_cast<float>(position.getX()), static_cast<float>(position.getY()),
                               m_reader.getZOrigin(), nz, trace);
    return;
  }
  float const* section = m_reader.loadNearestToY(static_cast<float>(position.getY()));
  long const ix = std::lround(m_reader.getIndex(FdmDiskReader::X, static_cast<float>(position.getX())));
  std::copy(section + ix * nz, section + (ix + 1) * nz, trace);
}
