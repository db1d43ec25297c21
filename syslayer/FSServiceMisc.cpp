// Smaller entries of the record file service: sizes, syncing, lock tests
// on open files, and checks of names, options and directories.

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "syslayer/FSService.h"
#include "syslayer/FSServiceInternal.h"

using fs_internal::Entry;
using fs_internal::TableLock;

namespace {

// A disk file open for writing, or null with the status set.
Entry* writableDisk(int const& id, char const* routine, int& status) {
  if ((status = fs_chkid_(id, routine, static_cast<int>(std::strlen(routine)))) != FS_GOOD) return nullptr;
  Entry* e = fs_internal::find(id);
  if (e->kind == FS_TAPE || e->kind == FS_VLR || e->text) {
    status = fs_internal::fail(routine, FS_BADARG, e->name);
    return nullptr;
  }
  if (e->readOnly) {
    status = fs_internal::fail(routine, FS_NOTWRITABLE, e->name);
    return nullptr;
  }
  return e;
}

}  // namespace

void fs_setsize_(int const& id, int64_t const& size, int& status) {
  TableLock lock;
  Entry* e = writableDisk(id, "FS_setsize", status);
  if (e == nullptr) return;
  if (size < 0) {
    status = fs_internal::fail("FS_setsize", FS_BADARG, e->name);
    return;
  }
  if (::ftruncate(e->fd, static_cast<off_t>(size)) != 0)
    status = fs_internal::fail("FS_setsize", fs_internal::errnoStatus(errno), e->name);
}

void fs_zeroex_(int const& id, int64_t const& size, int& status) {
  TableLock lock;
  Entry* e = writableDisk(id, "FS_zeroex", status);
  if (e == nullptr) return;
  int err = 0;
  int64_t const now = fs_internal::sizeOf(*e, err);
  if (err == 0 && size > now && ::ftruncate(e->fd, static_cast<off_t>(size)) != 0) err = errno;
  if (err != 0) status = fs_internal::fail("FS_zeroex", fs_internal::errnoStatus(err), e->name);
}

void fs_rsize_(int const& id, int& recordLength, int& status) {
  TableLock lock;
  recordLength = 0;
  if ((status = fs_chkid_(id, "FS_rsize", 8)) != FS_GOOD) return;
  recordLength = static_cast<int>(fs_internal::find(id)->recl);
}

void fs_bpos_(int const& id, int64_t& bytePosition, int& status) {
  TableLock lock;
  bytePosition = 0;
  if ((status = fs_chkid_(id, "FS_bpos", 7)) != FS_GOOD) return;
  Entry const& e = *fs_internal::find(id);
  if (e.text) {
    size_t const r = static_cast<size_t>(e.position - 1);
    bytePosition = r < e.lineStart.size() ? e.lineStart[r] + 1
                   : e.lineStart.empty()  ? 1
                                          : e.lineStart.back() + e.lineLength.back() + 2;
  } else if (e.kind == FS_TAPE || e.kind == FS_VLR) {
    bytePosition = e.position;
  } else {
    bytePosition = (e.position - 1) * e.recl + 1;
  }
}

void fs_waitio_(int const& id, int& status) {
  TableLock lock;
  if ((status = fs_chkid_(id, "FS_waitio", 9)) != FS_GOOD) return;
  Entry const& e = *fs_internal::find(id);
  // Transfers are done when they return; waiting means reaching the disk.
  if (!e.readOnly && !e.device && ::fdatasync(e.fd) != 0 && errno != EINVAL)
    status = fs_internal::fail("FS_waitio", fs_internal::errnoStatus(errno), e.name);
}

void fs_testlock_(int const& id, int const& type, int& flag, int& status) {
  TableLock lock;
  flag = 0;
  if ((status = fs_chkid_(id, "FS_testlock", 11)) != FS_GOOD) return;
  Entry const& e = *fs_internal::find(id);
  if (type != FS_READLOCK && type != FS_WRITELOCK) {
    status = fs_internal::fail("FS_testlock", FS_BADARG, e.name);
    return;
  }
  struct flock fl;
  std::memset(&fl, 0, sizeof fl);
  fl.l_type = static_cast<short>(type == FS_READLOCK ? F_RDLCK : F_WRLCK);
  fl.l_whence = SEEK_SET;
  if (::fcntl(e.fd, F_OFD_GETLK, &fl) != 0)
    status = fs_internal::fail("FS_testlock", fs_internal::errnoStatus(errno), e.name);
  else
    flag = fl.l_type != F_UNLCK ? 1 : 0;
}

void fs_totspace_(char const* directory, int64_t& totalMB, int64_t& freeMB, int& status) {
  totalMB = freeMB = 0;
  struct statvfs vfs;
  if (directory == nullptr || ::statvfs(directory, &vfs) != 0) {
    status = fs_internal::fail("FS_totspace", directory ? fs_internal::errnoStatus(errno) : FS_BADARG,
                               directory ? directory : "");
    return;
  }
  uint64_t const unit = static_cast<uint64_t>(vfs.f_frsize);
  totalMB = static_cast<int64_t>(static_cast<uint64_t>(vfs.f_blocks) * unit / (1024 * 1024));
  freeMB = static_cast<int64_t>(static_cast<uint64_t>(vfs.f_bavail) * unit / (1024 * 1024));
  status = FS_GOOD;
}

void fs_checkdir_(char const* directory, int& status) {
  struct stat st;
  if (directory == nullptr || ::stat(directory, &st) != 0) {
    status = fs_internal::fail("FS_checkdir", FS_NOTEXIST, directory ? directory : "");
  } else if (!S_ISDIR(st.st_mode)) {
    status = fs_internal::fail("FS_checkdir", fs_internal::errnoStatus(ENOTDIR), directory);
  } else if (::access(directory, W_OK | X_OK) != 0) {
    status = fs_internal::fail("FS_checkdir", fs_internal::errnoStatus(errno), directory);
  } else {
    status = FS_GOOD;
  }
}

void fs_isremote_(char const* name, int& flag) {
  flag = 0;
  if (name == nullptr) return;
  char const* colon = std::strchr(name, ':');
  char const* slash = std::strchr(name, '/');
  // "host:/path": a host before the first '/'. "C:\..." drive letters and
  // plain paths are local.
  flag = colon != nullptr && colon - name > 1 && (slash == nullptr || colon < slash) ? 1 : 0;
}

void fs_chkname_(char const* name, int& status) {
  std::string const n = name ? name : "";
  bool ok = !n.empty() && n.size() < 4096 && n.find('\n') == std::string::npos;
  for (size_t start = 0; ok && start <= n.size();) {
    size_t end = n.find('/', start);
    if (end == std::string::npos) end = n.size();
    ok = end - start <= 255;
    start = end + 1;
  }
  status = ok ? FS_GOOD : fs_internal::fail("FS_chkname", FS_BADARG, n);
}

void fs_chkopts_(int const& options, int& status) {
  char text[400];
  fs_decode_(options, text, sizeof text);
  bool const ok = (options & FS_KINDMASK) != 0 && std::strstr(text, "unknown") == nullptr;
  status = ok ? FS_GOOD : fs_internal::fail("FS_chkopts", FS_BADARG, text);
}
