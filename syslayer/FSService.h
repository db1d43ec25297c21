#ifndef SYSLAYER_FSSERVICE_H
#define SYSLAYER_FSSERVICE_H

// The record file service: the system's file and tape layer below the C
// boundary. Every entry has two forms: fs_xxx_ takes its arguments by
// reference, FS_xxx takes them by value and calls fs_xxx_. Results come back
// as a 32-bit status, FS_GOOD (1) when all went well; a failure never throws
// unless the failure mode says so (fs_sfailmode_).
//
// Files are POSIX files. A file is opened with one option word: the kind of
// file in the low three bits, the rest flags (FSOptions.h). Kinds:
//   FS_C (2)     byte-addressed; positions count bytes from 1.
//   FS_DISK (3)  fixed-length records of the record length, no framing;
//                positions count records from 1. With FS_NOHEADER the records
//                are the lines of a text file: a line reads blank-padded (or
//                cut) to the record length, a record writes as its text
//                without trailing blanks and a line end, and a write at
//                record k drops what followed record k-1.
//   FS_TAPE (4), FS_TIMAGE (5)  a character device is a tape drive and is
//                read one block per read(2); a plain file is a tape image,
//                framed as below.
//   FS_VLR (6)   older variable-length records, framed like a tape image
//                without marks; the physical end is the end of file.
//
// Tape image framing (the SIMH magnetic tape layout): each block is a
// 32-bit little-endian length n, n bytes, and n again. A length of 0 is a
// tape mark (end of file), 0xFFFFFFFE an erase gap (reads as a blank block:
// good status, no bytes), 0xFFFFFFFF the end of medium. The physical end of
// the image is the end of volume as well. fs_writet_ with a count of 0
// writes a tape mark.
//
// Positions and sizes are 64-bit throughout, so files past 2 GB work the same
// on 32-bit hosts.
//
// The service's tables also stand in the ss tree (SSHeap.h): slot 2 of the
// ss root holds a structure whose slot 1 counts the open files, and each
// open file has a structure under it with its name (text), id, options,
// record length and area (integers). fs_table_ gives that structure. The
// service works from its own index of open files, so reads never walk the
// tree.
//
// Thread safety: off by default. fs_threadsafe_(1) makes one service mutex
// that every entry holds around its use of the service's tables; the lock
// nests per thread (fs_tlock_/fs_tunlock_).
//
// Test faults: fs_testfault_ makes reads of chosen files misbehave as a
// broken disk would, so the readers above can be tested against short reads,
// failed reads and truncated files with real files:
//   FS_FAULT_SHORTREAD  every read of the disk delivers at most `limit`
//                       bytes, with a good status (as a pipe or a network
//                       file system may): fs_read_ returns short, while
//                       partial reads, text records and tape blocks read on
//                       until they are whole;
//   FS_FAULT_FAILREAD   bytes from offset `limit` (0-based) on cannot be read:
//                       a read delivers what lies before it and ends with an
//                       I/O error status;
//   FS_FAULT_TRUNCATE   the file looks `limit` bytes long to reads and to
//                       size questions;
//   FS_FAULT_MUTEXINIT, FS_FAULT_MUTEXLOCK  making or locking the service
//                       mutex fails.
// The name selects the files (as given to open); an empty name means all.
// FS_FAULT_NONE ends all faults. Not for production use.

#include <cstdint>

#include "syslayer/FSOptions.h"

// Statuses. Bit 0x800 set means an end of file of some kind.
enum {
  FS_GOOD = 1,
  FS_EOF = 0x800,
  FS_EOD = 0x1000,
  FS_EOV = 0x40000,
  FS_EOFEOV = 0x40800,
  // FS_ERRNO + errno: a failed system call.
  FS_ERRNO = 0x100000,
  // The service's own failures.
  FS_BADID = 0x200001,
  FS_LOCKED = 0x200002,
  FS_BADARG = 0x200003,
  FS_NOTWRITABLE = 0x200004,
  FS_NOEXTENDED = 0x200005,
  FS_BLOCKTOOLONG = 0x200006,
  FS_BADFRAME = 0x200007,
  FS_NOTEXIST = 0x200008,
  FS_NOSPACE = 0x200009,
  FS_BADLABEL = 0x20000A,
  FS_REMOTE = 0x20000B,
  FS_BADHEADER = 0x20000C
};

// Items of fs_getinfo_ and fs_setinfo_.
enum {
  FS_INFO_OPTIONS = 1,     // the option word the file was opened with
  FS_INFO_RECLEN = 2,      // record length (1 on a byte-addressed file)
  FS_INFO_NRECORDS = 3,    // records; bytes on a byte-addressed file
  FS_INFO_SIZE = 4,        // bytes
  FS_INFO_OWNER = 5,       // owner's user id, -1 unknown
  FS_INFO_CREATED = 6,     // seconds since the epoch (status change time)
  FS_INFO_AREA = 7,        // disk area given at open
  FS_INFO_POSITION = 10,   // next position; setting it seeks
  FS_INFO_NSEEKS = 11,     // seeks that moved the position
  FS_INFO_NREADS = 12,     // reads handed to the system
  FS_INFO_NOSWAP = 40,     // 1: deliver bytes exactly as stored
  FS_INFO_KEEPOPEN = 41    // 1: keep-open mode (FS_cclose only gives back the descriptor)
};

// Delete types of fs_rm_, fs_mv_, fs_cp_ (bits).
enum {
  FS_RMFILE = 1,      // a file or an empty directory may go; mv/cp replace an existing file
  FS_RMTREE = 2,      // a directory with all it holds may go, also as a target
  FS_RMMISSINGOK = 4  // rm: a missing name is no failure
};

// Lock types of fs_islocked_.
enum { FS_READLOCK = 1, FS_WRITELOCK = 2 };

enum {
  FS_FAULT_NONE = 0,
  FS_FAULT_SHORTREAD = 1,
  FS_FAULT_FAILREAD = 2,
  FS_FAULT_TRUNCATE = 3,
  FS_FAULT_MUTEXINIT = 4,
  FS_FAULT_MUTEXLOCK = 5
};

// What fs_fstat_ and fs_stat_ tell about a file.
struct FsStat {
  int64_t size;
  int64_t modified;  // seconds since the epoch
  int64_t changed;
  int32_t kind;      // 0 none, 1 file, 2 directory, 3 other
  int32_t mode;      // permission bits
  int32_t uid;
  int32_t isDevice;  // 1 for a character device
};

// ---- open files -------------------------------------------------------
// size: bytes expected (a hint: creation fails when the file system has
// less room); area: a disk area word, recorded.
void fs_open_(char const* name, int const& options, int const& recordLength, int64_t const& size,
              int const& area, int& id, int& status);
void fs_close_(int const& id, int& status);
// Reads count bytes at the current position and moves past them. A short
// read (end of data) returns what there was with FS_EOF. On a tape or a
// variable-length file it reads one block of at most count bytes.
void fs_read_(int const& id, void* buffer, int const& count, int& got, int& status);
void fs_write_(int const& id, void const* buffer, int const& count, int& put, int& status);
// Reads `length` bytes starting `offset` bytes (0-based) into each record
// first..last, packed one after the other. On a byte-addressed file records
// are one byte long unless a record length was given at open.
void fs_partialr_(int const& id, int const& offset, int const& length, int64_t const& first,
                  int64_t const& last, void* buffer, int& got, int& status);
void fs_seekio_(int const& id, int64_t const& position, int& status);
void fs_getinfo_(int const& id, int const& item, int64_t& value, int& status);
void fs_setinfo_(int const& id, int const& item, int64_t const& value, int& status);
void fs_fstat_(int const& id, FsStat& info, int& status);
void fs_trunc_(int const& id, int& status);  // cuts the file at the current position
void fs_lockit_(int const& id, int& status);
void fs_unlockit_(int const& id, int& status);
// Sizes in bytes: fs_setsize_ cuts or extends, fs_zeroex_ only extends
// (with zeros). Disk files open for writing.
void fs_setsize_(int const& id, int64_t const& size, int& status);
void fs_zeroex_(int const& id, int64_t const& size, int& status);
void fs_rsize_(int const& id, int& recordLength, int& status);
// The byte (from 1) where the next transfer starts.
void fs_bpos_(int const& id, int64_t& bytePosition, int& status);
// Waits until what was written is on the disk.
void fs_waitio_(int const& id, int& status);
// flag 1 when another open's lock would keep off a lock of this type on
// this file (FS_READLOCK, FS_WRITELOCK).
void fs_testlock_(int const& id, int const& type, int& flag, int& status);
// Checks that id names an open file; routine is the caller's name for the
// last-result text ("FS_partialr").
int fs_chkid_(int const& id, char const* routine, int const& length);

// ---- tapes, tape images and variable-length files ---------------------
void fs_opent_(char const* name, int const& options, int& id, int& status);
// One block into buffer (at most maxLength bytes); blockSize is the drive's
// block size for fixed-block devices and is not needed for images.
void fs_readt_(int const& id, void* buffer, int const& maxLength, int const& blockSize, int& got, int& status);
void fs_writet_(int const& id, void const* buffer, int const& count, int& status);
void fs_closet_(int const& id, int& status);
void fs_openvlr_(char const* name, int& id, int& status);
void fs_readvlr_(int const& id, void* buffer, int const& maxLength, int& got, int& status);
void fs_writevlr_(int const& id, void const* buffer, int const& count, int& status);
void fs_closevlr_(int const& id, int& status);
// Tape labels: 80 bytes, blank-filled. kind is "VOL1", "HDR1", "HDR2",
// "EOF1" or "EOF2"; value is the volume serial for VOL1 and the owner word
// for HDR1/EOF1 (ignored otherwise). record receives 80 bytes, no zero.
void fs_bansi_(char const* kind, char const* value, char* record, int& status);
// Reads a label of `length` bytes: kind gets its four-letter id, value the
// volume serial (VOL1), file id (HDR1, EOF1) or record format and lengths
// (HDR2, EOF2), trailing blanks dropped; both zero-ended, value of at most
// valueLength-1 characters. FS_BADLABEL for anything else.
void fs_ransi_(char const* record, int const& length, char* kind, char* value, int const& valueLength,
               int& status);

// One block like fs_readt_; blockLength tells the block's whole length, also
// when it is longer than the buffer (FS_BLOCKTOOLONG), so that the caller
// can size its buffer. 0 for a mark or a gap; -1 when a drive does not tell.
void fs_readti_(int const& id, void* buffer, int const& maxLength, int& got, int& blockLength, int& status);

// ---- locks that wait ---------------------------------------------------
// A lock of this type (FS_READLOCK, FS_WRITELOCK) on an open file, waiting up
// to `seconds` while another open holds one that keeps it off (0: one try;
// below 0: no limit). FS_LOCKED when the time runs out.
void fs_alock_(int const& id, int const& type, int const& seconds, int& status);

// ---- multi-volume files --------------------------------------------------
// A multi-volume file is a header file naming its volumes, each an ordinary
// file; names not starting with '/' lie beside the header. The header is
// text: "RONDO MULTIVOLUME <n>" and n lines with a volume name each.
// A header cut short or not of this form is FS_BADHEADER.
// fs_writemvh_ writes (or replaces) the header with `count` volume names.
void fs_writemvh_(char const* name, char const* const* volumes, int const& count, int& status);
// Adds one volume at the end of the set.
void fs_mvex_(char const* name, char const* volume, int& status);
// nVolumes the volumes the header names, exists 1 when the header and all
// its volumes exist. A missing header is FS_NOTEXIST.
void fs_mvexist_(char const* name, int& exists, int& nVolumes, int& status);
// Opens volume `volume` (from 1) of the set as fs_open_ opens a file (byte
// or record files). Reading off the end of a volume that is not the last
// gives FS_EOV; fs_chgvol_ then moves the open file to another volume, from
// its start. FS_whichv tells the volume an open file is on, 0 for a file
// that is not part of a set.
int FS_dvopen(char const* name, int volume, int options, int recordLength, int* id);
void fs_chgvol_(int const& id, int const& volume, int& status);
int FS_whichv(int id);

// ---- keep-open -----------------------------------------------------------
// FS_cclose closes a file, except one in keep-open mode (FS_INFO_KEEPOPEN):
// that one only gives back its descriptor, keeping its id, position and
// place in the tables; its next use opens it again. A file holding a lock
// of its own cannot give it back (FS_LOCKED). FS_copen opens a file, taking
// back a file of that name and options that FS_cclose kept.
int FS_cclose(int id);
int FS_copen(char const* name, int options, int recordLength, int* id);

// ---- nearline and remote names --------------------------------------------
// flag 1 for a name on nearline storage: below one of the directories that
// FS_NEARLINE lists (separated by blanks, commas or colons).
void fs_isnearline_(char const* name, int& flag);
// Remote files ("host:/path") are not supported: the service's entries that
// take a name hand a remote one to fs_rfinit_, which fails with FS_REMOTE
// and a text naming the host.
void fs_rfinit_(char const* name, char const* routine, int& status);

// ---- names and trees ---------------------------------------------------
void fs_exist_(char const* name, int& exists, int& status);
void fs_stat_(char const* name, FsStat& info, int& status);
void fs_lstat_(char const* name, FsStat& info, int& status);
// kind 0 none, 1 file, 2 directory, 3 other; mode the permission bits;
// sizeKB the size in kilobytes, rounded up and capped at 2^31-1.
void fs_lsinfo_(char const* name, int& kind, int& mode, int& sizeKB, int& status);
// A directory of the disk area with sizeMB megabytes free. Areas: 0 the
// current directory; FS_SCR $FS_SCRATCHDIR, else $TMPDIR, else /tmp; FS_DATA
// $FS_DATADIR, else the current directory; FS_SPOOL $FS_SPOOLDIR, else the
// scratch directory. The directory is zero-ended in dir.
void fs_getspace_(int const& area, int const& sizeMB, char* dir, int const& dirLength, int& status);
void fs_mkdir_(char const* name, int const& parents, int& status);
void fs_rm_(int const& type, char const* name, int& status);
void fs_mv_(int const& type, char const* from, char const* to, int& status);
void fs_cp_(int const& type, char const* from, char const* to, int& status);
// flag 1 when a lock of another open would keep a lock of this type off.
void fs_islocked_(char const* name, int const& type, int& flag, int& status);
// Size and free room of the file system holding a directory, in MB.
void fs_totspace_(char const* directory, int64_t& totalMB, int64_t& freeMB, int& status);
// Good when the directory exists and files can be made in it.
void fs_checkdir_(char const* directory, int& status);
// flag 1 for a name on another host ("host:/path").
void fs_isremote_(char const* name, int& flag);
// Good for a usable file name: not empty, no line end, parts of at most
// 255 bytes, at most 4095 in all.
void fs_chkname_(char const* name, int& status);
// Good for an option word with a kind of file and nothing unknown in it.
void fs_chkopts_(int const& options, int& status);
// The cluster of a host, from the FS_CLUSTERS table ("host=cluster" pairs
// separated by blanks or commas); a host not listed is its own cluster.
void fs_getcluster_(char const* host, char* cluster, int const& clusterLength, int& status);

// ---- service state -----------------------------------------------------
// Option words as text: the names joined by '|'; what no name covers
// decodes as "unknown".
void fs_decode_(int const& options, char* text, int const& length);
// A status as text.
void fs_errmsg_(int const& status, char* text, int const& length);
// The last failure on this thread: its status and "routine: text".
void fs_rrc_(int& status, char* text, int const& length);
// 0 (default): failures return their status; 1: a failure is fatal at once.
void fs_sfailmode_(int const& mode);
// Fatal, labelled "FS_terminate": "<name>: <status text>".
[[noreturn]] void fs_terminate_(int const& status, char const* name);
void fs_threadsafe_(int const& flag);
void fs_tlock_();
void fs_tunlock_();
// This thread's nesting depth of fs_tlock_.
int fs_tdepth_();
void fs_testfault_(char const* name, int const& kind, int64_t const& limit);
// The ss structure of the service's tables, made at the first call.
void fs_table_(int32_t& table);

// Read locks: taken on every file opened read-only unless switched off.
// Process-wide, on by default.
void FS_readlocks(int flag);
int FS_getrlflag();

#include "syslayer/FSServiceValue.h"

#endif
