#include "database/kvs/KvsSocket.h"

#include <arpa/inet.h>
#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <pwd.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

namespace kvs {

int RPID = 0;
int kvsSkDebug = 0;

namespace {

std::string envText(const char* name) {
  const char* v = std::getenv(name);
  return v ? v : "";
}

bool gatherIdentity(KvsSkIdentity& id) {
  id.pid = static_cast<int>(getpid());
  id.host = envText("HOSTNAME");
  if (id.host.empty()) {
    char buf[256] = {};
    if (gethostname(buf, sizeof buf - 1) != 0) return false;
    id.host = buf;
  }
  id.host = id.host.substr(0, id.host.find('.'));
  if (id.host.empty()) return false;
  id.display = envText("DISPLAY");
  if (id.display.empty()) id.display = "local:0.0";
  if (id.display[0] == ':') id.display = id.host + id.display;
  id.logger = envText("LOGGER");
  if (id.logger.empty()) id.logger = id.host;
  id.env = envText("ENV").substr(0, 400);
  id.user = envText("USER");
  id.home = envText("HOME");
  if (id.user.empty() || id.home.empty()) {
    const passwd* entry = getpwuid(getuid());
    if (!entry) return false;
    if (id.user.empty() && entry->pw_name) id.user = entry->pw_name;
    if (id.home.empty() && entry->pw_dir) id.home = entry->pw_dir;
  }
  kvsSkDebug = KvsSkDebugLevel();
  return !id.user.empty() && !id.home.empty();
}

}  // namespace

int KvsSkDebugLevel() {
  std::string dbg = envText("KVSDBG");
  return dbg.empty() ? 0 : (std::atoi(dbg.c_str()) ? std::atoi(dbg.c_str()) : 1);
}

long KvsSkPortNumber(const char* text) {
  if (!*text) return -1;
  long long value = 0;
  for (const char* c = text; *c; ++c) {
    if (!std::isdigit(static_cast<unsigned char>(*c))) return -1;
    value = std::min(value * 10 + (*c - '0'), static_cast<long long>(INT_MAX));
  }
  return static_cast<long>(value);
}

const KvsSkIdentity& KvsSkInit() {
  static const KvsSkIdentity identity = [] {
    KvsSkIdentity id;
    if (!gatherIdentity(id)) {
      std::fputs("INITIALISATION ERROR -Aborting-\n", stderr);
      std::exit(-1);
    }
    return id;
  }();
  return identity;
}

void KvsPutBE32(unsigned char* p, std::uint32_t v) {
  p[0] = static_cast<unsigned char>(v >> 24);
  p[1] = static_cast<unsigned char>(v >> 16);
  p[2] = static_cast<unsigned char>(v >> 8);
  p[3] = static_cast<unsigned char>(v);
}

std::uint32_t KvsGetBE32(const unsigned char* p) {
  return (std::uint32_t(p[0]) << 24) | (std::uint32_t(p[1]) << 16) | (std::uint32_t(p[2]) << 8) | p[3];
}

void KvsSkEncodeHead(unsigned char head[KvsSkHead], std::uint32_t length, std::uint32_t pid) {
  std::memset(head, 0, KvsSkHead);
  KvsPutBE32(head, length);
  KvsPutBE32(head + 4, pid);
}

bool KvsSkDecodeHead(const unsigned char head[KvsSkHead], std::size_t max, std::uint32_t& length,
                     std::uint32_t& pid) {
  length = KvsGetBE32(head);
  pid = KvsGetBE32(head + 4);
  return length <= max;
}

static bool writeAll(int fd, const unsigned char* p, std::size_t n) {
  while (n > 0) {
    std::size_t piece = n < KvsSkChunk ? n : KvsSkChunk;
    ssize_t w = ::send(fd, p, piece, MSG_NOSIGNAL);
    if (w < 1) {
      if (w < 0 && errno == EINTR) continue;
      return false;
    }
    p += w;
    n -= static_cast<std::size_t>(w);
  }
  return true;
}

static bool readAll(int fd, unsigned char* p, std::size_t n) {
  while (n > 0) {
    std::size_t piece = n < KvsSkChunk ? n : KvsSkChunk;
    ssize_t r = ::read(fd, p, piece);
    if (r < 1) {
      if (r < 0 && errno == EINTR) continue;
      return false;
    }
    p += r;
    n -= static_cast<std::size_t>(r);
  }
  return true;
}

long KvsSkWrite(int fd, const void* buffer, std::size_t n) {
  unsigned char head[KvsSkHead];
  KvsSkEncodeHead(head, static_cast<std::uint32_t>(n), static_cast<std::uint32_t>(getpid()));
  // The head goes out with the first piece of the payload, in one call.
  std::size_t first = n < KvsSkChunk ? n : KvsSkChunk;
  iovec iov[2] = {{head, KvsSkHead}, {const_cast<void*>(buffer), first}};
  msghdr msg{};
  msg.msg_iov = iov;
  msg.msg_iovlen = 2;
  ssize_t w;
  do {
    w = ::sendmsg(fd, &msg, MSG_NOSIGNAL);
  } while (w < 0 && errno == EINTR);
  if (w < 1) return -1;
  std::size_t sent = static_cast<std::size_t>(w);
  if (sent < KvsSkHead) {
    if (!writeAll(fd, head + sent, KvsSkHead - sent)) return -1;
    sent = 0;
  } else {
    sent -= KvsSkHead;
  }
  if (!writeAll(fd, static_cast<const unsigned char*>(buffer) + sent, n - sent)) return -1;
  return static_cast<long>(n);
}

long KvsSkRead(int fd, void* buffer, std::size_t max) {
  unsigned char head[KvsSkHead];
  if (!readAll(fd, head, KvsSkHead)) return -1;
  std::uint32_t length, pid;
  bool fits = KvsSkDecodeHead(head, max, length, pid);
  RPID = static_cast<int>(pid);
  if (!fits) {
    if (kvsSkDebug) std::fprintf(stderr, "KvsSkRead___: Buffer too small (%d > %d)\n", int(length), int(max));
    return -1;
  }
  if (!readAll(fd, static_cast<unsigned char*>(buffer), length)) return -1;
  return static_cast<long>(length);
}

void KvsSkAlloc(int fd) {
  int on = 1;
  setsockopt(fd, SOL_SOCKET, SO_KEEPALIVE, &on, sizeof on);
  setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  if (const char* b = std::getenv("SO_BUF")) {
    int size = std::atoi(b);
    if (size > 0) {
      setsockopt(fd, SOL_SOCKET, SO_RCVBUF, &size, sizeof size);
      setsockopt(fd, SOL_SOCKET, SO_SNDBUF, &size, sizeof size);
    }
  }
  linger l{0, 0};
  setsockopt(fd, SOL_SOCKET, SO_LINGER, &l, sizeof l);
}

std::string KvsSkErrorText(int err) {
  switch (err) {
    case EBADF: return "Bad socket name";
    case ENOTSOCK: return "File io used";
    case EAFNOSUPPORT: return "SK type not avail";
    case EADDRINUSE: return "Address in use";
    case EADDRNOTAVAIL: return "Socket not avail.";
    case ENETUNREACH: case EHOSTUNREACH: return "No route to host.";
    case EISCONN: return "SK already conn.";
    case ETIMEDOUT: return "Cnx time-out.";
    case ECONNREFUSED: return "Cnx rejected.";
    default: {
      char t[32];
      std::snprintf(t, sizeof t, "Err %d", err);
      return t;
    }
  }
}

// Host names resolved once per process.
static bool KvsSkCache(const std::string& host, in_addr& out) {
  static std::map<std::string, in_addr> cache;
  std::string name = host == "local" ? "localhost" : host;
  if (inet_aton(name.c_str(), &out)) return true;
  auto it = cache.find(name);
  if (it != cache.end()) {
    out = it->second;
    return true;
  }
  addrinfo hints{};
  hints.ai_family = AF_INET;
  addrinfo* res = nullptr;
  if (getaddrinfo(name.c_str(), nullptr, &hints, &res) != 0 || !res) return false;
  out = reinterpret_cast<sockaddr_in*>(res->ai_addr)->sin_addr;
  freeaddrinfo(res);
  cache[name] = out;
  return true;
}

int KvsSkConnect(const std::string& host, int port, int retry) {
  // htons would cut a larger number to another port.
  if (port < 1 || port > 65535) return -1;
  sockaddr_in sa{};
  sa.sin_family = AF_INET;
  sa.sin_port = htons(static_cast<uint16_t>(port));
  if (!KvsSkCache(host, sa.sin_addr)) return -1;
  for (;;) {
    int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    if (fd < 0) return -1;
    KvsSkAlloc(fd);
    int one = 1;
    setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
    if (::connect(fd, reinterpret_cast<sockaddr*>(&sa), sizeof sa) == 0) return fd;
    int err = errno;
    ::close(fd);
    if (kvsSkDebug) std::fprintf(stderr, "KvsSkConnect: %s\n", KvsSkErrorText(err).c_str());
    if (!retry || (err != ETIMEDOUT && err != ECONNREFUSED)) return -1;
    ::sleep(10);
  }
}

int KvsSkListen(int port, int* chosen) {
  int fd = ::socket(AF_INET, SOCK_STREAM, 0);
  if (fd < 0) return -1;
  KvsSkAlloc(fd);
  sockaddr_in sa{};
  sa.sin_family = AF_INET;
  sa.sin_port = htons(static_cast<uint16_t>(port));
  sa.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t len = sizeof sa;
  if (::bind(fd, reinterpret_cast<sockaddr*>(&sa), sizeof sa) != 0 || ::listen(fd, 16) != 0 ||
      ::getsockname(fd, reinterpret_cast<sockaddr*>(&sa), &len) != 0) {
    ::close(fd);
    return -1;
  }
  if (chosen) *chosen = ntohs(sa.sin_port);
  return fd;
}

}  // namespace kvs
