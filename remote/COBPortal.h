#ifndef REMOTE_COBPORTAL_H
#define REMOTE_COBPORTAL_H

// COBPortal: the link to one data server process. The portal listens on a
// channel of its own (a UNIX-domain path when the server runs on this host,
// TCP otherwise), starts the server with its command line, in which
// "<$COBADDRESS$>" stands for the channel's address, and the server
// connects back. Every message is one Packer whose tag addresses a remote
// object by its PortalID, or the portal itself by -1.
//
// Messages of the portal to the server (tag -1, no reply):
//   1 create:  int PortalID, string type, int parent PortalID (0: none)
//   2 destroy: int PortalID
//   3 end of session
// While a reply is awaited the server may send, with tag -1:
//   99  string           a failure: raised at the caller
//   100 int sev, string  severity 1 raised, 2 an error, 3 an info report;
//                        after 2 and 3 the reply is still awaited
//
// A lost connection is met by starting a new server and making every
// remote object again, parents first, in the new one; a request is then
// sent again. After three failed attempts the status is returned.
//
// Every channel of the portal waits a bounded time for its server to
// connect (by default defaultAcceptTimeout seconds): a server that never
// comes, at the start or after a reconnection, is a TIMEOUT status.

#include <map>
#include <set>

#include "foundation/vHandle.h"
#include "foundation/vString.h"
#include "remote/CommChan.h"
#include "remote/CommChanAddress.h"

class COB;
class Packer;

class COBPortal {
 public:
  static char const* const addressToken;
  // How long a starting server may take to connect back, in seconds.
  static constexpr float defaultAcceptTimeout = 120.0f;

  // Starts listening, and the server if a command is given. A host that is
  // neither blank nor this host's name is reached over TCP.
  COBPortal(vString const* host, vString const* command);
  virtual ~COBPortal();

  virtual void destroy(int id);
  virtual void create(int id, vString const& type, int parent);
  // Tells the server to drop the object and forgets its ID.
  virtual void dropID(int id);
  virtual CommChanAddress getAddress();
  virtual int getNewID(COB& object);
  virtual CommChan::StatusType send(int tag, Packer& packer);
  virtual CommChan::StatusType sendAndReceive(int tag, Packer& packer);

  // Waits for the server's connection (otherwise taken at the first use).
  CommChan::StatusType accept();
  // Listens afresh and starts the server.
  void connect();
  void setDataserverCommandLine(vString const& command);
  // The wait for the server's connection, for this channel and every later
  // one; FOREVER (or any negative value) waits without limit.
  void setAcceptTimeout(float seconds);
  float getAcceptTimeout() const { return m_acceptTimeout; }
  // Forgets an ID without a word to the server: for an object that never
  // came into being.
  void forgetID(int id);

  // The channel in use.
  vHandle<CommChan> const& getChannel() const { return m_channel; }
  bool isLocal() const { return m_local; }
  bool isInUse() const { return m_inUse; }
  int getLastID() const { return m_lastId; }
  int getNObjects() const { return static_cast<int>(m_table.size()); }

 protected:
  void myMessages(Packer& packer);
  CommChan::StatusType mySend(int tag, Packer& packer);
  CommChan::StatusType myReceive(int tag, Packer& packer);

 private:
  COBPortal(COBPortal const&) = delete;
  COBPortal& operator=(COBPortal const&) = delete;

  // Notes a failed attempt; true when another one is to be made, after the
  // server was started again and every object made again in it. A server
  // that does not connect back counts as a further failed attempt, and its
  // status replaces status.
  bool myRetry(int& failures, CommChan::StatusType& status, char const* label);

  std::map<int, COB*> m_table;
  // Objects whose create message is on its way: a rebuild leaves them to
  // the create that is sent again, as they may not be whole yet.
  std::set<int> m_creating;
  vHandle<CommChan> m_channel;
  int m_lastId;
  int m_port;
  bool m_local;
  vString* m_command;
  vString* m_host;
  bool m_inUse;
  // Set while objects are being made again: a failure then ends the
  // attempt rather than starting yet another server from within.
  bool m_rebuilding;
  float m_acceptTimeout;
};

#endif
