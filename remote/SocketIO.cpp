// Reading and writing of Socket: the loops over recv and sendmsg, and the
// byte-order magic at the start of a TCP connection.

#include <errno.h>
#include <limits.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <time.h>

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <vector>

#include "foundation/Message.h"
#include "remote/Socket.h"

namespace {

void sleepOneSecond() {
  timespec t{1, 0};
  while (::nanosleep(&t, &t) != 0 && errno == EINTR) {
  }
}

}  // namespace

CommChan::StatusType Socket::sendChar8(char const* data, int count) {
  // A channel closed here (as after a failed exchange) is a transport
  // condition for its user, like a peer that closed.
  if (m_closed) return CLOSED;
  if (!m_connected) {
    StatusType const s = accept();
    if (s != OK) return s;
  }
  int sent = 0;
  return myDoSend(data, myLimitNBytes(count), sent);
}

CommChan::StatusType Socket::receiveChar8(char* data, int count) {
  // A channel closed here (as after a failed exchange) is a transport
  // condition for its user, like a peer that closed.
  if (m_closed) return CLOSED;
  if (!m_connected) {
    StatusType const s = accept();
    if (s != OK) return s;
  }
  if (m_remote && !m_magicReceived) {
    StatusType const s = myReadMagic();
    if (s != OK) return s;
  }
  int read = 0;
  return myDoRead(data, myLimitNBytes(count), read);
}

CommChan::StatusType Socket::myDoRead(char* buffer, int n, int& read) {
  read = 0;
  int waits = 0;
  while (read < n) {
    errno = 0;
    ssize_t const r = ::recv(m_connFd, buffer + read, static_cast<size_t>(n - read), 0);
    if (r > 0) {
      read += static_cast<int>(r);
      continue;
    }
    if (r == 0) return CLOSED;
    int const e = errno;
    if (e == ECONNABORTED || e == ECONNRESET) return CLOSED;
    if (e == 0 || e == EAGAIN || e == ETIMEDOUT) {
      if (++waits > 10) return BROKEN;
      sleepOneSecond();
      continue;
    }
    std::cout << getName().c_str() << " Error " << e << " from recv()" << std::endl;
    return BROKEN;
  }
  return OK;
}

namespace {

// Writes all of the pieces with as few calls as the system allows; the
// rules for each failure are those of a single send.
CommChan::StatusType sendPieces(int fd, iovec* pieces, int nPieces, long long& sent, char const* name) {
  int timedOut = 0;
  int stalls = 0;
  sent = 0;
  int first = 0;
  while (first < nPieces && pieces[first].iov_len == 0) ++first;
  while (first < nPieces) {
    msghdr message{};
    message.msg_iov = pieces + first;
    message.msg_iovlen = static_cast<size_t>(std::min(nPieces - first, IOV_MAX));
    ssize_t const r = ::sendmsg(fd, &message, MSG_NOSIGNAL);
    if (r > 0) {
      sent += r;
      size_t done = static_cast<size_t>(r);
      while (first < nPieces && done >= pieces[first].iov_len) {
        done -= pieces[first].iov_len;
        ++first;
      }
      if (first < nPieces) {
        pieces[first].iov_base = static_cast<char*>(pieces[first].iov_base) + done;
        pieces[first].iov_len -= done;
      }
      while (first < nPieces && pieces[first].iov_len == 0) ++first;
      continue;
    }
    int const e = r == 0 ? EAGAIN : errno;
    if (e == EPIPE) return CommChan::BROKEN;
    if (e == ECONNRESET) return CommChan::CLOSED;
    if (e == EINTR) continue;
    if (e == ETIMEDOUT) {
      if (++timedOut > 10) {
        std::cout << name << " - connection timedout several times.\n" << std::flush;
        return CommChan::BROKEN;
      }
      continue;
    }
    if (e == EAGAIN || e == EWOULDBLOCK) {
      if (++stalls > 2) return CommChan::INCOMPLETE;
      continue;
    }
    std::cout << name << " Error " << e << " from send()\n" << std::flush;
    return CommChan::BROKEN;
  }
  return CommChan::OK;
}

}  // namespace

CommChan::StatusType Socket::myDoSend(char const* buffer, int n, int& sent) {
  iovec piece;
  piece.iov_base = const_cast<char*>(buffer);
  piece.iov_len = n > 0 ? static_cast<size_t>(n) : 0;
  long long done = 0;
  StatusType const s = sendPieces(m_connFd, &piece, 1, done, getName().c_str());
  sent = static_cast<int>(done);
  return s;
}

CommChan::StatusType Socket::sendSegments(Packer::Segment const* segments, int count) {
  // A channel closed here (as after a failed exchange) is a transport
  // condition for its user, like a peer that closed.
  if (m_closed) return CLOSED;
  if (!m_connected) {
    StatusType const s = accept();
    if (s != OK) return s;
  }
  std::vector<iovec> pieces(static_cast<size_t>(count > 0 ? count : 0));
  for (int i = 0; i < count; ++i) {
    pieces[i].iov_base = const_cast<unsigned char*>(segments[i].data);
    pieces[i].iov_len = segments[i].size;
  }
  long long sent = 0;
  return sendPieces(m_connFd, pieces.data(), count, sent, getName().c_str());
}

CommChan::StatusType Socket::mySendMagic() {
  char const* const label = "Socket::mySendMagic";
  uint32_t const magic = MAGIC;
  int sent = 0;
  StatusType const s = myDoSend(reinterpret_cast<char const*>(&magic), 4, sent);
  if (s != OK) Message::fatal(label, 0, "Bad status %s sending magic number.", status(s));
  if (sent != 4) Message::fatal(label, 0, "Wrong number of bytes sent %d, should be %d.", sent, 4);
  return OK;
}

CommChan::StatusType Socket::myReadMagic() {
  uint32_t magic = 0;
  int read = 0;
  StatusType const s = myDoRead(reinterpret_cast<char*>(&magic), 4, read);
  // A peer that went before saying anything is a transport condition; a
  // peer that said something else is not one of ours.
  if (s != OK && read == 0) return s;
  if (s == OK && magic == MAGIC) {
    setSwap(false);
  } else if (s == OK && magic == SWAPPED_MAGIC) {
    setSwap(true);
  } else {
    Message::fatal("Socket::myReadMagic", 0,
                   "Did not receive internal MAGIC number. Got %d (0x%x) instead. Read %d bytes.\n",
                   static_cast<int>(magic), magic, read);
  }
  m_magicReceived = 1;
  return OK;
}
