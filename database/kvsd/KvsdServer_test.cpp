#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <utility>
#include <vector>

#include "database/kvsd/KvsdServer.h"

using namespace kvsd;
namespace fs = std::filesystem;

TEST(KvsdServer, NamesStayInsideTheDataDirectory) {
  for (auto const& [name, path] :
       std::vector<std::pair<std::string, std::string>>{{"L1", "L1"}, {"../etc", "%2E%2E%2Fetc"}, {"", "%"}}) {
    EXPECT_EQ(KvsdEncodeName(name), path);
    EXPECT_EQ(KvsdDecodeName(path), name);
  }
}

TEST(KvsdServer, UnfinishedTablesAreDroppedAtStart) {
  fs::path dir = fs::temp_directory_path() / ("kvsd_test" + std::to_string(getpid()));
  fs::create_directories(dir / "acct/SEIS/L1/v1");
  std::ofstream(dir / "acct/SEIS/L1/v1/.part1_0") << "half";
  std::ofstream(dir / "acct/SEIS/L1/v1/SHOTS.tab") << "whole";
  KvsdServer server(dir.string());
  EXPECT_FALSE(fs::exists(dir / "acct/SEIS/L1/v1/.part1_0"));
  EXPECT_TRUE(fs::exists(dir / "acct/SEIS/L1/v1/SHOTS.tab"));
  fs::remove_all(dir);
}

// A word the daemon does not take, alone or with a value, or a port that is
// none, is its usage and status 2, not a daemon started with the defaults or
// on another port (the time-out only ends a daemon that was started by
// mistake).
TEST(KvsdServer, AWrongCommandLineIsTheUsage) {
  fs::path dir = fs::temp_directory_path() / ("kvsd_usage" + std::to_string(getpid()));
  fs::create_directories(dir);
  for (char const* arguments : {"--help", "-x 1", "-d", "-p 70000", "-p 41x"}) {
    std::string const command = "cd " + dir.string() + " && timeout 20 " + RONDO_TEST_BINARY_DIR "/bin/kvsd " +
                                arguments + " > out 2> err";
    int const raw = std::system(command.c_str());
    ASSERT_TRUE(WIFEXITED(raw)) << arguments;
    EXPECT_EQ(2, WEXITSTATUS(raw)) << arguments;
    std::string line;
    std::getline(std::ifstream(dir / "err"), line);
    EXPECT_EQ("usage: kvsd [-d data-directory] [-p port]", line) << arguments;
    EXPECT_FALSE(fs::exists(dir / "kvsd-data")) << arguments;
  }
  // So is a KVSPORT that is no port (an empty one is unset).
  int const port = std::system(("cd " + dir.string() + " && KVSPORT=41x timeout 20 " RONDO_TEST_BINARY_DIR
                                "/bin/kvsd > out 2> err").c_str());
  ASSERT_TRUE(WIFEXITED(port));
  EXPECT_EQ(2, WEXITSTATUS(port));
  std::string said;
  std::getline(std::ifstream(dir / "err"), said);
  EXPECT_EQ("kvsd: KVSPORT '41x' is not a port (0..65535)", said);
  // A data directory that cannot be one is said so, before any port is taken.
  std::ofstream(dir / "plain") << "not a directory";
  int const raw = std::system(("cd " + dir.string() + " && timeout 20 " RONDO_TEST_BINARY_DIR
                               "/bin/kvsd -p 0 -d plain > out 2> err").c_str());
  ASSERT_TRUE(WIFEXITED(raw));
  EXPECT_EQ(1, WEXITSTATUS(raw));
  std::string line;
  std::getline(std::ifstream(dir / "err"), line);
  EXPECT_EQ("kvsd: cannot use the data directory plain: Not a directory", line);
  EXPECT_EQ(0, fs::file_size(dir / "out"));
  fs::remove_all(dir);
}
