// vUtl: host, installation and commands.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "foundation/TestReleaseTree.h"
#include "foundation/vString.h"
#include "foundation/vUtl.h"

namespace {

std::string str(vString const& s) { return std::string(s.c_str(), s.length()); }

}  // namespace

TEST(vUtlSystem, ReleaseTreeDomainMachineAndIPAddress) {
  TestReleaseTree tree;
  for (char const* v : {"VREL", "RLITE", "cor_root", "RELEASE"}) tree.unsetEnv(v);
  EXPECT_EQ("./", str(vUtl::releaseDirectory()));
  EXPECT_EQ("./SystemFiles/", str(vUtl::systemFilesDirectory()));

  tree.setEnv("cor_root", "/opt/cor");
  EXPECT_EQ("/opt/cor/rondolite/", str(vUtl::releaseDirectory()));
  tree.setEnv("RELEASE", "r42");
  EXPECT_EQ("/opt/cor/r42/rondolite/", str(vUtl::releaseDirectory()));
  tree.setEnv("VREL", "/opt/rel");
  EXPECT_EQ("/opt/rel/", str(vUtl::releaseDirectory()));
  tree.setEnv("VREL", "/opt/rel/");
  EXPECT_EQ("/opt/rel/SystemFiles/", str(vUtl::systemFilesDirectory()));

  tree.setEnv("VSRC", "/src");
  EXPECT_EQ("/src", str(vUtl::sourceDirectory()));
  tree.setEnv("DORN_DOMAIN", "corp.example.com");
  EXPECT_EQ("corp.example.com", str(vUtl::getDomainName()));

  tree.setEnv("MACHINE", "i686");
  EXPECT_EQ("i686", str(vUtl::getMachineType()));
  tree.unsetEnv("MACHINE");
  expectFatal([] { vUtl::getMachineType(); }, "vUtl::getMachineType", "MACHINE environment variable not defined!");

  // Without DORN_DOMAIN the system's, which differs between machines: a domain, or the one failure message.
  tree.unsetEnv("DORN_DOMAIN");
  try {
    MessageHandling quiet;
    vString domain = vUtl::getDomainName();
    EXPECT_FALSE(domain.isBlank());
    EXPECT_NE("(none)", str(domain));
  } catch (UtlExcept const& e) {
    EXPECT_EQ("vUtl::getDomainName", str(e.getMethod()));
    EXPECT_EQ(0u, std::string(e.getReason().c_str()).find("Unable to get domain name, errno="));
  }
  EXPECT_EQ("127.0.0.1", str(vUtl::getIPAddress("localhost")));
  expectFailure([] { vUtl::getIPAddress(""); }, "vUtl::getIPAddress",
                "Unable to get host 's IP Address. Check host spelling, watch out for l instead of 1 in host name.");
}

TEST(vUtlSystem, CommandsForThisAndOtherHostsAndRunningThem) {
  TestReleaseTree tree;
  tree.unsetEnv("VUSER");
  vString self = vUtl::gethostname();
  vString selfLong = self + vString(".some.domain");
  vString blank("  ");
  vString other("elsewhere-host");

  for (vString* host : {static_cast<vString*>(nullptr), &blank, &selfLong})
    EXPECT_EQ("ls -l", str(vUtl::systemCommand("ls -l", host, 0))) << (host ? host->c_str() : "(none)");
  EXPECT_EQ("ls -l &", str(vUtl::systemCommand("ls -l", &self, vUtl::SystemBackground)));

  EXPECT_EQ("rsh elsewhere-host -n  ls -l", str(vUtl::systemCommand("ls -l", &other, 0)));
  tree.setEnv("VUSER", "seis");
  EXPECT_EQ("rsh elsewhere-host -l seis -n  DataServer <$COBADDRESS$> &",
            str(vUtl::systemCommand("DataServer <$COBADDRESS$>", &other, vUtl::SystemBackground)));

  EXPECT_FALSE(vUtl::isThisHost(other));
  EXPECT_EQ(3, vUtl::system("exit 3", &self));
  EXPECT_EQ(128 + 9, vUtl::system("kill -9 $$"));
  // With SIGCHLD ignored the kernel reaps the child: no status to be had, so system() gives -1 with ECHILD.
  struct sigaction ignore;
  struct sigaction old;
  std::memset(&ignore, 0, sizeof ignore);
  ignore.sa_handler = SIG_IGN;
  ASSERT_EQ(0, ::sigaction(SIGCHLD, &ignore, &old));
  expectFatal([] { vUtl::system("true"); }, "vUtl::system",
              "Error executing command 'true', errno=" + std::to_string(ECHILD));
  ASSERT_EQ(0, ::sigaction(SIGCHLD, &old, nullptr));
}

TEST(vUtlSystem, WhichAndPingThroughTheSystemProperty) {
  TestReleaseTree tree;
  tree.unsetEnv("MISCUTL_WHICHDEBUG");
  std::string sh = str(vUtl::which("sh"));
  ASSERT_FALSE(sh.empty());
  EXPECT_EQ(0, ::access(sh.c_str(), X_OK));
  EXPECT_EQ("", str(vUtl::which("no-such-program-rondo")));

  tree.setEnv("MISCUTL_WHICHDEBUG", "1");
  testing::internal::CaptureStdout();
  vString found = vUtl::which("sh");
  EXPECT_EQ("\nFILENAME: '" + sh + "'\n", testing::internal::GetCapturedStdout());
  EXPECT_EQ(sh, str(found));
  tree.setEnv("SP_UTL_PING", "false");
  EXPECT_FALSE(vUtl::ping("anyhost"));
  // The host takes the place of %s.
  std::string seen = tree.workDir() + "pinged";
  tree.setEnv("SP_UTL_PING", "echo %s >" + seen);
  EXPECT_TRUE(vUtl::ping("target-host"));
  std::ifstream in(seen);
  EXPECT_EQ("target-host\n", std::string(std::istreambuf_iterator<char>(in), {}));

  tree.setEnv("SP_UTL_PING", "  ");
  expectFatal([] { vUtl::ping("anyhost"); }, "vUtl::ping", "The system property ping command (UTL/PING) is empty!");
}

TEST(vUtlSystem, DefaultServersFromTheEnvironmentOrTheSiteTable) {
  TestReleaseTree tree;
  tree.setEnv("DORN_DOMAIN", "Corp.Example");
  expectFatal([] { vUtl::getDefaultServer(); }, "vUtl::getDefaultServer",
              "Unknown domain name Corp.Example. Try setenv DORNSERVER servername.");
  expectFatal([] { vUtl::getDefaultDevServer(); }, "vUtl::getDefaultDevServer",
              "Unknown domain name Corp.Example. Try setenv DORNDEVSERVER servername.");

  tree.writeSystemFile("DomainServers.ini",
                       "[DornServer]\ncorp.example = prodhost \nother.example = o1\n"
                       "[DornDevServer]\nother.example = o2\n");
  EXPECT_EQ("prodhost", str(vUtl::getDefaultServer()));
  tree.setEnv("DORN_DOMAIN", "other.example");
  EXPECT_EQ("o2", str(vUtl::getDefaultDevServer()));

  tree.setEnv("DORNSERVER", "chosen");
  EXPECT_EQ("chosen", str(vUtl::getDefaultServer()));
}

TEST(vUtlSystem, EntercReadsALineOrGivesTheDefault) {
  std::streambuf* oldIn = std::cin.rdbuf();
  std::istringstream answers("  typed \n\n");
  std::cin.rdbuf(answers.rdbuf());
  testing::internal::CaptureStdout();
  std::vector<std::string> got;
  for (int i = 0; i < 3; ++i) got.push_back(str(vUtl::enterc("Server?", "dflt")));
  std::string shown = testing::internal::GetCapturedStdout();
  std::cin.rdbuf(oldIn);
  EXPECT_EQ(got, (std::vector<std::string>{"typed", "dflt", "dflt"}));  // the last at the end of input
  EXPECT_EQ("Server? [dflt]: Server? [dflt]: Server? [dflt]: ", shown);
}
