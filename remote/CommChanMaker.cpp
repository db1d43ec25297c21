#include "remote/CommChanMaker.h"

#include "foundation/SystemPropertyManager.h"
#include "remote/CommChanAddress.h"
#include "remote/Socket.h"
#include "remote/VerboseCommChan.h"

namespace {

vHandle<CommChan> made(Socket* socket) { return vHandle<CommChan>(socket); }

}  // namespace

vHandle<CommChan> CommChanMaker::connect(char const* path) {
  Socket* socket = new Socket;
  vHandle<CommChan> channel = made(socket);
  socket->connectLocal(path);
  myDecorate(channel);
  return channel;
}

vHandle<CommChan> CommChanMaker::local(char const* path) {
  CommChan::StatusType status;
  return local(path, status);
}

vHandle<CommChan> CommChanMaker::local(char const* path, CommChan::StatusType& status) {
  Socket* socket = new Socket;
  vHandle<CommChan> channel = made(socket);
  status = socket->createLocal(path);
  myDecorate(channel);
  return channel;
}

vHandle<CommChan> CommChanMaker::connect(char const* host, int port) {
  Socket* socket = new Socket;
  vHandle<CommChan> channel = made(socket);
  socket->connectRemote(host, port, 0.0f);
  myDecorate(channel);
  return channel;
}

vHandle<CommChan> CommChanMaker::remote(int& port) {
  CommChan::StatusType status;
  return remote(port, status);
}

vHandle<CommChan> CommChanMaker::remote(int& port, CommChan::StatusType& status) {
  Socket* socket = new Socket;
  vHandle<CommChan> channel = made(socket);
  status = socket->createRemote(port);
  myDecorate(channel);
  return channel;
}

vHandle<CommChan> CommChanMaker::connect(CommChanAddress const& address) {
  if (address.isRemote()) return connect(address.getHost().c_str(), address.getPort());
  return connect(address.getFilename().c_str());
}

void CommChanMaker::myDecorate(vHandle<CommChan>& channel) {
  if (!SystemPropertyManager::hasSystemProperty("CommChan", "Verbose")) return;
  SystemProperty const property = SystemPropertyManager::getSystemProperty("CommChan", "Verbose");
  bool wrap = false;
  vString filename;
  for (int i = property.getNValues() - 1; i >= 0; --i) {
    vString name;
    vString value;
    if (!property.getValue(i).splitAtToken(name, value, '=')) {
      name = property.getValue(i);
      value = "";
    }
    name.trimRight();
    value.trimRight();
    name.toUpperCase();
    if (name == "VERBOSE") wrap = true;
    if (name == "FILENAME" && !value.isEmpty()) filename = value;
  }
  if (!wrap) return;
  vHandle<CommChan> inner = channel;
  channel = vHandle<CommChan>(new VerboseCommChan(inner, filename.isEmpty() ? nullptr : filename.c_str()));
}
