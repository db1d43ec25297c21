#include "remote/Socket.h"

#include <arpa/inet.h>
#include <errno.h>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>

#include "foundation/Message.h"
#include "foundation/SystemPropertyManager.h"
#include "remote/CommChanAddress.h"
#include "remote/SelectSet.h"

int Socket::sequence = 0;
int Socket::myDefaultBufferSize = 1048576;

namespace {

// The port range of the COMMCHAN USE_PORT_RANGE property, read on first use.
bool rangeChecked = false;
bool rangeGiven = false;
int rangeFirst = 0;
int rangeLast = 0;

[[noreturn]] void systemFailure(char const* label, char const* format, int value) {
  int const e = errno;
  std::perror(label);
  Message::fatal(label, 0, format, value == -1 ? e : value);
}

void setFlag(int fd, int level, int option, int value, char const* label) {
  if (::setsockopt(fd, level, option, &value, sizeof value) != 0) systemFailure(label, "Error %d calling setsockopt()", -1);
}

void setCloseOnExec(int fd, char const* label) {
  int const flags = ::fcntl(fd, F_GETFD);
  if (flags < 0) systemFailure(label, "Error %d from fcntl(F_GETFD).", -1);
  if (::fcntl(fd, F_SETFD, flags | FD_CLOEXEC) < 0) systemFailure(label, "Error %d from fcntl(F_SETFD).", -1);
}

// The user at the other end of a UNIX-domain connection: the one that
// connected, or, seen from the connecting end, the one that listens.
bool peerUser(int fd, uid_t& uid) {
  ucred credentials;
  socklen_t length = sizeof credentials;
  if (::getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &credentials, &length) != 0) return false;
  uid = credentials.uid;
  return true;
}

// The directory of this user's generated local channels,
// "$TMPDIR/rondo-<uid>" (/tmp without TMPDIR). Made with mode 0700; one that
// is there already is taken only if it is a real directory of this user
// that nobody else may write to, so that no one else can put a name in it
// or swap it for a link to a place of theirs.
std::string privateDirectory(char const* label) {
  char const* base = std::getenv("TMPDIR");
  std::string dir = base != nullptr && *base != '\0' ? base : "/tmp";
  dir += "/rondo-" + std::to_string(static_cast<unsigned long>(::geteuid()));
  if (::mkdir(dir.c_str(), S_IRWXU) == 0) {
    // The umask may have taken the owner's own rights.
    if (::chmod(dir.c_str(), S_IRWXU) != 0) systemFailure(label, "Error %d from chmod()", -1);
  } else if (errno != EEXIST) {
    int const e = errno;
    std::perror(label);
    Message::fatal(label, 0, "Error %d making the directory %s.", e, dir.c_str());
  }
  struct stat status;
  if (::lstat(dir.c_str(), &status) != 0 || !S_ISDIR(status.st_mode) || status.st_uid != ::geteuid() ||
      (status.st_mode & (S_IWGRP | S_IWOTH)) != 0)
    Message::fatal(label, 0, "%s is not a private directory of this user: no channel is made in it.", dir.c_str());
  return dir;
}

double monotonicSeconds() {
  timespec t;
  ::clock_gettime(CLOCK_MONOTONIC, &t);
  return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

// Names tried in the private directory before a taken one is given up.
int const kNameAttempts = 100;

}  // namespace

Socket::Socket() : m_sequence(sequence++) {
  m_closed = true;
  m_listenFd = -1;
  m_connFd = -1;
  myInit();
}

Socket::~Socket() {
  try {
    close();
  } catch (...) {
  }
}

void Socket::myInit() {
  // A socket that is made again lets go of what it held first.
  if (!m_closed) close();
  m_socketReceiveTimeout = 0.0f;
  m_socketSendTimeout = 0.0f;
  m_socketMiscTimeout = 0.0f;
  m_port = -1;
  m_listenFd = -1;
  m_connFd = -1;
  m_size = 0;
  m_host = "";
  std::memset(m_path, 0, sizeof m_path);
  m_closed = true;
  m_connected = false;
  m_remote = false;
  m_initiator = false;
  m_magicReceived = 0;
  setSwap(false);
}

void Socket::setDefaultBufferSize(int size) { myDefaultBufferSize = size; }
int Socket::getDefaultBufferSize() { return myDefaultBufferSize; }

void Socket::myCreateSocket(int domain) {
  char const* const label = "Socket::myCreateSocket";
  int const fd = ::socket(domain, SOCK_STREAM, 0);
  if (fd < 0) systemFailure(label, "Error %d calling socket()", -1);
  // Held in the field at once, so that a failure below closes it.
  if (m_initiator)
    m_connFd = fd;
  else
    m_listenFd = fd;
  m_closed = false;
  setCloseOnExec(fd, label);
  if (myDefaultBufferSize > 0) {
    setFlag(fd, SOL_SOCKET, SO_SNDBUF, myDefaultBufferSize, label);
    setFlag(fd, SOL_SOCKET, SO_RCVBUF, myDefaultBufferSize, label);
  }
}

void Socket::mySetLinger(int fd) {
  linger l;
  l.l_onoff = 1;
  l.l_linger = 0;
  if (::setsockopt(fd, SOL_SOCKET, SO_LINGER, &l, sizeof l) != 0)
    systemFailure("Socket::mySetLinger", "Error %d calling setsockopt()", -1);
  setFlag(fd, SOL_SOCKET, SO_KEEPALIVE, 1, "Socket::mySetLinger");
}

CommChan::StatusType Socket::connectRemote(char const* host, int port, float timeout) {
  char const* const label = "Socket::connectRemote";
  myInit();
  m_port = port;
  m_host = host ? host : "";
  m_connected = true;
  m_remote = true;
  m_initiator = true;
  hostent* const entry = ::gethostbyname(m_host.c_str());
  if (entry == nullptr || entry->h_addrtype != AF_INET || entry->h_addr_list[0] == nullptr)
    Message::fatal(label, 0, "gethostbyname error: %d", h_errno);
  sockaddr_in address;
  std::memset(&address, 0, sizeof address);
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<uint16_t>(port));
  std::memcpy(&address.sin_addr, entry->h_addr_list[0], sizeof address.sin_addr);
  myCreateSocket(AF_INET);
  sockaddr* const to = reinterpret_cast<sockaddr*>(&address);

  for (;;) {
    int error = 0;
    if (timeout != 0.0f) {
      int const flags = ::fcntl(m_connFd, F_GETFL);
      if (flags < 0 || ::fcntl(m_connFd, F_SETFL, flags | O_NONBLOCK) < 0)
        systemFailure(label, "socket ioctl error: %d", -1);
      int const rc = ::connect(m_connFd, to, sizeof address);
      if (rc == 0 || errno == EINPROGRESS || errno == EALREADY) {
        if (!waitOn(timeout, WRITE)) {
          ::fcntl(m_connFd, F_SETFL, flags);
          return TIMEOUT;
        }
        socklen_t length = sizeof error;
        if (::getsockopt(m_connFd, SOL_SOCKET, SO_ERROR, &error, &length) != 0) {
          std::perror(label);
          ::fcntl(m_connFd, F_SETFL, flags);
          return BROKEN;
        }
      } else {
        error = errno;
      }
      ::fcntl(m_connFd, F_SETFL, flags);
    } else {
      error = ::connect(m_connFd, to, sizeof address) == 0 ? 0 : errno;
      if (error == EISCONN) error = 0;
    }
    if (error == 0) break;
    if (error == ETIMEDOUT || error == EINTR) continue;
    if (error == ECONNREFUSED) return NOTFOUND;
    errno = error;
    systemFailure(label, "connect error: %d", error);
  }
  mySetLinger(m_connFd);
  mySendMagic();
  return OK;
}

CommChan::StatusType Socket::connectLocal(char const* path) {
  char const* const label = "Socket::connectLocal";
  myInit();
  if (path == nullptr || *path == '\0') Message::fatal(label, 0, "A name must be given for the local connection");
  sockaddr_un address;
  std::memset(&address, 0, sizeof address);
  if (std::strlen(path) >= std::min(sizeof m_path, sizeof address.sun_path))
    Message::fatal(label, 0, "The local name %s is too long.", path);
  // A link, a plain file or another user's socket at the name is not the
  // channel that this user's process made: the name may have been taken
  // before it.
  struct stat status;
  if (::lstat(path, &status) == 0 && (!S_ISSOCK(status.st_mode) || status.st_uid != ::geteuid()))
    Message::fatal(label, 0, "%s is not a channel of this user: it is not connected to.", path);
  std::strcpy(m_path, path);
  std::strcpy(address.sun_path, path);
  address.sun_family = AF_UNIX;
  m_connected = true;
  m_initiator = true;
  myCreateSocket(AF_UNIX);
  for (;;) {
    if (::connect(m_connFd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0) break;
    if (errno == EINTR || errno == ETIMEDOUT) continue;
    // Reported under the remote name, as callers have always seen it.
    systemFailure("Socket::connectRemote", "Error %d from connect", -1);
  }
  // Whoever listens must be this user too, whatever the name looked like.
  uid_t owner = static_cast<uid_t>(-1);
  if (!peerUser(m_connFd, owner) || owner != ::geteuid()) {
    close();
    Message::fatal(label, 0, "%s is served by user %d, not by this user: the connection is refused.", path,
                   static_cast<int>(owner));
  }
  return OK;
}

CommChan::StatusType Socket::createLocal(char const* path) {
  char const* const label = "Socket::createLocal";
  myInit();
  sockaddr_un address;
  std::memset(&address, 0, sizeof address);
  bool const generated = path == nullptr || *path == '\0';
  std::string const dir = generated ? privateDirectory(label) : std::string();
  if (!generated && std::strlen(path) >= std::min(sizeof m_path, sizeof address.sun_path))
    Message::fatal(label, 0, "The local name %s is too long.", path);
  myCreateSocket(AF_UNIX);
  for (int attempt = 1;; ++attempt) {
    if (generated) {
      int const n = std::snprintf(address.sun_path, sizeof address.sun_path, "%s/Socket_%d.%d", dir.c_str(),
                                  static_cast<int>(::getpid()), m_sequence);
      if (n < 0 || static_cast<size_t>(n) >= std::min(sizeof m_path, sizeof address.sun_path))
        Message::fatal(label, 0, "The local name %s is too long.", dir.c_str());
    } else {
      std::strcpy(address.sun_path, path);
    }
    address.sun_family = AF_UNIX;
    // bind makes the name itself: it follows no link and takes no name
    // that is there already.
    if (::bind(m_listenFd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0) break;
    int const e = errno;
    // In the private directory a taken name is a leftover of this user's:
    // the next number is as good.
    if (generated && e == EADDRINUSE && attempt < kNameAttempts) {
      m_sequence = sequence++;
      continue;
    }
    std::strcpy(m_path, address.sun_path);
    std::cout << "Socket::createLocal-bind error " << e << std::endl;
    // The path is someone else's: closing must not remove it, and the
    // channel, which listens nowhere, says so at its first use.
    ::close(m_listenFd);
    m_listenFd = -1;
    m_closed = true;
    if (e == EADDRINUSE) return INUSE;
    errno = e;
    systemFailure(label, "Error %d from bind()", e);
  }
  std::strcpy(m_path, address.sun_path);
  // Only the owner may connect, whatever the umask: the mode is set while
  // nobody can connect yet, before listen.
  if (::chmod(m_path, S_IRUSR | S_IWUSR) != 0) {
    int const e = errno;
    close();
    errno = e;
    systemFailure(label, "Error %d from chmod()", e);
  }
  if (::listen(m_listenFd, 5) != 0) systemFailure(label, "Error %d from listen()", -1);
  return OK;
}

CommChan::StatusType Socket::createRemote(int& port) {
  char const* const label = "Socket::createRemote";
  myInit();
  m_remote = true;
  sockaddr_in address;
  std::memset(&address, 0, sizeof address);
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_ANY);
  address.sin_port = htons(static_cast<uint16_t>(port));
  myCreateSocket(AF_INET);
  StatusType const s = myBind(port, &address);
  if (s != OK) return s;
  if (::listen(m_listenFd, 5) != 0) systemFailure(label, "Error %d calling listen()", -1);
  setFlag(m_listenFd, SOL_SOCKET, SO_KEEPALIVE, 1, label);
  m_port = port;
  return OK;
}

CommChan::StatusType Socket::myBind(int& port, void* where) {
  char const* const label = "Socket::myBind";
  if (!rangeChecked) {
    if (SystemPropertyManager::hasSystemProperty("COMMCHAN", "USE_PORT_RANGE")) {
      SystemProperty const p = SystemPropertyManager::getSystemProperty("COMMCHAN", "USE_PORT_RANGE");
      int const first = p.getInt32Value(0);
      int const last = p.getInt32Value(1);
      if (first < 1025 || last < 1025 || first > last)
        Message::fatal(label, 0, "Invalid port range specified (%d:%d)!", first, last);
      rangeFirst = first;
      rangeLast = last;
      rangeGiven = true;
    }
    rangeChecked = true;
  }
  sockaddr_in* const address = static_cast<sockaddr_in*>(where);
  sockaddr* const raw = reinterpret_cast<sockaddr*>(address);
  if (port == 0 && rangeGiven) {
    for (int p = rangeFirst; p <= rangeLast; ++p) {
      address->sin_port = htons(static_cast<uint16_t>(p));
      if (::bind(m_listenFd, raw, sizeof *address) == 0) {
        port = p;
        setFlag(m_listenFd, SOL_SOCKET, SO_REUSEADDR, 1, label);
        return OK;
      }
    }
    Message::fatal(label, 0, "No free ports available in the range %d to %d!", rangeFirst, rangeLast);
  }
  bool const chosen = port == 0;
  if (!chosen) setFlag(m_listenFd, SOL_SOCKET, SO_REUSEADDR, 1, label);
  if (::bind(m_listenFd, raw, sizeof *address) != 0) {
    int const e = errno;
    std::cout << "Socket::myBind " << e << std::endl;
    if (e == EADDRINUSE) return INUSE;
    close();
    errno = e;
    systemFailure("Socket::myBind", "Error %d calling bind()", e);
  }
  if (chosen) {
    sockaddr_in bound;
    socklen_t length = sizeof bound;
    if (::getsockname(m_listenFd, reinterpret_cast<sockaddr*>(&bound), &length) != 0)
      systemFailure(label, "Error %d calling getsockname()", -1);
    port = ntohs(bound.sin_port);
  }
  return OK;
}

CommChan::StatusType Socket::accept() {
  char const* const label = "Socket::accept";
  // A channel that listens nowhere (its path was taken) accepts nobody.
  if (m_closed || m_listenFd < 0) return CLOSED;
  if (m_connected && m_connFd >= 0 && m_connFd != m_listenFd) {
    ::shutdown(m_connFd, SHUT_RDWR);
    ::close(m_connFd);
    m_connFd = -1;
    m_connected = false;
  }
  m_magicReceived = 0;
  setSwap(false);
  // Refused peers do not lengthen the wait.
  double const deadline = monotonicSeconds() + m_socketMiscTimeout;
  int fd;
  for (;;) {
    if (m_socketMiscTimeout != 0.0f) {
      float wait = m_socketMiscTimeout;
      if (wait > 0.0f) wait = std::max(0.0f, static_cast<float>(deadline - monotonicSeconds()));
      if (!waitOn(wait, READ)) return TIMEOUT;
    }
    do {
      fd = ::accept(m_listenFd, nullptr, nullptr);
    } while (fd < 0 && errno == EINTR);
    if (fd < 0) systemFailure(label, "Error %d calling accept()", -1);
    if (m_remote) break;
    // On this host a peer of another user is turned away, should it have
    // got past the modes of the path.
    uid_t peer = static_cast<uid_t>(-1);
    if (peerUser(fd, peer) && peer == ::geteuid()) break;
    ::close(fd);
    Message::info(label, 0, "Refused a connection to %s from user %d.", m_path, static_cast<int>(peer));
  }
  m_connFd = fd;
  m_connected = true;
  setCloseOnExec(fd, label);
  if (!m_remote) return OK;
  mySetLinger(fd);
  mySendMagic();
  return myReadMagic();
}

void Socket::close() {
  if (m_closed) return;
  m_closed = true;
  if (m_connFd >= 0 && m_connFd != m_listenFd) {
    ::shutdown(m_connFd, SHUT_RDWR);
    ::close(m_connFd);
  }
  bool const listened = m_listenFd >= 0;
  if (listened) ::close(m_listenFd);
  if (!m_remote && !m_initiator && listened && m_path[0] != '\0') ::unlink(m_path);
  m_connFd = -1;
  m_listenFd = -1;
  m_connected = false;
}

void Socket::setSize(int size) {
  char const* const label = "Socket::setSize";
  int const fd = getChannel();
  if (::setsockopt(fd, SOL_SOCKET, SO_SNDBUF, &size, sizeof size) != 0) {
    int const e = errno;
    std::perror(label);
    Message::fatal(label, 0, "Error %d calling setsockopt(SO_SNDBUF) with size %d", e, size);
  }
  if (::setsockopt(fd, SOL_SOCKET, SO_RCVBUF, &size, sizeof size) != 0) {
    int const e = errno;
    std::perror(label);
    Message::fatal(label, 0, "Error %d calling setsockopt(SO_RCVBUF) with size %d", e, size);
  }
  m_size = size;
}

int Socket::getSize() {
  if (m_size != 0) return m_size;
  int const fd = getChannel();
  int send = 0;
  socklen_t length = sizeof send;
  if (::getsockopt(fd, SOL_SOCKET, SO_SNDBUF, &send, &length) != 0)
    systemFailure("Socket::getSize", "Error %d calling getsockopt(SO_SNDBUF)", -1);
  // The receive side is set to what the send side holds rather than read:
  // the smaller of the two is what one call can count on.
  int receive = send;
  if (::setsockopt(fd, SOL_SOCKET, SO_RCVBUF, &receive, sizeof receive) != 0)
    std::perror("Socket::getSize - setsockopt(SO_RCVBUF)");
  return std::min(send, receive);
}

vString Socket::getName() const {
  char text[256];
  if (m_remote)
    std::snprintf(text, sizeof text, "Socket %d (TCP %s:%d)", m_sequence, m_host.c_str(), m_port);
  else
    std::snprintf(text, sizeof text, "Socket %d (local %s)", m_sequence, m_path);
  return vString(text);
}

CommChanAddress* Socket::getAddress() const {
  if (m_remote) return new CommChanAddress(m_port, m_host.isBlank() ? nullptr : &m_host);
  return new CommChanAddress(vString(m_path));
}

bool Socket::waitOn(float timeout, WaitType type) {
  SelectSet set(type);
  set.add(getChannel());
  return set.waitOn(timeout);
}

int Socket::getChannel() const { return m_connected ? m_connFd : m_listenFd; }

void Socket::setReceiveTimeout(float seconds) { m_socketReceiveTimeout = seconds; }
void Socket::setSendTimeout(float seconds) { m_socketSendTimeout = seconds; }
void Socket::setMiscTimeout(float seconds) { m_socketMiscTimeout = seconds; }
