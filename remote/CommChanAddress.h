#ifndef REMOTE_COMMCHANADDRESS_H
#define REMOTE_COMMCHANADDRESS_H

// CommChanAddress: where a channel is reached, as text and parts. A remote
// address has a port, a host name and a dotted IP address; a local one a
// file name (the path of a UNIX-domain socket). Text forms:
//
//   Address:<port>:<dotted-ip>[:<host>]   remote
//   Address:<port>:<host>                 remote, the IP address looked up
//   Address:<port>::<host>                remote, the IP address looked up
//   Address:<file>                        local
//   <file>                                local, any text not starting
//                                         with the field "Address"

#include "foundation/vString.h"

class CommChanAddress {
 public:
  // Parses the text; a remote address with neither host nor IP address
  // raises "Invalid remote host:%s.", "Address:" alone "Invalid local
  // filename:%s.".
  explicit CommChanAddress(vString const& text);
  // A remote address; no host or a blank one means this host.
  CommChanAddress(int port, vString const* host);
  CommChanAddress(CommChanAddress const& other);
  CommChanAddress& operator=(CommChanAddress const& other);
  ~CommChanAddress();

  bool isRemote() const { return m_filename.isBlank(); }
  // The text form, "Address:..." with blanks removed from a remote one.
  vString getAddress() const;
  int getPort() const;
  // The host name, or the IP address when there is no name.
  vString getHost() const;
  vString const& getIPAddress() const { return m_ip; }
  vString const& getFilename() const;

 private:
  int m_port;
  vString m_host;
  vString m_filename;
  vString m_ip;
};

#endif
