// kvsd [-d data-directory] [-p port]: serves the kvs protocol on loopback.
// The port comes from -p, else KVSPORT, else 4100; port 0 picks a free one.
// The chosen port is printed on the first line of standard output.
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "database/kvs/KvsSocket.h"
#include "database/kvsd/KvsdServer.h"

int main(int argc, char** argv) {
  std::string dir = "kvsd-data";
  int port = std::getenv("KVSPORT") ? std::atoi(std::getenv("KVSPORT")) : 4100;
  // Every option takes a value: a word left alone (--help) is a wrong
  // command line, not a start with the defaults.
  for (int i = 1; i < argc; i += 2) {
    if (i + 1 < argc && !std::strcmp(argv[i], "-d")) dir = argv[i + 1];
    else if (i + 1 < argc && !std::strcmp(argv[i], "-p")) port = std::atoi(argv[i + 1]);
    else {
      std::fprintf(stderr, "usage: kvsd [-d data-directory] [-p port]\n");
      return 2;
    }
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
