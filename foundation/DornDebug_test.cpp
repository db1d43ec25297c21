#include "foundation/DornDebug.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "foundation/TestFailure.h"
#include "foundation/UtlExcept.h"

namespace {

// True when line is "hh:mm:ss " followed by rest.
bool stampedLine(std::string const& line, std::string const& rest) {
  return line.size() == 9 + rest.size() && line.compare(9, std::string::npos, rest) == 0 &&
         fitsShape(line.substr(0, 9), "99:99:99 ");
}

std::string readFile(std::string const& path) {
  std::ifstream in(path);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

class DornDebugTest : public ::testing::Test {
 protected:
  void SetUp() override {
    path = std::string(::testing::TempDir()) + "dorndebug_" + std::to_string(::getpid()) + ".log";
    std::remove(path.c_str());
  }
  void TearDown() override {
    DornDebug::terminate();
    ::unsetenv("DORNDEBUGOUTPUT");
    ::unsetenv("DORNDEBUGLEVEL");
    ::unsetenv("DORNDEBUGFLAGS");
    std::remove(path.c_str());
  }
  void configure(char const* level, char const* flags) {
    ::setenv("DORNDEBUGOUTPUT", path.c_str(), 1);
    ::setenv("DORNDEBUGLEVEL", level, 1);
    ::setenv("DORNDEBUGFLAGS", flags, 1);
    DornDebug::initialize();
  }
  std::string path;
};

}  // namespace

TEST_F(DornDebugTest, TraceAndDumpGoToTheFileNamedByTheEnvironment) {
  configure("1", "0");
  ASSERT_TRUE(DornDebug::isEnabled());
  EXPECT_EQ(path, DornDebug::getFilename());
  DornDebug::entry("load %d", 1);
  DornDebug::printf("reading %s", "x.sgy");
  DornDebug::entry("inner");
  DornDebug::exit("inner done");
  DornDebug::exit();
  DornDebug::where("checkpoint", "Store.cpp", 120L);
  DornDebug::exception("Load", UtlExcept("no such file", "Store::open"));
  unsigned char bytes[20];
  for (int i = 0; i < 20; ++i) bytes[i] = static_cast<unsigned char>('A' + i);
  bytes[3] = 0;
  DornDebug::dump(bytes, sizeof bytes, "header block");
  DornDebug::terminate();
  EXPECT_FALSE(DornDebug::isEnabled());
  EXPECT_EQ(
      "load 1\n"
      "  reading x.sgy\n"
      "  inner\n"
      "    inner done\n"
      "  (exit)\n"
      "checkpoint  [Store.cpp:120]\n"
      "*Load EXCEPTION* Store::open - no such file\n"
      "header block\n"
      "Offset   -----------------  Hex Codes  -----------------  --ASCII Values--\n"
      "000000   41 42 43 00 45 46 47 48 49 4a 4b 4c 4d 4e 4f 50  ABC.EFGHIJKLMNOP\n"
      "000010   51 52 53 54                                      QRST\n",
      readFile(path));
}

TEST_F(DornDebugTest, FlagsAddTimeAndSetLevelSwitches) {
  configure("1", "3");
  DornDebug::printf("stamped");
  DornDebug::setLevel(0);
  DornDebug::printf("dropped");
  DornDebug::setLevel(4);
  DornDebug d;
  d++;
  d++;
  DornDebug::printf("deeper");
  EXPECT_EQ(2, DornDebug::getIndent());
  d--;
  DornDebug::setIndent(-3);
  EXPECT_EQ(0, DornDebug::getIndent());
  DornDebug::terminate();
  std::string const text = readFile(path);
  size_t const cut = text.find('\n');
  ASSERT_NE(std::string::npos, cut) << text;
  EXPECT_TRUE(stampedLine(text.substr(0, cut), "stamped")) << text;
  EXPECT_TRUE(stampedLine(text.substr(cut + 1), "    deeper\n")) << text;
}
