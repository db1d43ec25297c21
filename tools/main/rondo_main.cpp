#include <sys/stat.h>

#include <cstdlib>

#include "tools/RondoTool.h"

int main(int argc, char** argv) {
  // A user at a shell has seldom set up a release tree, yet format files
  // name their keys in the shipped vocabulary: with none named, the tool
  // uses the release files of the tree it was built from.
  if (!std::getenv("VREL") && !std::getenv("RLITE") && !std::getenv("cor_root")) {
    struct stat info;
    if (::stat(RONDO_BUILT_RELEASE "/SystemFiles", &info) == 0 && S_ISDIR(info.st_mode))
      ::setenv("VREL", RONDO_BUILT_RELEASE, 1);
  }
  return RondoTool::run(argc, argv);
}
