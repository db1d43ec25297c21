// The data server program. A client catalog starts it as
//
//   DataServer <TypeName> <address> -build <N> [-v <VREL>]
//
// and it connects back to the address, serves the session, and ends with
// it. Everything it says goes to ~/DataServer.<TypeName>, since its
// standard output is the client's. Arguments it cannot take do not stop
// it: it connects all the same and answers every request with the reason,
// so that the client learns it rather than waiting for a server that is
// not coming.

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "foundation/UtlExcept.h"
#include "foundation/vString.h"
#include "foundation/vUtl.h"
#include "project/ProjectType.h"
#include "registry/RondoRegistry.h"
#include "remote/CommChanAddress.h"
#include "remote/CommChanMaker.h"
#include "remote/LargeBlocks.h"
#include "server/DataServerSession.h"

namespace {

std::FILE* openLog(char const* typeName, std::string& path, int& console) {
  char const* home = std::getenv("HOME");
  std::string name = typeName;
  if (name.empty() || name.find('/') != std::string::npos) name = "unknown";
  path = std::string(home != nullptr && *home != '\0' ? home : ".") + "/DataServer." + name;
  std::FILE* log = std::fopen(path.c_str(), "a");
  if (log == nullptr) return nullptr;
  // Reports of the libraries go to the log too, not to the client's output.
  std::fflush(stdout);
  std::fflush(stderr);
  console = ::dup(2);
  int const fd = ::fileno(log);
  ::dup2(fd, 1);
  ::dup2(fd, 2);
  return log;
}

// The reason the arguments cannot be served, or empty.
vString checkArguments(int argc, char** argv, DataServerSession& session) {
  ProjectType::PROJECT_TYPE type = ProjectType::NOTYPE;
  if (!ProjectType::isValidProjectType(vString(argv[1]), type) || type == ProjectType::NOTYPE)
    return vString("DataServer cannot serve projects of type '") + argv[1] + "'.";
  for (int i = 3; i < argc; ++i) {
    if (std::strcmp(argv[i], "-build") == 0 && i + 1 < argc) {
      vString const build(argv[++i]);
      if (!build.isInteger()) return vString("DataServer was given the build number '") + build + "'.";
      if (build.readi() != vUtl::getBuildNumber())
        session.note("client build %d, server build %d", build.readi(), vUtl::getBuildNumber());
    } else if (std::strcmp(argv[i], "-v") == 0 && i + 1 < argc) {
      ::setenv("VREL", argv[++i], 1);
    } else {
      return vString("DataServer does not take the argument '") + argv[i] + "'.";
    }
  }
  return vString();
}

}  // namespace

int main(int argc, char** argv) {
  ::signal(SIGPIPE, SIG_IGN);
  keepLargeBlocksInHeap();
  if (argc < 3) {
    std::fprintf(stderr, "usage: %s <TypeName> <address> -build <N> [-v <VREL>]\n", argv[0]);
    return 2;
  }
  std::string logName;
  int console = 2;
  std::FILE* log = openLog(argv[1], logName, console);
  vHandle<CommChan> channel;
  try {
    channel = CommChanMaker::connect(CommChanAddress(vString(argv[2])));
  } catch (UtlExcept const& e) {
    if (log != nullptr) std::fprintf(log, "%d cannot connect to %s: %s\n", static_cast<int>(::getpid()), argv[2],
                                     e.getReason().c_str());
    // Without a client there is no one else to tell: one started by hand
    // would otherwise end without a word.
    if (console >= 0)
      ::dprintf(console, "%s: cannot connect to %s: %s (logged in %s)\n", argv[0], argv[2], e.getReason().c_str(),
                log != nullptr ? logName.c_str() : "no log");
    return 3;
  }
  if (console > 2) ::close(console);
  DataServerSession session(channel, log);
  session.note("serving %s at %s", argv[1], argv[2]);
  try {
    registerDataServerClasses();
    session.setFailure(checkArguments(argc, argv, session));
  } catch (UtlExcept const& e) {
    session.setFailure(e.getReason());
  }
  int const status = session.run();
  if (log != nullptr) std::fclose(log);
  return status == 0 ? 0 : 1;
}
