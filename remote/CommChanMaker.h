#ifndef REMOTE_COMMCHANMAKER_H
#define REMOTE_COMMCHANMAKER_H

// CommChanMaker: the one way callers get a channel. The status of the
// connect or create step is not looked at here: a channel that could not
// be made reports it at its first operation. When the system property
// COMMCHAN VERBOSE holds "verbose=..." the channel comes wrapped in a
// VerboseCommChan, tracing to standard output or to the file named by
// "filename=<path>".

#include "foundation/vHandle.h"
#include "remote/CommChan.h"

class CommChanAddress;

class CommChanMaker {
 public:
  // Connects to a UNIX-domain path.
  static vHandle<CommChan> connect(char const* path);
  // Listens on a UNIX-domain path (null or empty: a generated one).
  static vHandle<CommChan> local(char const* path);
  // The same, for a caller that must know whether the channel listens:
  // the status of the create step comes back in status.
  static vHandle<CommChan> local(char const* path, CommChan::StatusType& status);
  // Connects to host:port, waiting without time-out.
  static vHandle<CommChan> connect(char const* host, int port);
  // Listens on TCP port (0: a free one), which comes back in port.
  static vHandle<CommChan> remote(int& port);
  static vHandle<CommChan> remote(int& port, CommChan::StatusType& status);
  static vHandle<CommChan> connect(CommChanAddress const& address);

 protected:
  static void myDecorate(vHandle<CommChan>& channel);
};

#endif
