// Making "cst" files: attributes are collected, the file is made at the
// first write (the TRACE attribute tells the record length, the first
// write's last instance the count), the records are kept in memory and
// written at close.

#include <cmath>
#include <cstring>
#include <string>

#include "filestore/nyx/NyxDiskStore.h"
#include "foundation/Message.h"
#include "foundation/vUtl.h"

namespace {

char const* const kNotCreated = "A Nyx fisk file has not created yet!";

// The word of a name the file can hold, -1 for TRACE, -2 for none.
int wordOf(vUCString const& name, DataType& type) {
  static struct {
    char const* name;
    int word;
    DataType type;
  } const named[] = {{"CMP", NyxTrace::CMP, vINT32},         {"SHOT.UNIQUE.ID", NyxTrace::SHOT_UNIQUE_ID, vINT32},
                     {"CHANNEL", NyxTrace::CHANNEL, vINT32}, {"RECEIVER", NyxTrace::RECEIVER, vINT32},
                     {"OFFSET", NyxTrace::OFFSET, vINT32},   {"WDEPTH", NyxTrace::WDEPTH, vFLOAT32}};
  for (auto const& n : named)
    if (name == vUCString(n.name)) {
      type = n.type;
      return n.word;
    }
  if (name == vUCString("TRACE")) {
    type = vFLOAT32;
    return -1;
  }
  std::string const text = name.c_str();
  if (text.size() == 6 && text.compare(0, 4, "WORD") == 0 && text.find_first_not_of("0123456789", 4) == std::string::npos &&
      std::atoi(text.c_str() + 4) < NyxTrace::HEADER_WORDS) {
    type = vINT32;
    return std::atoi(text.c_str() + 4);
  }
  return -2;
}

}  // namespace

void NyxDiskStore::create(StoreDescription const& description) { create(description.getFlatFileName()); }

void NyxDiskStore::create(vFilename const& file) {
  if (m_isOpen || m_creating)
    Message::fatal("NyxDiskStore::myCreateDiskFile", 0,
                   "Trying to create a Nyx disk file when we've already got an open file!");
  m_fileName = file;
  m_record = Record();
  m_record.fileFormat = CST;
  m_swapped = false;
  m_added.clear();
  m_records.clear();
  m_nCreated = 0;
  m_creating = true;
  m_isOpen = true;
}

void NyxDiskStore::addAttribute(Attribute const& attribute) {
  char const* const label = "NyxDiskStore::addAttribute";
  if (!m_creating) Message::fatal(label, 0, kNotCreated);
  for (Attribute const& a : m_added)
    if (a.getName() == attribute.getName())
      Message::fatal(label, 0, "Already added the attribute %s!", attribute.getName().c_str());
  DataType type = vNOTYPE;
  int const word = wordOf(attribute.getName(), type);
  bool const traceOk = word == -1 && (attribute.getDataType() == vFLOAT32 || attribute.getDataType() == vINT16);
  if (word != -2 && !traceOk && (attribute.getDataType() != type || attribute.getLength() != 1))
    Message::fatal(label, 0, "The format of attribute %s is incorrect for this type of disk store!",
                   attribute.getName().c_str());
  if (!m_records.empty()) Message::fatal(label, 0, "Cannot add attribute to created store");
  m_added.push_back(attribute);
}

void NyxDiskStore::myCreateDiskFile() {
  char const* const label = "NyxDiskStore::myCreateDiskFile";
  Attribute const* trace = nullptr;
  std::string ignored;
  for (Attribute const& a : m_added) {
    DataType type;
    int const word = wordOf(a.getName(), type);
    if (word == -1) trace = &a;
    if (word == -2) ignored += (ignored.empty() ? "" : " ") + std::string(a.getName().c_str());
  }
  if (m_added.empty()) Message::fatal(label, 0, "Trying to create a Nyx disk file without specifying TRACE!");
  if (trace == nullptr)
    Message::fatal(label, 0, "No TRACE attribute has been added, therefore we don't know how big to make the file!");
  int const dataFormat = trace->getDataType() == vFLOAT32 ? 5 : trace->getDataType() == vINT16 ? 1 : 0;
  if (dataFormat == 0) Message::fatal(label, 0, "Trace has an unsupported data format %d!", trace->getDataType());
  if (!ignored.empty())
    Message::info(label, 0, "The following attributes are not applicable for a NYX disk store and have been ignored: %s",
                  ignored.c_str());
  m_record.validateHeader(CST, dataFormat, trace->getLength(), static_cast<float>(trace->getSampleRate()), -1, label);
  m_outFile = FS::create(m_fileName, FS::ByteFile);
  if (!m_outFile.isGood()) {
    int const status = m_outFile.getStatus();
    m_outFile.clear();
    m_outFile = FS::ioFile();
    Message::fatal(label, 0, "Failed to create the file '%s' with record length %d ... status %d(%d)!",
                   m_fileName.c_str(), m_record.extRecordLengthB, status, 0);
  }
  myBuildAttributes();
}

void NyxDiskStore::write(Attribute const& attribute, unsigned int first, unsigned int last) {
  char const* const label = "NyxDiskStore::write";
  if (!m_creating) {
    if (m_record.fileFormat == DAT) Message::fatal(label, 0, "Writing not supported for DAt files!");
    if (m_record.fileFormat == TAPES) Message::fatal(label, 0, "Writing not supported for tapes!");
    Message::fatal(label, 0, kNotCreated);
  }
  if (!m_outFile.isOpen()) {
    if (first != 1)
      Message::fatal(label, 0, "Invalid instance range (%d:%d) for the write of %s ... we only support 1:%d!",
                     static_cast<int>(first), static_cast<int>(last), attribute.getName().c_str(),
                     static_cast<int>(last));
    myCreateDiskFile();
    m_nCreated = last;
    m_record.nInstances = static_cast<int>(last);
    m_records.assign(static_cast<std::size_t>(last) * myStride(), 0);
    for (unsigned int i = 1; i <= last; ++i) {
      int32_t* h = reinterpret_cast<int32_t*>(m_records.data() + static_cast<std::size_t>(i - 1) * myStride());
      h[NyxTrace::TRACE_NUMBER] = static_cast<int32_t>(i);
      h[NyxTrace::TRACE_TYPE] = 1;
      h[NyxTrace::DATA_FORMAT] = h[NyxTrace::DAT_FORMAT] = m_record.dataFormat;
      h[NyxTrace::SAMPLE_BYTES] = m_record.extTraceLengthB - NyxTrace::HEADER_BYTES;
      h[NyxTrace::NSAMPLES] = m_record.nSamplesPerTrace;
      h[NyxTrace::SAMPLE_INTERVAL] = static_cast<int32_t>(std::lround(m_record.sampleRate * 1000.0));
    }
  }
  if (first < 1 || first > last || last > m_nCreated)
    Message::fatal(label, 0, "Invalid instance range (%d:%d) for the write of %s ... we only support 1:%d!",
                   static_cast<int>(first), static_cast<int>(last), attribute.getName().c_str(),
                   static_cast<int>(m_nCreated));
  Attribute const* added = nullptr;
  for (Attribute const& a : m_added)
    if (a.getName() == attribute.getName()) added = &a;
  DataType type = vNOTYPE;
  int const word = wordOf(attribute.getName(), type);
  if (added == nullptr || word == -2) return;  // not held by the file
  if (attribute.getDataType() != added->getDataType())
    Message::fatal(label, 0, "Expected the datatype of %s to be %s, not %s!", attribute.getName().c_str(),
                   vUtl::dataTypeName(added->getDataType()).c_str(), vUtl::dataTypeName(attribute.getDataType()).c_str());
  unsigned int const count = last - first + 1;
  if (attribute.getNInstances() < count)
    Message::fatal(label, 0, "The Attribute '%s' to be written has %lld instances, but last-first+1 is %lld.",
                   attribute.getName().c_str(), static_cast<long long>(attribute.getNInstances()),
                   static_cast<long long>(count));
  for (unsigned int k = 0; k < count; ++k) {
    unsigned char* record = m_records.data() + static_cast<std::size_t>(first - 1 + k) * myStride();
    int32_t* h = reinterpret_cast<int32_t*>(record);
    if (word >= 0) {
      std::memcpy(&h[word], attribute.getPointer(k + 1), 4);
      continue;
    }
    int const n = m_record.nSamplesPerTrace;
    std::vector<float> samples(static_cast<std::size_t>(n));
    vUtl::copyConvert(attribute.getPointer(k + 1), attribute.getDataType(), samples.data(), vFLOAT32,
                      static_cast<std::size_t>(n));
    NyxTrace::encodeSamples(samples.data(), record + NyxTrace::HEADER_BYTES, n, m_record.dataFormat, h);
  }
}

void NyxDiskStore::myFlushRecordBuffer() {
  if (!m_outFile.isOpen()) return;
  FS::ioFile& file = m_outFile;
  std::size_t const bytes = static_cast<std::size_t>(m_record.extRecordLengthB);
  for (unsigned int i = 1; i <= m_nCreated; ++i) {
    int const put = file.write(static_cast<long long>(i - 1) * static_cast<long long>(bytes) + 1,
                               m_records.data() + (i - 1) * myStride(), static_cast<int>(bytes));
    if (put != static_cast<int>(bytes) || !file.isGood()) {
      int const status = file.getStatus();
      file.clear();
      Message::fatal("NyxDiskStore::myFlushRecordBuffer", 0, "Failed to write instance %s to the file '%s' ... status %d!",
                     std::to_string(i).c_str(), m_fileName.c_str(), status);
    }
  }
}
