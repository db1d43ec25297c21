// Disk files of the record file service: open, close, record and byte
// reads and writes, positions, information and locks.

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>

#include "syslayer/FSService.h"
#include "syslayer/FSServiceInternal.h"

using fs_internal::Entry;
using fs_internal::TableLock;

namespace {

// Indexes the lines of a text record file. Returns errno or 0.
int indexLines(Entry& e) {
  e.lineStart.clear();
  e.lineLength.clear();
  char buf[65536];
  int64_t offset = 0;
  int64_t start = 0;
  for (;;) {
    ssize_t const r = ::pread(e.fd, buf, sizeof buf, static_cast<off_t>(offset));
    if (r < 0) {
      if (errno == EINTR) continue;
      return errno;
    }
    if (r == 0) break;
    for (ssize_t i = 0; i < r; ++i) {
      if (buf[i] == '\n') {
        e.lineStart.push_back(start);
        e.lineLength.push_back(offset + i - start);
        start = offset + i + 1;
      }
    }
    offset += r;
  }
  if (offset > start) {  // a last line without its end
    e.lineStart.push_back(start);
    e.lineLength.push_back(offset - start);
  }
  return 0;
}

int64_t nRecords(Entry& e, int& err) {
  if (e.text) {
    err = 0;
    return static_cast<int64_t>(e.lineStart.size());
  }
  int64_t const size = fs_internal::sizeOf(e, err);
  if (size < 0) return -1;
  return e.kind == FS_C ? size : size / e.recl;
}

// Reads text records from record `first` on into count bytes, each line
// blank-padded or cut to the record length.
int64_t readLines(Entry& e, char* out, int64_t count, int64_t first, bool& atEnd, int& err) {
  atEnd = false;
  err = 0;
  int64_t done = 0;
  for (int64_t r = first; done < count; ++r) {
    if (r > static_cast<int64_t>(e.lineStart.size())) {
      atEnd = true;
      break;
    }
    int64_t const want = std::min(e.recl, count - done);
    int64_t const have = std::min(want, e.lineLength[static_cast<size_t>(r - 1)]);
    bool end = false;
    int64_t const got = fs_internal::readFull(e, out + done, have, e.lineStart[static_cast<size_t>(r - 1)], end, err);
    if (err != 0 || got < have) {
      done += got;
      atEnd = err == 0;
      break;
    }
    std::memset(out + done + have, ' ', static_cast<size_t>(want - have));
    done += want;
  }
  return done;
}

// Writes text records at record `first`: what followed record first-1 goes.
int writeLines(Entry& e, char const* in, int64_t count, int64_t first) {
  size_t const keep = static_cast<size_t>(std::min<int64_t>(first - 1, static_cast<int64_t>(e.lineStart.size())));
  int64_t offset = 0;
  if (keep > 0) offset = e.lineStart[keep - 1] + e.lineLength[keep - 1] + 1;
  e.lineStart.resize(keep);
  e.lineLength.resize(keep);
  if (::ftruncate(e.fd, static_cast<off_t>(offset)) != 0) return errno;
  std::string out;
  for (int64_t done = 0; done < count; done += e.recl) {
    int64_t n = std::min(e.recl, count - done);
    while (n > 0 && in[done + n - 1] == ' ') --n;
    e.lineStart.push_back(offset + static_cast<int64_t>(out.size()));
    e.lineLength.push_back(n);
    out.append(in + done, static_cast<size_t>(n));
    out += '\n';
  }
  return fs_internal::writeAt(e, out.data(), static_cast<int64_t>(out.size()), offset);
}

int64_t ceilDiv(int64_t a, int64_t b) { return (a + b - 1) / b; }

}  // namespace

void fs_open_(char const* name, int const& options, int const& recordLength, int64_t const& size, int const& area,
              int& id, int& status) {
  id = 0;
  if (fs_internal::remoteRefused("FS_open", name, status)) return;
  int kind = options & FS_KINDMASK;
  if (kind == FS_TAPE || kind == FS_TIMAGE) return fs_opent_(name, options, id, status);
  if (kind == FS_VLR) return fs_internal_openvlr(name, options, id, status);
  if (kind == FS_FORTRAN) kind = FS_DISK;
  if (kind == FS_BYPASS) kind = FS_C;
  std::string const subject = name ? name : "";
  bool const text = kind == FS_DISK && (options & FS_NOHEADER);
  int64_t recl = recordLength;
  if (text && recl <= 0) recl = 80;
  if (kind == FS_C && recl <= 0) recl = 1;
  if (subject.empty() || kind == 0 || recl <= 0 || size < 0) {
    status = fs_internal::fail("FS_open", FS_BADARG, subject);
    return;
  }
  bool const create = options & FS_CREATE;
  bool const readOnly = (options & FS_READONLY) && !create;
  if (create && size > 0) {
    std::string dir = subject;
    size_t const slash = dir.rfind('/');
    dir = slash == std::string::npos ? "." : (slash == 0 ? "/" : dir.substr(0, slash));
    struct statvfs vfs;
    if (::statvfs(dir.c_str(), &vfs) == 0 &&
        static_cast<uint64_t>(vfs.f_bavail) * static_cast<uint64_t>(vfs.f_frsize) < static_cast<uint64_t>(size)) {
      status = fs_internal::fail("FS_open", FS_NOSPACE, subject);
      return;
    }
  }
  // A new file is emptied only once its locks are had, so that a refused
  // create never harms a file that another holds.
  struct stat st;
  bool const existed = ::stat(subject.c_str(), &st) == 0;
  int flags = O_CLOEXEC | (readOnly ? O_RDONLY : O_RDWR);
  if (create) flags |= O_CREAT;
  if (options & FS_SYNC) flags |= O_DSYNC;
  int const fd = ::open(subject.c_str(), flags, 0666);
  if (fd < 0) {
    status = fs_internal::fail("FS_open", fs_internal::errnoStatus(errno), subject);
    return;
  }
  std::unique_ptr<Entry> e(new Entry);
  e->fd = fd;
  e->options = options;
  e->kind = kind;
  e->text = text;
  e->readOnly = readOnly;
  e->recl = recl;
  e->area = area;
  e->name = subject;
  auto refuse = [&](int failure) {
    ::close(fd);
    if (create && !existed) ::unlink(subject.c_str());
    status = fs_internal::fail("FS_open", failure, subject);
  };
  if (::fstat(fd, &st) != 0) return refuse(fs_internal::errnoStatus(errno));
  if (S_ISDIR(st.st_mode)) return refuse(fs_internal::errnoStatus(EISDIR));
  if (readOnly && fs_internal::readLocksOn()) {
    int const rc = fs_internal::setLock(fd, F_RDLCK);
    if (rc == EAGAIN || rc == EACCES) return refuse(FS_LOCKED);
    // A file system without locks still reads.
    e->openReadLock = rc == 0;
    if (rc == 0) e->lockHeld = F_RDLCK;
  }
  if (options & FS_LOCK) {
    int const type = readOnly ? F_RDLCK : F_WRLCK;
    if (fs_internal::setLock(fd, type) != 0) return refuse(FS_LOCKED);
    e->lockHeld = type;
  }
  if (create) {
    if (::ftruncate(fd, 0) != 0) return refuse(fs_internal::errnoStatus(errno));
    if ((options & FS_ZERO) && size > 0 && ::ftruncate(fd, static_cast<off_t>(size)) != 0)
      return refuse(fs_internal::errnoStatus(errno));
  }
  if (text) {
    if (int const err = indexLines(*e)) return refuse(fs_internal::errnoStatus(err));
  }
  TableLock lock;
  id = fs_internal::add(e.release());
  status = FS_GOOD;
}

void fs_close_(int const& id, int& status) {
  TableLock lock;
  if (fs_internal::closeParked(id, status)) return;
  if ((status = fs_chkid_(id, "FS_close", 8)) != FS_GOOD) return;
  Entry* e = fs_internal::find(id);
  // The lock nests, so the tape close may take it again.
  if (e->kind == FS_TAPE || e->kind == FS_VLR) return fs_closet_(id, status);
  status = FS_GOOD;
  if ((e->options & FS_DELETE) && !(e->options & FS_KEEP)) ::unlink(e->name.c_str());
  if (::close(e->fd) != 0) status = fs_internal::fail("FS_close", fs_internal::errnoStatus(errno), e->name);
  fs_internal::remove(id);
}

void fs_read_(int const& id, void* buffer, int const& count, int& got, int& status) {
  TableLock lock;
  got = 0;
  if ((status = fs_chkid_(id, "FS_read", 7)) != FS_GOOD) return;
  Entry& e = *fs_internal::find(id);
  // On tapes and variable-length files a read is one block of at most
  // count bytes (the lock nests).
  if (e.kind == FS_TAPE && count >= 0) return fs_readt_(id, buffer, count, count, got, status);
  if (e.kind == FS_VLR && count >= 0) return fs_readvlr_(id, buffer, count, got, status);
  if (count < 0) {
    status = fs_internal::fail("FS_read", FS_BADARG, e.name);
    return;
  }
  bool atEnd = false;
  int err = 0;
  int64_t n;
  if (e.text)
    n = readLines(e, static_cast<char*>(buffer), count, e.position, atEnd, err);
  else
    n = fs_internal::readAt(e, buffer, count, (e.position - 1) * e.recl, atEnd, err);
  got = static_cast<int>(n);
  e.position += e.kind == FS_C ? n : ceilDiv(n, e.recl);
  if (err != 0)
    status = fs_internal::fail("FS_read", fs_internal::errnoStatus(err), e.name);
  else if (atEnd && n < count)
    status = fs_internal::fail("FS_read", fs_internal::endStatus(e), e.name);
}

void fs_write_(int const& id, void const* buffer, int const& count, int& put, int& status) {
  TableLock lock;
  put = 0;
  if ((status = fs_chkid_(id, "FS_write", 8)) != FS_GOOD) return;
  Entry& e = *fs_internal::find(id);
  if (count < 0 || e.kind == FS_TAPE || e.kind == FS_VLR) {
    status = fs_internal::fail("FS_write", FS_BADARG, e.name);
    return;
  }
  if (e.readOnly) {
    status = fs_internal::fail("FS_write", FS_NOTWRITABLE, e.name);
    return;
  }
  int err = 0;
  if (e.text) {
    err = writeLines(e, static_cast<char const*>(buffer), count, e.position);
  } else {
    int64_t const offset = (e.position - 1) * e.recl;
    if (e.options & FS_NOEXTEND) {
      int64_t const size = fs_internal::sizeOf(e, err);
      if (err == 0 && offset + count > size) {
        status = fs_internal::fail("FS_write", FS_NOEXTENDED, e.name);
        return;
      }
    }
    if (err == 0) err = fs_internal::writeAt(e, buffer, count, offset);
  }
  if (err != 0) {
    status = fs_internal::fail("FS_write", fs_internal::errnoStatus(err), e.name);
    return;
  }
  put = count;
  e.position += e.kind == FS_C ? count : ceilDiv(count, e.recl);
}

void fs_partialr_(int const& id, int const& offset, int const& length, int64_t const& first, int64_t const& last,
                  void* buffer, int& got, int& status) {
  TableLock lock;
  got = 0;
  if ((status = fs_chkid_(id, "FS_partialr", 11)) != FS_GOOD) return;
  Entry& e = *fs_internal::find(id);
  if (e.kind == FS_TAPE || e.kind == FS_VLR || offset < 0 || length < 0 || offset + int64_t(length) > e.recl ||
      first < 1 || last < first) {
    status = fs_internal::fail("FS_partialr", FS_BADARG, e.name);
    return;
  }
  char* out = static_cast<char*>(buffer);
  int64_t done = 0;
  std::vector<char> record;
  for (int64_t r = first; r <= last; ++r) {
    bool atEnd = false;
    int err = 0;
    int64_t n;
    if (e.text) {
      record.resize(static_cast<size_t>(e.recl));
      n = readLines(e, record.data(), e.recl, r, atEnd, err);
      n = std::max<int64_t>(0, std::min<int64_t>(n - offset, length));
      if (n > 0) std::memcpy(out + done, record.data() + offset, static_cast<size_t>(n));
    } else {
      n = fs_internal::readFull(e, out + done, length, (r - 1) * e.recl + offset, atEnd, err);
    }
    done += n;
    if (err != 0) {
      status = fs_internal::fail("FS_partialr", fs_internal::errnoStatus(err), e.name);
      break;
    }
    if (n < length) {
      status = fs_internal::fail("FS_partialr", FS_EOF, e.name);
      break;
    }
    e.position = r + 1;
  }
  got = static_cast<int>(done);
}

void fs_seekio_(int const& id, int64_t const& position, int& status) {
  TableLock lock;
  if ((status = fs_chkid_(id, "FS_seekio", 9)) != FS_GOOD) return;
  Entry& e = *fs_internal::find(id);
  if (position < 1 || e.kind == FS_TAPE || e.kind == FS_VLR) {
    status = fs_internal::fail("FS_seekio", FS_BADARG, e.name);
    return;
  }
  if (position != e.position) ++e.nSeeks;
  e.position = position;
}

void fs_getinfo_(int const& id, int const& item, int64_t& value, int& status) {
  TableLock lock;
  value = 0;
  if ((status = fs_chkid_(id, "FS_getinfo", 10)) != FS_GOOD) return;
  Entry& e = *fs_internal::find(id);
  int err = 0;
  struct stat st;
  switch (item) {
    case FS_INFO_OPTIONS: value = e.options; break;
    case FS_INFO_RECLEN: value = e.recl; break;
    case FS_INFO_NRECORDS: value = nRecords(e, err); break;
    case FS_INFO_SIZE: value = fs_internal::sizeOf(e, err); break;
    case FS_INFO_OWNER:
    case FS_INFO_CREATED:
      if (::fstat(e.fd, &st) != 0)
        err = errno;
      else
        value = item == FS_INFO_OWNER ? static_cast<int64_t>(st.st_uid) : static_cast<int64_t>(st.st_ctime);
      break;
    case FS_INFO_AREA: value = e.area; break;
    case FS_INFO_POSITION: value = e.position; break;
    case FS_INFO_NSEEKS: value = e.nSeeks; break;
    case FS_INFO_NREADS: value = e.nReads; break;
    case FS_INFO_NOSWAP: value = e.noSwap; break;
    case FS_INFO_KEEPOPEN: value = e.keepOpen; break;
    default: status = fs_internal::fail("FS_getinfo", FS_BADARG, e.name); return;
  }
  if (err != 0) status = fs_internal::fail("FS_getinfo", fs_internal::errnoStatus(err), e.name);
}

void fs_setinfo_(int const& id, int const& item, int64_t const& value, int& status) {
  TableLock lock;
  if ((status = fs_chkid_(id, "FS_setinfo", 10)) != FS_GOOD) return;
  Entry& e = *fs_internal::find(id);
  switch (item) {
    case FS_INFO_POSITION: return fs_seekio_(id, value, status);
    case FS_INFO_NOSWAP: e.noSwap = value != 0; break;
    case FS_INFO_KEEPOPEN: e.keepOpen = value != 0; break;
    default: status = fs_internal::fail("FS_setinfo", FS_BADARG, e.name);
  }
}

void fs_fstat_(int const& id, FsStat& info, int& status) {
  TableLock lock;
  std::memset(&info, 0, sizeof info);
  if ((status = fs_chkid_(id, "FS_fstat", 8)) != FS_GOOD) return;
  Entry& e = *fs_internal::find(id);
  struct stat st;
  if (::fstat(e.fd, &st) != 0) {
    status = fs_internal::fail("FS_fstat", fs_internal::errnoStatus(errno), e.name);
    return;
  }
  int err = 0;
  info.size = fs_internal::sizeOf(e, err);
  info.modified = st.st_mtime;
  info.changed = st.st_ctime;
  info.kind = S_ISREG(st.st_mode) ? 1 : S_ISDIR(st.st_mode) ? 2 : 3;
  info.mode = static_cast<int32_t>(st.st_mode & 07777);
  info.uid = static_cast<int32_t>(st.st_uid);
  info.isDevice = S_ISCHR(st.st_mode) ? 1 : 0;
}

void fs_trunc_(int const& id, int& status) {
  TableLock lock;
  if ((status = fs_chkid_(id, "FS_trunc", 8)) != FS_GOOD) return;
  Entry& e = *fs_internal::find(id);
  if (e.readOnly || e.text || e.kind == FS_TAPE || e.kind == FS_VLR) {
    status = fs_internal::fail("FS_trunc", e.readOnly ? FS_NOTWRITABLE : FS_BADARG, e.name);
    return;
  }
  if (::ftruncate(e.fd, static_cast<off_t>((e.position - 1) * e.recl)) != 0)
    status = fs_internal::fail("FS_trunc", fs_internal::errnoStatus(errno), e.name);
}

void fs_lockit_(int const& id, int& status) {
  TableLock lock;
  if ((status = fs_chkid_(id, "FS_lockit", 9)) != FS_GOOD) return;
  Entry& e = *fs_internal::find(id);
  int const type = e.readOnly ? F_RDLCK : F_WRLCK;
  int const rc = fs_internal::setLock(e.fd, type);
  if (rc != 0) {
    status = fs_internal::fail("FS_lockit", rc == EAGAIN || rc == EACCES ? FS_LOCKED : fs_internal::errnoStatus(rc),
                               e.name);
    return;
  }
  e.lockHeld = type;
}

void fs_unlockit_(int const& id, int& status) {
  TableLock lock;
  if ((status = fs_chkid_(id, "FS_unlockit", 11)) != FS_GOOD) return;
  Entry& e = *fs_internal::find(id);
  // Back to the lock that the open took.
  int const type = e.openReadLock ? F_RDLCK : F_UNLCK;
  int const rc = fs_internal::setLock(e.fd, type);
  if (rc != 0) {
    status = fs_internal::fail("FS_unlockit", fs_internal::errnoStatus(rc), e.name);
    return;
  }
  e.lockHeld = type == F_UNLCK ? 0 : type;
}
