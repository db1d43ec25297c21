// The record file service's own state: table of open files, service mutex,
// failure recording, status and option texts, and the test faults.

#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "foundation/Message.h"
#include "syslayer/FSService.h"
#include "syslayer/FSServiceInternal.h"
#include "syslayer/SSHeap.h"

namespace {

std::vector<fs_internal::Entry*> g_table;  // id - 1 -> entry; ids are not reused

pthread_mutex_t g_mutex;
std::atomic<bool> g_mutexOn{false};
thread_local int t_depth = 0;
thread_local bool t_holds = false;

std::atomic<int> g_failMode{0};
std::atomic<bool> g_readLocks{true};
thread_local int t_lastStatus = FS_GOOD;
thread_local std::string t_lastText;

// Test faults. The kind is read on every disk read, so it is atomic; the
// rest is set while no file is being read.
std::atomic<int> g_faultKind{FS_FAULT_NONE};
std::string g_faultName;
int64_t g_faultLimit = 0;

void copyText(std::string const& text, char* out, int length) {
  if (out == nullptr || length <= 0) return;
  size_t const n = std::min(text.size(), static_cast<size_t>(length - 1));
  std::memcpy(out, text.data(), n);
  out[n] = '\0';
}

bool faultApplies(fs_internal::Entry const& e) { return g_faultName.empty() || g_faultName == e.name; }

}  // namespace

namespace fs_internal {

TableLock::TableLock() { fs_tlock_(); }
TableLock::~TableLock() { fs_tunlock_(); }

Entry* find(int id) {
  if (id < 1 || static_cast<size_t>(id) > g_table.size()) return nullptr;
  return g_table[static_cast<size_t>(id) - 1];
}

int add(Entry* entry) {
  g_table.push_back(entry);
  int32_t const id = static_cast<int32_t>(g_table.size());
  // The file's record in the ss tree: name, id, options, record length and
  // area, for whoever walks the service's tables there.
  int32_t table;
  fs_table_(table);
  int32_t const types[] = {SS_TEXT, SS_INT, SS_INT, SS_INT, SS_INT};
  ss_define_(entry->record, table, 5, types);
  ss_puttext_(entry->record, 1, entry->name.data(), static_cast<int32_t>(entry->name.size()));
  ss_putnth_(entry->record, 2, id);
  ss_putnth_(entry->record, 3, entry->options);
  ss_putnth_(entry->record, 4, static_cast<int32_t>(entry->recl));
  ss_putnth_(entry->record, 5, entry->area);
  int32_t open = 0;
  ss_getnth_(table, 1, open);
  ss_putnth_(table, 1, open + 1);
  return id;
}

int findParked(std::string const& name, int options) {
  for (size_t k = 0; k < g_table.size(); ++k)
    if (g_table[k] && g_table[k]->parked && g_table[k]->name == name && g_table[k]->options == options)
      return static_cast<int>(k + 1);
  return 0;
}

void remove(int id) {
  if (Entry* e = find(id)) {
    int32_t table;
    fs_table_(table);
    int32_t open = 0;
    ss_getnth_(table, 1, open);
    ss_putnth_(table, 1, open - 1);
    if (e->record != 0) ss_delete_(e->record);
    delete e;
    g_table[static_cast<size_t>(id) - 1] = nullptr;
  }
}

int fail(char const* routine, int status, std::string const& subject) {
  char text[200];
  fs_errmsg_(status, text, sizeof text);
  t_lastStatus = status;
  t_lastText = std::string(routine) + ": " + text;
  if (!subject.empty()) t_lastText += " (" + subject + ")";
  if (g_failMode.load(std::memory_order_relaxed) == 1) fs_terminate_(status, subject.c_str());
  return status;
}

int errnoStatus(int err) { return FS_ERRNO + err; }

int64_t readAt(Entry& e, void* buffer, int64_t n, int64_t offset, bool& atEnd, int& err) {
  atEnd = false;
  err = 0;
  int const fault = g_faultKind.load(std::memory_order_relaxed);
  int failAfter = 0;
  if (fault != FS_FAULT_NONE && faultApplies(e)) {
    if (fault == FS_FAULT_SHORTREAD) {
      n = std::min(n, std::max<int64_t>(g_faultLimit, 1));
    } else if (fault == FS_FAULT_TRUNCATE) {
      if (offset >= g_faultLimit) {
        atEnd = n > 0;
        return 0;
      }
      if (offset + n > g_faultLimit) {
        n = g_faultLimit - offset;
        failAfter = -1;  // end of file after these bytes
      }
    } else if (fault == FS_FAULT_FAILREAD) {
      if (offset >= g_faultLimit) {
        err = EIO;
        return 0;
      }
      if (offset + n > g_faultLimit) {
        n = g_faultLimit - offset;
        failAfter = EIO;
      }
    }
  }
  ++e.nReads;
  char* p = static_cast<char*>(buffer);
  int64_t done = 0;
  while (done < n) {
    // One system read takes at most 1 GB, which every host allows.
    size_t const want = static_cast<size_t>(std::min<int64_t>(n - done, 0x40000000));
    ssize_t const r = ::pread(e.fd, p + done, want, static_cast<off_t>(offset + done));
    if (r < 0) {
      if (errno == EINTR) continue;
      err = errno;
      return done;
    }
    if (r == 0) {
      atEnd = true;
      return done;
    }
    done += r;
  }
  if (failAfter == -1) atEnd = true;
  if (failAfter > 0) err = failAfter;
  return done;
}

int64_t readFull(Entry& e, void* buffer, int64_t n, int64_t offset, bool& atEnd, int& err) {
  int64_t done = 0;
  atEnd = false;
  err = 0;
  while (done < n && !atEnd && err == 0) {
    int64_t const got = readAt(e, static_cast<char*>(buffer) + done, n - done, offset + done, atEnd, err);
    if (got == 0 && !atEnd && err == 0) break;
    done += got;
  }
  return done;
}

int writeAt(Entry& e, void const* buffer, int64_t n, int64_t offset) {
  char const* p = static_cast<char const*>(buffer);
  int64_t done = 0;
  while (done < n) {
    size_t const want = static_cast<size_t>(std::min<int64_t>(n - done, 0x40000000));
    ssize_t const r = ::pwrite(e.fd, p + done, want, static_cast<off_t>(offset + done));
    if (r < 0) {
      if (errno == EINTR) continue;
      return errno;
    }
    done += r;
  }
  return 0;
}

int64_t sizeOf(Entry& e, int& err) {
  struct stat st;
  if (::fstat(e.fd, &st) != 0) {
    err = errno;
    return -1;
  }
  err = 0;
  int64_t size = st.st_size;
  if (g_faultKind.load(std::memory_order_relaxed) == FS_FAULT_TRUNCATE && faultApplies(e))
    size = std::min(size, g_faultLimit);
  return size;
}

bool readLocksOn() { return g_readLocks.load(std::memory_order_relaxed); }

int setLock(int fd, int type) {
  struct flock fl;
  std::memset(&fl, 0, sizeof fl);
  fl.l_type = static_cast<short>(type);
  fl.l_whence = SEEK_SET;
  fl.l_start = 0;
  fl.l_len = 0;
  // Open-file-description locks: two opens of one file conflict even in one
  // process, which is what a lock on a file object means here.
  while (::fcntl(fd, F_OFD_SETLK, &fl) != 0) {
    if (errno != EINTR) return errno;
  }
  return 0;
}

}  // namespace fs_internal

int fs_chkid_(int const& id, char const* routine, int const& length) {
  fs_internal::Entry* e = fs_internal::find(id);
  if (e != nullptr && !e->parked) return FS_GOOD;
  std::string name(routine ? routine : "", routine ? static_cast<size_t>(std::max(length, 0)) : 0u);
  if (e != nullptr) return fs_internal::unpark(*e, name.c_str());
  return fs_internal::fail(name.c_str(), FS_BADID, "id " + std::to_string(id));
}

void fs_errmsg_(int const& status, char* text, int const& length) {
  std::string s;
  switch (status) {
    case FS_GOOD: s = "Normal completion"; break;
    case 0: s = "No status"; break;
    case FS_EOF: s = "End of file"; break;
    case FS_EOD: s = "End of data"; break;
    case FS_EOV: s = "End of volume"; break;
    case FS_EOFEOV: s = "End of file and volume"; break;
    case FS_BADID: s = "Not an open file"; break;
    case FS_LOCKED: s = "File is locked"; break;
    case FS_BADARG: s = "Invalid argument to the file service"; break;
    case FS_NOTWRITABLE: s = "File is not open for writing"; break;
    case FS_NOEXTENDED: s = "Write past the end of a file that may not grow"; break;
    case FS_BLOCKTOOLONG: s = "Tape block longer than the buffer"; break;
    case FS_BADFRAME: s = "Broken block framing"; break;
    case FS_NOTEXIST: s = "No such file or directory"; break;
    case FS_NOSPACE: s = "Not enough free space"; break;
    case FS_BADLABEL: s = "Not a tape label"; break;
    case FS_REMOTE: s = "Remote files are not supported"; break;
    case FS_BADHEADER: s = "Not a multi-volume header"; break;
    default:
      if (status > FS_ERRNO && status < FS_ERRNO + 0x10000) {
        char buf[160];
        // The GNU strerror_r returns its text, which may not be in buf.
        s = strerror_r(status - FS_ERRNO, buf, sizeof buf);
      } else {
        char buf[40];
        std::snprintf(buf, sizeof buf, "Unknown status 0x%X", static_cast<unsigned>(status));
        s = buf;
      }
  }
  copyText(s, text, length);
}

void fs_decode_(int const& options, char* text, int const& length) {
  struct Word {
    unsigned value;
    char const* name;
  };
  static Word const kinds[] = {{FS_FORTRAN, "FS_FORTRAN"}, {FS_C, "FS_C"},     {FS_DISK, "FS_DISK"},
                               {FS_TAPE, "FS_TAPE"},       {FS_TIMAGE, "FS_TIMAGE"}, {FS_VLR, "FS_VLR"},
                               {FS_BYPASS, "FS_BYPASS"}};
  static Word const densities[] = {{FS_800, "FS_800"},           {FS_1600, "FS_1600"},
                                   {FS_6250, "FS_6250"},         {FS_CARTRIDGE, "FS_CARTRIDGE"},
                                   {FS_LODENSITY, "FS_LODENSITY"}, {FS_HIDENSITY, "FS_HIDENSITY"},
                                   {FS_SQUARE, "FS_SQUARE"}};
  static Word const flags[] = {
      {FS_CREATE, "FS_CREATE"},     {FS_DELETE, "FS_DELETE"},     {FS_STATUS, "FS_STATUS"},
      {FS_KEEP, "FS_KEEP"},         {FS_READONLY, "FS_READONLY"}, {FS_NOLABEL, "FS_NOLABEL"},
      {FS_ZERO, "FS_ZERO"},         {FS_SYNC, "FS_SYNC"},         {FS_ASYNC, "FS_ASYNC"},
      {FS_OVERRUN, "FS_OVERRUN"},   {FS_NORETRY, "FS_NORETRY"},   {FS_NOHEADER, "FS_NOHEADER"},
      {FS_ROUND, "FS_ROUND"},       {FS_SCR, "FS_SCR"},           {FS_DATA, "FS_DATA"},
      {FS_SPOOL, "FS_SPOOL"},       {FS_LOCK, "FS_LOCK"},         {FS_NOEXTEND, "FS_NOEXTEND"},
      {FS_NOREWIND, "FS_NOREWIND"}, {FS_NOUNLOAD, "FS_NOUNLOAD"}, {0x80000000u, "FS_LABEL"}};
  static Word const drives[] = {{FS_3490, "FS_3490"},       {FS_3590, "FS_3590"},     {FS_3590E, "FS_3590E"},
                                {FS_DLT, "FS_DLT"},         {FS_DLT4000, "FS_DLT4000"}, {FS_DLT7000, "FS_DLT7000"},
                                {FS_DLT8000, "FS_DLT8000"}, {FS_SDLT600, "FS_SDLT600"}, {FS_LTO, "FS_LTO"},
                                {FS_LTO2, "FS_LTO2"},       {FS_LTO3, "FS_LTO3"},     {FS_3592, "FS_3592"}};
  unsigned const word = static_cast<unsigned>(options);
  std::string out;
  auto put = [&out](char const* name) {
    if (!out.empty()) out += '|';
    out += name;
  };
  auto field = [&](Word const* table, size_t n, unsigned mask) {
    unsigned const v = word & mask;
    if (v == 0) return;
    for (size_t i = 0; i < n; ++i)
      if (table[i].value == v) return put(table[i].name);
    put("unknown");
  };
  field(kinds, sizeof kinds / sizeof *kinds, FS_KINDMASK);
  field(densities, sizeof densities / sizeof *densities, FS_DENSITYMASK);
  for (Word const& f : flags)
    if (word & f.value) put(f.name);
  field(drives, sizeof drives / sizeof *drives, FS_DRIVEMASK);
  copyText(out, text, length);
}

void fs_rrc_(int& status, char* text, int const& length) {
  status = t_lastStatus;
  copyText(t_lastText, text, length);
}

void fs_sfailmode_(int const& mode) { g_failMode.store(mode, std::memory_order_relaxed); }

void fs_terminate_(int const& status, char const* name) {
  char text[200];
  fs_errmsg_(status, text, sizeof text);
  Message::fatal("FS_terminate", 0, "%s: %s", name ? name : "", text);
}

void fs_threadsafe_(int const& flag) {
  if (flag) {
    if (g_mutexOn.load()) return;
    int rc = 0;
    if (g_faultKind.load() == FS_FAULT_MUTEXINIT)
      rc = EAGAIN;
    else
      rc = pthread_mutex_init(&g_mutex, nullptr);
    if (rc != 0) Message::fatal("FS_threadsafe", 0, "Could not init the mutex.");
    g_mutexOn.store(true);
  } else {
    if (!g_mutexOn.load()) return;
    // A mutex that some thread holds cannot go; it stays on.
    if (pthread_mutex_destroy(&g_mutex) != 0) {
      Message::error("FS_threadsafe", 0, "Could not destroy the mutex.");
      return;
    }
    g_mutexOn.store(false);
  }
}

void fs_tlock_() {
  if (t_depth == 0 && g_mutexOn.load(std::memory_order_acquire)) {
    int const rc = g_faultKind.load(std::memory_order_relaxed) == FS_FAULT_MUTEXLOCK ? EINVAL
                                                                                      : pthread_mutex_lock(&g_mutex);
    if (rc != 0) Message::fatal("FS_tlock", 0, "Could not lock the mutex.");
    t_holds = true;
  }
  ++t_depth;
}

void fs_tunlock_() {
  if (t_depth == 0) return;
  if (--t_depth == 0 && t_holds) {
    t_holds = false;
    pthread_mutex_unlock(&g_mutex);
  }
}

int fs_tdepth_() { return t_depth; }

void fs_testfault_(char const* name, int const& kind, int64_t const& limit) {
  g_faultKind.store(FS_FAULT_NONE);
  g_faultName = name ? name : "";
  g_faultLimit = limit;
  g_faultKind.store(kind);
}

void FS_readlocks(int flag) { g_readLocks.store(flag != 0); }
int FS_getrlflag() { return g_readLocks.load() ? 1 : 0; }

void fs_table_(int32_t& table) {
  fs_internal::TableLock lock;
  int32_t root;
  ss_init_(root);
  int32_t type = 0;
  ss_gettype_(root, 2, type);
  ss_getnth_(root, 2, table);
  if (type == SS_STRUCT && table != 0) return;
  int32_t const types[] = {SS_INT};
  ss_defnth_(table, root, 2, 1, types);
}
