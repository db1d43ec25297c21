#include "remote/COBPortal.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <iostream>
#include <memory>
#include <vector>

#include "foundation/Message.h"
#include "foundation/Packer.h"
#include "foundation/SystemPropertyManager.h"
#include "foundation/UtlExcept.h"
#include "foundation/vUtl.h"
#include "remote/COB.h"
#include "remote/CommChanMaker.h"
#include "remote/CommChanUtl.h"

char const* const COBPortal::addressToken = "<$COBADDRESS$>";

namespace {

// Portal message codes, both ways.
enum PortalCode {
  CreateObject = 1,
  DestroyObject = 2,
  EndSession = 3,
  ServerFailure = 99,
  ServerReport = 100
};

// A reply Packer must not be left half read when it goes or is received
// into again.
void finishReading(Packer& packer) {
  if (packer.getState() == Packer::PACKUNPACKING) packer.discard();
}

struct ReadToTheEnd {
  Packer& packer;
  ~ReadToTheEnd() {
    try {
      finishReading(packer);
    } catch (...) {
    }
  }
};

// Starts a command on this host by the shell, in the background as
// vUtl::system does, and gives the read end of a pipe that comes to its end
// once the started processes have all ended. -1 when no pipe could be
// made; the command is started all the same.
//
// The write end is held by a watcher process between this one and the
// command, never by the command itself: a server that held it would keep a
// descriptor of ours for its whole life and hand it on to whatever it
// starts. The watcher takes in the command's orphans (a child subreaper), so
// a command that puts the server in the background is still watched.
int startHere(vString const& command) {
  int ends[2];
  if (::pipe(ends) != 0) {
    vUtl::system(command.c_str(), nullptr, vUtl::SystemBackground);
    return -1;
  }
  char const* const text = command.c_str();
  std::fflush(nullptr);
  pid_t const first = ::fork();
  if (first == 0) {
    ::close(ends[0]);
    // The watcher is the child of a child that ends at once: no process is
    // left for this one to reap.
    if (::fork() == 0) {
      ::prctl(PR_SET_CHILD_SUBREAPER, 1L, 0L, 0L, 0L);
      if (::fork() == 0) {
        ::close(ends[1]);
        // As a command put in the background by the shell: no input.
        int const none = ::open("/dev/null", O_RDONLY);
        if (none >= 0) ::dup2(none, 0);
        ::execl("/bin/sh", "sh", "-c", text, static_cast<char*>(nullptr));
        ::_exit(127);
      }
      while (::waitpid(-1, nullptr, 0) > 0 || errno == EINTR) {
      }
    }
    ::_exit(0);
  }
  ::close(ends[1]);
  if (first < 0) {
    int const error = errno;
    ::close(ends[0]);
    Message::fatal("COBPortal::connect", 0, "Error %d calling fork(): no data server is started.", error);
  }
  while (::waitpid(first, nullptr, 0) < 0 && errno == EINTR) {
  }
  ::fcntl(ends[0], F_SETFD, FD_CLOEXEC);
  return ends[0];
}

bool hasEnded(int ended) {
  pollfd p{ended, POLLIN, 0};
  return ::poll(&p, 1, 0) > 0;
}

}  // namespace

COBPortal::COBPortal(vString const* host, vString const* command)
    : m_channel(nullptr),
      m_lastId(0),
      m_port(0),
      m_local(true),
      m_command(new vString(command ? *command : vString())),
      m_host(new vString(host ? *host : vString())),
      m_inUse(false),
      m_rebuilding(false),
      m_acceptTimeout(defaultAcceptTimeout) {
  if (!m_host->isBlank() && *m_host != vUtl::gethostname()) {
    m_local = false;
    vString port;
    if (vUtl::getenv("COBPORTAL", port)) {
      if (port.isInteger())
        m_port = port.readi();
      else
        Message::error("COBPortal::COBortal", 0, "COBPortal environment variable should be an integer not %s.",
                       port.c_str());
    }
  }
  try {
    connect();
  } catch (...) {
    delete m_command;
    delete m_host;
    throw;
  }
}

COBPortal::~COBPortal() {
  if (m_inUse) {
    try {
      Packer end(50);
      end.pack(static_cast<int>(EndSession));
      mySend(-1, end);
    } catch (...) {
      // The server goes with the channel whatever happened here.
    }
  }
  m_table.clear();
  delete m_command;
  delete m_host;
}

void COBPortal::setDataserverCommandLine(vString const& command) { *m_command = command; }

void COBPortal::setAcceptTimeout(float seconds) {
  m_acceptTimeout = seconds;
  if (!m_channel.isEmpty()) m_channel->setMiscTimeout(seconds);
}

void COBPortal::connect() {
  m_inUse = false;
  m_channel = vHandle<CommChan>(nullptr);
  CommChan::StatusType made = CommChan::OK;
  if (m_local) {
    m_channel = CommChanMaker::local(nullptr, made);
  } else {
    m_port = 0;
    m_channel = CommChanMaker::remote(m_port, made);
  }
  // A server is never sent to an address that this portal does not hold:
  // whoever holds it would get the server.
  if (made != CommChan::OK)
    Message::fatal("COBPortal::connect", 0, "Could not listen on %s (%s): no data server is started.",
                   getAddress().getAddress().c_str(), CommChan::status(made));
  // Each new channel waits as long as the first for its server.
  m_channel->setMiscTimeout(m_acceptTimeout);
  static int rshTimeout = 0;
  if (rshTimeout == 0) {
    rshTimeout = 10;
    if (SystemPropertyManager::hasSystemProperty("CAPI", "RSHTIMEOUT")) {
      SystemProperty const p = SystemPropertyManager::getSystemProperty("CAPI", "RSHTIMEOUT");
      int const seconds = p.getNValues() > 0 ? p.getValue(0).readi() : 0;
      if (seconds > 0) rshTimeout = seconds;
    }
  }
  if (m_command->isEmpty()) return;
  // Only a server on another host is started by the remote shell.
  if (!m_local && !CommChanUtl::rshAvailable(m_host->c_str(), static_cast<float>(rshTimeout)))
    Message::fatal("COBPortal::connect", 0,
                   "The remote shell port on %s did not respond after %d seconds.   It may be that the machine is "
                   "down or no longer exists.   Please investigate.",
                   m_host->c_str(), rshTimeout);
  vString command = *m_command;
  command.replace(vString(addressToken), getAddress().getAddress());
  std::cout << "Executing \"" << command.c_str() << "\" on " << m_host->c_str() << std::endl;
  if (!m_local) {
    vUtl::system(command.c_str(), m_host, vUtl::SystemBackground);
    return;
  }
  // A server here that ends before it connects back (a program that fails
  // as it starts, or later) is told at once, rather than waited for to the
  // end of the time-out and then started again: the child is watched for
  // the whole of the accept's wait.
  int const ended = startHere(command);
  if (ended < 0) return;
  float const slice = 0.1f;
  bool const bounded = m_acceptTimeout > 0.0f;
  for (float waited = 0.0f; !bounded || waited < m_acceptTimeout; waited += slice) {
    if (m_channel->waitOn(slice, CommChan::READ)) {
      ::close(ended);
      return;
    }
    if (hasEnded(ended)) {
      ::close(ended);
      Message::fatal("COBPortal::connect", 0, "The data server ended before it connected back: \"%s\".",
                     command.c_str());
    }
  }
  ::close(ended);
  // The wait is spent: the accept that follows only takes a server that
  // came at the last moment, and is otherwise the TIMEOUT at once.
  m_channel->setMiscTimeout(slice);
}

CommChan::StatusType COBPortal::accept() {
  CommChan::StatusType const s = m_channel->accept();
  m_inUse = true;
  return s;
}

CommChanAddress COBPortal::getAddress() {
  std::unique_ptr<CommChanAddress> address(m_channel->getAddress());
  return *address;
}

int COBPortal::getNewID(COB& object) {
  ++m_lastId;
  m_table[m_lastId] = &object;
  return m_lastId;
}

void COBPortal::forgetID(int id) { m_table.erase(id); }

void COBPortal::create(int id, vString const& type, int parent) {
  Packer packer(200);
  packer.pack(static_cast<int>(CreateObject));
  packer.pack(id);
  packer.pack(type);
  packer.pack(parent);
  bool const first = m_creating.insert(id).second;
  CommChan::StatusType s;
  try {
    s = send(-1, packer);
  } catch (...) {
    if (first) m_creating.erase(id);
    throw;
  }
  if (first) m_creating.erase(id);
  if (s != CommChan::OK)
    Message::fatal("COBPortal::create", 0, "Failed to create SOB for %s, CommChan::StatusType=%s", type.c_str(),
                   CommChan::status(s));
}

void COBPortal::destroy(int id) {
  Packer packer(200);
  packer.pack(static_cast<int>(DestroyObject));
  packer.pack(id);
  CommChan::StatusType const s = send(-1, packer);
  if (s != CommChan::OK)
    Message::info("COBPortal::destroy", 0, "Failed to destroy SOB with PortalID %d, CommChan::StatusType=%s", id,
                  CommChan::status(s));
}

void COBPortal::dropID(int id) {
  std::map<int, COB*>::iterator const at = m_table.find(id);
  if (at == m_table.end()) {
    Message::error("COBPortal::dropID", 0, "PortalID %d was not found, ignored.", id);
    return;
  }
  // Out of the table first: should the server have to be started again on
  // the way, an object that is going must not be made again.
  m_table.erase(at);
  destroy(id);
}

CommChan::StatusType COBPortal::mySend(int tag, Packer& packer) {
  m_inUse = true;
  return static_cast<CommChan::StatusType>(packer.send(m_channel.get(), tag));
}

CommChan::StatusType COBPortal::myReceive(int, Packer& packer) {
  m_inUse = true;
  return static_cast<CommChan::StatusType>(packer.receive(*m_channel));
}

void COBPortal::myMessages(Packer& packer) {
  char const* const label = "COBPortal::myMessage";
  int code = 0;
  packer.unpack(code);
  if (code == ServerFailure) {
    vString text;
    packer.unpack(text);
    vString const said = vString("Server said:- ") + text;
    Message::fatal(label, 0, "%s", said.c_str());
  }
  if (code != ServerReport) Message::fatal(label, 0, "Unexpected message code %d from the server.", code);
  int severity = 0;
  packer.unpack(severity);
  vString text;
  packer.unpack(text);
  vString const said = vString("Server said:-o ") + text;
  switch (severity) {
    case 1:
      Message::fatal(label, 0, "%s", said.c_str());
    case 2:
      Message::error(label, 0, "%s", said.c_str());
      break;
    case 3:
      Message::info(label, 0, "%s", said.c_str());
      break;
    default:
      Message::fatal(label, 0, "Unexpected exception code %d from the server.", severity);
  }
}

bool COBPortal::myRetry(int& failures, CommChan::StatusType& status, char const* label) {
  for (;;) {
    if (++failures == 1)
      Message::info(label, 0, "The connection to the dataserver on %s was lost.\nWill attempt to re-connect.",
                    m_host->c_str());
    if (failures >= 3 || m_rebuilding) return false;
    m_rebuilding = true;
    try {
      connect();
      // The new server is waited for here, within the portal's time: one
      // that does not come is a failed attempt of its own.
      CommChan::StatusType const accepted = accept();
      if (accepted != CommChan::OK) {
        status = accepted;
        m_rebuilding = false;
        continue;
      }
      // Parents before children: IDs grow from the root. The table is
      // looked up afresh for each, as an object may go on the way.
      std::vector<int> ids;
      for (auto const& entry : m_table) ids.push_back(entry.first);
      for (int id : ids) {
        std::map<int, COB*>::iterator const at = m_table.find(id);
        if (at != m_table.end() && m_creating.count(id) == 0) at->second->commsReinitialize();
      }
    } catch (UtlExcept const&) {
      m_rebuilding = false;
      return false;
    }
    m_rebuilding = false;
    return true;
  }
}

CommChan::StatusType COBPortal::send(int tag, Packer& packer) {
  int failures = 0;
  for (;;) {
    CommChan::StatusType s = mySend(tag, packer);
    if (s == CommChan::OK) return s;
    if (!myRetry(failures, s, "COBPortal::send")) return s;
  }
}

CommChan::StatusType COBPortal::sendAndReceive(int tag, Packer& packer) {
  char const* const label = "COBPortal::sendAndReceive";
  Packer reply(1008);
  ReadToTheEnd tidy{reply};
  int failures = 0;
  for (;;) {
    CommChan::StatusType s = mySend(tag, packer);
    while (s == CommChan::OK) {
      s = myReceive(tag, reply);
      if (s != CommChan::OK) {
        Message::info(label, 0, " myReceive returned error %s", CommChan::status(s));
        m_channel->close();
        break;
      }
      int const got = reply.getMessageTag();
      if (got == tag) {
        // The caller's Packer takes the reply's buffer: a large reply is
        // not copied once more.
        packer.swap(reply);
        return CommChan::OK;
      }
      if (got != -1) Message::fatal(label, 0, "Received message for PortalID %d, expected one for %d.", got, tag);
      myMessages(reply);
      finishReading(reply);
    }
    if (!myRetry(failures, s, label)) return s;
  }
}
