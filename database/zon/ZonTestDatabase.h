#ifndef DATABASE_ZON_ZONTESTDATABASE_H
#define DATABASE_ZON_ZONTESTDATABASE_H

// Test helper (tests only): a release tree whose support files hold the
// client folder of one database server, "zonsite" (the default database of
// the test domain), with a dictionary and a config.kvs that point at a real
// build/bin/kvsd on a free loopback port. KVSROOT, KVSPROJ, KVSDICT,
// KVSPORT and TMPDIR are set for the test and restored after it. Tables are
// written straight through the Kvs library, as another program would.

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "database/kvs/Kvs.h"
#include "database/kvs/KvsDict.h"
#include "database/zon/vKvsActivate.h"
#include "database/zon/vKvsProject.h"
#include "foundation/TestReleaseTree.h"
#include "foundation/vDatabases.h"

class ZonTestDatabase {
 public:
  TestReleaseTree tree;
  std::string const server = "zonsite";

  ZonTestDatabase() {
    tree.writeSystemFile("DatabaseConfig.ini",
                         "[aliases]\ntestdomain.example = zonsite\n[zonsite]\nProductionDatabase = kvs1\n");
    vDatabases::clearCache();
    std::string home = clientFolder();
    std::filesystem::create_directories(home);
    std::vector<kvs::KvsDtElement> d[4] = {
        {{"SHOT", 1, 0x494E5400u, 4}, {"X", 2, 0x464C5400u, 4}, {"Z", 3, 0x44424C00u, 8}, {"NAME", 4, 0, 8}},
        {{"SEIS", 1}, {"HZ", 2}, {"TAB", 3}, {"SGD", 4}},
        {{"SHOTS", 1, 1, 1}, {"RCVS", 2, 2, 0}, {"TAB1", 3, 1, 1}},
        {{"SHOT", 1, 1}, {"RCV", 2}}};
    std::vector<unsigned char> bytes = kvs::KvsDtBuild(d);
    TestReleaseTree::write(home + "/KvsDict.bin", std::string(bytes.begin(), bytes.end()));
    TestReleaseTree::write(home + "/config.kvs", "Kvs.server: 127.0.0.1\nKvs.base: kvsd\n");
    // The release's own system files (attribute vocabulary, class
    // translations), for programs that this test starts.
    for (auto const& file : std::filesystem::directory_iterator(std::string(RONDO_TEST_SOURCE_DIR) + "/release/SystemFiles"))
      if (!std::filesystem::exists(tree.systemFilesDir() + file.path().filename().string()))
        std::filesystem::copy_file(file.path(), tree.systemFilesDir() + file.path().filename().string());
    std::filesystem::create_directories(tree.root() + "/spool");
    tree.setEnv("TMPDIR", tree.root() + "/spool");
    tree.unsetEnv("KVSROOT");
    tree.unsetEnv("KVSPROJ");
    tree.unsetEnv("KVSDICT");
    tree.setEnv("KVSPORT", "1");
    start();
  }

  ~ZonTestDatabase() {
    vKvsActivate::deactivate();
    stop(SIGKILL);
    vDatabases::clearCache();
  }

  std::string clientFolder() const { return tree.releaseDir() + "SupportFiles/CapiZon/" + server; }
  std::string dataDir() const { return tree.root() + "/kvsd"; }

  // Starts the daemon on a free port and points KVSPORT at it; the port, or
  // -1.
  int start() {
    int p[2];
    if (::pipe(p) != 0) return -1;
    m_pid = ::fork();
    if (m_pid == 0) {
      // The daemon goes with the test, also when the test dies.
      ::prctl(PR_SET_PDEATHSIG, SIGKILL);
      ::dup2(p[1], 1);
      ::close(p[0]);
      std::string bin = std::string(RONDO_TEST_BINARY_DIR) + "/bin/kvsd";
      ::execl(bin.c_str(), "kvsd", "-d", dataDir().c_str(), "-p", "0", static_cast<char*>(nullptr));
      ::_exit(127);
    }
    ::close(p[1]);
    char line[32] = {};
    ssize_t n = ::read(p[0], line, sizeof line - 1);
    ::close(p[0]);
    m_port = n > 0 ? std::atoi(line) : -1;
    if (m_port > 0) tree.setEnv("KVSPORT", std::to_string(m_port));
    return m_port;
  }

  void stop(int sig) {
    if (m_pid <= 0) return;
    ::kill(m_pid, sig);
    ::kill(m_pid, SIGCONT);
    ::waitpid(m_pid, nullptr, 0);
    m_pid = -1;
  }

  int port() const { return m_port; }

  // A dataset of one SHOTS table with n rows: SHOT = first + i, X = i / 2,
  // Z = -i, NAME "S<i>". False when the library refused.
  bool writeShots(std::string const& project, std::string const& type, std::string const& ident,
                  std::string const& version, long n, int first = 1) {
    vKvsProject who(vString(project.c_str()), vString(server.c_str()));
    vKvsActivate::project(who);
    kvs::KvsObject session = kvs::KvsCurrentSession();
    kvs::KvsObject ds = kvs::KvsOpen(session, kvs::KvsNmode, 2L, kvs::KvsNtype, type.c_str(), kvs::KvsNident,
                                     ident.c_str(), kvs::KvsNversion, version.c_str(), 0L);
    if (ds == nullptr) return false;
    kvs::KvsObject t = kvs::KvsCreate(ds, kvs::KvsNname, "SHOTS", 0L);
    std::vector<int> shot(n);
    std::vector<float> x(n);
    std::vector<double> z(n);
    std::vector<char> name(8 * n, '\0');
    for (long i = 0; i < n; ++i) {
      shot[i] = first + static_cast<int>(i);
      x[i] = 0.5f * i;
      z[i] = -1.0 * i;
      std::string text = "S" + std::to_string(i);
      std::memcpy(&name[8 * i], text.c_str(), std::min<std::size_t>(text.size(), 7));
    }
    kvs::KvsCreate(t, kvs::KvsNname, "SHOT", kvs::KvsNdata, shot.data(), 0L);
    kvs::KvsCreate(t, kvs::KvsNname, "X", kvs::KvsNdata, x.data(), 0L);
    kvs::KvsCreate(t, kvs::KvsNname, "Z", kvs::KvsNdata, z.data(), 0L);
    kvs::KvsCreate(t, kvs::KvsNname, "NAME", kvs::KvsNdata, name.data(), 0L);
    bool ok = kvs::KvsWrite(t, n) == n && kvs::KvsReplace(ds) == 0;
    kvs::KvsClose(ds);
    return ok;
  }

 private:
  pid_t m_pid = -1;
  int m_port = -1;
};

#endif
