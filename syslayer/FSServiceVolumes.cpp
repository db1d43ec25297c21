// Multi-volume files of the record file service: the header that names the
// volumes, and open files that move from one volume to the next.

#include <sys/stat.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "syslayer/FSService.h"
#include "syslayer/FSServiceInternal.h"
#include "syslayer/SSHeap.h"

using fs_internal::Entry;
using fs_internal::TableLock;

namespace {

char const kMagic[] = "RONDO MULTIVOLUME ";
// A header is a short list; anything bigger is not one.
int64_t const kMaxHeader = 1 << 20;

std::string besideHeader(std::string const& header, std::string const& volume) {
  if (!volume.empty() && volume[0] == '/') return volume;
  size_t const slash = header.rfind('/');
  return slash == std::string::npos ? volume : header.substr(0, slash + 1) + volume;
}

// Reads the volume names of a header (as written, not resolved).
int readHeader(char const* routine, std::string const& name, std::vector<std::string>& volumes) {
  volumes.clear();
  int id = 0, status = 0;
  fs_open_(name.c_str(), FS_C | FS_READONLY, 1, 0, 0, id, status);
  if (status != FS_GOOD) {
    struct stat st;
    return ::stat(name.c_str(), &st) != 0 ? fs_internal::fail(routine, FS_NOTEXIST, name) : status;
  }
  std::string text;
  char buf[4096];
  for (;;) {
    int got = 0;
    fs_read_(id, buf, sizeof buf, got, status);
    text.append(buf, static_cast<size_t>(got));
    if (status != FS_GOOD || static_cast<int64_t>(text.size()) > kMaxHeader) break;
  }
  int closed = 0;
  fs_close_(id, closed);
  if (status != FS_EOF) return status == FS_GOOD ? fs_internal::fail(routine, FS_BADHEADER, name) : status;
  // The count in the first line guards against a header cut short.
  size_t const first = text.find('\n');
  long n = -1;
  char tail = 0;
  if (first == std::string::npos || text.compare(0, sizeof kMagic - 1, kMagic) != 0 ||
      std::sscanf(text.c_str() + sizeof kMagic - 1, "%ld%c", &n, &tail) != 2 || tail != '\n' || n < 0)
    return fs_internal::fail(routine, FS_BADHEADER, name);
  for (size_t at = first + 1; at < text.size();) {
    size_t const end = text.find('\n', at);
    if (end == std::string::npos || end == at) return fs_internal::fail(routine, FS_BADHEADER, name);
    volumes.push_back(text.substr(at, end - at));
    at = end + 1;
  }
  if (static_cast<long>(volumes.size()) != n) return fs_internal::fail(routine, FS_BADHEADER, name);
  return FS_GOOD;
}

int writeHeader(char const* routine, std::string const& name, std::vector<std::string> const& volumes) {
  std::string text = kMagic + std::to_string(volumes.size()) + "\n";
  for (std::string const& v : volumes) {
    int ok = 0;
    fs_chkname_(v.c_str(), ok);
    if (ok != FS_GOOD) return fs_internal::fail(routine, FS_BADARG, v);
    text += v + "\n";
  }
  int id = 0, status = 0;
  fs_open_(name.c_str(), FS_C | FS_CREATE, 1, 0, 0, id, status);
  if (status != FS_GOOD) return status;
  int put = 0;
  fs_write_(id, text.data(), static_cast<int>(text.size()), put, status);
  int closed = 0;
  fs_close_(id, closed);
  return status != FS_GOOD ? status : closed;
}

}  // namespace

void fs_writemvh_(char const* name, char const* const* volumes, int const& count, int& status) {
  std::string const header = name ? name : "";
  if (fs_internal::remoteRefused("FS_writemvh", name, status)) return;
  if (header.empty() || count < 0 || (count > 0 && volumes == nullptr)) {
    status = fs_internal::fail("FS_writemvh", FS_BADARG, header);
    return;
  }
  std::vector<std::string> list;
  for (int k = 0; k < count; ++k) list.push_back(volumes[k] ? volumes[k] : "");
  status = writeHeader("FS_writemvh", header, list);
}

void fs_mvex_(char const* name, char const* volume, int& status) {
  if (fs_internal::remoteRefused("FS_mvex", name, status)) return;
  std::vector<std::string> list;
  if ((status = readHeader("FS_mvex", name ? name : "", list)) != FS_GOOD) return;
  list.push_back(volume ? volume : "");
  status = writeHeader("FS_mvex", name, list);
}

void fs_mvexist_(char const* name, int& exists, int& nVolumes, int& status) {
  exists = 0;
  nVolumes = 0;
  if (fs_internal::remoteRefused("FS_mvexist", name, status)) return;
  std::vector<std::string> list;
  if ((status = readHeader("FS_mvexist", name ? name : "", list)) != FS_GOOD) return;
  nVolumes = static_cast<int>(list.size());
  exists = 1;
  struct stat st;
  for (std::string const& v : list)
    if (::stat(besideHeader(name, v).c_str(), &st) != 0) exists = 0;
}

int FS_dvopen(char const* name, int volume, int options, int recordLength, int* id) {
  *id = 0;
  int status = 0;
  if (fs_internal::remoteRefused("FS_dvopen", name, status)) return status;
  std::vector<std::string> list;
  if ((status = readHeader("FS_dvopen", name ? name : "", list)) != FS_GOOD) return status;
  int const kind = options & FS_KINDMASK;
  bool const records = (kind == FS_DISK || kind == FS_FORTRAN) && !(options & FS_NOHEADER);
  bool const bytes = kind == FS_C || kind == FS_BYPASS || records;
  if (volume < 1 || volume > static_cast<int>(list.size()) || !bytes || (options & FS_CREATE))
    return fs_internal::fail("FS_dvopen", FS_BADARG, name);
  for (std::string& v : list) v = besideHeader(name, v);
  fs_open_(list[static_cast<size_t>(volume - 1)].c_str(), options, recordLength, 0, 0, *id, status);
  if (status != FS_GOOD) return status;
  TableLock lock;
  Entry* e = fs_internal::find(*id);
  e->volume = volume;
  e->volumes = list;
  return FS_GOOD;
}

void fs_chgvol_(int const& id, int const& volume, int& status) {
  TableLock lock;
  if ((status = fs_chkid_(id, "FS_chgvol", 9)) != FS_GOOD) return;
  Entry& e = *fs_internal::find(id);
  if (e.volume == 0 || volume < 1 || volume > static_cast<int>(e.volumes.size())) {
    status = fs_internal::fail("FS_chgvol", FS_BADARG, e.name);
    return;
  }
  std::string const& path = e.volumes[static_cast<size_t>(volume - 1)];
  if ((status = fs_internal::reopen(e, path, "FS_chgvol")) != FS_GOOD) return;
  e.name = path;
  e.volume = volume;
  e.position = 1;
  ss_puttext_(e.record, 1, path.data(), static_cast<int32_t>(path.size()));
}

int FS_whichv(int id) {
  TableLock lock;
  if (fs_chkid_(id, "FS_whichv", 9) != FS_GOOD) return 0;
  return fs_internal::find(id)->volume;
}
