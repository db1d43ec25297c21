#pragma once
// Test helpers: a kvsd process on a free loopback port, a scratch
// directory with a dictionary and config.kvs, and the library's log lines.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/types.h>

#include <string>
#include <vector>

#include "database/kvs/Kvs.h"

namespace kvs {

class KvsdProcess {
 public:
  explicit KvsdProcess(std::string dataDir) : dir_(std::move(dataDir)) {}
  ~KvsdProcess() { stop(SIGKILL); }
  int start(int port = 0);  // the port (a free one for 0), or -1
  void stop(int sig);

 private:
  std::string dir_;
  pid_t pid_ = -1;
};

struct KvsScratch {
  std::string root;  // $KVSROOT; home is root/data
  KvsScratch();
  ~KvsScratch();
};

// A kvsd of the test's own, KVSPORT naming its port, the library's log
// captured; init() starts the library on it, restart() both again.
struct KvsServed : ::testing::Test {
  KvsScratch scratch;
  KvsdProcess kvsd{scratch.root + "/kvsd"};
  KvsObject session = nullptr;
  void SetUp() override;
  void init();
  void restart();
};

// Lines logged through KvsPrintf since the last clear.
std::vector<std::string>& KvsTestLog();
void KvsTestCapture();

}  // namespace kvs
