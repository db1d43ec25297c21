// FS::iFile and FS::ioFile: checked file objects over the record file
// service.

#include <pwd.h>

#include <algorithm>
#include <cstdio>

#include "foundation/Message.h"
#include "foundation/vUtlSize.h"
#include "syslayer/FS.h"
#include "syslayer/FSService.h"

namespace {

// The service takes an int count; keep well below that so a split read
// never asks it for more than it can say it delivered.
long long g_maxServiceRead = 1LL << 30;

}  // namespace

long long FS::iFile::getMaxServiceRead() { return g_maxServiceRead; }

void FS::iFile::setMaxServiceRead(long long count) {
  g_maxServiceRead = std::max(1LL, std::min(count, 1LL << 30));
}

FS::iFile::iFile() : m_id(0), m_status(1), m_verbose(false), m_type(ByteFile) {}

FS::iFile::iFile(int32_t id, int32_t status, vFilename const& name, FileType type)
    : m_id(id), m_status(status), m_verbose(false), m_type(type), m_name(name) {}

FS::iFile::~iFile() {}

void FS::iFile::terminate(char const* label) {
  char text[200];
  fs_errmsg_(m_status, text, sizeof text);
  m_errorText = text;
  Message::fatal(label, 0, "File-:%s Last error (%s) has not been cleared. %s", m_name.c_str(), text, label);
}

void FS::iFile::clear(int status) { m_status = status; }

void FS::iFile::myIsOK(char const* label) {
  if (m_status != 1) terminate(label);
}

int FS::iFile::getRecordLength() {
  myIsOK("FS::iFile::getRecordLength");
  int64_t value = 0;
  fs_getinfo_(m_id, FS_INFO_RECLEN, value, m_status);
  return static_cast<int>(value);
}

void FS::iFile::setNoByteSwapping() {
  myIsOK("FS::iFile::setNoByteSwapping");
  fs_setinfo_(m_id, FS_INFO_NOSWAP, 1, m_status);
}

void FS::iFile::setKeepOpenMode() {
  myIsOK("FS::iFile::setKeepOpenMode");
  fs_setinfo_(m_id, FS_INFO_KEEPOPEN, 1, m_status);
}

void FS::iFile::lock() {
  myIsOK("FS::iFile::lock");
  fs_lockit_(m_id, m_status);
}

void FS::iFile::unlock() {
  myIsOK("FS::iFile::unlock");
  fs_unlockit_(m_id, m_status);
}

long long FS::iFile::getPosition() {
  myIsOK("FS::iFile::getPosition");
  int64_t value = 0;
  fs_getinfo_(m_id, FS_INFO_POSITION, value, m_status);
  return value;
}

void FS::iFile::setPosition(long long position) {
  myIsOK("FS::iFile::setPosition");
  fs_setinfo_(m_id, FS_INFO_POSITION, position, m_status);
}

long long FS::iFile::getNRecords() {
  myIsOK("FS::iFile::getNRecords");
  int64_t value = 0;
  fs_getinfo_(m_id, FS_INFO_NRECORDS, value, m_status);
  return value;
}

vString FS::iFile::getOwner() {
  myIsOK("FS::iFile::getOwner");
  int64_t uid = -1;
  fs_getinfo_(m_id, FS_INFO_OWNER, uid, m_status);
  if (m_status != 1 || uid < 0) return "unknown";
  struct passwd pw;
  struct passwd* found = nullptr;
  char buf[1024];
  if (getpwuid_r(static_cast<uid_t>(uid), &pw, buf, sizeof buf, &found) != 0 || found == nullptr) return "unknown";
  return found->pw_name;
}

vDate FS::iFile::getCreatedDate() {
  myIsOK("FS::iFile::getCreatedDate");
  int64_t seconds = -1;
  fs_getinfo_(m_id, FS_INFO_CREATED, seconds, m_status);
  return m_status == 1 ? vDate(static_cast<long>(seconds)) : vDate(vDate::Invalid);
}

int FS::iFile::partialRead(int offsetInRecord, int length, long long firstRecord, long long lastRecord,
                           void* buffer) {
  myIsOK("FS::iFile::partialRead");
  int got = 0;
  fs_partialr_(m_id, offsetInRecord, length, firstRecord, lastRecord, buffer, got, m_status);
  if (m_verbose) myTrace("partialRead", firstRecord, length, offsetInRecord, got);
  return got;
}

void FS::iFile::mySeekFor(long long position) {
  // Only a move costs a seek; reading on from where the last read ended
  // doesn't.
  if (position != 0 && position != getPosition() && m_status == 1)
    fs_setinfo_(m_id, FS_INFO_POSITION, position, m_status);
}

long long FS::iFile::read(long long position, void* buffer, long long count, int options) {
  myIsOK("FS::iFile::read");
  // A count no buffer of this machine can hold is a wrong count, not a read
  // to stop short at the end of the buffer.
  vUtl::checkedBytes("FS::iFile::read", count, 1);
  mySeekFor(position);
  char* out = static_cast<char*>(buffer);
  long long done = 0;
  while (done < count && m_status == 1) {
    int const want = static_cast<int>(std::min(count - done, g_maxServiceRead));
    int got = 0;
    fs_read_(m_id, out + done, want, got, m_status);
    done += got;
    if (got == 0) break;
  }
  if (m_verbose) myTrace("read", position, count, options, done);
  return done;
}

void FS::iFile::close() {
  myIsOK("FS::iFile::close");
  fs_close_(m_id, m_status);
  m_id = 0;
}

void FS::iFile::myTrace(char const* what, long long position, long long count, int options, long long done) {
  std::printf("FS::iFile::%s(%s, position %lld, count %lld, options %d): status %d, done %lld\n", what,
              m_name.c_str(), position, count, options, m_status, done);
  std::fflush(stdout);
}

FS::ioFile::ioFile() {}

FS::ioFile::ioFile(int32_t id, int32_t status, vFilename const& name, FileType type)
    : iFile(id, status, name, type) {}

int FS::ioFile::write(long long position, void const* buffer, int count, int options) {
  myIsOK("FS::ioFile::write");
  mySeekFor(position);
  int put = 0;
  if (m_status == 1) fs_write_(m_id, buffer, count, put, m_status);
  if (m_verbose) myTrace("write", position, count, options, put);
  return put;
}
