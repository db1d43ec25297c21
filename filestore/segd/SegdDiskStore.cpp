#include "filestore/segd/SegdDiskStore.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <string>

#include "attribute/AttributeDefinition.h"
#include "filestore/segd/SegdKernels.h"
#include "foundation/Message.h"
#include "project/Project.h"
#include "syslayer/TapeSetReader.h"

namespace {

char const* const kNotOpen = "Segd Disk File has not been opened yet!";
// The record file service's options for reading a SEG-D file.
int const kOpenOptions = 1024;

bool hasExtension(vFilename const& file, char const* extension) {
  std::string ext(file.getExtension().c_str());
  for (char& c : ext) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return ext == extension;
}

// The vocabulary's definition of a name at the length the file gives, or
// the type given when the vocabulary does not know it.
Attribute defined(char const* name, DataType fallback, int length, double sampleRate = 0.0) {
  if (AttributeDefinition::hasDefinition(name)) return AttributeDefinition::getDefinition(name, length, sampleRate);
  return Attribute(name, name, fallback, length, sampleRate);
}

}  // namespace

// --- opening and closing ------------------------------------------------------------------

SegdDiskStore::SegdDiskStore() : SegdDiskStore(vHandle<Project>()) {}

SegdDiskStore::SegdDiskStore(vHandle<Project> const& project)
    : SingleSetDiskStore(project, "SegdDiskStore", kNotOpen),
      m_nInstances(0),
      m_nSamples(0),
      m_traceLength(0),
      m_dataStart(0),
      m_fileSize(0),
      m_gapAfterHeaders(false) {}

SegdDiskStore::~SegdDiskStore() {
  if (m_file.isOpen()) m_file.close();
}

void SegdDiskStore::open(StoreDescription const& description) {
  if (!description.isFlatFile())
    Message::fatal("SegdDiskStore::open(StoreDescription)", 0, "StoreDescription must contain a flat file.");
  open(description.getFlatFileName());
}

void SegdDiskStore::open(vFilename const& file) {
  char const* const label = "SegdDiskStore::open";
  std::list<vString> const tapes = tapeNames(file.getFilename());
  if (!tapes.empty()) {
    openTapes(tapes);
    return;
  }
  if (m_isOpen || m_file.isOpen()) close();
  m_fileName = file;
  try {
    m_gapAfterHeaders = hasExtension(file, "dsegd");
    m_file = FS::open(file, FS::ByteFile, kOpenOptions);
    if (!m_file.isGood()) m_file.terminate(label);
    unsigned char block[SegdGeneralHeader::LENGTH];
    long long const got = m_file.read(1, block, SegdGeneralHeader::LENGTH);
    if (got < SegdGeneralHeader::LENGTH) m_file.clear();
    mySetUp(block, got);
  } catch (...) {
    close();
    throw;
  }
}

std::list<vString> SegdDiskStore::tapeNames(vString const& name) {
  std::string const text(name.c_str());
  std::string upper(text);
  for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  std::list<vString> tapes;
  for (char const* word : {"TAPES", "TAPE", "T"}) {
    std::size_t const n = std::strlen(word);
    if (upper.compare(0, n, word) != 0 || upper.size() <= n || (upper[n] != '=' && upper[n] != ' ')) continue;
    std::string current;
    for (std::size_t k = n + 1; k <= text.size(); ++k) {
      if (k == text.size() || text[k] == ',' || text[k] == ':' || text[k] == '=') {
        if (!current.empty()) tapes.push_back(vString(current.c_str()));
        current.clear();
      } else {
        current += text[k];
      }
    }
    break;
  }
  return tapes;
}

void SegdDiskStore::openTapes(std::list<vString> const& tapes) {
  if (m_isOpen || m_file.isOpen()) close();
  m_fileName = vFilename(tapes.empty() ? vString() : tapes.front());
  try {
    TapeSetReader reader(tapes);
    std::vector<unsigned char> chunk(TapeSetReader::kBufferSize);
    for (;;) {
      unsigned const got = reader.read(chunk.data(), static_cast<unsigned>(chunk.size()));
      m_tapeData.insert(m_tapeData.end(), chunk.begin(), chunk.begin() + got);
      if (got < chunk.size()) break;
    }
    reader.close();
    unsigned char block[SegdGeneralHeader::LENGTH] = {};
    long long const got = std::min<long long>(SegdGeneralHeader::LENGTH, static_cast<long long>(m_tapeData.size()));
    if (got > 0) std::memcpy(block, m_tapeData.data(), static_cast<std::size_t>(got));
    mySetUp(block, got);
  } catch (...) {
    close();
    throw;
  }
}

void SegdDiskStore::mySetUp(unsigned char const* block, long long got) {
  char const* const label = "SegdDiskStore::open";
  if (got < SegdGeneralHeader::LENGTH)
    Message::fatal(label, 0, "Only read %d bytes from header of file %s.", static_cast<int>(got < 0 ? 0 : got),
                   m_fileName.c_str());
  m_generalHeader = vHandle<SegdGeneralHeader>(new SegdGeneralHeader(block));
  int const code = m_generalHeader->getFormatCode();
  if (code != 8015 && code != 8058) Message::fatal(label, 0, "Unsupported file format %d!", code);
  m_nSamples = m_generalHeader->getTraceLength();
  m_traceLength = SegdKernels::traceLength(code, m_nSamples);
  myBuildAttributes();
  m_nInstances = myGetNInstances();
  m_recordBuffer = vHandle<RecordBuffer>(new RecordBuffer(m_traceLength));
  m_keyList = KeyList();
  m_keyList.addKey(*myFindDefinition(vUCString("FFID")));
  m_keyList.addKey(*myFindDefinition(vUCString("CHANNEL")));
  getIndexingTable().clearCache();
  m_isOpen = true;
}

void SegdDiskStore::myBuildAttributes() {
  myClearAttributes();
  myAddDefinition(defined("TRACE", vFLOAT32, m_nSamples, m_generalHeader->getSampleRate()));
  myAddDefinition(defined("FFID", vINT32, 1));
  myAddDefinition(Attribute("CHANNELSET", "CHANNELSET", vINT32));
  myAddDefinition(Attribute("TRACENUMBER", "TRACENUMBER", vINT32));
  myAddDefinition(defined("CHANNEL", vINT32, 1));
  myAddDefinition(Attribute("SEQUENCE", "SEQUENCE", vINT32));
}

unsigned int SegdDiskStore::myGetNInstances() {
  char const* const label = "SegdDiskStore::myGetNInstances";
  if (!m_file.isOpen() && m_tapeData.empty()) Message::fatal(label, 0, kNotOpen);
  int const code = m_generalHeader->getFormatCode();
  if (code != 8015 && code != 8058) Message::fatal(label, 0, "Unhandled format code %d!", code);
  if (m_tapeData.empty()) {
    m_fileSize = m_file.getNRecords();
    if (!m_file.isGood()) m_file.terminate(label);
  } else {
    m_fileSize = static_cast<long long>(m_tapeData.size());
  }
  m_dataStart = m_generalHeader->getHeaderSize() + (m_gapAfterHeaders ? SegdKernels::DSEGD_GAP : 0);
  long long const data = m_fileSize - m_dataStart;
  unsigned int const traces = data > 0 && m_traceLength > 0 ? static_cast<unsigned int>(data / m_traceLength) : 0u;
  long long const expected = m_dataStart + static_cast<long long>(traces) * m_traceLength;
  if (expected != m_fileSize)
    Message::error(label, 0,
                   "The file '%s' is either incomplete or corrupt.\nFilesize is %s bytes but we expect %s when the "
                   "tracelength is %d",
                   m_fileName.c_str(), std::to_string(m_fileSize).c_str(), std::to_string(expected).c_str(),
                   m_traceLength);
  return traces;
}

void SegdDiskStore::close() {
  if (m_file.isOpen()) {
    m_file.clear();
    m_file.close();
  }
  m_file = FS::iFile();
  myClearAttributes();
  m_nInstances = 0;
  m_nSamples = 0;
  m_traceLength = 0;
  m_dataStart = 0;
  m_fileSize = 0;
  m_gapAfterHeaders = false;
  std::vector<unsigned char>().swap(m_tapeData);
  m_generalHeader = vHandle<SegdGeneralHeader>();
  m_recordBuffer = vHandle<RecordBuffer>();
  m_keyList = KeyList();
  getIndexingTable().clearCache();
  m_isOpen = false;
}

// --- what the store holds ----------------------------------------------------------------

unsigned int SegdDiskStore::getNInstances() const {
  myCheckOpen("SegdDiskStore::getNInstances");
  return m_nInstances;
}

long long SegdDiskStore::getLength() const {
  myCheckOpen("SegdDiskStore::getLength");
  return m_fileSize;
}

vLCString SegdDiskStore::getClass() const { return vLCString("seismic"); }

vLCString SegdDiskStore::getSubClass() const { return vLCString("segddisk"); }
