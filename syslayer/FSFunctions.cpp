// The FS free functions: opening, names and trees, service switches.

#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "foundation/Message.h"
#include "syslayer/FS.h"
#include "syslayer/FSService.h"

namespace {

template <class File>
File openAs(char const* label, vFilename const& name, FS::FileType type, int options, int recordLength,
            long long size, FS::DiskArea area) {
  int32_t id = 0;
  int32_t status = 0;
  fs_open_(name.c_str(), static_cast<int>(type) | options, recordLength, size, static_cast<int>(area), id, status);
  // No later check could tell more than that the host is not served, and
  // the file's status text alone would not name the host.
  if (status == FS_REMOTE) {
    char text[600];
    int last = 0;
    fs_rrc_(last, text, sizeof text);
    Message::fatal(label, 0, "%s", text);
  }
  return File(id, status, name, type);
}

std::atomic<unsigned> g_tempCount{0};

}  // namespace

FS::iFile FS::open(vFilename const& name, FileType type, int options, int recordLength) {
  return openAs<iFile>("FS::open", name, type, options | FS_READONLY, recordLength, 0, DefaultArea);
}

FS::iCFile FS::copen(vFilename const& name, FileType type, int options, int recordLength) {
  return openAs<iCFile>("FS::copen", name, type, options | FS_READONLY, recordLength, 0, DefaultArea);
}

FS::ioFile FS::update(vFilename const& name, FileType type, int options, int recordLength) {
  return openAs<ioFile>("FS::update", name, type, options & ~FS_READONLY, recordLength, 0, DefaultArea);
}

FS::ioCFile FS::cupdate(vFilename const& name, FileType type, int recordLength) {
  return openAs<ioCFile>("FS::cupdate", name, type, 0, recordLength, 0, DefaultArea);
}

FS::ioFile FS::create(vFilename const& name, FileType type, int options, int recordLength, long long size,
                      DiskArea area) {
  return openAs<ioFile>("FS::create", name, type, (options | FS_CREATE) & ~FS_READONLY, recordLength, size, area);
}

FS::ioCFile FS::ccreate(vFilename const& name, FileType type, int options, int recordLength, long long size,
                        DiskArea area) {
  return openAs<ioCFile>("FS::ccreate", name, type, (options | FS_CREATE) & ~FS_READONLY, recordLength, size, area);
}

vString FS::getSpace(DiskArea area, int sizeMB) {
  char dir[4096];
  int status = 0;
  fs_getspace_(static_cast<int>(area), sizeMB, dir, sizeof dir, status);
  if (status != FS_GOOD) {
    vString text;
    decode(status, text);
    Message::fatal("FS::getSpace", 0, "No directory with %d MB free in disk area 0x%X: %s", sizeMB,
                   static_cast<unsigned>(area), text.c_str());
  }
  return dir;
}

vString FS::scratchDirectory() { return getSpace(ScratchArea, 0); }

vFilename FS::getTempFilename(char const* prefix) {
  vString const dir = scratchDirectory();
  unsigned seed = static_cast<unsigned>(std::time(nullptr)) ^ static_cast<unsigned>(::getpid());
  for (;;) {
    unsigned const n = g_tempCount.fetch_add(1);
    vString name;
    name.printf("%s/%s%d_%u_%06x", dir.c_str(), prefix ? prefix : "", static_cast<int>(::getpid()), n,
                (seed = seed * 1103515245u + 12345u + n) & 0xFFFFFF);
    if (!exists(vFilename(name))) return vFilename(name);
  }
}

int FS::lsInfo(vFilename const& name, int& kind, int& mode, int& sizeKB) {
  int status = 0;
  fs_lsinfo_(name.c_str(), kind, mode, sizeKB, status);
  return status;
}

bool FS::exists(vFilename const& name) {
  int flag = 0;
  int status = 0;
  fs_exist_(name.c_str(), flag, status);
  return flag == 1;
}

bool FS::isLocked(vFilename const& name, LockedType type) {
  int flag = 0;
  int status = 0;
  fs_islocked_(name.c_str(), static_cast<int>(type), flag, status);
  return flag == 1;
}

int FS::rm(DeleteType type, vFilename const& name) { return FS_rm(static_cast<int>(type), name.c_str()); }

int FS::mv(DeleteType type, vFilename const& from, vFilename const& to) {
  return FS_mv(static_cast<int>(type), from.c_str(), to.c_str());
}

int FS::cp(DeleteType type, vFilename const& from, vFilename const& to) {
  return FS_cp(static_cast<int>(type), from.c_str(), to.c_str());
}

int FS::mkdir(vFilename const& name, bool parents) { return FS_mkdir(name.c_str(), parents ? 1 : 0); }

void FS::decode(int status, vString& text) {
  char buf[200];
  fs_errmsg_(status, buf, sizeof buf);
  text = buf;
}

void FS::threadSafe(bool on) { FS_threadsafe(on ? 1 : 0); }
void FS::disableReadLocks() { FS_readlocks(0); }
void FS::enableReadLocks() { FS_readlocks(1); }
bool FS::areReadLocksDisabled() { return FS_getrlflag() == 0; }
