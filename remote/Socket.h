#ifndef REMOTE_SOCKET_H
#define REMOTE_SOCKET_H

// Socket: the transport of CommChan, a TCP stream or, on one host, a
// UNIX-domain stream. A socket is made either as the connecting end
// (connectRemote, connectLocal) or as a listening end (createRemote,
// createLocal) that serves one peer at a time: it accepts on first use,
// and a further accept drops the earlier peer.
//
// A TCP connection begins with one 32-bit MAGIC (0xDEADFACE) in each
// direction, in the writer's byte order, by which each end learns whether
// the other's order differs (then received typed data are swapped). The
// accepting end reads the peer's magic at once, the connecting end at its
// first receive. UNIX-domain channels carry no magic and never swap.
//
// On one host only the owner's processes meet: accept turns away a peer of
// another user, as connectLocal does a listener of another user.
//
// Only the misc time-out is used, by accept; reads and writes block. A
// process using sockets must ignore SIGPIPE or rely on the MSG_NOSIGNAL
// that the writes here pass, so that a lost peer is a status.

#include "remote/CommChanImp.h"

class Socket : public CommChanImp {
 public:
  static constexpr uint32_t MAGIC = 0xDEADFACEu;
  static constexpr uint32_t SWAPPED_MAGIC = 0xCEFAADDEu;

  Socket();
  ~Socket() override;

  // Connects to host:port; a timeout other than 0 waits at most that long
  // (FOREVER without limit) in select. NOTFOUND when nobody listens there,
  // TIMEOUT when the wait ran out.
  StatusType connectRemote(char const* host, int port, float timeout);
  // Connects to a UNIX-domain path; failure is raised, and so is a path
  // that is not a socket of this user or whose listener is another user.
  StatusType connectLocal(char const* path);
  // Listens on a UNIX-domain path, by default "Socket_<pid>.<seq>" in the
  // private directory "$TMPDIR/rondo-<uid>" (/tmp without TMPDIR), which is
  // made with mode 0700 or raised against when it is not a directory of
  // this user closed to others' writes. The socket gets mode 0600 before
  // it listens. INUSE when the path is taken: the channel then listens
  // nowhere and its first use says CLOSED.
  StatusType createLocal(char const* path);
  // Listens on TCP port, or on a free one for 0 (within the COMMCHAN
  // USE_PORT_RANGE property if set); the port comes back in port.
  StatusType createRemote(int& port);

  CommChanAddress* getAddress() const override;
  StatusType accept() override;
  StatusType sendChar8(char const* data, int count) override;
  StatusType receiveChar8(char* data, int count) override;
  StatusType sendSegments(Packer::Segment const* segments, int count) override;
  void setSize(int size) override;
  int getSize() override;
  vString getName() const override;
  void close() override;
  bool waitOn(float timeout, WaitType type) override;
  int getChannel() const override;
  void setReceiveTimeout(float seconds) override;
  void setSendTimeout(float seconds) override;
  void setMiscTimeout(float seconds) override;

  // SO_SNDBUF and SO_RCVBUF given to every new socket; 0 or less keeps the
  // system's.
  static void setDefaultBufferSize(int size);
  static int getDefaultBufferSize();

  // Taken by each new Socket as its sequence number.
  static int sequence;

  int getPort() const { return m_port; }
  bool isRemote() const { return m_remote; }
  bool isConnected() const { return m_connected; }
  bool isClosed() const { return m_closed; }

 protected:
  void myInit();
  void myCreateSocket(int domain);
  StatusType myBind(int& port, void* address);
  StatusType myDoRead(char* buffer, int n, int& read);
  StatusType myDoSend(char const* buffer, int n, int& sent);
  StatusType mySendMagic();
  StatusType myReadMagic();
  void mySetLinger(int descriptor);
  static int myLimitNBytes(int n) { return n; }

 private:
  float m_socketReceiveTimeout;
  float m_socketSendTimeout;
  float m_socketMiscTimeout;
  int m_port;
  int m_listenFd;
  int m_connFd;
  int m_size;
  vString m_host;
  char m_path[128];
  bool m_closed;
  bool m_connected;
  bool m_remote;
  // Set for the end that connected (as against one made by accept): the
  // path of a local channel belongs to the listening end and only it
  // removes the path.
  bool m_initiator;
  int m_sequence;
  int m_magicReceived;

  static int myDefaultBufferSize;
};

#endif
