#include "filestore/offload/OffloadAttributeFile.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

#include "attribute/AttributeDefinition.h"
#include "filestore/disk/AttributeSetIndexingTable.h"
#include "filestore/disk/ExistingAttributeFile.h"
#include "filestore/offload/OffloadCompression.h"
#include "foundation/Message.h"
#include "foundation/SystemPropertyManager.h"
#include "foundation/vUtl.h"

namespace {

int const kMagic = 77479;
int const kMaxHeader = 1000;
int const kTableEntry = 23;
char const* const kSection = "OFFLOAD";

uint32_t swapWord(uint32_t w) { return (w >> 24) | ((w >> 8) & 0xff00u) | ((w << 8) & 0xff0000u) | (w << 24); }

bool systemFlag(char const* name, bool fallback) {
  if (!SystemPropertyManager::hasSystemProperty(kSection, name)) return fallback;
  return SystemPropertyManager::getSystemProperty(kSection, name).getBoolValue(0);
}

std::string trimmed(char const* text, int length) {
  std::string name(text, static_cast<std::size_t>(length));
  name.erase(std::remove(name.begin(), name.end(), ' '), name.end());
  name.erase(std::find(name.begin(), name.end(), '\0'), name.end());
  return name;
}

}  // namespace

OffloadAttributeFile::OffloadAttributeFile()
    : m_isOpen(false),
      m_swap(false),
      m_fscp(false),
      m_bufferFirst(0),
      m_bufferLast(0),
      m_offsetBin(0),
      m_useGenerated(true),
      m_useGeneratedCmp(true),
      m_cmpTested(0),
      m_created(false),
      m_laidOut(false),
      m_update(false),
      m_dirty(false),
      m_compression(NONE),
      m_firstOffset(0),
      m_offsetIncrement(0),
      m_nOffsets(0),
      m_sequence(0) {}

OffloadAttributeFile::OffloadAttributeFile(vFilename const& name, OpenOptions options) : OffloadAttributeFile() {
  m_fileName = name;
  m_options = options;
  m_update = options.getUpdate();
  restoreMute = options.getRestoreMute();
}

void OffloadAttributeFile::registerFile(ExistingAttributeFile& files) {
  std::unique_ptr<OffloadAttributeFile> example(new OffloadAttributeFile);
  vString const name = example->getRegistrationName();
  if (!files.isRegistered(name)) files.registerExample(name, example.release());
}

OffloadAttributeFile::~OffloadAttributeFile() {
  try {
    if ((m_created && m_laidOut) || (m_update && m_dirty)) flush();
  } catch (...) {
  }
  if (m_file.isOpen()) {
    m_file.clear();
    m_file.close();
  }
}

// --- opening -------------------------------------------------------------------------------

void OffloadAttributeFile::myOpenFile() {
  char const* const label = "OffloadAttributeFile::myOpenFile";
  if (m_isOpen) return;
  // A new file is laid out at the first question that needs its layout.
  if (m_created) {
    if (!m_laidOut) myDoCreation();
    return;
  }
  // Word 0 first, on records of one word: the record length is not known yet.
  FS::iFile probe = FS::open(m_fileName, FS::RecordFile, 1024, 4);
  if (!probe.isGood()) probe.terminate(label);
  probe.setNoByteSwapping();
  int word0 = 0;
  if (probe.partialRead(0, 4, 1, 1, &word0) != 4 || !probe.isGood()) {
    probe.clear();
    probe.close();
    Message::fatal(label, 0, "File %s does not appear to be a offload file. Expected %d found %d.", m_fileName.c_str(),
                   kMagic, 0);
  }
  try {
    myCheckForByteSwap(word0);
    m_header.assign(static_cast<std::size_t>(std::max(m_header.size(), std::size_t(100))), 0);
    std::vector<int> words(static_cast<std::size_t>(m_header.size()), 0);
    long long const want = 4LL * static_cast<int>(m_header.size());
    char* const target = reinterpret_cast<char*>(words.data());
    long long const got = probe.partialRead(0, 4, 1, static_cast<long long>(m_header.size()), target);
    probe.clear();
    probe.close();
    if (got < want) Message::fatal(label, 0, "Could not read the header of %s.", m_fileName.c_str());
    if (m_swap) vUtl::swapBytes32(words.data(), words.size());
    m_header = words;
    myCheckHeader();
    mySetVersionBits();
  } catch (...) {
    if (probe.isOpen()) {
      probe.clear();
      probe.close();
    }
    throw;
  }
  int const recordLength = m_header[7];
  if (recordLength <= 0 || m_header[8] <= 0 || m_header[8] > recordLength || m_header[9] <= 0 || m_header[10] <= 0 ||
      m_header[2] <= 0 || m_header[18] < 0 || m_header[18] >= m_header[2] || m_header[6] < 0 ||
      m_header[5] != kTableEntry * m_header[6] || m_header[31] < 1 || m_header[33] < 1 || m_header[34] < 1 ||
      static_cast<long long>(m_header[9]) * m_header[10] > 100000000LL || m_header[3] < 0 ||
      m_header[3] + m_header[8] != recordLength ||
      (m_header[17] == 0 ? m_header[2] - m_header[18] : compression_moffld_int16Tlen(m_header[2] - m_header[18], 0)) >
          m_header[8])
    Message::fatal(label, 0, "The header of %s does not describe a valid offload file.", m_fileName.c_str());
  if (m_update) {
    m_ioFile = FS::update(m_fileName, FS::RecordFile, 0, 4 * recordLength);
    m_file = m_ioFile;
  } else {
    m_file = FS::open(m_fileName, FS::RecordFile, 1024, 4 * recordLength);
  }
  if (!m_file.isGood()) m_file.terminate(label);
  m_file.setNoByteSwapping();
  try {
    // The table and the maps must lie inside the file before any memory
    // is set aside for them.
    long long const records = m_file.getNRecords();
    long long const bins = static_cast<long long>(m_header[9]) * m_header[10];
    long long const mapRecords = bins / recordLength + 1;
    if (m_header[31] + (m_header[5] - 1) / recordLength > records ||
        m_header[33] + mapRecords * (m_header[89] == 995 ? 2 : 1) - 1 > records)
      Message::fatal(label, 0, "The header of %s does not describe a valid offload file.", m_fileName.c_str());
    // A rectangular file has a record for every bin, live or not, so its
    // full size is known here: a file cut short is told at open, not at the
    // first read past its end.
    long long const full = m_header[34] - 1 + bins;
    if (m_header[89] == 991 && full > records)
      Message::fatal(label, 0, "The offload file %s is cut short: its header calls for %lld records of %d bytes, it "
                     "holds %lld.", m_fileName.c_str(), full, 4 * recordLength, records);
    myBuildAttributes();
    mySetupGrid();
    m_shape = m_header[89] == 995   ? vString("polygonal")
              : m_header[89] == 991 ? vString("rectangular")
                                    : vString("unknown");
    m_offsetBin = m_version->getFileOffset(m_header.data());
    mySetupProperties();
    myLoadMaps();
  } catch (...) {
    m_file.clear();
    m_file.close();
    m_file = FS::iFile();
    throw;
  }
  if (systemFlag("DUMPPOLYGONINFO", false)) {
    for (std::size_t k = 0; k < m_header.size(); ++k)
      std::printf("header[%d] = %d\n", static_cast<int>(k), m_header[k]);
    for (std::size_t k = 0; k < m_fold.size(); ++k)
      std::printf("bin %d fold %d mask %d\n", static_cast<int>(k + 1), m_fold[k], m_mask.empty() ? 0 : m_mask[k]);
  }
  m_file.unlock();
  m_isOpen = true;
}

void OffloadAttributeFile::myCheckForByteSwap(int word0) {
  m_swap = false;
  uint32_t word = static_cast<uint32_t>(word0);
  if (word > static_cast<uint32_t>(kMaxHeader)) {
    word = swapWord(word);
    if (word == 0 || word > static_cast<uint32_t>(kMaxHeader))
      Message::fatal("OffloadAttributeFile::myCheckForByteSwap", 0,
                     "Expected header length of '%s' to be >0 and <=1000, it was %d.", m_fileName.c_str(), word0);
    m_swap = true;
  } else if (word == 0) {
    Message::fatal("OffloadAttributeFile::myCheckForByteSwap", 0,
                   "Expected header length of '%s' to be >0 and <=1000, it was %d.", m_fileName.c_str(), word0);
  }
  m_header.assign(word, 0);
}

void OffloadAttributeFile::myCheckHeader() {
  if (m_header[1] != kMagic)
    Message::fatal("OffloadAttributeFile::myCheckHeader", 0,
                   "File %s does not appear to be a offload file. Expected %d found %d.", m_fileName.c_str(), kMagic,
                   m_header[1]);
}

void OffloadAttributeFile::mySetVersionBits() {
  OffloadVersionBits* bits = OffloadVersionBits::forVersion(m_header[59]);
  if (!bits)
    Message::fatal("OffloadAttributeFile::mySetVersionBits", 0,
                   "Can only handle versions upto %d. This file '%s' is version %d.", 2, m_fileName.c_str(),
                   m_header[59]);
  m_version = vHandle<OffloadVersionBits>(bits);
}

void OffloadAttributeFile::myBuildAttributes() {
  int const nEntries = m_header[6];
  std::vector<int> table(static_cast<std::size_t>(kTableEntry * nEntries), 0);
  if (nEntries > 0) myReadRecords(m_header[31], 0, reinterpret_cast<char*>(table.data()));
  // Words 0 to 2 of each entry are numbers; the name stays as text.
  if (m_swap)
    for (int k = 0; k < nEntries; ++k) vUtl::swapBytes32(&table[static_cast<std::size_t>(kTableEntry * k)], 3);
  m_fscp = false;
  bool subline = false;
  for (int k = 0; k < nEntries; ++k) {
    char const* text = reinterpret_cast<char const*>(&table[static_cast<std::size_t>(kTableEntry * k + 3)]);
    if (std::memcmp(text, "SUBLINE", 7) == 0) subline = true;
    if (std::memcmp(text, "LBUS ENI", 8) == 0) subline = m_fscp = true;
  }
  if (!subline)
    Message::fatal("OffloadAttributeFile::myCheckForFSCP", 0,
                   "Could not find Attribute SUBLINE to check for byteswapping.");
  m_properties.addOrReplaceProperty(Property(vUCString("HAS_BEEN_FSCP"), m_fscp ? "yes" : "no"));
  m_attributes.clear();
  m_tableAttributes.clear();
  m_offsets.clear();
  int position = 0;
  int const headerWords = m_header[3];
  for (int k = 0; k < nEntries; ++k) {
    int const* entry = &table[static_cast<std::size_t>(kTableEntry * k)];
    char name[80];
    std::memcpy(name, entry + 3, sizeof name);
    if (m_fscp)
      for (int c = 0; c < 80; c += 4) {
        std::swap(name[c], name[c + 3]);
        std::swap(name[c + 1], name[c + 2]);
      }
    std::string const text = trimmed(name, 80);
    int const length = entry[2];
    if (text.empty() || length <= 0 || position + length > headerWords)
      Message::fatal("OffloadAttributeFile::myBuildAttributes", 0,
                     "The attribute table of %s does not match its records.", m_fileName.c_str());
    DataType const type = entry[0] == 1 ? vINT32 : vFLOAT32;
    Attribute attribute(text.c_str(), "", type, length);
    m_tableAttributes.push_back(attribute);
    m_attributes.push_back(attribute);
    m_offsets.push_back(AttributeOffset{k, position, vUCString(text.c_str())});
    position += length;
  }
  std::sort(m_offsets.begin(), m_offsets.end());
  m_useGenerated = systemFlag("USEGENERATEDATTRS", true);
  if (!m_useGenerated)
    Message::info("OffloadAttributeFile::myBuildAttributes", 0, "'%s' - Will not use generated attributes!",
                  m_fileName.c_str());
  m_useGeneratedCmp = systemFlag("USEGENERATEDCMP", true);
  if (!m_useGeneratedCmp)
    Message::info("OffloadAttributeFile::myBuildAttributes", 0, "'%s' - Will not use generated cmp!",
                  m_fileName.c_str());
  double const interval = m_header[4] / 1000.0;
  int const mute = restoreMute ? 0 : m_header[18];
  int const length = restoreMute ? m_header[2] : m_header[2] - m_header[18];
  m_attributes.push_back(
      Attribute("TRACE", "TRACE", vFLOAT32, length, interval, m_header[18] * interval * (mute ? 1 : 0)));
  for (char const* name : {"CMP.FOLD", "OFFSET.BIN", "CMP", "INLINE", "CROSSLINE"})
    if (std::none_of(m_attributes.begin(), m_attributes.end(),
                     [name](Attribute const& a) { return a.getName() == vUCString(name); }))
      m_attributes.push_back(Attribute(name, "", std::strcmp(name, "OFFSET.BIN") == 0 ? vFLOAT32 : vINT32, 1));
  if (m_header[17] != 0) {
    m_attributes.push_back(Attribute("TRACE.I16", "", vINT16, m_header[2] - m_header[18], interval));
    m_attributes.push_back(Attribute("TRACE.I16.SCALER", "", vFLOAT32, 1));
  }
}

void OffloadAttributeFile::mySetupGrid() {
  int const* h = m_header.data();
  m_cmpTested = 0;
  float ilInterval, xlInterval;
  std::memcpy(&xlInterval, &h[15], 4);
  std::memcpy(&ilInterval, &h[16], 4);
  // Numbering bins needs no intervals; a file without them still reads.
  if (!(xlInterval > 0.0f)) xlInterval = 1.0f;
  if (!(ilInterval > 0.0f)) ilInterval = 1.0f;
  // A dummy grid numbers the bins from 1 in both directions, for files
  // whose line numbers or intervals are not to be trusted.
  if (systemFlag("USEDUMMYGRID", false))
    m_grid = CMPBasicGrid(1, 1, 1, 1, h[10], 1, 1, h[9], vCoordinate(), 1.0f, 1.0f, 0.0);
  else
    m_grid = CMPBasicGrid(1, 1, h[12], h[14] ? h[14] : 1, h[10], h[11], h[13] ? h[13] : 1, h[9], vCoordinate(),
                          ilInterval, xlInterval, 0.0);
}

void OffloadAttributeFile::mySetupProperties() {
  int const* h = m_header.data();
  float ilInterval, xlInterval;
  std::memcpy(&xlInterval, &h[15], 4);
  std::memcpy(&ilInterval, &h[16], 4);
  PropertyList& list = m_properties;
  auto text = [&list](char const* name, char const* value) {
    list.addOrReplaceProperty(Property(vUCString(name), value));
  };
  auto number = [&list](char const* name, int value) { list.addOrReplaceProperty(Property(vUCString(name), value)); };
  auto real = [&list](char const* name, double value) { list.addOrReplaceProperty(Property(vUCString(name), value)); };
  number("OFFLOAD_REGISTRATION", 4);
  number("OFFLOAD_VERSION", h[59]);
  number("DISK_VERSION", h[59]);
  text("MOFFLD_SHAPE", m_shape.c_str());
  // Grids carry no storage bias any more (a reader of grids refuses any
  // other value); the survey origin has its own properties.
  real("X_STORAGE_BIAS", 0.0);
  real("Y_STORAGE_BIAS", 0.0);
  number("CMP_INCREMENT", 1);
  number("FIRST_CMP", 1);
  number("CROSSLINE_INCREMENT", h[13]);
  number("FIRST_CROSSLINE", h[11]);
  number("LAST_CROSSLINE", h[19]);
  number("INLINE_INCREMENT", h[14]);
  number("FIRST_INLINE", h[12]);
  number("LAST_INLINE", h[20]);
  number("NUM_CROSSLINES", h[9]);
  number("NUM_INLINES", h[10]);
  real("CROSSLINE_INTERVAL", xlInterval);
  real("INLINE_INTERVAL", ilInterval);
  real("ROTATION_ANGLE", m_grid.getRotationAngle());
  real("X_REALWORLD_ORIGIN", m_grid.getRealWorldOrigin().getX());
  real("Y_REALWORLD_ORIGIN", m_grid.getRealWorldOrigin().getY());
  real("X_SURVEY_ORIGIN", m_grid.getSurveyOrigin().getX());
  real("Y_SURVEY_ORIGIN", m_grid.getSurveyOrigin().getY());
  text("UNITS", "METERS");
  text("CMP_ORDERING", "ALONG_INLINES");
  real("OFFSET_BIN", m_offsetBin);
  number("OFFSET_SEQUENCE", h[21]);
  uint16_t const probe = 1;
  bool const little = (*reinterpret_cast<unsigned char const*>(&probe) == 1) != m_swap;
  text("ENDIAN", little ? "little" : "big");
  if (h[17] != 0) text("COMPRESSED", "yes");
  number("MUTE_LENGTH", h[18]);
}

void OffloadAttributeFile::myLoadMaps() {
  std::size_t const bins = static_cast<std::size_t>(m_header[9]) * static_cast<std::size_t>(m_header[10]);
  m_fold.assign(bins, 0);
  myReadRecords(m_header[33], 0, reinterpret_cast<char*>(m_fold.data()));
  if (m_swap) vUtl::swapBytes32(m_fold.data(), bins);
  m_mask.clear();
  if (m_header[89] != 995) return;
  long long const maskRecord = m_header[33] + static_cast<long long>(bins) / m_header[7] + 1;
  m_mask.assign(bins, 0);
  myReadRecords(maskRecord, 0, reinterpret_cast<char*>(m_mask.data()));
  if (m_swap) vUtl::swapBytes32(m_mask.data(), bins);
  long long const records = m_file.getNRecords() - m_header[34] + 1;
  for (std::size_t k = 0; k < bins; ++k)
    if (m_fold[k] != 0 && (m_mask[k] < 0 || m_mask[k] >= records))
      Message::fatal("OffloadAttributeFile::myLoadMaps", 0, "The polygon mask of %s points past its records.",
                     m_fileName.c_str());
}

// --- what the file holds ----------------------------------------------------------------------

Attribute const& OffloadAttributeFile::myDefinition(char const* label, vUCString const& name) {
  myOpenFile();
  for (Attribute const& attribute : m_attributes)
    if (attribute.getName() == name) return attribute;
  Message::fatal(label, 0, "Attribute %s is not in the OffloadAttributeFile %s.", name.c_str(), m_fileName.c_str());
}

int OffloadAttributeFile::getOffset(Attribute const& attribute) const {
  AttributeOffset const key{0, 0, attribute.getName()};
  auto const found = std::lower_bound(m_offsets.begin(), m_offsets.end(), key);
  if (found != m_offsets.end() && found->name == attribute.getName()) {
    bool const key = found->name == vUCString("INLINE") || found->name == vUCString("CROSSLINE");
    bool const cmp = found->name == vUCString("CMP");
    if ((!key && !cmp) || (key && !m_useGenerated) || (cmp && (!m_useGenerated || !m_useGeneratedCmp)))
      return 4 * (m_header[8] + found->position);
  }
  if (attribute.getName() == vUCString("TRACE") || attribute.getName() == vUCString("TRACE.I16.SCALER")) return 0;
  if (attribute.getName() == vUCString("TRACE.I16")) return 4;
  return -1;
}

bool OffloadAttributeFile::hasAttribute(vUCString const& name) {
  myOpenFile();
  for (Attribute const& attribute : m_attributes)
    if (attribute.getName() == name) return true;
  return false;
}

Attribute OffloadAttributeFile::getAttribute(vUCString const& name) {
  return myDefinition("OffloadAttributeFile::getAttribute", name);
}

unsigned int OffloadAttributeFile::getNAttributes() {
  myOpenFile();
  return static_cast<unsigned int>(m_attributes.size());
}

std::list<Attribute> OffloadAttributeFile::getAttributeList() {
  myOpenFile();
  return m_attributes;
}

KeyList OffloadAttributeFile::getKeyList() {
  myOpenFile();
  KeyList keys;
  keys.addKey(myDefinition("OffloadAttributeFile::getKeyList", vUCString("INLINE")));
  keys.addKey(myDefinition("OffloadAttributeFile::getKeyList", vUCString("CROSSLINE")));
  return keys;
}

bool OffloadAttributeFile::isCalculatable(vUCString const& name) {
  myOpenFile();
  if (name == vUCString("CMP.FOLD") || name == vUCString("OFFSET.BIN"))
    return getOffset(Attribute(name.c_str(), "", vINT32)) < 0;
  if (name == vUCString("CMP") || name == vUCString("INLINE") || name == vUCString("CROSSLINE"))
    return getOffset(Attribute(name.c_str(), "", vINT32)) < 0;
  return false;
}

unsigned int OffloadAttributeFile::getNInstances() {
  myOpenFile();
  return static_cast<unsigned int>(m_header[9]) * static_cast<unsigned int>(m_header[10]);
}

long long OffloadAttributeFile::getFileSize() {
  myOpenFile();
  return m_file.getNRecords() * 4LL * m_header[7];
}

CMPBasicGrid const& OffloadAttributeFile::getGrid() {
  myOpenFile();
  return m_grid;
}

double OffloadAttributeFile::getOffsetBin() {
  myOpenFile();
  return m_offsetBin;
}

int OffloadAttributeFile::getRecordLength() {
  myOpenFile();
  return m_header[7];
}

std::vector<int> const& OffloadAttributeFile::getPolygonMask() {
  myOpenFile();
  return m_mask;
}

std::vector<int> const& OffloadAttributeFile::getFold() {
  myOpenFile();
  return m_fold;
}

PropertyList const& OffloadAttributeFile::getProperties() {
  myOpenFile();
  return m_properties;
}

std::vector<int> const& OffloadAttributeFile::getHeader() {
  myOpenFile();
  return m_header;
}

bool OffloadAttributeFile::isSwapped() {
  myOpenFile();
  return m_swap;
}

void OffloadAttributeFile::setRestoreMute(bool restore) {
  restoreMute = restore;
  m_options.setRestoreMute(restore);
  if (m_isOpen) {
    m_isOpen = false;
    m_file.clear();
    m_file.close();
    m_buffer.clear();
    m_bufferFirst = m_bufferLast = 0;
  }
}

AttributeFile* OffloadAttributeFile::makeNew(vFilename const& name, Attribute const&, OpenOptions options) {
  return new OffloadAttributeFile(name, options);
}

void OffloadAttributeFile::deleteFile(vFilename const& name) { FS::rm(FS::DeleteFile, name); }

bool OffloadAttributeFile::prepareBuffer(AttributeSetBuffer&) { return false; }

void OffloadAttributeFile::readBufferRange(AttributeSetBuffer&, unsigned int, unsigned int) {
  Message::fatal("OffloadAttributeFile::readBufferRange", 0, "OffloadAttributeFile needs to implement this method.");
}

void OffloadAttributeFile::locateByGroups(Attribute const& groupAttribute, unsigned int firstGroup,
                                          unsigned int lastGroup, std::vector<unsigned int>& result) {
  myOpenFile();
  if (!m_index) m_index.reset(new AttributeSetIndexingTable(this));
  m_index->locateByGroups(groupAttribute, firstGroup, lastGroup, result);
}

bool OffloadAttributeFile::getBufferRange(unsigned int& first, unsigned int& last) const {
  if (m_buffer.empty()) return false;
  first = m_bufferFirst;
  last = m_bufferLast;
  return true;
}
