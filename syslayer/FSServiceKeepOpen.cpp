// Keep-open files of the record file service, which give back their
// descriptors between uses, and locks that wait.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <string>
#include <thread>

#include "syslayer/FSService.h"
#include "syslayer/FSServiceInternal.h"

using fs_internal::Entry;
using fs_internal::TableLock;

namespace fs_internal {

int reopen(Entry& e, std::string const& path, char const* routine) {
  if (e.device) return fail(routine, FS_BADARG, e.name);
  int flags = O_CLOEXEC | (e.readOnly ? O_RDONLY : O_RDWR);
  if (e.options & FS_SYNC) flags |= O_DSYNC;
  int const fd = ::open(path.c_str(), flags);
  if (fd < 0) return fail(routine, errnoStatus(errno), path);
  struct stat st;
  int err = ::fstat(fd, &st) != 0 ? errno : S_ISDIR(st.st_mode) ? EISDIR : 0;
  int status = err != 0 ? errnoStatus(err) : FS_GOOD;
  if (status == FS_GOOD && e.lockHeld != 0 && (err = setLock(fd, e.lockHeld)) != 0)
    status = err == EAGAIN || err == EACCES ? FS_LOCKED : errnoStatus(err);
  if (status != FS_GOOD) {
    ::close(fd);
    return fail(routine, status, path);
  }
  if (e.fd >= 0) ::close(e.fd);
  e.fd = fd;
  return FS_GOOD;
}

int unpark(Entry& e, char const* routine) {
  int const status = reopen(e, e.name, routine);
  if (status == FS_GOOD) e.parked = false;
  return status;
}

bool closeParked(int id, int& status) {
  Entry* e = find(id);
  if (e == nullptr || !e->parked) return false;
  if ((e->options & FS_DELETE) && !(e->options & FS_KEEP)) ::unlink(e->name.c_str());
  remove(id);
  status = FS_GOOD;
  return true;
}

}  // namespace fs_internal

int FS_cclose(int id) {
  TableLock lock;
  Entry* e = fs_internal::find(id);
  if (e != nullptr && e->parked) return FS_GOOD;
  int status = 0;
  if (e == nullptr || !e->keepOpen) {
    fs_close_(id, status);
    return status;
  }
  if (e->device) return fs_internal::fail("FS_cclose", FS_BADARG, e->name);
  // Locks go with the descriptor: only the read lock that any open takes
  // comes back by itself.
  if (e->lockHeld != 0 && !(e->openReadLock && e->lockHeld == F_RDLCK))
    return fs_internal::fail("FS_cclose", FS_LOCKED, e->name);
  if (::close(e->fd) != 0) status = fs_internal::fail("FS_cclose", fs_internal::errnoStatus(errno), e->name);
  e->fd = -1;
  e->parked = true;
  return status == 0 ? FS_GOOD : status;
}

int FS_copen(char const* name, int options, int recordLength, int* id) {
  TableLock lock;
  int status = 0;
  if (int const kept = fs_internal::findParked(name ? name : "", options)) {
    Entry& e = *fs_internal::find(kept);
    if (recordLength <= 0 || recordLength == e.recl) {
      if ((status = fs_internal::unpark(e, "FS_copen")) != FS_GOOD) return status;
      e.position = 1;
      *id = kept;
      return FS_GOOD;
    }
  }
  fs_open_(name, options, recordLength, 0, 0, *id, status);
  if (status == FS_GOOD) fs_internal::find(*id)->keepOpen = true;
  return status;
}

void fs_alock_(int const& id, int const& type, int const& seconds, int& status) {
  TableLock lock;
  if ((status = fs_chkid_(id, "FS_alock", 8)) != FS_GOOD) return;
  Entry* e = fs_internal::find(id);
  if ((type != FS_READLOCK && type != FS_WRITELOCK) || (type == FS_WRITELOCK && e->readOnly)) {
    status = fs_internal::fail("FS_alock", type == FS_WRITELOCK ? FS_NOTWRITABLE : FS_BADARG, e->name);
    return;
  }
  int const want = type == FS_READLOCK ? F_RDLCK : F_WRLCK;
  auto const until = std::chrono::steady_clock::now() + std::chrono::seconds(seconds < 0 ? 0 : seconds);
  int rc;
  while ((rc = fs_internal::setLock(e->fd, want)) == EAGAIN || rc == EACCES) {
    if (seconds >= 0 && std::chrono::steady_clock::now() >= until) break;
    // The holder may be another thread that needs the service to let go:
    // the service is free while this one waits, and the file is looked up
    // again after.
    int const depth = fs_tdepth_();
    for (int k = 0; k < depth; ++k) fs_tunlock_();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    for (int k = 0; k < depth; ++k) fs_tlock_();
    if ((status = fs_chkid_(id, "FS_alock", 8)) != FS_GOOD) return;
    e = fs_internal::find(id);
  }
  if (rc != 0) {
    status = fs_internal::fail("FS_alock", rc == EAGAIN || rc == EACCES ? FS_LOCKED : fs_internal::errnoStatus(rc),
                               e->name);
    return;
  }
  e->lockHeld = want;
}
