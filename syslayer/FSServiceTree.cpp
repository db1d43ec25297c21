// Names and directory trees in the record file service: existence, status,
// disk areas, mkdir, rm, mv, cp, lock queries, clusters.

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include "syslayer/FSService.h"
#include "syslayer/FSServiceInternal.h"

namespace {

void copyText(std::string const& text, char* out, int length) {
  if (out == nullptr || length <= 0) return;
  size_t const n = text.size() < static_cast<size_t>(length - 1) ? text.size() : static_cast<size_t>(length - 1);
  std::memcpy(out, text.data(), n);
  out[n] = '\0';
}

void fillStat(struct stat const& st, FsStat& info) {
  info.size = st.st_size;
  info.modified = st.st_mtime;
  info.changed = st.st_ctime;
  info.kind = S_ISREG(st.st_mode) ? 1 : S_ISDIR(st.st_mode) ? 2 : 3;
  info.mode = static_cast<int32_t>(st.st_mode & 07777);
  info.uid = static_cast<int32_t>(st.st_uid);
  info.isDevice = S_ISCHR(st.st_mode) ? 1 : 0;
}

void statWith(int (*how)(char const*, struct stat*), char const* routine, char const* name, FsStat& info,
              int& status) {
  std::memset(&info, 0, sizeof info);
  if (fs_internal::remoteRefused(routine, name, status)) return;
  struct stat st;
  if (name == nullptr || how(name, &st) != 0) {
    status = fs_internal::fail(routine, name && errno != ENOENT ? fs_internal::errnoStatus(errno) : FS_NOTEXIST,
                               name ? name : "");
    return;
  }
  fillStat(st, info);
  status = FS_GOOD;
}

// Removes a tree below and with path; returns errno or 0.
int removeTree(std::string const& path) {
  struct stat st;
  if (::lstat(path.c_str(), &st) != 0) return errno;
  if (!S_ISDIR(st.st_mode)) return ::unlink(path.c_str()) == 0 ? 0 : errno;
  DIR* d = ::opendir(path.c_str());
  if (d == nullptr) return errno;
  int err = 0;
  while (dirent* entry = ::readdir(d)) {
    std::string const n = entry->d_name;
    if (n == "." || n == "..") continue;
    if ((err = removeTree(path + "/" + n)) != 0) break;
  }
  ::closedir(d);
  if (err != 0) return err;
  return ::rmdir(path.c_str()) == 0 ? 0 : errno;
}

// Copies one plain file, keeping its permission bits; returns errno or 0.
int copyFile(char const* from, char const* to) {
  int const in = ::open(from, O_RDONLY | O_CLOEXEC);
  if (in < 0) return errno;
  struct stat st;
  if (::fstat(in, &st) != 0 || S_ISDIR(st.st_mode)) {
    int const err = S_ISDIR(st.st_mode) ? EISDIR : errno;
    ::close(in);
    return err;
  }
  int const out = ::open(to, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, st.st_mode & 07777);
  if (out < 0) {
    int const err = errno;
    ::close(in);
    return err;
  }
  static size_t const kChunk = 1 << 20;
  char* buf = static_cast<char*>(std::malloc(kChunk));
  int err = buf ? 0 : ENOMEM;
  while (err == 0) {
    ssize_t const r = ::read(in, buf, kChunk);
    if (r < 0) {
      if (errno != EINTR) err = errno;
      continue;
    }
    if (r == 0) break;
    for (ssize_t done = 0; done < r && err == 0;) {
      ssize_t const w = ::write(out, buf + done, static_cast<size_t>(r - done));
      if (w < 0) {
        if (errno != EINTR) err = errno;
      } else {
        done += w;
      }
    }
  }
  std::free(buf);
  ::close(in);
  if (::close(out) != 0 && err == 0) err = errno;
  if (err != 0) ::unlink(to);
  return err;
}

// Makes room for a move or copy onto `to` as the delete type allows.
int clearTarget(int type, char const* to) {
  struct stat st;
  if (::lstat(to, &st) != 0) return 0;
  if (S_ISDIR(st.st_mode)) return (type & FS_RMTREE) ? removeTree(to) : EEXIST;
  return (type & (FS_RMFILE | FS_RMTREE)) ? 0 : EEXIST;
}

}  // namespace

void fs_exist_(char const* name, int& exists, int& status) {
  exists = 0;
  if (fs_internal::remoteRefused("FS_exist", name, status)) return;
  struct stat st;
  exists = name != nullptr && *name && ::stat(name, &st) == 0 ? 1 : 0;
  status = FS_GOOD;
}

void fs_stat_(char const* name, FsStat& info, int& status) { statWith(::stat, "FS_stat", name, info, status); }

void fs_lstat_(char const* name, FsStat& info, int& status) { statWith(::lstat, "FS_lstat", name, info, status); }

void fs_lsinfo_(char const* name, int& kind, int& mode, int& sizeKB, int& status) {
  FsStat info;
  fs_stat_(name, info, status);
  kind = info.kind;
  mode = info.mode;
  int64_t const kb = (info.size + 1023) / 1024;
  sizeKB = kb > 0x7FFFFFFF ? 0x7FFFFFFF : static_cast<int>(kb);
}

void fs_getspace_(int const& area, int const& sizeMB, char* dir, int const& dirLength, int& status) {
  if (dir && dirLength > 0) dir[0] = '\0';
  auto env = [](char const* name) -> std::string {
    char const* v = std::getenv(name);
    return v && *v ? v : "";
  };
  std::string path;
  std::string scratch = env("FS_SCRATCHDIR");
  if (scratch.empty()) scratch = env("TMPDIR");
  if (scratch.empty()) scratch = "/tmp";
  if (area == FS_SCR) {
    path = scratch;
  } else if (area == FS_DATA) {
    path = env("FS_DATADIR");
  } else if (area == FS_SPOOL) {
    path = env("FS_SPOOLDIR");
    if (path.empty()) path = scratch;
  } else if (area != 0 || sizeMB < 0) {
    status = fs_internal::fail("FS_getspace", FS_BADARG, "area " + std::to_string(area));
    return;
  }
  if (path.empty()) {
    char cwd[4096];
    if (::getcwd(cwd, sizeof cwd) == nullptr) {
      status = fs_internal::fail("FS_getspace", fs_internal::errnoStatus(errno), ".");
      return;
    }
    path = cwd;
  }
  struct statvfs vfs;
  if (::statvfs(path.c_str(), &vfs) != 0) {
    status = fs_internal::fail("FS_getspace", fs_internal::errnoStatus(errno), path);
    return;
  }
  uint64_t const free = static_cast<uint64_t>(vfs.f_bavail) * static_cast<uint64_t>(vfs.f_frsize);
  if (free / (1024 * 1024) < static_cast<uint64_t>(sizeMB)) {
    status = fs_internal::fail("FS_getspace", FS_NOSPACE, path);
    return;
  }
  copyText(path, dir, dirLength);
  status = FS_GOOD;
}

void fs_mkdir_(char const* name, int const& parents, int& status) {
  std::string const path = name ? name : "";
  if (fs_internal::remoteRefused("FS_mkdir", name, status)) return;
  if (path.empty()) {
    status = fs_internal::fail("FS_mkdir", FS_BADARG, path);
    return;
  }
  if (parents) {
    // Each missing parent in turn, from the top.
    for (size_t at = path.find('/', 1); at != std::string::npos; at = path.find('/', at + 1)) {
      std::string const part = path.substr(0, at);
      if (::mkdir(part.c_str(), 0777) != 0 && errno != EEXIST) {
        status = fs_internal::fail("FS_mkdir", fs_internal::errnoStatus(errno), part);
        return;
      }
    }
  }
  if (::mkdir(path.c_str(), 0777) != 0) {
    struct stat st;
    if (!(parents && errno == EEXIST && ::stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode))) {
      status = fs_internal::fail("FS_mkdir", fs_internal::errnoStatus(errno), path);
      return;
    }
  }
  status = FS_GOOD;
}

void fs_rm_(int const& type, char const* name, int& status) {
  std::string const path = name ? name : "";
  if (fs_internal::remoteRefused("FS_rm", name, status)) return;
  struct stat st;
  if (path.empty() || (type & (FS_RMFILE | FS_RMTREE)) == 0) {
    status = fs_internal::fail("FS_rm", FS_BADARG, path);
    return;
  }
  if (::lstat(path.c_str(), &st) != 0) {
    status = (type & FS_RMMISSINGOK) && errno == ENOENT
                 ? FS_GOOD
                 : fs_internal::fail("FS_rm", errno == ENOENT ? FS_NOTEXIST : fs_internal::errnoStatus(errno), path);
    return;
  }
  int err;
  if (S_ISDIR(st.st_mode))
    err = (type & FS_RMTREE) ? removeTree(path) : (::rmdir(path.c_str()) == 0 ? 0 : errno);
  else
    err = ::unlink(path.c_str()) == 0 ? 0 : errno;
  status = err == 0 ? FS_GOOD : fs_internal::fail("FS_rm", fs_internal::errnoStatus(err), path);
}

void fs_mv_(int const& type, char const* from, char const* to, int& status) {
  if (fs_internal::remoteRefused("FS_mv", from, status) || fs_internal::remoteRefused("FS_mv", to, status)) return;
  struct stat st;
  if (from == nullptr || to == nullptr || !*from || !*to) {
    status = fs_internal::fail("FS_mv", FS_BADARG, from ? from : "");
    return;
  }
  if (::lstat(from, &st) != 0) {
    status = fs_internal::fail("FS_mv", FS_NOTEXIST, from);
    return;
  }
  int err = clearTarget(type, to);
  if (err == 0 && ::rename(from, to) != 0) {
    err = errno;
    // Across file systems a plain file is copied and the original removed.
    if (err == EXDEV && S_ISREG(st.st_mode) && (err = copyFile(from, to)) == 0) err = ::unlink(from) == 0 ? 0 : errno;
  }
  status = err == 0 ? FS_GOOD : fs_internal::fail("FS_mv", fs_internal::errnoStatus(err), to);
}

void fs_cp_(int const& type, char const* from, char const* to, int& status) {
  if (fs_internal::remoteRefused("FS_cp", from, status) || fs_internal::remoteRefused("FS_cp", to, status)) return;
  struct stat st;
  if (from == nullptr || to == nullptr || !*from || !*to) {
    status = fs_internal::fail("FS_cp", FS_BADARG, from ? from : "");
    return;
  }
  if (::stat(from, &st) != 0) {
    status = fs_internal::fail("FS_cp", FS_NOTEXIST, from);
    return;
  }
  int err = S_ISDIR(st.st_mode) ? EISDIR : clearTarget(type, to);
  if (err == 0) err = copyFile(from, to);
  status = err == 0 ? FS_GOOD : fs_internal::fail("FS_cp", fs_internal::errnoStatus(err), to);
}

void fs_islocked_(char const* name, int const& type, int& flag, int& status) {
  flag = 0;
  if (fs_internal::remoteRefused("FS_islocked", name, status)) return;
  if (name == nullptr || (type != FS_READLOCK && type != FS_WRITELOCK)) {
    status = fs_internal::fail("FS_islocked", FS_BADARG, name ? name : "");
    return;
  }
  int const fd = ::open(name, O_RDONLY | O_CLOEXEC);
  if (fd < 0) {
    status = fs_internal::fail("FS_islocked", errno == ENOENT ? FS_NOTEXIST : fs_internal::errnoStatus(errno), name);
    return;
  }
  struct flock fl;
  std::memset(&fl, 0, sizeof fl);
  fl.l_type = static_cast<short>(type == FS_READLOCK ? F_RDLCK : F_WRLCK);
  fl.l_whence = SEEK_SET;
  if (::fcntl(fd, F_OFD_GETLK, &fl) != 0) {
    status = fs_internal::fail("FS_islocked", fs_internal::errnoStatus(errno), name);
  } else {
    flag = fl.l_type != F_UNLCK ? 1 : 0;
    status = FS_GOOD;
  }
  ::close(fd);
}

void fs_getcluster_(char const* host, char* cluster, int const& clusterLength, int& status) {
  std::string const h = host ? host : "";
  status = FS_GOOD;
  char const* table = std::getenv("FS_CLUSTERS");
  auto isSeparator = [](char c) { return c == ' ' || c == '\t' || c == ',' || c == '\n'; };
  if (!h.empty() && h.find_first_not_of(" \t") != std::string::npos && table != nullptr) {
    // Scan the pairs in place: the table is short and asked rarely.
    for (char const* p = table; *p;) {
      while (*p && isSeparator(*p)) ++p;
      char const* start = p;
      while (*p && !isSeparator(*p)) ++p;
      char const* eq = static_cast<char const*>(std::memchr(start, '=', static_cast<size_t>(p - start)));
      if (eq == nullptr || eq == start || eq + 1 == p) continue;
      if (std::string(start, eq) == h) return copyText(std::string(eq + 1, p), cluster, clusterLength);
    }
  }
  copyText(h, cluster, clusterLength);
}
