#pragma once
// Framing of every write on a kvsd connection: a 16-byte head (payload
// length and sender's pid, both big-endian, then eight zero bytes) and the
// payload, moved in pieces of at most KvsSkChunk bytes.
#include <cstddef>
#include <cstdint>
#include <string>

namespace kvs {

constexpr std::size_t KvsSkHead = 16;
constexpr std::size_t KvsSkChunk = 64000;

extern int RPID;       // the peer's pid from the last frame read
extern int kvsSkDebug;  // debug level from KVSDBG

void KvsPutBE32(unsigned char* p, std::uint32_t v);
std::uint32_t KvsGetBE32(const unsigned char* p);

// Pure layout of a frame head.
void KvsSkEncodeHead(unsigned char head[KvsSkHead], std::uint32_t length, std::uint32_t pid);
// Reads a head; false when the length exceeds max (nothing of the payload
// may then be read).
bool KvsSkDecodeHead(const unsigned char head[KvsSkHead], std::size_t max, std::uint32_t& length,
                     std::uint32_t& pid);

// Returns n, or -1 when a write returns less than 1.
long KvsSkWrite(int fd, const void* buffer, std::size_t n);
// Returns the payload length, or -1 (closed, short, or longer than max).
long KvsSkRead(int fd, void* buffer, std::size_t max);

// Connects to host:port ("local" is this host); -1 on failure. With retry,
// refusals and time-outs are tried again every 10 seconds.
int KvsSkConnect(const std::string& host, int port, int retry);
// A loopback listening socket on port (0 chooses one); -1 on failure.
int KvsSkListen(int port, int* chosen);
// The socket options every kvs socket gets.
void KvsSkAlloc(int fd);

// The debug level KVSDBG asks for: its number, or 1 when it is set to
// something else; 0 when unset.
int KvsSkDebugLevel();

// KVSPORT or a port argument as written: its number when it is digits
// alone (up to INT_MAX), else -1. Callers decide what range is a port.
long KvsSkPortNumber(const char* text);

// What this process tells a server about itself, gathered once.
struct KvsSkIdentity {
  int pid = 0;
  std::string host;     // cut at the first "."
  std::string display;  // host-relative
  std::string logger;
  std::string env;      // at most 400 characters
  std::string user, home;
};
// Gathers the identity on the first call and sets the debug level from
// KVSDBG. A process that cannot say who it is (no host name, no user or
// home) says so on standard error and ends with -1.
const KvsSkIdentity& KvsSkInit();

// The connect failure text for an errno value.
std::string KvsSkErrorText(int err);

}  // namespace kvs
