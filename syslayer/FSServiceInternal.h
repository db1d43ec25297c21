#ifndef SYSLAYER_FSSERVICEINTERNAL_H
#define SYSLAYER_FSSERVICEINTERNAL_H

// Shared state of the record file service's source files: the table of open
// files, the table lock, failure recording and the reads that test faults
// reach. Not for use outside the service.

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

#include "syslayer/FSService.h"

namespace fs_internal {

struct Entry {
  int fd = -1;
  int options = 0;
  int kind = 0;            // FS_C, FS_DISK, FS_TAPE or FS_VLR after folding
  bool text = false;       // FS_DISK | FS_NOHEADER
  bool readOnly = true;
  bool device = false;     // a tape drive
  int64_t recl = 1;
  int64_t position = 1;    // next byte or record, from 1; the byte offset + 1 on images
  int area = 0;
  std::string name;
  int64_t nSeeks = 0;
  int64_t nReads = 0;
  bool noSwap = false;
  bool keepOpen = false;
  bool openReadLock = false;
  int lockHeld = 0;        // F_RDLCK, F_WRLCK or 0
  int deviceMarks = 0;     // tape marks read in a row on a drive
  std::vector<int64_t> lineStart;  // text files: where each line starts
  std::vector<int64_t> lineLength; // without the line end
  int32_t record = 0;      // the file's structure in the ss tree
  bool parked = false;     // keep-open: descriptor given back, fd is -1
  int volume = 0;          // multi-volume: this volume, from 1; 0 for none
  std::vector<std::string> volumes;  // the set's volume paths
};

// Holds the service lock (when thread-safe mode is on) for a scope.
class TableLock {
 public:
  TableLock();
  ~TableLock();
  TableLock(TableLock const&) = delete;
  TableLock& operator=(TableLock const&) = delete;
};

// The entry of an open file or null; call with the table lock held.
Entry* find(int id);
// Adds an entry and returns its id.
int add(Entry* entry);
// The id of a file of this name and options that FS_cclose kept; 0 for none.
int findParked(std::string const& name, int options);
// Removes and deletes the entry.
void remove(int id);

// Records a failure for fs_rrc_ and returns its status; in failure mode 1
// it is fatal at once.
int fail(char const* routine, int status, std::string const& subject);
int errnoStatus(int err);

// Reads up to n bytes at a 0-based offset, as the disk (and any test fault)
// allows. Returns the bytes read; atEnd tells that the file ended first, err
// is the errno of a failure (0 for none). One call stands for one read of
// the service.
int64_t readAt(Entry& e, void* buffer, int64_t n, int64_t offset, bool& atEnd, int& err);
// The same, going on after short reads until n bytes, the end or a failure:
// for reads whose callers count on whole records and blocks.
int64_t readFull(Entry& e, void* buffer, int64_t n, int64_t offset, bool& atEnd, int& err);
// Writes all n bytes at a 0-based offset; returns errno or 0.
int writeAt(Entry& e, void const* buffer, int64_t n, int64_t offset);
// The size as reads see it; -1 with err set on failure.
int64_t sizeOf(Entry& e, int& err);

// Opens path for e as its open did (no creation) and takes the locks e
// holds; on success the old descriptor goes (the position stays).
// Returns an FS status.
int reopen(Entry& e, std::string const& path, char const* routine);
// A parked file's descriptor back; an FS status.
int unpark(Entry& e, char const* routine);
// Closes id if it is parked, without opening it again (its file may be
// gone); false when it is not parked.
bool closeParked(int id, int& status);
// What reading off the end gives: FS_EOV on a volume that others follow.
inline int endStatus(Entry const& e) {
  return e.volume > 0 && e.volume < static_cast<int>(e.volumes.size()) ? FS_EOV : FS_EOF;
}
// FS_REMOTE through fs_rfinit_ when name is on another host.
bool remoteRefused(char const* routine, char const* name, int& status);

bool readLocksOn();
// Takes (F_RDLCK, F_WRLCK) or drops (F_UNLCK) an open-file-description lock
// on the whole file without waiting; returns errno or 0.
int setLock(int fd, int type);

}  // namespace fs_internal

// A variable-length file with the caller's options (for writing them).
void fs_internal_openvlr(char const* name, int const& options, int& id, int& status);

#endif
