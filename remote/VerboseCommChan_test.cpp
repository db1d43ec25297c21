// Tracing of channel operations, the maker's decoration by the VERBOSE
// property, and the probes of CommChanUtl.

// GCC 12 sees uninitialised members inside std::regex when sanitizers are
// on; the warning is about the library, not this file.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"

#include "remote/VerboseCommChan.h"

#include <fstream>
#include <regex>
#include <sstream>
#include <string>

#include <netdb.h>

#include <gtest/gtest.h>

#include "foundation/TestReleaseTree.h"
#include "remote/CommChanMaker.h"
#include "remote/CommChanUtl.h"
#include "remote/RemoteTesting.h"
#include "remote/Socket.h"

using namespace remote_testing;

namespace {

class VerboseCommChanTest : public RemoteTest {};

std::string const kTime = "[-+0-9.e]+";

// Matches text line by line against patterns in which "<t>" is a time.
void expectLines(std::string const& text, std::vector<std::string> const& patterns) {
  std::istringstream in(text);
  std::string line;
  size_t i = 0;
  while (std::getline(in, line)) {
    ASSERT_LT(i, patterns.size()) << "extra line: " << line;
    std::string p = patterns[i];
    for (size_t at = p.find("<t>"); at != std::string::npos; at = p.find("<t>")) p.replace(at, 3, kTime);
    EXPECT_TRUE(std::regex_match(line, std::regex(p))) << "line " << i << ": " << line << "\npattern: " << p;
    ++i;
  }
  EXPECT_EQ(patterns.size(), i);
}

TEST_F(VerboseCommChanTest, EachOperationIsOneLineAndArraysShowTheirFirstElement) {
  vHandle<CommChan> server = CommChanMaker::local(nullptr);
  vHandle<CommChan> client = CommChanMaker::connect(localPath(server).c_str());
  std::ostringstream trace;
  {
    vHandle<CommChan> traced(new VerboseCommChan(client, trace));
    int const values[2] = {7, 8};
    EXPECT_EQ(CommChan::OK, traced->sendInt32(values, 2));
    int got[2] = {0, 0};
    ASSERT_EQ(CommChan::OK, server->receiveInt32(got, 2));
    double const d = 2.5;
    ASSERT_EQ(CommChan::OK, server->sendFloat64(&d, 1));
    double back = 0;
    EXPECT_EQ(CommChan::OK, traced->receiveFloat64(&back, 1));
    EXPECT_EQ(2.5, back);
    EXPECT_TRUE(traced->waitOn(1.0f, CommChan::WRITE));
    int v = 3;
    traced->swapBytes(v);
    short s[1] = {5};
    traced->swapBytes(s, 1);
    EXPECT_FALSE(traced->getSwap());
    traced->setMiscTimeout(1.5f);
    server->close();
    char c = 0;
    EXPECT_EQ(CommChan::CLOSED, traced->receiveChar8(&c, 1));
  }
  expectLines(trace.str(), {
                               "",
                               "VerboseCommChan: wrapping Socket [0-9]+ \\(local .*/rondo-[0-9]+/Socket_.*\\)",
                               "CommChan::sendInt32\\(0x[0-9a-f]+, 2\\)  \\(Ex\\.<t> sec\\.\\)CommChan::OK \\(In\\.<t> sec\\.\\)",
                               " {39}array\\[0\\]:7",
                               "CommChan::receiveFloat64\\(0x[0-9a-f]+, 1\\)  \\(Ex\\.<t> sec\\.\\)CommChan::OK \\(In\\.<t> sec\\.\\)",
                               " {39}array\\[0\\]:2\\.5",
                               "CommChan::waitOn\\(1, CommChan::WRITE\\)  \\(Ex\\.<t> sec\\.\\)true \\(In\\.<t> sec\\.\\)",
                               "CommChan::swapBytesInt32\\(3\\)  \\(Ex\\.<t> sec\\.\\)  after swap:3 \\(In\\.<t> sec\\.\\)",
                               "CommChan::swapBytesInt16s\\(0x[0-9a-f]+, 1\\)  \\(Ex\\.<t> sec\\.\\)  after swap:5 \\(In\\.<t> sec\\.\\)",
                               "CommChan::setMiscTimeout\\(1\\.5\\)  \\(Ex\\.<t> sec\\.\\) \\(In\\.<t> sec\\.\\)",
                               "CommChan::receiveChar8\\(0x[0-9a-f]+, 1\\)  \\(Ex\\.<t> sec\\.\\)CommChan::CLOSED \\(In\\.<t> sec\\.\\)",
                           });
}

TEST_F(VerboseCommChanTest, MakerWrapsWhenThePropertyAsksForIt) {
  TestReleaseTree tree;
  std::string const file = tree.workDir() + "trace.txt";
  tree.unsetEnv("SP_COMMCHAN_VERBOSE");
  tree.setEnv("SP_COMMCHAN_VERBOSE", "filename=" + file);
  vHandle<CommChan> fileOnly = CommChanMaker::local(nullptr);
  EXPECT_NE(nullptr, dynamic_cast<Socket*>(fileOnly.get()));

  tree.setEnv("SP_COMMCHAN_VERBOSE", "verbose = yes  \"FileName =" + file + " \"");
  {
    vHandle<CommChan> traced = CommChanMaker::local(nullptr);
    ASSERT_NE(nullptr, dynamic_cast<VerboseCommChan*>(traced.get()));
    traced->getSize();
  }
  std::stringstream text;
  text << std::ifstream(file).rdbuf();
  EXPECT_EQ(0u, text.str().find("\nVerboseCommChan: wrapping Socket ")) << text.str();
  EXPECT_NE(std::string::npos, text.str().find("CommChan::getSize(")) << text.str();
}

// The remote shell's probe itself is run by the portal's test of another host.
TEST_F(VerboseCommChanTest, ServiceAndPortProbes) {
  // In host order; a bare build root without a services database knows none.
  servent const* shell = ::getservbyname("shell", "tcp");
  EXPECT_EQ(shell ? 514 : 0, CommChanUtl::getServicePort("shell", "tcp"));
  EXPECT_EQ("CommChanUtl::getServicePort: The service name cannot be blank!",
            fatalText([] { CommChanUtl::getServicePort("", "tcp"); }));

  int port = 0;
  int const listener = rawListenTcp(port);
  EXPECT_TRUE(CommChanUtl::isPortConnectable("localhost", port, 2.0f));
  ::close(listener);
  EXPECT_FALSE(CommChanUtl::isPortConnectable("localhost", port, 2.0f));
}

}  // namespace
