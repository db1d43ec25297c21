#include "filestore/segy/SegyDiskStore.h"

#include <cctype>
#include <cstring>
#include <string>

#include "attribute/AttributeDefinition.h"
#include "attribute/ByteSwappedRecordBuffer.h"
#include "filestore/segy/SegyFormatFile.h"
#include "filestore/segy/SegyKernels.h"
#include "filestore/segy/SegyShotFormat.h"
#include "foundation/Message.h"
#include "project/Project.h"

namespace {

char const* const kNotOpen = "Segy Disk File has not been opened yet!";
// The record file service's options for reading a SEG-Y file.
int const kOpenOptions = 1024;

bool hasExtension(vFilename const& file, char const* extension) {
  std::string ext(file.getExtension().c_str());
  for (char& c : ext) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return ext == extension;
}

}  // namespace

SegyDiskStore::SegyDiskStore() : SegyDiskStore(vHandle<Project>()) {}

SegyDiskStore::SegyDiskStore(vHandle<Project> const& project)
    : SingleSetDiskStore(project, "SegyDiskStore", kNotOpen),
      m_nInstances(0),
      m_nSamples(0),
      m_traceLength(0),
      m_fileSize(0) {}

SegyDiskStore::~SegyDiskStore() {
  if (m_file.isOpen()) m_file.close();
}

// --- opening and closing ------------------------------------------------------------------

void SegyDiskStore::open(StoreDescription const& description) {
  if (!description.isFlatFile())
    Message::fatal("SegyDiskStore::open(StoreDescription)", 0, "StoreDescription must contain a flat file.");
  vFilename const file = description.getFlatFileName();
  vString spec = description.getFormatSpec();
  if (spec.isBlank()) {
    vFilename beside(file);
    beside.setExtension("syf");
    if (FS::exists(beside)) spec = beside.getFilename();
  }
  if (!spec.isBlank() && !FS::exists(vFilename(spec)))
    Message::fatal("SegyDiskStore::open(StoreDescription)", 0, "Store format spec file '%s' doesn't exist.",
                   spec.c_str());
  m_formatSpec = spec;
  open(file);
}

void SegyDiskStore::open(vFilename const& file) {
  if (m_isOpen || m_file.isOpen()) close();
  m_fileName = file;
  // The format spec of the description being opened, if any; a later open by file
  // name alone takes the default format.
  m_formatFileName = m_formatSpec.isBlank() ? vFilename() : vFilename(m_formatSpec);
  m_formatSpec = vString();
  try {
    m_file = FS::open(file, FS::ByteFile, kOpenOptions);
    if (!m_file.isGood()) m_file.terminate("SegyDiskStore::open");
    myReadHeaders();
    if (m_formatFileName.getFilename().isBlank()) {
      m_format = vHandle<SegyFormatBase>(new SegyShotFormat);
      m_format->setBinaryHeader(m_binaryHeader);
    } else {
      SegyFormatFile* format = new SegyFormatFile;
      m_format = vHandle<SegyFormatBase>(format);
      m_format->setBinaryHeader(m_binaryHeader);
      if (!format->loadFormat(m_formatFileName))
        Message::fatal("SegyDiskStore::open", 0, "Store format spec file '%s' doesn't exist.",
                       m_formatFileName.c_str());
      m_formatFileName = format->getFormatFileName();
    }
    if (hasExtension(file, "dsegy")) m_mapper = vHandle<SegyHalcyonInstanceMapper>(new SegyHalcyonInstanceMapper);
    mySetAttributes(m_format->getAttributeList());
    m_nInstances = myGetNInstances();
    myPrepareRecordBuffer();
    m_keyList = KeyList();
    if (!m_format->getKeyNames().empty()) {
      for (vUCString const& name : m_format->getKeyNames()) m_keyList.addKey(AttributeDefinition::getDefinition(name));
    } else {
      m_keyList.addKey(myDefinition("SegyDiskStore::open", vUCString("CMP")));
    }
    getIndexingTable().clearCache();
    m_isOpen = true;
  } catch (...) {
    close();
    throw;
  }
}

void SegyDiskStore::myReadHeaders() {
  char const* const label = "SegyDiskStore::open";
  char block[SegyKernels::TEXT_HEADER_LENGTH];
  long long got = m_file.read(1, block, SegyBinaryHeader::LENGTH);
  if (got >= 4 && std::memcmp(block, "=)=)", 4) == 0) Message::fatal(label, 0, "VLR datafiles not supported yet!");
  if (got < SegyBinaryHeader::LENGTH) {
    m_file.clear();
    Message::fatal(label, 0, "Only read %d bytes from header of file %s.", static_cast<int>(got), m_fileName.c_str());
  }
  got = m_file.read(SegyKernels::TEXT_HEADER_LENGTH + 1, block, SegyBinaryHeader::LENGTH);
  if (got < SegyBinaryHeader::LENGTH) {
    m_file.clear();
    Message::fatal(label, 0, "Only read %d bytes from header of file %s.", static_cast<int>(got), m_fileName.c_str());
  }
  m_binaryHeader = vHandle<SegyBinaryHeader>(new SegyBinaryHeader(static_cast<char const*>(block)));
  uint16_t const code = m_binaryHeader->getFormatCode();
  if (code != 1 && code != 5 && code != 6)
    Message::fatal(label, 0, "Can only read IEEE and IBM format files at present.");
  got = m_file.read(1, block, SegyKernels::TEXT_HEADER_LENGTH);
  if (got < SegyKernels::TEXT_HEADER_LENGTH) {
    m_file.clear();
    Message::fatal(label, 0, "Only read %d bytes from header of file %s.", static_cast<int>(got), m_fileName.c_str());
  }
  SegyKernels::ebcdicToAscii(block, block, SegyKernels::TEXT_HEADER_LENGTH);
  m_textHeader = vString(SegyKernels::TEXT_HEADER_LENGTH, block);
  // A negative count in the header is taken as the unsigned word it is.
  m_nSamples = static_cast<uint16_t>(m_binaryHeader->getNumberSamplePerTrace());
  // Without a sample count the traces cannot be told apart: the samples
  // would be read as trace headers.
  if (m_nSamples == 0)
    Message::fatal(label, 0, "File %s has no samples per trace in its binary header.", m_fileName.c_str());
  m_traceLength = SegyKernels::traceLength(m_nSamples);
}

unsigned int SegyDiskStore::myGetNInstances() {
  if (!m_file.isOpen()) Message::fatal("SegyDiskStore::myGetNInstances", 0, kNotOpen);
  m_fileSize = m_file.getNRecords();
  if (!m_file.isGood()) m_file.terminate("SegyDiskStore::myGetNInstances");
  if (m_mapper.isEmpty()) {
    // Extended textual headers (a later revision of the format) stand
    // between the binary header and the traces, and would be read as
    // traces: a file whose size fits the count its header gives is refused.
    long long const extended = SegyKernels::readInt16(m_binaryHeader->getBlock() + 304);
    long long const traceBytes = m_fileSize - SegyKernels::FILE_HEADER_LENGTH - extended * 3200;
    if (extended > 0 && traceBytes >= 0 && traceBytes % m_traceLength == 0)
      Message::fatal("SegyDiskStore::myGetNInstances", 0,
                     "The file '%s' has %d extended textual headers after its binary header, which this reader does "
                     "not skip.",
                     m_fileName.c_str(), static_cast<int>(extended));
    long long expected = 0;
    unsigned int const traces = SegyKernels::countPlainTraces(m_fileSize, m_traceLength, expected);
    if (expected != m_fileSize)
      Message::error("SegyDiskStore::myGetNInstances", 0,
                     "The file '%s' is either incomplete or corrupt.\nFilesize is %s bytes but we expect %s when the "
                     "tracelength is %d",
                     m_fileName.c_str(), std::to_string(m_fileSize).c_str(), std::to_string(expected).c_str(),
                     m_traceLength);
    return traces;
  }
  SegyKernels::BlockCount const count = SegyKernels::countBlockedTraces(
      m_fileSize, m_traceLength, m_binaryHeader->getNumberDataTracesPerRecord());
  if (count.mismatch)
    Message::error("SegyHalcyonInstanceMapper::calculateNBlocks", 0,
                   "The file '%s' is either incomplete or corrupt.\nFilesize is %s bytes but we expect %s when the "
                   "tracelength is %d",
                   m_fileName.c_str(), std::to_string(m_fileSize).c_str(), std::to_string(count.expectedSize).c_str(),
                   m_traceLength);
  m_mapper->setLayout(count.layout);
  return count.instances;
}

void SegyDiskStore::myPrepareRecordBuffer() {
  if (!m_binaryHeader->isByteSwapped()) {
    m_recordBuffer = vHandle<RecordBuffer>(new RecordBuffer(m_traceLength));
    return;
  }
  ByteSwappedRecordBuffer* buffer = new ByteSwappedRecordBuffer(m_traceLength);
  m_recordBuffer = vHandle<RecordBuffer>(buffer);
  for (Attribute const& attribute : myAttributes())
    buffer->setType(m_format->getAttributeOffset(attribute.getName()), m_format->getSegyType(attribute.getName()));
  // IBM floats go through the buffer as the file has them; their own
  // conversion knows the byte order.
  if (m_binaryHeader->getFormatCode() == 1) buffer->setType(m_format->getAttributeOffset("TRACE"), vCHAR8);
}

void SegyDiskStore::close() {
  if (m_file.isOpen()) {
    m_file.clear();
    m_file.close();
  }
  m_file = FS::iFile();
  myClearAttributes();
  m_nInstances = 0;
  m_nSamples = 0;
  m_traceLength = 0;
  m_fileSize = 0;
  m_binaryHeader = vHandle<SegyBinaryHeader>();
  m_recordBuffer = vHandle<RecordBuffer>();
  m_keyList = KeyList();
  m_format = vHandle<SegyFormatBase>();
  m_mapper = vHandle<SegyHalcyonInstanceMapper>();
  m_textHeader = vString();
  getIndexingTable().clearCache();
  m_isOpen = false;
}

// --- what the store holds ----------------------------------------------------------------

unsigned int SegyDiskStore::getNInstances() const {
  myCheckOpen("SegyDiskStore::getNInstances");
  return m_nInstances;
}

long long SegyDiskStore::getLength() const {
  myCheckOpen("SegyDiskStore::getLength");
  return m_fileSize;
}

vLCString SegyDiskStore::getClass() const {
  if (!m_format.isEmpty() && !m_format->getStoreClass().isBlank()) return vLCString(m_format->getStoreClass());
  return vLCString("seismic");
}

vLCString SegyDiskStore::getSubClass() const {
  if (!m_format.isEmpty() && !m_format->getStoreSubClass().isBlank())
    return vLCString(m_format->getStoreSubClass());
  return vLCString("segydisk");
}
