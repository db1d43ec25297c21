// Tapes, tape images and variable-length record files of the record file
// service, and the ANSI tape labels.

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/mtio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstring>
#include <memory>
#include <string>

#include "syslayer/FSService.h"
#include "syslayer/FSServiceInternal.h"
#include "syslayer/SysUtil.h"

using fs_internal::Entry;
using fs_internal::TableLock;

namespace {

uint32_t const kTapeMark = 0;
uint32_t const kEraseGap = 0xFFFFFFFEu;
uint32_t const kEndOfMedium = 0xFFFFFFFFu;

uint32_t getLE32(unsigned char const* b) {
  return static_cast<uint32_t>(b[0]) | static_cast<uint32_t>(b[1]) << 8 | static_cast<uint32_t>(b[2]) << 16 |
         static_cast<uint32_t>(b[3]) << 24;
}

void putLE32(unsigned char* b, uint32_t v) {
  b[0] = static_cast<unsigned char>(v);
  b[1] = static_cast<unsigned char>(v >> 8);
  b[2] = static_cast<unsigned char>(v >> 16);
  b[3] = static_cast<unsigned char>(v >> 24);
}

void openFramed(char const* routine, char const* name, int options, int kind, int& id, int& status) {
  id = 0;
  if (fs_internal::remoteRefused(routine, name, status)) return;
  std::string const subject = name ? name : "";
  if (subject.empty()) {
    status = fs_internal::fail(routine, FS_BADARG, subject);
    return;
  }
  bool const create = options & FS_CREATE;
  bool const readOnly = (options & FS_READONLY) && !create;
  int flags = O_CLOEXEC | (readOnly ? O_RDONLY : O_RDWR);
  struct stat st;
  bool const device = ::stat(subject.c_str(), &st) == 0 && S_ISCHR(st.st_mode);
  if (create && !device) flags |= O_CREAT | O_TRUNC;
  int const fd = ::open(subject.c_str(), flags, 0666);
  if (fd < 0) {
    status = fs_internal::fail(routine, fs_internal::errnoStatus(errno), subject);
    return;
  }
  if (::fstat(fd, &st) != 0 || S_ISDIR(st.st_mode)) {
    int const err = S_ISDIR(st.st_mode) ? EISDIR : errno;
    ::close(fd);
    status = fs_internal::fail(routine, fs_internal::errnoStatus(err), subject);
    return;
  }
  std::unique_ptr<Entry> e(new Entry);
  e->fd = fd;
  e->options = options;
  e->kind = kind;
  e->readOnly = readOnly;
  e->device = device;
  e->name = subject;
  TableLock lock;
  id = fs_internal::add(e.release());
  status = FS_GOOD;
}

// One block of a framed file. Marks are blocks only on tape images.
// blockLength, when asked for, gets the length the frame tells.
void readFramed(char const* routine, Entry& e, void* buffer, int maxLength, int& got, int& status,
                int* blockLength = nullptr) {
  got = 0;
  status = FS_GOOD;
  bool const image = e.kind == FS_TAPE;
  int64_t const offset = e.position - 1;
  unsigned char head[4];
  bool atEnd = false;
  int err = 0;
  int64_t n = fs_internal::readFull(e, head, 4, offset, atEnd, err);
  if (err != 0) {
    status = fs_internal::fail(routine, fs_internal::errnoStatus(err), e.name);
    return;
  }
  if (n == 0) {
    status = fs_internal::fail(routine, image ? FS_EOV : FS_EOF, e.name);
    return;
  }
  if (n < 4) {
    status = fs_internal::fail(routine, FS_BADFRAME, e.name);
    return;
  }
  uint32_t const length = getLE32(head);
  if (blockLength != nullptr && !(length & 0x80000000u)) *blockLength = static_cast<int>(length);
  if (image && length == kTapeMark) {
    e.position += 4;
    status = fs_internal::fail(routine, FS_EOF, e.name);
    return;
  }
  if (image && length == kEraseGap) {
    e.position += 4;
    return;
  }
  if (image && length == kEndOfMedium) {
    status = fs_internal::fail(routine, FS_EOV, e.name);
    return;
  }
  if (length & 0x80000000u) {
    status = fs_internal::fail(routine, FS_BADFRAME, e.name);
    return;
  }
  int64_t const want = length < static_cast<uint32_t>(maxLength) ? length : maxLength;
  n = fs_internal::readFull(e, buffer, want, offset + 4, atEnd, err);
  got = static_cast<int>(n);
  if (err != 0) {
    status = fs_internal::fail(routine, fs_internal::errnoStatus(err), e.name);
    return;
  }
  unsigned char tail[4];
  if (n < want || fs_internal::readFull(e, tail, 4, offset + 4 + length, atEnd, err) != 4 || getLE32(tail) != length) {
    status = fs_internal::fail(routine, err != 0 ? fs_internal::errnoStatus(err) : FS_BADFRAME, e.name);
    return;
  }
  e.position += 8 + static_cast<int64_t>(length);
  if (length > static_cast<uint32_t>(maxLength)) status = fs_internal::fail(routine, FS_BLOCKTOOLONG, e.name);
}

void readDevice(Entry& e, void* buffer, int maxLength, int& got, int& status) {
  got = 0;
  status = FS_GOOD;
  ssize_t r;
  do {
    r = ::read(e.fd, buffer, static_cast<size_t>(maxLength));
  } while (r < 0 && errno == EINTR);
  if (r > 0) {
    e.deviceMarks = 0;
    got = static_cast<int>(r);
    return;
  }
  if (r == 0) {
    // One tape mark ends a file, two in a row the recorded data.
    status = fs_internal::fail("FS_readt", ++e.deviceMarks >= 2 ? FS_EOD : FS_EOF, e.name);
    return;
  }
  int const err = errno;
  status = fs_internal::fail("FS_readt",
                             err == ENOSPC ? FS_EOV : err == ENOMEM ? FS_BLOCKTOOLONG : fs_internal::errnoStatus(err),
                             e.name);
}

void writeFramed(char const* routine, Entry& e, void const* buffer, int count, int& status) {
  if (count < 0) {
    status = fs_internal::fail(routine, FS_BADARG, e.name);
    return;
  }
  if (e.readOnly) {
    status = fs_internal::fail(routine, FS_NOTWRITABLE, e.name);
    return;
  }
  if (e.device) {
    ssize_t const r = count == 0 ? 0 : ::write(e.fd, buffer, static_cast<size_t>(count));
    if (count == 0) {
      struct mtop op = {MTWEOF, 1};
      if (::ioctl(e.fd, MTIOCTOP, &op) != 0) status = fs_internal::fail(routine, fs_internal::errnoStatus(errno), e.name);
    } else if (r != count) {
      status = fs_internal::fail(routine, fs_internal::errnoStatus(r < 0 ? errno : EIO), e.name);
    }
    return;
  }
  std::string block;
  unsigned char word[4];
  putLE32(word, static_cast<uint32_t>(count));
  block.append(reinterpret_cast<char*>(word), 4);
  if (count > 0 || e.kind == FS_VLR) {
    block.append(static_cast<char const*>(buffer), static_cast<size_t>(count));
    block.append(reinterpret_cast<char*>(word), 4);
  }
  int const err = fs_internal::writeAt(e, block.data(), static_cast<int64_t>(block.size()), e.position - 1);
  if (err != 0) {
    status = fs_internal::fail(routine, fs_internal::errnoStatus(err), e.name);
    return;
  }
  e.position += static_cast<int64_t>(block.size());
}

void closeFramed(char const* routine, int const& id, int& status) {
  TableLock lock;
  if (fs_internal::closeParked(id, status)) return;
  if ((status = fs_chkid_(id, routine, static_cast<int>(std::strlen(routine)))) != FS_GOOD) return;
  Entry* e = fs_internal::find(id);
  if (e->device && !(e->options & FS_NOREWIND)) {
    struct mtop op = {MTREW, 1};
    ::ioctl(e->fd, MTIOCTOP, &op);  // a drive that cannot rewind is still closed
  }
  if (::close(e->fd) != 0) status = fs_internal::fail(routine, fs_internal::errnoStatus(errno), e->name);
  fs_internal::remove(id);
}

Entry* framedEntry(int const& id, char const* routine, int kind, int& status) {
  if ((status = fs_chkid_(id, routine, static_cast<int>(std::strlen(routine)))) != FS_GOOD) return nullptr;
  Entry* e = fs_internal::find(id);
  if (e->kind != kind) {
    status = fs_internal::fail(routine, FS_BADARG, e->name);
    return nullptr;
  }
  return e;
}

}  // namespace

void fs_opent_(char const* name, int const& options, int& id, int& status) {
  openFramed("FS_opent", name, options, FS_TAPE, id, status);
}

void fs_readt_(int const& id, void* buffer, int const& maxLength, int const& blockSize, int& got, int& status) {
  (void)blockSize;  // variable-block drives and images tell the length themselves
  TableLock lock;
  got = 0;
  Entry* e = framedEntry(id, "FS_readt", FS_TAPE, status);
  if (e == nullptr) return;
  if (maxLength < 0) {
    status = fs_internal::fail("FS_readt", FS_BADARG, e->name);
    return;
  }
  if (e->device)
    readDevice(*e, buffer, maxLength, got, status);
  else
    readFramed("FS_readt", *e, buffer, maxLength, got, status);
}

void fs_readti_(int const& id, void* buffer, int const& maxLength, int& got, int& blockLength, int& status) {
  TableLock lock;
  got = 0;
  blockLength = 0;
  Entry* e = framedEntry(id, "FS_readti", FS_TAPE, status);
  if (e == nullptr) return;
  if (maxLength < 0) {
    status = fs_internal::fail("FS_readti", FS_BADARG, e->name);
    return;
  }
  if (!e->device) return readFramed("FS_readti", *e, buffer, maxLength, got, status, &blockLength);
  // A drive drops what does not fit without telling how much there was.
  readDevice(*e, buffer, maxLength, got, status);
  blockLength = status == FS_BLOCKTOOLONG ? -1 : got;
}

void fs_writet_(int const& id, void const* buffer, int const& count, int& status) {
  TableLock lock;
  Entry* e = framedEntry(id, "FS_writet", FS_TAPE, status);
  if (e != nullptr) writeFramed("FS_writet", *e, buffer, count, status);
}

void fs_closet_(int const& id, int& status) { closeFramed("FS_closet", id, status); }

void fs_openvlr_(char const* name, int& id, int& status) {
  openFramed("FS_openvlr", name, FS_VLR | FS_READONLY, FS_VLR, id, status);
}

void fs_readvlr_(int const& id, void* buffer, int const& maxLength, int& got, int& status) {
  TableLock lock;
  got = 0;
  Entry* e = framedEntry(id, "FS_readvlr", FS_VLR, status);
  if (e == nullptr) return;
  if (maxLength < 0) {
    status = fs_internal::fail("FS_readvlr", FS_BADARG, e->name);
    return;
  }
  readFramed("FS_readvlr", *e, buffer, maxLength, got, status);
}

void fs_writevlr_(int const& id, void const* buffer, int const& count, int& status) {
  TableLock lock;
  Entry* e = framedEntry(id, "FS_writevlr", FS_VLR, status);
  if (e != nullptr) writeFramed("FS_writevlr", *e, buffer, count, status);
}

void fs_closevlr_(int const& id, int& status) { closeFramed("FS_closevlr", id, status); }

// Opens a variable-length file for writing (FS_VLR with FS_CREATE through
// fs_open_ comes here too).
void fs_internal_openvlr(char const* name, int const& options, int& id, int& status) {
  openFramed("FS_openvlr", name, options | FS_VLR, FS_VLR, id, status);
}

void fs_bansi_(char const* kind, char const* value, char* record, int& status) {
  std::string const k = kind ? kind : "";
  std::string const v = value ? value : "";
  auto place = [record](int at, std::string const& text, int width) {
    for (int i = 0; i < width && i < static_cast<int>(text.size()); ++i) record[at + i] = text[static_cast<size_t>(i)];
  };
  if (record == nullptr) {
    status = FS_BADARG;
    return;
  }
  std::memset(record, ' ', 80);
  status = FS_GOOD;
  if (k == "VOL1") {
    place(0, "VOL1", 4);
    place(4, v, 6);
    char user[20];
    ut_getuser_(user, 20);
    for (char& c : user) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    place(37, std::string(user, 20), 20);
  } else if (k == "HDR1" || k == "EOF1") {
    place(0, "HDR1RONDO", 9);
    place(27, "00010001000100", 14);
    char date[6];
    ut_date_("world", date, 6);
    place(41, std::string(date, 6), 6);
    place(48, "00001 000000", 12);
    place(60, v, 20);
    if (k == "EOF1") place(0, "EOF1", 4);
  } else if (k == "HDR2" || k == "EOF2") {
    place(0, "HDR2U0000000000", 15);
    if (k == "EOF2") place(0, "EOF2", 4);
  } else {
    status = FS_BADLABEL;
  }
}

void fs_ransi_(char const* record, int const& length, char* kind, char* value, int const& valueLength, int& status) {
  if (kind) kind[0] = '\0';
  if (value && valueLength > 0) value[0] = '\0';
  status = FS_BADLABEL;
  if (record == nullptr || length != 80) return;
  std::string const id(record, 4);
  int from, to;
  if (id == "VOL1") {
    from = 4, to = 10;
  } else if (id == "HDR1" || id == "EOF1") {
    from = 4, to = 21;
  } else if (id == "HDR2" || id == "EOF2") {
    from = 4, to = 15;
  } else {
    return;
  }
  std::string field(record + from, static_cast<size_t>(to - from));
  while (!field.empty() && field.back() == ' ') field.pop_back();
  if (kind) std::memcpy(kind, id.c_str(), 5);
  if (value && valueLength > 0) {
    size_t const n = field.size() < static_cast<size_t>(valueLength - 1) ? field.size() : static_cast<size_t>(valueLength - 1);
    std::memcpy(value, field.data(), n);
    value[n] = '\0';
  }
  status = FS_GOOD;
}
