#ifndef REMOTE_COMMCHANUTL_H
#define REMOTE_COMMCHANUTL_H

// CommChanUtl: probes of services and ports before a channel is relied on.

class CommChanUtl {
 public:
  // The port of a service from the system's service table, in host order;
  // 0 when the service is unknown. A null or empty name is raised.
  static int getServicePort(char const* name, char const* protocol);
  // True when a TCP connection to host:port succeeds within timeout
  // seconds. Any failure, raised or not, counts as false.
  static bool isPortConnectable(char const* host, int port, float timeout);
  static bool isPortConnectable(char const* host, char const* service, float timeout);
  // True when the remote shell port of host (service "shell", 514 when the
  // service is unknown) accepts a connection.
  static bool rshAvailable(char const* host, float timeout);
};

#endif
