#include "syslayer/TapeSetReader.h"

#include <cstdio>
#include <cstring>

#include "foundation/Message.h"
#include "syslayer/FSService.h"

namespace {

struct Drive {
  char const* name;
  int value;
};

Drive const kDrives[] = {{"F3490", 0x20000000},    {"F3590", 0x40000000},    {"F3590E", 0x60000000},
                         {"FDLT", 0x4800000},      {"FDLT4000", 0x24000000}, {"FDLT7000", 0x44000000},
                         {"FDLT8000", 0x4080000},  {"FSDLT600", 0x64800000}, {"FLTO", 0x60080000},
                         {"FLTO2", 0x60800000},    {"FLTO3", 0x64000000},    {"F3592", 0x20080000}};

int const kDefaultDevice = 0x40000000;

bool driveType(vString const& name, int& value) {
  if (name.length() == 0 || name[0] != 'F') return false;
  for (Drive const& d : kDrives) {
    if (name == d.name) {
      value = d.value;
      return true;
    }
  }
  return false;
}

bool isLabel(char const* block, int length) {
  if ((length == 80 || length == 160) && std::strncmp(block, "VOL", 3) == 0) return true;
  return length == 80 && std::strncmp(block, "HDR", 3) == 0;
}

}  // namespace

TapeSetReader::TapeSetReader(std::list<vString> const& tapes)
    : m_tapes(tapes),
      m_buffer(kBufferSize),
      m_id(0),
      m_status(FS_GOOD),
      m_left(0),
      m_initialSkip(0),
      m_expectLabels(false),
      m_deviceType(kDefaultDevice),
      m_vlr(false),
      m_start(0) {
  m_next = m_tapes.begin();
}

TapeSetReader::~TapeSetReader() { myCloseTape(); }

void TapeSetReader::setInitialSkip(unsigned bytes) { m_initialSkip = bytes; }

bool TapeSetReader::isOpen() const { return m_id != 0 || m_left > 0 || m_next != m_tapes.end(); }

void TapeSetReader::close() {
  myCloseTape();
  m_next = m_tapes.end();
  m_left = 0;
}

void TapeSetReader::myCloseTape() {
  if (m_id == 0) return;
  int status;
  if (m_vlr)
    fs_closevlr_(m_id, status);
  else
    fs_closet_(m_id, status);
  m_id = 0;
}

bool TapeSetReader::myOpenNextTape() {
  myCloseTape();
  for (;;) {
    if (m_next == m_tapes.end()) return false;
    vString const name = *m_next++;
    int type;
    if (driveType(name, type)) {
      m_deviceType = type;
      continue;
    }
    m_current = name;
    m_vlr = name.search(".vlr") >= 0;
    int status = 0;
    if (m_vlr) {
      std::printf("Open vlr:%s\n", name.c_str());
      int const options = 3078;
      fs_open_(name.c_str(), options, 0, 0, 0, m_id, status);
    } else {
      std::printf("Open tape: '%s'\n", name.c_str());
      fs_opent_(name.c_str(), 3076 + m_deviceType, m_id, status);
    }
    std::fflush(stdout);
    if (status != FS_GOOD) fs_terminate_(status, name.c_str());
    m_expectLabels = true;
    return true;
  }
}

bool TapeSetReader::myReadNext() {
  int blanks = 0;
  for (;;) {
    if (m_id == 0 && !myOpenNextTape()) return false;
    int got = 0;
    if (m_vlr)
      fs_readvlr_(m_id, m_buffer.data(), static_cast<int>(kBufferSize), got, m_status);
    else
      fs_readt_(m_id, m_buffer.data(), static_cast<int>(kBufferSize), kBlockSize, got, m_status);
    if (m_status == FS_GOOD && got == 0) {
      if (++blanks >= 10)
        Message::fatal("TapeSetReader::myReadNext", 0, "Problems reading tape %s, keep getting blank.",
                       m_current.c_str());
      continue;
    }
    if (m_status != FS_GOOD) {
      if (m_status == FS_EOV || m_status == FS_EOFEOV || m_status == 2048 || m_status == 4096 ||
          (m_status & 0x800)) {
        myCloseTape();
        blanks = 0;
        continue;
      }
      fs_terminate_(m_status, m_current.c_str());
    }
    blanks = 0;
    if (m_expectLabels && isLabel(m_buffer.data(), got)) continue;
    m_expectLabels = false;
    unsigned start = 0;
    if (m_initialSkip > 0) {
      if (static_cast<unsigned>(got) <= m_initialSkip) {
        m_initialSkip -= static_cast<unsigned>(got);
        continue;
      }
      start = m_initialSkip;
      m_initialSkip = 0;
    }
    m_start = start;
    m_left = static_cast<unsigned>(got) - start;
    return true;
  }
}

unsigned TapeSetReader::read(void* buffer, unsigned count) {
  char* out = static_cast<char*>(buffer);
  unsigned done = 0;
  while (done < count) {
    if (m_left == 0 && !myReadNext()) break;
    unsigned const n = count - done < m_left ? count - done : m_left;
    std::memcpy(out + done, m_buffer.data() + m_start, n);
    m_start += n;
    m_left -= n;
    done += n;
  }
  return done;
}

int TapeSetReader::skip(int count) {
  int done = 0;
  while (done < count) {
    if (m_left == 0 && !myReadNext()) break;
    unsigned const n = static_cast<unsigned>(count - done) < m_left ? static_cast<unsigned>(count - done) : m_left;
    m_start += n;
    m_left -= n;
    done += static_cast<int>(n);
  }
  return done;
}
