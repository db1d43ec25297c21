// kvsd [-d data-directory] [-p port]: serves the kvs protocol on loopback.
// The port comes from -p, else KVSPORT, else 4100; port 0 picks a free one.
// The chosen port is printed on the first line of standard output.
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>

#include "database/kvs/KvsSocket.h"
#include "database/kvsd/KvsdServer.h"

namespace {

// A port is a whole number 0..65535: anything else would be cut to another
// port, or read as 0 (a free one), without a word.
bool parsePort(char const* text, int& port) {
  long const value = kvs::KvsSkPortNumber(text);
  if (value < 0 || value > 65535) return false;
  port = static_cast<int>(value);
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  std::string dir = "kvsd-data";
  int port = 4100;
  // An empty KVSPORT is unset, as the client library takes it.
  char const* const fromEnvironment = std::getenv("KVSPORT");
  if (fromEnvironment && *fromEnvironment && !parsePort(fromEnvironment, port)) {
    std::fprintf(stderr, "kvsd: KVSPORT '%s' is not a port (0..65535)\n", fromEnvironment);
    return 2;
  }
  // Every option takes a value: a word left alone (--help) is a wrong
  // command line, not a start with the defaults.
  for (int i = 1; i < argc; i += 2) {
    if (i + 1 < argc && !std::strcmp(argv[i], "-d")) dir = argv[i + 1];
    else if (i + 1 < argc && !std::strcmp(argv[i], "-p") && parsePort(argv[i + 1], port)) continue;
    else {
      std::fprintf(stderr, "usage: kvsd [-d data-directory] [-p port]\n");
      return 2;
    }
  }
  std::error_code ec;
  std::filesystem::create_directories(dir, ec);
  if (ec || !std::filesystem::is_directory(dir)) {
    std::fprintf(stderr, "kvsd: cannot use the data directory %s: %s\n", dir.c_str(),
                 (ec ? ec : std::make_error_code(std::errc::not_a_directory)).message().c_str());
    return 1;
  }
  std::signal(SIGPIPE, SIG_IGN);
  int chosen = 0;
  int fd = kvs::KvsSkListen(port, &chosen);
  if (fd < 0) {
    std::fprintf(stderr, "kvsd: cannot listen on port %d\n", port);
    return 1;
  }
  std::printf("%d\n", chosen);
  std::fflush(stdout);
  kvsd::KvsdServer server(dir);
  server.serve(fd);
  return 0;
}
