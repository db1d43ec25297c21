#include "database/kvs/KvsTestPeer.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "database/kvs/Kvs.h"
#include "database/kvs/KvsDict.h"

namespace kvs {

int KvsdProcess::start(int port) {
  int p[2];
  if (pipe(p) != 0) return -1;
  pid_ = fork();
  if (pid_ == 0) {
    // The daemon goes with the test, also when the test dies: else it keeps
    // the test's output open and the test runner waits for it for ever.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    dup2(p[1], 1);
    close(p[0]);
    std::string bin = std::string(RONDO_TEST_BINARY_DIR) + "/bin/kvsd";
    execl(bin.c_str(), "kvsd", "-d", dir_.c_str(), "-p", std::to_string(port).c_str(), static_cast<char*>(nullptr));
    _exit(127);
  }
  close(p[1]);
  char line[32] = {};
  ssize_t n = read(p[0], line, sizeof line - 1);
  close(p[0]);
  return n > 0 ? std::atoi(line) : -1;
}

void KvsdProcess::stop(int sig) {
  if (pid_ <= 0) return;
  kill(pid_, sig);
  waitpid(pid_, nullptr, 0);
  pid_ = -1;
}

KvsScratch::KvsScratch() {
  char tmpl[] = "/tmp/kvs_testXXXXXX";
  root = mkdtemp(tmpl);
  std::filesystem::create_directories(root + "/data/sub");
  std::vector<KvsDtElement> d[4] = {
      {{"SHOT", 1, KvsFmtINT, 4}, {"X", 2, KvsFmtFLT, 4}, {"Z", 3, KvsFmtDBL, 8}, {"NAME", 4, 0, 8}},
      {{"SEIS", 1}},
      {{"SHOTS", 1, 1, 1}, {"RCVS", 2, 2, 0}, {"NOTES", 3, 2, 0}, {"NAMED", 4, 1, 4}},
      {{"SHOT", 1, 1}, {"RCV", 2}}};
  std::vector<unsigned char> bytes = KvsDtBuild(d);
  std::ofstream(root + "/data/KvsDict.bin", std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  std::ofstream(root + "/config.kvs") << "# found from the parent of home\nKvs.server: 127.0.0.1\n*base: ${KVSBASE}\n";
  setenv("KVSROOT", root.c_str(), 1);
  setenv("KVSBASE", "kvsbase", 1);
  setenv("TMPDIR", root.c_str(), 1);
  setenv("KVSPROJ", "proj@siteA", 1);
  unsetenv("KVSDICT");
}

KvsScratch::~KvsScratch() {
  KvsExit();
  std::filesystem::remove_all(root);
}

void KvsServed::SetUp() {
  KvsTestCapture();
  int port = kvsd.start();
  ASSERT_GT(port, 0);
  setenv("KVSPORT", std::to_string(port).c_str(), 1);
}

void KvsServed::init() {
  ASSERT_EQ(KvsInit(), 0) << KvsErrorString();
  session = KvsFirst(KvsRoot());
}

void KvsServed::restart() {
  KvsExit();
  kvsd.stop(SIGTERM);
  setenv("KVSPORT", std::to_string(kvsd.start()).c_str(), 1);
  init();
}

std::vector<std::string>& KvsTestLog() {
  static std::vector<std::string> log;
  return log;
}

void KvsTestCapture() {
  KvsTestLog().clear();
  KvsPrintf = [](const char* text) { KvsTestLog().push_back(text); };
}

}  // namespace kvs
