#include "filestore/nyx/NyxFS.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>

#include "syslayer/FSOptions.h"
#include "syslayer/FSService.h"

namespace {

thread_local int lastStatus = FS_GOOD;
thread_local char lastText[256] = "";

int fail(int status) {
  lastStatus = status;
  fs_errmsg_(status, lastText, sizeof lastText - 1);
  lastText[sizeof lastText - 1] = '\0';
  return -1;
}

}  // namespace

int NYXFSopen2(char const* path, int flags) { return NYXFSopen3(path, flags, 0644); }

int NYXFSopen3(char const* path, int flags, mode_t) {
  int options = FS_C;
  if (flags & O_CREAT) {
    // An existing file is opened as it is unless O_TRUNC asks for a new one.
    struct stat s;
    options |= (::stat(path, &s) != 0 || (flags & O_TRUNC)) ? FS_CREATE : FS_STATUS;
  } else {
    options |= FS_STATUS;
  }
  if ((flags & O_ACCMODE) == O_RDONLY) options |= FS_READONLY;
  int id = 0, status = 0;
  int64_t const size = 0;
  fs_open_(path, options, 0, size, 0, id, status);
  if (status != FS_GOOD) return fail(status);
  return id;
}

long NYXFSread(int fd, void* buffer, unsigned long count) {
  int got = 0, status = 0;
  fs_read_(fd, buffer, static_cast<int>(count), got, status);
  if (status != FS_GOOD && status != FS_EOF) return fail(status);
  return got;
}

long NYXFSwrite(int fd, void const* buffer, unsigned long count) {
  int put = 0, status = 0;
  fs_write_(fd, buffer, static_cast<int>(count), put, status);
  if (status != FS_GOOD) return fail(status);
  return put;
}

long long NYXFSlseek(int fd, long long offset, int whence) {
  int status = 0;
  long long base = 0;
  if (whence == SEEK_CUR) {
    int64_t position = 0;
    fs_bpos_(fd, position, status);
    if (status != FS_GOOD) return fail(status);
    base = position - 1;
  } else if (whence == SEEK_END) {
    FsStat info;
    fs_fstat_(fd, info, status);
    if (status != FS_GOOD) return fail(status);
    base = info.size;
  }
  long long const target = base + offset;
  if (target < 0) return fail(FS_GOOD + 1);
  int64_t const position = target + 1;
  fs_seekio_(fd, position, status);
  if (status != FS_GOOD) return fail(status);
  return target;
}

int NYXFSclose(int fd) {
  int status = 0;
  fs_close_(fd, status);
  return status == FS_GOOD ? 0 : fail(status);
}

int NYXFSfstat(int fd, struct stat* info) {
  FsStat s;
  int status = 0;
  fs_fstat_(fd, s, status);
  if (status != FS_GOOD) return fail(status);
  std::memset(info, 0, sizeof *info);
  info->st_size = static_cast<off_t>(s.size);
  info->st_mtime = static_cast<time_t>(s.modified);
  info->st_ctime = static_cast<time_t>(s.changed);
  info->st_mode = static_cast<mode_t>(s.mode) | (s.kind == 2 ? S_IFDIR : S_IFREG);
  info->st_uid = static_cast<uid_t>(s.uid);
  return 0;
}

int NYXFSerrno() { return lastStatus; }

char const* NYXFSerror() { return lastText; }
