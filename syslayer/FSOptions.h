#ifndef SYSLAYER_FSOPTIONS_H
#define SYSLAYER_FSOPTIONS_H

// Option words of the record file service. A word is the kind of file in its
// low three bits, a density value in the next three, a tape drive value in
// the bits of FS_DRIVEMASK, and single-bit flags in the rest. So
// FS_TAPE | FS_READONLY | FS_NOLABEL is 3076 and a byte-addressed file is 2.

enum {
  // Kind of file (values of FS_KINDMASK).
  FS_KINDMASK = 0x7,
  FS_FORTRAN = 1,  // record file, as FS_DISK
  FS_C = 2,        // byte-addressed
  FS_DISK = 3,     // fixed-length records
  FS_TAPE = 4,
  FS_TIMAGE = 5,
  FS_VLR = 6,
  FS_BYPASS = 7,   // byte-addressed, as FS_C

  // Density (values of FS_DENSITYMASK); recorded, drives choose their own.
  FS_DENSITYMASK = 0x38,
  FS_800 = 0x08,
  FS_1600 = 0x10,
  FS_6250 = 0x18,
  FS_CARTRIDGE = 0x20,
  FS_LODENSITY = 0x28,
  FS_HIDENSITY = 0x30,
  FS_SQUARE = 0x38,

  // Disposition.
  FS_CREATE = 0x40,     // a new file, replacing one of that name
  FS_DELETE = 0x80,     // removed at close
  FS_STATUS = 0x100,    // an old file (the default without FS_CREATE)
  FS_KEEP = 0x200,      // kept at close, whatever FS_DELETE says
  FS_READONLY = 0x400,
  // Tape handling.
  FS_NOLABEL = 0x800,   // labels come through as blocks
  // Kind of file, flags.
  FS_ZERO = 0x1000,     // with FS_CREATE: the file starts as `size` zero bytes
  // Transfer.
  FS_SYNC = 0x2000,     // writes reach the disk before they return
  FS_ASYNC = 0x4000,
  FS_OVERRUN = 0x8000,
  FS_NORETRY = 0x10000,
  FS_NOHEADER = 0x20000,  // with FS_DISK: records are text lines
  FS_ROUND = 0x40000,
  // Disk areas, also the kind-of-file flags of that name.
  FS_SCR = 0x100000,
  FS_DATA = 0x200000,
  FS_SPOOL = 0x400000,
  FS_LOCK = 0x1000000,     // a write lock taken at open
  FS_NOEXTEND = 0x2000000, // writes past the end are refused
  FS_NOREWIND = 0x8000000,
  FS_NOUNLOAD = 0x10000000,
  FS_LABEL = static_cast<int>(0x80000000u),

  // Tape drives (values of FS_DRIVEMASK).
  FS_DRIVEMASK = 0x64880000,
  FS_3490 = 0x20000000,
  FS_3590 = 0x40000000,
  FS_3590E = 0x60000000,
  FS_DLT = 0x4800000,
  FS_DLT4000 = 0x24000000,
  FS_DLT7000 = 0x44000000,
  FS_DLT8000 = 0x4080000,
  FS_SDLT600 = 0x64800000,
  FS_LTO = 0x60080000,
  FS_LTO2 = 0x60800000,
  FS_LTO3 = 0x64000000,
  FS_3592 = 0x20080000
};

#endif
