#ifndef REMOTE_REMOTETESTING_H
#define REMOTE_REMOTETESTING_H

// Test helpers of the channels and the portal (tests only): a fixture that
// keeps reports and ends a hung test by an alarm, and peers written with
// plain POSIX sockets, independent of Socket, so that what goes over the
// wire can be checked byte for byte.

#include <arpa/inet.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/ExceptionErrorHandler.h"
#include "foundation/RaiseError.h"
#include "foundation/TestFailure.h"
#include "foundation/UtlExcept.h"
#include "foundation/vHandle.h"
#include "remote/CommChan.h"
#include "remote/CommChanAddress.h"

namespace remote_testing {

using Bytes = std::vector<unsigned char>;

// Raises like the default handlers, without printed reports, and keeps the
// error and info reports as "label: text".
class RecordingHandler : public ExceptionErrorHandler {
 public:
  std::vector<std::string> infos;
  std::vector<std::string> errors;

 protected:
  void doInfo(char const* label, int, char const* text) override { infos.push_back(std::string(label) + ": " + text); }
  void doError(char const* label, int, char const* text) override {
    errors.push_back(std::string(label) + ": " + text);
  }
};

// Every test of these programs talks to peers that might not answer: an
// alarm ends a test that hangs instead of letting it wait for ever.
class RemoteTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ::signal(SIGPIPE, SIG_IGN);
    ::alarm(120);
    RaiseError::getInstance()->install(&m_handler);
  }
  void TearDown() override {
    RaiseError::getInstance()->uninstall(&m_handler);
    ::alarm(0);
  }
  std::vector<std::string>& infos() { return m_handler.infos; }
  std::vector<std::string>& errors() { return m_handler.errors; }

 private:
  RecordingHandler m_handler;
};

inline bool writeAll(int fd, void const* data, size_t n) {
  char const* p = static_cast<char const*>(data);
  while (n > 0) {
    ssize_t const r = ::send(fd, p, n, MSG_NOSIGNAL);
    if (r <= 0) return false;
    p += r;
    n -= static_cast<size_t>(r);
  }
  return true;
}

inline bool writeAll(int fd, Bytes const& bytes) { return writeAll(fd, bytes.data(), bytes.size()); }

inline bool readAll(int fd, void* data, size_t n) {
  char* p = static_cast<char*>(data);
  while (n > 0) {
    ssize_t const r = ::recv(fd, p, n, 0);
    if (r <= 0) return false;
    p += r;
    n -= static_cast<size_t>(r);
  }
  return true;
}

inline Bytes readBytes(int fd, size_t n) {
  Bytes b(n);
  if (!readAll(fd, b.data(), n)) b.clear();
  return b;
}

// A TCP connection to this host's port, or -1.
inline int rawConnectTcp(int port) {
  int const fd = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in a{};
  a.sin_family = AF_INET;
  a.sin_port = htons(static_cast<uint16_t>(port));
  a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (::connect(fd, reinterpret_cast<sockaddr*>(&a), sizeof a) != 0) {
    ::close(fd);
    return -1;
  }
  return fd;
}

// A listening TCP socket on a free loopback port.
inline int rawListenTcp(int& port, int backlog = 5) {
  int const fd = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in a{};
  a.sin_family = AF_INET;
  a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t n = sizeof a;
  if (::bind(fd, reinterpret_cast<sockaddr*>(&a), sizeof a) != 0 || ::listen(fd, backlog) != 0 ||
      ::getsockname(fd, reinterpret_cast<sockaddr*>(&a), &n) != 0) {
    ::close(fd);
    return -1;
  }
  port = ntohs(a.sin_port);
  return fd;
}

// A port that nobody listens on (taken, then given back).
inline int closedPort() {
  int port = 0;
  int const fd = rawListenTcp(port);
  ::close(fd);
  return port;
}

inline int rawConnectLocal(std::string const& path) {
  int const fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un a{};
  a.sun_family = AF_UNIX;
  std::strncpy(a.sun_path, path.c_str(), sizeof a.sun_path - 1);
  if (::connect(fd, reinterpret_cast<sockaddr*>(&a), sizeof a) != 0) {
    ::close(fd);
    return -1;
  }
  return fd;
}

// The channel magic as this host writes it, and as the other order does.
inline Bytes nativeMagic() { return Bytes{0xCE, 0xFA, 0xAD, 0xDE}; }
inline Bytes foreignMagic() { return Bytes{0xDE, 0xAD, 0xFA, 0xCE}; }

// The path of a local channel.
inline std::string localPath(vHandle<CommChan> const& channel) {
  std::unique_ptr<CommChanAddress> address(channel->getAddress());
  return address->getFilename().c_str();
}

inline std::string testServerPath() { return std::string(RONDO_TEST_BINARY_DIR) + "/bin/testPortalServer"; }

// A fresh empty directory under /tmp, removed with the object.
class TempDir {
 public:
  TempDir() {
    char pattern[] = "/tmp/rondo-remote-XXXXXX";
    char* made = ::mkdtemp(pattern);
    if (made) m_path = made;
  }
  ~TempDir() {
    if (!m_path.empty()) {
      std::string const command = "rm -rf '" + m_path + "'";
      if (std::system(command.c_str()) != 0) {
      }
    }
  }
  std::string file(std::string const& name) const { return m_path + "/" + name; }
  std::string const& path() const { return m_path; }

 private:
  std::string m_path;
};

// Sets an environment variable for the life of the object.
class ScopedEnv {
 public:
  ScopedEnv(char const* name, char const* value) : m_name(name) {
    char const* old = std::getenv(name);
    m_had = old != nullptr;
    if (m_had) m_old = old;
    if (value == nullptr)
      ::unsetenv(name);
    else
      ::setenv(name, value, 1);
  }
  ~ScopedEnv() {
    if (m_had)
      ::setenv(m_name.c_str(), m_old.c_str(), 1);
    else
      ::unsetenv(m_name.c_str());
  }

 private:
  std::string m_name;
  std::string m_old;
  bool m_had = false;
};

}  // namespace remote_testing

#endif
