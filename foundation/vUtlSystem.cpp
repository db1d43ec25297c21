// vUtl: host, installation and commands.

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>

#include "foundation/Message.h"
#include "foundation/SystemFileLoader.h"
#include "foundation/SystemProperty.h"
#include "foundation/SystemPropertyManager.h"
#include "foundation/vIni.h"
#include "foundation/vLCString.h"
#include "foundation/vString.h"
#include "foundation/vUtl.h"

namespace {

char const* const kServersFile = "DomainServers.ini";

vString myStrippedEnv(char const* name) {
  vString value;
  if (!vUtl::getenv(name, value)) return vString();
  value.strip();
  return value;
}

void myEndWithSlash(vString& path) {
  if (path.isEmpty() || path[static_cast<int>(path.length()) - 1] != '/') path += '/';
}

// The domain part of this host's canonical name, or empty.
vString myDnsDomain() {
  char host[256];
  if (::gethostname(host, sizeof(host)) != 0) return vString();
  host[sizeof(host) - 1] = '\0';
  vString name(host);
  struct addrinfo hints;
  std::memset(&hints, 0, sizeof(hints));
  hints.ai_family = AF_UNSPEC;
  hints.ai_flags = AI_CANONNAME;
  struct addrinfo* info = nullptr;
  if (::getaddrinfo(host, nullptr, &hints, &info) == 0 && info) {
    if (info->ai_canonname) name = info->ai_canonname;
    ::freeaddrinfo(info);
  }
  char const* dot = std::strchr(name.c_str(), '.');
  return dot && dot[1] ? vString(dot + 1) : vString();
}

// The server that the site's table gives this domain in one section.
vString myServerOfDomain(char const* method, char const* section, char const* variable) {
  vString domain = vUtl::getDomainName();
  vString path;
  if (SystemFileLoader::find(kServersFile, path)) {
    vIni servers;
    servers.loadFromFile(path);
    vString server = servers.getString(section, vLCString(domain));
    server.strip();
    if (!server.isEmpty()) return server;
  }
  Message::fatal(method, 0, "Unknown domain name %s. Try setenv %s servername.", domain.c_str(), variable);
}

}  // namespace

namespace vUtl {

vString getIPAddress(vString const& host) {
  struct addrinfo hints;
  std::memset(&hints, 0, sizeof(hints));
  hints.ai_family = AF_INET;
  struct addrinfo* info = nullptr;
  int rc = ::getaddrinfo(host.c_str(), nullptr, &hints, &info);
  if (rc != 0 || !info)
    Message::fatal("vUtl::getIPAddress", 0,
                   "Unable to get host %s's IP Address. Check host spelling, watch out for l instead of 1 in host name.",
                   host.c_str());
  char text[INET_ADDRSTRLEN] = {0};
  struct sockaddr_in const* address = reinterpret_cast<struct sockaddr_in const*>(info->ai_addr);
  ::inet_ntop(AF_INET, &address->sin_addr, text, sizeof(text));
  ::freeaddrinfo(info);
  return vString(text);
}

vString getDomainName() {
  vString domain = myStrippedEnv("DORN_DOMAIN");
  if (!domain.isEmpty()) return domain;
  char buffer[256];
  errno = 0;
  if (::getdomainname(buffer, sizeof(buffer)) != 0)
    Message::fatal("vUtl::getDomainName", 0, "Unable to get domain name, errno=%d", errno);
  buffer[sizeof(buffer) - 1] = '\0';
  domain = buffer;
  domain.strip();
  if (!domain.isEmpty() && domain != "(none)") return domain;
  domain = myDnsDomain();
  if (domain.isEmpty()) Message::fatal("vUtl::getDomainName", 0, "Unable to get domain name, errno=%d", errno);
  return domain;
}

vString releaseDirectory() {
  vString path = myStrippedEnv("VREL");
  if (path.isEmpty()) {
    vString root = myStrippedEnv("RLITE");
    if (root.isEmpty()) root = myStrippedEnv("cor_root");
    if (root.isEmpty()) return vString("./");
    path = root;
    vString release = myStrippedEnv("RELEASE");
    if (!release.isEmpty()) {
      myEndWithSlash(path);
      path += release;
    }
    myEndWithSlash(path);
    path += "rondolite";
  }
  myEndWithSlash(path);
  return path;
}

vString supportFilesDirectory() {
  vString path = releaseDirectory();
  path += "SupportFiles";
  path += "/";
  return path;
}

vString systemFilesDirectory() {
  vString path = releaseDirectory();
  path += "SystemFiles";
  path += "/";
  return path;
}

vString sourceDirectory() { return myStrippedEnv("VSRC"); }

vString documentationDirectory() { return myStrippedEnv("VDOC"); }

vString which(vString const& program) {
  vString command;
  command.printf("which %s 2>/dev/null </dev/null", program.c_str());
  vString result;
  std::fflush(nullptr);
  if (FILE* pipe = ::popen(command.c_str(), "r")) {
    std::string line;
    char buffer[1024];
    while (std::fgets(buffer, sizeof(buffer), pipe)) {
      line += buffer;
      if (!line.empty() && line[line.size() - 1] == '\n') break;
    }
    // Drain the rest so that the command does not die on a closed pipe.
    while (std::fgets(buffer, sizeof(buffer), pipe)) {
    }
    ::pclose(pipe);
    while (!line.empty() && (line[line.size() - 1] == '\n' || line[line.size() - 1] == '\r'))
      line.erase(line.size() - 1);
    result = line.c_str();
  }
  vString debug;
  if (getenv("MISCUTL_WHICHDEBUG", debug) && debug == "1") {
    std::printf("\nFILENAME: '%s'\n", result.c_str());
    std::fflush(stdout);
  }
  return result;
}

vString getMachineType() {
  vString machine;
  if (!getenv("MACHINE", machine))
    Message::fatal("vUtl::getMachineType", 0, "MACHINE environment variable not defined!");
  return machine;
}

bool ping(vString const& host) {
  vString command("vping %s");
  if (SystemPropertyManager::hasSystemProperty("UTL", "PING")) {
    // A value from the environment comes split at blanks: join it again.
    SystemProperty property = SystemPropertyManager::getSystemProperty("UTL", "PING");
    command.erase();
    for (int i = 0; i < property.getNValues(); ++i) {
      if (i) command += " ";
      command += property.getValue(i);
    }
    command.strip();
    if (command.isEmpty())
      Message::fatal("vUtl::ping", 0, "The system property ping command (%s/%s) is empty!",
                     property.getSection().c_str(), property.getName().c_str());
  }
  if (command.search("%s") >= 0) {
    command.replace(vString("%s"), host);
  } else {
    command += " ";
    command += host;
  }
  return system(command.c_str()) == 0;
}

bool isThisHost(vString const& host) {
  vString name(host);
  name.strip();
  if (name.isEmpty() || name.stricmp("localhost") == 0) return true;
  int dot = name.search('.');
  vString shortName = dot >= 0 ? name.getLeft(dot) : name;
  return shortName.stricmp(gethostname()) == 0;
}

vString systemCommand(char const* command, vString const* host, int flags) {
  vString text;
  if (host && !isThisHost(*host)) {
    text = "rsh ";
    text += *host;
    vString user;
    if (getenv("VUSER", user)) {
      text += " -l ";
      text += user;
    }
    text += " -n  ";
  }
  text += command;
  if (flags & SystemBackground) text += " &";
  return text;
}

int system(char const* command, vString const* host, int flags) {
  vString text = systemCommand(command, host, flags);
  std::fflush(nullptr);
  errno = 0;
  int status = ::system(text.c_str());
  if (status == -1)
    Message::fatal("vUtl::system", 0, "Error executing command '%s', errno=%d", text.c_str(), errno);
  if (WIFEXITED(status)) return WEXITSTATUS(status);
  if (WIFSIGNALED(status)) return 128 + WTERMSIG(status);
  return status;
}

vString getDefaultServer() {
  vString server = myStrippedEnv("DORNSERVER");
  if (!server.isEmpty()) return server;
  return myServerOfDomain("vUtl::getDefaultServer", "DornServer", "DORNSERVER");
}

vString getDefaultDevServer() {
  vString server = myStrippedEnv("DORNDEVSERVER");
  if (!server.isEmpty()) return server;
  return myServerOfDomain("vUtl::getDefaultDevServer", "DornDevServer", "DORNDEVSERVER");
}

vString enterc(char const* prompt, vString const& defaultValue) {
  std::cout << prompt << " [" << defaultValue << "]: " << std::flush;
  std::string line;
  if (!std::getline(std::cin, line)) return defaultValue;
  vString answer(line.c_str());
  answer.strip();
  return answer.isEmpty() ? defaultValue : answer;
}

}  // namespace vUtl
