#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "database/kvsd/KvsdServer.h"

using namespace kvsd;
namespace fs = std::filesystem;

TEST(KvsdServer, NamesStayInsideTheDataDirectory) {
  struct Row {
    std::string name, path;
  } rows[] = {{"L1", "L1"}, {"../etc", "%2E%2E%2Fetc"}, {"", "%"}, {"a b", "a%20b"}};
  for (const Row& r : rows) {
    EXPECT_EQ(KvsdEncodeName(r.name), r.path);
    EXPECT_EQ(KvsdDecodeName(r.path), r.name);
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
