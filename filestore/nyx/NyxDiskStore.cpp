#include "filestore/nyx/NyxDiskStore.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <cstring>
#include <string>

#include "filestore/nyx/NyxFS.h"
#include "foundation/Message.h"
#include "foundation/SystemPropertyManager.h"
#include "project/Project.h"
#include "syslayer/TapeSetReader.h"

namespace {

char const* const kOpenLabel = "NyxDiskStore::open";
char const* const kNotOpen = "A Nyx fisk file has not been opened yet!";

std::string upper(std::string text) {
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

bool systemProperty(char const* name, vString& value) {
  if (!SystemPropertyManager::hasSystemProperty("NYX", name)) return false;
  value = SystemPropertyManager::getSystemProperty("NYX", name).getValue(0);
  return true;
}

}  // namespace

// --- the record ----------------------------------------------------------------------------

void NyxDiskStore::Record::validateHeader(int fileFormatIn, int dataFormatIn, int nSamples, float rate,
                                          long long physicalSize, char const* label) {
  int const sampleSize = NyxTrace::sampleSize(dataFormatIn);
  if (sampleSize == 0) Message::fatal(label, 0, "Data format %d is unsupported!", dataFormatIn);
  fileFormat = fileFormatIn;
  dataFormat = dataFormatIn;
  nSamplesPerTrace = nSamples;
  sampleRate = rate;
  intTraceLengthW = NyxTrace::HEADER_WORDS + nSamples;
  intTraceLengthB = 4 * intTraceLengthW;
  extTraceLengthB = NyxTrace::HEADER_BYTES + nSamples * sampleSize;
  extTraceLengthW = extTraceLengthB / 4;
  extRecordLengthB = extTraceLengthB;
  if (physicalRecLenB == 0) physicalRecLenB = extRecordLengthB;
  if (physicalSize >= 0 && fileFormat == CST) {
    long long const records = physicalSize / extRecordLengthB;
    long long const calculated = records * extRecordLengthB;
    if (calculated != physicalSize || records == 0)
      Message::fatal(label, 0, "Calculation error, physical file size %s != calculated size %s!",
                     std::to_string(physicalSize).c_str(), std::to_string(calculated).c_str());
    nInstances = static_cast<int>(records);
  }
}

std::ostream& operator<<(std::ostream& out, NyxDiskStore::Record const& r) {
  char line[128];
  auto put = [&](char const* format, auto value) {
    std::snprintf(line, sizeof line, format, value);
    out << line << "\n";
  };
  put("File Format        : %d", r.fileFormat);
  put("Data Format        : %d", r.dataFormat);
  put("Trace Type         : %d", r.traceType);
  put("N SamplesPerTrace  : %d", r.nSamplesPerTrace);
  put("Int Trace Length W : %d", r.intTraceLengthW);
  put("Int Trace Length B : %d", r.intTraceLengthB);
  put("Ext Trace Length W : %d", r.extTraceLengthW);
  put("Ext Trace Length B : %d", r.extTraceLengthB);
  put("Sample Rate        : %f", static_cast<double>(r.sampleRate));
  put("Ext Record Length B: %d", r.extRecordLengthB);
  put("Physical Rec Len B : %d", r.physicalRecLenB);
  put("nInstances         : %d", r.nInstances);
  put("OwnData            : %d", r.ownData ? 1 : 0);
  return out;
}

// --- the store -----------------------------------------------------------------------------

NyxDiskStore::NyxDiskStore() : NyxDiskStore(vHandle<Project>()) {}

NyxDiskStore::NyxDiskStore(vHandle<Project> const& project)
    : SingleSetDiskStore(project, "NyxDiskStore", kNotOpen), m_creating(false), m_swapped(false),
      m_subClass("nyxdisk"), m_datFd(-1), m_tapeNext(1), m_tapeEnded(false), m_cacheFirst(0), m_cacheLast(0),
      m_nCreated(0) {}

NyxDiskStore::~NyxDiskStore() {
  try {
    if (m_isOpen) close();
  } catch (...) {
  }
}

bool NyxDiskStore::isTapeName(vString const& name, std::list<vString>* tapes) {
  std::string const text = name.c_str();
  std::size_t const cut = text.find_first_of("= ");
  if (cut == std::string::npos) return false;
  std::string const word = upper(text.substr(0, cut));
  if (word != "T" && word != "TAPE" && word != "TAPES") return false;
  if (tapes) {
    tapes->clear();
    std::size_t start = cut + 1;
    for (;;) {
      std::size_t const end = text.find_first_of(",:=", start);
      std::string const part = text.substr(start, end == std::string::npos ? std::string::npos : end - start);
      if (!part.empty()) tapes->push_back(vString(part.c_str()));
      if (end == std::string::npos) break;
      start = end + 1;
    }
  }
  return true;
}

void NyxDiskStore::open(StoreDescription const& description) {
  open(description.getFlatFileName());
  // A class the caller names for the store (other than "seismic" itself)
  // says what the traces are better than the generic name does.
  vLCString const wanted = description.getStoreClass();
  if (!wanted.isBlank() && wanted != m_subClass && wanted != getClass()) {
    Message::info(kOpenLabel, 0, "Overriding subclass from '%s' to '%s'", m_subClass.c_str(), wanted.c_str());
    m_subClass = wanted;
  }
}

void NyxDiskStore::open(vFilename const& file) {
  if (m_isOpen || m_creating) Message::fatal(kOpenLabel, 0, "A Nyx disk file is already open '%s'!", file.c_str());
  m_fileName = file;
  m_subClass = "nyxdisk";
  m_record = Record();
  m_index.clear();
  std::list<vString> tapes;
  try {
    if (isTapeName(file.getFilename(), &tapes)) {
      myOpenTapes(tapes);
    } else {
      std::string const path = file.c_str();
      std::size_t const colon = path.find(':');
      if (colon != std::string::npos && path.find('/') > colon)
        Message::fatal(kOpenLabel, 0, "Cannot open '%s' as only local files are supported!", file.c_str());
      struct stat s;
      if (::stat(path.c_str(), &s) != 0) Message::fatal(kOpenLabel, 0, "The file '%s' does not exist!", file.c_str());
      if (vLCString(file.getExtension()) == vLCString("dat"))
        myOpenDat();
      else
        myOpenCst();
    }
  } catch (...) {
    if (m_datFd >= 0) NYXFSclose(m_datFd);
    m_datFd = -1;
    if (m_file.isOpen()) {
      m_file.clear();
      m_file.close();
    }
    m_tapes.reset();
    throw;
  }
  myBuildAttributes();
  m_isOpen = true;
  getIndexingTable().clearCache();
  try {
    vString blocking;
    if (m_record.fileFormat != TAPES && systemProperty("BLOCKINGFACTOR", blocking)) {
      int const factor = std::atoi(blocking.c_str());
      if (factor < 1)
        Message::fatal(kOpenLabel, 0, "Failed to set the blocking factor to %d for '%s' ... status %d!", factor,
                       file.c_str(), 0);
      m_record.physicalRecLenB = factor * m_record.extRecordLengthB;
      Message::info(kOpenLabel, 0, "Setting blocking factor to %d.", factor);
    }
    if (m_record.fileFormat == DAT) {
      vString autogenerate;
      bool const generate =
          systemProperty("AUTOGENERATEINDEX", autogenerate) && SystemProperty::isTrueText(autogenerate);
      if (hasIndexFile())
        myLoadIndex();
      else if (generate)
        generateIndexFile();
    }
  } catch (...) {
    close();
    throw;
  }
}

void NyxDiskStore::myOpenCst() {
  m_file = FS::open(m_fileName, FS::ByteFile);
  if (!m_file.isGood()) m_file.terminate(kOpenLabel);
  long long const size = myFileSize();
  int32_t header[NyxTrace::HEADER_WORDS] = {};
  long long const got = m_file.read(1, header, NyxTrace::HEADER_BYTES);
  m_file.clear();
  if (got != NyxTrace::HEADER_BYTES)
    Message::fatal(kOpenLabel, 0, "Calculation error, physical file size %s != calculated size %s!",
                   std::to_string(size).c_str(), std::to_string(NyxTrace::HEADER_BYTES).c_str());
  auto fits = [](int32_t const* h) {
    int const size = NyxTrace::sampleSize(h[NyxTrace::DATA_FORMAT]);
    return size > 0 && h[NyxTrace::NSAMPLES] >= 0 && h[NyxTrace::NSAMPLES] <= (1 << 24) &&
           h[NyxTrace::SAMPLE_BYTES] == size * h[NyxTrace::NSAMPLES];
  };
  m_swapped = false;
  if (!fits(header)) {
    int32_t swapped[NyxTrace::HEADER_WORDS];
    std::memcpy(swapped, header, sizeof header);
    NyxTrace::swapWords(swapped, NyxTrace::HEADER_WORDS);
    if (!fits(swapped)) Message::fatal(kOpenLabel, 0, "Data format %d is unsupported!", header[NyxTrace::DATA_FORMAT]);
    std::memcpy(header, swapped, sizeof header);
    m_swapped = true;
  }
  m_record.header.assign(header, header + NyxTrace::HEADER_WORDS);
  m_record.traceType = header[NyxTrace::TRACE_TYPE];
  m_record.validateHeader(CST, header[NyxTrace::DATA_FORMAT], header[NyxTrace::NSAMPLES],
                          static_cast<float>(header[NyxTrace::SAMPLE_INTERVAL]) / 1000.0f, size, kOpenLabel);
}

void NyxDiskStore::myOpenDat() {
  m_datFd = NYXFSopen3(m_fileName.c_str(), O_RDONLY, 0);
  if (m_datFd < 0) {
    int const error = NYXFSerrno();
    Message::fatal(kOpenLabel, 0, "Failed to open the file '%s' ... %d:%s", m_fileName.c_str(), error, NYXFSerror());
  }
  struct stat s;
  if (NYXFSfstat(m_datFd, &s) != 0)
    Message::fatal(kOpenLabel, 0, "Failed to open the file '%s' ... status %d!", m_fileName.c_str(), NYXFSerrno());
  int const fd = m_datFd;
  NyxDatLayout::Reader const reader = [fd](long long offset, void* buffer, long long count) -> long long {
    if (NYXFSlseek(fd, offset, SEEK_SET) != offset) return -1;
    long long done = 0;
    while (done < count) {
      long const got = NYXFSread(fd, static_cast<char*>(buffer) + done, static_cast<unsigned long>(count - done));
      if (got <= 0) break;
      done += got;
    }
    return done;
  };
  m_dat.parse(reader, static_cast<long long>(s.st_size), "NyxDiskStore::myGetDatFileDetails", m_fileName.c_str());
  m_swapped = m_dat.swapped;
  m_record.header.assign(m_dat.firstHeader, m_dat.firstHeader + NyxTrace::HEADER_WORDS);
  m_record.traceType = m_dat.firstHeader[NyxTrace::TRACE_TYPE];
  m_record.validateHeader(DAT, m_dat.dataFormat, m_dat.nSamples,
                          static_cast<float>(m_dat.firstHeader[NyxTrace::SAMPLE_INTERVAL]) / 1000.0f, -1, kOpenLabel);
  m_record.nInstances = static_cast<int>(m_dat.nInstances);
}

void NyxDiskStore::myOpenTapes(std::list<vString> const& tapes) {
  m_tapes.reset(new TapeSetReader(tapes));
  m_tapes->setInitialSkip(30);
  m_tapeNext = 1;
  m_tapeEnded = false;
  // myGetTapeDetails: the first trace's header, kept for the first read.
  int32_t header[NyxTrace::HEADER_WORDS] = {};
  if (m_tapes->read(header, NyxTrace::HEADER_BYTES) != static_cast<unsigned>(NyxTrace::HEADER_BYTES))
    Message::fatal("NyxDiskStore::myGetTapeDetails", 0, "Failed to read trace header from file!");
  m_tapeFirst.assign(reinterpret_cast<unsigned char*>(header),
                     reinterpret_cast<unsigned char*>(header) + NyxTrace::HEADER_BYTES);
  auto fits = [](int32_t const* h) {
    int const size = NyxTrace::sampleSize(h[NyxTrace::DATA_FORMAT]);
    return size > 0 && h[NyxTrace::SAMPLE_BYTES] == size * h[NyxTrace::NSAMPLES];
  };
  m_swapped = false;
  if (!fits(header)) {
    NyxTrace::swapWords(header, NyxTrace::HEADER_WORDS);
    m_swapped = true;
    if (!fits(header)) {
      NyxTrace::swapWords(header, NyxTrace::HEADER_WORDS);
      Message::fatal("NyxDiskStore::myGetTapeDetails", 0, "Data format %d is unsupported!",
                     header[NyxTrace::DATA_FORMAT]);
    }
  }
  m_record.header.assign(header, header + NyxTrace::HEADER_WORDS);
  m_record.traceType = header[NyxTrace::TRACE_TYPE];
  m_record.validateHeader(TAPES, header[NyxTrace::DATA_FORMAT], header[NyxTrace::NSAMPLES],
                          static_cast<float>(header[NyxTrace::SAMPLE_INTERVAL]) / 1000.0f, -1, kOpenLabel);
  // The count of a tape set is not known before its end.
  m_record.nInstances = 0x7fffffff;
}

long long NyxDiskStore::myFileSize() const {
  struct stat s;
  return ::stat(m_fileName.c_str(), &s) == 0 ? static_cast<long long>(s.st_size) : -1;
}

void NyxDiskStore::close() {
  char const* const label = "NyxDiskStore::close";
  if (m_creating) {
    m_creating = false;
    myFlushRecordBuffer();
  }
  if (m_outFile.isOpen()) {
    m_outFile.clear();
    m_outFile.close();
    bool const good = m_outFile.isGood();
    int const status = m_outFile.getStatus();
    m_outFile = FS::ioFile();
    if (!good) Message::fatal(label, 0, "Failed to close the file '%s' ... status %d!", m_fileName.c_str(), status);
  }
  if (m_file.isOpen()) {
    m_file.clear();
    m_file.close();
    if (!m_file.isGood()) {
      int const status = m_file.getStatus();
      m_file = FS::iFile();
      Message::fatal(label, 0, "Failed to close the file '%s' ... status %d!", m_fileName.c_str(), status);
    }
  }
  m_file = FS::iFile();
  if (m_datFd >= 0 && NYXFSclose(m_datFd) != 0) {
    m_datFd = -1;
    Message::fatal(label, 0, "Failed to close the file '%s' ... status %d!", m_fileName.c_str(), NYXFSerrno());
  }
  m_datFd = -1;
  m_tapes.reset();
  m_index.clear();
  m_cache.clear();
  m_cacheFirst = m_cacheLast = 0;
  myClearAttributes();
  m_added.clear();
  m_records.clear();
  m_nCreated = 0;
  getIndexingTable().clearCache();
  m_isOpen = false;
}

// --- what the store holds ------------------------------------------------------------------

namespace {

struct Named {
  char const* name;
  int word;
  DataType type;
};

Named const kNamed[] = {{"CMP", NyxTrace::CMP, vINT32},           {"SHOT.UNIQUE.ID", NyxTrace::SHOT_UNIQUE_ID, vINT32},
                        {"CHANNEL", NyxTrace::CHANNEL, vINT32},   {"RECEIVER", NyxTrace::RECEIVER, vINT32},
                        {"OFFSET", NyxTrace::OFFSET, vINT32},     {"WDEPTH", NyxTrace::WDEPTH, vFLOAT32}};

}  // namespace

void NyxDiskStore::myBuildAttributes() {
  myClearAttributes();
  for (Named const& n : kNamed) myAddDefinition(Attribute(n.name, n.name, n.type));
  myAddDefinition(Attribute("TRACE", "TRACE", vFLOAT32, m_record.nSamplesPerTrace, m_record.sampleRate));
}

bool NyxDiskStore::myDefinition(vUCString const& name, Attribute& definition, int& word) const {
  Attribute const* const found = myFindDefinition(name);
  if (found != nullptr) {
    definition = *found;
    word = -1;
    for (Named const& n : kNamed)
      if (name == vUCString(n.name)) word = n.word;
    return true;
  }
  std::string const text = name.c_str();
  if (text.size() < 5 || text.compare(0, 4, "WORD") != 0 ||
      text.find_first_not_of("0123456789", 4) != std::string::npos)
    return false;
  word = text.size() > 10 ? 9999 : std::atoi(text.c_str() + 4);
  if (word < 0 || word >= NyxTrace::HEADER_WORDS)
    Message::fatal("NyxDiskStore::getAttribute", 0, "Word index %d out of range for attribute %s!", word, name.c_str());
  definition = Attribute(name, "", vINT32);
  return true;
}

vLCString NyxDiskStore::getName() const {
  if (!m_isOpen && !m_creating) Message::fatal("NyxDiskStore::getName", 0, kNotOpen);
  if (m_record.fileFormat == TAPES) return vLCString("tapes");
  return vLCString(m_fileName.getRoot());
}

unsigned int NyxDiskStore::getNInstances() const {
  if (m_creating) return m_nCreated;
  myCheckOpen("NyxDiskStore::getNInstances");
  return static_cast<unsigned int>(m_record.nInstances);
}

Attribute NyxDiskStore::getAttribute(vUCString const& name) const {
  myCheckOpen("NyxDiskStore::getAttribute");
  Attribute definition;
  int word = 0;
  if (!myDefinition(name, definition, word))
    Message::fatal("NyxDiskStore::getAttribute", 0, "Unsupported attribute '%s'!", name.c_str());
  return definition;
}

bool NyxDiskStore::hasAttribute(vUCString const& name) const {
  if (SingleSetDiskStore::hasAttribute(name)) return true;
  std::string const text = name.c_str();
  return text.size() == 6 && text.compare(0, 4, "WORD") == 0 && std::isdigit(static_cast<unsigned char>(text[4])) &&
         std::isdigit(static_cast<unsigned char>(text[5])) && std::atoi(text.c_str() + 4) < NyxTrace::HEADER_WORDS;
}
