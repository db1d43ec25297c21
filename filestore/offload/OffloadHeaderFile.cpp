#include "filestore/offload/OffloadHeaderFile.h"

#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

#include "foundation/Message.h"
#include "foundation/vUtl.h"
#include "syslayer/FS.h"

namespace {

int const kRecordLength = 80;
int const kMagic = 77479;

uint32_t swapWord(uint32_t w) { return (w >> 24) | ((w >> 8) & 0xff00u) | ((w << 8) & 0xff0000u) | (w << 24); }

// Whether the first eight bytes are those of an offload data file, in
// either byte order.
bool looksLikeDataFile(char const* text, unsigned long length) {
  if (length < 8) return false;
  uint32_t words[2];
  std::memcpy(words, text, 8);
  for (int swapped = 0; swapped < 2; ++swapped) {
    uint32_t const w0 = swapped ? swapWord(words[0]) : words[0];
    uint32_t const w1 = swapped ? swapWord(words[1]) : words[1];
    if (w0 > 0 && w0 <= 1000 && w1 == static_cast<uint32_t>(kMagic)) return true;
  }
  return false;
}

bool isSwappedDay(char const* text, unsigned long length) {
  static char const* const days[] = {" nuS", " noM", " euT", " deW", " uhT", " irF", " taS"};
  if (length < 4) return false;
  for (char const* day : days)
    if (std::memcmp(text, day, 4) == 0) return true;
  return false;
}

std::vector<std::string> splitLines(std::string const& text) {
  std::vector<std::string> lines;
  std::size_t start = 0;
  while (start <= text.size()) {
    std::size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    lines.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  return lines;
}

vString currentDirectory() {
  char buffer[4096];
  return ::getcwd(buffer, sizeof buffer) ? vString(buffer) : vString(".");
}

}  // namespace

OffloadHeaderFile::OffloadHeaderFile() : m_firstOffset(0), m_offsetIncrement(0), m_nOffsets(0), m_crc(0) {}

OffloadHeaderFile::OffloadHeaderFile(vFilename const& name) : OffloadHeaderFile() { open(name); }

OffloadHeaderFile::~OffloadHeaderFile() {}

OffloadVersionBits const& OffloadHeaderFile::getVersion() const {
  if (m_version.isEmpty())
    Message::fatal("OffloadHeaderFile::getVersion", 0,
                   "Version is not known at this point. Application should open or create OffloadHeader file first.");
  return *m_version;
}

void OffloadHeaderFile::open(vFilename const& name) {
  FS::iFile file = FS::open(name, FS::ByteFile, 1024);
  if (!file.isGood()) file.terminate("OffloadHeaderFile::open");
  long long const size = file.getNRecords();
  std::string text(static_cast<std::size_t>(size > 0 ? size : 0), '\0');
  long long const got = size > 0 ? file.read(1, &text[0], size) : 0;
  if (got != size || !file.isGood()) {
    file.clear();
    file.close();
    Message::fatal("OffloadHeaderFile::open", 0, "Could not read the header file '%s'.", name.c_str());
  }
  m_owner = file.getOwner();
  file.clear();
  file.close();
  parse(name, text.data(), text.size());
}

void OffloadHeaderFile::parse(vFilename const& name, char const* data, unsigned long length) {
  char const* const label = "OffloadHeaderFile::open";
  m_fileName = name;
  if (looksLikeDataFile(data, length))
    Message::fatal(label, 0, "File '%s' does not appear to be a header file", name.c_str());
  std::string text(data, length);
  if (isSwappedDay(data, length)) {
    for (std::size_t k = 0; k + 4 <= text.size(); k += 4) {
      std::swap(text[k], text[k + 3]);
      std::swap(text[k + 1], text[k + 2]);
    }
  }
  m_crc = vUtl::calculateCRC(text.data(), text.size());
  std::vector<std::string> const lines = splitLines(text);
  if (lines.size() < 3) Message::fatal(label, 0, "Header file '%s' has fewer than three lines.", name.c_str());
  m_createdDate = vString(lines[0].c_str());
  std::string const job = lines[1].substr(0, lines[1].find(' '));
  m_jobName = vString(job.c_str());
  bool const floats = lines[2].find('.') != std::string::npos;
  m_version = vHandle<OffloadVersionBits>(OffloadVersionBits::forVersion(floats ? 2 : 1));
  if (!m_version->getOffsets(lines[2].c_str(), m_firstOffset, m_offsetIncrement, m_nOffsets))
    Message::fatal(label, 0, "Header file '%s' has no offsets in its third line.", name.c_str());
  if (text.find("moffld") != std::string::npos) m_subClass = vString("moffldheader");
  m_offsetLimits.clear();
  m_dataFilenames.clear();
  for (std::size_t k = 3; k < lines.size(); ++k) {
    std::string const& line = lines[k];
    std::size_t pos = 0;
    while (pos < line.size()) {
      std::size_t const start = line.find_first_not_of(" \t\n", pos);
      if (start == std::string::npos) break;
      std::size_t end = line.find_first_of(" \t\n", start);
      if (end == std::string::npos) end = line.size();
      std::string const token = line.substr(start, end - start);
      pos = end;
      double const value = std::strtod(token.c_str(), nullptr);
      if (value != 0.0) {
        m_offsetLimits.push_back(value);
        continue;
      }
      vFilename file(vString(token.c_str()));
      if (file.getDirectory().isBlank()) file.setDirectory(currentDirectory());
      if (file.getExtension().isBlank()) file.setExtension("offload");
      m_dataFilenames.push_back(file);
    }
  }
}

void OffloadHeaderFile::create(vFilename const& name, int version, double first, double increment, int count) {
  OffloadVersionBits* bits = OffloadVersionBits::forVersion(version);
  if (!bits) Message::fatal("OffloadHeaderFile::create", 0, "Can only handle versions upto %d.", 2);
  m_version = vHandle<OffloadVersionBits>(bits);
  m_fileName = name;
  m_firstOffset = first;
  m_offsetIncrement = increment;
  m_nOffsets = count;
  char date[64];
  std::time_t const now = std::time(nullptr);
  std::strftime(date, sizeof date, "%a %b %e %T %Y", std::localtime(&now));
  m_createdDate = vString(date);
  char job[64];
  std::snprintf(job, sizeof job, "%s%d", "dorn_job", static_cast<int>(::getpid()));
  m_jobName = vString(job);
}

void OffloadHeaderFile::save() {
  char const* const label = "OffloadHeaderFile::save";
  FS::ioFile file = FS::create(m_fileName, FS::TextRecordFile, 0, kRecordLength);
  if (!file.isGood()) file.terminate(label);
  vString offsets;
  getVersion().writeOffsets(offsets, m_firstOffset, m_offsetIncrement, m_nOffsets);
  std::vector<vString> records = {m_createdDate, m_jobName, offsets};
  for (vFilename const& data : m_dataFilenames) records.push_back(data.getFilename());
  long long position = 1;
  for (vString const& record : records) {
    char line[kRecordLength];
    std::memset(line, ' ', sizeof line);
    std::memcpy(line, record.c_str(), std::min<std::size_t>(record.length(), sizeof line));
    file.write(position++, line, kRecordLength);
    if (!file.isGood()) file.terminate(label);
  }
  file.close();
}
