#include "filestore/ascii/AsciiDiskStore.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "attribute/AttributeDefinition.h"
#include "filestore/ascii/AsciiText.h"
#include "foundation/Message.h"
#include "foundation/vString.h"
#include "project/Project.h"
#include "syslayer/FS.h"

namespace {

char const* const kNotOpen = "Ascii Disk File has not been opened yet!";
char const* const kWholeOnly =
    "At this time, this file format only supports writing of the entire attribute, first to last.";
// The record file service's options for a text table.
int const kOpenOptions = 1024;
// How much of a file is looked at to tell text from binary data.
std::size_t const kTextProbe = 4096;

std::string valueText(Attribute const& a, unsigned int instance, int position) {
  if (a.getDataType() == vSTRING) {
    // Quoted when it would otherwise not read back as one item.
    std::string const s = a.getStringPointer(instance)[position].c_str();
    return s.empty() || s.find_first_of(" \t,\"") != std::string::npos ? "\"" + s + "\"" : s;
  }
  char text[64];
  if (a.getDataType() == vINT64)
    std::snprintf(text, sizeof text, "%lld", a.getInt64Pointer(instance)[position]);
  else if (a.getDataType() == vINT32 || a.getDataType() == vINT16)
    std::snprintf(text, sizeof text, "%lld", static_cast<long long>(a.getValue(instance, position + 1)));
  else if (a.getDataType() == vFLOAT32)
    std::snprintf(text, sizeof text, "%.9g", a.getValue(instance, position + 1));
  else
    std::snprintf(text, sizeof text, "%.17g", a.getValue(instance, position + 1));
  return text;
}

}  // namespace

AsciiDiskStore::AsciiDiskStore() : AsciiDiskStore(vHandle<Project>()) {}

AsciiDiskStore::AsciiDiskStore(vHandle<Project> const& project)
    : SingleSetDiskStore(project, "AsciiDiskStore", kNotOpen), m_nInstances(0), m_isWriting(false), m_set(1) {}

AsciiDiskStore::~AsciiDiskStore() {
  if (!m_isOpen) return;
  try {
    close();
  } catch (...) {
    // A file that could not be written has reported why.
  }
}

// --- opening, making and closing --------------------------------------------------------

bool AsciiDiskStore::open(StoreDescription const& description) {
  if (!description.isFlatFile())
    Message::fatal("AsciiDiskStore::open(StoreDescription)", 0, "StoreDescription must contain a flat file.");
  if (m_isOpen) close();
  vString spec = description.getFormatSpec();
  if (spec.isBlank()) spec = AsciiFormat::getSpecification(description.getFlatFileName()).getFilename();
  m_format.reset(spec.isBlank() ? nullptr : new AsciiFormat(vFilename(spec)));
  return open(description.getFlatFileName());
}

bool AsciiDiskStore::open(vFilename const& file) {
  if (m_isOpen) close();
  FS::iFile f = FS::open(file, FS::ByteFile, kOpenOptions);
  if (!f.isGood()) {
    m_format.reset();
    return false;
  }
  f.setNoByteSwapping();
  long long const size = f.getNRecords();
  m_text.assign(static_cast<std::size_t>(std::max(size, 0LL)), '\0');
  long long const got = size > 0 ? f.read(1, &m_text[0], size) : 0;
  bool const good = f.isGood() && got == size;
  f.clear();
  f.close();
  if (!good) {
    m_format.reset();
    m_text.clear();
    return false;
  }
  // A binary file would read as a table with no instances and no error: a
  // NUL byte in its first block says it is not text.
  if (std::memchr(m_text.data(), '\0', std::min(m_text.size(), kTextProbe)) != nullptr) {
    m_format.reset();
    m_text.clear();
    Message::fatal("AsciiDiskStore::open", 0, "'%s' is not a text table: its first %d bytes hold a NUL byte.",
                   file.c_str(), static_cast<int>(kTextProbe));
  }
  m_fileName = file;
  if (!m_format) {
    m_format.reset(new AsciiFormat(m_text.c_str()));
  } else if (m_format->isDynamic()) {
    // A dynamic format takes its particulars from the file.
    AsciiFormat const fromData(m_text.c_str());
    if (fromData.getFilename().getFilename() == m_format->getFilename().getFilename()) *m_format = fromData;
  }
  m_collator.reset(new AsciiCollator(m_text.c_str(), static_cast<long long>(m_text.size()), *m_format));
  m_reader.reset(new AsciiDataReader(*m_collator, *m_format));
  mySetAttributes(m_format->getAttributeList());
  m_keyList = KeyList();
  for (vUCString const& name : m_format->getKeyNames()) m_keyList.addKey(AttributeDefinition::getDefinition(name));
  m_isWriting = false;
  m_isOpen = true;
  try {
    myOpenSet(1);
    myConstructPropertyList();
  } catch (...) {
    close();
    throw;
  }
  return true;
}

void AsciiDiskStore::myOpenSet(int set) {
  m_collator->findRecordSet(set);
  m_set = set;
  m_nInstances = m_reader->getNumberOfRecords(set);
  getIndexingTable().clearCache();
  std::string const& title = m_collator->getRecordSetName(set);
  if (hasProperty(vUCString("HORIZONNAME")) && !title.empty()) {
    removeProperty(vUCString("HORIZONNAME"));
    DiskStore::addProperty(Property("HORIZONNAME", vString(title.c_str())));
  }
}

void AsciiDiskStore::myConstructPropertyList() {
  clearProperties();
  DiskStore::addProperty(Property("FORMAT", m_format->getFilename().getFilename()));
  if (std::string(m_format->getFilename().getRoot().c_str()) == "PelagosShapes") {
    // The header says how the shapes are drawn: "type", "opacity", "size"
    // and "colour" (or "color"), each followed by its value.
    std::vector<std::string> words;
    for (int line = 1; line <= m_collator->getLastHeaderLine(); ++line)
      for (std::string const& w : ascii_text::words(m_collator->getLine(line))) words.push_back(w);
    for (std::size_t k = 0; k + 1 < words.size(); ++k) {
      std::string key = ascii_text::upper(words[k]);
      if (key == "COLOUR") key = "COLOR";
      if ((key == "TYPE" || key == "OPACITY" || key == "SIZE" || key == "COLOR") && !hasProperty(vUCString(key.c_str())))
        DiskStore::addProperty(Property(key.c_str(), words[k + 1].c_str()));
    }
  }
  std::string horizonName = m_fileName.getRoot().c_str();
  if (std::string(m_format->getFilename().getRoot().c_str()) == "PelagosHorizon2") myReadHorizonHeader(horizonName);
  if (!m_format->hasCMPBasicGrid()) return;
  CMPBasicGrid const& g = m_format->getCMPBasicGrid();
  DiskStore::addProperty(Property("HORIZONNAME", vString(horizonName.c_str())));
  DiskStore::addProperty(Property("CMP_INCREMENT", g.getCMPInc()));
  DiskStore::addProperty(Property("FIRST_CMP", g.getFirstCMP()));
  DiskStore::addProperty(Property("CROSSLINE_INCREMENT", g.getCrosslineInc()));
  DiskStore::addProperty(Property("FIRST_CROSSLINE", g.getFirstCrossline()));
  DiskStore::addProperty(Property("INLINE_INCREMENT", g.getInlineInc()));
  DiskStore::addProperty(Property("FIRST_INLINE", g.getFirstInline()));
  DiskStore::addProperty(Property("NUM_CROSSLINES", g.getNumCrosslines()));
  DiskStore::addProperty(Property("NUM_INLINES", g.getNumInlines()));
  DiskStore::addProperty(Property("CROSSLINE_INTERVAL", g.getCrosslineInterval()));
  DiskStore::addProperty(Property("INLINE_INTERVAL", g.getInlineInterval()));
  DiskStore::addProperty(Property("ROTATION_ANGLE", g.getRotationAngle()));
  DiskStore::addProperty(Property("CMP_ORDERING", static_cast<int>(g.getOrdering())));
  DiskStore::addProperty(Property("X_REALWORLD_ORIGIN", g.getRealWorldOrigin().getX()));
  DiskStore::addProperty(Property("Y_REALWORLD_ORIGIN", g.getRealWorldOrigin().getY()));
  DiskStore::addProperty(Property("X_SURVEY_ORIGIN", g.getSurveyOrigin().getX()));
  DiskStore::addProperty(Property("Y_SURVEY_ORIGIN", g.getSurveyOrigin().getY()));
  DiskStore::addProperty(Property("UNITS", g.getUnits()));
}

// The lines of a Pelagos horizon header up to the first record give the
// grid: "LINEX" and "LINEY" first, last and increment of crosslines and
// inlines, "STEPX" and "STEPY" the distances between those increments,
// "ORIGIN" the survey origin. The header carries no rotation, so the real
// world origin is the survey origin. A header without both line ranges
// leaves the store without a grid.
void AsciiDiskStore::myReadHorizonHeader(std::string& horizonName) {
  // Each surface is a record set named by its "SURFACE" line.
  if (!m_collator->getRecordSetName(m_set).empty()) horizonName = m_collator->getRecordSetName(m_set);
  double linex[3] = {0, 0, 0}, liney[3] = {0, 0, 0}, step[2] = {0, 0}, origin[2] = {0, 0};
  bool haveX = false, haveY = false;
  auto numbers = [](std::vector<std::string> const& w, double* out, std::size_t n) {
    if (w.size() < n + 1) return false;
    for (std::size_t k = 0; k < n; ++k) {
      if (!AsciiFormat::isNumber(w[k + 1].c_str())) return false;
      out[k] = std::atof(w[k + 1].c_str());
    }
    return true;
  };
  for (std::string const& line : ascii_text::lines(m_text.c_str())) {
    if (ascii_text::isNumericLine(line)) break;
    std::vector<std::string> const w = ascii_text::words(line);
    if (w.empty()) continue;
    std::string const key = ascii_text::upper(w[0]);
    if (key == "LINEX") haveX = numbers(w, linex, 3);
    else if (key == "LINEY") haveY = numbers(w, liney, 3);
    else if (key == "STEPX") numbers(w, step, 1);
    else if (key == "STEPY") numbers(w, step + 1, 1);
    else if (key == "ORIGIN") numbers(w, origin, 2);
    else if (key == "DOMAIN" && w.size() > 1) DiskStore::addProperty(Property("DOMAIN", w[1].c_str()));
  }
  // Line numbers that do not fit a grid's integers leave the store without one.
  auto fits = [](double const* r) {
    for (int k = 0; k < 3; ++k)
      if (!(std::fabs(r[k]) < 1e9)) return false;
    return r[2] != 0 && (r[1] - r[0]) / r[2] >= 0 && (r[1] - r[0]) / r[2] < 1e8;
  };
  if (!haveX || !haveY) return;
  // Ranges that are there but give no grid leave the store without one too,
  // and the user is told, not left to find the grid's properties missing.
  if (!fits(linex) || !fits(liney)) {
    Message::error("AsciiDiskStore::open", 0,
                   "The horizon header of %s gives no grid: LINEX %g %g %g and LINEY %g %g %g must each be a "
                   "first line, a last line and a nonzero increment that leads from the first to the last.",
                   m_fileName.c_str(), linex[0], linex[1], linex[2], liney[0], liney[1], liney[2]);
    return;
  }
  auto count = [](double const* r) { return static_cast<int>(std::lround((r[1] - r[0]) / r[2])) + 1; };
  auto interval = [](double stepDistance, double increment) {
    return static_cast<float>(increment == 0 ? stepDistance : stepDistance / increment);
  };
  vCoordinate const o(origin[0], origin[1]);
  m_format->setCMPBasicGrid(CMPBasicGrid(1, 1, static_cast<int>(liney[0]), static_cast<int>(liney[2]), count(liney),
                                         static_cast<int>(linex[0]), static_cast<int>(linex[2]), count(linex), o,
                                         interval(step[1], liney[2]), interval(step[0], linex[2]), 0.0,
                                         CMPBasicGrid::ALONG_INLINES, o));
}

void AsciiDiskStore::create(StoreDescription const& description) {
  if (!description.isFlatFile())
    Message::fatal("AsciiDiskStore::create(StoreDescription)", 0, "StoreDescription must contain a flat file.");
  if (m_isOpen) close();
  vString const spec = description.getFormatSpec();
  m_format.reset(spec.isBlank() ? new AsciiFormat : new AsciiFormat(vFilename(spec)));
  m_fileName = description.getFlatFileName();
  mySetAttributes(m_format->getAttributeList());
  m_nInstances = 0;
  m_buffered.clear();
  clearProperties();
  m_isWriting = true;
  m_isOpen = true;
}

void AsciiDiskStore::create(vFilename const& file) { create(StoreDescription(file)); }

void AsciiDiskStore::close() {
  if (m_isOpen && m_isWriting) {
    m_isOpen = false;
    myDoBufferedWrites();
  }
  m_isOpen = false;
  m_isWriting = false;
  m_reader.reset();
  m_collator.reset();
  m_format.reset();
  m_text.clear();
  myClearAttributes();
  m_buffered.clear();
  m_nInstances = 0;
  m_set = 1;
  getIndexingTable().clearCache();
}

// --- what the store holds ---------------------------------------------------------------

unsigned int AsciiDiskStore::getNInstances() const {
  myCheckOpen("AsciiDiskStore::getNInstances");
  return m_nInstances;
}

Attribute AsciiDiskStore::getAttribute(vUCString const& name) const {
  myCheckOpen("AsciiDiskStore::getAttribute");
  for (Attribute const& a : myAttributes())
    if (a.getName() == name) return a;
  Message::fatal("AsciiDiskStore::getAttribute", 0, "Attribute %s does not exist in file %s.", name.c_str(),
                 m_fileName.getRoot().c_str());
}

vHandle<Store::AttributeSetList> AsciiDiskStore::getAttributeSetList() const {
  vHandle<AttributeSetList> names(new AttributeSetList);
  getAttributeSetList(*names);
  return names;
}

void AsciiDiskStore::getAttributeSetList(AttributeSetList& names) const {
  myCheckOpen("AsciiDiskStore::getAttributeSetList");
  names.clear();
  if (m_isWriting || m_collator == nullptr) {
    names.push_back(getName());
    return;
  }
  for (int set = 1; set <= m_collator->getNumberOfRecordSets(); ++set) {
    std::string const& title = m_collator->getRecordSetName(set);
    names.push_back(title.empty() ? getName() : vLCString(title.c_str()));
  }
}

vLCString AsciiDiskStore::getAttributeSetName() const {
  myCheckOpen("AsciiDiskStore::getAttributeSetName");
  if (m_isWriting || m_collator == nullptr) return getName();
  std::string const& title = m_collator->getRecordSetName(m_set);
  return title.empty() ? getName() : vLCString(title.c_str());
}

void AsciiDiskStore::openAttributeSet(vLCString const& name) {
  myCheckOpen("AsciiDiskStore::openAttributeSet");
  if (name.isBlank()) return;
  if (!m_isWriting && m_collator != nullptr) {
    for (int set = 1; set <= m_collator->getNumberOfRecordSets(); ++set) {
      std::string const& title = m_collator->getRecordSetName(set);
      if ((title.empty() ? getName() : vLCString(title.c_str())) == name) {
        myOpenSet(set);
        return;
      }
    }
  } else if (name == getName()) {
    return;
  }
  Message::fatal("AsciiDiskStore::openAttributeSet", 0, "File '%s' does not have AttributeSet name '%s'.",
                 m_fileName.c_str(), name.c_str());
}

void AsciiDiskStore::createAttributeSet(vLCString const& name, KeyList const&) {
  Message::fatal("AsciiDiskStore::createAttributeSet", 0, "File '%s' does not have AttributeSet name '%s'.",
                 m_fileName.c_str(), name.c_str());
}

vLCString AsciiDiskStore::getClass() const {
  return m_format ? m_format->getStoreClass() : vLCString("generic");
}

vLCString AsciiDiskStore::getSubClass() const { return m_format ? m_format->getStoreSubClass() : vLCString(); }

// --- reads ------------------------------------------------------------------------------

void AsciiDiskStore::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  char const* const label = "AsciiDiskStore::read";
  myCheckOpen(label);
  if (last == 0) last = m_nInstances;
  if (first < 1 || first > last || last > m_nInstances)
    Message::fatal(label, 0, "Instance range %lld,%lld is bad, NInstances is %lld", static_cast<long long>(first),
                   static_cast<long long>(last), static_cast<long long>(m_nInstances));
  if (m_isWriting) Message::fatal(label, 0, "Need code");
  if (!hasAttribute(attribute.getName())) getAttribute(attribute.getName());
  std::vector<unsigned int> records;
  for (unsigned int i = first; i <= last; ++i) records.push_back(i);
  m_reader->read(m_set, attribute, records);
}

void AsciiDiskStore::read(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  char const* const label = "AsciiDiskStore::read(attribute,ilist)";
  myCheckOpen(label);
  for (unsigned int i : instances)
    if (i < 1 || i > m_nInstances)
      Message::fatal(label, 0, "Instance range %lld,%lld is bad, NInstances is %lld", static_cast<long long>(i),
                     static_cast<long long>(i), static_cast<long long>(m_nInstances));
  if (m_isWriting) Message::fatal(label, 0, "Need code");
  if (!hasAttribute(attribute.getName())) getAttribute(attribute.getName());
  m_reader->read(m_set, attribute, instances);
}

// --- writes -----------------------------------------------------------------------------

void AsciiDiskStore::myCheckWritable(char const* label) const {
  myCheckOpen(label);
  if (!m_isWriting)
    Message::fatal(label, 0, "The store '%s' has not been opened for modification!", getName().c_str());
}

void AsciiDiskStore::addAttribute(Attribute const& attribute) {
  myCheckWritable("AsciiDiskStore::addAttribute");
  if (hasAttribute(attribute.getName())) return;
  if (!m_format->getFilename().getFilename().isBlank())
    Message::fatal("AsciiDiskStore::addAttribute", 0, "Attribute %s is not defined in the file format.",
                   attribute.getName().c_str());
  myAddDefinition(attribute);
}

void AsciiDiskStore::addInstances(unsigned int count) {
  myCheckWritable("AsciiDiskStore::addInstances");
  m_nInstances += count;
}

void AsciiDiskStore::write(Attribute const& attribute, unsigned int first, unsigned int last) {
  char const* const label = "AsciiDiskStore::write";
  myCheckWritable(label);
  if (!hasAttribute(attribute.getName()))
    Message::fatal(label, 0, "Attribute %s is not in the store.", attribute.getName().c_str());
  if (first != 1 || last != m_nInstances || attribute.getNInstances() != m_nInstances) {
    Message::error(label, 0, kWholeOnly);
    return;
  }
  Attribute copy;
  copy.copyData(attribute);
  m_buffered[attribute.getName()] = std::move(copy);
}

void AsciiDiskStore::write(Attribute const&, std::vector<unsigned int> const&) {
  myCheckWritable("AsciiDiskStore::write");
  Message::error("AsciiDiskStore::write", 0, kWholeOnly);
}

void AsciiDiskStore::write(Attribute const&, Attribute const&, unsigned int, unsigned int) {
  myCheckWritable("AsciiDiskStore::write");
  Message::error("AsciiDiskStore::write", 0, kWholeOnly);
}

void AsciiDiskStore::write(Attribute const&, KeyList const&) {
  myCheckWritable("AsciiDiskStore::write");
  Message::error("AsciiDiskStore::write", 0, kWholeOnly);
}

std::string AsciiDiskStore::myRecordLine(unsigned int instance) const {
  std::vector<AsciiFormat::Range> const& columns = m_format->getColumnsList();
  std::string line;
  std::size_t k = 0;
  for (Attribute const& definition : myAttributes()) {
    auto const found = m_buffered.find(definition.getName());
    std::vector<std::string> values;
    if (found == m_buffered.end()) {
      values.push_back("0");
    } else {
      int const n = found->second.isVariableLength() ? found->second.getLength(instance) : found->second.getLength();
      for (int p = 0; p < n; ++p) values.push_back(valueText(found->second, instance, p));
    }
    for (std::string const& v : values) {
      if (k < columns.size()) {
        std::size_t const end = static_cast<std::size_t>(columns[k].last);
        std::size_t const width = static_cast<std::size_t>(columns[k].last - columns[k].first + 1);
        if (line.size() < end - width) line.resize(end - width, ' ');
        line += std::string(width > v.size() ? width - v.size() : 0, ' ') + v.substr(0, width);
      } else {
        line += (line.empty() ? "" : " ") + v;
      }
    }
    ++k;
  }
  return line;
}

// The header of a Pelagos horizon, from the grid the store's properties
// give (zeros for what they do not).
std::string AsciiDiskStore::myHorizonHeader() const {
  auto number = [this](char const* name) {
    auto const found = findProperty(vUCString(name));
    return found == endProperty() ? 0.0 : found->getFloat64();
  };
  auto text = [this](char const* name, char const* otherwise) {
    auto const found = findProperty(vUCString(name));
    return found == endProperty() ? std::string(otherwise) : std::string(found->getString().c_str());
  };
  auto g = [](double v) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.10g", v);
    return std::string(buffer);
  };
  double const firstX = number("FIRST_CROSSLINE"), incX = number("CROSSLINE_INCREMENT");
  double const firstY = number("FIRST_INLINE"), incY = number("INLINE_INCREMENT");
  std::string out = "PELAGOS HORIZON V1.0\n";
  out += "LINEX " + g(firstX) + " " + g(firstX + (number("NUM_CROSSLINES") - 1) * incX) + " " + g(incX) + "\n";
  out += "LINEY " + g(firstY) + " " + g(firstY + (number("NUM_INLINES") - 1) * incY) + " " + g(incY) + "\n";
  out += "STEPX " + g(number("CROSSLINE_INTERVAL") * incX) + "\n";
  out += "STEPY " + g(number("INLINE_INTERVAL") * incY) + "\n";
  out += "ORIGIN " + g(number("X_SURVEY_ORIGIN")) + " " + g(number("Y_SURVEY_ORIGIN")) + "\n";
  out += "DOMAIN " + text("DOMAIN", "time") + "\n";
  out += "NUMSURFACES 1         \n";
  out += "SURFACE " + text("HORIZONNAME", m_fileName.getRoot().c_str()) + "\n";
  out += "NUMATTR " + std::to_string(myAttributes().size()) + "\n";
  for (Attribute const& a : myAttributes()) out += std::string("ATTRIBUTE ") + a.getName().c_str() + "\n";
  return out;
}

void AsciiDiskStore::myDoBufferedWrites() {
  std::string text;
  if (std::string(m_format->getFilename().getRoot().c_str()) == "PelagosHorizon2") {
    text = myHorizonHeader();
    for (unsigned int i = 1; i <= m_nInstances; ++i) text += myRecordLine(i) + "\n";
    myFinishWrite(text);
    return;
  }
  int const headerLines = std::max(m_format->getLastHeaderLine(), m_format->hasFixedColumns() ? 0 : 1);
  for (int line = 1; line <= headerLines; ++line) {
    if (line == 1)
      for (Attribute const& a : myAttributes()) text += std::string(text.empty() ? "" : " ") + a.getName().c_str();
    text += "\n";
  }
  for (unsigned int i = 1; i <= m_nInstances; ++i) text += myRecordLine(i) + "\n";
  myFinishWrite(text);
}

void AsciiDiskStore::myFinishWrite(std::string const& text) {
  FS::ioFile f = FS::create(m_fileName, FS::ByteFile, kOpenOptions);
  if (!f.isGood()) f.terminate("AsciiDiskStore::myFinishWrite");
  long long at = 0;
  while (at < static_cast<long long>(text.size())) {
    int const piece = static_cast<int>(std::min<long long>(1 << 20, static_cast<long long>(text.size()) - at));
    f.write(at + 1, text.data() + at, piece);
    if (!f.isGood()) f.terminate("AsciiDiskStore::myFinishWrite");
    at += piece;
  }
  f.close();
}
