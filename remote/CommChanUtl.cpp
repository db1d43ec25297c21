#include "remote/CommChanUtl.h"

#include <arpa/inet.h>
#include <netdb.h>

#include "foundation/Message.h"
#include "foundation/MessageHandling.h"
#include "foundation/UtlExcept.h"
#include "remote/Socket.h"

int CommChanUtl::getServicePort(char const* name, char const* protocol) {
  if (name == nullptr || *name == '\0')
    Message::fatal("CommChanUtl::getServicePort", 0, "The service name cannot be blank!");
  servent const* const entry = ::getservbyname(name, protocol);
  if (entry == nullptr) return 0;
  return ntohs(static_cast<uint16_t>(entry->s_port));
}

bool CommChanUtl::isPortConnectable(char const* host, int port, float timeout) {
  try {
    // A probe that fails is an answer, not a report.
    MessageHandling quiet;
    Socket probe;
    return probe.connectRemote(host, port, timeout) == CommChan::OK;
  } catch (...) {
    return false;
  }
}

bool CommChanUtl::isPortConnectable(char const* host, char const* service, float timeout) {
  return isPortConnectable(host, getServicePort(service, "tcp"), timeout);
}

bool CommChanUtl::rshAvailable(char const* host, float timeout) {
  static int port = 0;
  if (port == 0) {
    port = getServicePort("shell", "tcp");
    if (port == 0) port = 514;
  }
  return isPortConnectable(host, port, timeout);
}
