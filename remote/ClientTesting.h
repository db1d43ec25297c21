#ifndef REMOTE_CLIENTTESTING_H
#define REMOTE_CLIENTTESTING_H

// Test helpers of the client proxies (tests only): a fixture whose client
// catalogs start the real data server (build/bin/DataServer) with its home,
// and so its log, in a directory of the test's own, the server's log read
// back, and a remote object that sends the server whatever a test gives it.

#include <signal.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/Packer.h"
#include "foundation/vHandle.h"
#include "project/Project.h"
#include "project/ProjectCatalog.h"
#include "remote/ClientAttributeSet.h"
#include "remote/ClientProject.h"
#include "remote/ClientProjectCatalog.h"
#include "remote/COB.h"
#include "remote/COBPortal.h"
#include "remote/RemoteTesting.h"

namespace remote_testing {

// A failure of the server as the client raises it.
inline std::string said(std::string const& text) { return "COBPortal::myMessage: Server said:-o " + text; }

// The names in a list of stores or projects.
inline std::vector<std::string> names(Project::StoreList const& list) {
  std::vector<std::string> out;
  for (vLCString const& n : list) out.push_back(n.c_str());
  return out;
}
inline std::vector<std::string> names(ProjectList const& list) {
  std::vector<std::string> out;
  for (ProjectListEntry const& e : list) out.push_back(e.getName().c_str());
  return out;
}

// A message's bytes as they go out with the tag.
inline std::string bytesOf(Packer& p, int tag) {
  unsigned char const* bytes = nullptr;
  int size = 0;
  p.getBuffer(&bytes, size, tag);
  return std::string(reinterpret_cast<char const*>(bytes), static_cast<size_t>(size));
}

// A remote object that sends what a test gives it.
class BareCOB : public COB {
 public:
  BareCOB(char const* type, COB* parent) : COB(vString(type), parent) {}
  BareCOB(char const* type, vHandle<COBPortal>& portal) : COB(vString(type), nullptr) { setPortal(portal); }
  void doCommsReinitialize() override {}

  // A request of the code and what pack adds; the reply's code, or -1.
  int call(int code, std::function<void(Packer&)> const& pack = nullptr) {
    Packer p(200);
    if (request(p, code, pack) != CommChan::OK) return -1;
    int32_t reply = 0;
    p.unpack(reply);
    p.discard();
    return reply;
  }
  int call(int code, char const* text) {
    return call(code, [text](Packer& p) { p.pack(vString(text)); });
  }
  // The reply's bytes, or the failure it raised.
  std::string reply(int code, std::function<void(Packer&)> const& pack) {
    Packer p(200);
    std::string const failure = fatalText([&] { ASSERT_EQ(CommChan::OK, request(p, code, pack)); });
    return failure != "(nothing raised)" ? failure : bytesOf(p, getID());
  }

 private:
  CommChan::StatusType request(Packer& p, int code, std::function<void(Packer&)> const& pack) {
    p.pack(static_cast<int32_t>(code));
    if (pack) pack(p);
    return sendAndReceive(p);
  }
};

inline std::string dataServerPath() { return std::string(RONDO_TEST_BINARY_DIR) + "/bin/DataServer"; }

class ClientTest : public RemoteTest {
 protected:
  ClientTest()
      : m_home("HOME", m_dir.file("").c_str()),
        m_server("VSERVER", dataServerPath().c_str()),
        m_property("SP_CAPI_DATASERVER", nullptr),
        m_backend("SP_DATASERVER_BACKEND", "UnitTest"),
        m_trace("SP_DATASERVER_TRACE", "1"),
        m_stores("RONDO_UNITTEST_STORES", "line12.3:seismic:2d wells.1:well cube.2:seismic:3d") {}

  // A Rondo catalog on this host: a new server.
  vHandle<ProjectCatalog> newCatalog() {
    return vHandle<ProjectCatalog>(new ClientProjectCatalog(vString(), ProjectType::RONDO, vString()));
  }
  vHandle<Project> openProject(vHandle<ProjectCatalog> const& catalog, char const* name) {
    vHandle<Project> project(new ClientProject(catalog));
    project->open(name);
    return project;
  }

  // The log lines of the server of a type, without process ids.
  std::vector<std::string> serverLines(char const* type = "Rondo") const {
    std::vector<std::string> out;
    std::ifstream in(m_dir.file(std::string("DataServer.") + type));
    std::string line;
    while (std::getline(in, line)) {
      size_t const blank = line.find(' ');
      if (blank != std::string::npos) out.push_back(line.substr(blank + 1));
    }
    return out;
  }
  // The requests the server got for an object, as their codes.
  std::vector<int> requestsTo(int id) const {
    std::vector<int> codes;
    std::string const head = "request " + std::to_string(id) + " code ";
    for (std::string const& line : serverLines())
      if (line.compare(0, head.size(), head) == 0) codes.push_back(std::stoi(line.substr(head.size())));
    return codes;
  }
  // The process ids that wrote to the log, in order of first appearance.
  std::vector<int> serverProcesses() const {
    std::vector<int> pids;
    std::ifstream in(m_dir.file("DataServer.Rondo"));
    std::string line;
    while (std::getline(in, line)) {
      // Lines of the server's own (those of reports printed) bear no id.
      int const pid = std::atoi(line.c_str());
      if (pid > 0 && (pids.empty() || pids.back() != pid)) pids.push_back(pid);
    }
    return pids;
  }
  // Kills the server process and waits until it is gone.
  void killServer() {
    std::vector<int> const pids = serverProcesses();
    ASSERT_FALSE(pids.empty());
    ::kill(pids.back(), SIGKILL);
    for (int i = 0; i < 2000 && ::kill(pids.back(), 0) == 0; ++i) {
      ::waitpid(pids.back(), nullptr, WNOHANG);
      timespec t{0, 10 * 1000 * 1000};
      ::nanosleep(&t, nullptr);
    }
  }

  TempDir m_dir;

 private:
  ScopedEnv m_home;
  ScopedEnv m_server;
  ScopedEnv m_property;
  ScopedEnv m_backend;
  ScopedEnv m_trace;
  ScopedEnv m_stores;
};

}  // namespace remote_testing

#endif
