#ifndef SYSLAYER_FS_H
#define SYSLAYER_FS_H

// FS: the system layer's file and host services, as seen from the classes
// above the C boundary: a thin, checked, object-shaped layer over the record
// file service (FSService.h).
//
// A file object holds the service's file id and the status of its last
// call. Failures are not exceptions when they happen: they stay in the
// status until the caller asks isGood() and calls terminate(), or until the
// next operation, which is then fatal:
//   "File-:<name> Last error (<status text>) has not been cleared. <label>"
// labelled with the operation's name ("FS::iFile::read"). clear() resets the
// status. The constructors don't check, and the destructor doesn't close:
// copies share the id, so closing is the caller's business.
//
// Positions count from 1: bytes on a byte-addressed file, records on a
// record file. A read or write at position 0 goes on from the current one.
//
// For tests, fs_testfault_ (FSService.h) makes the service's reads short,
// failing or truncated, so that every reader above can be tried against a
// broken file with a real file.

#include <cstdint>
#include <vector>

#include "foundation/vDate.h"
#include "foundation/vFilename.h"
#include "foundation/vString.h"

namespace FS {

// The values pass straight through to the file service (FSOptions.h).
enum FileType {
  ByteFile = 2,             // byte-addressed: SEG-Y, SEG-D
  RecordFile = 3,           // fixed-length records: offload data
  TextRecordFile = 0x20003, // text lines as 80-byte records: offload header
  TapeFile = 4,             // tape drive or tape image
  VlrFile = 6               // older variable-length records
};
enum DiskArea { DefaultArea = 0, ScratchArea = 0x100000, DataArea = 0x200000, SpoolArea = 0x400000 };
// Bits: what rm may remove, and what mv and cp may replace.
enum DeleteType {
  DeleteFile = 1,       // a file or an empty directory; mv/cp replace an existing file
  DeleteTree = 2,       // a directory with everything in it
  DeleteMissingOK = 4   // rm of a missing name is no failure
};
inline DeleteType operator|(DeleteType a, DeleteType b) {
  return static_cast<DeleteType>(static_cast<int>(a) | static_cast<int>(b));
}
// isLocked(name, ReadLocked): would a read lock be kept off (someone
// writes)? isLocked(name, WriteLocked): would a write lock (any lock held)?
enum LockedType { ReadLocked = 1, WriteLocked = 2 };

class iFile {
 public:
  iFile();
  iFile(int32_t id, int32_t status, vFilename const& name, FileType type);
  virtual ~iFile();

  bool isGood() const { return m_status == 1; }
  // Fatal with the last error's text; label names the caller.
  [[noreturn]] void terminate(char const* label = "FS::iFile::terminate");
  void clear(int status = 1);
  int32_t getStatus() const { return m_status; }
  int32_t getId() const { return m_id; }
  FileType getType() const { return m_type; }
  vFilename const& getName() const { return m_name; }
  // The text of the last error that terminate() reported.
  vString const& getErrorText() const { return m_errorText; }
  bool isOpen() const { return m_id != 0; }

  int getRecordLength();
  void setNoByteSwapping();
  void setKeepOpenMode();
  void lock();
  void unlock();
  // In verbose mode every read and write prints its arguments and status on
  // standard output.
  void setVerboseMode() { m_verbose = true; }
  void clearVerboseMode() { m_verbose = false; }
  bool isVerbose() const { return m_verbose; }
  long long getPosition();
  void setPosition(long long position);
  // Records; on a byte-addressed file the size in bytes.
  long long getNRecords();
  // The owner's login name, "unknown" when the service can't tell.
  vString getOwner();
  // Without a creation time on POSIX files, the last status change.
  vDate getCreatedDate();
  // `length` bytes from `offsetInRecord` (0-based) of each record first to
  // last, packed into buffer. Returns the bytes read.
  int partialRead(int offsetInRecord, int length, long long firstRecord, long long lastRecord, void* buffer);
  // Reads count bytes from position (0: the current one); on a file of
  // records the count is in bytes. Returns the bytes read: fewer at the end
  // of the file, with the status telling why. On a tape the blocks are
  // read one after another into the buffer until a mark or the count ends
  // the read. The options word has no meaning to disk files and is only
  // shown in verbose mode.
  long long read(long long position, void* buffer, long long count, int options = 0);
  void close();

  // The largest count handed to the service in one read; bigger reads are
  // split. Changing it serves tests and tuning.
  static long long getMaxServiceRead();
  static void setMaxServiceRead(long long count);

 protected:
  void myIsOK(char const* label);
  void mySeekFor(long long position);
  void myTrace(char const* what, long long position, long long count, int options, long long done);

  int32_t m_id;
  int32_t m_status;
  bool m_verbose;
  vString m_errorText;
  FileType m_type;
  vFilename m_name;
};

class ioFile : public iFile {
 public:
  ioFile();
  ioFile(int32_t id, int32_t status, vFilename const& name, FileType type);
  // Writes count bytes at position (0: the current one), with the seek rule
  // of read. Returns the bytes written.
  int write(long long position, void const* buffer, int count, int options = 0);
};

// Byte-addressed reading of a record file: the first and last records in
// part, those between whole. On a byte-addressed file it is a plain read.
class iCFile : public iFile {
 public:
  iCFile();
  iCFile(int32_t id, int32_t status, vFilename const& name, FileType type);
  // position counts bytes from 1.
  long long cread(long long position, void* buffer, long long count);
};

class ioCFile : public ioFile {
 public:
  ioCFile();
  ioCFile(int32_t id, int32_t status, vFilename const& name, FileType type);
  long long cread(long long position, void* buffer, long long count);
  // Records written in part are read, changed and written whole.
  long long cwrite(long long position, void* buffer, long long count);
};

// Opened read-only; the options are added to the type.
iFile open(vFilename const& name, FileType type, int options = 0, int recordLength = 0);
iCFile copen(vFilename const& name, FileType type, int options = 0, int recordLength = 0);
// Opened for reading and writing; the file must exist.
ioFile update(vFilename const& name, FileType type, int options = 0, int recordLength = 0);
ioCFile cupdate(vFilename const& name, FileType type, int recordLength = 0);
// A new file, replacing one of that name. size is the expected size in
// bytes (0 for unknown): creation fails when there is less room.
ioFile create(vFilename const& name, FileType type, int options = 0, int recordLength = 0, long long size = 0,
              DiskArea area = DefaultArea);
ioCFile ccreate(vFilename const& name, FileType type, int options = 0, int recordLength = 0, long long size = 0,
                DiskArea area = DefaultArea);

// A directory of the disk area with sizeMB megabytes free; fatal when there
// is none.
vString getSpace(DiskArea area, int sizeMB);
vString scratchDirectory();
// A name in the scratch directory that no file has yet.
vFilename getTempFilename(char const* prefix);

// Returns the service status (1 good). kind 0 none, 1 file, 2 directory,
// 3 other; mode the permission bits; size in kilobytes.
int lsInfo(vFilename const& name, int& kind, int& mode, int& sizeKB);
// True when something (file, directory, device) of that name exists; a
// dangling symbolic link does not count.
bool exists(vFilename const& name);
bool isLocked(vFilename const& name, LockedType type);

// File operations; each returns the service status, 1 when good.
int rm(DeleteType type, vFilename const& name);
int mv(DeleteType type, vFilename const& from, vFilename const& to);
int cp(DeleteType type, vFilename const& from, vFilename const& to);
// With parents true, each missing parent is made in turn, and an existing
// directory is no failure.
int mkdir(vFilename const& name, bool parents);

// The text for a status.
void decode(int status, vString& text);

// Service-wide switches.
void threadSafe(bool on);
void disableReadLocks();
void enableReadLocks();
bool areReadLocksDisabled();

// The cluster that a host belongs to. Catalogs and projects are cached per
// cluster, so that two nodes of one cluster share them. The service reads
// the environment variable FS_CLUSTERS: blank- or comma-separated pairs
// "host=cluster", e.g. "node1=big node2=big". Host names compare exactly. A
// host that is not listed is its own cluster, and a blank host stays blank.
// The variable is read at every call, so a process may change it.
vString getCluster(vString const& host);

// The names matching a shell-style pattern ('*', '?', "[...]", in any
// directory part too), sorted by byte value. Hidden names match only a
// pattern that spells their leading '.'. No match gives an empty list.
void getMatchingFiles(vString const& pattern, std::vector<vFilename>& result);

}  // namespace FS

#endif
