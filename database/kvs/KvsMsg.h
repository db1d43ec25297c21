#pragma once
// The 512-byte command record exchanged with kvsd, and the pure helpers
// that lay it out. Every text field is NUL-filled; numbers in header slots
// are "%10d" text read back with atoi.
#include <cstddef>
#include <cstdint>
#include <string>

namespace kvs {

enum KvsMsgOffset : std::size_t {
  KvsMsgUser = 0, KvsMsgAccount = 16, KvsMsgHost = 32, KvsMsgClientPid = 56,
  KvsMsgServer = 64, KvsMsgBase = 88, KvsMsgPid = 104, KvsMsgClient = 112,
  KvsMsgRequest = 120, KvsMsgCommand = 121, KvsMsgStatus = 122, KvsMsgObject = 123,
  KvsMsgFlags = 124, KvsMsgCopy = 125, KvsMsgVersionMode = 126, KvsMsgMoreFlags = 127,
  KvsMsgHdr1 = 128, KvsMsgHdr2 = 256, KvsMsgText = 384, KvsMsgSize = 512
};

class KvsMsg {
 public:
  unsigned char b[KvsMsgSize] = {};

  void clear();
  // Copies at most size-1 characters so the field always ends in a NUL
  // (max == 0), or at most max characters when the caller gives a limit.
  void setText(std::size_t off, std::size_t size, const std::string& s, std::size_t max = 0);
  std::string text(std::size_t off, std::size_t size) const;
  void setNum(std::size_t off, long v);  // "%10d" in a 16-byte slot
  long num(std::size_t off) const;       // atoi of a 16-byte slot
  void setHdr1(int slot, const std::string& s) { setText(KvsMsgHdr1 + 16 * slot, 16, s); }
  void setHdr2(int slot, const std::string& s) { setText(KvsMsgHdr2 + 16 * slot, 16, s); }
  std::string hdr1(int slot) const { return text(KvsMsgHdr1 + 16 * slot, 16); }
  std::string hdr2(int slot) const { return text(KvsMsgHdr2 + 16 * slot, 16); }
  char command() const { return static_cast<char>(b[KvsMsgCommand]); }
  int status() const { return b[KvsMsgStatus]; }
  char object() const { return static_cast<char>(b[KvsMsgObject]); }
};

// The debug print of a record, as KVSDBG levels above 1 show it.
std::string KvsMsgDump(const KvsMsg& m, const char* title);

}  // namespace kvs
