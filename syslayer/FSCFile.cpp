// Byte-addressed access to record files: FS::iCFile and FS::ioCFile.

#include <algorithm>
#include <cstring>
#include <vector>

#include "foundation/vUtlSize.h"
#include "syslayer/FS.h"
#include "syslayer/FSService.h"

namespace {

// The part of a byte range that falls in records: the first record, where
// the range starts in it, and the record length.
struct Span {
  long long record;
  int offset;
  int recl;
};

Span spanOf(long long position, int recl) {
  long long const at = position - 1;
  return Span{at / recl + 1, static_cast<int>(at % recl), recl};
}

// Reads through partial reads of the first and last records and one plain
// read of the whole records between.
long long recordCRead(FS::iFile& file, long long position, char* out, long long count) {
  int const recl = file.getRecordLength();
  if (!file.isGood() || recl <= 0 || position < 1 || count <= 0) return 0;
  Span s = spanOf(position, recl);
  long long done = 0;
  if (s.offset != 0 || count < recl) {
    int const n = static_cast<int>(std::min<long long>(recl - s.offset, count));
    int const got = file.partialRead(s.offset, n, s.record, s.record, out);
    done += got;
    if (got < n || !file.isGood()) return done;
    ++s.record;
  }
  long long const whole = (count - done) / recl;
  if (whole > 0) {
    long long const got = file.read(s.record, out + done, whole * recl);
    done += got;
    if (got < whole * recl || !file.isGood()) return done;
    s.record += whole;
  }
  if (done < count) {
    int const n = static_cast<int>(count - done);
    done += file.partialRead(0, n, s.record, s.record, out + done);
  }
  return done;
}

// Writes one record of which [offset, offset+n) changes: the rest is read
// first, and what lies past the end of the file reads as zeros.
bool patchRecord(FS::ioFile& file, long long record, int offset, char const* in, int n, std::vector<char>& buf) {
  int const recl = static_cast<int>(buf.size());
  std::fill(buf.begin(), buf.end(), 0);
  // A last record cut short counts: its bytes are kept.
  int64_t size = 0;
  int status = FS_GOOD;
  fs_getinfo_(file.getId(), FS_INFO_SIZE, size, status);
  bool const there = file.getType() == FS::TextRecordFile ? record <= file.getNRecords()
                                                          : status == FS_GOOD && (record - 1) * recl < size;
  if (there && file.isGood()) {
    file.read(record, buf.data(), recl);
    // A last record cut short is completed with zeros.
    if (file.getStatus() == FS_EOF) file.clear();
    if (!file.isGood()) return false;
  }
  std::memcpy(buf.data() + offset, in, static_cast<size_t>(n));
  return file.isGood() && file.write(record, buf.data(), recl) == recl && file.isGood();
}

long long recordCWrite(FS::ioFile& file, long long position, char const* in, long long count) {
  int const recl = file.getRecordLength();
  if (!file.isGood() || recl <= 0 || position < 1 || count <= 0) return 0;
  Span s = spanOf(position, recl);
  std::vector<char> buf(static_cast<size_t>(recl));
  long long done = 0;
  if (s.offset != 0 || count < recl) {
    int const n = static_cast<int>(std::min<long long>(recl - s.offset, count));
    if (!patchRecord(file, s.record, s.offset, in, n, buf)) return done;
    done += n;
    ++s.record;
  }
  long long whole = (count - done) / recl;
  while (whole > 0) {
    // The service takes an int count.
    long long const chunk = std::min<long long>(whole, (1LL << 30) / recl);
    int const bytes = static_cast<int>(chunk * recl);
    int const put = file.write(s.record, in + done, bytes);
    done += put;
    if (put < bytes || !file.isGood()) return done;
    s.record += chunk;
    whole -= chunk;
  }
  if (done < count) {
    int const n = static_cast<int>(count - done);
    if (patchRecord(file, s.record, 0, in + done, n, buf)) done += n;
  }
  return done;
}

bool isByteFile(FS::iFile const& f) { return f.getType() == FS::ByteFile; }

}  // namespace

FS::iCFile::iCFile() {}
FS::iCFile::iCFile(int32_t id, int32_t status, vFilename const& name, FileType type)
    : iFile(id, status, name, type) {}

long long FS::iCFile::cread(long long position, void* buffer, long long count) {
  myIsOK("FS::iCFile::cread");
  vUtl::checkedBytes("FS::iCFile::cread", count, 1);
  if (isByteFile(*this)) return read(position, buffer, count);
  return recordCRead(*this, position, static_cast<char*>(buffer), count);
}

FS::ioCFile::ioCFile() {}
FS::ioCFile::ioCFile(int32_t id, int32_t status, vFilename const& name, FileType type)
    : ioFile(id, status, name, type) {}

long long FS::ioCFile::cread(long long position, void* buffer, long long count) {
  myIsOK("FS::ioCFile::cread");
  vUtl::checkedBytes("FS::ioCFile::cread", count, 1);
  if (isByteFile(*this)) return read(position, buffer, count);
  return recordCRead(*this, position, static_cast<char*>(buffer), count);
}

long long FS::ioCFile::cwrite(long long position, void* buffer, long long count) {
  myIsOK("FS::ioCFile::cwrite");
  vUtl::checkedBytes("FS::ioCFile::cwrite", count, 1);
  char const* in = static_cast<char const*>(buffer);
  if (isByteFile(*this)) {
    long long done = 0;
    while (done < count && isGood()) {
      int const n = static_cast<int>(std::min<long long>(count - done, 1LL << 30));
      int const put = write(done == 0 ? position : 0, in + done, n);
      done += put;
      if (put < n) break;
    }
    return done;
  }
  return recordCWrite(*this, position, in, count);
}
