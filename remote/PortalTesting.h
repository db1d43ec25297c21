#ifndef REMOTE_PORTALTESTING_H
#define REMOTE_PORTALTESTING_H

// Test helpers of the portal (tests only): a remote object that keeps one
// number in its twin, sessions with the test server (testserver/), and the
// server's log, read back as (process, line) pairs.

#include <time.h>
#include <unistd.h>

#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/Message.h"
#include "foundation/Packer.h"
#include "foundation/vHandle.h"
#include "remote/COB.h"
#include "remote/COBPortal.h"
#include "remote/RemoteTesting.h"
#include "remote/TestServerCodes.h"

namespace remote_testing {

// A remote object whose twin holds a number; after a lost connection it
// gives the new twin its number again.
class TestCOB : public COB {
 public:
  TestCOB(char const* type, COB* parent) : COB(vString(type), parent) {}
  // A top object on the portal.
  TestCOB(char const* type, vHandle<COBPortal>& portal) : COB(vString(type), nullptr) { setPortal(portal); }

  int state = 0;
  int reinitialized = 0;

  void doCommsReinitialize() override {
    ++reinitialized;
    Packer p(20);
    p.pack(static_cast<int>(TestServer::SetState));
    p.pack(state);
    if (sendAndReceive(p) != CommChan::OK) Message::fatal("TestCOB::doCommsReinitialize", 0, "no reply");
    p.discard();
  }

  CommChan::StatusType setState(int value) {
    state = value;
    Packer p(20);
    p.pack(static_cast<int>(TestServer::SetState));
    p.pack(value);
    CommChan::StatusType const s = sendAndReceive(p);
    if (s == CommChan::OK) p.discard();
    return s;
  }

  struct Description {
    std::string type;
    int state = 0;
    int twins = 0;
    int pid = 0;
  };
  Description describe() {
    Packer p(20);
    p.pack(static_cast<int>(TestServer::Describe));
    Description d;
    if (sendAndReceive(p) != CommChan::OK) return d;
    int code = 0;
    vString type;
    p.unpack(code);
    p.unpack(type);
    p.unpack(d.state);
    p.unpack(d.twins);
    p.unpack(d.pid);
    d.type = type.c_str();
    return d;
  }

  // A request with only a code; the status of the exchange.
  CommChan::StatusType call(int code) {
    Packer p(20);
    p.pack(code);
    CommChan::StatusType const s = sendAndReceive(p);
    if (p.getState() == Packer::PACKUNPACKING) p.discard();
    return s;
  }
};

// The server's command line for a portal: "<$COBADDRESS$>" for the address.
inline std::string serverCommand(TempDir const& dir) {
  return testServerPath() + " " + COBPortal::addressToken + " --log " + dir.file("server.log") + " --crash-file " +
         dir.file("crashed");
}

// The log as (process id, line) pairs.
inline std::vector<std::pair<int, std::string>> serverLog(TempDir const& dir) {
  std::vector<std::pair<int, std::string>> out;
  std::ifstream in(dir.file("server.log"));
  std::string line;
  while (std::getline(in, line)) {
    size_t const blank = line.find(' ');
    if (blank == std::string::npos) continue;
    out.emplace_back(std::stoi(line.substr(0, blank)), line.substr(blank + 1));
  }
  return out;
}

// The lines of the log, without process ids.
inline std::vector<std::string> serverLines(TempDir const& dir) {
  std::vector<std::string> out;
  for (auto const& entry : serverLog(dir)) out.push_back(entry.second);
  return out;
}

// Waits (within the test's alarm) until the log holds a line; true if it
// came within about twenty seconds.
inline bool waitForLine(TempDir const& dir, std::string const& line) {
  for (int i = 0; i < 2000; ++i) {
    for (auto const& entry : serverLog(dir))
      if (entry.second == line) return true;
    timespec t{0, 10 * 1000 * 1000};
    ::nanosleep(&t, nullptr);
  }
  return false;
}

}  // namespace remote_testing

#endif
